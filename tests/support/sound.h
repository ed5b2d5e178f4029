#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <string_view>

#include "core/backup/deep_check.h"
#include "support/notices.h"
#include "support/scratch.h"

namespace vellumark::test {

/// The deep check at the end of a test that wrote to a Data File: every rule holds, but for those that the test breaks
/// on purpose, each of which it names.
class SoundAtEnd {
 public:
  void Breaks(std::string_view rule);

  void Expect(Session& session, CheckState state) const;

  /// Of a file that nobody has open.
  void ExpectFile(const std::filesystem::path& path) const;

 private:
  std::set<std::string> broken_;
};

/// A folder whose Data Files are sound at its end. The first member of a fixture, so that it ends after the session
/// that has one of them open.
class SoundFolder : public ScratchFolder {
 public:
  ~SoundFolder();
  /// A rule that the test breaks on purpose; "Structure" when a file of it cannot be read at all.
  void Breaks(std::string_view rule) const { sound_.Breaks(rule); }

 private:
  mutable SoundAtEnd sound_;
};

}  // namespace vellumark::test
