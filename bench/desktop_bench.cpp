// The start of the desktop program, from an empty process state to a main window that shows a file of 100,000 formulas,
// and what an operator waits for most often in it.

#include <benchmark/benchmark.h>

#include <QMainWindow>
#include <QTableView>
#include <QTest>
#include <chrono>

#include "core/settings/settings_keys.h"
#include "desktop/batch/batch_form.h"
#include "desktop/batch/register.h"
#include "desktop/colors/register.h"
#include "desktop/datafile/register.h"
#include "desktop/inventory/register.h"
#include "desktop/kit/wait_progress.h"
#include "desktop/session/register.h"
#include "desktop/settings/register.h"
#include "desktop/shell/program.h"
#include "desktop/tools/register.h"
#include "large_room.h"
#include "offscreen.h"

namespace vellumark::bench {
namespace {

void StartOurs(benchmark::State& state) {
  NeedApplication();
  LargeRoom& room = Room100k();
  SetSupportValue(room.session, keys::DbFileName50, room.path.string());
  room.session.DataFileDB.reset();
  double best = 1e9;
  for (auto unused : state) {
    SilentPrompt prompt;
    desktop::WaitProgress progress;
    Session session(prompt, progress, room.clock);
    const auto begin = std::chrono::steady_clock::now();
    desktop::WindowList windows(session, &progress);
    desktop::Program program(windows);
    desktop::RegisterSessionWindows(windows);
    desktop::RegisterSettingsWindows(windows);
    desktop::RegisterColorsWindows(windows);
    desktop::RegisterToolsWindows(windows);
    desktop::RegisterInventoryWindows(windows);
    desktop::RegisterBatchWindows(windows);
    desktop::RegisterDatafileWindows(windows, program.Windows());
    program.Windows().SkipSplash();
    StartOptions options;
    options.folders = {room.session.DataFolder, room.folder / "Program", {}};
    if (!program.Start(options) || !session.RecordsetsOpen) state.SkipWithError("the program did not start");
    Shown(program.Main());
    const double seconds = Seconds(std::chrono::steady_clock::now() - begin).count();
    best = std::min(best, seconds);
    state.SetIterationTime(seconds);
    program.Main().OnClosing({});
  }
  room.session.DataFileDB = Database::Open(room.path, OpenMode::Exclusive);
  state.counters["ms"] = best * 1000;
}
BENCHMARK(StartOurs)->Name("start_100k/ours")->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(8);

// What is allowed: one and a half times an empty main window, and 150 ms.
void StartRaw(benchmark::State& state) {
  NeedApplication();
  for (auto unused : state) {
    const auto begin = std::chrono::steady_clock::now();
    QMainWindow window;
    window.resize(1280, 720);
    Shown(window);
    state.SetIterationTime(1.5 * Seconds(std::chrono::steady_clock::now() - begin).count() + 0.150);
  }
}
BENCHMARK(StartRaw)->Name("start_100k/raw")->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(8);

// ---- f2_100k: from the key to the rows on the screen, in a Database of 100,000 formulas

void F2Ours(benchmark::State& state) {
  NeedApplication();
  LargeRoom& room = Room100k();
  double best = 1e9;
  std::int64_t n = 0;
  for (auto unused : state) {
    // A window and a formula of their own each time, so that no answer is a remembered one.
    desktop::WindowList windows(room.session);
    desktop::RegisterBatchWindows(windows);
    auto* form = qobject_cast<desktop::BatchForm*>(
        windows.OpenForm("BatchForm", {{"Color_Name", "SPOT COLOUR " + std::to_string(++n * 7919 % 100000)}}));
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
    if (form->Record().work.Rows.empty()) state.SkipWithError("F2 gave no rows");
    best = std::min(best, seconds);
    state.SetIterationTime(seconds);
  }
  state.counters["ms"] = best * 1000;
}
BENCHMARK(F2Ours)->Name("f2_100k/ours")->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

// The raw pass of recycle_100k: every name and set of the table.
void F2Raw(benchmark::State& state) {
  LargeRoom& room = Room100k();
  for (auto unused : state) {
    const auto begin = std::chrono::steady_clock::now();
    Statement rows = room.session.File().Prepare("SELECT Color_Name, Color_Set FROM INK_Mix");
    std::size_t bytes = 0;
    while (rows.Step()) bytes += rows.TextView(0).size() + rows.TextView(1).size();
    benchmark::DoNotOptimize(bytes);
    state.SetIterationTime(Seconds(std::chrono::steady_clock::now() - begin).count());
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

// What is allowed.
void HistoryRaw(benchmark::State& state) {
  for (auto unused : state) state.SetIterationTime(0.100);
}
BENCHMARK(HistoryRaw)->Name("history_1m/raw")->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

}  // namespace
}  // namespace vellumark::bench
