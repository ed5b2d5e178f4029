#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/scale/reading.h"
#include "core/scale/scale_setup.h"

namespace vellumark {

constexpr int kBootTimer = 30000;  ///< the scale boots or takes up new settings, in milliseconds

/// What a port that cannot be used means, in words for the operator.
std::string LineFaultText(const std::string& port, const LineFault& fault);

/// The one link to the scale: switches it on and off through the line and asks it for the weight. There is no command
/// that asks the scale whether it is on: `ScalePowered` and a mark in the scale's file are all that is known.
class ScaleLink {
 public:
  ScaleLink(Session& session, SerialLine& line, ScaleWaits& waits, int bootTime = kBootTimer)
      : session_(session), line_(line), waits_(waits), bootTime_(bootTime) {}

  SerialLine& Line() { return line_; }
  /// What an earlier run left on is on.
  void TakeOver();

  /// Switches the scale on with the saved settings or with others that are tried: the factory line, "PON", a boot, the
  /// new settings, another boot; then the link is open on them. Refused while it is on. What fails leaves it counted
  /// as off, and says why.
  Result<void> PowerOn(const ScaleSetup& setup);
  /// Back to the factory settings and off, on the line on which the scale is. It counts as off afterwards, whatever
  /// happened; a line that could not be used is the refusal.
  Result<void> PowerOff();

  /// Opens the link of a scale that is on. Refused with the reason, also while the scale is off.
  Result<void> OpenForUse();
  void Close();
  bool IsReading() const { return loop_.has_value(); }

  /// One step of the reading: to be called every 50 ms or so with a steady clock in milliseconds. A line that was lost
  /// is looked for again once a second.
  void Step(std::int64_t now);
  /// Zeroes the scale; false when there is no line to do it on.
  bool Tare(std::int64_t now);
  const std::optional<Reading>& Last() const;
  bool IsFresh(std::int64_t now) const { return loop_ && !lost_ && loop_->IsFresh(now); }
  /// The weight, where it is fresh; else why there is none.
  Result<double> Weight(std::int64_t now) const;
  /// Why nothing can be read, while the line is lost.
  const std::optional<std::string>& Lost() const { return lost_; }

 private:
  std::optional<LineFault> Send(const LineSettings& on, std::string_view command);
  std::optional<LineFault> TestPort(const LineSettings& saved);
  std::optional<LineFault> RunPowerOn(const ScaleSetup& setup);
  std::optional<LineFault> RunPowerOff(const LineSettings& used);
  void SetPowered(const std::optional<LineSettings>& line);
  void Lose(const LineFault& fault, std::int64_t now);

  Session& session_;
  SerialLine& line_;
  ScaleWaits& waits_;
  int bootTime_;
  std::optional<LineSettings> used_;  // on which the scale is, while it is on
  std::optional<ReadingLoop> loop_;
  std::optional<std::string> lost_;
  std::int64_t tryAgain_ = 0;
};

/// "CFC 9600 7 1 1 0 0" and a carriage return.
std::string ConfigureCommand(const ScaleSetup& setup);

}  // namespace vellumark
