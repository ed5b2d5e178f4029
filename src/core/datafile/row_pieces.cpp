#include "core/datafile/row_pieces.h"

#include <fmt/format.h>

#include <limits>

namespace vellumark {
namespace {

constexpr std::int64_t kPiece = 2000;

}  // namespace

bool ForRowPieces(Database& file, std::string_view table,
                  const std::function<bool(std::int64_t first, std::int64_t last, double percent)>& piece) {
  const std::string name = Quoted(table);
  const auto rows = static_cast<double>(file.Scalar("SELECT COUNT(*) FROM " + name).Whole());
  // By counting, since row numbers may have gaps of any size.
  Statement next = file.Prepare(
      fmt::format("SELECT RowKey FROM {} WHERE RowKey >= ? ORDER BY RowKey LIMIT 1 OFFSET {}", name, kPiece - 1));
  double done = 0;
  for (std::int64_t first = std::numeric_limits<std::int64_t>::min(); done < rows;) {
    next.Bind(1, first);
    const std::int64_t last = next.Step() ? next.Whole(0) : std::numeric_limits<std::int64_t>::max();
    next.Reset();
    done += kPiece;
    if (!piece(first, last, done >= rows ? 100.0 : 100.0 * done / rows)) return false;
    first = last == std::numeric_limits<std::int64_t>::max() ? last : last + 1;
  }
  return true;
}

}  // namespace vellumark
