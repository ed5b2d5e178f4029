#include <gtest/gtest.h>

#include "support/archive_strikes.h"

namespace vellumark {
namespace {

// The long form, at every operation, stands in tests/long.
struct Archiving : test::ArchiveStrikes {
  Archiving() : ArchiveStrikes(3) {}
};

TEST_F(Archiving, AKillOrAFailingDiskLeavesAllOfItOrNothing) {
  EXPECT_GT(StrikeArchive(41, {test::kKilled, EIO}), 8);
}

}  // namespace
}  // namespace vellumark
