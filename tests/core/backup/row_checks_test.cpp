#include "core/datafile/row_checks.h"

#include <gtest/gtest.h>

#include "core/base/files.h"
#include "core/datafile/lifecycle.h"
#include "support/flips.h"
#include "support/hand_edit.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;

// A Data File that others write into: the engine's common tools, as they come with Python.
class RowChecks : public testing::Test {
 protected:
  RowChecks() { FillInkRoom(room, 200); }

  void Close() { room.session.DataFileDB.reset(); }
  void Open() {
    room.session.DataFileDB = Database::Open(room.session.DataFileName, OpenMode::Exclusive);
    room.session.DataFileDB->SetChanges(&room.session.changes);
  }
  void ByHand(const std::string& sql) {
    Close();
    test::EditByHand(room.session.DataFileName, sql);
    Open();
  }
  /// What the rule finds, a line each.
  std::string Stray() {
    std::string text;
    for (const CheckFault& fault : CheckDataFileRules(room.session, CheckDepth::Deep).faults)
      if (fault.rule == "Rows")
        text += fault.Table + " " + std::to_string(fault.row) + " " + fault.name + ": " + fault.what + "\n";
    return text;
  }
  Database& File() { return room.session.File(); }

  test::InkRoom room;
};

TEST_F(RowChecks, AHandEditIsNamedAndAccepted) {
  EXPECT_EQ(Stray(), "");
  ByHand("UPDATE INK_Basic SET PurchaseCost = 4.1 WHERE Color_Name = 'INK 3';"
         "INSERT INTO INK_Mix (Color_Name, Color_Set) VALUES ('BY HAND', '');"
         "UPDATE INK_Mix SET BC0 = 'INK 9', BQ0 = 75 WHERE Color_Name = 'MIX 1';"
         "DELETE FROM INK_Batch WHERE BatchNo = 7;"
         "UPDATE MSysStockHistory SET Reason = 'another' WHERE ID = 2;"
         "CREATE TABLE Mine (a, b); INSERT INTO Mine VALUES (1, 2);");
  EXPECT_EQ(Stray(),
            "INK_Basic 4 INK 3: The row is not as this program wrote it.\n"
            "INK_Batch 7 : The row is gone, and this program did not remove it.\n"
            "INK_Mix 2 MIX 1: The row is not as this program wrote it.\n"
            "INK_Mix 201 BY HAND: The row was added, and not by this program.\n"
            "MSysStockHistory 2 : The row is not as this program wrote it.\n"
            "Mine 1 : The row was added, and not by this program.\n");
  ByHand("DROP TABLE Mine");
  room.session.CurrentUser = "ANN";
  room.session.Perm_Advanced = 0;
  EXPECT_FALSE(AcceptStrayRows(room.session));
  room.session.Perm_Advanced = 1;
  const auto accepted = AcceptStrayRows(room.session);
  ASSERT_TRUE(accepted) << accepted.error().text;
  EXPECT_EQ(accepted->rows.size(), 5U);
  EXPECT_EQ(Stray(), "");
  EXPECT_TRUE(AcceptStrayRows(room.session)->rows.empty());
  // A price is kept as this program keeps prices, the formulas have it in them, and a recipe is found by its ingredients.
  EXPECT_EQ(room.Scalar("SELECT PurchaseCost FROM INK_Basic WHERE Color_Name = 'INK 3'").Number(), 4.1F);
  EXPECT_EQ(room.Scalar("SELECT BasicCost FROM INK_Mix WHERE Color_Name = 'MIX 3'").Single(), 5.45F);
  EXPECT_EQ(room.Scalar("SELECT Color_Set FROM INK_Mix WHERE Color_Name = 'MIX 1'").Text(), "<INK 9><INK 4>");
  ByHand("UPDATE INK_Basic SET PurchaseCost = 1e300 WHERE Color_Name = 'INK 3'");
  EXPECT_FALSE(AcceptStrayRows(room.session));
  File().Execute("UPDATE INK_Basic SET PurchaseCost = 4.0999999046325684 WHERE Color_Name = 'INK 3'");
  room.Breaks("DesignUses");
}

// A table made anew by hand in the engine's other form has no rows that digests could be kept of; its values are judged
// all the same.
TEST_F(RowChecks, ATableOfAnotherFormIsReadAllTheSame) {
  room.Breaks("Fields");
  ByHand("CREATE TABLE Other (Name, Manufacturer, Drive, Pathway, Additives, Recycles, FileType,"
         " RowKey INTEGER PRIMARY KEY) WITHOUT ROWID;"
         "INSERT INTO Other (Name, Additives, RowKey) VALUES ('LEFT', 'many', 1);"
         "DROP TABLE Dispenser; ALTER TABLE Other RENAME TO Dispenser");
  std::string values;
  for (const CheckFault& fault : CheckDataFileRules(room.session, CheckDepth::Deep).faults)
    if (fault.rule == "Fields" || fault.rule == "Rows") values += fault.rule + " " + FaultText(fault) + "\n";
  EXPECT_EQ(values,
            "Fields Dispenser, row 1 (LEFT): The field Dispenser.Additives cannot hold \"many\": it is neither true nor false "
            "[Fields]\n");
}

TEST_F(RowChecks, EveryWayOfWritingKeepsThem) {
  File().Execute("UPDATE INK_Basic SET Notes = 'outside of a transaction'");
  {
    Transaction transaction(File());
    File().Execute("UPDATE INK_Mix SET Notes = 'given up'");
    File().Execute("DELETE FROM INK_Batch WHERE BatchNo = 3");
  }
  {
    const test::Arranging arranging;
    Transaction transaction(File());
    for (int n = 0; n < 3000; ++n)
      InsertRow(File(), schema::BasicLab, "INK_Basic_LAB", {{"Color_Name", "INK " + std::to_string(n % 20)}});
    File().Execute("DELETE FROM INK_Basic_LAB WHERE RowKey % 3 = 0");
    File().Execute("UPDATE INK_Mix SET Notes = Notes || '.'");
    File().RenameTable("INK_Basic_LAB", "RED_Basic_LAB", schema::BasicLab);
    File().CreateTable("INK_Basic_LAB", schema::BasicLab);
    InsertRow(File(), schema::BasicLab, "INK_Basic_LAB", {{"Color_Name", "INK 1"}});
    transaction.Commit();
  }
  File().Execute("DELETE FROM INK_Batch");  // the engine would empty it without a look at its rows
  File().Execute("ALTER TABLE INK_Batch ADD COLUMN Extra TEXT");
  Close();
  Open();
  EXPECT_EQ(Stray(), "");
  CompactFile(File());
  Close();
  ByHand("UPDATE RED_Basic_LAB SET Lab_Note = 'x' WHERE RowKey = 2999;"
         "UPDATE INK_Basic_LAB SET Lab_Note = 'x' WHERE RowKey = 1;"
         "INSERT INTO INK_Batch (BatchNo) VALUES (1)");
  EXPECT_EQ(Stray(),
            "INK_Basic_LAB 1 INK 1: The row is not as this program wrote it.\n"
            "INK_Batch 1 : The row was added, and not by this program.\n"
            "RED_Basic_LAB 2999 : The row is not as this program wrote it.\n");
  // Small saves beside large ones, one taken back among them: the later one counts.
  const auto note = [&](const char* where, const char* text, bool commit = true) {
    const test::Arranging arranging;
    Transaction transaction(File());
    File().Execute(std::string("UPDATE INK_Mix SET Notes = '") + text + "' " + where);
    if (commit) transaction.Commit();
  };
  for (int n = 0; n < 300; ++n) note("WHERE RowKey = 7", n % 2 == 0 ? "odd" : "even");
  note("WHERE RowKey = 7", "one");
  note("", "all");
  note("WHERE RowKey = 8", "one");
  note("", "given up", false);
  note("", "all again");
  note("WHERE RowKey = 9", "one");
  Close();
  Open();
  note("WHERE RowKey = 9", "other");
  {
    const test::Arranging arranging;
    Transaction transaction(File());
    File().CreateTable("BLUE_Basic_LAB", schema::BasicLab);
    InsertRow(File(), schema::BasicLab, "BLUE_Basic_LAB", {{"Color_Name", "INK 1"}});
    transaction.Commit();
  }
  {
    Transaction givenUp(File());
    File().RenameTable("INK_Basic_LAB", "GREEN_Basic_LAB", schema::BasicLab);
  }
  File().DropTable("BLUE_Basic_LAB");
  File().DropTable("RED_Basic_LAB");
  File().Execute("DELETE FROM INK_Batch");
  File().Execute("UPDATE INK_Basic_LAB SET Lab_Note = ''");
  EXPECT_EQ(Stray(), "") << "what this program writes it knows";
}

TEST_F(RowChecks, AFileOfAnEarlierProgramGetsThemAndADamagedRecordIsNoRow) {
  Close();
  ByHand("DROP TABLE MSysRowChecks; UPDATE INK_Mix SET Notes = 'before' WHERE RowKey = 5");
  EXPECT_EQ(Stray(), "");
  ByHand("UPDATE INK_Mix SET Notes = 'after' WHERE RowKey = 5");
  EXPECT_EQ(Stray(), "INK_Mix 5 MIX 4: The row is not as this program wrote it.\n");

  // A digest itself is damaged: no row is called changed, and no save of one of them hides it.
  ByHand("UPDATE INK_Mix SET Notes = 'before' WHERE RowKey = 5;"
         "UPDATE MSysRowChecks SET Checks = zeroblob(length(Checks)) WHERE TableName = 'INK_Mix' AND Block = 1");
  const std::string damaged =
      "INK_Mix 64 MIX 63: What this program keeps to know this row and those behind it by is damaged.\n";
  EXPECT_EQ(Stray(), damaged);
  File().Execute("UPDATE INK_Mix SET Notes = 'saved' WHERE RowKey = 70");
  EXPECT_EQ(Stray(), damaged);
  ASSERT_TRUE(AcceptStrayRows(room.session));
  EXPECT_EQ(Stray(), "");
  // So it is with those that a small save wrote.
  File().Execute("UPDATE INK_Mix SET Notes = 'saved again' WHERE RowKey = 70");
  ByHand(
      "UPDATE MSysRowLog SET Sums = substr(Sums, 1, 8) || x'07' || substr(Sums, 10) WHERE Entry = (SELECT MAX(Entry) "
      "FROM MSysRowLog)");
  const std::string stray = Stray();
  EXPECT_TRUE(stray.starts_with("MSysRowLog ")) << stray;
  EXPECT_TRUE(stray.ends_with("is damaged.\nINK_Mix 70 MIX 69: The row is not as this program wrote it.\n")) << stray;
  ASSERT_TRUE(AcceptStrayRows(room.session));
  EXPECT_EQ(Stray(), "");
}

TEST(Flips, ABitThatTurnsOverIsNoticed) {
  test::InkRoom room;
  FillInkRoom(room, 40);
  room.session.DataFileDB.reset();
  test::FlippedFile file(room.session.DataFileName);
  test::ExpectNoticed(file, 120, 8);
  // And in the names of the tables that are kept for this, which the engine finds in whatever letters.
  const std::string bytes = ReadFileBytes(room.session.DataFileName);
  for (std::size_t at = bytes.find("MSysRow"); at != std::string::npos; at = bytes.find("MSysRow", at + 1))
    for (const std::size_t bit : {at * 8 + 5, (at + 7) * 8 + 5, (at + 7) * 8}) {
      file.Flip(bit);
      EXPECT_TRUE(file.ReadsTheSame() || !file.IsSound()) << "bit " << bit % 8 << " of byte " << bit / 8;
      file.Back(bit);
    }
}

}  // namespace
}  // namespace vellumark
