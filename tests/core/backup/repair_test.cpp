#include "core/backup/repair.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <set>

#include "core/base/files.h"
#include "core/session/users.h"
#include "support/damage.h"
#include "support/data_files.h"
#include "support/hand_edit.h"
#include "support/snapshot.h"
#include "support/template_room.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;

// A room whose file can be repaired again and again.
struct Repaired : test::FullRoom {
  Repaired() {
    fs::create_directories(folder / "DesignPhotos");
    RepairNow();  // its rows were put in by hand, without some of their values
  }

  RepairReport RepairNow() {
    auto report = MendDataFile(session, [] { return Result<void>{}; });
    session.DataFileDB = Database::Open(session.DataFileName, OpenMode::Exclusive);
    if (!report) throw std::runtime_error(report.error().text);
    return *std::move(report);
  }
  static std::string Text(const RepairReport& report) { return RepairText(report); }
  static bool Tells(const RepairReport& report, std::string_view step) {
    return std::ranges::any_of(report.changes, [&](const StepLine& line) { return line.Step == step; });
  }
};

struct Fault {
  const char* step;
  const char* sql;
  const char* query;
  const char* expected;
};

const Fault kFaults[] = {
    {"Databases", "UPDATE FileInfo SET DBList = ''", "SELECT DBList FROM FileInfo", "INK|"},
    {"Databases", "UPDATE FileInfo SET DBList = 'IMK|', CurrentDB = 'IMK'", "SELECT DBList || CurrentDB FROM FileInfo",
     "INK|INK"},
    {"Databases", "UPDATE FileInfo SET DBList = 'INK||ink|'", "SELECT DBList FROM FileInfo", "INK|"},
    {"Databases", "DELETE FROM FileInfo",
     "SELECT FileVersion || '/' || DBList || BatchNumber || ItemNumber FROM FileInfo", "40/INK|81"},
    {"Databases", "DROP TABLE FileInfo", "SELECT FileVersion || DBList FROM FileInfo", "40INK|"},
    {"Databases", "INSERT INTO FileInfo (FileVersion) VALUES (40)", "SELECT COUNT(*) FROM FileInfo", "1"},
    {"Databases", "UPDATE FileInfo SET FileVersion = 44", "SELECT FileVersion FROM FileInfo", "40"},
    {"Stray Tables", "CREATE TABLE OLD_Mix (x)", "SELECT COUNT(*) FROM sqlite_master WHERE name = 'OLD_Mix'", "0"},
    {"Stray Tables", "CREATE TABLE OLD_Basic (x); CREATE TABLE MSysOwn (x); INSERT INTO MSysOwn VALUES (3)",
     "SELECT GROUP_CONCAT(name) FROM sqlite_master WHERE name IN ('OLD_Basic', 'MSysOwn', 'INK_BatchScaleResults', "
     "'MSysStockHistory') AND type = 'table' ORDER BY name",
     "MSysStockHistory,INK_BatchScaleResults,MSysOwn"},
    {"Tables", "DROP TABLE INK_Mix_LAB", "SELECT COUNT(*) FROM INK_Mix_LAB", "0"},
    {"Tables", "ALTER TABLE INK_Batch DROP COLUMN ShortNote", "SELECT ShortNote FROM INK_Batch", ""},
    {"Tables", "DELETE FROM INK_Info", "SELECT FullName FROM INK_Info", "Custom Database"},
    {"Tables", "INSERT INTO INK_Info (FullName) VALUES ('Second')", "SELECT FullName FROM INK_Info", "Custom Database"},
    {"Values",
     "UPDATE INK_Basic SET Reorder = 9e999, Red = 256, Notes = x'41ff42', Additive = 'x' WHERE Color_Name = 'RED'",
     "SELECT Reorder || '/' || Red || Notes || Additive FROM INK_Basic WHERE Color_Name = 'RED'", "0.0/0A?B0"},
    {"Values", "UPDATE INK_Mix SET Color_Code = '1234567890123456789012345678901', LastProduced = '2026-02-30'",
     "SELECT Color_Code || COALESCE(LastProduced, 'never') FROM INK_Mix", "123456789012345678901234567890never"},
    {"Names",
     "UPDATE INK_Basic SET Color_Name = 'RED ' WHERE Color_Name = 'RED'; UPDATE INK_Basic_LotInv SET LotCName = 'RED '; "
     "UPDATE MSysStockHistory SET Color_Name = Color_Name || ' '; UPDATE INK_Mix SET Color_Name = 'PINK ', BC0 = 'RED ', "
     "Color_Set = '<RED ><WAX>', AddSetName = 'SLOW '; UPDATE INK_Additives SET SetName = 'SLOW '",
     "SELECT Color_Name || Color_Set || AddSetName || BC0 || (SELECT LotCName || LotQty FROM INK_Basic_LotInv) || "
     "(SELECT COUNT(*) FROM MSysStockHistory WHERE Color_Name = 'RED') FROM INK_Mix",
     "PINK<RED><WAX>SLOWREDRED7.251"},
    {"Names", "INSERT INTO INK_Basic (Color_Name, Color_Code) VALUES (' RED', 'R2')",
     "SELECT Color_Name FROM INK_Basic WHERE Color_Code = 'R2'", "DupColor 03-10-26 DC1"},
    {"Formulas", "UPDATE INK_Mix SET Color_Set = '<X>', BasicCost = 77",
     "SELECT Color_Set || ROUND(BasicCost, 3) FROM INK_Mix", "<RED><WAX>3.8"},
    {"Formulas",
     "UPDATE INK_Mix SET BC0 = 'RED', BQ0 = 90, BC1 = '', BQ1 = 0, BC4 = 'WAX', BQ4 = 5, BC6 = 'red', BQ6 = 5",
     "SELECT Color_Set || BQ0 || BC1 || BQ1 || BC4 || BQ6 FROM INK_Mix", "<RED><WAX>95.0WAX5.00.0"},
    {"Additive Sets", "UPDATE INK_Additives SET SetList = '<RED>'", "SELECT SetList FROM INK_Additives", "<WAX>"},
    {"Null Values",
     "UPDATE INK_Basic SET Color_Code = NULL, VOC = NULL, Date_Entered = NULL, LastConsumed = NULL WHERE Color_Name = "
     "'WAX'",
     "SELECT Color_Code || VOC || Date_Entered || COALESCE(LastConsumed, 'never') FROM INK_Basic WHERE Color_Name = "
     "'WAX'",
     "0.02026-03-10 00:00:00never"},
    {"Null Values", "INSERT INTO INK_Basic (Color_Code) VALUES ('X'), ('Y')",
     "SELECT GROUP_CONCAT(Color_Name) FROM (SELECT Color_Name FROM INK_Basic WHERE Color_Code IN ('X', 'Y') ORDER BY "
     "RowKey)",
     "03-10-2026-12-00-00-RepairName,03-10-2026-12-00-01-RepairName"},
    {"Null Values", "UPDATE INK_Batch SET Quantity = NULL, Date_Entered = NULL",
     "SELECT Quantity || COALESCE(Date_Entered, 'unknown') FROM INK_Batch", "0.0unknown"},
    {"Null Values - Designs", "UPDATE Designs SET DesignID = NULL, Notes = NULL, Created = NULL",
     "SELECT DesignID || Notes || Created FROM Designs", "03-10-2026-12-00-00-RepairName2026-03-10 00:00:00"},
    {"Null Values - Jobs",
     "UPDATE JobRecords SET Color_Code = NULL, UnitCost = NULL, Database = NULL, Date_Completed = NULL",
     "SELECT Color_Code || UnitCost || Database || COALESCE(Date_Completed, 'open') FROM JobRecords", "0.0INKopen"},
    {"Null Values - Jobs", "UPDATE JobRecords SET JobNumber = ''", "SELECT JobNumber FROM JobRecords", "J1"},
    {"Null Values - Jobs", "UPDATE JobRecords SET JobNumber = NULL; UPDATE INK_Batch SET JobNumber = ''",
     "SELECT j.JobNumber || b.JobNumber FROM JobRecords j, INK_Batch b",
     "03-10-2026-12-00-00-RepairName03-10-2026-12-00-00-RepairName"},
    {"Null Values - Jobs",
     "UPDATE JobRecords SET JobNumber = ''; INSERT INTO JobRecords (Database, BatchNo, ItemType) VALUES ('INK', 7, 2)",
     "SELECT GROUP_CONCAT(j.JobNumber) || b.JobNumber FROM JobRecords j, INK_Batch b",
     "03-10-2026-12-00-00-RepairName,03-10-2026-12-00-01-RepairName- SPLIT -"},
    {"Ingredients", "UPDATE INK_Mix SET BC1 = 'WAY', Color_Set = '<RED><WAY>'",
     "SELECT PurchaseCost || IngSort FROM INK_Basic WHERE Color_Name = 'WAY'", "0.02"},
    {"Duplicate Basics",
     "INSERT INTO INK_Basic (Color_Name, Color_Code, PurchaseCost, Inventory) VALUES ('red', 'R2', 9, 5)",
     "SELECT GROUP_CONCAT(Color_Name || Color_Code || PurchaseCost || Inventory) FROM (SELECT * FROM INK_Basic WHERE "
     "Color_Code = 'R2' ORDER BY RowKey)",
     "REDR24.012.5,DupColor 03-10-26 DC1R29.05.0"},
    {"Duplicate Formulas", "INSERT INTO INK_Mix (Color_Name) VALUES ('PINK'), ('pink')",
     "SELECT GROUP_CONCAT(Color_Name) FROM (SELECT Color_Name FROM INK_Mix ORDER BY RowKey)",
     "PINK,DupColor 03-10-26 DC1,DupColor 03-10-26 DC2"},
    {"Additive Names", "UPDATE INK_Basic SET Additive = 0", "SELECT Additive FROM INK_Basic WHERE Color_Name = 'WAX'",
     "1"},
    {"Additive Names",
     "INSERT INTO INK_Additives (SetName, SetList, Add_Name0, Add_Percent0) VALUES ('Slow', '<FAST>', 'FAST', 2)",
     "SELECT MAX(SetName) || (SELECT Additive FROM INK_Basic WHERE Color_Name = 'FAST') || (SELECT MIN(SetName) FROM "
     "INK_Additives) FROM INK_Additives",
     "SLOW1DupSet 03-10-26 DC1"},
    {"Inventory", "UPDATE INK_Basic SET Inventory = NULL",
     "SELECT GROUP_CONCAT(Inventory) FROM (SELECT Inventory FROM INK_Basic ORDER BY RowKey)", "12.5,0.0"},
    {"Ingredient Order", "UPDATE INK_Basic SET IngSort = 7",
     "SELECT GROUP_CONCAT(IngSort) FROM (SELECT IngSort FROM INK_Basic ORDER BY RowKey)", "0,1"},
    {"Lots", "UPDATE INK_Basic_LotInv SET LotQty = NULL, LotLoc = NULL, LotDate = NULL",
     "SELECT LotQty || LotLoc || COALESCE(LotDate, 'unknown') FROM INK_Basic_LotInv", "7.25unknown"},
    {"Lots", "UPDATE INK_Basic_LotInv SET LotNumber = NULL", "SELECT LotNumber FROM INK_Basic_LotInv",
     "03-10-2026-12-00-00-RepairName"},
    {"Lots",
     "INSERT INTO INK_Basic_LotInv (LotRefID, LotCName, LotNumber, LotQty) VALUES (1, 'RED', 'L2', 0.01), (NULL, "
     "'RED', 'L3', -1)",
     "SELECT GROUP_CONCAT(LotNumber || LotRefID || '=' || ROUND(LotQty, 2)) FROM (SELECT * FROM INK_Basic_LotInv ORDER "
     "BY "
     "RowKey)",
     "L11=7.25,L22=0.01"},
    // What was taken from the second of two lots of a reference goes with it.
    {"Lots",
     "INSERT INTO INK_Basic_LotInv (LotRefID, LotCName, LotNumber, LotQty) VALUES (1, 'RED', 'L2', 3); UPDATE INK_Batch_LotInv "
     "SET LotNumber = 'l2'; INSERT INTO JobRecords (JobNumber, Database, BatchNo, ItemType, Color_Name, LotRefID, LotNumber) "
     "VALUES ('J2', 'INK', 1000001, 1, 'RED', 1, 'L1'), ('J2', 'INK', 1000002, 1, 'RED', 1, 'L2')",
     "SELECT t.LotRefID || (SELECT GROUP_CONCAT(LotNumber || LotRefID) FROM JobRecords WHERE JobNumber = 'J2') FROM "
     "INK_Batch_LotInv t",
     "2L11,L22"},
    {"Lots",
     "INSERT INTO INK_Mix_LotInv (LotRefID, LotCName, LotNumber, LotQty) VALUES (9, 'PINK', 'M1', 3), (9, 'PINK', 'M1', 4); "
     "UPDATE JobRecords SET Color_Name = 'PINK', LotRefID = 9, LotNumber = 'M1'",
     "SELECT LotRefID FROM JobRecords", "9"},
    {"Lots",
     "INSERT INTO INK_Mix_LotInv (LotRefID, LotCName, LotNumber, LotQty) VALUES (1, 'PINK', 'M1', 3), (1, 'PINK', 'M2', 4); "
     "UPDATE INK_Batch SET LotRefID = 1, LotNumber = 'M2'; UPDATE JobRecords SET Color_Name = 'PINK', LotRefID = 1, LotNumber = "
     "'M2'",
     "SELECT b.LotRefID || '/' || j.LotRefID FROM INK_Batch b, JobRecords j", "2/2"},
    {"L-a-b-D", "UPDATE INK_Basic_LAB SET Lab_b = NULL, Lab_Note = NULL",
     "SELECT Lab_L || Lab_b || Lab_Note FROM INK_Basic_LAB", "50.00.0"},
    {"Colors of Lots",
     "INSERT INTO INK_Basic_LotInv (LotRefID, LotCName, LotNumber, LotQty) VALUES (1, 'WHITE', 'L', 4)",
     "SELECT COUNT(*) FROM INK_Basic WHERE Color_Name = 'WHITE'", "1"},
    {"Additives of Formulas", "UPDATE INK_Mix SET AddSetName = 'GONE'", "SELECT AddSetName FROM INK_Mix", ""},
    {"Designs", "UPDATE Designs SET LastUsed = '2026-01-01 00:00:00'",
     "SELECT COALESCE(LastUsed, 'never') FROM Designs", "never"},
    {"Designs", "INSERT INTO Designs (DesignID, Notes) VALUES ('d', 'second')",
     "SELECT DesignID FROM Designs WHERE Notes = 'second'", "Rebuilt Name 01"},
    {"Ingredients of Designs",
     "UPDATE Designs SET IngName2 = IngName0, IngDB2 = IngDB0, IngName0 = '', IngDB0 = '', IngSet = ''",
     "SELECT IngSet || IngName0 || IngDB0 || IngName2 FROM Designs", "<RED>REDINK"},
    {"Photos", "UPDATE Designs SET PhotoSet = '<a.jpg><A.JPG><gone.jpg'", "SELECT PhotoSet FROM Designs", ""},
    {"Dispensers", "INSERT INTO Dispenser (Name) VALUES (NULL), ('D'), ('d')",
     "SELECT GROUP_CONCAT(Name) FROM (SELECT Name FROM Dispenser ORDER BY RowKey)", "D,d 2"},
    {"Batches", "UPDATE INK_Batch SET IngName3 = IngName0, IngType3 = 7, IngQty3 = 1, IngName0 = '', JobNumber = 'J9'",
     "SELECT IngName0 || IngType0 || IngQty0 || IngName3 || JobNumber FROM INK_Batch", "RED11.0J1"},
    {"Numbers", "UPDATE FileInfo SET BatchNumber = 7, ItemNumber = 0",
     "SELECT BatchNumber || '/' || ItemNumber FROM FileInfo", "8/1"},
    {"Numbers", "INSERT INTO INK_Batch (Color_Name, BatchNo) VALUES ('PINK', 7), ('PINK', NULL)",
     "SELECT GROUP_CONCAT(BatchNo) || (SELECT BatchNumber FROM FileInfo) FROM (SELECT BatchNo FROM INK_Batch ORDER BY "
     "RowKey)",
     "7,8,910"},
    {"Stock History", "UPDATE INK_Basic SET Inventory = 12 WHERE Color_Name = 'RED'",
     "SELECT Inventory FROM INK_Basic WHERE Color_Name = 'RED'", "12"},
    {"Stock History", "DELETE FROM INK_Basic_LotInv", "SELECT LotNumber || LotQty FROM INK_Basic_LotInv", "L17.25"},
    // The number that the lot has in this Database, which had another name once; other Databases have lots of their own.
    {"Stock History",
     "DELETE FROM INK_Basic_LotInv; UPDATE MSysStockHistory SET Database = 'OLD'; INSERT INTO MSysStockHistory (Moment, Source, "
     "Kind, Database, Color_Name, LotRefID, LotNumber, Change, Reason) VALUES ('2026-03-10 12:00:00', 32, 0, 'OLD', '', 0, '', 0, "
     "'INK'), ('2026-03-10 12:00:00', 33, 0, 'INK', '', 0, '', 0, 'OLD'), ('2026-03-10 12:00:00', 7, 1, 'WEB', 'RED', 1, 'W9', 2, "
     "'')",
     "SELECT LotNumber || LotQty FROM INK_Basic_LotInv", "L17.25"},
    {"Stock History", "DROP TABLE MSysStockHistory", "SELECT SUM(Change) FROM MSysStockHistory", "22.75"},
};

TEST(Repair, EachStepMendsItsFault) {
  std::set<std::string_view> mended;
  for (const Fault& fault : kFaults) {
    SCOPED_TRACE(fault.sql);
    Repaired room;
    room.session.File().Execute(fault.sql);
    const RepairReport report = room.RepairNow();
    EXPECT_TRUE(Repaired::Tells(report, fault.step)) << Repaired::Text(report);
    EXPECT_TRUE(report.lost.empty());
    EXPECT_EQ(room.Scalar(fault.query).Text(), fault.expected) << Repaired::Text(report);
    mended.insert(fault.step);
    // What is mended stays so.
    const std::string before = test::Snapshot(room.session.File());
    const RepairReport again = room.RepairNow();
    EXPECT_TRUE(again.changes.empty()) << Repaired::Text(again);
    EXPECT_EQ(test::Snapshot(room.session.File()), before);
  }
  // Those that have a test of their own, and those that only look.
  for (const char* step : {"Formulas Again", "Users", "PANTONE Books", "Check", "Empty Databases"}) mended.insert(step);
  for (const RepairStep& step : RepairSteps()) EXPECT_TRUE(mended.contains(step.name)) << step.name;
}

// Where the record is lost the Batch alone still tells of which Job it is.
TEST(Repair, ABatchWhoseJobRecordIsLostKeepsItsJob) {
  for (const auto& [named, told, kept] : {std::array{"J1", "the Batch 000007 is of the Job J1, of which there is no record", "J1"},
                                          {"- SPLIT -", "the Batch 000007 is of several Jobs, of which there is no record", ""}}) {
    Repaired room;
    room.session.File().Execute("DELETE FROM JobRecords");
    room.session.File().Execute(fmt::format("UPDATE INK_Batch SET JobNumber = '{}'", named));
    const RepairReport report = room.RepairNow();
    ASSERT_EQ(report.lost.size(), 1U) << Repaired::Text(report);
    EXPECT_EQ(report.lost[0].What, told);
    EXPECT_EQ(room.Scalar("SELECT JobNumber FROM INK_Batch").Text(), kept);
    EXPECT_TRUE(CheckDataFileRules(room.session, CheckDepth::Deep).Sound());
    EXPECT_TRUE(room.RepairNow().lost.empty()) << "it is told once";
  }
}

TEST(Repair, WhatWasChangedByHandIsLeftWithTheWayToAcceptIt) {
  Repaired room;
  room.session.DataFileDB.reset();
  test::EditByHand(room.session.DataFileName, "UPDATE INK_Basic SET Notes = 'theirs' WHERE Color_Name = 'RED'");
  const RepairReport report = room.RepairNow();
  ASSERT_EQ(report.left.back().What, kAcceptRows) << Repaired::Text(report);
  EXPECT_EQ(AcceptStrayRows(room.session)->rows.size(), 1U);
  EXPECT_EQ(room.Scalar("SELECT Notes FROM INK_Basic WHERE Color_Name = 'RED'").Text(), "theirs");
}

TEST(Repair, ACopyIsKeptBesideWithTheReport) {
  Repaired room;
  room.session.DataFileDB.reset();
  const auto bytes = ReadFileBytes(room.session.DataFileName);
  const RepairReport report = room.RepairNow();
  EXPECT_TRUE(report.changes.empty());
  EXPECT_EQ(report.kept.filename(), "Before Repair 03_10_2026__12_00_00 (2)");
  EXPECT_TRUE(ReadFileBytes(report.kept / "Test Data.vkd") == bytes);
  EXPECT_NE(ReadFileBytes(report.kept / "Repair Report.txt").find("Nothing had to be changed."), std::string::npos);
}

// A name in the file's own list of tables, of which the engine takes no notice.
TEST(Repair, ADamagedNameOfATableOrFieldLosesNothing) {
  for (const auto& [from, to] : {std::pair{"\"Color_Code\" TEXT", "\"Color_Cpde\" TEXT"},
                                 {"\"BC3\" TEXT", "\"BC\x13\" TEXT"},
                                 {"NOCASE, \"VOC", "N\x4f\x63\x41QE, \"VOC"},
                                 {"TABLE \"INK_Mix\" ", "TABLE \"INK_Miy\" "}}) {
    Repaired room;
    room.session.File().Execute("UPDATE INK_Basic SET Color_Code = 'R1' WHERE Color_Name = 'RED'");
    const auto rows = [&] {
      return room
          .Scalar(
              "SELECT (SELECT GROUP_CONCAT(Color_Name || Color_Code) FROM INK_Basic) || (SELECT "
              "GROUP_CONCAT(Color_Name || BC1) FROM INK_Mix)")
          .Text();
    };
    room.session.File().Execute("UPDATE INK_Basic SET Color_Code = '' WHERE Color_Code IS NULL");
    const std::string before = rows();
    room.session.DataFileDB.reset();
    std::string bytes = ReadFileBytes(room.session.DataFileName);
    ASSERT_NE(bytes.find(from), std::string::npos) << from;
    bytes.replace(bytes.find(from), std::string_view(to).size(), to);
    std::ofstream(room.session.DataFileName, std::ios::binary) << bytes;
    room.RepairNow();
    EXPECT_EQ(rows(), before) << to;
  }
}

TEST(Repair, WhatARepairOfADuplicateCostsIsInTheFormulas) {
  Repaired room;
  // The row that keeps the name takes the price that it lacks, and the formulas follow.
  room.session.File().Execute(
      "UPDATE INK_Basic SET PurchaseCost = 0 WHERE Color_Name = 'RED'; INSERT INTO INK_Basic (Color_Name, "
      "PurchaseCost) VALUES ('RED', 8)");
  const RepairReport report = room.RepairNow();
  EXPECT_TRUE(Repaired::Tells(report, "Formulas Again")) << Repaired::Text(report);
  EXPECT_EQ(room.Scalar("SELECT BasicCost FROM INK_Mix").Single(), 7.6F);
}

TEST(Repair, UsersKeepTheirRightsAndNobodyGetsMore) {
  Repaired room;
  room.prompt.Expect("");
  ASSERT_TRUE(CreateUsers(room.session, "BOSS", "X"));
  room.session.File().Execute(
      "DELETE FROM Users WHERE Username = 'ADMIN'; INSERT INTO Users (Username, DBToolsMenu) VALUES (NULL, 1), "
      "('ANNA', 1), ('anna', 1)");
  RepairReport report = room.RepairNow();
  EXPECT_TRUE(Repaired::Tells(report, "Users"));
  EXPECT_EQ(room.Scalar("SELECT GROUP_CONCAT(Username || IsAdmin || Edit_Costs || DBToolsMenu) FROM Users").Text(),
            "BOSS121,ANNA001,ADMIN121");
  EXPECT_EQ(room.session.CurrentUser, "BOSS");
  // A field that is gone comes back without a right.
  room.session.File().Execute("ALTER TABLE Users DROP COLUMN Edit_Costs; DELETE FROM Users WHERE Username = 'BOSS'");
  report = room.RepairNow();
  EXPECT_TRUE(Repaired::Tells(report, "Tables"));
  EXPECT_EQ(room.Scalar("SELECT GROUP_CONCAT(Username || Edit_Costs) FROM Users").Text(), "ANNA0,ADMIN0");
  EXPECT_EQ(room.session.CurrentUser, "ADMIN");
  EXPECT_TRUE(UsersEnabled(room.session));
}

TEST(Repair, PhotosOfNobodyAreMovedToTheCopy) {
  Repaired room;
  const fs::path photos = room.folder / "DesignPhotos";
  for (const char* name : {"gloss.JPG", "gone.jpg", "theirs.jpg", "Thumbs.db"}) std::ofstream(photos / name) << name;
  room.session.File().Execute("UPDATE Designs SET PhotoSet = '<Gloss.jpg><missing.jpg>'");
  {
    const fs::path other = room.folder / "Other.vkd";
    CreateFile(other);
    Database::Open(other, OpenMode::Exclusive)
        ->Execute("INSERT INTO Designs (DesignID, PhotoSet) VALUES ('D', '<Theirs.jpg>')");
  }
  const RepairReport report = room.RepairNow();
  EXPECT_EQ(room.Scalar("SELECT PhotoSet FROM Designs").Text(), "<Gloss.jpg>");
  EXPECT_FALSE(fs::exists(photos / "gone.jpg"));
  EXPECT_EQ(ReadFileBytes(report.kept / "DesignPhotos" / "gone.jpg"), "gone.jpg");
  for (const char* name : {"gloss.JPG", "theirs.jpg", "Thumbs.db"}) EXPECT_TRUE(fs::exists(photos / name)) << name;
  // Without the folder nobody knows what there was.
  fs::remove_all(photos);
  const RepairReport without = room.RepairNow();
  EXPECT_EQ(room.Scalar("SELECT PhotoSet FROM Designs").Text(), "<Gloss.jpg>");
  EXPECT_TRUE(without.changes.empty());
}

TEST(Repair, GuidesAreReadAgain) {
  Repaired room;
  room.session.ProgramFolder = room.folder.Path();
  test::BuildSampleTemplate(room.folder / "pdbt.vkt");
  const std::string name = [&] {
    const auto guides = Database::Open(room.folder / "pdbt.vkt", OpenMode::ReadOnly);
    return guides->Scalar("SELECT Color_Name FROM FGuide_BColors_GP1601A WHERE Red > 0 LIMIT 1").Text();
  }();
  room.Basic(name);
  room.session.File().Execute("UPDATE INK_Info SET FullName = 'Pantone'");
  const RepairReport report = room.RepairNow();
  EXPECT_TRUE(Repaired::Tells(report, "PANTONE Books")) << Repaired::Text(report);
  EXPECT_GT(room.Scalar("SELECT Red FROM INK_Basic WHERE Color_Name = ?", {name}).Whole(), 0);
}

TEST(Repair, WhatStopsItLeavesTheFileAsItWas) {
  test::FullRoom room;
  room.session.DataFileDB.reset();
  const auto bytes = ReadFileBytes(room.session.DataFileName);
  const auto count = [&] { return std::distance(fs::directory_iterator(room.folder.Path()), {}); };
  const auto before = count();
  const auto report = MendDataFile(room.session, []() -> Result<void> { return Refuse("No", "no"); });
  EXPECT_FALSE(report);
  EXPECT_TRUE(ReadFileBytes(room.session.DataFileName) == bytes);
  EXPECT_EQ(count(), before);
  const test::HeldFile held(room.session.DataFileName);
  EXPECT_THROW((void)MendDataFile(room.session, [] { return Result<void>{}; }), Failure);
  EXPECT_EQ(count(), before);
}

TEST(Repair, FlippedBitsAndCutFilesEndInAFileThatOpens) {
  test::DamagedFile damaged;
  EXPECT_TRUE(damaged.Repair(damaged.sound));
  for (unsigned number = 0; number < 50; ++number) {
    SCOPED_TRACE(number);
    EXPECT_TRUE(damaged.Repair(test::Flipped(damaged.sound, number)));
    if (testing::Test::HasFailure()) return;
  }
  int nothing = 0;
  for (unsigned number = 0; number < 12; ++number) {
    SCOPED_TRACE(number);
    nothing += !damaged.Repair(test::CutShort(damaged.sound, number));
    if (testing::Test::HasFailure()) return;
  }
  EXPECT_LT(nothing, 6);
}

}  // namespace
}  // namespace vellumark
