#include <gtest/gtest.h>

#include "core/colors/basics.h"
#include "core/colors/bulk_delete.h"
#include "core/colors/bulk_rename.h"
#include "core/colors/formulas.h"
#include "support/ink_room.h"
#include "support/snapshot.h"

namespace vellumark {
namespace {

struct BulkRoom : test::InkRoom {
  BulkRoom() {
    for (const char* name : {"RED", "BLUE"}) Basic(name);
    for (const char* name : {"SKY", "SKY X", "ROSE"}) Mix(name, {{"RED", 50.0F}, {"BLUE", 50.0F}});
    AddRow(schema::MixLotInv, {{"LotRefID", 1}, {"LotCName", "SKY"}, {"LotQty", 2.0F}});
    AddRow(schema::MixLab, {{"Color_Name", "SKY"}});
    AddRow(schema::Batch, {{"BatchNo", 1}, {"Color_Name", "SKY"}});
  }
  std::int64_t Count(const std::string& table, const std::string& field, const std::string& name) {
    return Scalar("SELECT COUNT(*) FROM " + table + " WHERE " + field + " = ?", {name}).Whole();
  }
};

TEST(BulkRename, RefusalsOfTheRule) {
  BulkRoom room;
  room.Breaks("Ingredients");
  room.Breaks("LotReferences");
  const Refusal none{"Enter Rename Data", "No data has been entered for renameing procedure.", "txtPrefix"};
  const struct {
    BulkRename rule;
    std::vector<std::string> colors;
    Refusal refusal;
  } cases[] = {
      {{ColorKind::Mix, NameChange::Prefix, "", ""}, {}, {"Select Color", "No colors selected for renaming.", ""}},
      {{ColorKind::Mix, NameChange::Prefix, "My Pantone ", ""},
       {"SKY"},
       {"Bad Prefix", "PANTONE cannot be used for a prefix", "txtPrefix"}},
      {{ColorKind::Mix, NameChange::Prefix, " ", ""}, {"SKY"}, none},
      {{ColorKind::Mix, NameChange::Prefix, "X", ""},
       {"GONE"},
       {"Color Not Found", "GONE is not found in this database.", "Color_Name"}},
  };
  for (const auto& c : cases) EXPECT_EQ(PreviewRename(room.session, c.rule, c.colors).error(), c.refusal);
  EXPECT_FALSE(PreviewRename(room.session, {ColorKind::Mix, NameChange::Suffix, "<X>", ""}, {"SKY"}));
  room.session.File().Execute("DELETE FROM INK_Basic");
  EXPECT_EQ(PreviewRename(room.session, {ColorKind::Basic, NameChange::Suffix, "X", ""}, {}).error(),
            (Refusal{"Database - Rename Colors", "There are no colors to rename.", "optType"}));
}

TEST(BulkRename, NewNamesAndReasons) {
  BulkRoom room;
  room.Breaks("LotReferences");
  room.Mix("FIFTEEN LETTERS AND FIFTEEN MO", {{"RED", 100.0F}});
  room.Mix("X PANTONE 9", {{"RED", 100.0F}});
  room.Mix("S-1", {{"RED", 100.0F}});
  room.Mix("S1", {{"RED", 100.0F}});
  room.Mix("S--1", {{"RED", 100.0F}});
  const std::string duplicate = "Rename creates duplicate color name reference";
  const auto mix = [](NameChange change, std::string text, std::string replacement = {}) {
    return BulkRename{ColorKind::Mix, change, std::move(text), std::move(replacement)};
  };
  const struct {
    BulkRename rule;
    std::vector<std::string> colors;
    std::vector<std::string> outcomes;  // the new name, or "!" and the reason
  } cases[] = {
      {mix(NameChange::Prefix, "my "), {"sky", "SKY", "ROSE"}, {"MY SKY", "MY ROSE"}},
      {mix(NameChange::Suffix, " x"), {"ROSE", "SKY"}, {"ROSE X", "!" + duplicate}},
      {mix(NameChange::Suffix, "R"), {"FIFTEEN LETTERS AND FIFTEEN MO"}, {"!New name exceeds 30 characters"}},
      {mix(NameChange::Replace, "sky", "sea"), {"SKY", "ROSE"}, {"SEA", "!Find string not found in name"}},
      {mix(NameChange::Replace, "X "), {"X PANTONE 9"}, {"!New name cannot begin with word PANTONE"}},
      {mix(NameChange::Replace, "SKY"), {"SKY", "SKY X"}, {"!Rename leaves no name", "X"}},
      {mix(NameChange::Replace, "-", ""), {"S-1"}, {"!" + duplicate}},
      {mix(NameChange::Replace, "-", "AA"), {"S--1"}, {"SAAAA1"}},
      {mix(NameChange::Replace, "SKY", "sky"), {"SKY"}, {"!" + duplicate}},
      {mix(NameChange::Replace, " ", ""), {"SKY X"}, {"SKYX"}},
      {{ColorKind::Basic, NameChange::Suffix, "-2", ""}, {"RED", "BLUE"}, {"RED-2", "BLUE-2"}},
  };
  for (const auto& c : cases) {
    const auto rows = PreviewRename(room.session, c.rule, c.colors);
    ASSERT_TRUE(rows) << rows.error().text;
    std::vector<std::string> outcomes;
    for (const RenamePreviewRow& row : *rows) outcomes.push_back(row.renames ? row.newName : "!" + row.reason);
    EXPECT_EQ(outcomes, c.outcomes);
  }
  // Two of the selection that would share a name stay both.
  room.Mix("T A", {{"RED", 100.0F}});
  room.Mix("T  A", {{"RED", 100.0F}});
  const auto shared = PreviewRename(room.session, mix(NameChange::Replace, " "), {"T A", "T  A"});
  ASSERT_TRUE(shared);
  for (const RenamePreviewRow& row : *shared) EXPECT_EQ(row.reason, duplicate) << row.Color_Name;
}

// Stops the work once it has come to so many percent.
struct StoppingProgress : Progress {
  void Begin(std::string_view) override {}
  void Percent(double percent) override { reached = percent; }
  bool Cancelled() override { return reached >= stopAt; }
  double stopAt = 0;
  double reached = 0;
};

TEST(BulkRename, ThousandsOfNamesInOneWalkOrNone) {
  BulkRoom room;
  room.Breaks("Counters");
  room.Breaks("UniqueNames");
  room.Breaks("LotReferences");
  room.Breaks("BatchLines");
  Database& file = room.session.File();
  const std::string numbers = "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 3000) ";
  file.Execute("INSERT INTO INK_Basic (Color_Name) " + numbers + "SELECT 'I' || i FROM n");
  file.Execute("INSERT INTO INK_Mix (Color_Name, BC0, BQ0, BC1, BQ1, Color_Set) " + numbers +
               "SELECT 'M' || i, 'I' || i, 40.0, 'RED', 60.0, '<I' || i || '><RED>' FROM n");
  file.Execute("INSERT INTO INK_Batch (BatchNo, Color_Name, IngName0, IngType0, IngName19, IngType19) " + numbers +
               "SELECT i, 'M' || i, 'I' || i, 1, 'M' || (3001 - i), 2 FROM n");
  file.Execute("INSERT INTO Designs (DesignID, IngName0, IngType0, IngDB0, IngName1, IngType1, IngDB1, IngSet) " +
               numbers + "SELECT i, 'M' || i, 2, 'INK', 'I' || i, 1, 'INK', '<M' || i || '><I' || i || '>' FROM n");
  std::vector<std::string> mixes;
  std::vector<std::string> basics;
  for (int i = 1; i <= 3000; ++i) {
    mixes.push_back("M" + std::to_string(i));
    basics.push_back("I" + std::to_string(i));
  }
  const BulkRename mixRule{ColorKind::Mix, NameChange::Suffix, " X", ""};
  const BulkRename basicRule{ColorKind::Basic, NameChange::Replace, "I", "INK "};
  const std::string before = test::Snapshot(file);
  StoppingProgress stopping;
  Session other(room.prompt, stopping, room.clock);
  other.DataFileDB = std::move(room.session.DataFileDB);
  other.CurrentDatabase = "INK";
  // In the middle of the colours' own rows, of the formulas, of the other places.
  for (const double percent : {20.0, 60.0, 90.0}) {
    for (const auto& [rule, colors] : {std::pair{mixRule, mixes}, {basicRule, basics}}) {
      stopping = {};
      stopping.stopAt = percent + 100;  // the preview is let through
      ASSERT_TRUE(PreviewRename(other, rule, colors));
      struct : Prompt {
        Answer Show(const Message&) override {
          progress->reached = 0;
          progress->stopAt = at;
          return Answer::Ok;
        }
        StoppingProgress* progress = nullptr;
        double at = 0;
      } starting;
      starting.progress = &stopping;
      starting.at = percent;
      Session stopped(starting, stopping, room.clock);
      stopped.DataFileDB = std::move(other.DataFileDB);
      stopped.CurrentDatabase = "INK";
      EXPECT_EQ(ApplyRename(stopped, rule, colors).error().text, "The work was cancelled. Nothing was changed.");
      EXPECT_GE(stopping.reached, percent);
      other.DataFileDB = std::move(stopped.DataFileDB);
      EXPECT_EQ(test::Snapshot(other.File()), before);
    }
  }
  room.session.DataFileDB = std::move(other.DataFileDB);
  for (const auto& [rule, colors] : {std::pair{mixRule, mixes}, {basicRule, basics}}) {
    room.prompt.Expect("Database Color Rename");
    ASSERT_EQ(ApplyRename(room.session, rule, colors), true);
  }
  const auto all = [&](const std::string& condition, const std::string& table) {
    return room.Scalar("SELECT COUNT(*) FROM " + table + " WHERE " + condition).Whole();
  };
  EXPECT_EQ(all("Color_Name LIKE 'M% X' AND BC0 = 'INK ' || substr(Color_Name, 2, length(Color_Name) - 3) AND "
                "Color_Set = '<' || BC0 || '><RED>'",
                "INK_Mix"),
            3000);
  EXPECT_EQ(all("Color_Name = 'M' || BatchNo || ' X' AND IngName0 = 'INK ' || BatchNo AND IngName19 = 'M' || (3001 - "
                "BatchNo) || ' X'",
                "INK_Batch"),
            3000);
  EXPECT_EQ(
      all("IngSet = '<M' || DesignID || ' X><INK ' || DesignID || '>' AND IngName1 = 'INK ' || DesignID", "Designs"),
      3000);
}

TEST(BulkRename, RenamesEverywhereOrNothing) {
  BulkRoom room;
  room.Breaks("LotReferences");
  room.Breaks("StockHistory");
  const BulkRename rule{ColorKind::Mix, NameChange::Prefix, "L-", ""};
  const std::string before = test::Snapshot(room.session.File());
  EXPECT_EQ(ApplyRename(room.session, {ColorKind::Mix, NameChange::Suffix, " X", ""}, {"ROSE", "SKY"}).error().text,
            "SKY: Rename creates duplicate color name reference");
  room.prompt.Expect("Database Color Rename", Answer::Cancel,
                     "You are about to rename 2 colors in the INK Database.\n\nClick OK to continue.");
  EXPECT_EQ(ApplyRename(room.session, rule, {"SKY", "ROSE"}), false);
  EXPECT_EQ(test::Snapshot(room.session.File()), before);

  room.prompt.Expect("Database Color Rename");
  EXPECT_EQ(ApplyRename(room.session, rule, {"SKY", "ROSE"}), true);
  EXPECT_TRUE(MixColorExists(room.session, "L-SKY") && MixColorExists(room.session, "L-ROSE"));
  for (const auto& [table, field] : {std::pair{"INK_Mix", "Color_Name"},
                                     {"INK_Mix_LotInv", "LotCName"},
                                     {"INK_Mix_LAB", "Color_Name"},
                                     {"INK_Batch", "Color_Name"}}) {
    EXPECT_EQ(room.Count(table, field, "SKY"), 0) << table;
    EXPECT_EQ(room.Count(table, field, "L-SKY"), 1) << table;
  }

  room.prompt.Expect("Database Color Rename");
  EXPECT_EQ(ApplyRename(room.session, {ColorKind::Basic, NameChange::Replace, "E", "EE"}, {"RED", "BLUE"}), true);
  EXPECT_EQ(ReadMix(room.session, "L-SKY")->Color_Set, "<REED><BLUEE>");
  EXPECT_TRUE(BasicColorExists(room.session, "REED"));
}

TEST(BulkDelete, FormulasGoWithTheirLotsUnlessADesignUsesOne) {
  BulkRoom room;
  room.Breaks("UniqueNames");
  room.AddRow(schema::Designs, {{"IngSet", "<ROSE>"}, {"IngName0", "ROSE"}, {"IngType0", 2}, {"IngDB0", "INK"}});
  const std::string before = test::Snapshot(room.session.File());
  const auto preview = PreviewDeleteFormulas(room.session, {"SKY", "ROSE", "sky"});
  ASSERT_TRUE(preview);
  ASSERT_EQ(preview->size(), 2U);
  EXPECT_TRUE((*preview)[0].deletes);
  EXPECT_EQ((*preview)[1].reason, "Color is used in a Job Design.");
  EXPECT_EQ(DeleteFormulas(room.session, {}).error().text, "No Master Formulas selected.");
  EXPECT_EQ(DeleteFormulas(room.session, {"SKY"}, "OTHER").error().text, "There is no Database OTHER.");
  EXPECT_EQ(DeleteFormulas(room.session, {"SKY", "ROSE"}).error().title, "Additive Set Color");
  room.session.CurrentUser = "ANNA";
  room.session.Perm_MasterFormula = 0;
  EXPECT_EQ(DeleteFormulas(room.session, {"SKY"}).error().title, "Permission Denied");
  room.session.Perm_MasterFormula = 1;
  room.prompt.Expect("Confirm Delete", Answer::Cancel,
                     "OK to delete Master Formulas from database: INK\n\nSelected colors will be removed permanently.");
  EXPECT_EQ(DeleteFormulas(room.session, {"SKY", "SKY X"}), false);
  EXPECT_EQ(test::Snapshot(room.session.File()), before);

  room.prompt.Expect("Confirm Delete")
      .Expect("Master Formula Deletion", Answer::Ok, "The Selected Master Formulas have been deleted.");
  EXPECT_EQ(DeleteFormulas(room.session, {"SKY", "SKY X"}, "ink"), true);
  EXPECT_EQ(MixNames(room.session), std::vector<std::string>{"ROSE"});
  EXPECT_EQ(room.Count("INK_Mix_LotInv", "LotCName", "SKY"), 0);
  EXPECT_EQ(room.Count("INK_Mix_LAB", "Color_Name", "SKY"), 0);
  EXPECT_EQ(room.Count("INK_Batch", "Color_Name", "SKY"), 1);
}

}  // namespace
}  // namespace vellumark
