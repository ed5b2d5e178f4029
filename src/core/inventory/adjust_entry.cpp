#include <algorithm>
#include <cmath>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/inventory/adjust.h"

namespace vellumark {
namespace {

constexpr int kListedCounts = 100;

struct PriceChoice {
  std::string text;
  float price;
};

std::vector<PriceChoice> Choices(ColorKind kind, float basicCost, float purchaseCost) {
  if (kind == ColorKind::Mix)
    return {{"1) Basic Cost", basicCost}, {"2) Purchase Cost", purchaseCost}, {"3) No Cost", 0}};
  return {{"1) Purchase Cost", purchaseCost}, {"2) No Cost", 0}};
}

}  // namespace

Result<float> ReadAdjustQuantity(std::string_view text) {
  const auto number = ParseNumber(text);
  const double quantity = number ? RoundTo(*number, 3) : 0;
  if (!number || std::abs(quantity) > kLargestQty)
    return Refuse("Invalid Quantity - Adjust Inv.",
                  "You must enter an amount between " + Fixed(-kLargestQty, 0) + " and " + Fixed(kLargestQty, 0),
                  "AdjustInv");
  return static_cast<float>(quantity);
}

Result<std::optional<int>> ReadUnitCount(const Session& session, std::string_view text) {
  if (TrimView(text).empty()) return std::nullopt;
  const auto number = ParseNumber(text);
  if (!number || *number < 1 || *number > kLargestQty || *number != std::floor(*number))
    return Refuse("Container Count",
                  "The number of containers must be a whole number from 1 to " + Fixed(kLargestQty, 0) + ".",
                  "cmbContCount");
  const int count = static_cast<int>(*number);
  if (count > kListedCounts && !session.prompt.Ask(std::string(5, ' ') + " Large Unit Count Confirmation",
                                                   "Use " + std::to_string(count) + " for the Unit Count?"))
    return std::nullopt;
  return count;
}

std::vector<std::string> PriceChoices(ColorKind kind) {
  std::vector<std::string> texts;
  for (PriceChoice& choice : Choices(kind, 0, 0)) texts.push_back(std::move(choice.text));
  return texts;
}

Result<float> ReadLotPrice(const Session& session, const InventoryWork& work, std::string_view text) {
  const std::string typed = Trim(text);
  if (typed.empty() || session.Perm_Costs == 0) return work.UnitCost();
  for (const PriceChoice& choice : Choices(work.kind, work.basicCost, work.purchaseCost)) {
    if (EqualNoCase(typed, choice.text) || typed == choice.text.substr(0, 2)) return choice.price;
  }
  const auto number = ParseNumber(typed);
  const double price = number ? RoundTo(*number, session.DecimalPlaces) : -1;
  if (price < 0 || price > kLargestQty)
    return Refuse("Invalid Amount - Price", "You must enter currency between\n0 and " + Fixed(kLargestQty, 0),
                  "cmbPrice");
  return static_cast<float>(price);
}

Result<DateTime> ReadLotDate(std::string_view text) {
  const auto date = ParseDateTime(TrimView(text));
  if (!date || date->year < 2000)
    return Refuse("Invalid Date", "You must enter a date from 2000-01-01 on, as YYYY-MM-DD.", "lblDate");
  return date->Midnight();
}

}  // namespace vellumark
