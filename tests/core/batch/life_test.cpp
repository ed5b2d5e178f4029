// The life of a Batch: saved, opened, changed, left, deleted; what it does to stock at each step.

#include <signal.h>
#include <sys/resource.h>

#include <functional>

#include "core/batch/recycle_list.h"
#include "core/colors/rename.h"
#include "life_room.h"

namespace vellumark {
namespace {

using test::LifeRoom;
using test::PinkRoom;
using test::Use;

constexpr const char* kSave = "Batch Window - Save Information?";
constexpr const char* kDelete = "Batch Window - Delete Batch?";
constexpr const char* kInventories = "Batch Window - Update Inventories?";
const std::string kCancel = std::string(40, ' ') + "Cancel?";
const std::string kClose = std::string(40, ' ') + "Close?";

TEST(BatchLife, SavePostsTheLinesAndWhatIsMade) {
  PinkRoom room;
  room.Mixed("PINK", "40");
  room.record.fields.ShortNote = "for the flag";
  EXPECT_EQ(room.Save(), 1);
  EXPECT_EQ(room.record.state, BatchState::None);
  EXPECT_EQ(room.record.BatchNo, 2);
  EXPECT_EQ(room.Red(), 90);
  EXPECT_EQ(room.White(), 170);
  EXPECT_EQ(room.Pink(), 40);
  EXPECT_EQ(room.OfBatch("ShortNote").Text(), "for the flag");
  EXPECT_EQ(room.OfBatch("ActualQuantity").Single(), 40);
  EXPECT_EQ(room.OfBatch("IngName0").Text(), "WHITE");
  EXPECT_EQ(room.OfBatch("IngQty0").Single(), 30);
  EXPECT_EQ(room.OfBatch("IngType19").Whole(), 1);
  EXPECT_EQ(room.OfBatch("IngName19").Text(), "");
  EXPECT_EQ(room.OfBatch("CostOfBasics").Single(), 70);
  EXPECT_EQ(room.Scalar("SELECT BatchNumber FROM FileInfo").Whole(), 2);
  EXPECT_EQ(room.Scalar("SELECT LastProduced FROM INK_Mix").Text(), "2026-03-10 12:00:00");
  EXPECT_EQ(room.Scalar("SELECT LastConsumed FROM INK_Basic WHERE Color_Name = 'RED'").Text(), "2026-03-10 12:00:00");
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Batch_LotInv WHERE LotNumber = 'Unlotted Inv.'").Whole(), 2);
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM MSysStockHistory WHERE Document = '000001'").Whole(), 3);
}

TEST(BatchLife, SavedAgainWithAnotherQuantity) {
  PinkRoom room;
  room.Saved("PINK", "40");
  room.Open(1);
  EXPECT_EQ(room.Red(), 100);
  EXPECT_EQ(room.White(), 200);
  EXPECT_EQ(room.Pink(), 40);
  room.Remix("60");
  EXPECT_TRUE(RecordHasChanged(room.session, room.record));
  EXPECT_EQ(room.Save(), 1);
  EXPECT_EQ(room.Red(), 85);
  EXPECT_EQ(room.White(), 155);
  EXPECT_EQ(room.Pink(), 60);
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Batch_LotInv").Whole(), 2);
  EXPECT_EQ(room.Scalar("SELECT BatchNumber FROM FileInfo").Whole(), 2);
}

// Rooms in which taking a Batch's ingredients a second time by the posting table would not give what stood there.
struct Room {
  const char* name;
  std::function<void(LifeRoom&)> make;  ///< leaves the saved Batch 1 and one after it
};

class UnchangedBatch : public testing::TestWithParam<Room> {};

TEST_P(UnchangedBatch, LeavesEveryByteAsItWas) {
  PinkRoom room;
  room.Breaks("StockHistory");  // some of them write stock past its history
  room.Breaks("BatchLines");
  GetParam().make(room);
  const std::string before = room.Data();
  const auto leave = [&](const char* way, const std::function<bool()>& out) {
    room.Open(1);
    EXPECT_FALSE(RecordHasChanged(room.session, room.record)) << way;
    EXPECT_TRUE(out()) << way;
    if (room.record.state == BatchState::Edit) {
      ASSERT_TRUE(CancelBatch(room.session, room.record).value());
    }
    EXPECT_TRUE(room.Data() == before) << way;
    EXPECT_TRUE(MarkedBatches(room.session.File()).empty()) << way;
  };
  Session& session = room.session;
  leave("Cancel", [&] { return CancelBatch(session, room.record).value(); });
  leave("Close", [&] { return CloseBatch(session, room.record, room.dialogs).value(); });
  leave("Next", [&] { return NextBatch(session, room.record, room.dialogs).value(); });
  leave("Previous", [&] { return PreviousBatch(session, room.record, room.dialogs).value(); });
  leave("Find", [&] { return FindBatch(session, room.record, room.dialogs, 1).value(); });
  leave("Save", [&] { return SaveBatch(session, room.record, room.dialogs).value() == SaveEnd::Kept; });
  leave("Save and Hold", [&] { return SaveAndHoldBatch(session, room.record, room.dialogs).value() == SaveEnd::Kept; });
  // A killed program leaves the Batch open; the next start closes it and says so once.
  room.Open(1);
  const std::string open = room.Data();
  HealAbandonedBatches(session);
  EXPECT_TRUE(room.Data() == open) << "its owner lives";
  room.record = BatchRecord{};
  session.File().Execute("UPDATE MSysOpenBatch SET Owner = 'bench/7/died'");
  room.prompt.Expect("Open Batch");
  HealAbandonedBatches(session);
  HealAbandonedBatches(session);
  EXPECT_TRUE(room.Data() == before) << "killed";
}

void SaveTwo(LifeRoom& room) {
  room.Saved("PINK", "40");
  room.Saved("PINK", "4");
}

const std::vector<Room> kRooms{
    {"Plain", SaveTwo},
    {"RemainderUnderTheCutoff",
     [](LifeRoom& room) {
       SaveTwo(room);
       room.Setting("InvCutoff", "5");
       room.session.File().Execute("UPDATE INK_Basic SET Inventory = 0.4000000059604645");
       room.session.File().Execute("UPDATE INK_Mix SET Inventory = 0.4000000059604645");
     }},
    {"MoreDecimalsThanThree",
     [](LifeRoom& room) {
       SaveTwo(room);
       room.session.File().Execute("UPDATE INK_Basic SET Inventory = 0.3333333432674408");
     }},
    {"NegativeStock",
     [](LifeRoom& room) {
       room.Setting("AllowNegInv", "1");
       room.session.File().Execute("UPDATE INK_Basic SET Inventory = CASE Color_Name WHEN 'RED' THEN 1 ELSE 2 END");
       SaveTwo(room);
       room.Setting("AllowNegInv", "0");
     }},
    {"LotsEmptiedAndTouched",
     [](LifeRoom& room) {
       room.Lot(ColorKind::Basic, "RED", 1, 10);
       room.Lot(ColorKind::Basic, "WHITE", 1, 12, {{"LotPrice", 1.23456F}});
       room.Lot(ColorKind::Basic, "WHITE", 2, 30);
       room.Mixed("PINK", "40");
       room.Select(0, {Use(1, 12), Use(2, 13)});
       room.Select(1, {Use(1, 10)});
       room.record.fields.LotNumber = "MADE";
       room.record.fields.LotLoc = "SHELF";
       room.Save();
       room.Saved("PINK", "4");
     }},
    {"LotAtZeroWithoutCutoff",
     [](LifeRoom& room) {
       room.Lot(ColorKind::Basic, "RED", 1, 10);
       room.Mixed("PINK", "40");
       room.Select(1, {Use(1, 10)});
       room.Save();
       room.Lot(ColorKind::Basic, "RED", 1, 0);
       room.Saved("PINK", "4");
     }},
    {"LotOnConsignmentSince",
     [](LifeRoom& room) {
       room.Lot(ColorKind::Basic, "RED", 1, 15);
       room.Mixed("PINK", "40");
       room.Select(1, {Use(1, 10)});
       room.Save();
       room.session.File().Execute("UPDATE INK_Basic_LotInv SET LotConsignment = 1");
       room.Saved("PINK", "4");
     }},
    {"LotsTurnedOffSince",
     [](LifeRoom& room) {
       room.Lot(ColorKind::Basic, "RED", 1, 10);
       room.Mixed("PINK", "40");
       room.Select(1, {Use(1, 10)});
       room.Save();
       room.Setting("InvLotTracking", "0");
       room.Saved("PINK", "4");
     }},
    {"RecycledJobsAndAdditions",
     [](LifeRoom& room) {
       room.Formula("ROSE", {{"RED", 50.0F}, {"WHITE", 50.0F}}, 8);
       room.record = NewBatchRecord(room.session);
       ASSERT_TRUE(EnterBatchColor(room.session, room.record, "PINK"));
       SetQuantityText(room.record.work, "40.001");
       ASSERT_TRUE(RecycleBatch(room.session, room.record).value());
       ASSERT_TRUE(SaveJobItems(room.session, room.record, {{"J1", "10"}, {"J2", "5.5"}}));
       ASSERT_TRUE(AddBatchAdditions(room.session, room.record, {{"RED", "1"}}));
       room.Save();
       room.Saved("PINK", "4");
     }},
    {"NegativeAddition",
     [](LifeRoom& room) {
       room.Mixed("PINK", "40");
       room.prompt.Expect("Re-enter Inventory Lot Selections");
       ASSERT_TRUE(AddBatchAdditions(room.session, room.record, {{"RED", "-3.5"}}));
       room.dialogs.choices.push_back(ModifiedBatchChoice{});
       room.Save();
       room.Saved("PINK", "4");
     }},
    {"FormulaDeletedSince",
     [](LifeRoom& room) {
       SaveTwo(room);
       room.session.File().Execute("DELETE FROM INK_Mix");
     }},
    {"GramsOfPounds",
     [](LifeRoom& room) {
       room.Setting("UMF", "3");
       room.Lot(ColorKind::Basic, "RED", 1, 0.02F);
       room.Mixed("PINK", "37");
       room.Select(1, {Use(1, 9), Use(0, 0.25F)});
       ASSERT_TRUE(EnterJobNumber(room.session, room.record, "J"));
       ASSERT_TRUE(EnterQtyUsed(room.session, room.record, "11"));
       room.Save();
       room.Saved("PINK", "4");
     }},
    {"FieldsLeftNull", [](LifeRoom& room) {
       room.AddRow(
           schema::Batch,
           {{"Color_Name", "PINK"}, {"BatchNo", 1}, {"Quantity", 10.0F}, {"IngName0", "RED"}, {"IngQty0", 2.5F}});
       room.session.File().Execute("UPDATE FileInfo SET BatchNumber = 2");
       room.Saved("PINK", "4");
     }}};

INSTANTIATE_TEST_SUITE_P(Left, UnchangedBatch, testing::ValuesIn(kRooms),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(BatchLife, StockThatMovedMeanwhileIsTakenByTheRule) {
  PinkRoom room;
  room.Lot(ColorKind::Basic, "RED", 1, 12);
  room.Mixed("PINK", "40");
  room.Select(1, {Use(1, 10)});
  room.Save();
  room.Setting("InvCutoff", "0.5");
  room.Open(1);
  // 2 + 10 stand in the lot; 1.8 go to another use, so that 0.2 remain once the Batch has taken its 10 again.
  PostStock(room.session, {.source = PostingSource::ScanReturn,
                           .kind = ColorKind::Basic,
                           .name = "RED",
                           .quantity = -1.8F,
                           .place = {.LotRefID = 1, .LotNumber = "L1"}});
  PostStock(room.session,
            {.source = PostingSource::ManualAdjust, .kind = ColorKind::Basic, .name = "WHITE", .quantity = 7});
  ASSERT_TRUE(CancelBatch(room.session, room.record).value());
  EXPECT_TRUE(room.LotQty(ColorKind::Basic, "RED", 1).IsNull());
  EXPECT_EQ(room.White(), 177);
}

TEST(BatchLife, AColourRenamedMeanwhileIsFound) {
  PinkRoom room;
  room.Saved("PINK", "40");
  room.Open(1);
  ASSERT_TRUE(RenameBasic(room.session, "RED", "CARMINE"));
  ASSERT_TRUE(CancelBatch(room.session, room.record).value());
  EXPECT_EQ(room.Inventory(ColorKind::Basic, "CARMINE").Single(), 90);
}

// ---- Ways out with a change

TEST(BatchLife, NextAsksAndStoresOrForgets) {
  PinkRoom room;
  SaveTwo(room);
  room.Open(1);
  room.Remix("20");
  room.prompt.Expect(kSave, Answer::No, "Save this information?");
  ASSERT_TRUE(NextBatch(room.session, room.record, room.dialogs).value());
  EXPECT_EQ(room.record.BatchNo, 2);
  EXPECT_EQ(room.Red(), 90);  // 100 - 10, and the 1 of Batch 2 handed back
  ASSERT_TRUE(PreviousBatch(room.session, room.record, room.dialogs).value());
  room.Remix("20");
  room.prompt.Expect(kSave, Answer::Yes);
  ASSERT_TRUE(NextBatch(room.session, room.record, room.dialogs).value());
  EXPECT_EQ(room.Red(), 95);
  ASSERT_TRUE(NextBatch(room.session, room.record, room.dialogs).value());
  EXPECT_EQ(room.record.state, BatchState::None);
  EXPECT_EQ(room.record.BatchNo, 3);
  EXPECT_EQ(room.Red(), 94);
  ASSERT_TRUE(NextBatch(room.session, room.record, room.dialogs).value());
  EXPECT_EQ(room.record.state, BatchState::None);
  ASSERT_TRUE(PreviousBatch(room.session, room.record, room.dialogs).value());
  EXPECT_EQ(room.record.BatchNo, 2);
  EXPECT_EQ(LifeRoom::Title(FindBatch(room.session, room.record, room.dialogs, 77)), "Batch Not Found");
}

TEST(BatchLife, ABatchOfNothingIsRevisedOrForgotten) {
  PinkRoom room;
  room.Saved("PINK", "40");
  room.Open(1);
  room.Remix("0.0004");
  EXPECT_EQ(room.record.work.Total, 0);
  const std::string title = std::string(40, ' ') + "Update Batch";
  room.prompt.Expect(title, Answer::Yes, "Batch total must be greater than zero.\nRevise and fix the recipe?");
  EXPECT_FALSE(NextBatch(room.session, room.record, room.dialogs).value());
  EXPECT_EQ(LifeRoom::Title(SaveBatch(room.session, room.record, room.dialogs)), std::string(40, ' ') + "Save Batch");
  EXPECT_EQ(LifeRoom::Title(SaveAndHoldBatch(room.session, room.record, room.dialogs)),
            std::string(40, ' ') + "Save Batch");
  room.prompt.Expect(kClose, Answer::No, "Close without saving changes?");
  EXPECT_FALSE(CloseBatch(room.session, room.record, room.dialogs).value());
  room.prompt.Expect(title, Answer::No);
  EXPECT_TRUE(NextBatch(room.session, room.record, room.dialogs).value());
  EXPECT_EQ(room.Red(), 90);
}

TEST(BatchLife, CancelAndCloseAskOnlyAboutChanges) {
  PinkRoom room;
  room.Saved("PINK", "40");
  room.Open(1);
  room.record.fields.ShortNote = "changed";
  room.prompt.Expect(kCancel, Answer::No, "Cancel without saving changes?");
  EXPECT_FALSE(CancelBatch(room.session, room.record).value());
  EXPECT_EQ(room.Red(), 100);
  room.prompt.Expect(kCancel, Answer::Yes);
  EXPECT_TRUE(CancelBatch(room.session, room.record).value());
  EXPECT_EQ(room.Red(), 90);
  EXPECT_EQ(room.OfBatch("ShortNote").Text(), "");
  room.Open(1);
  room.record.fields.ShortNote = "changed";
  room.prompt.Expect(kSave, Answer::Yes);
  EXPECT_TRUE(CloseBatch(room.session, room.record, room.dialogs).value());
  EXPECT_EQ(room.OfBatch("ShortNote").Text(), "changed");
  EXPECT_EQ(room.Red(), 90);
  EXPECT_EQ(room.Pink(), 40);
  // A new Batch that is not stored.
  room.Mixed("PINK", "5");
  room.prompt.Expect(kSave, Answer::No);
  EXPECT_TRUE(CloseBatch(room.session, room.record, room.dialogs).value());
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Batch").Whole(), 1);
  EXPECT_EQ(room.Red(), 90);
}

// ---- What it made is no stock for itself

struct OwnInk {
  const char* name;
  bool tracking;
  const char* lotNumber;
};

class ReopenedBatch : public testing::TestWithParam<OwnInk> {};

TEST_P(ReopenedBatch, IsNotMadeOfItself) {
  PinkRoom room;
  room.Setting("InvLotTracking", GetParam().tracking ? "1" : "0");
  room.Formula("ROSE", {{"RED", 50.0F}, {"WHITE", 50.0F}}, 6);
  PostStock(room.session,
            {.source = PostingSource::ManualAdjust, .kind = ColorKind::Mix, .name = "PINK", .quantity = 7});
  room.Mixed("PINK", "40");
  room.record.fields.LotNumber = GetParam().lotNumber;
  room.Save();
  const double made = room.Pink() - 7 + room.Scalar("SELECT SUM(LotQty) FROM INK_Mix_LotInv").Number();
  ASSERT_EQ(made, 40);
  room.Open(1);
  const auto listed = [&](const char* name) {
    for (const RecycleListRow& row : RecycleListRows(room.record.work, {}))
      if (row.Color_Name == name) return Fixed(row.Inventory, 3);
    return std::string("none");
  };
  // The list stands as soon as the Batch is open, and offers the leftover only.
  EXPECT_EQ(listed("PINK"), "7.000");
  EXPECT_EQ(listed("ROSE"), "6.000");
  SetQuantityText(room.record.work, "48");
  ASSERT_TRUE(*RecycleBatch(room.session, room.record));
  std::vector<std::string> rows;
  for (const BatchRow& row : room.record.work.Rows) rows.push_back(row.name + " " + Fixed(row.amount, 3));
  EXPECT_EQ(rows, (std::vector<std::string>{"PINK 7.000", "ROSE 6.000", "WHITE 27.750", "RED 7.250"}));
  if (GetParam().tracking) {
    const auto lots =
        LoadLotSelection(room.session, "PINK", LineKind::Mix, 7, 1, {}, WithheldFrom(room.session, room.record, 0));
    ASSERT_TRUE(lots);
    ASSERT_EQ(lots->rows.size(), 1U);
    EXPECT_EQ(lots->rows[0].InvQty, 7);
  }
  room.Save();
  EXPECT_EQ(room.Pink() + room.Scalar("SELECT SUM(LotQty) FROM INK_Mix_LotInv").Number(), 48);
  // All of the ink in the room: 100 RED, 200 WHITE, 7 PINK, 6 ROSE.
  EXPECT_EQ(room.Red() + room.White(), 300 - 35);

  // A leftover that is poured away takes nothing of what the Batch made along.
  if (GetParam().tracking) return;
  room.Open(1);
  ASSERT_TRUE(ApplyMixRow(room.session, room.record, 0, {.amount = "0", .removeFromInventory = true}));
  EXPECT_EQ(room.Pink(), 48);
  room.Save();
  EXPECT_EQ(room.Pink(), 48);
}

INSTANTIATE_TEST_SUITE_P(Places, ReopenedBatch,
                         testing::Values(OwnInk{"Untracked", false, ""}, OwnInk{"Unlotted", true, ""},
                                         OwnInk{"Lotted", true, "MADE"}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(BatchLife, SaveAndHoldStaysOnTheBatch) {
  PinkRoom room;
  room.Mixed("PINK", "40");
  ASSERT_EQ(SaveAndHoldBatch(room.session, room.record, room.dialogs).value(), SaveEnd::Stored);
  EXPECT_EQ(room.record.state, BatchState::Edit);
  EXPECT_EQ(room.record.BatchNo, 1);
  EXPECT_EQ(room.Red(), 100);
  EXPECT_EQ(room.Pink(), 40);
  room.record.fields.Notes = "thin";
  ASSERT_EQ(SaveAndHoldBatch(room.session, room.record, room.dialogs).value(), SaveEnd::Stored);
  EXPECT_EQ(room.record.fields.Notes, "thin");
  ASSERT_TRUE(CancelBatch(room.session, room.record).value());
  EXPECT_EQ(room.Red(), 90);
  EXPECT_EQ(room.Pink(), 40);
}

// ---- Delete

TEST(BatchLife, DeleteReturnsTheIngredientsOrNot) {
  PinkRoom room;
  room.Lot(ColorKind::Basic, "RED", 1, 10);
  for (const Answer answer : {Answer::Yes, Answer::No}) {
    room.Mixed("PINK", "40");
    room.Select(1, {Use(1, 10)});
    room.record.fields.LotNumber = "MADE";
    ASSERT_TRUE(EnterJobNumber(room.session, room.record, "J1"));
    ASSERT_TRUE(EnterQtyUsed(room.session, room.record, "15"));
    const std::int32_t number = room.Save();
    EXPECT_EQ(room.Scalar("SELECT LotQty FROM INK_Mix_LotInv WHERE LotNumber = 'MADE'").Single(), 25);
    room.Open(number);
    room.prompt.Expect(kDelete, Answer::No);
    EXPECT_FALSE(DeleteBatch(room.session, room.record, room.dialogs).value());
    room.prompt.Expect(kDelete, Answer::Yes,
                       "Deleting this Batch will alter Production and Consumption Reports.\n\nDelete this Batch?");
    room.prompt.Expect(kInventories, answer, "Return ingredients to inventory?");
    EXPECT_TRUE(DeleteBatch(room.session, room.record, room.dialogs).value());
    const bool returned = answer == Answer::Yes;
    EXPECT_EQ(room.LotQty(ColorKind::Basic, "RED", 1).IsNull(), !returned);
    EXPECT_EQ(room.Red(), 100);
    EXPECT_EQ(room.White(), returned ? 200 : 170);
    for (const char* table : {"INK_Mix_LotInv", "INK_Batch", "INK_Batch_LotInv", "JobRecords", "MSysOpenBatch"})
      EXPECT_EQ(room.Scalar(std::string("SELECT COUNT(*) FROM ") + table).Whole(), 0) << table;
  }
}

TEST(BatchLife, DeleteTakesWhatIsLeftOfTheMadeInkAndTheDatesBack) {
  PinkRoom room;
  room.Saved("PINK", "8");
  room.clock.Set({2026, 3, 11, 8, 0, 0});
  room.Saved("PINK", "40");
  PostStock(room.session,
            {.source = PostingSource::ManualAdjust, .kind = ColorKind::Mix, .name = "PINK", .quantity = -30});
  room.Open(2);
  room.prompt.Expect(kDelete, Answer::Yes).Expect(kInventories, Answer::Yes);
  ASSERT_TRUE(DeleteBatch(room.session, room.record, room.dialogs).value());
  EXPECT_EQ(room.Pink(), 0);
  EXPECT_EQ(room.record.state, BatchState::None);
  EXPECT_EQ(room.Scalar("SELECT LastProduced FROM INK_Mix").Text(), "2026-03-10 12:00:00");
  EXPECT_EQ(room.Scalar("SELECT LastConsumed FROM INK_Basic WHERE Color_Name = 'RED'").Text(), "2026-03-10 12:00:00");
  room.Open(1);
  room.prompt.Expect(kDelete, Answer::Yes).Expect(kInventories, Answer::Yes);
  ASSERT_TRUE(DeleteBatch(room.session, room.record, room.dialogs).value());
  EXPECT_TRUE(room.Scalar("SELECT LastProduced FROM INK_Mix").IsNull());
  EXPECT_TRUE(room.Scalar("SELECT LastConsumed FROM INK_Basic WHERE Color_Name = 'RED'").IsNull());
  EXPECT_EQ(room.Red(), 100);
}

// What a recycled formula is called says nothing of a Basic Color of that name, neither when it is used nor when the
// last Batch of that Basic Color goes.
TEST(BatchLife, ABasicNamedLikeARecycledFormulaKeepsItsDate) {
  PinkRoom room;
  room.Basic("ROSE", 50);
  room.Formula("ROSE", {{"RED", 50.0F}, {"WHITE", 50.0F}}, 10);
  room.Formula("TINT", {{"ROSE", 100.0F}});
  const auto consumed = [&room] { return room.Scalar("SELECT LastConsumed FROM INK_Basic WHERE Color_Name = 'ROSE'"); };
  room.Mixed("PINK", "100");
  ASSERT_TRUE(TakeRecycled(room.session, room.record, "ROSE").value());
  room.Save();
  EXPECT_TRUE(consumed().IsNull());
  const std::int32_t tint = room.Saved("TINT", "5");
  EXPECT_EQ(consumed().Text(), "2026-03-10 12:00:00");
  room.Open(tint);
  room.prompt.Expect(kDelete, Answer::Yes).Expect(kInventories, Answer::Yes);
  ASSERT_TRUE(DeleteBatch(room.session, room.record, room.dialogs).value());
  EXPECT_TRUE(consumed().IsNull());
  room.session.File().Execute("UPDATE INK_Basic SET LastConsumed = '2025-12-01 00:00:00' WHERE Color_Name = 'ROSE'");
  room.Open(1);
  room.prompt.Expect(kDelete, Answer::Yes).Expect(kInventories, Answer::Yes);
  ASSERT_TRUE(DeleteBatch(room.session, room.record, room.dialogs).value());
  EXPECT_EQ(consumed().Text(), "2025-12-01 00:00:00");
}

// A Batch of which nobody recorded what it took, with a round-off that found no ingredient: its recycled inks come back
// as they were weighed.
TEST(BatchLife, ARoundoffInTheBooksIsNoInk) {
  LifeRoom room;
  room.Basic("RED", 0);
  room.Basic("BLUE", 0);
  room.Formula("TARGET", {{"RED", 50.0F}, {"BLUE", 50.0F}});
  room.Formula("RED INK", {{"RED", 100.0F}}, 5);
  room.Formula("BLUE INK", {{"BLUE", 100.0F}}, 5);
  room.Mixed("TARGET", "0.003");
  ASSERT_TRUE(RecycleBatch(room.session, room.record).value());
  ASSERT_EQ(room.record.work.Roundoff, -0.001F);
  const std::int32_t number = room.Save();
  room.session.File().Execute("DELETE FROM INK_Batch_LotInv");
  room.Open(number);
  for (const char* name : {"RED INK", "BLUE INK"}) EXPECT_EQ(room.Inventory(ColorKind::Mix, name), Value(5.0F)) << name;
  CancelBatch(room.session, room.record).value();
}

// ---- A disk that is full

// Until it ends, no file can be written beyond its first bytes.
class NoRoom {
 public:
  NoRoom() {
    ::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit none{2048, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &none);
  }
  ~NoRoom() { ::setrlimit(RLIMIT_FSIZE, &before_); }

 private:
  rlimit before_{};
};

TEST(BatchLife, AFullDiskLeavesEverythingAsItWas) {
  PinkRoom room;
  room.Saved("PINK", "40");
  const auto fails = [&](const char* what, const std::function<void()>& act) {
    const std::string before = room.Data();
    {
      const NoRoom none;
      EXPECT_THROW(act(), Failure) << what;
    }
    EXPECT_TRUE(room.Data() == before) << what;
  };
  Session& session = room.session;
  fails("open", [&] { OpenBatch(session, room.record, 1); });
  EXPECT_EQ(room.record.state, BatchState::None);
  room.Open(1);
  fails("leave", [&] { (void)NextBatch(session, room.record, room.dialogs); });
  EXPECT_EQ(room.record.state, BatchState::Edit);
  room.Remix("20");
  fails("store", [&] { (void)SaveBatch(session, room.record, room.dialogs); });
  EXPECT_EQ(Fixed(room.record.work.ShownTotal, 3), "20.000");
  room.prompt.Expect(kDelete, Answer::Yes).Expect(kInventories, Answer::Yes);
  fails("delete", [&] { (void)DeleteBatch(session, room.record, room.dialogs); });
  EXPECT_EQ(room.Save(), 1);
  EXPECT_EQ(room.Red(), 95);
  EXPECT_EQ(room.Pink(), 20);
  room.Mixed("PINK", "4");
  fails("save", [&] { (void)SaveBatch(session, room.record, room.dialogs); });
  EXPECT_EQ(room.session.BatchNumber, 2);
  EXPECT_EQ(room.Save(), 2);
}

// ---- Numbers

TEST(BatchLife, NumbersWrapAndAreNeverGivenTwice) {
  PinkRoom room;
  room.Saved("PINK", "1");
  room.Saved("PINK", "1");
  room.session.File().Execute("UPDATE FileInfo SET BatchNumber = 999999");  // as another session leaves it
  EXPECT_EQ(room.Saved("PINK", "1"), 999999);
  EXPECT_EQ(room.session.BatchNumber, 1);
  EXPECT_EQ(room.record.BatchNo, 3);
  EXPECT_EQ(room.Saved("PINK", "1"), 3);
  EXPECT_EQ(room.Scalar("SELECT BatchNumber FROM FileInfo").Whole(), 4);
  EXPECT_EQ(BatchNoText(3), "000003");
}

}  // namespace
}  // namespace vellumark
