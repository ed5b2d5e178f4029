#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "core/base/number.h"
#include "core/colors/additive_control.h"
#include "core/colors/basics.h"
#include "core/colors/bulk_rename.h"
#include "core/colors/duplicate.h"
#include "core/colors/formula_modifier.h"
#include "core/colors/formula_work.h"
#include "core/colors/rename.h"
#include "core/colors/rollup.h"
#include "support/ink_room.h"

namespace vellumark {
namespace {

// Says Yes and OK to whatever comes.
struct Agreeing final : Prompt {
  Answer Show(const Message& message) override {
    const bool yes = message.buttons == Buttons::YesNo || message.buttons == Buttons::YesNoCancel;
    return yes ? Answer::Yes : Answer::Ok;
  }
};

// Two Databases in the hands of somebody who tries everything that changes recipes, with amounts of all sizes.
struct BusyRoom {
  explicit BusyRoom(unsigned seed) : random(seed) {
    CreateEmptyDatabase(room.session.File(), "OTHER");
    session.support = std::move(room.session.support);
    session.DataFileDB = std::move(room.session.DataFileDB);
    session.databaseList = {"INK", "OTHER"};
    session.CurrentDatabase = "INK";
  }
  ~BusyRoom() {
    RunPendingPasses(session);
    room.session.support = std::move(session.support);
    room.session.DataFileDB = std::move(session.DataFileDB);
  }

  int Pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }
  std::string Ink() { return "INK " + std::to_string(Pick(1, 9)); }
  std::string Additive() { return "ADD " + std::to_string(Pick(1, 4)); }
  std::string Formula() { return "MIX " + std::to_string(Pick(1, 12)); }
  std::string SetName() { return "SET " + std::to_string(Pick(1, 3)); }
  std::string Amount() {
    const int kind = Pick(0, 3);
    return kind == 0 ? "0.001" : kind == 1 ? "999" : Fixed(Pick(1, 99'999) / 1000.0, 3);
  }
  std::string Percent(int most) { return Fixed(Pick(1, 100 * most) / 100.0, 2); }

  FormulaWork NewWork() {
    const auto mix = ReadMix(session, Formula());
    FormulaWork work = mix ? LoadFormulaWork(session, *mix) : NewFormulaWork(session, Formula());
    work.AllowEditing = true;
    work.grid = {};
    for (int row = 0, rows = Pick(1, 12); row < rows; ++row) {
      const std::string name = Pick(0, 4) == 0 ? Additive() : Ink();
      const auto slot = static_cast<std::size_t>(row);
      const auto entry = EnterIngredient(session, work, slot, name);
      if (!entry) continue;
      work.grid[slot] = {entry->name, Amount()};
      if (entry->toAdd) work.newIngredients.push_back(*entry->toAdd);
    }
    if (Pick(0, 1) == 0) (void)ChooseAdditiveSet(session, work, Pick(0, 2) == 0 ? "" : SetName());
    return work;
  }
  AdditiveSetWork NewSet() {
    AdditiveSetWork work;
    work.SetName = SetName();
    for (std::size_t row = 0; row < static_cast<std::size_t>(Pick(1, 3)); ++row)
      if (const auto name = EnterSetIngredient(session, work, row, Additive())) work.rows[row] = {*name, Percent(10)};
    return work;
  }
  std::vector<ModifierLine> Lines() {
    std::vector<ModifierLine> lines;
    for (int n = 0, count = Pick(1, 3); n < count; ++n) {
      const auto method = static_cast<ModMethod>(Pick(0, 3));
      lines.push_back({true, method, Pick(0, 3) == 0 ? Additive() : Ink(),
                       method == ModMethod::Remove ? "100" : Percent(method == ModMethod::Add ? 50 : 99)});
    }
    return lines;
  }

  void Act() {
    const std::vector<std::function<void()>> acts{
        [&] {
          FormulaWork work = NewWork();
          (void)SaveMix(session, work);
        },
        [&] {
          FormulaWork work = NewWork();
          (void)SaveMix(session, work);
        },
        [&] { (void)CreateAdditiveSet(session, NewSet()); },
        [&] {
          const AdditiveSetWork set = NewSet();
          (void)EditAdditiveSet(session, set.SetName, set);
        },
        [&] { (void)ApplyAdditiveSet(session, SetName(), SetMethod::Add, {Formula()}); },
        [&] { (void)ApplyAdditiveSet(session, SetName(), SetMethod::Remove, {Formula()}); },
        [&] {
          if (Pick(0, 3) == 0) (void)DeleteAdditiveSet(session, SetName());
        },
        [&] { (void)RenameBasic(session, Pick(0, 1) == 0 ? Additive() : Ink(), Pick(0, 1) == 0 ? Additive() : Ink()); },
        [&] { (void)RenameColor(session, Formula(), Formula()); },
        [&] { (void)ApplyModifier(session, Lines(), {Formula()}); },
        [&] { (void)DuplicateFormula(session, Formula(), Formula(), Pick(0, 1) == 0 ? "OTHER" : "INK", ""); },
        [&] {
          (void)ApplyRename(session, {ColorKind::Basic, NameChange::Replace, "INK", "ADD"}, {Ink()});
        },
        [&] {
          const auto mix = ReadMix(session, Formula());
          if (!mix) return;
          FormulaWork work = LoadFormulaWork(session, *mix);
          (void)AdjustFormula(session, work, static_cast<FormulaAdjustment>(Pick(0, 2)), Ink(), Percent(99));
        },
        [&] { RunPendingPasses(session); },
    };
    acts[static_cast<std::size_t>(Pick(0, static_cast<int>(acts.size()) - 1))]();
  }

  test::InkRoom room;
  Agreeing prompt;
  Session session{prompt, room.progress, room.clock};
  std::mt19937 random;
};

TEST(RandomRecipes, EveryActLeavesASoundFile) {
  for (unsigned seed = 1; seed <= 6; ++seed) {
    BusyRoom busy(seed);
    for (int act = 0; act < 120; ++act) {
      busy.Act();
      const auto faults = CheckDataFileRules(busy.session, CheckDepth::Deep, CheckState::InUse).faults;
      ASSERT_TRUE(faults.empty()) << "seed " << seed << ", act " << act << ": " << FaultText(faults.front());
      for (const std::string& name : MixNames(busy.session)) {
        const MixColor mix = *ReadMix(busy.session, name);
        ASSERT_EQ(LostShare(mix.Ingredients()), nullptr) << "seed " << seed << ", act " << act << ": " << name;
        // A set never stands alone in a formula.
        const auto set = ReadAdditiveSet(busy.session, mix.AddSetName);
        ASSERT_FALSE(set && WithoutSet(mix.Ingredients(), set->Rows()).empty()) << "seed " << seed << ": " << name;
      }
    }
    EXPECT_GT(MixNames(busy.session).size(), 3U);
  }
}

}  // namespace
}  // namespace vellumark
