// Windows show what a committed write tells: each act on a colour, formula or set tells what it did, one that was not
// done tells nothing.

#include <gtest/gtest.h>

#include "core/colors/additive_control.h"
#include "core/colors/additive_sets.h"
#include "core/colors/basic_work.h"
#include "core/colors/basics.h"
#include "core/colors/formula_work.h"
#include "core/colors/formulas.h"
#include "core/colors/rename.h"
#include "support/ink_room.h"

namespace vellumark {
namespace {

using What = Change::What;
using Kind = Change::Kind;

TEST(Notices, EveryActTellsWhatItDid) {
  test::InkRoom room;
  Session& session = room.session;
  room.Basic("RED");
  room.Basic("BLUE");
  room.Basic("SPARE");
  room.Basic("DRIER", {{"Additive", true}});
  room.Mix("PINK", {{"RED", 60}, {"BLUE", 40}});
  std::vector<Change> told;
  const auto subscription =
      session.changes.Subscribe([&](const auto& changes) { told.insert(told.end(), changes.begin(), changes.end()); });
  const auto set = [&] {
    AdditiveSetWork work;
    work.SetName = "DRY";
    work.rows[0] = {"DRIER", "2"};
    return work;
  };
  const struct {
    const char* act;
    std::function<bool()> does;
    Change tells;
  } acts[] = {
      {"new Basic",
       [&] {
         BasicWork work = NewBasicWork(session, "GREEN");
         return SaveBasic(session, work).has_value();
       },
       {Kind::Basic, "INK", "GREEN", What::Added, ""}},
      {"changed Basic",
       [&] {
         BasicWork work = LoadBasicWork(session, *ReadBasic(session, "RED"));
         work.Notes = "strong";
         return SaveBasic(session, work).has_value();
       },
       {Kind::Basic, "INK", "RED", What::Updated, ""}},
      {"renamed Basic",
       [&] { return RenameBasic(session, "BLUE", "NAVY").has_value(); },
       {Kind::Basic, "INK", "BLUE", What::Renamed, "NAVY"}},
      {"deleted Basic",
       [&] {
         room.prompt.Expect("Basic Color Window - Delete Basic Color?", Answer::Yes);
         return DeleteBasic(session, "SPARE").value_or(false);
       },
       {Kind::Basic, "INK", "SPARE", What::Deleted, ""}},
      {"changed formula",
       [&] {
         FormulaWork work = LoadFormulaWork(session, *ReadMix(session, "PINK"));
         work.Notes = "soft";
         return SaveMix(session, work).has_value();
       },
       {Kind::Mix, "INK", "PINK", What::Updated, ""}},
      {"changed recipe",
       [&] {
         FormulaWork work = LoadFormulaWork(session, *ReadMix(session, "PINK"));
         work.grid[0].BQ = "50";
         work.grid[1].BQ = "50";
         return SaveFormula(session, work).has_value();
       },
       {Kind::Mix, "INK", "PINK", What::Updated, ""}},
      {"new set",
       [&] { return CreateAdditiveSet(session, set()).has_value(); },
       {Kind::AdditiveSet, "INK", "DRY", What::Added, ""}},
      {"deleted formula",
       [&] {
         room.prompt.Expect("Master Formula - Delete Master Formula?", Answer::Yes);
         return DeleteMix(session, "PINK").value_or(false);
       },
       {Kind::Mix, "INK", "PINK", What::Deleted, ""}},
  };
  for (const auto& act : acts) {
    SCOPED_TRACE(act.act);
    told.clear();
    EXPECT_TRUE(act.does());
    EXPECT_NE(std::ranges::find(told, act.tells), told.end());
  }
  told.clear();
  EXPECT_FALSE(DeleteBasic(session, "RED GONE").value_or(false));
  EXPECT_FALSE(RenameBasic(session, "RED", "NAVY!\n").has_value());
  EXPECT_TRUE(told.empty());
}

}  // namespace
}  // namespace vellumark
