// Where the lines of a Batch are taken from, and the formula that its additions may change.

#include "core/colors/formulas.h"
#include "life_room.h"

namespace vellumark {
namespace {

using test::LifeRoom;
using test::PinkRoom;
using test::Use;

// The lots that Batch 1 recorded for a colour: "L1 6", "Unlotted Inv. 4".
std::vector<std::string> Recorded(const LifeRoom& room, std::string_view name) {
  std::vector<std::string> rows;
  for (const BatchLotRow& lot : ReadBatchLots(room.session, 1))
    if (lot.IngName == name) rows.push_back(lot.LotNumber + " " + ShortestText(lot.LotQty));
  return rows;
}
using Rows = std::vector<std::string>;

TEST(BatchLots, WhatIsNotDrawnFromALotIsUnlotted) {
  PinkRoom room;
  room.Lot(ColorKind::Basic, "RED", 1, 6);
  room.Lot(ColorKind::Basic, "WHITE", 1, 50);
  room.Mixed("PINK", "40");
  room.Select(1, {Use(1, 6)});
  room.Select(0, {Use(1, 20), Use(0, 10)});
  room.Save();
  EXPECT_EQ(Recorded(room, "RED"), (Rows{"L1 6", "Unlotted Inv. 4"}));
  EXPECT_EQ(Recorded(room, "WHITE"), (Rows{"L1 20", "Unlotted Inv. 10"}));
  EXPECT_EQ(room.Red(), 96);
  EXPECT_TRUE(room.LotQty(ColorKind::Basic, "RED", 1).IsNull());
  EXPECT_EQ(room.LotQty(ColorKind::Basic, "WHITE", 1).Single(), 30);
  // Handed back, the lot stands again as it was, in its place with its price.
  room.Open(1);
  EXPECT_EQ(room.LotQty(ColorKind::Basic, "RED", 1).Single(), 6);
  EXPECT_EQ(room.Scalar("SELECT LotDate FROM INK_Basic_LotInv WHERE LotCName = 'WHITE'").Text(), "2026-01-15 00:00:00");
  EXPECT_EQ(RowLots(room.record, 1).uses.size(), 2U);
  EXPECT_TRUE(RowLots(room.record, 1).CompleteFor(10));
  ASSERT_TRUE(CancelBatch(room.session, room.record).value());
}

TEST(BatchLots, ChosenLotsThatWentOrShrankGiveWhatIsThere) {
  PinkRoom room;
  room.Breaks("StockHistory");
  for (const std::int32_t ref : {1, 2, 3}) room.Lot(ColorKind::Basic, "RED", ref, 4);
  room.Mixed("PINK", "40");
  room.Select(1, {Use(1, 3), Use(2, 3), Use(3, 4)});
  room.session.File().Execute("DELETE FROM INK_Basic_LotInv WHERE LotRefID = 1");
  room.session.File().Execute("UPDATE INK_Basic_LotInv SET LotQty = 1.5 WHERE LotRefID = 2");
  room.session.File().Execute("UPDATE INK_Basic_LotInv SET LotConsignment = 1 WHERE LotRefID = 3");
  room.Save();
  EXPECT_EQ(Recorded(room, "RED"), (Rows{"L2 1.5", "Unlotted Inv. 8.5"}));
  EXPECT_EQ(room.LotQty(ColorKind::Basic, "RED", 3).Single(), 4);
  EXPECT_EQ(room.Red(), 91.5F);
}

TEST(BatchLots, AContainerIsEmptiedAndTheRestOfALotWrittenOff) {
  PinkRoom room;
  room.Lot(ColorKind::Basic, "RED", 1, 10.2F);
  room.Lot(ColorKind::Basic, "WHITE", 1, 36);
  room.Mixed("PINK", "40");
  room.Select(1, {Use(1, 10.2F)});     // 10 are needed
  room.Select(0, {Use(1, 30, true)});  // 6 are written off
  room.Save();
  EXPECT_EQ(Recorded(room, "RED"), (Rows{"L1 10.2"}));
  EXPECT_EQ(Recorded(room, "WHITE"), (Rows{"L1 30"}));
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Basic_LotInv").Whole(), 0);
  EXPECT_EQ(room.Red(), 100);
  EXPECT_EQ(room.White(), 200);
}

TEST(BatchLots, TheSameLotForALineAndItsAddition) {
  PinkRoom room;
  room.Lot(ColorKind::Basic, "RED", 1, 11);
  room.Mixed("PINK", "40");
  ASSERT_TRUE(AddBatchAdditions(room.session, room.record, {{"RED", "2"}}));
  room.Select(1, {Use(1, 10)});
  room.Select(2, {Use(1, 2)});
  room.dialogs.choices.push_back(ModifiedBatchChoice{});
  room.Save();
  EXPECT_EQ(Recorded(room, "RED"), (Rows{"L1 10", "L1 1", "Unlotted Inv. 1"}));
  EXPECT_EQ(room.Red(), 99);
  EXPECT_TRUE(room.LotQty(ColorKind::Basic, "RED", 1).IsNull());
}

TEST(BatchLots, ANegativeAdditionLowersTheNeed) {
  PinkRoom room;
  room.Lot(ColorKind::Basic, "RED", 1, 9);
  room.Mixed("PINK", "40");
  room.prompt.Expect("Re-enter Inventory Lot Selections");
  ASSERT_TRUE(AddBatchAdditions(room.session, room.record, {{"RED", "-4"}}));
  EXPECT_EQ(LotNeed(room.session, room.record, 1), 6);
  EXPECT_TRUE(OpenRowLots(room.session, room.record, 1));
  room.Select(1, {Use(1, 6)});
  room.prompt.Expect("Re-enter Inventory Lot Selections");
  ASSERT_TRUE(ApplyAdditionRow(room.session, room.record, 2, "-10"));
  EXPECT_EQ(LotNeed(room.session, room.record, 1), 0);
  EXPECT_EQ(LifeRoom::Title(OpenRowLots(room.session, room.record, 1)),
            std::string(40, ' ') + "Lot Selection Disabled");
  room.prompt.Expect("Re-enter Inventory Lot Selections");
  ASSERT_TRUE(ApplyAdditionRow(room.session, room.record, 2, "-4"));
  room.dialogs.choices.push_back(ModifiedBatchChoice{});
  room.Save();
  EXPECT_EQ(room.LotQty(ColorKind::Basic, "RED", 1).Single(), 3);
  EXPECT_EQ(room.Red(), 100);
}

TEST(BatchLots, RowsThatStayKeepTheirSelection) {
  PinkRoom room;
  room.Basic("BLUE", 50);
  room.Formula("PLUM", {{"RED", 20.0F}, {"WHITE", 50.0F}, {"BLUE", 30.0F}});
  room.Formula("ROSE", {{"RED", 50.0F}, {"WHITE", 50.0F}}, 8);
  room.Lot(ColorKind::Basic, "BLUE", 1, 20);
  room.Lot(ColorKind::Mix, "ROSE", 1, 5);
  room.record = NewBatchRecord(room.session);
  ASSERT_TRUE(EnterBatchColor(room.session, room.record, "PLUM"));
  SetQuantityText(room.record.work, "40");
  ASSERT_TRUE(RecycleBatch(room.session, room.record).value());
  ASSERT_EQ(room.record.work.Rows[0].name, "ROSE");
  ASSERT_EQ(Fixed(room.record.work.Rows[1].amount, 3), "13.500");  // WHITE 20 less half of 13
  room.Select(0, {Use(1, 5)});
  room.Select(2, {Use(1, 12)});
  ASSERT_TRUE(ApplyMixRow(room.session, room.record, 0, {.amount = "4", .recycle = false}));
  EXPECT_TRUE(RowLots(room.record, 0).uses.empty());  // less is needed than was chosen
  EXPECT_EQ(room.record.work.Rows[2].name, "BLUE");
  EXPECT_EQ(RowLots(room.record, 2).uses.size(), 1U);
  room.Select(0, {Use(1, 4)});
  ASSERT_TRUE(ApplyMixRow(room.session, room.record, 0, {.amount = "6", .recycle = false}));
  EXPECT_EQ(RowLots(room.record, 0).Used(), 4);
  EXPECT_FALSE(RowLots(room.record, 0).CompleteFor(6));
}

TEST(BatchLots, ReferencesThatABatchCannotRecordAreRefused) {
  PinkRoom room;
  room.Lot(ColorKind::Basic, "RED", 32768, 20);
  room.Mixed("PINK", "40");
  room.Select(1, {Use(32768, 10)});
  EXPECT_EQ(LifeRoom::Title(SaveBatch(room.session, room.record, room.dialogs)), "Lotted Inventory");
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Batch").Whole(), 0);
  EXPECT_EQ(room.record.state, BatchState::Add);
}

// ---- The formula that additions change

TEST(ModifiedBatch, FoldsTheAdditionsIntoTheFormula) {
  PinkRoom room;
  room.Mixed("PINK", "40");
  ASSERT_TRUE(AddBatchAdditions(room.session, room.record, {{"RED", "10"}}));
  EXPECT_TRUE(OffersFormulaChange(room.session, room.record));
  room.dialogs.choices.push_back(ModifiedBatchChoice{FormulaChange::Update, ""});
  room.Save();
  // 10 and 10 of RED, 30 of WHITE
  const auto pink = ReadMix(room.session, "PINK").value();
  EXPECT_EQ(pink.BC[0], "WHITE");
  EXPECT_EQ(pink.BQ[0], 60);
  EXPECT_EQ(pink.BQ[1], 40);
  EXPECT_EQ(pink.BasicCost, 2.2F);
  EXPECT_EQ(pink.Color_Set, "<WHITE><RED>");
  EXPECT_EQ(pink.LastModified->DateText(), "2026-03-10");
  EXPECT_EQ(room.OfBatch("IngType2").Whole(), 3);
  EXPECT_TRUE(PriorBatchHadAdditions(room.session, "PINK", 2));
  EXPECT_FALSE(PriorBatchHadAdditions(room.session, "PINK", 1));
  // The Batch is of that formula, so it can still be edited.
  EXPECT_TRUE(ReadBatch(room.session, 1)->formulaUnchanged);
}

TEST(ModifiedBatch, MakesANewFormulaAndGoesOnUnderItsName) {
  PinkRoom room;
  room.Basic("ROSE", 0);
  room.Mixed("PINK", "40");
  ASSERT_TRUE(AddBatchAdditions(room.session, room.record, {{"RED", "10"}}));
  const auto taken = CheckModifiedBatch(room.session, room.record, {FormulaChange::Create, "pink"});
  EXPECT_EQ(taken.error().title, "Master Formula Already Exists");
  EXPECT_EQ(taken.error().text,
            "This Master Formula already exists. Please choose another name for the new Master Formula Record.");
  room.prompt.Expect("Master Formula", Answer::Yes,
                     "A Basic Color ROSE already exists in the INK database.\n"
                     "Would you like to also add a Master Formula ROSE?");
  room.dialogs.choices.push_back(ModifiedBatchChoice{FormulaChange::Create, "rose"});
  room.Save();
  EXPECT_EQ(room.OfBatch("Color_Name").Text(), "ROSE");
  EXPECT_EQ(room.Inventory(ColorKind::Mix, "ROSE").Single(), 50);
  EXPECT_EQ(room.Pink(), 0);
  EXPECT_EQ(ReadMix(room.session, "ROSE")->BQ[1], 40);
  EXPECT_EQ(ReadMix(room.session, "PINK")->BQ[0], 25);
  EXPECT_TRUE(ReadBatch(room.session, 1)->formulaUnchanged);
}

TEST(ModifiedBatch, IsNotOfferedWhereItCannotBe) {
  PinkRoom room;
  room.Formula("ROSE", {{"RED", 50.0F}, {"WHITE", 50.0F}}, 8);
  room.record = NewBatchRecord(room.session);
  ASSERT_TRUE(EnterBatchColor(room.session, room.record, "PINK"));
  SetQuantityText(room.record.work, "40");
  ASSERT_TRUE(RecycleBatch(room.session, room.record).value());
  ASSERT_TRUE(AddBatchAdditions(room.session, room.record, {{"RED", "1"}}));
  EXPECT_FALSE(OffersFormulaChange(room.session, room.record)) << "recycled colours";
  room.Remix("40");
  EXPECT_FALSE(OffersFormulaChange(room.session, room.record)) << "no additions";
  ASSERT_TRUE(AddBatchAdditions(room.session, room.record, {{"RED", "1"}}));
  EXPECT_TRUE(OffersFormulaChange(room.session, room.record));
  // Cancelled, nothing is saved.
  room.dialogs.choices.push_back(std::nullopt);
  EXPECT_EQ(SaveBatch(room.session, room.record, room.dialogs).value(), SaveEnd::Stays);
  EXPECT_EQ(room.record.state, BatchState::Add);
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Batch").Whole(), 0);
}

TEST(ModifiedBatch, NeverLeavesAFormulaOfNothingButItsAdditiveSet) {
  PinkRoom room;
  room.Basic("WAX", 10, {{"Additive", true}});
  room.AddRow(schema::Additives,
              {{"SetName", "WAXED"}, {"SetList", "<WAX>"}, {"Add_Name0", "WAX"}, {"Add_Percent0", 5.0F}});
  room.Formula("GLOSS", {{"RED", 95.0F}, {"WAX", 5.0F}}, 0, {{"AddSetName", "WAXED"}});
  room.Mixed("GLOSS", "100");
  room.prompt.Expect("Re-enter Inventory Lot Selections");
  ASSERT_TRUE(AddBatchAdditions(room.session, room.record, {{"RED", "-95"}}));
  room.prompt.Expect("Modify / Create Color", Answer::Ok,
                     "Can't modify or create a new color from this formula.\n"
                     "Additions made to the batch create an Add Set ingredient formula.\n"
                     "Formulas must contain ingredients not found in the Add Set.\n"
                     "The batch will be saved without making any changes.");
  room.dialogs.choices.push_back(ModifiedBatchChoice{FormulaChange::Update, ""});
  room.Save();
  EXPECT_EQ(ReadMix(room.session, "GLOSS")->BQ[0], 95);
  // With the set left as it is, the rest shares what it leaves of 100.
  room.Mixed("GLOSS", "100");
  ASSERT_TRUE(AddBatchAdditions(room.session, room.record, {{"WHITE", "95"}}));
  room.dialogs.choices.push_back(ModifiedBatchChoice{FormulaChange::Update, ""});
  room.Save();
  const auto gloss = ReadMix(room.session, "GLOSS").value();
  EXPECT_EQ(gloss.BQ[0], 47.5F);
  EXPECT_EQ(gloss.BQ[1], 47.5F);
  EXPECT_EQ(gloss.BC[2], "WAX");
  EXPECT_EQ(gloss.BQ[2], 5);
  EXPECT_EQ(gloss.AddSetName, "WAXED");
}

}  // namespace
}  // namespace vellumark
