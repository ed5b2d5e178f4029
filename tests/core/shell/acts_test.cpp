#include "core/session/acts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>

#include "core/batch/default_models.h"
#include "core/colors/additive_control.h"
#include "core/colors/bulk_delete.h"
#include "core/colors/bulk_rename.h"
#include "core/colors/formula_modifier.h"
#include "core/colors/formula_work.h"
#include "core/colors/resets.h"
#include "core/exchange/formula_export.h"
#include "core/exchange/formula_import.h"
#include "core/inventory/adjust.h"
#include "core/session/options.h"
#include "core/session/setting_acts.h"
#include "core/session/settings.h"
#include "core/session/users.h"
#include "core/shell/change_setting.h"
#include "core/shell/database_menu.h"
#include "support/ink_room.h"

namespace vellumark {
namespace {

struct Rule {
  const char* name;
  Act act;
  std::function<std::optional<Refusal>(Session&)> call;
};

template <class T>
std::optional<Refusal> RefusalOf(const Result<T>& result) {
  if (result) return std::nullopt;
  return result.error();
}

// Procedures that windows and commands call, each with values that its right alone keeps from being looked at.
const Rule kRules[] = {
    {"CreateAdditiveSet", Act::AdditiveSets, [](Session& s) { return RefusalOf(CreateAdditiveSet(s, {})); }},
    {"EditAdditiveSet", Act::AdditiveSets, [](Session& s) { return RefusalOf(EditAdditiveSet(s, "SET", {})); }},
    {"RenameAdditiveSet", Act::AdditiveSets, [](Session& s) { return RefusalOf(RenameAdditiveSet(s, "SET", "NEW")); }},
    {"DeleteAdditiveSet", Act::AdditiveSets, [](Session& s) { return RefusalOf(DeleteAdditiveSet(s, "SET")); }},
    {"ApplyAdditiveSet", Act::AdditiveSets,
     [](Session& s) { return RefusalOf(ApplyAdditiveSet(s, "SET", SetMethod::Add, {"X"})); }},
    {"ApplyModifier", Act::FormulaTools, [](Session& s) { return RefusalOf(ApplyModifier(s, {}, {"X"})); }},
    {"ApplyRename of basics", Act::FormulaTools,
     [](Session& s) {
       BulkRename rule;
       rule.kind = ColorKind::Basic;
       return RefusalOf(ApplyRename(s, rule, {"X"}));
     }},
    {"ApplyRename of formulas", Act::BulkFormulas,
     [](Session& s) {
       BulkRename rule;
       rule.kind = ColorKind::Mix;
       return RefusalOf(ApplyRename(s, rule, {"X"}));
     }},
    {"DeleteFormulas", Act::BulkFormulas, [](Session& s) { return RefusalOf(DeleteFormulas(s, {"X"})); }},
    {"ExportFormulas", Act::ExportFormulas,
     [](Session& s) { return RefusalOf(ExportFormulas(s, FormulaFormat::Mfe, {.names = {"X"}}, "/nowhere/x.mfe")); }},
    {"ImportTable", Act::ImportFormulas, [](Session& s) { return RefusalOf(ImportTable(s, {})); }},
    {"RunMerge", Act::ImportFormulas, [](Session& s) { return RefusalOf(RunMerge(s, {})); }},
    {"UndoImport", Act::ImportFormulas, [](Session& s) { return RefusalOf(UndoImport(s)); }},
    {"SaveFormula", Act::EditFormulas,
     [](Session& s) {
       FormulaWork work;
       return RefusalOf(SaveFormula(s, work));
     }},
    {"ResetBasicCosts", Act::ResetCosts, [](Session& s) { return RefusalOf(ResetBasicCosts(s, "x")); }},
    {"ResetMixCosts", Act::ResetCosts, [](Session& s) { return RefusalOf(ResetMixCosts(s, "x")); }},
    {"ResetMixCostsFromBasics", Act::ResetCosts,
     [](Session& s) { return RefusalOf(ResetMixCostsFromBasics(s, "x", "x")); }},
    {"SaveDefaultCostModel", Act::EditCosts, [](Session& s) { return RefusalOf(SaveDefaultCostModel(s, {})); }},
    {"SaveDefaultEmissionModels", Act::EditEmissions,
     [](Session& s) { return RefusalOf(SaveDefaultEmissionModels(s, 0, 0)); }},
    {"NewDatabase", Act::Databases, [](Session& s) { return RefusalOf(NewDatabase(s, "", {})); }},
    {"RenameDatabase", Act::Databases, [](Session& s) { return RefusalOf(RenameDatabase(s, "X", "Y")); }},
    {"DeleteDatabases", Act::Databases, [](Session& s) { return RefusalOf(DeleteDatabases(s, {"X"})); }},
    {"SaveNameLength", Act::Options, [](Session& s) { return RefusalOf(SaveNameLength(s, "x")); }},
    {"SaveAutofill", Act::Options, [](Session& s) { return RefusalOf(SaveAutofill(s, true)); }},
    {"SaveInventorySettings", Act::Options, [](Session& s) { return RefusalOf(SaveInventorySettings(s, {})); }},
    {"ChangeDecimalPlaces", Act::Options, [](Session& s) { return RefusalOf(ChangeDecimalPlaces(s, 4)); }},
    {"ChangeSetting of a unit", Act::Options, [](Session& s) { return RefusalOf(ChangeSetting(s, "UMI", "x")); }},
    {"ChangeSetting of costs", Act::EditCosts, [](Session& s) { return RefusalOf(ChangeSetting(s, "MarkupPercent", "x")); }},
    {"ChangeSetting of emissions", Act::EditEmissions, [](Session& s) { return RefusalOf(ChangeSetting(s, "HAPModelType", "x")); }},
    {"AddUser", Act::Users, [](Session& s) { return RefusalOf(AddUser(s, {})); }},
    {"DeleteUser", Act::Users, [](Session& s) { return RefusalOf(DeleteUser(s, "X")); }},
};

bool IsDenied(const std::optional<Refusal>& refusal) {
  return refusal && refusal->title == "Permission Denied";
}

const std::pair<CommandRight, UserRights> kWithout[] = {
    {CommandRight::BackupRestore, {1, 2, 1, 0, 1, 1, 1, 1, 1}},
    {CommandRight::Advanced, {1, 2, 1, 1, 0, 1, 1, 1, 1}},
    {CommandRight::Options, {1, 2, 1, 1, 1, 0, 1, 1, 1}},
    {CommandRight::Databases, {1, 2, 1, 1, 1, 1, 0, 1, 1}},
    {CommandRight::DBTools, {1, 2, 1, 1, 1, 1, 1, 0, 1}},
    {CommandRight::Export, {1, 2, 1, 1, 1, 1, 1, 1, 0}},
    {CommandRight::Costs, {1, 1, 1, 1, 1, 1, 1, 1, 1}},
    {CommandRight::Costs, {1, 0, 1, 1, 1, 1, 1, 1, 1}},
    {CommandRight::VOCHAP, {1, 2, 0, 1, 1, 1, 1, 1, 1}},
    {CommandRight::MasterFormula, {0, 2, 1, 1, 1, 1, 1, 1, 1}},
};

TEST(Acts, EveryRuleAsksForTheRightsOfItsAct) {
  test::InkRoom room;
  room.prompt.Expect("", Answer::Ok);
  ASSERT_TRUE(CreateUsers(room.session, "BOSS", "SECRET"));
  room.session.CurrentUser = "ANNA";
  for (const Rule& rule : kRules) {
    SCOPED_TRACE(rule.name);
    const ActRow& row = RowOf(rule.act);
    for (const auto& [right, rights] : kWithout) {
      TakeRights(room.session, rights);
      room.session.IsAdminUser = true;
      const bool wanted = std::ranges::find(row.rights, right) != row.rights.end();
      EXPECT_EQ(IsDenied(rule.call(room.session)), wanted) << static_cast<int>(right);
    }
    // Enough rights are those of the row.
    UserRights just;
    for (const RightField& field : RightFields())
      for (const CommandRight right : row.rights) {
        Session probe(room.prompt, room.progress, room.clock);
        probe.CurrentUser = "ANNA";
        UserRights one;
        one.*field.value = field.full;
        TakeRights(probe, one);
        if (Allows(probe, right)) just.*field.value = field.full;
      }
    TakeRights(room.session, just);
    EXPECT_FALSE(IsDenied(rule.call(room.session)));
    room.session.IsAdminUser = false;
    EXPECT_EQ(IsDenied(rule.call(room.session)), row.administrator);
    // What writes to the file is refused in an archive copy, whoever asks.
    room.session.IsAdminUser = true;
    room.session.ArchiveView = true;
    if (row.writes) {
      EXPECT_TRUE(rule.call(room.session));
    }
    room.session.ArchiveView = false;
  }
}

// Whatever a window stores asks by its key for the right that the window asks for.
TEST(Acts, ASettingAsksForTheRightOfTheWindowThatStoresIt) {
  test::InkRoom room;
  const struct {
    Act act;
    std::function<bool(Session&)> store;
  } windows[] = {
      {Act::EditCosts, [](Session& s) { return SaveDefaultCostModel(s, {1, 2, "3", "4", "5"}).has_value(); }},
      {Act::EditEmissions, [](Session& s) { return SaveDefaultEmissionModels(s, 1, 2).has_value(); }},
      {Act::Options, [](Session& s) { return SaveInventorySettings(s, {1, "2", true, false, 1}).has_value(); }},
      {Act::Options, [](Session& s) { return SaveNameLength(s, "12").has_value(); }},
  };
  std::size_t changed = 0;
  for (const auto& window : windows) {
    const std::vector<SupportRecord> before = room.session.support->settings.Read().Records();
    ASSERT_TRUE(window.store(room.session));
    for (const SupportRecord& record : room.session.support->settings.Read().Records()) {
      if (std::ranges::find(before, record) != before.end()) continue;
      ++changed;
      EXPECT_EQ(static_cast<int>(ActOfSetting(record.key)), static_cast<int>(window.act)) << record.key;
    }
  }
  EXPECT_GE(changed, 11U);
}

}  // namespace
}  // namespace vellumark
