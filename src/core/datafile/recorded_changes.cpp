#include "core/datafile/recorded_changes.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <variant>

#include "core/base/refusal.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

using What = RecordedChange::What;

// ---- Text: a letter for the kind of each part; numbers end with a blank, texts have their length in front.

void AddText(std::string& to, std::string_view text) {
  fmt::format_to(std::back_inserter(to), "{} {}", text.size(), text);
}
void AddValue(std::string& to, const Value& value) {
  if (value.IsNull()) {
    to += 'N';
  } else if (value.IsWhole()) {
    fmt::format_to(std::back_inserter(to), "I{} ", value.Whole());
  } else if (value.IsNumber()) {
    fmt::format_to(std::back_inserter(to), "D{:a} ", value.Number());
  } else {
    to += 'T';
    AddText(to, value.Text());
  }
}

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
  std::int64_t Whole() {
    const std::string_view digits = Word();
    std::int64_t whole = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), whole);
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
        return std::strtod(std::string(Word()).c_str(), nullptr);
      case 'T':
        return Text();
      default:
        Throw();
    }
  }

 private:
  std::string_view Word() {
    const std::size_t blank = rest_.find(' ');
    if (blank == std::string_view::npos) Throw();
    const std::string_view word = rest_.substr(0, blank);
    rest_.remove_prefix(blank + 1);
    return word;
  }
  [[noreturn]] void Throw() const { throw Failure(file_.Path().string(), "what it tells of an act cannot be read"); }

  const Database& file_;
  std::string_view rest_;
};

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

std::string TextOfChanges(const std::vector<RecordedChange>& changes) {
  std::string text;
  for (const RecordedChange& change : changes) {
    text += static_cast<char>(change.what);
    AddText(text, change.table);
    fmt::format_to(std::back_inserter(text), "{} {} ", change.row, change.cells.size());
    for (const RecordedChange::Cell& cell : change.cells) {
      AddText(text, cell.field);
      AddValue(text, cell.before);
      AddValue(text, cell.after);
    }
  }
  return text;
}

std::vector<RecordedChange> ChangesOfText(const Database& file, std::string_view text) {
  std::vector<RecordedChange> changes;
  for (Reading reading(file, text); !reading.AtEnd();) {
    RecordedChange& change = changes.emplace_back();
    change.what = static_cast<What>(reading.Letter());
    change.table = reading.Text();
    change.row = reading.Whole();
    for (std::int64_t cells = reading.Whole(); cells > 0; --cells) {
      RecordedChange::Cell& cell = change.cells.emplace_back();
      cell.field = reading.Text();
      cell.before = reading.Value();
      cell.after = reading.Value();
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
