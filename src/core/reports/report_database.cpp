#include "core/reports/report_database.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/unicode.h"
#include "core/datafile/jet/jet_writer.h"
#include "core/reports/report_text.h"

namespace vellumark {
namespace {

constexpr int kShortText = 30;  // characters that a text has room for where none is longer

// Jet compares the names of fields without regard to case.
std::string FieldName(std::string_view caption, const std::vector<JetColumn>& others) {
  constexpr std::size_t kLongest = 64;
  std::string plain;
  for (const char c : caption) {
    if (c == '[' || c == ']')
      plain += c == '[' ? '(' : ')';
    else if (c == '`')
      plain += '\'';
    else if (c != '.' && c != '!')
      plain += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
  }
  plain = Trim(Left(plain, kLongest));
  if (plain.empty()) plain = "Field";
  std::string name = plain;
  for (int n = 2; std::ranges::any_of(others, [&](const JetColumn& c) { return EqualNoCase(c.name, name); }); ++n) {
    const std::string number = fmt::format(" {}", n);
    name = Left(plain, kLongest - number.size()) + number;
  }
  return name;
}

JetType TypeOf(Format format) {
  switch (format) {
    case Format::Notes:
      return JetType::Memo;
    case Format::Whole:
      return JetType::Long;
    case Format::Amount:
    case Format::Money:
    case Format::Percent:
      return JetType::Single;
    case Format::Date:
    case Format::Moment:
    case Format::When:
      return JetType::Date;
    default:
      return JetType::Text;
  }
}

class ReportTable {
 public:
  ReportTable(const BuiltReport& report, const ExportOptions& options)
      : report_(report), columns_(ExportColumns(report, options)) {
    for (const std::size_t column : columns_) {
      const TableColumn& of = report.columns[column];
      fields_.push_back({FieldName(PlainCaption(of.Caption()), fields_), TypeOf(of.format)});
    }
    Measure();
  }

  const std::vector<JetColumn>& Fields() const { return fields_; }

  void Write(JetWriter& file) const {
    std::vector<Value> row(columns_.size());
    for (const std::size_t at : report_.order) {
      for (std::size_t i = 0; i < columns_.size(); ++i) row[i] = ValueOf(at, i);
      file.Add(row);
    }
  }

 private:
  // The sizes of texts; a number that its type cannot hold, and a row that no page can hold, make wider fields.
  void Measure() {
    std::vector<std::size_t> bytes(fields_.size());
    for (std::size_t i = 0; i < fields_.size(); ++i) {
      JetColumn& field = fields_[i];
      std::size_t longest = kShortText;
      for (const std::size_t row : report_.order) {
        const Value value = ValueOf(row, i);
        if (field.type == JetType::Text && !value.IsNull()) {
          longest = std::max(longest, ToUtf16(value.Text()).size() / 2);
          bytes[i] = std::max(bytes[i], JetWriter::TextBytes(value.Text()));
        } else if (field.type == JetType::Long && std::abs(value.Number()) > std::numeric_limits<std::int32_t>::max()) {
          field.type = JetType::Double;
        }
      }
      if (field.type != JetType::Text) continue;
      if (longest > JetWriter::kLongestText) field.type = JetType::Memo;
      field.size = field.type == JetType::Text ? static_cast<int>(longest) : 0;
    }
    KeepRowsShort(bytes);
  }

  // The longest texts go where only a pointer to them stands in the row.
  void KeepRowsShort(const std::vector<std::size_t>& bytes) {
    constexpr std::size_t kOfField = 11;  // at most: a number, its place, its bit
    constexpr std::size_t kOfMemo = 12 + JetWriter::kInlineMemo;
    const auto length = [&](std::size_t i) {
      return kOfField + (fields_[i].type == JetType::Memo ? kOfMemo : fields_[i].type == JetType::Text ? bytes[i] : 0);
    };
    for (;;) {
      std::size_t row = kOfField;
      std::size_t longest = 0;
      for (std::size_t i = 0; i < fields_.size(); ++i) {
        row += length(i);
        if (length(i) > length(longest)) longest = i;
      }
      if (row <= JetWriter::kLongestRow || length(longest) <= kOfField + kOfMemo) return;
      fields_[longest].type = JetType::Memo;
      fields_[longest].size = 0;
    }
  }

  Value ValueOf(std::size_t row, std::size_t i) const {
    const TableColumn& column = report_.columns[columns_[i]];
    const TableValue& value = report_.Cell(row, columns_[i]);
    switch (fields_[i].type) {
      case JetType::Date:
        if (const auto* date = std::get_if<DateTime>(&value))
          return JetDays(column.format == Format::Date ? date->Midnight() : *date);
        return {};
      case JetType::Long:
      case JetType::Single:
      case JetType::Double: {
        auto number = PrintedNumber(column, value);
        if (!number) number = ParseNumber(ExportCell(column, value));
        if (!number) return {};
        if (fields_[i].type == JetType::Long) return static_cast<std::int64_t>(std::llround(*number));
        // A percent is the number in front of its sign.
        return column.format == Format::Percent ? RoundTo(*number * 100, 2) : *number;
      }
      default:
        const std::string text = ExportCell(column, value);
        return text.empty() ? Value() : Value(text);
    }
  }

  const BuiltReport& report_;
  std::vector<std::size_t> columns_;
  std::vector<JetColumn> fields_;
};

}  // namespace

void WriteReportDatabase(const BuiltReport& report, const ExportOptions& options, const DateTime& made,
                         const std::filesystem::path& file) {
  const ReportTable table(report, options);
  JetWriter writer(file, made);
  writer.BeginTable(report.complete ? "Vellumark Data" : "Vellumark Data INCOMPLETE", table.Fields());
  table.Write(writer);
  writer.Finish();
}

}  // namespace vellumark
