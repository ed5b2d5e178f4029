#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "core/backup/check_run.h"
#include "core/backup/deep_check.h"
#include "core/datafile/engine_salvage.h"
#include "core/datafile/row_checks.h"
#include "support/damage.h"
#include "support/full_room.h"

namespace vellumark {
namespace {

struct Damage {
  const char* sql;
  const char* rule;
  const char* table;
  std::int64_t row;
};

std::vector<std::string> Texts(const CheckAnswer& answer) {
  std::vector<std::string> texts;
  for (const CheckFault& fault : answer.faults) texts.push_back(FaultText(fault));
  return texts;
}

TEST(DeepCheck, FindsEachDamageAndNothingElse) {
  const Damage damages[] = {
      {"DELETE FROM INK_Info", "FileInfo", "INK_Info", 0},
      {"UPDATE FileInfo SET DBList = 'INK|ink|'", "DatabaseList", "FileInfo", 1},
      {"UPDATE FileInfo SET CurrentDB = 'GONE'", "DatabaseList", "FileInfo", 1},
      {"CREATE TABLE OLD_Mix (x)", "DatabaseList", "OLD_Mix", 0},
      {"UPDATE FileInfo SET BatchNumber = 7", "Counters", "FileInfo", 1},
      {"DROP TABLE INK_Mix_LAB", "Parts", "INK_Mix_LAB", 0},
      {"ALTER TABLE INK_Mix_LAB DROP COLUMN Lab_Note", "Parts", "INK_Mix_LAB", 0},
      {"ALTER TABLE INK_Mix_LAB RENAME COLUMN RowKey TO SowKey", "Parts", "INK_Mix_LAB", 0},
      {"CREATE TABLE MSysOpenBatch (DatabaseName TEXT, BatchNo INTEGER, RowKey INTEGER PRIMARY KEY); INSERT INTO "
       "MSysOpenBatch (DatabaseName, BatchNo) VALUES ('INK', 7)",
       "Markers", "MSysOpenBatch", 0},
      {"CREATE TABLE MSysPendingRollUps (DatabaseName, Cost, VOC, HAP); INSERT INTO MSysPendingRollUps VALUES ('INK', "
       "1, "
       "0, 0)",
       "Markers", "MSysPendingRollUps", 0},
      {"CREATE TABLE Users (Username TEXT, Password TEXT, IsAdmin INTEGER, Edit_MasterFormula INTEGER, Edit_Costs "
       "INTEGER, Edit_VOCHAP INTEGER, DF_BackupRestore INTEGER, DF_AdvancedMenu INTEGER, DF_OptionsMenu INTEGER, "
       "DB_NewRenameDel INTEGER, DBToolsMenu INTEGER, DF_ExportDF_Excel INTEGER, RowKey INTEGER PRIMARY KEY); INSERT "
       "INTO Users (Username, "
       "IsAdmin) VALUES ('ANNA', 0)",
       "Users", "Users", 0},
      {"UPDATE INK_Basic SET Reorder = -9e999 WHERE Color_Name = 'RED'", "Fields", "INK_Basic", 1},
      {"UPDATE INK_Basic SET Reorder = 0.1 WHERE Color_Name = 'RED'", "Fields", "INK_Basic", 1},
      {"UPDATE INK_Basic SET Red = 256 WHERE Color_Name = 'WAX'", "Fields", "INK_Basic", 2},
      {"UPDATE INK_Mix SET Color_Code = '1234567890123456789012345678901'", "Fields", "INK_Mix", 1},
      {"UPDATE INK_Mix SET LastModified = '2026-02-30'", "Fields", "INK_Mix", 1},
      {"DELETE FROM MSysRowChecks WHERE TableName = 'INK_Basic_LAB'", "Rows", "INK_Basic_LAB", 1},
      {"INSERT INTO INK_Basic (Color_Name) VALUES ('wax')", "UniqueNames", "INK_Basic", 3},
      {"INSERT INTO INK_Basic (Color_Code) VALUES ('X')", "UniqueNames", "INK_Basic", 3},
      {"INSERT INTO INK_Additives (SetName, SetList) VALUES ('Slow', '')", "UniqueNames", "INK_Additives", 2},
      {"INSERT INTO INK_Basic (Color_Name) VALUES ('RED ')", "UniqueNames", "INK_Basic", 3},
      {"UPDATE INK_Additives SET SetName = ' SLOW'; UPDATE INK_Mix SET AddSetName = ' SLOW'", "UniqueNames",
       "INK_Additives", 1},
      {"UPDATE INK_Mix SET BQ14 = 1", "FormulaSlots", "INK_Mix", 1},
      {"UPDATE INK_Mix SET BC1 = 'WAY', Color_Set = '<RED><WAY>'", "Ingredients", "INK_Mix", 1},
      {"UPDATE INK_Mix SET Color_Set = '<RED>'", "ColorSets", "INK_Mix", 1},
      {"UPDATE INK_Mix SET BQ1 = 4.5", "FormulaTotals", "INK_Mix", 1},
      {"UPDATE INK_Basic SET PurchaseCost = 5 WHERE Color_Name = 'RED'", "RollUps", "INK_Mix", 1},
      {"UPDATE INK_Mix SET BasicVOC = 1", "RollUps", "INK_Mix", 1},
      {"UPDATE INK_Basic SET Additive = 0 WHERE Color_Name = 'WAX'", "AdditiveSets", "INK_Additives", 1},
      {"UPDATE INK_Additives SET SetList = ''", "AdditiveSets", "INK_Additives", 1},
      {"UPDATE INK_Mix SET AddSetName = 'GONE'", "FormulaSets", "INK_Mix", 1},
      {"UPDATE Designs SET IngSet = '<BLUE>'", "DesignSets", "Designs", 1},
      {"UPDATE Designs SET IngPercent0 = 101", "DesignColors", "Designs", 1},
      {"UPDATE Designs SET LastUsed = '2026-01-01 00:00:00'", "DesignUses", "Designs", 1},
      {"UPDATE Designs SET PhotoSet = '<a.jpg><A.jpg>'", "DesignPhotos", "Designs", 1},
      {"INSERT INTO INK_Mix_LAB (Color_Name) VALUES ('GONE')", "LotColors", "INK_Mix_LAB", 1},
      {"INSERT INTO INK_Basic_LotInv (LotRefID, LotCName, LotNumber) VALUES (1, 'WHITE', 'L')", "LotColors",
       "INK_Basic_LotInv", 2},
      {"INSERT INTO INK_Basic_LotInv (LotRefID, LotCName, LotNumber) VALUES (999999, 'RED', 'L')", "LotReferences",
       "INK_Basic_LotInv", 2},
      {"INSERT INTO INK_Basic_LotInv (LotRefID, LotCName, LotNumber, LotQty) VALUES (1, 'RED', 'L', 7.25)",
       "LotReferences", "INK_Basic_LotInv", 2},
      {"UPDATE INK_Basic_LotInv SET LotPrice = -1", "Quantities", "INK_Basic_LotInv", 1},
      {"UPDATE INK_Basic SET Inventory = 12 WHERE Color_Name = 'RED'", "StockHistory", "INK_Basic", 1},
      {"UPDATE INK_Basic_LotInv SET LotQty = 7", "StockHistory", "INK_Basic_LotInv", 1},
      {"DELETE FROM INK_Basic_LotInv", "StockHistory", "INK_Basic_LotInv", 0},
      {"UPDATE INK_Batch SET IngType0 = 0; UPDATE INK_Batch_LotInv SET IngType = 0", "BatchLines", "INK_Batch", 1},
      {"UPDATE INK_Batch_LotInv SET IngName = 'WAX'", "BatchLots", "INK_Batch_LotInv", 1},
      {"INSERT INTO INK_Batch_LotInv (BatchNo, IngName) VALUES (8, 'RED')", "BatchLots", "INK_Batch_LotInv", 2},
      {"INSERT INTO INK_BatchScaleResults (BatchID, ColorName) VALUES (8, 'RED')", "ScaleResults",
       "INK_BatchScaleResults", 1},
      {"INSERT INTO INK_BatchScaleResults (BatchID, ColorName, IngType) VALUES (7, 'RED', 1), (7, 'RED', 1)",
       "ScaleResults", "INK_BatchScaleResults", 2},
      {"INSERT INTO JobRecords (JobNumber, Database, BatchNo) VALUES ('J2', 'INK', 6)", "JobBatches", "JobRecords", 2},
      {"INSERT INTO JobRecords (JobNumber, Database, BatchNo) VALUES ('J2', 'GONE', 6)", "JobBatches", "JobRecords", 2},
      {"UPDATE INK_Batch SET JobNumber = 'J2'", "JobBatches", "INK_Batch", 1},
      {"UPDATE JobRecords SET QtyUsed = 1e6", "JobBatches", "INK_Batch", 1},
      {"UPDATE JobRecords SET QtyUsed = -1", "JobItems", "JobRecords", 1},
  };
  std::set<std::string_view> rules{"Structure"};  // the engine's own
  for (const Damage& damage : damages) rules.insert(damage.rule);
  EXPECT_EQ(rules.size(), CheckRules().size()) << "each rule has a damage of its own";
  for (const Damage& damage : damages) {
    test::FullRoom room;
    EXPECT_TRUE(CheckDataFileRules(room.session, CheckDepth::Deep).Sound());
    room.Breaks(damage.rule);
    AcceptRows(room.session.File());
    room.session.File().Execute(damage.sql);
    const CheckAnswer answer = CheckDataFileRules(room.session, CheckDepth::Deep);
    ASSERT_EQ(answer.faults.size(), 1U) << damage.sql << (answer.Sound() ? "" : "\n" + FaultText(answer.faults.back()));
    EXPECT_EQ(answer.faults[0].rule, damage.rule) << damage.sql;
    EXPECT_EQ(answer.faults[0].Table, damage.table) << damage.sql;
    EXPECT_EQ(answer.faults[0].row, damage.row) << damage.sql;
    EXPECT_FALSE(answer.faults[0].what.empty());
    room.session.DataFileDB.reset();
    room.session.DataFileDB = Database::Open(room.session.DataFileName, OpenMode::ReadOnly);
    EXPECT_EQ(Texts(CheckDataFileRules(room.session, CheckDepth::Deep)), Texts(answer)) << damage.sql;
  }
}

// Values are judged at sight while the digests of their rows are compared, and one by one where there are none.
TEST(DeepCheck, JudgesEachValueInTheWalkOfTheRowsAsByItself) {
  test::FullRoom room;
  room.Breaks("Fields");
  Database& file = room.session.File();
  const auto check = [&](bool rows) {
    std::vector<std::string> told;
    CheckRun run(room.session, CheckDepth::Deep, CheckState::InUse);
    const CheckAnswer answer = run.Run([&](const CheckRule& rule) {
      return rule.name == "Parts" || rule.name == "Fields" || (rows && rule.name == "Rows");
    });
    for (const CheckFault& fault : answer.faults)
      if (fault.rule == "Fields") told.push_back(FaultText(fault));
    return told;
  };
  const char* const values[] = {"NULL", "''", "'A'", "'\xc3\xa9'", "'1234567890123456789012345678901'", "x'41'", "x'ff'",
                                "CAST(x'ff00' AS TEXT)", "0", "-1", "2", "256", "40000", "3000000000", "0.5", "0.1",
                                "9e999", "'2026-03-10 00:00:00'", "'2026-02-30 00:00:00'", "'2026-03-10'"};
  std::set<std::string> kinds;
  for (const std::string& name : file.TableNames()) {
    const Table* const table = KnownLayout(name);
    if (table == nullptr || RowCount(file, name) == 0) continue;
    for (const char* const value : values) {
      SCOPED_TRACE(name + " " + value);
      std::string sets;
      for (const Field& field : table->fields) sets += (sets.empty() ? "" : ", ") + Quoted(field.name) + " = " + value;
      Transaction takenBack(file);
      // Of the row that tells which Databases there are the list stays.
      if (table == &schema::FileInfo) sets = "ItemNumber = " + std::string(value);
      file.Execute("UPDATE " + Quoted(name) + " SET " + sets);
      const std::vector<std::string> together = check(true);
      EXPECT_EQ(together, check(false));
      for (const std::string& fault : together) kinds.insert(fault.substr(fault.find(':')));
    }
  }
  EXPECT_GT(kinds.size(), 500U);
}

// Of a file that is only looked at rules run beside each other, on connections of their own.
class LookedAt : public testing::Test {
 protected:
  std::vector<std::string> Check(OpenMode mode) const {
    test::ScriptedPrompt prompt;
    NoProgress progress;
    FixedClock clock{DateTime{2026, 3, 10, 12, 0, 0}};
    Session session{prompt, progress, clock};
    try {
      session.DataFileDB = Database::Open(path, mode);
      return Texts(CheckDataFileRules(session, CheckDepth::Deep));
    } catch (const Failure& failure) {
      return std::vector{failure.cause};
    }
  }
  void Put(const std::string& bytes) const { std::ofstream(path, std::ios::binary) << bytes; }

  const test::DamagedFile file;
  const test::ScratchFolder folder;
  const std::filesystem::path path = folder / "Ink.vkd";
};

TEST_F(LookedAt, TellsTheSame) {
  std::set<std::string> told;
  for (unsigned number = 0; number < 150; ++number) {
    Put(number % 5 == 4 ? test::CutShort(file.sound, number) : test::Flipped(file.sound, number));
    const std::vector<std::string> alone = Check(OpenMode::Exclusive);
    EXPECT_EQ(Check(OpenMode::ReadOnly), alone) << number;
    told.insert(alone.begin(), alone.end());
  }
  EXPECT_GT(told.size(), 30U);
}

// Each page in turn: of tables, of indexes, of long texts. What other rules found is told once.
TEST_F(LookedAt, TellsOnceWhatStandsBesideAPageThatCannotBeRead) {
  Put(file.sound);
  {
    const auto opened = Database::Open(path, OpenMode::Exclusive);
    opened->Execute(
        "UPDATE INK_Mix SET Color_Set = '<RED>' WHERE Color_Name = 'PINK'; "
        "UPDATE INK_Basic SET Red = 256 WHERE Color_Name = 'WAX'; "
        "INSERT INTO INK_Additives (SetName, SetList) VALUES ('Slow', '')");
    AcceptRows(*opened);
  }
  const std::string faulty = ReadFileBytes(path);
  const std::vector<std::string> unbroken = Check(OpenMode::ReadOnly);
  constexpr std::size_t kPage = 4096;
  int told = 0;
  for (std::size_t page = kPage; page < faulty.size(); page += kPage) {
    SCOPED_TRACE(page / kPage + 1);
    std::string bytes = faulty;
    bytes[page] = '\x7f';  // no kind of page; behind a long text one beyond the end
    Put(bytes);
    const std::vector<std::string> unopened{"is damaged or was cut short"};
    const std::vector<std::string> found = Check(OpenMode::ReadOnly);
    const std::vector<std::string> alone = Check(OpenMode::Exclusive);
    if (found == unopened) continue;
    // The page of what is to be written next keeps a writer out.
    if (alone != unopened) {
      EXPECT_EQ(found, alone);
    }
    for (const std::string& fault : found) EXPECT_EQ(std::ranges::count(found, fault), 1) << fault;
    const auto tells = [&](std::string_view rule) {
      return std::ranges::any_of(found, [&](const std::string& fault) { return fault.ends_with(rule); });
    };
    EXPECT_TRUE(tells("[Structure]") || found == unbroken);  // nobody reads where the last page of a text would go on
    if (tells("[ColorSets]") && tells("[UniqueNames]")) ++told;
  }
  EXPECT_GT(told, 40);
}

}  // namespace
}  // namespace vellumark
