#include "core/cloud/cloud_admin.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

#include "core/backup/backup_set.h"
#include "core/base/counted.h"
#include "core/base/files.h"
#include "core/base/text.h"
#include "core/cloud/share_file.h"
#include "core/cloud/transfer.h"
#include "core/session/acts.h"
#include "core/settings/support_files.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

Result<void> MayAdminister(const Session& session) {
  if (auto allowed = RequireAct(session, Act::BackUp); !allowed) return allowed;
  if (auto ready = RequireCloud(session); !ready) return ready;
  return RequireCloudAdmin(ReadCloudSettings(session));
}

RemoteFolders FoldersOf(const CloudRun& run, const std::string& account) {
  return {run.Settings().RemoteDirectory, account};
}

std::string FacilityOf(const Session& session, const std::string& account) {
  for (const SharedAccount& shared : ReadSharedAccounts(session))
    if (EqualNoCase(shared.AcctNum, account)) return shared.Facility;
  return {};
}

// One account after the other. What fails there is told of it and does not hold up the others, unless the line is gone.
void ForEach(CloudRun& run, std::vector<AdminRow>& rows, const std::function<void(AdminRow&)>& work) {
  for (AdminRow& row : rows) {
    try {
      work(row);
      row.done = true;
    } catch (const FtpFailure& failure) {
      using enum FtpFailure::Kind;
      row.why = failure.cause;
      if (failure.kind == Dropped || failure.kind == Stalled || failure.kind == Cancelled) throw;
    }
  }
  if (std::ranges::none_of(rows, &AdminRow::done))
    throw FtpFailure(FtpFailure::Kind::Other, run.Settings().AcctNum, rows.empty() ? "no account" : rows.front().why);
}

void FetchReportsOf(CloudRun& run, AdminRow& row) {
  run.Say(fmt::format("Downloading Reports From {}", row.AcctNum));
  const std::string folder = FoldersOf(run, row.AcctNum).reports;
  const fs::path target = DataFolders(run.session.DataFolder).downloadAdminReports / row.AcctNum;
  for (const RemoteFile& file : ListFiles(run, folder, IsCloudReport)) {
    Download(run, folder, file, target / file.name);
    ++row.files;
  }
}

Result<std::vector<AdminRow>> RowsOf(const Session& session, const std::vector<std::string>& accounts) {
  std::vector<AdminRow> rows;
  for (const std::string& account : accounts) {
    if (auto plain = RequirePlainName(account, "ACCOUNT"); !plain) return std::unexpected(plain.error());
    if (std::ranges::find(rows, account, &AdminRow::AcctNum) == rows.end())
      rows.push_back({.AcctNum = account, .Facility = FacilityOf(session, account)});
  }
  return rows;
}

// Those of the share list.
Result<std::vector<AdminRow>> RowsOfAll(const Session& session) {
  const auto accounts = RequireSharedAccounts(session);
  if (!accounts) return std::unexpected(accounts.error());
  std::vector<AdminRow> rows;
  for (const SharedAccount& account : *accounts)
    rows.push_back({.AcctNum = account.AcctNum, .Facility = account.Facility});
  return rows;
}

// "3 Reports deleted", and of how many accounts that failed.
std::string WithFailed(const std::string& ending, const std::vector<AdminRow>& rows) {
  const auto failed = std::ranges::count(rows, false, &AdminRow::done);
  return failed == 0 ? ending : fmt::format("{} ({} of {} failed)", ending, failed, Counted(rows.size(), "account"));
}

RemoteFile LatestBackup(CloudRun& run, const std::string& folder, const std::string& account) {
  std::vector<RemoteFile> files;
  run.Step("Unable to retreive file count on the Remote Backup Dir.", [&] {
    files = ListFiles(run, folder, [](const std::string& name) { return IsCloudBackup(name); });
    if (files.empty())
      throw FtpFailure(FtpFailure::Kind::Missing, folder, fmt::format("account {} has no backup", account));
  });
  const auto newest =
      std::ranges::max_element(files, {}, [](const RemoteFile& file) { return file.date.value_or(DateTime{}); });
  if (!newest->date) run.Log("Unable to retreive the file date");
  return *newest;
}

void FetchPhotosOf(CloudRun& run, AdminRow& row, const RemoteFolders& folders, const std::string& backup,
                   const fs::path& target) {
  run.Say("Acquiring Design Photos");
  const auto photos = ListFiles(run, folders.backupPhotos, [&](const std::string& name) {
    return name.starts_with(PhotoPrefix(backup)) && IsPhoto(name.substr(PhotoPrefix(backup).size()));
  });
  for (const RemoteFile& photo : photos) {
    try {
      Download(run, folders.backupPhotos, photo, target / kPhotoFolderOfSet / photo.name.substr(PhotoPrefix(backup).size()));
      ++row.photos;
    } catch (const FtpFailure& failure) {
      using enum FtpFailure::Kind;
      if (failure.kind == Dropped || failure.kind == Stalled || failure.kind == Cancelled) throw;
    }
  }
  if (row.photos < static_cast<int>(photos.size()))
    run.Log(fmt::format("Only downloaded {} of {} files for Account {}", row.photos, photos.size(), row.AcctNum));
}

// The file as it can be sent: the open one through the engine, any other as it lies there.
fs::path FileToSend(CloudRun& run, const fs::path& file, const std::string& name) {
  std::error_code ignored;
  if (!run.session.DataFileDB || !fs::equivalent(file, run.session.DataFileName, ignored)) return file;
  const fs::path copy = DataFolders(run.session.DataFolder).cloudUploads / name;
  CopyOpenFile(run.session, copy);
  return copy;
}

void SendTo(CloudRun& run, AdminRow& row, const fs::path& file, const std::string& name, bool photos,
            const fs::path& photoFolder) {
  run.Say("Uploading an Admin Data File to User's Backup Folder");
  const RemoteFolders folders = FoldersOf(run, row.AcctNum);
  run.RequireFolder(folders.backups);
  FileProof sent;
  const std::string part = BringUp(run, file, folders.backups, name, &sent);
  if (photos) {
    run.EnsureFolder(folders.backupPhotos);
    for (const fs::path& photo : PhotosIn(photoFolder)) {
      Upload(run, photo, folders.backupPhotos, PhotoPrefix(name) + photo.filename().string(), "Unable to delete ");
      ++row.photos;
    }
  }
  Place(run, folders.backups, part, name, "Unable to delete ");
  row.files = 1;
  run.Log(fmt::format("{} uploaded to: {} ({} bytes)", name, folders.backups, sent.bytes));
}

}  // namespace

Result<AdminRun> FetchUserReports(CloudDesk& desk) {
  if (auto may = MayAdminister(desk.session); !may) return std::unexpected(may.error());
  auto rows = RowsOfAll(desk.session);
  if (!rows) return std::unexpected(rows.error());
  CloudRun run(desk, CloudTask::CloudUtilityReportViewer);
  AdminRun done;
  done.rows = *std::move(rows);
  done.outcome = run.Run([&] {
    run.Connect(true);
    ForEach(run, done.rows, [&](AdminRow& row) { FetchReportsOf(run, row); });
    return WithFailed("User Reports Acquired.", done.rows);
  });
  return done;
}

Result<AdminRun> ListUserReports(CloudDesk& desk, const std::string& account) {
  if (auto may = MayAdminister(desk.session); !may) return std::unexpected(may.error());
  auto rows = account.empty() ? RowsOfAll(desk.session) : RowsOf(desk.session, {account});
  if (!rows) return std::unexpected(rows.error());
  CloudRun run(desk, CloudTask::CloudUtilityReport_DeleteFiles);
  AdminRun done;
  done.rows = *std::move(rows);
  done.outcome = run.Run([&] {
    run.Connect(true);
    ForEach(run, done.rows, [&](AdminRow& row) {
      run.Say("Retrieving " + row.AcctNum);
      for (const RemoteFile& file : ListFiles(run, FoldersOf(run, row.AcctNum).reports, IsCloudReport)) {
        done.reports.push_back({row.AcctNum, file});
        ++row.files;
      }
    });
    return WithFailed(fmt::format("{} Reports are on file in the User Accounts", done.reports.size()), done.rows);
  });
  return done;
}

Result<AdminRun> DeleteUserReports(CloudDesk& desk, const std::vector<AccountReport>& reports) {
  if (auto may = MayAdminister(desk.session); !may) return std::unexpected(may.error());
  std::vector<std::string> accounts;
  for (const AccountReport& report : reports) {
    if (!IsCloudReport(report.file.name))
      return Refuse("Cloud Reports", fmt::format("{} is no report.", report.file.name), "NAME");
    accounts.push_back(report.AcctNum);
  }
  auto rows = RowsOf(desk.session, accounts);
  if (!rows) return std::unexpected(rows.error());
  CloudRun run(desk, CloudTask::CloudUtilityReport_DeleteFiles);
  AdminRun done;
  done.rows = *std::move(rows);
  done.outcome = run.Run([&] {
    int deleted = 0;
    run.Connect(true);
    ForEach(run, done.rows, [&](AdminRow& row) {
      run.Say("Deleting Reports of " + row.AcctNum);
      const std::string folder = FoldersOf(run, row.AcctNum).reports;
      run.RequireFolder(folder);
      for (const AccountReport& report : reports) {
        if (report.AcctNum != row.AcctNum) continue;
        const std::string& name = report.file.name;
        run.Step("Unable to delete " + name, [&] { run.ftp.Delete(RemotePath(folder, name)); });
        run.Log(fmt::format("Deleted: {} of {}", name, row.AcctNum));
        ++row.files;
        ++deleted;
      }
    });
    return WithFailed(fmt::format("{} Reports deleted", deleted), done.rows);
  });
  return done;
}

std::vector<UserReport> UserReportsHere(const Session& session) {
  std::vector<UserReport> reports;
  std::error_code error;
  const fs::path top = DataFolders(session.DataFolder).downloadAdminReports;
  for (fs::directory_iterator account(top, error), end; !error && account != end; account.increment(error)) {
    std::error_code inner;
    for (fs::directory_iterator file(account->path(), inner); !inner && file != end; file.increment(inner))
      if (EqualNoCase(file->path().extension().string(), ".txt"))
        reports.push_back({account->path().filename().string(), file->path()});
  }
  std::ranges::sort(reports, {}, &UserReport::file);
  return reports;
}

std::vector<std::vector<std::string>> ReadUserReport(const fs::path& file) {
  std::vector<std::vector<std::string>> rows;
  const std::string text = DecodeText(ReadFileBytes(file));
  for (std::string_view line : Split(text, '\n')) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    std::vector<std::string> cells;
    for (const std::string_view cell : Split(line, '\t')) cells.emplace_back(cell);
    rows.push_back(std::move(cells));
  }
  while (!rows.empty() && rows.back().size() == 1 && rows.back().front().empty()) rows.pop_back();
  return rows;
}

Result<AdminRun> FetchUserDataFile(CloudDesk& desk, const std::string& account, bool photos) {
  if (auto may = MayAdminister(desk.session); !may) return std::unexpected(may.error());
  auto rows = RowsOf(desk.session, {account});
  if (!rows) return std::unexpected(rows.error());
  CloudRun run(desk, CloudTask::CloudUtilityDataFileManager);
  AdminRun done;
  done.rows = *std::move(rows);
  done.outcome = run.Run([&] {
    run.Connect(true);
    ForEach(run, done.rows, [&](AdminRow& row) {
      run.Say("Acquiring Data File");
      const RemoteFolders folders = FoldersOf(run, account);
      run.Step("Unable to connect to find file: " + account, [&] { run.RequireFolder(folders.backups); });
      const RemoteFile file = LatestBackup(run, folders.backups, account);
      const fs::path target = DataFolders(desk.session.DataFolder).downloadAdminDataFiles / account;
      const auto proof = FetchProof(run, folders.backups, file.name);
      run.Step("Unable to retreive the data file", [&] {
        Download(run, folders.backups, file, target / file.name, proof ? ProofOf(proof->files, file.name) : std::nullopt);
      });
      row.files = 1;
      if (photos) FetchPhotosOf(run, row, folders, file.name, target);
      done.dataFile = target / file.name;
    });
    return std::string("User Data Files Acquired");
  });
  return done;
}

Result<AdminRun> SendDataFile(CloudDesk& desk, const fs::path& file, const std::vector<std::string>& accounts,
                              bool photos) {
  if (auto may = MayAdminister(desk.session); !may) return std::unexpected(may.error());
  if (accounts.empty()) return Refuse("Select Users", "Select a User account.", "ACCOUNT");
  auto rows = RowsOf(desk.session, accounts);
  if (!rows) return std::unexpected(rows.error());
  std::error_code ignored;
  if (!fs::is_regular_file(file, ignored) || !Database::IsDatabaseFile(file))
    return Refuse("Data File", fmt::format("{} is no Data File.", file.string()), "FILE");
  const bool one = accounts.size() == 1;
  CloudRun run(desk, one ? CloudTask::CloudUtilitiesDataFileUpload : CloudTask::CloudUtilitiesDataFileUpload_SelectUsers);
  AdminRun done;
  done.rows = *std::move(rows);
  done.outcome = run.Run([&] {
    const std::string name = fmt::format("Admin_VKDataFile_{}.vkd", CloudStamp(desk.session.clock.Now()));
    run.Connect(true);
    const fs::path sent = FileToSend(run, file, name);
    ForEach(run, done.rows, [&](AdminRow& row) {
      SendTo(run, row, sent, name, photos, file.parent_path() / kPhotoFolderOfSet);
    });
    if (sent != file) fs::remove(sent, ignored);
    return one ? std::string("Data File uploaded to User's Cloud Backup folder.")
               : WithFailed(fmt::format("{} was upload to selected User(s) Cloud Backup folder", name), done.rows);
  });
  return done;
}

}  // namespace vellumark
