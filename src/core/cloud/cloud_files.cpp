#include "core/cloud/cloud_files.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/files.h"
#include "core/base/text.h"
#include "core/session/acts.h"
#include "core/settings/support_files.h"

namespace vellumark {

bool CloudReady(const Session& session) {
  return RequireCloud(session).has_value();
}

Result<void> CheckCloudFormat(ExportFormat format) {
  if (format == ExportFormat::Text) return {};
  return Refuse("Cloud File Format",
                "Change File Format in Export before uploading to Cloud\n\nCloud files must be text (.txt) format");
}

std::string CloudReportName(const Session& session, const std::string& title) {
  std::string name = Trim(title);
  std::ranges::replace(name, '/', '-');
  std::ranges::replace(name, '\\', '-');
  return fmt::format("{} {}.txt", name, ReadCloudSettings(session).AcctNum);
}

Result<CloudOutcome> UploadReport(CloudDesk& desk, const std::string& given, const std::string& text) {
  if (auto ready = RequireCloud(desk.session); !ready) return std::unexpected(ready.error());
  const std::string name = IsCloudReport(given) ? given : given + ".txt";
  if (auto plain = RequirePlainName(name, "NAME"); !plain) return std::unexpected(plain.error());
  CloudRun run(desk, CloudTask::CloudReportUploadForm);
  const std::filesystem::path here = DataFolders(desk.session.DataFolder).cloudUploads / name;
  ReplaceFile(here, text, Readers::Group);
  CloudOutcome outcome = run.Run([&] {
    try {
      run.Connect();
    } catch (const FtpFailure&) {
      run.Log(fmt::format("Unable to connect to upload {}", name));
      throw;
    }
    run.EnsureTree();
    run.Say("Uploading Report to Cloud");
    Upload(run, here, run.Folders().reports, name, "Unable to delete ");
    return std::string("Cloud Report Upload Complete");
  });
  std::error_code error;
  std::filesystem::remove(here, error);
  if (!outcome.done && !outcome.cancelled)
    outcome.ending = {"Unable to upload report to the Cloud", outcome.ending.front(),
                      "An error occured during Cloud procedures",
                      "Check internet service, test Cloud Acct Settings and retry",
                      "Contact Orravane if unable to resolve and complete the task"};
  return outcome;
}

Result<CloudFileList> ListCloudReports(CloudDesk& desk) {
  if (auto ready = RequireCloud(desk.session); !ready) return std::unexpected(ready.error());
  CloudRun run(desk, CloudTask::CloudManageReportFileList);
  CloudFileList list;
  list.outcome = run.Run([&] {
    run.Connect();
    run.Say("Retrieving");
    list.files = ListFiles(run, run.Folders().reports, IsCloudReport);
    return fmt::format("{} Reports are on file in the Cloud account", list.files.size());
  });
  return list;
}

Result<CloudOutcome> DeleteCloudReports(CloudDesk& desk, const std::vector<std::string>& names) {
  if (auto allowed = RequireAct(desk.session, Act::BackUp); !allowed) return std::unexpected(allowed.error());
  if (auto ready = RequireCloud(desk.session); !ready) return std::unexpected(ready.error());
  for (const std::string& name : names)
    if (auto plain = RequirePlainName(name, "NAME"); !plain) return std::unexpected(plain.error());
  CloudRun run(desk, CloudTask::CloudManageReportFileList);
  return run.Run([&] {
    run.Connect();
    run.RequireFolder(run.Folders().reports);
    for (const std::string& name : names) {
      run.Step("Unable to delete " + name, [&] { run.ftp.Delete(RemotePath(run.Folders().reports, name)); });
      run.Log("Deleted: " + name);
    }
    return fmt::format("{} Reports deleted", names.size());
  });
}

}  // namespace vellumark
