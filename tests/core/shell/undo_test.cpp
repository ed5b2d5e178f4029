// Whatever is done can be taken back right afterwards, and leaves no trace but in the histories.

#include "core/shell/undo.h"

#include <fmt/format.h>

#include <random>

#include "core/base/text.h"
#include "core/batch/bench.h"
#include "core/batch/dialogs.h"
#include "core/batch/leave.h"
#include "core/batch/open.h"
#include "core/batch/store.h"
#include "core/colors/additive_control.h"
#include "core/colors/basic_work.h"
#include "core/colors/basics.h"
#include "core/colors/bulk_delete.h"
#include "core/colors/bulk_rename.h"
#include "core/colors/formula_modifier.h"
#include "core/colors/formula_work.h"
#include "core/colors/formulas.h"
#include "core/colors/rename.h"
#include "core/colors/resets.h"
#include "core/inventory/adjust.h"
#include "core/inventory/posting.h"
#include "core/inventory/stock_resets.h"
#include "core/jobs/job_items.h"
#include "core/labels/scan_inventory.h"
#include "core/shell/undo_room.h"

namespace vellumark::test {
namespace {

using Random = std::mt19937;

std::string Pick(const std::vector<std::string>& names, Random& random) {
  return names.empty() ? std::string() : names[random() % names.size()];
}
std::string NewName(Random& random) {
  return fmt::format("INK {}", random() % 100000);
}

struct Acted {
  const char* name;
  std::function<bool(UndoRoom&, Random&)> act;
};
const std::vector<Acted>& Acts() {
  static const std::vector<Acted> acts{
      {"rename a basic",
       [](UndoRoom& room, Random& random) {
         const auto done =
             RenameBasic(room.hands, Pick(BasicNames(room.hands, BasicFilter::All), random), NewName(random));
         return done && done->done;
       }},
      {"merge basics",
       [](UndoRoom& room, Random& random) {
         const auto names = BasicNames(room.hands, BasicFilter::Colors);
         const auto done = RenameBasic(room.hands, Pick(names, random), Pick(names, random));
         return done && done->done;
       }},
      {"rename a formula",
       [](UndoRoom& room, Random& random) {
         const auto done = RenameColor(room.hands, Pick(MixNames(room.hands), random), NewName(random));
         return done && done->done;
       }},
      {"delete a basic",
       [](UndoRoom& room, Random& random) {
         return DeleteBasic(room.hands, Pick(BasicNames(room.hands, BasicFilter::All), random)).value_or(false);
       }},
      {"delete formulas",
       [](UndoRoom& room, Random& random) {
         return DeleteFormulas(room.hands, {Pick(MixNames(room.hands), random)}).value_or(false);
       }},
      {"adjust stock",
       [](UndoRoom& room, Random& random) {
         InventoryWork work =
             LoadInventory(room.hands, ColorKind::Basic, Pick(BasicNames(room.hands, BasicFilter::All), random));
         AdjustFields fields = ClearedFields(room.hands, work);
         fields.quantity = 1.0F + static_cast<float>(random() % 50) / 4;
         fields.lotNumber = random() % 2 == 0 ? "" : fmt::format("N{}", random() % 4);
         return ApplyAdjust(room.hands, work, fields) && SaveInventory(room.hands, work).has_value();
       }},
      {"reset all stock",
       [](UndoRoom& room, Random& random) {
         return ResetInventories(room.hands, {.basics = fmt::format("{}", 200 + random() % 300)}).value_or(false);
       }},
      {"reset costs",
       [](UndoRoom& room, Random& random) {
         return ResetBasicCosts(room.hands, fmt::format("{}", 1 + random() % 9)).has_value();
       }},
      {"modify formulas",
       [](UndoRoom& room, Random& random) {
         std::vector<ModifierLine> lines(kModifierLines);
         lines[0] = {true, ModMethod::Increase, "WHITE", fmt::format("{}", 1 + random() % 20)};
         return ApplyModifier(room.hands, lines, {Pick(MixNames(room.hands), random)}).value_or(false);
       }},
      {"rename many",
       [](UndoRoom& room, Random& random) {
         return ApplyRename(room.hands, {ColorKind::Mix, NameChange::Prefix, fmt::format("P{}", random() % 10), ""},
                            {Pick(MixNames(room.hands), random)})
             .value_or(false);
       }},
      {"change a set",
       [](UndoRoom& room, Random& random) {
         AdditiveSetWork work{.SetName = "SLOW", .rows = {}};
         work.rows[0] = {"WAX", fmt::format("{}", 2 + random() % 7)};
         return EditAdditiveSet(room.hands, "SLOW", work).has_value();
       }},
      {"delete a set", [](UndoRoom& room, Random&) { return DeleteAdditiveSet(room.hands, "SLOW").value_or(false); }},
      {"make a Batch",
       [](UndoRoom& room, Random& random) {
         return room.MakeBatch(Pick(MixNames(room.hands), random), fmt::format("{}", 1 + random() % 40)).has_value();
       }},
      {"delete a Batch",
       [](UndoRoom& room, Random& random) {
         const auto number = room.MakeBatch(Pick(MixNames(room.hands), random), "12.5");
         if (!number) return false;
         BatchRecord record;
         NoBatchDialogs dialogs;
         return OpenBatch(room.hands, record, *number) &&
                DeleteBatch(room.hands, record, dialogs, MoveOn::Nowhere).value_or(false);
       }},
      {"issue to a Job",
       [](UndoRoom& room, Random& random) {
         JobItemEntry item = NewJobItem(room.hands);
         item.JobNumber = fmt::format("J{}", random() % 3);
         item.Color_Name = Pick(BasicNames(room.hands, BasicFilter::All), random);
         item.takes = {{.LotRefID = 0, .LotNumber = "", .quantity = 2.5F}};
         return AddJobItems(room.hands, item).has_value();
       }},
      {"scan",
       [](UndoRoom& room, Random& random) {
         ScanRecord record;
         record.CN = Pick(BasicNames(room.hands, BasicFilter::All), random);
         record.LN = "SCANNED";
         record.Qty = 3.25F;
         AddScannedStock(room.hands, record);
         return record.state == ScanRecord::State::Successful;
       }},
  };
  return acts;
}

class UndoSeeds : public testing::TestWithParam<unsigned> {};

// Each act is taken back and done again, on whatever the acts before it left.
TEST_P(UndoSeeds, AnActIsGoneAfterItWasTakenBack) {
  UndoRoom room;
  Random random(GetParam());
  std::map<std::string, int> done;
  for (int step = 0; step < 60; ++step) {
    const Acted& act = Acts()[random() % Acts().size()];
    SCOPED_TRACE(fmt::format("{} {}", step, act.name));
    const std::string before = room.Seen();
    const Random again = random;
    const std::int64_t last = ListUndo(room.hands).empty() ? 0 : ListUndo(room.hands).front().id;
    if (!act.act(room, random)) continue;
    if (room.Seen() == before) continue;  // what was set stood there already
    const std::vector<UndoEntry> acts = ListUndo(room.hands);
    ASSERT_FALSE(acts.empty());
    ASSERT_GT(acts.front().id, last) << "not to be taken back";
    // A deleted Batch was made first, and that goes too.
    while (!ListUndo(room.hands).empty() && ListUndo(room.hands).front().id > last) {
      const auto taken = TakeBackAct(room.hands, 0);
      ASSERT_TRUE(taken) << taken.error().text;
    }
    ASSERT_EQ(room.Seen(), before);
    ++done[act.name];
    random = again;
    ASSERT_TRUE(act.act(room, random));
  }
  EXPECT_GT(done.size(), 10U);
}

INSTANTIATE_TEST_SUITE_P(Undo, UndoSeeds, testing::Range(1U, 9U));

// What was built on an act keeps it; what has nothing to do with it does not.
TEST(Undo, IsRefusedOnceSomethingWasBuiltOnTheAct) {
  struct Case {
    const char* act;
    const char* then;
    std::function<void(Session&, UndoRoom&)> built;
    const char* why;  // null: it is taken back all the same
  };
  const Case cases[] = {
      {"rename a basic", "a formula of the new name",
       [](Session&, UndoRoom& room) {
         FormulaWork work = LoadFormulaWork(room.hands, *ReadMix(room.hands, "SKY"));
         work.AllowEditing = true;
         work.grid[2] = {"CRIMSON", "10"};
         EXPECT_TRUE(SaveMix(room.hands, work));
       },
       "CRIMSON: formulas have it now"},
      {"rename a basic", "a Batch with it", [](Session&, UndoRoom& room) { room.MakeBatch("PINK", "10"); }, "Batches"},
      {"rename a basic", "another of the old name",
       [](Session& session, UndoRoom&) { AddZeroBasic(session, "RED", false); }, "Another RED has been made since"},
      {"rename a basic", "stock of another color",
       [](Session& session, UndoRoom&) { PostStock(session, {.name = "BLUE", .quantity = 1}); }, nullptr},
      {"rename a basic", "another code",
       [](Session& session, UndoRoom&) {
         BasicWork work = LoadBasicWork(session, *ReadBasic(session, "CRIMSON"));
         work.Color_Code = "X";
         EXPECT_TRUE(SaveBasic(session, work));
       },
       nullptr},
      {"reset all stock", "stock of one of them",
       [](Session& session, UndoRoom&) { PostStock(session, {.name = "BLUE", .quantity = 1}); },
       "Since then BLUE was changed"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(fmt::format("{}, then {}", c.act, c.then));
    UndoRoom room;
    if (std::string_view(c.act) == "rename a basic") {
      ASSERT_TRUE(RenameBasic(room.hands, "RED", "CRIMSON"));
    } else {
      ASSERT_TRUE(ResetInventories(room.hands, {.basics = "250"}));
    }
    const std::int64_t act = ListUndo(room.hands).front().id;
    c.built(room.hands, room);
    const std::string before = room.Seen();
    const auto taken = TakeBackAct(room.hands, act);
    EXPECT_EQ(taken.has_value(), c.why == nullptr) << (taken ? "" : taken.error().text);
    if (taken || c.why == nullptr) continue;
    EXPECT_NE(taken.error().text.find(c.why), std::string::npos) << taken.error().text;
    EXPECT_EQ(room.Seen(), before);
  }
}

// The right of the act is asked for, and a Batch that is open has to be closed.
TEST(Undo, AsksForTheRightOfTheActAndForAClosedBatch) {
  UndoRoom room;
  const auto number = room.MakeBatch("PINK", "10");
  ASSERT_TRUE(number);
  BatchRecord record;
  ASSERT_TRUE(OpenBatch(room.hands, record, *number));
  auto taken = TakeBackAct(room.hands, 0);
  ASSERT_FALSE(taken);
  EXPECT_NE(taken.error().text.find("is open. Close it first."), std::string::npos) << taken.error().text;
  ASSERT_TRUE(CancelBatch(room.hands, record));
  EXPECT_TRUE(TakeBackAct(room.hands, 0));
  ASSERT_TRUE(RenameColor(room.hands, "PINK", "ROSE"));
  room.hands.CurrentUser = "ANNA";
  room.hands.IsAdminUser = false;
  room.hands.Perm_MasterFormula = 0;
  EXPECT_FALSE(TakeBackAct(room.hands, 0));
  room.hands.Perm_MasterFormula = 1;
  const std::string right = room.hands.File().Scalar("SELECT Act FROM MSysUndo ORDER BY RowKey DESC LIMIT 1").Text();
  room.hands.File().Execute("UPDATE MSysUndo SET Act = 99");  // as a later program would have written it
  taken = TakeBackAct(room.hands, 0);
  ASSERT_FALSE(taken);
  EXPECT_NE(taken.error().text.find("Another version"), std::string::npos) << taken.error().text;
  room.hands.File().Execute("UPDATE MSysUndo SET Act = " + right);
  EXPECT_EQ(TakeBackAct(room.hands, 0).value(), "Rename PINK to ROSE");
}

}  // namespace
}  // namespace vellumark::test
