#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/refusal.h"
#include "core/scale/serial_line.h"
#include "core/session/session.h"
#include "core/settings/settings.h"
#include "core/settings/support_files.h"

namespace vellumark {

inline constexpr int kBaudRates[] = {300, 600, 1200, 2400, 4800, 9600};
inline constexpr std::array<std::string_view, 3> kParities{"None", "Odd", "Even"};
inline constexpr std::array<std::string_view, 4> kHandshakings{"comNone", "comXOnXoff", "comRTS", "comRTSXOnXOff"};

/// How the scale is reached and what it does, as its settings file has it.
struct ScaleSetup {
  std::string CommPort;  ///< empty: the scale was never set up
  int BaudRate = 300;
  std::string Parity = "Odd";
  int WordLen = 7;
  int StopBit = 1;
  int Echo = 0;
  int NetID = 0;
  std::string Handshaking = "comXOnXoff";
  int ScaleUnit = 0;  ///< 0: the unit of the Batch
  float ScaleCapacity = 0;
  float WeighTolerance = 0;
  bool WeighToleranceInPercent = false;
  bool WeighHeaviestFirst = false;
  bool operator==(const ScaleSetup&) const = default;

  /// The line as it is used.
  LineSettings Line() const;
  /// The line as the scale wakes: 300,O,7,1.
  LineSettings FactoryLine() const;
};

/// "300,O,7,1".
std::string PortSettings(const LineSettings& line);
/// "/dev/ttyUSB0 300,O,7,1 comXOnXoff" and back; nothing for a text that is none.
std::string LineText(const LineSettings& line);
std::optional<LineSettings> ParseLine(std::string_view text);

/// A value of the scale's file; what a missing key or file means is its initial value.
template <class T>
T GetScaleSetting(const Session& session, const Setting<T>& setting) {
  const bool there = session.support && session.support->scale.Exists();
  const std::string text = there ? session.support->scale.GetSupportValue(setting.key) : std::string();
  return setting.Named().Of(text.empty() ? setting.initial : std::string_view(text));
}
/// Writes values of the scale's file in one step. A file that is not there yet is made.
void StoreScaleSettings(Session& session, const std::vector<SettingText>& values);

ScaleSetup ReadScaleSetup(const Session& session);
/// Refuses what the scale cannot be told, naming the key.
Result<void> CheckScaleValues(const ScaleSetup& setup);
Result<void> StoreScaleSetup(Session& session, const ScaleSetup& setup);

/// "KEY" and "VALUE" of all settings of the scale, and one of them set in `setup`. Refuses an unknown key and a value
/// that it cannot have.
std::vector<SettingText> ScaleSetupTexts(const ScaleSetup& setup);
Result<void> SetScaleValue(ScaleSetup& setup, std::string_view key, std::string_view value);

}  // namespace vellumark
