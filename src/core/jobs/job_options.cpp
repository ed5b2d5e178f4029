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

constexpr UserFieldSettings kSettings{
    setting::JobCustomTextLabelCaption,    setting::JobUDTxtDefault,  setting::JobUDTxtValue, setting::JobUDTxtRequired,
    setting::JobCustomNumericLabelCaption, setting::Jobs_UDNum_Format};

}  // namespace

UserFieldOptions ReadJobOptions(const Session& session) {
  UserFieldOptions options;
  ForEachUserField(options, kSettings, [&](const auto& named, auto& value) { value = GetSetting(session, named); });
  return options;
}

Result<void> SaveJobOptions(Session& session, UserFieldOptions options) {
  if (auto fields = CheckUserFields(options, "Job Options"); !fields) return fields;
  std::vector<SettingText> values;
  ForEachUserField(options, kSettings, TrimmedInto(values));
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
