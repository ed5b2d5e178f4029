#include "paper/table_columns.h"

#include <QDate>
#include <algorithm>
#include <numeric>

namespace vellumark::paper {
namespace {

constexpr double kGrain = 0.01;         // points; what sums of widths may be off
constexpr double kLeastShrink = 0.6;    // of a number's size
constexpr double kWidestText = 0.45;    // of the page, for a column that is measured
constexpr double kUnitsOfTwip = 0.012;  // of the 80 across a page
constexpr double kUnitsAcross = 80;

// The part of a text that fits.
qsizetype LettersThatFit(const Typeface& typeface, const QString& text, double size, bool bold, double room) {
  double width = 0;
  for (qsizetype i = 0; i < text.size(); ++i) {
    width += typeface.Width(QStringView(text).mid(i, 1), size, bold);
    if (width > room + kGrain) return i;
  }
  return text.size();
}

double LongestWord(const Typeface& typeface, const QString& text, double size) {
  double widest = 0;
  for (const QStringView word : QStringView(text).split(' '))
    widest = std::max(widest, typeface.Width(word, size, true));
  return widest;
}

}  // namespace

QString InLocale(const QString& figure, const QLocale& locale) {
  bool number = false;
  const double value = figure.toDouble(&number);
  if (!number || locale == QLocale::c()) return figure;
  const qsizetype point = figure.indexOf('.');
  return locale.toString(value, 'f', point < 0 ? 0 : static_cast<int>(figure.size() - point - 1));
}

QString PaperText(const TableColumn& column, const TableValue& value, const QLocale& locale) {
  if (locale != QLocale::c()) {
    if (const auto* date = std::get_if<DateTime>(&value); date != nullptr && column.format != Format::Moment)
      if (column.format == Format::Date || *date == date->Midnight())
        return locale.toString(QDate(date->year, date->month, date->day), QLocale::ShortFormat);
  }
  QString text = Q(CellText(column, value));
  if (column.format == Format::Amount || column.format == Format::Money) return InLocale(text, locale);
  if (column.format == Format::Percent && text.endsWith('%')) return InLocale(text.chopped(1), locale) + '%';
  for (QChar& letter : text)
    if (letter < ' ') letter = ' ';
  return text;
}

bool IsFigure(QStringView text) {
  bool digit = false;
  for (const QChar letter : text) {
    if (letter.isDigit())
      digit = true;
    else if (!QStringView(u" .,-+%'\u00a0\u202f\u2212$").contains(letter) &&
             letter.category() != QChar::Symbol_Currency)
      return false;
  }
  return digit;
}

FittedText Fit(const Typeface& typeface, const QString& text, double size, bool bold, double room) {
  const double width = typeface.Width(text, size, bold);
  if (width <= room + kGrain) return {text, size};
  if (!IsFigure(text)) return {text.left(LettersThatFit(typeface, text, size, bold, room)), size};
  if (width * kLeastShrink <= room) return {text, size * room / width};
  const double mark = typeface.Width(u"#", size, bold);
  return {QString(std::clamp<qsizetype>(static_cast<qsizetype>(room / mark), 1, 4), '#'), size};
}

QStringList Wrapped(const Typeface& typeface, const QString& text, double size, bool bold, double room) {
  QStringList lines;
  const double blank = typeface.Width(u" ", size, bold);
  for (const QString& paragraph : text.split('\n')) {
    QString line;
    double width = 0;
    for (QString word : paragraph.simplified().split(' ')) {
      double wide = typeface.Width(word, size, bold);
      if (!line.isEmpty() && width + blank + wide > room + kGrain) {
        lines += line;
        line.clear();
        width = 0;
      }
      while (wide > room + kGrain && word.size() > 1) {
        const qsizetype fits = std::max<qsizetype>(1, LettersThatFit(typeface, word, size, bold, room));
        lines += word.left(fits);
        word.remove(0, fits);
        wide = typeface.Width(word, size, bold);
      }
      width += (line.isEmpty() ? 0 : blank) + wide;
      line += (line.isEmpty() ? "" : " ") + word;
    }
    lines += line;
  }
  return lines;
}

TableColumns::TableColumns(const ListTable& table, const PageOptions& options, const Typeface& typeface, double across,
                           const std::vector<double>& twips) {
  for (const std::size_t column : table.Shown()) columns_.push_back({column, table.columns[column].RightAligned(), 0});
  if (twips.empty()) {
    Measure(table, options, typeface, across);
    return;
  }
  for (std::size_t i = 0; i < columns_.size() && i < twips.size(); ++i)
    columns_[i].width = twips[i] * kUnitsOfTwip / kUnitsAcross * across;
  std::erase_if(columns_, [](const PaperColumn& column) { return column.width <= 0; });
  table.read([this](const TableRow&) { return ++rows_, true; });
}

void TableColumns::Measure(const ListTable& table, const PageOptions& options, const Typeface& typeface,
                           double across) {
  const double gap = Gap(typeface, kBodySize);
  const auto widen = [&](PaperColumn& column, const QString& text, bool bold) {
    const double width = typeface.Width(text, kBodySize, bold);
    column.width = std::max(column.width, IsFigure(text) ? width : std::min(width, across * kWidestText));
  };
  TableTotals totals(table);
  table.read([&](const TableRow& row) {
    ++rows_;
    totals.Add(row);
    for (PaperColumn& column : columns_)
      widen(column, PaperText(table.columns[column.column], row.Cell(column.column), options.locale), false);
    return true;
  });
  const std::vector<std::string> sums = totals.Texts();
  std::vector<double> whole;  // widths in which no caption is broken
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    double& width = columns_[i].width;
    if (!table.totals.empty() && options.totals) widen(columns_[i], Q(sums[i]), true);
    const QString caption = options.headings ? Q(table.columns[columns_[i].column].Caption()) : QString();
    whole.push_back(std::max(width, typeface.Width(caption, kBodySize, true)) + gap);
    width = std::max(width, LongestWord(typeface, caption, kBodySize)) + gap;
  }
  if (std::reduce(whole.begin(), whole.end()) > across) return;
  for (std::size_t i = 0; i < columns_.size(); ++i) columns_[i].width = whole[i];
}

double TableColumns::Width() const {
  double width = 0;
  for (const PaperColumn& column : columns_) width += column.width;
  return width;
}

double TableColumns::Gap(const Typeface& typeface, double size) {
  return typeface.Width(u"nn", size);
}

std::vector<std::vector<PaperColumn>> TableColumns::Groups(double across, double scale) const {
  std::vector<std::vector<PaperColumn>> groups;
  double used = 0;
  for (PaperColumn column : columns_) {
    column.width *= scale;
    const double first = groups.empty() ? 0 : groups.front().front().width;
    if (groups.empty()) {
      column.width = std::min(column.width, Width() * scale <= across ? across : across * kWidestText);
      groups.push_back({column});
      used = column.width;
      continue;
    }
    column.width = std::min(column.width, across - first);
    if (used + column.width > across + kGrain) {
      groups.push_back({groups.front().front()});
      used = first;
    }
    groups.back().push_back(column);
    used += column.width;
  }
  return groups;
}

}  // namespace vellumark::paper
