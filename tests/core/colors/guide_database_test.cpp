#include "core/colors/guide_database.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "core/colors/guide_formulas.h"
#include "core/colors/guides.h"
#include "core/colors/other_databases.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "support/ink_room.h"
#include "support/template_room.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;

struct GuideRoom : test::InkRoom {
  GuideRoom() {
    session.ProgramFolder = folder / "Program";
    fs::create_directories(session.ProgramFolder);
    // Two guides that share a Basic Color and a formula, each with its own idea of them.
    texts.Write("FGuide_BColors_GP1601A",
                "Color_Name\tRed\tPurchaseCost\tVOC\nPANTONE EMBER\t250\t10\t0.5\nPANTONE CLEAR\t251\t2\t0.1\n");
    texts.Write("Metallics_BColors", "Color_Name\tRed\nPANTONE SILVER\t160\nPANTONE CLEAR\t99\nPANTONE COPPER\t150\n");
    texts.Write("Metallics_MColors",
                "Color_Name\tIngredients\tColor_Guide\tPage\tRow\n"
                "PANTONE 90001\tPANTONE SILVER=100\tMETALS\t8\t1\n"
                "PANTONE 92001\tPANTONE SILVER=33.334; PANTONE CLEAR=66.666\tMETALS\t8\t2\n");
  }
  void Install() {
    const auto built = BuildTemplate(texts.folder.Path(), session.ProgramFolder / kTemplateFileName);
    ASSERT_TRUE(built) << built.error().text;
  }
  Value Mix(const std::string& field, const std::string& name) {
    return Scalar(fmt::format("SELECT {} FROM \"NEW ONE_Mix\" WHERE Color_Name = ?1", field), {name});
  }
  bool Untouched() {
    return !session.File().TableExists("NEW ONE_Basic") && ReadFileInfo(session.File()).dbList.size() == 1 &&
           session.databaseList.size() == 1;
  }
  test::TemplateTexts texts;
};

TEST(GuideDatabase, GuidesAreCopiedInListOrderAndAStandingNameIsSkipped) {
  GuideRoom room;
  room.Install();
  std::vector<Change> told;
  std::size_t listedWhenTold = 0;
  const auto subscription = room.session.changes.Subscribe([&](const std::vector<Change>& changes) {
    told.insert(told.end(), changes.begin(), changes.end());
    listedWhenTold = room.session.databaseList.size();
  });
  const auto made = CreateGuideDatabase(room.session, "new one", {"METALLICS", "f_guide_a", "Metallics"});
  ASSERT_TRUE(made) << made.error().text;
  EXPECT_EQ(*made, "NEW ONE");
  EXPECT_EQ(ReadFileInfo(room.session.File()).dbList, (std::vector<std::string>{"INK", "NEW ONE"}));
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(listedWhenTold, 2U);
  EXPECT_EQ(room.session.CurrentDatabase, "INK");

  std::vector<std::string> basics;
  Statement row =
      room.session.File().Prepare("SELECT Color_Name, Red, IngSort FROM \"NEW ONE_Basic\" ORDER BY IngSort");
  while (row.Step()) basics.push_back(fmt::format("{} {} {}", row.Text(0), row.Whole(1), row.Whole(2)));
  EXPECT_EQ(basics, (std::vector<std::string>{"PANTONE EMBER 250 0", "PANTONE CLEAR 251 1", "PANTONE SILVER 160 2",
                                              "PANTONE COPPER 150 3"}));
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM \"NEW ONE_Mix\"").Whole(), 2);
  EXPECT_EQ(room.Mix("Color_Set", "PANTONE 90001").Text(), "<PANTONE EMBER><PANTONE CLEAR>");
  EXPECT_EQ(room.Mix("BasicCost", "PANTONE 90001").Single(), 3.0F);  // 12.5 of 10.00 and 87.5 of 2.00
  EXPECT_EQ(room.Mix("BasicVOC", "PANTONE 90001").Single(), 0.15F);
  EXPECT_EQ(room.Mix("BQ1", "PANTONE 92001").Single(), 66.666F);
  EXPECT_EQ(room.Mix("BasicCost", "PANTONE 92001").Single(), 1.33F);
  EXPECT_EQ(room.Mix("Page", "PANTONE 92001").Text(), "8");
  EXPECT_EQ(room.Mix("Date_Entered", "PANTONE 92001").Text(), "2026-03-10 00:00:00");
  EXPECT_EQ(room.Mix("LastModified", "PANTONE 92001"), room.Mix("Date_Entered", "PANTONE 92001"));
  const DatabaseInfo info = ReadDatabaseInfo(room.session.File(), "NEW ONE");
  EXPECT_EQ(info.fullName, "Test Guides");
  EXPECT_EQ(info.disclaimer, "Invented.\nAll of it.");
  EXPECT_EQ(info.templateFile, "pdbt.vkt");
}

TEST(GuideDatabase, WhatWasMadeIsWhatTheGuidePublished) {
  GuideRoom room;
  test::BuildSampleTemplate(room.session.ProgramFolder / kTemplateFileName);
  const auto held = GuidesInTemplate(room.session);
  EXPECT_EQ(held.size(), kGuides.size());
  ASSERT_TRUE(CreateGuideDatabase(room.session, "NEW ONE", {"F_Guide_A", "Metallics", "Pastels_Neons", "Goe"}));
  room.session.CurrentDatabase = "NEW ONE";
  room.session.TemplateFile = "pdbt.vkt";
  room.session.templateDB = Database::Open(TemplatePath(room.session), OpenMode::ReadOnly);
  std::vector<std::string> names;
  {
    Statement row = room.session.File().Prepare("SELECT Color_Name FROM \"NEW ONE_Mix\"");
    while (row.Step()) names.push_back(row.Text(0));
  }
  EXPECT_EQ(names.size(), 336U);
  for (const std::string& name : names) {
    EXPECT_FALSE(IsFormulaModified(room.session, name)) << name;
    EXPECT_TRUE(CanRevertToGuide(room.session, name)) << name;
  }
  EXPECT_TRUE(IsPantoneBookMix(room.session, "90001"));
  EXPECT_FALSE(IsPantoneBookMix(room.session, "90999"));
}

TEST(GuideDatabase, RefusalsMakeNothing) {
  GuideRoom room;
  EXPECT_EQ(CreateGuideDatabase(room.session, "NEW ONE", {"F_Guide_A"}).error().title, "New Database");
  room.Install();
  struct Case {
    const char* name;
    std::vector<std::string> guides;
    Refusal refusal;
  };
  const std::string file = room.session.DataFileName;
  for (const Case& c : std::vector<Case>{
           {" ", {}, {"New Database - Database Name?", "Please enter a name for the new database.", "txtDBName"}},
           {"ink",
            {"F_Guide_A"},
            {"Database Already Exists",
             "The INK Database already exists in the " + file +
                 " Data File. Please select another name for your Database.",
             "txtDBName"}},
           {"NEW ONE", {}, {"No Content Choosen", "Please select Pantone Guides for your database", "lstPantoneData"}},
           {"NEW ONE",
            {"F_Guide_B", "Goe", "F_Guide_A"},
            {"Pantone Formula Guide Selection",
             "Cannot create a new Database with both Pantone Formula Guide selections.\nEach guide uses different "
             "formulas, only one can be selected for content.\nGP1601A - Published prior to December of 2022.\nGP1601B "
             "- Published in December of 2022.\nOver 200 new colors added to the guide.\nColors are created with new "
             "formulas and basic colors.",
             "lstPantoneData"}},
           {"NEW ONE", {"F_Guide_C"}, {"New Database", "There is no guide named F_Guide_C.", "lstPantoneData"}},
           {"NEW ONE",
            {"Goe"},
            {"New Database",
             "The template " + TemplatePath(room.session).string() + " does not hold the guide Goe (Goe).",
             "lstPantoneData"}}}) {
    const auto made = CreateGuideDatabase(room.session, c.name, c.guides);
    ASSERT_FALSE(made) << c.refusal.title;
    EXPECT_EQ(made.error(), c.refusal);
    EXPECT_TRUE(room.Untouched());
  }
  room.session.ArchiveView = true;
  EXPECT_EQ(CreateGuideDatabase(room.session, "NEW ONE", {"F_Guide_A"}).error().title, "Archive or Backup Data File");
}

TEST(GuideDatabase, ACarelessTemplateGivesAllOrNothing) {
  GuideRoom room;
  room.Install();
  const fs::path path = TemplatePath(room.session);
  // The last row of the last table: everything before it was written already.
  Database::Open(path, OpenMode::Exclusive)
      ->Execute("UPDATE Metallics_MColors SET Row = 300 WHERE Color_Name = 'PANTONE 92001'");
  EXPECT_THROW(static_cast<void>(CreateGuideDatabase(room.session, "NEW ONE", {"F_Guide_A", "Metallics"})), BadValue);
  EXPECT_TRUE(room.Untouched());
  // An ingredient that the guide lacks comes as a Basic Color without figures, at the end of the weighing order.
  Database::Open(path, OpenMode::Exclusive)
      ->Execute("UPDATE Metallics_MColors SET Row = 3, BC0 = 'PANTONE TIN' WHERE Color_Name = 'PANTONE 92001'");
  ASSERT_TRUE(CreateGuideDatabase(room.session, "NEW ONE", {"Metallics"}));
  EXPECT_EQ(room.Scalar("SELECT IngSort FROM \"NEW ONE_Basic\" WHERE Color_Name = 'PANTONE TIN'").Whole(), 3);
}

TEST(GuideDatabase, TheSitesTemplateGoesBeforeTheOneThatCameAlong) {
  GuideRoom room;
  room.session.ShippedFolder = room.folder / "share";
  EXPECT_TRUE(TemplatePath(room.session).empty());
  EXPECT_TRUE(GuidesInTemplate(room.session).empty());
  fs::create_directories(room.session.ShippedFolder);
  test::BuildSampleTemplate(room.session.ShippedFolder / kTemplateFileName);
  EXPECT_EQ(TemplatePath(room.session), room.session.ShippedFolder / "pdbt.vkt");
  room.Install();
  EXPECT_EQ(TemplatePath(room.session), room.session.ProgramFolder / "pdbt.vkt");
  ASSERT_EQ(GuidesInTemplate(room.session).size(), 2U);
  EXPECT_EQ(GuidesInTemplate(room.session)[1]->code, "Metallics");
}

TEST(OtherDatabases, AreThoseThatHoldTheNameAsThatKind) {
  GuideRoom room;
  room.Breaks("Ingredients");
  room.Install();
  ASSERT_TRUE(CreateGuideDatabase(room.session, "FIRST", {"F_Guide_A"}));
  ASSERT_TRUE(CreateGuideDatabase(room.session, "SECOND", {"Metallics"}));
  room.InkRoom::Mix("PANTONE 90001", {{"X", 100.0F}});
  const auto hits = [&](const char* name, ColorKind kind) { return FindInOtherDatabases(room.session, name, kind); };
  EXPECT_EQ(hits("pantone 90001", ColorKind::Mix), (std::vector<std::string>{"FIRST", "SECOND"}));
  EXPECT_EQ(hits("PANTONE 92001", ColorKind::Mix), (std::vector<std::string>{"SECOND"}));
  EXPECT_EQ(hits("PANTONE EMBER", ColorKind::Basic), (std::vector<std::string>{"FIRST"}));
  EXPECT_TRUE(hits("PANTONE EMBER", ColorKind::Mix).empty());
  EXPECT_EQ(DisplayMsg(room.session, "PANTONE 92001", ColorKind::Mix),
            "The Master Formula PANTONE 92001 was not found in the INK database, but it was found in the following "
            "database(s).");
}

}  // namespace
}  // namespace vellumark
