#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "core/base/platform.h"

namespace vellumark {

/// The bytes of a whole file, or its first `most`. Throws Failure naming the file and the cause, also for what is no
/// regular file: a pipe or a device would never end, or never begin.
std::string ReadFileBytes(const std::filesystem::path& path, std::size_t most = std::string::npos);

/// Whether something stands there, be it a link that leads nowhere.
bool Stands(const std::filesystem::path& path);

/// The file that a path leads to through whatever links; where there is none yet, the place in its real folder.
std::filesystem::path RealPath(const std::filesystem::path& path);

/// A file that is written beside the place that it takes when it is whole, so that a kill at any moment leaves what
/// stood there or what was written. It has a name of its own, made exclusively, and is nobody's to read before. Links
/// are followed to the real file, whose owner and mode are kept. What killed processes left is swept away. Failures
/// name the target.
class FileBeside {
 public:
  FileBeside(const std::filesystem::path& target, Readers readers);
  /// Removes what did not take its place.
  ~FileBeside();
  FileBeside(const FileBeside&) = delete;
  FileBeside& operator=(const FileBeside&) = delete;

  /// Where it stands until then: an empty file at first.
  const std::filesystem::path& Path() const { return path_; }
  const std::filesystem::path& Target() const { return target_; }

  void Write(std::string_view bytes);
  /// Synced to the disk, over the file that stands at the target.
  void Replace();
  /// The same where nothing may stand: a Failure "already exists" otherwise.
  void TakeFreePlace();

 private:
  void Finish();

  std::filesystem::path target_;
  std::filesystem::path path_;
  Readers readers_;
  platform::OpenFile file_;
  bool placed_ = false;
};

/// Replaces a file in one step by way of a FileBeside.
void ReplaceFile(const std::filesystem::path& path, std::string_view bytes, Readers readers = Readers::Everybody);

/// Gives a file another name, which must be free, in one step that lasts through a power cut.
void RenameToFree(const std::filesystem::path& from, const std::filesystem::path& to);

/// Makes a folder, and those above it, where it is missing; under a folder that hands its group on, the group may write
/// in it too. Throws Failure naming it.
void MakeFolder(const std::filesystem::path& folder);

/// A file to hold a lock on, made where it is missing. Never through a link.
platform::OpenFile OpenLockFile(const std::filesystem::path& path);

/// Keeps out every other process that takes the lock of the same folder, and waits for it. It goes with the process. On
/// a file system that knows no locks it is none.
class FolderLock {
 public:
  explicit FolderLock(const std::filesystem::path& folder);

 private:
  platform::OpenFile file_;
};

/// Makes the rename or removal of a file in `folder` last through a power cut.
void SyncFolder(const std::filesystem::path& folder);

}  // namespace vellumark
