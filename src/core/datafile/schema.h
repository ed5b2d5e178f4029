#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/engine.h"

namespace vellumark {

/// Widths of the fields: Byte is unsigned 8 bits, Integer signed 16, Long signed 32, Single a 32-bit float, Text(n) up
/// to n characters, Memo any length.
enum class FieldType { Boolean, Byte, Integer, Long, Single, Date, Text, Memo };

struct Field {
  std::string name;
  FieldType type = FieldType::Text;
  int size = 0;             ///< characters of a Text
  bool zeroLength = false;  ///< whether an empty text may stand in it (null always may)
};

/// Every table has a column of this name that numbers its rows: given at the insert, never changed, whatever becomes of
/// the file. It is none of the table's fields: nothing shows it, exports it or copies it.
inline constexpr std::string_view kRowKey = "RowKey";

/// One table of the Data File. `name` is the whole name of a global table, or the suffix ("_Basic") of a Database's.
struct Table {
  std::string name;
  std::vector<Field> fields;                      ///< in the order of creation
  std::vector<std::vector<std::string>> indexes;  ///< each a list of fields, plain, neither primary nor unique
  std::string key = {};                           ///< the field of which a value stands in one row only; may be empty
  std::string rowKey = std::string(kRowKey);      ///< the column of the rows' own numbers

  /// Position of a field; -1 when the table has none of that name (compared without regard to case).
  int Find(std::string_view field) const;
};

namespace schema {
extern const Table FileInfo, Designs, Dispenser, JobRecords, Users;
extern const Table Basic, BasicLotInv, BasicLab, Mix, MixLotInv, MixLab, Batch, BatchLotInv, Additives, Info, BatchScaleResults;
/// What the system needs beyond: it stands beside the Databases, and the names of colours under way in no file at all.
extern const Table StockHistory, OpenBatch, PendingRollUps, LoginFailures, NewNames;

/// The four tables of a new file, in the order of creation (`Users` comes with the login feature).
const std::vector<const Table*>& Global();
/// The tables of a Database, in the order of creation.
const std::vector<const Table*>& PerDatabase();

constexpr int kIngredientSlots = 15;  ///< BC0..BC14 of a formula
constexpr int kBatchLines = 20;       ///< IngName0..IngName19 of a Batch
constexpr int kSetSlots = 5;          ///< Add_Name0..Add_Name4 of an Additive Set
constexpr int kDesignSlots = 10;      ///< IngName0..IngName9 of a Design

/// "BC" and 3 give "BC3".
std::string Numbered(std::string_view word, int number);
}  // namespace schema

/// The name under which a table stands in the file: that of the Database before the suffix.
std::string TableName(std::string_view database, const Table& table);
/// That name as it stands in a statement.
std::string QuotedTable(std::string_view database, const Table& table);

/// The fields that a table of the file lacks of its layout.
std::vector<std::string> MissingFields(Database& file, std::string_view name, const Table& table);

/// What the file lacks of the layout, a line each ("table INK_Mix", "field INK_Mix.BC14"); empty when nothing.
std::vector<std::string> MissingParts(Database& file, const std::vector<std::string>& databases);

/// The value as the field keeps it (a Single rounded to 32 bits, a Boolean as 0 or 1). Throws BadValue, naming table,
/// field and value, when the field cannot hold it: too long, out of range, not of its kind, empty where it may not be.
Value FittedValue(const Field& field, std::string_view table, const Value& value);

}  // namespace vellumark
