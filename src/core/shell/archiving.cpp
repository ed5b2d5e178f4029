#include "core/shell/archiving.h"

#include <fmt/format.h>

#include "core/batch/leave.h"
#include "core/batch/record.h"
#include "core/colors/rollup.h"
#include "core/session/acts.h"
#include "core/shell/opening.h"

namespace vellumark {
namespace {

constexpr std::string_view kTitle = "Archive Data File";

// The space of the rows that moved is given back. They have moved, whatever becomes of it.
std::string CompactOrSay(Session& session) {
  try {
    CompactDataFile(session);
    return {};
  } catch (const Failure& failure) {
    if (!session.DataFileDB) throw;
    return fmt::format("\n\nThe Data File could not be compacted.\n{}: {}.", failure.subject, failure.cause);
  }
}

}  // namespace

Result<ArchivePreview> ArchiveDataFile(Session& session) {
  if (auto allowed = RequireAct(session, Act::BackUp); !allowed) return std::unexpected(allowed.error());
  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  for (const MarkedBatch& batch : MarkedBatches(session.File()))
    return Refuse(std::string(kTitle), fmt::format("The Batch {} of {} is open. Save or clear it first.",
                                                   BatchNoText(batch.BatchNo), batch.database));
  RunPendingPasses(session);
  ArchivePreview preview = PreviewArchive(session);
  if (preview.Records() == 0)
    return Refuse(std::string(kTitle), fmt::format("There are no Batch & Job Records dated {} or before.",
                                                   preview.cutoff.DateText()));
  MoveToArchive(session, preview);
  const std::string left = CompactOrSay(session);
  session.prompt.Tell("Finished Archiving",
                      fmt::format("{} have been removed from the Data File and saved in {}{}", preview.Records(),
                                  preview.archive.string(), left),
                      left.empty() ? Icon::None : Icon::Exclamation);
  return preview;
}

void UndoUnfinishedArchiveOrTell(Session& session) {
  try {
    UndoUnfinishedArchive(session.File());
  } catch (const Failure& failure) {
    session.prompt.Tell(std::string(kTitle),
                        fmt::format("An archive was not finished, and what was written of it stands beside the Data "
                                    "File, which holds all of its records.\n{}: {}.",
                                    failure.subject, failure.cause),
                        Icon::Exclamation);
  }
}

}  // namespace vellumark
