#include "core/colors/formulas.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "core/base/number.h"
#include "core/colors/basics.h"
#include "core/colors/duplicate.h"
#include "core/colors/formula_notes.h"
#include "core/colors/formula_work.h"
#include "core/colors/live_totals.h"
#include "core/colors/names.h"
#include "core/datafile/references.h"
#include "support/ink_room.h"

namespace vellumark {
namespace {

using test::InkRoom;
using Rows = std::vector<std::pair<std::string, std::string>>;

FormulaWork Work(InkRoom& room, const std::string& name, const Rows& rows) {
  FormulaWork work = NewFormulaWork(room.session, name);
  for (std::size_t i = 0; i < rows.size(); ++i) work.grid[i] = {rows[i].first, rows[i].second};
  return work;
}

Rows Shown(const MixColor& mix) {
  Rows rows;
  for (const Ingredient& line : mix.Ingredients()) rows.emplace_back(line.name, Fixed(line.amount, 3));
  return rows;
}

Rows Grid(const FormulaWork& work) {
  Rows rows;
  for (const auto& row : work.grid)
    if (!row.BC.empty()) rows.emplace_back(row.BC, row.BQ);
  return rows;
}

void AddSet(InkRoom& room, const std::string& name, const std::vector<std::pair<std::string, float>>& rows) {
  std::vector<Cell> cells{{"SetName", name}};
  std::string list;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    cells.emplace_back(schema::Numbered("Add_Name", static_cast<int>(i)), rows[i].first);
    cells.emplace_back(schema::Numbered("Add_Percent", static_cast<int>(i)), rows[i].second);
    list += "<" + rows[i].first + ">";
  }
  cells.emplace_back("SetList", list);
  room.AddRow(schema::Additives, cells);
}

TEST(Formulas, SavedAtPartsOfHundredAndRolledUp) {
  InkRoom room;
  room.Basic("A", {{"PurchaseCost", 10.0F}, {"VOC", 0.5F}, {"HAP", 0.1F}});
  room.Basic("B", {{"PurchaseCost", 20.005F}});
  room.Basic("C");
  FormulaWork work = Work(room, "GREEN", {{"A", "1"}, {"", ""}, {"B", "1"}, {"C", "1"}});
  ASSERT_TRUE(SaveMix(room.session, work));
  const auto mix = ReadMix(room.session, "green");
  ASSERT_TRUE(mix);
  EXPECT_EQ(Shown(*mix), (Rows{{"A", "33.334"}, {"B", "33.333"}, {"C", "33.333"}}));
  EXPECT_EQ(Grid(work), Shown(*mix));
  EXPECT_EQ(mix->Color_Set, "<A><B><C>");
  EXPECT_EQ(mix->BasicCost, 10.0F);  // 3.3334 + 6.6683
  EXPECT_EQ(mix->BasicVOC, 0.167F);
  EXPECT_EQ(mix->BasicHAP, 0.033F);
  EXPECT_TRUE(mix->Recycle);
  EXPECT_EQ(mix->Date_Entered, mix->LastModified);

  // A stored formula keeps its recipe unless editing is allowed; its other fields are saved.
  work.AllowEditing = false;
  work.grid[0].BQ = "50";
  work.Color_Code = "G-1";
  ASSERT_TRUE(SaveMix(room.session, work));
  EXPECT_EQ(Shown(*ReadMix(room.session, "GREEN")), Shown(*mix));
  EXPECT_EQ(ReadMix(room.session, "GREEN")->Color_Code, "G-1");

  // Taking out the middle line closes the gap.
  room.clock.Set({2026, 4, 1, 8, 0, 0});
  work.AllowEditing = true;
  work.grid[1] = {};
  ASSERT_TRUE(SaveMix(room.session, work));
  const auto edited = ReadMix(room.session, "GREEN");
  EXPECT_EQ(Shown(*edited), (Rows{{"A", "50.001"}, {"C", "49.999"}}));
  EXPECT_EQ(edited->Color_Set, "<A><C>");
  EXPECT_EQ(edited->BQ[2], 0.0F);
  EXPECT_EQ(edited->LastModified, (DateTime{2026, 4, 1, 0, 0, 0}));
  EXPECT_EQ(edited->Date_Entered, mix->Date_Entered);
}

TEST(Formulas, AnAdditiveSetTakesItsShare) {
  InkRoom room;
  for (const char* name : {"A", "B", "DRIER"}) room.Basic(name);
  AddSet(room, "SLOW", {{"DRIER", 5}});
  FormulaWork work = Work(room, "GREEN", {{"A", "60"}, {"B", "40"}});
  ASSERT_TRUE(ChooseAdditiveSet(room.session, work, "slow"));
  ASSERT_TRUE(SaveMix(room.session, work));
  const auto mix = ReadMix(room.session, "GREEN");
  EXPECT_EQ(Shown(*mix), (Rows{{"A", "57.000"}, {"B", "38.000"}, {"DRIER", "5.000"}}));
  EXPECT_EQ(mix->AddSetName, "SLOW");
  EXPECT_EQ(Grid(work), (Rows{{"A", "57.000"}, {"B", "38.000"}}));

  ASSERT_TRUE(ChooseAdditiveSet(room.session, work, ""));
  ASSERT_TRUE(SaveMix(room.session, work));
  EXPECT_EQ(Shown(*ReadMix(room.session, "GREEN")), (Rows{{"A", "60.000"}, {"B", "40.000"}}));
  EXPECT_EQ(ReadMix(room.session, "GREEN")->AddSetName, "");
}

TEST(Formulas, ChoosingASetMayBeRefused) {
  InkRoom room;
  room.Breaks("AdditiveSets");
  AddSet(room, "FOUR", {{"S0", 1}, {"S1", 1}, {"S2", 1}, {"S3", 1}});
  Rows rows;
  for (int i = 0; i < 10; ++i) rows.emplace_back("C" + std::to_string(i), "1");
  FormulaWork work = Work(room, "GREEN", rows);
  EXPECT_TRUE(ChooseAdditiveSet(room.session, work, "FOUR"));
  work.AddSetName.clear();
  work.grid[10] = {"C10", "1"};
  EXPECT_EQ(ChooseAdditiveSet(room.session, work, "FOUR").error(),
            (Refusal{"Exceeded Formula Maxium Ingredients",
                     "The selected Additive Set cannot be entered into the formula.\n\nThe current ingredients and the "
                     "choosen Additive Set exceed 15 items.",
                     "AddSetName"}));
  FormulaWork holding = Work(room, "RED", {{"S2", "5"}, {"C", "95"}});
  EXPECT_EQ(ChooseAdditiveSet(room.session, holding, "FOUR").error(),
            (Refusal{"Duplicate Ingredients",
                     "The selected Additive Set cannot be entered into the formula.\n\nThe formula already contains an "
                     "ingredient found in the Additive Set.",
                     "AddSetName"}));
  EXPECT_EQ(holding.AddSetName, "");
}

TEST(Formulas, WhatCannotBeSaved) {
  InkRoom room;
  for (const char* name : {"A", "B", "DRIER"}) room.Basic(name);
  AddSet(room, "SLOW", {{"DRIER", 5}});
  const std::string title = std::string(30, ' ') + "Invalid Formula";
  const struct {
    Rows rows;
    const char* set;
    Refusal refusal;
  } cases[] = {
      {{{"", ""}, {"", "5"}}, "", {title, "Can't save a formula with no ingredients.", "BC0"}},
      {{{"A", "x"}, {"GREY", "1"}},
       "",
       {title, "Unrecognized Basic / Additive in the formula.\n\nMake sure item is properly added to the database.",
        "BC1"}},
      {{{"A", ""}, {"B", "0.0004"}},
       "",
       {"Invalid Formula Amount", "You must enter an amount between\n\n0.001 and 999.000", "BQ1"}},
      {{{"A", "999.0006"}},
       "",
       {"Invalid Formula Amount", "You must enter an amount between\n\n0.001 and 999.000", "BQ0"}},
      {{{"A", "ten"}}, "", {"Invalid Formula Amount", "You must enter an amount between\n\n0.001 and 999.000", "BQ0"}},
      {{{"A", "1"}, {"B", " "}, {"", "3"}}, "", {title, "No quantity for this ingredient.", "BQ1"}},
      {{{"A", "1"}, {"", "3"}, {"a", "1"}}, "", {title, "No ingredient for this quantity.", "BC1"}},
      {{{"A", "1"}, {"B", "3"}, {"a", "1"}}, "", {title, "Duplicate use of an ingredient in the formula.", "BC2"}},
      {{{"DRIER", "1"}}, "SLOW", {title, "Can't save a formula with just an Additive Set.", "BC0"}},
  };
  for (const auto& c : cases) {
    FormulaWork work = Work(room, "GREEN", c.rows);
    work.AddSetName = c.set;
    const auto saved = SaveMix(room.session, work);
    ASSERT_FALSE(saved) << c.refusal.text;
    EXPECT_EQ(saved.error(), c.refusal);
  }
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Mix").Whole(), 0);
}

TEST(Formulas, SavedFormulasTotalHundred) {
  InkRoom room;
  for (int i = 0; i < 15; ++i) room.Basic("C" + std::to_string(i));
  AddSet(room, "FIVE", {{"C10", 10}, {"C11", 10}, {"C12", 10}, {"C13", 10}, {"C14", 10}});
  std::mt19937 random(7);
  const auto pick = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  Transaction all(room.session.File());
  for (int round = 0; round < 400; ++round) {
    FormulaWork work = NewFormulaWork(room.session, "F" + std::to_string(round));
    const bool withSet = round % 2 == 0;
    for (int i = 0, lines = pick(1, withSet ? 10 : 15); i < lines; ++i)
      work.grid[static_cast<std::size_t>(i)] = {"C" + std::to_string(i), Fixed(pick(1, 999'000) / 1000.0, 3)};
    if (withSet) work.AddSetName = "FIVE";
    ASSERT_TRUE(SaveMix(room.session, work));
    const auto mix = ReadMix(room.session, work.Color_Name);
    std::int64_t thousandths = 0;
    for (const float amount : mix->BQ) thousandths += std::llround(RoundTo(amount, 3) * 1000);
    ASSERT_EQ(thousandths, 100'000) << work.Color_Name;
    ASSERT_EQ(mix->Color_Set, NameSet(NamesOf(mix->Ingredients())));
  }
  all.Commit();
}

TEST(Formulas, FoundByNameNumberAndCode) {
  InkRoom room;
  room.Breaks("Ingredients");
  room.Mix("PANTONE 185", {{"A", 100}});
  room.Mix("GREEN", {{"A", 100}}, {{"Color_Code", "185 X"}});
  EXPECT_EQ(FindMix(room.session, "185")->Color_Name, "PANTONE 185");
  EXPECT_EQ(FindMix(room.session, "185 x")->Color_Name, "GREEN");
  EXPECT_EQ(FindMix(room.session, "green")->Color_Name, "GREEN");
  EXPECT_FALSE(FindMix(room.session, "BLUE"));
  EXPECT_EQ(EnterMixName(room.session, "185")->name, "PANTONE 185");

  room.Basic("RED");
  const std::string title = std::string(30, ' ') + "Master Formula - New Master Formula";
  room.prompt.Expect(title, Answer::Yes,
                     "A Basic Color RED already exists in the INK database.\n\nWould you like to also add a Master "
                     "Formula RED to the database?");
  EXPECT_EQ(EnterMixName(room.session, "red")->kind, NameEntry::Kind::New);
  room.prompt.Expect(title, Answer::No,
                     "This Master Formula is not found in the INK database\n\nWould you like to create a new Master "
                     "Formula?");
  EXPECT_EQ(EnterMixName(room.session, "pink")->kind, NameEntry::Kind::Abandoned);
  EXPECT_EQ(
      EnterMixName(room.session, "PANTONE 1").error().text,
      "You cannot add a new color to the database that begins with the word PANTONE. Please choose another name.");
}

TEST(Formulas, AnUnknownIngredientIsAskedAbout) {
  InkRoom room;
  room.Basic("A");
  FormulaWork work = Work(room, "GREEN", {{"A", "50"}});
  EXPECT_EQ(EnterIngredient(room.session, work, 1, "a").error().text, "Duplicate use of an ingredient in the formula.");
  EXPECT_EQ(EnterIngredient(room.session, work, 0, "<CN>a")->name, "A");

  room.prompt.Expect(
      "Add Basic Color To Database?", Answer::No,
      "The Basic Color WAX is not found in this database.\n\nHint: Check your list of Basic Colors for "
      "spelling variations\nbefore adding a new Basic Color to this database.\n\nWould you like to add the "
      "Basic Color WAX to this database?");
  EXPECT_EQ(EnterIngredient(room.session, work, 1, "wax")->name, "");
  room.prompt.Expect("Add Basic Color To Database?", Answer::Yes);
  room.prompt.Expect("Confirm Basic Color description", Answer::No,
                     "Is WAX a Color or an Additive?\n\nYes - It is a Color, No - It is an Additive");
  const auto entry = EnterIngredient(room.session, work, 1, "wax");
  ASSERT_TRUE(entry && entry->toAdd);
  EXPECT_FALSE(BasicColorExists(room.session, "WAX"));
  work.grid[1] = {entry->name, "50"};
  work.newIngredients.push_back(*entry->toAdd);
  ASSERT_TRUE(SaveMix(room.session, work));
  const auto wax = ReadBasic(room.session, "WAX");
  ASSERT_TRUE(wax);
  EXPECT_TRUE(wax->Additive);
  EXPECT_EQ(wax->IngSort, 1);
}

TEST(Formulas, LiveTotals) {
  InkRoom room;
  room.Basic("A", {{"PurchaseCost", 10.0F}, {"VOC", 0.3F}});
  room.Basic("B", {{"PurchaseCost", 4.0F}, {"HAP", 0.03F}});
  FormulaWork work = Work(room, "GREEN", {{"A", "2"}, {"B", "1"}, {"", "x"}});
  EXPECT_EQ(UpdateBQTotal(work), "3.000");
  GridFigures figures = ReadGridFigures(room.session, work);
  const LiveTotals totals = ComputeLiveTotals(room.session, work, figures);
  EXPECT_EQ(totals.BasicCost, "8.00");
  EXPECT_EQ(totals.VOCBasics, "0.200");
  EXPECT_EQ(totals.HAPBasics, "0.010");
  // A figure that is not on file yet counts at once.
  figures.lines[1].HAP = 0.3F;
  EXPECT_EQ(ComputeLiveTotals(room.session, work, figures).HAPBasics, "0.100");
  EXPECT_EQ(ComputeLiveTotals(room.session, Work(room, "X", {{"A", ""}}), figures).BasicCost, "0.00");
  // Beside a set of 10 percent the lines share 90: 60 x 10 + 30 x 4 + 10 x 2 = 7.40.
  room.Basic("WAX", {{"Additive", true}, {"PurchaseCost", 2.0F}, {"VOC", 1.0F}});
  room.AddRow(schema::Additives,
              {{"SetName", "S"}, {"SetList", "<WAX>"}, {"Add_Name0", "WAX"}, {"Add_Percent0", 10.0F}});
  work.AddSetName = "S";
  const LiveTotals beside = ComputeLiveTotals(room.session, work, ReadGridFigures(room.session, work));
  EXPECT_EQ(beside.BasicCost, "7.40");
  EXPECT_EQ(beside.VOCBasics, "0.280");
}

TEST(Formulas, NotesOfIngredientsAndBatches) {
  InkRoom room;
  room.Basic("A", {{"Notes", "Stir well.\nTwice.\n"}});
  room.Basic("B", {{"Notes", " \n"}});
  room.Basic("C", {{"Notes", "Dries fast."}});
  const std::string line(60, '-');
  EXPECT_EQ(IngredientNotes(room.session, {"C", "NONE", "B", "a"}),
            "C\n" + line + "\nDries fast.\n\nA\n" + line + "\nStir well.\nTwice.");
  const auto batch = [&](int number, const char* color, DateTime date, const char* notes) {
    room.AddRow(schema::Batch, {{"BatchNo", number}, {"Color_Name", color}, {"Date_Entered", date}, {"Notes", notes}});
  };
  batch(12, "GREEN", {2026, 2, 1}, "Too thin.");
  batch(345, "green", {2025, 12, 31}, "Fine.");
  batch(346, "GREEN", {2026, 3, 1}, "");
  batch(347, "RED", {2026, 3, 1}, "Other.");
  std::string noted;
  for (const BatchNote& note : BatchNotes(room.session, "GREEN"))
    noted += note.Number() + " " + note.Date_Entered->DateText() + " " + note.Notes + "\n";
  EXPECT_EQ(noted, "000345 2025-12-31 Fine.\n000012 2026-02-01 Too thin.\n");
}

TEST(Formulas, DeleteIsHinderedByADesignOnly) {
  InkRoom room;
  room.Breaks("Ingredients");
  room.Mix("GREEN", {{"A", 100}});
  room.Mix("RED", {{"A", 100}});
  room.AddRow(schema::MixLotInv, {{"LotCName", "RED"}, {"LotNumber", "1"}});
  room.AddRow(schema::Batch, {{"Color_Name", "RED"}, {"BatchNo", 1}});
  room.AddRow(schema::Designs, {{"DesignID", "D"},
                                {"IngSet", "<GREEN><RED>"},
                                {"IngName0", "GREEN"},
                                {"IngDB0", "INK"},
                                {"IngType0", 2},
                                {"IngName1", "RED"},
                                {"IngDB1", "OTHER"},
                                {"IngType1", 2}});
  const auto refused = DeleteMix(room.session, "GREEN");
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().title, "Additive Set Color");
  EXPECT_EQ(refused.error().text,
            "Color is used in a Job Design.\n\nRename color or modify Job Design before deleting.");
  room.prompt.Expect("Master Formula - Delete Master Formula?", Answer::Yes,
                     "Deleting this Master Formula will permanently remove it from the INK database.\n\nDo you want to "
                     "delete this Master Formula?");
  EXPECT_EQ(DeleteMix(room.session, "RED"), true);
  EXPECT_FALSE(MixColorExists(room.session, "RED"));
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Mix_LotInv").Whole(), 0);
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Batch").Whole(), 1);
}

TEST(Formulas, AdjustByPercent) {
  InkRoom room;
  for (const char* name : {"A", "B", "C"}) room.Basic(name);
  room.Basic("WAX", {{"Additive", true}});
  FormulaWork work = Work(room, "GREEN", {{"A", "60"}, {"B", "40"}});
  ASSERT_TRUE(SaveMix(room.session, work));
  for (const char* percent : {"0", "100", "x", "0.004", ""}) {
    const auto adjusted = AdjustFormula(room.session, work, FormulaAdjustment::Increase, "A", percent);
    ASSERT_FALSE(adjusted) << percent;
    EXPECT_EQ(adjusted.error().text, "You must enter a valid percentage > 0 and < 100.");
  }
  ASSERT_TRUE(AdjustFormula(room.session, work, FormulaAdjustment::Decrease, "A", "50"));  // 30 : 40
  EXPECT_EQ(Grid(work), (Rows{{"A", "42.857"}, {"B", "57.143"}}));
  EXPECT_EQ(AdjustChoices(room.session, work, FormulaAdjustment::Add), (std::vector<std::string>{"C"}));
  ASSERT_TRUE(AdjustFormula(room.session, work, FormulaAdjustment::Add, "C", "25"));
  EXPECT_EQ(Shown(*ReadMix(room.session, "GREEN")), (Rows{{"A", "34.286"}, {"B", "45.714"}, {"C", "20.000"}}));

  // 1.500 and 2.5 percent of it are 1.5375, a half that goes up: 1.538 of 100.038.
  FormulaWork tie = Work(room, "TIE", {{"A", "1.5"}, {"B", "98.5"}});
  ASSERT_TRUE(SaveMix(room.session, tie));
  ASSERT_TRUE(AdjustFormula(room.session, tie, FormulaAdjustment::Increase, "A", "2.5"));
  EXPECT_EQ(Grid(tie), (Rows{{"A", "1.537"}, {"B", "98.463"}}));
  // What comes to nothing in parts of 100 is no ingredient.
  FormulaWork trace = Work(room, "TRACE", {{"A", "999"}, {"B", "0.001"}});
  const auto refused = SaveMix(room.session, trace);
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().text, "This formula cannot be saved: the share of B is below 0.001 of 100.");
  EXPECT_EQ(refused.error().field, "BQ1");

  Rows full;
  for (int i = 0; i < 15; ++i) {
    room.Basic("F" + std::to_string(i));
    full.emplace_back("F" + std::to_string(i), "1");
  }
  FormulaWork fifteen = Work(room, "FULL", full);
  ASSERT_TRUE(SaveMix(room.session, fifteen));
  EXPECT_EQ(
      AdjustFormula(room.session, fifteen, FormulaAdjustment::Add, "C", "5").error().text,
      "This formula already contains the maximum number of ingredients, 15.\n\nC could not be added to the formula.");
}

struct DuplicateRoom : InkRoom {
  DuplicateRoom() {
    CreateEmptyDatabase(session.File(), "OTHER");
    session.databaseList.push_back("OTHER");
    for (const char* name : {"A", "B"}) Basic(name, {{"PurchaseCost", 10.0F}});
    Basic("DRIER", {{"Additive", true}});
    AddSet(*this, "SLOW", {{"DRIER", 5}});
    Mix("GREEN", {{"A", 57}, {"B", 38}, {"DRIER", 5}}, {{"AddSetName", "SLOW"}, {"Color_Code", "G"}, {"Notes", "n"}});
  }
};

TEST(Formulas, DuplicateIntoAnotherDatabase) {
  DuplicateRoom room;
  room.prompt.Expect(
      "Master Formula - Duplicated", Answer::Ok,
      "The formula for GREEN was duplicated into the color  MINT\n\nIt is available for use in the OTHER "
      "Database.");
  const auto result = DuplicateFormula(room.session, "GREEN", "mint", "other");
  ASSERT_TRUE(result);
  const auto mint = ReadMix(room.session, "MINT", "OTHER");
  ASSERT_TRUE(mint);
  EXPECT_EQ(Shown(*mint), (Rows{{"A", "60.000"}, {"B", "40.000"}}));
  EXPECT_EQ(mint->BasicCost, 0.0F);
  EXPECT_EQ(mint->Color_Code + mint->Notes + mint->AddSetName, "");
  EXPECT_TRUE(mint->Recycle);
  EXPECT_EQ(NextIngSort(room.session, "OTHER"), 2);
}

TEST(Formulas, DuplicateWithASetAndOverAnother) {
  DuplicateRoom room;
  room.Mix("MINT", {{"B", 100}}, {{"Color_Code", "M"}});
  const char* title = "Overwite Exisiting Master Formula?";
  room.prompt.Expect(title, Answer::No);
  EXPECT_FALSE(DuplicateFormula(room.session, "GREEN", "MINT")->done);
  room.prompt.Expect(title, Answer::Yes,
                     "This Master Formula already exists in the INK database.\nWould you like to overwrite this Master "
                     "Formula's existing formula?");
  room.prompt.Expect("Master Formula - Modified", Answer::Ok, "The formula for MINT was modified.");
  ASSERT_TRUE(DuplicateFormula(room.session, "GREEN", "MINT", "", "slow"));
  const auto mint = ReadMix(room.session, "MINT");
  EXPECT_EQ(Shown(*mint), (Rows{{"A", "57.000"}, {"B", "38.000"}, {"DRIER", "5.000"}}));
  EXPECT_EQ(mint->AddSetName, "SLOW");
  EXPECT_EQ(mint->Color_Code, "M");
  EXPECT_EQ(mint->BasicCost, 9.5F);

  const struct {
    const char* name;
    const char* title;
  } bad[] = {{" ", "Color Name Needed"}, {"PANTONE 1", "Invalid Master Formula Name"}};
  for (const auto& c : bad) EXPECT_EQ(DuplicateFormula(room.session, "GREEN", c.name).error().title, c.title);
}

TEST(Formulas, DuplicateLeavesOutASetThatDoesNotFit) {
  InkRoom room;
  room.Breaks("AdditiveSets");
  std::vector<std::pair<std::string, float>> parts;
  for (int i = 0; i < 14; ++i) {
    parts.emplace_back("C" + std::to_string(i), i == 0 ? 100.0F - 13 * 7 : 7.0F);
    room.Basic(parts.back().first);
  }
  room.Basic("X");
  room.Mix("GREEN", parts);
  AddSet(room, "TWO", {{"X", 5}, {"C13", 5}});
  AddSet(room, "WIDE", {{"X", 5}, {"Y", 5}});
  room.prompt.Expect("Master Formula - Duplicated");
  ASSERT_TRUE(DuplicateFormula(room.session, "GREEN", "ONE", "", "TWO"));  // C13 is common to both
  EXPECT_EQ(ReadMix(room.session, "ONE")->Ingredients().size(), 15U);
  room.prompt.Expect(
      "Maxium Formula Ingredients Exceeded", Answer::Ok,
      "The Duplicated Formula cannot be saved with the selected Additive Set information.\nThe total "
      "number of ingredients exceeds 15.\n\nIt will be duplicated without the Additive Set information.");
  room.prompt.Expect("Master Formula - Duplicated");
  ASSERT_TRUE(DuplicateFormula(room.session, "GREEN", "TWO", "", "WIDE"));
  EXPECT_EQ(ReadMix(room.session, "TWO")->AddSetName, "");
  EXPECT_EQ(ReadMix(room.session, "TWO")->Ingredients().size(), 14U);
}

}  // namespace
}  // namespace vellumark
