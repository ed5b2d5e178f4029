#include "core/batch/ink.h"

#include <fmt/format.h>

#include "core/datafile/engine.h"
#include "core/datafile/schema.h"

namespace vellumark {

std::optional<Ink> InkOf(const Session& session, ColorKind kind, std::string_view name, const std::string& database) {
  Statement row =
      session.File().Prepare(fmt::format("SELECT Red, Green, Blue FROM {} WHERE Color_Name = ? ORDER BY RowKey LIMIT 1",
                                         session.QuotedTable(ColorTable(kind), database)));
  row.Bind(1, name);
  if (!row.Step()) return std::nullopt;
  const auto part = [&](int column) { return static_cast<int>(row.Whole(column)); };
  const Ink ink{part(0), part(1), part(2)};
  // A row that was never given a swatch holds zeros.
  if (ink == Ink{}) return std::nullopt;
  return ink;
}

}  // namespace vellumark
