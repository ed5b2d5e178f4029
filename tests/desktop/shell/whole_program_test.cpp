// The program with all its windows and its own messages, on a file that the command line made.

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLineEdit>

#include "desktop/kit/message_prompt.h"
#include "furnished_room.h"
#include "running.h"

namespace vellumark::test {
namespace {

struct WholeProgramTest : testing::Test {
  bool Start(RunningProgram<desktop::MessagePrompt>& running) {
    return running.Start({desktop::ChooseFile, [&](const auto&) { return room.folder.Path(); }});
  }

  FurnishedRoom room;
};

// Whoever presses Enter without reading deletes nothing.
TEST_F(WholeProgramTest, EnterOnTheQuestionOfADeletionKeepsWhatIsThere) {
  RunningProgram<desktop::MessagePrompt> running(room.folder.Path());
  ASSERT_TRUE(Start(running));
  const struct {
    const char* window;
    desktop::Arguments shows;
    const char* count;
  } rows[] = {
      {"BasicColorsForm", {{"FindRecord", "BLUE"}}, "SELECT COUNT(*) FROM INK_Basic"},
      {"MixColorsForm", {{"FindRecord", "TARGET"}}, "SELECT COUNT(*) FROM INK_Mix"},
      {"BatchForm", {{"BatchNo", 1}}, "SELECT COUNT(*) FROM INK_Batch"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.window);
    const auto before = running.session.File().Scalar(row.count).Whole();
    desktop::Window* window = running.windows.OpenForm(row.window, row.shows);
    Settle();
    ASSERT_TRUE(window->CanDo("cmdDelete"));
    WithModal([&] { window->Do("cmdDelete"); }, [](QWidget&) { PressOn(Qt::Key_Return); });
    EXPECT_EQ(running.session.File().Scalar(row.count).Whole(), before);
    window->Leave();
    Settle();
  }
}

// A key presses a button, which clicks a moment later.
TEST_F(WholeProgramTest, AKeyThatWasPressedBeforeTheEndOpensNothingAfterIt) {
  RunningProgram<desktop::MessagePrompt> running(room.folder.Path());
  ASSERT_TRUE(Start(running));
  auto& main = running.program.Main();
  main.activateWindow();
  Settle();
  const QKeyCombination key = Control<QAbstractButton>(main, "Batch").shortcut()[0];
  Press(main, key.key(), key.keyboardModifiers());
  ASSERT_TRUE(Control<QAbstractButton>(main, "Batch").isDown());
  main.close();
  QTest::qWait(200);
  EXPECT_FALSE(Control<QAbstractButton>(main, "Batch").isDown());
  EXPECT_FALSE(running.windows.IsFormOpen("BatchForm"));
}

// What an older program or a damaged disk left is told where it stands, and the program goes on.
TEST_F(WholeProgramTest, AFigureThatIsNoNumberIsToldWhereItStands) {
  room.folder.Breaks("Fields");
  for (const auto& entry : std::filesystem::directory_iterator(room.folder.Path()))
    if (entry.path().extension() == ".vkd")
      Database::Open(entry.path(), OpenMode::Exclusive)
          ->Execute("UPDATE INK_Basic SET PurchaseCost = 9e999 WHERE Color_Name = 'RED'");
  RunningProgram<desktop::MessagePrompt> running(room.folder.Path());
  ASSERT_TRUE(Start(running));
  try {
    running.windows.OpenForm("BasicColorsForm", {{"FindRecord", "RED"}});
    ADD_FAILURE() << "shows a figure that is none";
  } catch (const Failure& failure) {
    for (const char* place : {"INK_Basic", "RED", "PurchaseCost"})
      EXPECT_NE(failure.cause.find(place), std::string::npos) << place << " in " << failure.cause;
  }
  desktop::Window* window = running.windows.OpenForm("BasicColorsForm", {{"FindRecord", "BLUE"}});
  Settle();
  EXPECT_EQ(Control<QLineEdit>(*window, "cmbColorName").text(), "BLUE");
}

}  // namespace
}  // namespace vellumark::test
