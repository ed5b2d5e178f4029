#pragma once

#include <optional>
#include <string>

#include "core/base/number.h"
#include "core/base/table.h"
#include "core/datafile/engine.h"
#include "core/reports/definition.h"

namespace vellumark {

/// What a lot gave to a Batch, or what it holds, as reports print it.
struct ReportLot {
  std::string LotNumber;
  std::string LotLoc;
  std::string LotContID;
  std::optional<DateTime> LotDate;
  std::int64_t LotQty = 0;  ///< thousandths of the inventory unit
  std::int64_t price = 0;   ///< in units of DecimalPlaces
  std::int64_t cost = 0;    ///< quantity times price, the same
};

constexpr std::string_view kLotColumns = "LotNumber, LotLoc, LotContID, LotDate, LotQty, LotPrice";
constexpr int kLotColumnCount = 6;

/// Thousandths times a price of so many decimals, rounded to these decimals.
inline std::int64_t CostOfQty(std::int64_t thousandths, std::int64_t price, int decimals) {
  return WholeUnits(OfWholeUnits(thousandths, 3) * OfWholeUnits(price, decimals), decimals);
}

inline ReportLot ReadReportLot(const Statement& row, int first, int decimals) {
  ReportLot lot{row.Text(first), row.Text(first + 1), row.Text(first + 2), row.Date(first + 3)};
  lot.LotQty = WholeUnits(row.Single(first + 4), 3);
  lot.price = WholeUnits(row.Single(first + 5), decimals);
  lot.cost = CostOfQty(lot.LotQty, lot.price, decimals);
  return lot;
}

/// The lot columns of a record that may have one as `lot`.
template <class Record>
void AddLotColumns(TableOf<Record>& table, const ReportContext& context) {
  const int decimals = context.session.DecimalPlaces;
  const auto text = [](std::string ReportLot::*field) {
    return [field](const Record& r) { return r.lot ? TableValue((*r.lot).*field) : TableValue(); };
  };
  const auto number = [](std::int64_t ReportLot::*field, int places) {
    return [field, places](const Record& r) {
      return r.lot ? TableValue(OfWholeUnits((*r.lot).*field, places)) : TableValue();
    };
  };
  table.Add("LotNo", text(&ReportLot::LotNumber), "Lot #", Format::Text)
      .Add("LotLoc", text(&ReportLot::LotLoc), "Lot Location", Format::Text)
      .Add("LotContID", text(&ReportLot::LotContID), "Lot Cont. ID", Format::Text)
      .Add(
          "LotDate", [](const Record& r) { return r.lot ? r.lot->LotDate : std::nullopt; }, "Lot Date", Format::Date)
      .Add("LotQty", number(&ReportLot::LotQty, 3), context.InUnit("Lot Qty."), Format::Amount)
      .Sum()
      .Add("LotPrice", number(&ReportLot::price, decimals), context.InMoney("Lot Price"), Format::Money, decimals)
      .Add("LotCost", number(&ReportLot::cost, decimals), context.InMoney("Total Cost"), Format::Money, decimals)
      .Sum();
}

}  // namespace vellumark
