// What the Batch Window does with a row.

#include <QApplication>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/batch/bench.h"
#include "core/batch/row_lots.h"
#include "core/inventory/lot_selection.h"
#include "desktop/batch/batch_form.h"
#include "desktop/batch/batch_form_took.h"
#include "desktop/batch/recycle_panel.h"
#include "desktop/batch/rows_panel.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
void BatchForm::AmountClicked(int row) {
  if (!FieldsEntered() || row >= static_cast<int>(record_.work.Rows.size())) return;
  const auto place = static_cast<std::size_t>(row);
  switch (record_.work.Rows[place].kind) {
    case LineKind::Mix:
      AdjustMix(place);
      break;
    case LineKind::Basic:
      AdjustBasic(place);
      break;
    case LineKind::Addition:
      AdjustAddition(place);
      break;
  }
}

void BatchForm::AdjustMix(std::size_t row) {
  const Result<MixAdjustment> opened = OpenMixRow(session, record_, row);
  if (!Took(opened)) return;
  const auto answered =
      windows.RunDialog("AdjustMixForm", {{"Adjustment", *opened}, {"Unit", std::string(UnitName(record_.work.UMF))}});
  if (!answered) return;
  const Result<void> applied = ApplyMixRow(session, record_, row, answered->Get<MixAdjustChoice>("Choice"));
  Show();
  if (Took(applied)) rows_->FocusAmount(static_cast<int>(row));
}

void BatchForm::AdjustBasic(std::size_t row) {
  const Result<bool> opened = OpenBasicRow(session, record_, row);
  if (!Took(opened)) return;
  if (!*opened) return QApplication::beep();
  const std::string name = record_.work.Rows[row].name;
  const auto answered = windows.RunDialog("AdjustBasicForm", {{"Record", &record_}, {"Row", row}});
  Show();
  if (!answered) return;
  PrintChange(answered->Get<Overpour>("Overpour"));
  rows_->FocusAmount(static_cast<int>(row));
  // What was poured comes from somewhere, reformulated or not.
  if (session.InvLotTracking == 0) return;
  for (std::size_t i = 0; i < record_.work.Rows.size(); ++i) {
    const BatchRow& now = record_.work.Rows[i];
    if (now.kind == LineKind::Basic && now.lotLink && EqualNoCase(now.name, name))
      return LotsClicked(static_cast<int>(i));
  }
}

void BatchForm::AdjustAddition(std::size_t row) {
  const Result<bool> opened = OpenAdditionRow(session, record_, row);
  if (!Took(opened)) return;
  if (!*opened) return QApplication::beep();
  const auto answered = windows.RunDialog("AdjustAdditionForm", {{"Record", &record_}, {"Row", row}});
  Show();
  if (answered) rows_->FocusAmount(static_cast<int>(row));
}

void BatchForm::AddAdditions() {
  if (!FieldsEntered() || !Took(OpenAdditions(session, record_))) return;
  const auto answered = windows.RunDialog("AddAdditionForm", {{"Record", &record_}});
  Show();
  if (answered) rows_->FocusAmount(RowsPanel::kSlots);
}

void BatchForm::TakeFromList(const std::string& name) {
  if (!FieldsEntered()) return;
  const Result<bool> taken = TakeRecycled(session, record_, name);
  Show();
  if (!Took(taken)) return;
  if (!*taken) return QApplication::beep();
  recycleList_->GoToTop();
}

// ---- Stock

void BatchForm::NameClicked(int row) {
  if (row >= static_cast<int>(record_.work.Rows.size()) || !windows.Knows("AdjustInventoryForm")) return;
  const BatchRow& shown = record_.work.Rows[static_cast<std::size_t>(row)];
  const ColorKind kind = ColorKindOf(shown.kind);
  const std::string name = shown.name;
  // Stock does not change under a recipe that was worked out from it.
  if (ConfirmInventoryChange(session)) SaveThenAdjustInventory(kind, name);
}

void BatchForm::SaveThenAdjustInventory(ColorKind kind, const std::string& name) {
  cmdSave_Click();
  if (record_.state == BatchState::Edit) cmdCancel_Click();
  if (record_.state != BatchState::None) return;
  windows.OpenForm("AdjustInventoryForm", {{"FindRecord", name}, {"Kind", kind}});
}

void BatchForm::LotsClicked(int row) {
  const auto place = static_cast<std::size_t>(row);
  if (!FieldsEntered() || place >= record_.work.Rows.size() || !windows.Knows("BatchLotInvSelector")) return;
  if (!Took(OpenRowLots(session, record_, place))) return;
  const BatchRow& shown = record_.work.Rows[place];
  const LineKind kind = shown.kind;
  const std::string name = shown.name;
  const auto answered = windows.RunDialog("BatchLotInvSelector", {{"IngName", name},
                                                                  {"Kind", kind},
                                                                  {"IngQty", LotNeed(session, record_, place)},
                                                                  {"Unit", record_.work.UMF},
                                                                  {"Selection", RowLots(record_, place)},
                                                                  {"Withheld", WithheldFrom(session, record_, place)}});
  if (!answered) return;
  Result<void> chosen = SetRowLots(session, record_, place, answered->Get<LotSelection>("Selection"));
  if (chosen && answered->Has("OldestFirst")) chosen = TakeOldestLots(session, record_);
  Show();
  if (!Took(chosen)) return;
  FocusNextLot(place);
  if (answered->Has("AdjustInventory") && answered->Get<bool>("AdjustInventory"))
    SaveThenAdjustInventory(ColorKindOf(kind), name);
}

// The next row whose lots are still to be chosen has the focus; once all are, the job.
void BatchForm::FocusNextLot(std::size_t from) {
  const std::size_t count = record_.work.Rows.size();
  for (std::size_t step = 0; step < count; ++step) {
    const std::size_t row = (from + step) % count;
    if (!record_.work.Rows[row].lotLink || RowLots(record_, row).CompleteFor(LotNeed(session, record_, row))) continue;
    rows_->FocusLot(static_cast<int>(row));
    return;
  }
  FocusField("JobNumber");
}

}  // namespace vellumark::desktop
