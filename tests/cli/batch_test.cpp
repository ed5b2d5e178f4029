#include <gtest/gtest.h>

#include "core/datafile/writer.h"
#include "support/cli_run.h"

namespace vellumark {
namespace {

using nlohmann::ordered_json;

// TARGET of 60 RED and 40 BLUE, and 30 pounds of VIOLET in stock, half RED and half BLUE.
struct BatchShop : test::CliRoom {
  BatchShop() {
    path = MakeFile();
    Run({"settings", "set", "InvLotTracking", "0"});
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
    "VOC": "36.000", "HAP": "18.000"})");
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

}  // namespace
}  // namespace vellumark
