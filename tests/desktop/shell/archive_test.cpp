// A ten-year room in the real program: the offer at its opening, the archive, and the way into it and out again.

#include <gtest/gtest.h>

#include <QAction>
#include <QLabel>

#include "core/backup/archive.h"
#include "core/backup/backup_set.h"
#include "core/colors/basics.h"
#include "core/datafile/databases.h"
#include "core/shell/data_files.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/message_prompt.h"
#include "running.h"
#include "support/cli_run.h"
#include "support/old_room.h"

namespace vellumark::test {
namespace {

namespace fs = std::filesystem;

struct ArchiveInProgram : testing::Test {
  ArchiveInProgram() : path(room.MakeFile()) {
    room.Json({"color", "add", "RED"});
    room.Json({"db", "create", "UV"});
    AddTenYears(*Database::Open(path, OpenMode::Exclusive), 2025, 60);
    running.prompt.SetHook([this](const Message& message) {
      told.push_back(message);
      return message.buttons == Buttons::Ok || message.buttons == Buttons::OkCancel ? Answer::Ok : Answer::No;
    });
  }
  ~ArchiveInProgram() override {
    running.program.Main().close();
    Settle();
  }
  void StartSkipping() {
    WithModal([&] { ASSERT_TRUE(running.Start()); }, [&](QWidget& form) {
      ++offers;
      ASSERT_EQ(form.objectName(), "ArchiveForm");
      Click(form, "cmdSkip");
    });
  }
  bool Open(const fs::path& file) {
    const auto opened = OpenOtherDataFile(running.session, file, running.program.Windows());
    Settle();
    return opened.value_or(false);
  }
  std::int64_t Batches() {
    std::int64_t batches = 0;
    for (const std::string& database : running.session.databaseList)
      batches += CountRows(running.session.File(), database).batches;
    return batches;
  }

  CliRoom room;
  fs::path path;
  RunningProgram<desktop::MessagePrompt> running{room.folder.Path()};
  std::vector<Message> told;
  int offers = 0;
};

TEST_F(ArchiveInProgram, IsOfferedOnceForEachOpeningAndMovesWhatItShows) {
  StartSkipping();
  EXPECT_EQ(offers, 1);
  EXPECT_EQ(Batches(), 600);
  ASSERT_TRUE(ChangeDatabase(running.session, "UV"));
  Settle();
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "not for each Database";

  auto* command = running.program.Main().findChild<QAction*>("menuDFArchive");
  ASSERT_NE(command, nullptr);
  const ArchivePreview preview = PreviewArchive(running.session);
  WithModal([&] { command->trigger(); }, [&](QWidget& form) {
    EXPECT_EQ(form.windowTitle(), "Archive Data File");
    EXPECT_EQ(Control<QLabel>(form, "lblOldestBatchRecord").text(),
              QLocale().toString(QDate(2016, 1, 7), QLocale::ShortFormat));
    EXPECT_EQ(Control<QLabel>(form, "lblArchiveName").text(), "Ink Archive 2026.vkd");
    EXPECT_EQ(Control<desktop::Grid>(form, "fg").ShownRows().size(), preview.counts.size());
    Picture(form, "archive-ArchiveForm");
    PressOn(Qt::Key_Return);
    EXPECT_TRUE(form.isVisible()) << "Enter without reading moves nothing";
    Click(form, "cmdArchive");
  });
  ASSERT_FALSE(told.empty());
  EXPECT_EQ(told.back().title, "Finished Archiving");
  EXPECT_EQ(told.back().text, std::to_string(preview.Records()) + " have been removed from the Data File and saved in " +
                                  (room.folder / "Ink Archive 2026.vkd").string());
  EXPECT_EQ(running.session.CurrentDatabase, "UV");
  EXPECT_FALSE(DueArchive(running.session));

  // Whoever follows a number of paper to a Batch that moved is told where it is.
  told.clear();
  running.windows.OpenForm("ViewBatchForm", {{"BatchNo", 1}});
  Settle();
  ASSERT_FALSE(told.empty());
  EXPECT_TRUE(told.back().text.ends_with("It stands in Ink Archive 2026.vkd.")) << told.back().text;
}

TEST_F(ArchiveInProgram, IsLookedAtAndLeftAgain) {
  StartSkipping();
  ASSERT_TRUE(ChangeDatabase(running.session, "INK"));
  const ArchivePreview preview = PreviewArchive(running.session);
  MoveToArchive(running.session, preview);
  const std::int64_t stay = Batches();
  ASSERT_TRUE(Open(preview.archive));
  EXPECT_TRUE(running.session.ArchiveView);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "an archive is not archived";
  EXPECT_EQ(Batches() + stay, 600);
  ASSERT_EQ(ListSets(room.folder / "Auto Backup").size(), 1U) << "of the file that was left";

  ASSERT_TRUE(Open(path));
  EXPECT_FALSE(running.session.ArchiveView);
  EXPECT_EQ(Batches(), stay);
  ASSERT_EQ(ListSets(room.folder / "Auto Backup").size(), 1U) << "none of the archive";
  EXPECT_TRUE(running.windows.OpenForm("BasicColorsForm", {{"FindRecord", "RED"}}));
}

}  // namespace
}  // namespace vellumark::test
