#include "core/exchange/formula_merge.h"

#include <gtest/gtest.h>

#include "core/base/files.h"
#include "core/base/units.h"
#include "core/colors/formulas.h"
#include "core/colors/guide_database.h"
#include "core/datafile/database_changes.h"
#include "core/datafile/databases.h"
#include "merge_room.h"
#include "support/guide_room.h"
#include "support/old_files.h"

namespace vellumark {
namespace {

using test::OtherShop;
using test::PlanOf;

std::string ModsOf(const MergePlan& plan) {
  std::string text;
  for (std::size_t n = 0; n < plan.choices.size(); ++n) {
    text += plan.table.formulas[n].name + " " + std::string(MergeModText(plan.choices[n].mod));
    if (!plan.choices[n].why.empty()) text += " (" + plan.choices[n].why + ")";
    text += "\n";
  }
  return text;
}

TEST(FormulaMerge, ShowsWhatIsNewWhatDiffersAndByHowMuchBeforeItWrites) {
  test::InkRoom room;
  for (const char* name : {"RED", "BLUE", "WHITE", "SKY"}) room.Basic(name);
  room.Mix("PINK", {{"RED", 40}, {"WHITE", 60}});
  room.Mix("PLUM", {{"RED", 50}, {"BLUE", 50}});
  const std::string before = test::Snapshot(room.session.File());
  const MergePlan plan = PlanOf(room.session, test::TableOfRecipes({{"PLUM", {{"RED", 1}, {"BLUE", 1}}},
                                                                    {"PINK", {{"RED", 41.25}, {"SILVER", 58.75}}},
                                                                    {"SKY", {{"BLUE", 5}, {"WHITE", 95}}}}));
  EXPECT_EQ(ModsOf(plan), "PLUM Same\nPINK Different\nSKY New (a Basic Color has this name too)\n");
  EXPECT_EQ(ChangesText(room.session, plan, 1), "RED +1.250, SILVER added, WHITE gone");
  ASSERT_EQ(plan.basics.size(), 1U);
  EXPECT_EQ(plan.basics[0].name, "SILVER");
  EXPECT_EQ(plan.Taken(), 1U);
  EXPECT_EQ(test::Snapshot(room.session.File()), before);
}

TEST(FormulaMerge, OnlyWhatIsChosenComesIn) {
  struct Case {
    TakeWhat what;
    std::vector<std::string> names;
    std::size_t added;
    std::size_t changed;
  };
  for (const Case& c : {Case{TakeWhat::New, {}, 2, 0}, Case{TakeWhat::Changed, {}, 0, 1}, Case{TakeWhat::All, {}, 2, 1},
                        Case{TakeWhat::All, {"a", "PINK"}, 1, 1}, Case{TakeWhat::None, {}, 0, 0}}) {
    test::InkRoom room;
    room.Basic("RED");
    room.Basic("WHITE");
    room.Mix("PINK", {{"RED", 40}, {"WHITE", 60}});
    MergePlan plan = PlanOf(room.session, test::TableOfRecipes({{"PINK", {{"RED", 100}}},
                                                                {"A", {{"RED", 1}, {"X", 1}}},
                                                                {"B", {{"RED", 1}, {"Y", 1}}}}));
    ASSERT_TRUE(Choose(plan, c.what, c.names));
    const auto report = RunMerge(room.session, plan);
    EXPECT_EQ(report->added.size(), c.added);
    EXPECT_EQ(report->changed.size(), c.changed);
    EXPECT_EQ(report->basics.size(), c.added);  // each of the new ones needs one
    EXPECT_EQ(report->import == 0, c.added + c.changed == 0);
  }
  test::InkRoom room;
  MergePlan plan = PlanOf(room.session, test::TableOfRecipes({{"A", {{"RED", 1}}}}));
  EXPECT_EQ(Choose(plan, TakeWhat::All, {"A", "gone"}).error().text,
            "The Master Formula GONE was not found in in.mfe.");
}

TEST(FormulaMerge, IngredientsThatAreFormulasAreMultipliedOutWhenAskedAndCirclesRefused) {
  test::InkRoom room;
  for (const char* name : {"RED", "BLUE"}) room.Basic(name);
  room.Mix("PLUM", {{"RED", 25}, {"BLUE", 75}});
  std::vector<std::pair<std::string, Recipe>> wide{{"DARK", {{"PLUM", 40}, {"RED", 60}}},  // PLUM is here
                                                   {"NIGHT", {{"DARK", 50}, {"BLACK", 50}}},
                                                   {"BLACK", {{"BLACK", 100}}},  // its own Basic Color
                                                   {"A", {{"B", 50}, {"RED", 50}}},
                                                   {"B", {{"C", 100}}},
                                                   {"C", {{"A", 10}, {"BLUE", 90}}},
                                                   {"D", {{"A", 50}, {"BLUE", 50}}}};
  Recipe eight;
  for (int n = 0; n < 8; ++n) eight.push_back({"I" + std::to_string(n), 12.5});
  Recipe other = eight;
  for (Ingredient& line : other) line.name += "X";
  wide.push_back({"EIGHT", eight});
  wide.push_back({"FIFTEEN", {{"EIGHT", 50}}});
  for (int n = 0; n < 7; ++n) wide.back().second.push_back({other[static_cast<std::size_t>(n)].name, 50.0 / 7});
  wide.push_back({"SIXTEEN", {{"EIGHT", 50}}});
  for (const Ingredient& line : other) wide.back().second.push_back(line);

  const MergePlan plain = PlanOf(room.session, test::TableOfRecipes(wide));
  EXPECT_TRUE(plain.HasFormulasAsIngredients());
  EXPECT_EQ(plain.table.formulas[0].recipe, (Recipe{{"PLUM", 40}, {"RED", 60}}));
  EXPECT_EQ(plain.Count(MergeMod::Refused), 3U);

  const MergePlan out = PlanOf(room.session, test::TableOfRecipes(wide), {.multiplyOut = true});
  EXPECT_EQ(ModsOf(out),
            "DARK New\nNIGHT New\nBLACK New\n"
            "A Refused (the formula A names itself through B, C)\n"
            "B Refused (the formula B names itself through C, A)\n"
            "C Refused (the formula C names itself through A, B)\n"
            "D Refused (its ingredient A cannot be multiplied out)\n"
            "EIGHT New\nFIFTEEN New\n"
            "SIXTEEN Refused (the formula has 16 ingredients when it is multiplied out, the limit is 15)\n");
  EXPECT_EQ(out.table.formulas[0].recipe, (Recipe{{"RED", 70}, {"BLUE", 30}}));
  EXPECT_EQ(out.table.formulas[1].recipe, (Recipe{{"RED", 35}, {"BLUE", 15}, {"BLACK", 50}}));
  EXPECT_EQ(out.table.formulas[8].recipe.size(), 15U);
}

TEST(FormulaMerge, AdditiveSetsAreReusedOrGetAnotherNameAndTheirFormulasFollow) {
  OtherShop shop;
  for (const char* name : {"WAX", "DRIER", "RED"}) shop.Basic(name);
  AddSet(shop, "SLOW", {{"WAX", 5}});
  AddSet(shop, "FAST", {{"DRIER", 2}});
  AddSet(shop, "A SET OF THIRTY LETTERS IN ALL", {{"WAX", 3}});
  AddSet(shop, "THINNER", {{"RED", 1}});
  shop.Mix("M1", {{"RED", 95}, {"WAX", 5}}, {{"AddSetName", "SLOW"}});
  shop.Mix("M2", {{"RED", 98}, {"DRIER", 2}}, {{"AddSetName", "FAST"}});
  shop.Mix("M3", {{"DRIER", 97}, {"WAX", 3}}, {{"AddSetName", "A SET OF THIRTY LETTERS IN ALL"}});
  shop.Mix("M4", {{"DRIER", 99}, {"RED", 1}}, {{"AddSetName", "THINNER"}});
  test::InkRoom room;
  for (const char* name : {"WAX", "DRIER"}) room.Basic(name);
  AddSet(room, "SLOW", {{"WAX", 4}});
  AddSet(room, "SLOW DUP", {{"DRIER", 4}});
  AddSet(room, "FAST", {{"DRIER", 2}});
  AddSet(room, "A SET OF THIRTY LETTERS IN ALL", {{"WAX", 2}});
  room.Basic("RED");  // no Additive here
  room.prompt.Expect("Inventory Unit", Answer::Yes);
  FormulaTable table = shop.Read(room.session);
  table.hasFigures = true;
  const auto report = ImportTable(room.session, std::move(table));
  ASSERT_TRUE(report) << report.error().text;
  EXPECT_EQ(report->sets, (std::vector<std::string>{
                              "A SET OF THIRTY LETTERS IN ALL as A SET OF THIRTY LETTERS IN DUP", "SLOW as SLOW DUP 2"}));
  const auto setOf = [&](const char* name) { return ReadMix(room.session, name)->AddSetName; };
  EXPECT_EQ(setOf("M1") + "|" + setOf("M2") + "|" + setOf("M3") + "|" + setOf("M4"),
            "SLOW DUP 2|FAST|A SET OF THIRTY LETTERS IN DUP|");
  EXPECT_EQ(ReadAdditiveSet(room.session, "SLOW")->Rows(), (Recipe{{"WAX", 4}}));
  EXPECT_EQ(ReadAdditiveSet(room.session, "SLOW DUP 2")->Rows(), (Recipe{{"WAX", 5}}));
  ASSERT_EQ(report->notes.size(), 1U);
  EXPECT_EQ(report->notes[0],
            "The Additive Set THINNER was left out: RED is a Basic Color here and no Additive. Its formulas come "
            "without a set.");
  // Once more: nothing of it comes twice.
  const MergePlan again = PlanOf(room.session, shop.Read(room.session));
  EXPECT_EQ(again.Count(MergeMod::Same), 4U) << ModsOf(again);
  EXPECT_TRUE(std::ranges::none_of(again.sets, [](const MergeSet& set) { return !set.isHere && !set.here.empty(); }));
}

TEST(FormulaMerge, AFormulaKeepsItsSetWhereTheFileKnowsOfNone) {
  test::InkRoom room;
  for (const char* name : {"WAX", "RED", "BLUE"}) room.Basic(name);
  AddSet(room, "SLOW", {{"WAX", 5}});
  room.Mix("A", {{"RED", 95}, {"WAX", 5}}, {{"AddSetName", "SLOW"}});
  room.Mix("B", {{"RED", 95}, {"WAX", 5}}, {{"AddSetName", "SLOW"}});
  ASSERT_TRUE(ImportTable(room.session,
                          test::TableOfRecipes({{"A", {{"RED", 45}, {"BLUE", 50}, {"WAX", 5}}}, {"B", {{"RED", 94}, {"WAX", 6}}}}),
                          {.take = TakeWhat::All}));
  EXPECT_EQ(ReadMix(room.session, "A")->AddSetName, "SLOW");
  EXPECT_EQ(ReadMix(room.session, "B")->AddSetName, "");
}

TEST(FormulaMerge, FiguresComePerUnitOfThisProgramAndStockOnlyWhenAsked) {
  OtherShop shop;
  shop.Basic("RED", {{"PurchaseCost", 10.0F}, {"VOC", 2.0F}, {"HAP", 0.5F}, {"Inventory", 7.0F}, {"Notes", "dear"}, {"Color_Code", "R1"}});
  shop.Basic("KNOWN", {{"PurchaseCost", 99.0F}, {"Inventory", 3.0F}});
  shop.Basic("WAX", {{"Additive", true}});
  shop.Mix("PINK", {{"RED", 50}, {"KNOWN", 50}}, {{"Inventory", 4.0F}, {"Reorder", 2.0F}, {"Recycle", false}, {"Notes", "n"}, {"PurchaseCost", 20.0F}});
  for (const bool stock : {false, true}) {
    test::InkRoom room;  // in pounds
    room.Basic("KNOWN", {{"PurchaseCost", 4.0F}, {"Inventory", 1.0F}});
    const auto report = ImportTable(room.session, shop.Read(room.session),
                                    {.options = {.sourceUnit = UnitKilogram, .stock = stock}});
    ASSERT_TRUE(report) << report.error().text;
    const BasicColor red = *ReadBasic(room.session, "RED");
    // 10 per kg are 4.5359237 per lb.; 7 kg are 15.432 lb.
    EXPECT_EQ(red.PurchaseCost, 4.54F);
    EXPECT_EQ(red.VOC, 0.907F);
    EXPECT_EQ(red.HAP, 0.227F);
    EXPECT_EQ(red.Notes + red.Color_Code, "dearR1");
    EXPECT_EQ(red.Inventory, stock ? 15.432F : 0);
    EXPECT_TRUE(ReadBasic(room.session, "WAX")->Additive);
    EXPECT_EQ(ReadBasic(room.session, "KNOWN")->PurchaseCost, 4.0F);
    EXPECT_EQ(ReadBasic(room.session, "KNOWN")->Inventory, 1.0F);
    const MixColor pink = *ReadMix(room.session, "PINK");
    EXPECT_EQ(pink.BasicCost, 4.27F);  // of 4.54 and of the 4 that KNOWN costs here
    EXPECT_EQ(pink.PurchaseCost, 9.07F);
    EXPECT_EQ(pink.Inventory, stock ? 8.818F : 0);
    EXPECT_EQ(pink.Reorder, 4.409F);
    EXPECT_FALSE(pink.Recycle);
  }
}

TEST(FormulaMerge, FiguresOfTheSameUnitAreRoundedAsTypedOnes) {
  OtherShop shop;
  shop.Basic("RED", {{"PurchaseCost", 2.675F}, {"VOC", 0.4567F}, {"HAP", 0.0005F}, {"Reorder", 1.23456F}});
  shop.Mix("PINK", {{"RED", 100}});
  test::InkRoom room;
  ASSERT_TRUE(ImportTable(room.session, shop.Read(room.session), {.options = {.sourceUnit = UnitPound}}));
  const BasicColor red = *ReadBasic(room.session, "RED");
  EXPECT_EQ(fmt::format("{} {} {} {}", red.PurchaseCost, red.VOC, red.HAP, red.Reorder), "2.68 0.457 0.001 1.235");
}

TEST(FormulaMerge, PricesComeInByThoseWhoMayChangeThem) {
  OtherShop shop;
  shop.Basic("RED", {{"PurchaseCost", 10.0F}, {"VOC", 2.0F}});
  shop.Mix("PINK", {{"RED", 100}});
  test::InkRoom room;
  room.session.CurrentUser = "MATE";
  room.session.IsAdminUser = false;
  room.session.Perm_Costs = 1;
  const auto report =
      ImportTable(room.session, shop.Read(room.session), {.options = {.sourceUnit = UnitPound}});
  ASSERT_TRUE(report) << report.error().text;
  EXPECT_EQ(ReadBasic(room.session, "RED")->PurchaseCost, 0);
  EXPECT_EQ(ReadBasic(room.session, "RED")->VOC, 2.0F);
  EXPECT_EQ(report->notes, (std::vector<std::string>{"Costs were left out: you do not have the permission to change them."}));
}

TEST(FormulaSources, ADataFileIsReadAndStaysAsItIs) {
  OtherShop shop;
  shop.Basic("RED");
  shop.Mix("PINK", {{"RED", 100}});
  shop.session.DataFileDB.reset();
  test::InkRoom room;
  const std::filesystem::path path = shop.session.DataFileName;
  const std::string bytes = ReadFileBytes(path);
  const auto modified = std::filesystem::last_write_time(path);
  EXPECT_EQ(DatabasesOfFile(room.session, path), (std::vector<std::string>{"INK"}));
  ASSERT_TRUE(ReadDataFileFormulas(room.session, path, "INK"));
  EXPECT_EQ(ReadDataFileFormulas(room.session, path, "NONE").error().title, "Database Not Found");
  EXPECT_TRUE(ReadFileBytes(path) == bytes);
  EXPECT_EQ(std::filesystem::last_write_time(path), modified);

  // What another account shares is a Data File without its jobs, users, Batches and what the system keeps for itself.
  const auto share = room.folder / "share.vkd";
  std::filesystem::copy_file(path, share);
  {
    const auto file = Database::Open(share, OpenMode::Exclusive);
    Transaction transaction(*file);
    for (const std::string& table : file->TableNames())
      if (table == "JobRecords" || table == "Users" || table == "Dispenser" || table.starts_with("MSys") ||
          table.ends_with("_Batch") || table.ends_with("_Batch_LotInv"))
        file->DropTable(table);
    transaction.Commit();
  }
  const std::string shared = ReadFileBytes(share);
  EXPECT_EQ(DatabasesOfFile(room.session, share), (std::vector<std::string>{"INK"}));
  const auto theirs = ReadDataFileFormulas(room.session, share, "INK");
  ASSERT_TRUE(theirs) << theirs.error().text;
  EXPECT_EQ(ImportTable(room.session, *theirs)->added, (std::vector<std::string>{"PINK"}));
  EXPECT_TRUE(ReadFileBytes(share) == shared);

  EXPECT_THROW(static_cast<void>(DatabasesOfFile(room.session, room.folder / "gone.vkd")), Failure);
  ReplaceFile(room.folder / "foreign.vkd", "no Data File at all");
  EXPECT_THROW(static_cast<void>(DatabasesOfFile(room.session, room.folder / "foreign.vkd")), Failure);
  ReplaceFile(room.folder / "cut.vkd", bytes.substr(0, bytes.size() / 2));
  EXPECT_THROW(static_cast<void>(ReadDataFileFormulas(room.session, room.folder / "cut.vkd", "INK")), Failure);
  {
    const auto inUse = Database::Open(path, OpenMode::Exclusive);
    try {
      static_cast<void>(DatabasesOfFile(room.session, path));
      ADD_FAILURE() << "a file in use was read";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.cause, "Couldn't open database. (is in use by another process)");
    }
    inUse->Execute("UPDATE FileInfo SET FileVersion = 39");
  }
  // A Jet file is a source like any other, and as old a one is refused in the same words.
  const auto jet = room.folder / "jet.vkd";
  test::WriteOldJetFile(jet, test::OldTables(test::MakeOldRoom(3), 40, 0));
  const std::string jetBytes = ReadFileBytes(jet);
  EXPECT_EQ(*DatabasesOfFile(room.session, jet), (std::vector<std::string>{"INK", "SPOT"}));
  const auto formulas = ReadDataFileFormulas(room.session, jet, "spot");
  ASSERT_TRUE(formulas);
  ASSERT_EQ(formulas->formulas.size(), 2U);
  EXPECT_EQ(formulas->formulas[0].name, "PINK");
  EXPECT_EQ(ReadFileBytes(jet), jetBytes);
  test::WriteOldJetFile(jet, test::OldTables(test::MakeOldRoom(3), 39, 0));
  EXPECT_EQ(ReadDataFileFormulas(room.session, jet, "INK").error().title, "Incompatable File Version");
  std::filesystem::remove(jet);
  const auto older = ReadDataFileFormulas(room.session, path, "INK");
  EXPECT_EQ(older.error().title, "Incompatable File Version");
  EXPECT_EQ(older.error().text,
            "The selected Data File is an older version.\n"
            "It must be upgraded before it can be used as an import selection.\n"
            "Use Advanced Functions -> Data File Functions -> Open Data File\n"
            "to update the data file to current standards.");
  Database::Open(path, OpenMode::Exclusive)->Execute("UPDATE FileInfo SET FileVersion = 40");
}

TEST(FormulaSources, AnotherDatabaseOfTheSameFile) {
  test::InkRoom room;
  CreateEmptyDatabase(room.session.File(), "HOUSE");
  room.session.databaseList.emplace_back("HOUSE");
  room.Basic("RED", {{"PurchaseCost", 3.0F}});
  room.Mix("PINK", {{"RED", 100}});
  EXPECT_EQ(ReadDatabaseFormulas(room.session, "house").error(),
            (Refusal{"Empty Database", "Selected Database doesn't contain formulas", ""}));
  EXPECT_EQ(ReadDatabaseFormulas(room.session, " ").error().text, "Please select a database to copy formulas from");
  // The open file by its path is the same.
  auto table = ReadDataFileFormulas(room.session, room.session.DataFileName, "INK");
  ASSERT_TRUE(table);
  EXPECT_EQ(PlanMerge(room.session, *table, {}).error(),
            (Refusal{"Database Copy Error", "Import destination cannot be the same as the source", "cmbDBList"}));
  ASSERT_TRUE(ImportTable(room.session, *table, {.target = {.database = "house"}}));
  EXPECT_EQ(ReadBasic(room.session, "RED", "HOUSE")->PurchaseCost, 3.0F);
  EXPECT_EQ(ReadMix(room.session, "PINK", "HOUSE")->BasicCost, 3.0F);
}

TEST(FormulaSources, GuidesComeInAsTheyStand) {
  test::GuideRoom room;
  CreateEmptyDatabase(room.session.File(), "HOUSE");
  room.session.databaseList.emplace_back("HOUSE");
  room.session.templateDB->CreateTable("Goe_BColors", schema::Basic);
  room.session.templateDB->CreateTable("Info_Table", schema::Info);
  InsertRow(*room.session.templateDB, schema::Info, "Info_Table", {{"FullName", "Guides"}, {"TemplateFile", "pdbt.vkt"}});
  room.session.templateDB.reset();
  EXPECT_EQ(ReadGuideFormulas(room.session, {}).error(),
            (Refusal{"No Content Choosen", "Please select Pantone Guides to use in your database", "lstPantoneData"}));
  EXPECT_EQ(ReadGuideFormulas(room.session, {"F_Guide_A", "F_Guide_B"}).error().title,
            "Pantone Formula Guide Selection");
  for (const bool make : {false, true}) {
    const auto guide = ReadGuideFormulas(room.session, {"goe"});
    ASSERT_TRUE(guide) << guide.error().text;
    const std::string database = make ? "GOE ROOM" : "HOUSE";
    ASSERT_TRUE(ImportTable(room.session, *guide, {.target = {database, make, make}}));
    const MixColor mix = *ReadMix(room.session, "PANTONE 185", database);
    EXPECT_EQ(mix.Ingredients(), (Recipe{{"PANTONE RUBINE", 60}, {"PANTONE SILVER", 40}}));
    EXPECT_EQ(mix.book.Page + " " + mix.book.Color_Guide, "12 Goe_MColors");
    // A room of one's own stays one.
    EXPECT_EQ(ReadDatabaseInfo(room.session.File(), database).templateFile, make ? "pdbt.vkt" : "");
  }
}

TEST(ImportUndo, TakesBackAllOfItWhileNothingElseChangedIt) {
  test::InkRoom room;
  for (const char* name : {"RED", "WAX"}) room.Basic(name, {{"PurchaseCost", 2.0F}});
  room.Mix("PINK", {{"RED", 100}}, {{"LastModified", "2020-01-01 00:00:00"}, {"AddSetName", ""}});
  const std::string before = test::Snapshot(room.session.File(), false);
  FormulaTable table = test::TableOfRecipes({{"PINK", {{"RED", 50}, {"NEW", 50}}}, {"A", {{"RED", 100}}}});
  table.basics.push_back({.kind = ColorKind::Basic, .additive = true, .name = "DRIER"});
  table.sets.push_back({"SLOW", {{"DRIER", 4}}});
  table.formulas.push_back({.name = "B", .addSetName = "SLOW", .recipe = {{"RED", 96}, {"DRIER", 4}}});
  const auto import = [&] {
    const auto report = ImportTable(room.session, table, {.take = TakeWhat::All});
    ASSERT_TRUE(report) << report.error().text;
  };
  import();
  const auto undone = UndoImport(room.session);
  ASSERT_TRUE(undone) << undone.error().text;
  EXPECT_EQ(undone->removed, 2U);
  EXPECT_EQ(undone->restored, 1U);
  EXPECT_EQ(undone->basicsRemoved, 2U);
  EXPECT_EQ(test::Snapshot(room.session.File(), false), before);
  EXPECT_EQ(UndoImport(room.session).error().text, "There is no import to undo.");

  const struct {
    const char* sql;
    const char* why;
  } cases[] = {
      {"UPDATE INK_Mix SET Notes = 'x' WHERE Color_Name = 'A'", "A was changed"},
      {"UPDATE INK_Mix SET BQ0 = 51 WHERE Color_Name = 'PINK'", "PINK was changed"},
      {"UPDATE INK_Mix SET Color_Name = 'C' WHERE Color_Name = 'B'", "B was changed"},
      {"INSERT INTO INK_Batch (Color_Name, BatchNo) VALUES ('A', 1)", "A was made"},
      {"INSERT INTO INK_Mix_LAB (Color_Name) VALUES ('A')", "A was measured"},
      {"INSERT INTO Designs (DesignID, IngName0, IngDB0, IngType0, IngSet) VALUES ('D', 'A', 'INK', 2, '<A>')",
       "A is used in a Job Design"},
      {"DELETE FROM INK_Mix WHERE Color_Name = 'A'", "A was removed"},
  };
  import();
  for (const auto& c : cases) {
    Transaction never(room.session.File());
    room.session.File().Execute(c.sql);
    const auto refused = UndoImport(room.session);
    ASSERT_FALSE(refused) << c.sql;
    EXPECT_EQ(refused.error().text, std::string("The import from in.mfe cannot be undone. Since then\n\n") + c.why);
  }
  // A Basic Color that something else uses by now stays; a figure that follows from ingredients does not count.
  room.Mix("OWN", {{"NEW", 100}});
  room.session.File().Execute("UPDATE INK_Mix SET BasicCost = 2");
  room.Breaks("RollUps");
  const auto partly = UndoImport(room.session);
  ASSERT_TRUE(partly) << partly.error().text;
  EXPECT_EQ(partly->basicsKept, (std::vector<std::string>{"NEW"}));
}

TEST(ImportUndo, ADatabaseThatTheImportMadeGoesWithIt) {
  test::InkRoom room;
  const std::string before = test::Snapshot(room.session.File(), false);
  const FormulaTable table = test::TableOfRecipes({{"A", {{"RED", 100}}}});
  for (const bool used : {false, true}) {
    const auto report = ImportTable(room.session, table, {.target = {"fresh", true}});
    ASSERT_TRUE(report) << report.error().text;
    EXPECT_EQ(room.session.databaseList, (std::vector<std::string>{"INK", "FRESH"}));
    if (used) RenameDatabaseTables(room.session.File(), "FRESH", "OTHER");
    if (used) room.session.databaseList.back() = "OTHER";
    if (used) AddZeroBasic(room.session, "MINE", false, "OTHER");
    const auto undone = UndoImport(room.session, report->import);
    ASSERT_TRUE(undone) << undone.error().text;
    EXPECT_EQ(undone->databaseRemoved, !used);
    if (!used) {
      EXPECT_EQ(test::Snapshot(room.session.File(), false), before);
    }
  }
  EXPECT_EQ(room.session.databaseList, (std::vector<std::string>{"INK", "OTHER"}));
}

}  // namespace
}  // namespace vellumark
