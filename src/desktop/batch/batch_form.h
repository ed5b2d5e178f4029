#pragma once

#include "core/batch/adjust.h"
#include "core/batch/leave.h"
#include "core/batch/record.h"
#include "core/batch/store.h"
#include "desktop/batch/batch_window_dialogs.h"
#include "desktop/batch/weigh_bench.h"
#include "desktop/kit/window.h"

class QBoxLayout;
class QTabWidget;
class QVBoxLayout;

namespace vellumark::desktop {

class FiguresPanel;
class JobPanel;
class NotesPanel;
class RecyclePanel;
class RowsPanel;

/// The Batch Window: a formula and a quantity become the lines that are weighed, recycled ink first. It is cleared,
/// holds a new Batch, or a saved one. Opened with {"BatchNo", number} it goes to that Batch, with {"Color_Name", name}
/// it begins one of that formula.
class BatchForm : public Window, private WeighBench {
  Q_OBJECT

 public:
  explicit BatchForm(WindowList& windowList);

  void OnOpen(const Arguments& arguments) override;
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool MayClose() override;
  /// A recipe is on screen: calculated and not saved, or a saved Batch whose ingredients are held back.
  bool InEdit() const override { return record_.state != BatchState::None; }
  bool UsesFormula(std::string_view name) const override { return vellumark::UsesFormula(record_.work, name); }

  const BatchRecord& Record() const { return record_; }
  /// What the user may see, after another one has logged in.
  void UpdateUserPriviledges();

 public Q_SLOTS:
  void cmdRecycle_Click() { Calculate(true); }
  void cmdMix_Click() { Calculate(false); }
  void cmdSave_Click() override;
  void cmdSaveAndHold_Click();
  void cmdCancel_Click();
  void cmdNext_Click();
  void cmdPrevious_Click();
  void cmdRecent_Click();
  void cmdSettings_Click();
  void cmdDelete_Click() override;
  void cmdPrint_Click() override;
  void cmdPrintRecList_Click();
  /// The containers of the Batch on screen, as it is on file, or of the one that was saved last here.
  void cmdPrintLabel_Click();
  void cmdWeigh_Click();
  void cmdDispense_Click();
  /// The reports about Batches.
  void cmdPrintMultiple_Click();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  // Building (batch_form_build.cpp)
  QWidget* BuildHead(Form& form);
  void BuildMiddle(Form& form);
  void BuildSide(Form& form, QWidget& inside);
  QWidget* BuildButtons(Form& form);
  void Listen();
  void SetButtonAction();

  // Acts on the rows (batch_form_rows.cpp)
  void AmountClicked(int row);
  void AdjustMix(std::size_t row);
  void AdjustBasic(std::size_t row);
  void AdjustAddition(std::size_t row);
  void NameClicked(int row);
  void LotsClicked(int row);
  void AddAdditions();
  /// What an over-pour changed, when that is to be printed.
  void PrintChange(const Overpour& poured);
  void TakeFromList(const std::string& name);
  /// Saves and clears the Batch, then opens the window of stock on that colour.
  void SaveThenAdjustInventory(ColorKind kind, const std::string& name);
  void FocusNextLot(std::size_t from);
  void FocusLotReminder();

  // Weighing (batch_form_weigh.cpp)
  std::optional<WeighTicket> NextRow(std::optional<std::size_t> wanted) override;
  std::size_t RowsLeft() const override;
  bool Stands(const WeighTicket& ticket) const override { return StillStands(record_, ticket); }
  bool TakeWeight(const WeighTicket& ticket, double weight) override;
  void WeighingEnds() override;

  void Calculate(bool recycle);
  void FocusAfterCalculation();
  void BeginWith(const std::string& quantity, const std::string& job);
  bool EnterName();
  void EnterUnit(int index);
  /// Everything that was typed and not left yet; false after a refusal was shown.
  bool FieldsEntered();
  /// Shows a refusal; what the operator declined needs no word.
  template <class T>
  bool Took(const Result<T>& result);
  /// Goes to another Batch or none by `act`, a way out of the core.
  template <class Act>
  void Go(const Act& act);
  void FindTyped();

  void Show();
  void ShowArrived();
  QString StateText() const;
  std::int32_t LabelledBatch() const { return record_.key != 0 ? record_.BatchNo : savedLast_; }
  bool IsStale() const { return record_.work.Rows.empty() || record_.work.QuantityChanged; }

  BatchRecord record_;
  BatchWindowDialogs dialogs_;
  std::int32_t savedLast_ = 0;  ///< number of the Batch; 0 before the first
  bool showing_ = false;
  std::optional<std::size_t> weighFrom_;  // the row from which the focus went to the command

  QBoxLayout* head_ = nullptr;
  QBoxLayout* which_ = nullptr;  ///< Batch this is, and the ways to others
  QVBoxLayout* side_ = nullptr;
  NameBox* name_ = nullptr;
  NumberField* quantity_ = nullptr;
  ComboField* unit_ = nullptr;
  TextField* batchNo_ = nullptr;
  CommandButton* recycle_ = nullptr;
  CommandButton* mix_ = nullptr;
  RowsPanel* rows_ = nullptr;
  QTabWidget* tabs_ = nullptr;
  RecyclePanel* recycleList_ = nullptr;
  FiguresPanel* figures_ = nullptr;
  NotesPanel* notes_ = nullptr;
  JobPanel* job_ = nullptr;
  QLabel* state_ = nullptr;
  CheckField* complete_ = nullptr;
  CommandButton* save_ = nullptr;
  CommandButton* hold_ = nullptr;
  CommandButton* cancel_ = nullptr;
  CommandButton* next_ = nullptr;
  CommandButton* previous_ = nullptr;
  CommandButton* recent_ = nullptr;
  CommandButton* settings_ = nullptr;
  CommandButton* delete_ = nullptr;
  CommandButton* print_ = nullptr;
  CommandButton* printRecList_ = nullptr;
  CommandButton* label_ = nullptr;
  CommandButton* weigh_ = nullptr;
  CommandButton* dispense_ = nullptr;
};

}  // namespace vellumark::desktop
