#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "core/base/seams.h"
#include "core/base/table.h"
#include "paper/page_options.h"
#include "paper/typeface.h"

namespace vellumark::paper {

/// A decimal figure as the locale writes it, its thousands grouped; what is none stays as it is.
QString InLocale(const QString& figure, const QLocale& locale);
/// The cell as it stands on paper: one line, its numbers and dates as the locale writes them.
QString PaperText(const TableColumn& column, const TableValue& value, const QLocale& locale);
/// Consists of digits with what belongs to numbers; cut off it would be another number.
bool IsFigure(QStringView text);

/// A text as it fits into a column.
struct FittedText {
  QString text;
  double size;
};
/// Numbers are made smaller, and where that is not enough become "####"; other texts lose their end. `room` in points.
FittedText Fit(const Typeface& typeface, const QString& text, double size, bool bold, double room);
/// The lines of a text, broken between words; a word that is too long for a line is broken where it must be.
QStringList Wrapped(const Typeface& typeface, const QString& text, double size, bool bold, double room);

/// A column of a table on paper; points at the full size of the body.
struct PaperColumn {
  std::size_t column = 0;  ///< in the table
  bool right = false;
  double width = 0;  ///< with the space behind it
};

/// The columns of a table on paper, how wide they are and which of them stand side by side.
class TableColumns {
 public:
  /// Reads the table once, for the widths unless they are told, and counts its rows.
  TableColumns(const ListTable& table, const PageOptions& options, const Typeface& typeface, double across,
               const std::vector<double>& twips);

  const std::vector<PaperColumn>& Columns() const { return columns_; }
  std::size_t Rows() const { return rows_; }
  double Width() const;
  /// Columns that stand on one page when each is `scale` times as wide as at full size: places in Columns(). Further
  /// groups repeat the first column; a column is no wider than the page.
  std::vector<std::vector<PaperColumn>> Groups(double across, double scale) const;

  /// Space between columns at a size: two letters.
  static double Gap(const Typeface& typeface, double size);

 private:
  void Measure(const ListTable& table, const PageOptions& options, const Typeface& typeface, double across);

  std::vector<PaperColumn> columns_;
  std::size_t rows_ = 0;
};

}  // namespace vellumark::paper
