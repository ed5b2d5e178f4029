#pragma once

#include <algorithm>

#include "core/base/files.h"
#include "core/shell/archiving.h"
#include "support/old_room.h"
#include "support/struck_room.h"

namespace vellumark::test {

/// A ten-year room that is archived and struck meanwhile: its records stand in the one file, as before, or divided
/// between the two, each whole, and the next try does the rest.
class ArchiveStrikes : public StruckRoom {
 protected:
  explicit ArchiveStrikes(int perYear) {
    AddTenYears(*Database::Open(file, OpenMode::Exclusive), 2025, perYear);
    Content();
    KeepState();
  }

  int StrikeArchive(int stride, std::initializer_list<int> errors) {
    const Act run = [](CoreDesk& desk) { return ArchiveDataFile(desk.session).has_value(); };
    const std::string before = Content();
    EXPECT_EQ(Do(run), 0);
    const std::string after = Content();
    EXPECT_NE(before, after);
    const std::string moved = ContentOf(Archives().front());
    return Strike(
        run, stride,
        [&] {
          const std::string now = Content();
          ASSERT_TRUE(now == before || now == after);
          ASSERT_EQ(Archives().size(), now == before ? 0U : 1U);
          if (now == before) {
            ASSERT_EQ(Do(run), 0);
            ASSERT_EQ(Content(), after);
          }
          ASSERT_EQ(Archives().size(), 1U);
          ASSERT_EQ(ContentOf(Archives().front()), moved);
        },
        errors);
  }

 private:
  static std::string ContentOf(const std::filesystem::path& archive) {
    AgreeingPrompt prompt;
    NoProgress progress;
    FixedClock clock{DateTime{2026, 3, 10, 9, 0, 0}};
    Session session{prompt, progress, clock};
    session.DataFileDB = Database::Open(archive, OpenMode::ReadOnly);
    EXPECT_TRUE(CheckDataFileRules(session, CheckDepth::Deep).Sound());
    return Snapshot(session.File());
  }
  std::vector<std::filesystem::path> Archives() const {
    std::vector<std::filesystem::path> found;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
      const std::string name = entry.path().filename().string();
      if (name.find("Archive") != std::string::npos && name.ends_with(".vkd")) found.push_back(entry.path());
    }
    return found;
  }
};

}  // namespace vellumark::test
