#include "core/colors/color_dates.h"

#include <fmt/format.h>

#include "core/datafile/color_kind.h"

namespace vellumark {
namespace {

void Store(Session& session, ColorKind kind, std::string_view field, std::string_view name,
           const std::optional<DateTime>& when) {
  Transaction transaction(session.File());
  const int stored = session.File()
                         .Prepare(fmt::format("UPDATE {} SET {} = ?1 WHERE Color_Name = ?2",
                                              session.QuotedTable(ColorTable(kind)), field))
                         .Bind(1, Value(when))
                         .Bind(2, name)
                         .Run();
  if (stored > 0)
    transaction.Note({ChangeKind(kind), session.CurrentDatabase, std::string(name), Change::What::Updated, ""});
  transaction.Commit();
}

}  // namespace

void StoreLastProduced(Session& session, std::string_view formula, const std::optional<DateTime>& when) {
  Store(session, ColorKind::Mix, "LastProduced", formula, when);
}

void StoreLastConsumed(Session& session, std::string_view basic, const std::optional<DateTime>& when) {
  Store(session, ColorKind::Basic, "LastConsumed", basic, when);
}

}  // namespace vellumark
