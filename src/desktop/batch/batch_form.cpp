#include "desktop/batch/batch_form.h"

#include <QApplication>
#include <QDate>
#include <QKeyEvent>
#include <QLocale>
#include <QStyle>
#include <QTabWidget>
#include <algorithm>

#include "core/base/text.h"
#include "core/batch/bench.h"
#include "core/batch/jobs.h"
#include "core/colors/names.h"
#include "core/session/settings.h"
#include "desktop/batch/batch_form_took.h"
#include "desktop/batch/figures_panel.h"
#include "desktop/batch/job_panel.h"
#include "desktop/batch/notes_panel.h"
#include "desktop/batch/recycle_panel.h"
#include "desktop/batch/rows_panel.h"
#include "desktop/kit/other_databases.h"
#include "desktop/kit/print_label.h"
#include "desktop/kit/print_sheet.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr const char* kNameField = "cmbColorName";
constexpr const char* kQuantityField = "txtQuantity";
constexpr int kNotesTab = 2;

void SetPrimary(QWidget& button, bool primary) {
  if (button.property("primary").toBool() == primary) return;
  button.setProperty("primary", primary);
  button.style()->unpolish(&button);
  button.style()->polish(&button);
  button.update();
}

Result<bool> HasEnded(const Result<SaveEnd>& end) {
  if (!end) return std::unexpected(end.error());
  return *end != SaveEnd::Stays;
}

/// Remembers where the operator wanted to go back to: the lot number, or the lots of a line.
class WatchedDialogs final : public BatchDialogs {
 public:
  explicit WatchedDialogs(BatchDialogs& inner) : inner_(inner) {}
  LotReminderAnswer ShowLotNumReminder() override {
    const LotReminderAnswer answer = inner_.ShowLotNumReminder();
    toLotNumber = answer.returnToBatch;
    return answer;
  }
  std::optional<ModifiedBatchChoice> ShowSaveModifiedBatch(Session& session, const BatchRecord& record) override {
    return inner_.ShowSaveModifiedBatch(session, record);
  }
  bool ShowShortStock(Session& session, const std::vector<ShortStock>& lines) override {
    const bool goesOn = inner_.ShowShortStock(session, lines);
    const auto inLots = std::ranges::find_if(lines, [](const ShortStock& line) { return line.inLots > 0; });
    if (!goesOn && inLots != lines.end()) lotsOfRow = static_cast<int>(inLots->row);
    return goesOn;
  }
  bool toLotNumber = false;
  std::optional<int> lotsOfRow;

 private:
  BatchDialogs& inner_;
};

}  // namespace

// ---- Opening and changes elsewhere

void BatchForm::OnOpen(const Arguments& arguments) {
  if (arguments.Has("BatchNo")) {
    const auto number = static_cast<std::int32_t>(arguments.Number("BatchNo"));
    if (record_.state == BatchState::Edit && record_.BatchNo == number) return;
    Go([&](BatchDialogs& dialogs) { return FindBatch(session, record_, dialogs, number); });
  } else if (arguments.Has("Color_Name") && record_.state == BatchState::None) {
    name_->SetText(arguments.Text("Color_Name"));
    if (!EnterName()) return;
    FocusField(kQuantityField);
    if (arguments.Has("Quantity")) BeginWith(arguments.Text("Quantity"), arguments.Text("JobNumber"));
  }
}

// Quantity and job as another window has worked them out: calculated at once, so that the job can be entered.
void BatchForm::BeginWith(const std::string& quantity, const std::string& job) {
  SetQuantityText(record_.work, quantity);
  quantity_->SetText(quantity);
  Calculate(!record_.work.settings.mixByDefault);
  if (record_.state != BatchState::Add || job.empty()) return;
  const Result<void> entered = EnterJobNumber(session, record_, job);
  Show();
  Took(entered);
}

void BatchForm::OnChanges(const std::vector<Change>& changes) {
  if (std::ranges::any_of(changes, [](const Change& change) { return change.kind == Change::Kind::Settings; })) {
    record_.work.settings = ReadBatchSettings(session);
    SetButtonAction();
  }
  const std::string before = record_.work.Color_Name;
  FollowRenames(session, record_, changes);
  if (record_.work.Color_Name != before && EqualNoCase(name_->Text(), before)) name_->SetText(record_.work.Color_Name);
  // A cleared window shows the next number and the settings as they are now; a recipe on screen stays as it was worked
  // out.
  if (record_.state == BatchState::None && record_.work.Color_Name.empty() && name_->text().isEmpty() &&
      quantity_->text().isEmpty()) {
    record_ = NewBatchRecord(session);
    Show();
  } else {
    rows_->Show(record_);
    recycleList_->Show(record_.work);
    // The user, and with him what may be shown, can be another one.
    UpdateUserPriviledges();
  }
}

void BatchForm::UpdateUserPriviledges() {
  figures_->Show(record_);
  Changed();
}

void BatchForm::changeEvent(QEvent* event) {
  Window::changeEvent(event);
  if (event->type() == QEvent::ActivationChange && isActiveWindow() && figures_ != nullptr) UpdateUserPriviledges();
}

// ---- State

void BatchForm::UpdateEnabled() {
  const bool open = record_.state != BatchState::None;
  const bool begun = open || !name_->text().isEmpty() || !quantity_->text().isEmpty();
  save_->setEnabled(open);
  hold_->setEnabled(open);
  cancel_->setEnabled(begun);
  delete_->setEnabled(record_.state == BatchState::Edit);
  weigh_->setEnabled(open && windows.Knows("BatchScaleWeighForm"));
  dispense_->setEnabled(open && windows.Knows("DispenserSelector"));
  print_->setEnabled(open && CanPrint(windows));
  label_->setEnabled(LabelledBatch() != 0 && CanPrintLabels(windows));
  printRecList_->setEnabled(open && CanPrint(windows));
  recent_->setEnabled(windows.Knows("RecentBatchesForm"));
  settings_->setEnabled(windows.Knows("BatchSettingsForm"));
  complete_->setVisible(GetSetting(session, setting::BatchComplete));
  complete_->setEnabled(open);
  // The accent is on what comes next: the calculation, then the save.
  CommandButton* action = record_.work.settings.mixByDefault ? mix_ : recycle_;
  SetPrimary(*action, IsStale());
  SetPrimary(action == recycle_ ? *mix_ : *recycle_, false);
  SetPrimary(*save_, !IsStale());
  state_->setText(StateText());
}

QString BatchForm::StateText() const {
  if (record_.work.QuantityChanged) return tr("Quantity changed: Recycle (F2) or Mix (F3)");
  switch (record_.state) {
    case BatchState::Add:
      return tr("New Batch");
    case BatchState::Edit: {
      if (!record_.formulaUnchanged) return tr("Formula changed or deleted: to be looked at only");
      if (!record_.Date_Entered) return tr("Saved Batch");
      const DateTime& date = *record_.Date_Entered;
      return tr("Batch of %1").arg(QLocale().toString(QDate(date.year, date.month, date.day), QLocale::ShortFormat));
    }
    case BatchState::None:
      break;
  }
  return {};
}

void BatchForm::Show() {
  showing_ = true;
  const BatchWork& work = record_.work;
  if (!EqualNoCase(name_->Text(), work.Color_Name)) name_->SetText(work.Color_Name);
  name_->setReadOnly(record_.state == BatchState::Edit);
  quantity_->setReadOnly(!TakesChanges(session, record_));
  if (quantity_->Text() != work.QuantityText) quantity_->SetText(work.QuantityText);
  unit_->setCurrentIndex(work.UMF - 1);
  batchNo_->SetText(BatchNoText(record_.BatchNo));
  complete_->setChecked(record_.Complete);
  rows_->Show(record_);
  recycleList_->Show(work);
  job_->Show();
  figures_->Show(record_);
  notes_->Show();
  // What the formula has to say must not be overlooked behind another page.
  tabs_->setTabText(kNotesTab, work.formula.Notes.empty() ? tr("Notes") : tr("Notes %1").arg(QChar(0x2022)));
  showing_ = false;
  Changed();
}

// ---- What is made

bool BatchForm::EnterName() {
  if (record_.state == BatchState::Edit) return true;
  const std::string typed = name_->Name();
  if (typed.empty() || EqualNoCase(typed, record_.work.Color_Name)) {
    name_->SetText(record_.work.Color_Name);
    return true;
  }
  const Result<void> entered = EnterBatchColor(session, record_, typed);
  const std::string name = ReadName(session, typed);
  if (!entered && OfferOtherDatabases(windows, name, {ColorKind::Mix}, "BatchForm", {{"Color_Name", name}})) {
    name_->SetText(record_.work.Color_Name);
    return false;
  }
  if (!Took(entered)) return false;
  Show();
  return true;
}

void BatchForm::EnterUnit(int index) {
  if (showing_) return;
  const Result<void> entered = EnterBatchUnit(session, record_, index + 1);
  Show();
  if (Took(entered)) FocusField(kQuantityField);
}

bool BatchForm::FieldsEntered() {
  return EnterName() && job_->Enter();
}

void BatchForm::Calculate(bool recycle) {
  if (!FieldsEntered()) return;
  if (record_.work.Color_Name.empty()) {
    QApplication::beep();
    FocusField(kNameField);
    return;
  }
  rows_->ShowTitle(tr("Calculating Batch ..."));
  const Result<bool> done = recycle ? RecycleBatch(session, record_) : MixBatch(session, record_);
  Show();
  if (!Took(done)) return;
  if (!*done) {
    FocusField(kQuantityField);
    return;
  }
  if (recycle) recycleList_->ShowRecycled();
  for (int i = 0; i < record_.work.zeroRows; ++i) QApplication::beep();
  FocusAfterCalculation();
}

void BatchForm::FocusAfterCalculation() {
  // With lots there is something to choose for each row; without, the job comes next.
  if (session.InvLotTracking != 0) {
    FocusNextLot(0);
  } else {
    FocusField("JobNumber");
  }
}

bool BatchForm::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return Window::eventFilter(watched, event);
  const auto& key = *static_cast<QKeyEvent*>(event);
  const bool enter = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
  if ((key.modifiers() & ~Qt::KeypadModifier) != 0 || (!enter && key.key() != Qt::Key_Tab)) return false;
  if (watched == batchNo_ && enter) {
    FindTyped();
    return true;
  }
  // Tab goes by an empty quantity.
  if (watched != quantity_ || (!enter && quantity_->text().isEmpty())) return false;
  CommandButton* action = record_.work.settings.mixByDefault ? mix_ : recycle_;
  if (IsStale()) {
    Calculate(action == recycle_);
  } else {
    action->setFocus(Qt::TabFocusReason);
  }
  return true;
}

// ---- Ways out

template <class Act>
void BatchForm::Go(const Act& act) {
  if (!FieldsEntered()) return;
  WatchedDialogs dialogs(dialogs_);
  const auto gone = act(dialogs);
  Show();
  if (!Took(gone)) {
    // The fields that are missing stand in a window of their own.
    if (gone.error().field.starts_with("UD_")) FocusField("cmdMoreData");
    return;
  }
  if (!*gone) {
    if (dialogs.toLotNumber) FocusLotReminder();
    if (dialogs.lotsOfRow) LotsClicked(*dialogs.lotsOfRow);
    return;
  }
  ShowArrived();
}

// What the reminder missed: the number of the lot that is made, or the lots of a line.
void BatchForm::FocusLotReminder() {
  if (record_.fields.LotNumber.empty()) {
    FocusField("LotNumber");
  } else {
    FocusNextLot(0);
  }
}

void BatchForm::ShowArrived() {
  name_->SetText(record_.work.Color_Name);
  tabs_->setCurrentIndex(0);
  FocusField(record_.state == BatchState::Edit ? kQuantityField : kNameField);
}

void BatchForm::cmdSave_Click() {
  const std::int32_t batchNo = record_.BatchNo;
  Go([&](BatchDialogs& dialogs) -> Result<bool> {
    const Result<bool> ended = HasEnded(SaveBatch(session, record_, dialogs));
    if (ended && *ended) savedLast_ = batchNo;
    return ended;
  });
}

void BatchForm::cmdSaveAndHold_Click() {
  Go([this](BatchDialogs& dialogs) -> Result<bool> { return HasEnded(SaveAndHoldBatch(session, record_, dialogs)); });
}

void BatchForm::cmdCancel_Click() {
  // Whatever was typed is given up, so none of it is checked.
  const Result<bool> gone = CancelBatch(session, record_);
  if (gone && *gone) {
    showing_ = true;
    name_->SetText("");
    quantity_->SetText("");
    showing_ = false;
  }
  Show();
  if (Took(gone) && *gone) ShowArrived();
}

void BatchForm::cmdNext_Click() {
  Go([this](BatchDialogs& dialogs) { return NextBatch(session, record_, dialogs); });
}

void BatchForm::cmdPrevious_Click() {
  Go([this](BatchDialogs& dialogs) { return PreviousBatch(session, record_, dialogs); });
}

void BatchForm::cmdDelete_Click() {
  Go([this](BatchDialogs& dialogs) { return DeleteBatch(session, record_, dialogs); });
}

void BatchForm::cmdRecent_Click() {
  const auto chosen = windows.RunDialog("RecentBatchesForm");
  if (!chosen) return;
  const auto number = static_cast<std::int32_t>(chosen->Number("BatchNo"));
  Go([&](BatchDialogs& dialogs) { return FindBatch(session, record_, dialogs, number); });
}

void BatchForm::FindTyped() {
  const int number = LeadingInteger(batchNo_->Text());
  Go([&](BatchDialogs& dialogs) { return FindBatch(session, record_, dialogs, number); });
}

void BatchForm::cmdSettings_Click() {
  windows.RunDialog("BatchSettingsForm");
}

bool BatchForm::MayClose() {
  if (!windows.CloseForm("BatchScaleWeighForm")) return false;
  // A name that was typed and not entered is no Batch yet; it goes with the window, whether it is known or not.
  if (name_->Text() != record_.work.Color_Name) name_->SetText(record_.work.Color_Name);
  if (!job_->Enter()) return false;
  try {
    WatchedDialogs dialogs(dialogs_);
    const Result<bool> gone = CloseBatch(session, record_, dialogs);
    if (!gone || !*gone) Show();
    if (!Took(gone)) return false;
    if (!*gone && dialogs.toLotNumber) FocusLotReminder();
    if (!*gone && dialogs.lotsOfRow) LotsClicked(*dialogs.lotsOfRow);
    return *gone;
  } catch (const Failure& failure) {
    // The window stays, and with it the Batch whose ingredients it holds.
    session.prompt.Tell(failure.subject, failure.cause, vellumark::Icon::Critical);
    return false;
  }
}

}  // namespace vellumark::desktop
