// Formulas out to files of every format, and in again, from the command line.

#include <gtest/gtest.h>

#include <algorithm>

#include "core/base/files.h"
#include "core/base/text.h"
#include "support/cli_run.h"
#include "support/places.h"

namespace vellumark {
namespace {

using Words = std::vector<std::string>;

// The rows of an .mfe file behind the name of the Database; the ingredients by name where they have no order.
Words Formulas(const std::filesystem::path& mfe, bool ordered) {
  const std::string bytes = ReadFileBytes(mfe);
  Words rows;
  for (const std::string_view row : Split(bytes, '\n')) {
    std::vector<std::string_view> cells = Split(row, '\t');
    Words pairs;
    for (std::size_t n = 1; n + 1 < cells.size(); n += 2)
      pairs.push_back(Trim(std::string(cells[n]) + "=" + std::string(cells[n + 1].substr(0, cells[n + 1].find('\r')))));
    if (!ordered) std::ranges::sort(pairs);
    std::string text(cells[0]);
    for (const std::string& pair : pairs) text += "|" + pair;
    rows.push_back(text);
  }
  rows.erase(rows.begin());
  return rows;
}

TEST(CliFormulaFiles, TheSampleInkRoomComesBackInEveryFormat) {
  test::CliRoom room;
  room.MakeFile();
  room.Json({"formula", "import", (test::SourceFolder() / "data/ink_room/ink_room.mfe").string()});
  const auto file = [&](const std::string& name) { return (room.folder / name).string(); };
  EXPECT_EQ(room.Json({"formula", "export", "--out", file("all.mfe")})["Formulas"], 304);
  for (int format = 0; format < 8; ++format) {
    SCOPED_TRACE(format);
    const std::string out = file("out" + std::to_string(format) + ".txt");
    const auto written = room.Json({"formula", "export", "--format", std::to_string(format), "--out", out});
    EXPECT_EQ(written["Formulas"], 304);
    EXPECT_EQ(written["Left"].size(), 0U);
    const std::string database = "COPY " + std::to_string(format);
    room.Json({"db", "create", database});
    room.Json({"--db", database, "formula", "import", out});
    room.Json({"--yes", "--db", database, "formula", "export", file("back.mfe")});
    EXPECT_EQ(Formulas(file("back.mfe"), format < 4), Formulas(file("all.mfe"), format < 4));
  }
}

TEST(CliFormulaFiles, AreChosenByNameAndByDay) {
  test::CliRoom room;
  room.MakeFile();
  room.Json({"color", "add", "RED"});
  room.Json({"--today", "2026-01-05", "formula", "add", "PINK", "RED=100", "Color_Code=P 1"});
  room.Json({"--today", "2026-01-06", "formula", "add", "ROSE", "RED=100"});
  room.Json({"--today", "2026-02-01", "formula", "edit", "PINK", "RED=100"});
  const std::string out = (room.folder / "out.txt").string();
  const auto names = [&](Words words) {
    words.insert(words.begin(), {"--yes", "formula", "export"});
    words.insert(words.end(), {"--out", out});
    const test::CliAnswer answer = room.Run(words);
    if (answer.status != 0) return answer.err;
    std::string found;
    for (const std::string& row : Formulas(out, true)) found += row.substr(0, row.find('|')) + " ";
    return Trim(found);
  };
  EXPECT_EQ(names({"--from", "2026-01-06"}), "ROSE");
  EXPECT_EQ(names({"--from", "2026-01-06", "--by", "modified"}), "PINK ROSE");
  EXPECT_EQ(names({"--to", "2026-01-31", "--by", "modified"}), "ROSE");
  EXPECT_EQ(names({"rose", "p 1"}), "ROSE PINK");
  EXPECT_EQ(names({"--from", "2026-03-01"}), "No Formulas Selected: No Master Formulas selected for export.\n");
  EXPECT_EQ(room.Run({"formula", "export", "--format", "8", out}).status, 2);
  EXPECT_EQ(room.Run({"formula", "export"}).status, 1);

  const std::string own = (room.folder / "own.csv").string();
  ReplaceFile(own, "Farbe;Tinte;Anteil\nHIMMEL;RED;100\n");
  EXPECT_EQ(room.Run({"formula", "import", own}).status, 1);
  const auto columns = room.Json({"formula", "columns", own, "--column", "farbe=Color Name", "--column",
                                  "Tinte=Ingredient", "--column", "Anteil=Parts"});
  EXPECT_EQ(columns[1]["Field"], "Ingredient");
  room.Json({"formula", "import", own});
  EXPECT_EQ(room.Json({"formula", "show", "HIMMEL"})["BC0"], "RED");
  EXPECT_EQ(room.Run({"formula", "columns", "--column", "Farbe=Colour"}).status, 1);
  EXPECT_EQ(room.Json({"formula", "columns", "--forget"}).size(), 0U);
}

}  // namespace
}  // namespace vellumark
