#include "core/colors/additive_sets.h"

#include <gtest/gtest.h>

#include "core/base/number.h"
#include "core/colors/additive_control.h"
#include "core/colors/basics.h"
#include "support/ink_room.h"

namespace vellumark {
namespace {

AdditiveSetWork Work(const std::string& name, const std::vector<std::pair<std::string, std::string>>& rows) {
  AdditiveSetWork work{name, {}};
  for (std::size_t i = 0; i < rows.size(); ++i) work.rows[i] = {rows[i].first, rows[i].second};
  return work;
}

struct SetRoom : test::InkRoom {
  SetRoom() {
    for (const char* name : {"A", "B", "C"}) Basic(name);
    for (const char* name : {"DRIER", "WAX", "GEL"}) Basic(name, {{"Additive", true}});
  }
  AdditiveSet Set(const std::string& name, const std::vector<std::pair<std::string, std::string>>& rows) {
    const auto set = CreateAdditiveSet(session, Work(name, rows));
    EXPECT_TRUE(set) << (set ? "" : set.error().text);
    return set.value_or(AdditiveSet{});
  }
  std::string Formula(const std::string& name) {
    const auto mix = ReadMix(session, name);
    if (!mix) return "gone";
    std::string text = mix->AddSetName + ":";
    for (const Ingredient& line : mix->Ingredients()) text += " " + line.name + " " + Fixed(line.amount, 3);
    EXPECT_EQ(TotalOf(mix->Ingredients()), 100.0) << name;
    return text;
  }
};

TEST(AdditiveSets, ChecksInTheirOrder) {
  SetRoom room;
  room.Set("SLOW", {{"DRIER", "5"}});
  const struct {
    AdditiveSetWork work;
    Refusal refusal;
  } cases[] = {
      {Work(" ", {}), {"Additive Set Name", "Enter a valid Additive Set name.", "SetName"}},
      {Work("slow", {}),
       {"Additive Set Name", "Additive Set: SLOW already exists.\n\nEnter a different name.", "SetName"}},
      {Work("NEW", {{"", "5"}}), {"Additive Ingredients", "No ingredients found in the Additive Set.", "SetIng0"}},
      {Work("NEW", {{"A", "5"}, {"NONE", "5"}}),
       {"Add Set Ing.", "Additive does not exist.\nExamine highlighted item and press Enter to process.", "SetIng1"}},
      {Work("NEW", {{"DRIER", "x"}, {"A", "5"}}),
       {"Add Set Ing.",
        "Selected Ing not defined. as an Additive in Basics / Additives.\n\nGo to Basics / Additives and check the "
        "Additive box for this item.",
        "SetIng1"}},
      {Work("NEW", {{"DRIER", "x"}, {"", "5"}, {"DRIER", "5"}}),
       {"Invalid Add Set Formula", "Can't save Add Set formula, no ingredient for this quantity.", "SetIng1"}},
      {Work("NEW", {{"DRIER", ""}, {"drier", "5"}}),
       {"Invalid Add Set Formula", "Duplicate use of an ingredient in the Add Set formula.", "SetIng1"}},
      {Work("NEW", {{"DRIER", "11"}, {"WAX", ""}}),
       {"Invalid Add Set Formula", "Can't save Add Set formula, no quantity for this ingredient.", "SetPercent1"}},
      {Work("NEW", {{"DRIER", "5"}, {"WAX", "10.01"}}),
       {"Maximum Percentage Exceeded",
        "Enter a valid percentage, 1 - 10 %\n\nFor larger values the Additive must be entered as\na Basic Color in the "
        "Master Formula.",
        "SetPercent1"}},
  };
  for (const auto& c : cases) {
    const auto set = CreateAdditiveSet(room.session, c.work);
    ASSERT_FALSE(set) << c.refusal.text;
    EXPECT_EQ(set.error(), c.refusal);
  }
  for (const auto& [typed, passes] : {std::pair{"0.001", false},
                                      {"0.01", true},
                                      {"10.00", true},
                                      {"10.004", true},
                                      {"10.01", false},
                                      {"0", false},
                                      {"-1", false},
                                      {"", false}})
    EXPECT_EQ(ReadSetPercent(typed).has_value(), passes) << typed;

  const AdditiveSet set = room.Set("  two rows ", {{"", ""}, {"WAX", "2.345"}, {"", ""}, {" gel", "1"}});
  EXPECT_EQ(set.SetName, "TWO ROWS");
  EXPECT_EQ(set.SetList, "<WAX><GEL>");
  EXPECT_EQ(ReadAdditiveSet(room.session, "two rows")->Rows(), (Recipe{{"WAX", 2.35}, {"GEL", 1}}));
  EXPECT_EQ(room.Scalar("SELECT Add_Name2 FROM INK_Additives WHERE SetName = 'TWO ROWS'"), Value(""));
  EXPECT_EQ(room.Scalar("SELECT Add_Percent2 FROM INK_Additives WHERE SetName = 'TWO ROWS'"), Value(0.0));
}

TEST(AdditiveSets, EnteringAnIngredient) {
  SetRoom room;
  const AdditiveSetWork work = Work("NEW", {{"WAX", "1"}});
  EXPECT_EQ(
      EnterSetIngredient(room.session, work, 1, "a").error().text,
      "This Item already exists in Basics / Additives.\n\nIf it should be used as an Additive in this Database\ngo "
      "to Basics / Additives and check the Additive box.");
  EXPECT_EQ(EnterSetIngredient(room.session, work, 1, "wax").error(),
            (Refusal{"Duplicate Ingredient Selected", "The Additive WAX is already in the Set", "SetIng1"}));
  room.prompt.Expect("Add Additive To Database?", Answer::No);
  EXPECT_EQ(EnterSetIngredient(room.session, work, 1, "talc"), "");
  room.prompt.Expect(
      "Add Additive To Database?", Answer::Yes,
      "Not found in this database as an additive.\nWould you like to add it to the database?\n\nHint: "
      "Check the list of Additives in the Basic Colors window for\nspelling variations before adding it.");
  EXPECT_EQ(EnterSetIngredient(room.session, work, 1, "talc"), "TALC");
  EXPECT_TRUE(ReadBasic(room.session, "TALC")->Additive);
}

TEST(AdditiveSets, EditingRewritesTheFormulas) {
  SetRoom room;
  room.Set("SLOW", {{"DRIER", "5"}});
  room.Mix("GREEN", {{"A", 57}, {"B", 38}, {"DRIER", 5}}, {{"AddSetName", "SLOW"}});
  room.Mix("GREY", {{"A", 50}, {"WAX", 45}, {"DRIER", 5}}, {{"AddSetName", "SLOW"}});
  room.Mix("PLAIN", {{"A", 95}, {"DRIER", 5}});
  ASSERT_TRUE(EditAdditiveSet(room.session, "slow", Work("", {{"WAX", "10"}, {"DRIER", "2.5"}})));
  EXPECT_EQ(room.Formula("GREEN"), "SLOW: A 52.500 B 35.000 WAX 10.000 DRIER 2.500");
  // A line that the set now brings is the set's.
  EXPECT_EQ(room.Formula("GREY"), "SLOW: A 87.500 WAX 10.000 DRIER 2.500");
  EXPECT_EQ(room.Formula("PLAIN"), ": A 95.000 DRIER 5.000");
  EXPECT_TRUE(room.session.CostChanged && room.session.VOCChanged && room.session.HAPChanged);
}

TEST(AdditiveSets, RenameMergeAndDelete) {
  SetRoom room;
  room.Breaks("Ingredients");
  room.Set("SLOW", {{"DRIER", "5"}});
  room.Set("SLIP", {{"WAX", "2"}, {"GEL", "1"}});
  room.Mix("GREEN", {{"A", 57}, {"B", 38}, {"DRIER", 5}}, {{"AddSetName", "SLOW"}});
  room.Mix("BARE", {{"A", 100}}, {{"AddSetName", "SLOW"}});
  room.Mix("GREY", {{"A", 95}, {"GEL", 5}});
  std::vector<std::pair<std::string, float>> full{{"DRIER", 5.0F}};
  for (int i = 0; i < 13; ++i) full.emplace_back("C" + std::to_string(i), i == 0 ? 35.0F : 5.0F);
  room.Mix("FULL", full, {{"AddSetName", "SLOW"}});
  const struct {
    const char* typed;
    Refusal refusal;
  } bad[] = {
      {" ", {"Set Name Needed", "Please enter a new Additive Set Name.", "SetName"}},
      {" slow ",
       {"Recheck Set Name",
        "The Set Name that was entered is the same as the one that is being renamed.\n\nPlease enter another Set Name.",
        "SetName"}},
  };
  for (const auto& c : bad) EXPECT_EQ(RenameAdditiveSet(room.session, "SLOW", c.typed).error(), c.refusal);
  EXPECT_EQ(RenameAdditiveSet(room.session, "SLOW", "slower"), true);
  EXPECT_EQ(room.Formula("GREEN"), "SLOWER: A 57.000 B 38.000 DRIER 5.000");
  const char* text = "This Set Name matches another on file.\n\nDo you want to merge the two Sets?";
  room.prompt.Expect("Additive Set Name Exists", Answer::No, text);
  EXPECT_EQ(RenameAdditiveSet(room.session, "SLOWER", "SLIP"), false);
  EXPECT_FALSE(room.session.CostChanged);
  room.prompt.Expect("Additive Set Name Exists", Answer::Yes, text);
  room.prompt.Expect("Additive Set Application", Answer::Ok,
                     "The Additive Set SLIP could not be applied to these Master Formulas, since their ingredients and "
                     "the set's exceed 14.\nThey are without a set now:\n\nFULL");
  EXPECT_EQ(RenameAdditiveSet(room.session, "SLOWER", "SLIP"), true);
  EXPECT_EQ(ListAdditiveSets(room.session).size(), 1U);
  // Whoever has the name of a set has its lines: what is weighed out is what the set says.
  EXPECT_EQ(room.Formula("GREEN"), "SLIP: A 58.200 B 38.800 WAX 2.000 GEL 1.000");
  EXPECT_EQ(room.Formula("BARE"), "SLIP: A 97.000 WAX 2.000 GEL 1.000");
  EXPECT_EQ(room.Formula("GREY"), ": A 95.000 GEL 5.000");
  EXPECT_EQ(room.Formula("FULL").substr(0, 11), ": C0 36.844");
  EXPECT_TRUE(room.session.CostChanged && room.session.VOCChanged && room.session.HAPChanged);

  room.Set("SLOW", {{"DRIER", "5"}});
  room.Mix("RED", {{"A", 95}, {"DRIER", 5}}, {{"AddSetName", "SLOW"}});
  room.Mix("WHITE", {{"DRIER", 100}}, {{"AddSetName", "SLOW"}});
  room.prompt.Expect(std::string(40, ' ') + "Confirm Delete", Answer::Yes,
                     "Delete Additive Set?\n\nIt will be removed from all formulas on the list.");
  EXPECT_EQ(DeleteAdditiveSet(room.session, "SLOW"), true);
  EXPECT_EQ(room.Formula("RED"), ": A 100.000");
  EXPECT_EQ(room.Formula("WHITE"), ": DRIER 100.000");
  room.session.ArchiveView = true;
  EXPECT_FALSE(DeleteAdditiveSet(room.session, "SLIP"));
}

TEST(AdditiveSets, PreviewJudgesEachColour) {
  SetRoom room;
  room.Set("SLOW", {{"DRIER", "5"}});
  room.Set("SLIP", {{"WAX", "2"}});
  room.Mix("HAS SLOW", {{"A", 95}, {"DRIER", 5}}, {{"AddSetName", "SLOW"}});
  room.Mix("HAS SLIP", {{"A", 98}, {"WAX", 2}}, {{"AddSetName", "SLIP"}});
  room.Mix("HAS DRIER", {{"B", 95}, {"DRIER", 5}});
  room.Mix("PLAIN", {{"A", 60}, {"B", 40}});
  const std::vector<std::string> colors{"HAS SLOW", "HAS SLIP", "HAS DRIER", "PLAIN"};
  const auto preview = [&](SetMethod method, const SetFilter& filter) {
    std::vector<std::string> lines;
    const auto rows = PreviewAdditiveSet(room.session, "SLOW", method, filter, colors);
    for (const SetPreviewRow& row : *rows) lines.push_back((row.modable ? "+" : "-") + row.info);
    return lines;
  };
  using Lines = std::vector<std::string>;
  EXPECT_EQ(preview(SetMethod::Add, {}), (Lines{"-Already Uses This Additive Set", "+Uses Additive Set SLIP",
                                                "-Has Ingredient Found In Additive Set", "+Contains No Additive Set"}));
  EXPECT_EQ(preview(SetMethod::Remove, {}), (Lines{"+Matches Additive Set", "-Uses Additive Set SLIP",
                                                   "-Contains No Additive Set", "-Contains No Additive Set"}));
  EXPECT_EQ(preview(SetMethod::AddByFilter, {"A", true, 61}),
            (Lines{"-Already Uses This Additive Set", "+Uses Additive Set SLIP", "-NO A", "-< 61"}));
  EXPECT_EQ(preview(SetMethod::AddByFilter, {"A", false, 60}),
            (Lines{"-> 60", "-> 60", "-NO A", "+Contains No Additive Set"}));
  EXPECT_EQ(PreviewAdditiveSet(room.session, "SLOW", SetMethod::Add, {}, {}).error(),
            (Refusal{"Select Master Formulas", "No Colors Selected - Step 2.", ""}));
}

TEST(AdditiveSets, ApplyAndRemove) {
  SetRoom room;
  room.Breaks("Ingredients");
  room.Set("SLOW", {{"DRIER", "5"}});
  room.Set("SLIP", {{"WAX", "2"}, {"GEL", "1"}});
  room.Mix("GREEN", {{"A", 57}, {"B", 38}, {"DRIER", 5}}, {{"AddSetName", "SLOW"}});
  std::vector<std::pair<std::string, float>> thirteen;
  for (int i = 0; i < 13; ++i) thirteen.emplace_back("C" + std::to_string(i), i == 0 ? 40.0F : 5.0F);
  room.Mix("FULL", thirteen);
  const std::string title = std::string(30, ' ') + "Additive Set Modification";
  room.prompt.Expect(title, Answer::Cancel, "2 color(s) are about to be modified.");
  EXPECT_EQ(ApplyAdditiveSet(room.session, "SLIP", SetMethod::Add, {"GREEN", "FULL"}), false);
  room.prompt.Expect(title, Answer::Ok);
  room.prompt.Expect("Additive Set Application", Answer::Ok, "The Application Method has been applied.");
  const std::string without =
      "The Additive Set SLIP could not be applied to these Master Formulas, since their ingredients and the set's "
      "exceed 14.\nThey are without a set now:\n\nFULL";
  room.prompt.Expect("Additive Set Application", Answer::Ok, without);
  EXPECT_EQ(ApplyAdditiveSet(room.session, "SLIP", SetMethod::Add, {"GREEN", "FULL"}), true);
  // The other set's lines go with it; a formula that would come to more than 14 lines gets none.
  EXPECT_EQ(room.Formula("GREEN"), "SLIP: A 58.200 B 38.800 WAX 2.000 GEL 1.000");
  EXPECT_EQ(room.Formula("FULL").substr(0, 11), ": C0 40.000");
  EXPECT_EQ(ApplyAdditiveSet(room.session, "SLIP", SetMethod::Add, {"GREEN"}).error().text,
            "GREEN: Already Uses This Additive Set");
  // A set that outgrows a formula leaves it, and says so.
  room.session.File().Execute("UPDATE INK_Mix SET AddSetName = 'SLIP' WHERE Color_Name = 'FULL'");
  room.prompt.Expect("Additive Set Application", Answer::Ok, without);
  AdditiveSetWork work;
  work.rows[0] = {"WAX", "2"};
  work.rows[1] = {"GEL", "1"};
  ASSERT_TRUE(EditAdditiveSet(room.session, "SLIP", work));
  room.prompt.Expect(title, Answer::Ok);
  room.prompt.Expect("Additive Set Application");
  EXPECT_EQ(ApplyAdditiveSet(room.session, "SLIP", SetMethod::Remove, {"GREEN"}), true);
  EXPECT_EQ(room.Formula("GREEN"), ": A 60.000 B 40.000");
}

}  // namespace
}  // namespace vellumark
