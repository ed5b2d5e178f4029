// The real program, killed or met by a fault of the disk at every call by which it changes a file: whoever opens the file
// next finds the state before or after, sound in every row, and can do the work again.

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "core/base/files.h"
#include "core/jobs/photo_library.h"
#include "core/shell/opening.h"
#include "core/shell/startup.h"
#include "support/cli_run.h"
#include "support/data_files.h"
#include "support/pixel.h"
#include "support/snapshot.h"
#include "support/sound.h"
#include "support/struck.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;
using test::CliAnswer;
using Words = std::vector<std::string>;

// Whoever opens the file says yes to what the opening tells.
class Nodding final : public Prompt {
 public:
  Answer Show(const Message&) override { return Answer::Ok; }
};

struct FaultRoom : test::CliRoom {
  FaultRoom() {
    fs::create_directories(work);
    fs::create_directories(folder / "Program");
    const auto must = [&](const Words& words) { EXPECT_EQ(Do(words).status, 0); };
    must({"file", "create", file.string(), "--database", "INK", "--empty"});
    for (const auto& [name, cost] : {std::pair{"RED", "4.25"}, {"WHITE", "3.1"}, {"BLUE", "5.37"}}) {
      must({"color", "add", name});
      must({"color", "set", name, std::string("PurchaseCost=") + cost, "VOC=0.5", "HAP=0.25"});
      must({"stock", "adjust", name, "60"});
      for (const char* lot : {"A", "B"}) must({"stock", "adjust", name, "40", "--lot", lot});
    }
    must({"color", "add", "WAX"});
    must({"color", "set", "WAX", "Additive=1"});
    must({"addset", "add", "SLOW", "WAX=5"});
    for (const char* name : {"PINK", "ROSE", "SKY", "DAWN", "DUSK"})
      must({"formula", "add", name, "RED=20", "WHITE=70", "BLUE=10"});
    must({"formula", "add", "TARGET", "RED=60", "WHITE=40"});
    must({"batch", "save", "--formula", "PINK", "--quantity", "10", "--mix", "--job", "J1=4"});
    must({"batch", "save", "--formula", "ROSE", "--quantity", "10", "--mix", "--lot", "RED=A:2", "--lot-number", "R1"});
    ReplaceFile(work / "front.png", test::PixelPng());
    must({"design", "add", "BOX", "PINK=2", "Impressions=1000"});
    must({"design", "photo", "BOX", "add", "FRONT.PNG"});
    ReplaceFile(work / "in.mfe", "INK\r\nPLUM\tRED\t30\tNEW\t70\r\nPINK\tRED\t50\tWHITE\t50\r\n");
    Keep();
  }

  /// What every run begins with.
  void Keep() const {
    fs::remove_all(pristine);
    fs::copy(work, pristine, fs::copy_options::recursive);
  }

  /// The words of a call, on the files of this room and at its noon.
  Words Here(Words words) const {
    words.insert(words.begin(), {"--yes", "--now", "2026-03-10 12:00:00", "--data-folder", (work / "VKDat").string()});
    for (std::string& word : words)
      if (word == "IN.MFE" || word == "FRONT.PNG") word = (work / (word == "IN.MFE" ? "in.mfe" : "front.png")).string();
    return words;
  }
  CliAnswer Do(const Words& words) const { return Run(Here(words)); }
  void Restore() const {
    fs::remove_all(work);
    fs::copy(pristine, work, fs::copy_options::recursive);
  }

  /// What the next opening of the file finds, once it has healed what it heals.
  std::string Data() const {
    Nodding prompt;
    NoProgress progress;
    FixedClock clock{DateTime{2026, 3, 10, 12, 0, 0}};
    Session session{prompt, progress, clock};
    test::NotedWindows windows;
    PrepareSupportFiles(session, {work / "VKDat", folder / "Program", {}});
    session.DataFileName = file.string();
    OpenDataFile(session, windows);
    sound.Expect(session, CheckState::Closed);
    std::string data = test::Snapshot(session.File(), false);
    for (const std::string& photo : LibraryPhotos(session))
      data += photo + " " + std::to_string(ReadFileBytes(PhotoFolder(session) / photo).size()) + "\n";
    return data;
  }

  fs::path work = folder / "work";
  fs::path pristine = folder / "pristine";
  fs::path file = work / "Ink.vkd";
  test::SoundAtEnd sound;
};

struct Scenario {
  const char* name;
  Words words;
  Words first = {};  ///< what happened before
};

std::ostream& operator<<(std::ostream& out, const Scenario& scenario) {
  return out << scenario.name;
}

class Steps : public testing::TestWithParam<Scenario> {
 protected:
  /// One run that is struck there; then what is found, and the work done again. False when there are fewer steps.
  bool Meet(int nth, int error, test::Strike strike) {
    SCOPED_TRACE(testing::Message() << "step " << nth << " with " << error << (strike == test::Strike::Once ? "" : "+"));
    room.Restore();
    const Words words = room.Here(GetParam().words);
    const auto program = [&]() -> int { room.Become(words, "/dev/null", test::MarkStep); };
    const test::StruckRun run = test::RunStruck(nth, error, program, strike);
    if (!run.struck) return false;
    const std::string said = ReadFileBytes(room.folder / "stderr");
    const std::string data = room.Data();
    EXPECT_FALSE(HasFailure()) << said;
    const bool through = data == after;
    EXPECT_TRUE(through || data == before) << said << data;
    if (error != test::kKilled) {
      constexpr int kNeverStarted = 127;  // the loader could not read it
      EXPECT_TRUE(run.status == 0 || run.status == 1 || run.status == 4 || run.status == kNeverStarted) << run.status << ' ' << said;
      // A commit that fails at its last step can stand all the same, and so can one whose answer could not be read.
      EXPECT_TRUE(run.status != 0 || through) << said;
      failedThough += through && run.status != 0 ? 1 : 0;
    }
    ++(through ? wentThrough : untouched);
    if (through) return true;
    const CliAnswer again = room.Do(GetParam().words);
    EXPECT_EQ(again.status, 0) << again.err;
    EXPECT_EQ(room.Data(), after);
    return true;
  }

  FaultRoom room;
  std::string before;
  std::string after;
  int untouched = 0;
  int wentThrough = 0;
  int failedThough = 0;  // those of which the program said that they failed
};

TEST_P(Steps, LeaveTheDataBeforeOrAfter) {
  if (!GetParam().first.empty()) {
    ASSERT_EQ(room.Do(GetParam().first).status, 0);
    room.Keep();
  }
  before = room.Data();
  room.Restore();
  const CliAnswer whole = room.Do(GetParam().words);
  ASSERT_EQ(whole.status, 0) << whole.err;
  after = room.Data();
  ASSERT_NE(before, after);
  const struct {
    int error;
    test::Strike strike;
  } kinds[] = {{test::kKilled, test::Strike::Once},
               {EIO, test::Strike::Once},
               {ENOSPC, test::Strike::Once},
               {EIO, test::Strike::FromThereOn}};
  int steps = 0;
  for (const auto& kind : kinds)
    for (int nth = 1; !HasFailure() && Meet(nth, kind.error, kind.strike); ++nth) ++steps;
  std::printf("%s: %d runs were struck, %d left the data before, %d after (%d of them told as failed)\n",
              GetParam().name, steps, untouched, wentThrough, failedThough);
}

INSTANTIATE_TEST_SUITE_P(
    Commands, Steps,
    testing::Values(
        Scenario{"BatchSave",
                 {"batch", "save", "--formula", "TARGET", "--quantity", "50", "--recycle", "--lot", "RED=A:5", "--job",
                  "J2=9"}},
        Scenario{"BatchEdit", {"batch", "edit", "2", "--quantity", "12", "--mix", "--lot", "RED=B:3"}},
        Scenario{"BatchDelete", {"batch", "delete", "1"}}, Scenario{"Import", {"formula", "import", "IN.MFE"}},
        Scenario{"UndoImport", {"formula", "undo"}, {"formula", "import", "IN.MFE"}},
        Scenario{"UndoImportOfDatabase", {"formula", "undo"}, {"formula", "import", "IN.MFE", "--to", "MADE"}},
        Scenario{"PhotoAdd", {"design", "photo", "BOX", "add", "FRONT.PNG", "back"}},
        Scenario{"PhotoRename", {"design", "photo", "BOX", "rename", "front.jpg", "side"}},
        Scenario{"DesignDelete", {"design", "delete", "BOX"}},
        Scenario{"Price", {"color", "set", "RED", "PurchaseCost=9.75"}},
        Scenario{"Accuracy", {"settings", "set", "DecimalPlaces", "3"}},
        Scenario{"Merge", {"color", "rename", "BLUE", "RED"}},
        Scenario{"ApplySet", {"addset", "apply", "SLOW", "PINK", "SKY"}},
        Scenario{"StockAdjust", {"stock", "adjust", "RED", "5", "--lot", "C"}},
        Scenario{"RenameFormula", {"formula", "rename", "ROSE", "ROSA"}},
        Scenario{"RenameDatabase", {"db", "rename", "INK", "PAINT"}},
        Scenario{"CopyDatabase", {"db", "create", "COPY", "--copy", "INK"}}),
    testing::PrintToStringParamName());

}  // namespace
}  // namespace vellumark
