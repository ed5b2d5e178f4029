#include "core/scale/streams.h"

namespace vellumark {
namespace {

TEST(ScaleStreams, AMillionOfThem) {
  test::FeedStreams(1'000'000);
}

}  // namespace
}  // namespace vellumark
