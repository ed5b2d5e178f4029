#include "desktop/shell/instance_lock.h"

#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "core/base/files.h"
#include "core/base/refusal.h"

namespace vellumark::desktop {

InstanceLock::~InstanceLock() {
  if (file_ >= 0) ::close(file_);
}

bool InstanceLock::Take(const std::filesystem::path& dataFolder) {
  const std::filesystem::path path = dataFolder / "vellumark.lock";
  const int file = OpenLockFile(path);
  if (::flock(file, LOCK_EX | LOCK_NB) != 0) {
    const int error = errno;
    ::close(file);
    if (error == EWOULDBLOCK) return false;
    throw Failure(path.string(), std::strerror(error));
  }
  file_ = file;
  return true;
}

}  // namespace vellumark::desktop
