#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/reports/definition.h"
#include "core/reports/lot_columns.h"

namespace vellumark {

// Stock as reports count it: in the inventory unit, net of what an open Batch has handed back for as long as it is
// open.

struct StockLot {
  ReportLot lot;
  bool consigned = false;
};

struct StockColor {
  ColorKind kind = ColorKind::Basic;
  std::string Color_Name{};
  std::string Color_Code{};
  bool Additive = false;
  bool Recycle = true;
  std::int64_t Inventory = 0;  ///< unlotted, thousandths
  std::int64_t lotted = 0;
  std::int64_t total = 0;
  std::int64_t Reorder = 0;
  std::int64_t PurchaseCost = 0;  ///< in units of DecimalPlaces
  std::int64_t BasicCost = 0;     ///< of a formula; of a Basic Color its purchase cost
  std::int64_t VOC = 0;           ///< thousandths, as are the others
  std::int64_t BasicVOC = 0;
  std::int64_t HAP = 0;
  std::int64_t BasicHAP = 0;
  std::optional<DateTime> Date_Entered{};
  std::optional<DateTime> LastModified{};
  std::optional<DateTime> last{};  ///< last consumed, or last produced
  std::string Inv_Note{};
  std::string Notes{};
  std::vector<StockLot> lots{};                                ///< empty while Lotted Inventory is off
  std::vector<std::pair<std::string, std::int64_t>> recipe{};  ///< of a formula: names and thousandths of a part
};

/// The colours of a kind in the order of their names, with their lots, all of which one query reads.
void ForEachStockColor(const ReportContext& context, const std::string& database, ColorKind kind,
                       const std::function<bool(const StockColor&)>& take);

}  // namespace vellumark
