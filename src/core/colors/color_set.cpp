#include "core/colors/color_set.h"

#include <algorithm>
#include <optional>

#include "core/base/text.h"
#include "core/colors/names.h"

namespace vellumark {
namespace {

std::string_view WithoutPrefix(std::string_view name) {
  if (HasPantonePrefix(name)) name.remove_prefix(kPantonePrefix.size());
  return name;
}

// Cuts the next item off the rest; nothing when what is left is no whole item.
std::optional<std::string_view> NextItem(std::string_view& rest) {
  const std::size_t end = rest.find('>');
  if (end == std::string_view::npos || rest.front() != '<') return std::nullopt;
  const std::string_view name = rest.substr(1, end - 1);
  rest.remove_prefix(end + 1);
  return name;
}

}  // namespace

std::vector<std::string> SplitColorSet(std::string_view colorSet) {
  std::vector<std::string> names;
  while (!colorSet.empty()) {
    const auto name = NextItem(colorSet);
    if (!name) break;
    names.emplace_back(*name);
  }
  return names;
}

ColorSetTest::ColorSetTest(std::string_view formulaSet) {
  while (!formulaSet.empty()) {
    const auto name = NextItem(formulaSet);
    if (!name) break;
    items_.push_back(WithoutPrefix(*name));
  }
}

bool ColorSetTest::Contains(std::string_view candidateSet) const {
  while (!candidateSet.empty()) {
    const auto item = NextItem(candidateSet);
    if (!item) return false;
    const std::string_view name = WithoutPrefix(*item);
    const bool found = std::ranges::any_of(items_, [&](std::string_view held) { return EqualNoCase(held, name); });
    if (!found) return false;
  }
  return true;
}

bool ColorSetContains(std::string_view formulaSet, std::string_view candidateSet) {
  return ColorSetTest(formulaSet).Contains(candidateSet);
}

}  // namespace vellumark
