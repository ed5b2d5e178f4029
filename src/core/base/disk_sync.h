#pragma once

#include <filesystem>
#include <span>
#include <system_error>

#include "core/base/platform.h"

namespace vellumark::platform {

/// Files of `folder` that were written without a sync last through a power cut from now on: all at once, where the
/// system can do that.
std::error_code SyncFiles(const std::filesystem::path& folder, std::span<const std::filesystem::path> files);
/// The disk begins to write what was written into a file, and nobody waits for it. Where a system cannot do that, the sync
/// that follows takes longer.
void BeginWriting(const OpenFile& file);
/// What is read of these files from now on comes from the disk and not from the memory of the system, as far as the system can
/// do that. They were synced before.
void ReadFromDisk(std::span<const std::filesystem::path> files);

}  // namespace vellumark::platform
