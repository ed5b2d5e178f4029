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
/// A file, synced before, of which what is read comes from the disk and not from the memory of the system, as far as the
/// system can do that. It is to be read from its beginning in full pieces: of a multiple of kDiskBlock bytes, into a
/// buffer that begins at one.
OpenFile OpenOnDisk(const std::filesystem::path& path, std::error_code& error);
inline constexpr std::size_t kDiskBlock = 4096;
/// This thread, and those that it starts, from now on compute in the time that threads which wait for the disk leave them.
void GiveWay();

}  // namespace vellumark::platform
