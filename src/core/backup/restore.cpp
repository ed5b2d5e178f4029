#include "core/backup/restore.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

#include "core/backup/backup_set.h"
#include "core/backup/kept_folder.h"
#include "core/base/disk_sync.h"
#include "core/base/files.h"
#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/moved_rows.h"
#include "core/datafile/raise_counters.h"
#include "core/jobs/photo_library.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

void Remove(const fs::path& path) {
  std::error_code error;
  fs::remove(path, error);
  if (error) throw Failure(path.string(), "cannot be removed: " + error.message());
}

// Copies of all that is going to be replaced. Gone again when it never comes to that.
class KeptFiles {
 public:
  KeptFiles(const Session& session, const fs::path& current) : current_(current) {
    const std::vector<fs::path> photos = PhotosIn(current.parent_path() / kPhotoFolderOfSet);
    if (!Stands(current) && !Stands(JournalOf(current)) && photos.empty()) return;
    folder_.emplace(session, current, "Restore");
    const bool readable = !Stands(current) || KeepDataFile();
    if (Stands(JournalOf(current))) Keep(JournalOf(current), InFolder(JournalOf(current)));
    if (!photos.empty()) MakeFolder(PhotoFolder());
    for (const fs::path& photo : photos) Keep(photo, PhotoFolder() / photo.filename());
    folder_->Show();
    if (!readable) {
      folder_->Stay();  // also when the disk fails right behind the move
      RenameToFree(current, InFolder(current));
      moved_ = true;
    }
  }

  fs::path Folder() const { return folder_ ? folder_->Path() : fs::path(); }
  fs::path PhotoFolder() const { return folder_ ? Folder() / kPhotoFolderOfSet : fs::path(); }

  void Undo() {
    if (moved_ && !Stands(current_)) RenameToFree(InFolder(current_), current_);
    if (folder_) folder_->Stay(false);
    folder_.reset();
  }
  void Stay() {
    if (folder_) folder_->Stay();
  }

 private:
  fs::path InFolder(const fs::path& file) const { return Folder() / file.filename(); }
  // Whatever takes the place of a file is another one, so that a second name keeps it as well as a copy does and costs
  // nothing. Not every disk knows second names.
  static void Keep(const fs::path& file, const fs::path& kept) {
    std::error_code error;
    fs::create_hard_link(file, kept, error);
    if (error) CopyProved(file, kept, file.filename().string());
  }
  // False when it cannot be read: it is then moved, once the folder that it goes to is what people find.
  bool KeepDataFile() {
    try {
      Keep(current_, InFolder(current_));
      return true;
    } catch (const Failure& failure) {
      if (failure.subject != current_.string()) throw;
      return false;
    }
  }

  fs::path current_;
  std::optional<KeptFolder> folder_;
  bool moved_ = false;
};

// The bar: the Data File in its first half, the photos behind it.
constexpr double kFileShare = 50;

// Photos put into the library, and the way back. They are written beside and synced at once, then each takes its place
// in one step. One that is there already stays.
class PlacedPhotos {
 public:
  PlacedPhotos(const fs::path& current, fs::path kept, const std::vector<FileProof>& known)
      : library_(current.parent_path() / kPhotoFolderOfSet),
        beside_(current.parent_path() / fmt::format(".{} photos", current.filename().string())),
        kept_(std::move(kept)) {
    for (const FileProof& file : known) known_.emplace(fs::path(file.name).filename().string(), file);
    Clear();
  }
  ~PlacedPhotos() {
    std::error_code ignored;
    fs::remove_all(beside_, ignored);
  }
  PlacedPhotos(const PlacedPhotos&) = delete;
  PlacedPhotos& operator=(const PlacedPhotos&) = delete;

  void Place(const std::vector<fs::path>& photos, Progress& progress) {
    const std::set<fs::path> there = ThoseThere(photos);
    std::vector<fs::path> written;
    for (std::size_t i = 0; i < photos.size(); ++i) {
      progress.Percent(kFileShare + (95 - kFileShare) * static_cast<double>(i) / static_cast<double>(photos.size()));
      if (!there.contains(photos[i])) written.push_back(Write(photos[i]));
    }
    if (written.empty()) return;
    FailOn(beside_, platform::SyncFiles(beside_, written));
    for (const fs::path& photo : written) {
      const fs::path target = library_ / photo.filename();
      placed_.push_back(target);
      FailOn(target, platform::Replace(photo, target));
    }
    SyncFolder(library_);
  }
  void Undo() {
    for (const fs::path& photo : placed_) {
      const fs::path before = kept_ / photo.filename();
      if (!kept_.empty() && Stands(before)) {
        PutBack(before, photo);
      } else {
        Remove(photo);
      }
    }
  }

 private:
  static void FailOn(const fs::path& path, const std::error_code& error) {
    if (error) throw Failure(path.string(), error.message());
  }
  // By a second name, for which a full disk has space; not every disk knows second names.
  void PutBack(const fs::path& kept, const fs::path& photo) const {
    const fs::path again = beside_ / (photo.filename().string() + ".kept");
    std::error_code error;
    fs::create_hard_link(kept, again, error);
    if (error) {
      ReplaceFile(photo, ReadFileBytes(kept), Readers::Group);
    } else {
      FailOn(photo, platform::Replace(again, photo));
    }
  }
  void Clear() const {
    std::error_code error;
    fs::remove_all(beside_, error);
    FailOn(beside_, error);
  }
  // Most photos of yesterday are those of today. What was read of a set while it was verified is not read again.
  std::set<fs::path> ThoseThere(const std::vector<fs::path>& photos) const {
    std::vector<fs::path> alike;
    std::vector<FileProof> wanted;
    for (const fs::path& photo : photos) {
      const std::string name = photo.filename().string();
      std::error_code differs;
      if (fs::file_size(library_ / name, differs) != fs::file_size(photo, differs) || differs) continue;
      const auto known = known_.find(name);
      wanted.push_back(known != known_.end() ? known->second : ProveFile(photo, name, FileDigestOf::Lanes));
      wanted.back().name = name;
      alike.push_back(photo);
    }
    std::set<fs::path> there;
    const auto here = ProveFiles(library_, wanted, [](std::size_t) {});
    for (std::size_t i = 0; i < alike.size(); ++i)
      if (here[i] && *here[i] == wanted[i]) there.insert(alike[i]);
    return there;
  }
  // Whose it is to read stays as it was.
  fs::path Write(const fs::path& photo) const {
    MakeFolder(library_);
    MakeFolder(beside_);
    const fs::path written = beside_ / photo.filename();
    CopyPlain(photo, written);
    if (const fs::path before = library_ / photo.filename(); Stands(before)) {
      std::error_code error;
      const platform::OpenFile file = platform::OpenExisting(written, platform::Opening::Write, error);
      FailOn(written, error);
      FailOn(before, platform::KeepOwner(file, before));
    }
    return written;
  }

  fs::path library_;
  fs::path beside_;
  fs::path kept_;
  std::map<std::string, FileProof> known_;
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
    if (Stands(replaced)) before = Database::Open(replaced, OpenMode::ReadOnly);
    if (before) ReadFileInfo(*before);
  } catch (const Failure&) {
    return;  // what cannot be read is the reason for the restore, and has no counters to go on from
  }
  if (before) RaiseCounters(*file, *before);
}

// What was moved out of an archive is called by the name of the file whose place the archive takes: that one stands in the
// folder of what was replaced now, or nowhere any more.
void FollowReplaced(const fs::path& copy, const fs::path& replaced, const fs::path& kept) {
  const auto file = Database::Open(copy, OpenMode::Exclusive);
  const std::string name = replaced.filename().string();
  if (!MovedInto(*file, name)) return;
  Transaction transaction(*file);
  RenameMovedFile(*file, name, !kept.empty() && Stands(kept / name) ? (kept.filename() / name).string() : "");
  transaction.Commit();
}

void CopyBeside(FileBeside& place, const fs::path& source, Progress& progress) {
  // Through the engine when something is left to play back; a set has nothing, and stays as it was proven.
  if (Stands(JournalOf(source))) ReadFileInfo(*Database::Open(source, OpenMode::Exclusive));
  std::error_code ignored;
  const double all = std::max(1.0, static_cast<double>(fs::file_size(source, ignored)));
  double done = 0;
  ForEachPiece(source, [&](std::string_view piece) {
    place.Write(piece);
    done += static_cast<double>(piece.size());
    progress.Percent(kFileShare * std::min(1.0, done / all));
  });
}

}  // namespace

RestoredFiles PutDataFileBack(Session& session, const fs::path& source, const fs::path& sourcePhotos,
                              const fs::path& current, const std::vector<FileProof>& known) {
  RestoredFiles restored;
  const fs::path library = current.parent_path() / kPhotoFolderOfSet;
  std::error_code ignored;
  restored.hadPhotoFolder = fs::is_directory(sourcePhotos, ignored);
  const bool samePhotos = restored.hadPhotoFolder && fs::equivalent(sourcePhotos, library, ignored);

  HoldIfItOpens(current);  // whoever works in it is told of before anything is copied
  FileBeside place(current, Readers::Group);
  CopyBeside(place, source, session.progress);
  WorkBeside(place, [&] { MakeCurrent(place.Path(), current); });
  const platform::OpenFile held = HoldIfItOpens(place.Target());
  const Placement placement(place.Path());
  KeptFiles kept(session, place.Target());
  PlacedPhotos placed(place.Target(), kept.PhotoFolder(), known);
  try {
    const std::vector<fs::path> photos = PhotosIn(sourcePhotos);
    for (const fs::path& photo : photos) restored.photos.push_back(photo.filename().string());
    if (!samePhotos) placed.Place(photos, session.progress);
    WorkBeside(place, [&] { FollowReplaced(place.Path(), place.Target(), kept.Folder()); });
    // Kept beside the file that it belongs to; it must not be played back into the one that comes.
    if (Stands(JournalOf(place.Target()))) Remove(JournalOf(place.Target()));
    place.Replace();
  } catch (...) {
    kept.Stay();  // until all is back, should that fail too
    // The disk failed behind the last step: what was there stands in that folder alone.
    if (placement.Stands(place.Target())) throw;
    placed.Undo();
    kept.Undo();
    throw;
  }
  kept.Stay();
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
