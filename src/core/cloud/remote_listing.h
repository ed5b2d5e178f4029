#pragma once

#include <string_view>
#include <vector>

#include "core/base/date.h"
#include "core/cloud/ftp_client.h"

namespace vellumark {

/// The entries of a folder as MLSD tells them, less the folder itself and the one above.
std::vector<RemoteFile> ReadMachineListing(std::string_view text);
/// As LIST tells them, in the form of Unix or of Windows. A line without a year is of the year before `now`.
std::vector<RemoteFile> ReadListing(std::string_view text, const DateTime& now);

}  // namespace vellumark
