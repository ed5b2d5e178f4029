#include "core/datafile/stock_history.h"

#include <fmt/format.h>

#include <utility>

#include "core/base/number.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

constexpr std::string_view kTable = kStockHistoryTable;

// The decimal that a person reads, as a double.
double Decimal(float value) {
  return LeadingNumber(ShortestText(value));
}

void Insert(Database& file, const StockLine& line, int kind) {
  static const std::string sql = fmt::format(
      "INSERT INTO {} ({}) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12)", kTable, kStockLineFields);
  file.Prepare(sql)
      .Bind(1, line.when.ToText())
      .Bind(2, line.user)
      .Bind(3, static_cast<int>(line.event))
      .Bind(4, kind)
      .Bind(5, line.database)
      .Bind(6, line.Color_Name)
      .Bind(7, line.LotRefID)
      .Bind(8, line.LotNumber)
      .Bind(9, line.change)
      .Bind(10, line.result)
      .Bind(11, line.document)
      .Bind(12, line.reason)
      .Run();
}

StockLine Moved(StockLine line, float quantity, bool going) {
  line.change = going ? StockDifference(quantity, 0) : StockDifference(0, quantity);
  line.result = going ? 0 : quantity;
  return line;
}

// Lines for what a query finds: name, quantity, reference and number of the lot (0 and empty without one).
void AddLinesOf(Database& file, const StockLine& line, bool going, Statement& rows) {
  std::vector<StockLine> lines;
  while (rows.Step()) {
    StockLine one = Moved(line, rows.Single(1), going);
    one.Color_Name = rows.Text(0);
    one.LotRefID = static_cast<std::int32_t>(rows.Whole(2));
    one.LotNumber = rows.Text(3);
    lines.push_back(std::move(one));
  }
  for (const StockLine& one : lines) AddStockLine(file, one);
}

std::string StockOf(std::string_view database, ColorKind kind, std::string_view whereColor, std::string_view whereLot) {
  return fmt::format(
      "SELECT Color_Name, Inventory, 0, '' FROM {} WHERE Inventory <> 0 {} UNION ALL SELECT LotCName, LotQty, "
      "LotRefID, "
      "LotNumber FROM {} WHERE LotQty <> 0 {}",
      QuotedTable(database, ColorTable(kind)), whereColor, QuotedTable(database, LotTable(kind)), whereLot);
}

}  // namespace

std::string_view StockEventText(StockEvent event) {
  switch (event) {
    case StockEvent::BatchTakes:
      return "Batch";
    case StockEvent::BatchTakesAgain:
    case StockEvent::BatchRestores:
      return "Batch left unsaved";
    case StockEvent::BatchReturns:
      return "Batch opened";
    case StockEvent::BatchMakes:
      return "Batch made";
    case StockEvent::BatchUnmakes:
      return "Batch changed or deleted";
    case StockEvent::JobRecord:
      return "Job Record";
    case StockEvent::ManualAdjust:
      return "Manual";
    case StockEvent::ScanReturn:
      return "Scan";
    case StockEvent::Reset:
      return "Reset";
    case StockEvent::Opening:
      return "Opening balance";
    case StockEvent::ColorEdited:
      return "Color edited";
    case StockEvent::ColorDeleted:
      return "Color deleted";
    case StockEvent::Copied:
      return "Database copied";
    case StockEvent::Renamed:
      return "Renamed to";
    case StockEvent::RenamedFrom:
      return "Renamed from";
    case StockEvent::DatabaseRenamed:
      return "Database renamed to";
    case StockEvent::DatabaseRenamedFrom:
      return "Database renamed from";
    case StockEvent::DatabaseDeleted:
      return "Database deleted";
  }
  return "";
}

double StockDifference(float before, float after) {
  return RoundTo(Decimal(after) - Decimal(before), 9);
}

bool IndexStockHistory(Database& file) {
  const std::string table(kTable);
  Transaction transaction(file);
  if (!file.EnsureIndex(table, table + "_Turn", {"Color_Name", "Kind", "Database"},
                        fmt::format("Source >= {}", static_cast<int>(StockEvent::Renamed))))
    return false;
  file.EnsureIndex(table, table + "_LotNumber", {"LotNumber"}, "LotRefID <> 0");
  transaction.Commit();
  return true;
}

void CreateStockHistory(Database& file) {
  Transaction transaction(file);
  const std::string table(kTable);
  file.CreateTable(table, schema::StockHistory);
  file.EnsureIndex(table, table + "_Color_Name", {"Color_Name"});
  IndexStockHistory(file);
  transaction.Commit();
}

bool HasStockHistory(Database& file) {
  return file.TableExists(kTable);
}

void BeginStockHistory(Database& file, const std::vector<std::string>& databases, const DateTime& when,
                       const std::string& user) {
  Transaction transaction(file);
  CreateStockHistory(file);
  StockLine line;
  line.when = when;
  line.user = user;
  line.event = StockEvent::Opening;
  for (const std::string& database : databases) {
    line.database = database;
    AddLinesOfDatabase(file, line);
  }
  transaction.Commit();
}

void AddStockLine(Database& file, const StockLine& line) {
  Insert(file, line, static_cast<int>(line.kind));
}

bool TakeBackOpening(Database& file, const StockLine& undoing) {
  Statement last = file.Prepare(fmt::format(
      "SELECT ID, Source, Change, Document FROM {} WHERE Color_Name = ?1 AND Kind = ?2 AND Database = ?3 AND "
      "LotRefID = ?4 ORDER BY ID DESC LIMIT 1",
      kTable));
  last.Bind(1, undoing.Color_Name).Bind(2, static_cast<int>(undoing.kind)).Bind(3, undoing.database);
  if (!last.Bind(4, undoing.LotRefID).Step()) return false;
  const auto event = static_cast<StockEvent>(last.Whole(1));
  const bool opening = event == StockEvent::BatchReturns || event == StockEvent::BatchTakesAgain;
  if (!opening || last.Number(2) != -undoing.change || last.Text(3) != undoing.document) return false;
  const std::int64_t id = last.Whole(0);
  last.Reset();
  file.Prepare(fmt::format("DELETE FROM {} WHERE ID = ?1", kTable)).Bind(1, id).Run();
  return true;
}

void AddLinesOfColor(Database& file, const StockLine& line, bool going) {
  Statement rows =
      file.Prepare(StockOf(line.database, line.kind, "AND Color_Name = ?1", "AND LotCName = ?1 ORDER BY 3"));
  rows.Bind(1, line.Color_Name);
  AddLinesOf(file, line, going, rows);
}

void AddLinesOfDatabase(Database& file, const StockLine& line) {
  for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
    StockLine one = line;
    one.kind = kind;
    Statement rows = file.Prepare(StockOf(line.database, kind, "", ""));
    AddLinesOf(file, one, false, rows);
  }
}

void AddRenameLines(Database& file, StockLine line, std::string_view oldName, std::string_view newName) {
  line.event = StockEvent::Renamed;
  line.Color_Name = oldName;
  line.reason = newName;
  AddStockLine(file, line);
  line.event = StockEvent::RenamedFrom;
  line.Color_Name = newName;
  line.reason = oldName;
  AddStockLine(file, line);
}

void AddDatabaseRenameLines(Database& file, StockLine line, std::string_view oldName, std::string_view newName) {
  line.Color_Name.clear();
  line.event = StockEvent::DatabaseRenamed;
  line.database = oldName;
  line.reason = newName;
  Insert(file, line, kWholeDatabase);
  line.event = StockEvent::DatabaseRenamedFrom;
  line.database = newName;
  line.reason = oldName;
  Insert(file, line, kWholeDatabase);
}

void AddDatabaseDeletedLine(Database& file, StockLine line) {
  line.event = StockEvent::DatabaseDeleted;
  line.Color_Name.clear();
  Insert(file, line, kWholeDatabase);
}

void ForEachStockChange(Database& file, const std::function<bool(const StockStep& step)>& take) {
  Statement row = file.Prepare(
      fmt::format("SELECT Source, Kind, Database, Color_Name, LotRefID, Change, Reason FROM {} ORDER BY ID", kTable));
  bool more = true;
  while (more && row.Step())
    more = take({static_cast<StockEvent>(row.Whole(0)),
                 row.Whole(1) == static_cast<int>(ColorKind::Mix) ? ColorKind::Mix : ColorKind::Basic, row.TextView(2),
                 row.TextView(3), static_cast<std::int32_t>(row.Whole(4)), row.Number(5), row.TextView(6)});
}

}  // namespace vellumark
