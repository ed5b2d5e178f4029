// Speed of a Batch's life, beside the raw engine writing the same rows with the same durability.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <chrono>

#include "core/batch/bench.h"
#include "core/batch/leave.h"
#include "core/batch/open.h"
#include "core/batch/saving.h"
#include "large_room.h"

namespace vellumark::bench {
namespace {

constexpr int kIngredients = 14;
constexpr int kAdditions = 6;
constexpr int kLines = kIngredients + kAdditions;

// Twenty basics with a lot each, and a formula of fourteen of them.
struct BatchRoom : LargeRoom {
  explicit BatchRoom(const std::filesystem::path& place = OrdinaryDisk()) : LargeRoom(1000, place) {
    session.support->settings.SetSupportValue("BatchLotNumReminder", "0");
    Transaction transaction(session.File());
    std::vector<Cell> cells{{"Color_Name", "HOUSE GREY"}, {"Color_Code", "H"}, {"Inventory", 0.0F}, {"LotRefID", 0}};
    std::string set;
    for (int i = 0; i < kLines; ++i) {
      const std::string name = maker.BasicName(i);
      InsertRow(session.File(), schema::BasicLotInv, "INK_Basic_LotInv",
                {{"LotRefID", 1}, {"LotCName", name}, {"LotNumber", "L"}, {"LotQty", 90000.0F}, {"LotPrice", 4.5F}});
      if (i >= kIngredients) continue;
      set += "<" + name + ">";
      cells.emplace_back(schema::Numbered("BC", i), name);
      cells.emplace_back(schema::Numbered("BQ", i), i == 0 ? 9.0F : 7.0F);
    }
    cells.emplace_back("Color_Set", set);
    InsertRow(session.File(), schema::Mix, "INK_Mix", cells);
    transaction.Commit();
  }

  BatchRecord Calculated() {
    BatchRecord record = NewBatchRecord(session);
    std::vector<AdditionLine> additions;
    for (int i = kIngredients; i < kLines; ++i) additions.push_back({maker.BasicName(i), "0.5"});
    SetQuantityText(record.work, "10");
    const bool done = EnterBatchColor(session, record, "HOUSE GREY") && MixBatch(session, record).value_or(false) &&
                      AddBatchAdditions(session, record, additions);
    if (!done) throw std::runtime_error("the Batch was refused");
    for (std::size_t row = 0; row < record.work.Rows.size(); ++row) {
      LotUse use{.LotRefID = 1, .LotNumber = "L", .LotQty = static_cast<float>(record.work.Rows[row].amount)};
      if (!SetRowLots(session, record, row, LotSelection{{use}})) throw std::runtime_error("the lots were refused");
    }
    record.fields.LotNumber = "MADE";
    return record;
  }
};

// ---- batch_save: a Batch of twenty lines out of twenty lots

void SaveOurs(benchmark::State& state, const std::filesystem::path& place) {
  BatchRoom room(place);
  NoBatchDialogs dialogs;
  for (auto unused : state) {
    state.PauseTiming();
    BatchRecord record = room.Calculated();
    state.ResumeTiming();
    const auto stored = StoreBatch(room.session, record, dialogs, AfterStore{});
    if (!stored || *stored != SaveEnd::Stored) state.SkipWithError("the Batch was not stored");
  }
}
BENCHMARK_CAPTURE(SaveOurs, disk, OrdinaryDisk())
    ->Name("batch_save/ours")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(40);
BENCHMARK_CAPTURE(SaveOurs, memory, kMemoryDisk)
    ->Name("batch_save_memory/ours")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(40);

constexpr const char* kHistory =
    "INSERT INTO MSysStockHistory (Moment, Username, Source, Kind, Database, Color_Name, LotRefID, LotNumber, Change, "
    "Result, Document, Reason) VALUES ('2026-03-10 12:00:00', '', ?1, ?2, 'INK', ?3, ?4, 'L', ?5, 90000.0, '000001', "
    "'')";

std::string BatchRowSql() {
  std::string marks;
  for (std::size_t i = 0; i < schema::Batch.fields.size(); ++i) marks += i == 0 ? "?" : ", ?";
  return "INSERT INTO INK_Batch VALUES (" + marks + ", NULL)";
}

void BindBatchRow(Statement& row, const BatchRoom& room, int number) {
  int parameter = 1;
  for (const Field& field : schema::Batch.fields) {
    if (field.name == "BatchNo") {
      row.Bind(parameter, number);
    } else if (field.name == "Date_Entered") {
      row.Bind(parameter, "2026-03-10 12:00:00");
    } else if (field.name.starts_with("IngName")) {
      row.Bind(parameter, room.maker.BasicName(parameter % kLines));
    } else if (field.type == FieldType::Text || field.type == FieldType::Memo) {
      row.Bind(parameter, "HOUSE GREY");
    } else {
      row.Bind(parameter, 0.7F);
    }
    ++parameter;
  }
}

void SaveRaw(benchmark::State& state, const std::filesystem::path& place) {
  BatchRoom room(place);
  Database& file = room.session.File();
  NoBatchDialogs dialogs;
  BatchRecord first = room.Calculated();  // makes the table of the history
  if (!StoreBatch(room.session, first, dialogs, AfterStore{})) state.SkipWithError("the Batch was not stored");
  Statement begin = file.Prepare("BEGIN IMMEDIATE");
  Statement commit = file.Prepare("COMMIT");
  Statement batch = file.Prepare(BatchRowSql());
  Statement lot = file.Prepare(
      "INSERT INTO INK_Batch_LotInv VALUES (?1, '2026-03-10 12:00:00', ?2, 1, 1, 'L', '', '', NULL, 0.7, 4.5, NULL)");
  Statement stock =
      file.Prepare("UPDATE INK_Basic_LotInv SET LotQty = LotQty - 0.7 WHERE LotCName = ?1 AND LotRefID = 1");
  Statement consumed = file.Prepare("UPDATE INK_Basic SET LastConsumed = '2026-03-10 12:00:00' WHERE Color_Name = ?1");
  Statement produced = file.Prepare(
      "UPDATE INK_Mix SET LastProduced = '2026-03-10 12:00:00', LotRefID = ?1 WHERE Color_Name = 'HOUSE GREY'");
  Statement made = file.Prepare(
      "INSERT INTO INK_Mix_LotInv VALUES (?1, 'HOUSE GREY', 'MADE', '', '', '2026-03-10 00:00:00', 13.0, 0.0, 0, "
      "NULL)");
  Statement history = file.Prepare(kHistory);
  Statement counter = file.Prepare("UPDATE FileInfo SET BatchNumber = ?1");
  int number = 1000;
  for (auto unused : state) {
    ++number;
    begin.Run();
    BindBatchRow(batch, room, number);
    batch.Run();
    made.Bind(1, number).Run();
    produced.Bind(1, number).Run();
    history.Bind(1, 5).Bind(2, 2).Bind(3, "HOUSE GREY").Bind(4, number).Bind(5, 13.0).Run();
    for (int i = 0; i < kLines; ++i) {
      const std::string name = room.maker.BasicName(i);
      lot.Bind(1, number).Bind(2, name).Run();
      stock.Bind(1, name).Run();
      consumed.Bind(1, name).Run();
      history.Bind(1, 1).Bind(2, 1).Bind(3, name).Bind(4, 1).Bind(5, -0.7).Run();
    }
    counter.Bind(1, number).Run();
    commit.Run();
  }
}
BENCHMARK_CAPTURE(SaveRaw, disk, OrdinaryDisk())->Name("batch_save/raw")->Unit(benchmark::kMillisecond)->Iterations(40);
BENCHMARK_CAPTURE(SaveRaw, memory, kMemoryDisk)
    ->Name("batch_save_memory/raw")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(40);

// ---- batch_next: from Batch to Batch over 100,000 of them

constexpr int kBatches = 100000;
constexpr int kBatchLines = 5;

BatchRoom& RoomOfBatches() {
  static BatchRoom room;
  static const bool filled = [] {
    Database& file = room.session.File();
    Transaction transaction(file);
    std::vector<std::string> fields{"Color_Name",     "BatchNo", "Date_Entered", "Quantity",
                                    "ActualQuantity", "UMF",     "LotRefID"};
    for (const char* word : {"IngName", "IngQty", "IngType"})
      for (int i = 0; i < kBatchLines; ++i) fields.push_back(schema::Numbered(word, i));
    RowWriter batch(file, schema::Batch, "INK_Batch", fields);
    RowWriter lot(file, schema::BatchLotInv, "INK_Batch_LotInv",
                  {"BatchNo", "DateEntered", "IngName", "IngType", "LotRefID", "LotNumber", "LotQty", "LotPrice"});
    const DateTime date{2026, 3, 9, 8, 0, 0};
    for (int n = 1; n <= kBatches; ++n) {
      batch.Set(0, "SPOT COLOUR " + std::to_string(n % 1000)).Set(1, n).Set(2, date);
      batch.Set(3, 10.0F).Set(4, 10.0F).Set(5, 1).Set(6, 0);
      for (int i = 0; i < kBatchLines; ++i) {
        const std::string name = room.maker.BasicName((n + i) % kLines);
        std::size_t at = 7 + static_cast<std::size_t>(i);
        for (const Value& value : {Value(name), Value(2.0F), Value(1)}) {
          batch.Set(at, value);
          at += kBatchLines;
        }
        lot.Set(0, n).Set(1, date).Set(2, name).Set(3, 1).Set(4, 1).Set(5, "L").Set(6, 2.0F).Set(7, 4.5F).Insert();
      }
      batch.Insert();
    }
    transaction.Commit();
    return true;
  }();
  benchmark::DoNotOptimize(filled);
  return room;
}

constexpr int kSteps = 20;

void NextOurs(benchmark::State& state) {
  BatchRoom& room = RoomOfBatches();
  NoBatchDialogs dialogs;
  BatchRecord record;
  if (!OpenBatch(room.session, record, kBatches / 2)) state.SkipWithError("the Batch was not found");
  double slowest = 0;
  for (auto unused : state) {
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < kSteps; ++i)
      if (!NextBatch(room.session, record, dialogs).value_or(false)) state.SkipWithError("the operator stayed");
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begin;
    slowest = std::max(slowest, took.count() / kSteps);
  }
  state.counters["ms"] = slowest;
  if (!CancelBatch(room.session, record).value_or(false)) state.SkipWithError("the Batch was not left");
}
BENCHMARK(NextOurs)->Name("batch_next/ours")->Unit(benchmark::kMillisecond)->Iterations(5);

void NextRaw(benchmark::State& state) {
  BatchRoom& room = RoomOfBatches();
  Database& file = room.session.File();
  BatchRecord record;  // makes the tables of the history and of the marker
  if (!OpenBatch(room.session, record, 1) || !CancelBatch(room.session, record).value_or(false))
    state.SkipWithError("the Batch was not found");
  Statement begin = file.Prepare("BEGIN IMMEDIATE");
  Statement commit = file.Prepare("COMMIT");
  Statement next = file.Prepare("SELECT * FROM INK_Batch WHERE BatchNo > ?1 ORDER BY BatchNo LIMIT 1");
  Statement lots = file.Prepare("SELECT IngName, LotQty FROM INK_Batch_LotInv WHERE BatchNo = ?1");
  Statement stock =
      file.Prepare("UPDATE INK_Basic_LotInv SET LotQty = LotQty + ?2 WHERE LotCName = ?1 AND LotRefID = 1");
  Statement history = file.Prepare(kHistory);
  Statement marker =
      file.Prepare("INSERT INTO MSysOpenBatch VALUES ('INK', ?1, 1, ?2, 1, 1, 'L', 2.0, 90000.0, 90002.0, '', NULL)");
  Statement clear = file.Prepare("DELETE FROM MSysOpenBatch");
  const auto move = [&](int number, double sign) {
    lots.Reset();
    lots.Bind(1, number);
    while (lots.Step()) {
      const std::string name = lots.Text(0);
      stock.Bind(1, name).Bind(2, sign * lots.Number(1)).Run();
      history.Bind(1, 2).Bind(2, 1).Bind(3, name).Bind(4, 1).Bind(5, sign * 2.0).Run();
      if (sign > 0) marker.Bind(1, number).Bind(2, name).Run();
    }
    lots.Reset();
  };
  int number = kBatches / 2;
  for (auto unused : state) {
    for (int i = 0; i < kSteps; ++i) {
      begin.Run();
      move(number, -1);
      clear.Run();
      next.Reset();
      next.Bind(1, number);
      benchmark::DoNotOptimize(next.Step());
      next.Reset();
      move(++number, 1);
      commit.Run();
    }
  }
}
BENCHMARK(NextRaw)->Name("batch_next/raw")->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
}  // namespace vellumark::bench
