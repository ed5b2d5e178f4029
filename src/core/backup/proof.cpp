#include "core/backup/proof.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstring>
#include <future>
#include <memory>
#include <new>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include "core/base/digest.h"
#include "core/base/disk_sync.h"
#include "core/base/files.h"
#include "core/base/refusal.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"

namespace vellumark {
namespace fs = std::filesystem;
using Json = nlohmann::json;

namespace {

std::uint64_t RowDigest(const Statement& row, int columns) {
  Digest digest;
  for (int column = 0; column < columns; ++column) {
    const Value value = row.Get(column);
    digest.Add(static_cast<std::uint64_t>(value.Held().index()));
    if (value.IsWhole()) digest.Add(static_cast<std::uint64_t>(value.Whole()));
    if (value.IsNumber()) digest.Add(std::bit_cast<std::uint64_t>(value.Number()));
    if (value.IsText()) digest.Add(std::get<std::string>(value.Held()));
  }
  return digest.Value();
}

TableProof ProofOf(const ReadTable& table) {
  return {table.table, table.rows, table.digest};
}

std::vector<DatabaseProof> CountDatabases(Database& file, const std::vector<std::string>& names) {
  std::vector<DatabaseProof> databases;
  for (const std::string& name : names) {
    const DatabaseCounts counts = CountRows(file, name);
    databases.push_back({name, counts.basics, counts.formulas, counts.batches});
  }
  return databases;
}

enum class From { Memory, Disk };  // of the system, or past it

platform::OpenFile OpenToRead(const fs::path& path, From from) {
  std::error_code error;
  platform::OpenFile file = from == From::Disk ? platform::OpenOnDisk(path, error)
                                               : platform::OpenExisting(path, platform::Opening::Read, error);
  if (error) throw Failure(path.string(), error.message());
  const platform::FileState state = platform::StateOf(file, error);
  if (error) throw Failure(path.string(), error.message());
  if (state.kind != platform::Kind::File) throw Failure(path.string(), "is not a file");
  return file;
}

std::string DigestText(std::uint64_t digest) {
  return fmt::format("{:016x}", digest);
}

std::uint64_t DigestOf(const Json& text) {
  return std::stoull(text.get<std::string>(), nullptr, 16);
}

}  // namespace

std::int64_t ContentProof::Formulas() const {
  std::int64_t all = 0;
  for (const DatabaseProof& database : databases) all += database.formulas;
  return all;
}

std::int64_t ContentProof::Batches() const {
  std::int64_t all = 0;
  for (const DatabaseProof& database : databases) all += database.batches;
  return all;
}

ContentProof ProveContent(const Session& asked, const fs::path& path, Progress& progress, DigestsOf digestsOf) {
  Session session(asked.prompt, progress, asked.clock);
  session.UMI = asked.UMI;
  session.UMF = asked.UMF;
  session.InvLotTracking = asked.InvLotTracking;
  session.DecimalPlaces = asked.DecimalPlaces;
  session.DataFileDB = Database::Open(path, OpenMode::ReadOnly);
  Database& file = session.File();
  const FileInfoRow info = ReadFileInfo(file);
  session.databaseList = info.dbList;
  ContentProof proof{info.fileVersion, digestsOf};
  std::vector<ReadTable> read;
  const VersionGate gate = GateOf(info.fileVersion);
  if (gate == VersionGate::Current || gate == VersionGate::ReadOnly) {
    CheckAnswer check = CheckDataFileRules(session, CheckDepth::Deep, CheckState::InUse);
    for (const CheckFault& fault : check.faults) proof.faults.push_back(FaultText(fault));
    proof.rowsToAccept = HasRowsToAccept(check.faults);
    if (digestsOf == DigestsOf::Rows) read = std::move(check.tables);
  } else {
    proof.faults = file.Faults();
  }
  for (const std::string& table : file.TableNames()) {
    try {
      const auto done = std::ranges::find(read, table, &ReadTable::table);
      proof.tables.push_back(digestsOf == DigestsOf::Values ? ProveRows(file, table)
                                                            : ProofOf(done != read.end() ? *done : ReadRowsOf(file, table)));
    } catch (const Failure& failure) {
      proof.faults.push_back(fmt::format("{} cannot be read: {}", table, failure.cause));
    }
  }
  try {
    proof.databases = CountDatabases(file, info.dbList);
  } catch (const Failure& failure) {
    proof.faults.push_back(failure.cause);
  }
  return proof;
}

TableProof ProveRows(Database& file, const std::string& table, const std::string& where, const std::string& bound) {
  TableProof proof{table};
  Statement rows = file.Prepare(fmt::format("SELECT * FROM {}{}{}", Quoted(table), where.empty() ? "" : " WHERE ", where));
  if (!where.empty()) rows.Bind(1, bound);
  const int columns = rows.ColumnCount();
  // A sum does not ask in which order the rows come.
  while (rows.Step()) {
    ++proof.Rows;
    proof.digest += RowDigest(rows, columns);
  }
  return proof;
}

namespace {

// What was just read is still at hand in the processor for the digest and for who writes it; past the system's memory
// long pieces are faster.
constexpr std::size_t kPieceOfMemory = std::size_t{1} << 18;
constexpr std::size_t kPieceOfDisk = std::size_t{1} << 20;

struct FreePiece {
  void operator()(char* piece) const { ::operator delete[](piece, std::align_val_t{platform::kDiskBlock}); }
};

void ReadPieces(const fs::path& path, From from, const std::function<void(std::string_view)>& take) {
  const platform::OpenFile file = OpenToRead(path, from);
  const std::size_t size = from == From::Disk ? kPieceOfDisk : kPieceOfMemory;
  const std::unique_ptr<char[], FreePiece> piece(new (std::align_val_t{platform::kDiskBlock}) char[size]);
  for (;;) {
    // Full pieces but the last.
    std::size_t filled = 0;
    std::error_code error;
    while (filled < size) {
      const std::size_t count = platform::Read(file, piece.get() + filled, size - filled, error);
      if (error) throw Failure(path.string(), error.message());
      if (count == 0) break;
      filled += count;
    }
    if (filled != 0) take({piece.get(), filled});
    if (filled < size) return;
  }
}

// The digest of a file, however it is read. It takes full pieces but the last.
class FileDigest {
 public:
  explicit FileDigest(FileDigestOf kind) : kind_(kind) {}

  void Add(std::string_view piece) {
    bytes_ += piece.size();
    const std::string_view rest = kind_ == FileDigestOf::Lanes ? AddLanes(piece) : digest_.AddWords(piece);
    open_ = true;
    const bool ends = kind_ == FileDigestOf::Megabytes && bytes_ % kMegabyte == 0;
    if (ends || !rest.empty()) End(rest);
  }
  FileProof Take(std::string name) {
    if (open_) End({});
    if (kind_ == FileDigestOf::Lanes)
      for (const Digest& lane : lanes_) digest_.Add(lane.Value());
    return {std::move(name), static_cast<std::int64_t>(bytes_), digest_.Value(), kind_};
  }

 private:
  static constexpr std::size_t kMegabyte = std::size_t{1} << 20;
  static constexpr std::size_t kBlock = 4 * sizeof(std::uint64_t);
  static_assert(kMegabyte % kPieceOfMemory == 0 && kMegabyte % kPieceOfDisk == 0);
  static_assert(kPieceOfMemory % kBlock == 0 && kPieceOfDisk % kBlock == 0);

  // Each word waits for the one before it; four that do not wait for each other go at once.
  std::string_view AddLanes(std::string_view piece) {
    std::array<Digest, 4> lanes = lanes_;
    for (; piece.size() >= kBlock; piece.remove_prefix(kBlock)) {
      std::array<std::uint64_t, 4> words;
      std::memcpy(words.data(), piece.data(), kBlock);
      for (std::size_t i = 0; i < lanes.size(); ++i) lanes[i].Add(words[i]);
    }
    lanes_ = lanes;
    return digest_.AddWords(piece);
  }
  void End(std::string_view rest) {
    digest_.AddRest(rest);
    open_ = false;
  }

  FileDigestOf kind_;
  Digest digest_;
  std::array<Digest, 4> lanes_;
  std::size_t bytes_ = 0;
  bool open_ = false;
};

FileProof Proved(const fs::path& path, From from, FileDigestOf kind, std::string name,
                 const std::function<void(std::string_view)>& take) {
  FileDigest digest(kind);
  ReadPieces(path, from, [&](std::string_view read) {
    digest.Add(read);
    if (take) take(read);
  });
  return digest.Take(std::move(name));
}

}  // namespace

void ForEachPiece(const fs::path& path, const std::function<void(std::string_view)>& take) {
  ReadPieces(path, From::Memory, take);
}

FileProof ReadProved(const fs::path& path, std::string name, const std::function<void(std::string_view)>& take) {
  return Proved(path, From::Memory, FileDigestOf::Megabytes, std::move(name), take);
}

FileProof ProveFile(const fs::path& path, std::string name, FileDigestOf kind) {
  return Proved(path, From::Memory, kind, std::move(name), {});
}

std::vector<std::expected<FileProof, std::string>> ProveFiles(const fs::path& folder, const std::vector<FileProof>& files,
                                                              const std::function<void(std::size_t done)>& goOn) {
  std::vector<std::expected<FileProof, std::string>> read(files.size());
  std::atomic<std::size_t> next = 0;
  const auto work = [&](bool tells) {
    for (std::size_t at = next++; at < files.size(); at = next++) {
      try {
        read[at] = Proved(folder / files[at].name, From::Disk, files[at].digestOf, files[at].name, {});
      } catch (const Failure& failure) {
        read[at] = std::unexpected(failure.cause);
      }
      if (tells) goOn(at + 1);
    }
  };
  std::future<void> beside = std::async(std::launch::async, work, false);
  work(true);
  beside.get();
  return read;
}

FileProof CopyProved(const fs::path& from, const fs::path& to, std::string name) {
  FileBeside copy(to, Readers::Group);
  FileProof proof = ReadProved(from, std::move(name), [&](std::string_view piece) { copy.Write(piece); });
  copy.TakeFreePlace();
  return proof;
}

namespace {

// A file of a folder that nobody sees yet: `fill` writes it.
void WriteUnsynced(const fs::path& to, const std::function<void(const std::function<void(std::string_view)>&)>& fill) {
  std::error_code error;
  fs::path made;
  const auto require = [&](const std::error_code& failed) {
    if (failed) throw Failure(to.string(), failed.message());
  };
  const platform::OpenFile file = platform::MakeUnique(to.parent_path() / ".", ".copy", made, error);
  require(error);
  fill([&](std::string_view piece) { require(platform::Write(file, piece)); });
  platform::BeginWriting(file);
  require(platform::GiveToReaders(file, to.parent_path(), Readers::Group));
  require(platform::RenameToFree(made, to));
}

}  // namespace

FileProof CopyUnsynced(const fs::path& from, const fs::path& to, std::string name) {
  FileProof proof;
  WriteUnsynced(to, [&](const auto& write) {
    proof = Proved(from, From::Memory, FileDigestOf::Lanes, std::move(name), write);
  });
  return proof;
}

void CopyPlain(const fs::path& from, const fs::path& to) {
  WriteUnsynced(to, [&](const auto& write) { ForEachPiece(from, write); });
}

std::string ProofText(const SetProof& proof) {
  Json tables = Json::array();
  for (const TableProof& table : proof.content.tables)
    tables.push_back({{"Table", table.Table}, {"Rows", table.Rows}, {"Digest", DigestText(table.digest)}});
  Json databases = Json::array();
  for (const DatabaseProof& database : proof.content.databases)
    databases.push_back({{"Database", database.name},
                         {"Basics", database.basics},
                         {"Formulas", database.formulas},
                         {"Batches", database.batches}});
  Json files = Json::array();
  for (const FileProof& file : proof.files)
    files.push_back({{"File", file.name},
                     {"Bytes", file.bytes},
                     {file.digestOf == FileDigestOf::Lanes ? "Lanes" : "Digest", DigestText(file.digest)}});
  const Json text{{"DataFile", proof.dataFile},
                  {"Made", proof.made.ToText()},
                  {"MadeUTC", proof.madeUtc ? Json(proof.madeUtc->ToText()) : Json()},
                  {"Program", proof.program},
                  {"UMI", proof.UMI},
                  {"FileVersion", proof.content.fileVersion},
                  {"Sound", proof.content.Sound()},
                  {"Faults", proof.content.faults},
                  {"Databases", databases},
                  {"Digests", proof.content.digestsOf == DigestsOf::Rows ? "Rows" : "Values"},
                  {"Tables", tables},
                  {"Files", files}};
  return text.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::optional<SetProof> ReadProofText(const std::string& text) {
  try {
    const Json json = Json::parse(text);
    SetProof proof;
    proof.dataFile = json.at("DataFile").get<std::string>();
    const auto made = ParseDateTime(json.at("Made").get<std::string>());
    if (!made) return std::nullopt;
    proof.made = *made;
    if (const auto utc = json.find("MadeUTC"); utc != json.end() && utc->is_string())
      proof.madeUtc = ParseDateTime(utc->get<std::string>());
    proof.program = json.at("Program").get<std::string>();
    proof.UMI = json.at("UMI").get<int>();
    proof.content.fileVersion = json.at("FileVersion").get<int>();
    proof.content.faults = json.at("Faults").get<std::vector<std::string>>();
    // An earlier program did not tell.
    proof.content.digestsOf = json.value("Digests", "Values") == "Rows" ? DigestsOf::Rows : DigestsOf::Values;
    for (const Json& table : json.at("Tables"))
      proof.content.tables.push_back({table.at("Table"), table.at("Rows"), DigestOf(table.at("Digest"))});
    for (const Json& database : json.at("Databases"))
      proof.content.databases.push_back(
          {database.at("Database"), database.at("Basics"), database.at("Formulas"), database.at("Batches")});
    for (const Json& file : json.at("Files")) {
      const bool lanes = file.contains("Lanes");
      proof.files.push_back({file.at("File"), file.at("Bytes"), DigestOf(file.at(lanes ? "Lanes" : "Digest")),
                             lanes ? FileDigestOf::Lanes : FileDigestOf::Megabytes});
    }
    return proof;
  } catch (const Json::exception&) {
    return std::nullopt;
  } catch (const std::logic_error&) {  // a digest that is none
    return std::nullopt;
  }
}

}  // namespace vellumark
