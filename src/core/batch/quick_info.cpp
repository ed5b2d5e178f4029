#include "core/batch/quick_info.h"

#include <fmt/format.h>

#include "core/base/units.h"

namespace vellumark {
namespace {

std::string Parts(const RecycleColor& color) {
  std::string parts;
  for (const RecycleSlot& slot : *color.slots)
    parts += fmt::format("{}{} {}%", parts.empty() ? "" : ", ", slot.BC, Fixed(slot.BQ, 3));
  return parts;
}

}  // namespace

std::vector<std::pair<std::string, std::string>> QuickInfo(const Session& session, const BatchWork& work,
                                                           std::size_t row,
                                                           const std::array<bool, kQuickInfoFields>& wanted) {
  std::vector<std::pair<std::string, std::string>> lines;
  const auto add = [&](int field, std::string value) {
    if (wanted.at(static_cast<std::size_t>(field)) && !value.empty())
      lines.emplace_back(QuickInfoCaption(field), std::move(value));
  };
  const auto stock = [&](float amount) { return fmt::format("{} {}", Fixed(amount, 3), UnitName(work.UMF)); };
  const auto perUnit = [&](float figure, int decimals) {
    return fmt::format("{} per {}", Fixed(figure, decimals), UnitName(session.UMI));
  };
  const auto common = [&](const auto& color) {
    add(0, color.Color_Code);
    add(1, stock(color.Inventory));
    add(2, stock(color.Reorder));
    add(3, color.Inv_Note);
    if (session.Perm_Costs != 0) add(4, perUnit(color.PurchaseCost, session.DecimalPlaces));
  };
  const std::size_t mixes = work.RecycledColors.size();
  if (row < mixes) {
    const RecycleColor& color = work.RecycledColors[row];
    common(color);
    add(5, Parts(color));
    add(6, perUnit(color.VOC, 3));
    add(7, perUnit(color.HAP, 3));
    add(8, perUnit(color.BasicVOC, 3));
    add(9, perUnit(color.BasicHAP, 3));
    return lines;
  }
  const std::size_t at = row - mixes;
  const BatchIngredient& color =
      at < work.Ingredients.size() ? work.Ingredients[at] : work.Additions.at(at - work.Ingredients.size());
  common(color);
  add(6, perUnit(color.VOC, 3));
  add(7, perUnit(color.HAP, 3));
  return lines;
}

}  // namespace vellumark
