#include "core/scale/scale_setup.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/settings/catalogue.h"

namespace vellumark {
namespace {

template <std::size_t N>
std::size_t PlaceOf(const std::array<std::string_view, N>& words, std::string_view word, std::size_t standard) {
  const auto found = std::ranges::find_if(words, [&](std::string_view one) { return EqualNoCase(one, word); });
  return found == words.end() ? standard : static_cast<std::size_t>(found - words.begin());
}

template <std::size_t N>
bool Holds(const std::array<std::string_view, N>& words, std::string_view word) {
  return std::ranges::find(words, word) != words.end();
}

std::unexpected<Refusal> NoValue(std::string_view key, std::string_view what) {
  return Refuse("Scale Settings", fmt::format("{} is {}.", key, what), std::string(key));
}

// A port by its number is one of Windows.
std::string PortName(const std::string& port) {
  const bool number =
      !port.empty() && std::ranges::all_of(port, [](char c) { return c >= '0' && c <= '9'; });
  return number ? "COM" + port : port;
}

// One place for the keys and the members of a setup.
template <class Setup, class Do>
void ForEachValue(Setup& setup, const Do& apply) {
  apply(setting::CommPort, setup.CommPort);
  apply(setting::BaudRate, setup.BaudRate);
  apply(setting::Parity, setup.Parity);
  apply(setting::WordLen, setup.WordLen);
  apply(setting::StopBit, setup.StopBit);
  apply(setting::Echo, setup.Echo);
  apply(setting::NetID, setup.NetID);
  apply(setting::Handshaking, setup.Handshaking);
  apply(setting::ScaleUnit, setup.ScaleUnit);
  apply(setting::ScaleCapacity, setup.ScaleCapacity);
  apply(setting::WeighTolerance, setup.WeighTolerance);
  apply(setting::WeighToleranceInPercent, setup.WeighToleranceInPercent);
  apply(setting::WeighHeaviestFirst, setup.WeighHeaviestFirst);
}

}  // namespace

LineSettings ScaleSetup::Line() const {
  return {.port = PortName(CommPort),
          .baud = BaudRate,
          .parity = kParities[PlaceOf(kParities, Parity, 1)].front(),
          .wordLen = WordLen,
          .stopBits = StopBit,
          .handshaking = static_cast<LineHandshaking>(PlaceOf(kHandshakings, Handshaking, 1))};
}

LineSettings ScaleSetup::FactoryLine() const {
  const LineSettings line = Line();
  return {.port = line.port, .handshaking = line.handshaking};
}

std::string PortSettings(const LineSettings& line) {
  return fmt::format("{},{},{},{}", line.baud, line.parity, line.wordLen, line.stopBits);
}

std::string LineText(const LineSettings& line) {
  return fmt::format("{} {} {}", line.port, PortSettings(line),
                     kHandshakings[static_cast<std::size_t>(line.handshaking)]);
}

std::optional<LineSettings> ParseLine(std::string_view text) {
  const std::size_t last = text.rfind(' ');
  const std::size_t middle = last == std::string_view::npos || last == 0 ? last : text.rfind(' ', last - 1);
  if (middle == std::string_view::npos || middle == 0) return std::nullopt;
  const auto parts = Split(text.substr(middle + 1, last - middle - 1), ',');
  if (parts.size() != 4 || parts[1].size() != 1 || !Holds(kHandshakings, text.substr(last + 1))) return std::nullopt;
  return LineSettings{
      .port = std::string(text.substr(0, middle)),
      .baud = LeadingInteger(parts[0]),
      .parity = parts[1].front(),
      .wordLen = LeadingInteger(parts[2]),
      .stopBits = LeadingInteger(parts[3]),
      .handshaking = static_cast<LineHandshaking>(PlaceOf(kHandshakings, text.substr(last + 1), 1))};
}

void StoreScaleSettings(Session& session, const std::vector<SettingText>& values) {
  SupportFile& file = session.support->scale;
  const auto change = [&](SupportRecords& records) {
    for (const auto& [key, value] : values)
      if (!records.Set(key, value)) records.Append(key, value);
  };
  if (file.HoldsRecords()) {
    file.Change(change);
  } else {
    SupportRecords records = DefaultScaleSettings();
    change(records);
    file.Write(records);
  }
  session.changes.Tell({{Change::Kind::Settings, "", "", Change::What::All, ""}});
}

ScaleSetup ReadScaleSetup(const Session& session) {
  ScaleSetup setup;
  ForEachValue(setup, [&](const auto& setting, auto& value) { value = GetScaleSetting(session, setting); });
  return setup;
}

Result<void> CheckScaleValues(const ScaleSetup& setup) {
  if (std::ranges::find(kBaudRates, setup.BaudRate) == std::end(kBaudRates))
    return NoValue("BaudRate", setting::BaudRate.meaning);
  if (!Holds(kParities, setup.Parity)) return NoValue("Parity", setting::Parity.meaning);
  if (!Holds(kHandshakings, setup.Handshaking)) return NoValue("Handshaking", setting::Handshaking.meaning);
  Result<void> valid;
  ForEachValue(setup, [&](const auto& setting, const auto& value) {
    const auto named = setting.Named();
    std::string text;
    if constexpr (std::same_as<std::decay_t<decltype(value)>, std::string>) {
      text = value;
    } else if constexpr (std::same_as<std::decay_t<decltype(value)>, float>) {
      text = ShortestText(value);
    } else {
      text = std::to_string(static_cast<int>(value));
    }
    if (valid) valid = CheckSettingText(named.info, named.key, text);
    if (!valid && valid.error().field == "VALUE") valid.error().field = named.key;
  });
  return valid;
}

Result<void> StoreScaleSetup(Session& session, const ScaleSetup& setup) {
  if (auto valid = CheckScaleValues(setup); !valid) return valid;
  StoreScaleSettings(session, ScaleSetupTexts(setup));
  return {};
}

std::vector<SettingText> ScaleSetupTexts(const ScaleSetup& setup) {
  std::vector<SettingText> texts;
  ForEachValue(setup, [&](const auto& setting, const auto& value) { texts.push_back(setting.To(value)); });
  return texts;
}

Result<void> SetScaleValue(ScaleSetup& setup, std::string_view key, std::string_view value) {
  bool known = false;
  Result<void> valid;
  ForEachValue(setup, [&](const auto& setting, auto& member) {
    if (!EqualNoCase(setting.key, key)) return;
    known = true;
    valid = CheckSettingText(&setting, setting.key, value);
    if (valid) member = setting.Named().Of(value);
  });
  if (!known) return Refuse("Scale Settings", fmt::format("{} is no setting of the scale.", key), std::string(key));
  return valid ? CheckScaleValues(setup) : valid;
}

}  // namespace vellumark
