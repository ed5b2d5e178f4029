#include "core/datafile/field_map.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <type_traits>

#include "core/base/text.h"

namespace vellumark {

namespace {

// Calls `act` with the type of the member.
template <class Act>
auto WithType(RecordField::Type type, const Act& act) {
  switch (type) {
    case RecordField::Type::Text:
      return act(std::type_identity<std::string>{});
    case RecordField::Type::Single:
      return act(std::type_identity<float>{});
    case RecordField::Type::Whole:
      return act(std::type_identity<std::int32_t>{});
    case RecordField::Type::Byte:
      return act(std::type_identity<std::uint8_t>{});
    case RecordField::Type::Flag:
      return act(std::type_identity<bool>{});
    case RecordField::Type::Date:
      break;
  }
  return act(std::type_identity<std::optional<DateTime>>{});
}

}  // namespace

Format RecordField::ShownAs() const {
  if (format) return *format;
  constexpr std::array formats{Format::Text, Format::Amount, Format::Whole, Format::Whole, Format::Flag, Format::When};
  return formats.at(static_cast<std::size_t>(type));
}

Value RecordField::ValueIn(const void* record) const {
  return WithType(type, [&]<class T>(std::type_identity<T>) { return Value(At<T>(record)); });
}

TableValue RecordField::CellOf(const void* record) const {
  return WithType(type, [&]<class T>(std::type_identity<T>) -> TableValue {
    const T& value = At<T>(record);
    if constexpr (std::is_same_v<T, std::optional<DateTime>>) {
      return value ? TableValue(*value) : TableValue();
    } else if constexpr (std::is_same_v<T, std::int32_t> || std::is_same_v<T, std::uint8_t>) {
      return std::int64_t{value};
    } else {
      return value;
    }
  });
}

void RecordField::CopyTo(const RecordField& other, const void* from, void* to) const {
  WithType(type, [&]<class T>(std::type_identity<T>) { other.At<T>(to) = At<T>(from); });
}

void RecordField::Read(const Statement& row, int place, void* record) const {
  if (nullKeeps && row.IsNull(place)) return;
  WithType(type, [&]<class T>(std::type_identity<T>) {
    T& value = At<T>(record);
    if constexpr (std::is_same_v<T, std::string>) {
      value = row.TextView(place);
    } else if constexpr (std::is_same_v<T, float>) {
      value = row.Single(place);
    } else if constexpr (std::is_same_v<T, bool>) {
      value = row.Bool(place);
    } else if constexpr (std::is_same_v<T, std::uint8_t>) {
      value = static_cast<T>(std::clamp<std::int64_t>(row.Whole(place), 0, UINT8_MAX));
    } else if constexpr (std::is_same_v<T, std::int32_t>) {
      value = static_cast<T>(row.Whole(place));
    } else {
      value = row.Date(place);
    }
  });
}

void FieldList::AddField(RecordField field) {
  if (field.use != FieldUse::Beside) columns_.append(columns_.empty() ? "" : ", ").append(Quoted(field.column));
  fields_.push_back(std::move(field));
}

const RecordField* FieldList::Find(std::string_view column, bool exact) const {
  const auto found = std::ranges::find_if(fields_, [&](const RecordField& field) {
    return exact ? field.column == column : EqualNoCase(field.column, column);
  });
  return found == fields_.end() ? nullptr : &*found;
}

const RecordField& FieldList::operator[](std::string_view column) const {
  if (const RecordField* field = Find(column, true)) return *field;
  throw std::logic_error("a record has no field " + std::string(column));
}

const RecordField* FieldList::FindSettable(std::string_view column, bool exact) const {
  const RecordField* field = Find(column, exact);
  return field != nullptr && field->IsSettable() ? field : nullptr;
}

std::vector<std::string> FieldList::SettableColumns() const {
  std::vector<std::string> columns;
  for (const RecordField& field : fields_)
    if (field.IsSettable()) columns.push_back(field.column);
  return columns;
}

void FieldList::Read(const Statement& row, int first, void* record) const {
  for (const RecordField& field : fields_)
    if (field.use != FieldUse::Beside) field.Read(row, first++, record);
}

std::vector<Cell> FieldList::Cells(const void* record, std::initializer_list<FieldUse> uses) const {
  std::vector<Cell> cells;
  for (const RecordField& field : fields_)
    if (std::ranges::find(uses, field.use) != uses.end()) cells.emplace_back(field.column, field.ValueIn(record));
  return cells;
}

const std::string& TypedText(const TypedTexts& typed, const std::string& column) {
  static const std::string none;
  const auto found = typed.find(column);
  return found == typed.end() ? none : found->second;
}

Result<bool> ReadYesNo(const std::string& field, std::string_view text) {
  const std::string word = Upper(TrimView(text));
  for (const std::string_view yes : {"YES", "TRUE", "1"})
    if (word == yes) return true;
  for (const std::string_view no : {"NO", "FALSE", "0"})
    if (word == no) return false;
  return Refuse("Invalid Value", fmt::format("{} is yes or no, not \"{}\".", field, text), field);
}

void CopyTyped(const FieldList& fromFields, const void* from, const FieldList& toFields, void* to) {
  for (const RecordField& field : toFields)
    if (const RecordField* source = fromFields.Find(field.column, true);
        source != nullptr && source->type == field.type && field.use == FieldUse::Typed)
      source->CopyTo(field, from, to);
}

Result<void> SetTyped(const RecordField& field, void* record, TypedTexts& typed, const std::string& value) {
  if (field.amount) {
    typed[field.column] = value;
  } else if (field.type == RecordField::Type::Flag) {
    const auto flag = ReadYesNo(field.column, value);
    if (!flag) return std::unexpected(flag.error());
    field.Flag(record) = *flag;
  } else {
    field.Text(record) = value;
  }
  return {};
}

}  // namespace vellumark
