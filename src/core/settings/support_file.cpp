#include "core/settings/support_file.h"

#include <sys/stat.h>
#include <time.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "core/base/files.h"
#include "core/base/refusal.h"

namespace vellumark {
namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
// File times move in ticks of at most 10 ms. A file read within two ticks of its last change may be changed once more
// without a new time, so its stamp proves nothing yet.
constexpr std::int64_t kUnsettled = 20'000'000;

std::int64_t Nanoseconds(const timespec& time) {
  return time.tv_sec * kNanosecondsPerSecond + time.tv_nsec;
}

std::int64_t ClockNow(clockid_t clock) {
  timespec now{};
  ::clock_gettime(clock, &now);
  return Nanoseconds(now);
}

}  // namespace

SupportFile::SupportFile(std::filesystem::path path, RecordShape shape)
    : path_(std::move(path)), shape_(shape), records_(shape) {}

bool SupportFile::Exists() const {
  struct stat status {};
  if (::stat(path_.c_str(), &status) == 0) return true;
  if (errno == ENOENT || errno == ENOTDIR) return false;
  throw Failure(path_.string(), std::strerror(errno));
}

void SupportFile::SetSupportValue(std::string_view key, std::string_view value) {
  Change([&](SupportRecords& records) { records.Set(key, value); });
}

void SupportFile::SetSupportValue(std::string_view layout, std::string_view key, std::string_view value) {
  Change([&](SupportRecords& records) { records.Set(layout, key, value); });
}

void SupportFile::AppendSupportValue(std::string_view key, std::string_view value) {
  Change([&](SupportRecords& records) { records.Append(key, value); });
}

void SupportFile::AppendSupportValue(std::string_view layout, std::string_view key, std::string_view value) {
  Change([&](SupportRecords& records) { records.Append(layout, key, value); });
}

void SupportFile::RemoveRecords(std::string_view layout) {
  Change([&](SupportRecords& records) { records.RemoveRecords(layout); });
}

bool SupportFile::Change(const std::function<void(SupportRecords&)>& change) {
  const FolderLock lock(RealPath(path_).parent_path());
  SupportRecords records = Read();
  change(records);
  if (!records.Changed()) return false;
  Write(records, lock);
  return true;
}

SupportRecords SupportFile::Read() const {
  Refresh();
  return records_;
}

void SupportFile::Write(const SupportRecords& records) {
  Write(records, FolderLock(RealPath(path_).parent_path()));
}

void SupportFile::Write(const SupportRecords& records, const FolderLock&) {
  const std::string bytes = records.Bytes();
  // Read again at the next call: the file, not the memory, says what a value with a double quote became.
  loaded_ = false;
  ReplaceFile(path_, bytes, Readers::Group);
}

const SupportRecords& SupportFile::Current() const {
  if (!loaded_ || ClockNow(CLOCK_MONOTONIC_COARSE) != checkedAt_) Refresh();
  return records_;
}

void SupportFile::Refresh() const {
  const std::int64_t tick = ClockNow(CLOCK_MONOTONIC_COARSE);
  const bool known = std::exchange(loaded_, false);
  // The stamp is taken before the bytes: a change in between shows as a stale stamp at the next look.
  const Stamp stamp = StampNow();
  if (!known || !settled_ || stamp != stamp_) {
    const std::int64_t now = ClockNow(CLOCK_REALTIME);
    records_ = SupportRecords::Parse(ReadFileBytes(path_), shape_);
    stamp_ = stamp;
    settled_ = now - stamp.modified > kUnsettled || stamp.modified - now > kUnsettled;
  }
  checkedAt_ = tick;
  loaded_ = true;
}

SupportFile::Stamp SupportFile::StampNow() const {
  struct stat status {};
  if (::stat(path_.c_str(), &status) != 0) throw Failure(path_.string(), std::strerror(errno));
  return {status.st_dev, status.st_ino, status.st_size, Nanoseconds(status.st_mtim), Nanoseconds(status.st_ctim)};
}

}  // namespace vellumark
