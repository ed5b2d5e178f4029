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

bool HasDecimals(std::string_view amount, std::size_t decimals) {
  const std::size_t point = amount.find('.');
  return point != std::string_view::npos && amount.size() - point - 1 == decimals;
}

}  // namespace

void TableBuilder::Bad(int line, std::string_view content, std::string why) {
  table_.badLines.push_back({line, std::string(content), std::move(why)});
}

std::string TableBuilder::TakeName(std::string_view cell, std::string_view whose, std::string& name) const {
  name = Upper(UnescapedCell(TrimView(cell)));
  if (name.empty()) return fmt::format("{} has no name", whose);
  if (const std::size_t length = CharCount(name); length > static_cast<std::size_t>(nameLength_))
    return fmt::format("the name {} has {} characters, the limit is {}", name, length, nameLength_);
  if (Learning()) return {};
  if (const auto good = CheckNewName(name, NameSource::File, nameLength_); !good)
    return fmt::format("the name {} has a character that no name may hold", name);
  return {};
}

std::string TableBuilder::TakePart(std::string_view nameCell, std::string_view amountCell, Recipe& recipe) const {
  Ingredient part;
  if (const auto known = ingredients_.find(nameCell); known != ingredients_.end()) {
    part.name = known->second;
  } else {
    if (std::string fault = TakeName(nameCell, "an ingredient", part.name); !fault.empty()) return fault;
    ingredients_.emplace(nameCell, part.name);
  }
  std::string fault;
  part.amount = TakeAmount(amountCell, part.name, fault);
  if (part.amount == 0) return fmt::format("the amount \"{}\" of {} is no number above 0", amountCell, part.name);
  if (HoldsIngredient(recipe, part.name)) return fmt::format("the ingredient {} stands in it twice", part.name);
  recipe.push_back(std::move(part));
  return {};
}

double TableBuilder::TakeAmount(std::string_view cell, std::string_view ingredient, std::string& fault) const {
  const auto amount = numbers_.Read(cell);
  if (amount && *amount >= 0 && *amount <= kMostAmount) return *amount;
  fault = fmt::format("the amount \"{}\" of {} is no number from 0 on", cell, ingredient);
  return 0;
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

std::string TableBuilder::TakeCode(std::string_view cell, std::optional<std::string>& code) const {
  code = UnescapedCell(TrimView(cell));
  if (const std::size_t length = CharCount(*code); length > static_cast<std::size_t>(nameLength_))
    return fmt::format("the code {} has {} characters, the limit is {}", *code, length, nameLength_);
  return {};
}

void TableBuilder::Take(std::vector<SourceColor>& colors, std::unordered_map<std::string, int>& lines,
                        SourceColor color, std::string_view content, std::string_view what) {
  if (color.recipe.size() > schema::kIngredientSlots)
    return Bad(
        color.line, content,
        fmt::format("the formula has {} ingredients, the limit is {}", color.recipe.size(), schema::kIngredientSlots));
  const auto [first, added] = lines.emplace(color.name, color.line);
  if (!added)
    return Bad(color.line, content,
               fmt::format("the {} {} stands in line {} already", what, color.name, first->second));
  colors.push_back(std::move(color));
}

void TableBuilder::TakeFormula(SourceColor formula, std::string_view content) {
  if (formula.recipe.empty()) {
    table_.badLines.push_back({formula.line, std::string(content), "the formula has no recipe", std::move(formula.name)});
    return;
  }
  Take(table_.formulas, lineOfFormula_, std::move(formula), content, "formula");
}

void TableBuilder::TakeBasic(SourceColor basic, std::string_view content) {
  basic.kind = ColorKind::Basic;
  Take(table_.basics, lineOfBasic_, std::move(basic), content, "Basic Color");
}

const std::vector<std::string_view>& HeadingOf(FormulaFormat format) {
  static const std::vector<std::string_view> kZg{"BillNo", "BillDesc1", "ComponentItemCode", "QuantityPerBill"};
  static const std::vector<std::string_view> kJa{"FormulaPNUM", "PRODFIL2.PNAME1",      "Seq",
                                                 "PNUM",        "BTFormulaComp.PNAME1", "PercentWeight"};
  static const std::vector<std::string_view> kBasics{"Code", "Description"};
  static const std::vector<std::string_view> kNone;
  switch (format) {
    case FormulaFormat::Zg:
      return kZg;
    case FormulaFormat::Ja:
      return kJa;
    case FormulaFormat::Header2:
    case FormulaFormat::Header1:
    case FormulaFormat::Header2Xls:
    case FormulaFormat::Header1Xls:
      return kBasics;
    default:
      return kNone;
  }
}

bool LooksCut(const FormulaTable& table, const Recipe& last, const std::vector<std::string_view>& amounts,
              std::size_t decimals) {
  if (TotalsHundred(last)) return false;
  if (!table.formulas.empty())
    return 2 * std::ranges::count_if(table.formulas, TotalsHundred, &SourceColor::recipe) > std::ssize(table.formulas);
  const std::size_t checked = amounts.size() > 1 ? amounts.size() - 1 : amounts.size();
  return std::all_of(amounts.begin(), amounts.begin() + static_cast<std::ptrdiff_t>(checked),
                     [&](std::string_view amount) { return HasDecimals(amount, decimals); });
}

}  // namespace vellumark
