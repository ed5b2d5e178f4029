#include "core/base/table.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>

#include "core/base/number.h"
#include "core/base/text.h"

namespace vellumark {
namespace {

constexpr int kFractionDecimals = 4;  // of a percent with two

int DecimalsOf(const TableColumn& column) {
  return column.format == Format::Percent ? kFractionDecimals : column.format == Format::Whole ? 0 : column.decimals;
}

std::optional<double> NumberOf(const TableValue& value) {
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return static_cast<double>(*whole);
  if (const auto* single = std::get_if<float>(&value)) return *single;
  if (const auto* number = std::get_if<double>(&value)) return *number;
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? 1 : 0;
  return std::nullopt;
}

/// A row that was kept, all its cells worked out.
class KeptRow final : public TableRow {
 public:
  KeptRow(const TableRow& row, std::size_t columns, std::size_t read) : place(read), target_(row.Target()) {
    for (std::size_t i = 0; i < columns; ++i) cells_.push_back(row.Cell(i));
  }
  TableValue Cell(std::size_t column) const override { return cells_[column]; }
  RowTarget Target() const override { return target_; }
  const TableValue& At(std::size_t column) const { return cells_[column]; }

  std::size_t place;  ///< in the order of the reading

 private:
  std::vector<TableValue> cells_;
  RowTarget target_;
};

class Arranger {
 public:
  Arranger(const ListTable& table, const Arrangement& arrangement)
      : table_(table), arrangement_(arrangement), text_(Upper(arrangement.filter)) {
    for (const std::string_view word : Split(text_, ' '))
      if (!word.empty()) words_.push_back(word);
  }

  void Read(const TableSink& take) const {
    const std::size_t limit = arrangement_.limit.value_or(SIZE_MAX);
    std::size_t taken = 0;
    if (limit == 0) return;
    if (!arrangement_.sort) {
      table_.read([&](const TableRow& row) { return !IsWanted(row) || (take(row) && ++taken < limit); });
      return;
    }
    for (const KeptRow& row : SortedRows(limit))
      if (!take(row)) return;
  }

 private:
  bool IsWanted(const TableRow& row) const {
    if (words_.empty()) return true;
    std::string text;
    for (const std::size_t column : table_.Shown())
      text += Upper(CellText(table_.columns[column], row.Cell(column))) + '\t';
    return std::ranges::all_of(words_, [&](std::string_view word) { return text.find(word) != std::string::npos; });
  }

  bool Before(const KeptRow& a, const KeptRow& b) const {
    int order = CompareCells(a.At(*arrangement_.sort), b.At(*arrangement_.sort));
    if (arrangement_.descending) order = -order;
    if (order == 0 && arrangement_.second) {
      order = CompareCells(a.At(*arrangement_.second), b.At(*arrangement_.second));
      if (arrangement_.secondDescending) order = -order;
    }
    return order != 0 ? order < 0 : a.place < b.place;
  }

  std::vector<KeptRow> SortedRows(std::size_t limit) const {
    constexpr std::size_t kBeyond = 1000;
    const auto before = [this](const KeptRow& a, const KeptRow& b) { return Before(a, b); };
    std::vector<KeptRow> rows;
    std::size_t place = 0;
    const auto cut = [&](std::size_t slack) {
      if (rows.size() <= limit || rows.size() - limit <= slack) return;
      const auto end = rows.begin() + static_cast<std::ptrdiff_t>(limit);
      std::ranges::nth_element(rows, end, before);
      rows.erase(end, rows.end());
    };
    table_.read([&](const TableRow& row) {
      if (IsWanted(row)) rows.emplace_back(row, table_.columns.size(), place++);
      cut(limit / 2 + kBeyond);
      return true;
    });
    cut(0);
    std::ranges::sort(rows, before);
    return rows;
  }

  const ListTable& table_;
  const Arrangement& arrangement_;
  std::string text_;
  std::vector<std::string_view> words_;  // of the text
};

}  // namespace

std::optional<std::size_t> ListTable::Find(std::string_view name) const {
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (EqualNoCase(columns[i].Caption(), name)) return i;
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (!columns[i].key.empty() && EqualNoCase(columns[i].key, name)) return i;
  return std::nullopt;
}

std::vector<std::size_t> ListTable::Shown() const {
  if (!shown.empty()) return shown;
  std::vector<std::size_t> all(columns.size());
  std::iota(all.begin(), all.end(), std::size_t{0});
  return all;
}

ListTable Arranged(ListTable table, Arrangement arrangement) {
  if (!arrangement.Any()) return table;
  ListTable arranged = table;
  arranged.read = [table = std::move(table), arrangement = std::move(arrangement)](const TableSink& take) {
    Arranger(table, arrangement).Read(take);
  };
  return arranged;
}

int CompareCells(const TableValue& a, const TableValue& b, TextOrder texts) {
  const auto order = [](const auto& x, const auto& y) { return x < y ? -1 : y < x ? 1 : 0; };
  if (const auto x = NumberOf(a), y = NumberOf(b); x && y) return order(*x, *y);
  if (a.index() != b.index()) return order(a.index(), b.index());
  if (const auto* text = std::get_if<std::string>(&a)) {
    const std::string& other = std::get<std::string>(b);
    return order(texts == TextOrder::ExactCase ? text->compare(other) : CompareNoCase(*text, other), 0);
  }
  if (const auto* date = std::get_if<DateTime>(&a)) return order(*date, std::get<DateTime>(b));
  if (const auto* names = std::get_if<std::vector<std::string>>(&a))
    return order(*names, std::get<std::vector<std::string>>(b));
  return 0;
}

std::string CellText(const TableColumn& column, const TableValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) {
    if (column.format == Format::Notes) return text->empty() ? "No" : "Yes";
    return *text;
  }
  if (const auto* whole = std::get_if<std::int64_t>(&value))
    return column.format == Format::Number ? fmt::format("{:06}", *whole) : std::to_string(*whole);
  if (const auto* single = std::get_if<float>(&value)) return Fixed(*single, column.decimals);
  if (const auto* number = std::get_if<double>(&value)) {
    if (column.format == Format::Percent) return Fixed(*number * 100, 2) + "%";
    return Fixed(*number, column.decimals);
  }
  if (const auto* flag = std::get_if<bool>(&value)) {
    if (column.format == Format::Mark) return *flag ? "Yes" : "";
    if (column.format == Format::YesNo) return *flag ? "Yes" : "No";
    return *flag ? "yes" : "no";
  }
  if (const auto* date = std::get_if<DateTime>(&value)) {
    const bool day = column.format == Format::Date || (column.format == Format::When && *date == date->Midnight());
    return day ? date->DateText() : date->ToText();
  }
  std::string joined;
  if (const auto* names = std::get_if<std::vector<std::string>>(&value))
    for (const std::string& name : *names) joined += (joined.empty() ? "" : ", ") + name;
  return joined;
}

void TableTotals::Add(const TableRow& row) {
  for (std::size_t i = 0; i < sums_.size(); ++i) {
    if (!table_.columns[i].total) continue;
    const int decimals = DecimalsOf(table_.columns[i]);
    const TableValue value = row.Cell(i);
    const auto* single = std::get_if<float>(&value);
    sums_[i] += single ? WholeUnits(*single, decimals) : WholeUnits(NumberOf(value).value_or(0), decimals);
  }
}

TableValue TableTotals::Of(std::size_t place) const {
  const TableColumn& of = table_.columns[place];
  if (of.totalIs) return *of.totalIs;
  if (of.ratio) {
    const auto sum = [&](std::size_t i) {
      const TableColumn& column = table_.columns[i];
      return column.totalIs ? NumberOf(*column.totalIs).value_or(0) : OfWholeUnits(sums_[i], DecimalsOf(column));
    };
    const double whole = sum(of.ratio->whole);
    return whole == 0 ? 0.0 : RoundTo(sum(of.ratio->part) / whole, kFractionDecimals);
  }
  if (!of.total) return {};
  if (of.format == Format::Whole) return sums_[place];
  return OfWholeUnits(sums_[place], DecimalsOf(of));
}

std::vector<std::string> TableTotals::Texts() const {
  std::vector<std::string> texts;
  for (const std::size_t i : table_.Shown()) texts.push_back(CellText(table_.columns[i], Of(i)));
  if (!texts.empty()) texts.front() = table_.totals;
  return texts;
}

}  // namespace vellumark
