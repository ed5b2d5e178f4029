#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/datafile/recorded_changes.h"

namespace vellumark {

// The acts that can be taken back, each with what it wrote. They stand beside the Databases, written in the transaction
// of the act, the latest ones only.

struct UndoEntry {
  std::int64_t id = 0;
  DateTime Moment{};
  std::string Username;
  std::string database;  ///< the one in use
  std::string what;      ///< in words
  int act = 0;           ///< whose right taking it back asks for
  std::string subject;   ///< a Batch that has to be closed first, as its number; an import, as its own
  /// The lines of the stock history that it left, from and to; none when the first is above the last.
  std::int64_t firstLine = 0;
  std::int64_t lastLine = 0;
  /// Where each table ended that tells what was done with colours: rows behind came after the act.
  std::vector<std::pair<std::string, std::int64_t>> ends;
};

/// The number under which it is kept, with the text of its changes. Of an act that wrote more than is kept no more than
/// its head is.
std::int64_t AddUndoEntry(Database& file, const UndoEntry& entry, std::string_view changes);
/// The latest first.
std::vector<UndoEntry> ListUndoEntries(Database& file);
/// What it wrote; nothing when that was too much to be kept.
std::optional<std::vector<RecordedChange>> ReadUndoChanges(Database& file, std::int64_t id);
void RemoveUndoEntry(Database& file, std::int64_t id);

}  // namespace vellumark
