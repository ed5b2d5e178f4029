#include "core/colors/copy_database.h"

#include <gtest/gtest.h>

#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "support/ink_room.h"

namespace vellumark {
namespace {

struct CopyRoom : test::InkRoom {
  CopyRoom() {
    Basic("A", {{"Inventory", 12.0F}, {"PurchaseCost", 3.0F}, {"Date_Entered", "2020-01-01"}});
    Mix("GREEN", {{"A", 60}, {"LOST", 40}}, {{"Inventory", 5.0F}, {"Color_Set", "stale"}, {"AddSetName", "S"}});
    AddRow(schema::Additives, {{"SetName", "S"}, {"SetList", "<A>"}, {"Add_Name0", "A"}, {"Add_Percent0", 1.0F}});
    AddRow(schema::BasicLotInv, {{"LotCName", "A"}, {"LotNumber", "1"}});
    AddRow(schema::Batch, {{"Color_Name", "GREEN"}, {"BatchNo", 1}});
    session.File().Execute("UPDATE INK_Info SET FullName = 'House inks'");
  }
};

TEST(CopyDatabase, ColoursFormulasAndSets) {
  CopyRoom room;
  room.Breaks("Ingredients");
  room.Breaks("LotReferences");
  room.Breaks("StockHistory");
  EXPECT_EQ(CopyDatabase(room.session, "ink", "copy"), "COPY");
  EXPECT_EQ(room.session.databaseList, (std::vector<std::string>{"INK", "COPY"}));
  EXPECT_EQ(ReadFileInfo(room.session.File()).dbList, room.session.databaseList);
  const auto a = ReadBasic(room.session, "A", "COPY");
  EXPECT_EQ(a->PurchaseCost, 3.0F);
  EXPECT_EQ(a->Inventory, 0.0F);
  EXPECT_EQ(a->Date_Entered, (DateTime{2026, 3, 10, 0, 0, 0}));
  const auto green = ReadMix(room.session, "GREEN", "COPY");
  EXPECT_EQ(green->Color_Set, "<A><LOST>");
  EXPECT_EQ(green->Ingredients(), (Recipe{{"A", 60}, {"LOST", 40}}));
  EXPECT_EQ(green->LastModified, green->Date_Entered);
  const auto lost = ReadBasic(room.session, "LOST", "COPY");
  ASSERT_TRUE(lost);
  EXPECT_EQ(lost->IngSort, 1);
  EXPECT_EQ(room.Scalar("SELECT SetList FROM COPY_Additives").Text(), "<A>");
  EXPECT_EQ(room.Scalar("SELECT FullName FROM COPY_Info").Text(), "House inks");
  EXPECT_EQ(room.Scalar("SELECT (SELECT COUNT(*) FROM COPY_Basic_LotInv) + (SELECT COUNT(*) FROM COPY_Batch)").Whole(),
            0);
}

TEST(CopyDatabase, ReportsAndStopsWhereverItIsAsked) {
  // Answers that the work is to stop at its step of that number; counts them.
  struct Steps final : Progress {
    void Begin(std::string_view) override {}
    void Percent(double percent) override {
      ++taken;
      EXPECT_GE(percent, last);
      last = percent;
    }
    bool Cancelled() override { return taken >= limit; }
    int taken = 0;
    int limit = 1;
    double last = 0;
  };
  CopyRoom room;
  room.Breaks("Ingredients");
  room.Breaks("LotReferences");
  room.Breaks("StockHistory");
  room.session.File().Execute(
      "WITH RECURSIVE n(i) AS (VALUES(1) UNION ALL SELECT i + 1 FROM n WHERE i < 9000) INSERT INTO INK_Mix "
      "(Color_Name, "
      "BC0, BQ0, Color_Set, BasicCost) SELECT 'F' || i, 'A', 100, '<A>', 3 FROM n");
  const auto tables = room.session.File().TableNames();
  int limit = 0;
  for (bool done = false; !done;) {
    Steps steps;
    steps.limit = ++limit;
    Session session{room.prompt, steps, room.clock};
    session.support = std::move(room.session.support);
    session.DataFileDB = std::move(room.session.DataFileDB);
    session.databaseList = {"INK"};
    session.CurrentDatabase = "INK";
    const auto copied = CopyDatabase(session, "INK", "COPY");
    done = copied.has_value();
    if (!done) {
      EXPECT_EQ(copied.error().text, "The work was cancelled. Nothing was changed.");
      EXPECT_EQ(session.File().TableNames(), tables);
      EXPECT_EQ(session.databaseList, (std::vector<std::string>{"INK"}));
    }
    room.session.DataFileDB = std::move(session.DataFileDB);
    room.session.support = std::move(session.support);
    ASSERT_LT(limit, 100);
  }
  EXPECT_GT(limit, 10);
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM COPY_Mix").Whole(), 9001);
}

TEST(CopyDatabase, StockComesAlongWhereItMayBeNegative) {
  CopyRoom room;
  room.Breaks("Ingredients");
  room.Breaks("LotReferences");
  room.Breaks("StockHistory");
  room.Setting("AllowNegInv", "1");
  ASSERT_TRUE(CopyDatabase(room.session, "INK", "COPY"));
  EXPECT_EQ(ReadBasic(room.session, "A", "COPY")->Inventory, 12.0F);
}

TEST(CopyDatabase, RefusedOrFailedLeavesNothing) {
  CopyRoom room;
  room.Breaks("Fields");
  room.Breaks("Ingredients");
  room.Breaks("ColorSets");
  room.Breaks("LotReferences");
  room.Breaks("StockHistory");
  EXPECT_EQ(CopyDatabase(room.session, "INK", "ink").error().title, "Database Already Exists");
  EXPECT_EQ(CopyDatabase(room.session, "NONE", "COPY").error().title, "Database Not Found");
  room.session.File().Execute("UPDATE INK_Mix SET BC1 = 'NAME WITH MORE THAN THIRTY CHARACTERS'");
  const auto tables = room.session.File().TableNames();
  EXPECT_THROW((void)CopyDatabase(room.session, "INK", "COPY"), BadValue);
  EXPECT_EQ(room.session.File().TableNames(), tables);
  EXPECT_EQ(room.session.databaseList, (std::vector<std::string>{"INK"}));
}

}  // namespace
}  // namespace vellumark
