#include "core/batch/default_models.h"

#include "core/session/setting_acts.h"
#include "core/session/settings.h"

namespace vellumark {
namespace {

// Calls `take` with the setting of each field and the field.
template <class Take>
void ForEachCost(const Take& take) {
  take(setting::CostModelType, &BatchCostModel::CostModelType);
  take(setting::MixCostOption, &BatchCostModel::MixCostOption);
  take(setting::FixedCostOfBatch, &BatchCostModel::FixedCostOfBatch);
  take(setting::FixedCostPerUnit, &BatchCostModel::FixedCostPerUnit);
  take(setting::MarkupPercent, &BatchCostModel::MarkupPercent);
}
template <class Take>
void ForEachEmission(const Take& take) {
  take(setting::VOCModelType, &BatchCostModel::MixVOCModelType);
  take(setting::HAPModelType, &BatchCostModel::MixHAPModelType);
}

}  // namespace

BatchCostModel DefaultModels(const Session& session) {
  BatchCostModel model;
  const auto read = [&](const auto& named, auto BatchCostModel::*member) {
    model.*member = GetSetting(session, named);
  };
  ForEachCost(read);
  ForEachEmission(read);
  return model;
}

void StoreDefaultCostModel(Session& session, const BatchCostModel& model) {
  std::vector<SettingText> values;
  ForEachCost([&](const auto& named, auto BatchCostModel::*member) { values.push_back(named.To(model.*member)); });
  StoreSettings(session, values);
}

void StoreDefaultEmissionModels(Session& session, const BatchCostModel& model) {
  std::vector<SettingText> values;
  ForEachEmission([&](const auto& named, auto BatchCostModel::*member) { values.push_back(named.To(model.*member)); });
  StoreSettings(session, values);
}

Result<void> SaveDefaultCostModel(Session& session, const CostModelEntry& typed) {
  if (auto may = RequireAct(session, ActOfSetting(setting::CostModelType.key)); !may) return may;
  const Result<BatchCostModel> model = ReadCostModel(session, typed, DefaultModels(session));
  if (!model) return std::unexpected(model.error());
  StoreDefaultCostModel(session, *model);
  return {};
}

Result<void> SaveDefaultEmissionModels(Session& session, int mixVOCModelType, int mixHAPModelType) {
  if (auto may = RequireAct(session, ActOfSetting(setting::VOCModelType.key)); !may) return may;
  BatchCostModel model = DefaultModels(session);
  model.MixVOCModelType = mixVOCModelType;
  model.MixHAPModelType = mixHAPModelType;
  StoreDefaultEmissionModels(session, model);
  return {};
}

}  // namespace vellumark
