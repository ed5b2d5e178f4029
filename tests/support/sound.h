#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>

#include "core/backup/deep_check.h"
#include "core/datafile/lifecycle.h"
#include "support/notices.h"
#include "support/scratch.h"

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

  /// Of a file that nobody has open.
  void ExpectFile(const std::filesystem::path& path) const {
    if (testing::Test::HasFailure() || broken_.contains("Structure")) return;
    ScriptedPrompt prompt;
    NoProgress progress;
    FixedClock clock{DateTime{2026, 3, 10, 12, 0, 0}};
    Session session{prompt, progress, clock};
    try {
      if (GateOf(ReadFileVersion(path)) != VersionGate::Current) return;
      session.DataFileDB = Database::Open(path, OpenMode::Exclusive);
      SCOPED_TRACE(path);
      Expect(session, CheckState::Closed);
    } catch (const Failure& failure) {
      ADD_FAILURE() << failure.subject << " " << failure.cause;
    }
  }

 private:
  static constexpr int kMostLines = 10;
  std::set<std::string> broken_;
};

/// A folder whose Data Files are sound at its end. The first member of a fixture, so that it ends after the session that
/// has one of them open.
class SoundFolder : public ScratchFolder {
 public:
  ~SoundFolder() {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(Path()))
      if (entry.is_regular_file() && entry.path().extension() == ".vkd") sound_.ExpectFile(entry.path());
  }
  /// A rule that the test breaks on purpose; "Structure" when a file of it cannot be read at all.
  void Breaks(std::string_view rule) const { sound_.Breaks(rule); }

 private:
  mutable SoundAtEnd sound_;
};

}  // namespace vellumark::test
