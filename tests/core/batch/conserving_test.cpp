// Stock is conserved where units, lots and colours of the same name meet in a Batch.

#include "core/colors/rename.h"
#include "life_room.h"

namespace vellumark::test {
namespace {

// A Batch in grams, an inventory in pounds: the total, what a job uses and what goes to stock each lose decimals of
// their own, and yet what was put into stock is what is taken out of it again.
class BetweenUnits : public testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(BetweenUnits, WhatWentToStockComesOutOfItAgain) {
  const auto& [quantity, used] = GetParam();
  for (const bool lotted : {false, true}) {
    PinkRoom room;
    room.session.InvLotTracking = lotted ? 1 : 0;
    room.session.UMI = 1;
    room.HaveStock(ColorKind::Mix, 10);
    room.record = NewBatchRecord(room.session);
    ASSERT_TRUE(EnterBatchUnit(room.session, room.record, 3));
    ASSERT_TRUE(EnterBatchColor(room.session, room.record, "PINK"));
    SetQuantityText(room.record.work, quantity);
    ASSERT_TRUE(MixBatch(room.session, room.record));
    if (lotted) room.record.fields.LotNumber = "MADE";
    ASSERT_TRUE(EnterJobNumber(room.session, room.record, "J1"));
    ASSERT_TRUE(EnterQtyUsed(room.session, room.record, used));
    const std::int32_t number = room.Save();
    const float unlotted = room.Pink();
    const Value lot = room.LotQty(ColorKind::Mix, "PINK", 1);
    for (int i = 0; i < 5; ++i) {
      room.Open(number);
      room.record.fields.ShortNote = std::to_string(i);
      room.Save();
      EXPECT_EQ(room.Pink(), unlotted) << quantity << ' ' << used << ' ' << lotted;
      EXPECT_EQ(room.LotQty(ColorKind::Mix, "PINK", 1), lot) << quantity << ' ' << used << ' ' << lotted;
    }
    room.Open(number);
    room.prompt.Expect("Batch Window - Delete Batch?", Answer::Yes);
    room.prompt.Expect("Batch Window - Update Inventories?", Answer::Yes);
    ASSERT_TRUE(DeleteBatch(room.session, room.record, room.dialogs));
    EXPECT_EQ(room.Pink(), 10) << quantity << ' ' << used << ' ' << lotted;
    EXPECT_EQ(room.Red(), 100);
    EXPECT_EQ(room.White(), 200);
  }
}

INSTANTIATE_TEST_SUITE_P(Grams, BetweenUnits,
                         testing::Values(std::pair{"1000", "333"}, std::pair{"1000", "334"}, std::pair{"777", "123.4"},
                                         std::pair{"10", "9.8"}, std::pair{"500", "0.2"}));

// Three jobs use it all, in grams; in pounds their shares alone would leave a thousandth that was never in stock.
TEST(BatchConserves, JobsThatUseItAllLeaveNothing) {
  PinkRoom room;
  room.session.InvLotTracking = 0;
  room.session.UMI = 1;
  room.HaveStock(ColorKind::Mix, 10);
  room.record = NewBatchRecord(room.session);
  ASSERT_TRUE(EnterBatchUnit(room.session, room.record, 3));
  ASSERT_TRUE(EnterBatchColor(room.session, room.record, "PINK"));
  SetQuantityText(room.record.work, "1000");
  ASSERT_TRUE(MixBatch(room.session, room.record));
  ASSERT_TRUE(SaveJobItems(room.session, room.record, {{"J1", "333"}, {"J2", "333"}, {"J3", "334"}}));
  const std::int32_t number = room.Save();
  EXPECT_EQ(room.Pink(), 10);
  room.Open(number);
  EXPECT_EQ(room.record.ReturnedText(), "0.000");
  room.record.fields.ShortNote = "x";
  room.Save();
  EXPECT_EQ(room.Pink(), 10);
  EXPECT_EQ(RoundSingle(room.Scalar("SELECT SUM(QtyUsed) FROM JobRecords").Number(), 3), 2.205F);
  room.Open(number);
  room.prompt.Expect("Batch Window - Delete Batch?", Answer::Yes);
  room.prompt.Expect("Batch Window - Update Inventories?", Answer::Yes);
  ASSERT_TRUE(DeleteBatch(room.session, room.record, room.dialogs));
  EXPECT_EQ(room.Pink(), 10);
}

// A formula from elsewhere may name an ingredient twice: each line keeps the lots that were chosen for it.
TEST(BatchConserves, TwoLinesOfTheSameColour) {
  LifeRoom room;
  room.Breaks("FormulaSlots");
  room.Basic("RED", 0);
  room.Basic("WHITE", 200);
  room.Lot(ColorKind::Basic, "RED", 1, 50);
  room.Lot(ColorKind::Basic, "RED", 2, 50);
  room.Formula("PINK", {{"RED", 25.0F}, {"WHITE", 50.0F}, {"RED", 25.0F}});
  room.Mixed("PINK", "100");
  std::vector<std::size_t> reds;
  for (std::size_t i = 0; i < room.record.work.Rows.size(); ++i)
    if (room.record.work.Rows[i].name == "RED") reds.push_back(i);
  ASSERT_EQ(reds.size(), 2U);
  room.Select(reds[0], {Use(1, 25)});
  room.Select(reds[1], {Use(2, 25)});
  const std::int32_t number = room.Save();
  room.Open(number);
  EXPECT_EQ(RowLots(room.record, reds[0]).Used(), 25);
  EXPECT_EQ(RowLots(room.record, reds[1]).Used(), 25);
  room.record.fields.ShortNote = "again";
  room.Save();
  EXPECT_EQ(room.LotQty(ColorKind::Basic, "RED", 1).Single(), 25);
  EXPECT_EQ(room.LotQty(ColorKind::Basic, "RED", 2).Single(), 25);
  EXPECT_EQ(room.Red(), 0);
}

// Its own ink recycled into it, with and without lots.
TEST(BatchConserves, TheMadeColourRecycled) {
  PinkRoom room;
  room.HaveStock(ColorKind::Mix, 30);
  room.record = NewBatchRecord(room.session);
  ASSERT_TRUE(EnterBatchColor(room.session, room.record, "PINK"));
  SetQuantityText(room.record.work, "100");
  ASSERT_TRUE(RecycleBatch(room.session, room.record));
  ASSERT_EQ(room.record.work.RecycledColors.size(), 1U);
  const std::int32_t number = room.Save();
  EXPECT_EQ(room.Pink(), 100);
  EXPECT_EQ(room.Red(), 82.5F);
  room.Open(number);
  EXPECT_EQ(room.Pink(), 130);
  room.record.fields.ShortNote = "x";
  room.Save();
  EXPECT_EQ(room.Pink(), 100);
  room.Open(number);
  room.prompt.Expect("Batch Window - Delete Batch?", Answer::Yes);
  room.prompt.Expect("Batch Window - Update Inventories?", Answer::Yes);
  ASSERT_TRUE(DeleteBatch(room.session, room.record, room.dialogs));
  EXPECT_EQ(room.Pink(), 30);
  EXPECT_EQ(room.Red(), 100);
}

// Random negative additions with lots chosen, saved again and deleted.
TEST(BatchConserves, ANegativeAdditionWithLots) {
  PinkRoom room;
  room.Lot(ColorKind::Basic, "RED", 1, 40);
  room.Mixed("PINK", "100");
  room.prompt.Expect("Re-enter Inventory Lot Selections", Answer::Ok);
  ASSERT_TRUE(AddBatchAdditions(room.session, room.record, {{"RED", "-5"}}));
  std::size_t red = 0;
  while (room.record.work.Rows[red].name != "RED") ++red;
  ASSERT_EQ(LotNeed(room.session, room.record, red), 20);
  room.Select(red, {Use(1, 20)});
  room.dialogs.choices.push_back(ModifiedBatchChoice{});
  const std::int32_t number = room.Save();
  EXPECT_EQ(room.LotQty(ColorKind::Basic, "RED", 1).Single(), 20);
  EXPECT_EQ(room.Red(), 100);
  room.Open(number);
  EXPECT_EQ(room.LotQty(ColorKind::Basic, "RED", 1).Single(), 40);
  EXPECT_EQ(room.Red(), 100);
  room.record.fields.ShortNote = "x";
  room.Save();
  EXPECT_EQ(room.LotQty(ColorKind::Basic, "RED", 1).Single(), 20);
  EXPECT_EQ(room.Red(), 100);
}

// An ingredient that got another name or was merged into another while the Batch was open is taken under the new name;
// the Batch on the bench still has the old name and is not stored.
TEST(BatchConserves, AColourRenamedOrMergedWhileOpen) {
  for (const bool merged : {false, true}) {
    PinkRoom room;
    const std::int32_t number = room.Saved("PINK", "100");
    room.Open(number);
    if (merged) room.prompt.Expect(std::string(20, ' ') + "Basic Color Name Exists", Answer::Yes);
    const auto renamed = RenameBasic(room.session, "RED", merged ? "WHITE" : "CARMINE");
    ASSERT_TRUE(renamed) << renamed.error().text;
    room.record.fields.ShortNote = "x";
    EXPECT_EQ(room.Title(SaveBatch(room.session, room.record, room.dialogs)), "Batches Window - Edit State");
    Reset_Ing_Inv_CancelEdit_ExistingBatch(room.session, room.record);
    // A merged colour's stock went with it; nothing of it is left to take from.
    EXPECT_EQ(room.White(), 125);
    EXPECT_EQ(room.Inventory(ColorKind::Basic, merged ? "WHITE" : "CARMINE").Single(), merged ? 125 : 75);
  }
}

void DeleteAndReturn(LifeRoom& room, std::int32_t number) {
  room.Open(number);
  room.prompt.Expect("Batch Window - Delete Batch?", Answer::Yes);
  room.prompt.Expect("Batch Window - Update Inventories?", Answer::Yes);
  ASSERT_TRUE(DeleteBatch(room.session, room.record, room.dialogs));
}
void LookAt(LifeRoom& room, std::int32_t number) {
  room.Open(number);
  ASSERT_TRUE(CancelBatch(room.session, room.record).value());
}

struct Uncovered {
  const char* name;
  bool lots;   // all of the red in a lot that is not chosen
  float red;   // in Unlotted Inventory
  float left;  // of it after 25 are needed
  bool negative = false;
};

// What stock does not cover never left it, and does not come back: after whatever was done with the Batch, the red that
// was there is there again.
TEST(BatchConserves, WhatWasNotThereDoesNotComeBack) {
  for (const Uncovered& one : {Uncovered{"all in lots", true, 0, 0},
                               {"half of it", false, 10, 0},
                               {"some beside the lot", true, 3, 0},
                               {"below zero", false, 10, -15, true}}) {
    SCOPED_TRACE(one.name);
    for (const bool tracking : {true, false}) {
      PinkRoom room;
      room.Setting("AllowNegInv", one.negative ? "1" : "0");
      room.HaveStock(ColorKind::Basic, one.red);
      if (one.lots) room.Lot(ColorKind::Basic, "RED", 1, 171.25F);
      room.session.InvLotTracking = tracking ? 1 : 0;
      const auto lot = [&] { return room.LotQty(ColorKind::Basic, "RED", 1).Single(); };
      const std::int32_t number = room.Saved("PINK", "100");
      EXPECT_EQ(room.Red(), one.left);
      LookAt(room, number);
      EXPECT_EQ(room.Red(), one.left);
      room.Open(number);
      room.record.fields.ShortNote = "saved anew";
      room.Save();
      EXPECT_EQ(room.Red(), one.left);
      room.Open(number);
      room.Remix("60");
      room.Save();
      EXPECT_EQ(room.Red(), one.negative ? -5 : 0);
      DeleteAndReturn(room, number);
      EXPECT_EQ(room.Red(), one.red);
      EXPECT_EQ(lot(), one.lots ? 171.25F : 0);
    }
  }
}

// Stock that moved while the Batch was open: what it took again is no more than was there, of a pound or of a part of it.
TEST(BatchConserves, StockThatWentWhileTheBatchWasOpen) {
  struct Case {
    const char* quantity;
    float white, left;
  };
  for (const Case& c : {Case{"100", 75, 10}, Case{"2", 1.5F, 0.2F}}) {
    SCOPED_TRACE(c.quantity);
    PinkRoom room;
    room.Setting("AllowNegInv", "0");
    room.Lot(ColorKind::Basic, "WHITE", 1, c.white);
    room.Mixed("PINK", c.quantity);
    room.Select(0, {Use(1, c.white)});
    const std::int32_t number = room.Save();
    room.Open(number);
    PostStock(room.session, {.source = PostingSource::ManualAdjust, .name = "RED", .quantity = c.left - 100});
    PostStock(room.session,
              {.source = PostingSource::ManualAdjust, .name = "WHITE", .quantity = -c.white, .place = {.LotRefID = 1}});
    ASSERT_TRUE(CancelBatch(room.session, room.record).value());
    EXPECT_EQ(room.Red(), 0);
    DeleteAndReturn(room, number);
    EXPECT_EQ(room.Red(), c.left);
    EXPECT_TRUE(room.LotQty(ColorKind::Basic, "WHITE", 1).IsNull());
    EXPECT_EQ(room.White(), 200);
  }
}

// Batches of a time when the amount needed was recorded come back as they were recorded.
TEST(BatchConserves, ARecordOfWhatWasNeededIsReadAsItStands) {
  PinkRoom room;
  room.Setting("AllowNegInv", "0");
  room.HaveStock(ColorKind::Basic, 10);
  const std::int32_t number = room.Saved("PINK", "100");
  room.session.File().Execute("UPDATE INK_Batch_LotInv SET LotQty = 25 WHERE IngName = 'RED'");
  LookAt(room, number);
  DeleteAndReturn(room, number);
  EXPECT_EQ(room.Red(), 25);
}

// A Batch used a lot up, and its reference went to another: each keeps its own ink. The same for the lot it made.
TEST(BatchConserves, ALotWhoseReferenceIsAnothersByNow) {
  for (const bool changed : {false, true}) {
    PinkRoom room;
    room.Lot(ColorKind::Basic, "RED", 1, 25);
    room.session.File().Execute("UPDATE INK_Basic SET LotRefID = 1 WHERE Color_Name = 'RED'");
    room.Mixed("PINK", "100");
    room.record.fields.LotNumber = "MADE";
    room.Select(1, {Use(1, 25)});
    const std::int32_t number = room.Save();
    ASSERT_TRUE(room.LotQty(ColorKind::Basic, "RED", 1).IsNull());
    const auto stranger = [&](ColorKind kind, const char* name) {
      const float there = room.LotQty(kind, name, 1).IsNull() ? 0 : room.LotQty(kind, name, 1).Single();
      if (there > 0)
        PostStock(room.session, {.source = PostingSource::ManualAdjust,
                                 .kind = kind,
                                 .name = name,
                                 .quantity = -there,
                                 .place = {.LotRefID = 1}});
      room.Lot(kind, name, 1, 40, {{"LotNumber", "STRANGER"}});
    };
    stranger(ColorKind::Basic, "RED");
    stranger(ColorKind::Mix, "PINK");
    room.Open(number);
    EXPECT_EQ(room.LotQty(ColorKind::Basic, "RED", 1).Single(), 40);
    EXPECT_EQ(room.LotQty(ColorKind::Basic, "RED", 2).Single(), 25);
    EXPECT_EQ(room.Scalar("SELECT LotNumber FROM INK_Basic_LotInv WHERE LotRefID = 2").Text(), "L1");
    if (changed) {
      room.record.fields.ShortNote = "anew";
      room.Save();
    } else {
      ASSERT_TRUE(CancelBatch(room.session, room.record).value());
    }
    EXPECT_EQ(room.LotQty(ColorKind::Basic, "RED", 1).Single(), 40);
    EXPECT_TRUE(room.LotQty(ColorKind::Basic, "RED", 2).IsNull());
    DeleteAndReturn(room, number);
    EXPECT_EQ(room.LotQty(ColorKind::Basic, "RED", 1).Single(), 40);
    EXPECT_EQ(room.Scalar("SELECT SUM(LotQty) FROM INK_Basic_LotInv").Single(), 65);
    EXPECT_EQ(room.Red(), 100);
    EXPECT_EQ(room.LotQty(ColorKind::Mix, "PINK", 1).Single(), 40);
    EXPECT_EQ(room.Pink(), 0);
  }
}

// The ink lies in its lot, whether lots are shown or not: from there it goes, and once.
TEST(BatchConserves, WhatWentToALotLeavesItWhileLotsAreNotInUse) {
  PinkRoom room;
  room.HaveStock(ColorKind::Mix, 400);
  room.Mixed("PINK", "100");
  room.record.fields.LotNumber = "MADE";
  const std::int32_t number = room.Save();
  room.session.InvLotTracking = 0;
  room.Open(number);
  room.Remix("80");
  room.Save();
  EXPECT_EQ(room.LotQty(ColorKind::Mix, "PINK", 1).Single(), 80);
  for (int i = 0; i < 3; ++i) {
    room.Open(number);
    ASSERT_TRUE(SetReturnToInventory(room.session, room.record, false));
    room.record.fields.ShortNote = std::to_string(i);
    room.Save();
    EXPECT_TRUE(room.LotQty(ColorKind::Mix, "PINK", 1).IsNull());
    EXPECT_EQ(room.Pink(), 400);
  }
  DeleteAndReturn(room, number);
  EXPECT_EQ(room.Pink(), 400);
}

// Looked at, or saved with no other takings, a Batch leaves no line in the history of stock.
TEST(BatchConserves, OpeningsThatAreRestoredLeaveNoTrace) {
  PinkRoom room;
  room.Setting("InvCutoff", "0.5");
  room.Lot(ColorKind::Basic, "RED", 1, 10.2F);
  room.Lot(ColorKind::Basic, "WHITE", 1, 50);
  room.Mixed("PINK", "40");
  room.Select(1, {Use(1, 10)});
  room.Select(0, {Use(1, 20), Use(0, 10)});
  const std::int32_t number = room.Save();
  const auto lines = [&] { return room.Scalar("SELECT COUNT(*) FROM MSysStockHistory").Whole(); };
  const std::int64_t before = lines();
  for (int i = 0; i < 3; ++i) LookAt(room, number);
  EXPECT_EQ(lines(), before);
  room.Open(number);
  room.record.fields.ShortNote = "x";
  room.Save();
  EXPECT_EQ(lines(), before);
  // Something else happened there meanwhile: then every step stands.
  room.Open(number);
  PostStock(room.session, {.source = PostingSource::ManualAdjust, .name = "WHITE", .quantity = 5});
  PostStock(room.session, {.source = PostingSource::ManualAdjust, .name = "WHITE", .quantity = -5});
  ASSERT_TRUE(CancelBatch(room.session, room.record).value());
  EXPECT_EQ(lines(), before + 4);
}

}  // namespace
}  // namespace vellumark::test
