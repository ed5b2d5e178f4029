#include "core/exchange/text_rows.h"

#include <algorithm>
#include <cstdint>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/unicode.h"

namespace vellumark {
namespace {

constexpr std::size_t kLongestQuoted = std::size_t{64} * 1024;

// Without its mark UTF-16 shows by the zeros that the letters of our script have in every other byte.
std::optional<bool> BigEndianByZeros(std::string_view bytes) {
  const std::string_view front = bytes.substr(0, 4096);
  std::size_t even = 0;
  std::size_t odd = 0;
  for (std::size_t i = 0; i < front.size(); ++i)
    if (front[i] == '\0') ++(i % 2 == 0 ? even : odd);
  const std::size_t most = front.size() / 2;
  if (bytes.size() % 2 != 0 || most < 4) return std::nullopt;
  if (even == 0 && odd * 10 >= most * 7) return false;
  if (odd == 0 && even * 10 >= most * 7) return true;
  return std::nullopt;
}

bool IsBlank(std::string_view text) {
  return TrimView(text).empty();
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// The marks that part thousands and are no point or comma, behind a digit: apostrophe, blank, and the blanks that do
// not break.
std::size_t SpacingAt(std::string_view text) {
  for (const std::string_view mark : {"'", " ", "\xE2\x80\x99", "\xC2\xA0", "\xE2\x80\xAF", "\xE2\x80\x89"})
    if (text.starts_with(mark)) return mark.size();
  return 0;
}

// What a number is made of: its sign and digits with the points and commas in it. Empty for what is no number.
std::string NumberMarks(std::string_view cell) {
  cell = TrimView(cell);
  if (cell.ends_with('%')) cell = TrimView(cell.substr(0, cell.size() - 1));
  std::string marks;
  marks.reserve(cell.size());
  while (!cell.empty()) {
    const char c = cell.front();
    const bool sign = marks.empty() && (c == '+' || c == '-');
    if (IsDigit(c) || c == '.' || c == ',' || sign) {
      marks += c;
      cell.remove_prefix(1);
      continue;
    }
    const std::size_t spacing = SpacingAt(cell);
    if (spacing == 0 || marks.empty() || !IsDigit(marks.back())) return {};
    cell.remove_prefix(spacing);
    const auto digits = static_cast<std::size_t>(std::ranges::find_if_not(cell, IsDigit) - cell.begin());
    if (digits != 3) return {};
  }
  return marks;
}

// Digits with one point at most, as most files have them.
bool IsPlain(std::string_view cell) {
  return std::ranges::all_of(cell, [](char c) { return IsDigit(c) || c == '.'; }) && std::ranges::count(cell, '.') <= 1;
}

struct Marks {
  std::size_t points = 0;
  std::size_t commas = 0;
  bool unclear = false;  // one mark, up to three digits before it and three behind: thousands or decimals
};

Marks MarksOf(std::string_view number) {
  Marks marks;
  marks.points = static_cast<std::size_t>(std::ranges::count(number, '.'));
  marks.commas = static_cast<std::size_t>(std::ranges::count(number, ','));
  if (marks.points + marks.commas != 1) return marks;
  if (number.starts_with('-') || number.starts_with('+')) number.remove_prefix(1);
  const std::size_t at = number.find_first_of(".,");
  marks.unclear = number.size() - at - 1 == 3 && at >= 1 && at <= 3 && number[0] != '0';
  return marks;
}

// The number with its thousands marks taken out and a point for its decimals; empty when they part no thousands.
std::string PlainNumber(std::string_view number, char decimal) {
  const char thousands = decimal == '.' ? ',' : '.';
  const std::size_t point = number.find(decimal);
  const std::string_view whole = number.substr(0, point);
  const std::string_view behind = point == std::string_view::npos ? std::string_view{} : number.substr(point + 1);
  if (behind.find_first_of(".,") != std::string_view::npos) return {};
  std::string plain;
  std::size_t group = 0;
  bool first = true;
  for (const char c : whole) {
    if (c != thousands) {
      plain += c;
      if (IsDigit(c)) ++group;
      continue;
    }
    if (first ? group < 1 || group > 3 : group != 3) return {};
    first = false;
    group = 0;
  }
  if (!first && group != 3) return {};
  if (point != std::string_view::npos) plain.append(".").append(behind);
  return plain;
}

}  // namespace

std::string TextOfAnyEncoding(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xFE")) return FromUtf16(bytes.substr(2), false);
  if (bytes.starts_with("\xFE\xFF")) return FromUtf16(bytes.substr(2), true);
  if (const auto bigEndian = BigEndianByZeros(bytes)) return FromUtf16(bytes, *bigEndian);
  return DecodeText(bytes);
}

std::string EscapedCell(std::string_view text) {
  std::string cell;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\r') {
      if (i + 1 == text.size() || text[i + 1] != '\n') cell += "\\n";
    } else if (c == '\n' || c == '\t' || c == '\\') {
      cell += '\\';
      cell += c == '\n' ? 'n' : c == '\t' ? 't' : '\\';
    } else {
      cell += c;
    }
  }
  return cell;
}

std::string UnescapedCell(std::string_view cell) {
  std::string text;
  for (std::size_t i = 0; i < cell.size(); ++i) {
    const char next = cell[i] == '\\' && i + 1 < cell.size() ? cell[i + 1] : '\0';
    const bool known = next == 'n' || next == 't' || next == '\\';
    text += !known ? cell[i] : next == 'n' ? '\n' : next == 't' ? '\t' : '\\';
    if (known) ++i;
  }
  return text;
}

std::string WrittenCell(std::string_view text) {
  std::string cell = EscapedCell(text);
  if (!cell.starts_with('"')) return cell;
  std::string quoted = "\"";
  for (const char c : cell) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + "\"";
}

bool RowCutter::EndsCell(std::size_t at) const {
  return at >= text_.size() || text_[at] == separator_ || text_[at] == '\n' || text_[at] == '\r';
}

// A mark without its counterpart is part of the name that it stands in.
bool RowCutter::TakeQuoted(std::string& cell) {
  if (separator_ == '\0' || at_ < noQuoteBefore_) return false;
  int lines = 0;
  const std::size_t last = std::min(text_.size(), at_ + kLongestQuoted);
  for (std::size_t i = at_ + 1; i < last; ++i) {
    const char c = text_[i];
    if (c == '\r' && i + 1 < text_.size() && text_[i + 1] == '\n') continue;
    if (c == '\n' || c == '\r') ++lines;
    if (c == '"') {
      if (i + 1 < text_.size() && text_[i + 1] == '"') {
        ++i;
      } else if (EndsCell(i + 1)) {
        at_ = i + 1;
        nextLine_ += lines;
        return true;
      }
    }
    cell += c == '\r' ? '\n' : c;
  }
  cell.clear();
  noQuoteBefore_ = last;
  return false;
}

void RowCutter::TakeRow() {
  std::size_t count = 0;
  std::size_t filled = 0;
  line_ = nextLine_;
  const std::size_t begin = at_;
  for (bool more = true; more;) {
    if (cells_.size() == count) cells_.emplace_back();
    std::string& cell = cells_[count++];
    cell.clear();
    if (at_ >= text_.size() || text_[at_] != '"' || !TakeQuoted(cell)) {
      const std::size_t start = at_;
      while (!EndsCell(at_)) ++at_;
      cell.assign(text_.substr(start, at_ - start));
    }
    if (!IsBlank(cell)) filled = count;
    more = at_ < text_.size() && text_[at_] == separator_;
    if (more) ++at_;
  }
  raw_ = text_.substr(begin, at_ - begin);
  ended_ = at_ < text_.size();
  if (ended_) at_ += text_.substr(at_).starts_with("\r\n") ? 2 : 1;
  ++nextLine_;
  cells_.resize(filled);
}

bool RowCutter::Next() {
  while (at_ < text_.size()) {
    TakeRow();
    if (!cells_.empty()) return true;
  }
  return false;
}

void NumberStyle::Learn(std::string_view cell) {
  const std::string number = NumberMarks(cell);
  const Marks marks = MarksOf(number);
  if (marks.points + marks.commas == 0) return;
  if (marks.unclear) {
    pointUnclear_ |= marks.points == 1;
  } else if (marks.points == 1 && (marks.commas == 0 || number.rfind('.') > number.rfind(','))) {
    pointDecimal_ = true;
  } else if (marks.commas == 1 && (marks.points == 0 || number.rfind(',') > number.rfind('.'))) {
    commaDecimal_ = true;
  } else {
    (marks.commas > 1 ? pointDecimal_ : commaDecimal_) = true;
  }
}

std::optional<double> NumberStyle::Read(std::string_view cell) {
  if (learning_) {
    Learn(cell);
    return 1;
  }
  if (!commaDecimal_ && IsPlain(cell)) return ParseNumber(cell);
  const std::string number = NumberMarks(cell);
  if (number.empty()) return std::nullopt;
  const Marks marks = MarksOf(number);
  if (marks.commas == 0 && marks.points == 0) return ParseNumber(number);
  if (!marks.unclear) {
    // The last mark parts the decimals, unless it stands more than once.
    const bool comma = marks.points == 0   ? marks.commas == 1
                       : marks.commas == 0 ? marks.points > 1
                                           : number.rfind(',') > number.rfind('.');
    return ParseNumber(PlainNumber(number, comma ? ',' : '.'));
  }
  if (marks.points == 1) {
    if (commaDecimal_ && pointDecimal_) return std::nullopt;
    return ParseNumber(PlainNumber(number, commaDecimal_ ? ',' : '.'));
  }
  if (commaDecimal_ != pointDecimal_) return ParseNumber(PlainNumber(number, commaDecimal_ ? ',' : '.'));
  if (commaDecimal_ || pointUnclear_) return std::nullopt;
  return ParseNumber(PlainNumber(number, ','));
}

}  // namespace vellumark
