#include <gtest/gtest.h>

#include <fstream>

#include "core/datafile/engine.h"
#include "support/cli_run.h"
#include "support/jet_room.h"
#include "support/pdf_text.h"

namespace vellumark {
namespace {

using nlohmann::ordered_json;

struct ReportShop : test::CliRoom {
  ReportShop() : path(MakeFile()) {
    Json({"--today", "2026-02-01", "color", "add", "RED", "PurchaseCost=4", "Inventory=500"});
    Json({"--today", "2026-02-01", "color", "add", "WHITE", "PurchaseCost=2", "Inventory=500"});
    Json({"formula", "add", "PINK", "RED=25", "WHITE=75"});
    for (const char* day : {"2026-03-01", "2026-03-02"})
      Json({"--today", day, "--yes", "batch", "save", "--formula", "PINK", "--quantity", "10"});
  }
  std::string path;
};

TEST(CliReport, ListsAndRunsReports) {
  const ReportShop shop;
  const ordered_json list = shop.Json({"report", "list"});
  ASSERT_EQ(list.size(), 37U);
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

TEST(CliReport, SavesReportsAndRangesAndWritesFiles) {
  const ReportShop shop;
  const auto text = [&](const std::vector<std::string>& words) {
    const test::CliAnswer answer = shop.Run(words);
    EXPECT_EQ(answer.status, 0) << answer.err;
    return answer.out;
  };
  shop.Json({"report", "range", "Opening days", "--from", "2026-03-02", "--to", "2026-03-31"});
  EXPECT_EQ(shop.Json({"report", "ranges"})[0]["Name"], "Opening days");
  shop.Json({"report", "save", "Month's end", "ProductionForm", "--color", "PINK", "--range", "Opening days",
             "--columns", "Batch Number", "Quantity", "--sort", "Quantity", "--then", "Batch Number", "--desc"});
  const ordered_json list = shop.Json({"report", "list"});
  EXPECT_EQ(list.back()["Group"], "Saved Reports");
  EXPECT_EQ(list.back()["Caption"], "Month's end");
  EXPECT_EQ(list.back()["Window"], "ProductionForm");
  const ordered_json run = shop.Json({"report", "run", "--saved", "month's END"});
  EXPECT_EQ(run["Rows"], ordered_json::parse(R"([["PINK",2,10]])"));
  EXPECT_EQ(shop.Json({"report", "run", "--saved", "Month's end", "--range", "All Dates"})["Count"], 2);

  const std::string folder = (shop.folder / ".").string();
  text({"report", "export", "--saved", "Month's end", "--no-headings", "--order", "Quantity", "Color Name", "--out",
        folder + "/made.txt"});
  EXPECT_EQ(ReadFileBytes(folder + "/made.txt"), "10.000\tPINK\r\n10.000\tTotals\r\n");
  text({"report", "run", "--saved", "Month's end", "--out", folder + "/made.xlsx"});
  EXPECT_EQ(ReadFileBytes(folder + "/made.xlsx", 4), "PK\x03\x04");
  text({"report", "run", "--saved", "Month's end", "--out", folder + "/made.mdb"});
  EXPECT_EQ(test::Exported(folder + "/made.mdb", "Vellumark Data"), "PINK\x1F" "000002\x1F" "10\x1E");
  text({"report", "run", "ProductionForm", "--color", "PINK", "--columns", "all", "--out", folder + "/wide.pdf",
        "--landscape", "--font", "60", "--answer", "Spread Report over Multiple Pages?=yes"});
  EXPECT_EQ(ReadFileBytes(folder + "/wide.pdf", 4), "%PDF");
  // A picture is its chart: what it is drawn by in the window, or what is asked for.
  text({"report", "run", "ProductionForm", "--color", "PINK", "--range", "All Dates", "--out", folder + "/chart.svg"});
  const std::string svg = ReadFileBytes(folder + "/chart.svg");
  for (const char* drawn : {">Quantity (lb.) by Month<", ">2026-03<", ">20.000<"})
    EXPECT_NE(svg.find(drawn), std::string::npos) << drawn << svg;
  text({"report", "chart", "ProductionForm", "--color", "PINK", "--by", "day", "--out", folder + "/chart.png"});
  EXPECT_EQ(ReadFileBytes(folder + "/chart.png", 24).substr(16), std::string("\0\0\x07\x80\0\0\x04\x20", 8)) << "1920 by 1056";
  EXPECT_EQ(shop.Run({"report", "run", "BasicCostListForm", "--out", folder + "/none.png"}).status, 1);

  const auto status = [&](const std::vector<std::string>& wrong) { return shop.Run(wrong).status; };
  EXPECT_EQ(status({"report", "run"}), 2);
  EXPECT_EQ(status({"report", "run", "ProductionForm", "--saved", "Month's end"}), 2);
  EXPECT_EQ(status({"report", "run", "--saved", "No Such"}), 1);
  EXPECT_EQ(status({"report", "run", "InventoryForm", "--out", folder + "/x.csv"}), 2);
  EXPECT_EQ(status({"report", "range", "X", "--from", "2026-03-02"}), 1);
  shop.Json({"settings", "set", "SavedReport0", "|Name=Month's end||Report=InventoryThisDB||Column=Gone||Sort=Lost|"});
  const test::CliAnswer lost = shop.Run({"report", "run", "--saved", "Month's end"});
  EXPECT_EQ(lost.status, 1);
  EXPECT_NE(lost.err.find("The columns that are saved for Month's end name what it does not have: Gone, Lost."),
            std::string::npos)
      << lost.err;
  shop.Json({"report", "delete", "Month's end"});
  EXPECT_EQ(shop.Json({"report", "list"}).size(), 37U);
}

TEST(CliReport, TakesEveryOption) {
  const ReportShop shop;
  shop.Json({"db", "create", "WEB"});
  const auto rows = [&](const std::vector<std::string>& words) { return shop.Json(words)["Rows"]; };
  EXPECT_EQ(rows({"report", "run", "InventoryDetailAllDBs", "--databases", "WEB"}).size(), 0U);
  const ordered_json both =
      rows({"report", "run", "InventoryReportsForm", "--databases", "INK", "--databases", "WEB", "--set", "ShowMixes=0",
            "--sort", "Inventory", "--then", "Color Name", "--desc", "--columns", "Inventory"});
  EXPECT_EQ(both, ordered_json::parse(R"([["RED",495],["WHITE",485]])"));
  EXPECT_EQ(
      rows({"report", "run", "BatchListForm", "--from", "2026-03-01", "--to", "2026-03-31", "--made-by", "NOBODY"})
          .size(),
      0U);
  EXPECT_EQ(rows({"report", "run", "InventoryForm", "--filter", "whi", "--columns", "Inventory"}),
            ordered_json::parse(R"([["WHITE",485]])"));
  const ordered_json past = shop.Json({"--today", "2026-03-10", "report", "run", "InventoryAsOf", "--from",
                                       "2026-03-01", "--to", "2026-03-01", "--columns", "Inventory"});
  EXPECT_EQ(past["Rows"], ordered_json::parse(R"([["PINK",10],["RED",497.5],["WHITE",492.5]])"));
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
  EXPECT_EQ(report["Rows"].size(), 9197U) << "of 38 cells";
  const std::string pdf = (shop.folder / "cut.pdf").string();
  for (const char* file : {"cut.pdf", "cut.txt", "cut.xlsx"})
    EXPECT_EQ(shop.Run({"--today", "2026-03-10", "report", "run", "ProductionForm", "--color", "PINK", "--out",
                        (shop.folder / file).string()})
                  .status,
              4)
        << file;
  EXPECT_NE(RunTool("pdftotext " + pdf + " -").find("INCOMPLETE"), std::string::npos);
  EXPECT_TRUE(ReadFileBytes(shop.folder / "cut.txt").ends_with("INCOMPLETE\r\n"));
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
