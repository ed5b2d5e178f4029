#pragma once

#include <filesystem>

#include "core/backup/restore.h"
#include "core/session/session.h"

namespace vellumark {

/// Takes the settings and label layouts of a backup's SUV_Files over: they climb to the present version on a copy, then
/// take the place of the present ones, which are kept in the Backups folder; all five files or none. Which Data File is
/// used stays as it is, unless that is gone. Where the unit of stock differs it is asked for.
Result<bool> RestoreSupportFiles(Session& session, const std::filesystem::path& folder,
                                 RestoreFrom from = RestoreFrom::Location);

/// Goes on with a restore that a killed program had begun to put in place. For the start, before anybody reads settings.
void FinishSettingsRestore(const std::filesystem::path& dataFolder);

}  // namespace vellumark
