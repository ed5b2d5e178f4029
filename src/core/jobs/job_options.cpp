#include "core/jobs/job_options.h"

#include <fmt/format.h>

#include <type_traits>
#include <vector>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/session/settings.h"

namespace vellumark {
namespace {

constexpr double kMostNumber = 99999999;

template <class Options, class Visit>
void ForEachSetting(Options& options, const Visit& visit) {
  for (int i = 0; i < kUserFields; ++i) {
    auto& text = options.texts.at(static_cast<std::size_t>(i));
    visit(setting::JobCustomTextLabelCaption[i], text.caption);
    visit(setting::JobUDTxtDefault[i], text.hasDefault);
    visit(setting::JobUDTxtValue[i], text.value);
    visit(setting::JobUDTxtRequired[i], text.required);
    auto& number = options.numbers.at(static_cast<std::size_t>(i));
    visit(setting::JobCustomNumericLabelCaption[i], number.caption);
    visit(setting::Jobs_UDNum_Format[i], number.decimals);
  }
}

}  // namespace

UserFieldOptions ReadJobOptions(const Session& session) {
  UserFieldOptions options;
  ForEachSetting(options, [&](const auto& named, auto& value) { value = GetSetting(session, named); });
  return options;
}

Result<void> SaveJobOptions(Session& session, UserFieldOptions options) {
  if (auto fields = CheckUserFields(options, "Job Options"); !fields) return fields;
  std::vector<SettingText> values;
  ForEachSetting(options, [&](const auto& named, auto& value) {
    if constexpr (std::is_same_v<decltype(value), std::string&>) value = Trim(value);
    values.push_back(named.To(value));
  });
  StoreSettings(session, values);
  return {};
}

std::array<std::string, kJobUserFields> JobTextDefaults(const Session& session) {
  std::array<std::string, kJobUserFields> texts;
  for (int i = 0; i < kJobUserFields; ++i)
    if (GetSetting(session, setting::JobUDTxtDefault[i]))
      texts.at(static_cast<std::size_t>(i)) = GetSetting(session, setting::JobUDTxtValue[i]);
  return texts;
}

Result<void> CheckRequiredJobTexts(const Session& session, const std::array<std::string, kJobUserFields>& texts) {
  for (int i = 0; i < kJobUserFields; ++i)
    if (GetSetting(session, setting::JobUDTxtRequired[i]) && TrimView(texts.at(static_cast<std::size_t>(i))).empty())
      return Refuse("More Data Incomplete", "Required User Defined Text Fields Incomplete.",
                    schema::Numbered("UD_Text", i));
  return {};
}

Result<std::string> ReadJobText(const Session& session, int number, std::string_view typed) {
  std::string text = Left(TrimView(typed), kUserTextWidth);
  if (text.empty() && GetSetting(session, setting::JobUDTxtRequired[number]))
    return Refuse("More Data Incomplete", "Required User Defined Text Fields Incomplete.",
                  schema::Numbered("UD_Text", number));
  return text;
}

Result<float> ReadJobNumeric(const Session& session, int number, std::string_view typed) {
  const auto amount = TrimView(typed).empty() ? std::optional<double>(0) : ParseNumber(typed);
  if (!amount || *amount < -kMostNumber || *amount > kMostNumber)
    return Refuse("Invalid Amount", fmt::format("{} is not a valid amount. Please enter a valid amount.", typed),
                  schema::Numbered("UD_Numeric", number));
  return RoundSingle(*amount, GetSetting(session, setting::Jobs_UDNum_Format[number]));
}

std::string JobNumericText(const Session& session, int number, float value) {
  return Fixed(value, GetSetting(session, setting::Jobs_UDNum_Format[number]));
}

}  // namespace vellumark
