#include "core/colors/swatch.h"

#include <fmt/format.h>

#include <array>
#include <cmath>

#include "core/base/number.h"
#include "core/datafile/writer.h"

namespace vellumark {

Result<int> ReadSwatchPart(std::string_view field, std::string_view typed) {
  const auto part = ParseNumber(typed);
  if (!part || *part < 0 || *part > 255 || *part != std::floor(*part))
    return Refuse("Invalid Swatch", fmt::format("{} is a whole number from 0 to 255, not \"{}\".", field, typed),
                  std::string(field));
  return static_cast<int>(*part);
}

Result<void> SetSwatch(Session& session, ColorKind kind, std::string_view name, const SwatchChange& change) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  const std::string table = session.Table(ColorTable(kind));
  Statement row = session.File().Prepare(
      fmt::format("SELECT RowKey, Color_Guide, Red, Green, Blue FROM {} WHERE Color_Name = ? ORDER BY RowKey LIMIT 1",
                  Quoted(table)));
  row.Bind(1, name);
  if (!row.Step())
    return Refuse("Color Not Found", fmt::format("{} is not found in this database.", name), "Color_Name");
  if (!row.TextView(1).empty())
    return Refuse("Invalid Swatch", fmt::format("The swatch of {} comes from the guide {}.", name, row.TextView(1)));
  const auto part = [&](const std::optional<int>& typed, int column) {
    return change.clears ? 0 : typed.value_or(static_cast<int>(row.Whole(column)));
  };
  std::array parts{part(change.Red, 2), part(change.Green, 3), part(change.Blue, 4)};
  if (!change.clears && parts == std::array{0, 0, 0}) parts.fill(1);
  const std::vector<Cell> cells{{"Red", parts[0]}, {"Green", parts[1]}, {"Blue", parts[2]}};
  const std::int64_t key = row.Whole(0);
  row.Reset();
  Transaction transaction(session.File());
  UpdateRow(session.File(), ColorTable(kind), table, key, cells);
  transaction.Note({ChangeKind(kind), session.CurrentDatabase, std::string(name), Change::What::Updated, ""});
  transaction.Commit();
  return {};
}

}  // namespace vellumark
