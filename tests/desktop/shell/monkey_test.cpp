// Random keys and clicks in the whole program: nothing crashes, nothing fails unforeseen, and the file is sound after
// every save. VELLUMARK_MONKEY_SECONDS tells how long (a few by default), VELLUMARK_MONKEY_SEED with what it begins.

#include <gtest/gtest.h>

#include <QDeadlineTimer>

#include "core/backup/deep_check.h"
#include "desktop/kit/message_prompt.h"
#include "furnished_room.h"
#include "monkey.h"
#include "running.h"

namespace vellumark::test {
namespace {

constexpr int kSeconds = 4;
constexpr int kRoundSeconds = 40;  // then a new room, so that a failure is found again soon
constexpr int kStarts = 4;         // of the program in one room
constexpr int kActsBetweenChecks = 20;

unsigned Told(const char* variable, unsigned otherwise) {
  bool isNumber = false;
  const unsigned value = qEnvironmentVariable(variable).toUInt(&isNumber);
  return isNumber ? value : otherwise;
}

const std::vector<std::string> kWords{
    "RED",     "BLUE",
    "GREEN",   "WHITE",
    "YELLOW",  "DRIER",
    "WAX",     "TARGET",
    "VIOLET",  "TINT",
    "LIME",    "STD SET",
    "INK",     "UV",
    "NEW",     "ANN",
    "J1",      "J2",
    "A",       "B",
    "V1",      "SHELF",
    "0",       "1",
    "5",       "10",
    "12.5",    "33",
    "100",     "0.001",
    "0.0004",  "-3",
    "-45",     "99999",
    "123456",  "1e9",
    "185",     "abc",
    " ",       ".",
    "-",       "\"",
    ":",       "%",
    "*",       "'",
    "Grün",    "A|B{C};",
    "60 40",   "lb.",
    "3/10/26", "A name that is longer than any field of the system would take, and then some more of it"};

struct MonkeyTest : testing::Test {
  // One life of the program. It may end by the monkey's own hand.
  void Live(Monkey& monkey, FurnishedRoom& room, const QDeadlineTimer& until) {
    RunningProgram<desktop::MessagePrompt> running(room.folder.Path());
    bool changed = false;
    int checkedAt = monkey.Acts();
    const auto subscription = running.session.changes.Subscribe([&](const std::vector<Change>&) { changed = true; });
    monkey.OnRest([&] {
      if (changed && running.session.RecordsetsOpen && monkey.Acts() - checkedAt >= kActsBetweenChecks) {
        changed = false;
        checkedAt = monkey.Acts();
        ++checks;
        for (const CheckFault& fault : CheckDataFileRules(running.session, CheckDepth::Deep, CheckState::InUse).faults)
          ADD_FAILURE() << FaultText(fault);
      }
      if (!until.hasExpired() && !HasFailure()) return;
      monkey.Stop();
      QCoreApplication::exit();
    });
    monkey.OnAsking([&] { return running.prompt.GivesFocusBack(); });
    monkey.Begin(running.program.Main());
    if (running.Start({desktop::ChooseFile, [&](const auto&) { return room.folder.Path(); }})) QApplication::exec();
    monkey.Stop();
    Settle();
    // What is still open goes as an operator would let it go who wants nothing saved.
    running.prompt.SetHook([](const Message& message) {
      return message.buttons == Buttons::YesNo || message.buttons == Buttons::YesNoCancel ? Answer::No : Answer::Ok;
    });
    running.program.Main().close();
    Settle();
    RunAgain();
  }

  void Round(unsigned seed, const QDeadlineTimer& end) {
    FurnishedRoom room;
    std::filesystem::current_path(room.folder.Path());
    QDeadlineTimer until(std::min<qint64>(qint64{kRoundSeconds} * 1000, end.remainingTime()));
    Monkey monkey(seed, kWords, room.folder.Path());
    for (int start = 0; start < kStarts && !until.hasExpired() && !HasFailure(); ++start) Live(monkey, room, until);
    for (const auto& entry : std::filesystem::directory_iterator(room.folder.Path())) {
      if (entry.path().extension() != ".vkd" || HasFailure()) continue;
      const CliAnswer sound = room.Run({"file", "check", entry.path().string(), "--deep"});
      EXPECT_EQ(sound.status, 0) << sound.out << sound.err;
    }
    acts += monkey.Acts();
    places.insert(monkey.Places().begin(), monkey.Places().end());
    if (HasFailure()) std::cerr << monkey.Story();
    std::filesystem::current_path("/");
  }

  int acts = 0;
  int checks = 0;
  std::set<std::string> places;
};

TEST_F(MonkeyTest, BreaksNothing) {
  const unsigned first = Told("VELLUMARK_MONKEY_SEED", 1);
  const QDeadlineTimer end(1000LL * Told("VELLUMARK_MONKEY_SECONDS", kSeconds));
  unsigned seed = first;
  for (; !end.hasExpired() && !HasFailure(); ++seed) Round(seed, end);
  std::cout << "The monkey did " << acts << " acts with the seeds " << first << " to " << seed - 1 << "; " << checks
            << " deep checks. It was in:";
  for (const std::string& place : places) std::cout << ' ' << place;
  std::cout << '\n';
}

}  // namespace
}  // namespace vellumark::test
