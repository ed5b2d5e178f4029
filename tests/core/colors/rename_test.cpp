#include "core/colors/rename.h"

#include <gtest/gtest.h>

#include "core/base/number.h"
#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "core/colors/rollup.h"
#include "core/datafile/references.h"
#include "support/ink_room.h"
#include "support/listed.h"

namespace vellumark {
namespace {

using test::InkRoom;
using test::Listed;

// Every table of the file as text, row by row; what happened to stock stays told as it was.
std::map<std::string, std::vector<std::string>> Everything(Database& file) {
  std::map<std::string, std::vector<std::string>> tables;
  for (const std::string& table : file.TableNames()) {
    if (table.starts_with("MSys")) continue;
    auto& rows = tables[table];
    Statement row = file.Prepare("SELECT * FROM " + Quoted(table) + " ORDER BY RowKey");
    while (row.Step()) {
      std::string text;
      for (int column = 0; column < row.ColumnCount(); ++column)
        text += (row.IsNull(column) ? "null" : row.Text(column)) + "|";
      rows.push_back(text);
    }
  }
  return tables;
}

// A room in which RED stands at every place where a colour's name can stand, as a Basic Color and as a formula, of this
// Database and of another.
struct NamedRoom : InkRoom {
  NamedRoom() {
    CreateEmptyDatabase(session.File(), "OTHER");
    session.databaseList.push_back("OTHER");
    Basic("RED", {{"PurchaseCost", 5.0F}});
    Basic("REDDISH");
    Basic("BLUE");
    Mix("RED", {{"RED", 30}, {"BLUE", 70}});
    Mix("PURPLE", {{"BLUE", 50}, {"RED", 50}});
    Mix("PINK", {{"REDDISH", 100}});
    for (const Table* table : {&schema::BasicLotInv, &schema::MixLotInv})
      AddRow(*table, {{"LotCName", "RED"}, {"LotNumber", "1"}});
    for (const Table* table : {&schema::BasicLab, &schema::MixLab}) AddRow(*table, {{"Color_Name", "RED"}});
    AddRow(schema::Batch, {{"Color_Name", "RED"},
                           {"BatchNo", 1},
                           {"IngName0", "RED"},
                           {"IngType0", 1},
                           {"IngName1", "RED"},
                           {"IngType1", 2},
                           {"IngName19", "RED"},
                           {"IngType19", 3},
                           {"IngName3", "RED"}});
    for (const int type : {1, 2, 3})
      AddRow(schema::BatchLotInv, {{"BatchNo", 1}, {"IngName", "RED"}, {"IngType", type}, {"LotNumber", "1"}});
    for (const char* database : {"INK", "OTHER"})
      for (const int type : {1, 2})
        AddRow(schema::JobRecords,
               {{"JobNumber", "J"}, {"Color_Name", "RED"}, {"Database", database}, {"ItemType", type}});
    AddRow(schema::Additives, {{"SetName", "S"},
                               {"SetList", "<RED><BLUE>"},
                               {"Add_Name1", "RED"},
                               {"Add_Name4", "BLUE"},
                               {"Add_Percent1", 2.0F},
                               {"Add_Percent4", 3.0F}});
    AddRow(schema::Designs, {{"DesignID", "D"},
                             {"IngSet", "<RED><RED><RED>"},
                             {"IngName0", "RED"},
                             {"IngType0", 1},
                             {"IngDB0", "INK"},
                             {"IngName1", "RED"},
                             {"IngType1", 2},
                             {"IngDB1", "INK"},
                             {"IngName2", "RED"},
                             {"IngType2", 1},
                             {"IngDB2", "OTHER"}});
  }

  std::string Row(const std::string& sql) { return Scalar(sql).Text(); }
  std::string List(const std::string& sql) { return Listed(session.File(), sql); }
  std::string Parts(const std::string& name) {
    const auto mix = ReadMix(session, name);
    std::string text;
    for (const Ingredient& line : mix->Ingredients()) text += line.name + " " + Fixed(line.amount, 3) + " ";
    EXPECT_EQ(mix->Color_Set, NameSet(NamesOf(mix->Ingredients())));
    for (std::size_t n = mix->Ingredients().size(); n < mix->BC.size(); ++n) EXPECT_EQ(mix->BC[n], "");
    return text;
  }
};

TEST(Rename, ABasicColorEverywhere) {
  NamedRoom room;
  room.Breaks("LotReferences");
  room.Breaks("BatchLines");
  const auto renamed = RenameBasic(room.session, "red", " Scarlet ");
  ASSERT_TRUE(renamed);
  EXPECT_EQ(renamed->name, "SCARLET");
  EXPECT_EQ(ReadBasic(room.session, "SCARLET")->PurchaseCost, 5.0F);
  EXPECT_FALSE(BasicColorExists(room.session, "RED"));
  EXPECT_EQ(room.Parts("RED"), "SCARLET 30.000 BLUE 70.000 ");
  EXPECT_EQ(room.Parts("PURPLE"), "BLUE 50.000 SCARLET 50.000 ");
  EXPECT_EQ(room.Parts("PINK"), "REDDISH 100.000 ");
  EXPECT_EQ(room.Row("SELECT Color_Name||' '||IngName0||' '||IngName1||' '||IngName3||' '||IngName19 FROM INK_Batch"),
            "RED SCARLET RED SCARLET SCARLET");
  EXPECT_EQ(room.List("SELECT IngName, IngType FROM INK_Batch_LotInv ORDER BY RowKey"), "SCARLET1 RED2 SCARLET3");
  EXPECT_EQ(room.Row("SELECT LotCName FROM INK_Basic_LotInv"), "SCARLET");
  EXPECT_EQ(room.Row("SELECT LotCName FROM INK_Mix_LotInv"), "RED");
  EXPECT_EQ(room.Row("SELECT Color_Name FROM INK_Basic_LAB"), "SCARLET");
  EXPECT_EQ(room.Row("SELECT Color_Name FROM INK_Mix_LAB"), "RED");
  EXPECT_EQ(room.List("SELECT Color_Name FROM JobRecords ORDER BY RowKey"),
            "SCARLET RED RED RED");
  EXPECT_EQ(room.Row("SELECT Add_Name1||' '||Add_Name4||' '||SetList FROM INK_Additives"),
            "SCARLET BLUE <SCARLET><BLUE>");
  EXPECT_EQ(room.Row("SELECT IngName0||' '||IngName1||' '||IngName2||' '||IngSet FROM Designs"),
            "SCARLET RED RED <SCARLET><RED><RED>");
}

TEST(Rename, AFormulaEverywhere) {
  NamedRoom room;
  room.Breaks("LotReferences");
  room.Breaks("BatchLines");
  ASSERT_TRUE(RenameColor(room.session, "red", "scarlet"));
  EXPECT_TRUE(BasicColorExists(room.session, "RED"));
  EXPECT_EQ(room.Parts("SCARLET"), "RED 30.000 BLUE 70.000 ");
  EXPECT_EQ(room.Row("SELECT Color_Name||' '||IngName0||' '||IngName1||' '||IngName3||' '||IngName19 FROM INK_Batch"),
            "SCARLET RED SCARLET RED RED");
  EXPECT_EQ(room.List("SELECT IngName, IngType FROM INK_Batch_LotInv ORDER BY RowKey"), "RED1 SCARLET2 RED3");
  EXPECT_EQ(room.Row("SELECT LotCName FROM INK_Mix_LotInv"), "SCARLET");
  EXPECT_EQ(room.Row("SELECT LotCName FROM INK_Basic_LotInv"), "RED");
  EXPECT_EQ(room.Row("SELECT Color_Name FROM INK_Mix_LAB"), "SCARLET");
  EXPECT_EQ(room.List("SELECT Color_Name FROM JobRecords ORDER BY RowKey"),
            "RED SCARLET RED RED");
  EXPECT_EQ(room.Row("SELECT SetList FROM INK_Additives"), "<RED><BLUE>");
  EXPECT_EQ(room.Row("SELECT IngSet FROM Designs"), "<RED><SCARLET><RED>");
}

TEST(Rename, MergingTwoBasicColors) {
  NamedRoom room;
  room.Breaks("LotReferences");
  room.Breaks("BatchLines");
  room.Basic("DRIER", {{"Additive", true}});
  room.Mix("MUD", {{"RED", 20.001F}, {"REDDISH", 29.999F}, {"BLUE", 50}});
  room.AddRow(schema::BasicLotInv, {{"LotCName", "BLUE"}, {"LotNumber", "7"}});
  room.session.File().Execute("UPDATE INK_Basic SET VOC = 0.75, HAP = 0.5 WHERE Color_Name = 'RED'");
  for (auto* pass : {UpdateMixBasicCosts, UpdateMixVOC, UpdateMixHAP}) pass(room.session);
  room.prompt.Expect(std::string(20, ' ') + "Basic Color Name Exists", Answer::No,
                     "This Basic Color already exists.\nDo you want to merge the colors?");
  EXPECT_FALSE(RenameBasic(room.session, "RED", "BLUE")->done);
  EXPECT_TRUE(BasicColorExists(room.session, "RED"));
  room.prompt.Expect(std::string(20, ' ') + "Basic Color Name Exists", Answer::Yes);
  const auto merged = RenameBasic(room.session, "RED", "blue");
  ASSERT_TRUE(merged);
  EXPECT_TRUE(merged->merged);
  EXPECT_EQ(room.Parts("PURPLE"), "BLUE 100.000 ");
  EXPECT_EQ(room.Parts("MUD"), "REDDISH 29.999 BLUE 70.001 ");
  EXPECT_EQ(room.List("SELECT LotCName, LotNumber FROM INK_Basic_LotInv"), "BLUE7");
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Basic_LAB").Whole(), 0);
  EXPECT_EQ(room.List("SELECT Color_Name, IngSort FROM INK_Basic ORDER BY RowKey"), "REDDISH1 BLUE2 DRIER3");
  // The set held both: the survivor stands in it once.
  EXPECT_EQ(room.List("SELECT SetList, Add_Percent0 FROM INK_Additives"), "<BLUE>5");
  // The formulas count the survivor's figures from now on, each of them.
  EXPECT_EQ(room.List("SELECT BasicCost, ' ', BasicVOC, ' ', BasicHAP FROM INK_Mix WHERE Color_Name = 'PURPLE'"),
            "2.5 0.375 0.25");
  RunPendingPasses(room.session);
  EXPECT_EQ(room.List("SELECT BasicCost, ' ', BasicVOC, ' ', BasicHAP FROM INK_Mix WHERE Color_Name = 'PURPLE'"),
            "0 0 0");
}

TEST(Rename, MergingBesideAnAdditiveSet) {
  InkRoom room;
  for (const char* name : {"OLD", "NEW", "A", "B", "WAX"}) room.Basic(name);
  room.AddRow(schema::Additives,
              {{"SetName", "S"}, {"SetList", "<WAX>"}, {"Add_Name0", "WAX"}, {"Add_Percent0", 5.0F}});
  room.Mix("EVEN", {{"OLD", 5}, {"NEW", 45}, {"A", 45}, {"WAX", 5}}, {{"AddSetName", "S"}});
  room.Mix("THIRDS", {{"OLD", 5}, {"NEW", 30}, {"A", 30}, {"B", 30}, {"WAX", 5}}, {{"AddSetName", "S"}});
  room.Mix("ONLY", {{"OLD", 95}, {"WAX", 5}}, {{"AddSetName", "S"}});
  room.prompt.Expect(std::string(20, ' ') + "Basic Color Name Exists", Answer::Yes);
  ASSERT_TRUE(RenameBasic(room.session, "OLD", "NEW"));
  const auto parts = [&](const char* name) {
    std::string text;
    for (const Ingredient& line : ReadMix(room.session, name)->Ingredients())
      text += line.name + " " + Fixed(line.amount, 3) + " ";
    return text;
  };
  EXPECT_EQ(parts("EVEN"), "NEW 47.500 A 47.500 WAX 5.000 ");
  // Rounding missed 100 here, and what the first largest gains leaves out the set's share.
  EXPECT_EQ(parts("THIRDS"), "NEW 36.666 A 31.667 B 31.667 WAX 5.000 ");
  EXPECT_EQ(parts("ONLY"), "NEW 95.000 WAX 5.000 ");
}

TEST(Rename, AnAdditiveOfASetBecomesAnIngredientBesideIt) {
  InkRoom room;
  for (const char* name : {"Y", "Z"}) room.Basic(name);
  for (const char* name : {"WAX", "GEL"}) room.Basic(name, {{"Additive", true}});
  room.AddRow(schema::Additives, {{"SetName", "S"},
                                  {"SetList", "<WAX><GEL>"},
                                  {"Add_Name0", "WAX"},
                                  {"Add_Percent0", 5.0F},
                                  {"Add_Name1", "GEL"},
                                  {"Add_Percent1", 2.0F}});
  room.Mix("HOLDS", {{"Y", 60}, {"Z", 33}, {"WAX", 5}, {"GEL", 2}}, {{"AddSetName", "S"}});
  room.Mix("ALONE", {{"Z", 93}, {"WAX", 5}, {"GEL", 2}}, {{"AddSetName", "S"}});
  const auto text = [&](const char* name) {
    const MixColor mix = *ReadMix(room.session, name);
    std::string parts = mix.AddSetName + ":";
    for (const Ingredient& line : mix.Ingredients()) parts += " " + line.name + " " + Fixed(line.amount, 3);
    return parts;
  };
  // A merge puts another ink into recipes: whoever may not edit formulas may not do it, and is not even asked.
  room.session.CurrentUser = "ANN";
  room.session.Perm_MasterFormula = 0;
  EXPECT_EQ(RenameBasic(room.session, "WAX", "Y").error().title, "Permission Denied");
  room.session.Perm_MasterFormula = 1;
  room.prompt.Expect(std::string(20, ' ') + "Basic Color Name Exists", Answer::Yes);
  room.prompt.Expect("Additive Set", Answer::Ok,
                     "Y is an ingredient beside the Additive Set now.\nThese Master Formulas keep their amounts and no "
                     "longer use the set:\n\nHOLDS");
  ASSERT_TRUE(RenameBasic(room.session, "WAX", "Y"));
  EXPECT_EQ(text("HOLDS"), ": Z 33.000 GEL 2.000 Y 65.000");
  EXPECT_EQ(text("ALONE"), "S: Z 93.000 Y 5.000 GEL 2.000");
  EXPECT_EQ(room.Scalar("SELECT SetList FROM INK_Additives").Text(), "<Y><GEL>");
  EXPECT_TRUE(ReadBasic(room.session, "Y")->Additive);  // as everything in a set
}

TEST(Rename, AFailedStepLeavesEverythingAsItWas) {
  for (const bool merge : {false, true}) {
    NamedRoom room;
    room.Breaks("LotReferences");
    room.Breaks("BatchLines");
    // The Designs come last of all places.
    room.session.File().Execute(
        "CREATE TRIGGER broken BEFORE UPDATE ON Designs BEGIN SELECT RAISE(ABORT, 'the disk says no'); END");
    int told = 0;
    const auto subscription = room.session.changes.Subscribe([&](const auto&) { ++told; });
    const auto before = Everything(room.session.File());
    if (merge) room.prompt.Expect(std::string(20, ' ') + "Basic Color Name Exists", Answer::Yes);
    EXPECT_THROW((void)RenameBasic(room.session, "RED", merge ? "REDDISH" : "SCARLET"), Failure);
    EXPECT_EQ(Everything(room.session.File()), before);
    EXPECT_THROW((void)RenameColor(room.session, "RED", "SCARLET"), Failure);
    EXPECT_EQ(Everything(room.session.File()), before);
    EXPECT_EQ(told, 0);
    EXPECT_FALSE(room.session.CostChanged);
  }
}

TEST(Rename, NamesThatAreRefused) {
  NamedRoom room;
  room.Breaks("LotReferences");
  room.Breaks("BatchLines");
  const std::string pad(20, ' ');
  const struct {
    const char* typed;
    Refusal refusal;
  } basics[] = {
      {"  ", {pad + "Color Name Needed", "Please enter a name.", "txtNewName"}},
      {"red",
       {pad + "Choose Another Name", "Cannot rename a color with the same name.\n\nPlease enter a different name.",
        "txtNewName"}},
      {"PANTONE RED",
       {pad + "Invalid Basic Color Name",
        "A color can not be renamed with the word PANTONE unless\nit is used as a ingredient in a Pantone Color "
        "Guide.\n\nPlease choose another name.",
        "txtNewName"}},
  };
  for (const auto& c : basics) EXPECT_EQ(RenameBasic(room.session, "RED", c.typed).error(), c.refusal);
  const struct {
    const char* typed;
    Refusal refusal;
  } mixes[] = {
      {"", {"Color Name Needed", "Please enter a new color name.", "txtNewName"}},
      {" RED",
       {"Choose Another Name", "Cannot rename a color with the same name.\n\nPlease enter a different name.",
        "txtNewName"}},
      {"purple",
       {"Master Formula Exists", "This Master Formula already exists in the database.\n\nPlease select different name.",
        "txtNewName"}},
      {"PANTONE RED",
       {"Invalid Formula Name",
        "This name cannot begin with the word PANTONE.\nRenaming a color with the word PANTONE requires\nspelling the "
        "color as it is found in the book.\n\nPlease choose another name.",
        "txtNewName"}},
  };
  for (const auto& c : mixes) EXPECT_EQ(RenameColor(room.session, "RED", c.typed).error(), c.refusal);
  EXPECT_EQ(RenameBasic(room.session, "NONE", "X").error().title, "Color Not Found");
  room.session.ArchiveView = true;
  EXPECT_FALSE(RenameBasic(room.session, "RED", "X"));
  EXPECT_FALSE(RenameColor(room.session, "RED", "X"));
}

TEST(Rename, ReachesBothOfTwoFormulasOfOneName) {
  // A file of an older program may hold a name twice; no row gets a name that another has.
  InkRoom room;
  room.Breaks("UniqueNames");
  for (const char* name : {"A", "B"}) room.Basic(name);
  room.Mix("M", {{"A", 100}});
  EXPECT_THROW(room.Mix("m", {{"B", 100}}), BadValue);
  EXPECT_THROW(room.Basic("a"), BadValue);
  room.Mix("N", {{"B", 50}, {"A", 50}});
  room.session.File().Execute("UPDATE INK_Mix SET Color_Name = 'M'");
  ASSERT_TRUE(RenameBasic(room.session, "A", "X"));
  EXPECT_EQ(Listed(room.session.File(), "SELECT Color_Set FROM INK_Mix ORDER BY RowKey"), "<X> <B><X>");
}

TEST(Rename, NamesMatchAsAWhole) {
  InkRoom room;
  // To a search pattern "_" would be any character; a name from a file may hold one.
  for (const char* name : {"A_C", "ABC", "A"}) room.Basic(name);
  room.Mix("M", {{"ABC", 50}, {"A_C", 30}, {"A", 20}});
  ASSERT_TRUE(RenameBasic(room.session, "A_C", "X"));
  EXPECT_EQ(ReadMix(room.session, "M")->Color_Set, "<ABC><X><A>");
  ASSERT_TRUE(RenameBasic(room.session, "A", "Y"));
  EXPECT_EQ(ReadMix(room.session, "M")->Color_Set, "<ABC><X><Y>");
}

TEST(Rename, ASwatchSetByHandStays) {
  InkRoom room;
  room.Basic("RED", {{"Color_Guide", ""}, {"Page", "0"}, {"Red", 200}, {"Green", 20}, {"Blue", 30}});
  ASSERT_TRUE(RenameBasic(room.session, "RED", "CRIMSON"));
  const BasicColor crimson = *ReadBasic(room.session, "CRIMSON");
  EXPECT_EQ(crimson.book, (BookData{"", "0", 0, 200, 20, 30}));
}

}  // namespace
}  // namespace vellumark
