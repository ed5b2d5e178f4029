#pragma once

#include <filesystem>

#include "core/base/platform.h"

namespace vellumark::desktop {

/// Keeps a second instance off the same data folder. The lock is the kernel's and goes with the process, also with one
/// that crashed; the file it stands on stays.
class InstanceLock {
 public:
  /// False when another process holds the folder. Throws Failure when the file cannot be made.
  bool Take(const std::filesystem::path& dataFolder);

 private:
  platform::OpenFile file_;
};

}  // namespace vellumark::desktop
