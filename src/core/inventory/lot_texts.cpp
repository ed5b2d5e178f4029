#include "core/inventory/lot_texts.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/inventory/lots.h"

namespace vellumark {

Result<void> CheckLotText(std::string_view text, std::string field) {
  const auto isControl = [](char c) { return (c >= 0 && c < ' ') || c == 127; };
  if (std::ranges::any_of(text, isControl))
    return Refuse("Invalid Lot", "A lot number, location or container cannot hold a line end or a tab.",
                  std::move(field));
  if (const std::size_t count = CharCount(text); count > kLotTextLength)
    return Refuse("Invalid Lot",
                  fmt::format("A lot number, location or container has at most {} characters.\n{} has {}.",
                              kLotTextLength, text, count),
                  std::move(field));
  return {};
}

bool SameLotText(std::string_view a, std::string_view b) {
  if (EqualNoCase(a, b)) return true;
  return CharCount(a) != a.size() && CharCount(b) != b.size() && Upper(a) == Upper(b);
}

}  // namespace vellumark
