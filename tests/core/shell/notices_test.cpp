// Windows show what a committed write tells: each act of the core tells what it did, one that was not done tells
// nothing.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "core/batch/life_room.h"
#include "core/colors/additive_control.h"
#include "core/colors/additive_sets.h"
#include "core/colors/basic_work.h"
#include "core/colors/basics.h"
#include "core/colors/bulk_delete.h"
#include "core/colors/bulk_rename.h"
#include "core/colors/duplicate.h"
#include "core/colors/formula_modifier.h"
#include "core/colors/formula_work.h"
#include "core/colors/formulas.h"
#include "core/colors/rename.h"
#include "core/colors/resets.h"
#include "core/colors/swatch.h"
#include "core/exchange/formula_export.h"
#include "core/exchange/formula_import.h"
#include "core/inventory/reorder.h"
#include "core/inventory/stock_resets.h"
#include "core/session/settings.h"
#include "core/shell/database_menu.h"

namespace vellumark {
namespace {

using What = Change::What;
using Kind = Change::Kind;

struct Notices : testing::Test, test::LifeRoom {
  struct Act {
    const char* act;
    std::function<bool()> does;
    std::vector<Change> tells;
  };

  Notices() {
    for (const char* name : {"RED", "BLUE", "SPARE"}) Basic(name, 500);
    Basic("DRIER", 0, {{"Additive", true}});
    StoreCurrentDatabase(session.File(), "INK");
    for (const char* name : {"PINK", "ROSE", "PLUM", "SAND"}) Formula(name, {{"RED", 60}, {"BLUE", 40}});
  }

  // Each act after the other, in the room that the ones before it left.
  void Expect(const std::vector<Act>& acts) {
    std::vector<Change> told;
    const auto subscription = session.changes.Subscribe(
        [&](const auto& changes) { told.insert(told.end(), changes.begin(), changes.end()); });
    for (const Act& act : acts) {
      SCOPED_TRACE(act.act);
      told.clear();
      EXPECT_TRUE(act.does());
      for (const Change& change : act.tells) EXPECT_TRUE(Holds(told, change)) << change.name << " in " << Text(told);
    }
  }

  // A change of everything of its kind tells of each.
  static bool Holds(const std::vector<Change>& told, const Change& change) {
    return std::ranges::any_of(told, [&](const Change& one) {
      return one == change || (one.what == What::All && change.what == What::Updated && one.kind == change.kind &&
                               one.database == change.database);
    });
  }
  static std::string Text(const std::vector<Change>& told) {
    std::string text;
    for (const Change& change : told)
      text += std::to_string(static_cast<int>(change.kind)) + "/" + std::to_string(static_cast<int>(change.what)) +
              " " + change.database + " " + change.name + " " + change.newName + "; ";
    return text;
  }

  AdditiveSetWork Set(const char* percent) const {
    AdditiveSetWork work;
    work.SetName = "DRY";
    work.rows[0] = {"DRIER", percent};
    return work;
  }
  template <class T>
  static bool Done(const Result<T>& result) {
    EXPECT_TRUE(result) << (result ? "" : result.error().title + ": " + result.error().text);
    if constexpr (std::is_same_v<T, bool>) return result.value_or(false);
    return result.has_value();
  }
};

TEST_F(Notices, OfColors) {
  Expect({
      {"new Basic",
       [&] {
         BasicWork work = NewBasicWork(session, "GREEN");
         return Done(SaveBasic(session, work));
       },
       {{Kind::Basic, "INK", "GREEN", What::Added, ""}}},
      {"changed Basic",
       [&] {
         BasicWork work = LoadBasicWork(session, *ReadBasic(session, "RED"));
         work.Notes = "strong";
         return Done(SaveBasic(session, work));
       },
       {{Kind::Basic, "INK", "RED", What::Updated, ""}}},
      {"renamed Basic",
       [&] { return Done(RenameBasic(session, "BLUE", "NAVY")); },
       {{Kind::Basic, "INK", "BLUE", What::Renamed, "NAVY"}, {Kind::Mix, "INK", "PINK", What::Updated, ""}}},
      {"merged Basic",
       [&] {
         prompt.Expect(std::string(20, ' ') + "Basic Color Name Exists", Answer::Yes);
         return Done(RenameBasic(session, "GREEN", "RED"));
       },
       {{Kind::Basic, "INK", "GREEN", What::Renamed, "RED"}}},
      {"deleted Basic",
       [&] {
         prompt.Expect("Basic Color Window - Delete Basic Color?", Answer::Yes);
         return DeleteBasic(session, "SPARE").value_or(false);
       },
       {{Kind::Basic, "INK", "SPARE", What::Deleted, ""}}},
      {"changed formula",
       [&] {
         FormulaWork work = LoadFormulaWork(session, *ReadMix(session, "PINK"));
         work.Notes = "soft";
         return Done(SaveMix(session, work));
       },
       {{Kind::Mix, "INK", "PINK", What::Updated, ""}}},
      {"changed recipe",
       [&] {
         FormulaWork work = LoadFormulaWork(session, *ReadMix(session, "PINK"));
         work.grid[0].BQ = "50";
         work.grid[1].BQ = "50";
         return Done(SaveFormula(session, work));
       },
       {{Kind::Mix, "INK", "PINK", What::Updated, ""}}},
      {"swatch",
       [&] { return Done(SetSwatch(session, ColorKind::Basic, "RED", {.Red = 200, .Green = {}, .Blue = {}})); },
       {{Kind::Basic, "INK", "RED", What::Updated, ""}}},
      {"reorder point",
       [&] { return Done(SaveReorderPoint(session, ColorKind::Basic, "RED", "900")); },
       {{Kind::Basic, "INK", "RED", What::Updated, ""}}},
      {"duplicate",
       [&] {
         prompt.Expect("Master Formula - Duplicated");
         return Done(DuplicateFormula(session, "PINK", "CORAL"));
       },
       {{Kind::Mix, "INK", "CORAL", What::Added, ""}}},
      {"deleted formula",
       [&] {
         prompt.Expect("Master Formula - Delete Master Formula?", Answer::Yes);
         return Done(DeleteMix(session, "CORAL"));
       },
       {{Kind::Mix, "INK", "CORAL", What::Deleted, ""}}},
  });
  bool told = false;
  const auto subscription = session.changes.Subscribe([&](const auto&) { told = true; });
  EXPECT_FALSE(DeleteBasic(session, "RED GONE").value_or(false));
  EXPECT_FALSE(RenameBasic(session, "RED", "NAVY!\n").has_value());
  EXPECT_FALSE(told);
}

TEST_F(Notices, OfSetsAndTools) {
  Expect({
      {"new set",
       [&] { return Done(CreateAdditiveSet(session, Set("2"))); },
       {{Kind::AdditiveSet, "INK", "DRY", What::Added, ""}}},
      {"applied set",
       [&] {
         prompt.Expect(std::string(30, ' ') + "Additive Set Modification").Expect("Additive Set Application");
         return Done(ApplyAdditiveSet(session, "DRY", SetMethod::Add, {"PINK", "ROSE"}));
       },
       {{Kind::Mix, "INK", "PINK", What::Updated, ""}, {Kind::Mix, "INK", "ROSE", What::Updated, ""}}},
      {"changed set",
       [&] { return Done(EditAdditiveSet(session, "DRY", Set("3"))); },
       {{Kind::AdditiveSet, "INK", "DRY", What::Updated, ""}, {Kind::Mix, "INK", "PINK", What::Updated, ""}}},
      {"renamed set",
       [&] { return Done(RenameAdditiveSet(session, "DRY", "QUICK")); },
       {{Kind::AdditiveSet, "INK", "DRY", What::Renamed, "QUICK"}, {Kind::Mix, "INK", "PINK", What::Updated, ""}}},
      {"set taken out",
       [&] {
         prompt.Expect(std::string(30, ' ') + "Additive Set Modification").Expect("Additive Set Application");
         return Done(ApplyAdditiveSet(session, "QUICK", SetMethod::Remove, {"ROSE"}));
       },
       {{Kind::Mix, "INK", "ROSE", What::Updated, ""}}},
      {"deleted set",
       [&] {
         prompt.Expect(std::string(40, ' ') + "Confirm Delete", Answer::Yes);
         return Done(DeleteAdditiveSet(session, "QUICK"));
       },
       {{Kind::AdditiveSet, "INK", "QUICK", What::Deleted, ""}, {Kind::Mix, "INK", "PINK", What::Updated, ""}}},
      {"modified formulas",
       [&] {
         prompt.Expect("Database Formula Modifier").Expect("Master Formulas Modified");
         return Done(ApplyModifier(session, {{true, ModMethod::Increase, "RED", "10"}}, {"PINK", "SAND"}));
       },
       {{Kind::Mix, "INK", "PINK", What::Updated, ""}, {Kind::Mix, "INK", "SAND", What::Updated, ""}}},
      {"renamed by rule",
       [&] {
         prompt.Expect("Database Color Rename");
         return Done(ApplyRename(session, {ColorKind::Mix, NameChange::Prefix, "OLD ", ""}, {"SAND", "PLUM"}));
       },
       {{Kind::Mix, "INK", "SAND", What::Renamed, "OLD SAND"}, {Kind::Mix, "INK", "PLUM", What::Renamed, "OLD PLUM"}}},
      {"deleted together",
       [&] {
         prompt.Expect("Confirm Delete").Expect("Master Formula Deletion");
         return Done(DeleteFormulas(session, {"OLD SAND", "OLD PLUM"}));
       },
       {{Kind::Mix, "INK", "OLD SAND", What::Deleted, ""}, {Kind::Mix, "INK", "OLD PLUM", What::Deleted, ""}}},
      {"costs of all Basics",
       [&] { return Done(ResetBasicCosts(session, "3")); },
       {{Kind::Basic, "INK", "", What::All, ""}}},
      {"costs of all formulas",
       [&] { return Done(ResetMixCosts(session, "4")); },
       {{Kind::Mix, "INK", "", What::All, ""}}},
      {"emissions of all Basics",
       [&] { return Done(ResetEmissions(session, ColorKind::Basic, {.VOC = "0.5"})); },
       {{Kind::Basic, "INK", "", What::All, ""}}},
      {"reorder points of all",
       [&] { return Done(ResetReorderPoints(session, {.basics = "5", .mixes = {}})); },
       {{Kind::Basic, "INK", "", What::All, ""}}},
  });
}

TEST_F(Notices, OfBatchesJobsFilesAndTheRest) {
  const std::filesystem::path file = folder / "in.mfe";
  Expect({
      {"saved Batch",
       [&] { return Saved("PINK", "40") == 1; },
       {{Kind::Batch, "INK", "1", What::Added, ""},
        {Kind::Basic, "INK", "RED", What::Updated, ""},
        {Kind::Mix, "INK", "PINK", What::Updated, ""}}},
      {"changed Batch",
       [&] {
         Open(1);
         Remix("60");
         return Save() == 1;
       },
       {{Kind::Batch, "INK", "1", What::Updated, ""}, {Kind::Basic, "INK", "RED", What::Updated, ""}}},
      {"Batch for a job",
       [&] {
         Mixed("PINK", "10");
         return Done(EnterJobNumber(session, record, "J1")) && Save() == 2;
       },
       {{Kind::Batch, "INK", "2", What::Added, ""}, {Kind::Job, "", "J1", What::Updated, ""}}},
      {"Batch for another job",
       [&] {
         Open(2);
         return Done(EnterJobNumber(session, record, "J2")) && Save() == 2;
       },
       {{Kind::Job, "", "J1", What::Updated, ""}, {Kind::Job, "", "J2", What::Updated, ""}}},
      {"deleted Batch",
       [&] {
         Open(2);
         prompt.Expect("Batch Window - Delete Batch?", Answer::Yes)
             .Expect("Batch Window - Update Inventories?", Answer::Yes);
         return Done(DeleteBatch(session, record, dialogs, MoveOn::Nowhere));
       },
       {{Kind::Batch, "INK", "2", What::Deleted, ""},
        {Kind::Basic, "INK", "RED", What::Updated, ""},
        {Kind::Job, "", "J2", What::Updated, ""}}},
      {"exchanged formulas",
       [&] {
         if (!Done(ExportFormulas(session, FormulaFormat::Mfe, {.names = {"PINK"}}, file))) return false;
         prompt.Expect("Master Formula - Delete Master Formula?", Answer::Yes);
         return Done(DeleteMix(session, "PINK")) && Done(ImportFormulas(session, file));
       },
       {{Kind::Mix, "INK", "", What::All, ""}}},
      {"settings",
       [&] { return StoreSettings(session, {setting::UMI.To(3)}), true; },
       {{Kind::Settings, "", "", What::All, ""}}},
      {"new Database",
       [&] { return Done(NewDatabase(session, "FLEXO", {})); },
       {{Kind::DatabaseList, "FLEXO", "", What::Added, ""}}},
      {"renamed Database",
       [&] { return Done(RenameDatabase(session, "FLEXO", "SCREEN")); },
       {{Kind::DatabaseList, "FLEXO", "", What::Renamed, "SCREEN"}}},
      {"deleted Database",
       [&] {
         prompt.Expect("Delete Databases?", Answer::Yes).Expect("Databases Deleted");
         return Done(DeleteDatabases(session, {"SCREEN"}));
       },
       {{Kind::DatabaseList, "SCREEN", "", What::Deleted, ""}, {Kind::Job, "", "", What::All, ""}}},
  });
}

}  // namespace
}  // namespace vellumark
