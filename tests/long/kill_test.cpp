// A process killed at any moment leaves the Data File as it was before its work or as it is after it, never between.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <random>

#include "core/base/files.h"
#include "core/colors/basic_work.h"
#include "core/colors/rename.h"
#include "core/colors/rollup.h"
#include "core/exchange/formula_import.h"
#include "core/exchange/formula_writer.h"
#include "core/inventory/adjust.h"
#include "core/inventory/stock_resets.h"
#include "support/ink_room.h"
#include "support/notices.h"
#include "support/small_page_memory.h"
#include "support/snapshot.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;
using std::chrono::microseconds;

constexpr int kKillsPerWork = 70;

// Room enough that each piece of work writes hundreds of pages.
struct FilledRoom {
  FilledRoom() {
    const test::Arranging arranging;
    Transaction transaction(room.session.File());
    for (int i = 0; i < 20; ++i)
      room.Basic("BASIC " + std::to_string(i),
                 {{"PurchaseCost", static_cast<float>(i + 1)}, {"VOC", 0.5F}, {"HAP", 0.25F}});
    for (int i = 0; i < 4000; ++i)
      room.Mix("FORMULA " + std::to_string(i), {{"BASIC 0", 50.0F}, {"BASIC " + std::to_string(1 + i % 19), 50.0F}},
               {{"Notes", std::string(300, 'n')}});
    for (int i = 0; i < 3000; ++i)
      room.AddRow(schema::Batch, {{"Color_Name", "FORMULA 1"},
                                  {"BatchNo", i + 1},
                                  {"IngName0", "BASIC 0"},
                                  {"IngType0", 1},
                                  {"Notes", std::string(200, 'b')}});
    for (int i = 0; i < 400; ++i) {
      room.AddRow(schema::BasicLotInv, {{"LotCName", "BASIC 0"},
                                        {"LotRefID", i + 1},
                                        {"LotNumber", "LOT " + std::to_string(i)},
                                        {"LotQty", 10.0F},
                                        {"LotPrice", 1.0F}});
      room.AddRow(schema::BatchLotInv, {{"BatchNo", i + 1},
                                        {"IngName", "BASIC 0"},
                                        {"IngType", 1},
                                        {"LotRefID", i + 1},
                                        {"LotNumber", "LOT " + std::to_string(i)}});
    }
    for (int i = 0; i < 500; ++i)
      room.AddRow(
          schema::JobRecords,
          {{"JobNumber", "J" + std::to_string(i)}, {"Database", "INK"}, {"Color_Name", "BASIC 0"}, {"ItemType", 1}});
    transaction.Commit();
    room.session.DataFileDB.reset();
    fs::copy_file(room.session.DataFileName, pristine);
  }

  test::InkRoom room;
  fs::path pristine = room.folder / "pristine.vkd";
  fs::path file = room.session.DataFileName;
};

using Work = std::function<void(Session&)>;

// Runs in the child: opens the file, does the work, ends.
[[noreturn]] void DoInChild(FilledRoom& filled, const Work& work) {
  const test::SmallPageMemory small;
  Session& session = filled.room.session;
  session.DataFileDB = Database::Open(filled.file, OpenMode::Exclusive);
  work(session);
  session.DataFileDB.reset();
  ::_exit(0);
}

void Pristine(const FilledRoom& filled) {
  fs::remove(filled.file.string() + "-journal");
  fs::copy_file(filled.pristine, filled.file, fs::copy_options::overwrite_existing);
}

// What whoever opens the file next finds, sound in every row.
std::string StateOf(FilledRoom& filled) {
  Session& session = filled.room.session;
  session.DataFileDB = Database::Open(filled.file, OpenMode::Exclusive);
  RunPendingPasses(session);
  filled.room.sound.Expect(session, CheckState::Closed);
  std::string state = test::Snapshot(session.File());
  session.DataFileDB.reset();
  return state;
}

void KillMany(const Work& work) {
  FilledRoom filled;
  const std::string before = StateOf(filled);
  const auto begin = std::chrono::steady_clock::now();
  if (const pid_t child = ::fork(); child == 0) {
    DoInChild(filled, work);
  } else {
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_EQ(status, 0);
  }
  const auto whole = std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now() - begin);
  const std::string after = StateOf(filled);
  ASSERT_NE(before, after);

  std::mt19937_64 random(5);
  int untouched = 0;
  int complete = 0;
  for (int i = 0; i < kKillsPerWork; ++i) {
    Pristine(filled);
    const pid_t child = ::fork();
    if (child == 0) DoInChild(filled, work);
    ::usleep(static_cast<useconds_t>(random() % static_cast<unsigned>(whole.count() * 11 / 10)));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    const std::string state = StateOf(filled);
    if (state == before) {
      ++untouched;
    } else if (state == after) {
      ++complete;
    } else {
      FAIL() << "between, at kill " << i;
    }
  }
  // The kills fell on both sides of the commit, so they also fell near it.
  EXPECT_GT(untouched, 0);
  testing::Test::RecordProperty("untouched", untouched);
  testing::Test::RecordProperty("complete", complete);
}

TEST(Kills, Import) {
  KillMany([](Session& session) {
    FormulaFileText file(FormulaFormat::Mfe, "INK", {});
    for (int i = 0; i < 3000; ++i)
      file.Add("IMPORTED " + std::to_string(i), "", {{"BASIC 1", 40}, {"NEW BASIC " + std::to_string(i % 50), 60}});
    const fs::path path = fs::path(session.DataFileName).parent_path() / "in.mfe";
    ReplaceFile(path, file.Text());
    if (!ImportFormulas(session, path)) ::_exit(1);
  });
}

TEST(Kills, RenameOfAnIngredient) {
  KillMany([](Session& session) {
    if (!RenameBasic(session, "BASIC 0", "RENAMED")) ::_exit(1);
  });
}

// Lots changed with their copies, removed and added, unlotted stock, and the history of all of it.
TEST(Kills, StockSave) {
  KillMany([](Session& session) {
    InventoryWork work = LoadInventory(session, ColorKind::Basic, "BASIC 0");
    AdjustFields fields = ClearedFields(session, work);
    fields.quantity = 5;
    bool applied = ApplyAdjust(session, work, fields).has_value();
    for (std::size_t row = 400; row >= 1; --row) {
      fields = FieldsOfRow(session, work, row);
      fields.quantity = row % 4 == 0 ? -10.0F : 2.5F;
      fields.lotNumber += " MOVED";
      fields.location = std::string(25, 'L');
      applied = applied && ApplyAdjust(session, work, fields);
    }
    fields = ClearedFields(session, work);
    fields.lotNumber = "NEW";
    fields.count = 3000;
    fields.quantity = 2;
    if (!applied || !ApplyAdjust(session, work, fields) || !SaveInventory(session, work)) ::_exit(1);
  });
}

TEST(Kills, StockReset) {
  KillMany([](Session& session) {
    if (!ResetInventories(session, {.basics = "0", .mixes = "7"})) ::_exit(1);
  });
}

// Killed between the change and the pass over 4,000 formulas, or within the pass.
TEST(Kills, PriceAndItsPass) {
  KillMany([](Session& session) {
    BasicWork work = LoadBasicWork(session, *ReadBasic(session, "BASIC 0"));
    work.typed["PurchaseCost"] = "99";
    work.typed["VOC"] = "0.75";
    if (!SaveBasic(session, work)) ::_exit(1);
    RunPendingPasses(session);
  });
}

}  // namespace
}  // namespace vellumark
