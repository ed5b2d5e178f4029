#include <gtest/gtest.h>

#include <filesystem>

#include "core/base/files.h"
#include "core/datafile/engine.h"
#include "support/cli_run.h"
#include "support/places.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;

const std::string kSampleTexts = test::SourceFolder().string() + "/data/guides";

fs::path InstallTemplate(const test::CliRoom& room) {
  fs::create_directories(room.folder / "Program");
  const fs::path path = room.folder / "Program" / "pdbt.vkt";
  room.Json({"template", "build", kSampleTexts, "--out", path.string()});
  return path;
}

TEST(CliTemplate, IsBuiltCheckedAndRefusedWithItsFaults) {
  const test::CliRoom room;
  const fs::path path = InstallTemplate(room);
  const auto sound = room.Json({"template", "check", path.string()});
  EXPECT_TRUE(sound["Sound"]);
  EXPECT_EQ(sound["Tables"].size(), 11U);
  EXPECT_EQ(sound["Tables"][1], nlohmann::ordered_json({{"Table", "FGuide_MColors_GP1601A"}, {"Rows", 168}}));

  const std::string before = ReadFileBytes(path);
  const fs::path texts = room.folder / "texts";
  fs::copy(kSampleTexts, texts);
  ReplaceFile(texts / "Goe_BColors.tsv", "Color_Name\nPANTONE CLEAR SPRING\n");
  const test::CliAnswer bad = room.Run({"template", "build", texts.string(), "--out", path.string()});
  EXPECT_EQ(bad.status, 1);
  EXPECT_NE(bad.err.find("Goe_MColors.tsv:2: the guide has no Basic Color PANTONE PLAIN AMBERLEY: PANTONE 96001\t"),
            std::string::npos);
  EXPECT_EQ(ReadFileBytes(path), before);
  Database::Open(path, OpenMode::Exclusive)->Execute("DROP TABLE Info_Table");
  const test::CliAnswer unsound = room.Run({"--json", "template", "check", path.string()});
  EXPECT_EQ(unsound.status, 1);
  EXPECT_EQ(unsound.Json()["refused"]["title"], "Guide Template");
  EXPECT_EQ(room.Run({"template", "check", (room.folder / "gone").string()}).status, 4);
  EXPECT_EQ(room.Run({"template", "build", kSampleTexts}).status, 2);
}

TEST(CliTemplate, ANewFileShowsAWorkingDatabaseAndWithoutATemplateSaysHowToGetOne) {
  const test::CliRoom room;
  const test::CliAnswer without = room.Run({"file", "create", (room.folder / "Bare.vkd").string()});
  EXPECT_EQ(without.status, 0) << without.err;
  EXPECT_NE(without.err.find("There is no template of color guides."), std::string::npos) << without.err;
  EXPECT_EQ(room.Json({"file", "info"})["Databases"][0]["Formulas"], 0);

  InstallTemplate(room);
  const test::CliAnswer with = room.Run({"file", "create", (room.folder / "Full.vkd").string()});
  EXPECT_EQ(with.err, "");
  EXPECT_EQ(room.Json({"file", "info"})["Databases"][0]["Formulas"], 308);
  const auto calculated = room.Json({"batch", "calc", "--formula", "90001", "--quantity", "10"});
  EXPECT_EQ(calculated["Color_Name"], "PANTONE 90001");
  EXPECT_EQ(calculated["Total"], "10.000");
  // The colours on file are found under what is printed in the guide, by whatever verb, and none comes a second time.
  const auto names = [&] { return room.Json({"color", "list"}).size(); };
  const std::size_t before = names();
  EXPECT_EQ(room.Run({"color", "add", "Clear Spring"}).status, 1);
  EXPECT_EQ(room.Json({"color", "set", "Clear Spring", "Additive=yes"})["Color_Name"], "PANTONE CLEAR SPRING");
  EXPECT_EQ(room.Json({"stock", "adjust", "Clear Spring", "5"})["Color_Name"], "PANTONE CLEAR SPRING");
  EXPECT_EQ(room.Json({"stock", "adjust", "90001", "3"})["Color_Name"], "PANTONE 90001");
  EXPECT_EQ(room.Json({"stock", "reorder", "Clear Spring", "9"})["Reorder"], 9);
  EXPECT_EQ(room.Json({"stock", "history", "Clear Spring"}).size(), 1U);
  EXPECT_EQ(room.Json({"formula", "add", "HOUSE", "Clear Spring=1"})["Color_Set"], "<PANTONE CLEAR SPRING>");
  EXPECT_EQ(room.Json({"formula", "list", "--using", "Clear Spring"}),
            room.Json({"formula", "list", "--using", "PANTONE CLEAR SPRING"}));
  EXPECT_EQ(room.Json({"addset", "add", "S", "Clear Spring=5"})["SetList"], "<PANTONE CLEAR SPRING>");
  EXPECT_EQ(room.Json({"tools", "delete", "90001", "--preview"})[0]["Color_Name"], "PANTONE 90001");
  EXPECT_EQ(names(), before);
  // A name with the prefix is refused unless the book has it.
  EXPECT_EQ(room.Run({"--yes", "formula", "add", "PANTONE 12", "PANTONE CLEAR SPRING=1"}).status, 1);
  EXPECT_EQ(room.Run({"file", "create", (room.folder / "Empty.vkd").string(), "--empty"}).err, "");
  EXPECT_EQ(room.Json({"file", "info"})["Databases"][0]["Formulas"], 0);
}

TEST(CliDatabases, AreMadeOfGuidesRenamedAndDeleted) {
  const test::CliRoom room;
  room.MakeFile();
  InstallTemplate(room);
  const auto made = room.Json({"db", "create", "book", "--guide", "F_Guide_A", "--guide", "goe"});
  EXPECT_EQ(made["Database"], "BOOK");
  EXPECT_EQ(made["Formulas"], 196);
  EXPECT_EQ(made["Basics"], 16);
  const test::CliAnswer both =
      room.Run({"--json", "db", "create", "X", "--guide", "F_Guide_A", "--guide", "F_Guide_B"});
  EXPECT_EQ(both.status, 1);
  EXPECT_EQ(both.Json()["refused"]["title"], "Pantone Formula Guide Selection");
  EXPECT_EQ(room.Run({"db", "create", "X", "--guide", "Goe", "--copy", "INK"}).status, 2);

  EXPECT_EQ(room.Json({"db", "rename", "ink", "flexo"})["Database"], "FLEXO");
  EXPECT_EQ(room.Json({"file", "info"})["CurrentDB"], "FLEXO");
  EXPECT_EQ(room.Run({"db", "rename", "FLEXO", "BOOK"}).status, 1);
  const test::CliAnswer asked = room.Run({"--json", "db", "delete", "BOOK"});
  EXPECT_EQ(asked.status, 3);
  EXPECT_EQ(asked.Json()["question"]["title"], "Delete Databases?");
  EXPECT_EQ(room.Run({"--no", "db", "delete", "BOOK"}).status, 1);
  EXPECT_EQ(room.Run({"--yes", "db", "delete", "FLEXO"}).status, 1);
  EXPECT_EQ(room.Json({"db", "list"}).size(), 2U);
  EXPECT_EQ(room.Json({"--yes", "db", "delete", "BOOK"})["Databases"], nlohmann::ordered_json({"FLEXO"}));
  EXPECT_EQ(room.Json({"db", "list"}).size(), 1U);
}

}  // namespace
}  // namespace vellumark
