// Opening, changing, renaming, compacting and making Data Files while one file operation fails, each in its turn: the
// state before or after stands, and ending the program then removes nobody's file.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "core/backup/deep_check.h"
#include "core/base/files.h"
#include "core/colors/basics.h"
#include "core/settings/settings.h"
#include "core/shell/data_files.h"
#include "core/shell/database_menu.h"
#include "support/core_desk.h"
#include "support/snapshot.h"
#include "support/struck.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;

struct Desk : test::CoreDesk {
  explicit Desk(const fs::path& folder) : CoreDesk(folder), path(folder) {}
  void OpenFirst() {
    StoreDefaultDataFile(session, (path / "First.vkd").string());
    Open(path / "First.vkd");
  }
  fs::path path;
};

// What is wrong with the state; 0 for a whole one.
int StateFault(Desk& desk) {
  Session& session = desk.session;
  if (session.LoadingDatabase) return 10;
  if (!session.DataFileOpen)
    return session.RecordsetsOpen || session.DataFileDB || !session.CurrentDatabase.empty() ? 11 : 0;
  if (!session.RecordsetsOpen || !session.DataFileDB) return 12;
  if (session.DataFileDB->Path() != session.DataFileName || !fs::exists(session.DataFileName)) return 13;
  const FileInfoRow info = ReadFileInfo(session.File());
  if (info.dbList != session.databaseList) return 14;
  if (std::ranges::find(info.dbList, session.CurrentDatabase) == info.dbList.end()) return 15;
  // Each Database holds one colour that bears the Database's first name.
  const std::string expected = session.CurrentDatabase == "GAMMA" ? "ALPHA" : session.CurrentDatabase;
  if (session.CurrentDatabase != "PANTONE" && BasicNames(session) != std::vector{expected}) return 16;
  if (session.FullName != expected && session.CurrentDatabase != "PANTONE") return 17;
  return 0;
}

int EndAndCount(Desk& desk) {
  EndSession(desk.session, desk.windows);
  int files = 0;
  for (const auto& entry : fs::directory_iterator(desk.path)) {
    if (entry.path().extension() != ".vkd") continue;
    desk.session.DataFileDB = Database::Open(entry.path(), OpenMode::Exclusive);
    const CheckAnswer check = CheckDataFileRules(desk.session, CheckDepth::Deep);
    for (const CheckFault& fault : check.faults)
      std::fprintf(stderr, "%s: %s\n", entry.path().c_str(), FaultText(fault).c_str());
    if (!check.Sound()) return 20;
    if (ReadFileInfo(desk.session.File()).dbList.empty()) return 21;
    desk.session.DataFileDB.reset();
    ++files;
  }
  return files < 2 ? 22 : 0;
}

TEST(StruckFiles, AFailureAtAnyStepLeavesAStateThatStandsAndEveryFile) {
  test::ScratchFolder pristine;
  for (const char* name : {"First.vkd", "Second.vkd"}) {
    CreateFile(pristine / name);
    const auto file = Database::Open(pristine / name, OpenMode::Exclusive);
    for (const std::string database : {"ALPHA", "BETA"}) {
      CreateEmptyDatabase(*file, database);
      file->Execute(fmt::format("INSERT INTO {0}_Basic (Color_Name) VALUES ('{0}')", database));
      file->Execute(fmt::format("UPDATE {0}_Info SET FullName = '{0}'", database));
    }
  }
  const struct {
    const char* name;
    std::function<bool(Desk&)> act;
  } acts[] = {
      {"start",
       [](Desk& desk) {
         return CloseDataFile(desk.session, desk.windows), OpenRecentDataFile(desk.session, desk.windows);
       }},
      {"open another",
       [](Desk& desk) { return *OpenOtherDataFile(desk.session, desk.path / "Second.vkd", desk.windows); }},
      {"change", [](Desk& desk) { return ChangeDatabase(desk.session, "BETA").has_value(); }},
      {"rename the Database", [](Desk& desk) { return RenameDatabase(desk.session, "ALPHA", "GAMMA").has_value(); }},
      {"rename the file", [](Desk& desk) { return RenameDataFile(desk.session, "Third", desk.windows).has_value(); }},
      {"compact", [](Desk& desk) { return CompactDataFile(desk.session), true; }},
      {"new file",
       [](Desk& desk) { return NewDataFile(desk.session, desk.path / "Third.vkd", desk.windows).has_value(); }},
  };
  for (const auto& act : acts) {
    int nth = 1;
    for (;; ++nth) {
      test::ScratchFolder folder;
      fs::copy(pristine.Path(), folder.Path(), fs::copy_options::recursive);
      const test::StruckRun run = test::RunStruck(nth, EIO, [&]() -> int {
        Desk desk(folder.Path());
        desk.OpenFirst();
        std::string told;
        test::MarkStep();
        try {
          act.act(desk);
        } catch (const Failure& failure) {
          told = failure.what();
        }
        test::MarkStep();
        const int fault = StateFault(desk);
        if (fault != 0) std::fprintf(stderr, "%s\n", told.c_str());
        return fault != 0 ? fault : EndAndCount(desk);
      });
      ASSERT_EQ(run.status, 0) << act.name << ", operation " << nth;
      if (!run.struck) break;
    }
    EXPECT_GT(nth, 10) << act.name;
    RecordProperty(act.name, nth - 1);
  }
}

}  // namespace
}  // namespace vellumark
