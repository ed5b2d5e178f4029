#pragma once

#include <algorithm>

#include "core/datafile/lifecycle.h"
#include "support/old_room.h"
#include "support/struck_room.h"

namespace vellumark::test {

/// A ten-year room that is archived and struck meanwhile: its records stand in the one file, as before, or divided
/// between the two, each whole, and the next try does the rest.
class ArchiveStrikes : public StruckRoom {
 protected:
  explicit ArchiveStrikes(int perYear) {
    file_ = room.MakeFile();
    room.Json({"color", "add", "RED"});
    AddTenYears(*Database::Open(file_, OpenMode::Exclusive), 2025, perYear);
    KeepState();
  }

  int StrikeArchive(int stride, std::initializer_list<int> errors) {
    const Words run{"--today", "2026-03-10", "archive", "run"};
    const auto before = Records();
    EXPECT_EQ(room.Run(run).status, 0);
    const auto after = Records();
    EXPECT_NE(before, after);
    const auto moved = Records(Archives().front().string());
    return Strike(
        run, stride,
        [&] {
          const auto now = Records();  // the opening heals
          ASSERT_TRUE(now == before || now == after);
          ASSERT_EQ(Archives().size(), now == before ? 0U : 1U);
          ASSERT_EQ(room.Run({"file", "check", "--deep"}).status, 0);
          if (now == before) {
            const CliAnswer again = room.Run(run);
            ASSERT_EQ(again.status, 0) << again.err;
          }
          ASSERT_EQ(Records(), after);
          ASSERT_EQ(Archives().size(), 1U);
          ASSERT_EQ(Records(Archives().front().string()), moved);
          ASSERT_EQ(room.Run({"file", "check", Archives().front().string(), "--deep"}).status, 0);
        },
        errors);
  }

 private:
  nlohmann::ordered_json Records(const std::string& file = {}) {
    Words of{"--db", "INK"};
    if (!file.empty()) of.insert(of.begin(), {"--file", file});
    nlohmann::ordered_json records = nlohmann::ordered_json::array();
    for (const char* noun : {"batch", "job"}) {
      Words words = of;
      words.insert(words.end(), {noun, "list"});
      records.push_back(room.Json(words));
    }
    return records;
  }
  std::vector<std::filesystem::path> Archives() const {
    std::vector<std::filesystem::path> found;
    for (const auto& entry : std::filesystem::directory_iterator(room.folder.Path())) {
      const std::string name = entry.path().filename().string();
      if (name.find("Archive") != std::string::npos && name.ends_with(".vkd")) found.push_back(entry.path());
    }
    return found;
  }

  std::string file_;
};

}  // namespace vellumark::test
