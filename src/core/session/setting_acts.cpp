#include "core/session/setting_acts.h"

#include <algorithm>

#include "core/settings/settings.h"

namespace vellumark {
namespace {

// Every new Batch and every new item of a Job is costed and rated by these.
constexpr WayIn kSettings[] = {
    {setting::CostModelType.key, Act::EditCosts},        {setting::MixCostOption.key, Act::EditCosts},
    {setting::FixedCostOfBatch.key, Act::EditCosts},     {setting::FixedCostPerUnit.key, Act::EditCosts},
    {setting::MarkupPercent.key, Act::EditCosts},        {setting::JobMixCostOption.key, Act::EditCosts},
    {setting::VOCModelType.key, Act::EditEmissions},     {setting::HAPModelType.key, Act::EditEmissions},
    {setting::JobMixVOC_Option.key, Act::EditEmissions}, {setting::JobMixHAP_Option.key, Act::EditEmissions},
};

}  // namespace

Act ActOfSetting(std::string_view key) {
  const auto* found = std::ranges::find(kSettings, key, &WayIn::name);
  return found == std::end(kSettings) ? Act::Options : found->act;
}

}  // namespace vellumark
