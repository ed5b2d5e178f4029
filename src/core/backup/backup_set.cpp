#include "core/backup/backup_set.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <future>
#include <map>
#include <mutex>
#include <system_error>

#include "core/backup/failed_backup.h"
#include "core/backup/kept_folder.h"
#include "core/base/disk_sync.h"
#include "core/base/files.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/settings/support_files.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kStart = "VK_Backup_";
constexpr std::string_view kUnfinished = ".VK_Backup_";  // until it is whole, and when it is about to go

void FailOn(const fs::path& path, const std::error_code& error) {
  if (error) throw Failure(path.string(), error.message());
}

// The two digits or more that stand at `from`.
std::optional<int> NumberAt(std::string_view text, std::size_t from, std::size_t length) {
  int number = 0;
  const char* const begin = text.data() + from;
  const auto [end, error] = std::from_chars(begin, begin + length, number);
  return error == std::errc() && end == begin + length ? std::optional(number) : std::nullopt;
}

// The Data File of a set: the one file of that kind at its top.
fs::path DataFileIn(const fs::path& folder) {
  std::error_code ignored;
  for (fs::directory_iterator entry(folder, ignored), end; !ignored && entry != end; entry.increment(ignored))
    if (EqualNoCase(entry->path().extension().string(), ".vkd") && entry->is_regular_file(ignored)) return entry->path();
  return {};
}

std::optional<SetProof> ReadProof(const fs::path& path) {
  try {
    return ReadProofText(ReadFileBytes(path));
  } catch (const Failure&) {
    return std::nullopt;  // a set without a readable proof is an unproven one, and listed as that
  }
}

// Each look at the start page asks for the proofs of thirty sets, with every photo in them. One that was read is known
// until its file is another.
std::optional<SetProof> ProofIn(const fs::path& folder) {
  struct Known {
    std::array<std::int64_t, 4> file;
    std::optional<SetProof> proof;
  };
  static std::mutex guard;
  static std::map<fs::path, Known> known;
  constexpr std::size_t kMostKnown = 200;
  constexpr std::int64_t kOld = 2'000'000'000;  // ns: within the steps of a disk's clock a change leaves the time as it was
  const fs::path path = folder / kProofFile;
  std::error_code error;
  const platform::FileState state = platform::StateOf(path, error);
  if (error) return std::nullopt;
  const std::array<std::int64_t, 4> file{static_cast<std::int64_t>(state.identity), state.size, state.modified,
                                         state.changed};
  const std::scoped_lock lock(guard);
  if (const auto found = known.find(path); found != known.end() && found->second.file == file)
    return found->second.proof;
  std::optional<SetProof> proof = ReadProof(path);
  const std::int64_t now = std::chrono::nanoseconds(std::chrono::system_clock::now().time_since_epoch()).count();
  if (now - std::max(state.modified, state.changed) < kOld) return proof;
  if (known.size() >= kMostKnown) known.clear();
  return known.insert_or_assign(path, Known{file, std::move(proof)}).first->second.proof;
}

// To be called with the lock of the folder: what bears such a name is a killed process's.
void SweepUnfinished(const fs::path& target) {
  std::error_code error;
  for (fs::directory_iterator entry(target, error), end; !error && entry != end; entry.increment(error))
    if (entry->path().filename().string().starts_with(kUnfinished)) {
      std::error_code failed;
      fs::remove_all(entry->path(), failed);
      FailOn(entry->path(), failed);
    }
  FailOn(target, error);
}

// A set that is half removed must not look like one.
void RemoveSet(const fs::path& folder) {
  const fs::path going = folder.parent_path() / ("." + folder.filename().string());
  RenameToFree(folder, going);
  std::error_code error;
  fs::remove_all(going, error);
  FailOn(going, error);
}

// The set that gives way to a new one; none when more were there, and none when fewer. While a Data File has faults so have
// its new sets, and the last one without any does not go for them.
std::optional<BackupSet> OldestOf(const fs::path& target, const fs::path& dataFileName, std::size_t keep, bool newIsProven) {
  std::vector<BackupSet> sets = ListSets(target);
  std::erase_if(sets, [&](const BackupSet& set) { return set.dataFile.filename() != dataFileName; });
  if (sets.size() != keep) return std::nullopt;
  const bool lastProven =
      !newIsProven && sets.front().Proven() && std::ranges::count_if(sets, &BackupSet::Proven) == 1;
  if (!lastProven) return sets.front();
  return sets.size() > 1 ? std::optional(sets[1]) : std::nullopt;
}

// What a killed program left beside the file is played back, by whoever opens it first; from there on nobody writes into
// it. Whoever died in between left something again.
platform::OpenFile HealAndHold(const fs::path& file) {
  if (IsArchiveCopy(kFileVersion, file)) {
    ReadFileInfo(*Database::Open(file, OpenMode::ReadOnly));
    return {};
  }
  std::error_code ignored;
  platform::OpenFile held;
  for (int tries = 0; tries < 2; ++tries) {
    held.Close();
    ReadFileInfo(*Database::Open(file, OpenMode::Exclusive));
    held = HoldDataFile(file);
    if (!fs::exists(JournalOf(file), ignored)) break;
  }
  return held;
}

// The files of the new set, copied one after the other, with the bar on the way.
class SetMaker {
 public:
  SetMaker(Session& session, const fs::path& source, fs::path folder)
      : session_(session), source_(source), folder_(std::move(folder)) {}

  SetProof Make(const DateTime& made) {
    CollectFiles();
    SetProof proof{source_.filename().string(), made, MomentOf(made), VELLUMARK_VERSION, session_.UMI, {}, {}};
    NoProgress unseen;
    std::future<ContentProof> content;
    std::vector<fs::path> copies;
    for (const auto& [from, name] : files_) {
      Show(0, 40, proof.files.size());
      copies.push_back(folder_ / name);
      proof.files.push_back(CopyUnsynced(from, copies.back(), name));
      // The rows of the Data File, which is the first, are read while the disk is at work on the others.
      if (!content.valid())
        content = std::async(std::launch::async, [&, copy = copies.front()] {
          platform::GiveWay();
          return ProveContent(session_, copy, unseen);
        });
    }
    FailOn(folder_, Await(std::async(std::launch::async, [&] { return platform::SyncFiles(folder_, copies); })));
    RequireAsWritten(proof.files, copies);
    proof.content = Await(std::move(content));
    ReplaceFile(folder_ / kProofFile, ProofText(proof), Readers::Group);
    return proof;
  }

 private:
  void CollectFiles() {
    files_.emplace_back(source_, source_.filename().string());
    MakeFolder(folder_ / kSupportFolderOfSet);
    MakeFolder(folder_ / kPhotoFolderOfSet);
    const SupportFiles& support = *session_.support;
    for (const SupportFile* file :
         {&support.settings, &support.label, &support.hazardLabel, &support.formulaLabel, &support.scale})
      if (file->Exists()) Collect(file->Path(), kSupportFolderOfSet);
    for (const fs::path& photo : PhotosIn(source_.parent_path() / kPhotoFolderOfSet)) Collect(photo, kPhotoFolderOfSet);
  }

  // There are sticks that only seem to write.
  void RequireAsWritten(const std::vector<FileProof>& files, const std::vector<fs::path>& copies) {
    const auto read = ProveFiles(folder_, files, [&](std::size_t done) { Show(40, 95, done); });
    for (std::size_t i = 0; i < files.size(); ++i) {
      if (!read[i]) throw Failure(copies[i].string(), read[i].error());
      if (*read[i] != files[i]) throw Failure(copies[i].string(), "does not read as it was written");
    }
  }

  // The bar stays alive meanwhile.
  template <typename Answer>
  Answer Await(std::future<Answer> answer) {
    while (answer.wait_for(std::chrono::milliseconds(40)) != std::future_status::ready) Show(40, 95, 0);
    return answer.get();
  }

  void Show(double from, double to, std::size_t done) {
    session_.progress.Percent(from + (to - from) * static_cast<double>(done) / static_cast<double>(files_.size()));
  }

  void Collect(const fs::path& from, std::string_view folder) {
    files_.emplace_back(from, fmt::format("{}/{}", folder, from.filename().string()));
  }

  Session& session_;
  fs::path source_;
  fs::path folder_;
  std::vector<std::pair<fs::path, std::string>> files_;
};

// Two sets of one second are two.
DateTime FreeTime(const fs::path& target, DateTime made) {
  while (Stands(target / SetName(made))) made = FromSecondNumber(made.SecondNumber() + 1);
  return made;
}

void CompareTables(const std::vector<TableProof>& before, const std::vector<TableProof>& now,
                   std::vector<std::string>& faults) {
  for (const TableProof& table : before) {
    const auto found = std::ranges::find(now, table.Table, &TableProof::Table);
    if (found == now.end()) {
      faults.push_back(fmt::format("{}: the table is gone", table.Table));
    } else if (found->Rows != table.Rows) {
      faults.push_back(fmt::format("{}: {} rows, {} when the set was made", table.Table, found->Rows, table.Rows));
    } else if (found->digest != table.digest) {
      faults.push_back(fmt::format("{}: values are not those of when the set was made", table.Table));
    }
  }
}

// A proof that tells of other files than this one proves nothing of it. What stands beside it would be played back.
bool Proves(const SetProof& proof, const fs::path& dataFile) {
  std::error_code ignored;
  return !proof.files.empty() && proof.files.front().name == dataFile.filename().string() &&
         proof.dataFile == proof.files.front().name && !fs::exists(JournalOf(dataFile), ignored);
}

bool MayBeBackedUp(const Session& session, const fs::path& file) {
  std::error_code ignored;
  if (session.DataFileName.empty() || !fs::exists(file, ignored)) return false;
  if (FindNoCase(file.generic_string(), "/Cloud Downloads/CloudAdmin_DataFiles/") != std::string::npos) return false;
  if (IsArchiveCopy(ReadFileVersion(file), file)) return false;
  return !HoldsNoDatabase(*Database::Open(file, OpenMode::ReadOnly));
}

}  // namespace

std::vector<fs::path> PhotosIn(const fs::path& folder) {
  std::vector<fs::path> photos;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
    if (EqualNoCase(entry->path().extension().string(), ".jpg") && entry->is_regular_file(error))
      photos.push_back(entry->path());
  if (error && error != std::errc::no_such_file_or_directory) FailOn(folder, error);
  std::ranges::sort(photos);
  return photos;
}

std::string SetName(const DateTime& made) {
  return fmt::format("{}{:02}_{:02}_{:04}__{:02}_{:02}_{:02}", kStart, made.month, made.day, made.year, made.hour,
                     made.minute, made.second);
}

std::optional<DateTime> TimeOfSet(std::string_view name) {
  constexpr std::string_view kShape = "VK_Backup_MM_DD_YYYY__HH_MM_SS";
  if (name.size() != kShape.size()) return std::nullopt;
  const std::array parts{NumberAt(name, 10, 2), NumberAt(name, 13, 2), NumberAt(name, 16, 4),
                         NumberAt(name, 22, 2), NumberAt(name, 25, 2), NumberAt(name, 28, 2)};
  if (std::ranges::any_of(parts, [](const auto& part) { return !part; })) return std::nullopt;
  const DateTime made{*parts[2], *parts[0], *parts[1], *parts[3], *parts[4], *parts[5]};
  // The calendar and the signs between are tested by writing it again.
  if (SetName(made) != name) return std::nullopt;
  return ParseDateTime(made.ToText());
}

DateTime FromSecondNumber(std::int64_t second) {
  DateTime time = DateTime::FromDayNumber(second / 86400);
  time.hour = static_cast<int>(second % 86400 / 3600);
  time.minute = static_cast<int>(second % 3600 / 60);
  time.second = static_cast<int>(second % 60);
  return time;
}

DateTime LocalOf(const DateTime& moment) {
  const std::tm tm = platform::LocalTime(static_cast<std::time_t>(moment.SecondNumber()));
  return {tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec};
}

DateTime MomentOf(const DateTime& local) {
  if (local.year < 1971) return local;  // of which nobody knows when it was made
  const std::int64_t wanted = local.SecondNumber();
  std::int64_t moment = wanted;
  // Twice, where the clocks are changed between the first guess and the answer.
  for (int i = 0; i < 2; ++i) {
    moment += wanted - LocalOf(FromSecondNumber(moment)).SecondNumber();
  }
  return FromSecondNumber(moment);
}

Result<BackupSet> ReadSet(const fs::path& folder) {
  BackupSet set;
  set.folder = folder;
  set.dataFile = DataFileIn(folder);
  if (set.dataFile.empty())
    return Refuse("Backup", fmt::format("{} is no backup set: there is no Data File in it.", folder.string()), "SET");
  set.proof = ProofIn(folder);
  const std::optional<DateTime> named = TimeOfSet(folder.filename().string());
  if (named) {
    set.made = *named;
  } else if (set.proof) {
    set.made = set.proof->made;
  }
  set.moment = set.proof && set.proof->madeUtc ? *set.proof->madeUtc : MomentOf(set.made);
  return set;
}

std::vector<BackupSet> ListSets(const fs::path& folder) {
  std::vector<BackupSet> sets;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    if (!TimeOfSet(entry->path().filename().string())) continue;
    if (auto set = ReadSet(entry->path())) sets.push_back(std::move(*set));
  }
  if (error && error != std::errc::no_such_file_or_directory) FailOn(folder, error);
  std::ranges::sort(sets, {}, &BackupSet::moment);
  return sets;
}

BackupSet MakeBackupSet(Session& session, const fs::path& source, const fs::path& target,
                        std::optional<std::size_t> keep) {
  const ProgressRun progress(session.progress, "Backing up Data File ...");
  const platform::OpenFile held = HealAndHold(source);
  MakeFolder(target);
  const FolderLock lock(target);
  SweepUnfinished(target);
  BackupSet set;
  set.made = FreeTime(target, session.clock.Now());
  set.moment = MomentOf(set.made);
  set.folder = target / SetName(set.made);
  const fs::path unfinished = target / ("." + SetName(set.made));
  std::optional<BackupSet> oldest;
  MakeFolder(unfinished);
  try {
    set.proof = SetMaker(session, source, unfinished).Make(set.made);
    if (keep) oldest = OldestOf(target, source.filename(), *keep, set.Proven());
    RenameToFree(unfinished, set.folder);
  } catch (...) {
    std::error_code ignored;
    fs::remove_all(unfinished, ignored);
    throw;
  }
  set.dataFile = set.folder / source.filename();
  try {
    if (oldest) RemoveSet(oldest->folder);
  } catch (const Failure& failure) {
    set.notRemoved = fmt::format("{}: {}", failure.subject, failure.cause);
  }
  return set;
}

SetCheck VerifySet(Session& session, const BackupSet& set, Reproof reproof) {
  const ProgressRun progress(session.progress, "Checking backup ...");
  SetCheck check{set, {}, {}};
  if (set.proof) {
    const std::vector<FileProof>& files = set.proof->files;
    const auto all = static_cast<double>(files.size());
    const auto read = ProveFiles(set.folder, files, [&](std::size_t done) {
      session.progress.Percent(50.0 * static_cast<double>(done) / all);
    });
    for (std::size_t i = 0; i < files.size(); ++i) {
      if (!read[i]) {
        check.faults.push_back(fmt::format("{}: {}", files[i].name, read[i].error()));
      } else if (*read[i] != files[i]) {
        check.faults.push_back(fmt::format("{}: the file is not what it was when the set was made", files[i].name));
      }
    }
  }
  if (reproof == Reproof::IfNeeded && check.faults.empty() && set.proof && set.proof->content.Sound() &&
      set.proof->program == VELLUMARK_VERSION && Proves(*set.proof, set.dataFile)) {
    check.content = set.proof->content;
    return check;
  }
  try {
    const DigestsOf digestsOf = set.proof ? set.proof->content.digestsOf : DigestsOf::Rows;
    check.content = ProveContent(session, set.dataFile, session.progress, digestsOf);
    check.faults.insert(check.faults.end(), check.content.faults.begin(), check.content.faults.end());
    if (set.proof) CompareTables(set.proof->content.tables, check.content.tables, check.faults);
  } catch (const Failure& failure) {
    check.faults.push_back(fmt::format("{}: {}", set.dataFile.filename().string(), failure.cause));
  }
  return check;
}

std::string FaultLines(const std::vector<std::string>& faults) {
  constexpr std::size_t kMost = 8;
  std::string text;
  for (std::size_t i = 0; i < faults.size() && i < kMost; ++i) text += "\n" + faults[i];
  if (faults.size() > kMost) text += fmt::format("\nand {} more", faults.size() - kMost);
  return text;
}

std::string WayOut(const ContentProof& content) {
  if (content.rowsToAccept) return fmt::format("{}. Repair what is wrong besides, and back up again.", kAcceptRows);
  return "Repair the Data File, and back up again.";
}

std::optional<std::string> FaultsOfSet(const BackupSet& set) {
  if (!set.proof || set.proof->content.Sound()) return std::nullopt;
  return fmt::format("The backup is made, but the Data File has faults, and the backup has them too:{}\n\n{} Keep the backups "
                     "that were made before.",
                     FaultLines(set.proof->content.faults), WayOut(set.proof->content));
}

std::optional<BackupSet> ShutdownBackup(Session& session, std::string_view label) {
  const fs::path file = session.DataFileName;
  try {
    if (!MayBeBackedUp(session, file)) return std::nullopt;
    MakeFolder(file.parent_path() / kPhotoFolderOfSet);
    BackupSet set = MakeBackupSet(session, file, file.parent_path() / kAutoBackupFolder, kAutomaticSets);
    if (!set.notRemoved.empty())
      session.prompt.Tell("Backup",
                          fmt::format("The automatic backup is made, but the oldest one could not be removed.\n{}.",
                                      set.notRemoved),
                          Icon::Exclamation);
    if (const auto faults = FaultsOfSet(set)) {
      session.prompt.Tell("Backup", *faults, Icon::Exclamation);
    } else if (label != "AutoBackup") {
      session.prompt.Tell("Backup Complete", "Backup Completed Successfully!");
    }
    return set;
  } catch (const Failure& failure) {
    std::string text = fmt::format("The automatic backup of {} could not be made.\n{}: {}.\n\nThe backups that were "
                                   "there before are as they were.",
                                   file.string(), failure.subject, failure.cause);
    try {
      NoteFailedBackup(session, file, fmt::format("{}: {}", failure.subject, failure.cause));
    } catch (const Failure& second) {
      text += fmt::format("\n\nThe start page will not tell of it: {}: {}.", second.subject, second.cause);
    }
    session.prompt.Tell("Backup", text, Icon::Exclamation);
    return std::nullopt;
  }
}

}  // namespace vellumark
