#include "core/shell/repairs.h"

#include <gtest/gtest.h>

#include <fstream>

#include "core/base/files.h"
#include "core/session/users.h"
#include "support/data_files.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;

class Repairs : public testing::Test {
 protected:
  Repairs() {
    room.MakeFile(file);
    room.session.DataFileName = file.string();
    OpenDataFile(room.session, room.windows);
  }
  Result<RepairReport> Repair(Answer answer = Answer::Ok) {
    room.prompt.Expect("Repair Data File", answer,
                       "Repairing the Data File may take a few minutes.\nClick OK to continue.");
    return RepairDataFile(room.session, room.windows, [&] {
      closed = true;
      return mayClose;
    });
  }
  // The messages of a repair that is carried out, of a file with an empty Database.
  void AskedAndRepaired(const std::string& name) {
    room.prompt.Expect("Repair Data File")
        .Expect("Repair Data File", Answer::Ok, name + " is an empty Database. You may want to delete it.")
        .Expect("Repair Data File", Answer::Ok, "Data File Repairing Completed.");
  }
  // Makes nonsense of the place that a text has in the closed file.
  void Damage(const std::string& what) {
    std::string bytes = ReadFileBytes(file);
    ASSERT_NE(bytes.find(what), std::string::npos);
    bytes.replace(bytes.find(what), 3, "\x01\x02\x03");
    std::ofstream(file, std::ios::binary) << bytes;
  }

  test::DataFileRoom room;
  fs::path file = room.folder / "Ink.vkd";
  bool closed = false;
  bool mayClose = true;
};

TEST_F(Repairs, AnswersDecideAndTheFileIsOpenAfterwardsAsBefore) {
  EXPECT_TRUE(Repair(Answer::Cancel).error().declined);
  EXPECT_FALSE(closed);
  mayClose = false;
  EXPECT_TRUE(Repair().error().declined);
  mayClose = true;
  EXPECT_TRUE(room.session.RecordsetsOpen);

  for (const char* rule : {"DatabaseList", "Counters", "FileInfo"})
    room.folder.Breaks(rule);  // in the copy that is kept
  // The list of Databases and the numbers that the session holds are those of the repaired file.
  room.session.File().Execute(
      "UPDATE FileInfo SET DBList = '', BatchNumber = 0; INSERT INTO INK_Batch (Color_Name, BatchNo) VALUES ('X', 41)");
  int told = 0;
  const auto listening = room.session.changes.Subscribe([&](const std::vector<Change>& changes) {
    for (const Change& change : changes) told += change.kind == Change::Kind::DatabaseList;
  });
  AskedAndRepaired("INK");
  const auto report = RepairDataFile(room.session, room.windows, [] { return true; });
  ASSERT_TRUE(report) << report.error().text;
  EXPECT_EQ(room.session.databaseList, std::vector<std::string>{"INK"});
  EXPECT_EQ(room.session.CurrentDatabase, "INK");
  EXPECT_EQ(room.session.BatchNumber, 42);
  EXPECT_TRUE(room.session.RecordsetsOpen);
  EXPECT_EQ(told, 1);
}

TEST_F(Repairs, NoRightIsAskedAndACopyIsLeftAlone) {
  room.prompt.Expect("");
  ASSERT_TRUE(CreateUsers(room.session, "BOSS", "X"));
  room.session.CurrentUser = "ANNA";
  room.session.IsAdminUser = false;
  TakeRights(room.session, {});
  EXPECT_TRUE(Repair(Answer::Cancel).error().declined) << "she is asked like everybody";
  room.session.ArchiveView = true;
  EXPECT_EQ(RepairDataFile(room.session, room.windows, [] { return true; }).error().title,
            "Archive or Backup Data File");
  room.session.ArchiveView = false;
  // Closed, a copy is known by its name.
  CloseDataFile(room.session, room.windows);
  fs::create_directories(room.folder / "Auto Backup");
  fs::copy_file(file, room.folder / "Auto Backup" / "Ink.vkd");
  room.session.DataFileName = room.folder / "Auto Backup" / "Ink.vkd";
  EXPECT_NE(RepairDataFile(room.session, room.windows, [] { return true; }).error().text.find("archive or backup copy"),
            std::string::npos);
}

TEST_F(Repairs, AFileThatDoesNotOpenIsRepairedForOneOfItsUsers) {
  room.folder.Breaks("Structure");
  room.prompt.Expect("");
  ASSERT_TRUE(CreateUsers(room.session, "BOSS", "X"));
  CloseDataFile(room.session, room.windows);
  LogInWithoutUsers(room.session);
  Damage("CREATE TABLE \"INK_Basic\"");
  EXPECT_THROW(OpenDataFile(room.session, room.windows), Failure);
  const std::string bytes = ReadFileBytes(file);

  // Whoever is no user of it gets nothing replaced.
  room.prompt.Expect("Repair Data File");
  room.windows.atLogin = [] { throw Failure("ANNA", "is not let in"); };
  EXPECT_THROW((void)RepairDataFile(room.session, room.windows, [] { return true; }), Failure);
  EXPECT_TRUE(ReadFileBytes(file) == bytes);
  EXPECT_FALSE(room.session.DataFileDB);

  room.session.CurrentUser.clear();
  room.windows.atLogin = [&] { EXPECT_TRUE(LogIn(room.session, "BOSS", "X")); };
  AskedAndRepaired("INK");
  const auto report = RepairDataFile(room.session, room.windows, [] { return true; });
  ASSERT_TRUE(report) << report.error().text;
  EXPECT_TRUE(room.session.DataFileOpen);
  EXPECT_EQ(room.session.CurrentDatabase, "INK");
  EXPECT_EQ(room.session.File().Faults(), std::vector<std::string>{});
  EXPECT_TRUE(ReadFileBytes(report->kept / "Ink.vkd") == bytes);
}

TEST_F(Repairs, OfWhatIsNoDataFileNothingIsTouched) {
  room.folder.Breaks("Structure");
  CloseDataFile(room.session, room.windows);
  std::ofstream(file) << "BLUE\tRED\t100\r\n";
  room.prompt.Expect("Repair Data File");
  const auto report = RepairDataFile(room.session, room.windows, [] { return true; });
  EXPECT_NE(report.error().text.find("Nothing of"), std::string::npos);
  EXPECT_EQ(ReadFileBytes(file), "BLUE\tRED\t100\r\n");
  room.session.DataFileName = room.folder / "Gone.vkd";
  EXPECT_FALSE(RepairDataFile(room.session, room.windows, [] { return true; }));
}

}  // namespace
}  // namespace vellumark
