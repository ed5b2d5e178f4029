#include "core/colors/color_rows.h"

namespace vellumark {
namespace {

std::vector<std::string> NewBasicFields() {
  std::vector<std::string> fields;
  for (const Cell& cell : BasicFields().Cells({}, kNewRowUses)) fields.push_back(cell.first);
  return fields;
}

}  // namespace

NewBasicRows::NewBasicRows(const Session& session, std::string_view database)
    : writer_(session.File(), schema::Basic, session.Table(schema::Basic, database), NewBasicFields()) {}

std::int64_t NewBasicRows::Insert(const BasicColor& color) {
  std::size_t place = 0;
  for (const Cell& cell : BasicFields().Cells(color, kNewRowUses)) writer_.Set(place++, cell.second);
  return writer_.Insert();
}

std::int64_t InsertAdditiveSet(const Session& session, std::string_view database, const AdditiveSet& set) {
  return InsertRow(session.File(), schema::Additives, session.Table(schema::Additives, database),
                   AdditiveSetCells(set));
}

}  // namespace vellumark
