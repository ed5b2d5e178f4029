#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/date.h"
#include "core/datafile/color_kind.h"
#include "core/datafile/engine.h"

namespace vellumark {

// The history of stock: a line for every figure of stock that ever changed, in a table of the system's own that lies
// beside the Databases. Lines are added in the transaction of the change and never altered; none is removed but that of a
// step which was undone before anything else happened there. Each names the colour as it was called at the time; a rename
// leaves a line under either name, by which the trace is followed.

/// What a line tells. The numbers stand in files.
enum class StockEvent : int {
  BatchTakes = 1,
  BatchTakesAgain = 2,
  BatchReturns = 3,
  BatchMakes = 4,
  BatchUnmakes = 5,
  JobRecord = 6,
  ManualAdjust = 7,
  ScanReturn = 8,
  Reset = 9,
  BatchRestores = 10,
  Opening = 20,       ///< what stood there when the history began
  ColorEdited = 21,   ///< earlier: the stock was entered with the colour's own fields
  ColorDeleted = 22,  ///< the colour went, or was merged into another
  Copied = 23,        ///< a Database that was made as a copy of another
  Renamed = 30,       ///< under the old name; the reason is the new one
  RenamedFrom = 31,   ///< under the new name; the reason is the old one
  DatabaseRenamed = 32,
  DatabaseRenamedFrom = 33,
  DatabaseDeleted = 34,
};
/// What the event is called in lists.
std::string_view StockEventText(StockEvent event);

struct StockLine {
  std::int64_t id = 0;  ///< in the order of writing; given by the table
  DateTime when{};
  std::string user{};
  StockEvent event = StockEvent::ManualAdjust;
  ColorKind kind = ColorKind::Basic;
  std::string database{};
  std::string Color_Name{};   ///< at that time; empty in a line of a whole Database
  std::int32_t LotRefID = 0;  ///< 0 of Unlotted Inventory
  std::string LotNumber{};
  double change = 0;       ///< what was added, in the inventory unit
  float result = 0;        ///< what then stood there
  std::string document{};  ///< what moved it: a Batch, a job
  std::string reason{};
};

/// What counts of a line when all are added up. The texts are valid while the line is taken.
struct StockStep {
  StockEvent event = StockEvent::ManualAdjust;
  ColorKind kind = ColorKind::Basic;
  std::string_view database;
  std::string_view Color_Name;
  std::int32_t LotRefID = 0;
  double change = 0;
  std::string_view reason;
};
/// Every line of the file in the order of writing, until `take` answers false.
void ForEachStockChange(Database& file, const std::function<bool(const StockStep& step)>& take);

/// The exact difference of two figures of stock as they read in decimal, so that the changes of a lot add up to it.
double StockDifference(float before, float after);

inline constexpr std::string_view kStockHistoryTable = "MSysStockHistory";
/// The fields of a line in the order of StockLine, from `when` on.
inline constexpr std::string_view kStockLineFields =
    "Moment, Username, Source, Kind, Database, Color_Name, LotRefID, LotNumber, Change, Result, Document, Reason";
/// In the place of a kind, where a line is about a whole Database.
inline constexpr int kWholeDatabase = 0;

void CreateStockHistory(Database& file);
/// Makes the indexes by which a trail finds names and lots. False when they are there already.
bool IndexStockHistory(Database& file);
bool HasStockHistory(Database& file);
/// Makes the history of a file that has none: a line for every colour and lot of its Databases that holds stock.
void BeginStockHistory(Database& file, const std::vector<std::string>& databases, const DateTime& when,
                       const std::string& user);

/// Adds a line; `id` is not read.
void AddStockLine(Database& file, const StockLine& line);
/// Instead of a line that would only undo the one before it: removes that one, when the last line of the same place is of
/// the same document, moved exactly as much the other way and is of a Batch that was opened. False when it is not.
bool TakeBackOpening(Database& file, const StockLine& undoing);
/// A line for a colour's `Inventory` and one for each of its lots that holds stock, as taken away (`going`) or as put
/// there. Of `line` the event, who, when, kind, Database, name and reason count.
void AddLinesOfColor(Database& file, const StockLine& line, bool going);
/// The same for every colour of a Database.
void AddLinesOfDatabase(Database& file, const StockLine& line);
/// The two lines of a rename; of `line` who, when, kind and Database count.
void AddRenameLines(Database& file, StockLine line, std::string_view oldName, std::string_view newName);
void AddDatabaseRenameLines(Database& file, StockLine line, std::string_view oldName, std::string_view newName);

/// A Database of that name that is made later begins anew.
void AddDatabaseDeletedLine(Database& file, StockLine line);

}  // namespace vellumark
