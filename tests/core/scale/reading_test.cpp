#include "core/scale/reading.h"

#include <gtest/gtest.h>

#include "core/scale/scale_link.h"
#include "core/scale/streams.h"
#include "support/ink_room.h"

namespace vellumark {
namespace {

std::string Around(std::string field) {
  field.resize(11, ' ');
  return "abc" + field + "wxyz";
}

TEST(ScaleReply, IsANumberInEighteenCharacters) {
  const struct {
    const char* field;
    std::optional<double> weight;
  } cases[] = {
      {"     12.345", 12.345}, {"0", 0},           {"-  0.250", -0.25}, {"+1.5", 1.5},     {".5", 0.5},
      {"-0.000", 0},           {"12345678901", 12345678901.0},          {"", {}},          {"- ", {}},
      {"--1", {}},             {"-+1", {}},        {"1.2.3", {}},       {"1,5", {}},       {"12 3", {}},
      {"1e3", {}},             {"\t1", {}},        {"OVER", {}},        {"1.5-", {}},      {"\xB2.5", {}}};
  for (const auto& [field, weight] : cases) EXPECT_EQ(ParseReply(Around(field)), weight) << '"' << field << '"';
  const std::string whole = Around("1.5");
  EXPECT_FALSE(ParseReply(whole.substr(1)));
  EXPECT_FALSE(ParseReply(whole + " "));
}

TEST(ScaleReply, SurvivesAnyBytes) {
  test::FeedStreams(20000);
}

// Drives a loop with replies of its own making.
struct Bench {
  explicit Bench(int baud = 9600) : loop({.baud = baud}) {}
  /// So many milliseconds of nothing; how often the weight was asked for.
  int Pass(int milliseconds) {
    int asked = 0;
    for (const std::int64_t end = now + milliseconds; now < end; now += 10) asked += !loop.Step(now, {}).empty();
    return asked;
  }
  void Hear(std::string_view bytes) { loop.Step(now, bytes); }
  double Shown() const { return loop.Last() ? loop.Last()->weight : -1; }

  ReadingLoop loop;
  std::int64_t now = 0;
};

TEST(ScaleLoop, PutsRepliesTogetherAndDropsWhatIsNone) {
  const std::string reply = Around("   7.250");
  Bench bench;
  EXPECT_EQ(bench.Pass(50), 1);
  bench.Hear(reply.substr(0, 5));
  bench.Pass(20);
  bench.Hear("\x13" + reply.substr(5, 6));
  bench.Pass(20);
  bench.Hear(reply.substr(11) + "\x11");
  EXPECT_EQ(bench.Shown(), -1);  // it may go on
  bench.Pass(60);
  EXPECT_EQ(bench.Shown(), 7.25);

  for (const std::string& bad : {"x" + reply, reply + "x", reply.substr(1), reply + reply}) {
    Bench other;
    other.Pass(20);
    other.Hear(bad);
    other.Pass(200);
    EXPECT_EQ(other.Shown(), -1) << bad;
  }
}

TEST(ScaleLoop, WaitsAsLongAsTheLineTakesAndGrowsOld) {
  EXPECT_EQ(TimeOnLine({}, 18), 600);
  Bench slow(300);
  EXPECT_EQ(slow.Pass(1200), 1);  // the reply is still due
  EXPECT_EQ(slow.Pass(100), 1);
  Bench quick;
  EXPECT_EQ(quick.Pass(20), 1);
  quick.Hear(Around("1"));
  EXPECT_EQ(quick.Pass(430), 1);
  EXPECT_TRUE(quick.loop.IsFresh(quick.now));
  quick.Pass(3000);
  EXPECT_FALSE(quick.loop.IsFresh(quick.now));
  EXPECT_EQ(quick.Shown(), 1);
}

TEST(ScaleLoop, DropsWhatWasUnderWayWhenItIsZeroed) {
  Bench bench;
  bench.Pass(20);
  bench.Hear(Around("9").substr(0, 4));
  EXPECT_EQ(bench.loop.Zero(bench.now), "ZRO\r");
  bench.Pass(30);
  bench.Hear(Around("9").substr(4));
  bench.Hear(Around("9"));
  bench.Pass(300);
  EXPECT_EQ(bench.Shown(), -1);
  EXPECT_GE(bench.Pass(1000), 1);
  bench.Hear(Around("0"));
  bench.Pass(100);
  EXPECT_EQ(bench.Shown(), 0);
}

// ---- Settings

TEST(ScaleSetup, IsReadWrittenAndRefused) {
  test::InkRoom room;
  EXPECT_EQ(ReadScaleSetup(room.session), ScaleSetup{});  // without a file
  ScaleSetup setup;
  for (const auto& [key, value] : {std::pair{"commport", "/dev/tty S1"}, {"BaudRate", "9600"}, {"Parity", "Even"},
                                   {"WordLen", "8"}, {"StopBit", "2"}, {"NetID", "12"}, {"Handshaking", "comRTS"}})
    ASSERT_TRUE(SetScaleValue(setup, key, value)) << key;
  for (const auto& [key, value] : {std::pair{"BaudRate", "1000"}, {"Parity", "odd"}, {"WordLen", "9"}, {"Speed", "1"},
                                   {"CommPort", "a\rb"}, {"WeighTolerance", "-1"}, {"Handshaking", "none"}}) {
    ScaleSetup other = setup;
    EXPECT_FALSE(SetScaleValue(other, key, value)) << key << value;
  }
  ASSERT_TRUE(StoreScaleSetup(room.session, setup));
  EXPECT_EQ(ReadScaleSetup(room.session), setup);
  EXPECT_EQ(PortSettings(setup.Line()), "9600,E,8,2");
  EXPECT_EQ(PortSettings(setup.FactoryLine()), "300,O,7,1");
  EXPECT_EQ(ConfigureCommand(setup), "CFC 9600 8 2 2 0 12\r");
  EXPECT_EQ(ParseLine(LineText(setup.Line())), setup.Line());
  for (const char* bad : {"", "x", "x 300,O,7,1", "x 300,O,7 comRTS", "x 300,O,7,1 none"}) EXPECT_FALSE(ParseLine(bad));
  // An empty one, as a new file has it, is sent as 0.
  room.session.support->scale.SetSupportValue("NetID", "");
  EXPECT_EQ(ConfigureCommand(ReadScaleSetup(room.session)), "CFC 9600 8 2 2 0 0\r");
}

}  // namespace
}  // namespace vellumark
