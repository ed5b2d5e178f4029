#include "core/colors/color_sheets.h"

#include <algorithm>

#include "core/colors/additive_control.h"
#include "core/colors/color_tables.h"

namespace vellumark {
namespace {

struct ComparedLine {
  std::string name;
  double amount = 0;
  std::string change;
};

ListTable ComparedLines(std::vector<ComparedLine> lines) {
  return TableOf<ComparedLine>()
      .Add("Ingredient", &ComparedLine::name)
      .Add("Change", &ComparedLine::change)
      .Add("Parts", &ComparedLine::amount)
      .Total("Total")
      .Show({"Ingredient", "Parts", "Change"})
      .Of(std::move(lines));
}

}  // namespace

Sheet AdditiveSetsSheet(const Session& session, const std::vector<AdditiveSet>& sets) {
  Sheet sheet{.title = "Mix Colors using Additive Set"};
  for (const AdditiveSet& set : sets) {
    sheet.blocks.push_back({.heading = "Set Name : " + set.SetName,
                            .table = RecipeColumns("Additive", "Percent", 2).Total("Total").Of(set.rows)});
    std::vector<std::string> formulas = FormulasWithSet(session, set.SetName);
    if (!formulas.empty())
      sheet.blocks.push_back({.heading = "Colors using this Set : ", .lines = std::move(formulas)});
  }
  return sheet;
}

Sheet CompareSheet(const FormulaComparison& compared) {
  std::vector<ComparedLine> original;
  for (const Ingredient& line : compared.original) {
    const bool missing = std::ranges::find(compared.missing, line.name) != compared.missing.end();
    original.push_back({line.name, line.amount, missing ? "missing" : ""});
  }
  std::vector<ComparedLine> modified;
  for (std::size_t n = 0; n < compared.modified.size(); ++n)
    modified.push_back({compared.modified[n].name, compared.modified[n].amount, compared.changes[n]});
  Sheet sheet{.title = "Compare Formulas"};
  sheet.blocks.push_back({.heading = "Original " + compared.Color_Name, .table = ComparedLines(std::move(original))});
  sheet.blocks.push_back({.heading = "Modified " + compared.Color_Name, .table = ComparedLines(std::move(modified))});
  if (compared.Date_Entered)
    sheet.blocks.push_back({.fields = {{"Date Modified: ", compared.Date_Entered->DateText()}}});
  return sheet;
}

Sheet FormulaRequirementSheet(std::vector<std::string> formulas) {
  Sheet sheet{.title = "Basic / Additive - Formula Requirement"};
  sheet.blocks.push_back({.table = TableOf<std::string>()
                                       .Add(
                                           "Color_Name", [](const std::string& name) { return name; }, "Color Name")
                                       .Of(std::move(formulas))});
  return sheet;
}

}  // namespace vellumark
