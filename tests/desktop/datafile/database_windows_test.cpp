#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QRadioButton>

#include "core/colors/other_databases.h"
#include "core/shell/database_menu.h"
#include "core/shell/opening.h"
#include "desktop/datafile/register.h"
#include "desktop/kit/main_area.h"
#include "support/data_files.h"
#include "support/desktop.h"
#include "support/ink_room.h"
#include "support/template_room.h"

namespace vellumark::test {
namespace {

using desktop::Arguments;
using desktop::Q;
using desktop::U8;

struct DatabaseWindows : testing::Test, InkRoom {
  DatabaseWindows() {
    session.ProgramFolder = folder / "Program";
    Basic("BLUE");
    Mix("SEA", {{"BLUE", 100.0F}});
    StoreCurrentDatabase(session.File(), "INK");
    OpenDatabase(session);
    desktop::RegisterDatafileWindows(list, startup);
  }
  void WithTemplate() {
    std::filesystem::create_directories(session.ProgramFolder);
    BuildSampleTemplate(session.ProgramFolder / "pdbt.vkt");
  }
  std::int64_t Rows(const std::string& table) { return Scalar("SELECT COUNT(*) FROM " + Quoted(table)).Whole(); }
  static std::string Label(QWidget& window, const char* name) { return U8(Control<QLabel>(window, name).text()); }
  /// Runs New Database; what it gave back.
  std::string RunNew(const std::function<void(QWidget&)>& inside) {
    std::optional<Arguments> result;
    WithModal([&] { result = list.RunDialog("NewDBForm"); }, inside);
    return result ? result->Text("Database") : "";
  }
  /// Enter until the focus is there.
  static void EnterTo(const char* name) {
    for (int i = 0; i < 10 && FocusName() != name; ++i) PressOn(Qt::Key_Return);
    ASSERT_EQ(FocusName(), name);
  }

  NotedWindows startup;
  desktop::WindowList list{session};
};

TEST_F(DatabaseWindows, AnEmptyDatabaseByKeyboard) {
  const std::string made = RunNew([](QWidget& form) {
    EXPECT_EQ(form.windowTitle(), "New Database");
    EXPECT_EQ(FocusName(), "txtDBName");
    EXPECT_FALSE(Control(form, "lstPantoneData").isEnabled());
    EXPECT_FALSE(Control(form, "cmbDatabases").isEnabled());
    EXPECT_FALSE(Control(form, "OptDBType1").isEnabled()) << "there is no template";
    EXPECT_TRUE(Label(form, "lblNoGuides").find("pdbt.vkt") != std::string::npos);
    Picture(form, "datafile-NewDBForm-no-template", {});
    TypeOn("flexo.a/b-2 and more of it");  // capitals, no full stop, fifteen characters
    EXPECT_EQ(Control<QLineEdit>(form, "txtDBName").text(), "FLEXOA/B-2 AND ");
    PressOn(Qt::Key_A, Qt::ControlModifier);
    TypeOn("flexo");
    PressOn(Qt::Key_Return);
    PressOn(Qt::Key_Return);
  });
  EXPECT_EQ(made, "FLEXO");
  EXPECT_EQ(session.databaseList, (std::vector<std::string>{"INK", "FLEXO"}));
  EXPECT_EQ(session.CurrentDatabase, "INK");
  EXPECT_EQ(Rows("FLEXO_Mix"), 0);
}

TEST_F(DatabaseWindows, ADatabaseOfGuidesByKeyboard) {
  WithTemplate();
  const std::string made = RunNew([&](QWidget& form) {
    TypeOn("GUIDES");
    PressOn(Qt::Key_Return);
    EXPECT_EQ(FocusName(), "OptDBType0");
    PressOn(Qt::Key_Down);
    EXPECT_TRUE(Control<QRadioButton>(form, "OptDBType1").isChecked());
    prompt.Expect("No Content Choosen", Answer::Ok, "Please select Pantone Guides for your database");
    Click(form, "cmdCreate");
    EXPECT_EQ(FocusName(), "lstPantoneData");
    auto& guides = Control<QListWidget>(form, "lstPantoneData");
    ASSERT_EQ(guides.count(), 5);
    PressOn(Qt::Key_Space);
    PressOn(Qt::Key_Down);
    PressOn(Qt::Key_Space);
    prompt.Expect("Pantone Formula Guide Selection");
    PressOn(Qt::Key_Return);
    EXPECT_TRUE(
        prompt.last.text.starts_with("Cannot create a new Database with both Pantone Formula Guide selections.\n"));
    Picture(form, "datafile-NewDBForm", {});
    PressOn(Qt::Key_Space);  // takes the second off again
    PressOn(Qt::Key_Down);
    PressOn(Qt::Key_Space);
    PressOn(Qt::Key_Return);
  });
  EXPECT_EQ(made, "GUIDES");
  EXPECT_GT(Rows("GUIDES_Mix"), 100);
}

TEST_F(DatabaseWindows, ACopyByKeyboard) {
  const std::string made = RunNew([&](QWidget& form) {
    TypeOn("COPY");
    PressOn(Qt::Key_Return);
    PressOn(Qt::Key_Down);  // past the guides, which are off
    EXPECT_TRUE(Control<QRadioButton>(form, "OptDBType2").isChecked());
    EnterTo("cmbDatabases");
    EXPECT_EQ(Control<QComboBox>(form, "cmbDatabases").currentText(), "INK");
    PressOn(Qt::Key_Return);
  });
  EXPECT_EQ(made, "COPY");
  EXPECT_EQ(Scalar("SELECT Color_Name FROM COPY_Mix").Text(), "SEA");
}

TEST_F(DatabaseWindows, NewRefusesAndStaysOpen) {
  const std::string made = RunNew([&](QWidget& form) {
    prompt.Expect("New Database - Database Name?", Answer::Ok, "Please enter a name for the new database.");
    Click(form, "cmdCreate");
    EXPECT_EQ(FocusName(), "txtDBName");
    prompt.Expect("Database Already Exists", Answer::Ok,
                  "The INK Database already exists in the " + session.DataFileName +
                      " Data File. Please select another name for your Database.");
    TypeOn("ink");
    Click(form, "cmdCreate");
    EXPECT_EQ(Control<QLineEdit>(form, "txtDBName").selectedText(), "INK");
    Picture(form, "datafile-NewDBForm-refused", {});
    session.ArchiveView = true;
    prompt.Expect("Archive or Backup Data File");
    TypeOn("OTHER");
    Click(form, "cmdCreate");
    session.ArchiveView = false;
    Press(form, Qt::Key_Escape);
  });
  EXPECT_EQ(made, "");
  EXPECT_EQ(session.databaseList, (std::vector<std::string>{"INK"}));
}

TEST_F(DatabaseWindows, RenameByKeyboard) {
  ASSERT_TRUE(NewDatabase(session, "FLEXO", {}));
  std::optional<Arguments> result;
  WithModal([&] { result = list.RunDialog("RenameDBForm"); },
            [&](QWidget& form) {
              EXPECT_EQ(Label(form, "lblCurrentDB"), "The current Database name is INK");
              Picture(form, "datafile-RenameDBForm", {});
              prompt.Expect("Bad Database Name", Answer::Ok, "Enter a valid name for the database");
              PressOn(Qt::Key_Return);
              prompt.Expect("Database Name Already Used", Answer::Ok,
                            "FLEXO Database already exists in this Vellumark Data File. Please choose another name.");
              TypeOn("flexo");
              PressOn(Qt::Key_Return);
              EXPECT_EQ(FocusName(), "txtDBName");
              TypeOn("offset");
              PressOn(Qt::Key_Return);
            });
  ASSERT_TRUE(result);
  EXPECT_EQ(result->Text("Database"), "OFFSET");
  EXPECT_EQ(session.CurrentDatabase, "OFFSET");
  EXPECT_EQ(MixNames(session).size(), 1U);
}

TEST_F(DatabaseWindows, DeleteAsksAndKeepsTheCurrentOne) {
  for (const char* name : {"FLEXO", "GRAVURE", "SCREEN"}) ASSERT_TRUE(NewDatabase(session, name, {}));
  WithModal(
      [&] { list.RunDialog("DeleteDBForm"); },
      [&](QWidget& form) {
        EXPECT_EQ(Label(form, "lblWarning"),
                  "WARNING - Deleting a database will permanently remove it from the Data File.");
        EXPECT_EQ(Label(form, "lblNote"), "NOTE - The active database INK can't be selected for deletion.");
        auto& names = Control<QListWidget>(form, "lstDatabases");
        ASSERT_EQ(names.count(), 3);
        EXPECT_FALSE(Control(form, "cmdDelete").isEnabled());
        PressOn(Qt::Key_Space);
        PressOn(Qt::Key_Down);
        PressOn(Qt::Key_Down);
        PressOn(Qt::Key_Space);
        Picture(form, "datafile-DeleteDBForm", {});
        const std::string question =
            "Delete these databases?\nWARNING - Deleting a database will permanently remove it from the Data File.";
        prompt.Expect("Delete Databases?", Answer::No, question);
        Click(form, "cmdDelete");
        EXPECT_TRUE(form.isVisible());
        EXPECT_EQ(session.databaseList.size(), 4U);
        prompt.Expect("Delete Databases?", Answer::Yes, question)
            .Expect("Databases Deleted", Answer::Ok, "Selected databases have been deleted.");
        PressOn(Qt::Key_D, Qt::AltModifier);
        EXPECT_TRUE(WaitFor([&] { return !form.isVisible(); }));
      });
  EXPECT_EQ(session.databaseList, (std::vector<std::string>{"INK", "GRAVURE"}));
}

/// A child window that is open while the Database changes.
class PlainForm : public desktop::Window {
 public:
  PlainForm(desktop::WindowList& windowList, const QString& name) : Window(windowList, name, name) {
    desktop::Form form(*this);
    form.Row("Text", form.Text("txtText"));
  }
};

TEST_F(DatabaseWindows, AColorOfAnotherDatabaseIsToldAndTheChangeGoesThere) {
  for (const char* name : {"FLEXO", "GRAVURE", "SCREEN"}) ASSERT_TRUE(NewDatabase(session, name, {}));
  for (const char* name : {"FLEXO", "SCREEN"})
    session.File().Execute(std::string("INSERT INTO ") + name + "_Mix (Color_Name) VALUES ('SKY')");
  for (const char* name : {"JobForm", "FindMix", "FindDesign"})
    list.Register(name, [name](desktop::WindowList& l) -> desktop::Window* { return new PlainForm(l, name); });
  const Arguments sky{{"Color_Name", "SKY"}, {"Kind", ColorKind::Mix}};
  std::optional<Arguments> result;
  WithModal([&] { result = list.RunDialog("OtherDatabasesForm", sky); },
            [&](QWidget& form) {
              Picture(form, "datafile-OtherDatabasesForm", {});
              Press(form, Qt::Key_Escape);
            });
  EXPECT_FALSE(result);
  EXPECT_EQ(session.CurrentDatabase, "INK");

  QMainWindow frame;
  auto* area = new desktop::MainArea(&frame);
  frame.setCentralWidget(area);
  list.SetPlace(area);
  ShowActive(frame);
  for (const char* name : {"JobForm", "FindDesign", "FindMix"}) list.OpenForm(name);
  Settle();
  std::vector<Change> told;
  const auto subscription = session.changes.Subscribe([&](const std::vector<Change>& changes) { told = changes; });
  WithModal([&] { result = list.RunDialog("OtherDatabasesForm", sky); },
            [&](QWidget& form) {
              EXPECT_EQ(form.windowTitle(), "Color Not Found");
              EXPECT_EQ(Label(form, "lblMsg"),
                        "The Master Formula SKY was not found in the INK database, but it was found in the following "
                        "database(s).");
              auto& databases = Control<QComboBox>(form, "cmbInDB");
              ASSERT_EQ(databases.count(), 2);
              EXPECT_EQ(FocusName(), "cmbInDB");
              PressOn(Qt::Key_Down);
              EXPECT_EQ(databases.currentText(), "SCREEN");
              PressOn(Qt::Key_Return);
            });
  ASSERT_TRUE(result);
  EXPECT_EQ(result->Text("Database"), "SCREEN");
  EXPECT_EQ(session.CurrentDatabase, "SCREEN");
  EXPECT_EQ(ReadFileInfo(session.File()).currentDB, "SCREEN");
  Settle();
  ASSERT_NE(list.ActiveForm(), nullptr);
  EXPECT_EQ(list.ActiveForm()->Name(), "FindMix") << "the finders stay, to go on with the find";
  EXPECT_FALSE(list.IsFormOpen("JobForm"));
  EXPECT_FALSE(list.IsFormOpen("FindDesign"));
  EXPECT_EQ(told, (std::vector<Change>{{Change::Kind::DatabaseList, "SCREEN", "", Change::What::All, ""}}));
  list.CloseChildWindows();
  list.SetPlace(nullptr);
}

}  // namespace
}  // namespace vellumark::test
