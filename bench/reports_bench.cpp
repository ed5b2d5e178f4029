// Speed of reports and searches, beside the raw engine reading the same columns.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <chrono>
#include <numeric>

#include "core/inventory/lots.h"
#include "core/reports/batch_rows.h"
#include "core/reports/build.h"
#include "core/reports/catalogue.h"
#include "core/reports/export.h"
#include "core/reports/find.h"
#include "core/reports/quick_find.h"
#include "large_room.h"

namespace vellumark::bench {
namespace {

constexpr int kBatches = 200000;
constexpr int kLots = 50000;
constexpr int kColors = 2000;  // that are made
constexpr int kLines = 5;

// 200,000 Batches of ten years out of 2,000 formulas, and 50,000 lots.
struct ReportsRoom : LargeRoom {
  ReportsRoom() : LargeRoom(100000) {
    Transaction transaction(session.File());
    FillBatches();
    FillLots();
    transaction.Commit();
    session.InvLotTracking = 1;
    session.Perm_Costs = 2;
  }

  void FillBatches() {
    std::vector<std::string> fields{"Color_Name",     "BatchNo", "Date_Entered",      "Quantity",
                                    "ActualQuantity", "UMF",     "PercentRec",        "CostOfBasics",
                                    "Username",       "VOC",     "LargestAmountIndex"};
    for (const char* word : {"IngName", "IngQty", "IngType"})
      for (int i = 0; i < kLines; ++i) fields.push_back(schema::Numbered(word, i));
    RowWriter batch(session.File(), schema::Batch, "INK_Batch", fields);
    for (int n = 1; n <= kBatches; ++n) {
      const float quantity = static_cast<float>(1 + n % 500) + 0.125F;
      batch.Set(0, FormulaName(kHouseShades + n % kColors)).Set(1, n);
      batch.Set(2, DateTime::FromDayNumber(DateTime{2016, 3, 10}.DayNumber() + n * 3650 / kBatches));
      batch.Set(3, quantity).Set(4, quantity).Set(5, 1 + n % 2).Set(6, static_cast<float>(n % 40) / 100);
      batch.Set(7, quantity * 4).Set(8, n % 3 == 0 ? "ANNA" : "BORIS").Set(9, 0.25F).Set(10, 0);
      for (int i = 0; i < kLines; ++i) {
        const std::size_t at = 11 + static_cast<std::size_t>(i);
        batch.Set(at, maker.BasicName((n + i * 7) % maker.Basics()));
        batch.Set(at + kLines, quantity / kLines).Set(at + std::size_t{2} * kLines, i == kLines - 1 ? 3 : 1);
      }
      batch.Insert();
    }
  }

  void FillLots() {
    RowWriter lots(session.File(), schema::MixLotInv, "INK_Mix_LotInv",
                   {"LotRefID", "LotCName", "LotNumber", "LotDate", "LotQty", "LotPrice", "LotConsignment"});
    const int there = static_cast<int>(session.File().Scalar("SELECT COUNT(*) FROM INK_Mix_LotInv").Whole());
    for (int n = there; n < kLots; ++n)
      lots.Set(0, n + 1)
          .Set(1, FormulaName(n * 2))
          .Set(2, "L" + std::to_string(n))
          .Set(3, DateTime{2025, 6, 1})
          .Set(4, static_cast<float>(n % 90) + 0.5F)
          .Set(5, 4.5F)
          .Set(6, n % 10 == 0)
          .Insert();
  }

  BuiltReport Build(const char* key, ReportRequest request = {}) {
    request.range = 0;
    ReportWatch watch(session.progress);
    const auto context = PrepareReport(session, *FindReport(key), request, watch);
    if (!context) throw std::runtime_error(context.error().text);
    return BuildReport(*context);
  }
};

ReportsRoom& Room() {
  static ReportsRoom room;
  return room;
}

// Each column of each row, as the engine has it.
void ReadAll(benchmark::State& state, const std::vector<std::string>& queries, std::size_t limit = SIZE_MAX) {
  for (auto run : state)
    for (const std::string& query : queries) {
      Statement rows = Room().session.File().Prepare(query);
      const int columns = rows.ColumnCount();
      for (std::size_t n = 0; n < limit && rows.Step(); ++n)
        for (int i = 0; i < columns; ++i) benchmark::DoNotOptimize(rows.TextView(i));
    }
}

void Measure(benchmark::State& state, const char* key, std::size_t least, const ReportRequest& request = {}) {
  Room();
  PeakMemory::Reset();
  double best = 1e9;
  for (auto run : state) {
    const auto begin = std::chrono::steady_clock::now();
    const BuiltReport report = Room().Build(key, request);
    best = std::min(best, std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
    if (report.Rows() < least) state.SkipWithError("rows are missing");
  }
  state.counters["ms"] = best;
  state.counters["peak_mb"] = PeakMemory::Mb();
}

// ---- report_production_200k: all colours of the Database, summed

void Production(benchmark::State& state) {
  Measure(state, "SummarizedProductionForm", kColors);
}
void ProductionRaw(benchmark::State& state) {
  ReadAll(state, {fmt::format("SELECT Color_Name, {} FROM INK_Batch", FigureColumns())});
}
BENCHMARK(Production)->Name("report_production_200k/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(ProductionRaw)->Name("report_production_200k/raw")->Unit(benchmark::kMillisecond);

// ---- report_consumption_200k: what all ingredients of all Batches come to

void Consumption(benchmark::State& state) {
  Measure(state, "SummarizedConsumptionForm", 60);
}
void ConsumptionRaw(benchmark::State& state) {
  ReadAll(state, {fmt::format("SELECT ActualQuantity, UMF, Date_Entered, {} FROM INK_Batch", LineColumns())});
}
BENCHMARK(Consumption)->Name("report_consumption_200k/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(ConsumptionRaw)->Name("report_consumption_200k/raw")->Unit(benchmark::kMillisecond);

// ---- report_inventory_100k: 100,000 formulas and their 50,000 lots, summed

void Inventory(benchmark::State& state) {
  Measure(state, "InventorySummaryForm", 1);
}
void InventoryRaw(benchmark::State& state) {
  ReadAll(
      state,
      {"SELECT Color_Name, Color_Code, Inventory, Reorder, PurchaseCost, BasicCost, Date_Entered, Inv_Note, Notes "
       "FROM INK_Mix ORDER BY Color_Name",
       fmt::format("SELECT {}, LotConsignment, LotRefID, LotCName FROM INK_Mix_LotInv ORDER BY LotCName, LotNumber, "
                   "LotRefID",
                   "LotNumber, LotLoc, LotContID, LotDate, LotQty, LotPrice")});
}
BENCHMARK(Inventory)->Name("report_inventory_100k/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(InventoryRaw)->Name("report_inventory_100k/raw")->Unit(benchmark::kMillisecond);

// ---- report_full_349500: as many cells as a report may hold, sorted by two columns

std::size_t FullRows() {
  static const std::size_t rows = Room().Build("BatchListForm").Rows();
  return rows;
}

void Full(benchmark::State& state) {
  Room().Build("BatchListForm");
  PeakMemory::Reset();
  double best = 1e9;
  for (auto run : state) {
    const auto begin = std::chrono::steady_clock::now();
    BuiltReport report = Room().Build("BatchListForm");
    SortReport(report, {.column = 0, .descending = true, .second = FindReportColumn(report.columns, "Quantity")});
    best = std::min(best, std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
    if (report.Rows() != FullRows() || report.complete) state.SkipWithError("the report is not full");
  }
  state.counters["ms"] = best;
  state.counters["peak_mb"] = PeakMemory::Mb();
}
void FullRaw(benchmark::State& state) {
  ReadAll(state, {fmt::format("SELECT {0}, {1}, {2} FROM (SELECT * FROM INK_Batch ORDER BY BatchNo LIMIT {3}) "
                              "ORDER BY Color_Name DESC, Quantity",
                              FigureColumns(), DetailColumns(), LineColumns(), FullRows())});
}
BENCHMARK(Full)->Name("report_full_349500/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(FullRaw)->Name("report_full_349500/raw")->Unit(benchmark::kMillisecond);

// ---- report_mdb_349500: all cells of such a report as a database, beside its text

void Export(benchmark::State& state, ExportFormat format) {
  BuiltReport report = Room().Build("BatchListForm");
  report.shown.resize(report.columns.size());
  std::iota(report.shown.begin(), report.shown.end(), std::size_t{0});
  const std::filesystem::path file = Room().session.DataFolder / "exported";
  PeakMemory::Reset();
  double best = 1e9;
  for (auto run : state) {
    const auto begin = std::chrono::steady_clock::now();
    ExportReport(report, {.format = format}, {2026, 3, 10}, file);
    best = std::min(best, std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
  }
  state.counters["ms"] = best;
  state.counters["peak_mb"] = PeakMemory::Mb();
}
BENCHMARK_CAPTURE(Export, database, ExportFormat::Jet)->Name("report_mdb_349500/ours")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Export, text, ExportFormat::Text)->Name("report_mdb_349500/raw")->Unit(benchmark::kMillisecond);

// ---- find_200k: two comparisons with every Batch

void FindBatches(benchmark::State& state) {
  Room();
  const FindRequest request{.subject = FindSubject::Batch,
                            .terms = {{"Color Name", "contains", "colour 77"}, {"Quantity", ">=", "400"}}};
  for (auto run : state) {
    const auto answer = Find(Room().session, request);
    if (!answer || answer->count == 0) state.SkipWithError("nothing was found");
  }
}
void FindRaw(benchmark::State& state) {
  ReadAll(state, {"SELECT Color_Name, BatchNo, JobNumber, Date_Entered, ActualQuantity, UMF FROM INK_Batch ORDER BY "
                  "BatchNo"});
}
BENCHMARK(FindBatches)->Name("find_200k/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(FindRaw)->Name("find_200k/raw")->Unit(benchmark::kMillisecond);

// ---- quick_find_350k: the slowest key in the field over 100,000 formulas, 200,000 Batches and 50,000 lots

void QuickFind(benchmark::State& state) {
  static QuickIndex index(Room().session);
  if (index.Size() == 0) {
    index.Begin();
    while (index.ReadOn(std::chrono::milliseconds(10))) continue;
  }
  const std::string formula = Room().FormulaName(77777);
  const std::vector<std::string> typed{formula, "shade 185", "000421", "qqq zz", "e 9"};
  double slowest = 0;
  for (auto run : state) {
    for (const std::string& text : typed)
      for (std::size_t keys = 1; keys <= text.size(); ++keys) {
        const auto begin = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(index.Find(text.substr(0, keys)));
        const auto end = std::chrono::steady_clock::now();
        slowest = std::max(slowest, std::chrono::duration<double, std::milli>(end - begin).count());
      }
    if (index.Find(formula).empty() || index.Size() < 350000) state.SkipWithError("not all is in the index");
  }
  state.counters["ms"] = slowest;
}
BENCHMARK(QuickFind)->Name("quick_find_350k/ours")->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
}  // namespace vellumark::bench
