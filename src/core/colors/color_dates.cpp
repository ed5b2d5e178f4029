#include "core/colors/color_dates.h"

#include <fmt/format.h>

#include "core/datafile/schema.h"

namespace vellumark {
namespace {

void Store(Session& session, const Table& table, std::string_view field, std::string_view name,
           const std::optional<DateTime>& when) {
  session.File()
      .Prepare(fmt::format("UPDATE {} SET {} = ?1 WHERE Color_Name = ?2", session.QuotedTable(table), field))
      .Bind(1, Value(when))
      .Bind(2, name)
      .Run();
}

}  // namespace

void StoreLastProduced(Session& session, std::string_view formula, const std::optional<DateTime>& when) {
  Store(session, schema::Mix, "LastProduced", formula, when);
}

void StoreLastConsumed(Session& session, std::string_view basic, const std::optional<DateTime>& when) {
  Store(session, schema::Basic, "LastConsumed", basic, when);
}

}  // namespace vellumark
