#include <gtest/gtest.h>

#include "report_room.h"

namespace vellumark {
namespace {

using test::RowOf;
using test::TextAt;
using test::TotalsOf;
using test::TotalText;

// Two Batches of PINK, one in kilograms with recycled ink, a round-off and an addition; stock of either kind, owned and
// on consignment; jobs, one of a Database that is gone. Everything below is worked out by hand from it, in pounds.
struct SmallRoom : test::ReportRoom {
  SmallRoom() {
    Breaks("JobBatches");
    Color(ColorKind::Basic, "RED", 10, {{"Color_Code", "R-1"}, {"Reorder", 20.0F}});
    Color(ColorKind::Basic, "BLUE", -2, {{"VOC", 0.5F}});
    Color(ColorKind::Basic, "WHITE", 0);
    Color(ColorKind::Basic, "GLOSS", 0, {{"Additive", true}});
    Color(ColorKind::Mix, "PINK", 5, {{"Reorder", 5.0F}, {"LastProduced", DateTime{2026, 3, 10}}});
    Color(ColorKind::Mix, "OLD PINK", 0);
    Lot(ColorKind::Basic, "RED", 1, 2);
    Lot(ColorKind::Basic, "RED", 2, 3, {{"LotConsignment", true}});
    Batch(1, "PINK", {2026, 3, 1, 8, 0, 0}, 10,
          {{"OLD PINK", 2, 2}, {"RED", 6, 1}, {"WHITE", 2, 1}, {"GLOSS", 0.5F, 3}},
          {{"ActualQuantity", 10.5F},
           {"UMF", 2},
           {"PercentRec", 0.1905F},
           {"CostOfBasics", 20.0F},
           {"CostOfMixes", 5.0F},
           {"FixedCostOfBatch", 3.0F},
           {"FixedCostPerUnit", 0.5F},
           {"MarkupPercent", 10.0F},
           {"Roundoff", 0.001F},
           {"LargestAmountIndex", 1},
           {"VOC", 1.25F},
           {"Username", "ANN"}});
    Batch(2, "PINK", {2026, 3, 10, 23, 59, 0}, 4, {{"RED", 4}}, {{"CostOfBasics", 16.0F}, {"UD_Numeric0", 2.5F}});
    Job("J1", "INK", "PINK", 2, 1000001, 5, 3, 2.5F, {2026, 3, 5}, {{"DesignID", "D1"}, {"VOC", 0.1F}});
    Job("J2", "INK", "RED", 1, 1000002, 1, 1, 4, {2026, 3, 6}, {{"Date_Completed", DateTime{2026, 3, 9}}});
    Job("J1", "INK", "RED", 1, 1000003, 2, 1.5F, 4, {2026, 3, 7});
    Job("J1", "GONE", "RED", 1, 1000004, 9, 9, 1, {2026, 3, 7});
  }
};

TEST(Figures, OfProduction) {
  SmallRoom room;
  const std::vector<std::string> keys{"Quantity",   "QtyRec",      "PercentRec",  "CostOfMixes", "CostOfBasics",
                                      "FixedCosts", "MarkupCosts", "CostOfBatch", "VOC"};
  const BuiltReport detail = room.Run("ProductionForm", {.color = "PINK"});
  ASSERT_EQ(detail.Rows(), 2U);
  EXPECT_EQ(detail.title, "2026-03-10   - Production Report  -  PINK  -  From 1989-03-10 To 2026-03-10");
  std::string first;
  for (const std::string& key : keys) first += (first.empty() ? "" : " ") + TextAt(detail, 0, key);
  // 10.5 kg are 23.1485 lb.; 10 kg at 0.50 a pound are 11.02, and 3.00 for the Batch.
  EXPECT_EQ(first, "23.149 4.410 19.05% 5.00 20.00 14.02 2.50 41.52 1.250");
  const std::string totals = "27.149 4.410 16.24% 5.00 36.00 14.02 2.50 57.52 1.250";
  EXPECT_EQ(TotalsOf(detail, keys), totals);
  EXPECT_EQ(TotalText(detail, "UD_Numeric0"), "2.500");
  EXPECT_EQ(detail.targets[0], (RowTarget{RowTarget::Kind::Batch, "INK", "", 1}));
  const BuiltReport colors = room.Run("SummarizedProductionForm");
  EXPECT_EQ(RowOf(colors, "PINK", keys), totals);
  EXPECT_EQ(RowOf(colors, "PINK", {"Batches", "LastProduced"}), "2 2026-03-10");
  EXPECT_EQ(RowOf(room.Run("ProductionSummaryForm"), "INK", keys), totals);
  EXPECT_EQ(RowOf(room.Run("ProductionColorNameSummaryForm", {.color = "PINK"}), "INK", keys), totals);

  // Both days count, whatever the hour; swapped ones too.
  const auto rows = [&](DateTime from, DateTime to) {
    return room.Run("ProductionForm", {.from = from, .to = to, .color = "PINK"}).Rows();
  };
  EXPECT_EQ(rows({2026, 3, 1}, {2026, 3, 10}), 2U);
  EXPECT_EQ(rows({2026, 3, 10}, {2026, 3, 1}), 2U);
  EXPECT_EQ(rows({2026, 3, 2}, {2026, 3, 9}), 0U);
  EXPECT_EQ(
      TotalsOf(room.Run("ProductionForm", {.from = DateTime{2026, 3, 2}, .to = DateTime{2026, 3, 9}, .color = "PINK"}),
               {"Quantity", "PercentRec"}),
      "0.000 0.00%");
  EXPECT_EQ(room.Run("BatchListForm", {.user = "ann"}).Rows(), 1U);

  room.session.Perm_Costs = 0;
  const BuiltReport hidden = room.Run("ProductionForm", {.color = "PINK"});
  EXPECT_EQ(TextAt(hidden, 0, "CostOfBatch") + TotalText(hidden, "CostOfBatch"), "");
}

TEST(Figures, OfConsumption) {
  SmallRoom room;
  room.BatchLot(1, "RED", 1, "L1", 8, 1.5F);
  room.BatchLot(1, "RED", 1, "L2", 5.23F, 1);
  const std::vector<std::string> keys{"BatchQty", "QtyConsumed", "PercentConsumed"};
  // 6 kg are 13.228 lb., and 0.001 kg of round-off 0.002.
  const BuiltReport red = room.RunFor("ConsumptionForm", "RED", ColorKind::Basic);
  EXPECT_EQ(red.Rows(), 3U) << "a row for each lot";
  EXPECT_EQ(red.count, 2);
  EXPECT_EQ(TextAt(red, 0, "QtyConsumed"), "13.230");
  EXPECT_EQ(TextAt(red, 1, "QtyConsumed") + TextAt(red, 1, "BatchQty"), "")
      << "the first row of a Batch has its figures";
  EXPECT_EQ(TotalsOf(red, keys), "27.149 17.230 63.46%");
  EXPECT_EQ(TotalsOf(red, {"LotQty", "LotCost"}), "13.230 17.23");
  const BuiltReport colors = room.Run("SummarizedConsumptionForm");
  EXPECT_EQ(RowOf(colors, "RED", {"Color_Type", "Batches", "BatchQty", "QtyConsumed", "PercentConsumed"}),
            "Basic 2 27.149 17.230 63.46%");
  EXPECT_EQ(RowOf(colors, "RED", {"BasicPurchaseCost", "LotPurchaseCost"}), "68.92 17.23");
  EXPECT_EQ(RowOf(colors, "GLOSS", {"Color_Type", "QtyConsumed"}), "Additive 1.102");
  EXPECT_EQ(RowOf(colors, "OLD PINK", {"Color_Type", "QtyConsumed", "PercentConsumed"}), "Formula 4.409 19.05%");
  EXPECT_EQ(TotalsOf(colors, {"Batches", "BatchQty", "QtyConsumed"}), "2 27.149 27.150") << "a Batch counts once";
  EXPECT_EQ(RowOf(room.Run("ConsumptionSummaryForm"), "INK", {"Batches", "BatchQty", "QtyConsumed"}),
            "2 27.149 27.150");
  EXPECT_EQ(RowOf(room.RunFor("ConsumptionColorNameSummaryForm", "RED", ColorKind::Basic), "INK", keys),
            "27.149 17.230 63.46%");
  EXPECT_EQ(RowOf(room.Run("SummarizedConsumptionForm", {.options = {{"ShowBasics", "0"}}}), "RED", keys), "");
  EXPECT_EQ(TotalText(room.Run("BatchLottedInvReport"), "LotCost"), "17.23");

  // Another Database has a formula of that name, and then this one too: whatever was called so counts, unless one kind
  // is asked for.
  room.AddDatabase("UV");
  room.Use("UV");
  room.Color(ColorKind::Mix, "RED", 0);
  room.Batch(3, "PINK", {2026, 3, 4}, 8, {{"RED", 3, 2}, {"BLUE", 5}});
  room.Use("INK");
  const BuiltReport both = room.Run("ConsumptionColorNameSummaryForm", {.color = "RED"});
  EXPECT_EQ(RowOf(both, "INK", keys), "27.149 17.230 63.46%");
  EXPECT_EQ(RowOf(both, "UV", keys), "8.000 3.000 37.50%");
  room.Color(ColorKind::Mix, "RED", 0);
  room.Batch(4, "PINK", {2026, 3, 6}, 2, {{"RED", 0.5F, 2}, {"WHITE", 1.5F}});
  EXPECT_EQ(TotalText(room.Run("ConsumptionForm", {.color = "red"}), "QtyConsumed"), "17.730");
  EXPECT_EQ(TotalText(room.RunFor("ConsumptionForm", "RED", ColorKind::Basic), "QtyConsumed"), "17.230");
  EXPECT_EQ(TotalText(room.RunFor("ConsumptionForm", "RED", ColorKind::Mix), "QtyConsumed"), "0.500");
}

TEST(Figures, OfBatchesAndAdditions) {
  SmallRoom room;
  const BuiltReport list = room.Run("BatchListForm", {.options = {{"Additions", "1"}}});
  EXPECT_EQ(TextAt(list, 0, "IngName1") + " " + TextAt(list, 0, "IngQty1"), "RED 13.230");
  EXPECT_EQ(TextAt(list, 0, "IngName3") + " " + TextAt(list, 0, "IngQty3"), "GLOSS 1.102");
  EXPECT_EQ(TextAt(room.Run("BatchListForm"), 0, "IngName3"), "");
  const BuiltReport rows = room.Run("BatchListForm_MultipleRows", {.options = {{"Additions", "1"}}});
  EXPECT_EQ(rows.Rows(), 5U);
  EXPECT_EQ(rows.count, 2);
  EXPECT_EQ(TotalsOf(rows, {"Quantity", "IngQty", "CostOfBatch", "UD_Numeric0"}), "27.149 27.150 57.52 2.500");
  EXPECT_EQ(TextAt(rows, 1, "IngCode"), "R-1");
  EXPECT_EQ(TotalsOf(room.Run("BatchAdditionForm", {.color = "PINK"}), {"Quantity", "QtyAdded", "PercentAdded"}),
            "23.149 1.102 4.76%");
  EXPECT_EQ(RowOf(room.Run("SummarizedBatchAdditionsForm"), "PINK", {"Batches", "QtyAdded"}), "1 1.102");
}

TEST(Figures, OfJobs) {
  SmallRoom room;
  const std::vector<std::string> keys{"QtyIssued", "QtyUsed", "TotalCost"};
  EXPECT_EQ(TotalsOf(room.RunFor("JobUsageForm", "RED", ColorKind::Basic), keys), "3.000 2.500 10.00");
  const BuiltReport colors = room.Run("SummarizedJobUsageForm");
  EXPECT_EQ(RowOf(colors, "RED", {"Jobs", "JobItems", "QtyIssued", "QtyUsed", "PercentUsed", "TotalCost"}),
            "2 2 3.000 2.500 83.33% 10.00");
  EXPECT_EQ(RowOf(colors, "PINK", {"TotalCost", "TotalVOC"}), "7.50 0.300");
  EXPECT_EQ(TotalsOf(colors, {"Jobs", "JobItems"}), "2 3") << "a Job counts once";
  const BuiltReport databases = room.Run("JobUsageSummaryForm");
  EXPECT_EQ(RowOf(databases, "INK", keys), "8.000 5.500 17.50");
  EXPECT_EQ(RowOf(databases, "GONE", keys), "9.000 9.000 9.00");
  EXPECT_EQ(RowOf(room.Run("JobListForm"), "J1", {"JobItems", "QtyUsed", "DesignID"}), "3 13.500 D1");
  EXPECT_EQ(TotalsOf(room.Run("DetailedSpecificJobUsageForm", {.job = "j1"}), keys), "16.000 13.500 22.50");
  const BuiltReport completed = room.Run("DetailedJobUsageForm", {.options = {{"DateQuery", "1"}}});
  EXPECT_EQ(completed.Rows(), 1U);
  EXPECT_TRUE(completed.title.find(" - Detail of All Job Records - Date Completed  -  From ") != std::string::npos)
      << completed.title;
  EXPECT_EQ(room.Run("DetailedJobUsageForm").Rows(), 4U);
  EXPECT_EQ(room.Run("DesignUsageForm", {.design = "D1"}).Rows(), 1U);
  EXPECT_EQ(room.Run("DesignAllJobsUsageForm").Rows(), 1U);
}

TEST(Figures, OfStock) {
  SmallRoom room;
  const std::vector<std::string> keys{"Inventory", "TotalCost",    "OwnedQty",
                                      "OwnedCost", "ConsignedQty", "ConsignedCost"};
  const BuiltReport detail = room.Run("InventoryForm", {.options = {{"InvOnly", "1"}}});
  EXPECT_EQ(detail.Rows(), 5U) << "RED with two lots, BLUE below nothing, PINK";
  EXPECT_EQ(TotalsOf(detail, keys), "18.000 52.00 15.000 49.00 3.000 3.00");
  EXPECT_EQ(RowOf(room.Run("InventorySummaryForm"), "INK", keys), TotalsOf(detail, keys));
  EXPECT_EQ(TotalText(room.Run("InventoryReportsForm", {.databases = {"ink"}}), "TotalCost"), "52.00");
  EXPECT_EQ(TotalText(room.Run("InventoryForm", {.options = {{"OptConsignment", "2"}}}), "Inventory"), "3.000");
  EXPECT_EQ(TotalText(room.Run("InventoryForm", {.options = {{"MixCost", "1"}}}), "TotalCost"), "57.00");
  const BuiltReport low = room.Run("ReorderForm", {.options = {{"ReorderOnly", "1"}}});
  EXPECT_EQ(RowOf(low, "RED", {"Reorder", "Inventory", "UnitCost"}), "20.000 15.000 4.00");
  EXPECT_EQ(low.Rows(), 2U) << "BLUE is below its point of 0, PINK stands at its own";
  EXPECT_EQ(room.Run("ReorderForm", {.options = {{"PointsOnly", "1"}}}).Rows(), 2U);

  // An open Batch has handed 1.5 lb. back to RED, and a lot that it had used up.
  room.Breaks("Markers");
  room.Breaks("StockHistory");
  room.session.File().Execute(
      "CREATE TABLE MSysOpenBatch (DatabaseName TEXT COLLATE NOCASE, BatchNo INTEGER, Kind INTEGER, Color_Name TEXT "
      "COLLATE "
      "NOCASE, ColorRow INTEGER, LotRefID INTEGER, LotNumber TEXT, Quantity REAL, StoodBefore REAL, StoodAfter REAL)");
  room.session.File().Execute(
      "INSERT INTO MSysOpenBatch VALUES ('INK', 2, 1, 'RED', 0, 0, '', 1.5, 8.5, 10), ('INK', 2, 1, 'RED', 0, 1, 'L1', "
      "2, "
      "NULL, 2)");
  const BuiltReport held = room.Run("InventoryForm", {.options = {{"InvOnly", "1"}}});
  EXPECT_EQ(held.Rows(), 4U);
  EXPECT_EQ(TotalsOf(held, {"Inventory", "TotalCost"}), "14.500 44.00");
}

TEST(Figures, OfColors) {
  test::ReportRoom room;
  room.Basic("RED", {{"VOC", 2.0F}});
  room.Basic("BLUE");
  room.Basic("WHITE");
  room.Mix("PINK", {{"RED", 25}, {"WHITE", 75}}, {{"Recycle", true}, {"Notes", "soft"}});
  room.Mix("PANTONE LIGHT", {{"RED", 50}, {"WHITE", 50}}, {{"Recycle", false}, {"Inventory", 3.0F}});
  room.Mix("PURE RED", {{"RED", 100}}, {{"Recycle", true}});
  room.Mix("VIOLET", {{"RED", 50}, {"BLUE", 50}});
  const auto names = [&](const BuiltReport& report) {
    std::string text;
    for (std::size_t row = 0; row < report.Rows(); ++row)
      text += TextAt(report, row, "Color_Name") + " " + TextAt(report, row, "Recycle_Percent") + "|";
    return text;
  };
  // PINK takes a quarter of its weight from pure red; of the even mix half its red is used up first.
  const BuiltReport producing = room.Run("RecycleListForm", {.color = "PINK"});
  EXPECT_EQ(names(producing), "PINK 100.00%|PANTONE LIGHT 50.00%|PURE RED 25.00%|");
  EXPECT_EQ(names(room.Run("RecycleListForm", {.color = "PURE RED", .options = {{"Type", "1"}}})),
            "PURE RED 100.00%|PANTONE LIGHT 50.00%|VIOLET 50.00%|PINK 25.00%|");
  EXPECT_EQ(room.Run("RecycleListForm", {.color = "PINK", .options = {{"RecyclableOnly", "1"}}}).Rows(), 2U);
  EXPECT_EQ(room.Run("RecycleListForm", {.color = "PINK", .options = {{"InvOnly", "1"}}}).Rows(), 1U);

  const BuiltReport all = room.Run("ColorListForm");
  EXPECT_EQ(all.Rows(), 7U);
  EXPECT_EQ(RowOf(all, "PINK", {"Color_Type", "Inventory", "BasicVOC", "Recycle", "BC1", "BQ1"}),
            "Formula 0.000 0.500 Yes WHITE 75.000");
  EXPECT_EQ(room.Run("ColorListForm", {.options = {{"NotesOnly", "1"}}}).Rows(), 1U);
  EXPECT_EQ(room.Run("ColorListForm", {.options = {{"CustomOnly", "1"}, {"ShowBasics", "0"}}}).Rows(), 3U);
  EXPECT_EQ(RowOf(room.Run("BasicColors_VOC_HAP_ListForm"), "RED", {"VOC", "HAP"}), "2.000 0.000");
  EXPECT_EQ(room.Run("MixColors_VOC_HAP_ListForm").Rows() + room.Run("MixCostListForm").Rows(), 8U);
  EXPECT_TRUE(room.Run("BasicCostListForm").totals.empty());
}

}  // namespace
}  // namespace vellumark
