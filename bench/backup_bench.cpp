// Backup with its proof and restore of a gigabyte, beside a plain copy of the same files and its sync; the check of every
// row of 100,000 formulas, beside a plain walk through them.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>

#include "core/backup/backup_set.h"
#include "core/backup/deep_check.h"
#include "core/backup/restore.h"
#include "core/base/disk_sync.h"
#include "core/base/files.h"
#include "core/datafile/row_checks.h"
#include "large_room.h"

namespace vellumark::bench {
namespace {

namespace fs = std::filesystem;

// ---- check_rows_100k, check_deep_100k

void CheckRowsOurs(benchmark::State& state) {
  Database& file = Room100k().session.File();
  double best = 1e9;
  for (auto unused : state) {
    const auto begin = std::chrono::steady_clock::now();
    ForEachStrayRow(
        file, [&](const StrayRow&) { state.SkipWithError("a row is not as it was written"); },
        [](std::int64_t, std::int64_t) { return true; });
    best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
  }
  state.counters["ms"] = best * 1000;
}
BENCHMARK(CheckRowsOurs)->Name("check_rows_100k/ours")->Unit(benchmark::kMillisecond)->Iterations(3);

void CheckRowsRaw(benchmark::State& state) {
  Database& file = Room100k().session.File();
  for (auto unused : state)
    for (const std::string& table : file.TableNames()) {
      Statement rows = file.Prepare("SELECT * FROM " + Quoted(table));
      const int columns = rows.ColumnCount();
      std::size_t bytes = 0;
      while (rows.Step())
        for (int column = 0; column < columns; ++column)
          if (!rows.IsNull(column)) bytes += static_cast<std::size_t>(rows.Whole(column) & 1);
      benchmark::DoNotOptimize(bytes);
    }
}
BENCHMARK(CheckRowsRaw)->Name("check_rows_100k/raw")->Unit(benchmark::kMillisecond)->Iterations(3);

// As `file check` looks at it, which only reads.
void CheckDeepOurs(benchmark::State& state) {
  const ClosedRoom closed;
  Session& session = closed.room.session;
  session.DataFileDB = Database::Open(closed.room.path, OpenMode::ReadOnly);
  double best = 1e9;
  for (auto unused : state) {
    const auto begin = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(CheckDataFileRules(session, CheckDepth::Deep, CheckState::InUse));
    best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
  }
  state.counters["ms"] = best * 1000;
  session.DataFileDB.reset();
}
BENCHMARK(CheckDeepOurs)->Name("check_deep_100k/ours")->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(CheckRowsRaw)->Name("check_deep_100k/raw")->Unit(benchmark::kMillisecond)->Iterations(2);

// ---- backup_1gb, restore_1gb

// The large Data File, closed, and as many photos beside it as make a gigabyte.
struct Gigabyte {
  Gigabyte() {
    constexpr std::size_t kPhoto = std::size_t{1} << 20;
    fs::create_directories(photos);
    std::string bytes(kPhoto, '\0');
    std::mt19937_64 random(20260310);
    std::size_t all = fs::file_size(closed.room.path);
    for (int n = 0; all < (std::size_t{1} << 30); ++n, all += kPhoto) {
      for (std::size_t at = 0; at < kPhoto; at += sizeof(std::uint64_t)) {
        const std::uint64_t word = random();
        bytes.replace(at, sizeof word, reinterpret_cast<const char*>(&word), sizeof word);
      }
      std::ofstream(photos / ("photo" + std::to_string(n) + ".jpg"), std::ios::binary) << bytes;
    }
    ::sync();
  }
  ~Gigabyte() {
    fs::remove_all(photos);
    fs::remove_all(target);
  }
  Gigabyte(const Gigabyte&) = delete;
  Gigabyte& operator=(const Gigabyte&) = delete;

  ClosedRoom closed;
  fs::path photos = closed.room.folder / "DesignPhotos";
  fs::path target = closed.room.folder / "Stick";
};

void PlainCopy(const Gigabyte& files) {
  fs::create_directories(files.target);
  const std::string words = "cp -r '" + files.closed.room.path.string() + "' '" + files.photos.string() + "' '" +
                            files.target.string() + "' && sync -f '" + files.target.string() + "'";
  if (std::system(words.c_str()) != 0) throw std::runtime_error("cp failed");
}

void BackupOurs(benchmark::State& state) {
  const Gigabyte files;
  for (auto unused : state) {
    MakeBackupSet(files.closed.room.session, files.closed.room.path, files.target);
    state.PauseTiming();
    fs::remove_all(files.target);
    ::sync();
    state.ResumeTiming();
  }
}
BENCHMARK(BackupOurs)->Name("backup_1gb/ours")->Unit(benchmark::kMillisecond)->Iterations(2);

// The copying alone, without the proof.
void BackupCopyOurs(benchmark::State& state) {
  const Gigabyte files;
  for (auto unused : state) {
    fs::create_directories(files.target);
    std::vector<fs::path> copies{files.target / "Large.vkd"};
    CopyUnsynced(files.closed.room.path, copies.front(), "Large.vkd");
    for (const fs::path& photo : PhotosIn(files.photos)) {
      copies.push_back(files.target / photo.filename());
      CopyUnsynced(photo, copies.back(), photo.filename().string());
    }
    if (platform::SyncFiles(files.target, copies)) state.SkipWithError("the copies are not on the disk");
    state.PauseTiming();
    fs::remove_all(files.target);
    ::sync();
    state.ResumeTiming();
  }
}
BENCHMARK(BackupCopyOurs)->Name("backup_copy_1gb/ours")->Unit(benchmark::kMillisecond)->Iterations(2);

void CopyRaw(benchmark::State& state) {
  const Gigabyte files;
  for (auto unused : state) {
    PlainCopy(files);
    state.PauseTiming();
    fs::remove_all(files.target);
    ::sync();
    state.ResumeTiming();
  }
}
BENCHMARK(CopyRaw)->Name("backup_1gb/raw")->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(CopyRaw)->Name("backup_copy_1gb/raw")->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(CopyRaw)->Name("restore_1gb/raw")->Unit(benchmark::kMillisecond)->Iterations(2);

// Of a set, which is looked at first.
void RestoreOurs(benchmark::State& state) {
  const Gigabyte files;
  Session& session = files.closed.room.session;
  BackupSet set = MakeBackupSet(session, files.closed.room.path, files.target);
  set.proof->content.faults.clear();  // the figures of the large room are made up, and its sums say so
  fs::remove_all(files.photos);  // what is there already would not be copied
  ::sync();
  for (auto unused : state) {
    if (const SetCheck check = VerifySet(session, set, Reproof::IfNeeded); check.content.tables.empty())
      state.SkipWithError("the set was not proven");
    const RestoredFiles restored =
        PutDataFileBack(session, set.dataFile, set.folder / kPhotoFolderOfSet, files.closed.room.path);
    state.PauseTiming();
    fs::remove_all(restored.kept);
    fs::remove_all(files.photos);
    ::sync();
    state.ResumeTiming();
  }
}
BENCHMARK(RestoreOurs)->Name("restore_1gb/ours")->Unit(benchmark::kMillisecond)->Iterations(2);

}  // namespace
}  // namespace vellumark::bench
