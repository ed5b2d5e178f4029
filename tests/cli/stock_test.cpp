#include <gtest/gtest.h>

#include "core/base/unicode.h"
#include "core/datafile/color_kind.h"
#include "core/datafile/writer.h"
#include "support/cli_run.h"

namespace vellumark {
namespace {

using nlohmann::ordered_json;

// A room with the Basic Colors RED and BLUE'S and the formulas RED and PURPLE.
struct StockShop : test::CliRoom {
  StockShop() {
    path = MakeFile();
    const auto file = Database::Open(path, OpenMode::Exclusive);
    for (const char* name : {"RED", "BLUE'S"})
      InsertRow(*file, schema::Basic, "INK_Basic",
                {{"Color_Name", name}, {"Inventory", 0.1F}, {"PurchaseCost", 4.5F}, {"LotRefID", 0}});
    for (const char* name : {"RED", "PURPLE"})
      InsertRow(*file, schema::Mix, "INK_Mix",
                {{"Color_Name", name}, {"Inventory", 3.0F}, {"BasicCost", 2.25F}, {"LotRefID", 0}});
    BeginHistoryAnew(*file);
    folder.Breaks("RollUps");  // the formulas have a cost and no recipe that would give it
  }
  std::string path;
};

TEST(CliStock, ShowsUnlottedLotsAndTotals) {
  const StockShop shop;
  EXPECT_EQ(shop.Json({"stock", "show"}).size(), 4U);
  shop.Json({"--today", "2026-03-10", "stock", "adjust", "purple", "12.3456", "--lot", "L1", "--loc", "SHELF", "--cont",
             "K7", "--consignment"});
  const ordered_json expected = ordered_json::parse(R"([{"Color_Name": "PURPLE", "Kind": 2, "Inventory": 3, "lots":
      [{"LotRefID": 1, "LotNumber": "L1", "LotLoc": "SHELF", "LotContID": "K7", "LotDate": "2026-03-10",
        "LotQty": 12.346, "LotPrice": 2.25, "LotConsignment": true}],
      "Unlotted": 3, "Lotted": 12.346, "Total": 15.346}])");
  EXPECT_EQ(shop.Json({"stock", "show", "PURPLE"}), expected);
  const ordered_json both = shop.Json({"stock", "show", "red"});
  ASSERT_EQ(both.size(), 2U);
  EXPECT_EQ(both[0]["Inventory"].dump(), "0.1");
  EXPECT_EQ(both[1]["Kind"], 2);
  EXPECT_NE(shop.Run({"stock", "show", "PURPLE"}).out.find("15.346"), std::string::npos);
}

TEST(CliStock, AdjustsAsTheWindowDoes) {
  const StockShop shop;
  const auto adjust = [&](std::vector<std::string> rest) {
    rest.insert(rest.begin(), {"stock", "adjust"});
    return shop.Json(rest);
  };
  EXPECT_EQ(adjust({"BLUE'S", "10.5"})["Total"], 10.6);
  EXPECT_EQ(adjust({"BLUE'S", "-10.2"})["Total"], 0);
  EXPECT_EQ(adjust({"RED", "5", "--kind", "Formula"})["Inventory"], 8);
  EXPECT_EQ(adjust({"RED", "5", "--kind", "basic"})["Inventory"], 5.1);
  EXPECT_EQ(shop.Json({"--answer", "Adjust Inventory=no", "stock", "adjust", "RED", ".9"})["Inventory"], 6);

  adjust({"PURPLE", "4", "--lot", "A", "--cont", "B10", "--count", "3", "--price", "3)"});
  ordered_json lots =
      adjust({"PURPLE", "4", "--lot", "A", "--loc", "HALL", "--price", "1.5", "--date", "2025-01-31"})["lots"];
  ASSERT_EQ(lots.size(), 4U);
  EXPECT_EQ(lots[2]["LotContID"], "B10_3");
  EXPECT_EQ(lots[2]["LotPrice"], 0);
  // A lot that is there keeps what is not named, and gets no twin.
  lots = adjust({"PURPLE", "2", "--lot", "a", "--loc", "hall"})["lots"];
  ASSERT_EQ(lots.size(), 4U);
  EXPECT_EQ(lots[3]["LotQty"], 6);
  EXPECT_EQ(lots[3]["LotPrice"], 1.5);
  EXPECT_EQ(lots[3]["LotDate"], "2025-01-31");
  lots = adjust({"PURPLE", "-5.5", "--lot", "A", "--loc", "HALL"})["lots"];
  EXPECT_EQ(lots.size(), 3U);
  adjust({"PURPLE", "1", "--lot", "grün"});
  EXPECT_EQ(adjust({"PURPLE", "1", "--lot", "GRÜN"})["lots"].size(), 4U);
  EXPECT_EQ(shop.Json({"--yes", "stock", "reset", "inventory", "PURPLE", "--lot", "GRÜN"})["lots"].size(), 3U);
}

TEST(CliStock, RefusesAndThenNothingHasChanged) {
  const StockShop shop;
  shop.Json({"stock", "adjust", "PURPLE", "4", "--lot", "A"});
  const std::string quantity = "Invalid Quantity - Adjust Inv.: You must enter an amount between -99999 and 99999\n";
  const std::string missing =
      "Inventory - Color not found: This color was not found in the INK database.\nUse the Basic Color or Master "
      "Formula "
      "Window\nto add this color to the database.\n";
  struct Case {
    std::vector<std::string> words;
    int status;
    std::string err;  // what standard error begins with
  };
  const std::vector<Case> cases{
      {{"PURPLE", "1,5"}, 1, quantity},
      {{"PURPLE", "1e3"}, 1, quantity},
      {{"PURPLE", "abc"}, 1, quantity},
      {{"PURPLE", ""}, 1, quantity},
      {{"PURPLE", "-99999.001"}, 1, quantity},
      {{"GREEN", "1"}, 1, missing},
      {{"R*", "1"}, 1, missing},
      {{"", "1"}, 1, missing},
      {{"PURPLE", "1", "--kind", "basic"}, 1, missing},
      {{"PURPLE", "-5"}, 1, "Adjust Value: New Inventory is less than zero.\nNegative Inventory not allowed.\n"},
      {{"PURPLE", "99999"}, 1, "Adjust Value: New Inventory is too large.\n99999 is the largest Qty allowed.\n"},
      {{"PURPLE", "25000", "--lot", "N", "--count", "5"},
       1,
       "Container Count: The number of containers selected will cause inventory to exceed: 99999\n\nEnter less "
       "containers or lower Adjust Qty\n"},
      {{"PURPLE", "1", "--lot", "A", "--price", "1,5"}, 1, "Invalid Amount - Price: "},
      {{"PURPLE", "1", "--lot", "A", "--date", "1999-12-31"}, 1, "Invalid Date: "},
      {{"PURPLE", "1", "--lot", "N", "--count", "2.5"}, 1, "Container Count: "},
      {{"PURPLE", "1", "--lot", std::string(31, 'X')},
       1,
       "Invalid Lot: A lot number, location or container has at most 30 characters.\nXXX"},
      {{"PURPLE", "1", "--lot", "N", "--cont", std::string(28, 'C'), "--count", "10"},
       1,
       "Invalid Lot: A lot number, location or container has at most 30 characters.\nCCC"},
      {{"PURPLE", "1", "--loc", "SHELF"}, 2, ""},
      {{"PURPLE", "1", "--kind", "additive"}, 2, ""},
      {{"PURPLE"}, 2, ""},
      {{"RED", "1"},
       3,
       "Adjust Inventory: The INK database contains a Formula and a Basic called:\nRED.\n\nYes - Adjust the "
       "Formula\nNo - "
       "Adjust the Basic.\n"},
      {{"PURPLE", "1", "--lot", "N", "--count", "101"},
       3,
       "Large Unit Count Confirmation: Use 101 for the Unit Count?\n"},
  };
  const std::string before = ReadFileBytes(shop.path);
  for (const Case& one : cases) {
    std::vector<std::string> words{"stock", "adjust"};
    words.insert(words.end(), one.words.begin(), one.words.end());
    const test::CliAnswer answer = shop.Run(words);
    EXPECT_EQ(answer.status, one.status) << one.words.back() << ": " << answer.err;
    EXPECT_EQ(answer.err.substr(0, one.err.size()), one.err);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(ReadFileBytes(shop.path), before) << one.words.back();
  }
  EXPECT_EQ(shop.Run({"--no", "stock", "adjust", "PURPLE", "1", "--lot", "N", "--count", "101"}).status, 1);
  EXPECT_EQ(ReadFileBytes(shop.path), before);
  EXPECT_EQ(shop.Json({"--yes", "stock", "adjust", "PURPLE", "1", "--lot", "N", "--count", "101"})["lots"].size(),
            102U);
  EXPECT_EQ(shop.Run({"stock", "show", "GREEN"}).err, missing);

  shop.Json({"settings", "set", "InvLotTracking", "0"});
  EXPECT_EQ(shop.Run({"stock", "adjust", "PURPLE", "1", "--lot", "A"}).status, 1);
  EXPECT_EQ(shop.Json({"stock", "show", "PURPLE"})[0]["Total"], 3);
}

TEST(CliStock, ListsLotsAndWhatIsToBeOrdered) {
  const StockShop shop;
  shop.Json({"stock", "adjust", "PURPLE", "4", "--lot", "A", "--cont", "7", "--count", "2", "--consignment"});
  EXPECT_EQ(shop.Json({"stock", "adjust", "PURPLE", "0.5", "--lot", "A", "--cont", "8"})["lots"][1]["LotConsignment"],
            true);
  shop.Json({"stock", "adjust", "PURPLE", "0.5", "--lot", "A", "--cont", "8", "--no-consignment"});
  const ordered_json lots = shop.Json({"stock", "lots", "purple"});
  ASSERT_EQ(lots.size(), 2U);
  EXPECT_EQ(lots[0]["LotConsignment"], true);
  EXPECT_EQ(lots[1]["LotContID"], "8");
  EXPECT_EQ(lots[1]["LotQty"], 5);
  EXPECT_EQ(lots[1]["LotConsignment"], false);
  // A lot is moved and renumbered under its reference.
  const ordered_json moved =
      shop.Json({"stock", "adjust", "PURPLE", "-1", "--ref", "2", "--loc", "HALL", "--lot", "B"});
  EXPECT_EQ(moved["lots"][1]["LotNumber"], "B");
  EXPECT_EQ(moved["lots"][1]["LotLoc"], "HALL");
  EXPECT_EQ(moved["lots"][1]["LotContID"], "8");
  EXPECT_EQ(moved["lots"][1]["LotQty"], 4);
  shop.Json({"stock", "adjust", "PURPLE", "1", "--ref", "2"});
  EXPECT_EQ(shop.Run({"stock", "adjust", "PURPLE", "1", "--ref", "9"}).err,
            "Lot Not Found: PURPLE has no lot with the reference 9.\n");
  EXPECT_EQ(shop.Run({"stock", "lots", "RED"}).status, 3);
  EXPECT_EQ(shop.Json({"stock", "lots", "RED", "--kind", "basic"}), ordered_json::array());

  EXPECT_EQ(shop.Json({"stock", "low"}), ordered_json::array());
  EXPECT_EQ(shop.Json({"stock", "reorder", "PURPLE", "12.0006"}),
            ordered_json::parse(R"({"Color_Name": "PURPLE", "Kind": 2, "Reorder": 12.001, "Total": 12})"));
  EXPECT_EQ(shop.Json({"stock", "low"}),
            ordered_json::parse(R"([{"Color_Name": "PURPLE", "Kind": 2, "Total": 12, "Reorder": 12.001}])"));
  shop.Json({"stock", "reset-reorder", "--basics", "0.2", "--formulas", "0"});
  EXPECT_EQ(shop.Json({"stock", "low"}).size(), 2U);
  EXPECT_NE(shop.Run({"stock", "low"}).out.find("BLUE'S"), std::string::npos);

  const std::string before = ReadFileBytes(shop.path);
  EXPECT_EQ(shop.Run({"stock", "reorder", "PURPLE", "100000"}).err,
            "Adjust Reorder Point - Invalid Reorder Point: You must enter a Reorder Point > 0 and < 99999\n");
  EXPECT_EQ(shop.Run({"stock", "reorder", "GREEN", "1"}).status, 1);
  EXPECT_EQ(shop.Run({"stock", "reorder", "RED", "1"}).status, 3);
  EXPECT_EQ(shop.Run({"stock", "reset-reorder", "--basics", "-1"}).status, 1);
  EXPECT_EQ(shop.Run({"stock", "reset-reorder"}).status, 2);
  EXPECT_EQ(shop.Run({"stock", "adjust", "PURPLE", "1", "--lot", "A\nB"}).err,
            "Invalid Lot: A lot number, location or container cannot hold a line end or a tab.\n");
  EXPECT_EQ(ReadFileBytes(shop.path), before);
}

TEST(CliStock, ResetsStockDatesAndPrices) {
  const StockShop shop;
  for (const char* lot : {"A", "B"}) shop.Json({"stock", "adjust", "PURPLE", "4", "--lot", lot});
  EXPECT_EQ(shop.Run({"stock", "reset", "inventory", "PURPLE"}).status, 3);
  EXPECT_EQ(shop.Run({"--no", "stock", "reset", "inventory", "PURPLE"}).status, 1);
  ordered_json stock = shop.Json({"--yes", "stock", "reset", "date", "PURPLE", "2025-02-28", "--lot", "a"});
  EXPECT_EQ(stock["lots"][0]["LotDate"], "2025-02-28");
  EXPECT_NE(stock["lots"][1]["LotDate"], "2025-02-28");
  stock = shop.Json({"--answer", "Reset Prices=yes", "stock", "reset", "price", "PURPLE", "7.5"});
  EXPECT_EQ(stock["lots"][0]["LotPrice"], 7.5);
  EXPECT_EQ(stock["lots"][1]["LotPrice"], 7.5);
  stock = shop.Json({"--yes", "stock", "reset", "inventory", "PURPLE", "--lot", "B"});
  EXPECT_EQ(stock["Lotted"], 4);
  EXPECT_EQ(stock["Unlotted"], 3);
  stock = shop.Json({"--yes", "stock", "reset", "inventory", "PURPLE", "--lot", "Unlotted Inv."});
  EXPECT_EQ(stock["Total"], 4);
  stock = shop.Json({"--yes", "stock", "reset", "inventory", "RED", "--kind", "basic"});
  EXPECT_EQ(stock["Total"], 0);

  shop.Json({"stock", "reset", "inventory", "--basics", "10"});
  EXPECT_EQ(shop.Json({"stock", "show", "BLUE'S"})[0]["Total"], 10);
  shop.Json({"stock", "reset", "inventory", "--mixes", "0"});
  EXPECT_EQ(shop.Json({"stock", "show", "PURPLE"})[0]["Total"], 0);

  const std::string before = ReadFileBytes(shop.path);
  EXPECT_EQ(shop.Run({"stock", "reset", "inventory", "--basics", "99999.001"}).err,
            "Invalid Inventory Amount: Please enter an Inventory amount between 0 and 99999.\n");
  EXPECT_EQ(shop.Run({"stock", "reset", "inventory"}).status, 2);
  EXPECT_EQ(shop.Run({"stock", "reset", "inventory", "PURPLE", "--basics", "1"}).status, 2);
  EXPECT_EQ(shop.Run({"stock", "reset", "date", "PURPLE", "1999-12-31"}).status, 1);
  EXPECT_EQ(shop.Run({"--yes", "stock", "reset", "price", "BLUE'S", "1", "--lot", "X"}).err,
            "Lot Not Found: BLUE'S has no lot X.\n");
  EXPECT_EQ(ReadFileBytes(shop.path), before);
}

TEST(CliStock, ReadsScansInAnyEncodingAndPicksAmongItemsThatAreAlike) {
  const StockShop shop;
  shop.Json({"stock", "adjust", "BLUE'S", "9.9"});
  for (const char* quantity : {"3", "2"}) shop.Json({"--yes", "job", "add-item", "J-1", "BLUE'S", quantity});
  const std::string path = shop.folder / "scan.txt";
  const auto scan = [&](const std::string& bytes, std::vector<std::string> options = {}) {
    ReplaceFile(path, bytes);
    options.insert(options.begin(), {"--json", "stock", "scan", path});
    return shop.Run(options);
  };
  const std::string lines = "<JN>J-1\r\n<CN>BLUE'S\r\n<LN>Unlotted Inv.\r\n1\r\n";
  ordered_json answer;
  for (const std::string& bytes : {"\xEF\xBB\xBF" + lines, "\xFF\xFE" + ToUtf16(lines)}) {
    answer = scan(bytes).Json();
    ASSERT_EQ(answer.size(), 1U);
    EXPECT_TRUE(answer[0]["Message"].get<std::string>().starts_with("BLUE'S is recorded on Job Number: J-1 2 times."));
  }
  answer[0]["BatchNo"] = 1000009;
  EXPECT_EQ(scan(answer.dump(), {"--reprocess"}).Json()[0]["Message"],
            "The item that was picked is no longer on Job Number: J-1");
  answer[0]["BatchNo"] = 1000001;
  answer[0]["Qty"] = 4;
  answer = scan("\xFF\xFE" + ToUtf16(answer.dump()), {"--reprocess"}).Json();
  EXPECT_EQ(answer[0]["BatchNo"], 1000001) << answer;
  answer[0]["Qty"] = 1;
  EXPECT_EQ(scan(answer.dump(), {"--reprocess"}).status, 0);
  const ordered_json items = shop.Json({"job", "show", "J-1"})["Items"];
  EXPECT_EQ(items[0]["QtyUsed"], 2);
  EXPECT_EQ(items[1]["QtyUsed"], 2);

  EXPECT_EQ(scan("RED\nhello\n").Json()["refused"]["text"],
            "No line of " + path + " is a code of a label or a quantity.");
  EXPECT_EQ(scan("\r\n").status, 0);
}

TEST(CliStock, TellsWhereStockCameFrom) {
  const StockShop shop;
  const std::vector<std::string> at{"--now", "2026-03-10 08:15:00"};
  const auto run = [&](std::vector<std::string> words) {
    words.insert(words.begin(), at.begin(), at.end());
    return shop.Json(words);
  };
  run({"color", "add", "GREEN", "Inventory=2"});
  run({"stock", "adjust", "GREEN", "1.5", "--reason", "counted"});
  run({"stock", "adjust", "GREEN", "6", "--lot", "A"});
  run({"color", "rename", "GREEN", "MOSS"});
  run({"stock", "adjust", "MOSS", "-6", "--lot", "A"});
  const ordered_json lines = shop.Json({"stock", "history", "moss"});
  ASSERT_EQ(lines.size(), 5U);
  EXPECT_EQ(lines[1], ordered_json::parse(R"({"Date": "2026-03-10 08:15:00", "Username": "", "Source": "Manual",
      "Kind": 1, "Database": "INK", "Color_Name": "GREEN", "LotRefID": 0, "LotNumber": "Unlotted Inv.",
      "Change": 1.5, "Result": 3.5, "Document": "", "Reason": "counted"})"));
  EXPECT_EQ(lines[3]["Source"], "Renamed from");
  EXPECT_EQ(shop.Json({"stock", "history", "--lot", "A"}).size(), 2U);
  EXPECT_EQ(shop.Json({"stock", "history", "MOSS", "--lot", "a"}).size(), 2U);
  EXPECT_EQ(shop.Json({"stock", "history", "MOSS", "--lot", "a"})[1]["Change"], -6);
  EXPECT_EQ(shop.Json({"stock", "history", "PURPLE"}).size(), 1U) << "what was there when the history began";
  EXPECT_NE(shop.Run({"stock", "history"}).out.find("counted"), std::string::npos);
  EXPECT_EQ(shop.Run({"stock", "history", "BROWN"}).status, 1);
  EXPECT_EQ(shop.Run({"stock", "history", "--lot", ""}).status, 2);
}

}  // namespace
}  // namespace vellumark
