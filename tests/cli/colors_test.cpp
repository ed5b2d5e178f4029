#include <gtest/gtest.h>

#include <filesystem>

#include "core/base/files.h"
#include "core/datafile/engine.h"
#include "support/cli_run.h"

namespace vellumark {
namespace {

using nlohmann::ordered_json;

struct ColorShop : test::CliRoom {
  ColorShop() {
    MakeFile();
    Json({"--today", "2026-03-10", "color", "add", "red", "PurchaseCost=10.126", "voc=0.5", "Notes=a=b"});
    Json({"color", "add", "blue", "PurchaseCost=3"});
  }
};

TEST(CliColors, FieldsGoInAndComeOut) {
  const ColorShop shop;
  const ordered_json red = shop.Json({"color", "show", "RED"});
  EXPECT_EQ(red["PurchaseCost"].dump(), "10.13");
  EXPECT_EQ(red["VOC"].dump(), "0.5");
  EXPECT_EQ(red["Notes"], "a=b");
  EXPECT_EQ(red["Date_Entered"], "2026-03-10");
  EXPECT_TRUE(red["LastConsumed"].is_null());
  EXPECT_EQ(shop.Json({"color", "set", "red", "Additive=yes", "Inventory=2.5"})["Additive"], true);
  const ordered_json all = shop.Json({"color", "list"});
  ASSERT_EQ(all.size(), 2U);
  EXPECT_EQ(all[1]["Inventory"], 2.5);
  EXPECT_EQ(all[0]["IngSort"], 1);
  // Stock that is typed is posted by hand: at or below the cutoff it is nothing.
  EXPECT_EQ(shop.Json({"color", "set", "RED", "Inventory=0.4", "VOC=1"})["Inventory"], 0);
  EXPECT_EQ(shop.Json({"formula", "add", "PINK", "RED=1", "Inventory=7"})["Inventory"], 7);
  EXPECT_EQ(shop.Json({"formula", "edit", "PINK", "Inventory=0.5"})["Inventory"], 0);
  const ordered_json pink = shop.Json({"stock", "history", "PINK"});
  ASSERT_EQ(pink.size(), 2U);
  EXPECT_EQ(pink[1]["Source"], "Manual");
  EXPECT_EQ(pink[1]["Change"], -7);
}

TEST(CliColors, AChangedFigureReachesTheFormulasWithTheSameCommand) {
  const ColorShop shop;
  shop.Json({"formula", "add", "PURPLE", "RED=1", "BLUE=1"});
  EXPECT_EQ(shop.Json({"formula", "show", "PURPLE"})["BasicCost"].dump(), "6.57");
  shop.Json({"color", "set", "BLUE", "PurchaseCost=5", "HAP=0.2"});
  const ordered_json purple = shop.Json({"formula", "show", "PURPLE"});
  EXPECT_EQ(purple["BasicCost"].dump(), "7.57");
  EXPECT_EQ(purple["BasicHAP"].dump(), "0.1");
}

TEST(CliColors, RefusedWithTitleTextAndField) {
  const ColorShop shop;
  shop.Json({"formula", "add", "PURPLE", "RED=1", "BLUE=1"});
  const struct {
    std::vector<std::string> words;
    int status;
    std::string says;
  } cases[] = {
      {{"color", "add", "O'NEILL"}, 1, "holds the character '"},
      {{"color", "add", "RED"}, 1, "Basic Color Name Exists: This Basic Color already exists.\n"},
      {{"color", "add", " "}, 1, "Color Name Needed"},
      {{"color", "add", "PANTONE 1"}, 1, "Color name cannot begin with the word PANTONE.\n"},
      {{"color", "add", "PURPLE"}, 3, "Basics / Additives - New Item: A Master Formula PURPLE already exists"},
      {{"color", "set", "RED", "Colour=1"}, 2, "Colour=1"},
      {{"color", "set", "RED"}, 2, "FIELD=VALUE"},
      {{"color", "set", "RED", "PurchaseCost=-1"}, 1, "Invalid Purchase Cost: You must enter currency between\n0 and"},
      {{"color", "set", "RED", "Inventory=-1"}, 1, "Negative Inventory not allowed."},
      {{"color", "set", "RED", "Additive=perhaps"}, 1, "Additive is yes or no"},
      {{"color", "set", "RED", "Inv_Note=0123456789012345678901234567890"}, 1, "INK_Basic.Inv_Note"},
      {{"color", "set", "GREY", "VOC=1"}, 1, "GREY is not found in this database."},
      {{"color", "delete", "RED"}, 1, "Formula Requirement: PURPLE\nBasic / Additive  cannot be deleted."},
      {{"color", "rename", "RED", "BLUE"}, 3, "Do you want to merge the colors?"},
      {{"--no", "color", "rename", "RED", "BLUE"}, 1, "nothing was changed"},
      {{"formula", "add", "PURPLE", "RED=1"}, 1, "Master Formula Exists"},
      {{"formula", "add", "PINK"}, 1, "Invalid Formula: Can't save a formula with no ingredients.\n"},
      {{"formula", "add", "PINK", "RED=1", "red=2"}, 1, "Duplicate use of an ingredient in the formula."},
      {{"formula", "add", "PINK", "RED=0"}, 1, "0.001 and 999.000"},
      {{"formula", "add", "PINK", "RED"}, 2, "RED is neither"},
      {{"formula", "add", "PINK", "RED=1", "WHITE=9"}, 3, "Add Basic Color To Database?: The Basic Color WHITE"},
      {{"--yes", "formula", "add", "PINK", "WHITE=9", "BLUE=x"}, 1, "Invalid Formula Amount"},
      {{"formula", "add", "PINK", "RED=1", "--additive-set", "NONE"}, 1, "Additive Set: NONE is not on file."},
      {{"formula", "edit", "PINK", "RED=1"}, 1, "PINK is not found"},
      {{"formula", "delete", "PURPLE"}, 3, "Master Formula - Delete Master Formula?"},
      {{"formula", "rename", "PURPLE", "purple"}, 1, "Choose Another Name"},
  };
  const auto everything = [&] { return shop.Json({"color", "list"}).dump() + shop.Json({"formula", "list"}).dump(); };
  const std::string before = everything();
  for (const auto& c : cases) {
    const test::CliAnswer answer = shop.Run(c.words);
    EXPECT_EQ(answer.status, c.status) << c.words[1] << " " << c.words[2] << ": " << answer.err;
    EXPECT_NE(answer.err.find(c.says), std::string::npos) << answer.err;
  }
  EXPECT_EQ(everything(), before);
  const test::CliAnswer refused = shop.Run({"--json", "color", "set", "RED", "HAP=x"});
  EXPECT_EQ(refused.Json()["refused"]["title"], std::string(30, ' ') + "Invalid HAP");
  EXPECT_EQ(refused.Json()["refused"]["field"], "HAP");
}

TEST(CliFormulas, FromTheFirstToTheLastVerb) {
  const ColorShop shop;
  const ordered_json made =
      shop.Json({"--yes", "formula", "add", "purple", "red=1", "BLUE=1", "white=1", "Color_Code=P-1", "Recycle=no"});
  EXPECT_EQ(made["BQ0"].dump(), "33.334");
  EXPECT_EQ(made["Color_Set"], "<RED><BLUE><WHITE>");
  EXPECT_EQ(made["Recycle"], false);
  EXPECT_EQ(made["BasicCost"], 4.38);
  // A code shows a formula; what changes one wants its name.
  EXPECT_EQ(shop.Json({"formula", "show", "p-1"})["Color_Name"], "PURPLE");
  for (const std::vector<std::string>& words : {std::vector<std::string>{"edit", "p-1", "Notes=n"},
                                                {"rename", "p-1", "VIOLET"},
                                                {"duplicate", "p-1", "VIOLET"},
                                                {"revert", "p-1"},
                                                {"delete", "p-1"}}) {
    std::vector<std::string> all{"--yes", "formula"};
    all.insert(all.end(), words.begin(), words.end());
    const test::CliAnswer refused = shop.Run(all);
    EXPECT_EQ(refused.status, 1) << words[0];
    EXPECT_NE(refused.err.find("P-1 is not found in this database.\nIt is the Color Code of PURPLE."),
              std::string::npos)
        << refused.err;
  }
  EXPECT_NE(shop.Run({"formula", "show", "PURPLE"}).out.find("  100.000\n"), std::string::npos);

  // A field alone leaves the recipe as it is; ingredients are the whole new one.
  EXPECT_EQ(shop.Json({"formula", "edit", "PURPLE", "Notes=n"})["BC2"], "WHITE");
  EXPECT_EQ(shop.Json({"formula", "edit", "PURPLE", "BLUE=3", "RED=1"})["Color_Set"], "<BLUE><RED>");
  shop.Json({"color", "set", "RED", "PurchaseCost=20"});
  EXPECT_EQ(shop.Json({"formula", "passes"})["Formulas"], 1);
  EXPECT_EQ(shop.Json({"formula", "show", "PURPLE"})["BasicCost"], 7.25);

  EXPECT_EQ(shop.Json({"formula", "duplicate", "PURPLE", "violet"})["Color_Name"], "VIOLET");
  EXPECT_EQ(shop.Json({"formula", "rename", "VIOLET", "LILAC"})["Color_Name"], "LILAC");
  EXPECT_EQ(shop.Json({"formula", "list", "--using", "red"}).size(), 2U);
  EXPECT_EQ(shop.Json({"formula", "list", "--using", "white"}).size(), 0U);
  shop.Json({"--answer", "Basic Color Name Exists=yes", "color", "rename", "RED", "BLUE"});
  EXPECT_EQ(shop.Json({"formula", "show", "LILAC"})["BQ0"], 100);
  shop.Json({"--yes", "formula", "delete", "LILAC"});
  EXPECT_EQ(shop.Json({"formula", "list"}).size(), 1U);
}

// Every way by which a name comes into a Data File, with names that none of them may take. A Data File that refused one
// holds what it held.
TEST(CliColors, NoDoorTakesANameThatTheRuleDoesNotHave) {
  const test::CliRoom room;
  const std::string path = room.MakeFile();
  room.Json({"--yes", "color", "add", "BLUE"});
  room.Json({"--yes", "color", "add", "WAX", "Additive=yes"});
  room.Json({"--yes", "formula", "add", "GREEN", "BLUE=1"});
  room.Json({"addset", "add", "SLOW", "WAX=5"});
  const std::filesystem::path import = room.folder / "in.mfe";
  using Words = std::vector<std::string>;
  struct Door {
    Words words;         // "@" stands for the name
    bool ofSet = false;  // an Additive Set may bear the name of a guide
  };
  const std::vector<Door> doors{
      {{"color", "add", "@"}},
      {{"color", "rename", "BLUE", "@"}},
      {{"formula", "add", "@", "BLUE=1"}},
      {{"formula", "add", "NEW", "BLUE=1", "@=1"}},
      {{"formula", "edit", "GREEN", "@=1"}},
      {{"formula", "rename", "GREEN", "@"}},
      {{"formula", "duplicate", "GREEN", "@"}},
      {{"formula", "import", import.string()}},
      {{"addset", "add", "@", "WAX=5"}, true},
      {{"addset", "add", "NEW", "@=5"}},
      {{"addset", "edit", "SLOW", "@=5"}},
      {{"addset", "rename", "SLOW", "@"}, true},
      {{"tools", "rename", "GREEN", "--find", "GREEN", "--replace", "@"}},
      {{"tools", "rename", "BLUE", "--kind", "basic", "--find", "BLUE", "--replace", "@"}},
      {{"batch", "calc", "--formula", "GREEN", "--quantity", "10", "--add", "@=1"}},
      {{"batch", "save", "--formula", "GREEN", "--quantity", "10", "--add", "@=1"}},
      {{"batch", "save", "--formula", "GREEN", "--quantity", "10", "--add", "WAX=1", "--fold-new", "@"}},
  };
  const auto held = [&] {
    const auto file = Database::Open(path, OpenMode::ReadOnly);
    std::string names;
    for (const char* sql : {"SELECT Color_Name FROM INK_Basic", "SELECT Color_Name FROM INK_Mix",
                            "SELECT SetName FROM INK_Additives", "SELECT Color_Name FROM INK_Batch"}) {
      Statement row = file->Prepare(sql);
      while (row.Step()) names += row.Text(0) + ", ";
    }
    return names;
  };
  const std::string before = held();
  const std::string tooLong = "A NAME OF MUCH MORE THAN THIRTY CHARACTERS";
  for (const std::string& name : {std::string("PANTONE 12"), std::string("A|B"), std::string("OHM \xCE\xA9"),
                                  std::string("A<B"), std::string("A\tB"), tooLong}) {
    for (const Door& door : doors) {
      const bool guide = name.starts_with("PANTONE");
      const bool ofFile = door.words[1] == "import";
      // Another shop's file may bring colours of a guide.
      if (guide && (door.ofSet || ofFile)) continue;
      if (ofFile) {
        if (name == "A\tB") continue;
        ReplaceFile(import, "INK\r\nFINE\tBLUE\t1\t" + name + "\t1\r\n");
      }
      std::vector<std::string> words{"--yes"};
      for (std::string word : door.words) {
        if (const std::size_t at = word.find('@'); at != std::string::npos) word.replace(at, 1, name);
        words.push_back(word);
      }
      EXPECT_EQ(room.Run(words).status, 1) << door.words[0] << " " << door.words[1] << " " << name;
      ASSERT_EQ(held(), before) << door.words[0] << " " << door.words[1] << " " << name;
    }
  }
}

}  // namespace
}  // namespace vellumark
