#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/refusal.h"
#include "core/base/table.h"
#include "core/datafile/writer.h"

namespace vellumark {

/// What a number that a person types stands for: it decides decimals, range, the right to change it and the words of a
/// refusal (core/colors/amounts).
enum class AmountKey { Currency, Reorder, VOC, HAP, AdjInv, Lab };

/// Who writes a field, and who may set it.
enum class FieldUse {
  Key,      ///< the record's name: every save writes it, a rename sets it
  Typed,    ///< a person sets it, every save writes it
  Posted,   ///< a person sets it through a posting; a new row begins with it
  Kept,     ///< a new row begins with it, afterwards what it tells of writes it
  Derived,  ///< worked out of other fields by whoever writes those
  Beside,   ///< a person sets it, and it stands in another table
};

/// What a typed text becomes before it is stored.
enum class TextShape {
  Any,
  Code,  ///< no longer than names may be
  Note,  ///< without blanks and line ends behind it
};

/// What a new row is written with.
inline constexpr std::initializer_list<FieldUse> kNewRowUses{FieldUse::Key, FieldUse::Typed, FieldUse::Posted,
                                                             FieldUse::Kept};

struct FieldTraits {
  FieldUse use = FieldUse::Kept;
  std::optional<AmountKey> amount{};  ///< of a number that is typed
  bool price = false;                 ///< hidden from users who may not see prices, with the decimals of prices
  bool unit = false;                  ///< the inventory unit stands behind its caption
  TextShape shape = TextShape::Any;
  const char* caption = "";  ///< for people; the column when empty
  std::optional<Format> format{};
  int width = 0;             ///< of its column in a window, in twips; as such columns are when 0
  bool large = false;        ///< read across a bench
  const char* control = "";  ///< what a refusal calls it; the column when empty
  bool nullKeeps = false;    ///< a null leaves what a new record holds
};

/// What the columns of people's tables depend on; SeenBy of core/session tells it.
struct Seen {
  bool prices = true;
  int priceDecimals = 2;
  std::string unit;
};

/// One field of a record: its column, where its value stands, and all else that is known of it.
struct RecordField : FieldTraits {
  enum class Type { Text, Single, Whole, Byte, Flag, Date };

  std::string column;  ///< in the table and in JSON
  Type type = Type::Text;
  std::size_t offset = 0;

  bool IsSettable() const { return use == FieldUse::Typed || use == FieldUse::Posted || use == FieldUse::Beside; }
  std::string Control() const { return *control == 0 ? column : control; }
  Format ShownAs() const;
  std::string CaptionSeen(const Seen& seen) const { return unit ? caption + (" (" + seen.unit + ")") : caption; }
  int DecimalsSeen(const Seen& seen) const { return price ? seen.priceDecimals : 3; }

  /// The value in a record, for the table and for people.
  Value ValueIn(const void* record) const;
  TableValue CellOf(const void* record) const;
  /// Into the field `other`, of the same type, of another record.
  void CopyTo(const RecordField& other, const void* from, void* to) const;
  // Of a field of that type.
  std::string& Text(void* record) const { return At<std::string>(record); }
  float& Single(void* record) const { return At<float>(record); }
  bool& Flag(void* record) const { return At<bool>(record); }
  void Read(const Statement& row, int place, void* record) const;

 private:
  template <class T>
  T& At(void* record) const {
    return *reinterpret_cast<T*>(static_cast<char*>(record) + offset);
  }
  template <class T>
  const T& At(const void* record) const {
    return *reinterpret_cast<const T*>(static_cast<const char*>(record) + offset);
  }
};

/// The figures of a record as they were typed, by column.
using TypedTexts = std::map<std::string, std::string, std::less<>>;
const std::string& TypedText(const TypedTexts& typed, const std::string& column);

/// The fields of a record, told once, in the order in which programs are told them. What reads, writes, shows and sets
/// a record goes through them; the records are those of the FieldMap.
class FieldList {
 public:
  auto begin() const { return fields_.begin(); }
  auto end() const { return fields_.end(); }
  std::size_t size() const { return fields_.size(); }

  /// Throws std::logic_error for a column that is none.
  const RecordField& operator[](std::string_view column) const;
  /// Null when there is none; in any case of letters unless `exact`.
  const RecordField* Find(std::string_view column, bool exact = false) const;
  /// Those of FIELD=VALUE.
  std::vector<std::string> SettableColumns() const;
  const RecordField* FindSettable(std::string_view column, bool exact) const;

  /// The columns for a SELECT, and the fields from a statement in which they begin at `first`.
  const std::string& Columns() const { return columns_; }
  void Read(const Statement& row, int first, void* record) const;
  /// What is written of a record: the fields of these uses.
  std::vector<Cell> Cells(const void* record, std::initializer_list<FieldUse> uses) const;

 protected:
  void AddField(RecordField field);

 private:
  std::vector<RecordField> fields_;
  std::string columns_;
};

template <class Record>
class FieldMap : public FieldList {
 public:
  /// `member` is a member of the record, or a procedure that gives one by reference.
  template <class Get>
  FieldMap& Add(std::string column, Get member, FieldTraits traits = {}) {
    Record record{};
    auto& value = std::invoke(member, record);
    RecordField field;
    static_cast<FieldTraits&>(field) = traits;
    field.column = std::move(column);
    field.type = TypeOf(value);
    field.offset = Offset(record, value);
    AddField(std::move(field));
    return *this;
  }

  /// A field of a part of the record.
  template <class Part>
  FieldMap& AddPart(RecordField field, Part Record::*part) {
    const Record record{};
    field.offset += Offset(record, record.*part);
    AddField(std::move(field));
    return *this;
  }

  /// A field that a record has from its base.
  template <class Base>
  FieldMap& AddBase(RecordField field) {
    const Record record{};
    field.offset += Offset(record, static_cast<const Base&>(record));
    AddField(std::move(field));
    return *this;
  }

  void Read(const Statement& row, int first, Record& record) const { FieldList::Read(row, first, &record); }
  std::vector<Cell> Cells(const Record& record, std::initializer_list<FieldUse> uses) const {
    return FieldList::Cells(&record, uses);
  }
  /// A column of people's tables for each field.
  void AddColumns(TableOf<Record>& table, const Seen& seen) const {
    for (const RecordField& field : *this) {
      const bool hidden = field.price && !seen.prices;
      table.Add(
          field.column,
          [&field, hidden](const Record& record) { return hidden ? TableValue() : field.CellOf(&record); },
          field.CaptionSeen(seen), field.ShownAs(), field.DecimalsSeen(seen));
      table.Width(field.width);
      if (field.large) table.Large();
    }
  }

 private:
  using Type = RecordField::Type;
  template <class Part>
  static std::size_t Offset(const Record& record, const Part& part) {
    return static_cast<std::size_t>(reinterpret_cast<const char*>(&part) - reinterpret_cast<const char*>(&record));
  }
  static Type TypeOf(const std::string&) { return Type::Text; }
  static Type TypeOf(const float&) { return Type::Single; }
  static Type TypeOf(const std::int32_t&) { return Type::Whole; }
  static Type TypeOf(const std::uint8_t&) { return Type::Byte; }
  static Type TypeOf(const bool&) { return Type::Flag; }
  static Type TypeOf(const std::optional<DateTime>&) { return Type::Date; }
};

/// Yes or no as people and programs write it; refused with the focus on `field`.
Result<bool> ReadYesNo(const std::string& field, std::string_view text);

/// What can be set, from one record into another: the fields that both have.
void CopyTyped(const FieldList& fromFields, const void* from, const FieldList& toFields, void* to);

/// Sets a settable field to what FIELD=VALUE gives: a figure among the typed texts, a text or a yes or no in the
/// record.
Result<void> SetTyped(const RecordField& field, void* record, TypedTexts& typed, const std::string& value);

}  // namespace vellumark
