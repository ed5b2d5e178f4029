#include "desktop/kit/name_source.h"

#include <algorithm>

#include "core/base/text.h"
#include "core/colors/names.h"

namespace vellumark::desktop {
namespace {

bool Before(const std::string& a, const std::string& b) {
  return CompareNoCase(a, b) < 0;
}

void Append(const std::vector<std::string>& names, const std::string& front, std::size_t limit,
            std::vector<std::string>& found) {
  for (auto it = std::lower_bound(names.begin(), names.end(), front, Before);
       it != names.end() && found.size() < limit && StartsWithNoCase(*it, front); ++it) {
    if (std::ranges::find(found, *it) == found.end()) found.push_back(*it);
  }
}

}  // namespace

NameSource SortedNames(std::vector<std::string> names) {
  std::ranges::sort(names, Before);
  const auto kept = std::make_shared<const std::vector<std::string>>(std::move(names));
  const auto list = [kept](std::string_view typed, std::size_t limit) {
    std::vector<std::string> found;
    Append(*kept, std::string(kPantonePrefix).append(typed), limit, found);
    Append(*kept, std::string(typed), limit, found);
    return found;
  };
  const auto complete = [list](std::string_view typed) {
    if (typed.empty()) return std::string();
    const std::vector<std::string> found = list(typed, 1);
    return found.empty() ? std::string() : found.front();
  };
  return {complete, list};
}

}  // namespace vellumark::desktop
