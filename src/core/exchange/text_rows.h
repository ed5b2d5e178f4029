#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellumark {

/// A text file of any program as UTF-8: UTF-8 with or without its mark, UTF-16 of either order, else CP1252.
std::string TextOfAnyEncoding(std::string_view bytes);

/// A text as one cell that comes back as it was: a tab, a line end and a backslash are written "\t", "\n" and "\\".
std::string EscapedCell(std::string_view text);
std::string UnescapedCell(std::string_view cell);
/// The same as a cell that a RowCutter gives back whole: in quotation marks where it begins with one.
std::string WrittenCell(std::string_view text);

/// Cuts a text into rows and these into cells. A row ends with LF, CR LF or CR; a cell that begins with a quotation
/// mark ends with the next single one before a separator, and may hold separators, line ends and doubled marks.
class RowCutter {
 public:
  /// Without a separator a row is one cell. The text has to outlive the cutter.
  RowCutter(std::string_view text, char separator) : text_(text), separator_(separator) {}

  /// The next row that is not blank; false at the end.
  bool Next();

  int Line() const { return line_; }  ///< where the row begins, from 1
  /// The cells up to the last that is not blank.
  const std::vector<std::string>& Cells() const { return cells_; }
  std::string_view Raw() const { return raw_; }
  bool Ended() const { return ended_; }  ///< a line end stands behind it

 private:
  bool TakeQuoted(std::string& cell);
  bool EndsCell(std::size_t at) const;
  void TakeRow();

  std::string_view text_;
  char separator_;
  std::size_t at_ = 0;
  std::size_t noQuoteBefore_ = 0;  // no mark up to there ends a cell in quotes
  int line_ = 0;
  int nextLine_ = 1;
  bool ended_ = false;
  std::string_view raw_;
  std::vector<std::string> cells_;
};

/// How the numbers of a file are written. A number with one mark and three digits behind it does not say by itself
/// what the mark is; the others of the file do. So a file with commas is gone through twice, at first to learn.
class NumberStyle {
 public:
  explicit NumberStyle(bool learn) : learning_(learn) {}
  bool Learning() const { return learning_; }
  void EndLearning() { learning_ = false; }

  /// A number with a decimal point or comma, thousands marks (point, comma, apostrophe, blank) and a percent sign;
  /// nothing for anything else, an exponent among it, and for one that can be read in two ways. While it learns, every
  /// cell counts as a number.
  std::optional<double> Read(std::string_view cell);

 private:
  void Learn(std::string_view cell);

  bool learning_;
  bool pointDecimal_ = false;
  bool commaDecimal_ = false;
  bool pointUnclear_ = false;
};

}  // namespace vellumark
