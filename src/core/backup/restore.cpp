#include "core/backup/restore.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <system_error>
#include <utility>

#include "core/backup/backup_set.h"
#include "core/backup/kept_folder.h"
#include "core/base/files.h"
#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/raise_counters.h"
#include "core/jobs/photo_library.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

fs::path JournalOf(fs::path file) {
  return file += "-journal";
}

bool Exists(const fs::path& path) {
  std::error_code ignored;
  return fs::exists(fs::symlink_status(path, ignored));
}

void Remove(const fs::path& path) {
  std::error_code error;
  fs::remove(path, error);
  if (error) throw Failure(path.string(), "cannot be removed: " + error.message());
}

// Copies of all that is going to be replaced. Gone again when it never comes to that.
class KeptFiles {
 public:
  KeptFiles(const Session& session, const fs::path& current)
      : current_(current), photoFolder_(current.parent_path() / kPhotoFolderOfSet) {
    const std::vector<fs::path> photos = PhotosIn(photoFolder_);
    if (!Exists(current) && !Exists(JournalOf(current)) && photos.empty()) return;
    folder_ = FolderToKeepIn(session, current.parent_path(), "Restore");
    MakeFolder(folder_);
    try {
      if (Exists(current)) KeepDataFile();
      if (Exists(JournalOf(current))) Keep(JournalOf(current), folder_ / JournalOf(current).filename());
      if (!photos.empty()) MakeFolder(folder_ / kPhotoFolderOfSet);
      for (const fs::path& photo : photos) Keep(photo, folder_ / kPhotoFolderOfSet / photo.filename());
    } catch (...) {
      Undo();
      throw;
    }
  }

  const fs::path& Folder() const { return folder_; }
  /// The Data File could not even be copied, and was moved: its place is empty.
  bool Moved() const { return moved_; }

  void Undo() {
    if (folder_.empty()) return;
    if (moved_ && !Exists(current_)) RenameToFree(folder_ / current_.filename(), current_);
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

 private:
  // Whatever takes the place of a file is another one, so that a second name keeps it as well as a copy does and costs
  // nothing. Not every disk knows second names.
  static void Keep(const fs::path& file, const fs::path& kept) {
    std::error_code error;
    fs::create_hard_link(file, kept, error);
    if (error) {
      CopyProved(file, kept, file.filename().string());
    } else {
      SyncFolder(kept.parent_path());
    }
  }
  void KeepDataFile() {
    try {
      Keep(current_, folder_ / current_.filename());
    } catch (const Failure& failure) {
      if (failure.subject != current_.string()) throw;
      RenameToFree(current_, folder_ / current_.filename());
      moved_ = true;
    }
  }

  fs::path current_;
  fs::path photoFolder_;
  fs::path folder_;
  bool moved_ = false;
};

// Photos put into the library one by one, each in one step, and the way back.
class PlacedPhotos {
 public:
  PlacedPhotos(const fs::path& library, const fs::path& kept) : library_(library), kept_(kept / kPhotoFolderOfSet) {}

  void Place(const fs::path& photo) {
    const fs::path target = library_ / photo.filename();
    ReplaceFile(target, ReadFileBytes(photo), Readers::Group);
    placed_.push_back(target);
  }
  void Undo() {
    for (const fs::path& photo : placed_) {
      const fs::path before = kept_ / photo.filename();
      if (Exists(before)) {
        ReplaceFile(photo, ReadFileBytes(before), Readers::Group);
      } else {
        Remove(photo);
      }
    }
  }

 private:
  fs::path library_;
  fs::path kept_;
  std::vector<fs::path> placed_;
};

// A plain Data File again, whose numbers go on from the highest that were handed out.
void MakeCurrent(const fs::path& copy, const fs::path& replaced) {
  const auto file = Database::Open(copy, OpenMode::Exclusive);
  const FileInfoRow info = ReadFileInfo(*file);
  if (info.fileVersion > 100) {
    Transaction transaction(*file);
    file->Prepare("UPDATE FileInfo SET FileVersion = ?").Bind(1, info.fileVersion - 100).Run();
    transaction.Commit();
  }
  std::unique_ptr<Database> before;
  try {
    if (Exists(replaced)) before = Database::Open(replaced, OpenMode::ReadOnly);
    if (before) ReadFileInfo(*before);
  } catch (const Failure&) {
    return;  // what cannot be read is the reason for the restore, and has no counters to go on from
  }
  if (before) RaiseCounters(*file, *before);
}

void CopyBeside(FileBeside& place, const fs::path& source) {
  // Through the engine when something is left to play back; a set has nothing, and stays as it was proven.
  if (Exists(JournalOf(source))) ReadFileInfo(*Database::Open(source, OpenMode::Exclusive));
  ReadProved(source, source.filename().string(), [&](std::string_view piece) { place.Write(piece); });
}

}  // namespace

RestoredFiles PutDataFileBack(Session& session, const fs::path& source, const fs::path& current) {
  RestoredFiles restored;
  const fs::path sourcePhotos = source.parent_path() / kPhotoFolderOfSet;
  const fs::path library = current.parent_path() / kPhotoFolderOfSet;
  std::error_code ignored;
  restored.hadPhotoFolder = fs::is_directory(sourcePhotos, ignored);
  const bool samePhotos = restored.hadPhotoFolder && fs::equivalent(sourcePhotos, library, ignored);

  FileBeside place(current, Readers::Group);
  CopyBeside(place, source);
  WorkBeside(place, [&] { MakeCurrent(place.Path(), current); });
  KeptFiles kept(session, place.Target());
  PlacedPhotos placed(library, kept.Folder());
  try {
    for (const fs::path& photo : PhotosIn(sourcePhotos)) {
      restored.photos.push_back(photo.filename().string());
      if (samePhotos) continue;
      MakeFolder(library);
      placed.Place(photo);
    }
    // Kept beside the file that it belongs to; it must not be played back into the one that comes.
    if (Exists(JournalOf(place.Target()))) Remove(JournalOf(place.Target()));
    place.Replace();
  } catch (...) {
    placed.Undo();
    kept.Undo();
    throw;
  }
  restored.kept = kept.Folder();
  return restored;
}

void RemovePhotosOfNobody(Session& session, const RestoredFiles& restored) {
  if (!restored.hadPhotoFolder || restored.kept.empty()) return;
  for (const fs::path& kept : PhotosIn(restored.kept / kPhotoFolderOfSet)) {
    const std::string name = kept.filename().string();
    if (ContainsPhoto(restored.photos, name) || !PhotoUsersText(session, name).empty()) continue;
    if (const auto file = PhotoFile(session, name)) Remove(*file);
  }
}

}  // namespace vellumark
