#include "core/inventory/lot_selection_table.h"

#include <fmt/format.h>

#include "core/base/units.h"

namespace vellumark {

TableOf<LotSelectionRow> LotSelectionColumns(int unit) {
  const auto lot = [](auto LotUse::*member) {
    return [member](const LotSelectionRow& row) { return row.lot.*member; };
  };
  TableOf<LotSelectionRow> table;
  table.Add("LotNumber", lot(&LotUse::LotNumber), "Lot Number").Width(2520);
  table.Add("LotLoc", lot(&LotUse::LotLoc), "Location").Width(1680);
  table.Add("LotContID", lot(&LotUse::LotContID), "Cont. ID").Width(1560);
  table.Add("InvQty", &LotSelectionRow::InvQty, fmt::format("Inv. ({})", UnitName(unit))).Width(1920).Large();
  table.Add("LotQty", lot(&LotUse::LotQty), fmt::format("Used ({})", UnitName(unit))).Width(1920).Large();
  table.Add("Remove", lot(&LotUse::Remove), "Delete Inv. Balance", Format::YesNo).Width(2160);
  return table;
}

}  // namespace vellumark
