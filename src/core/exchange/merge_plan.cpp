#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/additive_sets.h"
#include "core/colors/formulas.h"
#include "core/colors/stored_names.h"
#include "core/datafile/databases.h"
#include "core/exchange/formula_merge.h"
#include "core/exchange/merge_sets.h"
#include "core/exchange/multiply_out.h"
#include "core/exchange/present_recipes.h"

namespace vellumark {
namespace {

constexpr std::string_view kTitle = "Import Formulas";

bool TotalsHundred(const Recipe& recipe) {
  return TotalOf(recipe) == 100 && std::ranges::all_of(recipe, [](const Ingredient& line) {
           return line.amount == RoundTo(line.amount, 3);
         });
}

// Where the source has no order of ingredients, that of the Database is as good.
bool SameRecipe(const Recipe& a, const Recipe& b, bool ordered) {
  const auto same = [](const Ingredient& x, const Ingredient& y) {
    return static_cast<float>(x.amount) == static_cast<float>(y.amount) && EqualNoCase(x.name, y.name);
  };
  return a.size() == b.size() && (std::ranges::equal(a, b, same) || (!ordered && std::ranges::is_permutation(a, b, same)));
}

// What is wrong with a recipe under the names of the Database; empty when nothing.
std::string FaultOf(const Recipe& recipe) {
  for (std::size_t n = 0; n < recipe.size(); ++n)
    for (std::size_t earlier = 0; earlier < n; ++earlier)
      if (EqualNoCase(recipe[earlier].name, recipe[n].name))
        return fmt::format("the ingredient {} stands in it twice", recipe[n].name);
  if (const Ingredient* lost = LostShare(recipe)) return LostShareText(*lost);
  return {};
}

class Planner {
 public:
  Planner(Session& session, MergePlan& plan) : session_(session), plan_(plan) {
    if (plan.target.make) return;
    basicNames_ = StoredNames(session, ColorKind::Basic, plan.target.database);
    mixNames_ = StoredNames(session, ColorKind::Mix, plan.target.database);
  }

  void Run() {
    for (BadLine& bad : plan_.table.badLines)
      if (!bad.formula.empty() && mixNames_.KeyOf(mixNames_.Of(bad.formula)) != 0) bad.formula.clear();
    NameColors();
    plan_.choices.resize(plan_.table.formulas.size());
    const IngredientNames names{[this](const std::string& name) { return IsBasic(name); },
                                [this](const std::string& name) { return InSource(name); },
                                [this](const std::string& name) { return RecipeHere(name); }};
    const std::vector<OutMultiplied> out = MultiplyOut(names, plan_.table.formulas, plan_.options.multiplyOut);
    PlanSets(session_, plan_);
    // The rows of the Database are read in the order in which they lie.
    std::vector<std::pair<std::int64_t, std::size_t>> order;
    order.reserve(plan_.choices.size());
    for (std::size_t place = 0; place < plan_.choices.size(); ++place) {
      plan_.choices[place].hasFormulas = out[place].hasFormulas;
      order.emplace_back(mixNames_.KeyOf(plan_.table.formulas[place].name), place);
    }
    std::ranges::sort(order);
    for (const auto& [key, place] : order) Decide(place, key, out[place].fault);
    PlanBasics();
  }

 private:
  // Whether an ingredient is a Basic Color, here or in the source.
  bool IsBasic(const std::string& name) const { return basicNames_.KeyOf(name) != 0 || sourceBasics_.contains(name); }
  std::optional<std::size_t> InSource(const std::string& name) const {
    const auto found = places_.find(mixNames_.Of(name));
    if (found == places_.end()) return std::nullopt;
    return found->second;
  }
  std::optional<Recipe> RecipeHere(const std::string& name) const {
    const std::string stored = mixNames_.Of(name);
    if (mixNames_.KeyOf(stored) == 0) return std::nullopt;
    return ReadMix(session_, stored, plan_.target.database)->Ingredients();
  }

  // Everything gets the name that it has or would get here.
  void NameColors() {
    for (std::size_t place = 0; place < plan_.table.basics.size(); ++place) {
      SourceColor& basic = plan_.table.basics[place];
      basic.name = basicNames_.Of(basic.name);
      sourceBasics_.try_emplace(basic.name, place);
    }
    for (SourceSet& set : plan_.table.sets)
      for (Ingredient& line : set.parts) line.name = basicNames_.Of(line.name);
    for (std::size_t place = 0; place < plan_.table.formulas.size(); ++place) {
      SourceColor& formula = plan_.table.formulas[place];
      formula.name = mixNames_.Of(formula.name);
      for (Ingredient& line : formula.recipe) {
        line.name = basicNames_.Of(line.name);
        // Nothing consists of itself: what is meant is the Basic Color of that name.
        if (EqualNoCase(line.name, formula.name)) sourceBasics_.try_emplace(line.name, kNoPlace);
      }
      places_.try_emplace(formula.name, place);
    }
  }

  void Decide(std::size_t place, std::int64_t key, const std::string& faultBefore) {
    SourceColor& formula = plan_.table.formulas[place];
    MergeChoice& choice = plan_.choices[place];
    std::string fault = faultBefore;
    // The first formula of a name has it.
    if (const std::size_t first = places_.find(formula.name)->second; fault.empty() && first != place)
      fault = plan_.table.formulas[first].line == 0
                  ? fmt::format("the formula {} stands in the source already", formula.name)
                  : fmt::format("the formula {} stands in line {} already", formula.name,
                                plan_.table.formulas[first].line);
    if (fault.empty()) {
      Normal(formula);
      fault = FaultOf(formula.recipe);
    }
    if (!fault.empty()) {
      choice.mod = MergeMod::Refused;
      choice.why = std::move(fault);
      return;
    }
    choice.key = key;
    if (choice.key == 0) {
      choice.take = true;
      if (basicNames_.KeyOf(formula.name) != 0) choice.why = "a Basic Color has this name too";
      return;
    }
    if (!present_) present_.emplace(session_, plan_.target.database);
    const PresentRecipe present = present_->Read(choice.key);
    KeepSet(formula, present.AddSetName);
    const bool same = SameRecipe(present.recipe, formula.recipe, plan_.table.ordered) &&
                      EqualNoCase(present.AddSetName, SetHere(plan_, formula.addSetName));
    choice.mod = same ? MergeMod::Same : MergeMod::Different;
  }

  // The formula's own parts are brought to 100, beside the percentages of its set.
  void Normal(SourceColor& formula) const {
    if (TotalsHundred(formula.recipe)) return;
    const auto set = std::ranges::find_if(
        plan_.table.sets, [&](const SourceSet& s) { return EqualNoCase(s.name, formula.addSetName); });
    formula.recipe = formula.addSetName.empty() || set == plan_.table.sets.end()
                         ? Normalise(std::move(formula.recipe))
                         : NormaliseWithSet(formula.recipe, set->parts);
  }

  // A source that tells of no sets leaves a formula the one that it has, where the recipe still holds it.
  void KeepSet(SourceColor& formula, const std::string& setName) {
    if (!plan_.table.sets.empty() || setName.empty() || !formula.addSetName.empty()) return;
    const auto [place, isNew] = setsHere_.try_emplace(setName);
    if (isNew) place->second = ReadAdditiveSet(session_, setName, plan_.target.database);
    if (!place->second) return;
    const Recipe rows = place->second->Rows();
    const bool held = !rows.empty() && rows.size() < formula.recipe.size() &&
                      std::ranges::all_of(rows, [&](const Ingredient& row) {
                        return std::ranges::any_of(formula.recipe, [&](const Ingredient& line) {
                          return line.amount == row.amount && EqualNoCase(line.name, row.name);
                        });
                      });
    if (!held) return;
    formula.addSetName = setName;
    if (SetHere(plan_, setName).empty()) plan_.sets.push_back({setName, setName, true, {}});
  }

  void PlanBasics() {
    NameMap<std::size_t> missing;
    const auto need = [&](const std::string& name, std::size_t place, std::size_t uses) {
      if (basicNames_.KeyOf(name) != 0) return;
      const auto [found, isNew] = missing.try_emplace(name, plan_.basics.size());
      if (isNew) plan_.basics.push_back({name, place, 0});
      plan_.basics[found->second].uses += uses;
    };
    for (std::size_t place = 0; place < plan_.table.basics.size(); ++place) need(plan_.table.basics[place].name, place, 0);
    for (std::size_t place = 0; place < plan_.choices.size(); ++place) {
      if (plan_.choices[place].mod == MergeMod::Refused) continue;
      for (const Ingredient& line : plan_.table.formulas[place].recipe) need(line.name, kNoPlace, 1);
    }
    for (const SourceSet& set : plan_.table.sets)
      for (const Ingredient& line : set.parts) need(line.name, kNoPlace, 0);
  }

  Session& session_;
  MergePlan& plan_;
  StoredNames basicNames_;
  StoredNames mixNames_;
  NameMap<std::size_t> sourceBasics_;  ///< places in the table, or kNoPlace
  NameMap<std::size_t> places_;        ///< of formulas, by their names here
  NameMap<std::optional<AdditiveSet>> setsHere_;
  std::optional<PresentRecipes> present_;
};

Result<MergeTarget> ReadTarget(const Session& session, const MergeTarget& wanted) {
  MergeTarget target = wanted;
  if (target.make) {
    auto name = NewDatabaseName(target.database, session.databaseList, session.DataFileName);
    if (!name) return std::unexpected(name.error());
    target.database = *std::move(name);
    return target;
  }
  const std::string* name = session.FindDatabase(TrimView(target.database));
  if (name == nullptr)
    return Refuse("Database Not Found",
                  fmt::format("The {} Data File has no Database named {}.", session.DataFileName, target.database),
                  "cmbDBList");
  target.database = *name;
  return target;
}

}  // namespace

std::string_view MergeModText(MergeMod mod) {
  switch (mod) {
    case MergeMod::New:
      return "New";
    case MergeMod::Different:
      return "Different";
    case MergeMod::Same:
      return "Same";
    case MergeMod::Refused:
      break;
  }
  return "Refused";
}

std::size_t MergePlan::Count(MergeMod mod) const {
  return static_cast<std::size_t>(std::ranges::count(choices, mod, &MergeChoice::mod));
}

std::size_t MergePlan::Taken() const {
  return static_cast<std::size_t>(std::ranges::count(choices, true, &MergeChoice::take));
}

bool MergePlan::HasFormulasAsIngredients() const {
  return std::ranges::any_of(choices, &MergeChoice::hasFormulas);
}

Result<MergePlan> PlanMerge(Session& session, FormulaTable table, const MergeTarget& target,
                            const MergeOptions& options) {
  auto read = ReadTarget(session, target);
  if (!read) return std::unexpected(read.error());
  if (table.source == session.DataFileName && EqualNoCase(table.database, read->database))
    return Refuse("Database Copy Error", "Import destination cannot be the same as the source", "cmbDBList");
  MergePlan plan{std::move(table), *std::move(read), options, {}, {}, {}};
  Planner(session, plan).Run();
  return plan;
}

Result<void> Choose(MergePlan& plan, TakeWhat what, const std::vector<std::string>& names) {
  NamesOnce wanted;
  for (const std::string& typed : names) wanted.insert(Upper(TrimView(typed)));
  NamesOnce found;
  for (std::size_t place = 0; place < plan.choices.size(); ++place) {
    MergeChoice& choice = plan.choices[place];
    const std::string& name = plan.table.formulas[place].name;
    const auto held = wanted.find(name);
    if (held != wanted.end()) found.insert(name);
    const bool fits = (choice.mod == MergeMod::New && (what == TakeWhat::New || what == TakeWhat::All)) ||
                      (choice.mod == MergeMod::Different && (what == TakeWhat::Changed || what == TakeWhat::All));
    choice.take = fits && (wanted.empty() || held != wanted.end());
  }
  for (const std::string& name : names)
    if (!found.contains(Upper(TrimView(name))))
      return Refuse(std::string(kTitle),
                    fmt::format("The Master Formula {} was not found in {}.", Upper(TrimView(name)), plan.table.source),
                    "NAME");
  return {};
}

}  // namespace vellumark
