#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include "core/base/platform.h"
#include "core/session/session.h"

namespace vellumark {

/// Keeps other processes out of a Data File that is only read, or that the engine cannot open, for as long as the answer
/// lives. Throws Failure when one has it.
platform::OpenFile HoldDataFile(const std::filesystem::path& path);
/// The same of one that may be missing or damaged: what cannot even be opened nobody works in.
platform::OpenFile HoldIfItOpens(const std::filesystem::path& path);

/// What a killed program leaves beside a Data File, to be played back.
std::filesystem::path JournalOf(std::filesystem::path file);

/// A file that is to take a place in one step. It may have it although that failed: the disk fails right behind the step.
class Placement {
 public:
  /// Of the file as it stands beside.
  explicit Placement(const std::filesystem::path& beside) : made_(Look(beside)) {}
  bool Stands(const std::filesystem::path& target) const { return made_ == Look(target); }

 private:
  using Identity = std::pair<std::uint64_t, std::uint64_t>;
  static Identity Look(const std::filesystem::path& path);
  Identity made_;
};

/// Keeps what is about to be replaced of a Data File that nobody else works in: "Before Restore 03_10_2026__09_05_00"
/// beside it, with "(2)" and so on behind that when it is taken. It is filled under a name of its own, which nobody takes
/// for a whole one; what a killed program left under such a name of this Data File goes when the next one begins.
class KeptFolder {
 public:
  KeptFolder(const Session& session, const std::filesystem::path& current, std::string_view what);
  /// Gone again when nothing came of what it was made for.
  ~KeptFolder();
  KeptFolder(const KeptFolder&) = delete;
  KeptFolder& operator=(const KeptFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }
  /// All is in it and on the disk: it gets its name.
  void Show();
  void Stay(bool stays = true) { stays_ = stays; }

 private:
  std::filesystem::path current_;
  std::string name_;
  std::filesystem::path path_;
  bool shown_ = false;
  bool stays_ = false;
};

}  // namespace vellumark
