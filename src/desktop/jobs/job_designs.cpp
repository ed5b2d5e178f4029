#include "desktop/jobs/job_designs.h"

#include <QPointer>
#include <QTabWidget>
#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/jobs/design_tables.h"
#include "core/session/settings.h"
#include "desktop/jobs/design_box.h"
#include "desktop/jobs/ink_est_form.h"
#include "desktop/jobs/photo_frame.h"
#include "desktop/jobs/table_rows.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/print_sheet.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

QString DateText(const std::optional<DateTime>& date) {
  return date ? QLocale().toString(QDate(date->year, date->month, date->day), QLocale::ShortFormat) : QString();
}

}  // namespace

JobDesigns::JobDesigns(WindowList& windowList, FileChooser choose)
    : Window(windowList, "JobDesigns", tr("Job Designs")), choose_(std::move(choose)) {
  setWindowIcon(Icon("Job"));
  pictures_ = new PictureLoader(this);
  thumbnails_ = new PictureLoader(this);
  Form form(*this);
  id_ = form.Add(new DesignBox("cmbDesignID", session));
  id_->Means("DesignID");
  id_->DoNotTrack();
  form.Row(tr("Design &ID"), {id_, form.Button("cmdClear", tr("C&lear")), form.Button("cmdHints", tr("&Hints")),
                              state_ = form.Hint({}, "lblState")});
  TabSet tabs = form.Tabs("tabDesign");
  BuildDetails(tabs.Page(tr("&Details"), "tabDetails"));
  BuildColors(tabs.Page(tr("&Colors"), "tabColors"));
  BuildPhotos(tabs.Page(tr("&Photos"), "tabPhotos"));
  auto* rename = form.Button("cmdRename", tr("&Rename"));
  auto* copy = form.Button("cmdCopy", tr("Cop&y"));
  auto* remove = form.Button("cmdDelete", tr("Dele&te"));
  auto* usage = form.Button("cmdUsage", tr("&Usage"));
  auto* bench = form.Button("cmdBench", tr("To the &Bench"));
  auto* exchange = form.Button("cmdExchange", tr("Fi&les"));
  form.Buttons({save_ = form.Button("cmdSave", tr("&Save")), form.Button("cmdClose", tr("Close")), remove, rename, copy,
                usage, bench, exchange});
  ofStored_ = {rename, copy, bench, remove, usage};
  exchange->setVisible(windows.Knows("DB_ImportExport_Designs"));
  usage->setVisible(windows.Knows("DesignUsageForm"));
  connect(id_, &TextField::Left, this, [this](QWidget* to) {
    if (to == nullptr || qobject_cast<QPushButton*>(to) == nullptr) EnterID();
  });
  connect(id_, &NameBox::Picked, this, [this] { EnterID(); });
  Show();
}

JobDesigns::~JobDesigns() = default;

void JobDesigns::BuildDetails(Form form) {
  description_ = form.Text("Description", TextRule::Any(kDescriptionLength));
  form.Row(tr("D&escription"), description_);
  impressions_ = form.Text("Impressions", TextRule::Digits(10));
  impressions_->SetWidthInChars(10);
  impressions_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  form.Row(tr("I&mpressions"), impressions_);
  length_ = form.Number("Length", 3);
  width_ = form.Number("Width", 3);
  width_->setAccessibleName(tr("Width"));
  unit_ = form.Radio("optEstUOM", {{"optInch", tr("in.")}, {"optMillimetre", tr("mm.")}}, Qt::Horizontal);
  unit_->DoNotTrack();
  unit_->Choose(EstimatorUnit(session) == LengthUnit::Inch ? 0 : 1);
  form.Row(tr("Len&gth"), {length_, form.Hint(tr("Width")), width_, unit_});
  form.Row(tr("Dates"), dates_ = form.Label("lblDates"));
  notes_ = form.Note("Notes", 4);
  form.Row(tr("&Notes"), notes_);
  connect(unit_, &RadioField::ChosenChanged, this, [this] { ShowUnit(); });
}

void JobDesigns::BuildColors(Form form) {
  database_ = form.Combo("cmbDatabases");
  database_->SetItems(session.databaseList);
  database_->SetText(session.CurrentDatabase);
  database_->OnChosen([this](int) { color_->SetSource(SortedNames(DesignColorNames(session, database_->Text()))); });
  color_ = form.Name("cmbColors", SortedNames(DesignColorNames(session, {})));
  color_->Means("IngName");
  quantity_ = form.Number("Quantity", 3);
  percent_ = form.Number("PercentCoverage", 0, tr("0 to 100"), 5);
  auto* add = form.Button("cmdAdd", tr("&Add / Update"));
  auto* estimate = form.Button("cmdEstimate", tr("Es&timate"));
  auto* remove = form.Button("cmdRemove", tr("Re&move"));
  for (Field* field : std::initializer_list<Field*>{database_, color_, quantity_, percent_}) field->DoNotTrack();
  form.Row(tr("Data&base"), {database_, form.Hint(tr("Color")), color_});
  color_->setAccessibleName(tr("Color"));
  form.Row(tr("&Quantity"), {quantity_, form.Hint(Q(UnitName(session.UMI))), percent_, form.Hint(tr("% coverage")), add,
                             estimate, remove});
  percent_->setAccessibleName(tr("Percent coverage"));
  colors_ = form.Table("DesignColorList");
  colors_->setAccessibleName(tr("Colors of the Design"));
  rows_ = std::make_shared<LeadingTable>();
  colors_->SetColumns(
      ColumnsOf(DesignColorColumns(session).Of(std::vector<DesignColorCost>{}), {220, 80, 120, 120, 96, 112, 96}));
  colors_->SetSource(rows_);
  colors_->SetEmptyText(tr("No colors yet"));
  connect(colors_, &Grid::CurrentRowChanged, this, [this] { PickColor(); });
  form.Wide(colors_, 1);
  RadioField* costModel = form.Radio(
      "optCostModel", {{"optBasicCost", tr("Basic Cost")}, {"optPurchaseCost", tr("Purchase Cost")}}, Qt::Horizontal);
  costModel->DoNotTrack();
  costModel->Choose(GetSetting(session, setting::DesignsCostModelIndex) == 1 ? 1 : 0);
  form.Row(tr("Total cost"), {total_ = form.Value("lblTotalCost"), form.Hint(tr("Formulas by")), costModel});
  connect(costModel, &RadioField::ChosenChanged, this, [this](int chosen) {
    StoreSettings(session, {setting::DesignsCostModelIndex.To(chosen)});
    ShowColors();
  });
  ofDesign_.insert(ofDesign_.end(), {add, estimate, remove});
}

LengthUnit JobDesigns::Unit() const {
  return unit_->Chosen() == 0 ? LengthUnit::Inch : LengthUnit::Millimetre;
}

void JobDesigns::OnOpen(const Arguments& arguments) {
  if (!arguments.Has("DesignID") || !MayLeaveDesign()) return;
  Load(arguments.Text("DesignID"));
}

// What is typed stays; a Design that nobody touched is read anew.
void JobDesigns::OnChanges(const std::vector<Change>& changes) {
  const auto has = [&](Change::Kind kind) {
    return std::ranges::any_of(changes, [kind](const Change& change) { return change.kind == kind; });
  };
  if (has(Change::Kind::Design)) id_->ListIDs();
  if (has(Change::Kind::DatabaseList)) {
    const std::string chosen = database_->Text();
    database_->SetItems(session.databaseList);
    database_->SetText(session.FindDatabase(chosen) == nullptr ? session.CurrentDatabase : chosen);
    color_->SetSource(SortedNames(DesignColorNames(session, database_->Text())));
  }
  if (!work_) return ShowColors();
  FollowRenames(*work_, changes);
  if (!InEdit() && !work_->IsNew()) {
    const std::string id = work_->design.DesignID;
    work_ = ReadDesignWork(session, id);
    return Show();
  }
  ShowColors();
}

void JobDesigns::Load(const std::string& id) {
  work_ = ReadDesignWork(session, ReadDesignID(id));
  picked_.reset();
  Show();
  if (work_) description_->setFocus();
}

// True when the box names the Design that is shown.
bool JobDesigns::EnterID() {
  const std::string id = ReadDesignID(id_->Text());
  if (work_ && EqualNoCase(id, work_->design.DesignID)) return true;
  if (id.empty() || !MayLeaveDesign()) {
    id_->SetText(work_ ? work_->design.DesignID : std::string());
    return false;
  }
  if (DesignExists(session, id)) {
    Load(id);
    return true;
  }
  auto begun = BeginDesign(session, id);
  if (!Accepted(begun)) return false;
  work_ = *std::move(begun);
  picked_.reset();
  Show();
  return true;
}

// ---- What is shown

void JobDesigns::Show() {
  showing_ = true;
  id_->SetText(work_ ? work_->design.DesignID : std::string());
  ShowFields();
  ListPhotos();
  showing_ = false;
  ShowColors();
}

void JobDesigns::ShowFields() {
  const Design design = work_ ? work_->design : Design{};
  description_->SetText(design.Description);
  impressions_->SetText(work_ ? std::to_string(design.Impressions) : "");
  notes_->SetText(design.Notes);
  dates_->setText(work_ && !work_->IsNew() ? tr("created %1, changed %2, used %3")
                                                 .arg(DateText(design.Created), DateText(design.LastModified),
                                                      design.LastUsed ? DateText(design.LastUsed) : tr("never"))
                                           : QString());
  length_->SetText(work_ ? LengthText(design.Length, Unit()) : "");
  width_->SetText(work_ ? LengthText(design.Width, Unit()) : "");
  shown_ = FieldsText();
}

// What was typed in the other unit is taken first.
void JobDesigns::ShowUnit() {
  if (!work_) return;
  const LengthUnit before = Unit() == LengthUnit::Inch ? LengthUnit::Millimetre : LengthUnit::Inch;
  const bool clean = FieldsText() == shown_;
  for (const auto& [field, member] : {std::pair{length_, &Design::Length}, std::pair{width_, &Design::Width}}) {
    static_cast<void>(EnterDesignField(*work_, U8(field->objectName()), field->Text(), before));
    field->SetText(LengthText(work_->design.*member, Unit()));
  }
  if (clean) shown_ = FieldsText();
  Changed();
}

void JobDesigns::ShowColors() {
  const std::vector<DesignColor> colors = work_ ? work_->design.Colors() : std::vector<DesignColor>{};
  FillRows(*rows_, DesignColorColumns(session).Of(DesignCosts(session, colors)));
  colors_->Refresh();
  total_->SetText(work_ ? DesignTotalCost(session, colors) : "");
  Changed();
}

std::string JobDesigns::FieldsText() const {
  std::string text;
  for (const std::string& part :
       {description_->Text(), impressions_->Text(), length_->Text(), width_->Text(), notes_->Text()})
    text += part + '\n';
  return text;
}

bool JobDesigns::InEdit() const {
  return work_ && (work_->IsNew() || work_->Changed() || FieldsText() != shown_ || picked_);
}

void JobDesigns::UpdateEnabled() {
  if (save_ == nullptr || showing_) return;
  const bool open = work_.has_value();
  const bool edit = InEdit();
  for (QWidget* field : std::initializer_list<QWidget*>{description_, impressions_, length_, width_, notes_, database_,
                                                        color_, quantity_, percent_, frame_})
    field->setEnabled(open);
  for (CommandButton* button : ofDesign_) button->setEnabled(open);
  for (CommandButton* button : ofStored_) button->setEnabled(open && !work_->IsNew() && !edit);
  for (CommandButton* button : ofPhoto_) button->setEnabled(open && (picked_ || CurrentPhoto() >= 0));
  use_->setEnabled(picked_.has_value());
  save_->setEnabled(edit && !session.ArchiveView);
  state_->setText(!open            ? tr("Type the name of a Design, or a new one")
                  : work_->IsNew() ? tr("New Design")
                  : edit           ? tr("Changed")
                                   : QString());
}

bool JobDesigns::TakeFields() {
  const std::vector<std::pair<const char*, std::string>> fields{{"Description", description_->Text()},
                                                                {"Impressions", impressions_->Text()},
                                                                {"Length", length_->Text()},
                                                                {"Width", width_->Text()},
                                                                {"Notes", notes_->Text()}};
  return std::ranges::all_of(fields, [this](const auto& field) {
    return Accepted(EnterDesignField(*work_, field.first, field.second, Unit()));
  });
}

bool JobDesigns::MayLeaveDesign() {
  if (!InEdit()) return true;
  const Answer answer = session.prompt.Show({U8(tr("Save Changes")), U8(tr("Save changes to Design before closing?")),
                                             Buttons::YesNoCancel, vellumark::Icon::Question, Answer::Yes});
  if (answer == Answer::No) {
    // What was typed is given up, whatever the window does next.
    work_ = work_->IsNew() ? std::nullopt : ReadDesignWork(session, work_->design.DesignID);
    picked_.reset();
    Show();
    return true;
  }
  if (answer == Answer::Cancel) return false;
  cmdSave_Click();
  return !InEdit();
}

bool JobDesigns::MayClose() {
  return MayLeaveDesign();
}

// ---- Commands

void JobDesigns::cmdSave_Click() {
  if (!work_ || !TakeFields()) return;
  if (picked_ &&
      !session.prompt.Ask(U8(tr("Select Photo for Job Design")),
                          U8(tr("The photo in the frame is not linked yet.\n\nSave without it?")), Answer::No))
    return;
  picked_.reset();
  const auto saved = SaveDesign(session, *work_);
  if (!Accepted(saved)) return;
  Show();
}

void JobDesigns::cmdDelete_Click() {
  if (!work_ || work_->IsNew() || !Accepted(DeleteDesign(session, work_->design.DesignID))) return;
  work_.reset();
  Show();
  id_->setFocus();
}

void JobDesigns::cmdClear_Click() {
  if (!MayLeaveDesign()) return;
  work_.reset();
  picked_.reset();
  Show();
  id_->setFocus();
}

void JobDesigns::cmdRename_Click() {
  if (const auto done = windows.RunDialog("JobDesign_Rename", {{"DesignID", work_->design.DesignID}}))
    Load(done->Text("DesignID"));
}

void JobDesigns::cmdCopy_Click() {
  const Arguments copy{{"DesignID", work_->design.DesignID}, {"Copy", true}, {"Title", U8(tr("Copy Design"))}};
  if (const auto done = windows.RunDialog("JobDesign_Rename", copy))
    Load(done->Text("DesignID"));
}

void JobDesigns::cmdUsage_Click() {
  windows.OpenForm("DesignUsageForm", {{"DesignID", work_->design.DesignID}});
}

void JobDesigns::cmdBench_Click() {
  windows.OpenForm("DesignBenchForm", {{"DesignID", work_->design.DesignID}});
}

void JobDesigns::cmdHints_Click() {
  windows.RunDialog("JobDesigns_Hints");
}

void JobDesigns::cmdExchange_Click() {
  windows.OpenForm("DB_ImportExport_Designs");
}

void JobDesigns::cmdPrint_Click() {
  PrintSheet(windows, Sheet::Of(U8(tr("Job Designs")), ListDesigns(session)));
}

// ---- Colours

void JobDesigns::PickColor() {
  const int row = colors_->CurrentRow();
  if (!work_ || row < 0) return;
  const DesignColor& color = work_->design.slots.at(static_cast<std::size_t>(row));
  if (session.FindDatabase(color.IngDB) != nullptr) database_->SetText(color.IngDB);
  color_->SetText(color.IngName);
  quantity_->SetText(Fixed(color.IngQty, 3));
  percent_->SetText(std::to_string(color.IngPercent));
}

bool JobDesigns::PutColor(const DesignColorEntry& entry) {
  if (!work_ || !Accepted(PutDesignColor(session, *work_, entry))) return false;
  ShowColors();
  return true;
}

void JobDesigns::cmdAdd_Click() {
  DesignColorEntry entry{color_->Name(), database_->Text(), {}, quantity_->Text(), percent_->Text(), {}};
  // A line that shows the rounded figure of an estimate keeps it.
  if (work_)
    for (const DesignColor& color : work_->design.Colors())
      if (EqualNoCase(color.IngName, entry.name)) {
        if (EqualNoCase(color.IngDB, entry.database)) entry.kind = color.Kind();
        if (Fixed(color.IngQty, 3) == entry.quantity) entry.exactQuantity = color.IngQty;
      }
  if (!PutColor(entry)) return;
  color_->SetText("");
  quantity_->SetText("");
  percent_->SetText("");
  color_->setFocus();
}

void JobDesigns::cmdRemove_Click() {
  const int row = colors_->CurrentRow();
  const std::string name = row >= 0 ? work_->design.slots.at(static_cast<std::size_t>(row)).IngName : color_->Name();
  RemoveDesignColor(*work_, name);
  ShowColors();
}

// The estimator stands in a window of its own and may outlive this one.
void JobDesigns::cmdEstimate_Click() {
  const std::string name = color_->Name();
  if (name.empty())
    return ShowRefusal({"Color Not Found", "This Color was not found in the selected Database.", "IngName"});
  const QPointer<JobDesigns> self(this);
  const TakeEstimate take = [self, name](const InkEstimate& estimate) {
    return self != nullptr && self->TakeFor(name, estimate);
  };
  windows.OpenForm("InkEstForm", {{"Color", name},
                                  {"Unit", Unit()},
                                  {"Length", length_->Text()},
                                  {"Width", width_->Text()},
                                  {"Sheets", impressions_->Text()},
                                  {"Percent", percent_->Text()},
                                  {"Take", take}});
}

bool JobDesigns::TakeFor(const std::string& name, const InkEstimate& estimate) {
  if (!work_) return false;
  DesignColorEntry entry{name, database_->Text(), {}, {}, percent_->Text(), DesignQuantity(session, estimate)};
  for (const DesignColor& color : work_->design.Colors())
    if (EqualNoCase(color.IngName, name)) {
      entry.database = color.IngDB;
      entry.kind = color.Kind();
    }
  if (!PutColor(entry)) return false;
  windows.OpenForm("JobDesigns");
  return true;
}

}  // namespace vellumark::desktop
