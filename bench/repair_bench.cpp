// The repair of a file of 100,000 formulas, beside its copy and the engine's own check and compaction of it.

#include <benchmark/benchmark.h>

#include "core/backup/repair.h"
#include "core/base/files.h"
#include "large_room.h"

namespace vellumark::bench {
namespace {

namespace fs = std::filesystem;

// A copy of the large file in a folder of its own, closed.
struct CopiedFile {
  CopiedFile() {
    LargeRoom& room = Room100k();
    folder = room.folder / "Repair";
    fs::remove_all(folder);
    fs::create_directories(folder);
    path = folder / "Large.vkd";
    room.session.File().CopyCompacted(path);
  }
  ~CopiedFile() { fs::remove_all(folder); }
  fs::path folder;
  fs::path path;
};

void RepairOurs(benchmark::State& state) {
  LargeRoom& room = Room100k();
  for (auto unused : state) {
    state.PauseTiming();
    const CopiedFile copy;
    SilentPrompt prompt;
    NoProgress progress;
    Session session(prompt, progress, room.clock);
    session.support = std::make_unique<SupportFiles>(room.session.DataFolder);
    session.DataFileName = copy.path.string();
    PeakMemory::Reset();
    state.ResumeTiming();
    if (!MendDataFile(session, [] { return Result<void>{}; })) state.SkipWithError("nothing was repaired");
    state.PauseTiming();
    state.counters["peak_mb"] = PeakMemory::Mb();
    state.ResumeTiming();
  }
}
BENCHMARK(RepairOurs)->Name("repair_100k/ours")->Unit(benchmark::kMillisecond)->Iterations(2);

void RepairRaw(benchmark::State& state) {
  for (auto unused : state) {
    state.PauseTiming();
    const CopiedFile copy;
    state.ResumeTiming();
    ReplaceFile(copy.folder / "Kept.vkd", ReadFileBytes(copy.path));
    ReplaceFile(copy.folder / "Work.vkd", ReadFileBytes(copy.path));
    const auto file = Database::Open(copy.folder / "Work.vkd", OpenMode::Exclusive);
    if (!file->Faults().empty()) state.SkipWithError("the copy is not whole");
    file->CopyCompacted(copy.folder / "Done.vkd");
  }
}
BENCHMARK(RepairRaw)->Name("repair_100k/raw")->Unit(benchmark::kMillisecond)->Iterations(2);

}  // namespace
}  // namespace vellumark::bench
