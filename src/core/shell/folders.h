#pragma once

#include <filesystem>
#include <functional>
#include <string>

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
  std::filesystem::path sharedFolder = "/var/lib/vellumark";
  std::filesystem::path executable;  ///< of this process; empty when unknown
  std::function<bool(const std::filesystem::path&)> isWritable;
  static FolderSources OfThisProcess(std::string dataFolderOption);
};

/// The data folder is the option's, else VELLUMARK_DATA_FOLDER, else VKDat in the folder shared by the machine's users
/// when that is there and writable, else VKDat in the user's own data folder. The program folder is
/// VELLUMARK_PROGRAM_FOLDER, else the shared folder when it is there and writable, else the user's own. What came with
/// the program is in share/vellumark beside the folder of the executable, and not looked for when the variable says
/// where the program's folder is. None of them is made here.
Folders ResolveFolders(const FolderSources& sources);

}  // namespace vellumark
