#include "core/colors/template_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>

#include "core/base/files.h"
#include "core/base/number.h"
#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/colors/template_file.h"
#include "core/datafile/references.h"

namespace vellumark {
namespace {

constexpr std::string_view kIngredients = "Ingredients";
constexpr int kIngredientsColumn = -1;

// What a row holds where its file says nothing.
Value DefaultOf(const Table& shape, const Field& field) {
  if (&shape == &schema::Info) return field.name == "TemplateFile" ? Value(kTemplateFileName) : Value("");
  switch (field.type) {
    case FieldType::Text:
    case FieldType::Memo:
      return field.name == "Page" ? "0" : "";
    case FieldType::Date:
      return {};
    case FieldType::Single:
      return 0.0F;
    case FieldType::Boolean:
      return field.name == "Recycle";
    default:
      return 0;
  }
}

// A backslash lets a text hold what would end its cell or its line: \n, \t and \\.
std::optional<std::string> Unescaped(std::string_view cell) {
  std::string text;
  for (std::size_t i = 0; i < cell.size(); ++i) {
    if (cell[i] != '\\') {
      text += cell[i];
      continue;
    }
    const char next = i + 1 < cell.size() ? cell[++i] : '\0';
    if (next != 'n' && next != 't' && next != '\\') return std::nullopt;
    text += next == 'n' ? '\n' : next == 't' ? '\t' : '\\';
  }
  return text;
}

bool IsName(std::string_view field) {
  return field == "Color_Name" || (field.starts_with("BC") && field.size() <= 4);
}

/// One file being read: its heading, and the line at hand.
class TableReader {
 public:
  TableReader(const std::filesystem::path& file, const Table& shape, std::vector<std::string>& faults)
      : file_(file.filename().string()), shape_(shape), faults_(faults) {}

  std::optional<std::vector<TemplateRow>> Read(std::string_view text) {
    std::vector<TemplateRow> rows;
    int number = 0;
    for (std::string_view line : Split(text, '\n')) {
      ++number;
      if (line.ends_with('\r')) line.remove_suffix(1);
      if (TrimView(line).empty()) continue;
      row_ = {fmt::format("{}:{}", file_, number), std::string(line), {}, false};
      if (columns_.empty()) {
        if (!ReadHeading(line)) return std::nullopt;
        continue;
      }
      if (ReadRow(line, static_cast<int>(rows.size()))) rows.push_back(std::move(row_));
    }
    if (!columns_.empty()) return rows;
    faults_.push_back(file_ + ": holds no heading");
    return std::nullopt;
  }

 private:
  void Fault(const std::string& what) {
    faults_.push_back(TemplateFault(row_, what));
    row_.broken = true;
  }

  bool ReadHeading(std::string_view line) {
    for (const std::string_view cell : Split(line, '\t')) {
      const std::string name = Trim(cell);
      const bool recipe = &shape_ == &schema::Mix && EqualNoCase(name, kIngredients);
      const int place = recipe ? kIngredientsColumn : shape_.Find(name);
      if (!recipe && place < 0) {
        Fault(fmt::format("the heading names a field {} that the table does not have", name));
      } else if (!recipe && shape_.fields[static_cast<std::size_t>(place)].name == "Color_Set") {
        Fault("the heading names Color_Set, which is built from the ingredients");
      } else if (std::ranges::find(columns_, place) != columns_.end()) {
        Fault(fmt::format("the heading names {} twice", name));
      }
      columns_.push_back(place);
    }
    const std::string_view key = shape_.fields.front().name;
    if (!Has(shape_.Find(key))) Fault(fmt::format("the heading lacks {}", key));
    if (&shape_ == &schema::Mix && Has(kIngredientsColumn) == Has(shape_.Find("BC0")))
      Fault("the heading needs either Ingredients or BC0 and BQ0");
    return !row_.broken;
  }

  bool Has(int place) const { return std::ranges::find(columns_, place) != columns_.end(); }

  bool ReadRow(std::string_view line, int rowsBefore) {
    const std::vector<std::string_view> cells = Split(line, '\t');
    if (cells.size() != columns_.size()) {
      Fault(fmt::format("has {} cells, the heading has {}", cells.size(), columns_.size()));
      return false;
    }
    for (const Field& field : shape_.fields) row_.values.push_back(DefaultOf(shape_, field));
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (columns_[i] == kIngredientsColumn) {
        ReadIngredients(cells[i]);
      } else {
        ReadCell(static_cast<std::size_t>(columns_[i]), cells[i]);
      }
    }
    if (const int sort = shape_.Find("IngSort"); sort >= 0 && !Has(sort)) At("IngSort") = rowsBefore;
    if (&shape_ == &schema::Mix) At("Color_Set") = SetOfSlots();
    for (std::size_t i = 0; i < shape_.fields.size(); ++i) Fit(i);
    return true;
  }

  Value& At(std::string_view field) { return row_.values[static_cast<std::size_t>(shape_.Find(field))]; }

  void ReadCell(std::size_t place, std::string_view cell) {
    const Field& field = shape_.fields[place];
    cell = TrimView(cell);
    if (cell.empty()) return;
    switch (field.type) {
      case FieldType::Text:
      case FieldType::Memo: {
        const auto text = Unescaped(cell);
        if (!text)
          return Fault(fmt::format("{}: a backslash stands before something other than n, t or \\", field.name));
        row_.values[place] = IsName(field.name) ? Upper(*text) : *text;
        return;
      }
      case FieldType::Date:
        row_.values[place] = Value(cell);
        return;
      case FieldType::Boolean:
        if (cell != "0" && cell != "1") return Fault(fmt::format("{}: {} is neither 0 nor 1", field.name, cell));
        row_.values[place] = cell == "1";
        return;
      default: {
        const auto number = ParseNumber(cell);
        if (!number) return Fault(fmt::format("{}: {} is not a number", field.name, cell));
        row_.values[place] = *number;
      }
    }
  }

  void ReadIngredients(std::string_view cell) {
    int slot = 0;
    for (const std::string_view item : Split(cell, ';')) {
      if (TrimView(item).empty()) continue;
      const std::size_t mark = item.rfind('=');
      const auto amount = mark == std::string_view::npos ? std::nullopt : ParseNumber(item.substr(mark + 1));
      if (!amount) return Fault(fmt::format("the ingredient \"{}\" is not NAME=AMOUNT", TrimView(item)));
      if (slot == schema::kIngredientSlots)
        return Fault(fmt::format("the formula has more than {} ingredients", schema::kIngredientSlots));
      At(schema::Numbered("BC", slot)) = Upper(TrimView(item.substr(0, mark)));
      At(schema::Numbered("BQ", slot)) = *amount;
      ++slot;
    }
  }

  std::string SetOfSlots() {
    std::vector<std::string> names;
    for (int n = 0; n < schema::kIngredientSlots; ++n) names.push_back(At(schema::Numbered("BC", n)).Text());
    return NameSet(names);
  }

  void Fit(std::size_t place) {
    const Field& field = shape_.fields[place];
    Value& value = row_.values[place];
    // A whole number that was read as one of any kind.
    if (value.IsNumber() && field.type != FieldType::Single && value.Number() == std::floor(value.Number()) &&
        std::fabs(value.Number()) < 1e9)
      value = static_cast<std::int64_t>(value.Number());
    try {
      value = FittedValue(field, std::filesystem::path(file_).stem().string(), value);
    } catch (const BadValue& bad) {
      Fault(bad.what());
      value = DefaultOf(shape_, field);
    }
  }

  std::string file_;
  const Table& shape_;
  std::vector<std::string>& faults_;
  std::vector<int> columns_;
  TemplateRow row_;
};

}  // namespace

std::optional<std::vector<TemplateRow>> ReadTemplateText(const std::filesystem::path& file, const Table& shape,
                                                         std::vector<std::string>& faults) {
  return TableReader(file, shape, faults).Read(DecodeText(ReadFileBytes(file)));
}

}  // namespace vellumark
