#include "core/cloud/cloud_backup.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

#include "core/backup/backup_set.h"
#include "core/base/files.h"
#include "core/base/text.h"
#include "core/cloud/cloud_sets.h"
#include "core/cloud/share_file.h"
#include "core/cloud/transfer.h"
#include "core/datafile/databases.h"
#include "core/session/acts.h"
#include "core/settings/support_files.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kSupportFolder = "SUVFiles";
constexpr std::string_view kCannotDeleteShare = "Unable to delete Cloud formula file ";

std::vector<fs::path> SupportFilesOf(const Session& session) {
  std::vector<fs::path> files;
  const SupportFiles& support = *session.support;
  for (const SupportFile* file :
       {&support.settings, &support.scale, &support.hazardLabel, &support.formulaLabel, &support.label})
    if (file->Exists()) files.push_back(file->Path());
  return files;
}

std::size_t CountBackups(CloudRun& run) {
  return ListFiles(run, run.Folders().backups, [](const std::string& name) { return IsCloudBackup(name); }).size();
}

[[noreturn]] void RefuseTooMany() {
  throw Refusal{"Cloud Backup",
                fmt::format("Backup was not uploaded to the Cloud\nMaximum Cloud Backups allowed is {}\n"
                            "Use Manage Cloud Backups to delete files",
                            kMostCloudBackups),
                {}};
}

// The files of one task in "Cloud Uploads". They go with the object, whatever became of it.
class Staged {
 public:
  explicit Staged(const Session& session) : folders(session.DataFolder) {}
  ~Staged() {
    std::error_code ignored;
    for (const fs::path& file : files_) fs::remove(file, ignored);
  }
  Staged(const Staged&) = delete;
  Staged& operator=(const Staged&) = delete;

  fs::path Place(const std::string& name) { return Place(folders.cloudUploads, name); }
  fs::path Place(const fs::path& folder, const std::string& name) {
    files_.push_back(folder / name);
    return files_.back();
  }
  /// A copy, so that what goes up is what it was when the task began.
  fs::path Copy(const fs::path& file, const fs::path& folder, const std::string& name) {
    MakeFolder(folder);
    const fs::path copy = Place(folder, name);
    std::error_code error;
    fs::copy_file(file, copy, fs::copy_options::overwrite_existing, error);
    if (error) throw Failure(file.string(), error.message());
    return copy;
  }

  const DataFolders folders;

 private:
  std::vector<fs::path> files_;
};

// What belongs to a backup or a share and goes up with it: told by its name in the proof.
class Upward {
 public:
  Upward(CloudRun& run, SetProof& proof) : run_(run), proof_(proof) {}

  void Send(const fs::path& file, const std::string& folder, const std::string& name, const std::string& proven,
            std::string_view cannotDelete) {
    FileProof sent = Upload(run_, file, folder, name, std::string(cannotDelete));
    sent.name = proven;
    proof_.files.push_back(std::move(sent));
    sent_.push_back(RemotePath(folder, name));
  }
  void Told(const std::string& path) { sent_.push_back(path); }
  /// A backup that is not whole leaves nothing behind, as far as the host can still be asked.
  void TakeBack() {
    for (const std::string& path : sent_) {
      try {
        run_.ftp.Delete(path);
      } catch (const FtpFailure& failure) {
        run_.Log(fmt::format("Unable to delete {}: {}", path, failure.cause));
        if (failure.kind != FtpFailure::Kind::Missing && failure.kind != FtpFailure::Kind::Denied) return;
      }
    }
  }

 private:
  CloudRun& run_;
  SetProof& proof_;
  std::vector<std::string> sent_;
};

SetProof NewProof(const Session& session, const std::string& name) {
  const DateTime now = session.clock.Now();
  return {name, now, MomentOf(now), VELLUMARK_VERSION, session.UMI, {}, {}};
}

// A copy of a photo, and the photo's own name.
struct StagedPhoto {
  fs::path file;
  std::string name;
};

std::vector<StagedPhoto> StagePhotos(CloudRun& run, Staged& staged, const fs::path& folder, const std::string& prefix) {
  run.Say("Creating Photo Backup Copies");
  std::vector<StagedPhoto> photos;
  for (const fs::path& photo : PhotosIn(fs::path(run.session.DataFileName).parent_path() / kPhotoFolderOfSet)) {
    const std::string name = photo.filename().string();
    photos.push_back({staged.Copy(photo, folder, prefix + name), name});
  }
  return photos;
}

void SendSupportFiles(CloudRun& run, Upward& upward, const std::vector<fs::path>& files, const std::string& name) {
  run.Say("Uploading support files to Cloud");
  for (const fs::path& file : files)
    upward.Send(file, run.Folders().backupSupportFiles, SupportPrefix(name) + file.filename().string(),
                fmt::format("{}/{}", kSupportFolder, file.filename().string()), "Unable to delete ");
  run.Log(fmt::format("{} support files uploaded to: {}", files.size(), run.Folders().backupSupportFiles));
}

void SendBackupPhotos(CloudRun& run, Upward& upward, const std::vector<StagedPhoto>& photos, const std::string& name) {
  run.Say("Uploading Backup Design Photos to Cloud");
  for (const StagedPhoto& photo : photos)
    upward.Send(photo.file, run.Folders().backupPhotos, PhotoPrefix(name) + photo.name,
                fmt::format("{}/{}", kPhotoFolderOfSet, photo.name), "Unable to delete ");
  run.Log(fmt::format("{} photos uploaded to: {}", photos.size(), run.Folders().backupPhotos));
}

// Those that went up before and are not here any more go.
void SendSharePhotos(CloudRun& run, Upward& upward, const std::vector<StagedPhoto>& photos) {
  run.Say("Uploading Share Design Photos to Cloud");
  const std::string& folder = run.Folders().sharePhotos;
  int deleted = 0;
  for (const RemoteFile& old : ListFiles(run, folder, IsPhoto)) {
    run.Step("Unable to delete " + old.name, [&] { run.ftp.Delete(RemotePath(folder, old.name)); });
    ++deleted;
  }
  run.Log(fmt::format("{} old share photos deleted from: {}", deleted, folder));
  for (const StagedPhoto& photo : photos)
    upward.Send(photo.file, folder, photo.name, fmt::format("{}/{}", kPhotoFolderOfSet, photo.name), "Unable to delete ");
  run.Log(fmt::format("{} photos uploaded to: {}", photos.size(), folder));
}

// The file has its name before its proof: one without is read as one that an older program made.
void SendShare(CloudRun& run, Staged& staged, const fs::path& whole, const std::optional<std::vector<StagedPhoto>>& photos) {
  const std::string name = run.Settings().AcctNum + ".vkd";
  const std::string& folder = run.Folders().shareDataFile;
  run.Say("Preparing Backup File for Upload");
  const fs::path share = staged.Place(name);
  MakeShareFile(whole, share);
  run.Say("Uploading Share File to Cloud");
  SetProof proof = NewProof(run.session, name);
  Upward upward(run, proof);
  FileProof sent;
  const std::string part = BringUp(run, share, folder, name, &sent);
  proof.files.insert(proof.files.begin(), sent);
  if (photos) SendSharePhotos(run, upward, *photos);
  const std::string told = RemotePath(folder, ProofName(name));
  if (run.ftp.Size(told)) run.Step("Unable to delete " + ProofName(name), [&] { run.ftp.Delete(told); });
  Place(run, folder, part, name, std::string(kCannotDeleteShare));
  UploadBytes(run, ProofText(proof), folder, ProofName(name), "Unable to delete ");
}

// What a backup consists of besides its Data File.
struct BackupParts {
  std::vector<fs::path> support;
  std::optional<std::vector<StagedPhoto>> photos;
};

BackupParts StageParts(CloudRun& run, Staged& staged, const std::string& name, bool photos) {
  BackupParts parts;
  if (photos) parts.photos = StagePhotos(run, staged, staged.folders.uploadPhotosBackup, PhotoPrefix(name));
  for (const fs::path& file : SupportFilesOf(run.session))
    parts.support.push_back(staged.Copy(file, staged.folders.uploadSupportFiles, file.filename().string()));
  return parts;
}

// The Data File gets its name when everything that belongs to it is up.
void SendBackup(CloudRun& run, const fs::path& whole, const std::string& name, SetProof& proof, const BackupParts& parts) {
  const std::string& folder = run.Folders().backups;
  run.Say("Uploading Backup File to Cloud");
  FileProof sent;
  const std::string part = BringUp(run, whole, folder, name, &sent);
  proof.files.insert(proof.files.begin(), sent);
  Upward upward(run, proof);
  try {
    SendSupportFiles(run, upward, parts.support, name);
    if (parts.photos) SendBackupPhotos(run, upward, *parts.photos, name);
    UploadBytes(run, ProofText(proof), folder, ProofName(name), "Unable to delete ");
    upward.Told(RemotePath(folder, ProofName(name)));
    Place(run, folder, part, name, "Unable to delete ");
  } catch (const FtpFailure& failure) {
    using enum FtpFailure::Kind;
    upward.Told(RemotePath(folder, part));
    if (failure.kind == Denied || failure.kind == Full || failure.kind == Other || failure.kind == Missing)
      upward.TakeBack();
    throw;
  } catch (const Failure&) {
    // Of this machine: the host can be asked.
    upward.Told(RemotePath(folder, part));
    upward.TakeBack();
    throw;
  }
}

// What is kept here of the host's backups can be asked for anew: where it cannot be kept nothing else fails.
void Note(CloudRun& run, const std::function<void()>& keep) {
  try {
    keep();
  } catch (const Failure& failure) {
    run.Log(fmt::format("{}: {}", failure.subject, failure.cause));
  }
}

Result<void> MayGoUp(const Session& session) {
  if (auto allowed = RequireAct(session, Act::BackUp); !allowed) return allowed;
  if (IsSharedDataFile(session, session.DataFileName))
    return Refuse("Share User Data File",
                  "Currently connected to a Shared User File.\nCan't back this file up to your Cloud folder.\n"
                  "Back up to an external storage device or\nupload it to the Cloud User's Restore folder.");
  if (auto writable = RequireWritable(session); !writable) return writable;
  return RequireCloud(session);
}

std::string NameOf(const Session& session, const CloudSettings& settings) {
  return CloudBackupName(AccountWord(settings, session.DataFileName), session.clock.Now());
}

void DeleteOne(CloudRun& run, const std::string& name, const std::vector<RemoteFile>& support,
               const std::vector<RemoteFile>& photos) {
  const RemoteFolders& folders = run.Folders();
  run.Step("Unable to delete " + name, [&] { run.ftp.Delete(RemotePath(folders.backups, name)); });
  const auto remove = [&](const std::string& folder, const std::string& file) {
    run.Step("Unable to delete " + file, [&] { run.ftp.Delete(RemotePath(folder, file)); });
  };
  for (const RemoteFile& file : support)
    if (file.name.starts_with(SupportPrefix(name))) remove(folders.backupSupportFiles, file.name);
  for (const RemoteFile& file : photos)
    if (file.name.starts_with(PhotoPrefix(name))) remove(folders.backupPhotos, file.name);
  if (run.ftp.Size(RemotePath(folders.backups, ProofName(name)))) remove(folders.backups, ProofName(name));
  run.Log(fmt::format("Deleted: {}", name));
}

bool IsListed(const std::string& name) {
  return IsCloudBackup(name) || IsAdminFile(name);
}

std::vector<RemoteFile> EverythingIn(CloudRun& run, const std::string& folder) {
  if (!run.ftp.FolderExists(folder)) return {};
  return ListFiles(run, folder, [](const std::string& name) { return IsPlainName(name); });
}

// ---- Down again

// What is left of an earlier restore goes; what has come of this one stays, to be gone on with.
void EmptyRestoreFolder(CloudRun& run, const std::string& name) {
  run.Say("Preparing Restore Backup Folder");
  const DataFolders folders(run.session.DataFolder);
  std::error_code error;
  for (fs::directory_iterator entry(folders.downloadBackups, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string found = entry->path().filename().string();
    if (found.starts_with(name + ".") && found.ends_with(".part")) continue;
    std::error_code failed;
    fs::remove_all(entry->path(), failed);
    if (failed) throw Failure(entry->path().string(), failed.message());
  }
  if (error) throw Failure(folders.downloadBackups.string(), error.message());
}

// The files of a folder that begin with a prefix, under their own names; with what the proof tells of them.
int FetchParts(CloudRun& run, const std::string& folder, const std::string& prefix, const fs::path& target,
               std::string_view proven, const std::optional<SetProof>& proof, SetProof& kept) {
  int count = 0;
  for (const RemoteFile& file : EverythingIn(run, folder)) {
    if (!file.name.starts_with(prefix)) continue;
    const std::string own = file.name.substr(prefix.size());
    if (!IsPlainName(own)) continue;
    const std::string name = fmt::format("{}/{}", proven, own);
    const auto told = proof ? ProofOf(proof->files, name) : std::nullopt;
    Download(run, folder, file, target / own, told);
    if (told) kept.files.push_back(*told);
    ++count;
  }
  return count;
}

// The folder in which they then are; empty when there are none.
fs::path FetchSupport(CloudRun& run, const std::string& name, const std::optional<SetProof>& proof, SetProof& kept) {
  run.Say("Retrieving Cloud Backup SUV Files");
  fs::path folder = DataFolders(run.session.DataFolder).downloadSupportFiles;
  const std::string& remote = run.Folders().backupSupportFiles;
  if (FetchParts(run, remote, SupportPrefix(name), folder, kSupportFolder, proof, kept) > 0) return folder;
  // An older program has one set for all backups.
  int count = 0;
  for (const RemoteFile& file : EverythingIn(run, remote)) {
    if (!file.name.starts_with("vk50")) continue;
    Download(run, remote, file, folder / file.name);
    ++count;
  }
  return count > 0 ? folder : fs::path();
}

RemoteFile FindBackup(CloudRun& run, const std::string& name) {
  std::vector<RemoteFile> files = ListFiles(run, run.Folders().backups, IsListed);
  if (name.empty() && !files.empty())
    return *std::ranges::max_element(files, {}, [](const RemoteFile& file) { return file.date.value_or(DateTime{}); });
  const auto found = std::ranges::find(files, name, &RemoteFile::name);
  if (found == files.end())
    throw Refusal{
        "Cloud Restore",
        name.empty() ? "No Cloud Backup on file." : fmt::format("{} is no backup of the Cloud account.", name), "NAME"};
  return *found;
}

Result<void> MayComeDown(const Session& session, const std::string& name) {
  if (auto allowed = RequireAct(session, Act::BackUp); !allowed) return allowed;
  if (auto ready = RequireCloud(session); !ready) return ready;
  return name.empty() ? Result<void>{} : RequirePlainName(name, "NAME");
}

// Two backups of one second are two.
std::string FreeName(CloudRun& run) {
  const std::vector<RemoteFile> there = run.ftp.List(run.Folders().backups);
  const std::string plain = NameOf(run.session, run.Settings());
  std::string name = plain;
  for (int number = 1; std::ranges::find(there, name, &RemoteFile::name) != there.end(); ++number)
    name = fmt::format("{}({}){}", fs::path(plain).stem().string(), number, fs::path(plain).extension().string());
  return name;
}

}  // namespace

Result<CloudBackupMade> BackUpToCloud(CloudDesk& desk, bool photos) {
  Session& session = desk.session;
  if (auto may = MayGoUp(session); !may) return std::unexpected(may.error());
  CloudRun run(desk, CloudTask::CloudBackup);
  CloudBackupMade made;
  made.outcome = run.Run([&] {
    Staged staged(session);
    run.Connect();
    run.EnsureTree();
    SweepParts(run, run.Folders().backups, run.ftp.List(run.Folders().backups));
    if (CountBackups(run) >= kMostCloudBackups) RefuseTooMany();
    made.name = FreeName(run);
    run.Say("Creating Backup File");
    const fs::path whole = staged.Place(made.name);
    CopyOpenFile(session, whole);
    const BackupParts parts = StageParts(run, staged, made.name, photos);
    SetProof proof = NewProof(session, made.name);
    proof.content = ProveContent(session, whole);
    made.sound = proof.content.Sound();
    for (const std::string& fault : proof.content.faults) run.Log(fmt::format("The Data File is not sound: {}", fault));
    SendBackup(run, whole, made.name, proof, parts);
    SendShare(run, staged, whole, parts.photos);
    made.onFile = CountBackups(run);
    std::string ending = fmt::format("Cloud Backup Complete\n{} Backups are now on file in the Cloud account", made.onFile);
    if (made.onFile >= kMostCloudBackups) ending += "\nUse Manage Cloud Backups to delete extras";
    if (!made.sound)
      ending += fmt::format("\nThe Data File has faults, and the backup has them too:{}\n{}",
                            FaultLines(proof.content.faults), WayOut(proof.content));
    CloudSettings settings = ReadCloudSettings(session);
    settings.LastBackup = session.clock.Now();
    settings.LastProven = made.sound ? made.name : settings.LastProven;
    WriteCloudSettings(session, settings);
    Note(run, [&] { KeepCloudSet(session, made.name, ProofText(proof)); });
    return ending;
  });
  if (made.outcome.refused) return std::unexpected(*made.outcome.refused);
  return made;
}

Result<CloudOutcome> ShareToCloud(CloudDesk& desk, bool photos) {
  if (auto may = MayGoUp(desk.session); !may) return std::unexpected(may.error());
  CloudRun run(desk, CloudTask::ShareUpload);
  return run.Run([&] {
    Staged staged(desk.session);
    run.Connect();
    run.EnsureTree();
    run.Say("Creating Backup File");
    const fs::path whole = staged.Place(NameOf(desk.session, run.Settings()));
    CopyOpenFile(desk.session, whole);
    std::optional<std::vector<StagedPhoto>> copies;
    if (photos) copies = StagePhotos(run, staged, staged.folders.uploadPhotosShare, {});
    SendShare(run, staged, whole, copies);
    return std::string("Share File uploaded to Cloud");
  });
}

Result<CloudBackupList> ListCloudBackups(CloudDesk& desk) {
  if (auto ready = RequireCloud(desk.session); !ready) return std::unexpected(ready.error());
  CloudRun run(desk, CloudTask::CloudManageBackupFileList);
  CloudBackupList list;
  list.outcome = run.Run([&] {
    run.Connect();
    run.Say("Retrieving");
    const std::vector<RemoteFile> files =
        ListFiles(run, run.Folders().backups, [](const std::string& name) { return IsPlainName(name); });
    for (const RemoteFile& file : files) {
      if (!IsListed(file.name)) continue;
      const bool proven = std::ranges::find(files, ProofName(file.name), &RemoteFile::name) != files.end();
      list.rows.push_back({file.name, file.size, file.date, proven});
    }
    std::ranges::sort(list.rows, std::ranges::greater{}, &CloudBackupRow::date);
    return fmt::format("{} Backups are now on file in the Cloud account", list.rows.size());
  });
  return list;
}

Result<CloudOutcome> DeleteCloudBackups(CloudDesk& desk, const std::vector<std::string>& names) {
  if (auto allowed = RequireAct(desk.session, Act::BackUp); !allowed) return std::unexpected(allowed.error());
  if (auto ready = RequireCloud(desk.session); !ready) return std::unexpected(ready.error());
  for (const std::string& name : names)
    if (!IsListed(name))
      return Refuse("Manage Cloud Backups", fmt::format("{} is no backup of the Cloud account.", name), "NAME");
  CloudRun run(desk, CloudTask::CloudManageBackupFileList);
  CloudOutcome outcome = run.Run([&] {
    run.Connect();
    for (const std::string& name : names) FindBackup(run, name);
    const std::vector<RemoteFile> support = EverythingIn(run, run.Folders().backupSupportFiles);
    const std::vector<RemoteFile> photos = EverythingIn(run, run.Folders().backupPhotos);
    for (const std::string& name : names) DeleteOne(run, name, support, photos);
    Note(run, [&] { ForgetCloudSets(desk.session, names); });
    return fmt::format("{} Backups are now on file in the Cloud account", CountBackups(run));
  });
  if (outcome.refused) return std::unexpected(*outcome.refused);
  return outcome;
}

Result<CloudBackupFetched> FetchCloudBackup(CloudDesk& desk, const std::string& name, bool photos) {
  if (auto may = MayComeDown(desk.session, name); !may) return std::unexpected(may.error());
  CloudRun run(desk, CloudTask::RestoreDataFile);
  const DataFolders folders(desk.session.DataFolder);
  CloudBackupFetched fetched;
  fetched.outcome = run.Run([&] {
    run.Connect();
    const RemoteFile file = FindBackup(run, name);
    EmptyRestoreFolder(run, file.name);
    run.Say("Retrieving Cloud Backup Data Files");
    const std::optional<SetProof> proof = FetchProof(run, run.Folders().backups, file.name);
    SetProof kept = proof.value_or(SetProof{});
    kept.files.clear();
    const auto told = proof ? ProofOf(proof->files, file.name) : std::nullopt;
    Download(run, run.Folders().backups, file, folders.downloadBackups / file.name, told);
    if (told) kept.files.push_back(*told);
    if (photos) {
      run.Say("Retrieving Cloud Backup Design Photos");
      MakeFolder(folders.downloadPhotos);
      fetched.photos = FetchParts(run, run.Folders().backupPhotos, PhotoPrefix(file.name), folders.downloadPhotos,
                                  kPhotoFolderOfSet, proof, kept);
    }
    fetched.supportFolder = FetchSupport(run, file.name, proof, kept);
    if (proof) ReplaceFile(folders.downloadBackups / kProofFile, ProofText(kept), Readers::Group);
    fetched.dataFile = RealPath(folders.downloadBackups / file.name);
    return std::string("Cloud Backup Files Retrieved");
  });
  if (fetched.outcome.refused) return std::unexpected(*fetched.outcome.refused);
  return fetched;
}

Result<CloudBackupFetched> FetchCloudSupportFiles(CloudDesk& desk, const std::string& name) {
  if (auto may = MayComeDown(desk.session, name); !may) return std::unexpected(may.error());
  CloudRun run(desk, CloudTask::RestoreSUVFiles);
  CloudBackupFetched fetched;
  fetched.outcome = run.Run([&] {
    run.Connect();
    const RemoteFile file = FindBackup(run, name);
    EmptyRestoreFolder(run, file.name);
    SetProof kept;
    const auto proof = FetchProof(run, run.Folders().backups, file.name);
    fetched.supportFolder = FetchSupport(run, file.name, proof, kept);
    if (fetched.supportFolder.empty())
      throw Refusal{"Cloud Restore", fmt::format("There are no Support Files with {}.", file.name), "NAME"};
    return std::string("Cloud Backup Files Retrieved");
  });
  if (fetched.outcome.refused) return std::unexpected(*fetched.outcome.refused);
  return fetched;
}

void NoteCloudRestore(const Session& session) {
  CloudSettings settings = ReadCloudSettings(session);
  settings.LastRestore = session.clock.Now();
  WriteCloudSettings(session, settings);
}

std::optional<Message> CloudBackupReminder(const Session& session) {
  if (!session.DataFileDB || session.ArchiveView || IsSharedDataFile(session, session.DataFileName))
    return std::nullopt;
  const CloudSettings settings = ReadCloudSettings(session);
  if (!settings.Configured()) return std::nullopt;
  const int days = ReadBackupDates(session.File()).DaysToRemindBackup;
  if (settings.LastBackup && settings.LastBackup->DayNumber() + days > session.clock.Today().DayNumber())
    return std::nullopt;
  const std::string last = settings.LastBackup
                               ? fmt::format("Last Cloud Backup was performed on: {}", settings.LastBackup->DateText())
                               : std::string("No Cloud Backup on file.");
  return Message{"Cloud - Share Data", last +
                                           "\n\nCreate a Cloud Backup on a routine basis.\n"
                                           "This provides other Cloud Users with your most recent Share Files."};
}

}  // namespace vellumark
