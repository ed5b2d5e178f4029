#include <gtest/gtest.h>

#include <filesystem>

#include "support/cli_run.h"
#include "support/places.h"

namespace vellumark {
namespace {

using nlohmann::ordered_json;

struct ToolShop : test::CliRoom {
  ToolShop() {
    MakeFile();
    for (const char* name : {"RED", "BLUE", "WHITE"}) Json({"color", "add", name, "PurchaseCost=10"});
    for (const char* name : {"DRIER", "WAX"}) Json({"color", "add", name, "Additive=yes", "PurchaseCost=20"});
    Json({"formula", "add", "PURPLE", "RED=60", "BLUE=40"});
    Json({"formula", "add", "PINK", "RED=10", "WHITE=90"});
  }
  std::string Everything() const {
    return Json({"color", "list"}).dump() + Json({"formula", "list"}).dump() + Json({"addset", "list"}).dump();
  }
  std::string Recipe(const std::string& name) const {
    const ordered_json mix = Json({"formula", "show", name});
    std::string text;
    for (int n = 0; n < 15; ++n)
      if (const std::string slot = std::to_string(n); !mix["BC" + slot].get<std::string>().empty())
        text += mix["BC" + slot].get<std::string>() + " " + mix["BQ" + slot].dump() + " ";
    return text + mix["AddSetName"].get<std::string>();
  }
};

TEST(CliAdditiveSets, FromTheFirstToTheLastVerb) {
  const ToolShop shop;
  const ordered_json made = shop.Json({"addset", "add", "slow", "drier=2", "WAX=3.004"});
  EXPECT_EQ(made["SetName"], "SLOW");
  EXPECT_EQ(made["Add_Name0"], "DRIER");
  EXPECT_EQ(made["Add_Percent1"].dump(), "3.0");
  EXPECT_EQ(made["SetList"], "<DRIER><WAX>");
  const ordered_json preview =
      shop.Json({"addset", "apply", "SLOW", "PURPLE", "PINK", "--having", "RED>=20", "--preview"});
  EXPECT_EQ(preview[0]["Type"], "Modable");
  EXPECT_EQ(preview[1]["Info"], "< 20");
  EXPECT_EQ(shop.Recipe("PURPLE"), "RED 60 BLUE 40 ");

  const ordered_json applied = shop.Json({"--yes", "addset", "apply", "SLOW", "--having", "red>=20"});
  EXPECT_EQ(applied["Modified"], ordered_json({"PURPLE"}));
  EXPECT_EQ(applied["Excluded"][0]["Color_Name"], "PINK");
  EXPECT_EQ(shop.Recipe("PURPLE"), "RED 57 BLUE 38 DRIER 2 WAX 3 SLOW");
  EXPECT_EQ(shop.Json({"formula", "show", "PURPLE"})["BasicCost"], 10.5);
  shop.Json({"addset", "edit", "SLOW", "DRIER=10"});
  EXPECT_EQ(shop.Recipe("PURPLE"), "RED 54 BLUE 36 DRIER 10 SLOW");
  EXPECT_EQ(shop.Json({"formula", "show", "PURPLE"})["BasicCost"], 11);
  EXPECT_EQ(shop.Json({"addset", "rename", "SLOW", "fast"})["SetName"], "FAST");
  EXPECT_EQ(shop.Json({"addset", "show", "fast"})["Formulas"], ordered_json({"PURPLE"}));
  EXPECT_NE(shop.Run({"addset", "show", "FAST"}).out.find("used by PURPLE"), std::string::npos);

  shop.Json({"--yes", "addset", "remove", "FAST", "PURPLE"});
  EXPECT_EQ(shop.Recipe("PURPLE"), "RED 60 BLUE 40 ");
  shop.Json({"--yes", "addset", "apply", "FAST", "PINK"});
  shop.Json({"--yes", "addset", "delete", "FAST"});
  EXPECT_EQ(shop.Recipe("PINK"), "RED 10 WHITE 90 ");
  EXPECT_EQ(shop.Json({"addset", "list"}).size(), 0U);
}

TEST(CliTools, PreviewShowsWhatIsThenDone) {
  const ToolShop shop;
  shop.Json({"formula", "add", "SNOW", "WHITE=1"});
  const std::vector<std::string> modify{"tools",           "modify", "--all",      "--line",
                                        "decrease RED=50", "--line", "add BLUE=10"};
  std::vector<std::string> words = modify;
  words.emplace_back("--preview");
  const std::string before = shop.Everything();
  const ordered_json preview = shop.Json(words);
  ASSERT_EQ(preview.size(), 3U);
  EXPECT_EQ(preview[0]["Color_Name"], "PINK");
  EXPECT_EQ(preview[0]["Modified"][2]["Amount"].dump(), "9.524");
  EXPECT_EQ(preview[1]["Reasons"], ordered_json({"Contains BLUE"}));
  EXPECT_EQ(preview[1]["ToModify"], false);
  EXPECT_EQ(preview[2]["Type"], "Un Modable");
  EXPECT_EQ(preview[2]["Reasons"][0], "No RED");
  EXPECT_EQ(shop.Everything(), before);

  words = modify;
  words.insert(words.begin(), "--yes");
  EXPECT_EQ(shop.Json(words)["Modified"], ordered_json({"PINK"}));
  EXPECT_EQ(shop.Recipe("PINK"), "RED 4.762 WHITE 85.714 BLUE 9.524 ");
  // A formula with the ingredient is taken along when that is asked for: 40 becomes 44 of 104.
  shop.Json({"--yes", "tools", "modify", "purple", "--line", "add BLUE=10", "--held"});
  EXPECT_EQ(shop.Recipe("PURPLE"), "RED 57.692 BLUE 42.308 ");

  const ordered_json names =
      shop.Json({"tools", "rename", "PINK", "SNOW", "--find", "now", "--replace", "ILK", "--preview"});
  EXPECT_EQ(names[0]["Reason"], "Find string not found in name");
  EXPECT_EQ(names[1]["Color_Name"], "SILK");
  shop.Json({"--yes", "tools", "rename", "--all", "--suffix", " 2"});
  shop.Json({"--yes", "tools", "rename", "RED", "--kind", "basic", "--prefix", "my "});
  EXPECT_EQ(shop.Recipe("PINK 2"), "MY RED 4.762 WHITE 85.714 BLUE 9.524 ");

  EXPECT_EQ(shop.Json({"tools", "delete", "PINK 2", "SNOW 2", "--preview"})[1]["Deletes"], true);
  EXPECT_EQ(shop.Json({"--yes", "tools", "delete", "PINK 2", "SNOW 2"})["Deleted"], 2);
  EXPECT_EQ(shop.Json({"formula", "list"}).size(), 1U);
}

TEST(CliTools, RefusedWithNothingChanged) {
  const ToolShop shop;
  shop.Json({"addset", "add", "SLOW", "DRIER=2"});
  const std::string tooLong = "PURPLE" + std::string(30, 'X');
  const std::string limit = "The name " + tooLong + " has 36 characters, the limit is 30.";
  const struct {
    std::vector<std::string> words;
    int status;
    std::string says;
  } cases[] = {
      {{"addset", "add", "SLOW", "WAX=1"}, 1, "Additive Set: SLOW already exists."},
      {{"addset", "add", "NEW", "RED=1"}, 1, "Item Already Exists"},
      {{"addset", "add", "NEW", "GEL=1"}, 3, "Add Additive To Database?"},
      {{"--yes", "addset", "add", "NEW", "GEL=11"}, 1, "Maximum Percentage Exceeded"},
      {{"--yes", "addset", "add", "NEW", "G<L=1"}, 1, "holds the character <"},
      {{"addset", "add", "NEW"}, 1, "No ingredients found in the Additive Set."},
      {{"addset", "add", "NEW", "WAX"}, 2, "WAX is not ADDITIVE=PERCENT"},
      {{"addset", "edit", "NONE", "WAX=1"}, 1, "Additive Set: NONE is not on file."},
      {{"addset", "rename", "SLOW", "slow"}, 1, "Recheck Set Name"},
      {{"addset", "delete", "SLOW"}, 3, "Confirm Delete"},
      {{"addset", "apply", "SLOW"}, 1, "No Colors Selected - Step 2."},
      {{"addset", "apply", "SLOW", "PURPLE"}, 3, "1 color(s) are about to be modified."},
      {{"addset", "apply", "SLOW", "--having", "RED=5"}, 1, "RED=5 is not INGREDIENT>=PERCENT"},
      {{"addset", "remove", "SLOW", "PURPLE"}, 1, "PURPLE: Contains No Additive Set"},
      {{"tools", "modify", "PURPLE"}, 1, "No modifications selected."},
      {{"tools", "modify", "--line", "increase RED=1"}, 1, "Select Master Formulas"},
      {{"tools", "modify", "PURPLE", "--line", "increase RED"}, 2, "METHOD INGREDIENT=PERCENT"},
      {{"tools", "modify", "PURPLE", "--line", "remove RED=99"}, 1, "Removing a color requires a 100.00 value"},
      {{"tools", "modify", "PURPLE", "--line", "increase WHITE=1"}, 1, "PURPLE: No WHITE"},
      {{"tools", "modify", "PURPLE", "--line", "increase RED=1"}, 3, "change 1 Master Formula(s) in the INK Database."},
      {{"--no", "tools", "modify", "PURPLE", "--line", "increase RED=1"}, 1, "nothing was changed"},
      {{"tools", "rename", "PURPLE"}, 1, "Enter Rename Data"},
      {{"tools", "rename", "PURPLE", "--prefix", "PANTONE "}, 1, "Bad Prefix"},
      {{"tools", "rename", "PURPLE", "--find", "PURPLE", "--replace", "PINK"}, 1, "Rename creates duplicate"},
      {{"tools", "rename", "PURPLE", "--prefix", "A", "--suffix", "B"}, 2, "excludes"},
      {{"tools", "delete", tooLong}, 1, limit},
      {{"tools", "rename", tooLong, "--prefix", "A"}, 1, limit},
      {{"tools", "modify", "PURPLE", "--line", "increase " + tooLong + "=1"}, 1, limit},
      {{"tools", "delete", " "}, 2, "the text is empty"},
      {{"addset", "add", tooLong, "WAX=1"}, 1, limit},
      {{"addset", "edit", tooLong, "WAX=1"}, 1, limit},
      {{"addset", "show", tooLong}, 1, limit},
      {{"addset", "rename", "SLOW", tooLong}, 1, limit},
      {{"addset", "rename", "SLOW", " "}, 2, "the text is empty"},
      {{"addset", "apply", "SLOW", tooLong}, 1, limit},
      {{"tools", "delete", "PURPLE"}, 3, "OK to delete Master Formulas from database: INK"},
      {{"formula", "compare", "PURPLE"}, 1, "The guides of this database have no formula PURPLE."},
      {{"formula", "revert", "PURPLE"}, 1, "The published formula of PURPLE is not there"},
  };
  const std::string before = shop.Everything();
  for (const auto& c : cases) {
    const test::CliAnswer answer = shop.Run(c.words);
    EXPECT_EQ(answer.status, c.status) << c.words[1] << " " << c.words[2] << ": " << answer.err;
    EXPECT_NE(answer.err.find(c.says), std::string::npos) << c.says << " in " << answer.err;
  }
  EXPECT_EQ(shop.Everything(), before);
}

TEST(CliFormulas, ComparedWithTheGuideAndPutBack) {
  const test::CliRoom room;
  std::filesystem::create_directories(room.folder / "Program");
  room.Json({"template", "build", test::SourceFolder().string() + "/data/guides", "--out",
             (room.folder / "Program" / "pdbt.vkt").string()});
  room.Json({"file", "create", (room.folder / "Guides.vkd").string()});
  EXPECT_EQ(room.Json({"formula", "compare", "90001"})["Modified"], false);
  const ordered_json published = room.Json({"formula", "show", "90001"});
  room.Json({"--yes", "tools", "modify", "PANTONE 90001", "--line", "increase PANTONE SHARP CITRON=50"});
  const ordered_json compared = room.Json({"formula", "compare", "90001"});
  EXPECT_EQ(compared["Modified"], true);
  EXPECT_EQ(compared["CanRevert"], true);
  EXPECT_EQ(compared["OriginalRows"][1]["Amount"].dump(), "4.004");
  EXPECT_EQ(compared["ModifiedRows"][1]["Amount"].dump(), "5.888");
  EXPECT_EQ(room.Run({"--no", "formula", "revert", "90001"}).status, 1);
  const ordered_json reverted = room.Json({"--yes", "formula", "revert", "90001"});
  EXPECT_EQ(reverted["BQ1"], published["BQ1"]);
  EXPECT_EQ(room.Json({"formula", "compare", "90001"})["Modified"], false);
}

}  // namespace
}  // namespace vellumark
