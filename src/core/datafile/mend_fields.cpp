#include "core/datafile/mend_fields.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "core/base/number.h"
#include "core/base/refusal.h"
#include "core/base/text.h"

namespace vellumark {
namespace {

std::string ReadableText(const std::string& text) {
  std::string readable;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t length = 1;
    while (length < 4 && at + length < text.size() && (static_cast<unsigned char>(text[at + length]) & 0xC0U) == 0x80)
      ++length;
    const std::string sign = text.substr(at, length);
    const bool good = IsUtf8(sign) && sign.front() != '\0';
    readable += good ? sign : "?";
    at += good ? length : 1;
  }
  return readable;
}

}  // namespace

Value NearestValue(const Field& field, const Value& value) {
  const bool text = field.type == FieldType::Text || field.type == FieldType::Memo;
  if (text) {
    std::string readable = ReadableText(value.Text());
    if (field.type == FieldType::Text) readable = Left(readable, static_cast<std::size_t>(field.size));
    return readable.empty() && !field.zeroLength ? Value() : Value(readable);
  }
  if (field.type == FieldType::Date) return {};
  const double number = value.IsText() ? ParseNumber(value.Text()).value_or(0) : value.Number();
  const Value rounded = field.type == FieldType::Single ? Value(number) : Value(std::round(number));
  try {
    return FittedValue(field, field.name, rounded);
  } catch (const BadValue&) {
    return 0;
  }
}

std::string MendedText(const Field& field, const Value& now) {
  if (now.IsNull()) return "it could not be read and is empty now";
  if (now.IsText()) return "it did not fit and was cut or respelled";
  return field.type == FieldType::Boolean ? "it was neither true nor false"
                                          : "the figure was none that the field can hold";
}

namespace {

struct MendedValue {
  std::int64_t row = 0;
  std::size_t field = 0;
  Value value;
};

}  // namespace

std::string ReadableColumns(const Table& table) {
  std::string columns = table.rowKey;
  for (const Field& field : table.fields) columns += ", " + Quoted(field.name);
  return columns;
}

// Of a figure that the engine will not give out its text is asked for, which tells what it is.
Value ReadableValue(Database& file, std::string_view name, const Table& table, const Statement& row, std::size_t place) {
  const int column = static_cast<int>(place) + 1;
  try {
    return row.Get(column);
  } catch (const Failure&) {
    return file.Scalar(fmt::format("SELECT CAST({} AS TEXT) FROM {} WHERE {} = ?1", Quoted(table.fields[place].name),
                                   Quoted(name), table.rowKey),
                       {row.Whole(0)});
  }
}

namespace {

// "2026-03-10 00:00:00", as a date is written.
bool IsPlainDate(std::string_view text) {
  constexpr std::string_view kShape = "0000-00-00 00:00:00";
  const auto fits = [](char shape, char c) { return shape == '0' ? c >= '0' && c <= '9' : c == shape; };
  return text.size() == kShape.size() && std::ranges::equal(kShape, text, fits) && ParseDateTime(text);
}

}  // namespace

bool IsPlain(const Field& field, const KeptValue& value) {
  using Kind = KeptValue::Kind;
  if (value.kind == Kind::Whole) {
    const auto within = [&](std::int64_t low, std::int64_t high) { return value.whole >= low && value.whole <= high; };
    switch (field.type) {
      case FieldType::Boolean:
        return within(0, 1);
      case FieldType::Byte:
        return within(0, 255);
      case FieldType::Integer:
        return within(-32768, 32767);
      case FieldType::Long:
        return within(std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max());
      default:
        return false;
    }
  }
  if (value.kind == Kind::Number)
    return field.type == FieldType::Single && std::isfinite(value.number) &&
           static_cast<double>(static_cast<float>(value.number)) == value.number;
  if (value.kind != Kind::Text) return false;
  if (field.type == FieldType::Date) return IsPlainDate(value.text);
  if (field.type != FieldType::Text && field.type != FieldType::Memo) return false;
  if (value.text.empty()) return field.zeroLength;
  if (field.type == FieldType::Text && value.text.size() > static_cast<std::size_t>(field.size)) return false;
  return std::ranges::all_of(value.text, [](char c) { return static_cast<unsigned char>(c) - 1U < 0x7FU; });
}

namespace {

// Of its sums the history keeps more than a Single.
bool IsKeptFiner(const Table& table, const Field& field, const Value& value) {
  return &table == &schema::StockHistory && field.type == FieldType::Single && value.IsNumber();
}

void WriteField(Database& file, const std::string& name, const Table& table, const MendedValue& mended) {
  file.Prepare(fmt::format("UPDATE {} SET {} = ?1 WHERE {} = ?2", Quoted(name), Quoted(table.fields[mended.field].name),
                           table.rowKey))
      .Bind(1, mended.value)
      .Bind(2, mended.row)
      .Run();
}

}  // namespace

void FitFigures(Database& file, const std::string& name, const Table& table, std::int64_t key) {
  std::vector<MendedValue> rounded;
  Statement row =
      file.Prepare(fmt::format("SELECT {} FROM {} WHERE {} = ?1", ReadableColumns(table), Quoted(name), table.rowKey));
  if (!row.Bind(1, key).Step()) return;
  for (std::size_t i = 0; i < table.fields.size(); ++i) {
    const Value value = ReadableValue(file, name, table, row, i);
    if (value.IsNull()) continue;
    Value fitted = FittedValue(table.fields[i], name, value);
    if (fitted != value && !IsKeptFiner(table, table.fields[i], value)) rounded.push_back({key, i, std::move(fitted)});
  }
  row.Reset();
  for (const MendedValue& one : rounded) WriteField(file, name, table, one);
}

std::vector<MendedField> FitValues(Database& file, const std::string& name, const Table& table) {
  std::vector<MendedValue> mended;
  {
    Statement rows = file.Prepare(fmt::format("SELECT {} FROM {}", ReadableColumns(table), Quoted(name)));
    while (rows.Step())
      for (std::size_t i = 0; i < table.fields.size(); ++i) {
        const Value value = ReadableValue(file, name, table, rows, i);
        if (value.IsNull() || IsPlain(table.fields[i], KeptValue::Of(value))) continue;
        try {
          Value fitted = FittedValue(table.fields[i], name, value);
          if (fitted != value && !IsKeptFiner(table, table.fields[i], value)) mended.push_back({rows.Whole(0), i, std::move(fitted)});
        } catch (const BadValue&) {
          mended.push_back({rows.Whole(0), i, NearestValue(table.fields[i], value)});
        }
      }
  }
  std::map<std::pair<std::size_t, std::string>, std::int64_t> counts;
  for (const MendedValue& one : mended) {
    WriteField(file, name, table, one);
    ++counts[{one.field, MendedText(table.fields[one.field], one.value)}];
  }
  std::vector<MendedField> told;
  for (const auto& [what, rows] : counts) told.push_back({table.fields[what.first].name, rows, what.second});
  return told;
}

std::vector<MendedField> FillNulls(Database& file, const std::string& name, const Table& table, const NullRule& rule) {
  std::string counts;
  for (const Field& field : table.fields)
    counts += fmt::format("{}COUNT(*) - COUNT({})", counts.empty() ? "" : ", ", Quoted(field.name));
  std::vector<std::int64_t> empty;
  {
    Statement row = file.Prepare(fmt::format("SELECT {} FROM {}", counts, Quoted(name)));
    row.Step();
    for (int i = 0; i < row.ColumnCount(); ++i) empty.push_back(row.Whole(i));
  }
  std::vector<MendedField> told;
  std::vector<Value> values;
  std::string sets;
  std::string lacks;
  for (std::size_t i = 0; i < table.fields.size(); ++i) {
    const Field& field = table.fields[i];
    if (empty[i] == 0) continue;
    const bool text = field.type == FieldType::Text || field.type == FieldType::Memo;
    const auto filled = rule.filled.find(field.name);
    const bool left = rule.left.contains(field.name) ||
                      (filled == rule.filled.end() && (field.type == FieldType::Date || (text && !field.zeroLength)));
    if (left) {
      told.push_back({field.name, empty[i], ""});
      continue;
    }
    const Value value = filled != rule.filled.end() ? filled->second : text ? Value("") : Value(0);
    values.push_back(value);
    sets += fmt::format("{0}{1} = COALESCE({1}, ?{2})", sets.empty() ? "" : ", ", Quoted(field.name), values.size());
    lacks += fmt::format("{}{} IS NULL", lacks.empty() ? "" : " OR ", Quoted(field.name));
    told.push_back({field.name, empty[i],
                    value.Text().empty() ? "no value: empty text now" : fmt::format("no value: {} now", value.Text())});
  }
  if (values.empty()) return told;
  // All of a row at once: a file of an earlier program may lack a hundred values in each.
  Statement fill = file.Prepare(fmt::format("UPDATE {} SET {} WHERE {}", Quoted(name), sets, lacks));
  for (std::size_t i = 0; i < values.size(); ++i) fill.Bind(static_cast<int>(i) + 1, values[i]);
  fill.Run();
  return told;
}

}  // namespace vellumark
