#include <fmt/format.h>

#include <memory>

#include "cli/frame.h"
#include "core/session/options.h"
#include "core/settings/setting_values.h"
#include "core/settings/settings_keys.h"
#include "core/settings/support_files.h"

namespace vellumark::cli {
namespace {

Result<Json> SetSetting(Context& context, const std::string& key, const std::string& value) {
  SupportFile& settings = context.session.support->settings;
  if (!settings.Read().Contains(key))
    return Refuse("Settings", fmt::format("The settings have no key {}.", key), "KEY");
  if (key == keys::InvCutoff) {
    if (auto cutoff = ReadInvCutoff(value); !cutoff) return std::unexpected(cutoff.error());
  }
  if (key == keys::UDCNameCCodeLen) {
    if (auto length = ReadNameLength(value); !length) return std::unexpected(length.error());
  }
  if (auto meant = CheckSettingValue(key, value); !meant) return std::unexpected(meant.error());
  settings.SetSupportValue(key, value);
  return Json{{key, value}};
}

}  // namespace

void AddSettingsCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "settings", "The settings: get, set, list");

  auto* get = noun->add_subcommand("get", "The value of a key");
  const auto wanted = std::make_shared<std::string>();
  get->add_option("KEY", *wanted, "The key, in its exact case")->required();
  commands.Add(get, Needs::Nothing, [wanted](Context& context) -> Result<Json> {
    if (!context.session.support->settings.Read().Contains(*wanted))
      return Refuse("Settings", fmt::format("The settings have no key {}.", *wanted), "KEY");
    return Json(GetSupportValue(context.session, *wanted));
  });

  auto* set = noun->add_subcommand("set", "Give a key another value");
  const auto key = std::make_shared<std::string>();
  const auto value = std::make_shared<std::string>();
  set->add_option("KEY", *key, "The key, in its exact case")->required();
  set->add_option("VALUE", *value, "Its new value")->required();
  commands.Add(set, Needs::Nothing, [key, value](Context& context) { return SetSetting(context, *key, *value); });

  commands.Add(noun->add_subcommand("list", "All keys and values"), Needs::Nothing,
               [](Context& context) -> Result<Json> {
                 Json rows = Json::array();
                 for (const SupportRecord& record : context.session.support->settings.Read().Records())
                   rows.push_back({{"Key", record.key}, {"Value", record.value}});
                 return rows;
               });
}

}  // namespace vellumark::cli
