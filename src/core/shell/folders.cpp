#include "core/shell/folders.h"

#include <unistd.h>

#include <cstdlib>

namespace vellumark {
namespace fs = std::filesystem;

FolderSources FolderSources::OfThisProcess(std::string dataFolderOption) {
  FolderSources sources;
  sources.dataFolderOption = std::move(dataFolderOption);
  sources.environment = [](const char* name) {
    const char* value = std::getenv(name);
    return std::string(value == nullptr ? "" : value);
  };
  std::error_code unknown;
  sources.executable = fs::read_symlink("/proc/self/exe", unknown);
  sources.isWritable = [](const fs::path& path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored) && ::access(path.c_str(), W_OK | X_OK) == 0;
  };
  return sources;
}

Folders ResolveFolders(const FolderSources& sources) {
  const std::string xdg = sources.environment("XDG_DATA_HOME");
  const fs::path home = sources.environment("HOME");
  const fs::path own = (xdg.empty() ? home / ".local" / "share" : fs::path(xdg)) / "vellumark";

  Folders folders;
  if (!sources.dataFolderOption.empty()) {
    folders.data = sources.dataFolderOption;
  } else if (const std::string variable = sources.environment("VELLUMARK_DATA_FOLDER"); !variable.empty()) {
    folders.data = variable;
  } else if (sources.isWritable(sources.sharedFolder / "VKDat")) {
    folders.data = sources.sharedFolder / "VKDat";
  } else {
    folders.data = own / "VKDat";
  }
  if (const std::string variable = sources.environment("VELLUMARK_PROGRAM_FOLDER"); !variable.empty()) {
    folders.program = variable;
  } else if (sources.isWritable(sources.sharedFolder)) {
    folders.program = sources.sharedFolder;
  } else {
    folders.program = own;
  }
  if (sources.environment("VELLUMARK_PROGRAM_FOLDER").empty() && !sources.executable.empty())
    folders.shipped = sources.executable.parent_path().parent_path() / "share" / "vellumark";
  return folders;
}

}  // namespace vellumark
