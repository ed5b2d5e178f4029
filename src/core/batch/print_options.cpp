#include "core/batch/print_options.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/base/number.h"
#include "core/session/settings.h"

namespace vellumark {
namespace {

template <class Options, class Visit>
void ForEachSetting(Options& options, const Visit& visit) {
  visit(setting::PrintBatchInfoOption.Named(), options.batchInfo);
  visit(setting::PrintBatchHistoryOption.Named(), options.history);
  visit(setting::PrintCostOption.Named(), options.cost);
  visit(setting::PrintExtraBatchDetails.Named(), options.extraDetails);
  visit(setting::PrintLABBatchDetails.Named(), options.lab);
  visit(setting::PrintIngInvConsumption.Named(), options.lotConsumption);
  visit(setting::PrintQuickInfoOption.Named(), options.quickInfo);
  for (std::size_t i = 0; i < options.notes.size(); ++i)
    visit(setting::PrintBatchNotes[static_cast<int>(i)], options.notes[i]);
  visit(setting::PrintRecListPercent.Named(), options.recListPercent);
  visit(setting::PrintRecListPercentValue.Named(), options.recListPercentValue);
}

}  // namespace

BatchPrintOptions ReadBatchPrintOptions(const Session& session) {
  BatchPrintOptions options;
  ForEachSetting(options, [&](const auto& named, auto& value) { value = GetSetting(session, named); });
  return options;
}

Result<void> SaveBatchPrintOptions(Session& session, const BatchPrintOptions& options) {
  if (!IsUsable(setting::PrintRecListPercentValue, std::to_string(options.recListPercentValue)))
    return Refuse("Batch Settings", "Enter a percentage from 0 to 100.", "txtRecListPercent");
  std::vector<SettingText> values;
  ForEachSetting(options, [&](const auto& named, const auto& value) { values.push_back(named.To(value)); });
  StoreSettings(session, values);
  return {};
}

}  // namespace vellumark
