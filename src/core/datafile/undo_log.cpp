#include "core/datafile/undo_log.h"

#include <fmt/format.h>

#include <charconv>

#include "core/base/text.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace {

constexpr int kMostKept = 40;
constexpr std::size_t kMostText = std::size_t{8} << 20;
constexpr std::string_view kTable = "MSysUndo";
constexpr std::string_view kHead =
    "RowKey, Moment, Username, DatabaseName, What, Act, Subject, FirstLine, LastLine, Ends";

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
    std::from_chars(line.data(), line.data() + tab, end);
    entry.ends.emplace_back(std::string(line.substr(tab + 1)), end);
  }
  return entry;
}

}  // namespace

std::int64_t AddUndoEntry(Database& file, const UndoEntry& entry, const std::vector<RecordedChange>& changes) {
  Transaction transaction(file);
  if (!file.TableExists(kTable)) file.CreateTable(kTable, UndoTable());
  std::string text = TextOfChanges(changes);
  const bool kept = text.size() <= kMostText;
  if (!kept) text.clear();
  const std::int64_t id = InsertRow(file, UndoTable(), std::string(kTable),
                                    {{"Moment", entry.Moment},
                                     {"Username", entry.Username},
                                     {"DatabaseName", entry.database},
                                     {"What", entry.what},
                                     {"Act", entry.act},
                                     {"Subject", entry.subject},
                                     {"FirstLine", entry.firstLine},
                                     {"LastLine", entry.lastLine},
                                     {"Ends", EndsText(entry)},
                                     {"Kept", kept},
                                     {"Changes", std::move(text)}});
  file.Prepare(fmt::format(
                   "DELETE FROM {0} WHERE RowKey <= (SELECT RowKey FROM {0} ORDER BY RowKey DESC LIMIT 1 OFFSET {1})",
                   kTable, kMostKept))
      .Run();
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
