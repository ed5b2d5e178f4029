// Archives of a ten-year room by the real program.

#include <gtest/gtest.h>

#include "core/base/files.h"
#include "support/cli_run.h"
#include "support/old_room.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;

TEST(CliArchive, ATenYearRoomIsDividedAndEachPartCanBeRead) {
  const test::CliRoom room;
  const std::string path = room.MakeFile();
  room.Json({"color", "add", "RED"});
  room.Json({"db", "create", "UV"});
  test::AddTenYears(*Database::Open(path, OpenMode::Exclusive), 2025, 200);
  const auto on = [](std::vector<std::string> words) {
    words.insert(words.begin(), {"--today", "2026-03-10", "--db", "INK"});
    return words;
  };
  const auto count = [&](const std::string& file, const std::string& noun) {
    std::size_t rows = 0;
    for (const char* database : {"INK", "UV"}) rows += room.Json({"--file", file, "--db", database, noun, "list"}).size();
    return rows;
  };
  const std::size_t batches = count(path, "batch");
  ASSERT_EQ(batches, 2000U);

  const auto preview = room.Json(on({"archive", "preview"}));
  EXPECT_EQ(preview["Cutoff"], "2021-03-10");
  EXPECT_EQ(preview["OldestBatch"], "2016-01-02");
  EXPECT_TRUE(preview["Offered"]);
  ASSERT_EQ(preview["Databases"].size(), 2U);
  EXPECT_EQ(preview["Databases"][0]["Years"][0],
            nlohmann::ordered_json::parse(R"({"Year":2016,"Batches":100,"LotLines":100,"Weighings":100,"JobRecords":33})"));
  EXPECT_EQ(preview["Databases"][1]["Years"].back()["Year"], 2021);
  std::size_t moving = 0;
  for (const auto& database : preview["Databases"])
    for (const auto& year : database["Years"]) moving += year["Batches"].get<std::size_t>();
  EXPECT_EQ(count(path, "batch"), batches);

  const auto size = fs::file_size(path);
  const auto run = room.Json(on({"archive", "run"}));
  const std::string archive = run["Archive"];
  EXPECT_EQ(fs::path(archive).filename(), "Ink Archive 2026.vkd");
  EXPECT_EQ(run["Records"], preview["Records"]);
  EXPECT_EQ(count(archive, "batch"), moving);
  EXPECT_EQ(count(path, "batch"), batches - moving);
  EXPECT_LT(fs::file_size(path), size * 3 / 4);
  EXPECT_LT(fs::file_size(archive), size * 3 / 4);
  for (const std::string& file : {path, archive}) EXPECT_EQ(room.Run({"file", "check", file, "--deep"}).status, 0) << file;

  // There is nothing left to move, and whoever looks for what moved is told where it is.
  const test::CliAnswer again = room.Run(on({"archive", "run"}));
  EXPECT_EQ(again.status, 1);
  EXPECT_EQ(again.err, "Archive Data File: There are no Batch & Job Records dated 2021-03-10 or before.\n");
  EXPECT_FALSE(room.Json(on({"archive", "preview"}))["Offered"]);
  const test::CliAnswer gone = room.Run(on({"batch", "show", "2"}));
  EXPECT_NE(gone.err.find("There is no Batch 000002 in the INK database.\nIt stands in Ink Archive 2026.vkd."),
            std::string::npos)
      << gone.err;
  EXPECT_EQ(room.Json({"--file", archive, "--db", "INK", "batch", "show", "2"})["BatchNo"], 2);

  // In the archive the day of its last Batch stands for today.
  const auto report = room.Json(on({"--file", archive, "report", "run", "AllBatchesThisDB_Col", "--range", "Last 30 Days"}));
  EXPECT_GT(report["Count"], 5) << report.dump();

  // A month later, another one beside it.
  const auto second = room.Json({"--today", "2026-04-10", "archive", "run"});
  EXPECT_EQ(fs::path(second["Archive"].get<std::string>()).filename(), "Ink Archive 2026(1).vkd");
  EXPECT_EQ(count(second["Archive"], "batch") + count(archive, "batch") + count(path, "batch"), batches);
}

TEST(CliArchive, NothingMovesWhileItMayNot) {
  const test::CliRoom room;
  const std::string path = room.MakeFile();
  room.Json({"color", "add", "RED"});
  test::AddTenYears(*Database::Open(path, OpenMode::Exclusive), 2025, 20);
  ReplaceFile(room.folder / "secret", "SECRET\n");
  ASSERT_EQ(room.RunWithInput({"users", "enable", "BOSS"}, room.folder / "secret").status, 0);
  const std::string bytes = ReadFileBytes(path);
  EXPECT_EQ(room.Run({"archive", "run"}).status, 1) << "without a login";
  EXPECT_EQ(ReadFileBytes(path), bytes);
  // An archive is archived no further.
  const test::CliAnswer run = room.Run({"--today", "2026-03-10", "--user", "BOSS", "--password", "SECRET", "archive", "run"});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_NE(run.err.find("Finished Archiving: "), std::string::npos) << run.err;
  EXPECT_NE(run.err.find(" have been removed from the Data File and saved in " + (room.folder / "Ink Archive 2026.vkd").string()),
            std::string::npos)
      << run.err;
  const test::CliAnswer nested = room.Run({"--file", (room.folder / "Ink Archive 2026.vkd").string(), "--user", "BOSS",
                                           "--password", "SECRET", "archive", "run"});
  EXPECT_EQ(nested.err.find("Archive or Backup Data File: You are viewing data"), 0U) << nested.err;
}

}  // namespace
}  // namespace vellumark
