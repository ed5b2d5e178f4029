// The whole program, from nothing to a ready main window and to its end, by the keys and clicks of an operator.

#include <gtest/gtest.h>

#include <QAction>
#include <QComboBox>
#include <QDesktopServices>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QTableWidget>
#include <QTimer>
#include <QToolButton>
#include <QUrl>
#include <filesystem>

#include "core/backup/backup_set.h"
#include "core/backup/failed_backup.h"
#include "core/base/files.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/session/users.h"
#include "core/settings/support_files.h"
#include "core/shell/gating.h"
#include "core/shell/startup.h"
#include "desktop/colors/register.h"
#include "desktop/datafile/register.h"
#include "desktop/inventory/register.h"
#include "desktop/kit/message_prompt.h"
#include "desktop/kit/wait_progress.h"
#include "desktop/session/register.h"
#include "desktop/settings/register.h"
#include "desktop/shell/program.h"
#include "desktop/shell/status_line.h"
#include "desktop/tools/register.h"
#include "support/data_files.h"
#include "support/desktop.h"
#include "support/sound.h"

namespace vellumark::desktop {
namespace {

namespace fs = std::filesystem;
using test::Control;

// The program in a scratch place, with a prompt that is told its answers.
struct Running {
  Running() { options.folders = {folder / "VKDat", folder / "Program", {}}; }

  bool Start() {
    RegisterSessionWindows(windows);
    RegisterSettingsWindows(windows, [] { return SystemPrinters{}; });
    RegisterColorsWindows(windows);
    RegisterToolsWindows(windows);
    RegisterInventoryWindows(windows);
    RegisterDatafileWindows(windows, program.Windows());
    program.Windows().SkipSplash();
    const bool ready = program.Start(options);
    test::Settle();
    return ready;
  }
  // A Data File with Database and settings from an earlier day.
  fs::path EarlierFile(const std::string& name = "Ink Room.vkd") {
    const fs::path path = folder / name;
    CreateFile(path);
    const auto file = Database::Open(path, OpenMode::Exclusive);
    CreateEmptyDatabase(*file, "INK ROOM");
    CreateEmptyDatabase(*file, "UV FLEXO");
    StoreCurrentDatabase(*file, "INK ROOM");
    SupportFiles support(options.folders.data);
    WriteMissingSupportFiles(support);
    support.settings.SetSupportValue("dbFileName50", path.string());
    return path;
  }
  // Whether the operator could reach and choose it now: each menu on the way is opened first.
  bool IsOn(const std::string& name) {
    for (QMenu* menu : program.Main().findChildren<QMenu*>()) Q_EMIT menu->aboutToShow();
    std::string next = name;
    while (!next.empty()) {
      const auto* action = program.Main().findChild<QAction*>(Q(next));
      if (const auto* menu = program.Main().findChild<QMenu*>(Q(next)); menu != nullptr) action = menu->menuAction();
      if (action == nullptr) throw std::runtime_error("no item " + next);
      if (!action->isVisible() || !action->isEnabled()) return false;
      next = MenuItemNow(session, next).parent;
    }
    return true;
  }

  test::SoundFolder folder;
  SystemClock clock;
  test::ScriptedPrompt prompt;
  WaitProgress progress;
  Session session{prompt, progress, clock};
  WindowList windows{session, &progress};
  Program program{windows};
  StartOptions options;
};

TEST(Start, AnEarlierFileOpensToAReadyMainWindow) {
  Running running;
  const fs::path path = running.EarlierFile();
  ASSERT_TRUE(running.Start());
  MainForm& main = running.program.Main();
  EXPECT_TRUE(main.isVisible());
  EXPECT_EQ(main.windowTitle().toStdString(),
            "Version " VELLUMARK_VERSION "   -   " + path.string() + "   -   INK ROOM");
  EXPECT_EQ(Control<QComboBox>(main, "cmbDBList").currentText(), QStringLiteral("INK ROOM"));
  EXPECT_EQ(Control<QLabel>(main, "lblFullName").text(), QStringLiteral("Custom Database"));
  EXPECT_FALSE(Control<QToolButton>(main, "Users").isVisible());
  // Windows that no room has yet leave their buttons off.
  EXPECT_FALSE(Control<QToolButton>(main, "Batch").isEnabled());
  test::Picture(main, "main-form");
}

TEST(Start, FromNothingThroughSetupAndTheFirstFile) {
  Running running;
  fs::create_directories(running.options.folders.program);
  running.prompt.Expect("New Database");  // no template of guides is there: the first Database is empty
  std::vector<std::string> seen;
  QTimer steps;
  QObject::connect(&steps, &QTimer::timeout, [&] {
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr) return;
    const std::string name = modal->objectName().toStdString();
    if (seen.empty() || seen.back() != name) seen.push_back(name);
    if (name == "NewSetupForm") test::Click(*modal, "cmdSave");
    if (name == "NewDataFileForm") test::Click(*modal, "cmdCreate");
  });
  steps.start(20);
  ASSERT_TRUE(running.Start());
  steps.stop();
  EXPECT_EQ(seen, (std::vector<std::string>{"NewSetupForm", "NewDataFileForm"}));
  EXPECT_TRUE(running.session.RecordsetsOpen);
  EXPECT_EQ(fs::path(running.session.DataFileName), running.options.folders.program / "Vellumark Data.vkd");
  EXPECT_EQ(running.session.CurrentDatabase, "PANTONE");
}

TEST(Start, ASecondInstanceIsTurnedAway) {
  Running first;
  first.EarlierFile();
  ASSERT_TRUE(first.Start());
  Running second;
  second.options.folders = first.options.folders;
  second.prompt.Expect("The Vellumark is already running");
  EXPECT_FALSE(second.Start());
  EXPECT_EQ(second.program.ExitStatus(), 0);
}

TEST(Start, SettingsThatCannotBeReadAreToldAndEndTheProgram) {
  Running running;
  fs::create_directories(running.options.folders.data / "vk50suvdf.dat");
  running.prompt.Expect((running.options.folders.data / "vk50suvdf.dat").string());
  EXPECT_FALSE(running.Start());
  EXPECT_EQ(running.program.ExitStatus(), 1);
}

TEST(Start, AHeldFileIsToldInTheWindowWhereAnotherIsChosen) {
  Running running;
  const fs::path path = running.EarlierFile();
  const auto held = Database::Open(path, OpenMode::Exclusive);
  std::string told;
  QTimer steps;
  QObject::connect(&steps, &QTimer::timeout, [&] {
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr || modal->objectName() != QLatin1String("NewDataFileForm")) return;
    for (const QLabel* label : modal->findChildren<QLabel*>()) told += label->text().toStdString() + "\n";
    test::Click(*modal, "cmdExit");
  });
  steps.start(20);
  EXPECT_FALSE(running.Start());
  EXPECT_EQ(running.program.ExitStatus(), 0);
  EXPECT_NE(told.find(path.string()), std::string::npos) << told;
  EXPECT_NE(told.find("is in use by another process"), std::string::npos) << told;
}

TEST(MainWindow, AnotherDatabaseIsChosenByKeyAndRemembered) {
  Running running;
  running.EarlierFile();
  ASSERT_TRUE(running.Start());
  auto& list = Control<QComboBox>(running.program.Main(), "cmbDBList");
  test::Press(list, Qt::Key_Down);
  test::Settle();
  EXPECT_EQ(running.session.CurrentDatabase, "UV FLEXO");
  EXPECT_EQ(ReadFileInfo(running.session.File()).currentDB, "UV FLEXO");
  EXPECT_EQ(list.currentText(), QStringLiteral("UV FLEXO"));
}

// Every item as the core gates it, and off where no window is there to open.
TEST(MainWindow, MenusFollowTheRightsOfEachUser) {
  Running running;
  running.EarlierFile();
  ASSERT_TRUE(running.Start());
  running.prompt.Expect("");
  ASSERT_TRUE(CreateUsers(running.session, "ANN", "SECRET"));
  running.program.Main().EnableMenuItems();
  test::Settle();
  EXPECT_TRUE(Control<QToolButton>(running.program.Main(), "Users").isVisible());
  for (const std::uint8_t value : {0, 1, 2}) {
    UserRow user;
    user.Username = "USER " + std::to_string(value);
    user.Password = "X";
    for (const RightField& right : RightFields()) user.rights.*right.value = std::min(value, right.full);
    running.prompt.Expect("User Added");
    ASSERT_TRUE(AddUser(running.session, user));
    ASSERT_TRUE(LogIn(running.session, user.Username, "X"));
    const bool full = value >= 1;
    EXPECT_EQ(running.IsOn("menuDFOptions_InventorySettings"), full) << int{value};
    EXPECT_EQ(running.IsOn("menuDB_NewDB"), full) << int{value};
    EXPECT_EQ(running.IsOn("menuDB_DeleteDB"), full) << int{value};
    EXPECT_EQ(running.IsOn("menuDFAdvanced_FileOpen"), full) << int{value};
    EXPECT_FALSE(running.IsOn("menuDFUsers_AdminOptions"));
    EXPECT_TRUE(running.IsOn("menuDFUsers_ChangePassword"));
    EXPECT_FALSE(running.IsOn("menuDFBackup_Cloud"));  // without its window: never a dead entry
    ASSERT_TRUE(LogIn(running.session, "ANN", "SECRET"));
  }
  EXPECT_TRUE(running.IsOn("menuDFUsers_AdminOptions"));
  for (const MenuItem& item : MenuItems(running.session)) {
    if (item.name == "menuDFUsers") {
      EXPECT_EQ(item.caption, "[Username: ANN - ADMINISTRATOR]");
    }
  }
}

TEST(MainWindow, AnArchiveIsShownAndOffersNoWriting) {
  Running running;
  running.EarlierFile("My Archive.vkd");
  ASSERT_TRUE(running.Start());
  EXPECT_TRUE(running.session.ArchiveView);
  for (const char* item : {"menuDFOptions_InventorySettings", "menuDB_NewDB", "menuDB_RenameDB", "menuDFUsers_Create"})
    EXPECT_FALSE(running.IsOn(item)) << item;
  EXPECT_TRUE(running.IsOn("menuDFAdvanced_FileOpen"));
}

TEST(MainWindow, AMenuOfTheToolbarStandsUnderItsButton) {
  Running running;
  running.EarlierFile();
  ASSERT_TRUE(running.Start());
  MainForm& main = running.program.Main();
  auto& button = Control<QToolButton>(main, "Color");
  test::Click(button);
  Window* menu = running.windows.Form("ColorsMenu");
  ASSERT_NE(menu, nullptr);
  EXPECT_EQ(menu->pos(), button.mapToGlobal(QPoint(0, button.height())));
  test::Click(*menu, "cmdMix");
  test::Settle();
  EXPECT_FALSE(running.windows.IsFormOpen("ColorsMenu"));
  const Window* formulas = running.windows.Form("MixColorsForm");
  ASSERT_NE(formulas, nullptr);
  // All of it is in sight in a main window of the smallest screen that counts.
  main.resize(1280, 720);
  test::Settle();
  const QRect sight(main.mapToGlobal(QPoint(0, 0)), main.size());
  for (const char* name : {"cmdSave", "cmdDelete", "BQ7", "BQ14", "lblHAPBasics"}) {
    const auto& control = Control(main, name);
    EXPECT_TRUE(sight.contains(QRect(control.mapToGlobal(QPoint(0, 0)), control.size()))) << name;
  }
  test::Picture(main, "main-form-mix-colors");
}

// What only shows something takes no work off the screen; what changes something does.
TEST(MainWindow, AboutAndTheDisclaimerLeaveTheWindowsOpen) {
  Running running;
  running.EarlierFile();
  ASSERT_TRUE(running.Start());
  MainForm& main = running.program.Main();
  const struct {
    const char* item;
    const char* dialog;
    bool stays;
  } cases[] = {{"menu_AboutVK", "AboutForm", true},
               {"menu_Pantone_Disclaimer", "ProductSplashFormPantone", true},
               {"menuDFOptions_Reminders", "RemindersForm", false}};
  for (const auto& c : cases) {
    running.windows.OpenForm("MixColorsForm");
    test::WithModal([&] { main.findChild<QAction*>(c.item)->trigger(); },
                    [&](QWidget& dialog) {
                      EXPECT_EQ(dialog.objectName(), c.dialog);
                      dialog.close();
                    });
    EXPECT_EQ(running.windows.IsFormOpen("MixColorsForm"), c.stays) << c.item;
  }
}

/// In the browser's place.
class Browser : public QObject {
  Q_OBJECT
 public:
  Browser() {
    for (const char* scheme : {"file", "https"}) QDesktopServices::setUrlHandler(scheme, this, "Show");
  }
  ~Browser() override {
    for (const char* scheme : {"file", "https"}) QDesktopServices::unsetUrlHandler(scheme);
  }
  QUrl shown;
 public Q_SLOTS:
  void Show(const QUrl& url) { shown = url; }
};

TEST(MainWindow, HelpOpensTheBrowserAndTellsWhereThereIsNone) {
  Running running;
  running.EarlierFile();
  ASSERT_TRUE(running.Start());
  MainForm& main = running.program.Main();
  const auto choose = [&](const char* item) { main.findChild<QAction*>(item)->trigger(); };
  qputenv("XDG_CACHE_HOME", QByteArray::fromStdString((running.folder / "Cache").string()));
  {
    Browser browser;
    const std::pair<const char*, const char*> pages[] = {{"menu_Updates", "A later version"},
                                                         {"menuHelp_Updates", "A later version"},
                                                         {"menuHelp_Tutorials", "The first three steps"},
                                                         {"menuHelp_Excel", "A file in a spreadsheet"}};
    for (const auto& [item, says] : pages) {
      choose(item);
      const std::string page = ReadFileBytes(U8(browser.shown.toLocalFile()));
      EXPECT_NE(page.find(says), std::string::npos) << item;
      EXPECT_EQ(page.find(".md\""), std::string::npos) << "a link that leads nowhere";
    }
    EXPECT_TRUE(QFileInfo::exists(browser.shown.resolved(QUrl("../pictures/report-window.png")).toLocalFile()));
    qputenv("VELLUMARK_UPDATES_PAGE", "https://ink.example/updates");
    choose("menuHelp_Updates");
    qunsetenv("VELLUMARK_UPDATES_PAGE");
    EXPECT_EQ(browser.shown, QUrl("https://ink.example/updates"));
  }
  running.prompt.Expect("The Vellumark - Web Browser Error", Answer::Ok, "Couldn't open your default web browser.");
  choose("menuHelp_Tutorials");
  qunsetenv("XDG_CACHE_HOME");
}

TEST(End, ClosingIsRefusedWhileADatabaseLoadsAndThenEndsInOrder) {
  Running running;
  const fs::path path = running.EarlierFile();
  ASSERT_TRUE(running.Start());
  running.session.LoadingDatabase = true;
  EXPECT_FALSE(running.program.Main().close());
  running.session.LoadingDatabase = false;
  EXPECT_TRUE(running.program.Main().close());
  EXPECT_FALSE(running.session.DataFileOpen);
  EXPECT_EQ(ReadFileVersion(path), 40);  // the file is free again
}

TEST(BackupLine, ALaterSetWithFaultsHidesNotTheLastProvenOne) {
  test::DataFileRoom room;
  room.folder.Breaks("UniqueNames");
  const fs::path file = room.folder / "Ink.vkd";
  room.MakeFile(file);
  room.session.DataFileName = file.string();
  EXPECT_EQ(BackupText(room.session), "No automatic backup yet: one is made when the program closes");
  const auto back = [&](int day) {
    room.clock.Set({2026, 3, day, 17, 0, 0});
    MakeBackupSet(room.session, file, room.folder / "Auto Backup");
    room.clock.Set({2026, 3, 12, 9, 0, 0});
    return BackupText(room.session);
  };
  EXPECT_TRUE(back(9).endsWith(", 3 days ago, proven"));
  Database::Open(file, OpenMode::Exclusive)->Execute("INSERT INTO INK_Basic (Color_Name) VALUES ('RED'), ('red')");
  const QString text = back(11);
  EXPECT_NE(text.indexOf(", yesterday: the Data File has faults (INK_Basic, row 2 (red): "), -1) << text.toStdString();
  EXPECT_NE(text.indexOf("); the last proven one is of "), -1) << text.toStdString();
  EXPECT_TRUE(text.endsWith(", 3 days ago")) << text.toStdString();
  // One that failed is told until a younger one stands.
  room.clock.Set({2026, 3, 11, 18, 0, 0});
  NoteFailedBackup(room.session, file, "/stick: No space left on device");
  room.clock.Set({2026, 3, 12, 9, 0, 0});
  const QString failed = BackupText(room.session);
  EXPECT_TRUE(failed.startsWith("The automatic backup of ")) << failed.toStdString();
  EXPECT_NE(failed.indexOf(", yesterday failed (/stick: No space left on device); the last proven one is of "), -1)
      << failed.toStdString();
  Database::Open(file, OpenMode::Exclusive)->Execute("DELETE FROM INK_Basic WHERE Color_Name = 'red' AND RowKey > 1");
  EXPECT_TRUE(back(12).endsWith(", proven"));
}

}  // namespace
}  // namespace vellumark::desktop

#include "main_form_test.moc"
