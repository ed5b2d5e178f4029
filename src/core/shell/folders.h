#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "core/base/platform.h"

namespace vellumark {

/// Where the program keeps what is not in a Data File.
struct Folders {
  std::filesystem::path data;     ///< `DataFolder`: the Support Files
  std::filesystem::path program;  ///< templates and the default Data File, "Vellumark Data.vkd"
  std::filesystem::path shipped;  ///< what was installed with the program, to read only; empty when not looked for
};

/// Where to look. The defaults read the process's environment; tests put their own.
struct FolderSources {
  std::string dataFolderOption;  ///< --data-folder; empty when not given
  std::function<std::string(const char*)> environment;
  std::filesystem::path sharedFolder = platform::SharedFolder();
  std::filesystem::path executable;  ///< of this process; empty when unknown
  std::function<bool(const std::filesystem::path&)> isFolder;
  static FolderSources OfThisProcess(std::string dataFolderOption);
};

/// Where the folder shared by the machine's users is there, as the package makes it, all of them have one data folder,
/// VKDat in it, and it is their program folder too; else each has VKDat and the program folder in the user's own data.
/// --data-folder and VELLUMARK_DATA_FOLDER, in this order, name another data folder, and VELLUMARK_PROGRAM_FOLDER
/// another program folder. What came with the program is in share/vellumark beside the folder of the executable, and
/// not looked for when that variable is set. None of them is made here.
Folders ResolveFolders(const FolderSources& sources);

/// Makes the data folder where it is missing. Whoever may not work in one that is there is told, and whose group has to
/// be joined: a user beside the others would have settings and a lock of his own.
void MakeDataFolder(const std::filesystem::path& folder);

}  // namespace vellumark
