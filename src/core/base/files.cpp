#include "core/base/files.h"

#include <algorithm>
#include <system_error>

#include "core/base/refusal.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kBesideEnd = ".vellumark";
constexpr std::string_view kJournalEnd = "-journal";
// What a name may have on the disk, less the marks around it and the engine's journal.
constexpr std::size_t kLongestName = 255 - 30;

void FailOn(const fs::path& path, const std::error_code& error) {
  if (error) throw Failure(path.string(), error.message());
}

fs::path FolderOf(const fs::path& path) {
  return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

fs::path WithEnd(fs::path path, std::string_view end) {
  return path += end;
}

std::string BesideStart(const fs::path& target) {
  std::string name = target.filename().string();
  // A character of several bytes stays whole: not every system takes half of one for a name.
  std::size_t length = std::min(name.size(), kLongestName);
  while (length > 0 && length < name.size() && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80) --length;
  return "." + name.substr(0, length) + ".";
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
    std::error_code error;
    if (journal) {
      // Of a file that has taken its place or is gone; with one that is there it goes below.
      platform::StateOfEntry(entry->path().parent_path() / name, error);
      if (error) fs::remove(entry->path(), error);
      continue;
    }
    const platform::OpenFile file = platform::OpenExisting(entry->path(), platform::Opening::WriteNoLink, error);
    if (!file || platform::StateOf(file, error).kind != platform::Kind::File) continue;
    if (!platform::TakeByteLock(file, LockedByte::Beside)) continue;
    fs::remove(entry->path(), error);
    fs::remove(WithEnd(entry->path(), kJournalEnd), error);
  }
}

}  // namespace

std::string ReadFileBytes(const fs::path& path, std::size_t most) {
  std::error_code error;
  const platform::OpenFile file = platform::OpenExisting(path, platform::Opening::Read, error);
  FailOn(path, error);
  const platform::FileState state = platform::StateOf(file, error);
  FailOn(path, error);
  if (state.kind != platform::Kind::File) throw Failure(path.string(), "is not a file");
  std::string bytes;
  bytes.reserve(std::min(most, static_cast<std::size_t>(state.size) + 1));
  char buffer[65536];
  while (bytes.size() < most) {
    const std::size_t count = platform::Read(file, buffer, std::min(sizeof buffer, most - bytes.size()), error);
    FailOn(path, error);
    if (count == 0) break;
    bytes.append(buffer, count);
  }
  return bytes;
}

bool Stands(const std::filesystem::path& path) {
  std::error_code ignored;
  return std::filesystem::exists(std::filesystem::symlink_status(path, ignored));
}

fs::path RealPath(const fs::path& path) {
  std::error_code error;
  fs::path real = fs::weakly_canonical(fs::absolute(path), error);
  return error ? path : real;
}

FileBeside::FileBeside(const fs::path& target, Readers readers) : target_(RealPath(target)), readers_(readers) {
  std::error_code error;
  const platform::FileState before = platform::StateOf(target_, error);
  if (!error) {
    // A device or a pipe would be gone afterwards, with a file in its place.
    if (before.kind != platform::Kind::File) throw Failure(target.string(), "is not a file");
    FailOn(target, platform::Denied(target_, platform::Access::Write));
  }
  SweepAbandoned(target_);
  // Another process may sweep the file away before its lock is taken.
  for (;;) {
    file_ = platform::MakeUnique(FolderOf(target_) / BesideStart(target_), kBesideEnd, path_, error);
    if (error == std::errc::permission_denied)
      throw Failure(target.string(), "cannot be written: there is no permission to write in its folder");
    FailOn(target, error);
    if (platform::TakeByteLock(file_, LockedByte::Beside) && platform::StateOf(file_, error).named && !error) return;
    file_.Close();
  }
}

FileBeside::~FileBeside() {
  if (placed_) return;
  std::error_code ignored;
  fs::remove(path_, ignored);
  fs::remove(WithEnd(path_, kJournalEnd), ignored);
}

void FileBeside::Write(std::string_view bytes) {
  FailOn(target_, platform::Write(file_, bytes));
}

void FileBeside::Finish() {
  std::error_code error;
  platform::StateOf(target_, error);
  FailOn(target_,
         error ? platform::GiveToReaders(file_, FolderOf(target_), readers_) : platform::KeepOwner(file_, target_));
  FailOn(target_, platform::Sync(file_));
  // The engine has closed the file, but may have failed to remove this.
  fs::remove(WithEnd(path_, kJournalEnd), error);
}

void FileBeside::Replace() {
  Finish();
  FailOn(target_, platform::Replace(path_, target_));
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
  const std::error_code error = platform::RenameToFree(from, to);
  if (error == std::errc::file_exists) throw Failure(to.string(), "already exists");
  FailOn(to, error);
  SyncFolder(FolderOf(to));
}

void MakeFolder(const fs::path& folder) {
  std::error_code error;
  if (folder.empty() || fs::is_directory(folder, error)) return;
  const fs::path above = folder.parent_path();
  if (above != folder) MakeFolder(above);
  fs::create_directory(folder, error);
  FailOn(folder, error);
  FailOn(folder, platform::ShareFolder(folder));
}

platform::OpenFile OpenLockFile(const fs::path& path) {
  std::error_code error;
  platform::OpenFile file = platform::OpenLockFile(path, error);
  FailOn(path, error);
  return file;
}

FolderLock::FolderLock(const fs::path& folder) {
  std::error_code error;
  file_ = platform::LockFolder(folder, error);
  FailOn(folder, error);
}

void SyncFolder(const fs::path& folder) {
  FailOn(folder, platform::SyncFolder(folder.empty() ? fs::path(".") : folder));
}

}  // namespace vellumark
