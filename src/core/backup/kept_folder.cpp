#include "core/backup/kept_folder.h"

#include <fmt/format.h>

#include <system_error>

#include "core/backup/backup_set.h"
#include "core/base/disk_sync.h"
#include "core/base/files.h"
#include "core/base/refusal.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

// ".Ink.vkd before Restore": two Data Files of a folder do not sweep each other's.
std::string UnfinishedName(const fs::path& current, std::string_view what) {
  return fmt::format(".{} before {}", current.filename().string(), what);
}

platform::OpenFile OpenToHold(const fs::path& path, std::error_code& error) {
  platform::OpenFile file = platform::OpenExisting(path, platform::Opening::Write, error);
  if (!error && !platform::TakeByteLock(file, LockedByte::DataFile))
    throw Failure(path.string(), "is in use by another process");
  return file;
}

}  // namespace

fs::path JournalOf(fs::path file) {
  return file += "-journal";
}

platform::OpenFile HoldDataFile(const fs::path& path) {
  std::error_code error;
  platform::OpenFile file = OpenToHold(path, error);
  if (error) throw Failure(path.string(), error.message());
  return file;
}

platform::OpenFile HoldIfItOpens(const fs::path& path) {
  std::error_code ignored;
  return OpenToHold(path, ignored);
}

Placement::Identity Placement::Look(const fs::path& path) {
  std::error_code none;
  const platform::FileState state = platform::StateOf(path, none);
  return {state.device, state.identity};
}

KeptFolder::KeptFolder(const Session& session, const fs::path& current, std::string_view what)
    : current_(current),
      name_(fmt::format("Before {} {}", what,
                        SetName(session.clock.Now()).substr(std::string_view("VK_Backup_").size()))),
      path_(current.parent_path() / UnfinishedName(current, what)) {
  std::error_code error;
  fs::remove_all(path_, error);
  if (error) throw Failure(path_.string(), "cannot be removed: " + error.message());
  MakeFolder(path_);
}

KeptFolder::~KeptFolder() {
  if (stays_) return;
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

void KeptFolder::Show() {
  if (shown_) return;
  const fs::path wanted = current_.parent_path() / name_;
  fs::path free = wanted;
  for (int n = 2; Stands(free); ++n) free = fmt::format("{} ({})", wanted.string(), n);
  if (const std::error_code error = platform::SyncFiles(path_, {})) throw Failure(path_.string(), error.message());
  RenameToFree(path_, free);
  path_ = free;
  shown_ = true;
}

}  // namespace vellumark
