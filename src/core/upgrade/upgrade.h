#pragma once

#include <filesystem>
#include <string>

#include "core/base/refusal.h"
#include "core/session/session.h"
#include "core/upgrade/upgrade_report.h"

namespace vellumark {

/// The title under which a failed update is told.
inline constexpr std::string_view kUpdateFailed = "Updating Failed.";

/// An update that came to nothing: the file is what it was, and no work file is left. `text` says in which step, and why.
class UpdateFailure : public Failure {
 public:
  UpdateFailure(const std::filesystem::path& file, std::string whatFailed)
      : Failure(file.string(), whatFailed), text(std::move(whatFailed)) {}
  std::string text;
};

struct UpdateWish {
  std::filesystem::path source{};
  std::filesystem::path to{};  ///< empty: in the place of the source, or, of a Jet file, under the next free name
  bool dryRun = false;       ///< only the report; nothing is written beside the source
  Progress* shown = nullptr; ///< where what goes on is shown; else where the session shows it
};

/// Where the updated file goes when no other place is wished.
std::filesystem::path UpdatedFile(const std::filesystem::path& source);

/// Where the report of an update is kept.
std::filesystem::path UpdateReportPath(const std::filesystem::path& updated);

/// Brings a Data File of the versions 2 to 39, an archive copy of 102 to 139, or a Jet file of any version up to 140 to
/// the present layout, on a copy: after a Failure or a kill the source is what it was. A file of the engine's own that is
/// updated in its place leaves a compacted ".vkb" beside; a Jet file keeps its name and its bytes. A question that only
/// people can answer is asked before any of it. The report is kept beside the updated file.
///
/// Refused: a file of another version, a name that is taken or does not end in ".vkd". Throws UpdateFailure.
Result<UpgradeReport> UpdateDataFile(Session& session, const UpdateWish& wish);

}  // namespace vellumark
