#include "core/inventory/adjust.h"

#include <cmath>

#include "core/inventory/posting.h"
#include "support/stock_room.h"

namespace vellumark::test {
namespace {

constexpr ColorKind kBasic = ColorKind::Basic;
constexpr ColorKind kMix = ColorKind::Mix;
const Refusal kTooLarge{"Adjust Value", "New Inventory is too large.\n99999 is the largest Qty allowed.", "AdjustInv"};
const Refusal kNegative{"Adjust Value", "New Inventory is less than zero.\nNegative Inventory not allowed.",
                        "AdjustInv"};
const Refusal kTooManyContainers{
    "Container Count",
    "The number of containers selected will cause inventory to exceed: 99999\n\nEnter less containers or lower Adjust "
    "Qty",
    "cmbContCount"};

AdjustFields Fields(StockRoom& room, const InventoryWork& work, float quantity, std::string lotNumber = {}) {
  AdjustFields fields = ClearedFields(room.session, work);
  fields.quantity = quantity;
  fields.lotNumber = std::move(lotNumber);
  return fields;
}

TEST(AdjustUnlotted, ChecksThenCutoff) {
  struct Case {
    std::string name;
    ColorKind kind;
    bool allowNegInv;
    float before;
    float quantity;
    std::optional<Refusal> refused;
    float after;
  };
  const std::vector<Case> cases{
      {"a formula below zero", kMix, false, 3, -5, kNegative, 3},
      {"a formula below zero, whatever is allowed", kMix, true, 3, -5, kNegative, 3},
      {"a Basic Color below zero", kBasic, false, 3, -5, kNegative, 3},
      {"a Basic Color that may", kBasic, true, 3, -5, std::nullopt, -2},
      {"under the cutoff", kBasic, false, 3, -2.9F, std::nullopt, 0},
      {"under the cutoff that is disabled", kBasic, true, 3, -2.9F, std::nullopt, 0.1F},
      {"at the cutoff", kMix, false, 3, -2.5F, std::nullopt, 0},
      {"above the cutoff", kMix, true, 3, -2.499F, std::nullopt, 0.501F},
      {"nothing added to next to nothing", kMix, false, 0.4F, 0, std::nullopt, 0},
      {"the largest", kMix, false, 3, 99996, std::nullopt, 99999},
      {"too large", kMix, false, 3, 99996.5F, kTooLarge, 3},
      {"a Basic Color far below zero", kBasic, true, 0, -99999, std::nullopt, -99999},
  };
  for (const int tracking : {0, 1}) {
    StockRoom room;
    room.session.InvLotTracking = tracking;
    for (std::size_t i = 0; i < cases.size(); ++i) {
      const Case& one = cases[i];
      room.session.support->settings.SetSupportValue("AllowNegInv", one.allowNegInv ? "1" : "0");
      const std::string name = "C" + std::to_string(i);
      room.Color(one.kind, name, one.before);
      InventoryWork work = LoadInventory(room.session, one.kind, name);
      const auto applied = ApplyAdjust(room.session, work, Fields(room, work, one.quantity));
      EXPECT_EQ(applied ? std::nullopt : std::optional(applied.error()), one.refused) << one.name;
      EXPECT_EQ(work.rows[0].now.qty, one.after) << one.name;
      ASSERT_TRUE(SaveInventory(room.session, work)) << one.name;
      EXPECT_EQ(room.Inventory(one.kind, name), Value(one.after)) << one.name;
    }
  }
}

TEST(AdjustLots, WhichRowIsActedOn) {
  StockRoom room;
  room.Color(kBasic, "RED", 5);
  room.Lot(kBasic, "RED", 1, 10, {{"LotNumber", "A"}, {"LotLoc", "SHELF"}, {"LotContID", "K1"}});
  room.Lot(kBasic, "RED", 2, 20, {{"LotNumber", "A"}, {"LotLoc", "SHELF"}, {"LotContID", "K2"}});
  InventoryWork work = LoadInventory(room.session, kBasic, "RED");
  ASSERT_EQ(work.rows.size(), 3U);
  EXPECT_EQ(work.rows[0].now.lotNumber, "Unlotted Inv.");
  EXPECT_EQ(work.rows[0].now.price, 4.0F);

  // The first row selected beats a lot number.
  AdjustFields fields = Fields(room, work, 1, "A");
  fields.selected = 0;
  ASSERT_TRUE(ApplyAdjust(room.session, work, fields));
  EXPECT_EQ(work.rows[0].now.qty, 6.0F);

  // Number, location and container together find a row, in any case and with blanks around.
  fields = Fields(room, work, 10, " a ");
  fields.location = "Shelf ";
  fields.contID = "k2";
  fields.consignment = true;
  fields.price = 2.129F;
  ASSERT_TRUE(ApplyAdjust(room.session, work, fields));
  ASSERT_EQ(work.rows.size(), 3U);
  EXPECT_EQ(work.rows[2].now.qty, 30.0F);
  EXPECT_EQ(work.rows[2].now.price, 2.13F);
  EXPECT_TRUE(work.rows[2].now.consignment);

  // A selected row is changed, however its place is now called.
  fields = FieldsOfRow(room.session, work, 1);
  EXPECT_EQ(fields.price, 1.0F);
  EXPECT_EQ(fields.date, (DateTime{2026, 1, 15}));
  fields.quantity = -1;
  fields.location = "FLOOR";
  ASSERT_TRUE(ApplyAdjust(room.session, work, fields));
  EXPECT_EQ(work.rows[1].now.location, "FLOOR");
  EXPECT_EQ(work.rows[1].now.qty, 9.0F);

  // One of three that differs makes a new row.
  fields = Fields(room, work, 4, "A");
  fields.location = "SHELF";
  ASSERT_TRUE(ApplyAdjust(room.session, work, fields));
  ASSERT_EQ(work.rows.size(), 4U);
  EXPECT_EQ(work.rows[3].key, std::nullopt);
  EXPECT_EQ(work.rows[3].now.date, (DateTime{2026, 3, 10}));
  EXPECT_EQ(work.rows[3].now.price, 4.0F);
  EXPECT_EQ(work.Totals().unlotted, 6.0F);
  EXPECT_EQ(work.Totals().lotted, 43.0F);
  EXPECT_EQ(work.Totals().total, 49.0F);
  EXPECT_EQ(work.LotNumbers(), (std::vector<std::string>{"A"}));
  EXPECT_EQ(work.Locations(), (std::vector<std::string>{"FLOOR", "Shelf"}));

  // Nothing has reached the file yet.
  EXPECT_EQ(room.LotQty(kBasic, "RED", 2), Value(20.0F));
}

TEST(AdjustLots, TheSameChecksAsUnlottedAndThenTheRowGoes) {
  StockRoom room;
  room.session.support->settings.SetSupportValue("AllowNegInv", "1");
  for (const ColorKind kind : {kBasic, kMix}) {
    room.Color(kind, "RED", 5);
    room.Lot(kind, "RED", 1, 3, {{"LotNumber", "A"}});
    room.Lot(kind, "RED", 2, 3, {{"LotNumber", "B"}});
    InventoryWork work = LoadInventory(room.session, kind, "RED");
    const auto tooLarge = ApplyAdjust(room.session, work, Fields(room, work, 99999, "A"));
    ASSERT_FALSE(tooLarge);
    EXPECT_EQ(tooLarge.error(), kTooLarge);
    const auto negative = ApplyAdjust(room.session, work, Fields(room, work, -5, "A"));
    EXPECT_EQ(negative.has_value(), kind == kBasic);
    if (kind == kMix) {
      EXPECT_EQ(negative.error(), kNegative);
      ASSERT_TRUE(ApplyAdjust(room.session, work, Fields(room, work, -2.5F, "A")));
    }
    ASSERT_EQ(work.removed.size(), 1U);
    EXPECT_EQ(work.removed[0].LotRefID, 1);
    // A row that never was on file leaves no trace.
    ASSERT_TRUE(ApplyAdjust(room.session, work, Fields(room, work, 2, "NEW")));
    ASSERT_TRUE(ApplyAdjust(room.session, work, Fields(room, work, -2, "NEW")));
    EXPECT_EQ(work.removed.size(), 1U);
    ASSERT_EQ(work.rows.size(), 2U);
    ASSERT_TRUE(SaveInventory(room.session, work));
    EXPECT_TRUE(room.LotQty(kind, "RED", 1).IsNull());
    EXPECT_EQ(room.LotQty(kind, "RED", 2), Value(3.0F));
  }
}

TEST(AdjustLots, ContainersByCount) {
  struct Case {
    std::string contID;
    std::optional<int> count;
    std::vector<std::string> names;
  };
  const std::vector<Case> cases{
      {"B10", 3, {"B10_1", "B10_2", "B10_3"}},
      {"7", 3, {"7", "8", "9"}},
      {"12", 2, {"12", "13"}},
      {" 0.5 ", 2, {"0.5", "1.5"}},
      {"", 1, {""}},
      {"", std::nullopt, {""}},
      {"", 3, {"1", "2", "3"}},
      {"B10", 1, {"B10_1"}},
      {"007", std::nullopt, {"007"}},
      {"1234567890123456789", 2, {"1234567890123456789_1", "1234567890123456789_2"}},
  };
  StockRoom room;
  room.Color(kMix, "PURPLE", 0);
  for (const Case& one : cases) {
    InventoryWork work = LoadInventory(room.session, kMix, "PURPLE");
    AdjustFields fields = Fields(room, work, 2, "N");
    fields.contID = one.contID;
    fields.count = one.count;
    ASSERT_TRUE(ApplyAdjust(room.session, work, fields));
    std::vector<std::string> names;
    for (std::size_t i = 1; i < work.rows.size(); ++i) {
      names.push_back(work.rows[i].now.contID);
      EXPECT_EQ(work.rows[i].now.qty, 2.0F);
    }
    EXPECT_EQ(names, one.names) << one.contID;
  }

  InventoryWork work = LoadInventory(room.session, kMix, "PURPLE");
  struct Bad {
    float quantity;
    std::optional<int> count;
  };
  for (const Bad& bad : std::vector<Bad>{{25000, 5}, {99999, std::nullopt}, {-1, std::nullopt}, {33333, 3}}) {
    AdjustFields fields = Fields(room, work, bad.quantity, "N");
    fields.count = bad.count;
    const auto applied = ApplyAdjust(room.session, work, fields);
    ASSERT_FALSE(applied) << bad.quantity;
    EXPECT_EQ(applied.error(), kTooManyContainers);
  }
  EXPECT_EQ(work.rows.size(), 1U);

  // Twenty units of five go to Unlotted Inventory as a hundred.
  AdjustFields fields = Fields(room, work, 5);
  fields.count = 20;
  ASSERT_TRUE(ApplyAdjust(room.session, work, fields));
  EXPECT_EQ(work.rows[0].now.qty, 100.0F);
}

TEST(AdjustEntry, Quantity) {
  const Refusal refused{"Invalid Quantity - Adjust Inv.", "You must enter an amount between -99999 and 99999",
                        "AdjustInv"};
  for (const auto& [text, number] : std::vector<std::pair<std::string, float>>{
           {"5", 5}, {" -2.0005 ", -2.001F}, {"+.5", 0.5F}, {"0", 0}, {"99999.0004", 99999}, {"-99999", -99999}})
    EXPECT_EQ(ReadAdjustQuantity(text).value(), number) << text;
  for (const std::string_view text : {"1,5", "1e3", "abc", "", " ", "-", "1.2.3", "99999.0005", "-100000", "5 lb",
                                      "0x10", "inf", "nan", "999999999999999999999999999999"}) {
    const auto read = ReadAdjustQuantity(text);
    ASSERT_FALSE(read) << text;
    EXPECT_EQ(read.error(), refused) << text;
  }
}

TEST(AdjustEntry, UnitCount) {
  StockRoom room;
  EXPECT_EQ(ReadUnitCount(room.session, "").value(), std::nullopt);
  EXPECT_EQ(ReadUnitCount(room.session, " 100 ").value(), 100);
  room.prompt.Expect("      Large Unit Count Confirmation", Answer::Yes, "Use 101 for the Unit Count?");
  EXPECT_EQ(ReadUnitCount(room.session, "101").value(), 101);
  room.prompt.Expect("      Large Unit Count Confirmation", Answer::No, "Use 250 for the Unit Count?");
  EXPECT_EQ(ReadUnitCount(room.session, "250").value(), std::nullopt);
  for (const std::string_view text : {"0", "-1", "1.5", "abc", "1e2", "100000", "99999999999"})
    EXPECT_EQ(ReadUnitCount(room.session, text).error().title, "Container Count") << text;
}

TEST(AdjustEntry, PricesAndDates) {
  StockRoom room;
  room.Color(kBasic, "RED", 0, {{"PurchaseCost", 4.5F}});
  room.Color(kMix, "RED", 0, {{"PurchaseCost", 7.5F}, {"BasicCost", 3.25F}});
  const InventoryWork basic = LoadInventory(room.session, kBasic, "RED");
  const InventoryWork mix = LoadInventory(room.session, kMix, "RED");
  EXPECT_EQ(PriceChoices(kMix), (std::vector<std::string>{"1) Basic Cost", "2) Purchase Cost", "3) No Cost"}));
  EXPECT_EQ(PriceChoices(kBasic), (std::vector<std::string>{"1) Purchase Cost", "2) No Cost"}));
  struct Case {
    std::string text;
    float ofBasic;
    float ofMix;
  };
  for (const Case& one : std::vector<Case>{{"", 4.5F, 3.25F},
                                           {"1)", 4.5F, 3.25F},
                                           {"2)", 0, 7.5F},
                                           {"1.005", 1.01F, 1.01F},
                                           {"0", 0, 0},
                                           {"99999", 99999, 99999}}) {
    EXPECT_EQ(ReadLotPrice(room.session, basic, one.text).value(), one.ofBasic) << one.text;
    EXPECT_EQ(ReadLotPrice(room.session, mix, one.text).value(), one.ofMix) << one.text;
  }
  EXPECT_EQ(ReadLotPrice(room.session, mix, "3) no cost").value(), 0.0F);
  for (const std::string_view text : {"-1", "1,5", "cheap", "100000"})
    EXPECT_EQ(ReadLotPrice(room.session, mix, text).error().text, "You must enter currency between\n0 and 99999");
  room.session.Perm_Costs = 0;
  EXPECT_EQ(ReadLotPrice(room.session, mix, "1.50").value(), 3.25F);

  EXPECT_EQ(ReadLotDate("2026-02-28 14:30:00").value(), (DateTime{2026, 2, 28}));
  EXPECT_EQ(ReadLotDate("2000-01-01").value(), (DateTime{2000, 1, 1}));
  for (const std::string_view text : {"1999-12-31", "2026-02-29", "", "10.3.2026"})
    EXPECT_EQ(ReadLotDate(text).error().title, "Invalid Date") << text;
}

TEST(AdjustColor, IsChosenByNameAndAskedForWhenBothBearIt) {
  StockRoom room;
  room.Color(kBasic, "RED", 0);
  room.Color(kMix, "RED", 0);
  room.Color(kBasic, "BLUE", 0);
  EXPECT_EQ(ChooseInventoryColor(room.session, "BLUE").value(), kBasic);
  EXPECT_EQ(ChooseInventoryColor(room.session, "RED", kBasic).value(), kBasic);
  const std::string title = std::string(25, ' ') + " Adjust Inventory";
  const std::string text =
      "The INK database contains a Formula and a Basic called:\nRED.\n\nYes - Adjust the Formula\nNo - Adjust the "
      "Basic.";
  room.prompt.Expect(title, Answer::Yes, text);
  EXPECT_EQ(ChooseInventoryColor(room.session, "RED").value(), kMix);
  room.prompt.Expect(title, Answer::No, text);
  EXPECT_EQ(ChooseInventoryColor(room.session, "RED").value(), kBasic);
  for (const auto& missing :
       {ChooseInventoryColor(room.session, "NONE"), ChooseInventoryColor(room.session, "BLUE", kMix),
        ChooseInventoryColor(room.session, "R%")}) {
    ASSERT_FALSE(missing);
    EXPECT_EQ(
        missing.error(),
        (Refusal{"Inventory - Color not found",
                 "This color was not found in the INK database.\nUse the Basic Color or Master Formula Window\nto "
                 "add this color to the database.",
                 "Color_Name"}));
  }
}

// A lot of RED used and named wherever lots are named, with rows beside it that must not follow.
struct CopiesRoom : StockRoom {
  CopiesRoom() {
    for (const ColorKind kind : {kBasic, kMix}) {
      Color(kind, "RED", 0, {{"LotRefID", 2}});
      Lot(kind, "RED", 1, 10, {{"LotNumber", "OLD"}});
      Lot(kind, "RED", 2, 20, {{"LotNumber", "REST"}});
    }
    CreateEmptyDatabase(session.File(), "WEB");
    int batchNo = 0;
    for (const int ref : {1, 2}) {
      for (const std::string_view name : {"RED", "BLUE"}) {
        AddRow(schema::Batch, {{"BatchNo", ++batchNo}, {"Color_Name", name}, {"LotRefID", ref}, {"LotNumber", "OLD"}});
        for (const int type : {1, 2, 3})
          AddRow(schema::BatchLotInv,
                 {{"BatchNo", batchNo}, {"IngName", name}, {"IngType", type}, {"LotRefID", ref}, {"LotNumber", "OLD"}});
        for (const std::string_view database : {"INK", "WEB"})
          for (const int type : {1, 2})
            InsertRow(session.File(), schema::JobRecords, "JobRecords",
                      {{"JobNumber", "J"},
                       {"Color_Name", name},
                       {"Database", database},
                       {"ItemType", type},
                       {"LotRefID", ref},
                       {"LotNumber", "OLD"}});
      }
    }
  }

  // Which rows bear the new particulars, as text.
  std::string Followers() {
    std::string text;
    const auto add = [&](std::string_view sql) {
      Statement rows = session.File().Prepare(sql);
      while (rows.Step()) text += rows.Text(0) + " ";
      text += "| ";
    };
    add("SELECT Color_Name || LotRefID FROM INK_Batch WHERE LotNumber = 'NEW'");
    add("SELECT IngName || LotRefID || 't' || IngType FROM INK_Batch_LotInv WHERE LotNumber = 'NEW' AND LotLoc = "
        "'HALL' AND LotContID = 'K5' AND LotDate = '2025-05-05 00:00:00' ORDER BY IngType");
    add("SELECT Database || Color_Name || LotRefID || 't' || ItemType FROM JobRecords WHERE LotNumber = 'NEW' AND "
        "LotLoc = 'HALL' AND LotContID = 'K5' AND LotDate = '2025-05-05 00:00:00'");
    return text;
  }
};

TEST(AdjustSave, KeepsTheCopiesOfALotInStep) {
  for (const ColorKind kind : {kBasic, kMix}) {
    CopiesRoom room;
    room.Breaks("BatchLots");
    room.session.File().Execute(
        "UPDATE INK_Batch SET LotRefID = 7 WHERE Color_Name = 'RED' AND LotRefID = 1 AND "
        "BatchNo = 99");
    InventoryWork work = LoadInventory(room.session, kind, "RED");
    ASSERT_EQ(work.rows[1].key, 1);
    work.rows[1].now = {"NEW", "HALL", "K5", 10, DateTime{2025, 5, 5}, 3.5F, true};
    ASSERT_TRUE(SaveInventory(room.session, work));
    EXPECT_EQ(room.Followers(), kind == kMix ? "RED1 | RED1t2 | INKRED1t2 | " : "| RED1t1 RED1t3 | INKRED1t1 | ");
    const auto lot = FindLot(room.session, kind, "RED", {}, 1);
    ASSERT_TRUE(lot);
    EXPECT_EQ(lot->LotNumber, "NEW");
    EXPECT_TRUE(lot->LotConsignment);
    EXPECT_EQ(lot->LotPrice, 3.5F);
    EXPECT_EQ(GetLotNumber(room.session, kind, "RED", 2), "REST");
  }
}

TEST(AdjustSave, ALotDatedByABatchKeepsItsDate) {
  CopiesRoom room;
  room.Breaks("BatchLots");
  for (const ColorKind kind : {kBasic, kMix}) {
    InventoryWork work = LoadInventory(room.session, kind, "RED");
    const auto changeable = RequireDateChangeable(room.session, work, 1);
    EXPECT_EQ(changeable.has_value(), kind == kBasic);
    if (kind == kMix) {
      EXPECT_EQ(changeable.error(),
                (Refusal{"Date Change",
                         "This inventory item was dated by a Batch creation.\n\nUpdate / Change the "
                         "Batch to alter this date.",
                         "lblDate"}));
    }
    ASSERT_TRUE(ApplyAdjust(room.session, work, Fields(room, work, 1, "OLD")));
    EXPECT_EQ(work.rows[1].now.date, kind == kMix ? DateTime(2026, 1, 15) : DateTime(2026, 3, 10));
    EXPECT_TRUE(RequireDateChangeable(room.session, work, 0));
  }
}

TEST(AdjustSave, GrantsReferencesAndRemovesByReferenceAndNumber) {
  StockRoom room;
  room.Color(kBasic, "RED", 0, {{"LotRefID", 8}});
  room.Lot(kBasic, "RED", 9, 5, {{"LotNumber", "A"}});
  room.Lot(kBasic, "RED", 3, 5, {{"LotNumber", "B"}});
  InventoryWork work = LoadInventory(room.session, kBasic, "RED");
  ASSERT_TRUE(ApplyAdjust(room.session, work, Fields(room, work, -5, "A")));
  ASSERT_TRUE(ApplyAdjust(room.session, work, Fields(room, work, -5, "B")));
  AdjustFields fields = Fields(room, work, 2.5F, "C");
  fields.count = 2;
  ASSERT_TRUE(ApplyAdjust(room.session, work, fields));
  // Another window gave one of the removed lots another number meanwhile.
  room.session.File().Execute("UPDATE INK_Basic_LotInv SET LotNumber = 'B2' WHERE LotRefID = 3");
  ASSERT_TRUE(SaveInventory(room.session, work));
  const std::vector<LotRow> lots = LotsOf(room.session, kBasic, "RED");
  ASSERT_EQ(lots.size(), 3U);
  EXPECT_EQ(lots[0].LotNumber, "B2");
  // The reference of a lot that goes in the same save is still in use when the new ones come.
  EXPECT_EQ(lots[1].LotRefID, 10);
  EXPECT_EQ(lots[2].LotRefID, 11);
  EXPECT_EQ(lots[1].LotContID + lots[2].LotContID, "12");
  EXPECT_EQ(room.Scalar("SELECT LotRefID FROM INK_Basic").Whole(), 11);
}

TEST(AdjustSave, IsAllOrNothing) {
  StockRoom room;
  room.Color(kBasic, "RED", 1);
  InventoryWork work = LoadInventory(room.session, kBasic, "RED");
  ASSERT_TRUE(ApplyAdjust(room.session, work, Fields(room, work, 4)));
  ASSERT_TRUE(ApplyAdjust(room.session, work, Fields(room, work, 2, "GOOD")));
  EXPECT_EQ(ApplyAdjust(room.session, work, Fields(room, work, 2, std::string(31, 'X'))).error().field, "cmbLotNum");
  ASSERT_TRUE(ApplyAdjust(room.session, work, Fields(room, work, 2, "BAD")));
  work.rows.back().now.lotNumber = std::string(31, 'X');
  EXPECT_THROW((void)SaveInventory(room.session, work), BadValue);
  EXPECT_EQ(room.Inventory(kBasic, "RED"), Value(1.0F));
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Basic_LotInv").Whole(), 0);
  EXPECT_EQ(room.Scalar("SELECT LotRefID FROM INK_Basic").Whole(), 0);

  work = LoadInventory(room.session, kBasic, "RED");
  ASSERT_TRUE(ApplyAdjust(room.session, work, Fields(room, work, 4)));
  room.session.ArchiveView = true;
  EXPECT_EQ(SaveInventory(room.session, work).error().title, "Archive or Backup Data File");
  EXPECT_EQ(room.Inventory(kBasic, "RED"), Value(1.0F));
}

TEST(AdjustSave, AddsToWhatMovedMeanwhile) {
  struct Case {
    std::string name;
    float inventory;
    float lot;  // 0 for Unlotted Inventory
    float entered;
    float moved;
    bool refused;
    std::optional<float> after;
  };
  const std::vector<Case> cases{
      {"a Batch took from unlotted stock", 100, 0, 10, -30, false, 80},
      {"unlotted stock that is not enough any more", 100, 0, -90, -30, true, 70},
      {"unlotted stock that the cutoff cleared on screen", 3, 0, -2.9F, 10, false, 10.1F},
      {"unlotted stock that would be too large", 100, 0, 99000, 950, true, 1050},
      {"a lot was taken from", 0, 60, 5, -20, false, 45},
      {"a lot that was used up gets what was put in", 0, 20, 5, -20, false, 5},
      {"a lot that was used up gives nothing", 0, 20, -5, -20, true, std::nullopt},
      {"a lot that was emptied on screen keeps what a job returned", 0, 20, -20, 40, false, 40},
      {"a lot whose rest the cutoff cleared on screen", 0, 20, -19.9F, 40, false, 40.1F},
      {"a lot that was emptied on screen and used up", 0, 20, -20, -20, false, std::nullopt},
      {"a lot that was emptied on screen and taken from", 0, 20, -20, -5, true, 15},
  };
  for (const ColorKind kind : {kBasic, kMix}) {
    for (const Case& one : cases) {
      SCOPED_TRACE(one.name);
      StockRoom room;
      room.Color(kind, "RED", one.inventory, {{"LotRefID", 1}});
      StockPlace lot;
      if (one.lot > 0) {
        room.Lot(kind, "RED", 1, one.lot, {{"LotNumber", "A"}});
        lot = {.LotRefID = 1, .LotNumber = "A"};
      }
      InventoryWork work = LoadInventory(room.session, kind, "RED");
      ASSERT_TRUE(ApplyAdjust(room.session, work, Fields(room, work, one.entered, lot.LotNumber)));
      const PostingSource source = one.moved < 0 ? PostingSource::BatchTakes : PostingSource::JobRecord;
      PostStock(room.session, {source, kind, "RED", {}, std::abs(one.moved), lot});
      const auto saved = SaveInventory(room.session, work);
      EXPECT_EQ(saved.has_value(), !one.refused);
      EXPECT_EQ(saved ? "" : saved.error().title, one.refused ? "Adjust Value" : "");
      const std::vector<LotRow> lots = LotsOf(room.session, kind, "RED");
      if (lot.IsUnlotted()) {
        EXPECT_EQ(room.Inventory(kind, "RED"), Value(*one.after));
      } else if (one.after) {
        ASSERT_EQ(lots.size(), 1U);
        EXPECT_EQ(lots[0].LotNumber, "A");
        EXPECT_EQ(lots[0].LotQty, *one.after);
      } else {
        EXPECT_TRUE(lots.empty());
      }
    }
  }
}

TEST(AdjustSave, PricesNeedTheRightToChangeCosts) {
  for (const int right : {0, 1, 2}) {
    SCOPED_TRACE(right);
    StockRoom room;
    room.Color(kBasic, "RED", 0);
    room.Lot(kBasic, "RED", 1, 10, {{"LotNumber", "A"}, {"LotPrice", 1.5F}});
    room.session.CurrentUser = "JO";
    room.session.Perm_Costs = static_cast<std::uint8_t>(right);
    InventoryWork work = LoadInventory(room.session, kBasic, "RED");
    const auto adjust = [&](float price) {
      AdjustFields fields = FieldsOfRow(room.session, work, 1);
      fields.quantity = 1;
      fields.price = price;
      return ApplyAdjust(room.session, work, fields);
    };
    // With 0 the window reads the colour's price, since the lot's is not shown.
    EXPECT_TRUE(adjust(right == 0 ? work.UnitCost() : 1.5F));
    EXPECT_EQ(work.rows[1].now.price, 1.5F);
    EXPECT_EQ(work.rows[1].now.qty, 11.0F);
    const auto typed = adjust(9);
    EXPECT_EQ(typed.has_value(), right != 1);
    EXPECT_EQ(work.rows[1].now.price, right == 2 ? 9.0F : 1.5F);
    AdjustFields fields = Fields(room, work, 3, "NEW");
    EXPECT_TRUE(ApplyAdjust(room.session, work, fields));
    EXPECT_EQ(work.rows[2].now.price, 4.0F);
  }
}

TEST(AdjustSave, WithLottedInventoryOffTheLotsRest) {
  StockRoom room;
  room.Color(kMix, "PURPLE", 5);
  room.Lot(kMix, "PURPLE", 1, 10);
  room.session.InvLotTracking = 0;
  InventoryWork work = LoadInventory(room.session, kMix, "PURPLE");
  EXPECT_EQ(work.rows.size(), 1U);
  ASSERT_TRUE(ApplyAdjust(room.session, work, Fields(room, work, 2, "L1")));
  ASSERT_TRUE(SaveInventory(room.session, work));
  EXPECT_EQ(room.Inventory(kMix, "PURPLE"), Value(7.0F));
  EXPECT_EQ(room.LotQty(kMix, "PURPLE", 1), Value(10.0F));
}

}  // namespace
}  // namespace vellumark::test
