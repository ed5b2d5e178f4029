#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "core/base/files.h"
#include "core/base/refusal.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/writer.h"
#include "support/causes.h"
#include "support/scratch.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;
using test::CauseOf;

struct Postgres : testing::Test {
  Postgres() {
    CreateFile(path);
    file = Database::Open(path, OpenMode::Exclusive);
    CreateEmptyDatabase(*file, "UV FLEXO");
  }
  std::int64_t Basic(const std::string& name, std::vector<Cell> cells = {}) {
    cells.emplace_back("Color_Name", name);
    return InsertRow(*file, schema::Basic, "UV FLEXO_Basic", cells);
  }
  // What a query finds, "a b|c d|"; "~" is null.
  std::string Rows(const std::string& sql, std::initializer_list<Value> values = {}) {
    Statement row = file->Prepare(sql);
    int place = 0;
    for (const Value& value : values) row.Bind(++place, value);
    std::string text;
    while (row.Step()) {
      for (int column = 0; column < row.ColumnCount(); ++column)
        text += (column == 0 ? "" : " ") + (row.IsNull(column) ? "~" : row.Get(column).Text());
      text += '|';
    }
    return text;
  }

  test::ScratchFolder folder;
  fs::path path = folder / "Ink.vkd";
  std::unique_ptr<Database> file;
};

TEST_F(Postgres, AStatementMeansWhatItMeansToTheOtherEngine) {
  Basic("Red", {{"Color_Code", "a%b"}, {"Inventory", 2.5F}, {"Additive", true}});
  Basic("BLUE", {{"Inventory", 1.0F}});
  Basic("green", {{"Color_Code", "AxB"}});
  Basic("ÄRA");
  const std::string all = R"(SELECT "Color_Name" FROM "uv flexo_BASIC" )";
  EXPECT_EQ(Rows(all + "WHERE Color_Name = ?", {"rEd"}) + Rows(all + "WHERE Color_Name = ?", {"ära"}), "Red|");
  EXPECT_EQ(Rows(all + "WHERE Color_Name < ?1 OR Color_Name = ?1 ORDER BY Color_Name", {"GREEN"}), "BLUE|green|");
  EXPECT_EQ(Rows(all + R"(WHERE Color_Code LIKE ? ESCAPE '\' )", {LikeLiteral("A%") + "%"}), "Red|");
  EXPECT_EQ(Rows(all + "WHERE Color_Name LIKE ? ORDER BY Color_Name", {"%e%"}), "BLUE|green|Red|");
  // What is empty comes first, and last where the order is turned round.
  EXPECT_EQ(Rows(all + "ORDER BY Inventory, Color_Name"), "green|ÄRA|BLUE|Red|");
  EXPECT_EQ(Rows(all + "ORDER BY Inventory DESC, RowKey DESC LIMIT 3"), "Red|BLUE|ÄRA|");
  // Truth is kept and counted as 0 or 1; null equals null; kinds of numbers mix.
  EXPECT_EQ(Rows(R"(SELECT SUM(Inventory > 1), MAX(Additive = 1), COUNT(*) FROM "UV FLEXO_Basic" WHERE Additive)"),
            "1 1 1|");
  EXPECT_EQ(Rows(all + "WHERE Color_Code IS NOT DISTINCT FROM ?1 AND Inventory IS NOT DISTINCT FROM ?2", {Value(), 1}),
            "BLUE|");
  EXPECT_EQ(
      Rows(
          R"(SELECT '?', 7 / 2, ?1, 'it''s "X"' FROM "UV FLEXO_Basic" WHERE LotRefID IS NULL AND Color_Name = ?1 || 'ue')",
          {"BL"}),
      "");
  EXPECT_EQ(Rows(R"(SELECT '?', 7 / 2, ?1, 'it''s "X"' FROM "UV FLEXO_Basic" WHERE Color_Name = ?2 AND ?1 <> ?2)",
                 {"BL", "blue"}),
            "? 3 BL it's \"X\"|");
  const Value figure = file->Scalar(R"(SELECT Inventory FROM "UV FLEXO_Basic" WHERE Color_Name = 'Red')");
  EXPECT_EQ(figure, Value(2.5));
  EXPECT_TRUE(file->Scalar(R"(SELECT SUM(Additive) FROM "UV FLEXO_Basic")").IsWhole());

  // A figure beyond all figures is named by its place.
  file->Execute(R"(UPDATE "UV FLEXO_Basic" SET Reorder = 1e39 WHERE Color_Name = 'green')");
  EXPECT_EQ(CauseOf([&] { Rows(R"(SELECT Reorder FROM "UV FLEXO_Basic")"); }),
            "holds a figure that is not a number in the table UV FLEXO_Basic, row 3 (green), field Reorder");
}

TEST_F(Postgres, AKeyStandsAboveAllOthersAndIsNeverAnother) {
  EXPECT_EQ(Basic("A"), 1);
  EXPECT_EQ(Basic("B"), 2);
  file->Execute(R"(INSERT INTO "UV FLEXO_Basic" (Color_Name, RowKey) VALUES ('C', 40))");
  EXPECT_GT(Basic("D"), 40);
  file->Execute(R"(UPDATE "UV FLEXO_Basic" SET RowKey = 90 WHERE Color_Name = 'B')");
  EXPECT_GT(Basic("E"), 90);
  const std::string names = R"(SELECT RowKey, Color_Name FROM "UV FLEXO_Basic" ORDER BY RowKey)";
  const std::string before = Rows(names);
  const std::vector<std::string> fields = file->StoredFields("uv flexo_basic");
  EXPECT_EQ(fields.at(0), "Color_Name");
  std::vector<std::string> indexes = file->StoredIndexes();
  CompactFile(*file);
  file.reset();
  file = Database::Open(path, OpenMode::Exclusive);
  EXPECT_EQ(Rows(names), before);
  EXPECT_EQ(file->StoredFields("UV FLEXO_Basic"), fields);
  std::ranges::sort(indexes);
  std::vector<std::string> copied = file->StoredIndexes();
  std::ranges::sort(copied);
  EXPECT_EQ(copied, indexes);
  EXPECT_GT(Basic("F"), 90);
  EXPECT_TRUE(MissingParts(*file, {"UV FLEXO"}).empty());
  // A Database that takes another name leaves its own free.
  file->RenameTable("UV FLEXO_Basic", "OLD_Basic", schema::Basic);
  file->CreateTable("UV FLEXO_Basic", schema::Basic);
  EXPECT_EQ(Basic("G"), 1);
  EXPECT_EQ(file->Scalar("SELECT COUNT(*) FROM OLD_Basic").Whole(), 6);
  EXPECT_EQ(file->TableNames().back(), "UV FLEXO_Basic");
  EXPECT_TRUE(file->Faults().empty());
}

TEST_F(Postgres, AStepThatFailedTakesTheWholeChangeBack) {
  {
    Transaction transaction(*file);
    Basic("A");
    EXPECT_THROW(file->Execute("UPDATE Nothing SET A = 1"), Failure);
    EXPECT_EQ(CauseOf([&] { transaction.Commit(); }), "a step of the change failed; nothing was written");
  }
  {
    Transaction transaction(*file);
    file->CreateTable("OTHER_Basic", schema::Basic);
    EXPECT_TRUE(file->TableExists("other_basic"));
  }
  EXPECT_FALSE(file->TableExists("OTHER_Basic"));
  EXPECT_EQ(Rows(R"(SELECT COUNT(*) FROM "UV FLEXO_Basic")"), "0|");
  // A table of this opening alone is empty each time.
  for (int i = 0; i < 2; ++i) {
    file->MakeScratchTable("MSysNewNames", schema::NewNames);
    EXPECT_EQ(Rows("SELECT COUNT(*) FROM MSysNewNames"), "0|");
    file->Execute("INSERT INTO MSysNewNames (OldName, NewName) VALUES ('A', 'B')");
    EXPECT_THROW(file->Execute("INSERT INTO MSysNewNames (OldName) VALUES ('a')"), Failure) << "found by its key";
  }
  EXPECT_FALSE(file->TableExists("MSysNewNames"));
}

TEST_F(Postgres, WhatIsNoDataFileIsTold) {
  EXPECT_EQ(CauseOf([&] { Database::Open(path, OpenMode::Exclusive); }), "is in use by another process");
  EXPECT_EQ(CauseOf([&] { ReadFileVersion(path); }), "is in use by another process");
  file.reset();
  {
    const auto looked = Database::Open(path, OpenMode::ReadOnly);
    const auto beside = Database::Open(path, OpenMode::ReadOnly);
    EXPECT_EQ(CauseOf([&] { looked->Execute("DELETE FROM FileInfo"); }), "cannot be written: it is read-only");
  }
  EXPECT_TRUE(Database::IsDatabaseFile(path));
  const std::string text = ReadFileBytes(path);
  const auto with = [&](const std::string& bytes) {
    ReplaceFile(path, bytes);
    return CauseOf([&] { Database::Open(path, OpenMode::Exclusive); });
  };
  const std::size_t schemaAt = text.find("vkd_");
  EXPECT_EQ(with(text.substr(0, schemaAt)), "is damaged or was cut short");
  EXPECT_EQ(with(text.substr(0, schemaAt + 6)), "is not a Data File: its server keeps no rows for it");
  std::string elsewhere = text;
  elsewhere.replace(text.find("host=") + 5, 4, "/zzz");
  EXPECT_TRUE(with(elsewhere).starts_with("cannot be opened: the server of /zzz"));
  EXPECT_EQ(with(text), "no failure");
}

// An index that was left alone while rows were written knows nothing of them.
TEST_F(Postgres, AFaultOfItsStructureIsFound) {
  const auto ready = [&](const char* is) {
    file->Execute(std::string("UPDATE pg_index SET indisready = ") + is +
                  " WHERE indexrelid = '\"uv flexo_basic_color_name_index\"'::regclass");
  };
  EXPECT_TRUE(file->Faults().empty());
  ready("false");
  Basic("RED");
  ready("true");
  EXPECT_EQ(file->Faults(), std::vector<std::string>{"uv flexo_basic_color_name_index: is damaged or was cut short"});
}

}  // namespace
}  // namespace vellumark
