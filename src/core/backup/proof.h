#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/backup/deep_check.h"
#include "core/base/date.h"
#include "core/session/session.h"

namespace vellumark {

/// What the digest of a table is made of: of the values, as an earlier program did, or of the digests of its rows, which
/// the check of rows works out anyway.
enum class DigestsOf { Values, Rows };

/// The content of a table, whatever pages it stands on and in whatever order: how many rows, and a digest of all their
/// values. One changed bit of a value changes the digest.
struct TableProof {
  std::string Table;
  std::int64_t Rows = 0;
  std::uint64_t digest = 0;
  bool operator==(const TableProof&) const = default;
};

/// A file by its bytes.
/// How the digest of a file is worked out.
enum class FileDigestOf {
  Megabytes,  ///< word by word, each megabyte for itself; of what travels, and of sets of an earlier program
  Lanes,      ///< four words at once, in a third of the time
};

struct FileProof {
  std::string name;  ///< within the set, "SUV_Files/vk50suvdf.dat"
  std::int64_t bytes = 0;
  std::uint64_t digest = 0;
  FileDigestOf digestOf = FileDigestOf::Megabytes;
  bool operator==(const FileProof&) const = default;
};

/// How much a Database held, for people who choose between sets.
struct DatabaseProof {
  std::string name;
  std::int64_t basics = 0;
  std::int64_t formulas = 0;
  std::int64_t batches = 0;
  bool operator==(const DatabaseProof&) const = default;
};

/// What a Data File holds, read through the engine, and whether it is sound.
struct ContentProof {
  int fileVersion = 0;
  DigestsOf digestsOf = DigestsOf::Rows;
  std::vector<TableProof> tables{};
  std::vector<DatabaseProof> databases{};
  std::vector<std::string> faults{};  ///< in words, a line each; empty when sound
  bool rowsToAccept = false;          ///< HasRowsToAccept; known of what was just read, not of what a set tells
  bool Sound() const { return faults.empty(); }
  /// Of all Databases.
  std::int64_t Formulas() const;
  std::int64_t Batches() const;
};

/// Reads every row of a closed file and checks it: the engine's own check and every rule between rows. The session's
/// open file, which may be another, stays open and is not touched: of the session only its settings are read. Throws
/// Failure when the file cannot be read at all.
ContentProof ProveContent(const Session& session, const std::filesystem::path& file, Progress& progress,
                          DigestsOf digestsOf = DigestsOf::Rows);
inline ContentProof ProveContent(const Session& session, const std::filesystem::path& file) {
  return ProveContent(session, file, session.progress);
}

/// The rows of a table, or those for which a condition over them holds, with `bound` as its ?1.
TableProof ProveRows(Database& file, const std::string& table, const std::string& where = {},
                     const std::string& bound = {});

/// Reads a whole file, piece by piece. Throws Failure.
void ForEachPiece(const std::filesystem::path& path, const std::function<void(std::string_view)>& take);
/// The same; each piece goes to `take` where there is one.
FileProof ReadProved(const std::filesystem::path& path, std::string name,
                     const std::function<void(std::string_view)>& take);
FileProof ProveFile(const std::filesystem::path& path, std::string name,
                    FileDigestOf kind = FileDigestOf::Megabytes);
/// What these files of a folder are now on the disk, and not in what the system remembers of it: each, or the cause why it
/// cannot be read; in two threads. `goOn` hears how many are read.
std::vector<std::expected<FileProof, std::string>> ProveFiles(const std::filesystem::path& folder,
                                                              const std::vector<FileProof>& files,
                                                              const std::function<void(std::size_t done)>& goOn);
/// Writes a copy under a name that is free, synced to the disk, and tells what was read. A file of a plain kind only.
FileProof CopyProved(const std::filesystem::path& from, const std::filesystem::path& to, std::string name);

/// The same into a folder that is nobody's to see yet; whoever shows it syncs its files before (platform::SyncFiles). The
/// disk begins to write at once.
FileProof CopyUnsynced(const std::filesystem::path& from, const std::filesystem::path& to, std::string name);
/// Without telling what was read.
void CopyPlain(const std::filesystem::path& from, const std::filesystem::path& to);

/// What stands in VERIFY.json of a backup set: what it held when it was made.
struct SetProof {
  std::string dataFile;  ///< the name of the Data File in the set
  DateTime made;
  std::optional<DateTime> madeUtc;  ///< the same moment wherever it is read; an earlier program did not tell it
  std::string program;  ///< version of the program
  int UMI = 1;          ///< the unit of stock of the machine, which the Data File does not hold
  ContentProof content;
  std::vector<FileProof> files;  ///< the Data File first
};
std::string ProofText(const SetProof& proof);
/// Nothing of a text that is none.
std::optional<SetProof> ReadProofText(const std::string& text);

}  // namespace vellumark
