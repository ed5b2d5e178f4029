// Speed of the core, each measurement beside the raw engine doing the least work that gives the same result.

#include <benchmark/benchmark.h>

#include "core/base/files.h"
#include "core/base/text.h"
#include "core/batch/batch_work.h"
#include "core/batch/recipe.h"
#include "core/batch/recycle_list.h"
#include "core/colors/formulas.h"
#include "core/colors/rollup.h"
#include "core/inventory/adjust.h"
#include "core/shell/opening.h"
#include "large_room.h"
#include "recyclable.h"

namespace vellumark::bench {
namespace {

// ---- recycle_100k: the inks that may be recycled into a recipe, found and chosen

BatchWork RecipeOf(Session& session, const std::string& name) {
  BatchWork work;
  work.Color_Name = name;
  work.QuantityText = "100";
  work.UMF = 1;
  LoadFormulaIngredients(session, work);
  return work;
}

void RecycleOurs(benchmark::State& state) {
  LargeRoom& room = Room100k();
  PeakMemory::Reset();
  int n = 0;
  std::size_t inStock = 0;
  for (auto unused : state) {
    state.PauseTiming();
    // A different formula each time, so that no answer is a remembered one.
    const std::string name = room.FormulaName(n++ % LargeRoom::kHouseShades);
    BatchWork work = RecipeOf(room.session, name);
    state.ResumeTiming();
    BuildRecycleList(room.session, work);
    AutoRecycle(room.session, work);
    benchmark::DoNotOptimize(work.RecycledColors.data());
    state.PauseTiming();
    const Recyclable all = ReadRecyclable(room, name);
    inStock += all.inStock;
    std::vector<std::int64_t> found;
    for (const RecycleColor& color : work.FormulaRecycleList) found.push_back(color.key);
    std::ranges::sort(found);
    if (found != all.rows) state.SkipWithError("other inks were found than can be recycled");
    if (std::ranges::count_if(work.FormulaRecycleList, [](const auto& color) { return color.Inventory > 0; }) !=
        static_cast<std::ptrdiff_t>(all.inStock))
      state.SkipWithError("other stock was found than there is");
    state.ResumeTiming();
  }
  state.counters["peak_mb"] = PeakMemory::Mb();
  state.counters["in_stock"] = static_cast<double>(inStock) / n;
}
BENCHMARK(RecycleOurs)->Name("recycle_100k/ours")->Unit(benchmark::kMillisecond)->Iterations(20);

// The engine walks over the index that holds the sets, each of which is compared.
void RecycleRaw(benchmark::State& state) {
  LargeRoom& room = Room100k();
  int n = 0;
  for (auto unused : state) {
    state.PauseTiming();
    const std::string name = room.FormulaName(n++ % LargeRoom::kHouseShades);
    state.ResumeTiming();
    const std::vector<std::int64_t> found = ScanForRecyclable(room, name);
    state.PauseTiming();
    if (found != ReadRecyclable(room, name).rows) state.SkipWithError("the scan found other inks than there are");
    state.ResumeTiming();
  }
}
BENCHMARK(RecycleRaw)->Name("recycle_100k/raw")->Unit(benchmark::kMillisecond)->Iterations(20);

// ---- pass_100k: cost, VOC and HAP of every formula from its ingredients

void PassOurs(benchmark::State& state) {
  LargeRoom& room = Room100k();
  PeakMemory::Reset();
  for (auto unused : state) {
    state.PauseTiming();
    // Every figure changes, so that every row is written.
    room.session.File().Execute(
        "UPDATE INK_Basic SET PurchaseCost = PurchaseCost + 1, VOC = VOC + 0.5, HAP = HAP + 0.5");
    room.session.CostChanged = room.session.VOCChanged = room.session.HAPChanged = true;
    state.ResumeTiming();
    RunPendingPasses(room.session);
  }
  state.counters["peak_mb"] = PeakMemory::Mb();
}
BENCHMARK(PassOurs)->Name("pass_100k/ours")->Unit(benchmark::kMillisecond)->Iterations(3);

void PassRaw(benchmark::State& state) {
  LargeRoom& room = Room100k();
  Database& file = room.session.File();
  float figure = 1000;
  for (auto unused : state) {
    Transaction transaction(file);
    Statement update = file.Prepare("UPDATE INK_Mix SET BasicCost = ?, BasicVOC = ?, BasicHAP = ? WHERE RowKey = ?");
    for (int row = 1; row <= 100000; ++row)
      update.Bind(1, figure + static_cast<float>(row)).Bind(2, figure).Bind(3, figure).Bind(4, row).Run();
    transaction.Commit();
    figure += 1;
  }
}
BENCHMARK(PassRaw)->Name("pass_100k/raw")->Unit(benchmark::kMillisecond)->Iterations(3);

// ---- open_100k: from a path to open record sets

class NoWindows final : public OpeningWindows {
 public:
  void ShowNewDataFile(const std::string&) override {}
  std::optional<std::filesystem::path> ShowUpdateDataFile(const std::filesystem::path&, int) override { return {}; }
  void Login(Session&) override {}
  void SetCaption(const std::string&) override {}
  void SuggestArchive(Session&) override {}
  void ShutdownBackup(Session&, const std::string&) override {}
};

void OpenOurs(benchmark::State& state) {
  const ClosedRoom closed;
  NoWindows windows;
  double best = 1e9;
  for (auto unused : state) {
    const auto begin = std::chrono::steady_clock::now();
    SilentPrompt prompt;
    NoProgress progress;
    Session session(prompt, progress, closed.room.clock);
    session.DataFileName = closed.room.path.string();
    if (!CheckDataFile(session, session.DataFileName, windows)) state.SkipWithError("the file was refused");
    OpenDataFile(session, windows);
    benchmark::DoNotOptimize(CountRows(session.File(), session.CurrentDatabase).formulas);
    best = std::min(best, std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
  }
  state.counters["ms"] = best;
}
BENCHMARK(OpenOurs)->Name("open_100k/ours")->Unit(benchmark::kMillisecond)->Iterations(30);

// What has to be read: the version before the file is taken, every table's fields and indexes, the numbers that are
// handed out next, and how many rows there are.
void OpenRaw(benchmark::State& state) {
  const ClosedRoom closed;
  for (auto unused : state) {
    benchmark::DoNotOptimize(
        Database::Open(closed.room.path, OpenMode::ReadOnly)->Scalar("SELECT FileVersion FROM FileInfo").Whole());
    const auto file = Database::Open(closed.room.path, OpenMode::Exclusive);
    std::vector<std::string> statements{"SELECT CurrentDB, DBList, BatchNumber, ItemNumber FROM FileInfo",
                                        "SELECT FullName, TemplateFile FROM INK_Info",
                                        "SELECT MAX(BatchNo) FROM INK_Batch",
                                        "SELECT MAX(LotRefID) FROM INK_Basic_LotInv",
                                        "SELECT MAX(LotRefID) FROM INK_Mix_LotInv",
                                        "SELECT COUNT(*) FROM INK_Basic",
                                        "SELECT COUNT(*) FROM INK_Mix",
                                        "SELECT COUNT(*) FROM INK_Batch"};
    for (Statement tables = file->Prepare("SELECT name FROM sqlite_master WHERE type = 'table'"); tables.Step();)
      for (const char* parts : {"PRAGMA table_info(", "PRAGMA index_list("})
        statements.push_back(parts + Quoted(tables.Text(0)) + ")");
    std::int64_t rows = 0;
    for (const std::string& statement : statements)
      for (Statement row = file->Prepare(statement); row.Step();) ++rows;
    benchmark::DoNotOptimize(rows);
  }
}
BENCHMARK(OpenRaw)->Name("open_100k/raw")->Unit(benchmark::kMillisecond)->Iterations(30);

// ---- post_1k: a thousand adjustments by hand, each saved for itself

constexpr int kPostings = 1000;

void PostOurs(benchmark::State& state, const std::filesystem::path& place) {
  LargeRoom room(1000, place);
  for (auto unused : state) {
    for (int i = 0; i < kPostings; ++i) {
      InventoryWork work = LoadInventory(room.session, ColorKind::Basic, room.maker.BasicName(i % 60));
      AdjustFields fields = ClearedFields(room.session, work);
      fields.quantity = 1.125F;
      if (!ApplyAdjust(room.session, work, fields) || !SaveInventory(room.session, work))
        state.SkipWithError("an adjustment was refused");
    }
  }
}
BENCHMARK_CAPTURE(PostOurs, disk, OrdinaryDisk())->Name("post_1k/ours")->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_CAPTURE(PostOurs, memory, kMemoryDisk)
    ->Name("post_1k_memory/ours")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

// The same rows with the same durability: the stock and its line in the history.
void PostRaw(benchmark::State& state, const std::filesystem::path& place) {
  LargeRoom room(1000, place);
  Database& file = room.session.File();
  Statement begin = file.Prepare("BEGIN IMMEDIATE");
  Statement commit = file.Prepare("COMMIT");
  Statement stock = file.Prepare("UPDATE INK_Basic SET Inventory = Inventory + 1.125 WHERE Color_Name = ?1");
  Statement line = file.Prepare(
      "INSERT INTO MSysStockHistory (Moment, Username, Source, Kind, Database, Color_Name, LotRefID, LotNumber, "
      "Change, Result, Document, Reason) SELECT '2026-03-10 12:00:00', '', 7, 1, 'INK', Color_Name, 0, '', 1.125, "
      "Inventory, "
      "'', '' FROM INK_Basic WHERE Color_Name = ?1");
  for (auto unused : state) {
    for (int i = 0; i < kPostings; ++i) {
      const std::string name = room.maker.BasicName(i % 60);
      begin.Run();
      stock.Bind(1, name).Run();
      line.Bind(1, name).Run();
      commit.Run();
    }
  }
}
BENCHMARK_CAPTURE(PostRaw, disk, OrdinaryDisk())->Name("post_1k/raw")->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_CAPTURE(PostRaw, memory, kMemoryDisk)
    ->Name("post_1k_memory/raw")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

// ---- lots_50k: a colour with 50,000 lots is opened

LargeRoom& RoomWithLots() {
  static LargeRoom room(1000);
  static const bool filled = [] {
    room.session.File().Execute(
        "INSERT INTO INK_Basic_LotInv (LotRefID, LotCName, LotNumber, LotLoc, LotContID, LotDate, LotQty, LotPrice, "
        "LotConsignment) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 50000) SELECT i, "
        "'BASIC INK 1', 'DELIVERY ' || (i * 7919 % 5000), 'SHELF ' || (i % 40), i, '2026-01-15 00:00:00', 25.5, 4.25, "
        "0 FROM n");
    return true;
  }();
  benchmark::DoNotOptimize(filled);
  return room;
}

void LotsOurs(benchmark::State& state) {
  LargeRoom& room = RoomWithLots();
  double best = 1e9;
  for (auto unused : state) {
    const auto begin = std::chrono::steady_clock::now();
    const InventoryWork work = LoadInventory(room.session, ColorKind::Basic, "BASIC INK 1");
    if (work.Totals().lotted != 50000 * 25.5F) state.SkipWithError("lots are missing");
    benchmark::DoNotOptimize(work.LotNumbers().data());
    benchmark::DoNotOptimize(work.Locations().data());
    best = std::min(best, std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
  }
  state.counters["ms"] = best;
}
BENCHMARK(LotsOurs)->Name("lots_50k/ours")->Unit(benchmark::kMillisecond)->Iterations(5);

void LotsRaw(benchmark::State& state) {
  LargeRoom& room = RoomWithLots();
  for (auto unused : state) {
    Statement rows = room.session.File().Prepare(
        "SELECT LotRefID, LotNumber, LotLoc, LotContID, LotDate, LotQty, LotPrice, LotConsignment FROM "
        "INK_Basic_LotInv WHERE LotCName = 'BASIC INK 1' ORDER BY LotNumber, LotRefID");
    double sum = 0;
    while (rows.Step()) sum += rows.Number(5);
    benchmark::DoNotOptimize(sum);
  }
}
BENCHMARK(LotsRaw)->Name("lots_50k/raw")->Unit(benchmark::kMillisecond)->Iterations(5);

// ---- settings: a thousand values against one reading of the file

void SettingsOurs(benchmark::State& state) {
  static LargeRoom room(0);
  for (auto unused : state)
    for (int i = 0; i < 250; ++i)
      for (const char* key : {"UMI", "MarkupPercent", "JobCustomNumericLabelCaption5", "ColorListColWidth40"})
        benchmark::DoNotOptimize(room.session.support->settings.GetSupportValue(key));
}
BENCHMARK(SettingsOurs)->Name("settings/ours")->Unit(benchmark::kMicrosecond);

void SettingsRaw(benchmark::State& state) {
  static LargeRoom room(0);
  for (auto unused : state) {
    // What a reader without a store does for one value: open, take record after record, compare.
    const std::string bytes = ReadFileBytes(room.session.support->settings.Path());
    std::vector<std::pair<std::string, std::string>> records;
    for (std::string_view line : Split(bytes, '\n')) {
      const std::size_t middle = line.find("\",\"");
      if (middle == std::string_view::npos) continue;
      records.emplace_back(line.substr(1, middle - 1), line.substr(middle + 3, line.rfind('"') - middle - 3));
    }
    benchmark::DoNotOptimize(records.data());
  }
}
BENCHMARK(SettingsRaw)->Name("settings/raw")->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace vellumark::bench
