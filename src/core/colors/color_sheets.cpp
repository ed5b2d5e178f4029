#include "core/colors/color_sheets.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "core/base/units.h"
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

/// The fields of the only row of a table that hold something, under captions for people.
std::vector<SheetField> FieldsOf(const Session& session, const ListTable& table) {
  const std::string unit = fmt::format(" ({})", UnitName(session.UMI));
  const std::pair<const char*, std::string> captions[] = {
      {"Color_Code", "Color Code"},
      {"Color_Guide", "Formula Guide"},
      {"Page", "Page"},
      {"Row", "Row"},
      {"Additive", "Additive"},
      {"AddSetName", "Additive Set"},
      {"Inventory", "Unlotted" + unit},
      {"Reorder", "Reorder" + unit},
      {"Inv_Note", "Inventory Note"},
      {"PurchaseCost", "Purchase Cost"},
      {"BasicCost", "Basic Cost"},
      {"VOC", "VOC"},
      {"HAP", "HAP"},
      {"BasicVOC", "VOC from Basics"},
      {"BasicHAP", "HAP from Basics"},
      {"Recycle", "Recyclable"},
      {"Date_Entered", "Date Entered"},
      {"LastModified", "Last Modified"},
      {"LastConsumed", "Last Consumed"},
      {"LastProduced", "Last Produced"},
  };
  std::vector<SheetField> fields;
  table.read([&](const TableRow& row) {
    const bool inGuide = !CellText(table.columns.front(), row.Cell(table.Find("Color_Guide").value())).empty();
    for (const auto& [key, caption] : captions) {
      const auto column = table.Find(key);
      const std::string_view name = key;
      if (!column || (!inGuide && (name == "Page" || name == "Row"))) continue;
      if (std::string text = CellText(table.columns[*column], row.Cell(*column)); !text.empty())
        fields.push_back({caption, std::move(text)});
    }
    return false;
  });
  return fields;
}

}  // namespace

Sheet BasicColorSheet(const Session& session, const BasicColor& color) {
  Sheet sheet{.title = color.Additive ? "Additive" : "Basic Color"};
  sheet.blocks.push_back({.heading = color.Color_Name, .large = true});
  sheet.blocks.push_back({.fields = FieldsOf(session, BasicColumns(session).Of({color}))});
  if (!color.Notes.empty()) sheet.blocks.push_back({.heading = "Notes", .lines = {color.Notes}});
  return sheet;
}

Sheet FormulaSheet(const Session& session, const MixColor& mix) {
  Sheet sheet{.title = "Master Formula"};
  sheet.blocks.push_back({.heading = mix.Color_Name, .large = true});
  sheet.blocks.push_back({.table = RecipeColumns("Ingredient", "Parts").Total("Total Parts").Of(mix.Ingredients())});
  sheet.blocks.push_back({.fields = FieldsOf(session, MixColumns(session).Of({mix}))});
  if (!mix.Notes.empty()) sheet.blocks.push_back({.heading = "Notes", .lines = {mix.Notes}});
  return sheet;
}

Sheet AdditiveSetsSheet(const Session& session, const std::vector<AdditiveSet>& sets) {
  Sheet sheet{.title = "Mix Colors using Additive Set"};
  for (const AdditiveSet& set : sets) {
    sheet.blocks.push_back({.heading = "Set Name : " + set.SetName,
                            .table = RecipeColumns("Additive", "Percent", 2).Total("Total").Of(set.Rows())});
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
