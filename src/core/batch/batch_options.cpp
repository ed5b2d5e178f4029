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
std::string FieldName(const char* name, int number) {
  return name + std::to_string(number);
}

// What can stand in a settings file and between the bars of a column set.
Result<void> CheckText(std::string_view text, const std::string& field) {
  if (text.find_first_of("\"|\r\n") != std::string_view::npos)
    return Refuse(kTitle, "The text cannot hold a double quote, a vertical bar or a line end.", field);
  if (CharCount(text) > kUserTextWidth)
    return Refuse(kTitle, fmt::format("The text cannot be longer than {} characters.", kUserTextWidth), field);
  try {
    ToCp1252(text);
  } catch (const BadValue& bad) {
    return Refuse(kTitle, bad.what(), field);
  }
  return {};
}

Result<void> CheckCaption(std::string_view caption, const std::string& field) {
  if (TrimView(caption).empty()) return Refuse(kTitle, "Enter a caption for this field.", field);
  return CheckText(caption, field);
}

Result<void> CheckFields(const BatchOptions& options) {
  for (int i = 0; i < kUserFields; ++i) {
    const UserTextOption& text = options.texts.at(static_cast<std::size_t>(i));
    if (auto caption = CheckCaption(text.caption, FieldName("txtTextCaption", i)); !caption) return caption;
    if (auto value = CheckText(text.value, FieldName("txtTextValue", i)); !value) return value;
  }
  for (int i = 0; i < kUserFields; ++i) {
    const UserNumberOption& number = options.numbers.at(static_cast<std::size_t>(i));
    if (auto caption = CheckCaption(number.caption, FieldName("txtNumberCaption", i)); !caption) return caption;
    if (number.decimals < setting::Batches_UDNum_Format.limits.least || number.decimals > kMostUserDecimals)
      return Refuse(kTitle, "Select a number of decimals from the list.", FieldName("cmbNumberFormat", i));
  }
  return {};
}

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
  for (int i = 0; i < kUserFields; ++i) {
    auto& text = options.texts.at(static_cast<std::size_t>(i));
    visit(setting::BatchCustomTextLabelCaption[i], text.caption);
    visit(setting::BatchUDTxtDefault[i], text.hasDefault);
    visit(setting::BatchUDTxtValue[i], text.value);
    visit(setting::BatchUDTxtRequired[i], text.required);
    auto& number = options.numbers.at(static_cast<std::size_t>(i));
    visit(setting::BatchCustomNumericLabelCaption[i], number.caption);
    visit(setting::Batches_UDNum_Format[i], number.decimals);
  }
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
  if (auto fields = CheckFields(options); !fields) return fields;
  std::vector<SettingText> values;
  ForEachSetting(options, [&](const auto& named, auto& value) {
    if constexpr (std::is_same_v<decltype(value), std::string&>) value = Trim(value);
    values.push_back(named.To(value));
  });
  StoreSettings(session, values);
  return {};
}

}  // namespace vellumark
