#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/base/files.h"
#include "core/base/refusal.h"
#include "core/datafile/engine.h"

namespace vellumark {

constexpr int kFileVersion = 40;          ///< layout of the files that this program makes
constexpr int kArchiveFileVersion = 140;  ///< the same layout, marked as an archive copy
constexpr std::int32_t kLastCounter = 999999;

/// The one row of `FileInfo`.
struct FileInfoRow {
  int fileVersion = 0;
  std::string currentDB;
  std::vector<std::string> dbList;  ///< the Databases in menu order
  std::int32_t batchNumber = 1;
  std::int32_t itemNumber = 1;
};

/// What a file version means to the file check.
enum class VersionGate { Current, ReadOnly, Older, Unusable };
VersionGate GateOf(int fileVersion);

/// `FileVersion` of a file, by opening it, reading and closing. Throws Failure when that cannot be done.
int ReadFileVersion(const std::filesystem::path& path);

/// Throws Failure when the table or its row is missing.
FileInfoRow ReadFileInfo(Database& file);

/// True for an archive or backup copy, which may be looked at and not changed: its version is not 40, or its path holds
/// the folder "Auto Backup" or the word "Archive", or it ends in ".vkb" or ".vka".
bool IsArchiveCopy(int fileVersion, const std::filesystem::path& path);

/// Throws Failure when anything bears the name already.
void RequireFreeName(const std::filesystem::path& path);
/// A new file with the global tables and no Database, open, beside the place that it takes when its maker is done and
/// has closed it.
std::unique_ptr<Database> CreateBeside(const FileBeside& place);
/// Does some work on that file. A Failure names its place.
template <typename Work>
auto WorkBeside(const FileBeside& place, Work work) {
  try {
    return work();
  } catch (const Failure& failure) {
    if (failure.subject != place.Path().string()) throw;
    throw Failure(place.Target().string(), failure.cause);
  }
}
/// The same at its place, closed. An existing file is refused with a Failure.
void CreateFile(const std::filesystem::path& path);


/// Puts the open file's data, without its unused space, in the place of the file. A kill at any moment leaves the one
/// or the other, and a Failure leaves what was there. `file` is then open on what was removed and only good for being
/// closed, which lets go of the lock. The ".vkb" of its name goes too, as it is older.
void CompactFile(Database& file);
/// The same name with ".vkb" for its last four characters (the extension).
std::filesystem::path SafetyCopyPath(const std::filesystem::path& path);

/// The first of "name(1).vkd", "name(2).vkd" … that does not exist; a name that already ends in "(n)" gets its number
/// replaced.
std::filesystem::path NextFreeName(const std::filesystem::path& path);

/// The counter after `current`, which is 1 after 999,999, written to `FileInfo` at once.
std::int32_t StepBatchNumber(Database& file, std::int32_t current);
std::int32_t StepItemNumber(Database& file, std::int32_t current);

}  // namespace vellumark
