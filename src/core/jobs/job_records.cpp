#include "core/jobs/job_records.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "core/base/text.h"

namespace vellumark {
namespace {

struct EnteredValues {
  std::string JobNumber;
  std::vector<Cell> cells;
};

std::vector<EnteredValues> ReadEntered(const Session& session, std::int32_t batchNo) {
  const std::vector<std::string> fields = EnteredJobFields();
  std::string columns = "JobNumber";
  for (const std::string& field : fields) columns += ", " + Quoted(field);
  Statement rows = session.File().Prepare(
      fmt::format("SELECT {} FROM JobRecords WHERE BatchNo = ?1 AND Database = ?2 ORDER BY RowKey", columns));
  rows.Bind(1, batchNo).Bind(2, session.CurrentDatabase);
  std::vector<EnteredValues> entered;
  while (rows.Step()) {
    EnteredValues& row = entered.emplace_back(rows.Text(0), std::vector<Cell>{});
    for (std::size_t i = 0; i < fields.size(); ++i)
      row.cells.emplace_back(fields[i], rows.Get(static_cast<int>(i) + 1));
  }
  return entered;
}

std::vector<Cell> NothingEntered() {
  std::vector<Cell> cells;
  for (const std::string& field : EnteredJobFields()) {
    const int place = schema::JobRecords.Find(field);
    const bool number = schema::JobRecords.fields[static_cast<std::size_t>(place)].type == FieldType::Single;
    cells.emplace_back(field, number ? Value(0.0F) : Value(""));
  }
  return cells;
}

std::string JobNumberOf(const std::vector<Cell>& row) {
  const auto found = std::ranges::find_if(row, [](const Cell& cell) { return cell.first == "JobNumber"; });
  if (found == row.end()) throw std::logic_error("a Job Record without its JobNumber");
  return found->second.Text();
}

}  // namespace

std::vector<std::string> EnteredJobFields() {
  std::vector<std::string> fields{"DesignID", "DesignDesc"};
  for (const Field& field : schema::JobRecords.fields)
    if (field.name.starts_with("UD_")) fields.push_back(field.name);
  return fields;
}

void ReplaceJobRecords(Session& session, std::int32_t batchNo, const std::vector<std::vector<Cell>>& rows) {
  Transaction transaction(session.File());
  const auto tell = [&](const std::string& number) {
    transaction.Note({Change::Kind::Job, "", number, Change::What::Updated, {}});
  };
  const std::vector<EnteredValues> entered = ReadEntered(session, batchNo);
  for (const EnteredValues& before : entered) tell(before.JobNumber);
  session.File()
      .Prepare("DELETE FROM JobRecords WHERE BatchNo = ?1 AND Database = ?2")
      .Bind(1, batchNo)
      .Bind(2, session.CurrentDatabase)
      .Run();
  for (const std::vector<Cell>& row : rows) {
    const std::string number = JobNumberOf(row);
    std::vector<Cell> cells = NothingEntered();
    for (const EnteredValues& before : entered)
      if (EqualNoCase(before.JobNumber, number)) cells = before.cells;
    cells.insert(cells.end(), row.begin(), row.end());
    InsertRow(session.File(), schema::JobRecords, schema::JobRecords.name, cells);
    tell(number);
  }
  transaction.Commit();
}

}  // namespace vellumark
