// A process killed while Batches are saved, opened, changed and deleted leaves each of them before or after, never
// between; one that it left open is closed by the next start, which says so.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <random>
#include <set>

#include "core/batch/life_room.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;
using std::chrono::microseconds;
using test::PinkRoom;
using test::Use;

constexpr int kKills = 500;

struct Bench : PinkRoom {
  Bench() {
    Formula("ROSE", {{"RED", 50.0F}, {"WHITE", 50.0F}}, 30);
    for (const char* name : {"RED", "WHITE"})
      for (const std::int32_t ref : {1, 2}) Lot(ColorKind::Basic, name, ref, 40);
    Setting("InvCutoff", "0.5");
    // Enough of everything that a save touches more pages than one.
    const test::Arranging arranging;
    Transaction transaction(session.File());
    for (int i = 0; i < 400; ++i)
      AddRow(schema::Batch, {{"Color_Name", "ROSE"},
                             {"BatchNo", 500 + i},
                             {"Quantity", 1.0F},
                             {"ActualQuantity", 1.0F},
                             {"UMF", 1},
                             {"LotRefID", 0},
                             {"IngName0", "WHITE"},
                             {"IngQty0", 1.0F},
                             {"IngType0", 1},
                             {"Date_Entered", DateTime{2026, 3, 9, 8, 0, 0}},
                             {"Notes", std::string(300, 'n')}});
    transaction.Commit();
    // What stands in the file is what later states are compared with.
    session.DataFileDB.reset();
    fs::copy_file(file, pristine);
  }

  void Reopen() {
    session.DataFileDB = Database::Open(file, OpenMode::Exclusive);
    session.DataFileDB->SetChanges(&session.changes);
    session.BatchNumber = static_cast<std::int32_t>(session.File().Scalar("SELECT BatchNumber FROM FileInfo").Whole());
  }
  void Pristine() {
    session.DataFileDB.reset();
    fs::remove(file.string() + "-journal");
    fs::copy_file(pristine, file, fs::copy_options::overwrite_existing);
  }

  fs::path file = session.DataFileName;
  fs::path pristine = folder / "pristine.vkd";
};

// Saves, openings and a deletion, one after the other; `settled` is called whenever no Batch is open.
void WorkAtTheBench(Bench& bench, const std::function<void()>& settled) {
  Session& session = bench.session;
  const auto must = [](bool done) {
    if (!done) throw std::runtime_error("the work at the bench was refused");
  };
  for (int round = 0; round < 2; ++round) {
    bench.Mixed("PINK", "40");
    bench.Select(0, {Use(1, 25), Use(2, 5)});
    bench.Select(1, {Use(1, 9.8F)});
    must(SaveJobItems(session, bench.record, {{"J1", "10"}, {"J2", "5"}}).has_value());
    bench.record.fields.LotNumber = "MADE";
    const std::int32_t number = bench.Save();
    settled();
    bench.Open(number);
    must(CancelBatch(session, bench.record).value_or(false));
    settled();
    bench.Open(number);
    bench.Remix("44");
    bench.Select(1, {Use(2, 11)});
    must(SaveBatch(session, bench.record, bench.dialogs, nullptr, MoveOn::Nowhere).has_value());
    settled();
    bench.Open(500 + round);
    must(NextBatch(session, bench.record, bench.dialogs).value_or(false));
    must(CancelBatch(session, bench.record).value_or(false));
    settled();
    bench.Open(number);
    bench.prompt.Expect("Batch Window - Delete Batch?", Answer::Yes)
        .Expect("Batch Window - Update Inventories?", round == 0 ? Answer::Yes : Answer::No);
    must(DeleteBatch(session, bench.record, bench.dialogs, MoveOn::Nowhere).value_or(false));
    settled();
  }
}

TEST(BatchKills, EveryBatchStandsBeforeOrAfter) {
  Bench bench;
  bench.Reopen();
  std::set<std::string> states{bench.Data()};
  const auto begin = std::chrono::steady_clock::now();
  WorkAtTheBench(bench, [&] { states.insert(bench.Data()); });
  const auto whole = std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now() - begin);
  ASSERT_FALSE(HasFailure());
  ASSERT_GE(states.size(), 6U);

  std::mt19937_64 random(7);
  std::set<std::string> met;
  int healed = 0;
  for (int i = 0; i < kKills; ++i) {
    bench.Pristine();
    const pid_t child = ::fork();
    if (child == 0) {
      bench.Reopen();
      WorkAtTheBench(bench, [] {});
      bench.session.DataFileDB.reset();
      ::_exit(0);
    }
    ::usleep(static_cast<useconds_t>(random() % static_cast<unsigned>(whole.count() * 11 / 10)));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    bench.Reopen();
    if (!MarkedBatches(bench.session.File()).empty()) {
      bench.prompt.Expect("Open Batch");
      ++healed;
    }
    HealAbandonedBatches(bench.session);
    bench.sound.Expect(bench.session, CheckState::Closed);
    const std::string state = bench.Data();
    ASSERT_TRUE(states.contains(state)) << "between, at kill " << i << "\n" << state;
    met.insert(state);
  }
  // Kills fell all along the work, on open Batches too.
  EXPECT_GT(healed, kKills / 50);
  EXPECT_GE(met.size(), 5U);
  RecordProperty("healed", healed);
  RecordProperty("states", static_cast<int>(met.size()));
}

}  // namespace
}  // namespace vellumark
