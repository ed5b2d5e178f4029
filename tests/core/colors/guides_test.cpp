#include "core/colors/guides.h"

#include <gtest/gtest.h>

#include "core/base/number.h"
#include "core/colors/additive_sets.h"
#include "core/colors/basic_work.h"
#include "core/colors/bulk_rename.h"
#include "core/colors/duplicate.h"
#include "core/colors/guide_formulas.h"
#include "core/colors/rename.h"
#include "core/inventory/color_name.h"
#include "support/guide_room.h"

namespace vellumark {
namespace {

using test::GuideRoom;

TEST(Guides, NamesOfTheBook) {
  GuideRoom room;
  EXPECT_EQ(GetTemplateBasicName(room.session, "rubine"), "PANTONE RUBINE");
  EXPECT_EQ(GetTemplateBasicName(room.session, "PANTONE SILVER"), "PANTONE SILVER");
  EXPECT_EQ(GetTemplateBasicName(room.session, "GOLD"), "");
  EXPECT_EQ(GetTemplateMixName(room.session, "185"), "PANTONE 185");
  EXPECT_TRUE(IsPantoneBookBasic(room.session, "SILVER"));
  EXPECT_TRUE(IsPantoneBookMix(room.session, "185"));
  EXPECT_FALSE(IsPantoneBookMix(room.session, "SILVER"));
  EXPECT_EQ(BookDataOfBasic(room.session, "RUBINE").Row, 7);  // the first guide that has it
  room.session.TemplateFile.clear();
  EXPECT_FALSE(IsPantoneBookBasic(room.session, "PANTONE SILVER"));
  room.session.TemplateFile = "pdbt.vkt";
  room.session.templateDB.reset();
  EXPECT_FALSE(IsPantoneBookBasic(room.session, "PANTONE SILVER"));
  EXPECT_EQ(GetTemplateMixName(room.session, "185"), "");
}

TEST(Guides, NewColoursTakeTheBooksData) {
  GuideRoom room;
  room.prompt.Expect("Basics / Additives - New Item", Answer::Yes);
  EXPECT_EQ(EnterBasicName(room.session, "pantone silver")->kind, NameEntry::Kind::New);
  BasicWork work = NewBasicWork(room.session, "PANTONE SILVER");
  ASSERT_TRUE(SaveBasic(room.session, work));
  EXPECT_EQ(ReadBasic(room.session, "PANTONE SILVER")->book.Row, 9);
  EXPECT_EQ(AddZeroBasic(room.session, "RUBINE", false), "PANTONE RUBINE");
  EXPECT_EQ(ReadBasic(room.session, "PANTONE RUBINE")->book, (BookData{"FGuide_BColors_GP1601A", "3", 7, 200, 0, 0}));
  room.prompt.Expect(std::string(30, ' ') + "Master Formula - New Master Formula", Answer::Yes);
  EXPECT_EQ(EnterMixName(room.session, "185")->name, "PANTONE 185");
  EXPECT_EQ(EnterIngredient(room.session, NewFormulaWork(room.session, "X"), 0, "rubine")->name, "PANTONE RUBINE");
  room.Published("FGuide_BColors_GP1601A", "PANTONE GREEN", 8);
  room.prompt.Expect("Basics / Additives - New Item", Answer::Yes);
  EXPECT_EQ(EnterBasicName(room.session, "green")->name, "PANTONE GREEN");

  // A book colour under a name of its own is no longer of the book.
  ASSERT_TRUE(RenameBasic(room.session, "PANTONE SILVER", "TIN"));
  EXPECT_EQ(ReadBasic(room.session, "TIN")->book, BookData{});
  ASSERT_TRUE(RenameBasic(room.session, "TIN", "PANTONE SILVER"));
  EXPECT_EQ(ReadBasic(room.session, "PANTONE SILVER")->book.Row, 9);
}

// Also a colour that no guide of the site has; nobody is asked whether it is new.
TEST(Guides, AColourOnFileIsFoundWithoutItsPrefix) {
  GuideRoom room;
  room.Basic("PANTONE CLEAR", {{"Additive", true}});
  room.Basic("PANTONE WHITE");
  room.Basic("WHITE");
  room.Mix("PANTONE 12", {{"PANTONE CLEAR", 100}});
  const auto work = NewFormulaWork(room.session, "X");
  for (const char* typed : {"clear", "PANTONE CLEAR"}) {
    EXPECT_EQ(EnterBasicName(room.session, typed)->kind, NameEntry::Kind::Found);
    EXPECT_EQ(EnterBasicName(room.session, typed)->name, "PANTONE CLEAR");
    EXPECT_EQ(EnterIngredient(room.session, work, 0, typed)->name, "PANTONE CLEAR");
    EXPECT_FALSE(EnterIngredient(room.session, work, 0, typed)->toAdd);
    EXPECT_EQ(EnterSetIngredient(room.session, {}, 0, typed), "PANTONE CLEAR");
  }
  EXPECT_EQ(EnterBasicName(room.session, "WHITE")->name, "WHITE");
  const auto spelled = [&](const char* name, std::optional<ColorKind> kind = {}) {
    return SpelledOnFile(room.session, name, kind);
  };
  EXPECT_EQ(spelled("12"), "PANTONE 12");
  EXPECT_EQ(spelled("12", ColorKind::Basic), "12");
  EXPECT_EQ(spelled("WHITE"), "WHITE");
  EXPECT_EQ(spelled("rubine"), "rubine");
  EXPECT_EQ(SpelledOnFile(room.session, "12", {}, "GONE"), "12");
}

TEST(Guides, AFormulaAgainstThePublishedOne) {
  GuideRoom room;
  for (const char* name : {"RUBINE", "PANTONE SILVER", "OTHER"}) room.Basic(name);
  const struct {
    std::vector<std::pair<std::string, float>> parts;
    bool modified;
  } cases[] = {
      {{{"PANTONE RUBINE", 60}, {"PANTONE SILVER", 40}}, false},
      {{{"SILVER", 40}, {"RUBINE", 60}}, false},
      {{{"PANTONE RUBINE", 60.001F}, {"PANTONE SILVER", 39.999F}}, true},
      {{{"PANTONE RUBINE", 60}, {"PANTONE SILVER", 39}, {"OTHER", 1}}, true},
      {{{"PANTONE RUBINE", 100}}, true},
  };
  for (const auto& c : cases) {
    room.session.File().Execute("DELETE FROM INK_Mix");
    room.Mix("PANTONE 185", c.parts);
    EXPECT_EQ(IsFormulaModified(room.session, "PANTONE 185"), c.modified) << c.parts.size();
  }
  EXPECT_FALSE(IsFormulaModified(room.session, "NOT THERE"));
  room.Mix("HOUSE GREY", {{"PANTONE SILVER", 100.0F}});
  EXPECT_EQ(CompareFormula(room.session, "HOUSE GREY").error().text,
            "The guides of this database have no formula HOUSE GREY.");
  EXPECT_EQ(CompareFormula(room.session, "NOT THERE").error().title, "Color Not Found");
  const auto compared = CompareFormula(room.session, "pantone 185");
  ASSERT_TRUE(compared);
  EXPECT_EQ(compared->original, (Recipe{{"PANTONE RUBINE", 60}, {"PANTONE SILVER", 40}}));
  EXPECT_EQ(compared->modified, ReadMix(room.session, "PANTONE 185")->Ingredients());
  EXPECT_FALSE(compared->canRevert);

  FormulaWork work = LoadFormulaWork(room.session, *ReadMix(room.session, "PANTONE 185"));
  EXPECT_FALSE(CanRevertToGuide(room.session, "PANTONE 185"));
  EXPECT_FALSE(RevertToGuide(room.session, work));
  room.Basic("PANTONE RUBINE");
  room.prompt.Expect("Revert Back To Original Formula?", Answer::Yes,
                     "This formula will be changed back to published Pantone specifi"
                     "cations.\n\nAre you sure you want to "
                     "revert back to the original Pantone formula?");
  EXPECT_EQ(RevertToGuide(room.session, work), true);
  EXPECT_FALSE(IsFormulaModified(room.session, "PANTONE 185"));
}

TEST(Guides, AFormulaIsComparedWithTheGuideThatItIsOf) {
  GuideRoom room;
  room.PublishedMix("FGuide_MColors_GP1601A", "PANTONE 185", "1", 20);
  room.PublishedMix("FGuide_MColors_GP1601B", "PANTONE 185", "2", 30);
  for (const char* name : {"PANTONE RUBINE", "PANTONE SILVER"}) room.Basic(name);
  const struct {
    const char* guide;
    float rubine;
  } cases[] = {{"Goe_MColors", 60}, {"FGuide_MColors_GP1601B", 30}, {"", 20}, {"A GUIDE THAT IS GONE", 20}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.guide);
    room.session.File().Execute("DELETE FROM INK_Mix");
    room.Mix("PANTONE 185", {{"PANTONE RUBINE", c.rubine}, {"PANTONE SILVER", 100 - c.rubine}},
             {{"Color_Guide", c.guide}});
    EXPECT_FALSE(IsFormulaModified(room.session, "PANTONE 185"));
    room.session.File().Execute("UPDATE INK_Mix SET BQ0 = 50, BQ1 = 50");
    EXPECT_TRUE(IsFormulaModified(room.session, "PANTONE 185"));
    EXPECT_EQ(CompareFormula(room.session, "PANTONE 185")->original[0].amount, c.rubine);
    FormulaWork work = LoadFormulaWork(room.session, *ReadMix(room.session, "PANTONE 185"));
    room.prompt.Expect("Revert Back To Original Formula?", Answer::Yes);
    EXPECT_EQ(RevertToGuide(room.session, work), true);
    EXPECT_EQ(ReadMix(room.session, "PANTONE 185")->BQ[0], c.rubine);
  }
}

TEST(Guides, ADuplicateFindsTheColoursOfAnotherDatabaseOfGuides) {
  GuideRoom room;
  CreateEmptyDatabase(room.session.File(), "BOOK");
  room.session.databaseList.push_back("BOOK");
  room.BeOfGuides("BOOK");
  // The current Database is of no guide, so the template is not open.
  room.session.TemplateFile.clear();
  room.session.templateDB.reset();
  for (const char* name : {"RUBINE", "SILVER", "WHITE", "PANTONE RUBINE"}) room.Basic(name);
  room.AddRow(schema::Basic, {{"Color_Name", "X"}});
  room.session.File().Execute("INSERT INTO BOOK_Basic (Color_Name, PurchaseCost) VALUES ('PANTONE RUBINE', 10)");
  room.Mix("ROSE", {{"RUBINE", 20}, {"SILVER", 30}, {"WHITE", 40}, {"PANTONE RUBINE", 10}});
  for (const char* name : {"ROSE", "185"}) {
    room.prompt.Expect("Master Formula - Duplicated");
    ASSERT_TRUE(DuplicateFormula(room.session, "ROSE", name, "BOOK"));
  }
  EXPECT_EQ(room.Names("BOOK_Basic"), "PANTONE RUBINE, PANTONE SILVER, WHITE");
  EXPECT_EQ(room.Names("BOOK_Mix"), "ROSE, PANTONE 185");
  const MixColor rose = *ReadMix(room.session, "ROSE", "BOOK");
  EXPECT_EQ(rose.Ingredients(), (Recipe{{"PANTONE RUBINE", 30}, {"PANTONE SILVER", 30}, {"WHITE", 40}}));
  EXPECT_EQ(rose.BasicCost, 3.0F);
  EXPECT_EQ(ReadBasic(room.session, "PANTONE SILVER", "BOOK")->book.Row, 9);
}

TEST(Guides, ARenamedBookFormulaKeepsThePrefix) {
  GuideRoom room;
  room.Breaks("Ingredients");
  room.Mix("PANTONE 185", {{"PANTONE RUBINE", 100}});
  room.Mix("PANTONE TAKEN", {{"PANTONE RUBINE", 100}});
  EXPECT_EQ(RenameColor(room.session, "PANTONE 185", "TAKEN").error().title, "Master Formula Exists");
  const struct {
    NameChange change;
    const char* text;
    const char* replacement;
    const char* outcome;  // the new name, or "!" and the reason
  } cases[] = {
      {NameChange::Replace, "PANTONE ", "", "!Rename creates duplicate color name reference"},
      {NameChange::Replace, "PANTONE 185", "TAKEN", "!Rename creates duplicate color name reference"},
      {NameChange::Replace, "PANTONE 185", "SEVENTEEN LETTERS", "!New name exceeds 24 characters"},
      {NameChange::Replace, "PANTONE 185", "SIXTEEN LETTERS", "PANTONE SIXTEEN LETTERS"},
      {NameChange::Replace, "185", "9", "PANTONE 9"},
      {NameChange::Prefix, "MY ", "", "PANTONE MY 185"},
      {NameChange::Suffix, " X", "", "PANTONE 185 X"},
  };
  room.session.NameLength = 24;
  for (const auto& c : cases) {
    const auto rows = PreviewRename(room.session, {ColorKind::Mix, c.change, c.text, c.replacement}, {"PANTONE 185"});
    const RenamePreviewRow& row = rows->front();
    EXPECT_EQ(row.renames ? row.newName : "!" + row.reason, c.outcome);
  }
  EXPECT_EQ(RenameColor(room.session, "PANTONE 185", "SEVENTEEN LETTERS").error().text,
            "The name PANTONE SEVENTEEN LETTERS has 25 characters, the limit is 24.");
  EXPECT_EQ(RenameColor(room.session, "PANTONE 185", "SPECIAL")->name, "PANTONE SPECIAL");
}

TEST(Guides, HowAGuideIsShown) {
  const struct {
    const char* name;
    BookData book;
    const char* caption;
  } cases[] = {
      {"PANTONE 10-1-1", {"GoeGuide coated", "3"}, "GoeGuide coated(TM)"},
      {"PANTONE 9140", {"PASTELS NEONS", "3"}, "PASTELS && NEONS"},
      {"PANTONE 185", {"FORMULA GUIDE", "3"}, "FORMULA GUIDE"},
      {"PANTONE 185", {"FORMULA GUIDE", "0"}, ""},
      {"RED", {"FORMULA GUIDE", "3"}, ""},
  };
  for (const auto& c : cases) EXPECT_EQ(GuideCaption(c.name, c.book), c.caption);
}

}  // namespace
}  // namespace vellumark
