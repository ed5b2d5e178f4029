#include "core/datafile/engine.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <set>

#include "core/base/files.h"
#include "core/base/refusal.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/raise_counters.h"
#include "core/datafile/writer.h"
#include "support/causes.h"
#include "support/places.h"
#include "support/scratch.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;
using test::CauseOf;

struct NewFile {
  NewFile() {
    CreateFile(path);
    file = Database::Open(path, OpenMode::Exclusive);
    CreateEmptyDatabase(*file, "INK");
  }
  test::ScratchFolder folder;
  fs::path path = folder / "Ink.vkd";
  std::unique_ptr<Database> file;
};

TEST(Engine, EachKindOfWrongFileIsTold) {
  NewFile room;
  const fs::path text = room.folder / "text.vkd";
  ReplaceFile(text, std::string(5000, 'x'));
  const fs::path foreign = room.folder / "foreign.vkd";
  {
    // A file of the same engine that another program made carries no mark.
    room.file.reset();
    fs::copy_file(room.path, foreign);
    std::fstream bytes(foreign, std::ios::in | std::ios::out | std::ios::binary);
    bytes.seekp(68);
    bytes.write("\0\0\0\0", 4);
  }
  const fs::path cut = room.folder / "cut.vkd";
  fs::copy_file(room.path, cut);
  fs::resize_file(cut, fs::file_size(cut) / 2);
  const fs::path empty = room.folder / "empty.vkd";
  ReplaceFile(empty, "");

  const auto opens = [](const fs::path& path) { return [path] { ReadFileVersion(path); }; };
  EXPECT_EQ(CauseOf(opens(room.folder / "gone.vkd")), "does not exist");
  EXPECT_EQ(CauseOf(opens(room.folder.Path())), "is not a file");
  EXPECT_EQ(CauseOf(opens(text)), "is not a Data File");
  EXPECT_EQ(CauseOf(opens(foreign)), "is not a Data File");
  EXPECT_EQ(CauseOf(opens(cut)), "is damaged or was cut short");
  EXPECT_EQ(CauseOf(opens(empty)), "is empty, not a Data File");
  EXPECT_EQ(CauseOf(opens(room.path)), "no failure");
}

TEST(Engine, AFieldThatIsNotThereIsAFaultAndNoText) {
  const test::ScratchFolder folder;
  EXPECT_THROW(Database::Create(folder / "gone" / "x.vkd"), Failure);
  const auto file = Database::Create(folder / "x.vkd");
  file->Execute("CREATE TABLE T (a)");
  EXPECT_THROW(file->Prepare("SELECT \"b\" FROM T"), Failure);
}

TEST(Engine, AFileHeldByAnotherProcessIsRefusedUntilThatProcessEnds) {
  NewFile room;
  room.file.reset();
  int ready[2];
  int done[2];
  ASSERT_EQ(::pipe(ready), 0);
  ASSERT_EQ(::pipe(done), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    const auto held = Database::Open(room.path, OpenMode::Exclusive);
    // As an export does that was given the open file by mistake.
    if (!Database::IsDatabaseFile(room.path)) ::_exit(2);
    char mark = 'x';
    if (::write(ready[1], &mark, 1) != 1 || ::read(done[0], &mark, 1) != 1) ::_exit(1);
    ::_exit(0);
  }
  char mark = 0;
  ASSERT_EQ(::read(ready[0], &mark, 1), 1);
  EXPECT_EQ(CauseOf([&] { Database::Open(room.path, OpenMode::Exclusive); }), "is in use by another process");
  EXPECT_EQ(CauseOf([&] { ReadFileVersion(room.path); }), "is in use by another process");
  ASSERT_EQ(::write(done[1], &mark, 1), 1);
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(CauseOf([&] { Database::Open(room.path, OpenMode::Exclusive); }), "no failure");
}

TEST(Engine, AKilledWriterLeavesTheStateBeforeItsTransaction) {
  NewFile room;
  room.file.reset();
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    const auto file = Database::Open(room.path, OpenMode::Exclusive);
    Transaction transaction(*file);
    // More than the cache holds, so that pages of the unfinished transaction stand in the file itself.
    for (int i = 0; i < 20000; ++i)
      InsertRow(*file, schema::Basic, "INK_Basic",
                {{"Color_Name", "C" + std::to_string(i)}, {"Notes", std::string(400, 'n')}});
    char mark = 'x';
    if (::write(ready[1], &mark, 1) == 1) ::pause();
    ::_exit(1);
  }
  char mark = 0;
  ASSERT_EQ(::read(ready[0], &mark, 1), 1);
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  EXPECT_EQ(ReadFileVersion(room.path), 40);  // the first looker rolls back
  const auto file = Database::Open(room.path, OpenMode::Exclusive);
  EXPECT_EQ(file->Scalar("SELECT COUNT(*) FROM INK_Basic").Whole(), 0);
  EXPECT_TRUE(file->Faults().empty());
}

TEST(Transactions, TellOnceOnCommitAndNothingOnRollback) {
  NewFile room;
  Changes changes;
  std::vector<std::vector<Change>> told;
  const auto subscription = changes.Subscribe([&](const auto& list) { told.push_back(list); });
  room.file->SetChanges(&changes);
  const Change blue{Change::Kind::Basic, "INK", "BLUE", Change::What::Added, ""};
  const Change red{Change::Kind::Basic, "INK", "RED", Change::What::Added, ""};
  {
    Transaction outer(*room.file);
    outer.Note(blue);
    {
      Transaction inner(*room.file);
      InsertRow(*room.file, schema::Basic, "INK_Basic", {{"Color_Name", "RED"}});
      inner.Note(red);
      inner.Commit();
    }
    EXPECT_TRUE(told.empty());
    outer.Commit();
  }
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(told[0], (std::vector<Change>{blue, red}));

  {
    Transaction outer(*room.file);
    InsertRow(*room.file, schema::Basic, "INK_Basic", {{"Color_Name", "GREEN"}});
    outer.Note(blue);
    { const Transaction inner(*room.file); }
    EXPECT_THROW(outer.Commit(), Failure);  // an inner part failed: the whole is off
  }
  EXPECT_EQ(told.size(), 1U);
  EXPECT_EQ(room.file->Scalar("SELECT COUNT(*) FROM INK_Basic").Whole(), 1);
}

TEST(Schema, AValueThatDoesNotFitIsRefusedAndNothingIsWritten) {
  NewFile room;
  struct Case {
    const Table& table;
    const char* field;
    Value value;
    const char* why;
  };
  const Case cases[] = {
      {schema::Basic, "Color_Name", std::string(31, 'A'), "31 characters, the limit is 30"},
      {schema::Basic, "Color_Name", "", "may not be empty"},
      {schema::Basic, "Row", 256, "the range is 0 to 255"},
      {schema::Basic, "Row", -1, "the range is 0 to 255"},
      {schema::Basic, "Row", 1.5, "not a whole number"},
      {schema::Basic, "Inventory", "12", "not a number"},
      {schema::Basic, "Inventory", 1e39, "beyond the range of a Single"},
      {schema::Basic, "Date_Entered", "yesterday", "not a date"},
      {schema::Basic, "IngSort", 3000000000.0, "the range is"},
      {schema::Basic, "Color_Code", "\xFF\xFE", "not a text"},
      {schema::BatchLotInv, "LotRefID", 32768, "the range is -32768 to 32767"},
      {schema::Batch, "Lab_Note", std::string(31, 'N'), "the limit is 30"},
      {schema::Designs, "IngDB0", "SIXTEEN LETTERS!", "the limit is 15"},
  };
  for (const Case& c : cases) {
    const std::string name = TableName("INK", c.table);
    try {
      InsertRow(*room.file, c.table, name, {{c.field, c.value}});
      ADD_FAILURE() << c.field;
    } catch (const BadValue& bad) {
      EXPECT_NE(std::string(bad.what()).find(c.why), std::string::npos) << bad.what();
      EXPECT_NE(std::string(bad.what()).find(name + "." + c.field), std::string::npos) << bad.what();
    }
    EXPECT_EQ(room.file->Scalar("SELECT COUNT(*) FROM " + Quoted(name)).Whole(), 0) << c.field;
  }
  InsertRow(*room.file, schema::BatchLotInv, "INK_Batch_LotInv", {{"LotRefID", 32767}});
  InsertRow(*room.file, schema::Basic, "INK_Basic",
            {{"Color_Name", "GRÜN ÜBER ALLES MIT 30 ZEICHEN"}, {"Inventory", 0.1}});
  EXPECT_EQ(room.file->Scalar("SELECT Inventory FROM INK_Basic").Number(), static_cast<double>(0.1F));
}

TEST(Schema, WhatIsMissingIsTold) {
  NewFile room;
  EXPECT_TRUE(MissingParts(*room.file, {"INK"}).empty());
  room.file->Execute("DROP TABLE INK_Additives");
  room.file->Execute("ALTER TABLE INK_Mix DROP COLUMN BQ14");
  room.file->Execute("DROP TABLE Dispenser");
  EXPECT_EQ(MissingParts(*room.file, {"INK"}),
            (std::vector<std::string>{"table Dispenser", "field INK_Mix.BQ14", "table INK_Additives"}));
}

// A file of a program that knew no keys, in which rows were deleted between others.
struct KeylessFile {
  KeylessFile() { fs::copy_file(test::SourceFolder() / "tests/core/datafile/keyless.vkd", path); }
  static std::string Rows(Database& file) {
    std::string rows;
    for (const char* sql :
         {"SELECT RowKey, Color_Name, Inventory FROM INK_Basic ORDER BY RowKey",
          "SELECT RowKey, Color_Name, Color_Set FROM INK_Mix WHERE Color_Name >= 'a' ORDER BY RowKey"}) {
      Statement row = file.Prepare(sql);
      while (row.Step()) rows += row.Text(0) + row.Text(1) + " " + row.Text(2) + "|";
    }
    return rows;
  }
  test::ScratchFolder folder;
  fs::path path = folder / "Old.vkd";
};
constexpr const char* kKeylessRows = "1BLUE 0.0|3RED 50.0|4WHITE 0.0|2LILAC <BLUE><WHITE>|3ROSE <RED><WHITE>|";

TEST(RowKeys, AnOlderFileGetsThemOnceAndKeepsThem) {
  const KeylessFile old;
  const std::string bytes = ReadFileBytes(old.path);
  // Whoever only looks sees the keys too, and the file stays as it is.
  EXPECT_EQ(KeylessFile::Rows(*Database::Open(old.path, OpenMode::ReadOnly)), kKeylessRows);
  EXPECT_EQ(ReadFileBytes(old.path), bytes);
  auto file = Database::Open(old.path, OpenMode::Exclusive);
  EXPECT_EQ(KeylessFile::Rows(*file), kKeylessRows);
  EXPECT_TRUE(file->Faults().empty());
  EXPECT_LE(fs::file_size(old.path), bytes.size() + 8192U) << "but for the digests of its rows, nothing was written";
  file->CompleteLayout({"INK"});
  // It is laid out as a new one, with the same indexes, and shows the keys among no table's fields.
  const NewFile fresh;
  EXPECT_EQ(file->TableNames(), fresh.file->TableNames());
  const auto indexes = [](Database& of) {
    const std::vector<std::string> names = of.StoredIndexes();
    return std::set<std::string>(names.begin(), names.end());
  };
  EXPECT_EQ(indexes(*file), indexes(*fresh.file));
  for (const std::string& table : file->TableNames())
    EXPECT_EQ(file->StoredFields(table), fresh.file->StoredFields(table)) << table;
  EXPECT_EQ(InsertRow(*file, schema::Mix, "INK_Mix", {{"Color_Name", "PLUM"}}), 4);
  EXPECT_THROW(InsertRow(*file, schema::Mix, "INK_Mix", {{"RowKey", 9}}), std::logic_error);
  file->Execute("DELETE FROM INK_Mix WHERE RowKey = 4");
  CompactFile(*file);
  file.reset();
  file = Database::Open(old.path, OpenMode::Exclusive);
  EXPECT_EQ(KeylessFile::Rows(*file), kKeylessRows);
  // A table under its new name, too.
  file->RenameTable("INK_Mix", "RED_Mix", schema::Mix);
  EXPECT_EQ(file->Scalar("SELECT RowKey FROM RED_Mix WHERE Color_Name = 'rose'").Whole(), 3);
}

TEST(RowKeys, NoneIsGivenWhereOneCannotBe) {
  const KeylessFile old;
  std::string bytes = ReadFileBytes(old.path);
  // The last table is laid out in words that this program never wrote.
  const std::string ours = R"("TemplateFile" TEXT COLLATE NOCASE))";
  const std::size_t at = bytes.find(ours);
  ASSERT_NE(at, std::string::npos);
  bytes.replace(at, ours.size(), R"("TemplateFile" TEXT)/* of others */)");
  ReplaceFile(old.path, bytes);
  EXPECT_EQ(CauseOf([&] { Database::Open(old.path, OpenMode::Exclusive); }),
            "is damaged: nobody knows the layout of the table INK_Info");
  EXPECT_EQ(ReadFileBytes(old.path), bytes);
}

TEST(Schema, ANewFileHasItsTablesAndOneRow) {
  test::ScratchFolder folder;
  const fs::path path = folder / "New.vkd";
  CreateFile(path);
  const auto file = Database::Open(path, OpenMode::Exclusive);
  EXPECT_EQ(file->TableNames(),
            (std::vector<std::string>{"FileInfo", "Designs", "Dispenser", "JobRecords", "MSysStockHistory"}));
  EXPECT_EQ(file->Scalar("SELECT COUNT(*) FROM FileInfo").Whole(), 1);
  EXPECT_TRUE(file->Scalar("SELECT LastBackupDate FROM FileInfo").IsNull());
  EXPECT_EQ(file->Scalar("SELECT DaysToRemindBackup FROM FileInfo").Whole(), 1);
  const std::vector<std::string> names = file->StoredFields("Designs");
  EXPECT_EQ(names.at(10) + names.at(15) + names.at(16), "IngName0IngDB0IngName1");
  EXPECT_EQ(CauseOf([&] { CreateFile(path); }), "already exists");
}

TEST(Lifecycle, VersionsAreGated) {
  struct Case {
    int version;
    VersionGate gate;
  };
  for (const Case& c : {Case{0, VersionGate::Unusable}, Case{1, VersionGate::Unusable}, Case{2, VersionGate::Older},
                        Case{39, VersionGate::Older}, Case{40, VersionGate::Current}, Case{41, VersionGate::Unusable},
                        Case{101, VersionGate::Unusable}, Case{139, VersionGate::Unusable},
                        Case{140, VersionGate::ReadOnly}, Case{141, VersionGate::Unusable}})
    EXPECT_EQ(GateOf(c.version), c.gate) << c.version;
  EXPECT_TRUE(IsArchiveCopy(140, "/a/b.vkd"));
  EXPECT_TRUE(IsArchiveCopy(40, "/a/Auto Backup/b.vkd"));
  EXPECT_TRUE(IsArchiveCopy(40, "/a/My Archive/b.vkd"));
  EXPECT_TRUE(IsArchiveCopy(40, "/a/b.VKB"));
  EXPECT_FALSE(IsArchiveCopy(40, "/a/b.vkd"));
}

TEST(Lifecycle, CountersStartAgainAfterTheLastNumber) {
  NewFile room;
  EXPECT_EQ(StepBatchNumber(*room.file, 999998), 999999);
  EXPECT_EQ(StepBatchNumber(*room.file, 999999), 1);
  EXPECT_EQ(ReadFileInfo(*room.file).batchNumber, 1);
  EXPECT_EQ(StepItemNumber(*room.file, 7), 8);
  EXPECT_EQ(ReadFileInfo(*room.file).itemNumber, 8);
}

// Of a file that is put in the place of another one.
TEST(Lifecycle, CountersGoOnFromTheOneThatIsFurtherOn) {
  test::ScratchFolder folder;
  NewFile room;
  CreateFile(folder / "Other.vkd");
  const auto other = Database::Open(folder / "Other.vkd", OpenMode::Exclusive);
  const auto set = [](Database& file, int number) {
    file.Prepare("UPDATE FileInfo SET BatchNumber = ?1, ItemNumber = ?1").Bind(1, number).Run();
  };
  // Behind the last number comes 1 again.
  for (const auto& [mine, theirs, further] : {std::tuple{7, 42, 42}, {42, 7, 42}, {999'990, 5, 5}, {5, 999'990, 5},
                                              {1, 600'000, 600'000}, {1, 1, 1}, {0, 999'999, 999'999}}) {
    set(*room.file, mine);
    set(*other, theirs);
    RaiseCounters(*room.file, *other);
    EXPECT_EQ(ReadFileInfo(*room.file).batchNumber, further) << mine << " " << theirs;
    EXPECT_EQ(ReadFileInfo(*room.file).itemNumber, further) << mine << " " << theirs;
  }
}

TEST(Lifecycle, NextFreeNameReplacesANumberInBrackets) {
  test::ScratchFolder folder;
  for (const char* taken : {"Ink.vkd", "Ink(1).vkd", "Ink(2).vkd"}) ReplaceFile(folder / taken, "x");
  EXPECT_EQ(NextFreeName(folder / "Ink.vkd").filename(), "Ink(3).vkd");
  EXPECT_EQ(NextFreeName(folder / "Ink(2).vkd").filename(), "Ink(3).vkd");
  EXPECT_EQ(NextFreeName(folder / "Ink(x).vkd").filename(), "Ink(x)(1).vkd");
}

TEST(Lifecycle, CompactingKeepsEveryRowAndLeavesNothingBeside) {
  NewFile room;
  {
    Transaction transaction(*room.file);
    for (int i = 0; i < 500; ++i)
      InsertRow(*room.file, schema::Basic, "INK_Basic",
                {{"Color_Name", "C" + std::to_string(i)}, {"Notes", std::string(900, 'n')}});
    transaction.Commit();
  }
  room.file->Execute("DELETE FROM INK_Basic WHERE RowKey % 10 <> 0");
  const auto before = fs::file_size(room.path);
  ReplaceFile(SafetyCopyPath(room.path), "an older safety copy");
  ::chmod(room.path.c_str(), 0640);
  // Through a link, as a second name of the file.
  fs::create_directories(room.folder / "links");
  const fs::path link = room.folder / "links/Shop.vkd";
  fs::create_symlink(room.path, link);
  room.file = nullptr;
  room.file = Database::Open(link, OpenMode::Exclusive);
  CompactFile(*room.file);
  room.file.reset();
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(fs::status(room.path).permissions(), static_cast<fs::perms>(0640));
  EXPECT_LT(fs::file_size(room.path), before);
  EXPECT_EQ(std::distance(fs::directory_iterator(room.folder.Path()), {}), 2);
  const auto file = Database::Open(room.path, OpenMode::Exclusive);
  EXPECT_EQ(file->Scalar("SELECT COUNT(*) FROM INK_Basic").Whole(), 50);
  EXPECT_EQ(ReadFileInfo(*file).dbList, std::vector<std::string>{"INK"});
}

TEST(Lifecycle, AFailedCompactionPutsTheFileBack) {
  NewFile room;
  room.file.reset();
  fs::resize_file(room.path, fs::file_size(room.path) - std::uintmax_t{4096} * 3);
  const std::string bytes = ReadFileBytes(room.path);
  ReplaceFile(SafetyCopyPath(room.path), "an older safety copy");
  EXPECT_NE(CauseOf([&] { CompactFile(*Database::Open(room.path, OpenMode::Exclusive)); }), "no failure");
  EXPECT_EQ(ReadFileBytes(room.path), bytes);
  EXPECT_EQ(ReadFileBytes(SafetyCopyPath(room.path)), "an older safety copy");
  EXPECT_EQ(std::distance(fs::directory_iterator(room.folder.Path()), {}), 2);
}

TEST(Databases, NamesAreCheckedBeforeAnythingIsMade) {
  struct Case {
    const char* typed;
    const char* title;
    const char* part;
  };
  const std::vector<std::string> existing{"INK"};
  for (const Case& c : {Case{"", "New Database - Database Name?", "Please enter a name for the new database."},
                        Case{"  ", "New Database - Database Name?", "Please enter"},
                        Case{"SIXTEEN LETTERS X", "New Database - Database Name?", "longer than 15"},
                        Case{"A.B", "New Database - Database Name?", "may hold only"},
                        Case{"A\"B", "New Database - Database Name?", "may hold only"},
                        Case{"A_B", "New Database - Database Name?", "may hold only"},
                        Case{"sqlite", "New Database - Database Name?", "own use"},
                        Case{"MSys 1", "New Database - Database Name?", "own use"},
                        Case{"ink", "Database Already Exists",
                             "The INK Database already exists in the F.vkd Data File. Please select another name for "
                             "your Database."}}) {
    const auto name = NewDatabaseName(c.typed, existing, "F.vkd");
    ASSERT_FALSE(name) << c.typed;
    EXPECT_EQ(name.error().title, c.title);
    EXPECT_NE(name.error().text.find(c.part), std::string::npos) << name.error().text;
  }
  EXPECT_EQ(NewDatabaseName(" uv flexo 15 ch ", existing, "F.vkd").value(), "UV FLEXO 15 CH");
}

}  // namespace
}  // namespace vellumark
