#include <fmt/format.h>

#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/exchange/formula_merge.h"
#include "core/exchange/merge_sets.h"
#include "core/exchange/present_recipes.h"

namespace vellumark {
namespace {

std::string ColumnsOfRecipe() {
  std::string columns = "AddSetName, LastModified";
  for (int n = 0; n < schema::kIngredientSlots; ++n) columns += fmt::format(", BC{0}, BQ{0}", n);
  return columns;
}

std::string Signed(double more) {
  return (more > 0 ? "+" : "") + Fixed(more, 3);
}

std::string Shown(std::string content) {
  std::ranges::replace(content, '\t', ' ');
  return CharCount(content) > 100 ? Left(content, 97) + "..." : content;
}

// A line for each ingredient of one formula that is not alike on both sides.
struct Difference {
  std::string name;
  MergeMod mod = MergeMod::New;
  MergeLine line;
};

}  // namespace

PresentRecipes::PresentRecipes(const Session& session, std::string_view database)
    : row_(session.File().Prepare(fmt::format("SELECT {} FROM {} WHERE RowKey = ?", ColumnsOfRecipe(),
                                              session.QuotedTable(schema::Mix, database)))) {}

PresentRecipe PresentRecipes::Read(std::int64_t key) {
  PresentRecipe present;
  if (row_.Bind(1, key).Step()) {
    present.AddSetName = row_.Text(0);
    present.LastModified = row_.Date(1);
    for (int n = 0; n < schema::kIngredientSlots && !row_.TextView(2 + 2 * n).empty(); ++n)
      present.recipe.push_back({row_.Text(2 + 2 * n), ShownAmount(row_.Single(3 + 2 * n))});
  }
  row_.Reset();
  return present;
}

std::vector<MergeLine> CompareLines(Session& session, const MergePlan& plan, std::size_t place) {
  const MergeChoice& choice = plan.choices.at(place);
  Recipe here;
  if (choice.key != 0) here = PresentRecipes(session, plan.target.database).Read(choice.key).recipe;
  std::vector<MergeLine> lines;
  for (const Ingredient& part : plan.table.formulas[place].recipe) {
    MergeLine line{part.name, 0, part.amount, false, true, "added"};
    const auto held =
        std::ranges::find_if(here, [&](const Ingredient& other) { return EqualNoCase(other.name, part.name); });
    if (held != here.end()) {
      line.here = held->amount;
      line.isHere = true;
      const double more = RoundTo(line.there - line.here, 3);
      line.change = more == 0 ? "" : Signed(more);
      here.erase(held);
    }
    if (choice.key == 0) line.change.clear();
    lines.push_back(std::move(line));
  }
  for (const Ingredient& gone : here) lines.push_back({gone.name, gone.amount, 0, true, false, "gone"});
  return lines;
}

std::string ChangesText(Session& session, const MergePlan& plan, std::size_t place) {
  const MergeChoice& choice = plan.choices.at(place);
  std::string text = choice.why;
  const auto add = [&text](const std::string& more) { text += (text.empty() ? "" : ", ") + more; };
  if (choice.mod == MergeMod::Different) {
    for (const MergeLine& line : CompareLines(session, plan, place))
      if (!line.change.empty()) add(line.name + " " + line.change);
    const std::string set = SetHere(plan, plan.table.formulas[place].addSetName);
    const std::string now = PresentRecipes(session, plan.target.database).Read(choice.key).AddSetName;
    if (!EqualNoCase(set, now))
      add(fmt::format("Additive Set {} in the place of {}", set.empty() ? "none" : set, now.empty() ? "none" : now));
    if (text.empty()) add("the ingredients stand in another order");
  }
  if (choice.hasFormulas && choice.mod != MergeMod::Refused)
    add(plan.options.multiplyOut ? "multiplied out" : "an ingredient is a formula itself");
  return text;
}

std::string RefusedText(const MergePlan& plan) {
  std::vector<BadLine> bad = plan.table.badLines;
  for (std::size_t place = 0; place < plan.choices.size(); ++place) {
    const SourceColor& formula = plan.table.formulas[place];
    if (plan.choices[place].mod == MergeMod::Refused)
      bad.push_back({formula.line, formula.name, plan.choices[place].why});
  }
  std::ranges::stable_sort(bad, {}, &BadLine::line);
  std::string text;
  for (const BadLine& line : bad) {
    text += text.empty() ? "" : "\n";
    if (!line.formula.empty()) {
      text += fmt::format(
          "The Master Formula at line {} of the import file. {} is new to the database, however there is either no "
          "valid formula specified in the imported data, or you did not choose to import formulas. ",
          line.line, line.formula);
    } else if (line.line == 0) {
      text += fmt::format("{}: {}", Shown(line.content), line.why);
    } else {
      text += fmt::format("Couldn't interpret textfile data at line {}: {} ({})", line.line, line.why,
                          Shown(line.content));
    }
  }
  return text;
}

ListTable PlannedFormulas(Session& session, const MergePlan& plan) {
  return TableOf<std::size_t>()
      .Add("Color_Name", [&plan](std::size_t n) { return plan.table.formulas[n].name; }, "Color")
      .Add("ModType", [&plan](std::size_t n) { return std::string(MergeModText(plan.choices[n].mod)); })
      .Add("InDatabase", [&plan](std::size_t n) { return plan.choices[n].key != 0; }, "In Database", Format::YesNo)
      .Add("Take", [&plan](std::size_t n) { return plan.choices[n].take; }, "Import", Format::YesNo)
      .Add("Changes", [&session, &plan](std::size_t n) { return ChangesText(session, plan, n); })
      .Add("Line", [&plan](std::size_t n) { return static_cast<std::int64_t>(plan.table.formulas[n].line); })
      .Of([&plan](const auto& take) {
        for (std::size_t n = 0; n < plan.choices.size(); ++n)
          if (!take(n)) return;
      });
}

ListTable PlannedDifferences(Session& session, const MergePlan& plan) {
  const auto amount = [](bool is, double value) { return is ? TableValue(value) : TableValue(); };
  return TableOf<Difference>()
      .Add("Color_Name", &Difference::name, "Color")
      .Add("ModType", [](const Difference& d) { return std::string(MergeModText(d.mod)); })
      .Add("Ingredient", [](const Difference& d) { return d.line.name; })
      .Add("Here", [amount](const Difference& d) { return amount(d.line.isHere, d.line.here); }, "In Database",
           Format::Amount)
      .Add("There", [amount](const Difference& d) { return amount(d.line.isThere, d.line.there); }, "Mod1",
           Format::Amount)
      .Add("Change", [](const Difference& d) { return d.line.change; })
      .Of([&session, &plan](const auto& take) {
        for (std::size_t n = 0; n < plan.choices.size(); ++n) {
          if (plan.choices[n].mod != MergeMod::Different) continue;
          for (MergeLine& line : CompareLines(session, plan, n)) {
            if (line.change.empty()) continue;
            if (!take(Difference{plan.table.formulas[n].name, plan.choices[n].mod, std::move(line)})) return;
          }
        }
      });
}

}  // namespace vellumark
