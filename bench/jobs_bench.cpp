// Speed of Jobs, beside the raw engine reading and writing the same rows.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <chrono>

#include "core/jobs/job_numbers.h"
#include "core/jobs/job_record.h"
#include "core/jobs/job_stock.h"
#include "core/session/stock_lines.h"
#include "large_room.h"

namespace vellumark::bench {
namespace {

constexpr int kJobs = 100000;
constexpr int kItems = 200;  // of the one Job that is opened
constexpr const char* kLarge = "J050000";

// 100,000 Jobs of one item each, and one of 200 items more; all of the first Basic Color.
struct JobsRoom : LargeRoom {
  explicit JobsRoom(const std::filesystem::path& place = OrdinaryDisk()) : LargeRoom(1000, place) {
    Transaction transaction(session.File());
    RowWriter rows(session.File(), schema::JobRecords, "JobRecords",
                   {"JobNumber", "Color_Name", "Database", "BatchNo", "ItemType", "UnitCost", "VOC", "HAP", "LotNumber",
                    "LotRefID", "QtyIssued", "QtyUsed", "Date_Entered", "Date_Returned"});
    int item = kLastJobBatch;
    const auto add = [&](const std::string& job) {
      rows.Set(0, job).Set(1, maker.BasicName(0)).Set(2, "INK").Set(3, ++item).Set(4, 1).Set(5, 4.25F).Set(6, 0.5F);
      rows.Set(7, 0.1F).Set(8, "Unlotted Inv.").Set(9, 0).Set(10, 20.0F).Set(11, 10.0F);
      rows.Set(12, DateTime{2025, 3, 10, 8, 0, 0}).Set(13, DateTime{2025, 3, 10, 8, 0, 0});
      rows.Insert();
    };
    for (int job = 0; job < kJobs; ++job) {
      add(fmt::format("J{:06}", job));
      for (int n = 1; n < kItems && job == kJobs / 2; ++n) add(kLarge);
    }
    transaction.Commit();
  }
};

JobsRoom& Room() {
  static JobsRoom room;
  return room;
}

void Time(benchmark::State& state, const std::function<bool()>& work) {
  double best = 1e9;
  for (auto unused : state) {
    const auto begin = std::chrono::steady_clock::now();
    if (!work()) state.SkipWithError("the answer is not what it should be");
    best = std::min(best, std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
  }
  state.counters["ms"] = best;
}

// ---- job_open_100k: the 200 items of a Job and what they come to

void OpenOurs(benchmark::State& state) {
  const Session& session = Room().session;
  Time(state, [&] {
    const Job job = LoadJob(session, kLarge);
    return job.items.size() == kItems && job.totals.QtyUsed == 2000;
  });
}
// The same fields of the same rows, and the sum.
void OpenRaw(benchmark::State& state) {
  Database& file = Room().session.File();
  const std::string query = fmt::format("SELECT RowKey, {} FROM JobRecords WHERE JobNumber = ?1 ORDER BY Date_Entered, RowKey",
                                        JobFields().Columns());
  const int fields = static_cast<int>(JobFields().size()) + 1;
  Time(state, [&] {
    Statement row = file.Prepare(query);
    row.Bind(1, kLarge);
    std::vector<std::vector<Value>> rows;
    double used = 0;
    while (row.Step()) {
      auto& cells = rows.emplace_back();
      cells.reserve(static_cast<std::size_t>(fields));
      for (int i = 0; i < fields; ++i) cells.push_back(row.Get(i));
      used += cells[18].Number();
    }
    return rows.size() == kItems && used == 2000;
  });
}
BENCHMARK(OpenOurs)->Name("job_open_100k/ours")->Unit(benchmark::kMillisecond)->Iterations(50);
BENCHMARK(OpenRaw)->Name("job_open_100k/raw")->Unit(benchmark::kMillisecond)->Iterations(50);

// ---- job_numbers_100k: the list of all numbers

void NumbersOurs(benchmark::State& state) {
  const Session& session = Room().session;
  Time(state, [&] {
    const std::vector<std::string> numbers = JobNumbers(session);
    return numbers.size() == kJobs && numbers.back() == "J099999";
  });
}
void NumbersRaw(benchmark::State& state) {
  Database& file = Room().session.File();
  Time(state, [&] {
    std::vector<std::string> numbers;
    for (Statement row = file.Prepare("SELECT DISTINCT JobNumber FROM JobRecords ORDER BY JobNumber"); row.Step();)
      numbers.push_back(row.Text(0));
    return numbers.size() == kJobs && numbers.back() == "J099999";
  });
}
BENCHMARK(NumbersOurs)->Name("job_numbers_100k/ours")->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(NumbersRaw)->Name("job_numbers_100k/raw")->Unit(benchmark::kMillisecond)->Iterations(10);

// ---- job_set_used: what was really used of an item, up and down by turns, each saved for itself

constexpr int kSets = 100;

float Used(int round) {
  return round % 2 == 0 ? 9.5F : 10.0F;
}

void SetOurs(benchmark::State& state, const std::filesystem::path& place) {
  JobsRoom room(place);
  const std::vector<JobRecord> items = JobItems(room.session, kLarge);
  int round = 0;
  for (auto unused : state) {
    for (int i = 0; i < kSets; ++i)
      if (!SetQtyUsed(room.session, items[static_cast<std::size_t>(i)].row, fmt::format("{}", Used(round))))
        state.SkipWithError("a quantity was refused");
    ++round;
  }
  if (ReadJobRecord(room.session, items[0].row)->QtyUsed != Used(round - 1)) state.SkipWithError("nothing was written");
}
// The same rows with the same durability: the row of the Job, the stock, its line in the history.
void SetRaw(benchmark::State& state, const std::filesystem::path& place) {
  JobsRoom room(place);
  Database& file = room.session.File();
  const std::vector<JobRecord> items = JobItems(room.session, kLarge);
  Statement begin = file.Prepare("BEGIN IMMEDIATE");
  Statement commit = file.Prepare("COMMIT");
  Statement job = file.Prepare("UPDATE JobRecords SET QtyUsed = ?2, Date_Returned = '2026-03-10 00:00:00' WHERE RowKey = ?1");
  Statement stock = file.Prepare("UPDATE INK_Basic SET Inventory = Inventory + ?2 WHERE Color_Name = ?1");
  Statement line = file.Prepare(
      "INSERT INTO MSysStockHistory (Moment, Username, Source, Kind, Database, Color_Name, LotRefID, LotNumber, Change, "
      "Result, Document, Reason) SELECT '2026-03-10 12:00:00', '', 6, 1, 'INK', Color_Name, 0, '', ?2, Inventory, "
      "'J050000', 'Item 1050001: Qty Used 10.000 to 9.500' FROM INK_Basic WHERE Color_Name = ?1");
  int round = 0;
  for (auto unused : state) {
    for (int i = 0; i < kSets; ++i) {
      const float change = round % 2 == 0 ? 0.5F : -0.5F;
      begin.Run();
      job.Bind(1, items[static_cast<std::size_t>(i)].row).Bind(2, Used(round)).Run();
      stock.Bind(1, room.maker.BasicName(0)).Bind(2, change).Run();
      line.Bind(1, room.maker.BasicName(0)).Bind(2, change).Run();
      commit.Run();
    }
    ++round;
  }
  if (ReadJobRecord(room.session, items[0].row)->QtyUsed != Used(round - 1)) state.SkipWithError("nothing was written");
}
BENCHMARK_CAPTURE(SetOurs, disk, OrdinaryDisk())->Name("job_set_used/ours")->Unit(benchmark::kMillisecond)->Iterations(4);
BENCHMARK_CAPTURE(SetRaw, disk, OrdinaryDisk())->Name("job_set_used/raw")->Unit(benchmark::kMillisecond)->Iterations(4);

}  // namespace
}  // namespace vellumark::bench
