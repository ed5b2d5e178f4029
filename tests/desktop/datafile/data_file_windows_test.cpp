#include <sys/stat.h>

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QTimer>
#include <QTreeWidget>
#include <set>

#include "core/base/files.h"
#include "core/session/users.h"
#include "core/settings/settings.h"
#include "core/shell/data_files.h"
#include "core/shell/opening.h"
#include "desktop/datafile/register.h"
#include "support/data_files.h"
#include "support/desktop.h"
#include "support/old_files.h"

namespace vellumark::test {
namespace {

namespace fs = std::filesystem;
using desktop::Arguments;
using desktop::FileChoice;
using desktop::Q;
using desktop::U8;

struct DataFileWindows : testing::Test, DataFileRoom {
  DataFileWindows() {
    desktop::DataFilePlatform platform;
    platform.choose = [this](const FileChoice& choice, QWidget*) {
      asked.push_back(choice);
      return Q(answer.string());
    };
    platform.searchRoot = [this](const fs::path&) { return folder.Path(); };
    desktop::RegisterDatafileWindows(list, windows, platform);
  }
  void OpenFirst() {
    MakeFile(first);
    ASSERT_TRUE(*OpenOtherDataFile(session, first, windows));
    windows.calls.clear();
  }
  bool IsDefault(const fs::path& path) {
    return session.RecordsetsOpen && session.DataFileName == path.string() && session.DataFileDB->Path() == path &&
           session.support->settings.GetSupportValue(setting::DbFileName50.key) == path.string();
  }
  static std::string Label(QWidget& window, const char* name) { return U8(Control<QLabel>(window, name).text()); }
  /// To the button with Tab, and Enter on it.
  static void TabTo(const char* name) {
    for (int i = 0; i < 40 && FocusName() != name; ++i) PressOn(Qt::Key_Tab);
    ASSERT_EQ(FocusName(), name);
    PressOn(Qt::Key_Return);
  }

  static std::optional<fs::path> PathOf(const std::optional<Arguments>& result) {
    return result && result->Has("Path") ? std::optional<fs::path>(result->Text("Path")) : std::nullopt;
  }

  desktop::WindowList list{session};
  fs::path answer;
  std::vector<FileChoice> asked;
  fs::path first = folder / "First.vkd";
};

TEST_F(DataFileWindows, WithNothingThereAFileIsMadeByKeyboard) {
  prompt.Expect("New Database");  // there is no template
  std::optional<Arguments> result;
  WithModal(
      [&] {
        result = list.RunDialog("NewDataFileForm", {{"StartupMessage", ""}});
      },
      [&](QWidget& form) {
        EXPECT_EQ(form.windowTitle(), "Data File");
        EXPECT_FALSE(Control(form, "lblStartupMessage").isVisible());
        for (const char* off : {"cmdRestore", "cmdAutoBackup", "cmdRepair", "cmdUpgrade"})
          EXPECT_FALSE(Control(form, off).isEnabled()) << off;
        Picture(form, "datafile-NewDataFileForm", {});
        auto& tabs = Control<QTabWidget>(form, "TabDataFile");
        for (int page = 1; page < tabs.count(); ++page) {
          tabs.setCurrentIndex(page);
          Settle();
          Picture(form, "datafile-NewDataFileForm-" + U8(tabs.widget(page)->objectName()), {});
        }
        PressOn(Qt::Key_C, Qt::AltModifier);
        EXPECT_EQ(tabs.currentIndex(), 1);
        TabTo("cmdCreate");
      });
  ASSERT_TRUE(result);
  EXPECT_FALSE(result->Has("exit"));
  EXPECT_TRUE(IsDefault(session.ProgramFolder / "Vellumark Data.vkd"));
  EXPECT_EQ(session.CurrentDatabase, "PANTONE");
}

TEST_F(DataFileWindows, TheWindowWithoutAFileEndsTheProgram) {
  for (const auto& leave : std::vector<std::function<void(QWidget&)>>{
           [](QWidget& form) { Press(form, Qt::Key_Escape); }, [](QWidget& form) { Click(form, "cmdExit"); },
           [](QWidget& form) { form.close(); },
           [](QWidget& form) {
             PressOn(Qt::Key_X, Qt::AltModifier);
             WaitFor([&] { return !form.isVisible(); });
           }}) {
    std::optional<Arguments> result;
    WithModal([&] { result = list.RunDialog("NewDataFileForm"); }, leave);
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->Has("exit"));
  }
  OpenFirst();
  std::optional<Arguments> result;
  WithModal([&] { result = list.RunDialog("NewDataFileForm"); }, [](QWidget& form) { Press(form, Qt::Key_Escape); });
  EXPECT_FALSE(result) << "a file is open: the program goes on with it";
}

TEST_F(DataFileWindows, TheWindowStaysUntilAFileIsOpen) {
  const fs::path newer = folder / "Newer.vkd";
  MakeFile(newer, 41);
  MakeFile(first);
  const std::string gone =
      (folder / "A rather long folder name for the drive of the ink room" / "and another one below it" / "Gone.vkd")
          .string();
  WithModal(
      [&] {
        list.RunDialog("NewDataFileForm", {{"StartupMessage", gone + " file does not exist."}});
      },
      [&](QWidget& form) {
        EXPECT_EQ(Label(form, "lblStartupMessage"), gone + " file does not exist.");
        Picture(form, "datafile-NewDataFileForm-message", {});
        PressOn(Qt::Key_O, Qt::AltModifier);

        answer.clear();  // cancelled
        Click(form, "cmdOpen");
        EXPECT_TRUE(form.isVisible());
        ASSERT_EQ(asked.size(), 1U);
        EXPECT_EQ(asked[0].title, "Open Vellumark Data File");
        EXPECT_EQ(asked[0].filter, "Vellumark Data File (*.vkd) | *.vkd");
        EXPECT_EQ(asked[0].extension, ".vkd");

        answer = newer;
        Click(form, "cmdOpen");
        EXPECT_TRUE(form.isVisible());
        EXPECT_TRUE(Label(form, "lblStartupMessage").starts_with("Data File: " + newer.string()));
        EXPECT_TRUE(Control(form, "lblStartupMessage").isVisible());
        EXPECT_TRUE(windows.calls.empty()) << "no second window of the kind";
        Picture(form, "datafile-NewDataFileForm-newer", {});

        answer = first;
        PressOn(Qt::Key_O, Qt::AltModifier);
        {
          const HeldFile held(first);
          prompt.Expect("Open Data File", Answer::Ok, first.string() + "\n\nis in use by another process");
          Click(form, "cmdOpen");
          EXPECT_TRUE(form.isVisible());
        }
        Click(form, "cmdOpen");
        EXPECT_FALSE(form.isVisible());
      });
  EXPECT_TRUE(IsDefault(first));
}

TEST_F(DataFileWindows, OpenLeavesTheOldFileOpenWhenTheNewOneCannotBe) {
  folder.Breaks("Structure");
  OpenFirst();
  const fs::path closed = folder / "Closed";
  fs::create_directories(closed);
  MakeFile(closed / "Shut.vkd");
  ::chmod(closed.c_str(), 0555);
  MakeFile(folder / "Newer.vkd", 41);
  MakeFile(folder / "Held.vkd");
  ReplaceFile(folder / "Text.vkd", std::string(8192, 'x'));
  const HeldFile held(folder / "Held.vkd");
  const WithoutRoot user(folder.Path());
  const std::string title = "Open Data File";
  const struct {
    fs::path path;
    std::string title;
    std::string text;
  } rows[] = {
      {folder / "Held.vkd", title, (folder / "Held.vkd").string() + "\n\nis in use by another process"},
      {folder / "Text.vkd", title, (folder / "Text.vkd").string() + "\n\nis not a Data File"},
      {closed / "Shut.vkd", title,
       (closed / "Shut.vkd").string() + "\n\ncannot be written: there is no permission to write in its folder"},
      {folder / "Newer.vkd", "Data File", ""},
  };
  for (const auto& row : rows) {
    answer = row.path;
    prompt.Expect(row.title, Answer::Ok, row.text);
    EXPECT_FALSE(list.RunDialog("FileExplorerForm")) << row.path;
    EXPECT_TRUE(IsDefault(first)) << row.path;
  }
  answer = folder / "Gone.vkd";
  EXPECT_FALSE(list.RunDialog("FileExplorerForm"));
  EXPECT_EQ(windows.calls.back(), "new data file: " + answer.string() + " file does not exist.");
  EXPECT_TRUE(IsDefault(first));
  EXPECT_EQ(asked.back().folder, Q(folder.Path().string()));

  answer = closed / "New.vkd";
  prompt.Expect("New Data File");
  EXPECT_FALSE(list.RunDialog("NewFileExplorerForm"));
  EXPECT_TRUE(prompt.last.text.starts_with(answer.string() + "\n\n")) << prompt.last.text;
  EXPECT_TRUE(IsDefault(first));
}

TEST_F(DataFileWindows, EndingTheProgramAtTheLoginOfAFileEndsTheWindow) {
  OpenFirst();
  prompt.Expect("");
  ASSERT_TRUE(CreateUsers(session, "BOSS", "X"));
  CloseDataFile(session, windows);
  struct Ended {};
  windows.atLogin = [] { throw Ended{}; };
  answer = first;
  std::optional<Arguments> result;
  WithModal([&] { result = list.RunDialog("NewDataFileForm"); },
            [&](QWidget& form) {
              PressOn(Qt::Key_O, Qt::AltModifier);
              Click(form, "cmdOpen");
              EXPECT_FALSE(form.isVisible());
            });
  ASSERT_TRUE(result);
  EXPECT_TRUE(result->Has("exit"));
  CloseDataFile(session, windows);
  result = list.RunDialog("FileExplorerForm");
  ASSERT_TRUE(result);
  EXPECT_TRUE(result->Has("exit"));
}

TEST_F(DataFileWindows, NewAsksForANameAndTakesTheNextFreeOne) {
  OpenFirst();
  answer = first;
  prompt.Expect("New Database");
  EXPECT_TRUE(list.RunDialog("NewFileExplorerForm"));
  EXPECT_EQ(asked.back().title, "Create New Vellumark Data File");
  EXPECT_TRUE(asked.back().newFile);
  EXPECT_TRUE(IsDefault(folder / "First(1).vkd"));
  fs::create_directories(folder / "DesignPhotos");
  answer = folder / "DesignPhotos" / "Mine.vkd";
  prompt.Expect("New Data File");
  EXPECT_FALSE(list.RunDialog("NewFileExplorerForm"));
  EXPECT_TRUE(prompt.last.text.ends_with("Choose another folder to create a new Data file in."));
}

TEST_F(DataFileWindows, RenameByKeyboard) {
  OpenFirst();
  MakeFile(folder / "Second.vkd");
  WithModal([&] { list.RunDialog("RenameDataFileForm"); },
            [&](QWidget& form) {
              EXPECT_EQ(FocusName(), "txtFileName");
              EXPECT_EQ(Control<QLineEdit>(form, "txtFileName").selectedText(), "First");
              Picture(form, "datafile-RenameDataFileForm", {});
              const std::pair<const char*, const char*> refusals[] = {
                  {"  ", "Enter a file name         "},
                  {"FIRST", "New file name is the same as the current name"},
                  {"Second", "A file with name already exist, choose another name"},
              };
              for (const auto& [typed, text] : refusals) {
                prompt.Expect("File Name", Answer::Ok, text);
                TypeOn(typed);
                PressOn(Qt::Key_Return);
                EXPECT_EQ(FocusName(), "txtFileName") << typed;
                EXPECT_EQ(Control<QLineEdit>(form, "txtFileName").selectedText(), typed);
              }
              TypeOn("Ink Room");
              PressOn(Qt::Key_Return);
              EXPECT_FALSE(form.isVisible());
            });
  EXPECT_TRUE(IsDefault(folder / "Ink Room.vkd"));
  EXPECT_FALSE(fs::exists(first));

  MakeFile(folder / "My backup.vkd");
  ASSERT_TRUE(*OpenOtherDataFile(session, folder / "My backup.vkd", windows));
  prompt.Expect("Data File Rename", Answer::Ok, "Cannot Rename Data Files that contain\nkey words Admin or Backup");
  EXPECT_FALSE(list.RunDialog("RenameDataFileForm"));
}

TEST_F(DataFileWindows, SearchListsWhatTheDriveHoldsAndOpensOne) {
  OpenFirst();
  fs::create_directories(folder / "Presses" / "Line 2");
  MakeFile(folder / "Presses" / "Line 2" / "Flexo.vkd");
  MakeFile(folder / "Presses" / "Archive 2025.vkd");
  std::optional<Arguments> result;
  WithModal([&] { result = list.RunDialog("VKD_File_ListingForm"); },
            [&](QWidget& form) {
              auto& files = Control<QTreeWidget>(form, "lstFiles");
              ASSERT_EQ(files.topLevelItemCount(), 2);
              EXPECT_EQ(FocusName(), "lstFiles");
              Picture(form, "datafile-VKD_File_ListingForm", {});
              PressOn(Qt::Key_Down);
              EXPECT_EQ(files.currentItem()->text(0), "Flexo.vkd");
              PressOn(Qt::Key_Return);
              EXPECT_FALSE(form.isVisible());
            });
  EXPECT_TRUE(result);
  EXPECT_TRUE(IsDefault(folder / "Presses" / "Line 2" / "Flexo.vkd"));

  CloseDataFile(session, windows);
  for (const fs::path& path : {first, folder / "Presses" / "Line 2" / "Flexo.vkd"}) fs::remove(path);
  prompt.Expect("No Files Found", Answer::Ok, "Vellumark was unable to find a Data File");
  EXPECT_FALSE(list.RunDialog("VKD_File_ListingForm"));
}

TEST_F(DataFileWindows, SearchFromTheWindowWithoutAFile) {
  MakeFile(first);
  WithModal([&] { list.RunDialog("NewDataFileForm"); },
            [&](QWidget& form) {
              PressOn(Qt::Key_O, Qt::AltModifier);
              WithModal([&] { Click(form, "cmdSearch"); }, [](QWidget& found) { Press(found, Qt::Key_Escape); });
              EXPECT_TRUE(form.isVisible());
              WithModal([&] { Click(form, "cmdSearch"); }, [](QWidget&) { PressOn(Qt::Key_Return); });
              EXPECT_FALSE(form.isVisible());
            });
  EXPECT_TRUE(IsDefault(first));
}

// Ready, running, done: what it says, what can be pressed, where the focus is.
TEST_F(DataFileWindows, AnOlderFileIsBroughtUpToDateAndItsReportIsShown) {
  WriteOldFile(first, OldTables(MakeOldRoom(60), 30, 1));
  std::optional<Arguments> result;
  prompt.Expect("Lotted Inventory", Answer::No);
  WithModal(
      [&] {
        result = list.RunDialog("UpdateDataFileForm", {{"Path", first.string()}, {"FileVersion", 30}});
      },
      [&](QWidget& form) {
        EXPECT_EQ(Label(form, "lblFile"), first.string());
        EXPECT_EQ(Label(form, "lblFileVersion"), "Its file version is 30; this program works with version 40.");
        EXPECT_EQ(Label(form, "lblPlace"), "OK brings it up to date. A copy of the file as it is stays beside it as First.vkb.");
        EXPECT_EQ(FocusName(), "cmdOK");
        Picture(form, "datafile-UpdateDataFileForm-ready", {});
        // In the middle of the work nothing can be pressed, and Esc does nothing.
        std::set<std::string> statuses;
        bool wasRunning = false;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
          if (!Control<QWidget>(form, "cmdOK").isEnabled()) {
            const std::string status = Label(form, "lblStatus");
            if (status == "Writing the updated file ..." && !wasRunning) {
              wasRunning = true;
              Picture(form, "datafile-UpdateDataFileForm-running", {});
              static_cast<QDialog&>(form).reject();
              EXPECT_TRUE(form.isVisible());
            }
            statuses.insert(status);
          }
        });
        timer.start(0);
        Click(form, "cmdOK");
        timer.stop();
        EXPECT_TRUE(wasRunning);
        EXPECT_TRUE(statuses.contains("Creating New Lotted Inv Tables:")) << statuses.size();
        EXPECT_EQ(Label(form, "lblStatus"), "Updating completed successfully!");
        EXPECT_EQ(Label(form, "lblHeading"), "Every row is accounted for");
        EXPECT_GT(Control<desktop::Grid>(form, "fgReport").ShownRows().size(), 10U);
        EXPECT_EQ(FocusName(), "cmdOK");
        EXPECT_NE(Label(form, "lblSums").find("before and after"), std::string::npos);
        Picture(form, "datafile-UpdateDataFileForm-done", {});
        Control<QTabWidget>(form, "TabReport").setCurrentIndex(1);
        Picture(form, "datafile-UpdateDataFileForm-lines", {});
        PressOn(Qt::Key_Return);
      });
  ASSERT_TRUE(result);
  EXPECT_EQ(result->Text("Path"), first.string());
  EXPECT_EQ(ReadFileVersion(folder / "First.vkb"), 30);
  EXPECT_EQ(ReadFileVersion(first), 40);
}

// A Jet file that is opened becomes another file, which is then the one in use; one that fails is told, and left.
TEST_F(DataFileWindows, AJetFileIsOfferedItsUpdateWhenItIsOpened) {
  const OldRoom room = MakeOldRoom(9);
  WriteOldJetFile(first, OldTables(room, 39, 0));
  const std::string before = ReadFileBytes(first);
  const auto offered = [&](const std::function<void(QWidget&)>& act) {
    WithModal([&] { windows.updated = PathOf(list.RunDialog("UpdateDataFileForm", {{"Path", first.string()}, {"FileVersion", 39}})); }, act);
  };
  offered([&](QWidget& form) {
    EXPECT_EQ(Label(form, "lblPlace"), "OK brings what it holds into a new file, First(1).vkd. The file itself stays as it is.");
    Press(form, Qt::Key_Escape);
  });
  EXPECT_FALSE(windows.updated);
  // The report's place is taken by a folder.
  fs::create_directories(folder / "First(1) Update Report.txt");
  prompt.Expect("Updating Failed.");
  offered([&](QWidget& form) { Click(form, "cmdOK"); });
  EXPECT_FALSE(windows.updated);
  EXPECT_FALSE(fs::exists(folder / "First(1).vkd"));
  EXPECT_NE(prompt.last.text.find("First(1) Update Report.txt"), std::string::npos) << prompt.last.text;
  fs::remove(folder / "First(1) Update Report.txt");
  offered([&](QWidget& form) {
    Click(form, "cmdOK");
    Click(form, "cmdOK");
  });
  ASSERT_EQ(windows.updated, folder / "First(1).vkd");
  ASSERT_TRUE(*OpenOtherDataFile(session, first, windows));
  EXPECT_TRUE(IsDefault(folder / "First(1).vkd"));
  EXPECT_EQ(session.databaseList.size(), 2U);
  EXPECT_EQ(ReadFileBytes(first), before);
}

}  // namespace
}  // namespace vellumark::test
