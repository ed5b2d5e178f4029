#include <gtest/gtest.h>
#include <chrono>
#include <map>
#include <thread>

#include "core/batch/open.h"
#include "core/datafile/writer.h"
#include "core/settings/support_files.h"
#include "support/cli_run.h"
#include "support/snapshot.h"

namespace vellumark {
namespace {

using nlohmann::ordered_json;

// TARGET of 60 RED and 40 BLUE, and 30 pounds of VIOLET in stock, half RED and half BLUE.
struct BatchShop : test::CliRoom {
  BatchShop() {
    path = MakeFile();
    Run({"settings", "set", "InvLotTracking", "0"});
    FillFile();
    Run({"file", "info"});  // begins the history
    folder.Breaks("RollUps");  // its costs tell which of the figures an answer has
  }
  void FillFile() const {
    const auto file = Database::Open(path, OpenMode::Exclusive);
    for (const char* name : {"RED", "BLUE", "WAX"})
      InsertRow(*file, schema::Basic, "INK_Basic",
                {{"Color_Name", name}, {"PurchaseCost", 4.5F}, {"VOC", 0.5F}, {"HAP", 0.25F}});
    const auto mix = [&](const char* name, float red, float stock) {
      InsertRow(*file, schema::Mix, "INK_Mix",
                {{"Color_Name", name},
                 {"Color_Code", "C-1"},
                 {"BC0", "RED"},
                 {"BQ0", red},
                 {"BC1", "BLUE"},
                 {"BQ1", 100 - red},
                 {"Color_Set", "<RED><BLUE>"},
                 {"Inventory", stock},
                 {"Recycle", true},
                 {"BasicCost", 2.0F},
                 {"PurchaseCost", 3.0F}});
    };
    mix("TARGET", 60, 0);
    mix("VIOLET", 50, 30);
    BeginHistoryAnew(*file);
  }
  test::CliAnswer Calc(std::vector<std::string> rest) const {
    rest.insert(rest.begin(), {"--json", "batch", "calc", "--formula"});
    return Run(rest);
  }
  std::string path;
};

TEST(CliBatch, AnswersWithEveryKey) {
  const BatchShop shop;
  const ordered_json expected = ordered_json::parse(R"({
    "Color_Name": "TARGET", "Color_Code": "C-1", "Quantity": 100, "UMF": "lb.",
    "Rows": [{"Kind": "Mix", "Name": "VIOLET", "Amount": "30.000", "Max": "80.000"},
             {"Kind": "Basic", "Name": "RED", "Amount": "45.000", "Max": null},
             {"Kind": "Basic", "Name": "BLUE", "Amount": "25.000", "Max": null},
             {"Kind": "Addition", "Name": "WAX", "Amount": "2.000", "Max": null}],
    "Total": "102.000", "RecycledTotal": "30.000", "AdditionsTotal": "2.000", "PercentRecycled": "29.41%",
    "Roundoff": 0, "LargestAmountIndex": 0, "ClickedIndex": -1,
    "RecycleList": [{"Color_Name": "TARGET", "Recycle_Percent": 0.8928572, "Inventory": 0, "Recycle": true}],
    "CostOfBasics": "324.00", "CostOfMixes": "60.00", "CostOfBatch": "384.00", "UnitCost": "3.76",
    "VOC": "36.000", "HAP": "18.000", "BatchNo": 1})");
  const auto answer = shop.Calc({"target", "--quantity", "100", "--recycle", "--add", "WAX=2"});
  ASSERT_EQ(answer.status, 0) << answer.err;
  EXPECT_EQ(answer.Json().dump(2), expected.dump(2));
}

TEST(CliBatch, TakesByHandAfterAMix) {
  const BatchShop shop;
  const auto answer = shop.Calc({"TARGET", "--quantity", "10", "--unit", "oz", "--take", "VIOLET=4.5"});
  ASSERT_EQ(answer.status, 0) << answer.err;
  const ordered_json batch = answer.Json();
  EXPECT_EQ(batch["UMF"], "oz.");
  EXPECT_EQ(batch["ClickedIndex"], 0);
  EXPECT_EQ(batch["Rows"][0]["Amount"], "4.500");
  EXPECT_EQ(batch["Rows"][1]["Amount"], "3.750");
  EXPECT_EQ(shop.Calc({"TARGET", "--quantity", "10", "--take", "WAX=1"}).status, 1);
  EXPECT_EQ(shop.Calc({"TARGET", "--quantity", "10", "--take", "VIOLET=-1"}).Json()["refused"]["text"],
            "-1 is not a valid amount. Please enter a valid amount.");
}

TEST(CliBatch, RefusesAndStoresNothing) {
  const BatchShop shop;
  const std::string before = ReadFileBytes(shop.path);
  for (const char* bad : {"1,5", "1e3", "abc", "", "0", "-5", "99999.5"}) {
    const auto answer = shop.Calc({"TARGET", "--quantity", bad});
    EXPECT_EQ(answer.status, 1) << bad;
    EXPECT_EQ(answer.Json()["refused"]["text"], "You must enter an amount between 0.000 and 99999.000") << bad;
  }
  EXPECT_EQ(shop.Calc({"RED", "--quantity", "1"}).Json()["refused"]["title"], "Cannot make a batch from a Basic Color");
  EXPECT_EQ(shop.Calc({"NO'ONE*", "--quantity", "1"}).status, 1);
  EXPECT_EQ(shop.Calc({"TARGET", "--quantity", "1", "--add", "WAX"}).status, 2);
  EXPECT_EQ(shop.Calc({"TARGET", "--quantity", "1", "--unit", "ton"}).status, 2);
  EXPECT_EQ(shop.Calc({"TARGET", "--quantity", "1", "--mix", "--recycle"}).status, 2);
  EXPECT_EQ(shop.Calc({"TARGET"}).status, 2);
  EXPECT_EQ(ReadFileBytes(shop.path), before);
}

TEST(CliBatch, TableForPeople) {
  const BatchShop shop;
  const auto answer = shop.Run({"batch", "calc", "--formula", "TARGET", "--quantity", "0.001", "--mix"});
  EXPECT_EQ(answer.out,
            "TARGET  C-1\n\n"
            "Kind   Name   Amount  Unit  Max\n"
            "-----  -----  ------  ----  ---\n"
            "Basic  RED     0.001  lb.\n"
            "Basic  BLUE    0.000  lb.\n"
            "       Total   0.001  lb.\n\n"
            "Percent Recycled                                        0.00%\n"
            "Cost of Basics / Additives                               0.00\n"
            "Cost of Recycled Ink (Basic / Additive Purchase Costs)   0.00\n"
            "Total Cost of Batch                                      0.00\n"
            "Cost per lb.                                             0.00\n"
            "VOC                                                     0.001\n"
            "HAP                                                     0.000\n\n"
            "NOTE - To obtain measurable amounts for all ingredients increase the batch quantity or change the unit of "
            "measure.\n");
}

float StockOf(const BatchShop& shop, const std::string& name) {
  return shop.Json({"stock", "show", name})[0]["Total"].get<float>();
}

TEST(CliBatch, SavesShowsEditsAndDeletes) {
  BatchShop shop;
  for (const char* name : {"RED", "BLUE"}) shop.Json({"stock", "adjust", name, "200", "--kind", "basic"});
  const auto saved = shop.Json({"batch", "save", "--formula", "TARGET", "--quantity", "100", "--recycle", "--job",
                                "J-7=60", "--short-note", "rush", "--set", "UD_Text2=Press 4"});
  EXPECT_EQ(saved["BatchNo"], 1);
  EXPECT_EQ(StockOf(shop, "VIOLET"), 0);
  EXPECT_EQ(StockOf(shop, "RED"), 155);
  EXPECT_EQ(StockOf(shop, "BLUE"), 175);
  EXPECT_EQ(StockOf(shop, "TARGET"), 40);

  const auto shown = shop.Json({"batch", "show", "1"});
  EXPECT_EQ(shown["IngName0"], "VIOLET");
  EXPECT_EQ(shown["IngType0"], 2);
  EXPECT_EQ(shown["JobNumber"], "J-7");
  EXPECT_EQ(shown["Jobs"][0]["QtyUsed"], 60);
  EXPECT_EQ(shown["ReturnedToInventory"], 40);
  EXPECT_EQ(shown["ShortNote"], "rush");
  EXPECT_EQ(shown["UD_Text2"], "Press 4");
  EXPECT_EQ(shown["Lots"].size(), 3U);

  const auto edited = shop.Json({"batch", "edit", "1", "--quantity", "50", "--mix", "--short-note", "less"});
  EXPECT_EQ(edited["ActualQuantity"], 50);
  EXPECT_EQ(edited["Jobs"][0]["QtyUsed"], 50);
  EXPECT_EQ(edited["ShortNote"], "less");
  EXPECT_EQ(StockOf(shop, "VIOLET"), 30);
  EXPECT_EQ(StockOf(shop, "RED"), 170);
  EXPECT_EQ(StockOf(shop, "TARGET"), 0);

  EXPECT_EQ(shop.Json({"batch", "save", "--formula", "VIOLET", "--quantity", "10", "--mix", "--no-return"})["BatchNo"],
            2);
  const auto list = shop.Json({"batch", "list"});
  ASSERT_EQ(list.size(), 2U);
  EXPECT_EQ(list[1]["Color_Name"], "VIOLET");
  EXPECT_EQ(shop.Json({"batch", "list", "--formula", "TARGET"}).size(), 1U);
  EXPECT_EQ(shop.Json({"batch", "list", "--recent", "1"}).size(), 1U);

  const auto unanswered = shop.Run({"--json", "batch", "delete", "1"});
  EXPECT_EQ(unanswered.status, 3);
  EXPECT_EQ(StockOf(shop, "RED"), 165);
  EXPECT_EQ(shop.Run({"--no", "batch", "delete", "1"}).status, 1);
  shop.Json({"--answer", "Batch Window - Delete Batch?=yes", "--answer", "Batch Window - Update Inventories?=no",
             "batch", "delete", "1"});
  EXPECT_EQ(StockOf(shop, "RED"), 165);
  shop.Json({"--yes", "batch", "delete", "2"});
  EXPECT_EQ(StockOf(shop, "RED"), 170);
  EXPECT_EQ(shop.Run({"batch", "show", "2"}).status, 1);
  EXPECT_EQ(shop.Json({"batch", "list"}).size(), 0U);
}

TEST(CliBatch, TakesLotsByTheirNumbers) {
  BatchShop shop;
  shop.Json({"settings", "set", "InvLotTracking", "1"});
  for (const char* name : {"RED", "BLUE"})
    shop.Json({"stock", "adjust", name, "40", "--lot", "A1", "--count", "2", "--kind", "basic"});
  shop.Json({"stock", "adjust", "RED", "10", "--kind", "basic"});
  const auto refused =
      shop.Run({"--json", "batch", "save", "--formula", "TARGET", "--quantity", "100", "--mix", "--lot", "RED=A2:5"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.Json()["refused"]["text"], "RED has no lot A2 that a Batch can use.");
  shop.Json({"batch", "save", "--formula", "TARGET", "--quantity", "100", "--mix", "--lot", "RED=A1:55", "--lot",
             "red=Unlotted Inv.:5", "--lot", "BLUE=A1:40", "--lot-number", "MADE", "--lot-loc", "SHELF"});
  const auto red = shop.Json({"stock", "show", "RED"})[0];
  EXPECT_EQ(red["Unlotted"], 5);
  ASSERT_EQ(red["lots"].size(), 1U);
  EXPECT_EQ(red["lots"][0]["LotQty"], 25);
  const auto made = shop.Json({"stock", "show", "TARGET"})[0];
  EXPECT_EQ(made["lots"][0]["LotNumber"], "MADE");
  EXPECT_EQ(made["lots"][0]["LotLoc"], "SHELF");
  shop.Json({"stock", "adjust", "RED", "60", "--lot", "A=1:B:", "--kind", "basic"});
  shop.Json({"batch", "save", "--formula", "TARGET", "--quantity", "100", "--mix", "--lot", "RED=A=1:B::60", "--lot",
             "BLUE=A1:40"});
  EXPECT_EQ(shop.Json({"stock", "show", "RED"})[0]["lots"].size(), 1U);
  EXPECT_EQ(made["lots"][0]["LotQty"], 100);
}

// A program that is killed while a Batch is open in its window.
void LeaveOpen(const BatchShop& shop, std::int32_t number) {
  test::ScriptedPrompt prompt;
  NoProgress progress;
  const FixedClock clock{DateTime{2026, 3, 10, 12, 0, 0}};
  Session session{prompt, progress, clock};
  session.DataFolder = shop.folder / "VKDat";
  session.support = std::make_unique<SupportFiles>(session.DataFolder);
  session.DataFileDB = Database::Open(shop.path, OpenMode::Exclusive);
  session.CurrentDatabase = "INK";
  ReadSettings(session);
  BatchRecord record;
  ASSERT_TRUE(OpenBatch(session, record, number));
}

TEST(CliBatch, TheNextStartClosesABatchThatWasLeftOpen) {
  const BatchShop shop;
  shop.Json({"stock", "adjust", "RED", "100", "--kind", "basic"});
  shop.Json({"batch", "save", "--formula", "TARGET", "--quantity", "50", "--mix"});
  EXPECT_TRUE(shop.Json({"file", "check"})["Sound"]);
  LeaveOpen(shop, 1);
  const auto open = shop.Run({"--json", "file", "check", shop.path});
  EXPECT_EQ(open.status, 4);
  ASSERT_EQ(open.Json()["Faults"].size(), 1U);
  EXPECT_EQ(open.Json()["Faults"][0]["Rule"], "Markers");
  EXPECT_EQ(open.Json()["Faults"][0]["Name"], "000001");
  const auto start = shop.Run({"--json", "stock", "show", "RED"});
  EXPECT_EQ(start.Json()[0]["Total"], 70);
  EXPECT_NE(start.err.find("Batch 000001 of the INK database"), std::string::npos) << start.err;
  EXPECT_EQ(shop.Run({"stock", "show", "RED"}).err, "");
  EXPECT_TRUE(shop.Json({"file", "check", shop.path})["Sound"]);
}

TEST(CliBatch, RefusesWhatTheWindowRefuses) {
  BatchShop shop;
  const auto title = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--json", "batch"});
    const auto answer = shop.Run(arguments);
    EXPECT_EQ(answer.status, 1) << answer.out << answer.err;
    return answer.Json()["refused"]["title"].get<std::string>();
  };
  const std::vector<std::string> save{"save", "--formula", "TARGET", "--quantity", "10", "--mix"};
  const auto with = [&](std::vector<std::string> more) {
    more.insert(more.begin(), save.begin(), save.end());
    return title(more);
  };
  EXPECT_EQ(with({"--job", "A=6", "--job", "a=1"}), "Duplicate Job Numbers");
  EXPECT_EQ(with({"--job", "A=6", "--job", "B=4.001"}), "Batch Window - Invalid Quantity");
  EXPECT_EQ(with({"--job", "A=10.001"}), "Batch Window - Qty Used Too Large");
  EXPECT_EQ(with({"--job", "A=0"}), "Invalid Job Quantity");
  EXPECT_EQ(with({"--job", "A=1", "--no-return"}), "Option Must Be Checked");
  EXPECT_EQ(with({"--job", std::string(31, 'J') + "=1"}), "Job Number Too Long");
  EXPECT_EQ(with({"--set", "MarkupPercent=101"}), "Invalid Percentage");
  EXPECT_EQ(with({"--set", "FixedCostPerUnit=-1"}), "Invalid Cost");
  EXPECT_EQ(with({"--set", "Nothing=1"}), "Invalid Field");
  // Every field that holds a number, by a figure that no field can hold.
  for (const char* field : {"Lab_L", "Lab_a", "Lab_b", "Lab_D", "Lab_Density", "CostModelType", "MixCostOption",
                            "FixedCostOfBatch", "FixedCostPerUnit", "MarkupPercent", "MixVOCModelType",
                            "MixHAPModelType", "UD_Numeric0", "UD_Numeric5", "Complete"})
    for (const char* bad : {"123456789012345678", "-123456789012345678", "100000", "1e5", "abc"})
      EXPECT_NE(with({"--set", std::string(field) + "=" + bad}), "") << field << " " << bad;
  EXPECT_EQ(with({"--lot", "RED=A:1"}), "Lotted Inventory");
  EXPECT_EQ(title({"edit", "9", "--notes", "x"}), "Batch Not Found");
  EXPECT_EQ(title({"complete", "9"}), "Batch Not Found");
  EXPECT_EQ(shop.Json({"batch", "list"}).size(), 0U);
}

// A Batch that was made and is opened again is not made of itself, and an addition below zero holds when more ink is
// recycled.
TEST(CliBatch, EditsAgainstTheStockWithoutItself) {
  BatchShop shop;
  shop.Json({"batch", "save", "--formula", "TARGET", "--quantity", "100", "--mix"});
  const auto rows = [](const ordered_json& batch) {
    std::vector<std::string> lines;
    for (const auto& row : batch["Rows"])
      lines.push_back(row["Name"].get<std::string>() + " " + row["Amount"].get<std::string>());
    return lines;
  };
  const auto grown = shop.Json({"batch", "edit", "1", "--quantity", "120", "--recycle"});
  EXPECT_EQ(rows(grown), (std::vector<std::string>{"VIOLET 30.000", "RED 57.000", "BLUE 33.000"}));
  shop.Json({"batch", "edit", "1", "--add", "RED=-50"});
  const auto refused = shop.Run({"--json", "batch", "edit", "1", "--take", "TARGET=20"});  // brings 12 RED
  EXPECT_EQ(refused.status, 1) << refused.out;
  EXPECT_EQ(refused.Json()["refused"]["title"], "Batch Addition Adjustment");
  EXPECT_EQ(rows(shop.Json({"batch", "show", "1"})),
            (std::vector<std::string>{"VIOLET 30.000", "RED 57.000", "BLUE 33.000", "RED -50.000"}));
}

TEST(CliBatch, AdditionsChangeTheFormulaWhenTold) {
  const BatchShop shop;
  const std::vector<std::string> save{"batch", "save",  "--formula", "TARGET", "--quantity",
                                      "90",    "--mix", "--add",     "WAX=10"};
  const auto with = [&](std::vector<std::string> more) {
    more.insert(more.begin(), save.begin(), save.end());
    more.insert(more.begin(), "--json");
    return shop.Run(more);
  };
  shop.Json({"batch", "save", "--formula", "TARGET", "--quantity", "50", "--mix"});
  EXPECT_EQ(shop.Json({"formula", "show", "TARGET"})["BQ0"], 60);
  EXPECT_EQ(with({"--fold-new", "violet"}).Json()["refused"]["title"], "Master Formula Already Exists");
  EXPECT_EQ(shop.Json({"batch", "list"}).size(), 1U);
  EXPECT_EQ(with({"--fold-new", "GLOSSY"}).status, 0);
  EXPECT_EQ(shop.Json({"batch", "show", "2"})["Color_Name"], "GLOSSY");
  EXPECT_EQ(shop.Json({"formula", "show", "GLOSSY"})["BQ2"], 10);
  std::this_thread::sleep_for(std::chrono::milliseconds(1100));  // dates are kept to the second
  EXPECT_EQ(with({"--fold"}).status, 0);
  EXPECT_EQ(shop.Json({"formula", "show", "TARGET"})["BQ0"], 54);
  // The first Batch was made by the recipe as it was before.
  const auto edit = shop.Run({"--json", "batch", "edit", "1", "--quantity", "5"});
  EXPECT_EQ(edit.Json()["refused"]["title"], "Batches Window - Edit State");
  EXPECT_EQ(shop.Json({"batch", "edit", "3", "--short-note", "folded"})["ShortNote"], "folded");
}

TEST(CliBatch, CompletedOnesAreNotChanged) {
  BatchShop shop;
  shop.Json({"settings", "set", "BatchComplete", "1"});
  EXPECT_EQ(shop.Run({"batch", "save", "--formula", "TARGET", "--quantity", "10", "--mix"}).status, 3);
  shop.Json({"--no", "batch", "save", "--formula", "TARGET", "--quantity", "10", "--mix"});
  shop.Json({"batch", "complete", "1"});
  EXPECT_TRUE(shop.Json({"batch", "show", "1"})["Complete"].get<bool>());
  const auto refused = shop.Run({"--json", "batch", "edit", "1", "--quantity", "5"});
  EXPECT_EQ(refused.Json()["refused"]["title"], "Completed Batch - Changes Not Allowed");
  EXPECT_EQ(shop.Run({"--yes", "batch", "delete", "1"}).status, 1);
  shop.Json({"batch", "complete", "1", "--off"});
  shop.Json({"--no", "batch", "edit", "1", "--quantity", "5"});
  // What was said in so many words is not asked.
  shop.Json({"batch", "edit", "1", "--quantity", "6", "--set", "Complete=no"});
  shop.Json({"--yes", "batch", "edit", "1", "--quantity", "7", "--set", "Complete=no"});
  EXPECT_FALSE(shop.Json({"batch", "show", "1"})["Complete"].get<bool>());
}

// ---- What a verb on a stored Batch leaves behind

// All rows of the file, its history of stock too.
std::string RowsOf(const BatchShop& shop) {
  return test::Snapshot(*Database::Open(shop.path, OpenMode::Exclusive));
}

TEST(CliBatch, TellsOfStockThatIsShortAndInventsNone) {
  BatchShop shop;
  shop.Json({"settings", "set", "InvLotTracking", "1"});
  shop.Json({"stock", "adjust", "RED", "171.25", "--lot", "A", "--kind", "basic"});
  const auto saved = shop.Run({"batch", "save", "--formula", "TARGET", "--quantity", "10", "--mix"});
  EXPECT_EQ(saved.status, 0);
  EXPECT_NE(saved.err.find("RED: 6.000 lb. needed, 0.000 in Unlotted Inv., 171.250 in lots not chosen"),
            std::string::npos)
      << saved.err;
  EXPECT_NE(saved.err.find("--lot NAME=LOTNUMBER:QTY"), std::string::npos);
  shop.Json({"--yes", "batch", "delete", "1"});
  EXPECT_EQ(StockOf(shop, "RED"), 171.25F);
}

// The last word on a line's lots is that of the options; what they leave open stays as it was saved.
TEST(CliBatch, AnEditOfLotsReplacesThem) {
  BatchShop shop;
  shop.Json({"settings", "set", "InvLotTracking", "1"});
  for (const char* lot : {"A", "B"})
    shop.Json({"stock", "adjust", "RED", "100", "--lot", lot, "--kind", "basic"});
  shop.Json({"batch", "save", "--formula", "TARGET", "--quantity", "50", "--mix", "--lot", "RED=A:30"});
  const auto lots = [&] {
    std::map<std::string, float> held;
    const auto stock = shop.Json({"stock", "show", "RED"});
    for (const auto& lot : stock[0]["lots"]) held[lot["LotNumber"]] = lot["LotQty"];
    return held;
  };
  using Held = std::map<std::string, float>;
  EXPECT_EQ(lots(), (Held{{"A", 70}, {"B", 100}}));
  shop.Json({"batch", "edit", "1", "--lot", "RED=B:30"});
  EXPECT_EQ(lots(), (Held{{"A", 100}, {"B", 70}}));
  shop.Json({"batch", "edit", "1", "--lot", "RED=A:10", "--lot", "RED=B:20"});
  EXPECT_EQ(lots(), (Held{{"A", 90}, {"B", 80}}));
  shop.Json({"batch", "edit", "1", "--notes", "as it is"});
  EXPECT_EQ(lots(), (Held{{"A", 90}, {"B", 80}}));
  shop.Json({"batch", "edit", "1", "--lot", "RED=A:20"});
  shop.Json({"batch", "edit", "1", "--lot", "RED=B:10"});
  EXPECT_EQ(lots(), (Held{{"A", 80}, {"B", 90}}));
  // Less needs less of the lot chosen last; more is told, and taken from the lot that is named for it.
  shop.Json({"batch", "edit", "1", "--quantity", "40"});
  EXPECT_EQ(lots(), (Held{{"A", 80}, {"B", 96}}));
  const auto grown = shop.Run({"batch", "edit", "1", "--quantity", "60", "--add", "RED=5"});
  EXPECT_NE(grown.err.find("RED: 17.000 lb. needed, 0.000 in Unlotted Inv., 176.000 in lots not chosen"), std::string::npos)
      << grown.err;
  EXPECT_EQ(lots(), (Held{{"A", 80}, {"B", 96}}));
  shop.Json({"batch", "edit", "1", "--quantity", "100", "--lot", "RED=B:36", "--lot", "RED=A:1"});
  EXPECT_EQ(lots(), (Held{{"A", 79}, {"B", 60}}));
  // A Batch that grows by what was poured keeps the lots that it has; for what is new they are chosen like that.
  shop.Json({"stock", "adjust", "BLUE", "100", "--kind", "basic"});
  shop.Json({"--yes", "batch", "weigh", "1", "2", "--weight", "44"});
  EXPECT_EQ(lots(), (Held{{"A", 79}, {"B", 60}}));
  shop.Json({"--yes", "batch", "weigh", "1", "1", "--weight", "67", "--lot", "RED=A:6"});
  EXPECT_EQ(lots(), (Held{{"A", 73}, {"B", 60}}));
}

TEST(CliBatch, EveryOptionIsGuardedAndLeavesNothing) {
  BatchShop shop;
  shop.Json({"settings", "set", "BatchComplete", "1"});
  shop.Json({"--no", "--now", "2026-03-10 09:00:00", "batch", "save", "--formula", "TARGET", "--quantity", "10", "--mix",
             "--job", "J-1=4"});
  const std::vector<std::vector<std::string>> options{{"--quantity", "5"},
                                                      {"--mix"},
                                                      {"--recycle"},
                                                      {"--take", "VIOLET=1"},
                                                      {"--add", "WAX=1"},
                                                      {"--lot-number", "L"},
                                                      {"--lot-loc", "S"},
                                                      {"--lot-cont", "C"},
                                                      {"--job", "J-1=5"},
                                                      {"--no-job"},
                                                      {"--notes", "n"},
                                                      {"--short-note", "s"},
                                                      {"--set", "UD_Text0=t"},
                                                      {"--set", "UD_Numeric0=1"},
                                                      {"--set", "Lab_L=1"},
                                                      {"--set", "Lab_LS=D65"},
                                                      {"--set", "IngNotes=i"},
                                                      {"--set", "MarkupPercent=5"},
                                                      {"--set", "MixVOCModelType=1"}};
  const std::string before = RowsOf(shop);
  const auto edit = [&](std::vector<std::string> first, const std::vector<std::string>& option) {
    first.insert(first.end(), {"--json", "--now", "2026-03-11 09:00:00", "batch", "edit", "1"});
    first.insert(first.end(), option.begin(), option.end());
    return shop.Run(first);
  };
  for (const auto& option : options) {
    const auto asked = edit({}, option);
    EXPECT_EQ(asked.status, 3) << option[0] << asked.out;
    EXPECT_EQ(asked.Json()["question"]["title"], "Allow Editing?") << option.back();
    EXPECT_EQ(edit({"--no"}, option).status, 1) << option.back();
  }
  EXPECT_EQ(shop.Run({"batch", "delete", "1"}).status, 3);
  EXPECT_EQ(RowsOf(shop), before);
  shop.Json({"batch", "complete", "1"});
  const std::string completed = RowsOf(shop);
  for (const auto& option : options)
    EXPECT_EQ(edit({"--yes"}, option).Json()["refused"]["title"], "Completed Batch - Changes Not Allowed")
        << option.back();
  EXPECT_EQ(RowsOf(shop), completed);
  // Unmarked by the same command, it is changed.
  const auto changed = edit({"--answer", "Allow Editing?=yes", "--no"}, {"--notes", "n", "--set", "Complete=no"});
  EXPECT_EQ(changed.status, 0) << changed.err << changed.out;
  EXPECT_EQ(shop.Json({"batch", "show", "1"})["Notes"], "n");
}

}  // namespace
}  // namespace vellumark
