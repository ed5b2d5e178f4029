#include "core/session/settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <span>

#include "core/base/number.h"
#include "core/base/units.h"
#include "core/settings/catalogue.h"
#include "core/settings/support_files.h"

namespace vellumark {

std::string StoredText(const Session& session, std::string_view key) {
  return session.support->settings.GetSupportValue(key);
}

void StoreSettings(Session& session, const std::vector<SettingText>& values) {
  session.support->settings.Change([&](SupportRecords& records) {
    for (const auto& [key, value] : values)
      if (!records.Set(key, value)) records.Append(key, value);
  });
  ReadSettings(session);
  session.changes.Tell({{Change::Kind::Settings, "", "", Change::What::All, ""}});
}

float InvCutoffInForce(const Session& session) {
  const auto cutoff = ParseNumber(StoredText(session, setting::InvCutoff.key));
  if (cutoff) return static_cast<float>(std::max(*cutoff, 0.0));
  return RoundSingle(0.5 * static_cast<double>(UnitFactor(UnitPound, session.UMI)), 3);
}

namespace {

// Of what every settings file has had from the first one on: units and rules of stock, which mean something else without a
// word. Keys of later times an older file may lack.
std::string MissingSettings(const Session& session, const SupportRecords& settings) {
  const std::pair<std::string_view, std::string> inForce[] = {
      {setting::UMI.key, fmt::format("{} ({})", session.UMI, UnitName(session.UMI))},
      {setting::UMF.key, fmt::format("{} ({})", session.UMF, UnitName(session.UMF))},
      {setting::AllowNegInv.key, fmt::format("{:d}", GetSetting(session, setting::AllowNegInv))},
      {setting::InvCutoff.key, ShortestText(InvCutoffInForce(session))},
      {setting::InvLotTracking.key, fmt::format("{}", session.InvLotTracking)},
  };
  std::string text;
  for (const auto& [key, value] : inForce)
    if (!settings.Contains(key)) text += fmt::format("{} is missing in the file and counts as {}.\n", key, value);
  return text;
}

}  // namespace

void TellUnusableSettings(Session& session) {
  constexpr std::size_t kMostLines = 10;
  const SupportRecords settings = session.support->settings.Read();
  const std::string missing = MissingSettings(session, settings);
  const std::vector<std::string> faults = UnusableSettings(settings);
  if (missing.empty() && faults.empty()) return;
  std::string text = missing;
  for (const std::string& fault : std::span(faults).first(std::min(faults.size(), kMostLines))) text += fault + "\n";
  if (faults.size() > kMostLines) text += fmt::format("And {} more.\n", faults.size() - kMostLines);
  text += faults.empty() ? "Set them anew, or restore the settings of a backup."
                         : "Until they are set anew, their defaults are in force.";
  session.prompt.Tell("Settings", std::move(text), Icon::Exclamation);
}

}  // namespace vellumark
