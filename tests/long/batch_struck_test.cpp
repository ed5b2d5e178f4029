// A Batch changed or deleted from the command line while a file operation fails, once or for good: the program says so
// and ends, and what it called failed has not happened, unless it says that it may have.

#include <gtest/gtest.h>

#include <cerrno>

#include "core/base/files.h"
#include "core/datafile/writer.h"
#include "support/cli_run.h"
#include "support/snapshot.h"
#include "support/struck.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

struct StruckShop : test::CliRoom {
  StruckShop() {
    path = MakeFile();
    {
      const auto file = Database::Open(path, OpenMode::Exclusive);
      for (const char* name : {"RED", "BLUE"}) InsertRow(*file, schema::Basic, "INK_Basic", {{"Color_Name", name}});
      InsertRow(*file, schema::Mix, "INK_Mix",
                {{"Color_Name", "TARGET"}, {"BC0", "RED"}, {"BQ0", 60.0F}, {"BC1", "BLUE"}, {"BQ1", 40.0F},
                 {"Color_Set", "<RED><BLUE>"}});
    }
    for (const char* lot : {"A", "B"}) Json({"stock", "adjust", "RED", "100", "--lot", lot, "--kind", "basic"});
    Json({"stock", "adjust", "BLUE", "100", "--kind", "basic"});
    Json({"--now", "2026-03-10 09:00:00", "batch", "save", "--formula", "TARGET", "--quantity", "50", "--mix", "--lot",
          "RED=A:30", "--lot-number", "MADE"});
    fs::copy_file(path, kept);
  }
  void Restore() const {
    fs::remove(path + "-journal");
    fs::copy_file(kept, path, fs::copy_options::overwrite_existing);
  }
  std::string Rows() const { return test::Snapshot(*Database::Open(path, OpenMode::Exclusive)); }

  std::string path;
  fs::path kept = folder / "kept";
};

TEST(StruckBatch, IsAsItWasOrDone) {
  const StruckShop shop;
  const std::string before = shop.Rows();
  const Words now{"--now", "2026-03-10 10:00:00"};
  for (Words words : {Words{"batch", "edit", "1", "--quantity", "80", "--mix", "--lot", "RED=B:48"},
                      Words{"--yes", "batch", "delete", "1"}}) {
    words.insert(words.begin(), now.begin(), now.end());
    shop.Restore();
    ASSERT_EQ(shop.Run(words).status, 0);
    const std::string after = shop.Rows();
    ASSERT_NE(before, after);
    for (const test::Strike strike : {test::Strike::Once, test::Strike::FromThereOn}) {
      const std::string how = strike == test::Strike::Once ? "" : ", for good";
      int points = 0, open = 0;
      for (int nth = 1;; ++nth) {
        shop.Restore();
        const test::StruckRun run = test::RunStruck(
            nth, EIO, [&]() -> int { shop.Become(words, "/dev/null", test::MarkStep); }, strike);
        if (!run.struck) break;
        ++points;
        // 127: the program itself could not be read.
        ASSERT_TRUE(run.status == 0 || run.status == 4 || run.status == 127) << run.status << " at " << nth << how;
        const std::string rows = shop.Rows();
        if (run.status == 4 && ReadFileBytes(shop.folder / "stderr").find("may be stored or not") != std::string::npos) {
          ++open;
          ASSERT_TRUE(rows == after || rows == before) << " at " << nth << how;
        } else {
          ASSERT_EQ(rows, run.status == 0 ? after : before) << " at " << nth << how;
        }
      }
      EXPECT_GT(points, 20);
      EXPECT_LE(open, 8);  // the syncs of the journal, of two transactions
    }
    ASSERT_EQ(shop.Run({"file", "check", shop.path, "--deep"}).status, 0);
  }
}

}  // namespace
}  // namespace vellumark
