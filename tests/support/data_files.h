#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/session/users.h"
#include "core/settings/support_files.h"
#include "core/shell/startup.h"
#include "support/sound.h"

namespace vellumark::test {

/// For tests of what a user without rights to a folder or file meets, when the tests run as root: a plain user for as
/// long as this lasts. `folder` becomes that user's own. Nothing when a plain user runs the tests.
class WithoutRoot {
 public:
  explicit WithoutRoot(const std::filesystem::path& folder) {
    if (::geteuid() != 0) return;
    changed_ = true;
    Give(folder);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) Give(entry.path());
    if (::seteuid(kNobody) != 0) throw std::runtime_error("cannot become a plain user");
  }
  ~WithoutRoot() {
    if (changed_ && ::seteuid(0) != 0) std::abort();
  }
  WithoutRoot(const WithoutRoot&) = delete;
  WithoutRoot& operator=(const WithoutRoot&) = delete;

 private:
  static constexpr uid_t kNobody = 65534;
  static void Give(const std::filesystem::path& path) {
    if (::lchown(path.c_str(), kNobody, static_cast<gid_t>(-1)) != 0)
      throw std::runtime_error("cannot give " + path.string());
  }
  bool changed_ = false;
};

/// A Data File that another process has open, as another workstation would.
class HeldFile {
 public:
  explicit HeldFile(const std::filesystem::path& path) {
    int ready[2];
    if (::pipe(ready) != 0) throw std::runtime_error("no pipe");
    child_ = ::fork();
    if (child_ == 0) {
      // What the test has open itself is not this process's to hold.
      for (int other = 3; other < 256; ++other)
        if (other != ready[1]) ::close(other);
      const auto file = Database::Open(path, OpenMode::Exclusive);
      if (::write(ready[1], "x", 1) != 1) ::_exit(1);
      for (;;) ::pause();
    }
    ::close(ready[1]);
    char byte = 0;
    const bool holds = ::read(ready[0], &byte, 1) == 1;
    ::close(ready[0]);
    if (!holds) throw std::runtime_error("the other process could not open " + path.string());
  }
  ~HeldFile() {
    ::kill(child_, SIGKILL);
    ::waitpid(child_, nullptr, 0);
  }
  HeldFile(const HeldFile&) = delete;
  HeldFile& operator=(const HeldFile&) = delete;

 private:
  pid_t child_;
};

/// The windows of opening and start, which here only write down what was asked of them.
class NotedWindows : public StartupWindows {
 public:
  std::vector<std::string> calls;
  std::string caption;
  std::function<void()> atLogin;

  bool AnotherInstanceRuns(const Session&) override { return false; }
  void ShowMainWindow(const std::string&) override {}
  void ShowNewSetup(Session&) override {}
  void TakePrinter(Session&) override {}
  void PrepareCloud(Session&) override {}
  void LoadScalePort(Session&) override {}
  void ShowSplash() override {}
  void ShowCloudLine(Session&) override {}
  void CloseAllChildWindows() override { calls.emplace_back("close children"); }
  void RemindBackup(Session&) override {}
  void ShutdownBackup(Session& session, const std::string& label) override {
    EXPECT_FALSE(session.DataFileOpen);
    calls.push_back("backup " + label + " of " + std::filesystem::path(session.DataFileName).filename().string());
  }
  void PowerOffScale(Session&) override {}
  void ShowNewDataFile(const std::string& message) override { calls.push_back("new data file: " + message); }
  std::optional<std::filesystem::path> updated;  ///< what UpdateDataFileForm made
  std::optional<std::filesystem::path> ShowUpdateDataFile(const std::filesystem::path&, int version) override {
    calls.push_back("update from " + std::to_string(version));
    return updated;
  }
  void Login(Session&) override {
    calls.emplace_back("login");
    if (atLogin) atLogin();
  }
  void SetCaption(const std::string& text) override { caption = text; }
  void SuggestArchive(Session&) override {}
};

inline void WriteFile(const std::filesystem::path& path, std::string_view text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

/// A session without a Data File, and a folder for Data Files.
struct EmptyRoom {
  void MakeFile(const std::filesystem::path& path, int version = kFileVersion, bool withDatabase = true) {
    CreateFile(path);
    const auto file = Database::Open(path, OpenMode::Exclusive);
    if (withDatabase) CreateEmptyDatabase(*file, "INK");
    file->Execute("UPDATE FileInfo SET FileVersion = " + std::to_string(version));
  }
  SoundFolder folder;
  ScriptedPrompt prompt;
  NoProgress progress;
  FixedClock clock{DateTime{2026, 3, 10, 9, 0, 0}};
  Session session{prompt, progress, clock};
};

/// With Support Files.
struct DataFileRoom : EmptyRoom {
  DataFileRoom() {
    std::filesystem::create_directories(folder / "VKDat");
    PrepareSupportFiles(session, {folder / "VKDat", folder / "Program", {}});
  }
  NotedWindows windows;
};

}  // namespace vellumark::test
