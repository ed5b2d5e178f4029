#include "desktop/colors/basic_colors_form.h"

#include "core/base/text.h"
#include "core/colors/attachments.h"
#include "core/colors/rollup.h"
#include "core/inventory/color_stock.h"
#include "desktop/colors/figure_fields.h"
#include "desktop/colors/measurements_panel.h"
#include "desktop/colors/swatch_fields.h"
#include "desktop/inventory/inventory_panel.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

BasicColorsForm::BasicColorsForm(WindowList& windowList)
    : ColorForm(windowList, "BasicColorsForm", tr("Basics / Additives"), ColorKind::Basic,
                tr("Basic Color Window - Inventory Low")),
      bound_(BasicFields(), ColorFigures(*this, [this] { return work_.has_value(); })) {
  setWindowIcon(Icon("basic"));
  Form form(*this);
  BuildName(form);
  form.Row(tr("&Name"), {name_, ink_, state_, low_, multiple_});
  TabSet tabs = form.Tabs("TabBasic");
  BuildColorPage(tabs.Page(tr("Color"), "TabColor"));
  inventory_ = new InventoryPanel(*this, tabs);
  measurements_ = new MeasurementsPanel(*this, tabs, ColorKind::Basic);
  form.Buttons({save_ = form.Button("cmdSave", tr("&Save")), cancel_ = form.Button("cmdCancel", tr("Cancel")),
                form.Button("cmdPrevious", tr("Previous"), Qt::Key_PageUp),
                form.Button("cmdNext", tr("Next"), Qt::Key_PageDown), FindButton(form),
                rename_ = form.Button("cmdRename", tr("Rename"), Qt::Key_F6),
                whereUsed_ = form.Button("cmdWhereUsed", tr("Where used"), Qt::Key_F7),
                delete_ = form.Button("cmdDelete", tr("Delete")), print_ = form.Button("cmdPrint", tr("Print")),
                label_ = form.Button("cmdPrintLabel", tr("Label"), Qt::CTRL | Qt::Key_L)});
  Listen();
  connect(additive_, &QCheckBox::clicked, this, &BasicColorsForm::AdditiveClicked);
  connect(figures_->Cost(), &QLineEdit::textChanged, this, [this] { inventory_->TakeCosts(figures_->Cost()->Text()); });
  OnActivation(*this, [this] {
    StandBackForBatch(*this, tr("Any attempt to change data on this window can impact the Batch Window."));
  });
  Clear();
}

void BasicColorsForm::BuildColorPage(Form form) {
  std::vector<Form> columns = form.Columns(2);
  BuildFigures(columns[0]);
  BuildSwatch(columns[1]);
  form.Heading(tr("Notes"));
  NoteField* notes = bound_.Bind("Notes", form.Note("txtNotes", 3));
  form.Wide(notes, 1);
  notes->setAccessibleName(tr("Notes"));
}

void BasicColorsForm::BuildFigures(Form& form) {
  additive_ = form.Check("chkAdd", tr("&Additive"));
  figures_ = new FigureFields(*this, form, bound_, "Additive", additive_, {});
  figures_->Cost()->setToolTip(tr("Use a Costs report to edit Purchase Cost for multiple colors."));
}

void BasicColorsForm::BuildSwatch(Form& form) {
  swatch_ = new SwatchFields(*this, form, *ink_);
  form.Row(tr("Color guide"), guide_ = form.Label("lblGuide"));
  form.Row(tr("Entered"), entered_ = form.Label("lblDateEntered"));
  form.Row(tr("Last consumed"), consumed_ = form.Label("lblLastConsumed"));
}

// ---- State

bool BasicColorsForm::InEdit() const {
  return work_ && (work_->key == 0 || IsDirty() || PanelsChanged());
}

std::optional<BasicColorsForm::Shown> BasicColorsForm::OnScreen() const {
  if (!work_) return std::nullopt;
  return Shown{work_->Color_Name, work_->key != 0};
}

void BasicColorsForm::UpdateEnabled() {
  EnableCommands(isLow_);
}

Result<NameEntry> BasicColorsForm::Enter(const std::string& typed) {
  return EnterBasicName(session, typed);
}

// ---- Showing

void BasicColorsForm::Clear() {
  work_.reset();
  isLow_ = false;
  name_->SetText("");
  bound_.Clear();
  guide_->clear();
  swatch_->Clear();
  entered_->clear();
  consumed_->clear();
  inventory_->Reset();
  measurements_->Clear();
  MarkClean();
}

void BasicColorsForm::ShowColor(const std::string& name) {
  const auto color = ReadBasic(session, name);
  Clear();
  if (!color) return;
  work_ = LoadBasicWork(session, *color);
  name_->SetText(color->Color_Name);
  ShowFields(*work_, color->book, false);
  ShowStock(*color);
  inventory_->Load(ColorKind::Basic, color->Color_Name);
  measurements_->Load(color->Color_Name);
  MarkClean();
}

void BasicColorsForm::ShowNew(const std::string& name) {
  Clear();
  BasicColor color;
  color.Color_Name = name;
  color.Date_Entered = session.clock.Today();
  work_ = NewBasicWork(session, name);
  name_->SetText(name);
  ShowFields(*work_, BookDataOfBasic(session, name), false);
  ShowStock(color);
  inventory_->Begin(ColorKind::Basic, name);
  measurements_->Load(name);
  MarkClean();
}

void BasicColorsForm::ShowFields(const BasicWork& work, const BookData& book, bool keepTyped) {
  bound_.Put(work, keepTyped);
  swatch_->Show(book, keepTyped);
  guide_->setText(book.Color_Guide.empty() ? QString::fromUtf8("–") : Q(GuideCaption(work.Color_Name, book)));
}

void BasicColorsForm::ShowStock(const BasicColor& color) {
  isLow_ = IsBelowReorder(session, ColorKind::Basic, color.Color_Name);
  entered_->setText(DateText(color.Date_Entered));
  consumed_->setText(DateText(color.LastConsumed));
}

// ---- Changes made elsewhere

void BasicColorsForm::OnChanges(const std::vector<Change>& changes) {
  bool mine = false;
  for (const Change& change : changes) {
    if (change.kind == Change::Kind::Settings) {
      figures_->Relabel();
      inventory_->Relabel();
      mine = work_ && work_->key != 0;
    }
    if (!work_ || work_->key == 0 || change.kind != Change::Kind::Basic ||
        !EqualNoCase(change.database, session.CurrentDatabase))
      continue;
    const bool isShown = EqualNoCase(change.name, work_->Color_Name);
    if (isShown && change.what == Change::What::Renamed) work_->Color_Name = change.newName;
    mine = mine || isShown || change.what == Change::What::All || EqualNoCase(change.newName, work_->Color_Name);
  }
  if (mine) Reload();
}

void BasicColorsForm::ExternalUpdateBasicColor(const std::string& name) {
  if (work_ && !InEdit() && EqualNoCase(name, work_->Color_Name)) Reload();
}

void BasicColorsForm::Reload() {
  const auto color = ReadBasic(session, work_->Color_Name);
  if (color) {
    work_ = LoadBasicWork(session, *color);
    name_->SetText(color->Color_Name);
    ShowFields(*work_, color->book, true);
    ShowStock(*color);
    inventory_->Refresh(color->Color_Name);
    measurements_->Refresh(color->Color_Name);
  } else if (InEdit()) {
    // Deleted under the operator's hands: what was typed can be saved as a new colour.
    work_->key = 0;
    inventory_->Detach();
  } else {
    ClearBehind();
  }
  Changed();
}

// ---- Commands

bool BasicColorsForm::Store() {
  if (!MayLeaveEntries()) return false;
  bound_.Take(*work_);
  ColorAttachments attachments;
  if (measurements_->IsChanged()) attachments.measurements = measurements_->Readings();
  swatch_->Take(attachments);
  BasicWork saved = *work_;
  if (!Accepted(SaveWithStock(
          session, [&] { return SaveBasic(session, saved, attachments); }, inventory_->Work())))
    return false;
  work_ = std::move(saved);
  return true;
}

void BasicColorsForm::cmdSave_Click() {
  if (!work_ || !Store()) return;
  StartOver();
}

void BasicColorsForm::cmdDelete_Click() {
  const auto deleted = DeleteBasic(session, work_->Color_Name);
  if (deleted) {
    if (*deleted) StartOver();
    return;
  }
  const BasicDeleteRefusal& refusal = deleted.error();
  if (refusal.requiredBy.empty()) return ShowRefusal(refusal);
  const auto chosen = windows.RunDialog(
      "BasicColorUsedInMixForm", {{"Title", refusal.title}, {"Text", refusal.text}, {"Formulas", refusal.requiredBy}});
  if (chosen) windows.OpenForm("MixColorsForm", {{"FindRecord", chosen->Text("Formula")}});
}

void BasicColorsForm::cmdRename_Click() {
  if (const auto writable = RequireWritable(session); !Accepted(writable)) return;
  const auto renamed = windows.RunDialog("NewBasicNameForm", {{"Color_Name", work_->Color_Name}});
  if (!renamed) return;
  work_->Color_Name = renamed->Text("NewName");
  // A merge gives this colour up, and with it what was typed; a rename takes both along.
  if (renamed->Get<bool>("Merged")) {
    ShowColor(work_->Color_Name);
  } else {
    Reload();
  }
  name_->TakeFocus();
}

void BasicColorsForm::AdditiveClicked(bool checked) {
  if (checked || !work_ || work_->key == 0) return;
  const Result<void> free = RequireFreeOfAdditiveSets(session, work_->Color_Name);
  if (free) return;
  additive_->setChecked(true);
  ShowRefusal(free.error());
}

bool BasicColorsForm::MayClose() {
  if (InEdit()) {
    const Answer answer =
        session.prompt.Show({U8(tr("Basic / Additive - Save Information?")), U8(tr("Save changes before closing?")),
                             Buttons::YesNoCancel, vellumark::Icon::Question, Answer::Yes});
    if (answer == Answer::Cancel || (answer == Answer::Yes && !Store())) return false;
  }
  const auto wait = Wait(WaitKind::WaitingForm_NoCancel, tr("Updating Master Formulas ..."));
  RunPendingPasses(session);
  return true;
}

}  // namespace vellumark::desktop
