// Files of which pages are damaged, read past the engine: what stands on a damaged page is lost, and nothing else.

#include "core/datafile/engine_salvage.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>

#include "core/base/files.h"
#include "core/datafile/databases.h"
#include "core/datafile/engine_pages.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/schema.h"
#include "support/scratch.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;

constexpr int kRows = 150;

using Rows = std::map<std::string, std::map<std::int64_t, std::string>>;  // of each table by their numbers

Rows RowsOf(const fs::path& path) {
  Rows all;
  const auto file = Database::Open(path, OpenMode::Exclusive);
  EXPECT_TRUE(file->Faults().empty());
  for (const std::string& table : file->TableNames()) {
    const std::string key = table == schema::StockHistory.name ? "ID" : "RowKey";
    auto& rows = all[table];
    Statement row = file->Prepare("SELECT " + key + ", * FROM " + Quoted(table));
    while (row.Step()) {
      std::string text;
      for (int i = 1; i < row.ColumnCount(); ++i) text += row.Text(i) + "\t";
      rows[row.Whole(0)] = text;
    }
  }
  return all;
}

class Salvaging : public testing::Test {
 protected:
  Salvaging() {
    CreateFile(file);
    const auto made = Database::Open(file, OpenMode::Exclusive);
    CreateEmptyDatabase(*made, "INK");
    CreateEmptyDatabase(*made, "UV");
    Transaction transaction(*made);
    for (int i = 0; i < kRows; ++i) {
      const std::string name = "C" + std::to_string(1000 + i);
      // Some with texts that go on in pages of their own.
      const std::string note(i % 50 == 7 ? 9000U : 120U, static_cast<char>('a' + i % 26));
      for (const char* database : {"INK", "UV"}) {
        made->Prepare("INSERT INTO " + QuotedTable(database, schema::Basic) +
                      " (Color_Name, Notes, Inventory) VALUES (?, ?, ?)")
            .Bind(1, name)
            .Bind(2, note)
            .Bind(3, i * 0.25)
            .Run();
        made->Prepare("INSERT INTO " + QuotedTable(database, schema::Mix) +
                      " (Color_Name, BC0, BQ0, Color_Set) VALUES (?, ?, 100, ?)")
            .Bind(1, "M" + name)
            .Bind(2, name)
            .Bind(3, "<" + name + ">")
            .Run();
      }
      made->Prepare("INSERT INTO JobRecords (JobNumber, Color_Name, BatchNo) VALUES (?, ?, ?)")
          .Bind(1, "J" + name)
          .Bind(2, name)
          .Bind(3, -i)
          .Run();
    }
    made->Execute("DELETE FROM UV_Basic WHERE RowKey % 3 = 0");
    transaction.Commit();
  }
  Salvage Read(const std::string& bytes) {
    std::ofstream(damaged, std::ios::binary | std::ios::trunc) << bytes;
    fs::remove(fresh);
    return SalvageInto(damaged, fresh);
  }

  test::ScratchFolder folder;
  fs::path file = folder / "Sound.vkd";
  fs::path damaged = folder / "Damaged.vkd";
  fs::path fresh = folder / "Fresh.vkd";
};

TEST_F(Salvaging, ASoundFileComesOutAsItIs) {
  const Salvage salvage = Read(ReadFileBytes(file));
  EXPECT_TRUE(salvage.Any());
  EXPECT_EQ(salvage.strayPages, 0);
  EXPECT_TRUE(RowsOf(fresh) == RowsOf(file));
  for (const SalvagedTable& table : salvage.tables) EXPECT_EQ(table.lostRows + table.cutRows, 0) << table.name;
}

TEST_F(Salvaging, EachPageLosesItsOwnRowsAndNoOthers) {
  const Rows before = RowsOf(file);
  const std::string sound = ReadFileBytes(file);
  PageFile pages(file);
  ASSERT_GT(pages.Count(), 100U);
  int inner = 0;
  for (const char with : {'\0', '\xFF'})
    // Of zeros each page, of other bytes some: the first, and one in eight.
    for (std::uint32_t page = 1; page <= pages.Count(); page += with == '\0' ? 1 : 8) {
      SCOPED_TRACE(page);
      std::string bytes = sound;
      bytes.replace((page - 1) * std::size_t{pages.Size()}, pages.Size(), pages.Size(), with);
      const auto tree = ReadTreePage(pages, page);
      std::set<std::int64_t> mayGo;
      if (tree)
        for (const PageRow& row : tree->rows) mayGo.insert(row.key);
      inner += tree && !tree->leaf;
      const Salvage salvage = Read(bytes);
      ASSERT_TRUE(salvage.Any());
      const Rows after = RowsOf(fresh);
      std::int64_t gone = 0;
      std::int64_t changed = 0;
      for (const auto& [table, rows] : before) {
        const auto now = after.find(table);
        for (const auto& [key, text] : rows) {
          const bool there = now != after.end() && now->second.contains(key);
          gone += !there;
          changed += there && now->second.at(key) != text;
          // The list of tables may lose one of which there are no rows.
          ASSERT_TRUE(there || mayGo.contains(key)) << table << " " << key;
        }
        if (now != after.end()) {
          ASSERT_LE(now->second.size(), rows.size()) << table;
        }
      }
      ASSERT_LE(changed, tree ? 0 : 1);
      ASSERT_LE(gone, static_cast<std::int64_t>(mayGo.size()));
      std::int64_t told = 0;
      for (const SalvagedTable& table : salvage.tables) told += table.lostRows;
      // What is gone is told, by name where an index knows it; a page of the list of tables holds no rows.
      if (gone > 1) {
        ASSERT_GE(told, gone);
      }
    }
  EXPECT_GT(inner, 4);
}

TEST_F(Salvaging, WhatIsGoneIsCalledByItsName) {
  PageFile pages(file);
  std::string bytes = ReadFileBytes(file);
  for (std::uint32_t page = 1; page <= pages.Count(); ++page) {
    const auto tree = ReadTreePage(pages, page);
    const bool basics =
        tree && tree->leaf && !tree->rows.empty() && tree->rows.front().cells.size() == schema::Basic.fields.size() + 1;
    if (!basics || tree->rows.front().key != 1) continue;
    bytes.replace((page - 1) * std::size_t{pages.Size()}, pages.Size(), pages.Size(), '\0');
  }
  std::string names;
  for (const SalvagedTable& table : Read(bytes).tables)
    for (const std::string& name : table.lostNames) names += table.name + " " + name + "\n";
  EXPECT_TRUE(names.starts_with("INK_Basic C1000 (row 1)\n")) << names;
  EXPECT_NE(names.find("UV_Basic C1001 (row 2)"), std::string::npos) << names;
}

TEST_F(Salvaging, OfWhatIsNoDataFileNothingIsLeft) {
  EXPECT_FALSE(Read("").Any());
  EXPECT_FALSE(Read("no file of ours").Any());
  EXPECT_FALSE(Read(std::string(50000, '\x0D')).Any());
  EXPECT_FALSE(Read(ReadFileBytes(file).substr(0, 3000)).Any());
  // Half of it is more than nothing.
  const std::string sound = ReadFileBytes(file);
  EXPECT_TRUE(Read(sound.substr(0, sound.size() / 2 + 100)).Any());
  RowsOf(fresh);
}

}  // namespace
}  // namespace vellumark
