// What an operator waits for most often.

#include <benchmark/benchmark.h>

#include <QTableView>
#include <QTest>
#include <chrono>

#include "desktop/batch/batch_form.h"
#include "desktop/batch/register.h"
#include "desktop/inventory/register.h"
#include "desktop/kit/window.h"
#include "large_room.h"
#include "offscreen.h"
#include "recyclable.h"

namespace vellumark::bench {
namespace {

// ---- f2_100k: from the key to the rows on the screen, in a Database of 100,000 formulas

void F2Ours(benchmark::State& state) {
  NeedApplication();
  LargeRoom& room = Room100k();
  double best = 1e9;
  int n = 0;
  for (auto unused : state) {
    // A window and a formula of their own each time, so that no answer is a remembered one.
    const std::string name = room.FormulaName(n++ % LargeRoom::kHouseShades);
    desktop::WindowList windows(room.session);
    desktop::RegisterBatchWindows(windows);
    auto* form = qobject_cast<desktop::BatchForm*>(windows.OpenForm("BatchForm", {{"Color_Name", name}}));
    form->resize(1280, 590);
    QApplication::processEvents();
    QWidget* quantity = form->findChild<QWidget*>("txtQuantity");
    quantity->setFocus(Qt::TabFocusReason);
    QTest::keyClicks(quantity, "100");
    const auto begin = std::chrono::steady_clock::now();
    QTest::keyClick(quantity, Qt::Key_F2);
    QApplication::processEvents();
    form->repaint();
    const double seconds = Seconds(std::chrono::steady_clock::now() - begin).count();
    const BatchWork& work = form->Record().work;
    if (work.RecycledColors.empty() || work.FormulaRecycleList.size() != ReadRecyclable(room, name).rows.size())
      state.SkipWithError("F2 found other inks than there are");
    best = std::min(best, seconds);
    state.SetIterationTime(seconds);
  }
  state.counters["ms"] = best * 1000;
}
BENCHMARK(F2Ours)->Name("f2_100k/ours")->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

// The raw walk of recycle_100k.
void F2Raw(benchmark::State& state) {
  LargeRoom& room = Room100k();
  int n = 0;
  for (auto unused : state) {
    const std::string name = room.FormulaName(n++ % LargeRoom::kHouseShades);
    const auto begin = std::chrono::steady_clock::now();
    const std::vector<std::int64_t> found = ScanForRecyclable(room, name);
    state.SetIterationTime(Seconds(std::chrono::steady_clock::now() - begin).count());
    if (found != ReadRecyclable(room, name).rows) state.SkipWithError("the scan found other inks than there are");
  }
}
BENCHMARK(F2Raw)->Name("f2_100k/raw")->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

// ---- history_1m: the window of the stock history, from the command to its first lines, on a file with a million

LargeRoom& RoomWithHistory() {
  static LargeRoom room(1000);
  static const bool filled = [] {
    room.session.File().Execute(
        "INSERT INTO MSysStockHistory (Moment, Username, Source, Kind, Database, Color_Name, LotRefID, LotNumber, "
        "Change, Result, Document, Reason) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < "
        "1000000) SELECT '2026-03-10 12:00:00', 'ANNA', 1, 1, 'INK', 'BASIC INK ' || (i * 7919 % 60), i % 3, "
        "iif(i % 3, 'DELIVERY ' || (i % 500), ''), -1.125, 100, 'Batch ' || i, '' FROM n");
    return true;
  }();
  benchmark::DoNotOptimize(filled);
  return room;
}

void HistoryOurs(benchmark::State& state) {
  NeedApplication();
  LargeRoom& room = RoomWithHistory();
  desktop::WindowList windows(room.session);
  desktop::RegisterInventoryWindows(windows);
  double best = 1e9;
  std::int64_t n = 0;
  for (auto unused : state) {
    // All colours, then one after the other.
    const auto begin = std::chrono::steady_clock::now();
    desktop::Window* form =
        n % 2 == 0 ? windows.OpenForm("StockHistoryForm")
                   : windows.OpenForm("StockHistoryForm", {{"Color_Name", "BASIC INK " + std::to_string(n % 60)},
                                                           {"Kind", ColorKind::Basic}});
    Shown(*form);
    const double seconds = Seconds(std::chrono::steady_clock::now() - begin).count();
    if (form->findChild<QTableView*>()->model()->rowCount() < 100) state.SkipWithError("no lines");
    best = std::min(best, seconds);
    state.SetIterationTime(seconds);
    form->Leave();
    QApplication::processEvents();
    ++n;
  }
  state.counters["ms"] = best * 1000;
}
BENCHMARK(HistoryOurs)->Name("history_1m/ours")->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

// The lines that the window shows first, read by the engine alone: of all colours, then of one after the other.
void HistoryRaw(benchmark::State& state) {
  Database& file = RoomWithHistory().session.File();
  const std::string fields =
      "SELECT ID, Moment, Username, Source, Kind, Database, Color_Name, LotRefID, LotNumber, "
      "Change, Result, Document, Reason FROM MSysStockHistory WHERE Database = 'INK'";
  std::int64_t n = 0;
  for (auto unused : state) {
    const auto begin = std::chrono::steady_clock::now();
    Statement row = n % 2 == 0 ? file.Prepare(fields + " ORDER BY ID DESC LIMIT 200")
                               : file.Prepare(fields + " AND Color_Name = ?1 AND Kind = 1 ORDER BY ID DESC LIMIT 200");
    if (n % 2 != 0) row.Bind(1, "BASIC INK " + std::to_string(n % 60));
    std::size_t length = 0;
    int lines = 0;
    for (; row.Step(); ++lines)
      for (const int text : {1, 2, 5, 6, 8, 11, 12}) length += row.TextView(text).size();
    benchmark::DoNotOptimize(length);
    state.SetIterationTime(Seconds(std::chrono::steady_clock::now() - begin).count());
    if (lines != 200) state.SkipWithError("no lines");
    ++n;
  }
}
BENCHMARK(HistoryRaw)->Name("history_1m/raw")->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

}  // namespace
}  // namespace vellumark::bench
