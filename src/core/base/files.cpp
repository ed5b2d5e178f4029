#include "core/base/files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "core/base/byte_lock.h"
#include "core/base/refusal.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kBesideEnd = ".vellumark";
constexpr std::string_view kJournalEnd = "-journal";
// What a name may have on the disk, less the marks around it and the engine's journal.
constexpr std::size_t kLongestName = 255 - 30;

[[noreturn]] void Fail(const fs::path& path, int error) {
  throw Failure(path.string(), std::strerror(error));
}

class Descriptor {
 public:
  Descriptor(const fs::path& path, int flags) : fd_(::open(path.c_str(), flags | O_CLOEXEC)) {
    if (fd_ < 0) Fail(path, errno);
  }
  ~Descriptor() { ::close(fd_); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int Get() const { return fd_; }

 private:
  int fd_;
};

fs::path FolderOf(const fs::path& path) {
  return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

// Above 0: the mode of files in a folder that hands its group on.
mode_t HandedOn(const fs::path& folder) {
  struct stat status {};
  if (::stat(folder.c_str(), &status) != 0 || (status.st_mode & S_ISGID) == 0) return 0;
  return 0600 | (status.st_mode & 0060) | (status.st_mode & 0004);
}

mode_t ModeOfNew(const fs::path& folder, Readers readers) {
  const mode_t shared = HandedOn(folder);
  if (readers == Readers::Group) return shared == 0 ? 0600 : shared & ~07U;
  if (shared != 0) return shared;
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

std::string BesideStart(const fs::path& target) {
  return "." + target.filename().string().substr(0, kLongestName) + ".";
}

// A writer keeps the lock of its file until the end, so one that can be locked is a killed process's.
void SweepAbandoned(const fs::path& target) {
  const std::string start = BesideStart(target);
  std::error_code unreadable;
  for (fs::directory_iterator entry(FolderOf(target), unreadable), end; !unreadable && entry != end;
       entry.increment(unreadable)) {
    std::string name = entry->path().filename().string();
    const bool journal = name.ends_with(kJournalEnd);
    if (journal) name.resize(name.size() - kJournalEnd.size());
    if (name.size() != start.size() + 6 + kBesideEnd.size() || !name.starts_with(start) || !name.ends_with(kBesideEnd))
      continue;
    if (journal) {
      // Of a file that has taken its place or is gone; with one that is there it goes below.
      struct stat status {};
      if (::lstat((entry->path().parent_path() / name).c_str(), &status) != 0) ::unlink(entry->path().c_str());
      continue;
    }
    const int fd = ::open(entry->path().c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) continue;
    struct stat status {};
    if (::fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && TakeByteLock(fd, LockedByte::Beside)) {
      ::unlink(entry->path().c_str());
      ::unlink((entry->path().string() + std::string(kJournalEnd)).c_str());
    }
    ::close(fd);
  }
}

// Owner and mode of the file before, as far as this process may give them. Without its group nobody may have more.
void KeepOwner(int fd, const struct stat& before, const fs::path& target) {
  mode_t mode = before.st_mode & 07777;
  if (::fchown(fd, before.st_uid, before.st_gid) != 0 && ::fchown(fd, static_cast<uid_t>(-1), before.st_gid) != 0)
    mode &= ~static_cast<mode_t>(06070);
  if (::fchmod(fd, mode) != 0) Fail(target, errno);
}

}  // namespace

std::string ReadFileBytes(const fs::path& path, std::size_t most) {
  // Without waiting: a pipe that nobody writes into would hold the program at its opening.
  const Descriptor file(path, O_RDONLY | O_NONBLOCK);
  struct stat status {};
  if (::fstat(file.Get(), &status) != 0) Fail(path, errno);
  if (!S_ISREG(status.st_mode)) throw Failure(path.string(), "is not a file");
  std::string bytes;
  bytes.reserve(std::min(most, static_cast<std::size_t>(status.st_size) + 1));
  char buffer[65536];
  while (bytes.size() < most) {
    const ssize_t count = ::read(file.Get(), buffer, std::min(sizeof buffer, most - bytes.size()));
    if (count < 0) {
      if (errno == EINTR) continue;
      Fail(path, errno);
    }
    if (count == 0) break;
    bytes.append(buffer, static_cast<std::size_t>(count));
  }
  return bytes;
}

fs::path RealPath(const fs::path& path) {
  std::error_code error;
  fs::path real = fs::weakly_canonical(fs::absolute(path), error);
  return error ? path : real;
}

FileBeside::FileBeside(const fs::path& target, Readers readers) : target_(RealPath(target)), readers_(readers) {
  struct stat status {};
  if (::stat(target_.c_str(), &status) == 0) {
    // A device or a pipe would be gone afterwards, with a file in its place.
    if (!S_ISREG(status.st_mode)) throw Failure(target.string(), "is not a file");
    if (::faccessat(AT_FDCWD, target_.c_str(), W_OK, AT_EACCESS) != 0) Fail(target, errno);
  }
  SweepAbandoned(target_);
  // Another process may sweep the file away before its lock is taken.
  for (;;) {
    std::string pattern = (FolderOf(target_) / (BesideStart(target_) + "XXXXXX" + std::string(kBesideEnd))).string();
    fd_ = ::mkostemps(pattern.data(), static_cast<int>(kBesideEnd.size()), O_CLOEXEC);
    if (fd_ < 0 && errno == EACCES)
      throw Failure(target.string(), "cannot be written: there is no permission to write in its folder");
    if (fd_ < 0) Fail(target, errno);
    path_ = pattern;
    if (TakeByteLock(fd_, LockedByte::Beside) && ::fstat(fd_, &status) == 0 && status.st_nlink > 0) return;
    ::close(fd_);
  }
}

FileBeside::~FileBeside() {
  if (!placed_) {
    ::unlink(path_.c_str());
    ::unlink((path_.string() + std::string(kJournalEnd)).c_str());
  }
  ::close(fd_);
}

void FileBeside::Write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd_, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      Fail(target_, errno);
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

void FileBeside::Finish() {
  struct stat before {};
  if (::stat(target_.c_str(), &before) == 0) {
    KeepOwner(fd_, before, target_);
  } else if (::fchmod(fd_, ModeOfNew(FolderOf(target_), readers_)) != 0) {
    Fail(target_, errno);
  }
  if (::fsync(fd_) != 0) Fail(target_, errno);
  // The engine has closed the file, but may have failed to remove this.
  ::unlink((path_.string() + std::string(kJournalEnd)).c_str());
}

void FileBeside::Replace() {
  Finish();
  if (::rename(path_.c_str(), target_.c_str()) != 0) Fail(target_, errno);
  placed_ = true;
  SyncFolder(FolderOf(target_));
}

void FileBeside::TakeFreePlace() {
  Finish();
  RenameToFree(path_, target_);
  placed_ = true;
}

void ReplaceFile(const fs::path& path, std::string_view bytes, Readers readers) {
  FileBeside file(path, readers);
  file.Write(bytes);
  file.Replace();
}

void RenameToFree(const fs::path& from, const fs::path& to) {
  int error = ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0 ? 0 : errno;
  if (error == EINVAL || error == ENOSYS) {  // a file system that cannot look and rename in one step
    struct stat status {};
    if (::lstat(to.c_str(), &status) == 0) {
      error = EEXIST;
    } else {
      error = ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
    }
  }
  if (error == EEXIST) throw Failure(to.string(), "already exists");
  if (error != 0) Fail(to, error);
  SyncFolder(FolderOf(to));
}

void MakeFolder(const fs::path& folder) {
  std::error_code error;
  if (folder.empty() || fs::is_directory(folder, error)) return;
  const fs::path above = folder.parent_path();
  if (above != folder) MakeFolder(above);
  fs::create_directory(folder, error);
  if (error) throw Failure(folder.string(), error.message());
  struct stat status {};
  if (HandedOn(FolderOf(folder)) == 0 || ::stat(FolderOf(folder).c_str(), &status) != 0) return;
  if (::chmod(folder.c_str(), status.st_mode & 07777) != 0) Fail(folder, errno);
}

int OpenLockFile(const fs::path& path) {
  constexpr int kFlags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  // On a network drive only what is open for writing can be locked; elsewhere another user's file can, too.
  int fd = ::open(path.c_str(), O_RDWR | kFlags);
  if (fd < 0 && errno == EACCES) fd = ::open(path.c_str(), O_RDONLY | kFlags);
  if (fd < 0 && errno == ENOENT) {
    fd = ::open(path.c_str(), O_RDWR | kFlags | O_CREAT, 0600);
    if (fd >= 0) ::fchmod(fd, ModeOfNew(FolderOf(path), Readers::Group));
  }
  if (fd < 0) Fail(path, errno);
  return fd;
}

FolderLock::FolderLock(const fs::path& folder) : fd_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (fd_ < 0) Fail(folder, errno);
  while (::flock(fd_, LOCK_EX) != 0 && errno == EINTR) {
  }
}

FolderLock::~FolderLock() {
  ::close(fd_);
}

void SyncFolder(const fs::path& folder) {
  const Descriptor handle(folder.empty() ? fs::path(".") : folder, O_RDONLY | O_DIRECTORY);
  if (::fsync(handle.Get()) != 0 && errno != EINVAL) Fail(folder, errno);
}

}  // namespace vellumark
