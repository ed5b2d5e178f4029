#include "core/datafile/stock_history.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "core/base/number.h"

namespace vellumark {
namespace {

constexpr std::string_view kTable = "MSysStockHistory";
constexpr std::string_view kFields =
    "Moment, Username, Source, Kind, Database, Color_Name, LotRefID, LotNumber, Change, Result, Document, Reason";
constexpr std::int64_t kNow = std::numeric_limits<std::int64_t>::max();
constexpr int kWholeDatabase = 0;  // in the place of a kind

// The decimal that a person reads, as a double.
double Decimal(float value) {
  return LeadingNumber(ShortestText(value));
}

StockLine ReadLine(const Statement& row) {
  StockLine line;
  line.id = row.Whole(0);
  line.when = row.Date(1).value_or(DateTime{});
  line.user = row.Text(2);
  line.event = static_cast<StockEvent>(row.Whole(3));
  line.kind = row.Whole(4) == static_cast<int>(ColorKind::Mix) ? ColorKind::Mix : ColorKind::Basic;
  line.database = row.Text(5);
  line.Color_Name = row.Text(6);
  line.LotRefID = static_cast<std::int32_t>(row.Whole(7));
  line.LotNumber = row.Text(8);
  line.change = row.Number(9);
  line.result = row.Single(10);
  line.document = row.Text(11);
  line.reason = row.Text(12);
  return line;
}

void Insert(Database& file, const StockLine& line, int kind) {
  static const std::string sql =
      fmt::format("INSERT INTO {} ({}) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12)", kTable, kFields);
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
      Quoted(TableName(database, ColorTable(kind))), whereColor, Quoted(TableName(database, LotTable(kind))), whereLot);
}

// A stretch of the trace: the lines under one name with `after` < id < `before`.
struct Stretch {
  std::string database;
  std::string name;
  std::int64_t after = 0;
  std::int64_t before = kNow;
};

// A line at which a name begins or ends.
struct Turn {
  std::int64_t id = 0;
  StockEvent event{};
  std::string reason;
};

std::optional<Turn> LastTurn(Database& file, const Stretch& stretch, int kind) {
  Statement row = file.Prepare(
      fmt::format("SELECT ID, Source, Reason FROM {} WHERE Color_Name = ?1 AND Kind = ?2 AND Database = ?3 AND ID < ?4 "
                  "AND Source >= {} ORDER BY ID DESC LIMIT 1",
                  kTable, static_cast<int>(StockEvent::Renamed)));
  row.Bind(1, kind == kWholeDatabase ? std::string_view() : std::string_view(stretch.name))
      .Bind(2, kind)
      .Bind(3, stretch.database)
      .Bind(4, stretch.before);
  if (!row.Step()) return std::nullopt;
  return Turn{row.Whole(0), static_cast<StockEvent>(row.Whole(1)), row.Text(2)};
}

bool HasLinesAfter(Database& file, const Stretch& stretch, ColorKind kind, std::int64_t id) {
  return !file.Scalar(fmt::format("SELECT 1 FROM {} WHERE Color_Name = ?1 AND Kind = ?2 AND Database = ?3 AND ID > ?4 "
                                  "LIMIT 1",
                                  kTable),
                      {stretch.name, static_cast<int>(kind), stretch.database, id})
              .IsNull();
}

// The stretches of a colour, the latest first.
std::vector<Stretch> Stretches(Database& file, Stretch stretch, ColorKind kind, bool present) {
  std::vector<Stretch> found;
  for (;;) {
    auto turn = LastTurn(file, stretch, static_cast<int>(kind));
    if (turn && turn->event == StockEvent::Renamed && found.empty() && !present &&
        !HasLinesAfter(file, stretch, kind, turn->id)) {
      // Only the past bears this name: its last line is the one that tells the new name.
      Stretch past = stretch;
      past.before = turn->id;
      turn = LastTurn(file, past, static_cast<int>(kind));
    }
    const auto whole = LastTurn(file, stretch, kWholeDatabase);
    if (whole && (!turn || whole->id > turn->id)) turn = whole;
    stretch.after = turn ? turn->id : 0;
    // The line that gave the name belongs to it.
    if (turn && turn->event == StockEvent::RenamedFrom) --stretch.after;
    found.push_back(stretch);
    if (!turn) return found;
    if (turn->event == StockEvent::RenamedFrom) {
      stretch.name = turn->reason;
    } else if (turn->event == StockEvent::DatabaseRenamedFrom) {
      stretch.database = turn->reason;
    } else {
      return found;
    }
    // The line before it is the other one of the pair.
    stretch.before = turn->id - 1;
  }
}

// The stretches of a whole Database, the latest first.
std::vector<Stretch> DatabaseStretches(Database& file, Stretch stretch) {
  std::vector<Stretch> found;
  for (;;) {
    const auto turn = LastTurn(file, stretch, kWholeDatabase);
    const bool cameFrom = turn && turn->event == StockEvent::DatabaseRenamedFrom;
    stretch.after = turn ? turn->id - (cameFrom ? 1 : 0) : 0;
    found.push_back(stretch);
    if (!cameFrom) return found;
    stretch.database = turn->reason;
    // The line before it is the other one of the pair.
    stretch.before = turn->id - 1;
  }
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

void CreateStockHistory(Database& file) {
  Transaction transaction(file);
  file.Execute(
      fmt::format("CREATE TABLE {} (ID INTEGER PRIMARY KEY, Moment TEXT, Username TEXT COLLATE NOCASE, Source INTEGER, "
                  "Kind INTEGER, Database TEXT COLLATE NOCASE, Color_Name TEXT COLLATE NOCASE, LotRefID INTEGER, "
                  "LotNumber TEXT COLLATE NOCASE, Change REAL, Result REAL, Document TEXT COLLATE NOCASE, Reason TEXT "
                  "COLLATE NOCASE)",
                  kTable));
  file.Execute(fmt::format("CREATE INDEX {0}_Color_Name ON {0} (Color_Name)", kTable));
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

std::vector<StockLine> TraceStock(Database& file, std::string_view database, ColorKind kind, std::string_view name,
                                  bool present) {
  std::vector<Stretch> stretches = Stretches(file, {std::string(database), std::string(name), 0, kNow}, kind, present);
  std::reverse(stretches.begin(), stretches.end());
  Statement row = file.Prepare(fmt::format(
      "SELECT ID, {} FROM {} WHERE Color_Name = ?1 AND Kind = ?2 AND Database = ?3 AND ID > ?4 AND ID < ?5 ORDER BY ID",
      kFields, kTable));
  std::vector<StockLine> lines;
  for (const Stretch& stretch : stretches) {
    row.Bind(1, stretch.name).Bind(2, static_cast<int>(kind)).Bind(3, stretch.database);
    row.Bind(4, stretch.after).Bind(5, stretch.before);
    while (row.Step()) lines.push_back(ReadLine(row));
    row.Reset();
  }
  return lines;
}

std::vector<StockLine> DatabaseStockLines(Database& file, std::string_view database) {
  std::vector<Stretch> stretches = DatabaseStretches(file, {std::string(database), "", 0, kNow});
  std::reverse(stretches.begin(), stretches.end());
  Statement row = file.Prepare(
      fmt::format("SELECT ID, {} FROM {} WHERE Database = ?1 AND ID > ?2 AND ID < ?3 ORDER BY ID", kFields, kTable));
  std::vector<StockLine> lines;
  for (const Stretch& stretch : stretches) {
    row.Bind(1, stretch.database).Bind(2, stretch.after).Bind(3, stretch.before);
    while (row.Step()) lines.push_back(ReadLine(row));
    row.Reset();
  }
  return lines;
}

}  // namespace vellumark
