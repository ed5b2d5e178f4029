#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "core/session/session.h"
#include "core/shell/opening.h"

namespace vellumark {

// The commands that change from one Data File to another. Child windows are closed by the caller. Whatever fails while
// the other file is checked or opened, the file that was open before is open again afterwards, and is still the
// default. A failure of the world (a file that is gone, held by another process, damaged, in a folder without write
// permission) is a Failure that names the file and the cause.

/// The start: checks and opens the default Data File. A file that cannot be read or opened is no end of the start, but
/// a `StartupMessage` in `NewDataFileForm`; the setting keeps its name. True when a file is open in the end.
bool OpenRecentDataFile(Session& session, OpeningWindows& windows);

/// Opens another Data File and makes it the default, after asking when it lies in a folder that the program keeps for
/// itself. False when the operator declined or the file check turned it away, which then has been told.
Result<bool> OpenOtherDataFile(Session& session, const std::filesystem::path& path, OpeningWindows& windows);

/// Makes and opens a new Data File under the name, or the next free one of the form "name(n).vkd". ".vkd" is added to a
/// name without it. Refused where CheckNewPlace does. The path of the new file.
Result<std::filesystem::path> NewDataFile(Session& session, const std::filesystem::path& path, OpeningWindows& windows);

/// Whether a new Data File may go there: not into the folders that the program keeps for itself, nor where it would count
/// as an archive copy from the first day.
Result<void> CheckNewPlace(const Session& session, const std::filesystem::path& file);

/// Offers to copy a Data File of an older installation, with the photos beside it, into the program folder, under its name
/// or the next free one; it stays as it is. `found` says what it is. The copy, or nothing.
std::optional<std::filesystem::path> BringOlderFileOver(Session& session, const std::filesystem::path& old,
                                                        std::string_view found);

/// The default Data File in the program folder: one that is there is used or, on No, a new one is made under the next
/// free name. False when the file check turned the found file away.
Result<bool> CreateDefaultDataFile(Session& session, OpeningWindows& windows);

/// Whether the open file may get another name at all.
Result<void> CheckRenameDataFile(const Session& session);
/// Renames the open Data File within its folder, in one step; ".vkd" is added to the typed name. When it cannot be
/// opened under the new name it has its old one again.
Result<void> RenameDataFile(Session& session, std::string_view typedName, OpeningWindows& windows);

/// A folder that the program keeps for itself: where settings, backups, photos and conversions lie.
bool IsOwnFolder(const Session& session, const std::filesystem::path& folder);

}  // namespace vellumark
