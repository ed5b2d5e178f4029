#include "core/shell/database_menu.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/colors/basics.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/schema.h"
#include "core/shell/opening.h"
#include "support/ink_room.h"
#include "support/template_room.h"

namespace vellumark {
namespace {

struct MenuRoom : test::InkRoom {
  MenuRoom() {
    session.ProgramFolder = folder / "Program";
    Basic("BLUE");
    Mix("SEA", {{"BLUE", 100.0F}});
    EXPECT_TRUE(NewDatabase(session, "flexo", {}));
    StoreCurrentDatabase(session.File(), "INK");
    OpenDatabase(session);
    for (const char* database : {"INK", "INK", "FLEXO"})
      AddRow(schema::JobRecords, {{"JobNumber", "J1"}, {"Color_Name", "SEA"}, {"Database", database}});
    AddRow(schema::Designs, {{"DesignID", "D1"}, {"IngDB0", "INK"}, {"IngDB1", "FLEXO"}, {"IngDB9", "INK"}});
  }
  std::int64_t JobsOf(const std::string& database) {
    return Scalar("SELECT COUNT(*) FROM JobRecords WHERE Database = ?1", {database}).Whole();
  }
  std::vector<std::string> DBList() { return ReadFileInfo(session.File()).dbList; }
};

using Names = std::vector<std::string>;

TEST(DatabaseMenu, ARenameReachesEveryPlaceOfTheName) {
  MenuRoom room;
  Session& session = room.session;
  std::size_t told = 0;
  const auto subscription = session.changes.Subscribe([&](const std::vector<Change>& changes) {
    // Whoever is told finds the Database open under its new name.
    EXPECT_EQ(BasicNames(session).size(), 1U);
    for (const Change& change : changes)
      if (change == Change{Change::Kind::DatabaseList, "INK", "", Change::What::Renamed, "A NAME OF FIFTEE"}) ++told;
  });
  EXPECT_FALSE(RenameDatabase(session, "INK", "A NAME OF FIFTEE"));  // sixteen
  const auto renamed = RenameDatabase(session, "ink", " a name of 15 ch ");
  ASSERT_TRUE(renamed) << renamed.error().text;
  EXPECT_EQ(*renamed, "A NAME OF 15 CH");
  EXPECT_EQ(session.CurrentDatabase, "A NAME OF 15 CH");
  EXPECT_EQ(session.databaseList, (Names{"A NAME OF 15 CH", "FLEXO"}));
  EXPECT_EQ(room.DBList(), session.databaseList);
  EXPECT_EQ(ReadFileInfo(session.File()).currentDB, "A NAME OF 15 CH");
  EXPECT_TRUE(MissingParts(session.File(), session.databaseList).empty());
  EXPECT_FALSE(session.File().TableExists("INK_Info"));
  EXPECT_EQ(room.JobsOf("A NAME OF 15 CH"), 2);
  EXPECT_EQ(room.JobsOf("INK"), 0);
  EXPECT_EQ(room.Scalar("SELECT IngDB0 || '/' || IngDB1 || '/' || IngDB9 FROM Designs").Text(),
            "A NAME OF 15 CH/FLEXO/A NAME OF 15 CH");
  EXPECT_EQ(MixNames(session), Names{"SEA"});
  // The old name is free again, its indexes with it, and one that is not current goes the same way.
  EXPECT_TRUE(NewDatabase(session, "INK", {}));
  EXPECT_TRUE(RenameDatabase(session, "FLEXO", "GRAVURE"));
  EXPECT_EQ(session.databaseList, (Names{"A NAME OF 15 CH", "GRAVURE", "INK"}));
  EXPECT_EQ(session.CurrentDatabase, "A NAME OF 15 CH");
  for (const char* index : {"INK_Mix_Color_Set_Index", "GRAVURE_Mix_Color_Set_Index"})
    EXPECT_EQ(std::ranges::count(session.File().StoredIndexes(), index), 1) << index;
}

TEST(DatabaseMenu, RenameRefusals) {
  MenuRoom room;
  struct Case {
    const char* name;
    const char* typed;
    const char* title;
    const char* text;
  };
  for (const Case& c : {Case{"INK", "  ", "Bad Database Name", "Enter a valid name for the database"},
                        Case{"INK", "A.B", "Bad Database Name",
                             "The name A.B may hold only letters from A to Z, digits, blanks, / and -."},
                        Case{"INK", "flexo", "Database Name Already Used",
                             "FLEXO Database already exists in this Vellumark Data File. Please choose another name."},
                        Case{"INK", "INK", "Database Name Already Used",
                             "INK Database already exists in this Vellumark Data File. Please choose another name."}}) {
    const auto renamed = RenameDatabase(room.session, c.name, c.typed);
    ASSERT_FALSE(renamed) << c.typed;
    EXPECT_EQ(renamed.error(), (Refusal{c.title, c.text, "txtDBName"}));
  }
  EXPECT_EQ(RenameDatabase(room.session, "GONE", "NEW").error().title, "Database Not Found");
  room.session.CurrentUser = "ANN";
  room.session.Perm_Databases = 0;
  EXPECT_EQ(RenameDatabase(room.session, "INK", "NEW").error().title, "Permission Denied");
  EXPECT_EQ(NewDatabase(room.session, "NEW", {}).error().title, "Permission Denied");
  EXPECT_EQ(DeleteDatabases(room.session, {"FLEXO"}).error().title, "Permission Denied");
  room.session.ArchiveView = true;
  EXPECT_EQ(RenameDatabase(room.session, "INK", "NEW").error().title, "Archive or Backup Data File");
  EXPECT_EQ(room.DBList(), (Names{"INK", "FLEXO"}));
}

TEST(DatabaseMenu, ARenameThatFailsHalfWayChangesNothing) {
  MenuRoom room;
  room.Breaks("DatabaseList");
  // A table that nobody owns is in the way of the last but one.
  room.session.File().Execute("CREATE TABLE NEW_Additives (x)");
  EXPECT_THROW(static_cast<void>(RenameDatabase(room.session, "INK", "NEW")), Failure);
  EXPECT_EQ(room.session.CurrentDatabase, "INK");
  EXPECT_EQ(room.session.databaseList, (Names{"INK", "FLEXO"}));
  EXPECT_EQ(room.DBList(), room.session.databaseList);
  EXPECT_EQ(room.JobsOf("INK"), 2);
  EXPECT_TRUE(MissingParts(room.session.File(), room.session.databaseList).empty());
  EXPECT_EQ(BasicNames(room.session).size(), 1U);
}

TEST(DatabaseMenu, DeletingTakesTablesAndJobLinesAndNeverTheCurrentOne) {
  MenuRoom room;
  Session& session = room.session;
  ASSERT_TRUE(NewDatabase(session, "THIRD", {}));
  EXPECT_EQ(DeleteDatabases(session, {"FLEXO", "ink"}).error().text,
            "NOTE - The active database INK can't be selected for deletion.");
  EXPECT_EQ(DeleteDatabases(session, {"GONE"}).error().title, "Database Not Found");
  ASSERT_FALSE(*DeleteDatabases(session, {}));
  const std::string question =
      "Delete these databases?\nWARNING - Deleting a database will permanently remove it from the Data File.";
  room.prompt.Expect("Delete Databases?", Answer::No, question);
  EXPECT_FALSE(*DeleteDatabases(session, {"FLEXO"}));
  EXPECT_EQ(session.databaseList.size(), 3U);

  room.prompt.Expect("Delete Databases?", Answer::Yes, question);
  room.prompt.Expect("Databases Deleted", Answer::Ok, "Selected databases have been deleted.");
  EXPECT_TRUE(*DeleteDatabases(session, {"third", "FLEXO", "THIRD"}));
  EXPECT_EQ(session.databaseList, (Names{"INK"}));
  EXPECT_EQ(room.DBList(), (Names{"INK"}));
  for (const auto& names : {session.File().TableNames(), session.File().StoredIndexes()})
    EXPECT_TRUE(std::ranges::none_of(names, [](const std::string& name) { return name.starts_with("FLEXO"); }));
  EXPECT_EQ(room.JobsOf("FLEXO"), 0);
  EXPECT_EQ(room.JobsOf("INK"), 2);
  EXPECT_TRUE(NewDatabase(session, "FLEXO", {}));
}

TEST(DatabaseMenu, NewTakesItsContentFromWhereItIsTold) {
  MenuRoom room;
  Session& session = room.session;
  std::filesystem::create_directories(session.ProgramFolder);
  test::BuildSampleTemplate(session.ProgramFolder / kTemplateFileName);
  using Kind = NewDatabaseContent::Kind;
  ASSERT_TRUE(NewDatabase(session, "EMPTY", {}));
  ASSERT_TRUE(NewDatabase(session, "GOE", {Kind::Guides, {"Goe"}, {}}));
  ASSERT_TRUE(NewDatabase(session, "COPY", {Kind::Copy, {}, "ink"}));
  EXPECT_EQ(room.DBList(), session.databaseList);
  EXPECT_EQ(CountRows(session.File(), "EMPTY").basics, 0);
  EXPECT_EQ(ReadDatabaseInfo(session.File(), "EMPTY").fullName, "Custom Database");
  EXPECT_EQ(CountRows(session.File(), "GOE").formulas, 28);
  EXPECT_EQ(CountRows(session.File(), "COPY").formulas, 1);
  EXPECT_EQ(session.CurrentDatabase, "INK");
  // A Database of guides knows its book once it is open.
  ASSERT_TRUE(ChangeDatabase(session, "GOE"));
  EXPECT_EQ(session.FullName, "Sample guides (invented colors)");
  ASSERT_TRUE(session.templateDB);
  ASSERT_TRUE(RenameDatabase(session, "GOE", "BOOK"));
  EXPECT_TRUE(session.templateDB);
}

}  // namespace
}  // namespace vellumark
