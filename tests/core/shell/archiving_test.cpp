#include <gtest/gtest.h>

#include "support/archive_strikes.h"

namespace vellumark {
namespace {

// The long form, at every operation, stands in tests/long.
struct Archiving : test::ArchiveStrikes {
  Archiving() : ArchiveStrikes(3) {}
};

// What the strikes are made for: a file that is half written while its transaction is open.
TEST_F(Archiving, TheFileIsWrittenBeforeTheCommitWhereMemoryIsShort) {
  const auto writtenBefore = [&] {
    const std::string before = ReadFileBytes(file);
    const test::Arranging arranging;
    const auto opened = Database::Open(file, OpenMode::Exclusive);
    Transaction transaction(*opened);
    opened->Execute("UPDATE INK_Batch SET Notes = Notes || 'more'");
    for (int n = 0; n < 20; ++n)
      InsertRow(*opened, schema::Basic, "INK_Basic", {{"Color_Name", "C" + std::to_string(n)}, {"Notes", std::string(900, 'n')}});
    return ReadFileBytes(file) != before;
  };
  EXPECT_FALSE(writtenBefore());
  const test::SmallPageMemory small;
  EXPECT_TRUE(writtenBefore());
}

TEST_F(Archiving, AKillOrAFailingDiskLeavesAllOfItOrNothing) {
  EXPECT_GT(StrikeArchive(41, {test::kKilled, EIO}), 8);
}

}  // namespace
}  // namespace vellumark
