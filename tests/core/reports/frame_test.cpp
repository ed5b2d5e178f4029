#include <gtest/gtest.h>

#include "core/reports/edit_cell.h"
#include "report_room.h"

namespace vellumark {
namespace {

using test::ReportRoom;

// One column of numbers, as many as are wanted.
ReportDefinition Numbers(std::int64_t count) {
  ReportDefinition report{.key = "Numbers", .name = "Numbers", .noun = "Records"};
  report.table = [count](const ReportContext& context) {
    return TableOf<std::int64_t>()
        .Add(
            "N", [](std::int64_t n) { return n; }, "N")
        .Sum()
        .Of([count, &context](const std::function<bool(const std::int64_t&)>& take) {
          for (std::int64_t n = 1; n <= count; ++n)
            if (!take(n) || !context.watch.GoOn(0)) return;
        });
  };
  return report;
}

class CancelsAtOnce final : public Progress {
 public:
  void Begin(std::string_view) override {}
  void Percent(double) override {}
  bool Cancelled() override { return true; }
};

TEST(ReportFrame, StopsAtItsLimitAndWhenCancelled) {
  ReportRoom room;
  ReportWatch watch(room.progress);
  const auto build = [&](std::int64_t count) {
    const ReportDefinition report = Numbers(count);
    ReportContext context{.session = room.session, .report = report, .watch = watch};
    return BuildReport(context);
  };
  const BuiltReport whole = build(349500);
  EXPECT_TRUE(whole.complete);
  EXPECT_EQ(whole.Rows(), 349500U);
  const BuiltReport cut = build(349501);
  EXPECT_FALSE(cut.complete);
  EXPECT_EQ(cut.warningTitle, "Incomplete Report");
  EXPECT_EQ(cut.warning,
            "The data was about to exceed the maximum number of viewable cels.\n\nThis report was stopped before "
            "completion.\n\nChoose a smaller date range to improve the creation of the report.");
  EXPECT_EQ(std::get<std::int64_t>(cut.Totals()[0]), 349500LL * 349501 / 2);
  EXPECT_TRUE(cut.FullTitle().ends_with("INCOMPLETE"));

  CancelsAtOnce progress;
  Session session(room.prompt, progress, room.clock);
  session.support = std::make_unique<SupportFiles>(room.session.DataFolder);
  for (const std::int64_t count : {1, 100}) {
    ReportWatch cancelled(progress);
    const ReportDefinition report = Numbers(count);
    const BuiltReport built = BuildReport({.session = session, .report = report, .watch = cancelled});
    EXPECT_FALSE(built.complete) << count;
    EXPECT_EQ(built.warning, "Because you decided to cancel, this data is incomplete.");
    EXPECT_EQ(built.Rows(), count == 1 ? 1U : 64U);
  }
}

TEST(ReportFrame, AddsUpWhatIsPrinted) {
  // 200,000 times 5.123 in 32 bits is off by hundreds.
  ReportRoom room;
  ReportWatch watch(room.progress);
  ReportDefinition report{.key = "Sums", .name = "Sums"};
  report.table = [](const ReportContext&) {
    return TableOf<float>()
        .Add(
            "Quantity", [](float q) { return q; }, "Quantity (lb.)")
        .Sum()
        .Of([](const std::function<bool(const float&)>& take) {
          for (int i = 0; i < 200000; ++i)
            if (!take(5.123F)) return;
        });
  };
  const BuiltReport built = BuildReport({.session = room.session, .report = report, .watch = watch});
  EXPECT_EQ(test::TotalText(built, "Quantity"), "1024600.000");
  EXPECT_EQ(WholeUnits(0.0005F, 3), 1);
  EXPECT_EQ(WholeUnits(-1.0005F, 3), -1001);
  EXPECT_EQ(WholeUnits(1.0005, 3), 1001);
  EXPECT_EQ(WholeUnits(1.0004999, 3), 1000);
  for (int i = 0; i < 20000; ++i) {
    const float value = static_cast<float>(i * 7919 % 100003) / 2000.0F;
    ASSERT_EQ(OfWholeUnits(WholeUnits(value, 3), 3), RoundTo(value, 3)) << value;
  }
}

TEST(ReportFrame, ClicksOnCaptionsSort) {
  ReportSort sort;
  const auto click = [&](std::size_t column, bool shift) {
    ClickCaption(sort, column, shift, 5);
    return sort;
  };
  EXPECT_EQ(click(2, false), (ReportSort{.column = 2}));
  EXPECT_EQ(click(2, false), (ReportSort{.column = 2, .descending = true}));
  EXPECT_EQ(click(1, true), (ReportSort{.column = 2, .descending = true, .second = 1}));
  EXPECT_EQ(click(1, true), (ReportSort{.column = 2, .descending = true, .second = 1, .secondDescending = true}));
  EXPECT_EQ(click(3, true), (ReportSort{.column = 2, .descending = true, .second = 3}));
  EXPECT_EQ(click(2, true), (ReportSort{.column = 2})) << "Shift on the first sort is a plain click";
}

TEST(ReportFrame, KeepsColumnsByKeyAndFindsOldNames) {
  ReportRoom room;
  const ReportDefinition& report = *FindReport("ProductionForm");
  ReportWatch watch(room.progress);
  const ReportContext context{.session = room.session, .report = report, .watch = watch, .databases = {"INK"}};
  const std::vector<TableColumn> columns = ReportColumns(context);
  const auto shown = [&] {
    std::string captions;
    for (const std::size_t column : ReadShownColumns(room.session, report, columns))
      captions += columns[column].Caption() + "|";
    return captions;
  };
  EXPECT_EQ(shown(), "Color Name|Date Entered|Quantity (lb.)|Qty Recycled (lb.)|% Recycled|Cost of Batch $|");
  SaveShownColumns(room.session, report, columns,
                   {0, *FindReportColumn(columns, "Text Lbl1"), *FindReportColumn(columns, "Cost of Mixes")});
  EXPECT_EQ(shown(), "Color Name|Cost of Mixes $|Text Lbl1|");
  EXPECT_EQ(room.session.support->settings.GetSupportValue("DetProductionColumns"), "|UD_Text0||CostOfMixes|");
  room.Setting("DetProductionColumns", "|No Such Column||Notes|");
  EXPECT_EQ(shown(), "Color Name|Notes|");
  EXPECT_EQ(PlainCaption("Lot Purchase Cost $"), "Lot Purchase Cost");
  EXPECT_EQ(PlainCaption("Cost per (lb.)"), "Cost per");
  EXPECT_EQ(PlainCaption("[Delta E.]"), "Delta E");

  // Every set that is delivered names columns that there are, and the order of a file does too.
  for (const ReportDefinition& each : ReportCatalogue()) {
    ReportContext of{.session = room.session, .report = each, .watch = watch, .databases = {"INK"}};
    for (const ReportOption& option : each.options)
      of.options[option.name] = ReadReportOption(room.session, each, option);
    const std::vector<TableColumn> its = ReportColumns(of);
    const std::string set = room.session.support->settings.GetSupportValue(each.prefix + "Columns");
    if (each.prefix == "DetProduction") continue;
    for (const std::string& name : SplitColumnSet(set))
      EXPECT_TRUE(name == "Formula" || FindReportColumn(its, name)) << each.key << " has no column " << name;
    EXPECT_TRUE(set.empty() || ReadShownColumns(room.session, each, its).size() > 1) << each.key << ": " << set;
  }
}

TEST(ReportFrame, RefusesWhatItCannotRun) {
  ReportRoom room;
  room.Color(ColorKind::Basic, "RED", 1);
  room.Color(ColorKind::Mix, "RED", 1);
  room.Color(ColorKind::Mix, "PANTONE 123 C", 1);
  const auto refusal = [&](const char* key, const ReportRequest& request) {
    const auto report = room.Try(key, request);
    return report ? std::string("none") : report.error().title + ": " + report.error().text;
  };
  EXPECT_EQ(refusal("ProductionForm", {.color = "GREEN"}), "Color Not Found: This Color could not be found");
  EXPECT_EQ(refusal("ProductionForm", {.range = kCustomRange, .color = "RED"}),
            "Custom Date Range: A custom range needs a From and a To date.");
  EXPECT_EQ(refusal("InventoryReportsForm", {.databases = {"NONE"}}),
            "Database Not Found: There is no Database NONE in this Data File.");
  EXPECT_EQ(refusal("InventoryForm", {.options = {{"ShowBasics", "7"}}}),
            "Report Option: ShowBasics is 0 to 1: 1 lists Basics and Additives.");
  EXPECT_TRUE(room.Run("ProductionForm", {.color = "123 C"}).title.find("PANTONE 123 C") != std::string::npos);
  room.prompt.Expect(
      "Show Master Formula Job Usage Report?", Answer::No,
      "The INK database contains both a Master Formula RED and a Basic Color RED. \n\nClick Yes to show the "
      "Master Formula's Job Usage Report, Click No to show the Basic Color's Job Usage Report.");
  room.Run("JobUsageForm", {.color = "RED"});
  for (const ReportDefinition& report : ReportCatalogue())
    EXPECT_EQ(RequireReport(room.session, report, true).has_value(), !report.edits) << report.key;
  EXPECT_EQ(RequireReport(room.session, *FindReport("ColorListForm"), true).error().field, "BatchForm");
  room.Setting("InvLotTracking", "0");
  EXPECT_EQ(refusal("BatchLottedInvReport", {}),
            "Lotted Inv. Deactivated: Lotted Inv must be turned on\n\nto create this report.");
}

// In the lists of what is to be ordered and recycled.
TEST(ReportFrame, WhatIsNotInStockIsNotPriced) {
  ReportRoom room;
  const std::string empty = "You can only enter information in this field when Inventory is greater than zero.";
  const std::string derived = "A Master Formula's Basic Cost is created form the cost of Basic Colors.";
  room.Basic("NONE");
  room.Color(ColorKind::Basic, "SOME", 5);
  room.Color(ColorKind::Basic, "LOTTED", 0);
  room.Lot(ColorKind::Basic, "LOTTED", 1, 2);
  room.Mix("PINK", {{"NONE", 100}});
  struct {
    const char* report;
    int mixCost;
    const char* column;
    std::map<std::string, std::string> told;
  } const cases[] = {
      {"Reorder", 1, "UnitCost", {{"NONE", empty}, {"SOME", ""}, {"LOTTED", ""}, {"PINK", empty}}},
      {"Reorder", 0, "UnitCost", {{"NONE", empty}, {"SOME", ""}, {"LOTTED", ""}, {"PINK", derived}}},
      {"Reorder", 0, "Inv_Note", {{"NONE", ""}, {"SOME", ""}, {"LOTTED", ""}, {"PINK", ""}}},
      {"lblRecListProdCons", 0, "PurchaseCost", {{"PINK", empty}}},
      {"lblRecListProdCons", 0, "BasicCost", {{"PINK", derived}}},
      {"AllColorsThisDB", 0, "PurchaseCost", {{"NONE", ""}, {"SOME", ""}, {"LOTTED", ""}, {"PINK", ""}}},
  };
  for (const auto& c : cases) {
    const ReportDefinition& definition = *FindReport(c.report);
    ReportRequest request{.color = "PINK", .kind = ColorKind::Mix};
    if (definition.key == "Reorder") request.options = {{"MixCost", std::to_string(c.mixCost)}};
    const BuiltReport report = room.Run(c.report, request);
    const std::map<std::string, int> options{{"MixCost", c.mixCost}};
    std::map<std::string, std::string> told;
    for (std::size_t row = 0; row < report.Rows(); ++row) {
      const auto may = RequireEditable(room.session, {definition, report, options, row, test::Place(report, c.column)});
      told[report.targets[row].name] = may ? "" : may.error().text;
    }
    EXPECT_EQ(told, c.told) << c.report << " " << c.column;
  }
}

TEST(ReportFrame, WritesTabbedText) {
  ReportRoom room;
  room.Color(ColorKind::Mix, "PINK", 0);
  room.Batch(
      7, "PINK", {2026, 3, 1}, 12.5F, {{"RED", 12.5F}},
      {{"Notes", "one\ttwo\r\nthree\nfour"}, {"ShortNote", "a\tb"}, {"PercentRec", 0.125F}, {"CostOfBasics", 4.0F}});
  room.Batch(3, "PINK", {2026, 3, 2}, 1, {{"RED", 1}}, {{"PercentRec", 0.0F}});
  BuiltReport report = room.Run("ProductionForm", {.color = "PINK"});
  report.shown.clear();
  for (const char* key : {"Color_Name", "BatchNo", "ShortNote", "Quantity", "PercentRec", "CostOfBatch", "Notes"})
    report.shown.push_back(test::Place(report, key));
  const std::string heading = "Color Name\tBatch Number\tShort Note\tQuantity\t% Recycled\tCost of Batch\tNotes\r\n";
  const std::string seven = "PINK\t000007\ta\\tb\t12.500\t12.50%\t4.00\tone\\ttwo\\nthree\\nfour\r\n";
  const std::string three = "PINK\t000003\t\t1.000\t0.00%\t0.00\t\r\n";
  const std::string totals = "Totals\t\t\t13.500\t11.58%\t4.00\t\r\n";
  EXPECT_EQ(ReportText(report, {}), heading + three + seven + totals);
  SortReport(report, {.column = test::Place(report, "Quantity"), .descending = true});
  EXPECT_EQ(ReportText(report, {.headings = false, .totals = false}), seven + three);
  EXPECT_EQ(ReportText(report, {.data = false, .order = {"Notes", "No Such", "Quantity", "Color Name"}}),
            "Notes\tQuantity\tColor Name\r\n\t13.500\tTotals\r\n");
  report.complete = false;
  EXPECT_EQ(ReportText(report, {.headings = false, .data = false}), totals + "INCOMPLETE\r\n");
}

}  // namespace
}  // namespace vellumark
