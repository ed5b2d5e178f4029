#include <gtest/gtest.h>

#include <random>
#include <set>

#include "report_room.h"

namespace vellumark {
namespace {

using test::RowOf;
using test::TotalsOf;

// What was put in, in whole thousandths and hundredths, apart from anything that reads it.
struct Ledger {
  std::int64_t batches = 0;
  std::int64_t quantity = 0;
  std::int64_t mixes = 0;
  std::int64_t basics = 0;
  std::int64_t voc = 0;
  std::set<int> numbers{};
};

std::string Thousandths(std::int64_t units) {
  return Fixed(static_cast<double>(units) / 1000, 3);
}

/// Three Databases with Batches in all four units and with every kind of line.
struct RandomRoom : test::ReportRoom {
  explicit RandomRoom(unsigned seed) : random(seed) {
    Setting("UMI", "2");
    Breaks("JobBatches");
    for (const char* database : {"WEB", "UV"}) AddDatabase(database);
    const test::Arranging arranging;
    Transaction transaction(session.File());
    int number = 1;
    for (const std::string& database : session.databaseList) {
      Use(database);
      for (const char* name : {"RED", "BLUE", "WHITE", "GLOSS", "BOTH"})
        Color(ColorKind::Basic, name, static_cast<float>(Pick(0, 90000)) / 1000);
      for (const char* name : {"PINK", "VIOLET", "BOTH"})
        Color(ColorKind::Mix, name, static_cast<float>(Pick(0, 9000)) / 1000);
      for (int lot = 1; lot <= 9; ++lot)
        Lot(lot % 2 == 0 ? ColorKind::Basic : ColorKind::Mix, lot % 2 == 0 ? "RED" : "PINK", lot,
            static_cast<float>(Pick(1, 9999)) / 1000,
            {{"LotPrice", static_cast<float>(Pick(1, 999)) / 100}, {"LotConsignment", lot % 3 == 0}});
      for (int i = 0; i < 250; ++i) AddBatch(database, number++);
      for (int i = 0; i < 60; ++i) AddJob(database, i);
    }
    transaction.Commit();
    Use("INK");
  }

  int Pick(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random); }

  // As it is printed in kilograms.
  std::int64_t InKilograms(std::int64_t thousandths, int unit) const {
    return std::llround(
        LeadingNumber(Fixed(static_cast<double>(thousandths) / 1000 * static_cast<double>(UnitFactor(unit, 2)), 3)) *
        1000);
  }

  void AddBatch(const std::string& database, int number) {
    const int unit = Pick(1, 4);
    const std::string color = std::vector<std::string>{"PINK", "VIOLET", "BOTH"}[static_cast<std::size_t>(Pick(0, 2))];
    const std::vector<std::pair<std::string, int>> kinds{{"RED", 1},  {"BLUE", 1},  {"BOTH", 1}, {"PINK", 2},
                                                         {"BOTH", 2}, {"GLOSS", 3}, {"RED", 3}};
    std::vector<test::Line> lines;
    std::map<std::pair<std::string, bool>, std::int64_t> taken;
    const int count = Pick(1, 6);
    const int largest = Pick(0, count);
    const std::int64_t roundoff = Pick(-2, 2);
    for (int i = 0; i < count; ++i) {
      const auto& [name, type] = kinds[static_cast<std::size_t>(Pick(0, 6))];
      const std::int64_t quantity = Pick(1, 99999);
      lines.push_back({name, static_cast<float>(static_cast<double>(quantity) / 1000), type});
      auto& sum = taken[{name, type == 2}];
      sum += InKilograms(quantity, unit);
      if (i == largest && type == 1) sum += InKilograms(roundoff, unit);
    }
    const std::int64_t made = Pick(1, 99999);
    const std::int64_t mixes = Pick(0, 9999);
    const std::int64_t basics = Pick(0, 9999);
    const std::int64_t voc = Pick(0, 9999);
    Batch(number, color, {2026, Pick(1, 3), Pick(1, 9), Pick(0, 23), 0, 0}, static_cast<float>(Pick(1, 9999)) / 100,
          lines,
          {{"ActualQuantity", static_cast<float>(static_cast<double>(made) / 1000)},
           {"UMF", unit},
           {"PercentRec", static_cast<float>(Pick(0, 10000)) / 10000},
           {"CostOfMixes", static_cast<float>(static_cast<double>(mixes) / 100)},
           {"CostOfBasics", static_cast<float>(static_cast<double>(basics) / 100)},
           {"FixedCostOfBatch", static_cast<float>(Pick(0, 500)) / 100},
           {"FixedCostPerUnit", static_cast<float>(Pick(0, 50)) / 100},
           {"MarkupPercent", static_cast<float>(Pick(0, 300)) / 10},
           {"VOC", static_cast<float>(static_cast<double>(voc) / 1000)},
           {"Roundoff", static_cast<float>(static_cast<double>(roundoff) / 1000)},
           {"LargestAmountIndex", largest},
           {"UD_Numeric0", static_cast<float>(Pick(0, 99)) / 10}});
    if (!lines.empty() && Pick(0, 3) == 0)
      BatchLot(number, lines[0].name, lines[0].type, "L", lines[0].quantity, 1.25F);
    Ledger& produced = production[{database, color}];
    ++produced.batches;
    produced.quantity += InKilograms(made, unit);
    produced.mixes += mixes;
    produced.basics += basics;
    produced.voc += voc;
    for (const auto& [key, sum] : taken)
      if (sum != 0) {
        Ledger& used = consumption[{database, key.first, key.second}];
        ++used.batches;
        used.quantity += sum;
        consumed[database] += sum;
      }
  }

  void AddJob(const std::string& database, int i) {
    const bool mix = Pick(0, 1) == 1;
    Job("J" + std::to_string(Pick(1, 20)), database,
        mix          ? "BOTH"
        : i % 2 == 0 ? "RED"
                     : "BOTH",
        mix ? 2 : Pick(0, 1), 1000001 + items++, 100, static_cast<float>(Pick(1, 99999)) / 1000,
        static_cast<float>(Pick(1, 999)) / 100, {2026, 2, Pick(1, 28)},
        {{"DesignID", i % 3 == 0 ? "D" : ""}, {"Date_Completed", DateTime{2026, 3, 1}}});
  }

  std::mt19937 random;
  int items = 0;
  std::map<std::pair<std::string, std::string>, Ledger> production;
  std::map<std::tuple<std::string, std::string, bool>, Ledger> consumption;
  std::map<std::string, std::int64_t> consumed;
};

const std::vector<std::string> kProduced{"Quantity",   "QtyRec",      "PercentRec",  "CostOfMixes", "CostOfBasics",
                                         "FixedCosts", "MarkupCosts", "CostOfBatch", "VOC",         "HAP"};
const std::vector<std::string> kUsed{"QtyIssued", "QtyUsed", "TotalCost", "TotalVOC", "TotalHAP"};

TEST(SumsOfReports, DetailAndSummariesAgreeWithWhatWasPutIn) {
  for (const unsigned seed : {1U, 2U}) {
    SCOPED_TRACE(seed);
    RandomRoom room(seed);
    const BuiltReport databases = room.Run("ProductionSummaryForm");
    const BuiltReport consumed = room.Run("ConsumptionSummaryForm");
    const BuiltReport jobs = room.Run("JobUsageSummaryForm");
    const BuiltReport stock = room.Run("InventorySummaryForm");
    for (const std::string& database : room.session.databaseList) {
      SCOPED_TRACE(database);
      room.Use(database);
      const BuiltReport colors = room.Run("SummarizedProductionForm");
      EXPECT_EQ(RowOf(databases, database, kProduced), TotalsOf(colors, kProduced));
      EXPECT_EQ(TotalsOf(room.Run("BatchListForm"), kProduced), TotalsOf(colors, kProduced));
      EXPECT_EQ(TotalsOf(room.Run("BatchListForm_MultipleRows"), kProduced), TotalsOf(colors, kProduced));
      for (const char* color : {"PINK", "VIOLET", "BOTH"}) {
        const BuiltReport detail = room.RunFor("ProductionForm", color, ColorKind::Mix);
        EXPECT_EQ(TotalsOf(detail, kProduced), RowOf(colors, color, kProduced)) << color;
        EXPECT_EQ(RowOf(room.RunFor("ProductionColorNameSummaryForm", color, ColorKind::Mix), database, kProduced),
                  RowOf(colors, color, kProduced));
        const Ledger& made = room.production[{database, color}];
        EXPECT_EQ(TotalsOf(detail, {"Quantity", "CostOfMixes", "CostOfBasics", "VOC"}),
                  Thousandths(made.quantity) + " " + Fixed(static_cast<double>(made.mixes) / 100, 2) + " " +
                      Fixed(static_cast<double>(made.basics) / 100, 2) + " " + Thousandths(made.voc));
        EXPECT_EQ(detail.Rows(), static_cast<std::size_t>(made.batches));
      }

      const BuiltReport consumption = room.Run("SummarizedConsumptionForm");
      const std::string used = TotalsOf(consumption, {"Batches", "BatchQty", "QtyConsumed", "PercentConsumed"});
      EXPECT_EQ(used, RowOf(consumed, database, {"Batches", "BatchQty", "QtyConsumed", "PercentConsumed"}));
      EXPECT_EQ(test::TotalText(consumption, "QtyConsumed"), Thousandths(room.consumed[database]));
      EXPECT_EQ(test::TotalText(room.Run("BatchListForm_MultipleRows", {.options = {{"Additions", "1"}}}), "IngQty"),
                Thousandths(room.consumed[database]));
      for (std::size_t row = 0; row < consumption.Rows(); ++row) {
        const std::string name = test::TextAt(consumption, row, "Color_Name");
        const bool mix = test::TextAt(consumption, row, "Color_Type") == "Formula";
        const BuiltReport detail = room.RunFor("ConsumptionForm", name, mix ? ColorKind::Mix : ColorKind::Basic);
        std::string cells;
        for (const char* key : {"BatchQty", "QtyConsumed", "PercentConsumed"})
          cells += (cells.empty() ? "" : " ") + test::TextAt(consumption, row, key);
        EXPECT_EQ(TotalsOf(detail, {"BatchQty", "QtyConsumed", "PercentConsumed"}), cells) << name << mix;
        const Ledger& taken = room.consumption[{database, name, mix}];
        EXPECT_EQ(test::TotalText(detail, "QtyConsumed"), Thousandths(taken.quantity)) << name << mix;
        EXPECT_EQ(detail.count, taken.batches) << name << mix;
        EXPECT_EQ(test::TextAt(consumption, row, "Batches"), std::to_string(taken.batches));
      }

      const BuiltReport usage = room.Run("SummarizedJobUsageForm");
      EXPECT_EQ(TotalsOf(usage, kUsed), RowOf(jobs, database, kUsed));
      for (std::size_t row = 0; row < usage.Rows(); ++row) {
        const bool mix = test::TextAt(usage, row, "Color_Type") == "Formula";
        const BuiltReport detail = room.RunFor("JobUsageForm", test::TextAt(usage, row, "Color_Name"),
                                               mix ? ColorKind::Mix : ColorKind::Basic);
        std::string cells;
        for (const std::string& key : kUsed) cells += (cells.empty() ? "" : " ") + test::TextAt(usage, row, key);
        EXPECT_EQ(TotalsOf(detail, kUsed), cells);
      }

      const std::vector<std::string> stocked{"Inventory", "TotalCost",    "OwnedQty",
                                             "OwnedCost", "ConsignedQty", "ConsignedCost"};
      EXPECT_EQ(TotalsOf(room.Run("InventoryForm"), stocked), RowOf(stock, database, stocked));
      const BuiltReport list = room.Run("ColorListForm");
      EXPECT_EQ(
          Fixed(LeadingNumber(test::TotalText(list, "Inventory")) + LeadingNumber(test::TotalText(list, "LottedInv")),
                3),
          test::TotalText(room.Run("InventoryForm"), "Inventory"));
      const BuiltReport added = room.Run("SummarizedBatchAdditionsForm");
      for (const char* color : {"PINK", "VIOLET", "BOTH"})
        EXPECT_EQ(
            TotalsOf(room.RunFor("BatchAdditionForm", color, ColorKind::Mix), {"Quantity", "QtyAdded", "PercentAdded"}),
            RowOf(added, color, {"Quantity", "QtyAdded", "PercentAdded"}));
    }
    EXPECT_EQ(TotalsOf(room.Run("BatchListDBForm"), kProduced), TotalsOf(databases, kProduced));
    EXPECT_EQ(TotalsOf(room.Run("DetailedJobUsageForm"), kUsed), TotalsOf(jobs, kUsed));
    EXPECT_EQ(TotalsOf(room.Run("JobListForm"), kUsed), TotalsOf(jobs, kUsed));
    EXPECT_EQ(TotalsOf(room.Run("InventoryReportsForm"), {"Inventory", "TotalCost"}),
              TotalsOf(stock, {"Inventory", "TotalCost"}));
  }
}

// Whatever the report: its totals are the sums of its printed cells, its keys are its own, and it sorts by each column.
TEST(SumsOfReports, EveryReportOfTheCatalogueAddsUp) {
  RandomRoom room(3);
  EXPECT_EQ(ReportCatalogue().size(), 35U) << "33 of the menu, two of the stock history";
  std::set<std::string> keys;
  for (const ReportDefinition& report : ReportCatalogue()) {
    SCOPED_TRACE(report.key);
    EXPECT_TRUE(keys.insert(report.key).second && keys.insert("window " + report.window).second);
    BuiltReport built = room.Run(report.key, {.color = "BOTH", .kind = ColorKind::Mix, .design = "D", .job = "J3"});
    EXPECT_TRUE(built.complete);
    EXPECT_GT(built.shown.size(), 1U);
    const std::vector<TableValue> totals = built.Totals();
    std::set<std::string> own;
    for (std::size_t i = 0; i < built.columns.size(); ++i) {
      const TableColumn& column = built.columns[i];
      EXPECT_TRUE(own.insert(column.key).second) << column.key;
      EXPECT_TRUE(own.insert("caption " + PlainCaption(column.Caption())).second) << column.Caption();
      if (column.total && !column.totalIs) {
        const int decimals = column.format == Format::Whole ? 0 : column.decimals;
        std::int64_t sum = 0;
        for (std::size_t row = 0; row < built.Rows(); ++row)
          sum += WholeUnits(LeadingNumber(CellText(column, built.Cell(row, i))), decimals);
        EXPECT_EQ(CellText(column, totals[i]), Fixed(OfWholeUnits(sum, decimals), decimals)) << column.key;
      }
      SortReport(built, {.column = i, .descending = true});
      for (std::size_t row = 1; row < built.Rows(); ++row)
        ASSERT_GE(
            CompareCells(built.Cell(built.order[row - 1], i), built.Cell(built.order[row], i), TextOrder::ExactCase), 0)
            << column.key;
    }
  }
}

}  // namespace
}  // namespace vellumark
