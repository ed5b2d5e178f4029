#pragma once

#include <string>
#include <vector>

#include "core/cloud/cloud_run.h"

namespace vellumark {

/// What a try of the cloud settings found: four lines, and the certificate that the host showed.
struct ConnectionTest {
  bool host = false;
  bool certificate = false;
  bool login = false;
  bool folder = false;
  std::string hostLine;
  std::string certificateLine;
  std::string loginLine;
  std::string folderLine;
  std::vector<std::string> certificateFields;  ///< "SubjectDN: …"
  std::vector<std::string> Lines() const;
  bool Passed() const { return host && login && folder; }
};

/// Tries the settings that are given, stored or not. The result is written into "TestUserSettingsLog_VKCloud.txt" of the
/// folder of logs.
ConnectionTest TestCloudSettings(CloudDesk& desk, const CloudSettings& settings);
std::filesystem::path ConnectionTestLog(const Session& session);
/// "The Cloud log file has been exported" "to the desktop."
void ExportConnectionTest(Session& session, const std::filesystem::path& folder);

}  // namespace vellumark
