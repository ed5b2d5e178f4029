#include "core/labels/scan_records.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace vellumark {
namespace {

std::string Told(std::string_view text) {
  std::string told;
  for (const ScanRecord& r : ParseScan(text)) {
    std::string line;
    const auto add = [&](const char* name, const std::optional<std::string>& value) {
      if (value) line += fmt::format("{}{}={}", line.empty() ? "" : " ", name, *value);
    };
    add("CN", r.CN);
    add("CC", r.CC);
    add("CT", r.CT);
    add("DB", r.DB);
    if (r.LR) line += fmt::format(" LR={}", *r.LR);
    add("LN", r.LN);
    add("LL", r.LL);
    add("LC", r.LC);
    add("JN", r.JN);
    if (r.Qty) line += fmt::format(" {:.3f}", *r.Qty);
    told += "[" + line + "]";
  }
  return told;
}

TEST(ScanTest, GroupsLinesIntoRecords) {
  struct {
    const char* what;
    std::string text;
    std::string records;
  } const cases[] = {
      {"a quantity ends a record", "<CN>RED\n<LN>A1\n5\n<CN>RED\n<LN>A2\n7",
       "[CN=RED LN=A1 5.000][CN=RED LN=A2 7.000]"},
      {"so does another value", "<CN>RED\n<CN>BLUE", "[CN=RED][CN=BLUE]"},
      {"the same label twice", "<CN>RED\n<CN>RED\n2", "[CN=RED 2.000]"},
      {"small letters and their tags", "<cn>red\n<Ln>a1\n1", "[CN=RED LN=A1 1.000]"},
      {"other lines and ignored tags", "hello\n<CN>RED\n<BI>12\nWORDS\n<SN>fair\n3\n<M1>x\n", "[CN=RED 3.000]"},
      {"only ignored", "<DT>2026-03-10\n<UN>ANN\n\n", ""},
      {"what is too much is no quantity", "<CN>RED\n100000\n99999\n99998.5", "[CN=RED 99998.500]"},
      {"three decimals", "<CN>RED\n1.0005", "[CN=RED 1.001]"},
      {"CR, LF, both, Tab", "<CN>RED\r<LN>A1\r\n<LL>S 1\t4\n\r", "[CN=RED LN=A1 LL=S 1 4.000]"},
      {"all that is stored", "<CN>A<B>\n<CC>C\n<CT>2\n<DB>INK\n<LR>7\n<LN>L\n<LL>S\n<LC>9\n<JN>J-1\n.5",
       "[CN=A<B> CC=C CT=2 DB=INK LR=7 LN=L LL=S LC=9 JN=J-1 0.500]"},
      {"two quantities", "<CN>RED\n5\n6", "[CN=RED 5.000][ 6.000]"},
      {"a quantity below zero is told later", "<CN>RED\n-5", "[CN=RED -5.000]"},
  };
  for (const auto& [what, text, records] : cases) EXPECT_EQ(Told(text), records) << what;
}

// Records written out as labels are scanned, with noise in between, come back as they were.
TEST(ScanTest, TakesTenThousandLines) {
  std::string text;
  for (int i = 0; i < 3334; ++i)
    text += fmt::format("<CN>C{}\r\n<M2>noise\r\n<ln>l{}\r\n{}\r\n", i % 7, i, i % 50 + 0.25);
  const std::vector<ScanRecord> records = ParseScan(text);
  ASSERT_EQ(records.size(), 3334U);
  for (int i = 0; i < 3334; ++i) {
    EXPECT_EQ(records[static_cast<std::size_t>(i)].LN, fmt::format("L{}", i));
    EXPECT_EQ(records[static_cast<std::size_t>(i)].Qty, static_cast<float>(i % 50 + 0.25));
  }
}

}  // namespace
}  // namespace vellumark
