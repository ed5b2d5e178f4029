#include "core/base/counted.h"

#include <fmt/format.h>

namespace vellumark {

std::string Counted(std::int64_t count, std::string_view one, std::string_view many) {
  if (count == 1) return fmt::format("1 {}", one);
  return many.empty() ? fmt::format("{} {}s", count, one) : fmt::format("{} {}", count, many);
}

}  // namespace vellumark
