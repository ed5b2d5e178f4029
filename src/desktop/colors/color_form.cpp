#include "desktop/colors/color_form.h"

#include <QApplication>

#include "core/base/text.h"
#include "core/colors/attachments.h"
#include "core/colors/name_search.h"
#include "core/labels/label_subjects.h"
#include "desktop/colors/measurements_panel.h"
#include "desktop/colors/name_entry.h"
#include "desktop/colors/print_card.h"
#include "desktop/inventory/inventory_panel.h"
#include "desktop/kit/discard.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/print_label.h"
#include "desktop/kit/print_sheet.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/swatch_view.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr const char* kNameField = "cmbColorName";

NameKind NamesOf(ColorKind kind) {
  return kind == ColorKind::Basic ? NameKind::Basics : NameKind::Formulas;
}

const char* FindWindow(ColorKind kind) {
  return kind == ColorKind::Basic ? "FindBasic" : "FindMix";
}

}  // namespace

ColorForm::ColorForm(WindowList& windowList, const char* name, const QString& title, ColorKind kind,
                     const QString& lowTitle)
    : Window(windowList, name, title), kind_(kind), lowTitle_(lowTitle) {}

void ColorForm::BuildName(Form& form) {
  name_ = ColorNameBox(form, NamesOnFile(session, NamesOf(kind_)));
  ink_ = new SwatchView("imgSwatch", {48, 32});
  low_ = LowStockLink(form);
  state_ = form.Hint({}, "lblState");
  multiple_ = form.Link("cmdPrintMultiple", tr("Reports"));
}

CommandButton* ColorForm::FindButton(Form& form) {
  CommandButton* find = form.Button("cmdFind", tr("Find"), QKeySequence::Find);
  find->setVisible(windows.Knows(FindWindow(kind_)));
  return find;
}

void ColorForm::Listen() {
  connect(name_, &TextField::Left, this, &ColorForm::NameLeft);
  connect(name_, &NameBox::Picked, this, [this](const QString& picked) {
    if (!InEdit()) EnterName(U8(picked));
  });
  HintAtPantone(*name_, session);
  connect(inventory_, &InventoryPanel::Changed, this, [this] { Changed(); });
  connect(measurements_, &MeasurementsPanel::Changed, this, [this] { Changed(); });
}

// ---- State

void ColorForm::EnableCommands(bool low) {
  const auto shown = OnScreen();
  const bool stored = shown && shown->stored;
  name_->setReadOnly(InEdit());
  save_->setEnabled(shown.has_value());
  cancel_->setEnabled(shown.has_value());
  delete_->setEnabled(stored);
  rename_->setEnabled(stored);
  whereUsed_->setEnabled(stored);
  print_->setEnabled(stored && CanPrint(windows));
  label_->setEnabled(stored && CanPrintLabels(windows));
  multiple_->setEnabled(windows.Knows("ReportsForm"));
  low_->setVisible(stored && low);
  state_->setText(!shown ? QString() : !shown->stored ? tr("New") : InEdit() ? tr("Changed") : QString());
}

bool ColorForm::PanelsChanged() const {
  return inventory_->IsChanged() || measurements_->IsChanged();
}

void ColorForm::OnOpen(const Arguments& arguments) {
  if (!arguments.Has("FindRecord") || InEdit()) return;
  ShowColor(arguments.Text("FindRecord"));
}

void ColorForm::ClearBehind() {
  const QPointer<QWidget> focus = QApplication::focusWidget();
  Clear();
  if (focus != nullptr && isAncestorOf(focus)) FocusField(kNameField);
}

void ColorForm::StartOver() {
  Clear();
  FocusField(kNameField);
}

// ---- The name

void ColorForm::NameLeft(QWidget* to) {
  if (to == nullptr || !isAncestorOf(to) || LeavesNameAlone(*to) || InEdit()) return;
  if (to->objectName() == QLatin1String("cmdFind")) {
    name_->SetText("");
    return;
  }
  const std::string typed = name_->Text();
  if (const auto shown = OnScreen(); shown && EqualNoCase(typed, shown->name)) return;
  EnterName(typed);
}

void ColorForm::EnterName(const std::string& typed) {
  FollowNameEntry(*this, kNameField, Enter(typed),
                  {[this](const std::string& name) { ShowColor(name); },
                   [this](const std::string& name) { ShowNew(name); }, [this] { Clear(); }});
}

// ---- Commands

bool ColorForm::MayLeaveEntries() {
  switch (AskUnfinishedWork(session, inventory_->AdjustText(), measurements_->IsEntryFilled())) {
    case UnfinishedWork::Inventory:
      inventory_->FocusEntry();
      return false;
    case UnfinishedWork::Measurement:
      measurements_->FocusEntry();
      return false;
    case UnfinishedWork::None:
      break;
  }
  return true;
}

void ColorForm::cmdCancel_Click() {
  if (InEdit() && !MayDiscard(session)) return;
  StartOver();
}

void ColorForm::Walk(bool forward) {
  const auto shown = OnScreen();
  const std::string from = shown ? shown->name : std::string();
  if (InEdit() && !Store()) return;
  const NameKind names = NamesOf(kind_);
  const std::string to = forward ? NextName(session, names, from) : PreviousName(session, names, from);
  if (!to.empty()) return ShowColor(to);
  QApplication::beep();
  StartOver();
}

void ColorForm::cmdPrevious_Click() {
  Walk(false);
}

void ColorForm::cmdNext_Click() {
  Walk(true);
}

void ColorForm::cmdFind_Click() {
  if (windows.Knows(FindWindow(kind_))) windows.OpenForm(FindWindow(kind_));
}

void ColorForm::cmdWhereUsed_Click() {
  windows.RunDialog("WhereUsedForm", {{"Color_Name", OnScreen().value().name}, {"Kind", kind_}});
}

void ColorForm::cmdPrintMultiple_Click() {
  windows.OpenForm("ReportsForm", {{"Pane", "lstColorReports"}});
}

void ColorForm::cmdPrint_Click() {
  PrintCard(windows, kind_, OnScreen().value().name);
}

void ColorForm::cmdPrintLabel_Click() {
  if (auto label = LabelOfColor(session, kind_, OnScreen().value().name)) OpenLabelForm(windows, {*std::move(label)});
}

void ColorForm::ImgInvLow_Click() {
  session.prompt.Tell(U8(lowTitle_), U8(tr("It is time to reorder this color.")));
}

}  // namespace vellumark::desktop
