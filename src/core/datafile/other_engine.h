#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "core/datafile/engine.h"

namespace vellumark {

/// Another engine than the program's own, for this process (see docs/engine.md). Every new Data File is made by it, and
/// those that it keeps are opened by it.
struct OtherEngine {
  /// Whether a file that is there is one of its own, whatever it holds. Throws Failure when it cannot be read.
  std::function<bool(const std::filesystem::path& path)> keeps;
  std::function<std::unique_ptr<Database>(const std::filesystem::path& path, OpenMode mode)> open;
  /// At `path` stands nothing, or an empty file.
  std::function<std::unique_ptr<Database>(const std::filesystem::path& path)> create;
};

void SetOtherEngine(OtherEngine engine);

}  // namespace vellumark
