#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "core/base/date.h"

namespace vellumark {

struct ListTable;

/// What a cell holds; nothing where the value is absent or not to be seen. A Single stays one, since its shortest
/// decimal differs from a double's. A cell may be a list of names or a table of its own, such as the lots of a colour.
using TableValue = std::variant<std::monostate, std::string, std::int64_t, float, double, bool, DateTime,
                                std::vector<std::string>, std::shared_ptr<const ListTable>>;

/// How a column's values are written for people; where they are told to programs, what a date shows.
enum class Format {
  Text,
  Whole,
  Amount,   ///< with the column's decimals, as are prices
  Flag,     ///< "yes" or "no"
  Mark,     ///< "Yes" or nothing
  Date,     ///< the day
  Moment,   ///< day and time
  When,     ///< day, and the time when it is not midnight
  YesNo,    ///< "Yes" or "No"
  Notes,    ///< a long text, of which people see whether there is one
  Number,   ///< six digits with zeros in front, "000042"
  Money,    ///< with the column's decimals
  Percent,  ///< a fraction of 1 with four decimals: "12.50%"
};

/// What a row leads to: the record that a click on it opens.
struct RowTarget {
  enum class Kind { None, Batch, Basic, Mix, Job, Design, Database };
  Kind kind = Kind::None;
  std::string database{};
  std::string name{};  ///< of a colour, a Job or a Design
  std::int32_t BatchNo = 0;
  bool operator==(const RowTarget&) const = default;
};

/// A total that is no sum of its column: that of one column divided by that of another, as are all percents.
struct TotalRatio {
  std::size_t part = 0;
  std::size_t whole = 0;
};

struct TableColumn {
  std::string key;        ///< its name for programs; empty: not told to them
  std::string caption;    ///< its name for people, by which it is chosen and sorted; the key when empty
  std::string heading{};  ///< its name in a window, where it is called otherwise
  Format format = Format::Text;
  int decimals = 3;
  bool total = false;                 ///< added up in the row of totals
  int width = 0;                      ///< in twips; 0: as wide as what stands in it, or as such columns are
  bool large = false;                 ///< read across a bench, where a window shows it
  std::optional<TotalRatio> ratio{};  ///< how its total is made of others
  std::optional<TableValue>
      totalIs{};  ///< its total where the rows do not tell it, such as Batches that are in several

  const std::string& Caption() const { return caption.empty() ? key : caption; }
  const std::string& Heading() const { return heading.empty() ? Caption() : heading; }
  bool RightAligned() const {
    return format == Format::Whole || format == Format::Amount || format == Format::Number || format == Format::Money ||
           format == Format::Percent;
  }
  bool HasTotal() const { return total || ratio || totalIs; }
};

/// A row while it is taken; its cells are worked out as they are asked for.
class TableRow {
 public:
  virtual ~TableRow() = default;
  virtual TableValue Cell(std::size_t column) const = 0;
  virtual RowTarget Target() const { return {}; }
};

/// Takes a row; false when it wants no more.
using TableSink = std::function<bool(const TableRow& row)>;

/// A list that a person or a program gets to see: what its columns are, and how its rows are read. Nothing holds them
/// all: each reading goes through them once, and several readings give the same.
struct ListTable {
  std::vector<TableColumn> columns;  ///< in the order in which programs are told them
  std::vector<std::size_t> shown;    ///< those that people see, in their order; empty: all
  std::string totals;                ///< what stands before the row of totals; empty: there is none
  std::function<void(const TableSink& take)> read;

  /// The column of that caption or key, in any case.
  std::optional<std::size_t> Find(std::string_view name) const;
  std::vector<std::size_t> Shown() const;
};

/// The order of a table, one column and a second one among rows that are equal in the first; a filter, words of which
/// each stands somewhere in what people see of a row, in any case; the number of rows that are wanted.
struct Arrangement {
  std::optional<std::size_t> sort{};
  bool descending = false;
  std::optional<std::size_t> second{};
  bool secondDescending = false;
  std::string filter{};
  std::optional<std::size_t> limit{};

  bool Any() const { return sort || !filter.empty() || limit; }
};

/// The table with that arrangement. Another order than its own holds the rows that are wanted while it is read.
ListTable Arranged(ListTable table, Arrangement arrangement);

enum class TextOrder { AnyCase, ExactCase };
/// -1, 0 or 1: numbers and dates by size, texts without regard to case unless told otherwise, what is absent first.
int CompareCells(const TableValue& a, const TableValue& b, TextOrder texts = TextOrder::AnyCase);
/// The cell as people read it.
std::string CellText(const TableColumn& column, const TableValue& value);

/// Adds the numbers of columns that have a total, as they are shown: whole thousandths of a quantity, so that a million
/// of them add up to the last decimal.
class TableTotals {
 public:
  explicit TableTotals(const ListTable& table) : table_(table), sums_(table.columns.size()) {}
  void Add(const TableRow& row);
  /// The total of a column; nothing where it has none.
  TableValue Of(std::size_t column) const;
  /// The texts below the columns that are shown.
  std::vector<std::string> Texts() const;

 private:
  const ListTable& table_;
  std::vector<std::int64_t> sums_;
};

/// The definition of a table: its columns, each with where its value is found in a record.
template <class Record>
class TableOf {
 public:
  /// `value` is a field of the record or a procedure on it, and gives the column its format unless one is told.
  template <class Get>
  TableOf& Add(const std::string& key, Get value, const std::string& caption = {}, std::optional<Format> format = {},
               int decimals = 3) {
    using Value = std::remove_cvref_t<std::invoke_result_t<Get, const Record&>>;
    columns_.push_back({.key = key,
                        .caption = caption,
                        .format = format.value_or(FormatOf<Value>()),
                        .decimals = decimals});
    values_.push_back([value = std::move(value)](const Record& record) { return ToCell(std::invoke(value, record)); });
    return *this;
  }
  /// What people see, by caption, in that order.
  TableOf& Show(const std::vector<std::string_view>& captions) {
    const ListTable table{columns_, {}, {}, {}};
    for (const std::string_view caption : captions) shown_.push_back(table.Find(caption).value());
    return *this;
  }
  /// The last column is added up; `caption` stands before the sum.
  TableOf& Total(std::string caption) {
    columns_.back().total = true;
    totals_ = std::move(caption);
    return *this;
  }

  /// What is told of the last column beside its format.
  TableOf& Width(int twips) {
    columns_.back().width = twips;
    return *this;
  }
  TableOf& Heading(std::string inWindows) {
    columns_.back().heading = std::move(inWindows);
    return *this;
  }
  TableOf& Large() {
    columns_.back().large = true;
    return *this;
  }
  TableOf& Sum() {
    columns_.back().total = true;
    return *this;
  }
  /// The last column's total is that of the column with the key `part` divided by that of `whole`.
  TableOf& Ratio(std::string_view part, std::string_view whole) {
    const ListTable table{columns_, {}, {}, {}};
    columns_.back().ratio = TotalRatio{table.Find(part).value(), table.Find(whole).value()};
    return *this;
  }
  /// What a click on a row opens.
  TableOf& Leads(std::function<RowTarget(const Record&)> target) {
    target_ = std::move(target);
    return *this;
  }

  const std::vector<TableColumn>& Columns() const { return columns_; }
  TableValue ValueOf(const Record& record, std::size_t column) const { return values_[column](record); }

  /// The table of the records that `forEach` passes to its argument one after the other, until that answers false.
  ListTable Of(std::function<void(const std::function<bool(const Record&)>&)> forEach) const {
    return {columns_, shown_, totals_,
            [values = values_, target = target_, forEach = std::move(forEach)](const TableSink& take) {
              forEach([&](const Record& record) { return take(Row(values, target, record)); });
            }};
  }
  /// That of records that are at hand.
  ListTable Of(std::vector<Record> records) const {
    return Of([records = std::move(records)](const std::function<bool(const Record&)>& take) {
      for (const Record& record : records)
        if (!take(record)) return;
    });
  }

 private:
  using Values = std::vector<std::function<TableValue(const Record&)>>;
  using Leading = std::function<RowTarget(const Record&)>;

  class Row final : public TableRow {
   public:
    Row(const Values& values, const Leading& target, const Record& record)
        : values_(values), target_(target), record_(record) {}
    TableValue Cell(std::size_t column) const override { return values_[column](record_); }
    RowTarget Target() const override { return target_ ? target_(record_) : RowTarget{}; }

   private:
    const Values& values_;
    const Leading& target_;
    const Record& record_;
  };

  template <class Value>
  static constexpr Format FormatOf() {
    if constexpr (std::is_same_v<Value, bool>) return Format::Flag;
    if constexpr (std::is_same_v<Value, DateTime> || std::is_same_v<Value, std::optional<DateTime>>)
      return Format::When;
    if constexpr (std::is_floating_point_v<Value> || std::is_same_v<Value, std::optional<float>>) return Format::Amount;
    if constexpr (std::is_integral_v<Value> || std::is_enum_v<Value>) return Format::Whole;
    return Format::Text;
  }
  template <class Value>
  static TableValue ToCell(Value&& value) {
    using Plain = std::remove_cvref_t<Value>;
    if constexpr (std::is_same_v<Plain, std::optional<DateTime>> || std::is_same_v<Plain, std::optional<float>>) {
      return value ? TableValue(*value) : TableValue();
    } else if constexpr (std::is_same_v<Plain, ListTable>) {
      return std::make_shared<const ListTable>(std::forward<Value>(value));
    } else if constexpr ((std::is_integral_v<Plain> && !std::is_same_v<Plain, bool>) || std::is_enum_v<Plain>) {
      return static_cast<std::int64_t>(value);
    } else if constexpr (std::is_same_v<Plain, std::string_view>) {
      return std::string(value);
    } else {
      return TableValue(std::forward<Value>(value));
    }
  }

  std::vector<TableColumn> columns_;
  std::vector<std::size_t> shown_;
  std::string totals_;
  Values values_;
  Leading target_;
};

}  // namespace vellumark
