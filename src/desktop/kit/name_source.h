#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vellumark::desktop {

/// Where a name box gets names from: the core's own query, or a list.
struct NameSource {
  /// The first name that begins with the typed text, tried behind "PANTONE " first; empty when there is none.
  std::function<std::string(std::string_view typed)> complete;
  /// Names that begin so, at most `limit`, for the list under the box.
  std::function<std::vector<std::string>(std::string_view typed, std::size_t limit)> list;
};

/// A NameSource over names that are kept here, sorted; fast at any number of names.
NameSource SortedNames(std::vector<std::string> names);

}  // namespace vellumark::desktop
