#include "core/datafile/lifecycle.h"

#include <fmt/format.h>

#include <system_error>

#include "core/base/files.h"
#include "core/base/number.h"
#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/datafile/stock_history.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

std::int32_t StepCounter(Database& file, const std::string& field, std::int32_t current) {
  const std::int32_t next = current + 1 > kLastCounter ? 1 : current + 1;
  Transaction transaction(file);
  file.Prepare("UPDATE FileInfo SET " + Quoted(field) + " = ?").Bind(1, next).Run();
  transaction.Commit();
  return next;
}

}  // namespace

VersionGate GateOf(int fileVersion) {
  if (fileVersion == kFileVersion) return VersionGate::Current;
  if (fileVersion == kArchiveFileVersion) return VersionGate::ReadOnly;
  return fileVersion >= 2 && fileVersion < kFileVersion ? VersionGate::Older : VersionGate::Unusable;
}

int ReadFileVersion(const fs::path& path) {
  const auto file = Database::Open(path, OpenMode::ReadOnly);
  return ReadFileInfo(*file).fileVersion;
}

FileInfoRow ReadFileInfo(Database& file) {
  if (!file.TableExists("FileInfo"))
    throw Failure(file.Path().string(), "is not a Data File: it has no FileInfo table");
  Statement row = file.Prepare("SELECT FileVersion, CurrentDB, DBList, BatchNumber, ItemNumber FROM FileInfo LIMIT 1");
  if (!row.Step()) throw Failure(file.Path().string(), "is damaged: its FileInfo table is empty");
  FileInfoRow info;
  info.fileVersion = static_cast<int>(row.Whole(0));
  info.currentDB = row.Text(1);
  info.dbList = SplitMarked(row.TextView(2), '|');
  info.batchNumber = row.IsNull(3) ? 1 : static_cast<std::int32_t>(row.Whole(3));
  info.itemNumber = row.IsNull(4) ? 1 : static_cast<std::int32_t>(row.Whole(4));
  return info;
}

bool IsArchiveCopy(int fileVersion, const fs::path& path) {
  const fs::path real = RealPath(path);
  const std::string text = real.string();
  const std::string extension = real.extension().string();
  return fileVersion != kFileVersion || text.find("/Auto Backup") != std::string::npos ||
         text.find("Archive") != std::string::npos || EqualNoCase(extension, ".vkb") || EqualNoCase(extension, ".vka");
}

std::unique_ptr<Database> CreateBeside(const FileBeside& place) {
  return WorkBeside(place, [&] {
    auto file = Database::Create(place.Path());
    Transaction transaction(*file);
    for (const Table* table : schema::Global()) file->CreateTable(table->name, *table);
    InsertRow(*file, schema::FileInfo, "FileInfo",
              {{"FileVersion", kFileVersion},
               {"CurrentDB", ""},
               {"DBList", ""},
               {"BatchNumber", 1},
               {"ItemNumber", 1},
               {"DaysToRemindBackup", 1}});
    CreateStockHistory(*file);
    transaction.Commit();
    return file;
  });
}

void RequireFreeName(const fs::path& path) {
  if (Stands(path)) throw Failure(path.string(), "already exists");
}

void CreateFile(const fs::path& path) {
  RequireFreeName(path);
  FileBeside place(path, Readers::Group);
  CreateBeside(place);
  place.TakeFreePlace();
}

fs::path SafetyCopyPath(const fs::path& path) {
  fs::path copy = path;
  copy.replace_extension(".vkb");
  return copy;
}

void CompactFile(Database& file) {
  FileBeside place(file.Path(), Readers::Group);
  const fs::path safetyCopy = SafetyCopyPath(place.Target());
  if (safetyCopy == place.Target()) throw Failure(file.Path().string(), "is a backup copy and cannot be compacted");
  file.CopyCompacted(place.Path());
  place.Replace();
  std::error_code error;
  fs::remove(safetyCopy, error);
  if (error)
    throw Failure(safetyCopy.string(), "is out of date and cannot be removed: " + error.message() + "; " +
                                           file.Path().string() + " is compacted");
}

fs::path NextFreeName(const fs::path& path) {
  std::string stem = path.stem().string();
  if (stem.ends_with(')')) {
    const std::size_t open = stem.rfind('(');
    if (open != std::string::npos && open + 2 < stem.size() &&
        stem.find_first_not_of("0123456789", open + 1) == stem.size() - 1)
      stem.resize(open);
  }
  std::error_code ignored;
  for (int n = 1;; ++n) {
    fs::path candidate = path.parent_path() / fmt::format("{}({}){}", stem, n, path.extension().string());
    if (!fs::exists(candidate, ignored)) return candidate;
  }
}

std::int32_t StepBatchNumber(Database& file, std::int32_t current) {
  return StepCounter(file, "BatchNumber", current);
}
std::int32_t StepItemNumber(Database& file, std::int32_t current) {
  return StepCounter(file, "ItemNumber", current);
}

}  // namespace vellumark
