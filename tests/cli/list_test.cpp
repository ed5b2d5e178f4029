#include <gtest/gtest.h>

#include "core/datafile/engine.h"
#include "support/cli_run.h"

namespace vellumark {
namespace {

using nlohmann::ordered_json;
using Words = std::vector<std::string>;

// A room with the Basic Colors RED, BLUE and AMBER and, in its history, as many lines of RED as are wanted.
struct ListShop : test::CliRoom {
  explicit ListShop(int lines = 0) : path(MakeFile()) {
    Json({"color", "add", "RED", "PurchaseCost=4.5", "Reorder=5", "Notes=a \"b\" \\ \t\x01 \xc3\xa9", "VOC=0.00001"});
    Json({"color", "add", "BLUE", "PurchaseCost=4.5", "Reorder=20"});
    Json({"color", "add", "AMBER", "PurchaseCost=3", "Reorder=20", "Inventory=7.125"});
    if (lines == 0) return;
    folder.Breaks("StockHistory");
    folder.Breaks("Fields");
    Database::Open(path, OpenMode::Exclusive)
        ->Execute("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " + std::to_string(lines) +
                  ") INSERT INTO MSysStockHistory (Moment, Username, Source, Kind, Database, Color_Name, LotRefID, "
                  "LotNumber, Change, Result, Document, Reason) SELECT '2026-03-01 10:00:00', '', 7, 1, 'INK', 'RED', "
                  "0, '', i, i, '', '' FROM n");
  }
  std::string path;
};

TEST(CliList, TellsWhatShowTellsOfEach) {
  const ListShop shop;
  ordered_json each = ordered_json::array();
  for (const char* name : {"AMBER", "BLUE", "RED"}) each.push_back(shop.Json({"color", "show", name}));
  const test::CliAnswer all = shop.Run({"--json", "color", "list"});
  EXPECT_EQ(all.out, each.dump(2) + "\n");
  EXPECT_EQ(each[2]["Notes"], "a \"b\" \\ \t\x01 \xc3\xa9");
  EXPECT_EQ(shop.Run({"--json", "formula", "list"}).out, "[]\n");
}

TEST(CliList, StandsInTheOrderThatIsAskedFor) {
  const ListShop shop;
  const auto names = [&](Words words) {
    words.insert(words.begin(), {"color", "list"});
    std::string text;
    for (const ordered_json& row : shop.Json(words)) text += row["Color_Name"].get<std::string>() + ' ';
    return text;
  };
  EXPECT_EQ(names({"--sort", "purchasecost"}), "AMBER BLUE RED ");
  EXPECT_EQ(names({"--sort", "Reorder", "--then", "PurchaseCost"}), "RED AMBER BLUE ");
  EXPECT_EQ(names({"--sort", "Reorder", "--desc", "--limit", "2"}), "AMBER BLUE ");
  EXPECT_EQ(names({"--filter", "7.125 am"}), "AMBER ");
  const test::CliAnswer text = shop.Run({"stock", "low", "--sort", "Reorder (lb.)", "--limit", "1"});
  EXPECT_EQ(text.out,
            "Color Name  Type   Inventory (lb.)  Reorder (lb.)\n"
            "----------  -----  ---------------  -------------\n"
            "RED         Basic            0.000          5.000\n");
  const test::CliAnswer unknown = shop.Run({"--json", "color", "list", "--sort", "Colour"});
  EXPECT_EQ(unknown.status, 2);
  EXPECT_EQ(unknown.out, "");
  EXPECT_NE(unknown.err.find("Colour is no column of this list, which has Color Name, Color Code"), std::string::npos);
  EXPECT_EQ(shop.Run({"color", "list", "--then", "Reorder"}).status, 2);
}

// More rows than are held for a text, in the order of writing; the last one is the widest.
TEST(CliList, OfManyRowsIsWholeAsTextAndAsJson) {
  const ListShop shop(10001);
  const ordered_json lines = shop.Json({"stock", "history", "RED"});
  ASSERT_EQ(lines.size(), 10001U);
  EXPECT_EQ(lines.front()["Change"], 1);
  EXPECT_EQ(lines.back()["Change"], 10001);
  EXPECT_EQ(shop.Json({"stock", "history"}).size(), 10002U) << "those of all colours";
  const std::string text = shop.Run({"stock", "history", "RED"}).out;
  EXPECT_EQ(std::ranges::count(text, '\n'), 10003);
  EXPECT_NE(text.find("Unlotted Inv.      1.000      1.000\n"), std::string::npos) << text.substr(0, 500);
  EXPECT_TRUE(text.ends_with("Unlotted Inv.  10001.000  10001.000\n"));
}

TEST(CliList, ThatCannotBeReadToItsEndIsNoJson) {
  const ListShop shop(10000);
  const auto spoil = [&](int row) {
    Database::Open(shop.path, OpenMode::Exclusive)
        ->Execute("UPDATE MSysStockHistory SET Result = CASE Change WHEN " + std::to_string(row) +
                  " THEN 9e999 ELSE 1 END WHERE Color_Name = 'RED'");
  };
  const auto expectFailed = [&](const test::CliAnswer& answer) {
    EXPECT_EQ(answer.status, 4);
    EXPECT_NE(answer.err.find("holds a figure that is not a number in the table MSysStockHistory, row "),
              std::string::npos)
        << answer.err;
    EXPECT_NE(answer.err.find(", field Result"), std::string::npos) << answer.err;
  };
  spoil(9000);
  const test::CliAnswer cut = shop.Run({"--json", "stock", "history"});
  expectFailed(cut);
  EXPECT_TRUE(cut.out.starts_with("[\n  {\n"));
  EXPECT_FALSE(ordered_json::accept(cut.out));
  EXPECT_EQ(cut.out.find("failed"), std::string::npos);
  const test::CliAnswer text = shop.Run({"stock", "history"});
  expectFailed(text);
  EXPECT_EQ(text.out, "");
  // Nothing had gone out yet: the answer is the failure.
  spoil(3);
  const test::CliAnswer early = shop.Run({"--json", "stock", "history"});
  expectFailed(early);
  EXPECT_EQ(early.Json()["failed"]["title"], shop.path);
}

TEST(CliList, IntoAPipeThatNobodyReadsEndsWithAMessage) {
  const ListShop shop(10000);
  for (const Words& words : {Words{"--json", "stock", "history"}, {"stock", "history"}, {"color", "list"}}) {
    const test::CliAnswer answer = shop.RunPrepared(words, "/dev/null", [] {
      int ends[2];
      if (::pipe(ends) != 0 || ::dup2(ends[1], STDOUT_FILENO) < 0) ::_exit(125);
      ::close(ends[0]);
      ::close(ends[1]);
    });
    EXPECT_EQ(answer.status, 4) << words.back();
    EXPECT_EQ(answer.err, "standard output: cannot be written\n");
  }
}

}  // namespace
}  // namespace vellumark
