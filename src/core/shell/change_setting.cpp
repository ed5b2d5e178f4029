#include "core/shell/change_setting.h"

#include <fmt/format.h>

#include "core/colors/resets.h"
#include "core/session/options.h"
#include "core/session/setting_acts.h"
#include "core/session/settings.h"
#include "core/settings/catalogue.h"
#include "core/settings/support_files.h"

namespace vellumark {

Result<bool> ChangeSetting(Session& session, std::string_view key, std::string_view value) {
  if (auto allowed = RequireAct(session, ActOfSetting(key)); !allowed) return std::unexpected(allowed.error());
  const SettingInfo* info = FindSetting(key);
  if (info == nullptr && !session.support->settings.Read().Contains(key))
    return Refuse("Settings", fmt::format("The settings have no key {}.", key), "KEY");
  if (auto meant = CheckSettingText(info, key, value); !meant) return std::unexpected(meant.error());
  if (info == &setting::DecimalPlaces) return ChangeDecimalPlaces(session, setting::DecimalPlaces.Named().Of(value));
  const auto [UMI, UMF] = std::pair(session.UMI, session.UMF);
  StoreSettings(session, {{std::string(key), std::string(value)}});
  TellNewUnit(session, setting::UMI.key, UMI, session.UMI);
  TellNewUnit(session, setting::UMF.key, UMF, session.UMF);
  return true;
}

}  // namespace vellumark
