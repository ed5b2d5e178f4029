#include "core/batch/prior_batches.h"

#include <fmt/format.h>

#include "core/batch/job_rows.h"

namespace vellumark {

std::optional<PriorBatch> LastBatchOf(const Session& session, std::string_view colorName, std::int32_t before,
                                      bool forJobs) {
  Statement row = session.File().Prepare(
      fmt::format("SELECT BatchNo, Date_Entered, ActualQuantity, UMF FROM {} WHERE Color_Name = ?1 AND BatchNo < ?2{} "
                  "ORDER BY BatchNo DESC LIMIT 1",
                  session.QuotedTable(schema::Batch), forJobs ? " AND JobNumber <> ''" : ""));
  if (!row.Bind(1, colorName).Bind(2, before).Step()) return std::nullopt;
  PriorBatch batch{
      static_cast<std::int32_t>(row.Whole(0)), row.Date(1), row.Single(2), static_cast<int>(row.Whole(3)), {}};
  batch.jobs = ReadJobLines(session, batch.BatchNo, batch.UMF, batch.ActualQuantity);
  return batch;
}

std::vector<BatchNote> OtherBatchNotes(const Session& session, std::string_view colorName, std::int32_t except,
                                       int most) {
  Statement rows = session.File().Prepare(
      fmt::format("SELECT BatchNo, Date_Entered, Notes FROM {} WHERE Color_Name = ?1 AND BatchNo <> ?2 AND Notes <> '' "
                  "ORDER BY BatchNo DESC LIMIT ?3",
                  session.QuotedTable(schema::Batch)));
  rows.Bind(1, colorName).Bind(2, except).Bind(3, most);
  std::vector<BatchNote> notes;
  while (rows.Step()) notes.push_back({static_cast<std::int32_t>(rows.Whole(0)), rows.Date(1), rows.Text(2)});
  return notes;
}

}  // namespace vellumark
