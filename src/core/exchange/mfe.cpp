#include "core/exchange/mfe.h"

#include "core/base/number.h"
#include "core/base/text.h"

namespace vellumark {

std::string MfeRow(std::string_view name, const std::vector<std::pair<std::string, float>>& parts) {
  std::string row(name);
  for (const auto& [ingredient, amount] : parts) {
    row += "\t" + ingredient + "\t" + Fixed(amount, 3);
  }
  return row + "\r\n";
}

std::string MfeBytes(const std::string& text) {
  return FitsCp1252(text) ? ToCp1252(text) : text;
}

}  // namespace vellumark
