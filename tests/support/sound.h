#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <string>

#include "core/backup/deep_check.h"

namespace vellumark::test {

/// The deep check at the end of a test that wrote to a Data File: every rule holds, but for those that the test breaks
/// on purpose, each of which it names.
class SoundAtEnd {
 public:
  void Breaks(std::string_view rule) {
    const auto is = [&](const CheckRule& known) { return known.name == rule; };
    if (std::ranges::none_of(CheckRules(), is)) throw std::logic_error("no rule " + std::string(rule));
    broken_.emplace(rule);
  }

  void Expect(Session& session, CheckState state) const {
    if (testing::Test::HasFailure()) return;  // the first cause tells more
    std::string text;
    int lines = 0;
    for (const CheckFault& fault : CheckDataFileRules(session, CheckDepth::Deep, state).faults)
      if (!broken_.contains(fault.rule) && ++lines <= kMostLines) text += "\n" + FaultText(fault);
    EXPECT_EQ(lines, 0) << "not sound:" << text;
  }

 private:
  static constexpr int kMostLines = 10;
  std::set<std::string> broken_;
};

}  // namespace vellumark::test
