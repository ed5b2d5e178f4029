#include "desktop/shell/instance_lock.h"

#include <system_error>
#include <utility>

#include "core/base/files.h"
#include "core/base/refusal.h"

namespace vellumark::desktop {

bool InstanceLock::Take(const std::filesystem::path& dataFolder) {
  const std::filesystem::path path = dataFolder / "vellumark.lock";
  platform::OpenFile file = OpenLockFile(path);
  std::error_code error;
  if (!platform::TakeFileLock(file, error)) {
    if (error) throw Failure(path.string(), error.message());
    return false;
  }
  file_ = std::move(file);
  return true;
}

}  // namespace vellumark::desktop
