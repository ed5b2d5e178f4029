#include "core/shell/folders.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "core/base/files.h"
#include "core/base/refusal.h"

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
  sources.isFolder = [](const fs::path& path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored);
  };
  return sources;
}

Folders ResolveFolders(const FolderSources& sources) {
  const std::string xdg = sources.environment("XDG_DATA_HOME");
  const fs::path home = sources.environment("HOME");
  const fs::path own = (xdg.empty() ? home / ".local" / "share" : fs::path(xdg)) / "vellumark";
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
    struct stat status {};
    if (::stat(way.c_str(), &status) != 0) break;
    if (!S_ISDIR(status.st_mode) || ::faccessat(AT_FDCWD, way.c_str(), X_OK, AT_EACCESS) == 0) continue;
    std::string cause = "cannot be used: there is no permission to enter " + way.string();
    const group* owners = (status.st_mode & S_IXGRP) != 0 ? ::getgrgid(status.st_gid) : nullptr;
    if (owners != nullptr) cause += fmt::format(", which is for members of the group {}", owners->gr_name);
    throw Failure(folder.string(), cause);
  }
  MakeFolder(folder);
}

}  // namespace vellumark
