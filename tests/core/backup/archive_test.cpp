#include "core/backup/archive.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "core/backup/proof.h"
#include "core/backup/restore.h"
#include "core/base/files.h"
#include "core/datafile/database_changes.h"
#include "core/datafile/job_links.h"
#include "core/datafile/lifecycle.h"
#include "core/jobs/design_uses.h"
#include "core/session/users.h"
#include "support/ink_room.h"
#include "support/old_room.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;

// Batches of a Database with a line taken from stock and a weighing each, and Job Records.
struct Archives : testing::Test, test::InkRoom {
  Archives() {
    clock.Set({2026, 3, 10, 9, 0, 0});
    Basic("RED");
    for (const char* design : {"LABEL", "BOX"}) AddRow(schema::Designs, {{"DesignID", design}});
  }
  void Batch(int number, const Value& entered, const std::string& job = {}, const std::string& database = "INK") {
    const test::Arranging arranging;
    const auto add = [&](const Table& table, const std::vector<Cell>& cells) {
      InsertRow(session.File(), table, TableName(database, table), cells);
    };
    add(schema::Batch, test::PinkBatch(number, entered, job));
    add(schema::BatchLotInv, {{"BatchNo", number}, {"DateEntered", entered}, {"IngName", "RED"}, {"IngType", 1}, {"LotQty", 10}});
    add(schema::BatchScaleResults, {{"BatchID", number}, {"ColorName", "RED"}, {"IngType", 1}});
    MoveCounter({{"BatchNo", number}});
  }
  void Job(const std::string& number, int batch, const Value& entered, const std::string& design = {},
           const std::string& database = "INK") {
    AddRow(schema::JobRecords, {{"JobNumber", number},
                                {"Color_Name", "PINK"},
                                {"Database", database},
                                {"BatchNo", batch},
                                {"ItemType", 2},
                                {"QtyUsed", 1},
                                {"Date_Entered", entered},
                                {"DesignID", design}});
    FollowLastUsed(session);
  }
  static Value Day(int year, int month, int day, int hour = 9) { return DateTime{year, month, day, hour, 30, 0}; }
  std::string Numbers(Database& file, const std::string& table, const std::string& column = "BatchNo") {
    std::string numbers;
    Statement rows = file.Prepare("SELECT " + column + " FROM " + Quoted(table) + " ORDER BY " + column);
    while (rows.Step()) numbers += (numbers.empty() ? "" : " ") + rows.Text(0);
    return numbers;
  }
  std::vector<TableProof> Content(Database& file) {
    std::vector<TableProof> content;
    for (const std::string& table : file.TableNames())
      if (!table.starts_with("MSys") || table == "MSysStockHistory") content.push_back(ProveRows(file, table));
    return content;
  }
  std::unique_ptr<Database> OpenArchive() { return Database::Open(preview.archive, OpenMode::ReadOnly); }
  void Archive() {
    preview = PreviewArchive(session);
    MoveToArchive(session, preview);
  }
  void ExpectSound(const fs::path& archive) {
    const ContentProof proof = ProveContent(session, archive);
    EXPECT_EQ(proof.faults, std::vector<std::string>());
  }

  ArchivePreview preview;
};

TEST_F(Archives, TheCutoffIsTheSameDayFiveYearsBefore) {
  const std::pair<DateTime, std::string> cases[] = {
      {{2026, 3, 10, 17, 0, 0}, "2021-03-10"}, {{2028, 2, 29}, "2023-02-28"},  {{2025, 2, 28}, "2020-02-28"},
      {{2029, 3, 1}, "2024-03-01"},            {{2026, 12, 31}, "2021-12-31"}, {{2026, 1, 1}, "2021-01-01"}};
  for (const auto& [today, cutoff] : cases) EXPECT_EQ(ArchiveCutoff(today).ToText(), cutoff + " 00:00:00");
}

TEST_F(Archives, TheOfferComesForABatchOfMoreThanFiveCalendarYears) {
  EXPECT_FALSE(DueArchive(session)) << "no Batch at all";
  Batch(1, Value());
  EXPECT_FALSE(DueArchive(session)) << "none with a date";
  struct Case {
    DateTime today;
    DateTime oldest;
    bool due;
  };
  const Case cases[] = {{{2026, 3, 10}, {2021, 1, 1, 23, 59, 59}, true}, {{2026, 3, 10}, {2021, 1, 2}, false},
                        {{2026, 1, 1}, {2021, 1, 1}, true},              {{2026, 12, 31}, {2021, 1, 2}, false},
                        {{2029, 6, 1}, {2024, 1, 1}, true},              {{2029, 6, 1}, {2024, 1, 2}, false},
                        {{2028, 2, 29}, {2022, 12, 31}, true}};
  CreateEmptyDatabase(session.File(), "WEB");
  session.databaseList = {"INK", "WEB"};
  Batch(2, Day(2025, 1, 1));
  for (const auto& [today, oldest, due] : cases) {
    SCOPED_TRACE(today.ToText() + " " + oldest.ToText());
    clock.Set(today);
    session.File().Execute("DELETE FROM WEB_Batch");
    session.File().Execute("DELETE FROM WEB_Batch_LotInv");
    session.File().Execute("DELETE FROM WEB_BatchScaleResults");
    Batch(3, oldest, "", "WEB");
    const auto offered = DueArchive(session);
    ASSERT_EQ(offered.has_value(), due);
    if (!due) continue;
    EXPECT_EQ(*offered, oldest.Midnight()) << "of whichever Database";
    EXPECT_GT(PreviewArchive(session).Records(), 0) << "what is offered has something to move";
  }
  session.ArchiveView = true;
  EXPECT_FALSE(DueArchive(session));
  session.ArchiveView = false;
}

TEST_F(Archives, TheTwoFilesTogetherHoldWhatTheOneHeld) {
  CreateEmptyDatabase(session.File(), "WEB");
  session.databaseList = {"INK", "WEB"};
  Batch(1, Day(2016, 2, 29), "OLD");
  Batch(2, Day(2021, 3, 10, 23), "- SPLIT -");  // on the day itself
  Batch(3, Day(2021, 3, 11, 0));
  Batch(4, Value());
  Batch(5, Day(2021, 4, 1), "BACKDATED");
  Batch(6, Day(2019, 5, 5), "", "WEB");
  Job("OLD", 1, Day(2016, 3, 1), "LABEL");
  Job("SPLIT", 2, Day(2021, 3, 10, 22), "BOX");
  Job("SPLIT", 2, Day(2025, 1, 1), "BOX");  // the same job goes on with the old Batch
  Job("BACKDATED", 5, Day(2021, 1, 1));
  Job("STOCK", kLastJobBatch + 7, Value());
  session.File().Execute("UPDATE FileInfo SET ItemNumber = 8");
  const auto before = Content(session.File());
  const std::string counters = session.File().Scalar("SELECT BatchNumber FROM FileInfo").Text();

  preview = PreviewArchive(session);
  EXPECT_EQ(preview.archive.filename(), "Test Data Archive 2026.vkd");
  std::string counts;
  for (const MovingCount& count : preview.counts)
    counts += fmt::format("{} {}: {} {} {} {}; ", count.database, count.year, count.batches, count.lotLines,
                          count.weighings, count.jobs);
  EXPECT_EQ(counts, "INK 2016: 1 1 1 1; INK 2021: 1 1 1 2; WEB 2019: 1 1 1 0; ");
  EXPECT_EQ(Content(session.File()), before) << "a preview changes nothing";

  MoveToArchive(session, preview);
  EXPECT_EQ(Numbers(session.File(), "INK_Batch"), "3 4 5");
  EXPECT_EQ(Numbers(session.File(), "INK_Batch_LotInv"), "3 4 5");
  EXPECT_EQ(Numbers(session.File(), "INK_BatchScaleResults", "BatchID"), "3 4 5");
  EXPECT_EQ(Numbers(session.File(), "WEB_Batch"), "");
  EXPECT_EQ(Numbers(session.File(), "JobRecords"), "2 1000007");
  EXPECT_EQ(session.File().Scalar("SELECT BatchNumber FROM FileInfo").Text(), counters);
  ExpectSound(preview.archive);

  const auto archive = OpenArchive();
  EXPECT_EQ(Numbers(*archive, "INK_Batch"), "1 2");
  EXPECT_EQ(Numbers(*archive, "JobRecords"), "1 2 5");
  const auto live = Content(session.File());
  const auto moved = Content(*archive);
  ASSERT_EQ(live.size(), before.size());
  ASSERT_EQ(moved.size(), before.size());
  for (std::size_t i = 0; i < before.size(); ++i) {
    const bool divided = before[i].Rows != live[i].Rows;
    EXPECT_EQ(live[i].Rows + (divided ? moved[i].Rows : 0), before[i].Rows) << before[i].Table;
    EXPECT_EQ(live[i].digest + (divided ? moved[i].digest : 0), before[i].digest) << before[i].Table;
    if (!divided) {
      EXPECT_EQ(moved[i], before[i]);
    }
  }
}

TEST_F(Archives, EachFileKnowsWhatStandsInTheOther) {
  Batch(1, Day(2016, 2, 29), "LATE");
  Batch(2, Day(2021, 4, 1), "BACKDATED");
  Job("LATE", 1, Day(2025, 1, 1));
  Job("BACKDATED", 2, Day(2021, 1, 1), "LABEL");
  Archive();
  EXPECT_EQ(FileOfMovedBatch(session.File(), "INK", 1), "Test Data Archive 2026.vkd");
  EXPECT_EQ(FileOfMovedBatch(session.File(), "INK", 2), "");
  EXPECT_EQ(FileOfMovedBatch(*OpenArchive(), "INK", 2), "Test Data.vkd");
  ExpectSound(preview.archive);

  // The use that moved still counts, under whatever name, and so do the Batches when their Database is renamed.
  Job("NEW", kLastJobBatch + 1, Day(2020, 1, 1), "LABEL");
  EXPECT_EQ(session.File().Scalar("SELECT LastUsed FROM Designs WHERE DesignID = 'LABEL'").Text(), "2021-01-01 09:30:00");
  session.File().Execute("DELETE FROM JobRecords WHERE JobNumber = 'NEW'");
  {
    const test::Arranging arranging;
    session.File().Execute("UPDATE Designs SET DesignID = 'TAG' WHERE DesignID = 'LABEL'");
    RenameJobDesign(session, "LABEL", "TAG");
    FollowLastUsed(session);
  }
  EXPECT_EQ(session.File().Scalar("SELECT LastUsed FROM Designs WHERE DesignID = 'TAG'").Text(), "2021-01-01 09:30:00");
  RenameDatabaseTables(session.File(), "INK", "FLEXO");
  EXPECT_EQ(FileOfMovedBatch(session.File(), "FLEXO", 1), "Test Data Archive 2026.vkd");
  session.databaseList = {"FLEXO"};
  session.CurrentDatabase = "FLEXO";
}

// It takes the place of the file that its own notes name, which then stands among what was replaced, or nowhere.
TEST_F(Archives, ARestoredArchiveTellsWhereTheOtherBatchesStand) {
  Batch(1, Day(2016, 2, 29));
  Batch(2, Day(2025, 1, 1));
  Archive();
  for (const char* where : {"Before Restore 03_10_2026__09_00_00/Test Data.vkd", ""}) {
    session.DataFileDB.reset();
    if (*where == '\0') fs::remove(session.DataFileName);
    PutDataFileBack(session, preview.archive, folder / "None", session.DataFileName);
    session.DataFileDB = Database::Open(session.DataFileName, OpenMode::Exclusive);
    EXPECT_EQ(FileOfMovedBatch(session.File(), "INK", 2), where);
  }
}

TEST_F(Archives, ASecondArchiveTakesTheNextFreeName) {
  Batch(1, Day(2016, 2, 29));
  Batch(2, Day(2021, 3, 11));
  Archive();
  const std::string first = ReadFileBytes(preview.archive);
  clock.Set({2026, 3, 11, 9, 0, 0});
  Archive();
  EXPECT_EQ(preview.archive.filename(), "Test Data Archive 2026(1).vkd");
  EXPECT_EQ(Numbers(*OpenArchive(), "INK_Batch"), "2");
  EXPECT_EQ(ReadFileBytes(ArchivePath(session.DataFileName, 2027).parent_path() / "Test Data Archive 2026.vkd"), first);
  EXPECT_EQ(FileOfMovedBatch(session.File(), "INK", 1), "Test Data Archive 2026.vkd");
  EXPECT_EQ(FileOfMovedBatch(session.File(), "INK", 2), "Test Data Archive 2026(1).vkd");
  ExpectSound(preview.archive);
  EXPECT_EQ(ArchivePath("/a/b.vkd", 2027), "/a/b Archive 2027.vkd");
}

TEST_F(Archives, AFaultOfTheDataLeavesNoRowInNoFile) {
  // A number that stands twice: the lines of both stay with the later one, as nobody knows whose they are.
  Breaks("UniqueNames");
  Breaks("ScaleResults");
  Batch(1, Day(2016, 2, 29));
  Batch(1, Day(2025, 2, 28));
  Archive();
  EXPECT_EQ(Numbers(*OpenArchive(), "INK_Batch"), "1");
  EXPECT_EQ(Numbers(*OpenArchive(), "INK_Batch_LotInv"), "");
  EXPECT_EQ(Numbers(session.File(), "INK_Batch_LotInv"), "1 1");
}

TEST_F(Archives, WhatADeadProcessLeftGoesAndNothingElse) {
  Batch(1, Day(2016, 2, 29));
  preview = PreviewArchive(session);
  const auto mark = [&](const FileProof& proof) {
    const test::Arranging arranging;
    session.File().Execute("CREATE TABLE MSysUnfinishedArchive (RowKey INTEGER PRIMARY KEY, Archive TEXT, Bytes TEXT, Digest TEXT)");
    session.File()
        .Prepare("INSERT INTO MSysUnfinishedArchive (Archive, Bytes, Digest) VALUES (?, ?, ?)")
        .Bind(1, preview.archive.filename().string())
        .Bind(2, std::to_string(proof.bytes))
        .Bind(3, std::to_string(proof.digest))
        .Run();
  };
  ReplaceFile(preview.archive, "an archive");
  mark(ProveFile(preview.archive, ""));
  EXPECT_EQ(UnfinishedArchive(session.File()), "Test Data Archive 2026.vkd");
  UndoUnfinishedArchive(session.File());
  EXPECT_FALSE(fs::exists(preview.archive));
  EXPECT_EQ(UnfinishedArchive(session.File()), "");

  ReplaceFile(preview.archive, "an archive");
  mark(ProveFile(preview.archive, ""));
  ReplaceFile(preview.archive, "another file of that name");
  UndoUnfinishedArchive(session.File());
  EXPECT_TRUE(fs::exists(preview.archive));
  fs::remove(preview.archive);
}

}  // namespace
}  // namespace vellumark
