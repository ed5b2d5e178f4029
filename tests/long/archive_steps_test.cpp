// An archive killed at every one of its file operations, and each of some of these failing.

#include <gtest/gtest.h>

#include "support/archive_strikes.h"

namespace vellumark {
namespace {

struct ArchiveSteps : test::ArchiveStrikes {
  ArchiveSteps() : ArchiveStrikes(45) {}
};

TEST_F(ArchiveSteps, Killed) {
  EXPECT_GT(StrikeArchive(1, {test::kKilled}), 1000);
}

TEST_F(ArchiveSteps, FullOrFailingDisk) {
  EXPECT_GT(StrikeArchive(3, {ENOSPC, EIO}), 500);
}

}  // namespace
}  // namespace vellumark
