#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "core/base/date.h"
#include "core/base/table.h"
#include "core/datafile/moved_rows.h"
#include "core/session/session.h"

namespace vellumark {

// Old Batches and Job Records move into a Data File beside the session's own, where they can be looked at.

/// "Ink Archive 2026.vkd" beside Ink.vkd, or the next free name.
std::filesystem::path ArchivePath(const std::filesystem::path& dataFile, int year);
/// The same day five years before, 28 February for 29 February. What is dated on it moves.
DateTime ArchiveCutoff(const DateTime& today);

/// What an archive would move now.
struct ArchivePreview {
  DateTime today;
  DateTime cutoff;
  std::optional<DateTime> oldest;  ///< of the Batches of all Databases
  std::filesystem::path archive;
  std::vector<MovingCount> counts;  ///< by Database and year
  /// Batches and Job Records.
  std::int64_t Records() const;
};
ArchivePreview PreviewArchive(const Session& session);
/// Its counts as people see them.
TableOf<MovingCount> MovingColumns();

/// The day of the oldest Batch of all Databases, when it is so old that an archive is to be offered: by more than five
/// calendar years less a day before this year's first day. Never in an archive or backup copy.
std::optional<DateTime> DueArchive(const Session& session);

/// Writes the archive, proves by the digests of all tables that it holds what moves and that both files together hold what
/// the one held, and removes the rows from the session's file in one transaction. A kill at any moment leaves
/// the file with its rows, and an archive that the next opening removes again, or both as they are to be. After a
/// Failure everything is as it was.
void MoveToArchive(Session& session, const ArchivePreview& preview);

/// Removes the archive of a process that died before the rows left this file, as far as it is still the one that was
/// written then.
void UndoUnfinishedArchive(Database& file);
/// The name of such an archive; empty when there is none.
std::string UnfinishedArchive(Database& file);

}  // namespace vellumark
