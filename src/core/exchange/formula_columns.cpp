#include "core/exchange/formula_columns.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

using enum SourceField;

struct FieldName {
  SourceField field;
  std::string_view name;
};

constexpr std::array<FieldName, 17> kFieldNames{{{NoField, "NoField"},
                                                 {ColorName, "Color Name"},
                                                 {ColorType, "Color Type"},
                                                 {ColorCode, "Color Code"},
                                                 {Reorder, "Reorder"},
                                                 {Inventory, "Inventory"},
                                                 {UnlottedInv, "Unlotted Inv."},
                                                 {InventoryNote, "Inventory Note"},
                                                 {PurchaseCost, "Purchase Cost"},
                                                 {UnitCost, "Unit Cost"},
                                                 {Recyclable, "Recyclable"},
                                                 {Notes, "Notes"},
                                                 {VOC, "VOC"},
                                                 {HAP, "HAP"},
                                                 {Ingredient, "Ingredient"},
                                                 {Parts, "Parts"},
                                                 {BasicColor, "Basic Color"}}};

// The pairs run from 0 to 14; the places behind are read so that too many ingredients are told, not lost.
constexpr int kMostPlace = 99;

std::optional<int> PlaceOf(std::string_view digits) {
  int place = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), place);
  if (error != std::errc{} || end != digits.data() + digits.size() || place < 0 || place > kMostPlace)
    return std::nullopt;
  return place;
}

// "Reorder (lb.)" is Reorder, in pounds; "Unit Cost $" is Unit Cost.
std::string_view CaptionAlone(std::string_view caption, std::optional<int>& unit) {
  caption = TrimView(caption);
  if (caption.ends_with(')')) {
    const std::size_t open = caption.rfind('(');
    if (open != std::string_view::npos && open > 0) {
      const auto named = ParseUnit(TrimView(caption.substr(open + 1, caption.size() - open - 2)));
      if (named) {
        if (!unit) unit = named;
        return TrimView(caption.substr(0, open));
      }
    }
  }
  for (const std::string_view cost : {"Unit Cost", "Purchase Cost"})
    if (StartsWithNoCase(caption, cost) && CharCount(TrimView(caption.substr(cost.size()))) <= 3) return cost;
  return caption;
}

std::string FirstRow(std::string_view text) {
  RowCutter rows(text, '\0');
  return rows.Next() ? rows.Cells()[0] : std::string();
}

}  // namespace

std::string FieldText(const SourceColumn& column) {
  const auto named = std::ranges::find(kFieldNames, column.field, &FieldName::field);
  std::string text(named->name);
  if (column.place >= 0) text += fmt::format(" {}", column.place);
  return text;
}

bool TakeFieldText(SourceColumn& column, std::string_view text) {
  text = TrimView(text);
  for (const FieldName& known : kFieldNames) {
    if (!StartsWithNoCase(text, known.name)) continue;
    const std::string_view behind = TrimView(text.substr(known.name.size()));
    const bool pair = known.field == Ingredient || known.field == Parts;
    const auto place = pair && !behind.empty() ? PlaceOf(behind) : std::nullopt;
    if (!behind.empty() && !place) continue;
    column.field = known.field;
    column.place = place.value_or(-1);
    return true;
  }
  return false;
}

std::vector<std::string> SourceFieldNames() {
  std::vector<std::string> names;
  for (const FieldName& known : kFieldNames) {
    names.emplace_back(known.name);
    if (known.field != Ingredient && known.field != Parts) continue;
    for (int place = 0; place < static_cast<int>(schema::kIngredientSlots); ++place)
      names.push_back(fmt::format("{} {}", known.name, place));
  }
  return names;
}

const SourceColumn* ColumnMapping::Find(std::string_view caption) const {
  const auto told = std::ranges::find_if(
      columns, [&](const SourceColumn& column) { return EqualNoCase(column.caption, TrimView(caption)); });
  return told == columns.end() ? nullptr : &*told;
}

void ColumnMapping::Set(SourceColumn column) {
  column.caption = Trim(column.caption);
  std::erase_if(columns, [&](const SourceColumn& told) { return EqualNoCase(told.caption, column.caption); });
  columns.push_back(std::move(column));
}

bool CanBeTold(std::string_view caption) {
  return !TrimView(caption).empty() && caption.find_first_of("|\t\r\n") == std::string_view::npos &&
         FitsCp1252(caption);
}

Result<void> TakeMapping(ColumnMapping& mapping, std::string_view text) {
  const std::size_t mark = text.rfind('=');
  SourceColumn column;
  if (mark == std::string_view::npos || !CanBeTold(text.substr(0, mark)) ||
      !TakeFieldText(column, text.substr(mark + 1)))
    return Refuse("Columns of a File",
                  fmt::format("{} names no column and field, as in \"Colour=Color Name\".\n\nThe fields are: {}", text,
                              fmt::join(SourceFieldNames(), ", ")),
                  "Columns");
  column.caption = text.substr(0, mark);
  mapping.Set(std::move(column));
  return {};
}

std::vector<SourceColumn> ColumnsOfHeading(const std::vector<std::string>& heading, const ColumnMapping& mapping,
                                           std::optional<int>& unit) {
  std::vector<SourceColumn> columns;
  for (const std::string& caption : heading) {
    SourceColumn column{Trim(caption), NoField, -1};
    if (const SourceColumn* told = mapping.Find(caption)) {
      column.field = told->field;
      column.place = told->place;
    } else {
      std::optional<int> named = unit;
      if (TakeFieldText(column, CaptionAlone(caption, named))) unit = named;
    }
    columns.push_back(std::move(column));
  }
  return columns;
}

char SeparatorOf(std::string_view text) {
  const std::string row = FirstRow(text);
  char best = '\t';
  std::size_t most = 1;
  for (const char separator : {'\t', ';', ','}) {
    RowCutter cells(row, separator);
    if (!cells.Next() || cells.Cells().size() <= most) continue;
    most = cells.Cells().size();
    best = separator;
  }
  return best;
}

}  // namespace vellumark
