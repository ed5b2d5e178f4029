#include "core/datafile/raise_counters.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

// Behind the last number comes 1 again: of two that lie on both sides of it the low one is further on.
std::int32_t FurtherOn(std::int32_t mine, std::int32_t theirs) {
  constexpr std::int32_t kNear = kLastCounter / 10;
  const auto [low, high] = std::minmax(mine, theirs);
  return low > 0 && low <= kNear && high > kLastCounter - kNear ? low : high;
}

void RaiseLotReferences(Database& file, Database& other, const std::string& table) {
  if (!file.TableExists(table) || !other.TableExists(table)) return;
  Statement reached = other.Prepare(fmt::format("SELECT Color_Name, LotRefID FROM {} WHERE LotRefID > 0", Quoted(table)));
  Statement raise =
      file.Prepare(fmt::format("UPDATE {} SET LotRefID = ?1 WHERE Color_Name = ?2 AND COALESCE(LotRefID, 0) < ?1",
                               Quoted(table)));
  while (reached.Step()) raise.Bind(1, reached.Whole(1)).Bind(2, reached.TextView(0)).Run();
}

}  // namespace

void RaiseCounters(Database& file, Database& other) {
  const FileInfoRow mine = ReadFileInfo(file);
  const FileInfoRow theirs = ReadFileInfo(other);
  Transaction transaction(file);
  file.Prepare("UPDATE FileInfo SET BatchNumber = ?, ItemNumber = ?")
      .Bind(1, FurtherOn(mine.batchNumber, theirs.batchNumber))
      .Bind(2, FurtherOn(mine.itemNumber, theirs.itemNumber))
      .Run();
  for (const std::string& database : mine.dbList)
    for (const Table* table : {&schema::Basic, &schema::Mix})
      RaiseLotReferences(file, other, TableName(database, *table));
  transaction.Commit();
}

}  // namespace vellumark
