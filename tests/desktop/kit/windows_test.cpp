#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QMainWindow>
#include <QProgressBar>

#include "desktop/kit/main_area.h"
#include "desktop/kit/message_prompt.h"
#include "desktop/kit/wait_progress.h"
#include "desktop/kit/window.h"
#include "support/desk.h"
#include "support/desktop.h"

namespace vellumark::test {
namespace {

using desktop::Arguments;
using desktop::MessagePrompt;
using desktop::Window;
using desktop::WindowList;

/// A window that writes down what happens to it.
class NotedForm : public Window {
 public:
  NotedForm(WindowList& list, const QString& name) : Window(list, name, name) {
    desktop::Form form(*this);
    form.Row("Text", text = form.Text("txtText"));
    form.Buttons({form.Button("cmdSave", "Save")});
  }
  void OnOpen(const Arguments& arguments) override {
    if (arguments.Has("FindRecord")) found.push_back(arguments.Text("FindRecord"));
  }
  void OnChanges(const std::vector<Change>& changes) override { told.push_back(changes); }
  bool MayClose() override { return mayClose || session.prompt.Ask("Close?", "There is unsaved work."); }
  void cmdSave_Click() override { ++saved; }

  desktop::TextField* text;
  std::vector<std::string> found;
  std::vector<std::vector<Change>> told;
  bool mayClose = true;
  int saved = 0;
};

/// Asks for a number and gives it back.
class NumberDialog : public desktop::Dialog {
  Q_OBJECT

 public:
  NumberDialog(WindowList& list, QWidget* owner) : Dialog(list, owner, "NumberDialog", "Number") {
    desktop::Form form(*this);
    form.Row("Number", number_ = form.Text("txtNumber", desktop::TextRule::Digits(4)));
    form.Buttons({form.Button("cmdOK", "OK")});
  }
  void OnOpen(const Arguments& arguments) override { number_->SetText(arguments.Text("Start")); }
  bool MayClose() override { return number_->Text() != "13"; }

 public Q_SLOTS:
  void cmdOK_Click() {
    result.Set("Number", number_->Text());
    accept();
  }

 private:
  desktop::TextField* number_;
};

struct WindowsTest : testing::Test, Desk {
  WindowsTest() {
    for (const char* name : {"BatchForm", "JobForm", "FindMix", "ColorsMenu"}) {
      windows.Register(name, [name](WindowList& list) -> Window* { return new NotedForm(list, name); });
    }
    windows.RegisterDialog<NumberDialog>("NumberDialog");
  }
  NotedForm& Open(const std::string& name, const Arguments& arguments = {}) {
    return dynamic_cast<NotedForm&>(*windows.OpenForm(name, arguments));
  }
  Change Updated(const char* name) { return {Change::Kind::Basic, "INK", name, Change::What::Updated, {}}; }
};

TEST_F(WindowsTest, OpensEachWindowOnceAndPassesArgumentsOn) {
  NotedForm& first = Open("BatchForm", {{"FindRecord", "RED"}});
  EXPECT_TRUE(windows.IsFormOpen("BatchForm"));
  EXPECT_FALSE(windows.IsFormOpen("JobForm"));
  NotedForm& again = Open("BatchForm", {{"FindRecord", "BLUE"}});
  EXPECT_EQ(&first, &again);
  EXPECT_EQ(first.found, (std::vector<std::string>{"RED", "BLUE"}));
  EXPECT_THROW(windows.OpenForm("NoForm"), std::logic_error);
}

TEST_F(WindowsTest, ClosesFromTheLastToTheFirstAndStopsAtTheOneThatDeclines) {
  Open("BatchForm");
  NotedForm& job = Open("JobForm");
  Open("FindMix");
  Open("ColorsMenu");
  job.mayClose = false;
  prompt.Expect("Close?", Answer::No);
  EXPECT_FALSE(windows.CloseChildWindows({"FindMix"}));
  EXPECT_FALSE(windows.IsFormOpen("ColorsMenu"));
  EXPECT_TRUE(windows.IsFormOpen("FindMix")) << "it was to stay";
  EXPECT_TRUE(windows.IsFormOpen("JobForm")) << "it declined";
  EXPECT_TRUE(windows.IsFormOpen("BatchForm")) << "its turn never came";
  prompt.Expect("Close?", Answer::Yes);
  EXPECT_TRUE(windows.CloseChildWindows());
  EXPECT_TRUE(windows.OpenForms().empty());
}

TEST_F(WindowsTest, TellsEachOpenWindowOnceOfWhatWasCommitted) {
  NotedForm& batch = Open("BatchForm");
  NotedForm& job = Open("JobForm");
  session.changes.Tell({Updated("RED")});
  session.changes.Tell({Updated("RED"), Updated("BLUE")});
  EXPECT_TRUE(batch.told.empty()) << "not in the middle of the work";
  Settle();
  const std::vector<std::vector<Change>> once{{Updated("RED"), Updated("BLUE")}};
  EXPECT_EQ(batch.told, once);
  EXPECT_EQ(job.told, once);
}

TEST_F(WindowsTest, HearsOfAThousandRowsAndBeyondThatOfAll) {
  NotedForm& batch = Open("BatchForm");
  const auto renamed = [](const char* from, const char* to) {
    return Change{Change::Kind::Basic, "INK", from, Change::What::Renamed, to};
  };
  std::vector<Change> many{renamed("RED", "ROSE"), renamed("ROSE", "RED"), renamed("RED", "ROSE")};
  for (int i = 0; i < 80000; ++i) many.push_back({Change::Kind::Mix, "INK", std::to_string(i), Change::What::Updated, ""});
  many.push_back(Updated("BLUE"));
  const auto begin = std::chrono::steady_clock::now();
  session.changes.Tell(many);
  Settle();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
  ASSERT_EQ(batch.told.size(), 1U);
  std::vector<Change> heard(many.begin(), many.begin() + 1003);
  heard.push_back({Change::Kind::Mix, "INK", "", Change::What::All, ""});
  heard.push_back(Updated("BLUE"));
  EXPECT_EQ(batch.told.front(), heard) << "three renames are three steps, also where one is done again";
}

TEST_F(WindowsTest, AClosedWindowHearsNoMore) {
  Open("JobForm");
  NotedForm& batch = Open("BatchForm");
  session.changes.Tell({Updated("RED")});
  EXPECT_TRUE(windows.CloseForm("JobForm"));
  Settle();
  EXPECT_EQ(batch.told.size(), 1U);
}

TEST_F(WindowsTest, HoldsChangesBackWhileWorkIsGoingOn) {
  desktop::WaitProgress wait;
  WindowList list(session, &wait);
  list.Register("BatchForm", [](WindowList& l) -> Window* { return new NotedForm(l, "BatchForm"); });
  auto& batch = dynamic_cast<NotedForm&>(*list.OpenForm("BatchForm"));
  wait.Begin("Working ...");
  session.changes.Tell({Updated("RED")});
  Settle();
  EXPECT_TRUE(batch.told.empty());
  wait.End();
  Settle();
  EXPECT_EQ(batch.told.size(), 1U);
}

TEST_F(WindowsTest, DialogsGiveBackTheirResultOrNothing) {
  std::optional<Arguments> result;
  WithModal(
      [&] {
        result = windows.RunDialog("NumberDialog", {{"Start", "7"}});
      },
      [](QWidget&) {
        EXPECT_EQ(FocusName(), "txtNumber");
        TypeOn("42");
        PressOn(Qt::Key_Return);
      });
  ASSERT_TRUE(result.has_value());
  EXPECT_EQ(result->Text("Number"), "42");

  WithModal(
      [&] {
        result = windows.RunDialog("NumberDialog", {{"Start", "13"}});
      },
      [](QWidget& dialog) {
        Press(dialog, Qt::Key_Escape);
        EXPECT_TRUE(dialog.isVisible()) << "it may decline to close";
        Fill(dialog, "txtNumber", "14");
        Press(dialog, Qt::Key_Escape);
      });
  EXPECT_FALSE(result.has_value());

  // A menu over the main window closes while a dialog that was opened from it stands there.
  auto owner = std::make_unique<QWidget>();
  ShowActive(*owner);
  WithModal([&] { result = windows.RunDialog("NumberDialog", {{"Start", "15"}}); }, [&](QWidget&) { owner.reset(); });
  EXPECT_FALSE(result.has_value());
}

TEST_F(WindowsTest, DialogsRememberTheirSize) {
  const auto run = [&](const std::function<void(QWidget&)>& inside) {
    WithModal(
        [&] {
          windows.RunDialog("NumberDialog", {{"Start", ""}});
        },
        [&](QWidget& dialog) {
          inside(dialog);
          dialog.close();
        });
  };
  run([](QWidget& dialog) { dialog.resize(640, 400); });
  run([](QWidget& dialog) { EXPECT_EQ(dialog.size(), QSize(640, 400)); });
}

struct MainAreaTest : WindowsTest {
  MainAreaTest() {
    frame.setCentralWidget(area);
    windows.SetPlace(area);
    frame.resize(1280, 720);
    ShowActive(frame);
  }
  ~MainAreaTest() override { windows.SetPlace(nullptr); }
  QMainWindow frame;
  desktop::MainArea* area = new desktop::MainArea(&frame);
};

TEST_F(MainAreaTest, ShowsWindowsAsTabsOneActiveAtATime) {
  NotedForm& batch = Open("BatchForm");
  NotedForm& job = Open("JobForm");
  Settle();
  EXPECT_EQ(windows.ActiveForm(), &job);
  EXPECT_EQ(FocusName(), "txtText");
  EXPECT_TRUE(job.isAncestorOf(QApplication::focusWidget()));
  windows.OpenForm("BatchForm");
  Settle();
  EXPECT_EQ(windows.ActiveForm(), &batch);
  EXPECT_TRUE(batch.isAncestorOf(QApplication::focusWidget()));
}

TEST_F(MainAreaTest, PassesTheCommonCommandsToTheActiveWindow) {
  NotedForm& batch = Open("BatchForm");
  EXPECT_TRUE(batch.CanDo("cmdSave"));
  EXPECT_FALSE(batch.CanDo("cmdDelete")) << "it has no such button";
  Control(batch, "cmdSave").setEnabled(false);
  batch.Do("cmdSave");
  EXPECT_EQ(batch.saved, 0);
  Control(batch, "cmdSave").setEnabled(true);
  batch.Do("cmdSave");
  EXPECT_EQ(batch.saved, 1);
}

TEST_F(MainAreaTest, EveryWayOfClosingLeavesNoFrameBehind) {
  const std::pair<const char*, std::function<void(NotedForm&)>> ways[] = {
      {"Escape", [](NotedForm& form) { Press(*form.text, Qt::Key_Escape); }},
      {"the tab's button", [&](NotedForm&) { area->activeSubWindow()->close(); }},
      {"the list", [&](NotedForm& form) { windows.CloseForm(form.Name()); }},
  };
  for (const auto& [way, close] : ways) {
    NotedForm& form = Open("BatchForm");
    form.mayClose = false;
    prompt.Expect("Close?", Answer::No);
    close(form);
    Settle();
    EXPECT_TRUE(windows.IsFormOpen("BatchForm")) << way;
    EXPECT_EQ(area->subWindowList().size(), 1) << way;
    prompt.Expect("Close?", Answer::Yes);
    close(form);
    Settle();
    EXPECT_FALSE(windows.IsFormOpen("BatchForm")) << way;
    EXPECT_TRUE(area->subWindowList().isEmpty()) << way;
  }
}

TEST_F(MainAreaTest, WindowsCanFloatAndComeBackAsTabs) {
  Open("BatchForm");
  NotedForm& job = Open("JobForm");
  area->Tile();
  Settle();
  EXPECT_FALSE(job.parentWidget()->isMaximized());
  Picture(frame, "kit-tiled");
  area->ShowAsTabs();
  Settle();
  EXPECT_EQ(windows.ActiveForm(), &job);
  Picture(frame, "kit-tabs");
}

// --- messages ---------------------------------------------------------------------------------------------------

TEST(Messages, ShowTitleAndTextAsTheyStandAndAnswerByKey) {
  const struct {
    const char* what;
    Buttons buttons;
    Answer standard;
    Qt::Key key;
    Answer answer;
    int tabs = 0;
  } rows[] = {
      {"Enter takes the default", Buttons::YesNo, Answer::No, Qt::Key_Return, Answer::No},
      {"Enter takes the button that has the focus", Buttons::YesNo, Answer::Yes, Qt::Key_Return, Answer::No, 1},
      {"and goes round", Buttons::YesNoCancel, Answer::Yes, Qt::Key_Enter, Answer::Yes, 3},
      {"Cancel that has the focus", Buttons::OkCancel, Answer::Ok, Qt::Key_Enter, Answer::Cancel, 1},
      {"Y without Alt", Buttons::YesNo, Answer::No, Qt::Key_Y, Answer::Yes},
      {"N without Alt", Buttons::YesNoCancel, Answer::Yes, Qt::Key_N, Answer::No},
      {"Escape says No", Buttons::YesNo, Answer::Yes, Qt::Key_Escape, Answer::No},
      {"Escape cancels", Buttons::YesNoCancel, Answer::Yes, Qt::Key_Escape, Answer::Cancel},
      {"Escape cancels where OK is the other", Buttons::OkCancel, Answer::Ok, Qt::Key_Escape, Answer::Cancel},
      {"Enter", Buttons::OkCancel, Answer::Ok, Qt::Key_Enter, Answer::Ok},
      {"Escape where there is one button", Buttons::Ok, Answer::Ok, Qt::Key_Escape, Answer::Ok},
  };
  for (const auto& row : rows) {
    MessagePrompt prompt;
    const Message message{"                    Save && Clear", "Save && Clear the data.\n\nNow?", row.buttons,
                          vellumark::Icon::Question, row.standard};
    Answer answer{};
    WithModal([&] { answer = prompt.Show(message); },
              [&](QWidget& dialog) {
                EXPECT_EQ(dialog.windowTitle(), "                    Save && Clear");
                EXPECT_EQ(Control<QLabel>(dialog, "lblMessage").text(), "Save && Clear the data.\n\nNow?");
                const Answer focused = FocusName() == "cmdNo"    ? Answer::No
                                       : FocusName() == "cmdYes" ? Answer::Yes
                                                                 : Answer::Ok;
                EXPECT_EQ(focused, row.standard) << row.what;
                for (int i = 0; i < row.tabs; ++i) PressOn(Qt::Key_Tab);
                PressOn(row.key);
              });
    EXPECT_EQ(answer, row.answer) << row.what;
  }
}

TEST(Messages, CanBeCopiedAndScrollWhenTheyAreLong) {
  MessagePrompt prompt;
  std::string text;
  for (int line = 0; line < 120; ++line) text += "Formula " + std::to_string(line) + " uses this ingredient.\n";
  WithModal([&] { prompt.Tell("Long", text); },
            [&](QWidget& dialog) {
              EXPECT_LE(dialog.height(), dialog.screen()->availableSize().height());
              EXPECT_TRUE(dialog.rect().contains(
                  Control(dialog, "cmdOK").mapTo(&dialog, Control(dialog, "cmdOK").rect().bottomRight())));
              PressOn(Qt::Key_C, Qt::ControlModifier);
              EXPECT_TRUE(QApplication::clipboard()->text().startsWith("Long\n\nFormula 0 uses"));
              PressOn(Qt::Key_Return);
            });
}

// The program ends, or another user logs in, while a message stands over a window.
TEST(Messages, OneWhoseOwnerGoesIsDeclined) {
  MessagePrompt prompt;
  auto owner = std::make_unique<QWidget>();
  ShowActive(*owner);
  Answer answer{};
  WithModal([&] { answer = prompt.Show({"Save", "Save?", Buttons::YesNoCancel, vellumark::Icon::Question, Answer::Yes}); },
            [&](QWidget&) { owner.reset(); });
  EXPECT_EQ(answer, Answer::Cancel);
}

TEST(Messages, AHookAnswersWithoutAWindow) {
  MessagePrompt prompt;
  prompt.SetHook(
      [](const Message& message) { return message.title == "a" ? std::optional(Answer::Yes) : std::nullopt; });
  EXPECT_TRUE(prompt.Ask("a", "b"));
}

TEST(Messages, Look) {
  MessagePrompt prompt;
  const Message message{"          Basic Color Window - Delete Basic Color?",
                        "Deleting this Basic Color will permanently remove it from the INK database.\n\n"
                        "Do you want to delete this Basic Color?",
                        Buttons::YesNo, vellumark::Icon::Exclamation, Answer::No};
  WithModal([&] { prompt.Show(message); },
            [&](QWidget& dialog) {
              Picture(dialog, "kit-message", {});
              PressOn(Qt::Key_N);
            });
}

// --- long work --------------------------------------------------------------------------------------------------

TEST(Waiting, ShortWorkShowsNothing) {
  desktop::WaitProgress wait;
  wait.Begin("Saving ...");
  for (int i = 0; i < 100; ++i) wait.Percent(i);
  EXPECT_EQ(wait.Shown(), nullptr);
  wait.End();
}

TEST(Waiting, LongWorkShowsItsTextAndItsPercentAndCanBeCancelledWhereThatIsAllowed) {
  desktop::WaitProgress wait;
  {
    const desktop::WaitProgress::Scope scope(&wait, desktop::WaitKind::WaitingForm, {}, false);
    wait.Begin("Building Report ...");
    bool pressed = false;
    for (int round = 0; round < 200 && !wait.Cancelled(); ++round) {
      QThread::msleep(10);
      wait.Percent(round / 2.0);
      if (wait.Shown() == nullptr || pressed) continue;
      EXPECT_EQ(wait.Shown()->objectName(), "WaitingForm");
      EXPECT_EQ(Control<QLabel>(*wait.Shown(), "lblMessage").text(), "Building Report ...");
      Picture(*wait.Shown(), "kit-waiting", {});
      QTest::mouseClick(&Control(*wait.Shown(), "cmdCancel"), Qt::LeftButton);
      pressed = true;
    }
    EXPECT_TRUE(pressed);
    EXPECT_TRUE(wait.Cancelled());
    wait.End();
    EXPECT_NE(wait.Shown(), nullptr) << "it stays for the next piece of work";
  }
  EXPECT_EQ(wait.Shown(), nullptr);
  wait.Begin("Next ...");
  EXPECT_FALSE(wait.Cancelled());
  wait.End();
}

TEST(Waiting, WorkThatMayNotStopHasNoCancelAndEscapeDoesNothing) {
  desktop::WaitProgress wait;
  wait.Begin("Costs, VOCs && HAPs ...");
  QThread::msleep(310);
  wait.Percent(50);
  ASSERT_NE(wait.Shown(), nullptr);
  EXPECT_EQ(Control<QLabel>(*wait.Shown(), "lblMessage").text(), "Costs, VOCs & HAPs ...") << "as captions show it";
  EXPECT_EQ(wait.Shown()->objectName(), "WaitingForm_NoCancel");
  EXPECT_EQ(wait.Shown()->findChild<QWidget*>("cmdCancel"), nullptr);
  Press(*wait.Shown(), Qt::Key_Escape);
  EXPECT_FALSE(wait.Cancelled());
  EXPECT_TRUE(wait.Shown()->isVisible());
  wait.End();
  {
    const desktop::WaitProgress::OfKind kind(&wait, desktop::WaitKind::Wait_RestoreData);
    EXPECT_EQ(wait.Shown(), nullptr) << "a kind alone shows nothing";
    wait.Begin("Restoring Data File ...");
    QThread::msleep(310);
    wait.Percent(50);
    ASSERT_NE(wait.Shown(), nullptr);
    EXPECT_EQ(wait.Shown()->objectName(), "Wait_RestoreData");
    wait.End();
  }
  wait.Begin("Next ...");
  QThread::msleep(310);
  wait.Percent(50);
  ASSERT_NE(wait.Shown(), nullptr);
  EXPECT_EQ(wait.Shown()->objectName(), "WaitingForm_NoCancel");
  wait.End();
}

}  // namespace
}  // namespace vellumark::test

#include "windows_test.moc"
