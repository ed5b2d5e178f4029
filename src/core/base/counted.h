#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace vellumark {

/// "1 row", "3 rows"; `many` where it is not made by an "s".
std::string Counted(std::int64_t count, std::string_view one, std::string_view many = {});
template <class Count>
  requires(!std::is_same_v<Count, std::int64_t> && std::is_integral_v<Count>)
std::string Counted(Count count, std::string_view one, std::string_view many = {}) {
  return Counted(static_cast<std::int64_t>(count), one, many);
}

}  // namespace vellumark
