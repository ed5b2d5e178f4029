// Speed of scanned bookings, beside the raw engine writing the same rows with the same durability.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "core/datafile/job_links.h"
#include "core/labels/scan_return.h"
#include "large_room.h"

namespace vellumark::bench {
namespace {

constexpr int kRecords = 1000;
constexpr int kColors = 60;
constexpr double kEach = 1.125;
constexpr float kOut = 50000;

// Sixty colours with a lot each, all of them out on a job of their own.
struct ScanRoom : LargeRoom {
  explicit ScanRoom(const std::filesystem::path& place) : LargeRoom(1000, place) {
    session.InvLotTracking = 1;
    Transaction transaction(session.File());
    for (int i = 0; i < kColors; ++i) {
      const std::string name = maker.BasicName(i);
      InsertRow(session.File(), schema::BasicLotInv, "INK_Basic_LotInv",
                {{"LotRefID", 1}, {"LotCName", name}, {"LotNumber", "L"}, {"LotQty", 100.0F}, {"LotPrice", 4.5F}});
      InsertRow(session.File(), schema::JobRecords, "JobRecords",
                {{"JobNumber", Job(i)},
                 {"Color_Name", name},
                 {"Database", "INK"},
                 {"BatchNo", kLastJobBatch + 1 + i},
                 {"ItemType", 1},
                 {"LotRefID", 1},
                 {"LotNumber", "L"},
                 {"QtyIssued", kOut},
                 {"QtyUsed", kOut},
                 {"Date_Entered", DateTime{2026, 3, 1}}});
    }
    transaction.Commit();
  }
  static std::string Job(int color) { return "J-" + std::to_string(1000 + color); }
  /// Every second record brings ink back from its job, the others add it to stock.
  static bool Returns(int record) { return record % 2 == 1; }

  // What was booked is there: once in the lots, and half of it less on the jobs.
  bool IsRight(int runs) {
    const double booked = runs * kRecords * kEach;
    const double lots =
        session.File().Scalar("SELECT SUM(LotQty) FROM INK_Basic_LotInv WHERE LotNumber = 'L'").Number();
    const double used = session.File().Scalar("SELECT SUM(QtyUsed) FROM JobRecords").Number();
    return std::abs(lots - kColors * 100.0 - booked) < 1 && std::abs(kColors * double{kOut} - used - booked / 2) < 1;
  }
};

void ScanOurs(benchmark::State& state, const std::filesystem::path& place) {
  ScanRoom room(place);
  std::string text;
  for (int i = 0; i < kRecords; ++i) {
    if (ScanRoom::Returns(i)) text += "<JN>" + ScanRoom::Job(i % kColors) + "\r";
    text += fmt::format("<CN>{}\r<DB>INK\r<LN>L\r{}\r", room.maker.BasicName(i % kColors), kEach);
  }
  int runs = 0;
  for (auto unused : state) {
    for (ScanRecord& record : ParseScan(text)) {
      BookScan(room.session, record);
      if (record.state != ScanRecord::State::Successful) state.SkipWithError(record.Message.c_str());
    }
    ++runs;
  }
  if (!room.IsRight(runs)) state.SkipWithError("stock and jobs do not hold what was scanned");
}
BENCHMARK_CAPTURE(ScanOurs, disk, OrdinaryDisk())->Name("scan_1k/ours")->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_CAPTURE(ScanOurs, memory, kMemoryDisk)
    ->Name("scan_1k_memory/ours")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

void ScanRaw(benchmark::State& state, const std::filesystem::path& place) {
  ScanRoom room(place);
  Database& file = room.session.File();
  Statement begin = file.Prepare("BEGIN IMMEDIATE");
  Statement commit = file.Prepare("COMMIT");
  Statement job = file.Prepare(
      "UPDATE JobRecords SET QtyUsed = QtyUsed - 1.125, Date_Returned = '2026-03-10 00:00:00' WHERE JobNumber = ?1 AND "
      "Color_Name = ?2");
  Statement lot =
      file.Prepare("UPDATE INK_Basic_LotInv SET LotQty = LotQty + 1.125 WHERE LotCName = ?1 AND LotNumber = 'L'");
  Statement line = file.Prepare(
      "INSERT INTO MSysStockHistory (Moment, Username, Source, Kind, Database, Color_Name, LotRefID, LotNumber, "
      "Change, "
      "Result, Document, Reason) SELECT '2026-03-10 12:00:00', '', 8, 1, 'INK', LotCName, LotRefID, LotNumber, 1.125, "
      "LotQty, ?2, '' FROM INK_Basic_LotInv WHERE LotCName = ?1 AND LotNumber = 'L'");
  int runs = 0;
  for (auto unused : state) {
    for (int i = 0; i < kRecords; ++i) {
      const std::string name = room.maker.BasicName(i % kColors);
      const std::string number = ScanRoom::Returns(i) ? ScanRoom::Job(i % kColors) : std::string();
      begin.Run();
      if (!number.empty()) job.Bind(1, number).Bind(2, name).Run();
      lot.Bind(1, name).Run();
      line.Bind(1, name).Bind(2, number).Run();
      commit.Run();
    }
    ++runs;
  }
  if (!room.IsRight(runs)) state.SkipWithError("stock and jobs do not hold what was scanned");
}
BENCHMARK_CAPTURE(ScanRaw, disk, OrdinaryDisk())->Name("scan_1k/raw")->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_CAPTURE(ScanRaw, memory, kMemoryDisk)
    ->Name("scan_1k_memory/raw")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

}  // namespace
}  // namespace vellumark::bench
