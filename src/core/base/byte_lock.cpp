#include "core/base/byte_lock.h"

#include <fcntl.h>

#include <cerrno>

namespace vellumark {
namespace {

// The engine's locks end before it.
constexpr off_t kFirstByte = 0x40000000 + 512;

struct flock Range(short kind, LockedByte byte) {
  struct flock range {};
  range.l_type = kind;
  range.l_whence = SEEK_SET;
  range.l_start = kFirstByte + static_cast<off_t>(byte);
  range.l_len = 1;
  return range;
}

}  // namespace

bool TakeByteLock(int descriptor, LockedByte byte) {
  struct flock range = Range(F_WRLCK, byte);
  return ::fcntl(descriptor, F_OFD_SETLK, &range) == 0 || (errno != EAGAIN && errno != EACCES);
}

bool IsByteLocked(int descriptor, LockedByte byte) {
  struct flock range = Range(F_RDLCK, byte);
  return ::fcntl(descriptor, F_OFD_GETLK, &range) == 0 && range.l_type != F_UNLCK;
}

}  // namespace vellumark
