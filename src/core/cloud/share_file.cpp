#include "core/cloud/share_file.h"

#include <algorithm>
#include <array>
#include <system_error>

#include "core/base/files.h"
#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/datafile/engine.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

void Remove(const fs::path& file) {
  std::error_code error;
  fs::remove(file, error);
  if (error) throw Failure(file.string(), error.message());
}

// What is of Batches in a Database: the recipes that were made, what they took, what was weighed.
constexpr std::array kOfBatches{&schema::Batch, &schema::BatchLotInv, &schema::BatchScaleResults};

bool StaysHere(const std::string& table, const std::vector<std::string>& databases) {
  if (StartsWithNoCase(table, "MSys")) return true;
  for (const Table* global : {&schema::JobRecords, &schema::Users, &schema::Dispenser})
    if (EqualNoCase(table, global->name)) return true;
  return std::ranges::any_of(databases, [&](const std::string& database) {
    return std::ranges::any_of(kOfBatches,
                               [&](const Table* suffix) { return EqualNoCase(table, TableName(database, *suffix)); });
  });
}

}  // namespace

void CopyOpenFile(Session& session, const fs::path& copy) {
  Remove(copy);
  session.File().CopyCompacted(copy);
}

void MakeShareFile(const fs::path& wholeCopy, const fs::path& share) {
  fs::path work = share;
  work += ".cut";
  Remove(work);
  Remove(share);
  std::error_code error;
  fs::copy_file(wholeCopy, work, error);
  if (error) throw Failure(work.string(), error.message());
  try {
    const auto file = Database::Open(work, OpenMode::Exclusive);
    const std::vector<std::string> databases = ReadFileInfo(*file).dbList;
    Transaction transaction(*file);
    for (const std::string& table : file->TableNames())
      if (StaysHere(table, databases)) file->DropTable(table);
    transaction.Commit();
    file->CopyCompacted(share);
  } catch (...) {
    fs::remove(work, error);
    throw;
  }
  Remove(work);
}

}  // namespace vellumark
