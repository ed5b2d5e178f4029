#include <fmt/format.h>

#include <filesystem>
#include <memory>

#include "cli/frame.h"
#include "cli/login.h"
#include "core/session/setting_acts.h"
#include "core/session/settings.h"
#include "core/settings/catalogue.h"
#include "core/settings/support_files.h"
#include "core/shell/change_setting.h"

namespace vellumark::cli {
namespace {

// What hangs on a key stands in the Data File, where there is one.
Result<Json> SetSetting(Context& context, const std::string& key, const std::string& value) {
  if (auto allowed = RequireInDefaultFile(context, ActOfSetting(key), false); !allowed) return std::unexpected(allowed.error());
  if (key == setting::DecimalPlaces.key && !context.dataFile.empty() && std::filesystem::exists(context.dataFile))
    if (auto opened = context.open(); !opened) return std::unexpected(opened.error());
  const auto changed = ChangeSetting(context.session, key, value);
  if (!changed) return std::unexpected(changed.error());
  return Json{{key, StoredText(context.session, key)}};
}

std::string MeaningOf(const SupportRecord& record) {
  const SettingInfo* info = FindSetting(record.key);
  return info == nullptr ? std::string() : std::string(info->meaning);
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
    return Json(StoredText(context.session, *wanted));
  });

  auto* set = noun->add_subcommand("set", "Give a key another value");
  const auto key = std::make_shared<std::string>();
  const auto value = std::make_shared<std::string>();
  set->add_option("KEY", *key, "The key, in its exact case")->required();
  set->add_option("VALUE", *value, "Its new value")->required();
  commands.Add(set, Needs::Nothing, [key, value](Context& context) { return SetSetting(context, *key, *value); });

  commands.AddList(noun->add_subcommand("list", "All keys and values"), Needs::Nothing, "Settings",
                   [](Context& context) {
                     return context.Answer(TableOf<SupportRecord>()
                                               .Add("Key", &SupportRecord::key)
                                               .Add("Value", &SupportRecord::value)
                                               .Add("Meaning", MeaningOf)
                                               .Of(context.session.support->settings.Read().Records()));
                   });
}

}  // namespace vellumark::cli
