#include "core/exchange/table_builder.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "core/base/text.h"
#include "core/colors/names.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

constexpr double kMostAmount = 1e9;

bool TotalsHundred(const Recipe& recipe) {
  double total = 0;
  for (const Ingredient& line : recipe) total += line.amount;
  return std::fabs(total - 100) <= 0.0015;
}

bool HasThreeDecimals(std::string_view amount) {
  const std::size_t point = amount.find('.');
  return point != std::string_view::npos && amount.size() - point - 1 == 3;
}

}  // namespace

void TableBuilder::Bad(int line, std::string_view content, std::string why) {
  table_.badLines.push_back({line, std::string(content), std::move(why)});
}

std::string TableBuilder::TakeName(std::string_view cell, std::string_view whose, std::string& name) const {
  name = Upper(TrimView(cell));
  if (name.empty()) return fmt::format("{} has no name", whose);
  if (const std::size_t length = CharCount(name); length > static_cast<std::size_t>(nameLength_))
    return fmt::format("the name {} has {} characters, the limit is {}", name, length, nameLength_);
  if (const auto good = CheckNewName(name, NameSource::File, nameLength_); !good)
    return fmt::format("the name {} has a character that no name may hold", name);
  return {};
}

std::string TableBuilder::TakePart(std::string_view nameCell, std::string_view amountCell, Recipe& recipe) const {
  Ingredient part;
  if (std::string fault = TakeName(nameCell, "an ingredient", part.name); !fault.empty()) return fault;
  const auto amount = numbers_.Read(amountCell);
  if (!amount || *amount <= 0 || *amount > kMostAmount)
    return fmt::format("the amount \"{}\" of {} is no number above 0", amountCell, part.name);
  part.amount = *amount;
  if (HoldsIngredient(recipe, part.name)) return fmt::format("the ingredient {} stands in it twice", part.name);
  recipe.push_back(std::move(part));
  return {};
}

std::optional<double> TableBuilder::TakeFigure(std::string_view cell, std::string_view caption,
                                               std::string& fault) const {
  if (TrimView(cell).empty()) return std::nullopt;
  const auto figure = numbers_.Read(cell);
  if (!figure || *figure < 0 || *figure > kMostAmount) {
    fault = fmt::format("the {} \"{}\" is no number from 0 on", caption, cell);
    return std::nullopt;
  }
  table_.hasFigures = true;
  return figure;
}

void TableBuilder::TakeFormula(SourceColor formula, std::string_view content) {
  if (formula.recipe.size() > schema::kIngredientSlots)
    return Bad(formula.line, content,
               fmt::format("the formula has {} ingredients, the limit is {}", formula.recipe.size(),
                           schema::kIngredientSlots));
  const auto [first, added] = lineOfName_.emplace(formula.name, formula.line);
  if (!added)
    return Bad(formula.line, content,
               fmt::format("the formula {} stands in line {} already", formula.name, first->second));
  table_.formulas.push_back(std::move(formula));
}

bool LooksCut(const FormulaTable& table, const Recipe& last, const std::vector<std::string_view>& amounts) {
  if (TotalsHundred(last)) return false;
  if (!table.formulas.empty())
    return 2 * std::ranges::count_if(table.formulas, TotalsHundred, &SourceColor::recipe) > std::ssize(table.formulas);
  const std::size_t checked = amounts.size() > 1 ? amounts.size() - 1 : amounts.size();
  return std::all_of(amounts.begin(), amounts.begin() + static_cast<std::ptrdiff_t>(checked), HasThreeDecimals);
}

}  // namespace vellumark
