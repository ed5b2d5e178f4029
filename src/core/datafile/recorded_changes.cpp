#include "core/datafile/recorded_changes.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <iterator>
#include <optional>
#include <variant>

#include "core/base/refusal.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

using What = RecordedChange::What;

// ---- Text

constexpr char kTable = 'F', kFields = 'L', kNewField = 'K', kField = 'C', kEnd = 'E';

class Reading {
 public:
  Reading(const Database& file, std::string_view text) : file_(file), rest_(text) {}

  bool AtEnd() const { return rest_.empty(); }
  char Letter() {
    if (rest_.empty()) Throw();
    const char letter = rest_.front();
    rest_.remove_prefix(1);
    return letter;
  }
  template <class T = std::int64_t>
  T Whole(int base = 10) {
    const std::string_view digits = Word();
    T whole = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), whole, base);
    if (error != std::errc() || end != digits.data() + digits.size()) Throw();
    return whole;
  }
  std::string Text() {
    const std::int64_t length = Whole();
    if (length < 0 || length > std::ssize(rest_)) Throw();
    std::string text(rest_.substr(0, static_cast<std::size_t>(length)));
    rest_.remove_prefix(static_cast<std::size_t>(length));
    return text;
  }
  vellumark::Value Value() {
    switch (Letter()) {
      case 'N':
        return {};
      case 'I':
        return Whole();
      case 'D':
        return std::bit_cast<double>(std::byteswap(Whole<std::uint64_t>(16)));
      case 'T':
        return Text();
      default:
        Throw();
    }
  }

  [[noreturn]] void Throw() const { throw Failure(file_.Path().string(), "what it tells of an act cannot be read"); }

 private:
  std::string_view Word() {
    const std::size_t blank = rest_.find(' ');
    if (blank == std::string_view::npos) Throw();
    const std::string_view word = rest_.substr(0, blank);
    rest_.remove_prefix(blank + 1);
    return word;
  }

  const Database& file_;
  std::string_view rest_;
};

// The table that is told of.
struct ToldTable {
  std::string name;
  std::vector<std::string> fields{};
  std::vector<std::string> changing{};  // those of changed rows so far
};

// What a row holds behind its letter.
RecordedChange ReadChange(Reading& reading, What what, ToldTable& table) {
  RecordedChange change{what, table.name, reading.Whole(), {}};
  if (what == What::Updated) {
    for (char letter = reading.Letter(); letter != kEnd; letter = reading.Letter()) {
      if (letter == kNewField) {
        table.changing.push_back(reading.Text());
        continue;
      }
      const auto place = reading.Whole<std::size_t>();
      if (letter != kField || place >= table.changing.size()) reading.Throw();
      Value before = reading.Value();
      change.cells.push_back({table.changing[place], std::move(before), reading.Value()});
    }
    return change;
  }
  for (const std::string& field : table.fields) {
    RecordedChange::Cell& cell = change.cells.emplace_back();
    cell.field = field;
    (what == What::Added ? cell.after : cell.before) = reading.Value();
  }
  return change;
}

// ---- Rows

// Worked out of the ingredients, whenever these change.
bool FollowsFromOthers(const RecordedChange& change, std::string_view field) {
  static constexpr std::array<std::string_view, 3> kFollowing{"BasicCost", "BasicVOC", "BasicHAP"};
  return change.what == What::Updated && std::ranges::find(kFollowing, field) != kFollowing.end();
}

// The fields of the change as they stand now; nothing when the row is gone.
std::optional<std::vector<Value>> RowNow(Database& file, const RecordedChange& change) {
  std::string fields;
  for (const RecordedChange::Cell& cell : change.cells) fields += (fields.empty() ? "" : ", ") + Quoted(cell.field);
  Statement row = file.Prepare(
      fmt::format("SELECT {} FROM {} WHERE RowKey = ?1", fields.empty() ? "RowKey" : fields, Quoted(change.table)));
  row.Bind(1, change.row);
  if (!row.Step()) return std::nullopt;
  std::vector<Value> values;
  for (std::size_t i = 0; i < change.cells.size(); ++i) values.push_back(row.Get(static_cast<int>(i)));
  return values;
}

bool StandsAsLeft(Database& file, const RecordedChange& change) {
  if (!file.TableExists(change.table)) return false;
  const auto now = RowNow(file, change);
  if (change.what == What::Removed) return !now;
  if (!now) return false;
  for (std::size_t i = 0; i < change.cells.size(); ++i)
    if ((*now)[i] != change.cells[i].after && !FollowsFromOthers(change, change.cells[i].field)) return false;
  return true;
}

void Remove(Database& file, const RecordedChange& change) {
  file.Prepare(fmt::format("DELETE FROM {} WHERE RowKey = ?1", Quoted(change.table))).Bind(1, change.row).Run();
}

void Insert(Database& file, const RecordedChange& change) {
  std::string fields, places;
  for (const RecordedChange::Cell& cell : change.cells) {
    fields += Quoted(cell.field) + ", ";
    places += "?, ";
  }
  Statement insert =
      file.Prepare(fmt::format("INSERT INTO {} ({}RowKey) VALUES ({}?)", Quoted(change.table), fields, places));
  int place = 0;
  for (const RecordedChange::Cell& cell : change.cells) insert.Bind(++place, cell.before);
  insert.Bind(++place, change.row).Run();
}

// True when a figure was left alone.
bool Update(Database& file, const RecordedChange& change) {
  const auto now = RowNow(file, change);
  std::string fields;
  std::vector<const Value*> values;
  bool left = false;
  for (std::size_t i = 0; i < change.cells.size(); ++i) {
    const RecordedChange::Cell& cell = change.cells[i];
    if (FollowsFromOthers(change, cell.field) && now && (*now)[i] != cell.after) {
      left = true;
      continue;
    }
    fields += fmt::format("{}{} = ?", fields.empty() ? "" : ", ", Quoted(cell.field));
    values.push_back(&cell.before);
  }
  if (values.empty()) return left;
  Statement update = file.Prepare(fmt::format("UPDATE {} SET {} WHERE RowKey = ?", Quoted(change.table), fields));
  int place = 0;
  for (const Value* value : values) update.Bind(++place, *value);
  update.Bind(++place, change.row).Run();
  return left;
}

}  // namespace

void ChangeWriter::AddWord(std::int64_t whole) {
  char digits[24];
  char* end = std::to_chars(std::begin(digits), std::end(digits), whole).ptr;
  *end++ = ' ';
  text_.append(digits, end);
}

void ChangeWriter::AddText(std::string_view text) {
  AddWord(std::ssize(text));
  text_ += text;
}

void ChangeWriter::Begin(std::string_view table) {
  text_ += kTable;
  AddText(table);
}

void ChangeWriter::Fields(const std::vector<std::string>& fields) {
  text_ += kFields;
  AddWord(std::ssize(fields));
  for (const std::string& field : fields) AddText(field);
}

void ChangeWriter::NewField(std::string_view field) {
  text_ += kNewField;
  AddText(field);
}

void ChangeWriter::Row(What what, std::int64_t row) {
  text_ += static_cast<char>(what);
  AddWord(row);
}

void ChangeWriter::Field(std::size_t place) {
  text_ += kField;
  AddWord(static_cast<std::int64_t>(place));
}

void ChangeWriter::EndOfFields() {
  text_ += kEnd;
}

void ChangeWriter::Whole(std::int64_t whole) {
  text_ += 'I';
  AddWord(whole);
}

// The bits of it, turned round: those that a Single leaves empty stand in front and are not written.
void ChangeWriter::Number(double number) {
  char digits[20] = {'D'};
  char* end = std::to_chars(digits + 1, std::end(digits), std::byteswap(std::bit_cast<std::uint64_t>(number)), 16).ptr;
  *end++ = ' ';
  text_.append(digits, end);
}

void ChangeWriter::Text(std::string_view text) {
  text_ += 'T';
  AddText(text);
}

std::vector<RecordedChange> ChangesOfText(const Database& file, std::string_view text) {
  std::vector<RecordedChange> changes;
  ToldTable table;
  for (Reading reading(file, text); !reading.AtEnd();) {
    const char letter = reading.Letter();
    if (letter == kTable) {
      table = {reading.Text()};
    } else if (letter == kFields) {
      for (std::int64_t left = reading.Whole(); left > 0; --left) table.fields.push_back(reading.Text());
    } else if (table.name.empty() || std::string_view("ARU").find(letter) == std::string_view::npos) {
      reading.Throw();
    } else {
      changes.push_back(ReadChange(reading, static_cast<What>(letter), table));
    }
  }
  return changes;
}

const RecordedChange* FirstTouchedSince(Database& file, const std::vector<RecordedChange>& changes) {
  const auto touched =
      std::ranges::find_if(changes, [&](const RecordedChange& change) { return !StandsAsLeft(file, change); });
  return touched == changes.end() ? nullptr : &*touched;
}

// Rows go before others come, which may bear their names.
bool PutBack(Database& file, const std::vector<RecordedChange>& changes) {
  bool left = false;
  for (const RecordedChange& change : changes)
    if (change.what == What::Added) Remove(file, change);
  for (const RecordedChange& change : changes)
    if (change.what == What::Updated) left = Update(file, change) || left;
  for (const RecordedChange& change : changes)
    if (change.what == What::Removed) Insert(file, change);
  return left;
}

}  // namespace vellumark
