#include <fmt/format.h>

#include <cmath>
#include <optional>

#include "core/backup/check_run.h"
#include "core/base/number.h"
#include "core/datafile/color_kind.h"
#include "core/datafile/stock_balance.h"
#include "core/datafile/stock_history.h"

// What holds of stock: lots, their colours, and the history that tells how it came about.

namespace vellumark {
namespace {

constexpr std::int32_t kLastLotRef = 999'998;
// Half of the last decimal in which stock is kept.

constexpr ColorKind kKinds[] = {ColorKind::Basic, ColorKind::Mix};

}  // namespace

void CheckLotColors(CheckRun& run) {
  for (const std::string& database : run.Databases())
    for (const ColorKind kind : kKinds) {
      const auto orphans = [&](const Table& table, std::string_view field) {
        const std::string name = TableName(database, table);
        const std::string colors = TableName(database, ColorTable(kind));
        Statement rows = run.file.Prepare(fmt::format(
            "SELECT t.RowKey, t.{0} FROM {1} t WHERE t.{0} IS NULL OR NOT EXISTS (SELECT 1 FROM {2} c WHERE "
            "c.Color_Name = t.{0})",
            Quoted(field), Quoted(name), Quoted(colors)));
        run.FoundRows(name, rows, [&](const Statement&) { return fmt::format("{} has no such color.", colors); });
      };
      orphans(LotTable(kind), "LotCName");
      orphans(LabTable(kind), "Color_Name");
    }
}

void CheckLotReferences(CheckRun& run) {
  for (const std::string& database : run.Databases())
    for (const ColorKind kind : kKinds) {
      const std::string lots = TableName(database, LotTable(kind));
      Statement odd = run.file.Prepare(fmt::format(
          "SELECT RowKey, LotCName, LotRefID FROM {} WHERE LotRefID IS NULL OR LotRefID NOT BETWEEN 1 AND {}",
          Quoted(lots), kLastLotRef));
      run.FoundRows(lots, odd, [](const Statement& row) {
        return row.IsNull(2) ? std::string("The lot has no reference.")
                             : fmt::format("The lot reference is {}.", row.Whole(2));
      });
      Statement unnamed = run.file.Prepare(
          fmt::format("SELECT RowKey, LotCName FROM {} WHERE LotNumber IS NULL OR LotNumber = ''", Quoted(lots)));
      run.FoundRows(lots, unnamed, [](const Statement&) { return std::string("The lot has no number."); });
      Statement twice = run.file.Prepare(fmt::format(
          "SELECT RowKey, LotCName, LotRefID FROM {0} t WHERE EXISTS (SELECT 1 FROM {0} e WHERE e.LotCName = "
          "t.LotCName AND e.LotRefID = t.LotRefID AND e.RowKey < t.RowKey)",
          Quoted(lots)));
      run.FoundRows(lots, twice, [](const Statement& row) {
        return fmt::format("Another lot of the color has the reference {} too.", row.Whole(2));
      });
    }
}

void CheckQuantities(CheckRun& run) {
  for (const std::string& database : run.Databases()) {
    const auto negative = [&](const Table& table, std::string_view name, std::string_view field) {
      const std::string of = TableName(database, table);
      Statement rows =
          run.file.Prepare(fmt::format("SELECT RowKey, {0}, {1} FROM {2} WHERE {1} < 0", name, field, Quoted(of)));
      run.FoundRows(of, rows, [&](const Statement& row) {
        return fmt::format("{} is {}, below 0.", field, FigureText(row.Number(2)));
      });
    };
    for (const ColorKind kind : kKinds) {
      negative(LotTable(kind), "LotCName", "LotQty");
      negative(LotTable(kind), "LotCName", "LotPrice");
    }
    negative(schema::Mix, "Color_Name", "Inventory");
  }
}

namespace {

// Takes the figures that stand away from the balance: what is left is stock that the history tells of and no row holds.
class StockComparison {
 public:
  explicit StockComparison(CheckRun& run)
      : run_(run), lines_(run.file.Scalar("SELECT MAX(ID) FROM MSysStockHistory").Whole()), balance_(run.file, [&](std::int64_t line) {
          return run.GoOn(line, lines_);
        }) {}

  void Run() {
    for (const std::string& database : run_.Databases())
      for (const ColorKind kind : kKinds) {
        if (run_.Stopped()) return;
        Compare(database, kind, TableName(database, ColorTable(kind)), "Color_Name", "Inventory", "0");
        Compare(database, kind, TableName(database, LotTable(kind)), "LotCName", "LotQty", "LotRefID");
      }
    if (!run_.Stopped()) FindLost();
  }

 private:
  void Compare(const std::string& database, ColorKind kind, const std::string& table, std::string_view name,
               std::string_view quantity, std::string_view ref) {
    Statement rows =
        run_.file.Prepare(fmt::format("SELECT RowKey, {}, {}, {} FROM {}", name, quantity, ref, Quoted(table)));
    WalkRows(run_, rows, RowCount(run_.file, table), [&](const Statement& row) {
      const auto lot = static_cast<std::int32_t>(row.Whole(3));
      const double told = balance_.Of(database, kind, row.TextView(1), lot);
      const double stands = LeadingNumber(ShortestText(row.Single(2)));
      if (std::fabs(told - stands) < kSameStock) return;
      run_.Found(table, row.Whole(0), row.TextView(1),
                 fmt::format("{} is {}{}; its history adds up to {}.", quantity, FigureText(stands),
                             lot == 0 ? "" : fmt::format(" in the lot of reference {}", lot), FigureText(told)));
    });
  }

  void FindLost() {
    balance_.ForEach([&](const std::string& database, ColorKind kind, const std::string& name, std::int32_t ref,
                         double quantity) {
      const Table& table = ref == 0 ? ColorTable(kind) : LotTable(kind);
      const std::string in = TableName(database, table);
      if (std::fabs(quantity) < kSameStock || !run_.file.TableExists(in)) return;
      const bool stands =
          ref == 0 ? !run_.file
                          .Scalar(fmt::format("SELECT 1 FROM {} WHERE Color_Name = ? LIMIT 1", Quoted(in)), {name})
                          .IsNull()
                   : !run_.file
                          .Scalar(fmt::format("SELECT 1 FROM {} WHERE LotCName = ? AND LotRefID = ? LIMIT 1",
                                              Quoted(in)),
                                  {name, ref})
                          .IsNull();
      if (stands) return;
      run_.Found(in, 0, name,
                 fmt::format("Its history adds up to {}{}, but there is no such row.", FigureText(quantity),
                             ref == 0 ? "" : fmt::format(" in the lot of reference {}", ref)));
    });
  }

  CheckRun& run_;
  std::int64_t lines_;
  StockBalance balance_;
};

}  // namespace

void CheckStockHistory(CheckRun& run) {
  // A file that was not opened since histories are kept has none; the next opening begins it.
  if (HasStockHistory(run.file)) StockComparison(run).Run();
}

}  // namespace vellumark
