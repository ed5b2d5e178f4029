#pragma once

#include <filesystem>

#include "core/cloud/shared_accounts.h"

namespace vellumark {

/// The Designs of another shop's share as a file of Designs, with the photos that came: made of what was fetched last, in
/// a folder of its own beside that. Refused when nothing was fetched or there are none.
Result<std::filesystem::path> SharedDesignFile(Session& session, const ShareRow& share);

}  // namespace vellumark
