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

void TellUnusableSettings(Session& session) {
  constexpr std::size_t kMostLines = 10;
  const std::vector<std::string> faults = UnusableSettings(session.support->settings.Read());
  if (faults.empty()) return;
  std::string text;
  for (const std::string& fault : std::span(faults).first(std::min(faults.size(), kMostLines))) text += fault + "\n";
  if (faults.size() > kMostLines) text += fmt::format("And {} more.\n", faults.size() - kMostLines);
  session.prompt.Tell("Settings", text + "Until they are set anew, their defaults are in force.", Icon::Exclamation);
}

}  // namespace vellumark
