#include "core/cloud/cloud_run.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

#include "core/base/files.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/cloud/transfer.h"
#include "core/settings/support_files.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

using enum CloudTask;

constexpr std::array kTasks{
    CloudTaskRow{CloudBackup, "CloudBackup", "Cloud - Backup", "Backup to Cloud", "_Backup_Log.txt"},
    CloudTaskRow{ShareUpload, "ShareUpload", "Cloud - Share", "Share Data File to Cloud", "_Share_Log.txt"},
    CloudTaskRow{CloudTask::DB_ImportExport_Designs, "DB_ImportExport_Designs", "Cloud - Job Designs",
                 "Job Designs from Shared Users", "_SharedUsers_JobDesigns_Log.txt"},
    CloudTaskRow{CloudTask::DBImport_Formulas, "DBImport_Formulas", "Cloud - Formulas", "Formulas from Shared Users",
                 "_SharedUsers_Formulas_Log.txt"},
    CloudTaskRow{CloudInvReport, "CloudInvReport", "Cloud - Inventory", "Inventory from Shared Users",
                 "_SharedUsers_Inventory_Log.txt"},
    CloudTaskRow{CloudInvReport_SpecificColor, "CloudInvReport_SpecificColor", "Cloud - Inventory",
                 "Inventory from Shared Users", "_SharedUsers_Inventory_SpecificColor_Log.txt"},
    CloudTaskRow{CloudUtilityReportViewer, "CloudUtilityReportViewer", "Cloud - Reports Download",
                 "Cloud Reports from User Accounts", "_Admin_CloudReportsDownload_Log.txt"},
    CloudTaskRow{CloudUtilityReport_DeleteFiles, "CloudUtilityReport_DeleteFiles", "Cloud - User Reports",
                 "Reports in User Accounts", "_Admin_CloudReportsDelete_Log.txt"},
    CloudTaskRow{CloudUtilityDataFileManager, "CloudUtilityDataFileManager", "Cloud - User Data File Download",
                 "Download Data Files from User Accounts", "_Admin_CloudUserDataFileDownload_Log.txt"},
    CloudTaskRow{CloudUtilitiesDataFileUpload, "CloudUtilitiesDataFileUpload", "Cloud - User Data File Upload",
                 "Upload File to User's Backup Folder", "_Admin_CloudUserDataFileUpload_Log.txt"},
    CloudTaskRow{CloudUtilitiesDataFileUpload_SelectUsers, "CloudUtilitiesDataFileUpload_SelectUsers",
                 "Cloud - Data File Upload - Select Users", "Upload File to Selected User Backup Folder",
                 "_Admin_CloudSelectedUserDataFileUpload_Log.txt"},
    CloudTaskRow{CloudTask::RestoreDataFile, "RestoreDataFile", "Cloud Restore - Data Files",
                 "Restore Backup Data Files from Cloud", "_Restore_DataFile_Log.txt"},
    CloudTaskRow{RestoreSUVFiles, "RestoreSUVFiles", "Cloud Restore - Support Files",
                 "Restore Backup Support Files from Cloud", "_Restore_SUVFiles_Log.txt"},
    CloudTaskRow{CloudManageBackupFileList, "CloudManageBackupFileList", "Cloud - Manage Backups",
                 "Backups in the Cloud account", "_ManageBackups_Log.txt"},
    CloudTaskRow{CloudManageReportFileList, "CloudManageReportFileList", "Cloud - Manage Reports",
                 "Reports in the Cloud account", "_ManageReports_Log.txt"},
    CloudTaskRow{CloudReportUploadForm, "CloudReportUploadForm", "Cloud - Report Upload", "Report to Cloud",
                 "_ReportUpload_Log.txt"},
    CloudTaskRow{ImportSharedUsers, "ImportSharedUsers", "Shared Users", "Share list from Cloud",
                 "_ImportSharedUsers_Log.txt"},
};

std::string_view YesNo(bool value) {
  return value ? "True" : "False";
}

}  // namespace

const CloudTaskRow& RowOf(CloudTask task) {
  return *std::ranges::find(kTasks, task, &CloudTaskRow::task);
}

std::string CloudOutcome::Text() const {
  return fmt::format("{}", fmt::join(ending, "\n"));
}

Result<void> RequireCloud(const Session& session) {
  const CloudSettings settings = ReadCloudSettings(session);
  if (settings.Configured() && IsPlainName(settings.AcctNum)) return {};
  return Refuse("Cloud", "Cloud component not ready for use\n\nUse Cloud Settings to enter the account.");
}

CloudRun::CloudRun(CloudDesk& desk, CloudTask task)
    : session(desk.session),
      ftp(desk.ftp),
      desk_(desk),
      task_(task),
      settings_(ReadCloudSettings(desk.session)),
      folders_(settings_.RemoteDirectory, settings_.AcctNum) {
  DataFolders(session.DataFolder).MakeCloudFolders();
}

CloudOutcome CloudRun::Run(const std::function<std::string()>& work) {
  const ProgressRun shown(desk_.progress, RowOf(task_).subtitle);
  try {
    const std::string ending = work();
    outcome_.done = true;
    for (const std::string_view line : Split(ending, '\n')) outcome_.ending.emplace_back(line);
    for (const std::string& line : outcome_.ending) Log(line);
  } catch (const FtpFailure& failure) {
    outcome_.cancelled = failure.kind == FtpFailure::Kind::Cancelled;
    using enum FtpFailure::Kind;
    if (failure.kind == Connect || failure.kind == Certificate || failure.kind == Dropped || failure.kind == Stalled ||
        failure.kind == Cancelled)
      connected_ = false;
    Fail(fmt::format("{}: {}", failure.subject, failure.cause));
  } catch (const Failure& failure) {
    Fail(fmt::format("{}: {}", failure.subject, failure.cause));
  } catch (const Refusal& refusal) {
    outcome_.refused = refusal;
    for (const std::string_view line : Split(refusal.text, '\n')) outcome_.ending.emplace_back(line);
    for (const std::string& line : outcome_.ending) Log(line);
  }
  WriteLog();
  if (connected_) {
    SendLog();
    if (!outcome_.done && !outcome_.cancelled && !outcome_.refused) SendNotice();
  }
  // A line that is broken is put down without a word; the host's leave is worth a line.
  try {
    if (connected_) ftp.Disconnect();
  } catch (const FtpFailure& failure) {
    const bool report = task_ == CloudTask::CloudReportUploadForm;
    Log(fmt::format("{}: {}", report ? "Unable to log out of server" : "Unable to disconnect from ftp server", failure.cause));
  }
  WriteLog();
  return outcome_;
}

// The lines of the steps tell what failed; the cause comes with them unless one of them has told it.
void CloudRun::Fail(const std::string& line) {
  if (outcome_.lines.empty() || outcome_.lines.back().find(line) == std::string::npos) Log(line);
  if (outcome_.cancelled) {
    outcome_.ending = {"Cancelled"};
    Log("Cancelled");
    return;
  }
  outcome_.ending = {line, "An error occured during Cloud procedures",
                     "Retry task or Test Cloud Acct Settings or check internet service",
                     "Contact Orravane if unable to resolve and complete the task"};
  for (std::size_t i = 1; i < outcome_.ending.size(); ++i) Log(outcome_.ending[i]);
}

void CloudRun::Say(const std::string& text) {
  desk_.progress.Begin(text);
  Log(text);
}

void CloudRun::Log(std::string line) {
  std::ranges::replace(line, '\n', ' ');
  outcome_.lines.push_back(fmt::format("{}  {}", session.clock.Now().ToText(), line));
  if (desk_.line) desk_.line(outcome_.lines.back());
}

void CloudRun::Connect(bool asAdmin) {
  Say("Connecting to Cloud");
  const FtpHost host = HostOf(session, settings_, asAdmin);
  try {
    ftp.Connect(host, desk_.progress);
  } catch (const FtpFailure& failure) {
    if (failure.kind == FtpFailure::Kind::Certificate) TellCertificate();
    Log(fmt::format("Unable to connect to {}: {}", host.host, ReasonText(failure.reason)));
    throw FtpFailure(failure.kind, fmt::format("Unable to connect to {}", host.host),
                     failure.kind == FtpFailure::Kind::Certificate
                         ? failure.cause
                         : std::string(ReasonText(failure.reason)),
                     failure.reason);
  }
  connected_ = true;
  if (!ftp.ControlChannelCleared()) Log("Unable to invoke the use of the ftp.ClearControlChannel command.");
}

void CloudRun::TellCertificate() {
  const auto& shown = ftp.Certificate();
  if (!shown) return;
  Log(fmt::format("SSL Certification Test Failed - Cert.SubjectCN: {} - Cert.Expired: {} - Cert.Revoked: {} - "
                  "Cert.SelfSigned: {}",
                  shown->SubjectCN, YesNo(shown->Expired), YesNo(shown->Revoked), YesNo(shown->SelfSigned)));
}

void CloudRun::Step(const std::string& what, const std::function<void()>& step) {
  try {
    step();
  } catch (const FtpFailure& failure) {
    if (failure.kind != FtpFailure::Kind::Cancelled) Log(fmt::format("{}: {}", what, failure.cause));
    throw FtpFailure(failure.kind, what, failure.cause, failure.reason);
  } catch (const Failure& failure) {
    Log(fmt::format("{}: {}: {}", what, failure.subject, failure.cause));
    throw;
  }
}

void CloudRun::RequireFolder(const std::string& folder) {
  if (known_.contains(folder)) return;
  Step("Unable to connect to remote directory", [&] {
    if (!ftp.FolderExists(folder))
      throw FtpFailure(FtpFailure::Kind::Missing, folder, fmt::format("{} is not there", folder));
  });
  known_.insert(folder);
}

void CloudRun::EnsureFolder(const std::string& folder) {
  if (known_.contains(folder)) return;
  Step("Unable to connect to remote directory", [&] {
    if (!ftp.FolderExists(folder)) ftp.MakeFolder(folder);
  });
  known_.insert(folder);
}

void CloudRun::EnsureTree() {
  if (const std::size_t slash = folders_.root.rfind('/'); slash != std::string::npos && slash > 0)
    RequireFolder(folders_.root.substr(0, slash));
  for (const std::string* folder :
       {&folders_.root, &folders_.backups, &folders_.backupPhotos, &folders_.backupSupportFiles,
        &folders_.shareDataFile, &folders_.sharePhotos, &folders_.shareUserList, &folders_.reports, &folders_.logFiles})
    EnsureFolder(*folder);
}

std::string CloudRun::LogName() const {
  return settings_.AcctNum + std::string(RowOf(task_).log);
}

void CloudRun::WriteLog() {
  const fs::path file = DataFolders(session.DataFolder).cloudLogFiles / (settings_.AcctNum.empty() ? LogName().substr(1) : LogName());
  try {
    ReplaceFile(file, fmt::format("{}\r\n", fmt::join(outcome_.lines, "\r\n")), Readers::Group);
    outcome_.log = file;
  } catch (const Failure& failure) {
    // What became of the task is worth more than its log.
    outcome_.log.clear();
    Log(fmt::format("{}: {}", failure.subject, failure.cause));
  }
}

void CloudRun::SendLog() {
  Say("Uploading Log File to Cloud");
  WriteLog();
  if (outcome_.log.empty()) return Log(fmt::format("Local Cloud Log file: {} not found.", LogName()));
  try {
    // Of a shop whose first task is not a backup nothing is there yet.
    if (!known_.contains(folders_.logFiles) && !ftp.FolderExists(folders_.logFiles)) EnsureTree();
    UploadBytes(*this, ReadFileBytes(outcome_.log), folders_.logFiles, LogName(), "Unable to delete remote file ");
    Log(fmt::format("Local Cloud Log file upload: {}", LogName()));
  } catch (const Failure& failure) {
    Log(fmt::format("Unable to upload {}: {}", LogName(), failure.cause));
  }
}

void CloudRun::SendNotice() {
  const std::string text = fmt::format(
      "VK Cloud user encountered and error while using the following Cloud feature.\r\n{}\r\nAccount: {} {}\r\n"
      "Log file: {}\r\nOpen the user's specified log file to confirm detials of the error.\r\n",
      RowOf(task_).title, settings_.AcctNum, settings_.Facility, LogName());
  try {
    EnsureFolder(folders_.notices);
    UploadBytes(*this, text, folders_.notices,
                fmt::format("{}_{}_{}.txt", settings_.AcctNum, RowOf(task_).name, CloudStamp(session.clock.Now())),
                "Unable to delete remote file ");
  } catch (const Failure& failure) {
    Log(fmt::format("Unable to upload the notice: {}", failure.cause));
  }
}

void ExportCloudLog(Session& session, const CloudOutcome& outcome, const fs::path& folder, const std::string& where) {
  ReplaceFile(folder / outcome.log.filename(), ReadFileBytes(outcome.log));
  session.prompt.Tell("Log File", fmt::format("A log file has been exported to {}.", where));
}

}  // namespace vellumark
