// What stands before a change and before a save: guards, checks and questions in their order; what the colour made does
// in stock when it is saved again.

#include "core/base/number.h"
#include "core/batch/weighing.h"
#include "life_room.h"
#include "support/stock_lines.h"

namespace vellumark {
namespace {

using test::LifeRoom;
using test::PinkRoom;
using test::Use;

TEST(BatchGuards, CompleteThenFormulaThenEarlierDay) {
  PinkRoom room;
  room.LaterSetting("BatchComplete", "1");
  room.Mixed("PINK", "40");
  room.prompt.Expect("Batch Completion State            ", Answer::Yes, "Mark this Batch as Complete?");
  room.Save();
  EXPECT_TRUE(room.OfBatch("Complete").Bool());
  room.clock.Set({2026, 3, 12, 9, 0, 0});
  room.session.File().Execute("UPDATE INK_Mix SET LastModified = '2026-03-11 00:00:00'");

  room.Open(1);
  auto refused = CheckEditable(room.session, room.record);
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().title, "Completed Batch - Changes Not Allowed");
  EXPECT_EQ(refused.error().text, "This Batch is marked as Complete.\n\nUncheck Complete to edit the batch.");
  EXPECT_EQ(LifeRoom::Title(DeleteBatch(room.session, room.record, room.dialogs)),
            "Completed Batch - Changes Not Allowed");
  room.record.Complete = false;
  refused = CheckEditable(room.session, room.record);
  EXPECT_EQ(refused.error().title, "Batches Window - Edit State");
  EXPECT_EQ(refused.error().text,
            "This Batch is no longer editable.\n"
            "A Master Formula associated with this Batch has been deleted or modified\n"
            "since this Batch was saved.");
  EXPECT_TRUE(room.record.modifiedFormula);
  EXPECT_EQ(LifeRoom::Title(MixBatch(room.session, room.record)), "Batches Window - Edit State");
  // Save keeps nothing but the mark.
  room.record.fields.Notes = "lost";
  room.prompt.Expect("Batch Completion State            ", Answer::No);
  EXPECT_EQ(SaveBatch(room.session, room.record, room.dialogs).value(), SaveEnd::Kept);
  EXPECT_FALSE(room.OfBatch("Complete").Bool());
  EXPECT_EQ(room.OfBatch("Notes").Text(), "");
  EXPECT_EQ(room.Red(), 90);

  room.session.File().Execute("UPDATE INK_Mix SET LastModified = '2026-01-02 00:00:00'");
  room.Open(1);
  room.prompt.Expect("Allow Editing?", Answer::No,
                     "Editing this Batch Record will alter the results\n"
                     "of your Production and Consumption Reports.\n\n"
                     "Do you wish to continue?");
  EXPECT_FALSE(MixBatch(room.session, room.record));
  room.prompt.Expect("Allow Editing?", Answer::Yes);
  EXPECT_TRUE(MixBatch(room.session, room.record));
  EXPECT_EQ(room.prompt.last.defaultAnswer, Answer::No);
  EXPECT_TRUE(MixBatch(room.session, room.record));  // not asked again for this record
  ASSERT_TRUE(CancelBatch(room.session, room.record).value());
}

TEST(BatchGuards, ARecipeChangedOnTheDayOfTheBatchIsNoticed) {
  PinkRoom room;
  room.session.File().Execute("UPDATE INK_Mix SET LastModified = '2026-03-10 00:00:00'");
  room.Saved("PINK", "40");
  EXPECT_TRUE(ReadBatch(room.session, 1)->formulaUnchanged);
  room.session.File().Execute("UPDATE INK_Mix SET BQ0 = 26, BQ1 = 74");
  EXPECT_FALSE(ReadBatch(room.session, 1)->formulaUnchanged);
}

// What its save made of the formula, an Additive Set's percentages and what was weighed over or under aside.
TEST(BatchGuards, ABatchThatWasFoldedIntoItsFormulaStaysOpenToChanges) {
  for (const bool withSet : {true, false}) {
    PinkRoom room;
    room.session.InvLotTracking = 0;
    room.Basic("SLOW", 50, {{"Additive", true}});
    room.AddRow(schema::Additives,
                {{"SetName", "SET1"}, {"SetList", "<SLOW>"}, {"Add_Name0", "SLOW"}, {"Add_Percent0", 10.0F}});
    if (withSet) {
      room.Formula("DEEP", {{"RED", 50.0F}, {"WHITE", 40.0F}, {"SLOW", 10.0F}}, 0, {{"AddSetName", "SET1"}});
    } else {
      room.Formula("DEEP", {{"RED", 60.0F}, {"WHITE", 40.0F}});
    }
    room.Mixed("DEEP", "100");
    if (!withSet) {
      const auto ticket = OpenWeighing(room.session, room.record, 1);
      ASSERT_TRUE(ticket && TakePour(room.session, room.record, *ticket, 38, {}));
    }
    ASSERT_TRUE(AddBatchAdditions(room.session, room.record, {{"RED", "10"}}));
    room.dialogs.choices.push_back(ModifiedBatchChoice{.change = FormulaChange::Update, .newName = ""});
    room.Save();
    EXPECT_TRUE(ReadBatch(room.session, 1)->formulaUnchanged) << withSet;
    room.session.File().Execute("UPDATE INK_Mix SET BQ0 = BQ0 - 1, BQ1 = BQ1 + 1 WHERE Color_Name = 'DEEP'");
    EXPECT_FALSE(ReadBatch(room.session, 1)->formulaUnchanged) << withSet;
  }
}

TEST(BatchSave, ChecksStandInTheirOrder) {
  PinkRoom room;
  room.Setting("BatchLotNumReminder", "1");
  room.LaterSetting("BatchUDTxtRequired3", "1");
  room.LaterSetting("BatchComplete", "1");
  room.Mixed("PINK", "40");
  SetQuantityText(room.record.work, "50");
  auto refused = SaveBatch(room.session, room.record, room.dialogs);
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().title, "Recalculate Batch");
  EXPECT_EQ(refused.error().text,
            "You've changed the Quantity of this batch.\n"
            "Click the Recycle(F2) or Mix(F3) button to\n"
            "recalculate the batch before saving the batch.");
  room.Remix("50");
  refused = SaveBatch(room.session, room.record, room.dialogs);
  EXPECT_EQ(refused.error().title, "More Data Incomplete");
  EXPECT_EQ(refused.error().text, "Required User Defined Text Fields Incomplete.\nPress More Data and complete.");
  room.record.fields.UD_Text[3] = "x";
  room.dialogs.reminders.push_back({.returnToBatch = true, .dontShowAgain = false});
  EXPECT_EQ(SaveBatch(room.session, room.record, room.dialogs).value(), SaveEnd::Stays);
  // All made for a job, yet the lot of what is left is described.
  ASSERT_TRUE(EnterJobNumber(room.session, room.record, "J"));
  room.record.fields.LotLoc = "SHELF";
  room.dialogs.reminders.push_back({.returnToBatch = false, .dontShowAgain = true});
  room.prompt.Expect("Batch Completion State            ", Answer::No);
  room.prompt.Expect(std::string(25, ' ') + "Lotted Inv. Details", Answer::Yes,
                     "Change Qty to Inv so these items can be saved?");
  EXPECT_EQ(SaveBatch(room.session, room.record, room.dialogs).value(), SaveEnd::Stays);
  EXPECT_EQ(room.session.support->settings.GetSupportValue("BatchLotNumReminder"), "0");
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Batch").Whole(), 0);
  room.prompt.Expect("Batch Completion State            ", Answer::Yes);
  room.prompt.Expect(std::string(25, ' ') + "Lotted Inv. Details", Answer::No);
  EXPECT_EQ(SaveBatch(room.session, room.record, room.dialogs).value(), SaveEnd::Stored);
  EXPECT_EQ(room.OfBatch("LotRefID").Whole(), -1);
  EXPECT_EQ(room.Pink(), 0);
}

TEST(BatchSave, NewBatchesTakeTheirDefaults) {
  PinkRoom room;
  room.LaterSetting("BatchDefaultLotNumberValue", "1");
  room.LaterSetting("BatchUDTxtDefault1", "1");
  room.LaterSetting("BatchUDTxtValue1", "Press 2");
  room.Setting("ReturnToInventory", "0");
  room.LaterSetting("Batches_UDNum_Format0", "2");
  room.Mixed("PINK", "40");
  EXPECT_EQ(room.record.fields.LotNumber, "000001");
  EXPECT_EQ(room.record.fields.UD_Text[1], "Press 2");
  EXPECT_EQ(room.record.returned, 0);
  EXPECT_TRUE(EnterBatchField(room.session, room.record, "UD_Numeric0", "1.005"));
  EXPECT_EQ(room.record.fields.UD_Numeric[0], 1.01F);
  EXPECT_FALSE(EnterBatchField(room.session, room.record, "UD_Numeric0", "1,5"));
  room.Save();
  EXPECT_EQ(room.OfBatch("UD_Numeric0").Single(), 1.01F);
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Mix_LotInv").Whole(), 0);
  room.Open(1);
  EXPECT_EQ(room.record.returned, 0);
  EXPECT_FALSE(room.record.ReturnToInventory);
  ASSERT_TRUE(CancelBatch(room.session, room.record).value());
}

// ---- The colour that is made

struct Made {
  const char* name;
  const char* lot;       ///< lot number of the first save
  float used;            ///< of the ink that was made, before the Batch is opened again
  const char* quantity;  ///< of the second save
  const char* lotAfter;  ///< lot number of the second save
  float unlotted;        ///< what then stands
  float lotted;          ///< in the lot; below zero: there is none
};

class SavedAgain : public testing::TestWithParam<Made> {};

TEST_P(SavedAgain, MovesOnlyTheDifferenceOfWhatItMade) {
  const Made& made = GetParam();
  PinkRoom room;
  room.Mixed("PINK", "40");
  room.record.fields.LotNumber = made.lot;
  room.Save();
  Posting use{.source = PostingSource::ManualAdjust, .kind = ColorKind::Mix, .name = "PINK", .quantity = -made.used};
  if (*made.lot != 0) use.place = {.LotRefID = 1, .LotNumber = made.lot};
  if (made.used > 0) PostStock(room.session, use);
  room.Open(1);
  if (std::string_view(made.quantity) != "40") room.Remix(made.quantity);
  room.record.fields.LotNumber = made.lotAfter;
  room.record.fields.ShortNote = "again";
  room.Save();
  EXPECT_EQ(room.Pink(), made.unlotted);
  const Value lot = room.Scalar("SELECT LotQty FROM INK_Mix_LotInv");
  EXPECT_EQ(lot.IsNull() ? -1 : lot.Single(), made.lotted);
  if (!lot.IsNull()) {
    EXPECT_EQ(room.Scalar("SELECT LotNumber FROM INK_Mix_LotInv").Text(), made.lotAfter);
    EXPECT_EQ(room.OfBatch("LotRefID").Whole(), room.Scalar("SELECT LotRefID FROM INK_Mix_LotInv").Whole());
    double moved = 0;
    for (const StockLine& line : test::ListStockHistory(room.session, {.name = "PINK", .lot = made.lotAfter}))
      moved += line.change;
    EXPECT_EQ(RoundSingle(moved, 3), made.lotted) << "the history finds the lot by its number";
  }
  EXPECT_LE(room.Scalar("SELECT COUNT(*) FROM INK_Mix_LotInv").Whole(), 1);
}

INSTANTIATE_TEST_SUITE_P(
    OnPaper, SavedAgain,
    testing::Values(
        Made{"UnlottedSame", "", 0, "40", "", 40, -1}, Made{"UnlottedGrows", "", 0, "60", "", 60, -1},
        Made{"UnlottedUsedGrows", "", 30, "60", "", 30, -1}, Made{"UnlottedUsedShrinks", "", 30, "35", "", 5, -1},
        Made{"UnlottedUsedShrinksBelow", "", 30, "20", "", 0, -1}, Made{"LotSame", "A", 0, "40", "A", 0, 40},
        Made{"LotGrows", "A", 0, "50", "A", 0, 50}, Made{"LotUsedSame", "A", 25, "40", "A", 0, 15},
        Made{"LotUsedGrows", "A", 25, "50", "A", 0, 25}, Made{"LotUsedShrinksBelow", "A", 25, "10", "A", 0, -1},
        Made{"LotRenamed", "A", 25, "40", "B", 0, 15}, Made{"LotVanishedSame", "A", 40, "40", "A", 0, -1},
        Made{"LotVanishedGrows", "A", 40, "45", "A", 0, 5}, Made{"UnlottedToLot", "", 0, "40", "A", 0, 40},
        Made{"UnlottedUsedToLot", "", 30, "40", "A", 0, 10}, Made{"LotToUnlotted", "A", 0, "40", "", 40, -1},
        Made{"LotUsedToUnlotted", "A", 25, "40", "", 15, -1}),
    [](const auto& info) { return std::string(info.param.name); });

// Less than the cutoff stays in stock where a Batch still makes it, as if the Batch had been saved so at once.
TEST(BatchSave, LittleThatIsStillMadeIsThere) {
  for (const char* lot : {"", "A"}) {
    PinkRoom room;
    room.Setting("InvCutoff", "0.5");
    const auto made = [&] { return room.Pink() + room.Scalar("SELECT TOTAL(LotQty) FROM INK_Mix_LotInv").Single(); };
    room.Mixed("PINK", "0.9");
    room.record.fields.LotNumber = lot;
    room.Save();
    for (const auto& [used, stays] : {std::pair{"0.5", 0.4F}, {"0.8", 0.1F}, {"0.3", 0.6F}, {"0.9", 0.0F}}) {
      room.Open(1);
      ASSERT_TRUE(EnterJobNumber(room.session, room.record, "J1"));
      ASSERT_TRUE(EnterQtyUsed(room.session, room.record, used));
      room.Save();
      EXPECT_FLOAT_EQ(made(), stays) << lot << " used " << used;
      EXPECT_EQ(room.OfBatch("LotRefID").Whole(), stays == 0 ? -1 : *lot == 0 ? 0 : 1) << used;
    }
  }
}

TEST(BatchSave, WithoutAFreeReferenceTheInkGoesToUnlottedInventory) {
  PinkRoom room;
  room.FillLots(ColorKind::Mix, "PINK", kLastLotRefID);
  room.Mixed("PINK", "40");
  room.record.fields.LotNumber = "MADE";
  room.prompt.Expect("Lotted Inventory", Answer::Ok,
                     "Unable to add PINK\nto Lotted Inventory\nQuantity was added to Unlotted Inv.");
  room.Save();
  EXPECT_EQ(room.Pink(), 40);
  EXPECT_EQ(room.OfBatch("LotNumber").Text(), "");
  EXPECT_EQ(room.OfBatch("LotRefID").Whole(), 0);
}

// ---- A save that does not happen

TEST(BatchSave, LeavesCompleteAsItWasWhenItDoesNotHappen) {
  PinkRoom room;
  room.LaterSetting("BatchComplete", "1");
  room.Mixed("PINK", "40");
  ASSERT_TRUE(AddBatchAdditions(room.session, room.record, {{"RED", "1"}}));
  room.prompt.Expect("Batch Completion State            ", Answer::Yes);
  room.dialogs.choices.push_back(std::nullopt);  // the name of the new formula was refused, the window cancelled
  EXPECT_EQ(SaveBatch(room.session, room.record, room.dialogs).value(), SaveEnd::Stays);
  EXPECT_FALSE(room.record.Complete);
  ASSERT_TRUE(MixBatch(room.session, room.record)) << "it can still be changed";
  room.prompt.Expect("Batch Completion State            ", Answer::Yes);
  EXPECT_EQ(room.Save(), 1);
  EXPECT_EQ(room.OfBatch("Complete").Whole(), 1);
}

// Stored under a name that is gone its line would take from nothing.
TEST(BatchSave, RefusesAColorThatIsNoLongerThere) {
  struct Case {
    const char* gone;
    const char* table;
  };
  for (const Case& test : {Case{"RED", "Basic"}, Case{"WHITE", "Basic"}, Case{"PINK", "Mix"}, Case{"ROSE", "Mix"}}) {
    SCOPED_TRACE(test.gone);
    PinkRoom room;
    for (const char* rule : {"Ingredients", "StockHistory"}) room.Breaks(rule);
    room.Formula("ROSE", {{"RED", 50.0F}, {"WHITE", 50.0F}}, 6);
    room.Mixed("PINK", "40");
    ASSERT_TRUE(*TakeRecycled(room.session, room.record, "ROSE"));
    ASSERT_TRUE(AddBatchAdditions(room.session, room.record, {{"WHITE", "1"}}));
    room.session.File().Execute(fmt::format("DELETE FROM INK_{} WHERE Color_Name = '{}'", test.table, test.gone));
    const auto saved = SaveBatch(room.session, room.record, room.dialogs);
    ASSERT_FALSE(saved);
    EXPECT_EQ(saved.error(),
              (Refusal{"Color Not Found",
                       std::string(test.gone) + " is no longer in this database.\nCalculate the Batch again.",
                       "txtQuantity"}));
    EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Batch").Whole(), 0);
  }
}

// ---- Cost and emission of the stored Batch

TEST(BatchSave, KeepsItsOwnCostsWhenPricesChange) {
  PinkRoom room;
  room.Mixed("PINK", "40");
  BatchCostModel model = room.record.work.cost;
  model.FixedCostOfBatch = 12.5F;
  model.FixedCostPerUnit = 0.25F;
  model.MarkupPercent = 10;
  ASSERT_TRUE(SetBatchCostModel(room.session, room.record, model, true));
  EXPECT_EQ(room.session.support->settings.GetSupportValue("MarkupPercent"), "10");
  // 10 x 4.00 + 30 x 1.00 = 70.00; markup 7.00; fixed 12.50 and 40 x 0.25 = 10.00
  EXPECT_EQ(room.record.work.figures.TotalCost.Fixed(2), "99.50");
  room.Save();
  room.session.File().Execute("UPDATE INK_Basic SET PurchaseCost = 100.0");
  const auto shown = ReadBatch(room.session, 1);
  EXPECT_EQ(shown->work.figures.TotalCost.Fixed(2), "99.50");
  EXPECT_EQ(shown->work.figures.UnitCost.Fixed(2), "2.49");
  model.MarkupPercent = 100.5F;
  auto refused = SetBatchCostModel(room.session, room.record, model, false);
  EXPECT_EQ(refused.error().text, "You must enter a valid percentage between 0 and 100.");
  model.FixedCostPerUnit = -0.01F;
  refused = SetBatchCostModel(room.session, room.record, model, false);
  EXPECT_EQ(refused.error().text, "You must enter a valid, positive cost.");
}

TEST(BatchSave, ArchiveViewsAreOnlyShown) {
  PinkRoom room;
  room.Saved("PINK", "40");
  room.session.ArchiveView = true;
  const std::string before = room.Data();
  room.Open(1);
  EXPECT_FALSE(MixBatch(room.session, room.record));
  EXPECT_FALSE(DeleteBatch(room.session, room.record, room.dialogs));
  room.record.fields.Notes = "x";
  EXPECT_FALSE(SaveBatch(room.session, room.record, room.dialogs));
  ASSERT_TRUE(NextBatch(room.session, room.record, room.dialogs).value());
  EXPECT_TRUE(room.Data() == before);
}

}  // namespace
}  // namespace vellumark
