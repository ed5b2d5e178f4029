#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vellumark {

/// A whole file's bytes. Throws Failure naming the file and the cause.
std::string ReadFileBytes(const std::filesystem::path& path);

/// Replaces `path` in one step: the bytes go to `temp` (in the same folder), are synced to the disk, and `temp` is
/// renamed over `path`. A kill at any moment leaves the old or the new file whole. Throws Failure, also when `path` is
/// a folder or a device; `temp` is removed.
void ReplaceFile(const std::filesystem::path& path, const std::filesystem::path& temp, std::string_view bytes);
/// The same with "<path>.tmp" as the temp file.
void ReplaceFile(const std::filesystem::path& path, std::string_view bytes);

/// Copies a file, synced to the disk, under a name that must be free. Throws Failure; nothing is left of the copy then.
void CopyFile(const std::filesystem::path& from, const std::filesystem::path& to);

/// Makes the rename or removal of a file in `folder` last through a power cut.
void SyncFolder(const std::filesystem::path& folder);

}  // namespace vellumark
