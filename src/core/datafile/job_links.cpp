#include "core/datafile/job_links.h"

#include <fmt/format.h>

#include "core/datafile/kept_rows.h"

namespace vellumark {
namespace {

std::string Batches(std::string_view database) {
  return Quoted(TableName(database, schema::Batch));
}

void TellBatch(Transaction& transaction, std::string_view database, std::int32_t batchNo) {
  transaction.Note(
      {Change::Kind::Batch, std::string(database), std::to_string(batchNo), Change::What::Updated, {}});
}

}  // namespace

void StoreBatchJob(Database& file, std::string_view database, std::int32_t batchNo) {
  Transaction transaction(file);
  file.Prepare(
          fmt::format("UPDATE {} SET JobNumber = (SELECT CASE COUNT(*) WHEN 0 THEN '' WHEN 1 THEN MIN(JobNumber) ELSE "
                      "'{}' END FROM JobRecords WHERE BatchNo = ?1 AND Database = ?2) WHERE BatchNo = ?1",
                      Batches(database), kSplitJobs))
      .Bind(1, batchNo)
      .Bind(2, database)
      .Run();
  TellBatch(transaction, database, batchNo);
  transaction.Commit();
}

void StoreBatchLot(Database& file, std::string_view database, std::int32_t batchNo, std::int32_t ref) {
  Transaction transaction(file);
  file.Prepare(fmt::format("UPDATE {} SET LotRefID = ?2 WHERE BatchNo = ?1", Batches(database)))
      .Bind(1, batchNo)
      .Bind(2, ref)
      .Run();
  for (const Table* items : JobTables(file))
    file.Prepare(fmt::format("UPDATE {} SET LotRefID = ?2 WHERE BatchNo = ?1 AND Database = ?3", Quoted(items->name)))
        .Bind(1, batchNo)
        .Bind(2, ref)
        .Bind(3, database)
        .Run();
  TellBatch(transaction, database, batchNo);
  transaction.Commit();
}

}  // namespace vellumark
