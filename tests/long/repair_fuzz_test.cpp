// Ten thousand flipped bits and five hundred cuts: every repair ends in a file that opens and is whole, or says that
// nothing can be read.

#include <gtest/gtest.h>

#include "support/damage.h"

namespace vellumark {
namespace {

TEST(RepairFuzz, FlippedBits) {
  test::DamagedFile damaged;
  for (unsigned number = 0; number < 10'000; ++number) {
    SCOPED_TRACE(number);
    ASSERT_TRUE(damaged.Repair(test::Flipped(damaged.sound, number)));
    ASSERT_FALSE(HasFailure());
  }
}

TEST(RepairFuzz, CutFiles) {
  test::DamagedFile damaged;
  int nothing = 0;
  for (unsigned number = 0; number < 500; ++number) {
    SCOPED_TRACE(number);
    nothing += !damaged.Repair(test::CutShort(damaged.sound, number));
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_LT(nothing, 100);
}

}  // namespace
}  // namespace vellumark
