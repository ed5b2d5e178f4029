#include "core/datafile/undo_log.h"

#include <fmt/format.h>

#include <charconv>
#include <iterator>
#include <memory>

#include "core/base/text.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

constexpr std::int64_t kFewestKept = 40;
constexpr std::int64_t kGoAtOnce = 8;
constexpr std::size_t kMostText = std::size_t{8} << 20;
constexpr std::string_view kTable = "MSysUndo";
constexpr std::string_view kHead =
    "RowKey, Moment, Username, DatabaseName, What, Act, Subject, FirstLine, LastLine, Ends";
constexpr std::string_view kAdd =
    "INSERT INTO MSysUndo (Moment, Username, DatabaseName, What, Act, Subject, FirstLine, LastLine, Ends, Kept, "
    "Changes) "
    "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";

// The layout is this file's own: nothing else reads or writes the table.
const Table& UndoTable() {
  using enum FieldType;
  static const Table table{std::string(kTable),
                           {{"Moment", Date},
                            {"Username", Text, 15, true},
                            {"DatabaseName", Text, 15, true},
                            {"What", Memo, 0, true},
                            {"Act", Long},
                            {"Subject", Text, 30, true},
                            {"FirstLine", Long},
                            {"LastLine", Long},
                            {"Ends", Memo, 0, true},
                            {"Kept", Boolean},
                            {"Changes", Memo, 0, true}},
                           {}};
  return table;
}

std::string EndsText(const UndoEntry& entry) {
  std::string text;
  for (const auto& [table, row] : entry.ends) fmt::format_to(std::back_inserter(text), "{}\t{}\n", row, table);
  return text;
}

UndoEntry EntryOf(const Statement& row) {
  UndoEntry entry;
  entry.id = row.Whole(0);
  entry.Moment = row.Date(1).value_or(DateTime{});
  entry.Username = row.Text(2);
  entry.database = row.Text(3);
  entry.what = row.Text(4);
  entry.act = static_cast<int>(row.Whole(5));
  entry.subject = row.Text(6);
  entry.firstLine = row.Whole(7);
  entry.lastLine = row.Whole(8);
  for (const std::string_view line : Split(row.TextView(9), '\n')) {
    const std::size_t tab = line.find('\t');
    if (tab == std::string_view::npos) continue;
    std::int64_t end = 0;
    const char* const first = std::to_address(line.begin());
    std::from_chars(first, std::next(first, static_cast<std::ptrdiff_t>(tab)), end);
    entry.ends.emplace_back(std::string(line.substr(tab + 1)), end);
  }
  return entry;
}

}  // namespace

std::int64_t AddUndoEntry(Database& file, const UndoEntry& entry, std::string_view changes) {
  Transaction transaction(file);
  if (!file.TableExists(kTable)) file.CreateTable(kTable, UndoTable());
  const bool kept = changes.size() <= kMostText;
  const std::int64_t id = file.Prepare(kAdd)
                              .Bind(1, Value(entry.Moment))
                              .Bind(2, entry.Username)
                              .Bind(3, entry.database)
                              .Bind(4, entry.what)
                              .Bind(5, entry.act)
                              .Bind(6, entry.subject)
                              .Bind(7, entry.firstLine)
                              .Bind(8, entry.lastLine)
                              .Bind(9, EndsText(entry))
                              .Bind(10, kept ? 1 : 0)
                              .Bind(11, kept ? changes : std::string_view())
                              .Insert();
  // Several go at once, which costs a save less than one each time.
  if (id % kGoAtOnce == 0)
    file.Prepare(fmt::format("DELETE FROM {} WHERE RowKey <= ?1", kTable)).Bind(1, id - kFewestKept).Run();
  transaction.Commit();
  return id;
}

std::vector<UndoEntry> ListUndoEntries(Database& file) {
  std::vector<UndoEntry> entries;
  if (!file.TableExists(kTable)) return entries;
  Statement row = file.Prepare(fmt::format("SELECT {} FROM {} ORDER BY RowKey DESC", kHead, kTable));
  while (row.Step()) entries.push_back(EntryOf(row));
  return entries;
}

std::optional<std::vector<RecordedChange>> ReadUndoChanges(Database& file, std::int64_t id) {
  Statement row = file.Prepare(fmt::format("SELECT Kept, Changes FROM {} WHERE RowKey = ?1", kTable));
  row.Bind(1, id);
  if (!row.Step() || !row.Bool(0)) return std::nullopt;
  return ChangesOfText(file, row.TextView(1));
}

void RemoveUndoEntry(Database& file, std::int64_t id) {
  file.Prepare(fmt::format("DELETE FROM {} WHERE RowKey = ?1", kTable)).Bind(1, id).Run();
}

}  // namespace vellumark
