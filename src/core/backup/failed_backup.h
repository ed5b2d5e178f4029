#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "core/base/date.h"
#include "core/session/session.h"

namespace vellumark {

/// The automatic backup of a Data File that failed last, so that the next day knows of it too. It is noted with the settings
/// of the machine: the disk of the Data File may be full, or gone.
struct FailedBackup {
  DateTime when;
  std::string cause;
};
void NoteFailedBackup(const Session& session, const std::filesystem::path& dataFile, const std::string& cause);
/// Whatever was made since; whoever tells of it looks whether a set is younger.
std::optional<FailedBackup> LastFailedBackup(const Session& session, const std::filesystem::path& dataFile);

}  // namespace vellumark
