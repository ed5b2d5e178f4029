#include "devices/system_line.h"

#include <gtest/gtest.h>

#include "core/scale/port_search.h"
#include "core/scale/scale_link.h"
#include "support/ink_room.h"
#include "support/scale_on_pty.h"

namespace vellumark {
namespace {

using Lines = std::vector<std::string>;

struct NotedWaits final : ScaleWaits {
  void Pause(int milliseconds) override {
    EXPECT_GT(milliseconds, 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(40));
  }
  void Boot(const std::string& text, int milliseconds) override {
    boots.push_back(text + " " + std::to_string(milliseconds));
    Pause(1);
  }
  Lines boots;
};

// The adapter that the program has, against a scale on a pseudo-terminal.
struct SystemLineTest : testing::Test {
  SystemLineTest() {
    setup.CommPort = scale.Port();
    setup.BaudRate = 9600;
    (void)StoreScaleSetup(room.session, setup);
  }
  std::int64_t Now() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
  }
  bool Until(const std::function<bool()>& done, int milliseconds = 4000) {
    for (const std::int64_t end = Now() + milliseconds; Now() < end;) {
      link.Step(Now());
      if (done()) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
  }
  bool Shows(double weight) {
    return Until([&] { return link.Last() && link.Last()->weight == weight && link.IsFresh(Now()); });
  }

  test::InkRoom room;
  test::ScaleOnPty scale{room.folder.Path()};
  std::unique_ptr<SerialLine> line = devices::SystemLine();
  NotedWaits waits;
  ScaleLink link{room.session, *line, waits};
  ScaleSetup setup;
};

TEST_F(SystemLineTest, SwitchesOnReadsZeroesAndSwitchesOff) {
  ASSERT_TRUE(link.PowerOn(setup));
  EXPECT_EQ(room.session.ScalePowered, 1);
  EXPECT_EQ(link.PowerOn(setup).error().text, "The scale is on already.");
  ASSERT_TRUE(link.OpenForUse());
  scale.Weigh("12.345");
  EXPECT_TRUE(Shows(12.345));
  const std::string reply = test::ScaleOnPty::Reply("-0.250");
  scale.Answer({"\x13" + reply.substr(0, 7), reply.substr(7, 2) + "\x11", reply.substr(9)});
  EXPECT_TRUE(Shows(-0.25));
  EXPECT_TRUE(link.Tare(Now()));
  EXPECT_FALSE(link.Last());
  scale.Weigh("0.000");
  EXPECT_TRUE(Shows(0));
  // What another run left on is on for this one, on the line on which it is, whatever was set since.
  link.Close();
  setup.BaudRate = 4800;
  ASSERT_TRUE(StoreScaleSetup(room.session, setup));
  room.session.ScalePowered = 0;
  ScaleLink later{room.session, *line, waits};
  later.TakeOver();
  ASSERT_EQ(room.session.ScalePowered, 1);
  ASSERT_TRUE(later.PowerOff());
  EXPECT_EQ(room.session.ScalePowered, 0);
  EXPECT_TRUE(GetScaleSetting(room.session, setting::ScaleIsOn).empty());
  EXPECT_EQ(scale.Commands(), (Lines{"300 PON", "300 CFC 9600 7 1 1 0 0", "9600 ZRO", "9600 CFC 300 7 1 1 0 0", "300 POF"}));
  EXPECT_EQ(waits.boots, (Lines{"Powering && Configuring Scale 30000", "Powering && Configuring Scale 30000",
                                "Powering Down && Configuring Scale 30000"}));
  // Requests stood at least as far apart as the timer says.
  std::int64_t last = 0;
  for (const auto& heard : scale.Log()) {
    if (heard.command == "SNW") {
      EXPECT_GE(heard.at - last, kSNWTimer - 30);
      last = heard.at;
    }
  }
}

TEST_F(SystemLineTest, TellsOfAPortThatGoesAndFindsItAgain) {
  ASSERT_TRUE(link.PowerOn(setup));
  ASSERT_TRUE(link.OpenForUse());
  scale.Weigh("3.000");
  ASSERT_TRUE(Shows(3));
  scale.PullOut();
  ASSERT_TRUE(Until([&] { return link.Lost().has_value(); }, 1000));
  EXPECT_NE(link.Lost()->find(scale.Port()), std::string::npos);
  EXPECT_FALSE(link.Tare(Now()));
  scale.PlugIn();
  EXPECT_TRUE(Until([&] { return !link.Lost(); }));
  EXPECT_TRUE(Shows(3));
  // Gone for good: the scale counts as off, so that it can be set up anew.
  scale.PullOut();
  const auto off = link.PowerOff();
  ASSERT_FALSE(off);
  EXPECT_NE(off.error().text.find("switch it off at its own panel"), std::string::npos);
  EXPECT_EQ(room.session.ScalePowered, 0);
}

TEST_F(SystemLineTest, SaysWhyAPortCannotBeUsed) {
  const auto other = devices::SystemLine();
  ASSERT_FALSE(other->Open(setup.Line()));
  const auto kind = [&](const std::string& port) {
    const auto fault = line->Open({.port = port});
    line->Close();
    return fault ? std::optional(fault->kind) : std::nullopt;
  };
  EXPECT_EQ(kind(scale.Port()), LineFault::Kind::InUse);
  EXPECT_EQ(kind((room.folder / "none").string()), LineFault::Kind::NoSuchPort);
  setup.CommPort = (room.folder / "none").string();
  EXPECT_EQ(link.PowerOn(setup).error().text,
            "The scale was not switched on.\nThere is no port " + setup.CommPort + ".");
  EXPECT_EQ(room.session.ScalePowered, 0);
  EXPECT_TRUE(scale.Commands().empty());
  const PortSearch search = SearchPorts(*line, scale.Port());
  const std::string report = PortReport(search, room.session.clock);
  EXPECT_TRUE(report.starts_with("Date - 2026-03-10\r\nError 8002, ")) << report;
  EXPECT_NE(report.find("in use - " + scale.Port()), std::string::npos) << report;
}

}  // namespace
}  // namespace vellumark
