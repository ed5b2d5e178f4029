#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/date.h"
#include "core/datafile/value.h"

namespace vellumark {

/// What a field of a Jet table holds; the numbers are those of the format.
enum class JetType {
  Boolean = 1,
  Byte = 2,
  Integer = 3,
  Long = 4,
  Currency = 5,
  Single = 6,
  Double = 7,
  Date = 8,
  Binary = 9,
  Text = 10,
  Ole = 11,
  Memo = 12,
  Guid = 15,
  Numeric = 16,
};

struct JetColumn {
  std::string name;  ///< as it is written in the file; Jet compares names without regard to case
  JetType type = JetType::Text;
  int size = 0;  ///< characters of a Text, bytes of a Binary; 0 of all others
};

struct JetTable {
  std::string name;
  std::vector<JetColumn> columns;  ///< in the order of the table, deleted ones left out
  std::int64_t rows = 0;           ///< how many it says it has; damage may have left fewer, or more
  std::uint32_t page = 0;          ///< where it is defined

  /// The place of a column, in whatever case it is asked for.
  std::optional<std::size_t> Find(std::string_view column) const;
};

/// Something that could not be read: of the file, of a table, of a page of it, of a row, of one field.
struct JetDamage {
  std::string table;
  std::optional<std::uint32_t> page;  ///< of the file, counted from 0
  std::optional<int> row;             ///< on that page, counted from 0
  std::string field;
  std::string what;  ///< in words: "the row runs over the end of its page"

  /// All of it in one line for people.
  std::string Text() const;
};

/// One row. Of the values, by type:
/// - Boolean: 0 or 1; Jet knows no Null there. Byte, Integer, Long: whole. Currency: whole ten-thousandths.
/// - Single, Double: the number to the last bit, a Single as the double of the 32-bit value.
/// - Date: the days since 1899-12-30 as Jet counts them, a number; `JetDate` reads it.
/// - Text, Memo: UTF-8; empty is not Null. Guid: "{...}" in capitals. Numeric: its decimal text.
/// - Binary, Ole: the bytes as they are, in a text.
/// A field that could not be read is Null, and named in the damage.
struct JetRow {
  std::vector<Value> values;
  std::uint32_t page = 0;
  int row = 0;
  bool damaged = false;  ///< at least one field could not be read
};

struct JetReading {
  std::int64_t rows = 0;          ///< those that were given
  std::int64_t faults = 0;        ///< how much could not be read
  std::vector<JetDamage> damage;  ///< the first thousand of it
  bool stopped = false;           ///< by whoever took the rows
};

/// A Jet file, of version 3 or 4, that is read and never written. What it holds is read by a process of its own with
/// limits on memory and time, so that a damaged file can neither end this one nor hold it up: when that process dies
/// or hangs, what it was at is named as damage and another goes on behind it. Rows are streamed; a file of any size
/// takes the same memory.
class JetFile {
 public:
  /// Whether a file begins as Jet files do, of whatever version. Throws Failure when it cannot be read.
  static bool IsJetFile(const std::filesystem::path& path);

  /// Throws Failure, which names the file: not a Jet file, one of a later program (.accdb), cut short, encrypted,
  /// protected by a password, or so damaged that its list of tables cannot be read.
  static JetFile Open(const std::filesystem::path& path);

  const std::filesystem::path& Path() const { return path_; }
  int Version() const { return version_; }  ///< 3 or 4
  /// The tables of people, not those of Jet itself, in the order of the file.
  const std::vector<JetTable>& Tables() const { return tables_; }
  /// In whatever case the name is asked for; null when there is none.
  const JetTable* Find(std::string_view table) const;
  /// What of the file and of the definitions of its tables could not be read.
  const std::vector<JetDamage>& Damage() const { return damage_; }

  /// Reads a table from its first row to its last. `take` answers false to stop. What `take` throws goes through.
  JetReading Read(const JetTable& table, const std::function<bool(const JetRow&)>& take) const;

 private:
  JetFile() = default;

  std::filesystem::path path_;
  int version_ = 0;
  std::vector<JetTable> tables_;
  std::vector<JetDamage> damage_;
};

/// A Date of Jet as a date and a time of day, to the nearest second; the time goes forward on days before 1899-12-30
/// too. Nothing outside the years 100 to 9999.
std::optional<DateTime> JetDate(double days);
/// The other way.
double JetDays(const DateTime& date);

}  // namespace vellumark
