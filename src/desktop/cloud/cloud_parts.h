#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "core/cloud/ftp_client.h"
#include "desktop/datafile/file_choice.h"

namespace vellumark::desktop {

/// Where a log is put for the operator to find, and how that place is called: "the Desktop" or "Documents".
struct LogPlace {
  std::filesystem::path folder;
  std::string name;
};
/// The desktop of the user, or the documents where there is none.
LogPlace OwnLogPlace();

/// The line of this machine.
std::unique_ptr<FtpClient> OwnLine(const Clock& clock);

/// What the windows of the cloud ask of the machine.
struct CloudParts {
  std::function<std::unique_ptr<FtpClient>(const Clock& clock)> connect = OwnLine;  ///< a line to a host of files
  FileChooser choose = ChooseFile;
  std::function<LogPlace()> logPlace = OwnLogPlace;
};

}  // namespace vellumark::desktop
