#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "core/base/files.h"
#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/formulas.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/exchange/formula_export.h"
#include "core/exchange/formula_file.h"
#include "core/exchange/formula_import.h"
#include "core/exchange/formula_writer.h"
#include "support/ink_room.h"
#include "support/places.h"
#include "support/struck.h"

namespace vellumark {
namespace {

using enum FormulaFormat;

// A table as one text: names, codes and recipes, then the lines that are none.
std::string Told(const FormulaTable& table) {
  std::string text;
  const auto add = [&](const SourceColor& color) {
    text += (text.empty() ? "" : "; ") + color.name;
    if (color.code) text += "[" + *color.code + "]";
    for (const Ingredient& line : color.recipe) text += " " + line.name + "=" + ShortestText(line.amount);
  };
  for (const SourceColor& formula : table.formulas) add(formula);
  for (const BadLine& bad : table.badLines) text += " !" + std::to_string(bad.line) + " " + bad.why;
  return text;
}

std::string TellFile(std::string_view bytes, const FormulaFileOptions& options = {},
                     const std::string& name = "room.txt") {
  const auto table = ReadFormulaBytes(bytes, name, options);
  return table ? Told(*table) : "refused: " + table.error().text;
}

struct Sample {
  FormulaFormat format;
  std::string bytes;
  std::string told;
};

std::vector<Sample> Samples() {
  const std::string zg = "BillNo\tBillDesc1\tComponentItemCode\tQuantityPerBill\r\n";
  const std::string ja = "FormulaPNUM\tPRODFIL2.PNAME1\tSeq\tPNUM\tBTFormulaComp.PNAME1\tPercentWeight\r\n";
  const std::string header = "Code\tDescription\tBLACK\tBLUE\tWHITE\r\n";
  const std::string codes = "\t\tK-1\t\"\"\"B\"\"\"\t\r\n";
  const std::string rows = "NAVY\tN-7\t24.500\t75.500\t0\r\nSKY 2#\t5\\\\T\\t7\t0\t10.000\t90.000\r\n";
  const std::string ordered = "NAVY[N-7] BLUE=75.5 BLACK=24.5; SKY 2#[5\\T\t7] WHITE=90 BLUE=10";
  const std::string sorted = "NAVY[N-7] BLACK=24.5 BLUE=75.5; SKY 2#[5\\T\t7] BLUE=10 WHITE=90";
  return {
      {Mfe, "INK\r\nNAVY\tBLUE\t75.500\tBLACK\t24.500\r\nSKY 2#\tWHITE\t90.000\tBLUE\t10.000\r\n",
       "NAVY BLUE=75.5 BLACK=24.5; SKY 2# WHITE=90 BLUE=10"},
      {Rez, "O#0#NAVY#1#BLUE#75.50000#\r\nO#1#NAVY#1#BLACK#24.50000#\r\n", "NAVY BLUE=75.5 BLACK=24.5"},
      {Zg,
       zg + "NAVY\tN-7\tBLUE\t75.500\r\nNAVY\tN-7\tBLACK\t24.500\r\nSKY 2#\t5\\\\T\\t7\tWHITE\t90.000\r\n"
            "SKY 2#\t5\\\\T\\t7\tBLUE\t10.000\r\n",
       ordered},
      {Ja,
       ja + "N-7\tNAVY\t\t\tBLUE\t75.500\r\nN-7\tNAVY\t\t\tBLACK\t24.500\r\n"
            "5\\\\T\\t7\tSKY 2#\t\t\tWHITE\t90.000\r\n5\\\\T\\t7\tSKY 2#\t\t\tBLUE\t10.000\r\n",
       ordered},
      {Header2, header + codes + rows, sorted},
      {Header1, header + rows, sorted},
      {Header2Xls, header + codes + rows, sorted},
      {Header1Xls, header + rows, sorted},
  };
}

struct FormatRoom : test::InkRoom {
  FormatRoom() {
    Basic("WHITE");
    Basic("BLUE", {{"Color_Code", "\"B\""}});
    Basic("BLACK", {{"Color_Code", "K-1"}});
    Mix("SKY 2#", {{"WHITE", 90.0F}, {"BLUE", 10.0F}}, {{"Color_Code", "5\\T\t7"}});
    Mix("NAVY", {{"BLUE", 75.5F}, {"BLACK", 24.5F}}, {{"Color_Code", "N-7"}});
  }
  std::filesystem::path out = folder / "out.txt";
};

TEST(FormulaFormats, EachIsWrittenToTheByteAndReadByItsContent) {
  FormatRoom room;
  for (const Sample& sample : Samples()) {
    const FormulaFormatRow& row = FormulaFormats()[static_cast<std::size_t>(sample.format)];
    SCOPED_TRACE(row.option);
    FormulaSelection selection;
    if (sample.format == Rez) selection.names = {"NAVY"};
    const auto report = ExportFormulas(room.session, sample.format, selection, room.out);
    ASSERT_TRUE(report) << report.error().text;
    EXPECT_EQ(ReadFileBytes(room.out), sample.bytes);
    EXPECT_TRUE(report->left.empty());
    const std::string name = "any" + std::string(row.extension == ".xls" ? ".xls" : ".txt");
    EXPECT_EQ(RecogniseFormat(sample.bytes, name, {}), sample.format);
    EXPECT_EQ(TellFile(sample.bytes), sample.told);
    // The words of the heading count in any case, and a format that is told is the one that is read.
    std::string lower = sample.bytes;
    const std::size_t end = lower.find('\r');
    if (sample.format >= Zg)
      for (std::size_t n = 0; n < end; ++n) lower[n] = static_cast<char>(std::tolower(lower[n]));
    EXPECT_EQ(TellFile(lower, {.format = sample.format}), sample.told);
  }
  const auto header = ReadFormulaBytes(Samples()[4].bytes, "h.txt", {});
  ASSERT_EQ(header->basics.size(), 3U);
  EXPECT_EQ(header->basics[0].name + header->basics[0].code.value(), "BLACKK-1");
  EXPECT_EQ(header->basics[1].code.value(), "\"B\"");
}

TEST(FormulaFormats, RealRecipesComeBackWithNamesCodesPartsAndOrder) {
  test::InkRoom room;
  ASSERT_TRUE(ImportFormulas(room.session, test::SourceFolder() / "data/recipes/real_recipes.mfe"));
  room.session.File().Execute("UPDATE INK_Mix SET Color_Code = 'C\\' || RowKey");
  room.session.File().Execute("UPDATE INK_Basic SET Color_Code = 'B' || RowKey");
  std::vector<MixColor> sent;
  ForEachMix(room.session, [&](const MixColor& mix) {
    sent.push_back(mix);
    return true;
  });
  const auto byName = [](const Ingredient& a, const Ingredient& b) { return a.name < b.name; };
  for (int n = 0; n < kWrittenFormats; ++n) {
    const FormulaFormat format{n};
    SCOPED_TRACE(n);
    const auto path = room.folder / ("all" + std::string(FormulaFormats()[static_cast<std::size_t>(n)].extension));
    const auto report = ExportFormulas(room.session, format, {}, path);
    ASSERT_TRUE(report) << report.error().text;
    EXPECT_EQ(report->formulas, 4683);
    const auto table = ReadFormulaFile(path, {});
    ASSERT_TRUE(table) << table.error().text;
    EXPECT_EQ(table->format, format);
    EXPECT_TRUE(table->badLines.empty());
    const auto again = ImportFormulas(room.session, path);
    EXPECT_TRUE(again && again->same == 4683);
    ASSERT_EQ(table->formulas.size(), sent.size());
    std::size_t wrong = 0;
    for (std::size_t f = 0; f < sent.size(); ++f) {
      const SourceColor& back = table->formulas[f];
      const bool codeGoes = format != Mfe && format != Rez;
      Recipe parts = Normalise(back.recipe);
      Recipe stored = sent[f].Ingredients();
      if (format >= Header2) {
        std::ranges::sort(parts, byName);
        std::ranges::sort(stored, byName);
      }
      const bool same = back.name == sent[f].Color_Name &&
                        back.code == (codeGoes ? std::optional(sent[f].Color_Code) : std::nullopt) &&
                        std::ranges::equal(parts, stored, [](const Ingredient& a, const Ingredient& b) {
                          return a.name == b.name && static_cast<float>(a.amount) == static_cast<float>(b.amount);
                        });
      if (!same && ++wrong < 5) ADD_FAILURE() << sent[f].Color_Name;
    }
    EXPECT_EQ(wrong, 0U);
  }
}

std::string Utf16(const std::string& text, bool bigEndian, bool mark) {
  std::string bytes = !mark ? "" : bigEndian ? "\xFE\xFF" : "\xFF\xFE";
  for (const char c : FromCp1252(text) == text ? text : ToCp1252(text)) {
    if (bigEndian) bytes += '\0';
    bytes += c;
    if (!bigEndian) bytes += '\0';
  }
  return bytes;
}

TEST(FormulaFormats, FilesOfPeopleAreReadAsTheyAre) {
  const std::string mfe = "ink\nGR\xC3\x9CN 5\tBLUE\t75.5\tRED\t24.5\n";
  const std::string told = "GR\xC3\x9CN 5 BLUE=75.5 RED=24.5";
  std::string cr = mfe;
  std::ranges::replace(cr, '\n', '\r');
  const std::string head = "Code\tDescription\tBLUE\tRED\n";
  const std::string zg = "BillNo\tBillDesc1\tComponentItemCode\tQuantityPerBill\n";
  const struct {
    const char* what;
    std::string bytes;
    std::string told;
  } cases[] = {
      {"UTF-8", mfe, told},
      {"UTF-8 with its mark", "\xEF\xBB\xBF" + mfe, told},
      {"CP1252", ToCp1252(mfe), told},
      {"UTF-16", Utf16(mfe, false, true), told},
      {"UTF-16, high byte first", Utf16(mfe, true, true), told},
      {"UTF-16 without a mark", Utf16("INK\nNAVY\tBLUE\t1\n", false, false), "NAVY BLUE=1"},
      {"CR alone", cr, told},
      {"blank lines and cells", "\n\nINK\t\t\t\n\t\t\nA\tX\t1\t\t\t\tY\t3\t\t\n\n", " !5 an ingredient has no amount"},
      {"a blank pair", "INK\nA\tX\t1\t\t\tY\t3\t\t\t\n\n", "A X=1 Y=3"},
      {"quoted cells", "INK\n\"A\"\t\"X\"\t\"1,5\"\tY\t\"1.000,5\"\n", "A X=1.5 Y=1000.5"},
      {"a mark that opens nothing", "INK\nA\t\"X\t1\nB\tY\t1\n",
       "B Y=1 !2 the name \"X has a character that no name may hold"},
      {"decimal comma", "INK\nA\tX\t12,5\tY\t87,500\n", "A X=12.5 Y=87.5"},
      {"thousands behind commas", "INK\nA\tX\t1,250.5\tY\t2,000\n", "A X=1250.5 Y=2000"},
      {"thousands behind points", "INK\nA\tX\t1.250,5\tY\t2.000\n", "A X=1250.5 Y=2000"},
      {"other thousands",
       "INK\nA\tX\t1'250.5\tY\t2 000\tZ\t1\xC2\xA0"
       "000.5\tW\t1.000.000\n",
       "A X=1250.5 Y=2000 Z=1000.5 W=1000000"},
      {"three decimals alone are decimals", "INK\nA\tX\t33,333\tY\t66,667\n", "A X=33.333 Y=66.667"},
      {"a comma that may be either", "INK\nA\tX\t1.5\tY\t1,5\tZ\t1,250\n",
       " !2 the amount \"1,250\" of Z is no number above 0"},
      {"percent", "INK\nA\tX\t12.5%\tY\t87.5 %\n", "A X=12.5 Y=87.5"},
      {"any case", "BILLNO\tbilldesc1\tcomponentitemcode\tquantityperbill\tRemarks\nsky\t7\tblue\t1\tours\n",
       "SKY[7] BLUE=1"},
      {"rows in any order", zg + "SKY\t7\tBLUE\t1\nNAVY\t8\tBLUE\t9\nsky\t7\tWHITE\t3\n",
       "SKY[7] BLUE=1 WHITE=3; NAVY[8] BLUE=9"},
      {"slots in any order", "O#1#A#2#X#1#\nO#0#A#2#Y#3#\n", "A Y=3 X=1"},
      {"a formula with one bad row stays out whole",
       zg + "SKY\t7\tBLUE\t1\nNAVY\t8\tBLUE\t9\nSKY\t7\tBLUE\t3\nSKY\t7\tRED\tx\n",
       "NAVY[8] BLUE=9 !4 the ingredient BLUE stands in it twice !5 the amount \"x\" of RED is no number above 0"},
      {"two codes for one name", zg + "SKY\t7\tBLUE\t1\nSKY\t8\tRED\t1\n",
       " !3 the formula SKY stands in line 2 already, with the code 7"},
      {"two versions", "O#0#A#1#X#1#\nO#0#A#2#Y#3#\n",
       " !2 the formula A stands in line 1 already, with the version 1"},
      {"another kind of row", "O#0#A#1#X#1#\nH#0#A#1#Y#3#\n",
       "A X=1 !2 the row begins with H, that of an ingredient with O"},
      {"cut off", "O#0#A#1#X#50.00000#\nO#1#A#1#Y#5", " !2 the file ends in the middle of this row"},
      {"blank cells of a grid", head + "A\t\t1\t\nB\t\t\t0.000\nC\t\t1\t1\t1\n",
       "A[] BLUE=1 !3 the formula has no recipe !4 the row has more cells than the heading"},
      {"less than nothing", head + "A\t\t1\t-1\n", " !2 the amount \"-1\" of RED is no number from 0 on"},
  };
  for (const auto& c : cases) EXPECT_EQ(TellFile(c.bytes), c.told) << c.what;

  std::string sixteen = head.substr(0, head.find('B'));
  std::string amounts = "A\t\t";
  for (int n = 0; n < 16; ++n) {
    sixteen += "I" + std::to_string(n) + "\t";
    amounts += "1\t";
  }
  EXPECT_EQ(TellFile(sixteen + "\n" + amounts), " !2 the formula has 16 ingredients, the limit is 15");
}

TEST(FormulaFormats, WhatIsNoneIsToldByItsNameAndCause) {
  const struct {
    std::string bytes;
    const char* name;
    std::optional<FormulaFormat> format;
    const char* told;
  } cases[] = {
      {"", "a.mfe", {}, "Couldn't read .mfe file correctly. The file may be corrupt.\n\na.mfe: "},
      {"INK\n", "a.mfe", {}, "Couldn't read .mfe file correctly. The file may be corrupt.\n\na.mfe: the file has no"},
      {"\r\n \t\n", "a.txt", {}, "Couldn't read textfile Field Headers.\n\na.txt: the file is empty"},
      {"Hello\nworld\n",
       "a.txt",
       {},
       "Couldn't read textfile Field Headers.\n\na.txt: the file is none of the formats"},
      {"INK\nA\tX\t1\n", "a.txt", Zg,
       "Couldn't read textfile Field Headers.\n\na.txt: the first row is not BillNo, Bill"},
      {"INK\nA\tX\t1\n", "a.txt", Header1, "Line 1: Couldn't read Basic Color Names\n\na.txt: "},
      {"Code\tDescription\n", "a.txt", {}, "Line 1: Couldn't read Basic Color Names\n\na.txt: "},
      {"Code\tDescription\tA\ta\n", "a.txt", {}, "Line 1: Couldn't read Basic Color Names\n\na.txt: the Basic Color A"},
      {"Code\tDescription\tA\n", "a.txt", {}, "Line 2: Couldn't read data\n\na.txt: the file ends behind its heading"},
      {"Code\tDescription\tA\n\t\t1\t2\n", "a.txt", {}, "Line 2: Couldn't read data\n\na.txt: the row has more codes"},
      {"Color Type\tColor Code\nA\tB\n", "a.txt", Work,
       "No Color Name field found in textfile Field Headers\n\na.txt: "},
      {"Color Name\tIngredient 0\nA\tB\n",
       "a.txt",
       {},
       "Couldn't read textfile Field Headers.\n\na.txt: Ingredient 0 has no"},
      {std::string("Color Name\tNotes\nA\tB\nC\t\0\n", 25),
       "a.txt",
       {},
       "Couldn't read textfile data at line 3\n\na.txt: "},
      {"\xD0\xCF\x11\xE0 and so on", "a.xls", {}, "Couldn't open textfile.\n\na.xls: the file is a workbook"},
  };
  for (const auto& c : cases) {
    const auto refused = ReadFormulaBytes(c.bytes, c.name, {.format = c.format});
    ASSERT_FALSE(refused) << c.told;
    EXPECT_EQ(refused.error().title, "Import Formulas");
    EXPECT_EQ(refused.error().text.substr(0, std::string(c.told).size()), c.told);
  }
  try {
    (void)ReadFormulaFile("/nowhere/a.mfe", {});
    ADD_FAILURE() << "was read";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.subject, "/nowhere/a.mfe");
    EXPECT_TRUE(failure.cause.starts_with("Couldn't open textfile. ")) << failure.cause;
  }
}

TEST(FormulaGrid, TheFieldsOfATableExportAreKnownByTheirNames) {
  const std::string bytes =
      "COLOR NAME\tcolor type\tColor Code\tReorder (kg.)\tInventory (kg.)\tUnlotted Inv.\tInventory Note\tUnit Cost $\t"
      "Recyclable\tNotes\tVOC\tHAP\tSwatch\tIngredient 0\tParts 0\tIngredient 1\tParts 1\n"
      "blue\tBasic\tB\\\\1\t5\t7\t3\tshelf\t12.5\tNo\tone\\ntwo\\tthree\t1\t2\tx\n"
      "dryer\tAdditive\nsky\tFormula\tS\t\t\t\t\t99\tYes\t\t\t\tx\tblue\t1\tdryer\t3\nplain\t\t\n"
      "red\tPaint\nbad\tBasic\t\t\t\t\t\t\t\t\t\t\t\tBLUE\t1\n";
  const auto table = ReadFormulaBytes(bytes, "grid.txt", {});
  ASSERT_TRUE(table) << table.error().text;
  EXPECT_EQ(table->format, Work);
  EXPECT_EQ(table->unit, 2);
  EXPECT_TRUE(table->hasFigures);
  EXPECT_EQ(Told(*table),
            "SKY[S] BLUE=1 DRYER=3 !5 the formula has no recipe !6 Paint is no Color Type !7 BAD is no formula and has a "
            "recipe");
  ASSERT_EQ(table->basics.size(), 2U);
  const SourceColor& blue = table->basics[0];
  EXPECT_EQ(blue.code, "B\\1");
  EXPECT_EQ(blue.notes, "one\ntwo\tthree");
  EXPECT_EQ(blue.inventoryNote, "shelf");
  EXPECT_EQ(blue.reorder, 5);
  EXPECT_EQ(blue.inventory, 3);
  EXPECT_EQ(blue.purchaseCost, 12.5);
  EXPECT_EQ(blue.VOC, 1);
  EXPECT_EQ(blue.HAP, 2);
  EXPECT_EQ(blue.recycle, false);
  EXPECT_EQ(blue.additive, false);
  EXPECT_EQ(table->basics[1].additive, true);
  EXPECT_FALSE(table->basics[1].purchaseCost);
  // What a formula costs follows from its basics.
  EXPECT_FALSE(table->formulas[0].purchaseCost);
  EXPECT_EQ(table->formulas[0].recycle, true);
}

TEST(FormulaGrid, AShopsOwnColumnsAreToldOnceAndRemembered) {
  const std::string rows = "Artikel;Farbe;Anteil;Bestandteil\n17;himmel;12,5;wei\xDF\n17;HIMMEL;87,5;blau\n";
  test::InkRoom room;
  EXPECT_EQ(
      TellFile(rows),
      "refused: Couldn't read textfile Field Headers.\n\nroom.txt: the file is none of the formats of formula files");
  ColumnMapping mapping;
  for (const char* told : {"Farbe=color name", "artikel = Color Code", "Anteil=Parts", "Bestandteil=Ingredient"})
    ASSERT_TRUE(TakeMapping(mapping, told));
  for (const char* wrong : {"Farbe", "=Notes", "Farbe=Colour", "A|B=Notes", "Farbe=Parts 100"})
    EXPECT_FALSE(TakeMapping(mapping, wrong)) << wrong;
  RememberColumns(room.session, mapping);
  EXPECT_EQ(TellFile(rows, FileOptions(room.session), "x.csv"), "HIMMEL[17] WEI\xC3\x9F=12.5 BLAU=87.5");
  const auto path = room.folder / "x.csv";
  ReplaceFile(path, rows);
  const GridHead head = ReadGridHead(path, RememberedColumns(room.session));
  ASSERT_EQ(head.columns.size(), 4U);
  EXPECT_EQ(FieldText(head.columns[2]), "Parts");
  EXPECT_EQ(head.rows[1][1], "HIMMEL");

  // Pairs in a row, and a column for each Basic Color.
  mapping = {};
  for (const char* told : {"Name=Color Name", "Ink=Ingredient 0", "Qty=Parts 0", "Blue=Basic Color"})
    ASSERT_TRUE(TakeMapping(mapping, told));
  EXPECT_EQ(TellFile("Name,Ink,Qty,Blue,Price\nA,Red,\"1,5\",3,9\nB,,,\"2,25\",9\n", {.columns = mapping}),
            "A RED=1.5 BLUE=3; B BLUE=2.25");
}

TEST(WorkFile, HoldsWhatWasReadAndReadsBackAsTheSame) {
  FormatRoom room;
  room.session.ProgramFolder = room.folder / "Program";
  for (const Sample& sample : Samples()) {
    const auto table = ReadFormulaBytes(sample.bytes, "/elsewhere/Ink of GR\xC3\x9CN.rez", {});
    const auto path = WriteWorkFile(room.session.ProgramFolder / "Converted", *table);
    EXPECT_EQ(path, room.session.ProgramFolder / "Converted" / "Ink of GR\xC3\x9CN.txt");
    const auto back = ReadFormulaFile(path, {});
    ASSERT_TRUE(back) << back.error().text;
    EXPECT_EQ(back->format, Work);
    EXPECT_EQ(Told(*back), sample.told);
    EXPECT_EQ(back->basics.size(), table->basics.size());
  }
  const auto grid = ReadFormulaBytes(
      "Color Name\tColor Type\tNotes\tPurchase Cost\tRecyclable\tReorder (oz.)\tIngredient 0\tParts 0\n"
      "A\tBasic\ta\\nb\\\\c\t0.1\t\t5\nB\tFormula\t\t\tNo\t\tA\t1\n",
      "g.txt", {});
  const auto back = ReadFormulaFile(WriteWorkFile(room.session.ProgramFolder / "Converted", *grid), {});
  EXPECT_EQ(back->basics[0].notes, "a\nb\\c");
  EXPECT_EQ(back->basics[0].purchaseCost, 0.1);
  EXPECT_EQ(back->basics[0].reorder, 5);
  EXPECT_FALSE(back->basics[0].code);
  EXPECT_EQ(back->unit, 4);
  EXPECT_EQ(back->formulas[0].recycle, false);
  // Who reads for the session leaves one, but not of a file of our own format.
  std::filesystem::remove_all(room.session.ProgramFolder);
  for (const char* name : {"own.mfe", "theirs.rez"})
    ReplaceFile(room.folder / name, Samples()[std::string(name) == "own.mfe" ? 0 : 1].bytes);
  ASSERT_TRUE(ReadFormulaFile(room.folder / "own.mfe", FileOptions(room.session)));
  EXPECT_FALSE(std::filesystem::exists(room.session.ProgramFolder));
  ASSERT_TRUE(ReadFormulaFile(room.folder / "theirs.rez", FileOptions(room.session)));
  EXPECT_TRUE(std::filesystem::exists(room.session.ProgramFolder / "Converted/theirs.txt"));
  // Where it cannot be written the file and the part are named.
  std::filesystem::remove_all(room.session.ProgramFolder);
  ReplaceFile(room.session.ProgramFolder, "no folder");
  try {
    WriteWorkFile(room.session.ProgramFolder / "Converted", *grid);
    ADD_FAILURE() << "was written";
  } catch (const Failure& failure) {
    EXPECT_TRUE(failure.cause.starts_with("Couldn't print Header on the output file. ")) << failure.cause;
  }
  // On a full disk the part is told that had no room.
  std::filesystem::remove(room.session.ProgramFolder);
  std::set<std::string> told;
  for (int nth = 1;; ++nth) {
    const auto said = room.folder / "said";
    const test::StruckRun run = test::RunStruck(nth, ENOSPC, [&] {
      test::MarkStep();
      try {
        WriteWorkFile(room.session.ProgramFolder / "Converted", *grid);
      } catch (const Failure& failure) {
        test::MarkStep();
        ReplaceFile(said, failure.cause);
        return 1;
      }
      return 0;
    });
    if (!run.struck) break;
    if (run.status != 1) continue;
    const std::string cause = ReadFileBytes(said);
    told.insert(cause.substr(0, cause.find(" (")));
  }
  EXPECT_EQ(told, (std::set<std::string>{"Couldn't print Header on the output file.",
                                         "Couldn't write Basics to the output file",
                                         "Couldn't write formulas to the output file"}));
}

TEST(FormulaExport, TakesTheDaysOfEitherDateAndTheDatabaseThatIsNamed) {
  FormatRoom room;
  room.session.File().Execute(
      "UPDATE INK_Mix SET Date_Entered = '2026-01-05 00:00:00', LastModified = '2026-02-01 18:30:00' WHERE Color_Name "
      "= "
      "'NAVY'");
  room.session.File().Execute(
      "UPDATE INK_Mix SET Date_Entered = '2026-01-06 00:00:00', LastModified = NULL WHERE Color_Name <> 'NAVY'");
  const auto day = [](const char* text) { return ParseDateTime(text); };
  using Names = std::vector<std::string>;
  EXPECT_EQ(FormulasOfRange(room.session, {.from = day("2026-01-05"), .to = day("2026-01-05")}), Names{"NAVY"});
  EXPECT_EQ(FormulasOfRange(room.session, {.from = day("2026-01-06")}), Names{"SKY 2#"});
  EXPECT_EQ(FormulasOfRange(room.session, {.to = day("2026-02-01"), .by = FormulaDate::Modified}), Names{"NAVY"});
  EXPECT_EQ(FormulasOfRange(room.session, {}), (Names{"NAVY", "SKY 2#"}));
  EXPECT_EQ(FormulasOfRange(room.session, {.from = day("2026-02-01"), .to = day("2026-01-31")}).error().field, "To");
  EXPECT_EQ(FormulasOfRange(room.session, {.database = "GONE"}).error().field, "Database");
  EXPECT_EQ(ExportFormulas(room.session, Zg, {.from = day("2026-03-01")}, room.out).error(),
            (Refusal{"No Formulas Selected", "No Master Formulas selected for export.", ""}));
  EXPECT_FALSE(std::filesystem::exists(room.out));

  CreateEmptyDatabase(room.session.File(), "OTHER");
  room.session.databaseList = {"INK", "OTHER"};
  room.session.CurrentDatabase = "OTHER";
  ASSERT_TRUE(ExportFormulas(room.session, Mfe, {.database = "INK", .names = {"n-7"}}, room.out));
  EXPECT_EQ(ReadFileBytes(room.out), "INK\r\nNAVY\tBLUE\t75.500\tBLACK\t24.500\r\n");
  room.session.CurrentDatabase = "INK";
}

TEST(FormulaExport, WhatAFormatCannotCarryIsToldByName) {
  FormatRoom room;
  EXPECT_EQ(
      ExportFormulas(room.session, Rez, {}, room.out).error().text,
      "A .rez file parts its fields by the # character, so that no name in it may hold one. Rename these formulas or "
      "their ingredients, or choose another format:\n\nSKY 2#");
  EXPECT_FALSE(std::filesystem::exists(room.out));
  // An ingredient that is no Basic Color has no column.
  room.Breaks("Ingredients");
  room.Mix("GHOSTLY", {{"BLUE", 50.0F}, {"GHOST", 50.0F}});
  const auto report = ExportFormulas(room.session, Header1, {}, room.out);
  ASSERT_TRUE(report);
  EXPECT_EQ(report->formulas, 2);
  EXPECT_EQ(ReadFileBytes(room.out).find("GHOST"), std::string::npos);
  EXPECT_EQ(ExportCompleteText(*report, "/x/out.txt"),
            "Formulas have been exported to the file:\n\n/x/out.txt\n\nThese formulas are not in it:\nGHOSTLY: its "
            "ingredient GHOST is no Basic Color of the Database, and so has no column");
  EXPECT_EQ(report->lost[0],
            "The file does not hold the order of the ingredients: it has a column for each Basic Color.");
  // The shop's data is not written over by a slip of the hand.
  const auto data = room.folder / "other.vkd";
  CreateFile(data);
  const std::string before = ReadFileBytes(data);
  EXPECT_THROW((void)ExportFormulas(room.session, Mfe, {}, data), Failure);
  EXPECT_EQ(ReadFileBytes(data), before);
  // A text of the code page that could be taken for UTF-8 says what it is.
  room.Mix("\xC3\x83\xC2\xA9", {{"BLUE", 100.0F}});
  ASSERT_TRUE(ExportFormulas(room.session, Mfe, {.names = {"\xC3\x83\xC2\xA9"}}, room.out));
  EXPECT_EQ(ReadFormulaFile(room.out, {})->formulas[0].name, "\xC3\x83\xC2\xA9");
}

}  // namespace
}  // namespace vellumark
