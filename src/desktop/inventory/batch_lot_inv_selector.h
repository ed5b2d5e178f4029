#pragma once

#include <memory>

#include "core/inventory/lot_selection.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Where one line of a Batch takes its quantity from. Opened with {"IngName", name}, {"Kind", LineKind}, {"IngQty",
/// the need}, {"Unit", the Batch's unit} and, where there are, {"Selection", LotSelection} of before and {"Withheld",
/// LotWithheld} of what the open Batch itself made. Gives back "Selection", "AdjustInventory" when the
/// Batch is to be saved and stock put right first, and "OldestFirst" when all lines are to take the oldest lots.
class BatchLotInvSelector : public Dialog {
  Q_OBJECT

 public:
  BatchLotInvSelector(WindowList& windowList, QWidget* owner);
  ~BatchLotInvSelector() override;

  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;
  bool MayClose() override;

 public Q_SLOTS:
  void cmdSave_Click();
  void cmdUpdate_Click();
  void cmdClear_Click();
  void DSelAll_Click();
  void cmdOldest_Click();
  void cmdAddLot_Click();

 private:
  class Source;
  void BuildList(Form& form);
  void ShowRow(int row);
  void ShowWork();
  void Toggle(int row);
  void TakeRow(int row);
  void RemoveClicked(bool checked);
  bool eventFilter(QObject* watched, QEvent* event) override;
  /// The first field would have the focus; the work is done in the list.
  void showEvent(QShowEvent* event) override;

  LotSelectionWork work_;
  bool isOpen_ = false;  ///< a line is on screen
  std::shared_ptr<Source> source_;

  ValueField* name_;
  QLabel* kind_;
  ValueField* need_;
  QLabel* unit_;
  ValueField* balance_;
  Grid* list_;
  NumberField* adjust_;
  CheckField* remove_;
  CommandButton* update_;
  CommandButton* clear_;
};

}  // namespace vellumark::desktop
