#include <gtest/gtest.h>

#include <algorithm>

#include "core/base/files.h"
#include "support/cli_run.h"
#include "support/import_faults.h"

namespace vellumark::test {
namespace {

using Names = std::vector<std::string>;

// Two shops with a Data File each; the second is imported into the first.
struct TwoShops : testing::Test {
  TwoShops() {
    other = (room.folder / "Other.vkd").string();
    EXPECT_EQ(room.Run({"file", "create", other, "--database", "HOUSE", "--empty"}).status, 0);
    room.MakeFile();  // the last one made is the one in use
    for (const auto& words : std::vector<Names>{{"color", "add", "RED"},
                                                {"color", "set", "RED", "PurchaseCost=10"},
                                                {"color", "add", "BLUE"},
                                                {"formula", "add", "PLUM", "RED=50", "BLUE=50"},
                                                {"formula", "add", "SKY", "BLUE=100"}})
      There(words);
    room.Json({"--yes", "color", "add", "RED"});
    room.Json({"--yes", "formula", "add", "PLUM", "RED=100"});
  }
  void There(Names words) {
    words.insert(words.begin(), {"--yes", "--file", other});
    EXPECT_EQ(room.Run(words).status, 0) << words[3];
  }
  std::vector<std::string> Formulas(const Names& words = {}) {
    Names call = words;
    call.insert(call.end(), {"formula", "list"});
    std::vector<std::string> names;
    for (const auto& row : room.Json(call)) names.push_back(row["Color_Name"].get<std::string>());
    return names;
  }

  CliRoom room;
  std::string other;
};

TEST_F(TwoShops, AreMergedWithAComparisonInFrontOfIt) {
  const Names source{"formula", "import", "--from-file", other, "--from-db", "house"};
  const auto with = [&](Names more, const Names& before = {}) {
    Names words = before;
    words.insert(words.end(), source.begin(), source.end());
    words.insert(words.end(), more.begin(), more.end());
    return words;
  };
  const auto preview = room.Json(with({"--preview"}));
  EXPECT_EQ(preview["Source"], "HOUSE");
  EXPECT_EQ(preview["Formulas"][0]["ModType"], "Different");
  EXPECT_EQ(preview["Formulas"][0]["Lines"].dump(),
            R"([{"Ingredient":"RED","Here":100.0,"There":50.0,"Change":"-50.000"},{"Ingredient":"BLUE","Here":null,)"
            R"("There":50.0,"Change":"added"}])");
  EXPECT_EQ(preview["Formulas"][1]["ModType"], "New");
  EXPECT_EQ(preview["Basics"].dump(), R"([{"Color_Name":"BLUE","Uses":2}])");
  EXPECT_EQ(Formulas(), Names{"PLUM"});
  // The unit is asked about, and so are those that differ; nothing happens while a question stands.
  EXPECT_EQ(room.Run(with({})).status, 3);
  EXPECT_EQ(room.Run(with({"--unit", "kg."})).status, 3);
  EXPECT_EQ(room.Run(with({"--unit", "stone"})).status, 1);
  EXPECT_EQ(Formulas(), Names{"PLUM"});
  const std::string saved = (room.folder / "report.txt").string();
  const auto done = room.Json(with({"--unit", "kg.", "--take", "all", "--report", saved}));
  EXPECT_EQ(done["Added"], 1);
  EXPECT_EQ(done["Changed"], 1);
  EXPECT_EQ(done["NewBasics"], 1);
  const std::string report = ReadFileBytes(saved);
  for (const char* line : {"Formulas added (1)\r\n  SKY", "Formulas changed (1)\r\n  PLUM", "Basic Colors made (1)\r\n  BLUE"})
    EXPECT_NE(report.find(line), std::string::npos) << report;
  EXPECT_EQ(room.Json({"formula", "imports"}).size(), 1U);
  EXPECT_EQ(room.Json({"formula", "undo"})["Restored"], 1);
  EXPECT_EQ(Formulas(), Names{"PLUM"});
  EXPECT_EQ(room.Run({"formula", "undo"}).status, 1);

  EXPECT_EQ(room.Json(with({"SKY", "--take", "new", "--unit", "lb."}))["Added"], 1);
  EXPECT_EQ(room.Run(with({"NONE", "--take", "new", "--unit", "lb."})).status, 1);
  // Into a Database that it makes.
  EXPECT_EQ(room.Json(with({"--to", "FROM HOUSE", "--unit", "lb."}))["NewDatabase"], true);
  EXPECT_EQ(Formulas({"--db", "FROM HOUSE"}), (Names{"PLUM", "SKY"}));
  EXPECT_EQ(room.Run({"formula", "import", "--from-db", "INK"}).err,
            "Database Copy Error: Import destination cannot be the same as the source\n");
}

TEST_F(TwoShops, EachStepThatFailsIsToldInItsWordsAndNothingComesIn) {
  There({"db", "rename", "HOUSE", "INK"});
  std::filesystem::rename(other, room.folder / "shop.vkd");
  const std::filesystem::path file = room.folder / "Ink.vkd";
  const std::filesystem::path converted = room.folder / "Program" / "Converted";
  MakeFaultyTemplate(room.folder / "Program" / "pdbt.vkt");
  const std::string bytes = ReadFileBytes(file);
  for (const ImportFault& fault : ImportFaults()) {
    SCOPED_TRACE(fault.says);
    ReplaceFile(file, bytes);
    if (!fault.harm.empty()) Database::Open(file, OpenMode::Exclusive)->Execute(fault.harm);
    const std::string before = ReadFileBytes(file);
    Names words{"--yes", "formula", "import"};
    if (fault.file.empty()) words.insert(words.end(), {"--guide", "Goe"});
    if (fault.file.ends_with(".vkd")) words.insert(words.end(), {"--from-file", "--from-db", "ink"});
    if (!fault.file.empty()) {
      const std::string source = MakeSource(fault, room.folder.Path(), converted).string();
      words.insert(std::ranges::find(words, "--from-db"), source);
    }
    if (fault.newDatabase) words.insert(words.end(), {"--to", "NEW"});
    const CliAnswer answer = room.Run(words);
    EXPECT_EQ(answer.status, fault.how == ImportFault::How::Failed ? 4 : 1);
    EXPECT_NE(answer.err.find(": " + fault.says), std::string::npos) << answer.err;
    EXPECT_TRUE(ReadFileBytes(file) == before);
  }
  ReplaceFile(file, bytes);
  std::filesystem::remove(room.folder / "a.vkd");
}

TEST_F(TwoShops, AFileIsComparedAndBadLinesStopItUnlessTheyAreLeftOut) {
  const std::string file = (room.folder / "in.mfe").string();
  ReplaceFile(file, "HOUSE\r\nPLUM\tRED\t40\tBLUE\t60\r\nBAD\tRED\r\nNEW\tRED\t1\r\n");
  const auto rows = room.Json({"formula", "compare-file", file});
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0].dump(), R"({"Color_Name":"PLUM","ModType":"Different","Ingredient":"RED","Here":100.0,"There":40.0,"Change":"-60.000"})");
  EXPECT_EQ(room.Run({"formula", "import", file, "--take", "all"}).status, 1);
  EXPECT_EQ(Formulas(), Names{"PLUM"});
  const auto done = room.Json({"formula", "import", file, "--take", "all", "--skip-bad"});
  EXPECT_EQ(done["Added"], 1);
  EXPECT_EQ(done["Refused"].size(), 1U);
}

}  // namespace
}  // namespace vellumark::test
