#include "core/batch/batch_options.h"

#include <fmt/format.h>

#include <string_view>
#include <type_traits>
#include <vector>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/session/settings.h"

namespace vellumark {
namespace {

constexpr const char* kTitle = "Batch Settings";
template <class Options, class Visit>
void ForEachSetting(Options& options, const Visit& visit) {
  visit(setting::UMF.Named(), options.UMF);
  visit(setting::BatchActionButton.Named(), options.mixByDefault);
  visit(setting::IngSortOrder.Named(), options.userOrder);
  visit(setting::ShowBatchGraphic.Named(), options.ShowBatchGraphic);
  visit(setting::Overpour.Named(), options.Overpour);
  visit(setting::ReturnToInventory.Named(), options.ReturnToInventory);
  visit(setting::BatchComplete.Named(), options.BatchComplete);
  visit(setting::BatchDefaultLotNumberValue.Named(), options.BatchDefaultLotNumberValue);
  visit(setting::ShowQuickInfoOption.Named(), options.ShowQuickInfo);
  for (int i = 0; i < kQuickInfoFields; ++i)
    visit(setting::QuickInfoField[i], options.QuickInfoField.at(static_cast<std::size_t>(i)));
  ForEachUserField(options,
                   UserFieldSettings{setting::BatchCustomTextLabelCaption, setting::BatchUDTxtDefault,
                                     setting::BatchUDTxtValue, setting::BatchUDTxtRequired,
                                     setting::BatchCustomNumericLabelCaption, setting::Batches_UDNum_Format},
                   visit);
}

}  // namespace

const char* QuickInfoCaption(int field) {
  static constexpr std::array<const char*, kQuickInfoFields> captions{"Color Code",
                                                                      "Inventory",
                                                                      "Reorder Point",
                                                                      "Inventory Note",
                                                                      "Cost",
                                                                      "Formula",
                                                                      "VOC",
                                                                      "HAP",
                                                                      "VOC from Basics (Master Formulas)",
                                                                      "HAP from Basics (Master Formulas)"};
  return captions.at(static_cast<std::size_t>(field));
}

BatchOptions ReadBatchOptions(const Session& session) {
  BatchOptions options;
  ForEachSetting(options, [&](const auto& named, auto& value) { value = GetSetting(session, named); });
  return options;
}

Result<void> SaveBatchOptions(Session& session, BatchOptions options) {
  if (UnitName(options.UMF).empty()) return Refuse(kTitle, "Select a unit from the list.", "cmbUMF");
  if (auto fields = CheckUserFields(options, kTitle); !fields) return fields;
  std::vector<SettingText> values;
  ForEachSetting(options, TrimmedInto(values));
  StoreSettings(session, values);
  return {};
}

}  // namespace vellumark
