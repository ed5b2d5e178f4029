#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "core/base/files.h"
#include "core/settings/support_records.h"

namespace vellumark {

/// One Support File on the disk. What was read is kept, so that reading a value is a look into memory; the file's state
/// is looked at again at most once in a tick of the system's coarse clock, so a change made by another process is seen
/// about 10 ms later at the latest. Changes made through this object are seen at once.
///
/// Every write replaces the file in one step, and starts from what the file holds at that moment: of processes that
/// write at once none loses another's change. A missing or unreadable file is a Failure naming it, at each call.
class SupportFile {
 public:
  SupportFile(std::filesystem::path path, RecordShape shape);

  const std::filesystem::path& Path() const { return path_; }
  RecordShape Shape() const { return shape_; }
  bool Exists() const;
  /// Whether it is there and holds a record. One that was emptied, or that a power cut left blank, counts as missing.
  bool HoldsRecords() const { return Exists() && !Current().Records().empty(); }

  /// The value of the first record of the key; empty when there is none.
  std::string GetSupportValue(std::string_view key) const { return Current().Get(key); }
  std::string GetSupportValue(std::string_view layout, std::string_view key) const {
    return Current().Get(layout, key);
  }

  /// Changes every record of an existing key; a key that is not there leaves the file as it is.
  void SetSupportValue(std::string_view key, std::string_view value);
  void SetSupportValue(std::string_view layout, std::string_view key, std::string_view value);
  /// Adds a record at the end.
  void AppendSupportValue(std::string_view key, std::string_view value);
  void AppendSupportValue(std::string_view layout, std::string_view key, std::string_view value);
  /// Drops all records of a layout.
  void RemoveRecords(std::string_view layout);

  /// Many changes and one write: `change` works on the records as the file holds them now. Nothing is written when it
  /// changes nothing or throws. Returns whether the file was written.
  bool Change(const std::function<void(SupportRecords&)>& change);

  /// The records as the file holds them now.
  SupportRecords Read() const;
  /// Makes these records the file's whole content; the file need not exist.
  void Write(const SupportRecords& records);
  /// The same for a caller that has the lock of the folder since it read them.
  void Write(const SupportRecords& records, const FolderLock& lock);

 private:
  // Tells one state of the file from another.
  struct Stamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t modified = 0;  // nanoseconds since 1970
    std::int64_t changed = 0;
    bool operator==(const Stamp&) const = default;
  };

  const SupportRecords& Current() const;
  void Refresh() const;
  Stamp StampNow() const;

  std::filesystem::path path_;
  RecordShape shape_;
  mutable bool loaded_ = false;
  mutable bool settled_ = false;
  mutable std::int64_t checkedAt_ = 0;
  mutable Stamp stamp_;
  mutable SupportRecords records_;
};

}  // namespace vellumark
