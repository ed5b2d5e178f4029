#include "core/batch/scale_results.h"

#include <fmt/format.h>

#include "core/datafile/writer.h"

namespace vellumark {

std::vector<WeighedLine> ReadScaleResults(const Session& session, std::int32_t batchNo) {
  std::vector<WeighedLine> lines;
  const std::string table = session.Table(schema::BatchScaleResults);
  // A copy that an earlier program made has none, and is only looked at.
  if (!session.File().TableExists(table)) return lines;
  Statement row = session.File().Prepare(
      fmt::format("SELECT IngType, ColorName, BeginningWeight, EndingWeight FROM {} WHERE BatchID = ? ORDER BY RowKey",
                  Quoted(table)));
  row.Bind(1, batchNo);
  while (row.Step())
    lines.push_back({.kind = LineKindOf(row.Whole(0)),
                     .name = row.Text(1),
                     .BeginningWeight = row.Single(2),
                     .EndingWeight = row.Single(3)});
  return lines;
}

void DeleteScaleResults(Session& session, std::int32_t batchNo) {
  session.File()
      .Prepare(fmt::format("DELETE FROM {} WHERE BatchID = ?", session.QuotedTable(schema::BatchScaleResults)))
      .Bind(1, batchNo)
      .Run();
}

void WriteScaleResults(Session& session, const BatchRecord& record) {
  DeleteScaleResults(session, record.BatchNo);
  for (const WeighedLine& line : record.weighed)
    InsertRow(session.File(), schema::BatchScaleResults, session.Table(schema::BatchScaleResults),
              {{"BatchID", record.BatchNo},
               {"ColorName", line.name},
               {"BeginningWeight", line.BeginningWeight},
               {"EndingWeight", line.EndingWeight},
               {"IngType", static_cast<int>(line.kind)}});
}

}  // namespace vellumark
