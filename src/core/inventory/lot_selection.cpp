#include "core/inventory/lot_selection.h"

#include <algorithm>
#include <cmath>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"

namespace vellumark {
namespace {

// Stock as the Batch measures it.
float InUnit(const Session& session, int unit, float quantity) {
  return RoundSingle(static_cast<double>(quantity) * static_cast<double>(UnitFactor(session.UMI, unit)), 3);
}

std::optional<std::size_t> FindRef(const std::vector<LotSelectionRow>& rows, std::int32_t ref) {
  const auto found =
      std::find_if(rows.begin(), rows.end(), [ref](const LotSelectionRow& row) { return row.lot.LotRefID == ref; });
  if (found == rows.end()) return std::nullopt;
  return static_cast<std::size_t>(found - rows.begin());
}

std::vector<LotSelectionRow> StockRows(const Session& session, const std::string& name, ColorKind kind, int unit) {
  std::vector<LotSelectionRow> rows;
  const auto add = [&](LotUse lot, float quantity) {
    LotSelectionRow& row = rows.emplace_back();
    row.lot = std::move(lot);
    row.InvQty = InUnit(session, unit, quantity);
  };
  LotUse unlotted;
  unlotted.LotNumber = kUnlottedInv;
  unlotted.LotPrice = UnlottedPrice(session, kind, name);
  add(std::move(unlotted), UnlottedQty(session, kind, name));
  if (session.InvLotTracking != 1) return rows;
  for (LotRow& lot : LotsOf(session, kind, name)) {
    if (lot.LotConsignment) continue;
    add({lot.LotRefID, std::move(lot.LotNumber), std::move(lot.LotLoc), std::move(lot.LotContID), lot.LotDate, 0,
         lot.LotPrice, false},
        lot.LotQty);
  }
  return rows;
}

void Withhold(std::vector<LotSelectionRow>& rows, const LotWithheld& withheld) {
  rows.front().InvQty = RoundSingle(RoundTo(rows.front().InvQty, 3) - RoundTo(withheld.unlotted, 3), 3);
  if (const auto lot = withheld.LotRefID > 0 ? FindRef(rows, withheld.LotRefID) : std::nullopt)
    rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(*lot));
}

void MarkEarlier(LotSelectionWork& work, const LotSelection& earlier) {
  for (const LotUse& use : earlier.uses) {
    const auto place = FindRef(work.rows, use.LotRefID);
    if (!place) continue;
    LotSelectionRow& row = work.rows[*place];
    const float quantity = std::min(RoundSingle(use.LotQty, 3), row.Holds());
    if (row.checked || quantity <= 0) continue;
    row.lot.LotQty = quantity;
    row.lot.Remove = use.Remove && *place != 0;
    row.checked = true;
    work.order.push_back(*place);
  }
}

}  // namespace

float LotSelection::Used() const {
  double used = 0;
  for (const LotUse& use : uses) used += static_cast<double>(use.LotQty);
  return RoundSingle(used, 3);
}

bool LotSelection::CompleteFor(float need) const {
  return Used() >= RoundSingle(need, 3);
}

float LotSelectionWork::Used() const {
  double used = 0;
  for (const LotSelectionRow& row : rows) used += static_cast<double>(row.lot.LotQty);
  return RoundSingle(used, 3);
}

float LotSelectionWork::Balance() const {
  return RoundSingle(std::abs(static_cast<double>(IngQty) - static_cast<double>(Used())), 3);
}

float LotSelectionWork::ToPlace() const {
  return Used() >= IngQty ? 0 : Balance();
}

bool LotSelectionWork::CheckRow(std::size_t row) {
  LotSelectionRow& one = rows.at(row);
  if (one.checked) return true;
  const float quantity = std::min(ToPlace(), one.Holds());
  if (quantity <= 0) return false;
  one.lot.LotQty = quantity;
  one.checked = true;
  order.push_back(row);
  return true;
}

void LotSelectionWork::UncheckRow(std::size_t row) {
  LotSelectionRow& one = rows.at(row);
  one.lot.LotQty = 0;
  one.checked = false;
  std::erase(order, row);
}

float LotSelectionWork::SuggestAdjust(std::size_t row) const {
  const LotSelectionRow& one = rows.at(row);
  return one.checked ? 0 : std::min(ToPlace(), one.Holds());
}

Result<void> LotSelectionWork::UpdateRow(std::size_t row, std::string_view adjust) {
  LotSelectionRow& one = rows.at(row);
  const auto number = ParseNumber(adjust);
  if (!number)
    return Refuse(std::string(25, ' ') + "Bad Number", std::string(adjust) + " is not a number\nEnter a number",
                  "AdjustInv");
  const double wanted = static_cast<double>(one.lot.LotQty) + RoundTo(*number, 3);
  const double quantity = RoundTo(wanted, 3);
  if (quantity < 0 || quantity > RoundTo(one.Holds(), 3)) {
    const float limit = quantity < 0 ? -one.lot.LotQty : one.Holds() - one.lot.LotQty;
    return Refuse(std::string(25, ' ') + "Adjust Amount",
                  "Max adjust amount is: " + Fixed(static_cast<double>(limit), 3), "AdjustInv");
  }
  if (quantity == 0) {
    UncheckRow(row);
    return {};
  }
  one.lot.LotQty = static_cast<float>(quantity);
  if (!one.checked) order.push_back(row);
  one.checked = true;
  return {};
}

void LotSelectionWork::SetRemove(std::size_t row, bool remove) {
  if (row != 0) rows.at(row).lot.Remove = remove;
}

bool LotSelectionWork::DeselectAll(const Session& session) {
  if (!session.prompt.Ask("Lot Selections", "Deselect all Lot Selections?")) return false;
  for (std::size_t row = 0; row < rows.size(); ++row) UncheckRow(row);
  return true;
}

LotSelection LotSelectionWork::Selection() const {
  LotSelection selection;
  for (const std::size_t row : order) selection.uses.push_back(rows[row].lot);
  return selection;
}

Result<LotSelectionWork> LoadLotSelection(const Session& session, std::string_view name, LineKind kind, float need,
                                          int unit, const LotSelection& earlier, const LotWithheld& withheld) {
  LotSelectionWork work;
  work.IngName = name;
  work.kind = kind;
  work.IngQty = RoundSingle(need, 3);
  work.unit = unit;
  if (work.IngQty <= 0)
    return Refuse(std::string(40, ' ') + "Lot Selection Disabled",
                  "A negative Batch Addition has been applied to this color.\n\nIt has created a Zero Quantity for the "
                  "Ingredient.");
  work.rows = StockRows(session, work.IngName, ColorKindOf(kind), unit);
  Withhold(work.rows, withheld);
  MarkEarlier(work, earlier);
  return work;
}

bool ConfirmCancelLotSelection(const Session& session) {
  return session.prompt.Ask("Cancel Without Saving Changes?", "Cancel without saving changes?");
}

bool ConfirmInventoryChange(const Session& session) {
  return session.prompt.Ask("Adjust Inventory Confirmation",
                            "The batch must be saved and cleared before making Inventory changes\nWould you like to "
                            "change Inventory right now?\n\nYes - Change Inv.      No - Use Selections ");
}

}  // namespace vellumark
