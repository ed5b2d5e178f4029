#include "core/batch/batch_options.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/settings/settings_keys.h"
#include "core/settings/support_files.h"

namespace vellumark {
namespace {

constexpr const char* kTitle = "Batch Settings";
constexpr std::string_view kTextCaption = "BatchCustomTextLabelCaption";
constexpr std::string_view kNumberCaption = "BatchCustomNumericLabelCaption";
constexpr std::string_view kTextDefault = "BatchUDTxtDefault";
constexpr std::string_view kTextValue = "BatchUDTxtValue";
constexpr std::string_view kTextRequired = "BatchUDTxtRequired";
constexpr std::string_view kNumberFormat = "Batches_UDNum_Format";
constexpr std::string_view kQuickInfoField = "QuickInfoField";

int Number(const Session& session, std::string_view key) {
  return LeadingInteger(GetSupportValue(session, key));
}

bool IsOn(const Session& session, std::string_view key) {
  return Number(session, key) == 1;
}

std::string Flag(bool on) {
  return on ? "1" : "0";
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
    if (auto caption = CheckCaption(text.caption, keys::Numbered("txtTextCaption", i)); !caption) return caption;
    if (auto value = CheckText(text.value, keys::Numbered("txtTextValue", i)); !value) return value;
  }
  for (int i = 0; i < kUserFields; ++i) {
    const UserNumberOption& number = options.numbers.at(static_cast<std::size_t>(i));
    if (auto caption = CheckCaption(number.caption, keys::Numbered("txtNumberCaption", i)); !caption) return caption;
    if (number.decimals < 0 || number.decimals > kMostUserDecimals)
      return Refuse(kTitle, "Select a number of decimals from the list.", keys::Numbered("cmbNumberFormat", i));
  }
  return {};
}

using KeyValues = std::vector<std::pair<std::string, std::string>>;

KeyValues RecordsOf(const BatchOptions& options) {
  KeyValues values{{std::string(keys::UMF), std::to_string(options.UMF)},
                   {"BatchActionButton", Flag(!options.recycleByDefault)},
                   {"IngSortOrder", Flag(!options.sortByAmount)},
                   {std::string(keys::ReturnToInventory), Flag(options.ReturnToInventory)},
                   {"ShowBatchGraphic", Flag(options.ShowBatchGraphic)},
                   {std::string(keys::Overpour), Flag(options.Overpour)},
                   {std::string(keys::BatchComplete), Flag(options.BatchComplete)},
                   {std::string(keys::BatchDefaultLotNumberValue), Flag(options.BatchDefaultLotNumberValue)},
                   {"ShowQuickInfoOption", Flag(options.ShowQuickInfo)}};
  for (int i = 0; i < kQuickInfoFields; ++i)
    values.emplace_back(keys::Numbered(kQuickInfoField, i),
                        Flag(options.QuickInfoField.at(static_cast<std::size_t>(i))));
  for (int i = 0; i < kUserFields; ++i) {
    const UserTextOption& text = options.texts.at(static_cast<std::size_t>(i));
    const UserNumberOption& number = options.numbers.at(static_cast<std::size_t>(i));
    values.emplace_back(keys::Numbered(kTextCaption, i), Trim(text.caption));
    values.emplace_back(keys::Numbered(kTextDefault, i), Flag(text.hasDefault));
    values.emplace_back(keys::Numbered(kTextValue, i), Trim(text.value));
    values.emplace_back(keys::Numbered(kTextRequired, i), Flag(text.required));
    values.emplace_back(keys::Numbered(kNumberCaption, i), Trim(number.caption));
    values.emplace_back(keys::Numbered(kNumberFormat, i), std::to_string(number.decimals));
  }
  return values;
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
  options.UMF = session.UMF;
  options.recycleByDefault = Number(session, "BatchActionButton") == 0;
  options.sortByAmount = Number(session, "IngSortOrder") == 0;
  options.ReturnToInventory = IsOn(session, keys::ReturnToInventory);
  options.ShowBatchGraphic = Number(session, "ShowBatchGraphic") != 0;
  options.Overpour = IsOn(session, keys::Overpour);
  options.BatchComplete = IsOn(session, keys::BatchComplete);
  options.BatchDefaultLotNumberValue = IsOn(session, keys::BatchDefaultLotNumberValue);
  options.ShowQuickInfo = IsOn(session, "ShowQuickInfoOption");
  for (int i = 0; i < kQuickInfoFields; ++i)
    options.QuickInfoField.at(static_cast<std::size_t>(i)) = IsOn(session, keys::Numbered(kQuickInfoField, i));
  for (int i = 0; i < kUserFields; ++i) {
    UserTextOption& text = options.texts.at(static_cast<std::size_t>(i));
    text.caption = GetSupportValue(session, keys::Numbered(kTextCaption, i));
    text.hasDefault = IsOn(session, keys::Numbered(kTextDefault, i));
    text.value = GetSupportValue(session, keys::Numbered(kTextValue, i));
    text.required = IsOn(session, keys::Numbered(kTextRequired, i));
    UserNumberOption& number = options.numbers.at(static_cast<std::size_t>(i));
    number.caption = GetSupportValue(session, keys::Numbered(kNumberCaption, i));
    number.decimals = std::clamp(Number(session, keys::Numbered(kNumberFormat, i)), 0, kMostUserDecimals);
  }
  return options;
}

Result<void> SaveBatchOptions(Session& session, const BatchOptions& options) {
  if (UnitName(options.UMF).empty()) return Refuse(kTitle, "Select a unit from the list.", "cmbUMF");
  if (auto fields = CheckFields(options); !fields) return fields;
  session.support->settings.Change([&](SupportRecords& records) {
    for (const auto& [key, value] : RecordsOf(options)) records.Set(key, value);
  });
  ReadSettings(session);
  session.changes.Tell({{Change::Kind::Settings, "", "", Change::What::All, ""}});
  return {};
}

}  // namespace vellumark
