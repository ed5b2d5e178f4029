#include "core/colors/basics.h"

#include <gtest/gtest.h>

#include <utility>

#include "core/colors/amounts.h"
#include "core/colors/basic_work.h"
#include "core/colors/lab.h"
#include "core/colors/name_search.h"
#include "core/colors/names.h"
#include "support/ink_room.h"
#include "support/listed.h"

namespace vellumark {
namespace {

using test::InkRoom;

TEST(Basics, EnteringAName) {
  InkRoom room;
  room.Basic("RED");
  room.Mix("GREEN", {{"RED", 100}});
  EXPECT_EQ(EnterBasicName(room.session, "  ")->kind, NameEntry::Kind::Empty);
  EXPECT_EQ(EnterBasicName(room.session, "<CN>red")->kind, NameEntry::Kind::Found);

  room.prompt.Expect(
      "Basics / Additives - New Item", Answer::Yes,
      "This Basic / Additive is not found in the INK database.\n\nWould you like to enter this item into "
      "the database?");
  EXPECT_EQ(EnterBasicName(room.session, "blue")->kind, NameEntry::Kind::New);
  room.prompt.Expect("Basics / Additives - New Item", Answer::No,
                     "A Master Formula GREEN already exists in the INK database.\n\nWould you like to also add a Basic "
                     "Color GREEN to the database?");
  EXPECT_EQ(EnterBasicName(room.session, "green")->kind, NameEntry::Kind::Abandoned);

  EXPECT_EQ(
      EnterBasicName(room.session, "PANTONE 999").error(),
      (Refusal{"Basics / Additives - Invalid Name", "Color name cannot begin with the word PANTONE.", "Color_Name"}));
  room.session.CurrentUser = "ANNA";
  room.session.Perm_MasterFormula = 0;
  EXPECT_EQ(EnterBasicName(room.session, "blue").error(),
            (Refusal{"Color Not Found",
                     "BLUE is not found in this database, and you do not\nhave permission to add a new Basic Color or "
                     "Additive to the database.",
                     "Color_Name"}));
}

TEST(Basics, NumbersOutOfRange) {
  InkRoom room;
  const std::string pad(30, ' ');
  const struct {
    AmountKey key;
    const char* typed;
    std::string title;
    const char* text;
  } bad[] = {
      {AmountKey::Currency, "99999.01", pad + "Invalid Purchase Cost", "You must enter currency between\n0 and 99999"},
      {AmountKey::Currency, "", pad + "Invalid Purchase Cost", "You must enter currency between\n0 and 99999"},
      {AmountKey::Reorder, "-0.001", pad + "Invalid Reorder", "You must enter an amount between\n0 and 99999"},
      {AmountKey::VOC, "1e3", pad + "Invalid VOC", "You must enter an amount between\n0 and 99999"},
      {AmountKey::HAP, "X", pad + "Invalid HAP", "You must enter an amount between\n0 and 99999"},
      {AmountKey::AdjInv, "-99999.001", pad + "Invalid Adjust Inv.",
       "You must enter an amount between\n-99999 and 99999"},
      {AmountKey::Lab, "100000", pad + "Lab Values", "You must enter an amount between\n-99999 and 99999"},
  };
  for (const auto& c : bad) {
    const auto read = ReadAmount(room.session, c.key, c.typed, "F");
    ASSERT_FALSE(read) << c.typed;
    EXPECT_EQ(read.error(), (Refusal{c.title, c.text, "F"}));
  }
  // Rounded first, then compared.
  EXPECT_EQ(ReadAmount(room.session, AmountKey::Currency, " 99999.004 ", "F"), 99999.0F);
  EXPECT_EQ(ReadAmount(room.session, AmountKey::Reorder, "-0.0004", "F"), 0.0F);
  EXPECT_EQ(ReadAmount(room.session, AmountKey::Currency, "10.126", "F"), 10.13F);
}

TEST(Basics, SaveChecksInOrderAndMarksWhatChanged) {
  InkRoom room;
  BasicWork work = NewBasicWork(room.session, "RED");
  for (auto& [field, text] : work.typed) text = "x";
  for (const char* field : {"Reorder", "PurchaseCost", "VOC", "HAP"}) {
    EXPECT_EQ(SaveBasic(room.session, work).error().field, field);
    work.typed[field] = "1";
  }
  work.Notes = "  first\r\n\r\n";
  ASSERT_TRUE(SaveBasic(room.session, work));
  EXPECT_EQ(work.typed["PurchaseCost"], "1.00");
  const auto stored = ReadBasic(room.session, "red");
  ASSERT_TRUE(stored);
  EXPECT_EQ(stored->Notes, "first");
  EXPECT_EQ(stored->IngSort, 0);
  EXPECT_EQ(stored->Date_Entered, (DateTime{2026, 3, 10, 0, 0, 0}));
  EXPECT_EQ(stored->book, BookData{});
  EXPECT_FALSE(room.session.CostChanged);

  work.typed["PurchaseCost"] = "1";  // the same figure
  work.typed["VOC"] = "1.5";
  std::vector<Change> told;
  const auto subscription = room.session.changes.Subscribe([&](const auto& changes) { told = changes; });
  ASSERT_TRUE(SaveBasic(room.session, work));
  EXPECT_EQ(told, (std::vector<Change>{{Change::Kind::Basic, "INK", "RED", Change::What::Updated, ""}}));
  EXPECT_FALSE(room.session.CostChanged);
  EXPECT_TRUE(room.session.VOCChanged);
  EXPECT_FALSE(room.session.HAPChanged);

  // A cost with more digits than the fields show is cut by any save, and a formula may wait for a new colour.
  room.Basic("BLUE", {{"PurchaseCost", 10.123F}});
  room.Mix("NAVY", {{"BLUE", 45}, {"RED", 55}});
  BasicWork cut = LoadBasicWork(room.session, *ReadBasic(room.session, "BLUE"));
  cut.Notes = "third";
  ASSERT_TRUE(SaveBasic(room.session, cut));
  EXPECT_TRUE(std::exchange(room.session.CostChanged, false));
  room.Mix("WAITING", {{"GREEN", 100}});
  BasicWork green = NewBasicWork(room.session, "GREEN");
  green.typed["PurchaseCost"] = "3";
  ASSERT_TRUE(SaveBasic(room.session, green));
  EXPECT_TRUE(room.session.CostChanged);

  BasicWork again = NewBasicWork(room.session, "RED");
  EXPECT_EQ(SaveBasic(room.session, again).error().title, "Basic Color Name Exists");
}

TEST(Basics, RightsGuardCostAndEmission) {
  InkRoom room;
  room.Basic("RED", {{"PurchaseCost", 2.0F}});
  room.session.CurrentUser = "ANNA";
  room.session.Perm_Costs = 1;
  room.session.Perm_VOCHAP = 0;
  const struct {
    const char* field;
    const char* text;
  } cases[] = {{"PurchaseCost", "ANNA, you do not have permission to change costs."},
               {"VOC", "ANNA, you do not have permission to change VOC Values."},
               {"HAP", "ANNA, you do not have permission to change HAP Values."}};
  for (const auto& c : cases) {
    BasicWork work = LoadBasicWork(room.session, *ReadBasic(room.session, "RED"));
    work.typed[c.field] = "9";
    const auto saved = SaveBasic(room.session, work);
    ASSERT_FALSE(saved);
    EXPECT_EQ(saved.error().title, "Permission Denied");
    EXPECT_EQ(saved.error().text, c.text);
  }
  BasicWork work = LoadBasicWork(room.session, *ReadBasic(room.session, "RED"));
  work.Notes = "no figure changed";
  EXPECT_TRUE(SaveBasic(room.session, work));
}

TEST(Basics, UnfinishedWorkIsAskedAbout) {
  InkRoom room;
  EXPECT_EQ(AskUnfinishedWork(room.session, "0.000", false), UnfinishedWork::None);
  room.prompt.Expect("Inventory Calculation", Answer::Yes,
                     "Unfinished inventory calculation.\nWould you like to complete the work?");
  EXPECT_EQ(AskUnfinishedWork(room.session, "5", true), UnfinishedWork::Inventory);
  room.prompt.Expect("Inventory Calculation", Answer::No);
  room.prompt.Expect("Unfinished l-a-b Entry", Answer::Yes,
                     "Unfinished l-a-b entry.\nWould you like complete the work?");
  EXPECT_EQ(AskUnfinishedWork(room.session, "5", true), UnfinishedWork::Measurement);
}

TEST(Basics, AnAdditiveOfASetStaysOne) {
  InkRoom room;
  room.Basic("DRIER", {{"Additive", true}});
  room.AddRow(schema::Additives, {{"SetName", "S"}, {"SetList", "<DRIER>"}, {"Add_Name3", "DRIER"}});
  BasicWork work = LoadBasicWork(room.session, *ReadBasic(room.session, "DRIER"));
  work.Additive = false;
  EXPECT_EQ(
      SaveBasic(room.session, work).error(),
      (Refusal{"Ingredient used in Additive Set.",
               "This ingredient is used in an Additive Set(s).\n\nIt cannot be unchecked until it has been removed "
               "from all Additive Sets.",
               "Additive"}));
  EXPECT_TRUE(ReadBasic(room.session, "DRIER")->Additive);
}

TEST(Basics, DeleteIsHinderedByWhatUsesTheColour) {
  InkRoom room;
  for (const char* name : {"RED", "RED 1", "WAX", "BLUE"}) room.Basic(name);
  room.Mix("Z MIX", {{"RED", 50}, {"RED 1", 50}});
  room.Mix("A MIX", {{"RED", 100}});
  room.AddRow(schema::Additives, {{"SetName", "S"}, {"SetList", "<WAX>"}, {"Add_Name0", "WAX"}});
  room.Breaks("DesignColors");  // in a slot of its own, behind empty ones
  room.AddRow(schema::Designs,
              {{"DesignID", "D"}, {"IngSet", "<BLUE>"}, {"IngName4", "BLUE"}, {"IngDB4", "INK"}, {"IngType4", 1}});
  const auto formulas = DeleteBasic(room.session, "red");
  ASSERT_FALSE(formulas);
  EXPECT_EQ(formulas.error().title, "Basic / Additive  cannot be deleted.");
  EXPECT_EQ(formulas.error().text, "Master Formulas require this ingredient.");
  EXPECT_EQ(formulas.error().requiredBy, (std::vector<std::string>{"A MIX", "Z MIX"}));
  EXPECT_EQ(DeleteBasic(room.session, "RED 1").error().requiredBy, (std::vector<std::string>{"Z MIX"}));

  const auto set = DeleteBasic(room.session, "WAX");
  EXPECT_EQ(set.error().title, "Additive Set Color");
  EXPECT_EQ(set.error().text, "Basic / Additive is used in an Additive Set.\n\nModify Additive Set before deleting.");
  const auto design = DeleteBasic(room.session, "BLUE");
  EXPECT_EQ(design.error().title, "Additive Set Color");
  EXPECT_EQ(design.error().text, "Basic / Additive is used in a Job Design.\n\nModify Job Design before deleting.");
  room.session.ArchiveView = true;
  EXPECT_EQ(DeleteBasic(room.session, "BLUE").error().title, "Archive or Backup Data File");
}

TEST(Basics, DeleteClosesTheWeighingOrder) {
  InkRoom room;
  for (const char* name : {"A", "B", "C", "D"}) room.Basic(name);
  room.AddRow(schema::BasicLotInv, {{"LotCName", "B"}, {"LotNumber", "1"}});
  room.AddRow(schema::BasicLab, {{"Color_Name", "B"}});
  room.AddRow(schema::JobRecords, {{"JobNumber", "J"}, {"Color_Name", "B"}, {"Database", "INK"}, {"ItemType", 1}});
  room.prompt.Expect("Basic Color Window - Delete Basic Color?", Answer::No);
  EXPECT_EQ(DeleteBasic(room.session, "B"), false);
  EXPECT_TRUE(BasicColorExists(room.session, "B"));
  const auto remove = [&](const char* name) {
    room.prompt.Expect("Basic Color Window - Delete Basic Color?", Answer::Yes,
                       "Deleting this Basic Color will permanently remove it from the INK database.\n\nDo you want to "
                       "delete this Basic Color?");
    EXPECT_EQ(DeleteBasic(room.session, name), true);
  };
  const auto order = [&] {
    return test::Listed(room.session.File(), "SELECT Color_Name, IngSort FROM INK_Basic ORDER BY IngSort");
  };
  remove("B");
  EXPECT_EQ(order(), "A0 C1 D2");
  remove("D");
  EXPECT_EQ(order(), "A0 C1");
  remove("A");
  EXPECT_EQ(order(), "C0");
  EXPECT_EQ(
      room.Scalar("SELECT (SELECT COUNT(*) FROM INK_Basic_LotInv) + (SELECT COUNT(*) FROM INK_Basic_LAB)").Whole(), 0);
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM JobRecords").Whole(), 1);
}

TEST(Basics, NamesCompleteWhileTyping) {
  InkRoom room;
  for (const char* name : {"100% RED", "185 BASE", "PANTONE 185", "RED"}) room.Basic(name);
  EXPECT_EQ(CompleteName(room.session, NameKind::Basics, "18"), "PANTONE 185");
  EXPECT_EQ(CompleteName(room.session, NameKind::Basics, "185 "), "185 BASE");
  EXPECT_EQ(CompleteName(room.session, NameKind::Basics, "RE"), "RED");
  EXPECT_EQ(CompleteName(room.session, NameKind::Basics, "1_"), "");
}

TEST(Basics, NamesAreListedAndWalkedInOrder) {
  InkRoom room;
  for (const char* name : {"PAPER WHITE", "PANTONE PA", "PANTONE 185", "RED"}) room.Basic(name);
  room.Basic("185 WAX", {{"Additive", true}});
  using Names = std::vector<std::string>;
  const auto from = [&](NameKind whose, const char* typed, std::size_t limit) {
    return NamesFrom(room.session, whose, typed, limit);
  };
  // What stands behind the prefix comes first, and nothing twice.
  EXPECT_EQ(from(NameKind::Basics, "pa", 9), (Names{"PANTONE PA", "PANTONE 185", "PAPER WHITE"}));
  EXPECT_EQ(from(NameKind::Basics, "pa", 2), (Names{"PANTONE PA", "PANTONE 185"}));
  EXPECT_EQ(from(NameKind::Basics, "", 9), (Names{"PANTONE 185", "PANTONE PA", "185 WAX", "PAPER WHITE", "RED"}));
  EXPECT_EQ(from(NameKind::Additives, "1", 9), (Names{"185 WAX"}));
  EXPECT_EQ(CompleteName(room.session, NameKind::Additives, "R"), "");

  for (const char* name : {"BLUE", "green"}) room.Mix(name, {{"RED", 100}});
  const auto next = [&](const char* name) { return NextName(room.session, NameKind::Formulas, name); };
  const auto previous = [&](const char* name) { return PreviousName(room.session, NameKind::Formulas, name); };
  EXPECT_EQ(next(""), "BLUE");
  EXPECT_EQ(next("CYAN"), "green");
  EXPECT_EQ(next("GREEN"), "");
  EXPECT_EQ(previous(""), "green");
  EXPECT_EQ(previous("GREEN"), "BLUE");
  EXPECT_EQ(previous("BLUE"), "");
}

TEST(Basics, MeasurementsComeBackAsListed) {
  InkRoom room;
  room.Basic("A");
  room.Mix("GREEN", {{"A", 100}});
  const auto reading = ReadLabEntry(room.session, {"50.126", "-3", "7.5", "0", "1.25", " D65 ", "COATED", "ok"});
  ASSERT_TRUE(reading);
  EXPECT_EQ(reading->Lab_L, 50.13F);
  EXPECT_EQ(ReadLabEntry(room.session, {"1", "1", "x", "y", "1", "", "", ""}).error().field, "txt_b");
  WriteLabReadings(room.session, ColorKind::Mix, "GREEN", {*reading});
  WriteLabReadings(room.session, ColorKind::Mix, "GREEN", {*reading, *reading});
  EXPECT_EQ(ReadLabReadings(room.session, ColorKind::Mix, "green"), (std::vector<LabReading>{*reading, *reading}));
  EXPECT_EQ(KnownLightSources(room.session, ColorKind::Mix), (std::vector<std::string>{"D65"}));
  EXPECT_TRUE(KnownSubstrates(room.session, ColorKind::Basic).empty());
}

}  // namespace
}  // namespace vellumark
