// A backup looked into: what of it is not here comes back singly, and nothing that is here is written over unasked.

#include <gtest/gtest.h>

#include <array>

#include "support/cli_run.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;

TEST(CliLookInto, OneFormulaAndOneBatchComeBackAsTheyWere) {
  const test::CliRoom room;
  room.MakeFile();
  for (const char* name : {"RED", "WHITE"}) room.Json({"color", "add", name, "PurchaseCost=4"});
  for (const auto& [name, red, white] : {std::array{"PINK", "RED=20", "WHITE=80"}, {"ROSE", "RED=50", "WHITE=50"}})
    room.Json({"--now", "2026-03-01 08:00:00", "formula", "add", name, red, white});
  room.Json({"stock", "adjust", "RED", "10", "--lot", "R-1"});
  room.Json({"stock", "adjust", "RED", "20"});
  room.Json({"stock", "adjust", "WHITE", "100"});
  for (const char* day : {"2026-03-09 08:00:00", "2026-03-09 09:00:00"})
    room.Json({"--now", day, "batch", "save", "--formula", "PINK", "--quantity", "20", "--lot", "RED=R-1:3",
               "--lot-number", std::string("P-") + day[12], "--job", "J-1=5"});
  const std::string set = room.Json({"--now", "2026-03-09 17:00:00", "backup", "make"})["Set"].get<std::string>();
  EXPECT_TRUE(room.Json({"backup", "look", set}).empty());

  // The state of the day, less a Batch and a formula.
  const auto batch = room.Json({"batch", "show", "2"});
  const auto stock = [&] {
    nlohmann::ordered_json all;
    for (const char* name : {"RED", "WHITE"}) all[name] = room.Json({"stock", "show", name});
    all["PINK"] = room.Json({"formula", "show", "PINK"})["Inventory"];
    return all.dump();
  };
  const std::string before = stock();
  room.Json({"--yes", "batch", "delete", "2"});
  ASSERT_NE(stock(), before);
  room.Json({"--yes", "formula", "delete", "ROSE"});
  auto rows = room.Json({"backup", "look", set});
  ASSERT_EQ(rows.size(), 2U) << rows;
  EXPECT_EQ(rows[0]["Name"], "ROSE");
  EXPECT_EQ(rows[0]["ModType"], "New");
  EXPECT_EQ(rows[0]["What"], "RED 50.000, WHITE 50.000");
  EXPECT_EQ(rows[1]["Name"], "000002");
  EXPECT_EQ(rows[1]["What"], "PINK, 20.000, 2026-03-09 09:00:00");

  EXPECT_EQ(room.Json({"backup", "take-batch", set, "2", "--preview"})["ModType"], "New");
  const std::string preview = room.Run({"backup", "take-batch", set, "2", "--preview"}).out;
  EXPECT_TRUE(preview.starts_with("Batch 000002  PINK  2026-03-09 09:00:00\nNew; nothing was taken.\n")) << preview;
  EXPECT_NE(preview.find("Basic  RED     4.000\n"), std::string::npos) << preview;
  EXPECT_EQ(room.Run({"backup", "take-batch", set, "2"}).status, 3);
  ASSERT_EQ(room.Json({"batch", "list"}).size(), 1U);
  EXPECT_EQ(room.Json({"--yes", "--now", "2026-03-10 10:00:00", "backup", "take-batch", set, "2"})["Taken"], true);
  auto back = room.Json({"batch", "show", "2"});
  for (const char* own : {"LotRefID"}) back[own] = batch[own];
  EXPECT_EQ(back, batch);
  EXPECT_EQ(stock(), before);
  EXPECT_EQ(room.Json({"file", "info"})["BatchNumber"], 3);

  EXPECT_EQ(room.Json({"backup", "take-formula", set, "rose", "--preview"})["ModType"], "New");
  EXPECT_EQ(room.Json({"--yes", "backup", "take-formula", set, "ROSE"})["Taken"], true);
  EXPECT_EQ(room.Json({"formula", "show", "ROSE"})["BasicCost"], 4.0);
  EXPECT_EQ(room.Run({"--yes", "backup", "take-formula", set, "ROSE"}).status, 1);

  // A Batch that is here stays as it is.
  room.Json({"--yes", "--now", "2026-03-10 11:00:00", "batch", "edit", "1", "--quantity", "30.1"});
  rows = room.Json({"backup", "look", set});
  ASSERT_EQ(rows.size(), 1U) << rows;
  EXPECT_EQ(rows[0]["ModType"], "Different");
  EXPECT_NE(rows[0]["What"].get<std::string>().find("Quantity 30.1 here, 20 there"), std::string::npos) << rows;
  const test::CliAnswer here = room.Run({"--yes", "backup", "take-batch", set, "1"});
  EXPECT_EQ(here.status, 1);
  EXPECT_NE(here.err.find("A Batch 000001 is here already, and stays"), std::string::npos) << here.err;
  EXPECT_EQ(room.Json({"batch", "show", "1"})["Quantity"], 30.1);

  // After a restore: every movement of stock since the set was made, as the replaced file tells it.
  const auto restored = room.Json({"--yes", "backup", "restore", set});
  const auto& since = restored["Since"];
  ASSERT_EQ(since.size(), 1U);
  ASSERT_FALSE(since[0]["Postings"].empty()) << since;
  EXPECT_EQ(since[0]["Postings"][0]["Document"], "000002") << since;
  for (const auto& posting : since[0]["Postings"]) EXPECT_LT(posting["Change"].dump().size(), 9U) << posting;
  room.Json({"--yes", "backup", "restore", restored["Kept"].get<std::string>()});
  const std::string text = room.Run({"--yes", "backup", "restore", set}).out;
  EXPECT_NE(text.find("\nINK: changed formulas"), std::string::npos) << text;
  EXPECT_NE(text.find("\nChanges of stock, INK\n"), std::string::npos) << text;
  EXPECT_EQ(text.find('{'), std::string::npos) << text;
}

}  // namespace
}  // namespace vellumark
