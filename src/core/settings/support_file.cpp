#include "core/settings/support_file.h"

#include <chrono>
#include <system_error>
#include <utility>

#include "core/base/files.h"
#include "core/base/platform.h"
#include "core/base/refusal.h"

namespace vellumark {
namespace {

// File times move in ticks of at most 10 ms. A file read within two ticks of its last change may be changed once more
// without a new time, so its stamp proves nothing yet.
constexpr std::int64_t kUnsettled = 20'000'000;

std::int64_t NanosecondsNow() {
  return std::chrono::nanoseconds(std::chrono::system_clock::now().time_since_epoch()).count();
}

}  // namespace

SupportFile::SupportFile(std::filesystem::path path, RecordShape shape)
    : path_(std::move(path)), shape_(shape), records_(shape) {}

bool SupportFile::Exists() const {
  std::error_code error;
  platform::StateOf(path_, error);
  if (!error) return true;
  if (error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory) return false;
  throw Failure(path_.string(), error.message());
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
  if (!loaded_ || platform::Tick() != checkedAt_) Refresh();
  return records_;
}

void SupportFile::Refresh() const {
  const std::int64_t tick = platform::Tick();
  const bool known = std::exchange(loaded_, false);
  // The stamp is taken before the bytes: a change in between shows as a stale stamp at the next look.
  const Stamp stamp = StampNow();
  if (!known || !settled_ || stamp != stamp_) {
    const std::int64_t now = NanosecondsNow();
    records_ = SupportRecords::Parse(ReadFileBytes(path_), shape_);
    stamp_ = stamp;
    settled_ = now - stamp.modified > kUnsettled || stamp.modified - now > kUnsettled;
  }
  checkedAt_ = tick;
  loaded_ = true;
}

SupportFile::Stamp SupportFile::StampNow() const {
  std::error_code error;
  const platform::FileState state = platform::StateOf(path_, error);
  if (error) throw Failure(path_.string(), error.message());
  return {state.device, state.identity, state.size, state.modified, state.changed};
}

}  // namespace vellumark
