#include <fmt/format.h>

#include <algorithm>
#include <functional>

#include "core/base/number.h"
#include "core/base/units.h"
#include "core/exchange/formula_columns.h"
#include "core/exchange/formula_writer.h"

namespace vellumark {
namespace {

std::string FigureText(const std::optional<double>& figure) {
  return figure ? ShortestText(*figure) : std::string();
}

std::string TypeText(const SourceColor& color) {
  if (color.kind == ColorKind::Mix) return "Formula";
  return color.additive.value_or(false) ? "Additive" : "Basic";
}

// A column of the grid, which is there when some colour has a value for it.
struct WorkColumn {
  SourceField field;
  bool inUnit;
  std::function<bool(const SourceColor&)> has;
  std::function<std::string(const SourceColor&)> text;
};

WorkColumn Figure(SourceField field, bool inUnit, std::optional<double> SourceColor::*figure) {
  return {field, inUnit, [figure](const SourceColor& color) { return (color.*figure).has_value(); },
          [figure](const SourceColor& color) { return FigureText(color.*figure); }};
}
WorkColumn TextColumn(SourceField field, std::optional<std::string> SourceColor::*text) {
  return {field, false, [text](const SourceColor& color) { return (color.*text).has_value(); },
          [text](const SourceColor& color) { return WrittenCell((color.*text).value_or("")); }};
}

std::vector<WorkColumn> ColumnsOf(const FormulaTable& table) {
  std::vector<WorkColumn> columns{
      Figure(SourceField::Reorder, true, &SourceColor::reorder),
      Figure(SourceField::Inventory, true, &SourceColor::inventory),
      TextColumn(SourceField::InventoryNote, &SourceColor::inventoryNote),
      Figure(SourceField::PurchaseCost, false, &SourceColor::purchaseCost),
      {SourceField::Recyclable, false, [](const SourceColor& color) { return color.recycle.has_value(); },
       [](const SourceColor& color) { return !color.recycle   ? ""
                                             : *color.recycle ? "Yes"
                                                              : "No"; }},
      TextColumn(SourceField::Notes, &SourceColor::notes),
      Figure(SourceField::VOC, false, &SourceColor::VOC),
      Figure(SourceField::HAP, false, &SourceColor::HAP),
  };
  std::erase_if(columns, [&](const WorkColumn& column) {
    return std::ranges::none_of(table.basics, column.has) && std::ranges::none_of(table.formulas, column.has);
  });
  return columns;
}

std::string Heading(const FormulaTable& table, const std::vector<WorkColumn>& columns, bool codes) {
  std::string text = codes ? "Color Name\tColor Type\tColor Code" : "Color Name\tColor Type";
  for (const WorkColumn& column : columns) {
    text += "\t" + FieldText({{}, column.field, -1});
    if (column.inUnit && table.unit) text += fmt::format(" ({})", UnitName(*table.unit));
  }
  for (std::size_t n = 0; n < schema::kIngredientSlots; ++n) text += fmt::format("\tIngredient {0}\tParts {0}", n);
  return text + "\r\n";
}

std::string Rows(const std::vector<SourceColor>& colors, const std::vector<WorkColumn>& columns, bool codes) {
  std::string text;
  for (const SourceColor& color : colors) {
    text.append(WrittenCell(color.name)).append("\t").append(TypeText(color));
    if (codes) text.append("\t").append(WrittenCell(color.code.value_or("")));
    for (const WorkColumn& column : columns) text.append("\t").append(column.text(color));
    for (const Ingredient& line : color.recipe)
      text.append("\t").append(WrittenCell(line.name)).append("\t").append(ShortestText(line.amount));
    text += "\r\n";
  }
  return text;
}

bool HasCode(const SourceColor& color) {
  return color.code.has_value();
}

}  // namespace

WorkFileText WorkTextOf(const FormulaTable& table) {
  const std::vector<WorkColumn> columns = ColumnsOf(table);
  const bool codes = std::ranges::any_of(table.basics, HasCode) || std::ranges::any_of(table.formulas, HasCode);
  return {Heading(table, columns, codes), Rows(table.basics, columns, codes), Rows(table.formulas, columns, codes)};
}

}  // namespace vellumark
