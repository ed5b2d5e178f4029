#include "core/upgrade/upgrade.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <set>

#include "core/base/files.h"
#include "core/base/text.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/stock_history.h"
#include "core/settings/support_files.h"
#include "core/upgrade/ladder.h"
#include "support/old_files.h"
#include "support/sound.h"
#include "support/template_room.h"

namespace vellumark::test {
namespace {

namespace fs = std::filesystem;

// Does something when a text is shown.
class WatchingProgress final : public Progress {
 public:
  std::function<void(const std::string&)> at;
  std::vector<std::string> shown;
  void Begin(std::string_view text) override {
    shown.emplace_back(text);
    if (at) at(shown.back());
  }
  void Percent(double percent) override {
    EXPECT_GE(percent, 0);
    EXPECT_LE(percent, 100.001);
  }
};

struct UpdateTest : testing::Test {
  UpdateTest() {
    fs::create_directories(folder / "VKDat");
    session.DataFolder = folder / "VKDat";
    session.ProgramFolder = folder / "Program";
    session.support = std::make_unique<SupportFiles>(session.DataFolder);
    WriteMissingSupportFiles(*session.support);
    fs::create_directories(folder / "Shop");
  }
  fs::path File(const std::string& name) const { return folder / ("Shop/" + name); }
  fs::path Old(int version, const OldRoom& room, int first = 0, const std::string& name = "Old.vkd") {
    const fs::path path = File(name);
    WriteOldFile(path, OldTables(room, version, first));
    return path;
  }
  UpgradeReport Update(const UpdateWish& wish) {
    auto report = UpdateDataFile(session, wish);
    if (!report) throw std::runtime_error(report.error().title + ": " + report.error().text);
    return *report;
  }
  std::set<std::string> Files() const {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder / "Shop")) names.insert(entry.path().filename().string());
    return names;
  }

  SoundFolder folder;
  ScriptedPrompt prompt;
  WatchingProgress progress;
  FixedClock clock{DateTime{2026, 3, 10, 9, 0, 0}};
  Session session{prompt, progress, clock};
};

constexpr const char* kToday = "2026-03-10 00:00:00";

void ExpectRows(Database& file, const std::string& table, const std::vector<OldRow>& rows) {
  ASSERT_TRUE(file.TableExists(table)) << table;
  EXPECT_EQ(file.Scalar("SELECT COUNT(*) FROM " + Quoted(table)).Whole(), std::ssize(rows)) << table;
  std::multiset<std::string> expected;
  std::multiset<std::string> found;
  if (rows.empty()) return;
  std::string columns;
  for (const auto& [field, value] : rows[0]) columns += (columns.empty() ? "" : ", ") + Quoted(field);
  for (const OldRow& row : rows) {
    std::string text;
    for (const auto& [field, value] : row) text += field + "=" + (value.IsNull() ? "~" : value.Text()) + "|";
    expected.insert(text);
  }
  Statement row = file.Prepare("SELECT " + columns + " FROM " + Quoted(table));
  while (row.Step()) {
    std::string text;
    for (int i = 0; i < row.ColumnCount(); ++i) text += row.ColumnName(i) + "=" + (row.IsNull(i) ? "~" : row.Get(i).Text()) + "|";
    found.insert(text);
  }
  std::vector<std::string> missing;
  std::ranges::set_difference(expected, found, std::back_inserter(missing));
  std::vector<std::string> strange;
  std::ranges::set_difference(found, expected, std::back_inserter(strange));
  EXPECT_TRUE(missing.empty()) << table << "\nmissing " << missing.front() << "\nfound   " << (strange.empty() ? "" : strange.front());
}

void ExpectLayout(Database& file, const std::string& name, const Table& table) {
  std::vector<std::string> fields;
  for (const Field& field : table.fields) fields.push_back(field.name);
  EXPECT_EQ(file.StoredFields(name), fields) << name;
}

void ExpectUpdated(const UpgradeReport& report, const OldRoom& room, int version) {
  EXPECT_TRUE(report.Balanced()) << UpgradeText(report);
  for (const StepLine& line : report.left) EXPECT_NE(line.Step, "Check") << line.Table << ": " << line.What;
  EXPECT_TRUE(report.refused.empty()) << report.refused.front().What;
  const auto file = Database::Open(report.file, OpenMode::ReadOnly);
  EXPECT_EQ(ReadFileInfo(*file).fileVersion, report.toVersion);
  for (const auto& [table, rows] : RowsAfterUpdate(room, version, kToday)) ExpectRows(*file, table, rows);
  for (const Table* table : schema::Global()) ExpectLayout(*file, table->name, *table);
  for (const OldDatabase& of : room.databases)
    for (const Table* table : schema::PerDatabase()) ExpectLayout(*file, TableName(of.name, *table), *table);
}

TEST_F(UpdateTest, AFileOfEveryVersionBecomesOneOfToday) {
  const OldRoom room = MakeOldRoom(42);
  for (int version = 2; version < kFileVersion; ++version) {
    SCOPED_TRACE(version);
    const int first = version % 2;
    const std::string name = "Old" + std::to_string(version);
    const fs::path path = Old(version, room, first, name + ".vkd");
    if (version >= 22 && version < 37) prompt.Expect("Lotted Inventory", Answer::No);
    progress.shown.clear();
    const UpgradeReport report = Update({path});
    EXPECT_EQ(report.file, path);
    ExpectUpdated(report, room, version);
    EXPECT_EQ(Files(), (std::set<std::string>{name + ".vkd", name + ".vkb", name + " Update Report.txt"}));
    EXPECT_EQ(ReadFileVersion(File(name + ".vkb")), version);
    EXPECT_EQ(ReadFileBytes(report.text), UpgradeText(report));
    // The blocks of the versions behind it, in order, and no others.
    std::vector<std::string> blocks;
    for (const LadderBlock& block : LadderBlocks())
      if (version < block.below) blocks.emplace_back(block.status);
    std::size_t next = 0;
    for (const std::string& shown : progress.shown)
      if (next < blocks.size() && shown == blocks[next]) ++next;
    EXPECT_EQ(next, blocks.size());
    EXPECT_EQ(std::ranges::count(progress.shown, std::string(LadderBlocks()[0].status)), version < 3 ? 1 : 0);
    for (const auto& entry : fs::directory_iterator(folder / "Shop")) fs::remove(entry.path());
    if (HasFailure()) break;
  }
}

TEST_F(UpdateTest, AJetFileKeepsItsNameAndBytesAndBecomesAFileOfItsOwn) {
  const OldRoom room = MakeOldRoom(30);
  const fs::path path = File("Ink.vkd");
  for (const int version : {2, 21, 30, 39, 40, 140}) {
    SCOPED_TRACE(version);
    auto tables = OldTables(room, std::min(version, 40), version % 2);
    tables[0].rows[0]["FileVersion"] = version;
    WriteOldJetFile(path, tables);
    const std::string before = ReadFileBytes(path);
    if (version == 30) prompt.Expect("Lotted Inventory", Answer::No);
    const UpgradeReport report = Update({path});
    EXPECT_EQ(report.file, File("Ink(1).vkd"));
    EXPECT_TRUE(report.jet);
    EXPECT_EQ(report.toVersion, version == 140 ? 140 : 40);
    for (const StepLine& line : report.damaged) ADD_FAILURE() << line.Table << ": " << line.What;
    ExpectUpdated(report, room, std::min(version, 40));
    EXPECT_EQ(ReadFileBytes(path), before);
    EXPECT_EQ(Files(), (std::set<std::string>{"Ink.vkd", "Ink(1).vkd", "Ink(1) Update Report.txt"}));
    fs::remove(report.file);
    fs::remove(report.text);
  }
}

// What can still be read comes in, and the report tells what does not.
TEST_F(UpdateTest, ADamagedJetFileComesInAsFarAsItCanBeRead) {
  folder.Breaks("JobBatches");  // of Batches that are lost
  const OldRoom room = MakeOldRoom(400);
  const fs::path path = File("Ink.vkd");
  WriteOldJetFile(path, OldTables(room, 39, 0));
  std::string bytes = ReadFileBytes(path);
  const std::size_t middle = bytes.size() / 4096 / 2 * 4096;
  bytes.replace(middle, 4096, std::string(4096, '\xFF'));
  ReplaceFile(path, bytes);
  const UpgradeReport report = Update({path});
  EXPECT_FALSE(report.damaged.empty());
  EXPECT_EQ(ReadFileBytes(path), bytes);
  std::int64_t read = 0;
  for (const UpgradeTable& table : report.tables) {
    EXPECT_EQ(table.Read + table.Made, table.Written + table.Left) << table.Table;
    if (table.Table.ends_with("_Batch")) read += table.Read;
  }
  EXPECT_GT(read, 300);
  EXPECT_NE(ReadFileBytes(report.text).find("What could not be read"), std::string::npos);
}

TEST_F(UpdateTest, TenYearsOfAShopComeInWithTheirSums) {
  const OldRoom room = MakeOldRoom(1500);
  for (const int version : {20, 36}) {
    SCOPED_TRACE(version);
    const fs::path path = Old(version, room, 1, "Years" + std::to_string(version) + ".vkd");
    if (version == 36) prompt.Expect("Lotted Inventory", Answer::No);
    const UpgradeReport report = Update({path});
    ExpectUpdated(report, room, version);
    ASSERT_GE(report.sums.size(), 4U);
    // Reckoned apart: in thousandths of what the room holds.
    std::int64_t stock = 0;
    std::int64_t made = 0;
    for (const OldDatabase& of : room.databases) {
      for (const auto* colors : {&of.basics, &of.formulas})
        for (const OldColor& color : *colors) {
          stock += std::llround(static_cast<double>(color.inventory) * 1000);
          if (version >= 22)
            for (const OldLot& lot : color.lots) stock += std::llround(lot.quantity * 1000);
        }
      for (const OldBatch& batch : of.batches) made += std::llround(static_cast<double>(version < 12 ? batch.quantity : batch.actual) * 1000);
    }
    const auto inThousandths = [](const std::string& text) {
      const std::size_t point = text.find('.');
      std::string fraction = point == std::string::npos ? "" : text.substr(point + 1);
      EXPECT_LE(fraction.size(), 3U) << text;
      fraction.resize(3, '0');
      return std::stoll(text.substr(0, point) + fraction);
    };
    EXPECT_EQ(inThousandths(report.sums[0].After), stock);
    EXPECT_EQ(inThousandths(report.sums[1].After), made);
  }
}

TEST_F(UpdateTest, WhetherStockCountsItsLotsIsAsked) {
  OldRoom room;
  OldDatabase of{"INK", {}, {}, {}, {}};
  of.basics = {{"RED", "", 100.1F, 5, {}, {{"A", 33.3, ""}, {"", 0.7, ""}, {"B", -2.5, ""}}, false}, {"BLUE", "", 8, 5, {}, {}, false}};
  room.databases = {of};
  const auto stock = [&](const fs::path& path) {
    const auto file = Database::Open(path, OpenMode::ReadOnly);
    return file->Scalar("SELECT Inventory FROM INK_Basic WHERE Color_Name = 'RED'").Single();
  };
  const fs::path path = Old(30, room);
  const std::string before = ReadFileBytes(path);
  prompt.Expect("Lotted Inventory", Answer::Cancel,
                "The Inventory of the colors with lots adds up to 100.1, their lots add up to 31.5.\n\nDoes the Inventory of a color "
                "count what lies in its lots too?\nYes takes the lots off it, No leaves it as it is.");
  const auto declined = UpdateDataFile(session, {path});
  ASSERT_FALSE(declined);
  EXPECT_TRUE(declined.error().declined);
  EXPECT_EQ(ReadFileBytes(path), before);
  EXPECT_EQ(Files(), (std::set<std::string>{"Old.vkd"}));

  prompt.Expect("Lotted Inventory", Answer::Yes);
  UpgradeReport report = Update({path, File("Yes.vkd")});
  EXPECT_TRUE(report.Balanced()) << UpgradeText(report);
  EXPECT_EQ(report.sums[0].After, "108.1");
  EXPECT_EQ(stock(report.file), 66.8F);
  prompt.Expect("Lotted Inventory", Answer::No);
  report = Update({path, File("No.vkd")});
  EXPECT_TRUE(report.Balanced()) << UpgradeText(report);
  EXPECT_EQ(report.sums[0].After, "139.6");
  EXPECT_EQ(stock(report.file), 98.3F);
  // What lay in no lot, or in less than nothing, is told.
  std::string told;
  for (const StepLine& line : report.left) told += line.What + "\n";
  EXPECT_NE(told.find("RED: 0.700 lay in a lot without a name and is unlotted stock now"), std::string::npos) << told;
  EXPECT_NE(told.find("RED: the lot B held -2.500, which is unlotted stock now"), std::string::npos) << told;
  const auto file = Database::Open(report.file, OpenMode::ReadOnly);
  EXPECT_EQ(file->Scalar("SELECT COUNT(*) FROM INK_Basic_LotInv WHERE LotRefID = 1 AND LotNumber = 'A'").Whole(), 1);
  EXPECT_EQ(file->Scalar("SELECT COUNT(*) FROM INK_Basic_LotInv").Whole(), 1);
  EXPECT_TRUE(HasStockHistory(*file));
  EXPECT_EQ(ReadFileBytes(path), before);
}

TEST_F(UpdateTest, MarkedFilesKeepTheirMarkAndOthersAreRefused) {
  OldRoom room = MakeOldRoom(3);
  const auto made = [&](int version, int says) {
    auto tables = OldTables(room, version, 0);
    tables[0].rows[0]["FileVersion"] = says;
    const fs::path path = File("V" + std::to_string(says) + ".vkd");
    WriteOldFile(path, tables);
    return path;
  };
  for (const int version : {2, 20, 39}) {
    const UpgradeReport report = Update({made(version, 100 + version)});
    EXPECT_EQ(report.toVersion, 140);
    ExpectUpdated(report, room, version);
  }
  for (const int says : {0, 1, 41, 101, 141}) {
    const auto refused = UpdateDataFile(session, {made(39, says)});
    ASSERT_FALSE(refused) << says;
    EXPECT_EQ(refused.error().text, File("V" + std::to_string(says) + ".vkd").string() + " has the file version " + std::to_string(says) +
                                        ". Data files of the versions 2 to 39 can be updated.");
  }
  const fs::path present = File("Now.vkd");
  CreateFile(present);
  EXPECT_EQ(UpdateDataFile(session, {present}).error().text, present.string() + " has the file version 40 and needs no update.");
  const fs::path old = made(30, 30);
  EXPECT_EQ(UpdateDataFile(session, {old, present}).error().text, present.string() + " already exists.");
  EXPECT_EQ(UpdateDataFile(session, {old, File("Other.mdb")}).error().title, "File Name");
}

TEST_F(UpdateTest, ADatabaseOfGuidesGetsItsNamesAndPages) {
  const auto room = [](const std::string& prefix) {
    OldRoom made;
    made.users = false;
    OldDatabase of{"PANTONE", {}, {}, {}, {}};
    of.basics = {{prefix + " EMBER", "E", 1, 1, {}, {}, false}, {"PANTONE CLEAR", "C", 1, 1, {}, {}, false}, {"HOUSE", "H", 1, 1, {}, {}, false}};
    of.formulas = {{prefix + " 90001", "", 0, 0, {{prefix + " EMBER", 12.5F}, {"PANTONE CLEAR", 87.5F}}, {}, false}};
    of.batches = {{1, prefix + " 90001", 10, 10, {{prefix + " EMBER", 10, 1, "", 0, ""}}, "2020-01-02 00:00:00", "", ""}};
    made.databases = {of};
    return made;
  };
  // Without a template the names are respelled wherever they stand, and what is missing is told.
  UpgradeReport report = Update({Old(12, room("PANTONE\u00AE"), 1, "Marked.vkd")});
  EXPECT_TRUE(report.Balanced());
  std::string told;
  for (const StepLineOf& line : LinesOf(report)) told += line.Outcome + " " + line.Table + ": " + line.What + "\n";
  for (const char* expected : {"Renamed PANTONE_Mix: Color_Name: PANTONE\u00AE 90001 is called PANTONE 90001 now", "2014PMS_Update.txt is not there",
                               "2016PMS_Update.txt is not there", "there is no template of color guides", "TemplateFile is pdbt.vkt"})
    EXPECT_NE(told.find(expected), std::string::npos) << expected << "\n" << told;
  for (const auto& [table, rows] : RowsAfterUpdate(room("PANTONE"), 12, kToday))
    if (table != "PANTONE_Info") ExpectRows(*Database::Open(report.file, OpenMode::ReadOnly), table, rows);

  // With one, what it knows is read from it; what it does not know stays.
  const TemplateTexts texts;
  ASSERT_TRUE(texts.Build());
  fs::create_directories(session.ProgramFolder);
  fs::copy_file(texts.out, session.ProgramFolder / "pdbt.vkt");
  auto tables = OldTables(room("PANTONE"), 30, 0);
  for (OldTable& table : tables)
    for (OldRow& row : table.rows)
      if (table.layout.name == "PANTONE_Basic") row["Red"] = 9;
  const fs::path path = File("Guide.vkd");
  WriteOldFile(path, tables);
  report = Update({path});
  const auto file = Database::Open(report.file, OpenMode::ReadOnly);
  const auto red = [&](const char* name) { return file->Scalar("SELECT Red FROM PANTONE_Basic WHERE Color_Name = ?", {name}).Whole(); };
  EXPECT_EQ(red("PANTONE EMBER"), 250);
  EXPECT_EQ(red("HOUSE"), 9);
  EXPECT_EQ(file->Scalar("SELECT Page FROM PANTONE_Mix").Text(), "3");
}

TEST_F(UpdateTest, WhatIsMissingIsMadeAndWhatHasNoPlaceIsTold) {
  // No Database at all, no users.
  OldRoom empty;
  empty.users = false;
  UpgradeReport report = Update({Old(2, empty, 0, "Empty.vkd")});
  ExpectUpdated(report, empty, 2);
  EXPECT_FALSE(Database::Open(report.file, OpenMode::ReadOnly)->TableExists("Users"));

  OldRoom room = MakeOldRoom(12);
  auto tables = OldTables(room, 20, 1);
  std::erase_if(tables, [](const OldTable& table) { return table.layout.name == "JobRecords"; });
  for (OldTable& table : tables) {
    if (table.layout.name == "FileInfo") table.rows[0]["DBList"] = Value();
    if (table.layout.name == "INK_Mix") {
      table.layout.fields.push_back({"BC16", FieldType::Text, 30, true});
      table.layout.fields.push_back({"BQ16", FieldType::Single});
      table.layout.fields.push_back({"Shade", FieldType::Text, 30, true});
      table.rows[0]["BC16"] = "RED";
      table.rows[0]["BQ16"] = 1.5F;
      table.rows[1]["Shade"] = "light";
      table.rows.push_back(table.rows[0]);
      table.rows.back()["Color_Code"] = "TWIN";
      table.rows.back()["BC16"] = Value();
    }
    if (table.layout.name == "SPOT_Basic") table.rows[0]["Color_Code"] = std::string(40, 'c');
  }
  OldTable stray = tables.back();
  stray.layout.name = "OLD_Info";
  tables.push_back(stray);
  const fs::path path = File("Odd.vkd");
  WriteOldFile(path, tables);
  report = Update({path});
  std::string told;
  for (const StepLineOf& line : LinesOf(report)) told += line.Outcome + " " + line.Table + ": " + line.What + "\n";
  for (const char* expected : {"Refused INK_Batch: the Batch 000006 is of the Job J1, of which there is no record", "Refused INK_Mix: PINK: BC16 holds RED with 1.500, for which there is no place",
                               "Refused INK_Mix: the field Shade is none of the layout: its values did not come in",
                               "Refused OLD_Info: the table belongs to no Database that DBList names",
                               "Changed FileInfo: DBList was empty and names INK now, of which the tables are there",
                               "Changed JobRecords: the table was made: the file has none", "Renamed INK_Mix: PINK stood twice: row 3 is called DupColor 03-10-26 DC1 now",
                               "Changed SPOT_Basic: Color_Code: it did not fit and was cut or respelled"})
    EXPECT_NE(told.find(expected), std::string::npos) << expected << "\n" << told;
  for (const UpgradeTable& table : report.tables) EXPECT_EQ(table.Read + table.Made, table.Written + table.Left) << table.Table;
}

TEST_F(UpdateTest, AFailureInAnyStepLeavesTheFileAndNothingElse) {
  OldRoom room = MakeOldRoom(6);
  room.databases.resize(1);
  std::erase_if(room.jobs, [](const OldJob& job) { return job.database != "INK"; });
  const fs::path path = Old(2, room);
  const std::string before = ReadFileBytes(path);
  std::vector<std::string> texts;
  Update({path, {}, true});
  EXPECT_EQ(ReadFileBytes(path), before);
  EXPECT_EQ(Files(), (std::set<std::string>{"Old.vkd"}));
  for (const LadderBlock& block : LadderBlocks()) texts.emplace_back(block.status);
  for (const char* later : {"Creating LotRefID - Batch Tables:\nDatabase: INK", "Creating Lot Data - Job Table:", "Writing the updated file ...\nINK_Batch"})
    texts.emplace_back(later);
  for (const std::string& text : texts) {
    SCOPED_TRACE(text);
    bool thrown = false;
    progress.at = [&](const std::string& shown) {
      if (shown != text || thrown) return;
      thrown = true;
      throw Failure("disk", "is full");
    };
    try {
      Update({path});
      ADD_FAILURE() << "it went on";
    } catch (const UpdateFailure& failure) {
      EXPECT_TRUE(failure.text.starts_with("Couldn't") || failure.text.starts_with("Adding Dispenser") || failure.text.starts_with("User Records")) << failure.text;
      EXPECT_TRUE(failure.text.ends_with("is full.")) << failure.text;
    }
    EXPECT_EQ(ReadFileBytes(path), before);
    EXPECT_EQ(Files(), (std::set<std::string>{"Old.vkd", "Old.vkb"}));
  }
}

TEST_F(UpdateTest, AKilledUpdateLeavesTheFileAndTheNextOneSweeps) {
  const OldRoom room = MakeOldRoom(12);
  const fs::path path = Old(21, room);
  const std::string before = ReadFileBytes(path);
  for (const char* text : {"Copying the data file ...", "Adding new field to table:", "Writing the updated file ...\nSPOT_Batch", "Repairing Null Values - INK_Basic"}) {
    const pid_t child = ::fork();
    if (child == 0) {
      progress.at = [&](const std::string& shown) {
        if (shown == text) ::raise(SIGKILL);
      };
      static_cast<void>(UpdateDataFile(session, {path}));
      ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status)) << text;
    EXPECT_EQ(ReadFileBytes(path), before) << text;
    EXPECT_GT(Files().size(), 1U);
  }
  ExpectUpdated(Update({path}), room, 21);
  EXPECT_EQ(Files(), (std::set<std::string>{"Old.vkd", "Old.vkb", "Old Update Report.txt"}));
}

TEST(ExactSumTest, AddsDecimalsWithoutLoss) {
  ExactSum sum;
  EXPECT_EQ(sum.Text(), "0");
  for (int i = 0; i < 1000; ++i) sum.Add(0.1F);
  EXPECT_EQ(sum.Text(), "100");
  sum.Add(-33.3F);
  EXPECT_EQ(sum.Text(), "66.7");
  sum.Add(-66.701F);
  EXPECT_EQ(sum.Text(), "-0.001");
  sum.Add(1e10);
  sum.Add(0.00000001F);
  EXPECT_EQ(sum.Text(), "9999999999.99900001");
  sum.Add(-3e10);
  EXPECT_EQ(sum.Text(), "-20000000000.00099999");
}

}  // namespace
}  // namespace vellumark::test
