#include "core/backup/kept_folder.h"

#include <fmt/format.h>

#include <system_error>

#include "core/backup/backup_set.h"

namespace vellumark {
namespace fs = std::filesystem;

fs::path FolderToKeepIn(const Session& session, const fs::path& folder, std::string_view what) {
  const std::string time = SetName(session.clock.Now()).substr(std::string_view("VK_Backup_").size());
  const fs::path wanted = folder / fmt::format("Before {} {}", what, time);
  const auto taken = [](const fs::path& path) {
    std::error_code ignored;
    return fs::exists(fs::symlink_status(path, ignored));
  };
  fs::path kept = wanted;
  for (int n = 2; taken(kept); ++n) kept = fmt::format("{} ({})", wanted.string(), n);
  return kept;
}

}  // namespace vellumark
