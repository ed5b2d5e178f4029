// The start of the desktop program, from an empty process state to a main window that shows a file of 100,000 formulas.

#include <benchmark/benchmark.h>

#include <QMainWindow>
#include <chrono>

#include "core/settings/settings_keys.h"
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

}  // namespace
}  // namespace vellumark::bench
