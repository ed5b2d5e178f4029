#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/cloud/cloud_names.h"
#include "core/cloud/cloud_settings.h"
#include "core/cloud/ftp_client.h"
#include "core/session/session.h"

namespace vellumark {

/// What a task of the cloud works with. `line` hears each line of the log as it is added.
struct CloudDesk {
  Session& session;
  FtpClient& ftp;
  Progress& progress;
  std::function<void(const std::string&)> line = {};
};

enum class CloudTask {
  CloudBackup,
  ShareUpload,
  DB_ImportExport_Designs,
  DBImport_Formulas,
  CloudInvReport,
  CloudInvReport_SpecificColor,
  CloudUtilityReportViewer,
  CloudUtilityReport_DeleteFiles,
  CloudUtilityDataFileManager,
  CloudUtilitiesDataFileUpload,
  CloudUtilitiesDataFileUpload_SelectUsers,
  RestoreDataFile,
  RestoreSUVFiles,
  CloudManageBackupFileList,
  CloudManageReportFileList,
  CloudReportUploadForm,
  ImportSharedUsers,
};

/// How a task is called in the window, and the end of the name of its log.
struct CloudTaskRow {
  CloudTask task;
  std::string_view name;
  std::string_view title;
  std::string_view subtitle;
  std::string_view log;
};
const CloudTaskRow& RowOf(CloudTask task);

/// How a task ended.
struct CloudOutcome {
  bool done = false;
  bool cancelled = false;
  std::optional<Refusal> refused;   ///< a rule that stopped it once it was connected
  std::vector<std::string> ending;  ///< the last lines of the window: the success, or what failed and what to do
  std::vector<std::string> lines;   ///< the log
  std::filesystem::path log;        ///< where it was written; empty when it could not be
  std::string Text() const;
};

/// One task: its connection, its log, its ending.
class CloudRun {
 public:
  CloudRun(CloudDesk& desk, CloudTask task);

  /// Does the work, which throws an FtpFailure, a Failure or a Refusal where it cannot go on; writes the log and sends it up, with a notice for the
  /// administrator of a task that failed. A connection that is lost is not tried again.
  CloudOutcome Run(const std::function<std::string()>& work);

  /// What is being done: shown, and a line of the log.
  void Say(const std::string& text);
  void Log(std::string line);
  /// With the account's own login or the administrator's. The settings are those of the start of the task.
  void Connect(bool asAdmin = false);
  /// The folder of the account, made with the whole tree where it is missing; the folder above has to be there.
  void EnsureTree();
  /// A folder that has to be there. Throws after "Unable to connect to remote directory" was logged.
  void RequireFolder(const std::string& folder);
  void EnsureFolder(const std::string& folder);
  /// Does one step; when it fails, `what` is logged with the reason and the failure goes on.
  void Step(const std::string& what, const std::function<void()>& step);

  Session& session;
  FtpClient& ftp;
  const CloudSettings& Settings() const { return settings_; }
  const RemoteFolders& Folders() const { return folders_; }
  std::string LogName() const;

 private:
  void TellCertificate();
  void WriteLog();
  void SendLog();
  void SendNotice();
  void Fail(const std::string& line);

  CloudDesk& desk_;
  CloudTask task_;
  CloudSettings settings_;
  RemoteFolders folders_;
  CloudOutcome outcome_;
  std::set<std::string> known_;
  bool connected_ = false;  ///< without it nothing of the log goes up
};

/// Refused before anything is done: no settings, or an account without a number.
Result<void> RequireCloud(const Session& session);

/// Writes the text of a log of this account as it stands into a folder of the user's, and tells. `where` is "the Desktop" or "Documents".
void ExportCloudLog(Session& session, const CloudOutcome& outcome, const std::filesystem::path& folder,
                    const std::string& where);

}  // namespace vellumark
