#include "core/shell/folders.h"

#include <fmt/format.h>

#include "core/base/files.h"
#include "core/base/platform.h"
#include "core/base/refusal.h"

namespace vellumark {
namespace fs = std::filesystem;

FolderSources FolderSources::OfThisProcess(std::string dataFolderOption) {
  FolderSources sources;
  sources.dataFolderOption = std::move(dataFolderOption);
  sources.environment = platform::Environment;
  sources.executable = platform::ExecutablePath();
  sources.isFolder = [](const fs::path& path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored);
  };
  return sources;
}

Folders ResolveFolders(const FolderSources& sources) {
  const fs::path own = platform::OwnFolder(sources.environment) / "vellumark";
  const fs::path place = sources.isFolder(sources.sharedFolder) ? sources.sharedFolder : own;

  Folders folders;
  if (!sources.dataFolderOption.empty()) {
    folders.data = sources.dataFolderOption;
  } else if (const std::string variable = sources.environment("VELLUMARK_DATA_FOLDER"); !variable.empty()) {
    folders.data = variable;
  } else {
    folders.data = place / "VKDat";
  }
  const std::string program = sources.environment("VELLUMARK_PROGRAM_FOLDER");
  folders.program = program.empty() ? place : fs::path(program);
  if (program.empty() && !sources.executable.empty())
    folders.shipped = sources.executable.parent_path().parent_path() / "share" / "vellumark";
  return folders;
}

void MakeDataFolder(const fs::path& folder) {
  // The first folder on the way that is closed to this user says who may pass it.
  fs::path way;
  for (const fs::path& part : fs::absolute(folder)) {
    way /= part;
    std::error_code missing;
    const platform::FileState state = platform::StateOf(way, missing);
    if (missing) break;
    if (state.kind != platform::Kind::Folder || !platform::Denied(way, platform::Access::Enter)) continue;
    std::string cause = "cannot be used: there is no permission to enter " + way.string();
    if (const std::string group = platform::GroupThatMayEnter(way); !group.empty())
      cause += fmt::format(", which is for members of the group {}", group);
    throw Failure(folder.string(), cause);
  }
  MakeFolder(folder);
}

}  // namespace vellumark
