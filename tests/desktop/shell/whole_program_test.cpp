// The program with all its windows and its own messages, on a file that the command line made.

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLineEdit>
#include <QAction>
#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <functional>
#include <utility>

#include "core/backup/backup_set.h"
#include "core/base/files.h"
#include "core/session/settings.h"
#include "core/session/users.h"
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

// Whoever presses Enter without reading deletes nothing, and the button that has the focus is the answer.
TEST_F(WholeProgramTest, EnterOnTheQuestionOfADeletionAnswersWithItsButton) {
  ASSERT_EQ(room.Run({"color", "add", "SPARE"}).status, 0);  // one that no formula uses
  RunningProgram<desktop::MessagePrompt> running(room.folder.Path());
  ASSERT_TRUE(Start(running));
  Session& session = running.session;
  bool questionShown = false;  // the first message of an act is; what follows a Yes is confirmed
  running.prompt.SetHook([&](const Message& message) -> std::optional<Answer> {
    const bool isQuestion = message.buttons == Buttons::YesNo && !std::exchange(questionShown, true);
    if (isQuestion) return std::nullopt;
    return message.buttons == Buttons::YesNo ? Answer::Yes : Answer::Ok;
  });
  ASSERT_TRUE(CreateUsers(session, "BOSS", "SECRET"));
  ASSERT_TRUE(AddUser(session, {"ANNA", "RED", false, {}}));
  const auto count = [&](const char* table) {
    return [&session, table] {
      return static_cast<std::size_t>(session.File().Scalar(std::string("SELECT COUNT(*) FROM ") + table).Whole());
    };
  };
  const auto databases = [&] { return session.databaseList.size(); };
  const auto users = [&] { return UsersEnabled(session) ? UserNames(session).size() : 0; };
  const struct {
    const char* window;
    desktop::Arguments shows;
    std::function<std::size_t()> left;
    const char* button;  // of a dialog; a window has its command
    std::string first;   // where Space chooses what is to go, or a password stands
  } rows[] = {
      {"BasicColorsForm", {{"FindRecord", "SPARE"}}, count("INK_Basic"), nullptr, ""},
      {"MixColorsForm", {{"FindRecord", "TINT"}}, count("INK_Mix"), nullptr, ""},
      {"BatchForm", {{"BatchNo", 1}}, count("INK_Batch"), nullptr, ""},
      {"DeleteDBForm", {}, databases, "cmdDelete", "lstDatabases"},
      {"DeleteUserForm", {}, users, "cmdDelete", ""},
      {"AdminOptionsForm", {}, users, "cmdDisableUsernames", "txtPassword"},
  };
  // To the button of that name by Tab, past the others, and Enter on it.
  const auto answer = [](std::vector<const char*> way) {
    for (const char* button : way)
      for (int step = 0; step < 4 && FocusName() != button; ++step) PressOn(Qt::Key_Tab);
    if (!way.empty()) {
      EXPECT_EQ(FocusName(), way.back());
    }
    PressOn(Qt::Key_Return);
  };
  for (const auto& row : rows) {
    for (const std::vector<const char*>& way :
         {std::vector<const char*>{}, {"cmdYes", "cmdNo"}, std::vector<const char*>{"cmdYes"}}) {
      SCOPED_TRACE(row.window + std::to_string(way.size()));
      const bool deletes = way.size() == 1;
      const std::size_t before = row.left();
      questionShown = false;
      const auto act = [&](const std::function<void()>& does) {
        WithModal(does, [&](QWidget& question) {
          EXPECT_EQ(question.objectName().toStdString(), "MessageDialog");
          answer(way);
        });
        EXPECT_EQ(row.left() < before, deletes);
      };
      if (row.button == nullptr) {
        desktop::Window* window = running.windows.OpenForm(row.window, row.shows);
        Settle();
        ASSERT_TRUE(window->CanDo("cmdDelete"));
        act([&] { window->Do("cmdDelete"); });
        window->Leave();
        Settle();
        continue;
      }
      WithModal([&] { running.windows.RunDialog(row.window); },
                [&](QWidget& dialog) {
                  const QPointer<QWidget> open = &dialog;
                  if (!row.first.empty()) Control(dialog, row.first.c_str()).setFocus(Qt::TabFocusReason);
                  if (row.first == "txtPassword") TypeOn("SECRET");
                  if (row.first == "lstDatabases") PressOn(Qt::Key_Space);
                  act([&] { Click(dialog, row.button); });
                  if (open != nullptr && open->isVisible()) Press(*open, Qt::Key_Escape);
                });
    }
  }
}

// The real program, closed by its window: a backup that is due is asked for, and one is made that proves itself.
TEST_F(WholeProgramTest, ClosingAsksForADueBackupAndMakesTheAutomaticOne) {
  RunningProgram<desktop::MessagePrompt> running(room.folder.Path());
  ASSERT_TRUE(Start(running));
  StoreSettings(running.session, {setting::RemindBackup.To(false)});
  WithModal([&] { running.program.Main().close(); },
            [](QWidget& form) {
              EXPECT_EQ(form.objectName(), "BackupReminderForm");
              Click(form, "OptNo");
              Click(form, "cmdOK");
            });
  Settle();
  const std::vector<BackupSet> sets = ListSets(room.folder / "Auto Backup");
  ASSERT_EQ(sets.size(), 1U);
  ASSERT_TRUE(sets.front().proof);
  EXPECT_TRUE(sets.front().proof->content.Sound());
}

// A file that was damaged with a hex editor: the start shows the window with all ways out, and one of them saves it.
TEST_F(WholeProgramTest, AFileThatDoesNotOpenIsRepairedFromTheWindowOfTheStartAndAnOpenOneFromTheMenu) {
  room.folder.Breaks("Structure");
  const std::filesystem::path file = room.folder / "Ink.vkd";
  std::string bytes = ReadFileBytes(file);
  std::fill_n(bytes.begin(), 4096, '\x41');
  ReplaceFile(file, bytes);
  RunningProgram<desktop::MessagePrompt> running(room.folder.Path());
  std::vector<std::string> asked;
  running.prompt.SetHook([&](const Message& message) -> std::optional<Answer> {
    asked.push_back(message.text);
    return Answer::Ok;
  });
  QTimer steps;
  bool pressed = false;
  int reports = 0;
  QObject::connect(&steps, &QTimer::timeout, [&] {
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr) return;
    // Out of this timer, which does not run again inside what it began.
    if (modal->objectName() == "NewDataFileForm" && !std::exchange(pressed, true))
      QMetaObject::invokeMethod(modal, [modal] { Click(*modal, "cmdRepair"); }, Qt::QueuedConnection);
    if (modal->objectName() == "RepairForm") {
      ++reports;
      Picture(*modal, "shell-RepairForm", {});
      modal->close();
    }
  });
  steps.start(20);
  ASSERT_TRUE(Start(running));
  EXPECT_EQ(reports, 1);
  EXPECT_TRUE(running.session.RecordsetsOpen);
  EXPECT_EQ(running.session.File().Scalar("SELECT COUNT(*) FROM INK_Batch").Whole(), 2);
  ASSERT_EQ(asked.size(), 3U) << "the question, the empty Database UV, the end";
  EXPECT_EQ(asked.back(), "Data File Repairing Completed.");

  // The menu asks before it closes what is open.
  auto* repair = running.program.Main().findChild<QAction*>("menuDFRepair");
  running.windows.OpenForm("MixColorsForm");
  running.prompt.SetHook([](const Message&) { return std::optional(Answer::Cancel); });
  repair->trigger();
  EXPECT_TRUE(running.windows.IsFormOpen("MixColorsForm"));
  running.prompt.SetHook([](const Message&) { return std::optional(Answer::Ok); });
  repair->trigger();
  EXPECT_FALSE(running.windows.IsFormOpen("MixColorsForm"));
  EXPECT_EQ(reports, 2);
  EXPECT_TRUE(running.session.RecordsetsOpen);
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
