#pragma once

#include <filesystem>
#include <string_view>

#include "core/session/session.h"

namespace vellumark {

/// Where in `folder` is kept what is about to be replaced: "Before Restore 03_10_2026__09_05_00", with "(2)" and so on
/// behind it when that is taken. Nothing is made.
std::filesystem::path FolderToKeepIn(const Session& session, const std::filesystem::path& folder,
                                     std::string_view what);

}  // namespace vellumark
