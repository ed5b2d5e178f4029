#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <string>

#include "core/backup/repair.h"
#include "core/base/files.h"
#include "core/datafile/lifecycle.h"
#include "support/full_room.h"

namespace vellumark::test {

/// A closed Data File with something of everything on some dozens of pages, and copies of it that are damaged and
/// repaired.
class DamagedFile {
 public:
  DamagedFile() {
    FullRoom room;
    for (int i = 0; i < 120; ++i) {
      const std::string name = "C" + std::to_string(100 + i);
      room.Basic(
          name, {{"Inventory", 0.25F * static_cast<float>(i)}, {"Notes", std::string(i % 40 == 3 ? 6000U : 90U, 'n')}});
      room.Mix("M" + name, {{name, 60}, {"RED", 40}});
    }
    room.session.DataFileDB.reset();
    sound = ReadFileBytes(room.session.DataFileName);
  }

  /// Repairs a file of these bytes. Nothing can be read, then it is refused and stays, or it can be opened afterwards
  /// and is whole. True when it was repaired.
  bool Repair(const std::string& bytes) {
    const std::filesystem::path path = folder_ / "Ink.vkd";
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path()))
      std::filesystem::remove_all(entry.path());
    std::ofstream(path, std::ios::binary) << bytes;
    ScriptedPrompt prompt;
    NoProgress progress;
    FixedClock clock{DateTime{2026, 3, 10, 12, 0, 0}};
    Session session{prompt, progress, clock};
    session.DataFolder = folder_.Path();
    session.support = std::make_unique<SupportFiles>(folder_.Path());
    session.DataFileName = path.string();
    const auto report = MendDataFile(session, [] { return Result<void>{}; });
    if (!report) {
      EXPECT_NE(report.error().text.find("It stays as it is."), std::string::npos) << report.error().text;
      EXPECT_TRUE(ReadFileBytes(path) == bytes);
      return false;
    }
    for (const StepLine& line : report->left)
      EXPECT_EQ(line.What.find("this step could not be done"), std::string::npos) << line.What;
    session.DataFileDB = Database::Open(path, OpenMode::Exclusive);
    EXPECT_TRUE(session.File().Faults().empty());
    EXPECT_EQ(ReadFileInfo(session.File()).fileVersion % 100, kFileVersion);
    CheckDataFileRules(session, CheckDepth::Deep);
    return true;
  }

  std::string sound;

 private:
  ScratchFolder folder_;
};

/// Flips one bit; cuts somewhere. `number` tells which.
inline std::string Flipped(std::string bytes, unsigned number) {
  std::mt19937 random(number);
  bytes[random() % bytes.size()] ^= static_cast<char>(1U << random() % 8);
  return bytes;
}
inline std::string CutShort(const std::string& bytes, unsigned number) {
  std::mt19937 random(number);
  return bytes.substr(0, random() % bytes.size());
}

}  // namespace vellumark::test
