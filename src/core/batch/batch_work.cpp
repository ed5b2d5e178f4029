#include "core/batch/batch_work.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/batch/default_models.h"
#include "core/inventory/lots.h"
#include "core/session/settings.h"

namespace vellumark {
BatchSettings ReadBatchSettings(const Session& session) {
  return {.mixByDefault = GetSetting(session, setting::BatchActionButton),
          .userOrder = GetSetting(session, setting::IngSortOrder),
          .ShowBatchGraphic = GetSetting(session, setting::ShowBatchGraphic),
          .Overpour = GetSetting(session, setting::Overpour)};
}

BatchWork NewBatchWork(const Session& session) {
  BatchWork work;
  work.UMF = GetSetting(session, setting::UMF);
  work.settings = ReadBatchSettings(session);
  work.cost = DefaultModels(session);
  return work;
}

void SetQuantityText(BatchWork& work, std::string text) {
  if (text == work.QuantityText) return;
  work.QuantityText = std::move(text);
  work.QuantityChanged = !work.Rows.empty();
}

Result<void> ValidateQuantity(const BatchWork& work) {
  const auto quantity = ParseNumber(work.QuantityText);
  if (quantity && *quantity > 0 && *quantity <= kMostQuantity) return {};
  return Refuse("Batch Window - Invalid Amount",
                fmt::format("You must enter an amount between {} and {}", Fixed(0.0, 3), Fixed(kMostQuantity, 3)),
                "txtQuantity");
}

float StockInUnit(const Session& session, int unit, float inventory, double lotTotal) {
  float stock = inventory;
  if (session.InvLotTracking != 0 && lotTotal != 0)
    stock = static_cast<float>(static_cast<double>(stock) + RoundSingle(lotTotal, 3));
  return unit == session.UMI ? stock : static_cast<float>(static_cast<double>(stock) * UnitFactor(session.UMI, unit));
}

float UnlottedMade(const Session& session, const BatchWork& work, std::string_view name) {
  if (!(work.made.unlotted > 0) || !EqualNoCase(name, work.Color_Name)) return 0;
  return std::clamp(UnlottedQty(session, ColorKind::Mix, name), 0.0F, work.made.unlotted);
}

bool UsesFormula(const BatchWork& work, std::string_view name) {
  if (name.empty()) return false;
  return EqualNoCase(work.Color_Name, name) ||
         std::ranges::any_of(work.RecycledColors,
                             [name](const RecycleColor& color) { return EqualNoCase(color.Color_Name, name); });
}

bool BatchIsFull(const BatchWork& work) {
  constexpr auto most = static_cast<std::size_t>(kMostBatchLines);
  return work.RecycledColors.size() + work.FormulaIngredients.size() > most ||
         work.RecycledColors.size() + work.Ingredients.size() + work.Additions.size() >= most;
}

}  // namespace vellumark
