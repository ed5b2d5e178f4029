// A Job from the command line: taken from stock, used, given back, closed, printed, exported.

#include <gtest/gtest.h>

#include "core/datafile/writer.h"
#include "support/cli_run.h"

namespace vellumark {
namespace {

using nlohmann::ordered_json;

TEST(CliJob, FromTheFirstItemToTheCostSheet) {
  const test::CliRoom room;
  room.MakeFile();
  EXPECT_EQ(room.Run({"color", "add", "RED", "PurchaseCost=2.5", "VOC=0.5", "Inventory=100"}).status, 0);
  EXPECT_EQ(room.Run({"stock", "adjust", "RED", "20", "--lot", "L1", "--cont", "C1"}).status, 0);
  const auto json = [&](std::vector<std::string> words) {
    words.insert(words.begin(), {"--json", "--yes", "--today", "2026-03-10"});
    const auto answer = room.Run(words);
    EXPECT_EQ(answer.status, 0) << answer.err;
    return ordered_json::parse(answer.out);
  };
  EXPECT_EQ(json({"job", "create", "J-7"})["Items"], ordered_json::array());
  json({"job", "add-item", "J-7", "RED", "10", "--lot", "L1", "UD_Text0=matt"});
  const auto job = json({"job", "add-item", "J-7", "RED", "4.5"});
  EXPECT_EQ(job["TotalQtyUsed"], 14.5);
  EXPECT_EQ(job["TotalCost"], 36.25);
  EXPECT_EQ(job["Items"][0]["UD_Text0"], "matt");
  EXPECT_EQ(job["Items"][0]["BatchNo"], 1'000'001);
  EXPECT_EQ(job["Items"][1]["LotNumber"], "Unlotted Inv.");
  EXPECT_EQ(job["Date_Completed"], nullptr);
  EXPECT_EQ(json({"job", "set-used", "J-7", "1000001", "8"})["TotalQtyUsed"], 12.5);
  EXPECT_EQ(json({"job", "out"})[0]["LotContID"], "C1");
  EXPECT_EQ(room.Run({"job", "set-used", "J-7", "1000001", "20.001"}).err,
            "Exceeds Lotted: Qty Used cannot be set higher than 20.000\nLot Number L1\n");
  EXPECT_EQ(room.Run({"job", "delete-item", "J-7", "1000002"}).status, 3);
  EXPECT_EQ(json({"job", "delete-item", "J-7", "1000002"})["Items"].size(), 1U);
  EXPECT_EQ(json({"stock", "show", "RED"})[0]["Total"], 112);
  EXPECT_EQ(json({"job", "rename", "J-7", "J-8"})["JobNumber"], "J-8");
  EXPECT_EQ(json({"job", "close", "J-8", "--date", "2026-03-09"})["Date_Completed"], "2026-03-09");
  EXPECT_EQ(json({"job", "list"})[0]["TotalCost"], 20);
  EXPECT_EQ(json({"job", "reopen", "J-8"})["Date_Completed"], nullptr);
  const std::string sheet = (room.folder / "job.pdf").string();
  EXPECT_EQ(room.Run({"job", "show", "J-8", "--out", sheet}).status, 0);
  EXPECT_EQ(ReadFileBytes(sheet).substr(0, 5), "%PDF-");
  const std::string file = (room.folder / "jobs.txt").string();
  EXPECT_EQ(json({"job", "export", "--first", "J-1", "--last", "J-9", "--out", file})["Records"], 1);
  EXPECT_NE(ReadFileBytes(file).find("J-8"), std::string::npos);
  EXPECT_EQ(ReadFileBytes(file).find("Date Completed"), std::string::npos);
  json({"job", "export", "--first", "J-1", "--last", "J-9", "--all-columns", "--out", file});
  EXPECT_NE(ReadFileBytes(file).find("Date Completed"), std::string::npos);
  EXPECT_EQ(room.Run({"job", "show", "NONE"}).err, "Job Not Found: There is no Job NONE in this Data File.\n");
}

}  // namespace
}  // namespace vellumark
