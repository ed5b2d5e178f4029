#include "core/jobs/job_renames.h"

#include <fmt/format.h>

#include "core/base/text.h"
#include "core/datafile/schema.h"
#include "core/datafile/stock_trail.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace {

const Table& Layout() {
  static const Table table{"MSysJobRenames",
                           {Field{"Line", FieldType::Long}, Field{"JobNumber", FieldType::Text, 30, true},
                            Field{"NewNumber", FieldType::Text, 30, true}},
                           {}};
  return table;
}

}  // namespace

void NoteJobRename(Database& file, std::string_view number, std::string_view newNumber) {
  if (!file.TableExists(Layout().name)) file.CreateTable(Layout().name, Layout());
  InsertRow(file, Layout(), Layout().name,
            {{"Line", LastStockLine(file)}, {"JobNumber", number}, {"NewNumber", newNumber}});
}

JobRenames::JobRenames(Database& file) {
  if (!file.TableExists(Layout().name)) return;
  Statement rows =
      file.Prepare(fmt::format("SELECT Line, JobNumber, NewNumber FROM {} ORDER BY RowKey", Quoted(Layout().name)));
  while (rows.Step()) renames_.push_back({rows.Whole(0), rows.Text(1), rows.Text(2)});
}

std::string JobRenames::Now(std::string_view number, std::int64_t line) const {
  std::string now(number);
  for (const Rename& rename : renames_)
    if (rename.line >= line && EqualNoCase(rename.number, now)) now = rename.newNumber;
  return now;
}

}  // namespace vellumark
