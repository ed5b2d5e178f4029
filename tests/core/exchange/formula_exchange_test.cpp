#include "core/exchange/formula_import.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "core/base/files.h"
#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "core/exchange/formula_export.h"
#include "support/guide_room.h"
#include "support/places.h"

namespace vellumark {
namespace {

std::filesystem::path Write(const test::InkRoom& room, const std::string& bytes) {
  const auto path = room.folder / "in.mfe";
  ReplaceFile(path, bytes);
  return path;
}

std::vector<std::string> Lines(const std::filesystem::path& path) {
  std::vector<std::string> lines;
  const std::string bytes = ReadFileBytes(path);
  for (const std::string_view line : Split(bytes, '\n')) lines.emplace_back(line);
  return lines;
}

TEST(MfeImport, RealRecipesComeBackAsTheyWent) {
  test::InkRoom room;
  const std::filesystem::path source = test::SourceFolder() / "data/recipes/real_recipes.mfe";
  const auto report = ImportFormulas(room.session, source);
  ASSERT_TRUE(report) << report.error().text;
  EXPECT_EQ(report->added.size(), 4683U);
  EXPECT_EQ(report->sourceDatabase, "REAL");
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Basic").Whole(), std::ssize(report->basics));
  EXPECT_EQ(room.Scalar("SELECT MAX(IngSort) FROM INK_Basic").Whole(), std::ssize(report->basics) - 1);
  const auto out = room.folder / "out.mfe";
  ASSERT_EQ(ExportFormulas(room.session, FormulaFormat::Mfe, {}, out)->formulas, 4683);
  std::vector<std::string> sent = Lines(source);
  std::vector<std::string> back = Lines(out);
  EXPECT_EQ(back[0], "INK\r");
  sent.erase(sent.begin());
  back.erase(back.begin());
  std::ranges::sort(sent);
  std::ranges::sort(back);
  EXPECT_EQ(sent, back);

  // The same file again finds everything as it is.
  const auto again = ImportFormulas(room.session, out);
  EXPECT_EQ(again->same, 4683U);
  EXPECT_EQ(again->added.size() + again->changed.size() + again->basics.size(), 0U);
}

TEST(MfeImport, EveryBadLineIsToldAndNothingComesIn) {
  test::InkRoom room;
  std::string sixteen = "TOO MANY";
  for (int i = 0; i < 16; ++i) sixteen += "\tI" + std::to_string(i) + "\t6.25";
  const std::vector<std::pair<std::string, std::string>> rows{
      {"GOOD\tBLUE\t60\tRED\t40", ""},
      {"NO RECIPE", "NO RECIPE is new to the database, however there is either no valid formula specified in the"},
      {"\tBLUE\t100", "the formula has no name"},
      {"ODD\tBLUE\t60\tRED", "an ingredient has no amount"},
      {"EXPONENT\tBLUE\t1e3", "the amount \"1e3\""},
      {"WORD\tBLUE\tabc", "the amount \"abc\""},
      {"EMPTY\tBLUE\t\tRED\t1", "the amount \"\""},
      {"BLANK\tBLUE\t", "an ingredient has no amount"},
      {"ZERO\tBLUE\t0", "the amount \"0\""},
      {"MINUS\tBLUE\t-1", "the amount \"-1\""},
      {"TWICE\tBLUE\t50\tblue\t50", "the ingredient BLUE stands in it twice"},
      {sixteen, "the formula has 16 ingredients, the limit is 15"},
      {"THIRTY-ONE LETTERS IN THIS NAME\tBLUE\t100", "has 31 characters, the limit is 30"},
      {"QUO\"TE\tBLUE\t100", "has a character that no name may hold"},
      {"BRACKET\tB[1]\t100", "has a character that no name may hold"},
      {"ST*R\tBLUE\t100", "has a character that no name may hold"},
      {"BAR\tA|B\t100", "has a character that no name may hold"},
      {"OHM \xCE\xA9\tBLUE\t100", "has a character that no name may hold"},  // not in the code page of an export
      {"good\tBLUE\t100", "the formula GOOD stands in line 2 already"},
      {"TINY\tBLUE\t99999\tRED\t0.01", "the share of RED is below 0.001 of 100"},
  };
  std::string bytes = "INK\r\n";
  for (const auto& [row, why] : rows) bytes += row + "\r\n";
  const auto refused = ImportFormulas(room.session, Write(room, bytes));
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().title, "Import Formulas");
  const std::vector<std::string_view> told = Split(refused.error().text, '\n');
  ASSERT_EQ(told.size(), rows.size() - 1) << refused.error().text;
  for (std::size_t i = 1; i < rows.size(); ++i) {
    EXPECT_NE(told[i - 1].find("at line " + std::to_string(i + 2)), std::string_view::npos) << told[i - 1];
    EXPECT_NE(told[i - 1].find(rows[i].second), std::string_view::npos) << told[i - 1];
  }
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Mix").Whole(), 0);
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Basic").Whole(), 0);
}

TEST(MfeImport, FilesThatAreNoneOrWereCut) {
  test::InkRoom room;
  EXPECT_THROW(static_cast<void>(ImportFormulas(room.session, room.folder / "gone.mfe")), Failure);
  EXPECT_FALSE(ImportFormulas(room.session, Write(room, "")));
  EXPECT_FALSE(ImportFormulas(room.session, Write(room, std::string("INK\r\nA\0B\t1", 10))));
  EXPECT_FALSE(ImportFormulas(room.session, Write(room, "INK\r\n")));
  EXPECT_FALSE(ImportFormulas(room.session, Write(room, "A\tBLUE\t100\r\n")));  // no Database name in front
  // Cut in the middle of a number: 40.000 became 4.
  const auto cut = ImportFormulas(room.session, Write(room, "INK\r\nA\tBLUE\t60.000\tRED\t4"));
  ASSERT_FALSE(cut);
  EXPECT_NE(cut.error().text.find("the file ends in the middle of this row"), std::string::npos);
}

TEST(MfeImport, ALastLineWithoutItsLineEndIsTakenUnlessTheRecipeWasCut) {
  const struct {
    const char* rows;
    bool taken;
  } cases[] = {
      {"A\tBLUE\t60.000\tRED\t40", true},
      {"A\tBLUE\t3\tRED\t1", true},                              // parts as a hand weighs them
      {"B\tBLUE\t2\tRED\t3\r\nA\tBLUE\t3.500\tRED\t1.5", true},  // so are those before it
      {"A\tBLUE\t60.000\tRED\t4", false},                        // 40.000 became 4
      {"A\tBLUE\t60.000\tRED\t4.0", false},
      {"B\tBLUE\t70\tRED\t30\r\nA\tBLUE\t60\tRED\t4", false},      // the rows before it total 100
      {"B\tBLUE\t70.000\tRED\t30.000\r\nA\tBLUE\t60.000", false},  // the second ingredient is gone
      {"B\tBLUE\t70.000\tRED\t30.000\r\nA\tBLUE\t60.000\tR", false},
  };
  for (const auto& c : cases) {
    test::InkRoom room;
    EXPECT_EQ(ImportFormulas(room.session, Write(room, std::string("INK\r\n") + c.rows)).has_value(), c.taken)
        << c.rows;
  }
}

TEST(MfeImport, AmountsOfAnySizeComeToTheirShares) {
  test::InkRoom room;
  const std::string rows =
      "BIG\tA\t100000000\tB\t300000000\r\nSMALL\tA\t0.000001\tB\t0.000003\r\n"
      "FINE\tA\t0.0000004\tB\t0.0000006\r\n";
  ASSERT_TRUE(ImportFormulas(room.session, Write(room, "INK\r\n" + rows)));
  EXPECT_EQ(ReadMix(room.session, "BIG")->Ingredients(), (Recipe{{"A", 25}, {"B", 75}}));
  EXPECT_EQ(ReadMix(room.session, "SMALL")->Ingredients(), (Recipe{{"A", 25}, {"B", 75}}));
  EXPECT_EQ(ReadMix(room.session, "FINE")->Ingredients(), (Recipe{{"A", 40}, {"B", 60}}));
}

TEST(MfeImport, NamesWithoutThePrefixMeanTheColoursOfTheGuides) {
  test::GuideRoom room;
  for (const char* name : {"PANTONE RUBINE", "PANTONE OWN"}) room.Basic(name, {{"PurchaseCost", 10.0F}});
  room.Mix("PANTONE 200", {{"PANTONE RUBINE", 100}}, {{"Color_Guide", "Goe_MColors"}, {"Page", "5"}, {"Row", 3}});
  room.prompt.Expect("Formula Comparison", Answer::Yes);
  const auto report = ImportFormulas(
      room.session,
      Write(room, "X\r\n200\tRUBINE\t50\tSILVER\t50\r\n185\trubine\t1\tOWN\t1\tHOUSE\t2\r\nOURS\tHOUSE\t1\r\n"));
  ASSERT_TRUE(report) << report.error().text;
  EXPECT_EQ(report->changed.size(), 1U);
  EXPECT_EQ(report->basics.size(), 2U);
  EXPECT_EQ(room.Names("INK_Basic"), "PANTONE RUBINE, PANTONE OWN, PANTONE SILVER, HOUSE");
  EXPECT_EQ(room.Names("INK_Mix"), "PANTONE 200, PANTONE 185, OURS");
  const MixColor known = *ReadMix(room.session, "PANTONE 200");
  EXPECT_EQ(known.Ingredients(), (Recipe{{"PANTONE RUBINE", 50}, {"PANTONE SILVER", 50}}));
  EXPECT_EQ(known.book.Page + " " + known.book.Color_Guide, "5 Goe_MColors");
  EXPECT_EQ(known.BasicCost, 5.0F);
  const MixColor added = *ReadMix(room.session, "PANTONE 185");
  EXPECT_EQ(added.Color_Set, "<PANTONE RUBINE><PANTONE OWN><HOUSE>");
  EXPECT_EQ(added.book.Page + " " + added.book.Color_Guide, "12 Goe_MColors");

  // Two spellings of one colour are one.
  const auto twice = ImportFormulas(
      room.session, Write(room, "X\r\nA\tRUBINE\t1\tPANTONE RUBINE\t1\r\n185\tHOUSE\t1\r\nPANTONE 185\tHOUSE\t1\r\n"));
  ASSERT_FALSE(twice);
  EXPECT_NE(twice.error().text.find("line 2: the ingredient PANTONE RUBINE stands in it twice"), std::string::npos);
  EXPECT_NE(twice.error().text.find("line 4: the formula PANTONE 185 stands in line 3 already"), std::string::npos);
}

TEST(MfeImport, NamesInTheCodePageAndWithSignsComeThrough) {
  test::InkRoom room;
  const std::string bytes = "INK\r\nGR\xDCN 50%_\xC9T\xC9\tBL\xC4U & CO\t75.000\tWEISS\t25.000\r\n";
  ASSERT_TRUE(ImportFormulas(room.session, Write(room, bytes)));
  EXPECT_TRUE(MixColorExists(room.session, "GRÜN 50%_ÉTÉ"));
  EXPECT_EQ(FormulasUsing(room.session, "BLÄU & CO"), std::vector<std::string>{"GRÜN 50%_ÉTÉ"});
  EXPECT_TRUE(FormulasUsing(room.session, "BL_U & CO").empty());
  const auto out = room.folder / "out.mfe";
  ASSERT_TRUE(ExportFormulas(room.session, FormulaFormat::Mfe, {.names = {"GRÜN 50%_ÉTÉ"}}, out));
  EXPECT_EQ(ReadFileBytes(out), bytes);
}

TEST(MfeImport, KnownFormulasAreAskedForAndKeepWhatTheFileDoesNotSay) {
  for (const Answer answer : {Answer::Yes, Answer::No}) {
    test::InkRoom room;
    room.Basic("BLUE", {{"PurchaseCost", 10.0F}, {"VOC", 1.0F}});
    room.Basic("RED", {{"PurchaseCost", 20.0F}});
    room.Mix("VIOLET", {{"BLUE", 50.0F}, {"RED", 50.0F}}, {{"Inventory", 7.0F}, {"Notes", "ours"}, {"Recycle", false}});
    room.prompt.Expect("Formula Comparison", answer);
    const auto report =
        ImportFormulas(room.session, Write(room, "INK\r\nVIOLET\tBLUE\t3\tRED\t1\r\nTINT\tBLUE\t1\tWHITE\t3\r\n"));
    ASSERT_TRUE(report);
    EXPECT_EQ(report->added.size(), 1U);
    EXPECT_EQ(report->changed.size(), answer == Answer::Yes ? 1U : 0U);
    EXPECT_EQ(report->kept.size(), answer == Answer::Yes ? 0U : 1U);
    const MixColor violet = *ReadMix(room.session, "VIOLET");
    EXPECT_EQ(violet.BQ[0], answer == Answer::Yes ? 75.0F : 50.0F);
    EXPECT_EQ(violet.Inventory, 7.0F);
    EXPECT_EQ(violet.Notes, "ours");
    EXPECT_FALSE(violet.Recycle);
    // 75 x 10 / 100 + 25 x 20 / 100 = 12.50
    if (answer == Answer::Yes) {
      EXPECT_EQ(violet.BasicCost, 12.5F);
    }
    const MixColor tint = *ReadMix(room.session, "TINT");
    EXPECT_EQ(tint.BasicCost, 2.5F);
    EXPECT_EQ(tint.BasicVOC, 0.25F);
    EXPECT_TRUE(tint.Recycle);
    EXPECT_EQ(tint.book.Page, "0");
    EXPECT_EQ(tint.Date_Entered->DateText(), "2026-03-10");
  }
}

TEST(MfeImport, AFailureInTheMiddleLeavesNothing) {
  test::InkRoom room;
  room.session.File().Execute(
      "CREATE TRIGGER fail BEFORE INSERT ON INK_Mix WHEN NEW.Color_Name = 'C' BEGIN SELECT RAISE(ABORT, 'no'); END");
  EXPECT_THROW(static_cast<void>(ImportFormulas(room.session, Write(room, "INK\r\nA\tX\t1\r\nB\tY\t1\r\nC\tZ\t1\r\n"))), Failure);
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Mix").Whole(), 0);
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Basic").Whole(), 0);
}

TEST(MfeExport, TakesTheFormulaOfThatNameAndLeavesOutWhatWeighsNothing) {
  test::InkRoom room;
  for (const char* name : {"X", "Y"}) room.Basic(name);
  room.Mix("A", {{"X", 100.0F}}, {{"Color_Code", "F1"}});
  room.Mix("F1", {{"Y", 100.0F}, {"X", 0.0004F}});
  const auto out = room.folder / "out.mfe";
  ASSERT_TRUE(ExportFormulas(room.session, FormulaFormat::Mfe, {.names = {"F1"}}, out));
  EXPECT_EQ(ReadFileBytes(out), "INK\r\nF1\tY\t100.000\r\n");
  EXPECT_EQ(FindMix(room.session, "F1")->Color_Name, "F1");
  test::InkRoom other;
  EXPECT_TRUE(ImportFormulas(other.session, out));

  // A name that an older program took must not hold up all the others.
  room.Mix("OHM \xCE\xA9", {{"X", 100.0F}});
  EXPECT_EQ(ExportFormulas(room.session, FormulaFormat::Mfe, {}, out)->formulas, 3);
  EXPECT_NE(ReadFileBytes(out).find("\r\nOHM \xCE\xA9\tX\t100.000\r\n"), std::string::npos);
}

TEST(MfeExport, RefusalsWriteNoFile) {
  test::InkRoom room;
  room.Breaks("Ingredients");
  const auto out = room.folder / "out.mfe";
  EXPECT_EQ(ExportFormulas(room.session, FormulaFormat::Mfe, {}, out).error(),
            (Refusal{"No Formulas Selected", "No Master Formulas selected for export.", ""}));
  room.Mix("A", {{"X", 100.0F}});
  EXPECT_EQ(ExportFormulas(room.session, FormulaFormat::Mfe, {.names = {"A", "GONE"}}, out).error().title,
            "Color Not Found");
  EXPECT_FALSE(std::filesystem::exists(out));
  EXPECT_THROW(static_cast<void>(ExportFormulas(room.session, FormulaFormat::Mfe, {}, room.folder / "no" / "out.mfe")), Failure);
  std::vector<std::pair<std::string, float>> parts;
  for (int i = 0; i < 15; ++i) parts.emplace_back("I" + std::to_string(i), i == 0 ? 6.662F : 6.667F);
  room.Mix("FIFTEEN", parts);
  ASSERT_TRUE(ExportFormulas(room.session, FormulaFormat::Mfe, {.names = {"FIFTEEN"}}, out));
  EXPECT_EQ(Split(Lines(out)[1], '\t').size(), 31U);
}

}  // namespace
}  // namespace vellumark
