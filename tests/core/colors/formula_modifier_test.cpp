#include "core/colors/formula_modifier.h"

#include <gtest/gtest.h>

#include <functional>

#include "core/base/number.h"
#include "core/colors/additive_control.h"
#include "core/colors/bulk_delete.h"
#include "core/colors/bulk_rename.h"
#include "support/ink_room.h"
#include "support/snapshot.h"

namespace vellumark {
namespace {

constexpr auto kIncrease = ModMethod::Increase;
constexpr auto kDecrease = ModMethod::Decrease;
constexpr auto kAdd = ModMethod::Add;
constexpr auto kRemove = ModMethod::Remove;

// Stops after so many steps of the first piece of work; with `begun` at -1, of the second.
struct StoppedAfter final : Progress {
  void Begin(std::string_view) override {
    steps = 0;
    ++begun;
  }
  void Percent(double) override { ++steps; }
  bool Cancelled() override { return begun > 0 && steps >= limit; }
  int steps = 0;
  int limit = 1;
  int begun = 0;
};

struct ModifierRoom : test::InkRoom {
  ModifierRoom() {
    for (const char* name : {"A", "B", "C", "D", "E"}) Basic(name);
    for (const char* name : {"WAX", "A DRIER"}) Basic(name, {{"Additive", true}});
    AddRow(schema::Additives, {{"SetName", "FIVE"},
                               {"Add_Name0", "WAX"},
                               {"Add_Percent0", 2.0F},
                               {"Add_Name1", "A DRIER"},
                               {"Add_Percent1", 3.0F},
                               {"SetList", "<WAX><A DRIER>"}});
  }
  // A formula that wears the set on top of its own lines.
  void WithSet(const std::string& name, std::vector<std::pair<std::string, float>> parts) {
    parts.emplace_back("WAX", 2.0F);
    parts.emplace_back("A DRIER", 3.0F);
    Mix(name, parts, {{"AddSetName", "FIVE"}});
  }
  std::string Stored(const std::string& name) { return Text(ReadMix(session, name)->Ingredients()); }
  static std::string Text(const Recipe& recipe) {
    std::string text;
    for (const Ingredient& line : recipe) text += (text.empty() ? "" : " ") + line.name + " " + Fixed(line.amount, 3);
    return text;
  }
  ModifierPreviewRow Judge(const std::string& name, const std::vector<ModifierLine>& lines) {
    const auto rows = PreviewModifier(session, lines, {name});
    EXPECT_TRUE(rows) << (rows ? "" : rows.error().text);
    return rows ? rows->at(0) : ModifierPreviewRow{};
  }
  // Applies, and holds the outcome against the preview's numbers.
  std::string Apply(const std::string& name, const std::vector<ModifierLine>& lines) {
    const ModifierPreviewRow row = Judge(name, lines);
    prompt.Expect("Database Formula Modifier").Expect("Master Formulas Modified");
    const auto applied = ApplyModifier(session, lines, {name});
    EXPECT_TRUE(applied && *applied) << (applied ? "declined" : applied.error().text);
    EXPECT_EQ(Stored(name), Text(row.modified));
    return Stored(name);
  }
};

std::vector<ModifierLine> One(ModMethod method, const std::string& ingredient, const std::string& percent) {
  return {{true, method, ingredient, percent}};
}

TEST(FormulaModifier, ChecksBeforeThePreviewInTheirOrder) {
  ModifierRoom room;
  EXPECT_EQ(RequireFormulasToModify(room.session).error(),
            (Refusal{"Database Formula Modifier", "There are no Master Formulas to modify.", ""}));
  room.Mix("M", {{"A", 60.0F}, {"B", 40.0F}});
  const Refusal invalid{"Invalid Percentage", "Enter a valid Percent", "txtPercent0"};
  const Refusal removing{"Mod Method Rule", "Removing a color requires a 100.00 value", "txtPercent0"};
  const Refusal adding{"Mod Method Rule", "Cannot exceed 50.00 when Adding a Basic", "txtPercent0"};
  const Refusal twice{"Revise Mod Info", "Can't use same ingredient in more than one mod selection.", "cmbBasics1"};
  const Refusal none{"Select a Modification", "No modifications selected.", "chkSel0"};
  const Refusal unnamed{"Select a Modification", "No modifications selected.", "cmbBasics0"};
  const struct {
    std::vector<ModifierLine> lines;
    std::vector<std::string> colors;
    Refusal refusal;
  } cases[] = {
      {One(kIncrease, "A", "ten"), {}, invalid},
      {One(kIncrease, "A", ""), {"M"}, invalid},
      {One(kDecrease, "A", "-1"), {"M"}, invalid},
      {One(kDecrease, "A", "100.01"), {"M"}, invalid},
      {One(kIncrease, "A", "1000000"), {"M"}, invalid},
      {One(kRemove, "A", "99.99"), {"M"}, removing},
      {One(kRemove, "A", "0"), {"M"}, removing},
      {One(kAdd, "C", "50.01"), {"M"}, adding},
      {One(kIncrease, "A", "0"),
       {},
       {"Select Master Formulas", "No Master Formulas selected for Modification Preview.", "lstMixes"}},
      {{{true, kIncrease, "A", "0"}, {true, kRemove, "a ", "100"}}, {"M"}, twice},
      {One(kIncrease, "A", "0.004"),
       {"M"},
       {"Verify Number Values", "Zero value being used in one or more of the modifications.", "txtPercent0"}},
      {{{false, kIncrease, "A", "ten"}}, {"M"}, none},
      {{}, {"M"}, none},
      {One(kIncrease, " ", "10"), {"M"}, unnamed},
      {One(kAdd, "NONE", "10"), {"M"}, {"Color Not Found", "NONE is not found in this database.", "cmbBasics0"}},
      {One(kAdd, "C", "50.00"), {"GONE"}, {"Color Not Found", "GONE is not found in this database.", "Color_Name"}},
  };
  for (const auto& c : cases) {
    const auto rows = PreviewModifier(room.session, c.lines, c.colors);
    ASSERT_FALSE(rows) << c.refusal.text;
    EXPECT_EQ(rows.error(), c.refusal);
    EXPECT_EQ(ApplyModifier(room.session, c.lines, c.colors).error(), c.refusal);
  }
  EXPECT_TRUE(room.Judge("M", One(kAdd, "C", "50.00")).toModify);
}

TEST(FormulaModifier, VerdictsAndReasons) {
  ModifierRoom room;
  room.Breaks("FormulaTotals");
  room.Breaks("FormulaSets");
  room.Mix("TWO", {{"A", 60.0F}, {"B", 40.0F}});
  room.Mix("ONE", {{"A", 100.0F}});
  room.WithSet("SET", {{"B", 95.0F}});
  room.Mix("LONE", {{"B", 98.0F}, {"WAX", 2.0F}}, {{"AddSetName", "LOST"}});
  std::vector<std::pair<std::string, float>> parts;
  for (int n = 0; n < 14; ++n) {
    room.Basic("N" + std::to_string(n));
    parts.emplace_back("N" + std::to_string(n), n == 0 ? 87.0F : 1.0F);
  }
  room.Mix("FULL", parts);
  parts.pop_back();
  room.Mix("THIRTEEN", parts);
  const std::string toOne = "Formula uses additives, can't reduce formula to 1 ingredient";
  const struct {
    std::string formula;
    std::vector<ModifierLine> lines;
    std::string type;  // "modify", "excluded" (modable) or "no"
    std::vector<std::string> reasons;
  } cases[] = {
      {"TWO", One(kIncrease, "A", "10"), "modify", {}},
      {"TWO", One(kIncrease, "C", "10"), "no", {"No C"}},
      {"SET", One(kIncrease, "WAX", "10"), "no", {"WAX - Add Set Ing."}},
      {"SET", One(kRemove, "A DRIER", "100"), "no", {"A DRIER - Add Set Ing."}},
      {"TWO", One(kDecrease, "C", "10"), "no", {"No C"}},
      // A line of 100 counts its ingredient out, for the later lines too.
      {"TWO", One(kRemove, "A", "100"), "modify", {}},
      {"TWO", {{true, kDecrease, "A", "100"}, {true, kDecrease, "B", "5"}}, "modify", {}},
      {"TWO", {{true, kRemove, "A", "100"}, {true, kRemove, "B", "100.00"}}, "no", {toOne}},
      {"ONE", One(kRemove, "A", "100"), "no", {toOne}},
      {"ONE", One(kDecrease, "A", "99"), "modify", {}},
      {"SET", One(kRemove, "B", "100"), "no", {toOne}},  // nothing would stand beside the set's two
      {"TWO",
       {{true, kIncrease, "A", "99999"}, {true, kDecrease, "B", "99.99"}},
       "no",
       {"the share of B is below 0.001 of 100"}},
      {"LONE", One(kRemove, "B", "100"), "no", {toOne}},
      {"LONE", One(kDecrease, "B", "50"), "modify", {}},
      {"TWO", One(kAdd, "A", "10"), "excluded", {"Contains A"}},
      {"TWO", One(kAdd, "C", "10"), "modify", {"No C"}},
      {"SET", One(kAdd, "WAX", "10"), "modify", {"WAX - Add Set Ing."}},
      {"FULL", One(kAdd, "A", "10"), "no", {"Max Formula Ing exceeded. A"}},
      {"FULL", {{true, kRemove, "N3", "100"}, {true, kAdd, "A", "10"}}, "modify", {"No A"}},
      {"THIRTEEN", {{true, kAdd, "A", "10"}, {true, kAdd, "B", "10"}}, "no", {"No A", "Max Formula Ing exceeded. B"}},
      {"TWO", {{true, kAdd, "A", "10"}, {true, kIncrease, "E", "10"}}, "no", {"Contains A", "No E"}},
  };
  for (const auto& c : cases) {
    const ModifierPreviewRow row = room.Judge(c.formula, c.lines);
    const std::string type = row.toModify ? "modify" : row.modable ? "excluded" : "no";
    EXPECT_EQ(type, c.type) << c.formula << " " << c.lines[0].ingredient;
    EXPECT_EQ(row.reasons, c.reasons) << c.formula << " " << c.lines[0].ingredient;
    EXPECT_EQ(row.modified.empty(), !row.modable);
  }
}

TEST(FormulaModifier, NewRecipes) {
  const struct {
    std::vector<std::pair<std::string, float>> parts;
    bool set;
    std::vector<ModifierLine> lines;
    std::string becomes;
  } cases[] = {
      {{{"A", 60}, {"B", 40}}, false, One(kIncrease, "b", "50"), "A 50.000 B 50.000"},
      {{{"A", 60}, {"B", 40}}, false, One(kDecrease, "A", "50"), "A 42.857 B 57.143"},
      {{{"A", 60}, {"B", 20}, {"C", 20}}, false, One(kRemove, "A", "100"), "B 50.000 C 50.000"},
      {{{"A", 60}, {"B", 40}}, false, One(kAdd, "C", "25"), "A 48.000 B 32.000 C 20.000"},
      // A row moved over by hand: 40 becomes 44 of 104.
      {{{"A", 60}, {"B", 40}}, false, One(kAdd, "B", "10.00"), "A 57.692 B 42.308"},
      // Halves as by hand: 0.333 and half of it is 0.500.
      {{{"A", 0.333F}, {"B", 0.5F}}, false, One(kIncrease, "A", "50"), "A 50.000 B 50.000"},
      // What is left over goes to the last line above the first, else to the first.
      {{{"A", 10}, {"B", 10}, {"C", 20}}, false, One(kDecrease, "C", "50"), "A 33.334 B 33.333 C 33.333"},
      {{{"A", 10}, {"B", 20}, {"C", 30}, {"D", 8}, {"E", 1}},
       false,
       One(kRemove, "E", "100"),
       "A 14.706 B 29.412 C 44.117 D 11.765"},
      {{{"A", 30}, {"B", 20}, {"C", 10}, {"D", 8}, {"E", 1}},
       false,
       One(kRemove, "E", "100"),
       "A 44.117 B 29.412 C 14.706 D 11.765"},
      {{{"A", 10}, {"B", 30}, {"C", 20}, {"D", 8}, {"E", 1}},
       false,
       One(kRemove, "E", "100"),
       "A 14.706 B 44.118 C 29.411 D 11.765"},
      {{{"B", 47.5F}, {"C", 47.5F}}, true, One(kIncrease, "B", "100"), "B 63.333 C 31.667 WAX 2.000 A DRIER 3.000"},
      // "A" is a part of "A DRIER" and yet not of the set.
      {{{"A", 45}, {"B", 50}}, true, One(kDecrease, "B", "10"), "A 47.500 B 47.500 WAX 2.000 A DRIER 3.000"},
  };
  for (const auto& c : cases) {
    ModifierRoom room;
    room.Breaks("FormulaTotals");
    if (c.set) {
      room.WithSet("M", c.parts);
    } else {
      room.Mix("M", c.parts);
    }
    EXPECT_EQ(room.Apply("M", c.lines), c.becomes);
  }
}

TEST(FormulaModifier, ThreeEqualLinesBesideASetOfFiveSumTo105) {
  ModifierRoom room;
  room.WithSet("M", {{"B", 23.75F}, {"C", 23.75F}, {"D", 47.5F}});
  EXPECT_EQ(room.Apply("M", One(kDecrease, "D", "50.00")), "B 36.666 C 31.667 D 31.667 WAX 2.000 A DRIER 3.000");
  const auto mix = ReadMix(room.session, "M");
  EXPECT_EQ(TotalOf(mix->Ingredients()), 105.0);
  EXPECT_EQ(mix->AddSetName, "FIVE");
}

TEST(FormulaModifier, WritesOnlyItsOwnFieldsOrNothing) {
  ModifierRoom room;
  room.Mix("M1", {{"A", 60}, {"B", 40}}, {{"BasicCost", 7.0F}, {"Notes", "n"}, {"Date_Entered", DateTime{2020, 1, 1}}});
  room.Mix("M2", {{"A", 50}, {"B", 50}});
  room.Mix("M3", {{"B", 100}});
  const std::vector<ModifierLine> lines{{true, kDecrease, "A", "100"}, {false, kAdd, "", "x"}, {true, kAdd, "C", "25"}};
  const std::string before = test::Snapshot(room.session.File());

  EXPECT_EQ(ApplyModifier(room.session, lines, {"M1", "M3"}).error(),
            (Refusal{"Database Formula Modifier", "M3:\nNo A\nNo C", ""}));
  room.prompt.Expect("Database Formula Modifier", Answer::Cancel,
                     "You are about to change 2 Master Formula(s) in the INK Database.\n\nClick OK to continue.");
  EXPECT_EQ(ApplyModifier(room.session, lines, {"M1", "m1", "M2"}), false);
  room.session.Perm_DBTools = 0;
  room.session.CurrentUser = "ANN";
  EXPECT_FALSE(ApplyModifier(room.session, lines, {"M1"}));
  room.session.Perm_DBTools = 1;
  room.session.ArchiveView = true;
  EXPECT_FALSE(ApplyModifier(room.session, lines, {"M1"}));
  room.session.ArchiveView = false;
  EXPECT_EQ(test::Snapshot(room.session.File()), before);
  EXPECT_FALSE(room.session.CostChanged);

  room.prompt.Expect("Database Formula Modifier")
      .Expect("Master Formulas Modified", Answer::Ok, "The selected Master Formulas have been modified.");
  EXPECT_EQ(ApplyModifier(room.session, lines, {"M1", "m1", "M2"}), true);
  EXPECT_EQ(room.Stored("M1"), "B 61.538 C 38.462");
  EXPECT_EQ(room.Stored("M2"), "B 66.667 C 33.333");
  const auto mix = ReadMix(room.session, "M1");
  EXPECT_EQ(mix->Color_Set, "<B><C>");
  EXPECT_EQ(mix->LastModified, (DateTime{2026, 3, 10, 12, 0, 0}));
  EXPECT_EQ(mix->BasicCost, 7.0F);
  EXPECT_EQ(mix->Date_Entered, (DateTime{2020, 1, 1}));
  EXPECT_TRUE(room.session.CostChanged && room.session.VOCChanged && room.session.HAPChanged);
}

TEST(BulkTools, StoppedHalfWayChangesNothing) {
  ModifierRoom room;
  const std::vector<std::string> names{"M0", "M1", "M2", "M3"};
  for (const std::string& name : names) room.Mix(name, {{"B", 60}, {"C", 40}});
  room.Mix("OTHER", {{"D", 95}, {"WAX", 2}, {"A DRIER", 3}}, {{"AddSetName", "FIVE"}});
  const std::string before = test::Snapshot(room.session.File());
  StoppedAfter progress;
  Session session(room.prompt, progress, room.clock);
  session.DataFileDB = std::move(room.session.DataFileDB);
  session.CurrentDatabase = "INK";
  session.databaseList = {"INK"};
  const struct {
    std::string question;
    int steps;
    std::function<Result<bool>()> work;
    Answer answer = Answer::Ok;
  } cases[] = {
      {"Database Formula Modifier", 3, [&] { return ApplyModifier(session, One(kIncrease, "B", "10"), names); }},
      {std::string(30, ' ') + "Additive Set Modification", 3,
       [&] { return ApplyAdditiveSet(session, "FIVE", SetMethod::Add, names); }},
      {std::string(40, ' ') + "Confirm Delete", 1, [&] { return DeleteAdditiveSet(session, "FIVE"); }, Answer::Yes},
      {"Confirm Delete", 3, [&] { return DeleteFormulas(session, names); }},
  };
  for (const auto& c : cases) {
    progress.limit = c.steps;
    room.prompt.Expect(c.question, c.answer);
    const auto done = c.work();
    ASSERT_FALSE(done) << c.question;
    EXPECT_EQ(done.error().text, "The work was cancelled. Nothing was changed.");
    EXPECT_EQ(progress.steps, c.steps);
    EXPECT_EQ(test::Snapshot(session.File()), before) << c.question;
    EXPECT_FALSE(session.CostChanged);
  }
  // A rename goes through its preview first and is stopped in the writing.
  progress.limit = 2;
  progress.begun = -1;
  room.prompt.Expect("Database Color Rename");
  EXPECT_FALSE(ApplyRename(session, {ColorKind::Mix, NameChange::Prefix, "X", ""}, names));
  EXPECT_EQ(test::Snapshot(session.File()), before);
  room.session.DataFileDB = std::move(session.DataFileDB);
}

}  // namespace
}  // namespace vellumark
