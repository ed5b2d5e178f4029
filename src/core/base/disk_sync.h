#pragma once

#include <filesystem>
#include <span>
#include <system_error>

namespace vellumark::platform {

/// Files of `folder` that were written without a sync last through a power cut from now on: all at once, where the
/// system can do that.
std::error_code SyncFiles(const std::filesystem::path& folder, std::span<const std::filesystem::path> files);

}  // namespace vellumark::platform
