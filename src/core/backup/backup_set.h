#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/backup/proof.h"
#include "core/session/session.h"

namespace vellumark {

// A backup set: a folder with a plain copy of the Data File, of the Support Files in SUV_Files and of the photos in
// DesignPhotos. It stands under its name only when it is whole, and VERIFY.json in it tells what it held when it was
// made, after its Data File was opened from it and checked.

inline constexpr std::string_view kAutoBackupFolder = "Auto Backup";  ///< beside the Data File
inline constexpr std::string_view kBeforeRestore = "Before Restore ";  ///< begins the folders of what was replaced
inline constexpr std::string_view kSupportFolderOfSet = "SUV_Files";
inline constexpr std::string_view kPhotoFolderOfSet = "DesignPhotos";
inline constexpr std::string_view kProofFile = "VERIFY.json";

/// "VK_Backup_03_10_2026__09_05_00", by the local time.
std::string SetName(const DateTime& made);
/// The time in such a name; nothing for any other.
std::optional<DateTime> TimeOfSet(std::string_view name);

/// The photos of a folder, by name; of one that is not there none. Throws Failure when it cannot be read.
std::vector<std::filesystem::path> PhotosIn(const std::filesystem::path& folder);

/// A local time of this machine as that of everywhere, so that sets of another time zone stand in their order.
DateTime MomentOf(const DateTime& local);
/// The other way.
DateTime LocalOf(const DateTime& moment);
/// Of the seconds since 1970.
DateTime FromSecondNumber(std::int64_t second);

struct BackupSet {
  /// Its Data File was opened from it, and nothing was found amiss.
  bool Proven() const { return proof && proof->content.Sound(); }

  std::filesystem::path folder;
  DateTime made;    ///< by the clock of the machine that made it
  DateTime moment;  ///< the same, as MomentOf gives it
  std::filesystem::path dataFile;
  std::optional<SetProof> proof;  ///< nothing of a set that was made without one, or whose proof cannot be read
  std::string notRemoved;         ///< of a set just made: which old one should have given way and stayed, and why
};

/// The whole sets of a folder, the oldest first. Throws Failure when the folder cannot be read; one that is not there
/// has none.
std::vector<BackupSet> ListSets(const std::filesystem::path& folder);
/// The set in this folder. Refused when there is no Data File in it.
Result<BackupSet> ReadSet(const std::filesystem::path& folder);

/// Makes a set of a Data File that nobody has open, with the Support Files and the photos beside it, in `target`. A
/// journal that a killed program left is played back first. With `keep`, and when just so many sets of a Data File of
/// this name were there, the oldest is removed when the new one has its name; not the last proven one for one that is
/// not, then the next. Nothing but what was there remains after a Failure. A Data File with faults is backed up too; the
/// proof tells them.
BackupSet MakeBackupSet(Session& session, const std::filesystem::path& source, const std::filesystem::path& target,
                        std::optional<std::size_t> keep = {});

/// Reads a set again, all of it: what is different from its proof, or not sound, a line each.
struct SetCheck {
  BackupSet set;
  std::vector<std::string> faults;
  ContentProof content;
};
enum class Reproof {
  Always,    ///< every row is read and every rule checked again
  IfNeeded,  ///< not where this version of the program found the set sound and every file has the bytes that it had then
};
SetCheck VerifySet(Session& session, const BackupSet& set, Reproof reproof = Reproof::Always);

/// What to do about the faults of a Data File: "Repair the Data File, and back up again."
std::string WayOut(const ContentProof& content);
/// What an operator is to know of a set that is made of a Data File with faults; nothing of any other.
std::optional<std::string> FaultsOfSet(const BackupSet& set);
/// A line each, and how many there are besides the first eight.
std::string FaultLines(const std::vector<std::string>& faults);

inline constexpr std::size_t kAutomaticSets = 30;

/// The backup of the Data File that is named and was closed, into Auto Backup beside it; nothing for archive and backup
/// copies, for files that an administrator fetched, and for one without a Database. What fails is told, and ends
/// nothing; that the Data File has faults is told too. `label` "AutoBackup" does not tell of a success.
std::optional<BackupSet> ShutdownBackup(Session& session, std::string_view label);

}  // namespace vellumark
