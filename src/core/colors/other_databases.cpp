#include "core/colors/other_databases.h"

#include <fmt/format.h>

#include "core/base/text.h"

namespace vellumark {

std::vector<std::string> FindInOtherDatabases(const Session& session, std::string_view name, ColorKind kind) {
  std::vector<std::string> hits;
  for (const std::string& database : session.databaseList) {
    if (EqualNoCase(database, session.CurrentDatabase)) continue;
    const std::string table = session.QuotedTable(ColorTable(kind), database);
    if (!session.File().Scalar(fmt::format("SELECT 1 FROM {} WHERE Color_Name = ?1 LIMIT 1", table), {name}).IsNull())
      hits.push_back(database);
  }
  return hits;
}

std::string DisplayMsg(const Session& session, std::string_view name, ColorKind kind) {
  return fmt::format("The {} {} was not found in the {} database, but it was found in the following database(s).",
                     kind == ColorKind::Mix ? "Master Formula" : "Basic Color", name, session.CurrentDatabase);
}

}  // namespace vellumark
