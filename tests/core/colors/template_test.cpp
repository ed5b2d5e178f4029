#include <gtest/gtest.h>

#include <algorithm>

#include "core/datafile/engine.h"
#include "support/template_room.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;
using test::TemplateTexts;

void Change(const fs::path& path, const std::string& sql) {
  Database::Open(path, OpenMode::Exclusive)->Execute(sql);
}

TEST(Template, TheSampleIsSoundAndHoldsItsRecipes) {
  const test::ScratchFolder folder;
  const fs::path out = folder / "pdbt.vkt";
  test::BuildSampleTemplate(out);
  const TemplateReport report = CheckTemplate(out);
  EXPECT_TRUE(report.faults.empty()) << report.faults.front();
  ASSERT_EQ(report.tables.size(), 11U);
  EXPECT_TRUE(std::ranges::all_of(report.tables, [](const TemplateTable& table) { return table.rows > 0; }));
  EXPECT_FALSE(fs::exists(folder / "pdbt.vkt.new"));
  const auto file = Database::Open(out, OpenMode::ReadOnly);
  const auto value = [&](const std::string& field) {
    return file->Scalar("SELECT " + field + " FROM Metallics_MColors WHERE Color_Name = 'PANTONE 92001'");
  };
  EXPECT_EQ(value("Color_Set").Text(), "<PANTONE SILVER WILLOW><PANTONE DEEP TIDEWAY><PANTONE QUICK RIVER>");
  EXPECT_EQ(value("BQ2").Single(), 1.66F);
  EXPECT_TRUE(value("Recycle").Bool());
  EXPECT_EQ(file->Scalar("SELECT TemplateFile FROM Info_Table").Text(), "pdbt.vkt");
  EXPECT_NE(file->Scalar("SELECT Disclaimer FROM Info_Table").Text().find(".\nFor published colors"),
            std::string::npos);
}

TEST(Template, BothWaysToWriteARecipeAndBothCodePagesReadTheSame) {
  const TemplateTexts texts;
  TemplateTexts other;
  other.Write("FGuide_MColors_GP1601A",
              "bq0\tBC1\tBQ1\tBC0\tColor_Name\tPage\tNotes\r\n"
              "12.500\tpantone clear\t87.5\t pantone ember \tPantone 90001\t3\tfr\xE9mi\\t\\\\\r\n\r\n");
  ASSERT_TRUE(texts.Build());
  const auto built = other.Build();
  ASSERT_TRUE(built) << built.error().text;
  const auto a = Database::Open(texts.out, OpenMode::ReadOnly);
  const auto b = Database::Open(other.out, OpenMode::ReadOnly);
  for (const std::string field : {"Color_Name", "BC0", "BQ0", "BC1", "BQ1", "BC2", "Color_Set", "Page", "Inventory"}) {
    const std::string sql = "SELECT " + field + " FROM FGuide_MColors_GP1601A";
    EXPECT_EQ(a->Scalar(sql), b->Scalar(sql)) << field;
  }
  EXPECT_EQ(b->Scalar("SELECT Notes FROM FGuide_MColors_GP1601A").Text(), "fr\xC3\xA9mi\t\\");
}

TEST(Template, EveryBadLineIsToldAndTheOldTemplateStays) {
  struct Case {
    const char* row;
    const char* says;
  };
  const std::string tooMany = [] {
    std::string cell;
    for (int n = 0; n < 16; ++n) cell += "PANTONE EMBER=1;";
    return "PANTONE 90009\t" + cell + "\t1";
  }();
  for (const Case& c : std::vector<Case>{
           {"PANTONE 90009\tPANTONE EMBER=12.5; PANTONE CLEAR=87.4\t1", "the amounts total 99.900, not 100.000"},
           {"PANTONE 90009\tPANTONE EMBER=12.5; PANTONE CLAER=87.5\t1", "the guide has no Basic Color PANTONE CLAER"},
           {"PANTONE 90009\tEMBER=12.5; PANTONE CLEAR=87.5\t1", "the guide has no Basic Color EMBER"},
           {"PANTONE 90009\tPANTONE CLEAR=12.5; PANTONE CLEAR=87.5\t1", "the ingredient PANTONE CLEAR stands twice"},
           {"PANTONE 90009\tPANTONE CLEAR=100.0004\t1", "the amount 100.0004 of PANTONE CLEAR is not"},
           {"PANTONE 90009\tPANTONE EMBER=-1; PANTONE CLEAR=101\t1", "the amount -1 of PANTONE EMBER is not"},
           {"PANTONE 90009\tPANTONE EMBER\t1", "the ingredient \"PANTONE EMBER\" is not NAME=AMOUNT"},
           {"PANTONE 90009\tPANTONE EMBER=1,5\t1", "is not NAME=AMOUNT"},
           {"PANTONE 90009\t\t1", "the formula has no ingredients"},
           {tooMany.c_str(), "the formula has more than 15 ingredients"},
           {"90009\tPANTONE EMBER=100\t1", "the name 90009 does not begin with \"PANTONE \""},
           {"PANTONE <9>\tPANTONE EMBER=100\t1", "holds the character <"},
           {"PANTONE 90001\tPANTONE EMBER=100\t1", "stands already in FGuide_MColors_GP1601A.tsv:2"},
           {"PANTONE 90009\tPANTONE EMBER=100\t123456", "it has 6 characters, the limit is 5"},
           {"\tPANTONE EMBER=100\t1", "it may not be empty"},
           {"PANTONE 90009\tPANTONE EMBER=100", "has 2 cells, the heading has 3"},
           {"PANTONE 90009\tPANTONE EMBER=100\t\\x", "a backslash stands before something other"}}) {
    TemplateTexts texts;
    ASSERT_TRUE(texts.Build());
    const std::string before = ReadFileBytes(texts.out);
    texts.Formulas("PANTONE 90001\tPANTONE EMBER=100\t1\n" + std::string(c.row) + "\n");
    const auto built = texts.Build();
    ASSERT_FALSE(built) << c.row;
    EXPECT_EQ(built.error().text.find("No template was made: " + texts.folder.Path().string() + " has "), 0U);
    EXPECT_NE(built.error().text.find("\nFGuide_MColors_GP1601A.tsv:3: "), std::string::npos) << built.error().text;
    EXPECT_NE(built.error().text.find(c.says), std::string::npos) << built.error().text;
    EXPECT_NE(built.error().text.find(": " + std::string(c.row)), std::string::npos) << built.error().text;
    EXPECT_EQ(ReadFileBytes(texts.out), before);
  }
}

TEST(Template, ABadBasicIsToldOnceAndNotForEachFormulaThatUsesIt) {
  TemplateTexts texts;
  texts.Write("FGuide_BColors_GP1601A", "Color_Name\tRed\nPANTONE EMBER\t256\nPANTONE CLEAR\tred\n");
  texts.Formulas("PANTONE 90001\tPANTONE EMBER=50; PANTONE CLEAR=50\t1\nPANTONE 90002\tPANTONE CLEAR=99\t1\n");
  const auto built = texts.Build();
  ASSERT_FALSE(built);
  EXPECT_NE(built.error().text.find("has 3 faults."), std::string::npos) << built.error().text;
  EXPECT_NE(built.error().text.find("cannot hold \"256\": the range is 0 to 255"), std::string::npos);
  EXPECT_NE(built.error().text.find("Red: red is not a number"), std::string::npos);
  EXPECT_NE(built.error().text.find("FGuide_MColors_GP1601A.tsv:3: the amounts total 99.000"), std::string::npos);
}

TEST(Template, HeadingsAndMissingFilesAreTold) {
  struct Case {
    std::string table;
    std::string text;  // "-" removes the file
    std::string says;
  };
  for (const Case& c : std::vector<Case>{
           {"FGuide_MColors_GP1601A", "Color_Name\tIngredients\tColour\n",
            "a field Colour that the table does not have"},
           {"FGuide_MColors_GP1601A", "Color_Name\tIngredients\tColor_Set\n", "Color_Set, which is built"},
           {"FGuide_MColors_GP1601A", "Color_Name\tIngredients\tPage\tpage\n", "the heading names page twice"},
           {"FGuide_MColors_GP1601A", "Ingredients\n", "the heading lacks Color_Name"},
           {"FGuide_MColors_GP1601A", "Color_Name\tPage\n", "the heading needs either Ingredients or BC0 and BQ0"},
           {"FGuide_MColors_GP1601A", "", "FGuide_MColors_GP1601A.tsv: holds no heading"},
           {"FGuide_MColors_GP1601A", "-",
            "FGuide_MColors_GP1601A.tsv: is not there, though its guide's other file is"},
           {"Goe_BColors", "Color_Name\nPANTONE EMBER\n", "Goe_MColors.tsv: is not there"},
           {"Info_Table", "-", "Info_Table.tsv: is not there"},
           {"Info_Table", "FullName\nA\nB\n", "Info_Table: holds 2 rows, one is needed"},
           {"Info_Table", "FullName\n" + std::string(51, 'x') + "\n", "it has 51 characters, the limit is 50"}}) {
    TemplateTexts texts;
    if (c.text == "-") {
      fs::remove(texts.folder / (c.table + ".tsv"));
    } else {
      texts.Write(c.table, c.text);
    }
    const auto built = texts.Build();
    ASSERT_FALSE(built) << c.says;
    EXPECT_NE(built.error().text.find("has 1 fault.\n"), std::string::npos) << built.error().text;
    EXPECT_NE(built.error().text.find(c.says), std::string::npos) << built.error().text;
    EXPECT_FALSE(fs::exists(texts.out));
  }
  const TemplateTexts texts;
  EXPECT_THROW(static_cast<void>(BuildTemplate(texts.folder / "gone", texts.out)), Failure);
  EXPECT_THROW(static_cast<void>(BuildTemplate(texts.folder.Path(), texts.folder / "gone" / "pdbt.vkt")), Failure);
}

TEST(Template, TheCheckFindsWhatIsWrongWithAFinishedOne) {
  struct Case {
    const char* sql;
    const char* says;
  };
  for (const Case& c : std::vector<Case>{
           {"DROP TABLE Goe_MColors", "Goe_MColors: the table is missing"},
           {"ALTER TABLE Goe_BColors DROP COLUMN Page", "Goe_BColors: the field Page is missing"},
           {"UPDATE FGuide_MColors_GP1601A SET BQ0 = 12.0",
            "row 1: the amounts total 99.500, not 100.000: PANTONE 90001"},
           {"UPDATE FGuide_MColors_GP1601A SET BC0 = ''", "BQ0 holds an amount and BC0 no ingredient"},
           {"UPDATE FGuide_MColors_GP1601A SET BC1 = 'PANTONE NEW'", "the guide has no Basic Color PANTONE NEW"},
           {"UPDATE FGuide_MColors_GP1601A SET BC2 = BC1, BQ2 = BQ1, BC1 = '', BQ1 = 0.0",
            "BC2 holds an ingredient behind"},
           {"UPDATE FGuide_MColors_GP1601A SET Color_Name = '90001'", "does not begin with \"PANTONE \""},
           {"UPDATE FGuide_MColors_GP1601A SET Color_Name = 'Pantone Sky'", "is not trimmed and in capitals"},
           {"UPDATE FGuide_MColors_GP1601A SET Color_Name = NULL", "Color_Name is empty"},
           {"UPDATE FGuide_MColors_GP1601A SET Red = 300", "the range is 0 to 255"},
           {"INSERT INTO FGuide_BColors_GP1601A (Color_Name, IngSort) SELECT Color_Name, IngSort FROM "
            "FGuide_BColors_GP1601A "
            "WHERE IngSort = 1",
            "row 3: the name PANTONE CLEAR stands already in FGuide_BColors_GP1601A, row 2"},
           {"DELETE FROM FGuide_MColors_GP1601A", "no guide holds a formula"},
           {"DELETE FROM Info_Table", "Info_Table: holds 0 rows, one is needed"},
           {"UPDATE Info_Table SET TemplateFile = ' '", "TemplateFile is empty"}}) {
    const TemplateTexts texts;
    ASSERT_TRUE(texts.Build());
    EXPECT_TRUE(CheckTemplate(texts.out).faults.empty());
    Change(texts.out, c.sql);
    const TemplateReport report = CheckTemplate(texts.out);
    ASSERT_FALSE(report.faults.empty()) << c.sql;
    EXPECT_NE(report.faults.front().find(c.says), std::string::npos) << report.faults.front();
  }
  const TemplateTexts texts;
  ReplaceFile(texts.out, "no template at all");
  EXPECT_THROW(CheckTemplate(texts.out), Failure);
  EXPECT_THROW(CheckTemplate(texts.folder / "gone.vkt"), Failure);
}

}  // namespace
}  // namespace vellumark
