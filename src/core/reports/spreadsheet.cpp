#include "core/reports/spreadsheet.h"

#include <fmt/format.h>
#include <xlsxwriter.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <utility>

#include "core/base/number.h"
#include "core/base/text.h"

namespace vellumark {
namespace {

constexpr std::size_t kLongestText = 32767;  // letters of a cell
constexpr double kTwipsInLetter = 105;
constexpr int kFirstYear = 1900;  // of its calendar

std::string NumberFormat(const TableColumn& column) {
  const auto decimals = static_cast<std::size_t>(std::max(0, column.decimals));
  const std::string fraction = decimals == 0 ? "" : "." + std::string(decimals, '0');
  switch (column.format) {
    case Format::Amount:
    case Format::Money:
      return "#,##0" + fraction;
    case Format::Percent:
      return "0.00%";
    case Format::Number:
      return "000000";
    case Format::Whole:
      return "0";
    case Format::Date:
    case Format::When:
      return "yyyy-mm-dd";
    case Format::Moment:
      return "yyyy-mm-dd hh:mm:ss";
    default:
      return "";
  }
}

struct Closer {
  void operator()(lxw_workbook* book) const { lxw_workbook_free(book); }
};

class Spreadsheet {
 public:
  Spreadsheet(const BuiltReport& report, const std::vector<std::size_t>& columns, const std::filesystem::path& file)
      : report_(report), columns_(columns), file_(file.string()) {
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    book_.reset(workbook_new_opt(file_.c_str(), &options));
    if (!book_) Fail(LXW_ERROR_MEMORY_MALLOC_FAILED);
    std::string title = report.FullTitle();
    lxw_doc_properties properties{};
    properties.title = title.data();
    Check(workbook_set_properties(book_.get(), &properties));
    sheet_ = workbook_add_worksheet(book_.get(), report.complete ? "Report" : "INCOMPLETE");
    if (sheet_ == nullptr) Fail(LXW_ERROR_MEMORY_MALLOC_FAILED);
    worksheet_set_landscape(sheet_);
    worksheet_fit_to_pages(sheet_, 1, 0);
    for (std::size_t i = 0; i < columns_.size(); ++i)
      Check(worksheet_set_column(sheet_, Place(i), Place(i), Column(i).width / kTwipsInLetter, nullptr));
  }

  void Headings() {
    for (std::size_t i = 0; i < columns_.size(); ++i) Text(i, PlainCaption(Column(i).Caption()), FormatOf("", true));
    worksheet_freeze_panes(sheet_, 1, 0);
    Check(worksheet_repeat_rows(sheet_, 0, 0));
    headed_ = true;
    ++row_;
  }

  void Rows() {
    first_ = row_;
    for (const std::size_t row : report_.order) {
      for (std::size_t i = 0; i < columns_.size(); ++i)
        Cell(i, report_.Cell(row, columns_[i]), FormatOf(NumberFormat(Column(i)), false));
      ++row_;
    }
    if (headed_ && row_ > first_ && !columns_.empty())
      Check(worksheet_autofilter(sheet_, 0, 0, row_ - 1, Place(columns_.size() - 1)));
  }

  void Totals() {
    const std::vector<TableValue> totals = report_.Totals();
    const bool hasRows = row_ > first_;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      lxw_format* format = FormatOf(NumberFormat(Column(i)), true);
      const TableValue& total = totals[columns_[i]];
      const std::string formula = hasRows ? Formula(i) : "";
      if (i == 0 && std::holds_alternative<std::monostate>(total))
        Text(i, report_.totals, format);
      else if (const auto number = PrintedNumber(Column(i), total); number && !formula.empty())
        Check(worksheet_write_formula_num(sheet_, row_, Place(i), formula.c_str(), format, *number));
      else
        Cell(i, total, format);
    }
    ++row_;
  }

  void Incomplete() { Text(0, "INCOMPLETE", FormatOf("", true)); }

  void Close() {
    // What could not be put by on the way is told by its stream alone.
    if (sheet_->optimize_tmpfile != nullptr &&
        (std::fflush(sheet_->optimize_tmpfile) != 0 || std::ferror(sheet_->optimize_tmpfile) != 0))
      throw Failure(file_, "the folder of temporary files is full or cannot be written");
    Check(workbook_close(book_.release()));
  }

 private:
  const TableColumn& Column(std::size_t i) const { return report_.columns[columns_[i]]; }
  static lxw_col_t Place(std::size_t i) { return static_cast<lxw_col_t>(i); }
  [[noreturn]] void Fail(lxw_error error) const { throw Failure(file_, lxw_strerror(error)); }
  void Check(lxw_error error) const {
    if (error != LXW_NO_ERROR) Fail(error);
  }

  lxw_format* FormatOf(const std::string& number, bool bold) {
    lxw_format*& format = formats_[{number, bold}];
    if (format == nullptr) {
      format = workbook_add_format(book_.get());
      if (format == nullptr) Fail(LXW_ERROR_MEMORY_MALLOC_FAILED);
      if (!number.empty()) format_set_num_format(format, number.c_str());
      if (bold) format_set_bold(format);
    }
    return format;
  }

  // Lines within a cell end with a line feed alone.
  void Text(std::size_t i, std::string text, lxw_format* format) {
    std::erase(text, '\r');
    if (text.empty()) return;
    Check(worksheet_write_string(sheet_, row_, Place(i), Left(text, kLongestText).c_str(), format));
  }

  void Cell(std::size_t i, const TableValue& value, lxw_format* format) {
    if (const auto number = PrintedNumber(Column(i), value)) {
      Check(worksheet_write_number(sheet_, row_, Place(i), *number, format));
    } else if (const auto* date = std::get_if<DateTime>(&value); date != nullptr && date->year >= kFirstYear) {
      lxw_datetime when{date->year, date->month, date->day, 0, 0, 0.0};
      if (Column(i).format == Format::Moment) {
        when.hour = date->hour;
        when.min = date->minute;
        when.sec = date->second;
      }
      Check(worksheet_write_datetime(sheet_, row_, Place(i), &when, format));
    } else {
      Text(i, ExportCell(Column(i), value), format);
    }
  }

  std::string Range(std::size_t i) const {
    std::string letters;
    for (std::size_t n = i + 1; n > 0; n = (n - 1) / 26)
      letters.insert(letters.begin(), static_cast<char>('A' + (n - 1) % 26));
    return fmt::format("{0}{1}:{0}{2}", letters, first_ + 1, row_);
  }

  // Empty where the rows of the file do not tell the total.
  std::string Formula(std::size_t i) const {
    constexpr int kSumOfShown = 109;
    const TableColumn& column = Column(i);
    const auto sum = [&](std::size_t place) { return fmt::format("SUBTOTAL({},{})", kSumOfShown, Range(place)); };
    if (column.ratio) {
      const auto part = PlaceOf(column.ratio->part);
      const auto whole = PlaceOf(column.ratio->whole);
      if (!part || !whole) return "";
      return fmt::format("=IF({1}=0,0,ROUND({0}/{1},4))", sum(*part), sum(*whole));
    }
    return column.total && !column.totalIs ? "=" + sum(i) : "";
  }

  std::optional<std::size_t> PlaceOf(std::size_t column) const {
    const TableColumn& of = report_.columns[column];
    const auto found = std::ranges::find(columns_, column);
    if (!of.total || of.totalIs || found == columns_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - columns_.begin());
  }

  const BuiltReport& report_;
  const std::vector<std::size_t>& columns_;
  std::string file_;
  std::unique_ptr<lxw_workbook, Closer> book_;
  lxw_worksheet* sheet_ = nullptr;
  std::map<std::pair<std::string, bool>, lxw_format*> formats_;
  lxw_row_t row_ = 0;
  lxw_row_t first_ = 0;
  bool headed_ = false;
};

}  // namespace

void WriteSpreadsheet(const BuiltReport& report, const ExportOptions& options, const std::filesystem::path& file) {
  const std::vector<std::size_t> columns = ExportColumns(report, options);
  Spreadsheet sheet(report, columns, file);
  if (options.headings) sheet.Headings();
  if (options.data) sheet.Rows();
  if (options.totals && !report.totals.empty()) sheet.Totals();
  if (!report.complete) sheet.Incomplete();
  sheet.Close();
}

}  // namespace vellumark
