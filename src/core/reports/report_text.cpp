#include "core/reports/report_text.h"

#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"

namespace vellumark {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

std::string Cleaned(std::string_view text) {
  std::string cleaned;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\t') {
      cleaned += "\\t";
    } else if (text[i] == '\n' || text[i] == '\r') {
      cleaned += "\\n";
      if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
    } else {
      cleaned += text[i];
    }
  }
  return cleaned;
}

class TabbedText {
 public:
  void Field(std::string_view text) {
    if (!first_) text_ += '\t';
    first_ = false;
    text_ += Cleaned(text);
  }
  void EndLine() {
    text_ += kLineEnd;
    first_ = true;
  }
  const std::string& Text() const { return text_; }

 private:
  std::string text_;
  bool first_ = true;
};

}  // namespace

std::vector<std::size_t> ExportColumns(const BuiltReport& report, const ExportOptions& options) {
  std::vector<std::size_t> order;
  for (const std::string& name : options.order)
    for (const std::size_t column : FindReportColumns(report.columns, name))
      if (std::ranges::find(report.shown, column) != report.shown.end() &&
          std::ranges::find(order, column) == order.end())
        order.push_back(column);
  return order.empty() ? report.shown : order;
}

Sheet ReportSheet(const BuiltReport& report) {
  Sheet sheet = Sheet::Of(report.title, report.Table());
  sheet.incomplete = !report.complete;
  for (const std::size_t column : report.shown) sheet.blocks.front().widths.push_back(report.columns[column].width);
  return sheet;
}

std::string_view FormatToken(Format format) {
  switch (format) {
    case Format::YesNo:
    case Format::Flag:
    case Format::Mark:
      return "Yes/No";
    case Format::Notes:
      return "IsNotes";
    case Format::Number:
      return "000000";
    case Format::Whole:
      return "General Number";
    case Format::Amount:
      return "Qty";
    case Format::Date:
    case Format::Moment:
    case Format::When:
      return "Short Date";
    case Format::Money:
      return "Currency";
    case Format::Percent:
      return "Percent";
    case Format::Text:
      break;
  }
  return "@";
}

std::optional<double> PrintedNumber(const TableColumn& column, const TableValue& value) {
  constexpr int kFractionDecimals = 4;
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return static_cast<double>(*whole);
  if (const auto* single = std::get_if<float>(&value)) return RoundTo(*single, column.decimals);
  if (const auto* number = std::get_if<double>(&value))
    return RoundTo(*number, column.format == Format::Percent ? kFractionDecimals : column.decimals);
  return std::nullopt;
}

std::string ExportCell(const TableColumn& column, const TableValue& value) {
  if (const auto* text = std::get_if<std::string>(&value); text && column.format == Format::Notes) return *text;
  return CellText(column, value);
}

std::string ReportText(const BuiltReport& report, const ExportOptions& options) {
  const std::vector<std::size_t> columns = ExportColumns(report, options);
  TabbedText text;
  if (options.headings) {
    for (const std::size_t column : columns) text.Field(PlainCaption(report.columns[column].Caption()));
    text.EndLine();
  }
  if (options.data)
    for (const std::size_t row : report.order) {
      for (const std::size_t column : columns) text.Field(ExportCell(report.columns[column], report.Cell(row, column)));
      text.EndLine();
    }
  if (options.totals && !report.totals.empty()) {
    const std::vector<TableValue> totals = report.Totals();
    for (const std::size_t column : columns) {
      const bool caption = column == 0 && std::holds_alternative<std::monostate>(totals[column]);
      text.Field(caption ? report.totals : CellText(report.columns[column], totals[column]));
    }
    text.EndLine();
  }
  if (!report.complete) {
    text.Field("INCOMPLETE");
    text.EndLine();
  }
  return FitsCp1252(text.Text()) ? ToCp1252(text.Text()) : text.Text();
}

}  // namespace vellumark
