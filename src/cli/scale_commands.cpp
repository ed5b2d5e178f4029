#include <fmt/format.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <thread>

#include "cli/frame.h"
#include "cli/scale_reading.h"
#include "core/base/number.h"
#include "core/base/units.h"
#include "core/scale/port_search.h"
#include "core/scale/scale_link.h"
#include "devices/system_line.h"

namespace vellumark::cli {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr int kStep = 20;         // between two looks at the line, in milliseconds
constexpr int kSteadyReadings = 3;

std::int64_t Now() {
  return std::chrono::duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

class TerminalWaits final : public ScaleWaits {
 public:
  explicit TerminalWaits(Progress& progress) : progress_(progress) {}
  void Pause(int wait) override { std::this_thread::sleep_for(milliseconds(wait)); }
  void Boot(const std::string& text, int wait) override {
    std::string shown = text;
    if (const std::size_t doubled = shown.find("&&"); doubled != std::string::npos) shown.erase(doubled, 1);
    progress_.Begin(shown);
    for (const std::int64_t begin = Now(), end = begin + wait; Now() < end; Pause(std::min(wait, 100)))
      progress_.Percent(100.0 * static_cast<double>(Now() - begin) / wait);
    progress_.End();
  }

 private:
  Progress& progress_;
};

// The scale of this machine for as long as a verb runs.
struct Scale {
  explicit Scale(Session& session, int bootTime = kBootTimer)
      : line(devices::SystemLine()), waits(session.progress), link(session, *line, waits, bootTime) {
    link.TakeOver();
  }

  /// Each reading as it comes, until `take` says false or the time is over; then false.
  template <class Take>
  Result<bool> Follow(int wait, const Take& take) {
    if (auto open = link.OpenForUse(); !open) return std::unexpected(open.error());
    std::int64_t seen = -1;
    for (const std::int64_t end = Now() + wait; Now() < end; waits.Pause(kStep)) {
      link.Step(Now());
      const auto& last = link.Last();
      if (!last || last->at == seen) continue;
      seen = last->at;
      if (!take(last->weight)) return true;
    }
    if (link.Lost()) return Refuse("Scale", *link.Lost(), "CommPort");
    return false;
  }

  std::unique_ptr<SerialLine> line;
  TerminalWaits waits;
  ScaleLink link;
};

std::unexpected<Refusal> NoAnswer() {
  return Refuse("Scale", "The scale does not answer. Is it on, and does its panel show an error?");
}

std::string UnitText(const Session& session) {
  return std::string(UnitName(GetScaleSetting(session, setting::ScaleUnit)));
}

Json WeightJson(const Session& session, double weight) {
  const std::string unit = UnitText(session);
  return {{"Weight", weight}, {"Unit", unit.empty() ? Json() : Json(unit)}};
}

Result<Json> ListPorts(Context& context, const std::string& log) {
  const auto line = devices::SystemLine();
  const PortSearch search = SearchPorts(*line, ReadScaleSetup(context.session).Line().port);
  if (!log.empty()) WritePortLog(log, PortReport(search, context.session.clock));
  if (search.available.empty() && search.refused.empty()) TellNoPorts(context.session.prompt);
  Json ports = Json::array();
  for (const std::string& port : search.available) ports.push_back({{"Port", port}, {"Usable", true}, {"Reason", Json()}});
  for (const auto& [port, fault] : search.refused)
    ports.push_back({{"Port", port}, {"Usable", false}, {"Reason", LineFaultText(port, fault)}});
  return ports;
}

Result<Json> ShowSettings(Context& context, const std::vector<std::string>& pairs) {
  Session& session = context.session;
  ScaleSetup setup = ReadScaleSetup(session);
  if (!pairs.empty()) {
    Scale scale(session);
    if (session.ScalePowered == 1) return Refuse("Power off scale", "Power scale off to use the Setup feature");
    for (const std::string& text : pairs) {
      const auto pair = SplitPair(text);
      if (!pair) return Refuse("Scale Settings", fmt::format("{} is not of the form KEY=VALUE.", text));
      if (auto set = SetScaleValue(setup, pair->first, pair->second); !set) return std::unexpected(set.error());
    }
    if (auto stored = StoreScaleSetup(session, setup); !stored) return std::unexpected(stored.error());
  }
  Json answer = Json::object();
  for (const SettingText& text : ScaleSetupTexts(setup)) answer[text.key] = text.value;
  answer["PortSettings"] = PortSettings(setup.Line());
  return answer;
}

Result<Json> PowerScale(Context& context, bool on, int bootTime) {
  Scale scale(context.session, bootTime);
  const auto done = on ? scale.link.PowerOn(ReadScaleSetup(context.session)) : scale.link.PowerOff();
  scale.link.Close();
  if (!done) return std::unexpected(done.error());
  return Json{{"ScalePowered", on}};
}

Result<Json> ReadWeights(Context& context, int count) {
  Scale scale(context.session);
  Json weights = Json::array();
  std::string text;
  const auto all = scale.Follow(10000 + count * 2000, [&](double weight) {
    weights.push_back(WeightJson(context.session, weight));
    text += Fixed(weight, 3) + " " + UnitText(context.session) + "\n";
    return --count > 0;
  });
  if (!all) return std::unexpected(all.error());
  if (!*all) return NoAnswer();
  if (!context.json) context.text = text;
  return weights;
}

Result<Json> TareScale(Context& context) {
  Scale scale(context.session);
  if (auto open = scale.link.OpenForUse(); !open) return std::unexpected(open.error());
  if (!scale.link.Tare(Now())) return Refuse("Scale", scale.link.Lost().value_or("The line is closed."), "CommPort");
  scale.waits.Pause(TimeOnLine(ReadScaleSetup(context.session).Line(), kZero.size() + 1));
  return Json{{"Weight", 0}};
}

// A line for each weight that differs from the last, as it comes.
Result<Json> WatchScale(Context& context, int seconds) {
  Scale scale(context.session);
  Json weights = Json::array();
  std::optional<double> shown;
  const auto watched = scale.Follow(seconds * 1000, [&](double weight) {
    if (shown == weight) return true;
    shown = weight;
    weights.push_back(WeightJson(context.session, weight));
    if (!context.json) {
      fmt::print("{} {}\n", Fixed(weight, 3), UnitText(context.session));
      if (std::fflush(stdout) != 0) throw Failure("standard output", "cannot be written");
    }
    return true;
  });
  if (!watched) return std::unexpected(watched.error());
  if (!shown) return NoAnswer();
  return context.json ? weights : Json();
}

void AddPower(CLI::App& noun, Commands& commands, bool on) {
  auto* verb = noun.add_subcommand(on ? "on" : "off", on ? "Switch the scale on: about a minute"
                                                         : "Switch the scale off: about half a minute");
  const auto bootTime = std::make_shared<int>(kBootTimer);
  // For a scale that is none, such as that of tools/scale_simulator.
  verb->add_option("--boot-time", *bootTime, "Milliseconds of a boot")->group("")->check(CLI::Range(0, kBootTimer));
  commands.Add(verb, Needs::Nothing, [bootTime, on](Context& context) { return PowerScale(context, on, *bootTime); });
}

}  // namespace

Result<double> ReadSteadyWeight(Session& session, int seconds) {
  Scale scale(session);
  double last = 0;
  int same = 0;
  bool any = false;
  const auto stood = scale.Follow(seconds * 1000, [&](double weight) {
    same = weight == last ? same + 1 : 1;
    last = weight;
    any = true;
    return weight == 0 || same < kSteadyReadings;
  });
  if (!stood) return std::unexpected(stood.error());
  if (!any) return NoAnswer();
  if (!*stood) return Refuse("Scale", "No weight stood still on the scale.");
  return last;
}

void AddScaleCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "scale", "The bench scale: ports, settings, on, off, read, tare, watch");
  auto* ports = noun->add_subcommand("ports", "The serial ports, and which of them can be used");
  const auto log = std::make_shared<std::string>();
  ports->add_option("--log", *log, "A folder for the report of the ports")->check(CLI::ExistingDirectory);
  commands.Add(ports, Needs::Nothing, [log](Context& context) { return ListPorts(context, *log); });

  auto* settings = noun->add_subcommand("settings", "The settings of the scale, or KEY=VALUE to change them");
  const auto pairs = std::make_shared<std::vector<std::string>>();
  settings->add_option("SETTINGS", *pairs, "KEY=VALUE");
  commands.Add(settings, Needs::Nothing, [pairs](Context& context) { return ShowSettings(context, *pairs); });

  AddPower(*noun, commands, true);
  AddPower(*noun, commands, false);

  auto* read = noun->add_subcommand("read", "Weights of the scale");
  const auto count = std::make_shared<int>(1);
  read->add_option("--count", *count, "So many of them")->check(CLI::Range(1, 100000));
  commands.Add(read, Needs::Nothing, [count](Context& context) { return ReadWeights(context, *count); });

  auto* tare = noun->add_subcommand("tare", "Zero the scale");
  commands.Add(tare, Needs::Nothing, [](Context& context) { return TareScale(context); });

  auto* watch = noun->add_subcommand("watch", "Follow the scale: each weight that differs from the last");
  const auto seconds = std::make_shared<int>(60);
  watch->add_option("--seconds", *seconds, "For how long")->check(CLI::Range(1, 86400));
  commands.Add(watch, Needs::Nothing, [seconds](Context& context) { return WatchScale(context, *seconds); });
}

}  // namespace vellumark::cli
