#include "core/batch/default_models.h"

#include "core/session/rights.h"
#include "core/session/settings.h"

namespace vellumark {
namespace {

Result<void> MayStore(const Session& session, CommandRight right) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  return RequireCommandRight(session, right);
}

}  // namespace

BatchCostModel DefaultModels(const Session& session) {
  return NewBatchWork(session).cost;
}

void StoreDefaultCostModel(Session& session, const BatchCostModel& model) {
  StoreSettings(session,
                {setting::CostModelType.To(model.CostModelType), setting::MixCostOption.To(model.MixCostOption),
                 setting::FixedCostOfBatch.To(model.FixedCostOfBatch),
                 setting::FixedCostPerUnit.To(model.FixedCostPerUnit), setting::MarkupPercent.To(model.MarkupPercent)});
}

void StoreDefaultEmissionModels(Session& session, const BatchCostModel& model) {
  StoreSettings(session,
                {setting::VOCModelType.To(model.MixVOCModelType), setting::HAPModelType.To(model.MixHAPModelType)});
}

Result<void> SaveDefaultCostModel(Session& session, const CostModelEntry& typed) {
  if (auto may = MayStore(session, CommandRight::Costs); !may) return may;
  const Result<BatchCostModel> model = ReadCostModel(session, typed, DefaultModels(session));
  if (!model) return std::unexpected(model.error());
  StoreDefaultCostModel(session, *model);
  return {};
}

Result<void> SaveDefaultEmissionModels(Session& session, int mixVOCModelType, int mixHAPModelType) {
  if (auto may = MayStore(session, CommandRight::VOCHAP); !may) return may;
  BatchCostModel model = DefaultModels(session);
  model.MixVOCModelType = mixVOCModelType;
  model.MixHAPModelType = mixHAPModelType;
  StoreDefaultEmissionModels(session, model);
  return {};
}

}  // namespace vellumark
