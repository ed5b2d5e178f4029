#include "desktop/jobs/design_dialogs.h"

#include "core/base/text.h"
#include "core/jobs/design_tables.h"
#include "desktop/jobs/hint_pages.h"
#include "desktop/jobs/table_rows.h"
#include "desktop/kit/new_name_dialog.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kPhotoNameLength = 100;

std::string WithoutEnd(const std::string& photo) {
  const std::size_t end = photo.rfind('.');
  return photo.substr(0, end);
}

Result<Arguments> RenameOf(NewNameDialog& dialog, const std::string& oldName, const std::string& typed) {
  const auto done = dialog.Given().Has("Copy") ? CopyDesign(dialog.session, oldName, typed)
                                               : RenameDesign(dialog.session, oldName, typed);
  if (!done) return std::unexpected(done.error());
  return Arguments{{"DesignID", *done}};
}

Result<Arguments> RenamePhotoOf(NewNameDialog& dialog, const std::string& oldName, const std::string& typed) {
  if (!dialog.Given().Has("Picked")) {
    auto* work = dialog.Given().Get<DesignWork*>("Work");
    if (auto done = RenamePhoto(dialog.session, *work, oldName, typed); !done) return std::unexpected(done.error());
    return Arguments{{"PhotoName", typed}};
  }
  const auto name = ReadPhotoName(typed);
  if (!name) return std::unexpected(name.error());
  dialog.Given().Get<PickedPhoto*>("Picked")->name = *name;
  return Arguments{{"PhotoName", *name}};
}

}  // namespace

void RegisterDesignNames(WindowList& windows) {
  windows.RegisterDialog("JobDesign_Rename", [](WindowList& list, QWidget* owner) -> Dialog* {
    return new NewNameDialog(list, owner,
                             {.window = "JobDesign_Rename",
                              .title = NewNameDialog::tr(" Rename Design"),
                              .caption = NewNameDialog::tr("Name"),
                              .argument = "DesignID",
                              .rule = TextRule::Upper(kDesignIDLength),
                              .rename = RenameOf,
                              .hint = NewNameDialog::tr("Enter a new name for this design.")});
  });
  windows.RegisterDialog("JobDesign_PhotoRename", [](WindowList& list, QWidget* owner) -> Dialog* {
    return new NewNameDialog(list, owner,
                             {.window = "JobDesign_PhotoRename",
                              .title = NewNameDialog::tr("Photo Rename"),
                              .caption = NewNameDialog::tr("Photo"),
                              .argument = "PhotoName",
                              .rule = TextRule::Any(kPhotoNameLength),
                              .rename = RenamePhotoOf,
                              .proposed = WithoutEnd});
  });
}

JobDesigns_Hints::JobDesigns_Hints(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "JobDesigns_Hints", tr("Job Designs - Hints")) {
  const std::vector<HintPage> pages{
      {tr("&Estimating"),
       tr("1  Choose the Database and the color, or click its line in the list.\n2  Press Estimate: length, width and "
          "impressions come from the Design.\n3  Choose ink and stock, or the anilox, and the coverage.\n4  Press Add "
          "to "
          "Design: the quantity stands in the line of the color.")},
      {tr("&Updating"), tr("1  Click the line of a color: its figures stand in the fields above.\n2  Change quantity "
                           "or coverage and press "
                           "Add / Update.\n3  Press Save. Nothing is written before.")},
      {tr("&Removing"), tr("1  Click the line of a color and press Remove.\n2  Delete takes the whole Design away, and "
                           "those of its photos "
                           "that nobody else links.")},
      {tr("Photos - &Get and Use"),
       tr("1  Press Get and choose a picture, JPEG or PNG, or drop one on the frame.\n2  Press Use to link it to the "
          "Design. A name that the library has is asked about.\n3  Press Save: the picture is copied into the library, "
          "the folder DesignPhotos beside the Data File.")},
      {tr("Photos - Rename and Re&move"),
       tr("1  Previous and Next step through the photos of the Design.\n2  Rename gives a photo another name; other "
          "Designs "
          "that use it may follow or keep theirs.\n3  Remove takes it off this Design. The file goes when nobody links "
          "it.")},
  };
  Form form(*this);
  AddHintPages(form, "tabHints", pages);
  form.Buttons({form.Button("cmdClose", tr("Close"))});
  resize(880, 320);
}

ImportExamineLocalFileDesign::ImportExamineLocalFileDesign(WindowList& windowList, QWidget* owner, bool ofCloud)
    : Dialog(windowList, owner, ofCloud ? "ImportExamineCloudDesign" : "ImportExamineLocalFileDesign",
             ofCloud ? tr("Design of the Cloud Account") : tr("Design of the file")),
      rows_(std::make_shared<LeadingTable>()) {
  Form form(*this);
  form.Row(tr("Design ID"), id_ = form.Label("lblDesignID"));
  form.Row(tr("Description"), description_ = form.Label("lblDescription"));
  form.Row(tr("Size"), size_ = form.Label("lblSize"));
  form.Row(tr("Photos"), photos_ = form.Label("lblPhotos"));
  form.Row(tr("Notes"), notes_ = form.Label("lblNotes"));
  for (QLabel* label : {photos_, notes_}) label->setWordWrap(true);
  colors_ = form.Table("fgColors");
  colors_->setAccessibleName(tr("Colors of the Design"));
  colors_->SetColumns(
      ColumnsOf(DesignColorColumns(session).Of(std::vector<DesignColorCost>{}), {200, 80, 120, 120, 96}));
  colors_->SetSource(rows_);
  form.Wide(colors_, 1);
  form.Buttons({form.Button("cmdClose", tr("Close"))});
  resize(880, 480);
}

void ImportExamineLocalFileDesign::OnOpen(const Arguments& arguments) {
  const auto design = arguments.Get<Design>("Design");
  id_->setText(Q(design.DesignID));
  description_->setText(Q(design.Description));
  size_->setText(tr("%1 x %2 in., %3")
                     .arg(Q(LengthText(design.Length, LengthUnit::Inch)), Q(LengthText(design.Width, LengthUnit::Inch)))
                     .arg(design.Impressions == 1 ? tr("1 impression") : tr("%1 impressions").arg(design.Impressions)));
  QStringList photos;
  for (const std::string& name : design.Photos()) photos << Q(name);
  photos_->setText(photos.join(", "));
  notes_->setText(Q(Left(design.Notes, 400)));
  FillRows(*rows_, DesignColorColumns(session).Of(DesignCosts(session, design.Colors())));
  colors_->Refresh();
}

}  // namespace vellumark::desktop
