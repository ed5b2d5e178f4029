// Jet files: what is written is read back, by our reader and by an independent one; what is damaged is named, and the
// rest comes in.

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <limits>
#include <random>

#include "core/base/files.h"
#include "core/base/number.h"
#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/datafile/jet/jet_file.h"
#include "core/datafile/jet/jet_format.h"
#include "core/datafile/jet/jet_pages.h"
#include "support/jet_room.h"
#include "support/old_jet_room.h"
#include "support/scratch.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;
using test::Exported;
using test::JetTableRows;
using Rows = std::vector<std::vector<Value>>;

constexpr std::size_t kPage = 4096;

Rows RowsOf(const JetFile& file, const std::string& table, JetReading* reading = nullptr) {
  Rows rows;
  const JetReading read = file.Read(*file.Find(table), [&](const JetRow& row) {
    rows.push_back(row.values);
    return true;
  });
  if (reading != nullptr) *reading = read;
  return rows;
}

std::string DamageOf(const JetReading& reading) {
  std::string text;
  for (const JetDamage& damage : reading.damage) text += damage.Text() + "\n";
  return text;
}

std::string Repeated(std::string_view piece, std::size_t count) {
  std::string text;
  while (text.size() < count * piece.size()) text += piece;
  return text;
}

std::string EveryCharacter() {
  std::string bytes;
  for (int c = 0x20; c < 0x100; ++c)
    if (c != 0x7F) bytes += static_cast<char>(c);
  return FromCp1252(bytes);
}

class JetTest : public testing::Test {
 protected:
  // The file with some of its bytes changed.
  fs::path Changed(const std::function<void(std::string&)>& change) {
    std::string bytes = ReadFileBytes(path);
    change(bytes);
    const fs::path changed = folder / "changed.mdb";
    std::ofstream(changed, std::ios::binary) << bytes;
    return changed;
  }
  std::string CauseOfOpening(const fs::path& file) {
    try {
      JetFile::Open(file);
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.subject, file.string());
      return failure.cause;
    }
    return "";
  }

  test::ScratchFolder folder;
  fs::path path = folder / "shop.mdb";
};

TEST_F(JetTest, KeepsEveryTypeAtItsLimits) {
  const std::vector<JetColumn> columns{
      {"Yes", JetType::Boolean},    {"Small", JetType::Byte},     {"Short", JetType::Integer},
      {"Whole", JetType::Long},     {"Money", JetType::Currency}, {"Single", JetType::Single},
      {"Double", JetType::Double},  {"When", JetType::Date},      {"Bytes", JetType::Binary, 4},
      {"Text", JetType::Text, 255}, {"Picture", JetType::Ole},    {"Notes", JetType::Memo},
      {"Key", JetType::Guid},       {"Sum", JetType::Numeric}};
  const std::string key("\x33\x22\x11\0\x55\x44\x77\x66\x88\x99\xAA\xBB\xCC\xDD\xEE\xFF", 16);
  const std::string sum("\x80\0\0\0\0\0\0\0\0\x01\0\0\0\x02\0\0\0", 17);  // -(2^32 + 2)
  const Value null;
  const Rows rows{
      {0, null, null, null, null, null, null, null, null, null, null, null, null, null},
      {1, 0, -32768, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int64_t>::min(),
       std::numeric_limits<float>::lowest(), std::numeric_limits<double>::lowest(), JetDays({100, 1, 1, 0, 0, 1}), "",
       "", "", "", key, sum},
      {0, 255, 32767, std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int64_t>::max(),
       std::numeric_limits<float>::denorm_min(), std::numeric_limits<double>::denorm_min(),
       JetDays({9999, 12, 31, 23, 59, 59}), std::string("\0\xFF\0\x01", 4), EveryCharacter(), std::string(5000, '\xFE'),
       "x", key, sum},
      {1, 7, 0, 0, -1, 0.1F, 0.1, -1.25, "b", Repeated("é", 255), "c", EveryCharacter(), key, sum},
      {1, 7, 0, 0, 12345, 1e10F, 1e100, JetDays({2026, 2, 3, 4, 5, 6}), "b", "日本", "c", "日本 €\r\n\ttabs", key, sum},
  };
  test::MakeJetFile(path, {{"All types", columns, rows}});
  const JetFile file = JetFile::Open(path);
  EXPECT_TRUE(file.Damage().empty());
  EXPECT_EQ(file.Version(), 4);
  ASSERT_EQ(file.Tables().size(), 1U);
  const JetTable& table = *file.Find("ALL TYPES");
  ASSERT_EQ(table.columns.size(), columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i) {
    EXPECT_EQ(table.columns[i].name, columns[i].name);
    EXPECT_EQ(table.columns[i].type, columns[i].type);
    EXPECT_EQ(table.columns[i].size, columns[i].size) << columns[i].name;
  }
  Rows expected = rows;
  for (std::size_t i = 1; i < expected.size(); ++i) {
    expected[i][12] = "{00112233-4455-6677-8899-AABBCCDDEEFF}";
    expected[i][13] = "-4294967298";
  }
  JetReading reading;
  const Rows read = RowsOf(file, "All types", &reading);
  EXPECT_EQ(DamageOf(reading), "");
  ASSERT_EQ(read.size(), expected.size());
  for (std::size_t row = 0; row < read.size(); ++row)
    for (std::size_t i = 0; i < columns.size(); ++i)
      EXPECT_EQ(read[row][i], expected[row][i]) << "row " << row << ", " << columns[i].name;

  const std::string exported = Exported(path, "All types");
  for (const char* text : {"-922337203685477.5808", "922337203685477.5807", "2026-02-03 04:05:06", "2147483647",
                           "\x1F日本 €\r\n\ttabs\x1F", "-4294967298"})
    EXPECT_NE(exported.find(text), std::string::npos) << text << " in " << exported.substr(0, 2000);
  EXPECT_NE(exported.find(EveryCharacter()), std::string::npos);

  EXPECT_EQ(JetDate(-1.25)->ToText(), "1899-12-29 06:00:00");
  EXPECT_EQ(JetDate(-1.9999999)->ToText(), "1899-12-30 00:00:00");
  EXPECT_EQ(JetDate(rows[2][7].Number())->ToText(), "9999-12-31 23:59:59");
  EXPECT_FALSE(JetDate(2958466));
  EXPECT_FALSE(JetDate(std::numeric_limits<double>::quiet_NaN()));
}

// A row of `fills` bytes with its place in the page: twenty-six of them fill it to the last byte.
TEST_F(JetTest, FillsPagesToTheLastByte) {
  const std::string fills = Repeated("€", 73);
  for (const std::size_t count : {0U, 1U, 26U, 27U, 52U}) {
    const Rows rows(count, {fills});
    test::MakeJetFile(path, {{"T", {{"Text", JetType::Text, 80}}, rows}});
    JetReading reading;
    EXPECT_EQ(RowsOf(JetFile::Open(path), "T", &reading), rows) << count;
    EXPECT_EQ(DamageOf(reading), "");
    EXPECT_EQ(Exported(path, "T"), Repeated(fills + "\x1E", count)) << count;
  }
  const std::string bytes = ReadFileBytes(path);
  EXPECT_EQ(bytes.substr(0, 4), std::string("\0\1\0\0", 4)) << "which only the engine of other programs looks at";
  int full = 0;
  for (std::size_t page = 0; page < bytes.size(); page += kPage)
    full += static_cast<int>(bytes[page] == 1 && jet::Read<std::uint16_t>(bytes, page + 2) == 0 &&
                             jet::Read<std::uint16_t>(bytes, page + 12) == 26);
  EXPECT_EQ(full, 2);
}

// More pages than one row of a map tells, with long texts between them, in several tables.
TEST_F(JetTest, ReadsAndWritesThousandsOfPages) {
  std::vector<JetColumn> wide;
  for (int i = 0; i < 150; ++i) wide.push_back({"Field" + std::to_string(i), JetType::Text, 30});
  Rows many;
  std::string expected;
  for (int i = 0; i < 30000; ++i) {
    const std::string memo = i % 1000 == 999 ? std::string(static_cast<std::size_t>(i), 'm') : "short";
    many.push_back({i, Repeated("ö", 100), memo});
    expected += std::to_string(i) + "\x1F" + Repeated("ö", 100) + "\x1F" + memo + "\x1E";
  }
  Rows memos;
  // The independent reader has room for 200000 bytes less one.
  for (const std::size_t length : {0U, 1U, 64U, 5000U, 99999U, 100000U}) {
    memos.push_back({Repeated("x", length)});
    if (length < 100000U) memos.push_back({Repeated("ш", length)});
  }
  std::vector<Value> one(wide.size(), "0123456789");
  test::MakeJetFile(
      path, {{"Empty", {{"Number", JetType::Long}}, {}},
             {"Many_Rows", {{"Number", JetType::Long}, {"Text", JetType::Text, 100}, {"Memo", JetType::Memo}}, many},
             {"Wide", wide, {one}},
             {"Memos", {{"Memo", JetType::Memo}}, memos}});
  const JetFile file = JetFile::Open(path);
  EXPECT_EQ(file.Tables().size(), 4U);
  EXPECT_TRUE(file.Damage().empty());
  EXPECT_TRUE(RowsOf(file, "Empty").empty());
  JetReading reading;
  EXPECT_TRUE(RowsOf(file, "Many_Rows", &reading) == many);
  EXPECT_EQ(DamageOf(reading), "");
  EXPECT_EQ(RowsOf(file, "Wide"), Rows{one});
  EXPECT_TRUE(RowsOf(file, "Memos") == memos);
  EXPECT_TRUE(Exported(path, "Many_Rows") == expected);
  EXPECT_EQ(Exported(path, "Wide"), Repeated("0123456789\x1F", wide.size() - 1) + "0123456789\x1E");
  std::string exported;
  for (const auto& row : memos) exported += (row[0].Text().empty() ? "<null>" : row[0].Text()) + "\x1E";
  EXPECT_TRUE(Exported(path, "Memos") == exported);
  int taken = 0;
  const JetReading stopped = file.Read(*file.Find("Many_Rows"), [&](const JetRow&) { return ++taken < 10; });
  EXPECT_TRUE(stopped.stopped);
  EXPECT_EQ(stopped.rows, 10);
  EXPECT_EQ(stopped.faults, 0);
}

// Version 3: texts in a code page, half the page, places of one byte in the rows.
TEST_F(JetTest, ReadsTheOldVersion) {
  const std::vector<JetColumn> columns{
      {"Yes", JetType::Boolean},    {"Text", JetType::Text, 255}, {"Small", JetType::Byte},
      {"Short", JetType::Integer},  {"Notes", JetType::Memo},     {"Whole", JetType::Long},
      {"Money", JetType::Currency}, {"Single", JetType::Single},  {"Other", JetType::Text, 255},
      {"Double", JetType::Double},  {"When", JetType::Date}};
  const Value null;
  Rows rows{
      {0, null, null, null, null, null, null, null, null, null, null},
      {1, "", 255, -32768, "", std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int64_t>::max(), 0.1F,
       "é", 0.1, -1.25},
      // Rows of more than 256 and 512 bytes.
      {0, EveryCharacter(), 0, 32767, "x", 7, -1, -1e30F, null, -1e300, JetDays({1997, 1, 2, 3, 4, 5})},
      {1, std::string(255, 'y'), 0, 0, null, 0, 0, 0.0F, std::string(250, 'z'), 0.0, 0.0},
  };
  for (const std::size_t length : {64U, 65U, 2028U, 2029U, 5000U, 100000U})
    rows.push_back({0, null, null, null, std::string(length, '\xE9'), 1, null, null, null, null, null});
  for (auto& row : rows)
    if (row[4].IsText()) row[4] = FromCp1252(row[4].Text());
  // A definition of several pages.
  std::vector<JetColumn> wide;
  std::vector<Value> one;
  for (int i = 0; i < 200; ++i) {
    wide.push_back(
        {"Ingredient" + std::to_string(i), i % 3 == 0 ? JetType::Text : JetType::Single, i % 3 == 0 ? 30 : 0});
    one.push_back(i % 3 == 0 ? Value("INK" + std::to_string(i)) : Value(static_cast<float>(i) / 8));
  }
  Rows many;
  for (int i = 0; i < 3000; ++i) many.push_back({i, "row " + std::to_string(i)});
  test::OldJetFile({{"Größen", columns, rows},
                    {"Wide", wide, {one}},
                    {"Many", {{"Number", JetType::Long}, {"Text", JetType::Text, 20}}, many}})
      .Save(path);

  const JetFile file = JetFile::Open(path);
  EXPECT_EQ(file.Version(), 3);
  EXPECT_TRUE(file.Damage().empty());
  ASSERT_NE(file.Find("Größen"), nullptr);
  EXPECT_EQ(file.Find("Größen")->columns[1].size, 255);
  JetReading reading;
  const Rows read = RowsOf(file, "Größen", &reading);
  EXPECT_EQ(DamageOf(reading), "");
  ASSERT_EQ(read.size(), rows.size());
  for (std::size_t row = 0; row < rows.size(); ++row)
    for (std::size_t i = 0; i < columns.size(); ++i)
      EXPECT_EQ(read[row][i], rows[row][i]) << row << ", " << columns[i].name;
  EXPECT_EQ(RowsOf(file, "Wide"), Rows{one});
  EXPECT_TRUE(RowsOf(file, "Many") == many);
  EXPECT_TRUE(Exported(path, "Many")
                  .starts_with("0\x1Frow 0\x1E"
                               "1\x1Frow 1\x1E"));

  std::string bytes = ReadFileBytes(path);
  jet::MaskHeader(bytes);
  bytes[0x42] = 'p';
  jet::MaskHeader(bytes);
  EXPECT_TRUE(CauseOfOpening(Changed([&](std::string& b) { b = bytes; })).starts_with("is protected by a password"));
}

TEST_F(JetTest, SaysWhyAFileIsNotRead) {
  test::MakeJetFile(path, {{"T", {{"Number", JetType::Long}}, {{1}}}});
  const auto masked = [](auto change) {
    return [change](std::string& bytes) {
      jet::MaskHeader(bytes);
      change(bytes);
      jet::MaskHeader(bytes);
    };
  };
  const struct {
    const char* what;
    std::function<void(std::string&)> change;
    std::string_view cause;
  } cases[] = {
      {"another format", [](std::string& b) { b = "SQLite format 3"; }, "is no Jet file"},
      {"empty", [](std::string& b) { b.clear(); }, "is no Jet file"},
      {"later", [](std::string& b) { b.replace(4, 15, "Standard ACE DB"); },
       "is of a later format of its program (.accdb)"},
      {"version", [](std::string& b) { b[0x14] = 2; }, "is of a later format of its program"},
      {"cut", [](std::string& b) { b.resize(kPage * 2); }, "is cut short"},
      {"encrypted", masked([](std::string& b) { b[0x3E] = 1; }), "is encrypted"},
      {"password", masked([](std::string& b) { b[0x42] = static_cast<char>(b[0x42] ^ 'p'); }),
       "is protected by a password"},
      {"catalog", [](std::string& b) { b.replace(kPage * 2, kPage, kPage, '\0'); }, "is damaged: its list of tables"},
  };
  for (const auto& c : cases) {
    const std::string cause = CauseOfOpening(Changed(c.change));
    EXPECT_TRUE(cause.starts_with(c.cause)) << c.what << ": " << cause;
  }
  EXPECT_NE(CauseOfOpening(folder / "none.mdb"), "");
  EXPECT_TRUE(JetFile::IsJetFile(path));
  EXPECT_FALSE(JetFile::IsJetFile(Changed(cases[0].change)));
}

/// Two tables with their rows on several pages, and a Memo.
class DamagedJetTest : public JetTest {
 protected:
  DamagedJetTest() {
    for (int i = 0; i < 200; ++i)
      rows.push_back(
          {i, Repeated("€", 73), i % 10 == 0 ? Value(std::string(200, static_cast<char>('a' + i / 10))) : Value()});
    test::MakeJetFile(path, {{"First", columns, rows}, {"Second", columns, rows}});
    const JetFile file = JetFile::Open(path);
    definition = file.Find("First")->page;
    const std::string bytes = ReadFileBytes(path);
    for (std::uint32_t page = 1; page < bytes.size() / kPage; ++page) {
      if (bytes[page * kPage] != 1) continue;
      const auto owner = jet::Read<std::uint32_t>(bytes, page * kPage + 4);
      if (owner == definition) pages.push_back(page);
      if (owner == jet::kLongValueOwner && longPage == 0) longPage = page;
    }
  }

  // What of the first table comes in, less what it lost, and that the second one is whole.
  Rows Read(const std::function<void(std::string&)>& change) {
    const JetFile file = JetFile::Open(Changed(change));
    EXPECT_EQ(RowsOf(file, "Second"), rows);
    JetReading reading;
    Rows read = RowsOf(file, "First", &reading);
    damage = DamageOf(reading);
    EXPECT_EQ(reading.rows, static_cast<std::int64_t>(read.size()));
    return read;
  }
  Rows Without(std::size_t first, std::size_t count) {
    Rows left = rows;
    left.erase(left.begin() + static_cast<std::ptrdiff_t>(first),
               left.begin() + static_cast<std::ptrdiff_t>(first + count));
    return left;
  }
  std::size_t RowsOn(std::uint32_t page) { return jet::Read<std::uint16_t>(ReadFileBytes(path), page * kPage + 12); }

  std::vector<JetColumn> columns{{"Number", JetType::Long}, {"Text", JetType::Text, 80}, {"Memo", JetType::Memo}};
  Rows rows;
  std::uint32_t definition = 0;
  std::vector<std::uint32_t> pages;
  std::uint32_t longPage = 0;
  std::string damage;
};

TEST_F(DamagedJetTest, LosesWhatIsDamagedAndNamesIt) {
  const std::size_t first = RowsOn(pages[0]);
  const std::size_t second = RowsOn(pages[1]);
  const std::string page = std::to_string(pages[1]);

  EXPECT_EQ(Read([&](std::string& b) { b.replace(pages[1] * kPage, kPage, kPage, '\0'); }), Without(first, second));
  EXPECT_EQ(damage, "Table First, page " + page + ": it is no page of a Jet file any more\n" +
                        "Table First: says that it has 200 rows, of which " + std::to_string(200 - second) +
                        " could be read\n");

  // The place of one row leads beyond its page.
  EXPECT_EQ(Read([&](std::string& b) { jet::Put(b, pages[1] * kPage + 14 + 4, std::uint16_t{3}); }),
            Without(first + 2, 2));
  EXPECT_NE(damage.find("Table First, page " + page + ", row 2: the row does not lie within its page"),
            std::string::npos)
      << damage;
  EXPECT_NE(damage.find("page " + page + ", row 3: "), std::string::npos) << damage;

  // Deleted rows do not count.
  const Rows less = Read([&](std::string& b) {
    const std::size_t at = pages[1] * kPage + 14;
    jet::Put(b, at, static_cast<std::uint16_t>(jet::Read<std::uint16_t>(b, at) | 0x8000));
    jet::Put(b, definition * kPage + 16, 199U);
  });
  EXPECT_EQ(less, Without(first, 1));
  EXPECT_EQ(damage, "");

  // The map of its pages: another kind of page, no map, one that lost a page of it.
  const auto map = jet::Read<std::uint32_t>(ReadFileBytes(path), definition * kPage + 55) >> 8;
  for (const std::string& told :
       {std::string("of pages is not where it should be"), std::string("its map of pages is damaged")}) {
    EXPECT_EQ(Read([&](std::string& b) {
                if (told.starts_with("of"))
                  b[map * kPage] = 9;
                else
                  b[map * kPage + kPage - 69] = 7;
              }),
              rows);
    EXPECT_NE(damage.find(told + "; its rows were sought in the whole file"), std::string::npos) << damage;
  }
  const Rows strays = Read([&](std::string& b) { b[map * kPage + kPage - 69 + 5] = 0; });
  EXPECT_EQ(strays.size(), rows.size());
  EXPECT_NE(damage.find("came from pages that the table had lost"), std::string::npos) << damage;

  // Long values.
  Rows memoless = rows;
  for (auto& row : memoless) row[2] = {};
  EXPECT_EQ(Read([&](std::string& b) { b[longPage * kPage + 4] = 'X'; }), memoless);
  EXPECT_NE(damage.find(", row 0, field Memo: it leads to page " + std::to_string(longPage)), std::string::npos)
      << damage;
}

// A row that grew stands on another page, marked there as deleted.
TEST_F(DamagedJetTest, FollowsRowsThatMoved) {
  const auto move = [&](std::string& b, std::uint32_t to) {
    const std::size_t from = pages[0] * kPage + 14;
    const std::size_t start = jet::Read<std::uint16_t>(b, from);
    const std::string row = b.substr(pages[0] * kPage + start, kPage - start);
    std::string page(kPage, '\0');
    page[0] = page[1] = 1;
    jet::Put(page, 4, definition);
    jet::Put(page, 12, std::uint16_t{1});
    jet::Put(page, 14, static_cast<std::uint16_t>(start | 0x8000));
    page.replace(start, row.size(), row);
    b += page;
    jet::Put(b, from, static_cast<std::uint16_t>(start | 0x4000));
    jet::Put(b, pages[0] * kPage + start, jet::PointerTo(to, 0));
  };
  const auto end = static_cast<std::uint32_t>(fs::file_size(path) / kPage);
  EXPECT_EQ(Read([&](std::string& b) { move(b, end); }), rows);
  EXPECT_EQ(damage, "");
  EXPECT_EQ(Read([&](std::string& b) { move(b, end + 1); }), Without(0, 1));
  EXPECT_NE(damage.find("row 0: page " + std::to_string(end + 1) + " lies behind the end of the file"),
            std::string::npos)
      << damage;
}

TEST_F(DamagedJetTest, LosesOneTableWithItsDefinition) {
  const JetFile file = JetFile::Open(Changed([&](std::string& b) { b[definition * kPage] = 1; }));
  ASSERT_EQ(file.Damage().size(), 1U);
  EXPECT_EQ(file.Damage()[0].Text(),
            "Table First, page " + std::to_string(definition) + ": the page holds no definition of a table");
  EXPECT_EQ(RowsOf(file, "Second"), rows);

  const JetFile cut = JetFile::Open(Changed([&](std::string& b) { b.resize(b.size() - kPage * 2 - 100); }));
  EXPECT_NE(cut.Damage()[0].Text().find("its last page is not whole"), std::string::npos);
  EXPECT_EQ(RowsOf(cut, "First"), rows);
}

// The reader is killed among the rows; another one goes on where it was.
TEST_F(DamagedJetTest, GoesOnWhenItsReaderDies) {
  // More than is under way between the two of them.
  Rows many;
  for (int i = 0; i < 10000; ++i) many.push_back({i, std::string(80, 'x'), {}});
  test::MakeJetFile(path, {{"Many", columns, many}});
  const JetFile file = JetFile::Open(path);
  Rows read;
  int killed = 0;
  const JetReading reading = file.Read(*file.Find("Many"), [&](const JetRow& row) {
    read.push_back(row.values);
    if (read.size() == 1 || read.size() == 5000) {
      std::ifstream children("/proc/self/task/" + std::to_string(::gettid()) + "/children");
      for (pid_t child = 0; children >> child; ++killed) ::kill(child, SIGKILL);
    }
    return true;
  });
  EXPECT_EQ(killed, 2);
  EXPECT_TRUE(read == many) << read.size();
  EXPECT_EQ(DamageOf(reading), "");

  // The end of one Memo leads to its beginning, and it is told to be longer than any text may get: whoever reads it
  // dies.
  constexpr std::uint32_t kLength = 0x0FFFFFF0;
  test::MakeJetFile(path, {{"T", {{"Memo", JetType::Memo}}, {{"first"}, {Repeated("€", 4000)}, {"last"}}}});
  const fs::path changed = Changed([&](std::string& b) {
    for (std::size_t at = 0; at < b.size(); at += kPage) {
      if (b[at] != 1) continue;
      const auto owner = jet::Read<std::uint32_t>(b, at + 4);
      const std::size_t row = jet::Read<std::uint16_t>(b, at + 14);
      if (owner == jet::kLongValueOwner)
        jet::Put(b, at + row, jet::PointerTo(static_cast<std::uint32_t>(at / kPage), 0));
      const auto length = b.find(std::string("\x40\x1F\0\0", 4), at);
      if (owner == JetFile::Open(path).Find("T")->page) jet::Put(b, length, kLength);
    }
  });
  fs::resize_file(changed, std::uintmax_t{300} << 20);  // it takes no room on the disk
  JetReading lost;
  EXPECT_EQ(RowsOf(JetFile::Open(changed), "T", &lost), (Rows{{"first"}, {"last"}}));
  EXPECT_NE(DamageOf(lost).find(", row 1: the reader cannot get past this row\n"), std::string::npos) << DamageOf(lost);
}

// Whatever stands in it, a file is read to its end or refused, and nothing but Failure is thrown.
TEST_F(DamagedJetTest, GetsThroughFilesOfAnyBytes) {
  const char* wanted = std::getenv("VELLUMARK_MUTATIONS");
  const int count = wanted == nullptr ? 200 : std::atoi(wanted);
  const std::string sound = ReadFileBytes(path);
  std::mt19937 random(20140506);
  const auto below = [&](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random); };
  int refused = 0, damaged = 0, died = 0;
  for (int i = 0; i < count; ++i) {
    std::string bytes = sound;
    const std::size_t page = below(sound.size() / kPage) * kPage;
    switch (i % 4) {
      case 0:  // a few bytes anywhere
        for (int n = 0; n < 20; ++n) bytes[below(bytes.size())] = static_cast<char>(below(256));
        break;
      case 1:  // the head of a page, where its structure stands
        for (int n = 0; n < 8; ++n) bytes[page + below(96)] = static_cast<char>(below(256));
        break;
      case 2:  // a page of another place
        bytes.replace(page, kPage, sound, below(sound.size() / kPage) * kPage, kPage);
        break;
      default:  // definitions and catalog
        for (int n = 0; n < 6; ++n) bytes[(2 + below(12)) * kPage + below(700)] = static_cast<char>(below(256));
        break;
    }
    const auto began = std::chrono::steady_clock::now();
    try {
      const JetFile file = JetFile::Open(Changed([&](std::string& b) { b = bytes; }));
      std::string told;
      for (const JetDamage& d : file.Damage()) told += d.Text();
      for (const JetTable& table : file.Tables()) {
        JetReading reading =
            file.Read(table, [&](const JetRow& row) { return row.values.size() == table.columns.size(); });
        EXPECT_FALSE(reading.stopped);
        told += DamageOf(reading);
      }
      damaged += static_cast<int>(!told.empty());
      died += static_cast<int>(told.find("cannot get past") != std::string::npos);
    } catch (const Failure&) {
      ++refused;
    }
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(60)) << "file " << i;
  }
  std::printf("%d files: %d refused, %d damaged, the reader died of %d\n", count, refused, damaged, died);
  EXPECT_GT(damaged, count / 4);
  EXPECT_LT(refused, count / 2);
}

}  // namespace
}  // namespace vellumark
