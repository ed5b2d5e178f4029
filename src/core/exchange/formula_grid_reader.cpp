#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <unordered_map>
#include <unordered_set>

#include "core/base/text.h"
#include "core/datafile/schema.h"
#include "core/exchange/formula_columns.h"
#include "core/exchange/table_builder.h"

namespace vellumark {
namespace {

constexpr std::size_t kLongestNote = 30;

enum class RowKind { Formula, Basic, Additive };

std::optional<RowKind> KindOf(std::string_view text) {
  for (const std::string_view word : {"Formula", "Master Formula", "Mix", "Mix Color"})
    if (EqualNoCase(text, word)) return RowKind::Formula;
  for (const std::string_view word : {"Basic", "Basic Color", "Color"})
    if (EqualNoCase(text, word)) return RowKind::Basic;
  if (EqualNoCase(text, "Additive")) return RowKind::Additive;
  return std::nullopt;
}

std::optional<bool> TruthOf(std::string_view text) {
  for (const std::string_view word : {"Yes", "True", "1", "-1", "Y", "X"})
    if (EqualNoCase(text, word)) return true;
  for (const std::string_view word : {"No", "False", "0", "N"})
    if (EqualNoCase(text, word)) return false;
  return std::nullopt;
}

/// A colour a row, or an ingredient a row, under a heading that names the columns.
class GridRows {
 public:
  GridRows(RowCutter& rows, TableBuilder& builder, const ColumnMapping& mapping)
      : rows_(rows), builder_(builder), mapping_(mapping) {}

  FormatFault TakeHeading() {
    constexpr std::string_view kText = "Couldn't read textfile Field Headers.";
    if (!rows_.Next()) return {std::string(kText), "the file is empty"};
    columns_ = ColumnsOfHeading(rows_.Cells(), mapping_, builder_.Table().unit);
    for (std::size_t n = 0; n < columns_.size(); ++n) {
      const SourceColumn& column = columns_[n];
      if (column.field == SourceField::NoField) continue;
      if (column.field == SourceField::BasicColor) {
        SourceColor basic;
        basic.line = rows_.Line();
        if (std::string fault = builder_.TakeName(column.caption, "a Basic Color", basic.name); !fault.empty())
          return {std::string(kText), std::move(fault)};
        basicColumns_.emplace_back(n, std::move(basic.name));
      } else if (!places_.try_emplace({column.field, column.place}, n).second) {
        return {std::string(kText), fmt::format("{} stands in it twice", FieldText(column))};
      }
    }
    if (!places_.contains({SourceField::ColorName, -1}))
      return {"No Color Name field found in textfile Field Headers", "the first row names no column Color Name"};
    for (const auto& [key, place] : places_) {
      if (key.first != SourceField::Ingredient) continue;
      pairs_.emplace_back(place, PlaceOf({SourceField::Parts, key.second}));
      if (pairs_.back().second == columns_.size())
        return {std::string(kText), fmt::format("{} has no Parts beside it", FieldText(columns_[place]))};
    }
    oneIngredient_ = places_.contains({SourceField::Ingredient, -1});
    return {};
  }

  void TakeRow() {
    SourceColor color;
    color.line = rows_.Line();
    RowKind kind = RowKind::Formula;
    std::string fault = TakeCells(color, kind);
    if (fault.empty() && kind != RowKind::Formula && !color.recipe.empty())
      fault = fmt::format("{} is no formula and has a recipe", color.name);
    if (!fault.empty()) {
      bad_.insert(color.name);
      return builder_.Bad(rows_.Line(), rows_.Raw(), std::move(fault));
    }
    if (kind != RowKind::Formula) {
      color.additive = kind == RowKind::Additive;
      return builder_.TakeBasic(std::move(color), rows_.Raw());
    }
    if (!oneIngredient_) return builder_.TakeFormula(std::move(color), rows_.Raw());
    Gather(std::move(color));
  }

  void Finish() {
    for (auto& [formula, content] : gathered_)
      if (!bad_.contains(formula.name)) builder_.TakeFormula(std::move(formula), content);
  }

 private:
  using Key = std::pair<SourceField, int>;

  std::size_t PlaceOf(const Key& key) const {
    const auto place = places_.find(key);
    return place == places_.end() ? columns_.size() : place->second;
  }
  std::string_view Cell(std::size_t place) const {
    const std::vector<std::string>& cells = rows_.Cells();
    return place < cells.size() ? TrimView(cells[place]) : std::string_view{};
  }
  /// The cell of a field; nothing where the file has no column for it.
  std::optional<std::string_view> CellOf(SourceField field) const {
    const std::size_t place = PlaceOf({field, -1});
    return place < columns_.size() ? std::optional(Cell(place)) : std::nullopt;
  }

  std::string TakeCells(SourceColor& color, RowKind& kind) {
    if (std::string fault = builder_.TakeName(*CellOf(SourceField::ColorName), "the color", color.name); !fault.empty())
      return fault;
    if (const auto type = CellOf(SourceField::ColorType); type && !type->empty()) {
      const auto read = KindOf(*type);
      if (!read) return fmt::format("{} is no Color Type", *type);
      kind = *read;
    }
    if (std::string fault = TakeTexts(color); !fault.empty()) return fault;
    if (std::string fault = TakeFigures(color, kind); !fault.empty()) return fault;
    return TakeRecipe(color);
  }

  std::string TakeTexts(SourceColor& color) const {
    if (const auto code = CellOf(SourceField::ColorCode))
      if (std::string fault = builder_.TakeCode(*code, color.code); !fault.empty()) return fault;
    if (const auto notes = CellOf(SourceField::Notes)) color.notes = UnescapedCell(*notes);
    if (const auto note = CellOf(SourceField::InventoryNote)) {
      color.inventoryNote = UnescapedCell(*note);
      if (CharCount(*color.inventoryNote) > kLongestNote)
        return fmt::format("the Inventory Note has more than {} characters", kLongestNote);
    }
    if (const auto recycle = CellOf(SourceField::Recyclable); recycle && !recycle->empty()) {
      color.recycle = TruthOf(*recycle);
      if (!color.recycle) return fmt::format("{} is neither Yes nor No", *recycle);
    }
    return {};
  }

  std::string TakeFigures(SourceColor& color, RowKind kind) const {
    std::string fault;
    const auto take = [&](SourceField field, std::string_view caption, std::optional<double>& figure) {
      const auto cell = CellOf(field);
      if (!cell || !fault.empty()) return;
      if (const auto read = builder_.TakeFigure(*cell, caption, fault)) figure = read;
    };
    take(SourceField::Reorder, "Reorder", color.reorder);
    take(SourceField::Inventory, "Inventory", color.inventory);
    take(SourceField::UnlottedInv, "Unlotted Inv.", color.inventory);
    // What a formula costs follows from its basics.
    if (kind != RowKind::Formula) take(SourceField::UnitCost, "Unit Cost", color.purchaseCost);
    take(SourceField::PurchaseCost, "Purchase Cost", color.purchaseCost);
    take(SourceField::VOC, "VOC", color.VOC);
    take(SourceField::HAP, "HAP", color.HAP);
    return fault;
  }

  std::string TakeRecipe(SourceColor& color) const {
    for (const auto& [name, amount] : pairs_) {
      if (Cell(name).empty() && (Cell(amount).empty() || Cell(amount) == "0")) continue;
      if (std::string fault = builder_.TakePart(Cell(name), Cell(amount), color.recipe); !fault.empty()) return fault;
    }
    for (const auto& [place, name] : basicColumns_) {
      if (Cell(place).empty()) continue;
      std::string fault;
      const double amount = builder_.TakeAmount(Cell(place), name, fault);
      if (!fault.empty()) return fault;
      if (amount > 0) color.recipe.push_back({name, amount});
    }
    return {};
  }

  // The rows of a formula stand anywhere in the file; what it is called by has to be the same in all of them.
  void Gather(SourceColor row) {
    const auto [place, isNew] = gatheredPlaces_.try_emplace(row.name, gathered_.size());
    if (isNew) {
      gathered_.emplace_back(std::move(row), std::string(rows_.Raw()));
      return;
    }
    SourceColor& formula = gathered_[place->second].first;
    std::string fault;
    if (row.code != formula.code)
      fault = fmt::format("the formula {} stands in line {} already, with the code {}", formula.name, formula.line,
                          formula.code.value_or(""));
    for (Ingredient& part : row.recipe) {
      if (HoldsIngredient(formula.recipe, part.name)) {
        fault = fmt::format("the ingredient {} stands in it twice", part.name);
      } else {
        formula.recipe.push_back(std::move(part));
      }
    }
    if (fault.empty()) return;
    bad_.insert(formula.name);
    builder_.Bad(rows_.Line(), rows_.Raw(), std::move(fault));
  }

  RowCutter& rows_;
  TableBuilder& builder_;
  const ColumnMapping& mapping_;
  std::vector<SourceColumn> columns_;
  std::map<Key, std::size_t> places_;
  std::vector<std::pair<std::size_t, std::size_t>> pairs_;  // columns of a name and its parts
  std::vector<std::pair<std::size_t, std::string>> basicColumns_;
  bool oneIngredient_ = false;
  std::vector<std::pair<SourceColor, std::string>> gathered_;
  std::unordered_map<std::string, std::size_t> gatheredPlaces_;
  std::unordered_set<std::string> bad_;
};

}  // namespace

FormatFault ReadGridRows(RowCutter& rows, TableBuilder& builder, const ColumnMapping& mapping) {
  GridRows reading(rows, builder, mapping);
  if (FormatFault fault = reading.TakeHeading(); !fault.text.empty()) return fault;
  while (rows.Next()) reading.TakeRow();
  reading.Finish();
  return {};
}

}  // namespace vellumark
