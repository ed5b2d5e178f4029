#pragma once

#include <filesystem>
#include <string_view>

#include "core/settings/support_files.h"

namespace vellumark {

inline constexpr std::string_view SupportFileVersion = "47";

/// What the ladder needs of the open Data File.
class LadderDataFile {
 public:
  virtual ~LadderDataFile() = default;
  virtual void SetDaysToRemindBackup(int days) = 0;
  /// The folder that the Data File stands in.
  virtual std::filesystem::path Folder() const = 0;
};

/// Brings the Support Files from the version that `StartupVar_FileVersion` names to the current one, adding the keys
/// that each version introduced; values that are there already stay. `dataFile` is null when no Data File is open: the
/// steps that work on it are then passed over (a new Data File holds what they set).
///
/// The whole way is gone in memory. Label files, scale file and backup copies are written before the settings, which
/// hold the versions, so a run cut short is simply made again: every step adds only what is missing. A current file,
/// and one whose version is none of the known texts, leaves all as it is. Returns whether anything was written.
bool RunLadder(SupportFiles& files, LadderDataFile* dataFile);

}  // namespace vellumark
