#include "core/batch/print_options.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/base/number.h"
#include "core/settings/settings_keys.h"
#include "core/settings/support_files.h"

namespace vellumark {
namespace {

/// The switches, each with its key.
template <class Options, class Visit>
void ForEachSwitch(Options& options, const Visit& visit) {
  visit("PrintBatchInfoOption", options.batchInfo);
  visit("PrintBatchHistoryOption", options.history);
  visit("PrintCostOption", options.cost);
  visit("PrintExtraBatchDetails", options.extraDetails);
  visit("PrintLABBatchDetails", options.lab);
  visit("PrintIngInvConsumption", options.lotConsumption);
  visit("PrintQuickInfoOption", options.quickInfo);
  for (std::size_t i = 0; i < options.notes.size(); ++i)
    visit(keys::Numbered("PrintBatchNotes", static_cast<int>(i)), options.notes[i]);
  visit("PrintRecListPercent", options.recListPercent);
}

constexpr std::string_view kPercentValue = "PrintRecListPercentValue";

}  // namespace

BatchPrintOptions ReadBatchPrintOptions(const Session& session) {
  BatchPrintOptions options;
  ForEachSwitch(options,
                [&](std::string_view key, bool& on) { on = LeadingInteger(GetSupportValue(session, key)) == 1; });
  options.recListPercentValue = LeadingInteger(GetSupportValue(session, kPercentValue));
  return options;
}

Result<void> SaveBatchPrintOptions(Session& session, const BatchPrintOptions& options) {
  if (options.recListPercentValue < 0 || options.recListPercentValue > 100)
    return Refuse("Batch Settings", "Enter a percentage from 0 to 100.", "txtRecListPercent");
  session.support->settings.Change([&](SupportRecords& records) {
    ForEachSwitch(options, [&](std::string_view key, bool on) { records.Set(key, on ? "1" : "0"); });
    records.Set(kPercentValue, std::to_string(options.recListPercentValue));
  });
  session.changes.Tell({{Change::Kind::Settings, "", "", Change::What::All, ""}});
  return {};
}

}  // namespace vellumark
