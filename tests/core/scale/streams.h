#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

#include "core/scale/reading.h"

namespace vellumark::test {

/// Whatever comes, in whatever pieces: nothing falls over, and a weight is a number that stood in a reply.
inline void FeedStreams(int count) {
  std::mt19937 random(7);
  const std::string some = "0123456789.-+ \r\n\x11\x13kglb";
  for (int stream = 0; stream < count; ++stream) {
    ReadingLoop loop({.baud = 9600});
    std::int64_t now = 0;
    for (int step = 0; step < 4; ++step) {
      std::string bytes(random() % 40, ' ');
      for (char& c : bytes)
        c = random() % 8 == 0 ? static_cast<char>(random() % 256) : some[random() % some.size()];
      loop.Step(now, bytes);
      now += static_cast<std::int64_t>(random() % 900);
    }
    if (loop.Last()) {
      EXPECT_TRUE(std::isfinite(loop.Last()->weight));
    }
  }
}

}  // namespace vellumark::test
