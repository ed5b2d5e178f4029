#pragma once

#include <string>
#include <vector>

#include "core/cloud/cloud_run.h"
#include "core/cloud/transfer.h"
#include "core/reports/report_settings.h"

namespace vellumark {

/// The text of a report goes up to "/Reports/", in the place of one of the same name. `name` has to be plain and gets ".txt".
Result<CloudOutcome> UploadReport(CloudDesk& desk, const std::string& name, const std::string& text);
/// A report's default name: its title, the account, ".txt".
std::string CloudReportName(const Session& session, const std::string& title);
/// Refused: reports go up as text alone.
Result<void> CheckCloudFormat(ExportFormat format);
/// Whether the command of a report shows: an account is set up.
bool CloudReady(const Session& session);

struct CloudFileList {
  CloudOutcome outcome;
  std::vector<RemoteFile> files;
};
/// The reports of the account at the host.
Result<CloudFileList> ListCloudReports(CloudDesk& desk);
Result<CloudOutcome> DeleteCloudReports(CloudDesk& desk, const std::vector<std::string>& names);

}  // namespace vellumark
