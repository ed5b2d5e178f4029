#pragma once

#include <filesystem>

namespace vellumark::desktop {

/// Keeps a second instance off the same data folder. The lock is the kernel's and goes with the process, also with one
/// that crashed; the file it stands on stays.
class InstanceLock {
 public:
  InstanceLock() = default;
  ~InstanceLock();
  InstanceLock(const InstanceLock&) = delete;
  InstanceLock& operator=(const InstanceLock&) = delete;

  /// False when another process holds the folder. Throws Failure when the file cannot be made.
  bool Take(const std::filesystem::path& dataFolder);

 private:
  int file_ = -1;
};

}  // namespace vellumark::desktop
