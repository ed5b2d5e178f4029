#pragma once

#include <filesystem>
#include <vector>

#include "core/base/seams.h"

namespace vellumark {

/// The top of the drive that `path` lies on: the outermost folder above it on the same device.
std::filesystem::path DriveRoot(const std::filesystem::path& path);

struct FoundDataFiles {
  std::vector<std::filesystem::path> files;  ///< in order
  std::size_t unreadable = 0;                ///< folders that could not be looked into
  bool cancelled = false;                    ///< the operator stopped the search; `files` are those found until then
};

/// All `*.vkd` below `root`, without those whose name holds "archive" (either in any case). Stays on the drive of
/// `root` and follows no links; can be cancelled between two folders.
FoundDataFiles SearchDataFiles(const std::filesystem::path& root, Progress& progress);

}  // namespace vellumark
