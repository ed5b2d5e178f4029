#include "core/inventory/stock_resets.h"

#include "core/inventory/reorder.h"
#include "core/inventory/stock_list.h"
#include "support/snapshot.h"
#include "support/stock_lines.h"
#include "support/stock_room.h"

namespace vellumark::test {
namespace {

constexpr ColorKind kBasic = ColorKind::Basic;
constexpr ColorKind kMix = ColorKind::Mix;

// An operator who stops the work at a certain look.
class Impatient final : public Progress {
 public:
  void Begin(std::string_view text) override { texts.emplace_back(text); }
  void Percent(double) override {}
  bool Cancelled() override { return --patience < 0; }
  std::vector<std::string> texts;
  int patience = 1000;
};

struct ResetRoom : ::testing::Test, StockRoom {
  ResetRoom() {
    Color(kBasic, "RED", 5, {{"Reorder", 1.0F}});
    Color(kBasic, "BLUE", 0);
    Color(kMix, "PURPLE", 7, {{"Reorder", 2.0F}});
    Lot(kBasic, "RED", 1, 3);
    Lot(kBasic, "RED", 2, 4);
    Lot(kMix, "PURPLE", 1, 6);
  }
  std::int64_t Lots() {
    return Scalar("SELECT (SELECT COUNT(*) FROM INK_Basic_LotInv) + (SELECT COUNT(*) FROM INK_Mix_LotInv)").Whole();
  }
  std::string Everything() { return test::Snapshot(session.File()); }
};

TEST_F(ResetRoom, OneValueForAllColorsOfAKind) {
  ASSERT_TRUE(*ResetInventories(session, {.basics = "10"}));
  EXPECT_EQ(Inventory(kBasic, "RED"), Value(10.0F));
  EXPECT_EQ(Inventory(kBasic, "BLUE"), Value(10.0F));
  EXPECT_EQ(Inventory(kMix, "PURPLE"), Value(7.0F));
  EXPECT_EQ(Lots(), 3) << "lots are reset to zero only";

  ASSERT_TRUE(*ResetInventories(session, {.basics = "0.0004", .mixes = " 0.3335 "}));
  EXPECT_EQ(Inventory(kBasic, "RED"), Value(0.0F));
  EXPECT_EQ(Inventory(kMix, "PURPLE"), Value(0.334F)) << "under the cutoff point, as it was given";
  EXPECT_EQ(Lots(), 1);
  auto lines = ListStockHistory(session, {.name = "RED"});
  std::erase_if(lines, [](const StockLine& line) { return line.event == StockEvent::Opening; });
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[3].LotNumber, "L2");
  EXPECT_EQ(lines[3].change, -4);

  Setting("InvLotTracking", "0");
  ASSERT_TRUE(*ResetInventories(session, {.mixes = "0"}));
  EXPECT_EQ(Lots(), 1) << "out of sight, not gone";

  ASSERT_TRUE(*ResetReorderPoints(session, {.basics = "2.5"}));
  EXPECT_EQ(Scalar("SELECT MIN(Reorder) FROM INK_Basic"), Value(2.5F));
  EXPECT_EQ(Scalar("SELECT Reorder FROM INK_Mix"), Value(2.0F));
}

TEST_F(ResetRoom, RefusesAndStopsWithoutATrace) {
  const std::string before = Everything();
  for (const std::string value : {"", "x", "-1", "99999.001", "1e2", "-0.001"}) {
    auto refused = ResetInventories(session, {.basics = "5", .mixes = value});
    ASSERT_FALSE(refused) << value;
    EXPECT_EQ(refused.error(), (Refusal{"Invalid Inventory Amount",
                                        "Please enter an Inventory amount between 0 and 99999.", "MixValue"}));
    refused = ResetReorderPoints(session, {.basics = value, .mixes = "5"});
    ASSERT_FALSE(refused) << value;
    EXPECT_EQ(refused.error(), (Refusal{"Invalid Reorder Point", "Please enter a Reorder Point between 0 and 99999.",
                                        "txtBasicsNewValue"}));
  }
  Impatient operatorSeam;
  Session other(prompt, operatorSeam, clock);
  other.DataFileDB = std::move(session.DataFileDB);
  other.CurrentDatabase = "INK";
  for (int patience = 0; patience < 4; ++patience) {
    operatorSeam.patience = patience;
    EXPECT_FALSE(*ResetInventories(other, {.basics = "0", .mixes = "0"})) << patience;
    operatorSeam.patience = patience;
    EXPECT_FALSE(*ResetReorderPoints(other, {.basics = "8", .mixes = "9"})) << patience;
  }
  session.DataFileDB = std::move(other.DataFileDB);
  EXPECT_EQ(Everything(), before);
  EXPECT_EQ(operatorSeam.texts[4], "Reseting Basic Color Inventories...");
  EXPECT_EQ(operatorSeam.texts[5], "Reseting Master Formula Inventories...");
  EXPECT_EQ(operatorSeam.texts[6], "Reseting Basic Color Reorder Points...");
  EXPECT_EQ(operatorSeam.texts[7], "Reseting Master Formula Reorder Points...");
  session.ArchiveView = true;
  EXPECT_FALSE(ResetInventories(session, {.basics = "1"}));
  EXPECT_FALSE(ResetReorderPoints(session, {.basics = "1"}));
}

TEST_F(ResetRoom, CheckedRowsOfOneColor) {
  Breaks("BatchLots");
  InventoryWork work = LoadInventory(session, kBasic, "RED");
  AdjustFields fields = ClearedFields(session, work);
  fields.lotNumber = "NEW";
  fields.quantity = 9;
  ASSERT_TRUE(ApplyAdjust(session, work, fields));
  work.rows[1].now.location = "not saved";
  AddRow(schema::BatchLotInv, {{"IngName", "RED"}, {"IngType", 3}, {"LotRefID", 1}, {"LotNumber", "L1"}});
  AddRow(schema::JobRecords, {{"Color_Name", "RED"},
                              {"ItemType", 1},
                              {"Database", "INK"},
                              {"LotRefID", 1},
                              {"LotLoc", "HALL"},
                              {"LotNumber", "L1"}});

  for (const auto& refused : {ResetRowInventories(session, work, {}), ResetRowDates(session, work, {}, {2026, 2, 2}),
                              ResetRowPrices(session, work, {99}, 1)}) {
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().title, "Reset Task");
    EXPECT_EQ(refused.error().text, "Check items to perform a reset task.");
  }
  const std::string before = Everything();
  prompt.Expect("Reset Inventory", Answer::No, "Reset Selected Items Inventory to 0 ?");
  EXPECT_FALSE(*ResetRowInventories(session, work, {0, 1}));
  EXPECT_EQ(Everything(), before);

  prompt.Expect("Reset Dates", Answer::Yes, "Reset all Lotted Inv Dates ?");
  EXPECT_TRUE(*ResetRowDates(session, work, {0, 1, 3}, {2026, 2, 2}));
  EXPECT_EQ(FindLot(session, kBasic, "RED", {}, 1)->LotDate, (DateTime{2026, 2, 2}));
  EXPECT_EQ(FindLot(session, kBasic, "RED", {}, 1)->LotLoc, "") << "what else was edited waits for the save";
  EXPECT_EQ(FindLot(session, kBasic, "RED", {}, 2)->LotDate, (DateTime{2026, 1, 15}));
  EXPECT_EQ(work.rows[3].now.date, (DateTime{2026, 2, 2})) << "a new row too, in the list";
  EXPECT_EQ(Scalar("SELECT LotDate FROM INK_Batch_LotInv").Text(), "2026-02-02 00:00:00");
  EXPECT_EQ(Scalar("SELECT LotDate FROM JobRecords").Text(), "2026-02-02 00:00:00");

  prompt.Expect("Reset Prices", Answer::Yes, "Reset all Lotted Prices ?");
  EXPECT_TRUE(*ResetRowPrices(session, work, {2}, 1.236F));
  EXPECT_EQ(FindLot(session, kBasic, "RED", {}, 2)->LotPrice, 1.24F);
  EXPECT_EQ(FindLot(session, kBasic, "RED", {}, 1)->LotPrice, 1.0F);

  prompt.Expect("Reset Inventory", Answer::Yes);
  EXPECT_TRUE(*ResetRowInventories(session, work, {2, 0, 3, 2}));
  ASSERT_EQ(work.rows.size(), 2U);
  EXPECT_EQ(work.rows[1].now.lotNumber, "L1");
  EXPECT_EQ(Inventory(kBasic, "RED"), Value(0.0F));
  EXPECT_TRUE(LotQty(kBasic, "RED", 2).IsNull());
  ASSERT_TRUE(SaveInventory(session, work));
  EXPECT_EQ(FindLot(session, kBasic, "RED", {}, 1)->LotLoc, "not saved");
  EXPECT_EQ(Inventory(kBasic, "RED"), Value(0.0F));
  EXPECT_EQ(Scalar("SELECT LotLoc FROM JobRecords").Text(), "not saved");
}

TEST_F(ResetRoom, PricesNeedTheRightToChangeCosts) {
  Color(ColorKind::Basic, "PRICED", 0);
  Lot(ColorKind::Basic, "PRICED", 1, 10);
  InventoryWork work = LoadInventory(session, ColorKind::Basic, "PRICED");
  for (const int right : {0, 1}) {
    session.CurrentUser = "JO";
    session.Perm_Costs = static_cast<std::uint8_t>(right);
    const auto done = ResetRowPrices(session, work, {1}, 7);
    ASSERT_FALSE(done) << right;
    EXPECT_EQ(done.error().title, "Permission Denied");
  }
  EXPECT_EQ(LotsOf(session, ColorKind::Basic, "PRICED").front().LotPrice, 1.0F);
}

TEST_F(ResetRoom, ALotThatABatchDatedKeepsItsDate) {
  AddRow(schema::Batch, {{"Color_Name", "PURPLE"}, {"BatchNo", 4}, {"LotRefID", 1}, {"LotNumber", "L1"}});
  Lot(kMix, "PURPLE", 2, 6);
  InventoryWork work = LoadInventory(session, kMix, "PURPLE");
  prompt.Expect("Reset Dates", Answer::Yes);
  EXPECT_TRUE(*ResetRowDates(session, work, {1, 2}, {2026, 2, 2}));
  EXPECT_EQ(FindLot(session, kMix, "PURPLE", {}, 1)->LotDate, (DateTime{2026, 1, 15}));
  EXPECT_EQ(FindLot(session, kMix, "PURPLE", {}, 2)->LotDate, (DateTime{2026, 2, 2}));
  EXPECT_EQ(work.rows[1].now.date, (DateTime{2026, 1, 15}));
}

TEST_F(ResetRoom, OneReorderPoint) {
  Color(kMix, "RED", 1);
  prompt.Expect("Adjust Reorder Point - Adjust Master Formula Reorder Point?", Answer::No,
                "The INK database contains both a Master Formula RED and a Basic Color RED.\n\nClick Yes to adjust the "
                "Master Formula's Reorder Point, Click No to adjust the Basic Color's Reorder Point.");
  EXPECT_EQ(ChooseReorderColor(session, "RED"), kBasic);
  EXPECT_EQ(ChooseReorderColor(session, "PURPLE"), kMix);
  EXPECT_EQ(ChooseReorderColor(session, "GREEN").error().title, "Adjust Reorder Point - Color not found");
  EXPECT_FALSE(ChooseReorderColor(session, "PURPLE", kBasic));

  for (const std::string value : {"", "x", "-0.001", "99999.001"}) {
    const auto refused = SaveReorderPoint(session, kBasic, "RED", value);
    ASSERT_FALSE(refused) << value;
    EXPECT_EQ(refused.error(), (Refusal{"Adjust Reorder Point - Invalid Reorder Point",
                                        "You must enter a Reorder Point > 0 and < 99999", "Reorder"}));
  }
  // 5 unlotted and lots of 3 and 4: at 12 the point is reached, above it the colour is to be ordered.
  prompt.Expect("Adjust Reorder Point", Answer::Ok,
                "This color will not appear on the Reorder Report because\nit's Reorder Point is less than it's "
                "current Inventory.");
  ASSERT_TRUE(SaveReorderPoint(session, kBasic, "RED", "12"));
  EXPECT_TRUE(ColorsBelowReorder(session).empty());
  ASSERT_TRUE(SaveReorderPoint(session, kBasic, "RED", "12.001"));
  ASSERT_EQ(ColorsBelowReorder(session).size(), 1U);
  Setting("InvLotTracking", "0");
  prompt.Expect("Adjust Reorder Point");
  ASSERT_TRUE(SaveReorderPoint(session, kBasic, "RED", "5"));
  EXPECT_TRUE(ColorsBelowReorder(session).empty());
  EXPECT_FALSE(SaveReorderPoint(session, kMix, "GREEN", "5"));
  // Stock below nothing is below no reorder point at all.
  Color(kBasic, "OWED", -1);
  EXPECT_EQ(ColorsBelowReorder(session).at(0).Color_Name, "OWED");
}

TEST_F(ResetRoom, NoLotsForAColorThatIsGone) {
  Breaks("LotColors");
  Breaks("StockHistory");
  InventoryWork work = LoadInventory(session, kMix, "PURPLE");
  AdjustFields fields = ClearedFields(session, work);
  fields.lotNumber = "NEW";
  fields.quantity = 1;
  ASSERT_TRUE(ApplyAdjust(session, work, fields));
  session.File().Execute("DELETE FROM INK_Mix");
  const auto saved = SaveInventory(session, work);
  ASSERT_FALSE(saved);
  EXPECT_EQ(saved.error().title, "Inventory - Color not found");
  EXPECT_EQ(Lots(), 3);
}

TEST_F(ResetRoom, TextsThatBreakAListAreNoLot) {
  InventoryWork work = LoadInventory(session, kBasic, "RED");
  AdjustFields fields = ClearedFields(session, work);
  fields.quantity = 1;
  const auto refused = [&](const std::string& lot, const std::string& location, const std::string& container) {
    fields.lotNumber = lot;
    fields.location = location;
    fields.contID = container;
    const auto result = ApplyAdjust(session, work, fields);
    return result ? std::string("taken") : result.error().title + "/" + result.error().field;
  };
  EXPECT_EQ(refused("A\nB", "", ""), "Invalid Lot/cmbLotNum");
  EXPECT_EQ(refused("A", "B\r", ""), "Invalid Lot/cmbLocation");
  EXPECT_EQ(refused("A", "", "B\tC"), "Invalid Lot/ContID");
  EXPECT_EQ(refused(" unlotted inv.", "", ""), "Invalid Lot/cmbLotNum");
  EXPECT_EQ(work.rows.size(), 3U);
  EXPECT_EQ(refused("Ä 1", "Gang 3", "n°7"), "taken");
}

}  // namespace
}  // namespace vellumark::test
