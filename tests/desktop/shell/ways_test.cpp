// How people get about in the program: what it remembers, the lists, Ctrl+K.

#include <gtest/gtest.h>

#include <QAction>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QSplitter>
#include <QTabWidget>
#include <QTableView>
#include <QTextBrowser>
#include <QTimer>
#include <QUrl>

#include "core/colors/basics.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/shell/opening.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/main_area.h"
#include "desktop/kit/message_prompt.h"
#include "by_keys.h"
#include "furnished_room.h"
#include "running.h"
#include "support/loop_watch.h"
#include "support/old_files.h"

namespace vellumark::test {
namespace {

using Running = ByKeys::Running;

std::unique_ptr<Running> Begin(FurnishedRoom& room) {
  auto running = std::make_unique<Running>(room.folder.Path());
  if (!running->Start({desktop::ChooseFile, [&room](const auto&) { return room.folder.Path(); }}))
    throw std::runtime_error("the program does not start");
  running->program.Main().showNormal();
  running->program.Main().resize(1280, 720);
  running->program.Main().activateWindow();
  Settle();
  return running;
}

void End(std::unique_ptr<Running>& running) {
  running->program.Main().close();
  Settle();
  running.reset();
  RunAgain();
}

TEST(Remembered, TheNextDayBeginsAsTheLastOneEnded) {
  FurnishedRoom room;
  {
    auto running = Begin(room);
    running->program.Main().resize(1111, 666);
    running->program.Main().move(20, 30);
    running->windows.OpenForm("BatchForm");
    running->windows.OpenForm("JobForm", {{"JobNumber", "J1"}});
    running->windows.OpenForm("BasicsListForm");
    running->windows.OpenForm("MixColorsForm", {{"FindRecord", "TINT"}});
    Settle();
    auto& list = Control<desktop::Grid>(*running->windows.Form("BasicsListForm"), "fgAll");
    list.View().horizontalHeader()->resizeSection(0, 333);
    list.ClickCaption(3, false);
    list.ClickCaption(3, false);
    auto* split = running->windows.Form("BatchForm")->findChild<QSplitter*>("BatchSplit");
    running->windows.OpenForm("BatchForm");
    Settle();
    split->setSizes({600, 500});
    running->windows.OpenForm("JobForm");
    Settle();
    End(running);
  }
  auto running = Begin(room);
  std::vector<std::string> open;
  for (const desktop::Window* window : running->windows.OpenForms()) open.push_back(window->Name());
  EXPECT_EQ(open, (std::vector<std::string>{"BatchForm", "JobForm", "BasicsListForm", "MixColorsForm"}));
  ASSERT_NE(running->windows.ActiveForm(), nullptr);
  EXPECT_EQ(running->windows.ActiveForm()->Name(), "JobForm");
  EXPECT_EQ(Control<QLineEdit>(*running->windows.Form("JobForm"), "cmbJobNumber").text(), "J1");
  EXPECT_EQ(Control<QLineEdit>(*running->windows.Form("MixColorsForm"), "cmbColorName").text(), "TINT");
  const auto& list = Control<desktop::Grid>(*running->windows.Form("BasicsListForm"), "fgAll");
  EXPECT_EQ(list.ColumnWidth(0), 333);
  EXPECT_EQ(list.Sort(), (desktop::GridSort{3, true}));
  End(running);
}

TEST(Remembered, SizeAndPlaceOfTheMainWindow) {
  FurnishedRoom room;
  {
    auto running = Begin(room);
    running->program.Main().setGeometry(20, 30, 1001, 620);
    Settle();
    End(running);
  }
  auto running = std::make_unique<Running>(room.folder.Path());
  ASSERT_TRUE(running->Start({desktop::ChooseFile, [&room](const auto&) { return room.folder.Path(); }}));
  EXPECT_EQ(running->program.Main().size(), QSize(1001, 620));
  End(running);
}

struct WaysTest : ByKeys {
  WaysTest() { running = Begin(room); }
  ~WaysTest() override { End(running); }

  // The entry of the menu that opens over the widget at the spot.
  void ChooseInMenu(const std::function<void()>& open, const QString& entry) {
    bool seen = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
      auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      if (menu == nullptr) return;
      poll.stop();
      for (QAction* action : menu->actions()) {
        if (QString(action->text()).remove('&') != entry) continue;
        seen = true;
        menu->setActiveAction(action);
        Press(*menu, Qt::Key_Return);
        return;
      }
      for (const QAction* action : menu->actions()) ADD_FAILURE() << "there is " << action->text().toStdString();
      menu->close();
    });
    poll.start(1);
    open();
    // A menu that does not wait for its answer has it later.
    EXPECT_TRUE(QTest::qWaitFor([&] { return !poll.isActive(); })) << "no menu came up";
    Settle();
    EXPECT_TRUE(seen) << entry.toStdString();
  }
  void OpenMenu(desktop::Grid& grid, int row) {
    grid.SetCurrentRow(row);
    const QPoint spot = grid.View().visualRect(grid.View().currentIndex()).center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, spot, grid.View().viewport()->mapToGlobal(spot));
    QApplication::sendEvent(grid.View().viewport(), &event);
  }


  FurnishedRoom room;
};

TEST_F(WaysTest, ListsAreFilteredOpenedFromAndFollowChanges) {
  desktop::WindowList& windows = running->windows;
  desktop::Window* form = windows.OpenForm("FormulasListForm");
  ASSERT_TRUE(WaitFor([&] { return Control<QLabel>(*form, "lblCount").text() == "4 rows"; }));
  auto& list = Control<desktop::Grid>(*form, "fgAll");
  EXPECT_EQ(FocusName(), "fgAll_Filter");
  TypeOn("ti");
  EXPECT_EQ(Control<QLabel>(*form, "lblCount").text(), "1 of 4 rows");
  PressOn(Qt::Key_Down);
  PressOn(Qt::Key_Return);
  ASSERT_TRUE(windows.IsFormOpen("MixColorsForm"));
  EXPECT_EQ(Control<QLineEdit>(*windows.Form("MixColorsForm"), "cmbColorName").text(), "TINT");
  windows.CloseForm("MixColorsForm");
  windows.OpenForm("FormulasListForm");
  Settle();
  Control<QLineEdit>(*form, "fgAll_Filter").clear();
  // What its menu leads to.
  ChooseInMenu([&] { OpenMenu(list, 0); }, "Stock history");
  ASSERT_TRUE(windows.IsFormOpen("StockHistoryForm"));
  EXPECT_EQ(Control<QLineEdit>(*windows.Form("StockHistoryForm"), "cmbColorName").text(), "LIME");
  windows.CloseForm("StockHistoryForm");
  ChooseInMenu([&] { OpenMenu(list, 1); }, "Make a Batch");
  ASSERT_TRUE(windows.IsFormOpen("BatchForm"));
  EXPECT_EQ(Control<QLineEdit>(*windows.Form("BatchForm"), "cmbColorName").text(), "TARGET");
  windows.CloseForm("BatchForm");
  Settle();

  form = windows.OpenForm("BatchesListForm");
  ASSERT_TRUE(WaitFor([&] { return Control<QLabel>(*form, "lblCount").text() == "2 rows"; }));
  Picture(running->program.Main(), "list-batches");
}

// The room's own file stays the one of the program; another one beside it is opened by being dropped, and found again.
TEST_F(WaysTest, ADroppedDataFileIsOpenedAndFoundAmongTheRecentOnes) {
  desktop::MainForm& main = running->program.Main();
  const std::string first = running->session.DataFileName;
  const std::filesystem::path other = room.folder.Path() / "Other.vkd";
  CreateFile(other);
  {
    const auto file = Database::Open(other, OpenMode::Exclusive);
    CreateEmptyDatabase(*file, "WEB");
    StoreCurrentDatabase(*file, "WEB");
  }
  const auto dropped = [&](const std::filesystem::path& file) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(file.string()))});
    QDragEnterEvent enter(QPoint(400, 300), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&main, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(400, 300), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&main, &drop);
  };
  // One of the earlier program is offered its update, and what came of it is then in use.
  OldRoom shop = MakeOldRoom(0);  // with nothing that would be suggested for an archive
  shop.users = false;
  const std::filesystem::path jet = room.folder.Path() / "Shop.vkd";
  const std::filesystem::path updated = room.folder.Path() / "Shop(1).vkd";
  WriteOldJetFile(jet, OldTables(shop, 39, 0));
  WithModal(
      [&] {
        dropped(jet);
        EXPECT_TRUE(WaitFor([&] { return running->session.DataFileName == updated.string(); }));
      },
      [](QWidget& form) {
        EXPECT_EQ(form.objectName(), "UpdateDataFileForm");
        Click(form, "cmdOK");
        Click(form, "cmdOK");
      });
  EXPECT_EQ(running->session.databaseList, (std::vector<std::string>{"INK", "SPOT"}));
  dropped(other);
  ASSERT_TRUE(WaitFor([&] { return running->session.CurrentDatabase == "WEB"; }));
  EXPECT_TRUE(WaitFor([&] { return Control(main, "cmdFirstBasics").isVisible(); })) << "an empty file begins with the first steps";
  Picture(main, "start-page-empty");
  auto* recent = main.findChild<QMenu*>("menuRecent");
  Q_EMIT main.findChild<QMenu*>("MenuDataFile")->aboutToShow();
  ASSERT_EQ(recent->actions().size(), 2);
  recent->actions().back()->trigger();
  ASSERT_TRUE(WaitFor([&] { return running->session.DataFileName == first; }));
  Settle();
  EXPECT_EQ(Control<QLabel>(main, "lblStatusDatabase").text(), "INK");
  EXPECT_EQ(Control<desktop::Grid>(main, "fgToday").Model().rowCount(), 2);
  Picture(main, "start-page");
}

// Real keys: what is found opens, help leads to the window at hand, and a window that is closed asks about what is unsaved.
TEST_F(WaysTest, KeysFindHelpAndClose) {
  desktop::MainForm& main = running->program.Main();
  Press(main, Qt::Key_Escape);
  const auto pressed = [&](Qt::Key key, Qt::KeyboardModifiers with) {
    main.activateWindow();
    Settle();
    QWidget* focus = QApplication::focusWidget();
    Press(focus == nullptr ? main : *focus, key, with);
  };
  WithModal([&] { pressed(Qt::Key_K, Qt::ControlModifier); },
            [&](QWidget& find) {
              TypeOn("tin");
              EXPECT_TRUE(WaitFor([&] { return Control<desktop::Grid>(find, "fgHits").Model().rowCount() > 0; }));
              PressOn(Qt::Key_Return);
            });
  ASSERT_TRUE(WaitFor([&] { return running->windows.IsFormOpen("MixColorsForm"); }));
  EXPECT_EQ(Control<QLineEdit>(*running->windows.Form("MixColorsForm"), "cmbColorName").text(), "TINT");
  for (const auto& [key, with] : {std::pair{Qt::Key_F1, Qt::KeyboardModifiers()},
                                  std::pair{Qt::Key_Question, Qt::KeyboardModifiers(Qt::ControlModifier)}}) {
    std::string shown;
    WithModal([&] { pressed(key, with); },
              [&](QWidget& help) {
                shown = Control<QTextBrowser>(help, "txtHelp").toPlainText().toStdString();
                PressOn(Qt::Key_Escape);
              });
    EXPECT_EQ(shown.find("Keys") == 0, key == Qt::Key_Question) << shown.substr(0, 60);
  }
  running->prompt.SetHook([](const Message&) { return Answer::No; });
  pressed(Qt::Key_W, Qt::ControlModifier);
  EXPECT_TRUE(WaitFor([&] { return !running->windows.IsFormOpen("MixColorsForm"); }));
}

// Someone who has typed a name has the Batch on file with fewer than ten keys, its lots chosen.
TEST_F(WaysTest, ABatchTakesFewKeysAfterItsName) {
  Key(Qt::Key_3, Qt::ControlModifier);
  ASSERT_TRUE(IsOpen("BatchForm"));
  Keys("TARGET");
  keys = 0;
  Key(Qt::Key_Return);
  Keys("20");
  Key(Qt::Key_Return);
  EXPECT_TRUE(FocusName().starts_with("lblLot")) << FocusName();
  KeyInto(Qt::Key_Return, Qt::NoModifier, "BatchLotInvSelector", [&] { Key(Qt::Key_F2); });
  EXPECT_EQ(FocusName(), "JobNumber") << "all lines have their lots";
  Picture(running->program.Main(), "day-lots-chosen");
  // What is made has no lot number, which is asked about.
  KeyInto(Qt::Key_S, Qt::ControlModifier, "BatchFormLotNumReminder", [&] { Key(Qt::Key_N); });
  EXPECT_LT(keys, 10);
  EXPECT_EQ(Figure("SELECT COUNT(*) FROM INK_Batch"), 3);
  EXPECT_EQ(Figure("SELECT SUM(LotQty) FROM INK_Batch_LotInv WHERE BatchNo = 3"), 20);
}

// What the operator of the sample room does on a day, by keys alone: a Batch, a stock count, a look at a Job, a formula
// that goes by mistake and comes back, the end.
TEST_F(WaysTest, ADayByKeys) {
  desktop::MainForm& main = running->program.Main();
  main.activateWindow();
  Settle();
  EXPECT_EQ(FocusName(), "cmdMakeBatch");
  Picture(main, "day-morning");
  Key(Qt::Key_Return);
  ASSERT_TRUE(IsOpen("BatchForm"));
  Keys("TARGET");
  Key(Qt::Key_Return);
  Keys("15");
  Key(Qt::Key_Return);
  KeyInto(Qt::Key_Return, Qt::NoModifier, "BatchLotInvSelector", [&] { Key(Qt::Key_F2); });
  Keys("J1");
  Key(Qt::Key_Return);
  KeyInto(Qt::Key_S, Qt::ControlModifier, "BatchFormLotNumReminder", [&] { Key(Qt::Key_N); });
  EXPECT_EQ(Figure("SELECT COUNT(*) FROM INK_Batch"), 3);
  Key(Qt::Key_W, Qt::ControlModifier);
  ASSERT_TRUE(WaitFor([&] { return running->windows.OpenForms().empty(); }));

  // Ink that came in, counted by hand.
  // It explains itself once.
  KeyInto(Qt::Key_5, Qt::ControlModifier, "InvLotInstructions", [&] { Key(Qt::Key_Escape); });
  ASSERT_TRUE(IsOpen("AdjustInventoryForm"));
  Keys("BLUE");
  Key(Qt::Key_Return);
  for (int step = 0; step < 12 && FocusName() != "txtQuantity" && FocusName() != "AdjustInv"; ++step) Key(Qt::Key_Tab);
  const double before = Figure("SELECT Inventory FROM INK_Basic WHERE Color_Name = 'BLUE'");
  Keys("25");
  Key(Qt::Key_F5);
  Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Figure("SELECT Inventory FROM INK_Basic WHERE Color_Name = 'BLUE'"), before + 25);
  Picture(main, "day-stock");
  Key(Qt::Key_W, Qt::ControlModifier);

  Find("J1");
  ASSERT_TRUE(IsOpen("JobForm"));
  Picture(main, "day-job");
  Key(Qt::Key_Escape);
  ASSERT_TRUE(WaitFor([&] { return !running->windows.IsFormOpen("JobForm"); }));

  // A formula goes, and comes back out of the list of what was done.
  Find("LIME");
  ASSERT_TRUE(IsOpen("MixColorsForm"));
  KeyInto(Qt::Key_D, Qt::ControlModifier, "MessageDialog", [&] { Key(Qt::Key_Y); });
  EXPECT_EQ(Figure("SELECT COUNT(*) FROM INK_Mix WHERE Color_Name = 'LIME'"), 0);
  Key(Qt::Key_W, Qt::ControlModifier);
  Key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  ASSERT_TRUE(IsOpen("UndoForm"));
  Picture(main, "day-take-back");
  KeyInto(Qt::Key_Return, Qt::NoModifier, "MessageDialog", [&] { Key(Qt::Key_Y); });
  EXPECT_EQ(Figure("SELECT COUNT(*) FROM INK_Mix WHERE Color_Name = 'LIME'"), 1);
  EXPECT_EQ(Figure("SELECT Inventory FROM INK_Mix WHERE Color_Name = 'LIME'"), 6);
  Key(Qt::Key_Escape);

  Find("All Batches");
  ASSERT_TRUE(IsOpen("BatchesListForm"));
  Key(Qt::Key_Down);
  Key(Qt::Key_Return);
  ASSERT_TRUE(IsOpen("BatchForm"));
  Key(Qt::Key_Escape);
  Key(Qt::Key_Escape);
  ASSERT_TRUE(WaitFor([&] { return !running->windows.IsFormOpen("BatchForm"); }));
  std::cout << keys << " keys, the slowest took " << slowest << " ms\n";
  EXPECT_LT(slowest, 100 * kSlower * MachineSlowness());
}

// Save, Copy and the rest work from wherever the focus is, and are on only where the window in front has them.
TEST_F(WaysTest, TheCommonCommandsFollowTheFocus) {
  desktop::MainForm& main = running->program.Main();
  auto* menu = main.findChild<QMenu*>("menuHiddenMenu");
  const auto isOn = [&](const char* item) {
    Q_EMIT menu->aboutToShow();
    return main.findChild<QAction*>(item)->isEnabled();
  };
  for (const char* item : {"menuSaveRecord", "menuDeleteRecord", "menuPrintRecord", "MenuEditCut"})
    EXPECT_FALSE(isOn(item)) << item;
  running->windows.OpenForm("BasicColorsForm", {{"FindRecord", "GREEN"}});
  Settle();
  EXPECT_TRUE(isOn("menuDeleteRecord"));
  auto& form = *running->windows.Form("BasicColorsForm");
  auto& code = Control<QLineEdit>(form, "txtColorCode");
  code.setFocus();
  TypeOn("G-7");
  code.selectAll();
  EXPECT_TRUE(isOn("MenuEditCopy"));
  main.findChild<QAction*>("MenuEditCut")->trigger();
  EXPECT_EQ(code.text(), "");
  EXPECT_FALSE(isOn("MenuEditCut"));
  main.findChild<QAction*>("MenuEditPaste")->trigger();
  EXPECT_EQ(code.text(), "G-7");
  // In a list it copies the rows that are chosen, as they are shown: by the entry, and by the key in the list.
  running->windows.OpenForm("BasicsListForm");
  Settle();
  auto& list = Control<desktop::Grid>(*running->windows.Form("BasicsListForm"), "fgAll");
  ASSERT_TRUE(WaitFor([&] { return list.Model().rowCount() > 3; }));
  list.ClickCaption(0, false);
  list.View().setFocus();
  Press(list.View(), Qt::Key_Home, Qt::ControlModifier);
  Press(list.View(), Qt::Key_Down, Qt::ShiftModifier);
  const auto row = [&](int shown) {
    QStringList cells;
    for (const int column : list.ShownColumns())
      cells << list.Model().index(shown, column).data().toString();
    return cells.join('\t') + '\n';
  };
  for (const bool byKey : {false, true}) {
    QApplication::clipboard()->setText("before");
    EXPECT_TRUE(isOn("MenuEditCopy"));
    if (byKey)
      Press(list.View(), Qt::Key_C, Qt::ControlModifier);
    else
      main.findChild<QAction*>("MenuEditCopy")->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), row(0) + row(1)) << byKey;
  }
  EXPECT_TRUE(row(0).contains("BLUE"));
  EXPECT_FALSE(isOn("MenuEditCut"));
  running->windows.CloseForm("BasicsListForm");
  running->windows.OpenForm("BasicColorsForm");
  Settle();
  // From the toolbar, where no button of the window hears the key.
  Control(main, "Batch").setFocus();
  Press(Control(main, "Batch"), Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(running->session.File().Scalar("SELECT Color_Code FROM INK_Basic WHERE Color_Name = 'GREEN'").Text(),
            "G-7");
  ChooseInMenu(
      [&] {
        QContextMenuEvent event(QContextMenuEvent::Mouse, {5, 5}, form.mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(&form, &event);
      },
      "Delete");
}

// A color that only another Database has is found there, and that Database can be gone to.
TEST_F(WaysTest, AColorOfAnotherDatabaseIsFoundThere) {
  Session& session = running->session;
  ASSERT_TRUE(ChangeDatabase(session, "UV"));
  {
    Transaction transaction(session.File());
    AddZeroBasic(session, "UV ONLY", false);
    transaction.Commit();
  }
  ASSERT_TRUE(ChangeDatabase(session, "INK"));
  Settle();
  // It explains itself once.
  KeyInto(Qt::Key_5, Qt::ControlModifier, "InvLotInstructions", [&] { Key(Qt::Key_Escape); });
  ASSERT_TRUE(IsOpen("AdjustInventoryForm"));
  Keys("UV ONLY");
  KeyInto(Qt::Key_Return, Qt::NoModifier, "OtherDatabasesForm", [&] { Key(Qt::Key_Return); });
  ASSERT_TRUE(WaitFor([&] { return session.CurrentDatabase == "UV"; }));
  ASSERT_TRUE(IsOpen("AdjustInventoryForm"));
  EXPECT_EQ(Control<QLineEdit>(*running->windows.Form("AdjustInventoryForm"), "cmbColorName").text(), "UV ONLY");
  running->windows.CloseChildWindows();
  Settle();
  // The start page leads back.
  auto* back = Control(running->program.Main(), "pnlDatabases").findChild<QPushButton*>();
  ASSERT_NE(back, nullptr);
  EXPECT_EQ(back->text(), "INK");
  back->click();
  EXPECT_TRUE(WaitFor([&] { return session.CurrentDatabase == "INK"; }));
}

}  // namespace
}  // namespace vellumark::test
