// A Data File of a small ink room on a disk that is going bad: whatever single bit turns over in it, and wherever it is
// cut, the check notices what a person would read otherwise, and answers.

#include <gtest/gtest.h>

#include "support/flips.h"

namespace vellumark {
namespace {

TEST(Flips, TenThousandBitsAndFiveHundredCuts) {
  test::InkRoom room;
  FillInkRoom(room, 60);
  room.session.DataFileDB.reset();
  test::FlippedFile file(room.session.DataFileName);
  test::ExpectNoticed(file, 10000, 500);
}

}  // namespace
}  // namespace vellumark
