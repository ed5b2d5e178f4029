#include "core/base/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "core/base/refusal.h"

namespace vellumark {
namespace {

[[noreturn]] void Fail(const std::filesystem::path& path, int error) {
  throw Failure(path.string(), std::strerror(error));
}

class Descriptor {
 public:
  Descriptor(const std::filesystem::path& path, int flags, mode_t mode = 0644)
      : fd_(::open(path.c_str(), flags | O_CLOEXEC, mode)) {
    if (fd_ < 0) Fail(path, errno);
  }
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int Get() const { return fd_; }
  int Close() {
    const int fd = fd_;
    fd_ = -1;
    return ::close(fd);
  }

 private:
  int fd_;
};

void WriteAll(const std::filesystem::path& path, std::string_view bytes, mode_t mode) {
  Descriptor file(path, O_WRONLY | O_CREAT | O_TRUNC, mode);
  while (!bytes.empty()) {
    const ssize_t written = ::write(file.Get(), bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      Fail(path, errno);
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  if (::fsync(file.Get()) != 0 || file.Close() != 0) Fail(path, errno);
}

}  // namespace

std::string ReadFileBytes(const std::filesystem::path& path) {
  Descriptor file(path, O_RDONLY);
  std::string bytes;
  struct stat status {};
  if (::fstat(file.Get(), &status) == 0 && S_ISREG(status.st_mode))
    bytes.reserve(static_cast<std::size_t>(status.st_size) + 1);
  char buffer[65536];
  for (;;) {
    const ssize_t count = ::read(file.Get(), buffer, sizeof buffer);
    if (count < 0) {
      if (errno == EINTR) continue;
      Fail(path, errno);
    }
    if (count == 0) return bytes;
    bytes.append(buffer, static_cast<std::size_t>(count));
  }
}

void CopyFile(const std::filesystem::path& from, const std::filesystem::path& to) {
  std::error_code error;
  std::filesystem::copy_file(from, to, error);
  if (error == std::errc::file_exists) throw Failure(to.string(), "already exists");
  try {
    if (error) throw Failure(to.string(), "cannot be written: " + error.message());
    Descriptor copy(to, O_RDONLY);
    if (::fsync(copy.Get()) != 0) Fail(to, errno);
  } catch (const Failure&) {
    ::unlink(to.c_str());
    throw;
  }
  SyncFolder(to.parent_path());
}

void SyncFolder(const std::filesystem::path& folder) {
  Descriptor handle(folder.empty() ? "." : folder, O_RDONLY | O_DIRECTORY);
  if (::fsync(handle.Get()) != 0 && errno != EINVAL) Fail(folder, errno);
}

void ReplaceFile(const std::filesystem::path& path, const std::filesystem::path& temp, std::string_view bytes) {
  struct stat status {};
  const bool exists = ::stat(path.c_str(), &status) == 0;
  // A device or a pipe would be gone afterwards, with a file in its place.
  if (exists && !S_ISREG(status.st_mode)) throw Failure(path.string(), "is not a file");
  const mode_t mode = exists ? status.st_mode & 07777 : 0644;
  try {
    WriteAll(temp, bytes, mode);
    if (::rename(temp.c_str(), path.c_str()) != 0) Fail(path, errno);
  } catch (const Failure&) {
    ::unlink(temp.c_str());
    throw;
  }
  SyncFolder(path.parent_path());
}

void ReplaceFile(const std::filesystem::path& path, std::string_view bytes) {
  ReplaceFile(path, std::filesystem::path(path.string() + ".tmp"), bytes);
}

}  // namespace vellumark
