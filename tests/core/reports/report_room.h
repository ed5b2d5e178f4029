#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/reports/build.h"
#include "core/reports/catalogue.h"
#include "core/reports/report_text.h"
#include "core/session/settings.h"
#include "support/stock_room.h"

namespace vellumark::test {

struct Line {
  std::string name;
  float quantity = 0;
  int type = 1;
};

/// An ink room whose Batches and jobs are put in row by row.
struct ReportRoom : StockRoom {
  ReportRoom() { StoreSettings(session, InitialValues(setting::Batches_UDNum_Format)); }
  void AddDatabase(const std::string& name) {
    CreateEmptyDatabase(session.File(), name);
    session.databaseList.push_back(name);
  }
  void Use(const std::string& database) { session.CurrentDatabase = database; }

  void Batch(std::int32_t number, const std::string& color, const DateTime& date, float quantity,
             const std::vector<Line>& lines, std::vector<Cell> cells = {}) {
    for (std::size_t i = 0; i < lines.size(); ++i) {
      const int n = static_cast<int>(i);
      cells.emplace_back(schema::Numbered("IngName", n), lines[i].name);
      cells.emplace_back(schema::Numbered("IngQty", n), lines[i].quantity);
      cells.emplace_back(schema::Numbered("IngType", n), lines[i].type);
    }
    cells.insert(cells.begin(), {{"BatchNo", number},
                                 {"Color_Name", color},
                                 {"Date_Entered", date},
                                 {"Quantity", quantity},
                                 {"ActualQuantity", quantity},
                                 {"UMF", 1},
                                 {"LargestAmountIndex", 0}});
    AddRow(schema::Batch, std::move(cells));
  }

  void BatchLot(std::int32_t number, const std::string& ingredient, int type, const std::string& lot, float quantity,
                float price) {
    AddRow(schema::BatchLotInv, {{"BatchNo", number},
                                 {"DateEntered", DateTime{2026, 3, 1}},
                                 {"IngName", ingredient},
                                 {"IngType", type},
                                 {"LotRefID", 1},
                                 {"LotNumber", lot},
                                 {"LotQty", quantity},
                                 {"LotPrice", price}});
  }

  void Job(const std::string& number, const std::string& database, const std::string& color, int type,
           std::int32_t item, float issued, float used, float cost, const DateTime& date,
           std::vector<Cell> cells = {}) {
    cells.insert(cells.begin(), {{"JobNumber", number},
                                 {"Database", database},
                                 {"Color_Name", color},
                                 {"ItemType", type},
                                 {"BatchNo", item},
                                 {"QtyIssued", issued},
                                 {"QtyUsed", used},
                                 {"UnitCost", cost},
                                 {"Date_Entered", date}});
    InsertRow(session.File(), schema::JobRecords, schema::JobRecords.name, cells);
    session.File().Execute("UPDATE FileInfo SET ItemNumber = 1000");
  }

  Result<BuiltReport> Try(const std::string& key, const ReportRequest& request = {}) {
    ReportWatch watch(session.progress);
    const ReportDefinition* definition = FindReport(key);
    if (definition == nullptr) throw std::logic_error("no report " + key);
    const auto context = PrepareReport(session, *definition, request, watch);
    if (!context) return std::unexpected(context.error());
    return BuildReport(*context);
  }
  BuiltReport Run(const std::string& key, ReportRequest request = {}) {
    if (!request.from && !request.range) request.range = 0;
    auto report = Try(key, request);
    if (!report) throw std::logic_error(report.error().text);
    return *std::move(report);
  }
  BuiltReport RunFor(const std::string& key, const std::string& color, ColorKind kind) {
    return Run(key, {.color = color, .kind = kind});
  }
};

inline std::size_t Place(const BuiltReport& report, const std::string& key) {
  for (std::size_t i = 0; i < report.columns.size(); ++i)
    if (report.columns[i].key == key) return i;
  throw std::logic_error("no column " + key);
}

inline std::string TextAt(const BuiltReport& report, std::size_t row, const std::string& key) {
  const std::size_t column = Place(report, key);
  return CellText(report.columns[column], report.Cell(report.order.at(row), column));
}

inline std::string TotalText(const BuiltReport& report, const std::string& key) {
  const std::size_t column = Place(report, key);
  return CellText(report.columns[column], report.Totals()[column]);
}

/// The cells of these columns of the row whose first cell is `name`, "a b c".
inline std::string RowOf(const BuiltReport& report, const std::string& name, const std::vector<std::string>& keys) {
  std::string text;
  for (std::size_t row = 0; row < report.Rows(); ++row)
    if (EqualNoCase(CellText(report.columns[0], report.Cell(row, 0)), name))
      for (const std::string& key : keys) {
        const std::size_t column = Place(report, key);
        text += (text.empty() ? "" : " ") + CellText(report.columns[column], report.Cell(row, column));
      }
  return text;
}

inline std::string TotalsOf(const BuiltReport& report, const std::vector<std::string>& keys) {
  std::string text;
  for (const std::string& key : keys) text += (text.empty() ? "" : " ") + TotalText(report, key);
  return text;
}

}  // namespace vellumark::test
