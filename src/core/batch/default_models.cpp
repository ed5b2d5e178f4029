#include "core/batch/default_models.h"

#include <string_view>
#include <utility>
#include <vector>

#include "core/session/rights.h"
#include "core/settings/settings_keys.h"
#include "core/settings/support_files.h"

namespace vellumark {
namespace {

// All of them or none, then whoever shows them.
void Store(Session& session, const std::vector<std::pair<std::string_view, std::string>>& values) {
  session.support->settings.Change([&](SupportRecords& records) {
    for (const auto& [key, value] : values) records.Set(key, value);
  });
  session.changes.Tell({{Change::Kind::Settings, "", "", Change::What::All, ""}});
}

Result<void> MayStore(const Session& session, CommandRight right) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  return RequireCommandRight(session, right);
}

}  // namespace

BatchCostModel DefaultModels(const Session& session) {
  return NewBatchWork(session).cost;
}

void StoreDefaultCostModel(Session& session, const BatchCostModel& model) {
  Store(session, {{keys::CostModelType, std::to_string(model.CostModelType)},
                  {keys::MixCostOption, std::to_string(model.MixCostOption)},
                  {keys::FixedCostOfBatch, ShortestText(model.FixedCostOfBatch)},
                  {keys::FixedCostPerUnit, ShortestText(model.FixedCostPerUnit)},
                  {keys::MarkupPercent, ShortestText(model.MarkupPercent)}});
}

void StoreDefaultEmissionModels(Session& session, const BatchCostModel& model) {
  Store(session, {{keys::VOCModelType, std::to_string(model.MixVOCModelType)},
                  {keys::HAPModelType, std::to_string(model.MixHAPModelType)}});
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
