#include "core/shell/change_setting.h"

#include <fmt/format.h>

#include "core/base/number.h"
#include "core/colors/resets.h"
#include "core/session/acts.h"
#include "core/session/options.h"
#include "core/settings/setting_values.h"
#include "core/settings/settings_keys.h"
#include "core/settings/support_files.h"

namespace vellumark {

Result<bool> ChangeSetting(Session& session, std::string_view key, std::string_view value) {
  if (auto allowed = RequireAct(session, Act::Options); !allowed) return std::unexpected(allowed.error());
  SupportFile& settings = session.support->settings;
  if (!settings.Read().Contains(std::string(key)))
    return Refuse("Settings", fmt::format("The settings have no key {}.", key), "KEY");
  if (key == keys::InvCutoff) {
    if (auto cutoff = ReadInvCutoff(value); !cutoff) return std::unexpected(cutoff.error());
  }
  if (key == keys::UDCNameCCodeLen) {
    if (auto length = ReadNameLength(value); !length) return std::unexpected(length.error());
  }
  if (auto meant = CheckSettingValue(key, value); !meant) return std::unexpected(meant.error());
  if (key == keys::DecimalPlaces) return ChangeDecimalPlaces(session, static_cast<int>(LeadingInteger(value)));
  const auto before = static_cast<int>(LeadingInteger(GetSupportValue(session, key)));
  settings.SetSupportValue(std::string(key), std::string(value));
  ReadSettings(session);
  session.changes.Tell({{Change::Kind::Settings, "", "", Change::What::All, ""}});
  if (key == keys::UMI || key == keys::UMF) TellNewUnit(session, key, before, static_cast<int>(LeadingInteger(value)));
  return true;
}

}  // namespace vellumark
