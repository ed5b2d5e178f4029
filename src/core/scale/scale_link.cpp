#include "core/scale/scale_link.h"

#include <fmt/format.h>

namespace vellumark {
namespace {

constexpr std::string_view kPowerOn = "PON\r";
constexpr std::string_view kPowerOff = "POF\r";
constexpr std::string_view kToFactory = "CFC 300 7 1 1 0 0\r";
constexpr int kTryAgain = 1000;

}  // namespace

std::string LineFaultText(const std::string& port, const LineFault& fault) {
  switch (fault.kind) {
    case LineFault::Kind::NoSuchPort:
      return fmt::format("There is no port {}.", port);
    case LineFault::Kind::InUse:
      return fmt::format("Another program uses the port {}.", port);
    case LineFault::Kind::Denied:
      return fmt::format(
          "Permission denied: this user may not use the port {}.\n"
          "Ports belong to a group of the system, often \"dialout\"; whoever is added to it has to log in anew.",
          port);
    case LineFault::Kind::Vanished:
      return fmt::format("The port {} has gone: is its cable plugged in?", port);
    case LineFault::Kind::Failed:
      break;
  }
  return fmt::format("The port {} cannot be used: {}", port, fault.text);
}

std::string ConfigureCommand(const ScaleSetup& setup) {
  const char parity = setup.Line().parity;
  const int digit = parity == 'N' ? 0 : parity == 'O' ? 1 : 2;
  return fmt::format("CFC {} {} {} {} {} {}\r", setup.BaudRate, setup.WordLen, setup.StopBit, digit, setup.Echo,
                     setup.NetID);
}

void ScaleLink::TakeOver() {
  used_ = ParseLine(GetScaleSetting(session_, setting::ScaleIsOn));
  session_.ScalePowered = used_ ? 1 : 0;
}

void ScaleLink::SetPowered(const std::optional<LineSettings>& line) {
  used_ = line;
  session_.ScalePowered = line ? 1 : 0;
  StoreScaleSettings(session_, {setting::ScaleIsOn.To(line ? LineText(*line) : "")});
}

// Opens the line where it is not, sends, waits until the last character is out, and closes.
std::optional<LineFault> ScaleLink::Send(const LineSettings& on, std::string_view command) {
  if (!line_.IsOpen())
    if (auto fault = line_.Open(on)) return fault;
  auto fault = line_.Write(command);
  if (!fault) waits_.Pause(TimeOnLine(on, command.size() + 1));
  line_.Close();
  return fault;
}

// That the port on which the scale will be can be opened, beside the one on which it wakes.
std::optional<LineFault> ScaleLink::TestPort(const LineSettings& saved) {
  line_.Close();
  if (auto fault = line_.Open(saved)) return fault;
  line_.Close();
  return std::nullopt;
}

std::optional<LineFault> ScaleLink::RunPowerOn(const ScaleSetup& setup) {
  const LineSettings factory = setup.FactoryLine();
  if (auto fault = Send(factory, kPowerOn)) return fault;
  waits_.Boot("Powering && Configuring Scale", bootTime_);
  if (auto fault = line_.Open(factory)) return fault;
  if (auto fault = TestPort(setup.Line())) return fault;
  if (auto fault = Send(factory, ConfigureCommand(setup))) return fault;
  waits_.Boot("Powering && Configuring Scale", bootTime_);
  return line_.Open(setup.Line());
}

Result<void> ScaleLink::PowerOn(const ScaleSetup& setup) {
  if (session_.ScalePowered == 1) return Refuse("Scale", "The scale is on already.");
  if (setup.CommPort.empty()) return Refuse("Scale", "The scale has no port yet. Set it up first.", "CommPort");
  Close();
  if (const auto fault = RunPowerOn(setup)) {
    line_.Close();
    SetPowered(std::nullopt);
    return Refuse("Scale", "The scale was not switched on.\n" + LineFaultText(setup.Line().port, *fault), "CommPort");
  }
  SetPowered(setup.Line());
  return {};
}

std::optional<LineFault> ScaleLink::RunPowerOff(const LineSettings& used) {
  if (auto fault = Send(used, kToFactory)) return fault;
  waits_.Boot("Powering Down && Configuring Scale", bootTime_);
  return Send({.port = used.port, .handshaking = used.handshaking}, kPowerOff);
}

Result<void> ScaleLink::PowerOff() {
  if (session_.ScalePowered != 1) return Refuse("Scale", "The scale is not on.");
  loop_.reset();
  lost_.reset();
  const LineSettings used = used_.value_or(ReadScaleSetup(session_).Line());
  const auto fault = RunPowerOff(used);
  Close();
  SetPowered(std::nullopt);
  if (!fault) return {};
  return Refuse("Scale",
                LineFaultText(used.port, *fault) + "\nThe scale may still be on: switch it off at its own panel.",
                "CommPort");
}

Result<void> ScaleLink::OpenForUse() {
  if (session_.ScalePowered != 1 || !used_) return Refuse("Scale", "The scale is not on. Switch it on first.");
  if (!line_.IsOpen())
    if (const auto fault = line_.Open(*used_)) return Refuse("Scale", LineFaultText(used_->port, *fault), "CommPort");
  if (!loop_) loop_.emplace(*used_);
  lost_.reset();
  return {};
}

void ScaleLink::Close() {
  // What was asked last is out before the line gets its old settings back.
  if (loop_ && line_.IsOpen()) waits_.Pause(TimeOnLine(*used_, kZero.size() + 1));
  loop_.reset();
  lost_.reset();
  line_.Close();
}

void ScaleLink::Lose(const LineFault& fault, std::int64_t now) {
  line_.Close();
  lost_ = LineFaultText(used_->port, fault);
  tryAgain_ = now + kTryAgain;
}

void ScaleLink::Step(std::int64_t now) {
  if (!loop_) return;
  if (lost_) {
    if (now < tryAgain_) return;
    if (const auto fault = line_.Open(*used_)) return Lose(*fault, now);
    loop_.emplace(*used_);
    lost_.reset();
  }
  std::string received;
  if (const auto fault = line_.Read(received)) return Lose(*fault, now);
  const std::string_view request = loop_->Step(now, received);
  if (request.empty()) return;
  if (const auto fault = line_.Write(request)) Lose(*fault, now);
}

bool ScaleLink::Tare(std::int64_t now) {
  if (!loop_ || lost_ || !line_.IsOpen()) return false;
  const auto fault = line_.Write(loop_->Zero(now));
  if (fault) Lose(*fault, now);
  return !fault;
}

const std::optional<Reading>& ScaleLink::Last() const {
  static const std::optional<Reading> none;
  return loop_ ? loop_->Last() : none;
}

Result<double> ScaleLink::Weight(std::int64_t now) const {
  if (session_.ScalePowered != 1) return Refuse("Scale", "The scale is not on. Switch it on first.");
  if (lost_) return Refuse("Scale", *lost_);
  const auto& last = Last();
  if (!last) return Refuse("Scale", "The scale has sent no weight yet.");
  if (!IsFresh(now))
    return Refuse("Scale", fmt::format("The scale has sent no weight for {} seconds. Is it on, and does its panel show an "
                                       "error?",
                                       (now - last->at) / 1000));
  return last->weight;
}

}  // namespace vellumark
