#include "core/base/text.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/base/changes.h"
#include "core/base/date.h"
#include "core/base/files.h"
#include "core/base/refusal.h"
#include "support/scratch.h"

namespace vellumark {
namespace {

TEST(Text, EveryByteOfTheCodePageComesBack) {
  std::string bytes;
  for (int b = 1; b < 256; ++b) bytes += static_cast<char>(b);
  EXPECT_EQ(ToCp1252(FromCp1252(bytes)), bytes);
  EXPECT_EQ(FromCp1252("\x80\xC4"), "€Ä");
  EXPECT_THROW(ToCp1252("Ω"), BadValue);
  EXPECT_EQ(DecodeText("GR\xDCN"), "GRÜN");
  EXPECT_EQ(DecodeText("\xEF\xBB\xBFGRÜN"), "GRÜN");
}

TEST(Text, CharactersAreCountedAndCutWhole) {
  EXPECT_EQ(CharCount("GRÜN €"), 6U);
  EXPECT_EQ(Left("GRÜN", 3), "GRÜ");
  EXPECT_EQ(Left("GRÜN", 9), "GRÜN");
  EXPECT_EQ(Upper("grün ñ ž ÿ ÷ ß"), "GRÜN Ñ Ž Ÿ ÷ ß");
  EXPECT_TRUE(IsUtf8("GRÜN"));
  EXPECT_FALSE(IsUtf8("\xC0\x80"));
  EXPECT_FALSE(IsUtf8("\xED\xA0\x80"));
  EXPECT_FALSE(IsUtf8("\xE2\x82"));
}

TEST(Text, ComparesAsTheDataFileDoes) {
  EXPECT_TRUE(EqualNoCase("Blue", "BLUE"));
  EXPECT_FALSE(EqualNoCase("ü", "Ü"));
  EXPECT_LT(CompareNoCase("blue", "BLUE 2"), 0);
  EXPECT_EQ(FindNoCase("<Red><Blue>", "<BLUE>"), 5U);
  EXPECT_EQ(FindNoCase("<RED>", "<REDS>"), std::string_view::npos);
}

TEST(Text, MarkedListsAreWalkedToTheirLastBar) {
  EXPECT_EQ(SplitMarked("A|B C|", '|'), (std::vector<std::string>{"A", "B C"}));
  EXPECT_EQ(SplitMarked("A|B", '|'), (std::vector<std::string>{"A", "B"}));
  EXPECT_TRUE(SplitMarked("", '|').empty());
  EXPECT_EQ(JoinMarked({"A", "B"}, '|'), "A|B|");
}

TEST(Dates, ReadAndWrittenAsTheFileKeepsThem) {
  EXPECT_EQ(ParseDateTime("2024-02-29")->ToText(), "2024-02-29 00:00:00");
  EXPECT_EQ(ParseDateTime("2026-03-10 23:59:58")->ToText(), "2026-03-10 23:59:58");
  for (const char* bad : {"", "2023-02-29", "2026-13-01", "2026-1-01", "10.03.2026", "2026-03-10 24:00", "2026-03-10x",
                          "-026-03-10", "2026-03-10 12:00:00 "})
    EXPECT_FALSE(ParseDateTime(bad)) << bad;
  EXPECT_EQ((DateTime{2026, 3, 1, 0, 0, 0}.DayNumber() - DateTime{2024, 2, 29, 0, 0, 0}.DayNumber()), 731);
  EXPECT_EQ(DateTime::FromDayNumber(DateTime{2026, 3, 10, 5, 0, 0}.DayNumber()).DateText(), "2026-03-10");
}

TEST(Files, ReplacedInOneStepOrNotAtAll) {
  test::ScratchFolder folder;
  const auto path = folder / "a.dat";
  ReplaceFile(path, "first");
  ReplaceFile(path, "second");
  EXPECT_EQ(ReadFileBytes(path), "second");
  try {
    ReplaceFile(folder / "missing" / "a.dat", "x");
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_NE(failure.subject.find("missing/a.dat"), std::string::npos);
    EXPECT_EQ(failure.cause, "No such file or directory");
  }
  // A folder made where links were planted: names of others' files are never written through or taken.
  ReplaceFile(folder / "a.dat.new", "mine");
  ReplaceFile(folder / "a.dat.tmp", "mine too");
  // A device is no file to be replaced.
  std::filesystem::create_symlink("/dev/null", folder / "null");
  EXPECT_THROW(ReplaceFile(folder / "null", "third"), Failure);
  EXPECT_TRUE(std::filesystem::is_character_file(folder / "null"));
}

TEST(Files, AReplacedFileStaysWhereItsLinkLeadsWithOwnerAndMode) {
  namespace fs = std::filesystem;
  test::ScratchFolder folder;
  fs::create_directories(folder / "real");
  const auto real = folder / "real/a.dat";
  ReplaceFile(real, "first");
  ::chmod(real.c_str(), 0640);
  const uid_t owner = ::geteuid() == 0 ? 1234 : ::geteuid();
  ASSERT_EQ(::chown(real.c_str(), owner, static_cast<gid_t>(-1)), 0);
  fs::create_symlink("real/a.dat", folder / "link");
  // What a killed writer left goes; what another one holds stays.
  const auto left = folder / "real/.a.dat.Ab12Cd.vellumark";
  const auto held = folder / "real/.a.dat.Held00.vellumark";
  ReplaceFile(left, "half");
  ReplaceFile(held, "at work");
  std::error_code error;
  platform::OpenFile lock = platform::OpenExisting(held, platform::Opening::Write, error);
  ASSERT_TRUE(platform::TakeByteLock(lock, LockedByte::Beside));
  ReplaceFile(folder / "link", "second");
  lock.Close();
  EXPECT_TRUE(fs::is_symlink(folder / "link"));
  EXPECT_EQ(ReadFileBytes(real), "second");
  struct stat status {};
  ::stat(real.c_str(), &status);
  EXPECT_EQ(status.st_mode & 07777, 0640U);
  EXPECT_EQ(status.st_uid, owner);
  EXPECT_FALSE(fs::exists(left));
  EXPECT_TRUE(fs::exists(held));
}

TEST(Files, AFolderThatHandsItsGroupOnSharesWhatIsMadeThere) {
  namespace fs = std::filesystem;
  test::ScratchFolder folder;
  const auto shared = folder / "shared";
  fs::create_directories(shared);
  ::chmod(shared.c_str(), 02770);
  MakeFolder(shared / "Backups/Deep");
  ReplaceFile(shared / "Backups/Deep/settings", "x", Readers::Group);
  ReplaceFile(folder / "own", "x", Readers::Group);
  OpenLockFile(shared / "lock").Close();
  const auto mode = [](const fs::path& path) {
    struct stat status {};
    ::stat(path.c_str(), &status);
    return status.st_mode & 07777;
  };
  EXPECT_EQ(mode(shared / "Backups/Deep"), 02770U);
  EXPECT_EQ(mode(shared / "Backups/Deep/settings"), 0660U);
  EXPECT_EQ(mode(shared / "lock"), 0660U);
  EXPECT_EQ(mode(folder / "own"), 0600U);
}

TEST(Platform, AProcessLivesUntilItEndsAndNoOtherPassesForIt) {
  const std::string own = platform::ProcessMark();
  EXPECT_TRUE(platform::ProcessLives(own));
  EXPECT_FALSE(platform::ProcessLives(own + "1")) << "one that began later under the same number";
  EXPECT_FALSE(platform::ProcessLives(own.substr(0, own.find('/')) + "/before/1/1")) << "before the machine started";
  EXPECT_TRUE(platform::ProcessLives("another machine/" + own));
  int lines[2];
  int end[2];
  ASSERT_EQ(::pipe(lines) | ::pipe(end), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    const std::string mark = platform::ProcessMark();
    char byte = 0;
    ::close(end[1]);
    const bool told = ::write(lines[1], mark.data(), mark.size()) > 0;
    ::_exit(told && ::read(end[0], &byte, 1) == 0 ? 0 : 1);
  }
  char mark[500];
  const ssize_t size = ::read(lines[0], mark, sizeof mark);
  ASSERT_GT(size, 0);
  const std::string other(mark, static_cast<std::size_t>(size));
  EXPECT_TRUE(platform::ProcessLives(other));
  ::close(end[1]);
  siginfo_t ended{};
  ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT), 0);
  EXPECT_FALSE(platform::ProcessLives(other)) << "it has ended, though nobody noticed yet";
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_FALSE(platform::ProcessLives(other));
  for (const int descriptor : {lines[0], lines[1], end[0]}) ::close(descriptor);
}

TEST(Files, OnlyAFileIsRead) {
  test::ScratchFolder folder;
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  for (const std::filesystem::path& path : {folder / "pipe", std::filesystem::path("/dev/zero"), folder.Path()}) {
    try {
      ReadFileBytes(path);
      ADD_FAILURE() << path;
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.subject, path.string());
      EXPECT_EQ(failure.cause, "is not a file");
    }
  }
}

TEST(ChangeNotices, EndWithTheirSubscriptionAlsoWhileBeingTold) {
  Changes changes;
  int first = 0;
  int second = 0;
  Changes::Subscription two;
  const auto one = changes.Subscribe([&](const std::vector<Change>&) {
    ++first;
    two.Reset();
  });
  two = changes.Subscribe([&](const std::vector<Change>&) { ++second; });
  changes.Tell({Change{Change::Kind::Basic, "INK", "BLUE", Change::What::Updated, ""}});
  changes.Tell({});
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 0);
}

}  // namespace
}  // namespace vellumark
