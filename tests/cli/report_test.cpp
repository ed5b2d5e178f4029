#include <gtest/gtest.h>

#include <fstream>

#include "core/datafile/engine.h"
#include "support/cli_run.h"

namespace vellumark {
namespace {

using nlohmann::ordered_json;

struct ReportShop : test::CliRoom {
  ReportShop() : path(MakeFile()) {
    Json({"color", "add", "RED", "PurchaseCost=4", "Inventory=500"});
    Json({"color", "add", "WHITE", "PurchaseCost=2", "Inventory=500"});
    Json({"formula", "add", "PINK", "RED=25", "WHITE=75"});
    for (const char* day : {"2026-03-01", "2026-03-02"})
      Json({"--today", day, "--yes", "batch", "save", "--formula", "PINK", "--quantity", "10"});
  }
  std::string path;
};

TEST(CliReport, ListsAndRunsReports) {
  const ReportShop shop;
  const ordered_json list = shop.Json({"report", "list"});
  ASSERT_EQ(list.size(), 33U);
  EXPECT_EQ(list[0]["Key"], "AllColorsThisDB");
  EXPECT_EQ(list[11]["Window"], "ProductionForm");

  const std::vector<std::string> run{"report",     "run",  "ProductionSpecificColorThisDB",
                                     "--color",    "pink", "--from",
                                     "2026-03-02", "--to", "2026-03-01"};
  auto words = run;
  words.insert(words.begin(), "--json");
  words.insert(words.end(),
               {"--columns", "Date Entered", "Quantity", "Cost of Batch", "Notes", "--sort", "Date Entered", "--desc"});
  const test::CliAnswer answer = shop.Run(words);
  ASSERT_EQ(answer.status, 0) << answer.err;
  const ordered_json report = answer.Json();
  EXPECT_EQ(report["Columns"][2],
            (ordered_json{{"Caption", "Quantity (lb.)"}, {"Key", "Quantity"}, {"Format", "Qty"}}));
  EXPECT_EQ(report["Rows"],
            ordered_json::parse(R"([["PINK","2026-03-02",10,25,null],["PINK","2026-03-01",10,25,null]])"));
  EXPECT_EQ(report["Totals"], ordered_json::parse(R"(["Totals",null,20,50,null])"));
  EXPECT_EQ(report["Count"], 2);
  EXPECT_EQ(report["Complete"], true);

  const std::string out = (shop.folder / "made.txt").string();
  words = run;
  words.insert(words.end(), {"--out", out});
  EXPECT_EQ(shop.Run(words).status, 0);
  EXPECT_EQ(ReadFileBytes(out),
            "Color Name\tDate Entered\tQuantity\tQty Recycled\t% Recycled\tCost of Batch\r\n"
            "PINK\t2026-03-01\t10.000\t0.000\t0.00%\t25.00\r\nPINK\t2026-03-02\t10.000\t0.000\t0.00%\t25.00\r\n"
            "Totals\t\t20.000\t0.000\t0.00%\t50.00\r\n");
  EXPECT_TRUE(shop.Run(run).out.find("2 Batches") != std::string::npos);

  const auto status = [&](const std::vector<std::string>& wrong) { return shop.Run(wrong).status; };
  EXPECT_EQ(status({"report", "run", "NoSuch"}), 1);
  EXPECT_EQ(status({"report", "run", "ProductionForm"}), 1);
  EXPECT_EQ(status({"report", "run", "ProductionForm", "--color", "PINK", "--sort", "No Such"}), 1);
  EXPECT_EQ(status({"report", "run", "InventoryForm", "--set", "InvOnly"}), 1);
  EXPECT_EQ(status({"report", "run", "InventoryForm", "--range", "Someday"}), 1);
  EXPECT_EQ(status({"report", "run", "InventoryForm", "--out", (shop.folder / "none/x.txt").string()}), 4);
}

TEST(CliReport, TellsOfWhatIsCutByItsStatus) {
  const ReportShop shop;
  // Enough Batches for more cells than a report holds.
  Database::Open(shop.path, OpenMode::Exclusive)
      ->Execute(
          "WITH RECURSIVE n(i) AS (SELECT 10 UNION ALL SELECT i + 1 FROM n WHERE i < 12000) INSERT INTO INK_Batch "
          "(Color_Name, BatchNo, Date_Entered, ActualQuantity, Quantity, UMF, LargestAmountIndex) SELECT 'PINK', i, "
          "'2026-03-01 00:00:00', 1.0, 1.0, 1, 0 FROM n");
  Database::Open(shop.path, OpenMode::Exclusive)->Execute("UPDATE FileInfo SET BatchNumber = 12001");
  const test::CliAnswer cut =
      shop.Run({"--json", "--today", "2026-03-10", "report", "run", "ProductionForm", "--color", "PINK"});
  EXPECT_EQ(cut.status, 4);
  const ordered_json report = cut.Json();
  EXPECT_EQ(report["Complete"], false);
  EXPECT_TRUE(report["Title"].get<std::string>().ends_with("INCOMPLETE"));
  EXPECT_EQ(report["Rows"].size(), 9198U) << "of 38 cells";
  const test::CliAnswer found = shop.Run(
      {"--json", "find", "batch", "--where", "Batch ID #", "<=", "2", "--where", "Color Name", "contains", "ink"});
  ASSERT_EQ(found.status, 0) << found.err;
  EXPECT_EQ(
      found.Json()[1],
      (ordered_json{
          {"Color Name", "PINK"}, {"Batch ID #", 2}, {"Job Number", ""}, {"Date", "2026-03-02"}, {"Database", "INK"}}));
  EXPECT_EQ(shop.Run({"find", "mix", "--where", "Color Name", "contains", "zzz"}).status, 1);
}

}  // namespace
}  // namespace vellumark
