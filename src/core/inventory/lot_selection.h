#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/refusal.h"
#include "core/datafile/line_kind.h"
#include "core/inventory/lots.h"

namespace vellumark {

/// What a line takes from one lot, or from Unlotted Inventory (`LotRefID` 0).
struct LotUse {
  std::int32_t LotRefID = 0;
  std::string LotNumber{};
  std::string LotLoc{};
  std::string LotContID{};
  std::optional<DateTime> LotDate{};
  float LotQty = 0;     ///< taken, in the Batch's unit, three decimals
  float LotPrice = 0;   ///< per inventory unit
  bool Remove = false;  ///< what is left of the lot afterwards is written off
  bool operator==(const LotUse&) const = default;
};

/// Where a line's quantity comes from, in the order of choosing.
struct LotSelection {
  std::vector<LotUse> uses;

  /// Sum of what is taken, three decimals.
  float Used() const;
  /// True when at least the need is placed. More may be: an operator may empty a container.
  bool CompleteFor(float need) const;
  bool operator==(const LotSelection&) const = default;
};

/// A row of the selector's list. Quantities in the Batch's unit, three decimals.
struct LotSelectionRow {
  LotUse lot;            ///< its `LotQty` is what the row gives, 0 of an unchecked one
  float InvQty = 0;      ///< in stock
  bool checked = false;  ///< it gives something

  /// The most that can be taken; nothing from stock below zero.
  float Holds() const { return InvQty > 0 ? InvQty : 0; }
};

/// What `BatchLotInvSelector` works on: where one line of a Batch takes its quantity from. Nothing is chosen by itself
/// and nothing is written; a Batch posts the selection when it is saved.
struct LotSelectionWork {
  std::string IngName;
  LineKind kind = LineKind::Basic;
  float IngQty = 0;  ///< the need, in the Batch's unit
  int unit = 1;      ///< of the Batch
  /// Unlotted Inventory first, then the lots by `LotNumber`; a Batch cannot consume those on consignment.
  std::vector<LotSelectionRow> rows;
  std::vector<std::size_t> order;  ///< the checked rows as they were checked

  float Used() const;
  /// What is still to be placed; when more is taken than needed, how much more.
  float Balance() const;
  /// What is still to be placed, 0 when nothing is.
  float ToPlace() const;

  /// Takes stock against what is still to be placed; false, and the row stays unchecked, when there is nothing to place
  /// or nothing in stock.
  bool CheckRow(std::size_t row);
  void UncheckRow(std::size_t row);
  /// What `AdjustInv` offers for a row: the smaller of what is to be placed and what is in stock, 0 for a checked one.
  float SuggestAdjust(std::size_t row) const;
  /// Adds the number typed to what the row gives. Refused: no number, below 0 or above what the row holds.
  Result<void> UpdateRow(std::size_t row, std::string_view adjust);
  /// Writes off what is left of the row's lot. Without meaning for the first row, which stays "No".
  void SetRemove(std::size_t row, bool remove);
  /// Asks first; false when the answer was No.
  bool DeselectAll(const Session& session);

  LotSelection Selection() const;
};

/// Stock that a line is not offered, because the open Batch itself made it.
struct LotWithheld {
  float unlotted = 0;         ///< in the Batch's unit
  std::int32_t LotRefID = 0;  ///< a whole lot; 0 for none
};

/// The list of a line with its earlier selection marked again: what shrank meanwhile gives what is there, and what is
/// gone or withheld is left out. Refused when an addition has brought the need to nothing.
Result<LotSelectionWork> LoadLotSelection(const Session& session, std::string_view name, LineKind kind, float need,
                                          int unit, const LotSelection& earlier = {}, const LotWithheld& withheld = {});

/// "Cancel without saving changes?"
bool ConfirmCancelLotSelection(const Session& session);
/// Whether the Batch is to be saved with this selection so that stock can be put right now; No keeps selecting.
bool ConfirmInventoryChange(const Session& session);

}  // namespace vellumark
