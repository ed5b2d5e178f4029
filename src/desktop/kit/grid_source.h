#pragma once

#include <QColor>
#include <QString>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "core/base/refusal.h"
#include "desktop/kit/text_rule.h"

namespace vellumark::desktop {

/// One column of a grid.
struct GridColumn {
  enum class Sort { Text, TextNoCase, Number };

  QString caption;
  int width = 120;  ///< pixels at 100 percent; 0: never shown
  Sort sort = Sort::Text;
  bool right = false;
  double scale = 1;        ///< of the text; 1.4 for amounts that are read across a bench
  bool choosable = false;  ///< the operator may hide it
  bool shown = true;
  bool sortable = true;
  /// How it is called in a column set; the caption up to " (" when empty.
  QString name = {};
  std::optional<TextRule> rule = {};  ///< of its editor

  static GridColumn Text(QString caption, int width = 120) { return {std::move(caption), width}; }
  /// Numbers, right-aligned, sorted as numbers.
  static GridColumn Number(QString caption, int width = 96) { return {std::move(caption), width, Sort::Number, true}; }
  /// Numbers to be read across a bench.
  static GridColumn Amount(QString caption, int width = 144) {
    return {std::move(caption), width, Sort::Number, true, 1.4};
  }
  GridColumn Choosable(bool isShown = true) && {
    choosable = true;
    shown = isShown;
    return std::move(*this);
  }
  GridColumn Named(QString columnName) && {
    name = std::move(columnName);
    return std::move(*this);
  }
};

/// The sort of a grid: one column, and a second one among rows that are equal in the first.
struct GridSort {
  int column = -1;  ///< -1: the source's own order
  bool descending = false;
  int second = -1;
  bool secondDescending = false;
  bool operator==(const GridSort&) const = default;
};

inline constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

/// Where a grid's cells come from. Cells are asked for when they are painted, sorted or searched, so the source may be
/// the result of a core procedure as it stands. Rows and columns count from 0, in the source's own order.
class GridSource {
 public:
  virtual ~GridSource() = default;
  virtual int Rows() const = 0;
  /// The first so many rows stay on top however the others are sorted, and no filter hides them.
  virtual int FixedRows() const { return 0; }
  /// As shown.
  virtual std::string Text(int row, int column) const = 0;

  /// A source that reads its rows on demand begins anew, with only those that `keep` agrees to (all of them without
  /// it), asked while the row is the last one. False of one whose rows are all there.
  virtual bool BeginReading(const std::function<bool(int row)>&) { return false; }
  /// Reads further rows behind those that are there, for a moment at most; false when no more can come.
  virtual bool ReadOn() { return false; }
  /// Reads all the rest for an order that is not its own, and does what comes of it; with a bar where that takes long.
  virtual void ReadAll(const std::function<void()>& then) {
    while (ReadOn()) continue;
    then();
  }
  /// Whether its rows stand in that order already.
  virtual bool IsSortedBy(const GridSort& sort) const { return sort.column < 0; }
  /// What names a row when others have come before it; -1 where nothing does but its texts.
  virtual std::int64_t Key(int) const { return -1; }
  /// -1 when it has gone.
  virtual int RowOf(std::int64_t) const { return -1; }

  /// What a column of numbers or dates is sorted by; kNoNumber for an empty cell. Without an own answer, the number
  /// that the text is.
  virtual double Number(int row, int column) const;
  /// Ink to be shown before the text.
  virtual std::optional<QColor> Swatch(int, int) const { return std::nullopt; }
  /// The name of an icon before the text ("recycled", "low-stock"); nullptr for none.
  virtual const char* Mark(int, int) const { return nullptr; }
  virtual bool IsEditable(int, int) const { return false; }
  /// Takes what was typed into a cell. Declined (`Decline`), the old value is back without a word.
  virtual Result<void> Edit(int, int, const std::string&) { return {}; }
};

/// A source that keeps its cells.
class TableSource : public GridSource {
 public:
  struct Cell {
    Cell() = default;
    Cell(std::string shown) : text(std::move(shown)) {}  // NOLINT: made to be written as a text
    Cell(const char* shown) : text(shown) {}             // NOLINT
    Cell(std::string shown, double value) : text(std::move(shown)), number(value) {}
    std::string text;
    double number = kNoNumber;
    std::optional<QColor> swatch = {};
    const char* mark = nullptr;
  };
  using Row = std::vector<Cell>;

  void Clear() { rows_.clear(); }
  void Add(Row row) { rows_.push_back(std::move(row)); }
  Cell& At(int row, int column) { return rows_.at(static_cast<std::size_t>(row)).at(static_cast<std::size_t>(column)); }

  int Rows() const override { return static_cast<int>(rows_.size()); }
  std::string Text(int row, int column) const override { return Find(row, column).text; }
  double Number(int row, int column) const override;
  std::optional<QColor> Swatch(int row, int column) const override { return Find(row, column).swatch; }
  const char* Mark(int row, int column) const override { return Find(row, column).mark; }

 private:
  const Cell& Find(int row, int column) const;
  std::vector<Row> rows_;
};

}  // namespace vellumark::desktop
