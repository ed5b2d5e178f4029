// The Batch Window inside the main window: how it is opened, what it keeps from opening, how much of it is in sight.

#include <gtest/gtest.h>

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTableWidget>

#include "core/inventory/reorder.h"
#include "core/jobs/design_work.h"
#include "core/session/users.h"
#include "desktop/batch/register.h"
#include "desktop/colors/register.h"
#include "desktop/inventory/register.h"
#include "desktop/jobs/register.h"
#include "desktop/kit/message_prompt.h"
#include "desktop/kit/text.h"
#include "desktop/session/register.h"
#include "desktop/shell/main_form.h"
#include "support/desktop.h"
#include "support/ink_room.h"

namespace vellumark::test {
namespace {

struct BatchInMainTest : testing::Test, InkRoom {
  BatchInMainTest() {
    Setting("InvLotTracking", "0");
    session.RecordsetsOpen = true;
    RegisterInventoryWindows(windows);
    RegisterBatchWindows(windows);
    Basic("RED", {{"Inventory", 100.0F}, {"Red", 220}, {"Green", 30}, {"Blue", 40}});
    Basic("BLUE", {{"Inventory", 100.0F}, {"Red", 20}, {"Green", 60}, {"Blue", 200}});
    Mix("TARGET", {{"RED", 60}, {"BLUE", 40}},
        {{"Recycle", true}, {"Inventory", 2.0F}, {"Red", 150}, {"Green", 40}, {"Blue", 110}});
  }

  desktop::WindowList windows{session};
};

TEST_F(BatchInMainTest, ADesignMakesItsBatchWithQuantityAndJob) {
  desktop::RegisterJobsWindows(windows);
  auto work = BeginDesign(session, "BOX");
  ASSERT_TRUE(PutDesignColor(session, *work, {"TARGET", "", {}, "4", "", {}}));
  ASSERT_TRUE(EnterDesignField(*work, "Impressions", "1000"));
  ASSERT_TRUE(SaveDesign(session, *work));
  desktop::Window* bench = windows.OpenForm("DesignBenchForm", {{"DesignID", "BOX"}});
  ShowActive(*bench);
  Fill(*bench, "txtImpressions", "2500");
  Fill(*bench, "JobNumber", "J7");
  Click(*bench, "cmdBatch");
  desktop::Window* form = windows.Form("BatchForm");
  ASSERT_NE(form, nullptr);
  EXPECT_EQ(Control<QLineEdit>(*form, "cmbColorName").text(), "TARGET");
  EXPECT_EQ(Control<QLineEdit>(*form, "txtQuantity").text(), "8.000");  // 10 needed, 2 in stock
  EXPECT_EQ(Control<QLineEdit>(*form, "JobNumber").text(), "J7");
  EXPECT_TRUE(windows.IsInEdit("BatchForm"));
  ShowActive(*bench);
  prompt.Expect("Batch Window - in State of Edit.", Answer::Ok, "Save or Clear the data on the Batch Window.");
  Click(*bench, "cmdBatch");
}

TEST_F(BatchInMainTest, OpenedByTheToolbarItKeepsStockFromBeingChanged) {
  desktop::MainForm main(windows);
  main.resize(1280, 720);
  ShowActive(main);
  EXPECT_EQ(FocusName(), "cmdMakeBatch");
  PressOn(Qt::Key_3, Qt::ControlModifier);
  WaitFor([&] { return windows.IsFormOpen("BatchForm"); });  // a button shows that it was pressed, then acts
  desktop::Window* form = windows.Form("BatchForm");
  ASSERT_NE(form, nullptr);
  EXPECT_EQ(FocusName(), "cmbColorName");
  TypeOn("TARGET");
  PressOn(Qt::Key_Return);
  TypeOn("10");
  PressOn(Qt::Key_F2);
  ASSERT_TRUE(windows.IsInEdit("BatchForm"));

  prompt.Expect("Batch Window - in State of Edit.", Answer::Ok,
                "The Batch Window is open with active data.\nChanging data elsewhere can impact this recipe.\nSave or "
                "Clear the data on the Batch Window.");
  Click(main, "Inventory");
  EXPECT_FALSE(windows.IsFormOpen("AdjustInventoryForm"));
  // The name of a row goes the way round: the Batch is saved and cleared, then stock can be put right.
  prompt.Expect("Adjust Inventory Confirmation", Answer::Yes);
  Click(*form, "lblName1");
  EXPECT_FALSE(windows.IsInEdit("BatchForm"));
  ASSERT_TRUE(windows.IsFormOpen("AdjustInventoryForm"));
  EXPECT_EQ(Control<QLineEdit>(*windows.Form("AdjustInventoryForm"), "cmbColorName").text(), "RED");
  windows.CloseForm("AdjustInventoryForm");
  Settle();

  windows.OpenForm("BatchForm", {{"BatchNo", 1}});
  Settle();
  EXPECT_GT(form->width(), 1200) << "a tab fills the window, also after the one over it was closed";
  const QRect sight(main.mapToGlobal(QPoint(0, 0)), main.size());
  for (const char* name :
       {"cmdRecycle", "cmdMix", "lblAmount0", "lblTotal", "fgRecList", "JobNumber", "cmdSave", "cmdDelete"}) {
    const QWidget& control = Control(*form, name);
    EXPECT_TRUE(sight.contains(QRect(control.mapToGlobal(QPoint(0, 0)), control.size()))) << name;
  }
  Picture(main, "main-form-batch");
  prompt.Expect("Batch Not Found");
  windows.OpenForm("BatchForm", {{"BatchNo", 9}});
  EXPECT_TRUE(windows.CloseChildWindows());
  Settle();
  EXPECT_EQ(Scalar("SELECT Inventory FROM INK_Basic WHERE Color_Name = 'RED'").Number(), 95.2F);
}

// While the Batch Window has a formula, makes it or recycles it, its recipe stands still.
TEST_F(BatchInMainTest, ABatchKeepsItsFormulasShut) {
  RegisterColorsWindows(windows);
  Mix("PURPLE", {{"RED", 50}, {"BLUE", 50}}, {{"Recycle", true}, {"Inventory", 1.0F}});
  Mix("SKY", {{"BLUE", 100}});
  desktop::MainForm main(windows);
  main.resize(1280, 720);
  ShowActive(main);
  desktop::Window* batch = windows.OpenForm("BatchForm");
  Settle();
  TypeOn("TARGET");
  PressOn(Qt::Key_Return);
  ASSERT_FALSE(windows.IsInEdit("BatchForm")) << "nothing is calculated yet";
  desktop::Window* mixes = windows.OpenForm("MixColorsForm", {{"FindRecord", "TARGET"}});
  Settle();
  const auto expectShut = [&](bool shut) {
    EXPECT_EQ(Control(*mixes, "AllowEditing").isEnabled(), !shut);
    EXPECT_EQ(Control(*mixes, "lblClearBatch").isVisible(), shut);
  };
  expectShut(true);
  EXPECT_EQ(Control<QLabel>(*mixes, "lblClearBatch").text(), "Clear Batch to allow editing");
  Picture(*mixes, "mix-colors-clear-batch");
  windows.OpenForm("MixColorsForm", {{"FindRecord", "SKY"}});
  expectShut(false);

  windows.OpenForm("BatchForm");
  Settle();
  Control(*batch, "txtQuantity").setFocus();
  TypeOn("10");
  PressOn(Qt::Key_F2);
  ASSERT_TRUE(windows.IsInEdit("BatchForm"));
  const auto standBack = [&] {
    prompt.Expect("Batch Window - Formula in State of Edit.", Answer::Ok,
                  "The Batch Window is open and has a recipe on screen.\nChanging data on this window can impact the "
                  "Batch Window.\nSave && Clear the information on the Batch Window before using this Window.");
  };
  // The Batch is brought forward; what can be seen of the other window says why.
  for (const char* used : {"TARGET", "PURPLE"}) {
    standBack();
    windows.OpenForm("MixColorsForm", {{"FindRecord", used}});
    Settle();
    EXPECT_EQ(windows.ActiveForm(), batch);
    EXPECT_EQ(Control<QLineEdit>(*mixes, "cmbColorName").text(), used);
    EXPECT_FALSE(Control(*mixes, "AllowEditing").isEnabled()) << used;
    EXPECT_FALSE(Control(*mixes, "lblClearBatch").isHidden()) << used;
  }
  prompt.Expect(std::string(40, ' ') + "Cancel?", Answer::Yes);
  Click(*batch, "cmdCancel");
  windows.OpenForm("MixColorsForm");
  Settle();
  expectShut(false);
}

// Counts how often it is moved once its fields are there: each time styles all of them anew.
struct FilledWindow : desktop::Window {
  explicit FilledWindow(desktop::WindowList& list) : Window(list, "FilledWindow", "Filled") {
    desktop::Form form(*this);
    form.Row("Name", form.Text("txtName", desktop::TextRule::Any(10)));
    filled = true;
  }
  bool event(QEvent* event) override {
    if (filled && event->type() == QEvent::ParentChange) ++moves;
    return Window::event(event);
  }
  bool filled = false;
  int moves = 0;
};

TEST_F(BatchInMainTest, AWindowIsMadeWhereItStands) {
  windows.Register<FilledWindow>("FilledWindow");
  desktop::MainForm main(windows);
  ShowActive(main);
  const auto& window = dynamic_cast<FilledWindow&>(*windows.OpenForm("FilledWindow"));
  EXPECT_TRUE(main.isAncestorOf(&window));
  EXPECT_TRUE(window.isVisible());
  EXPECT_EQ(window.moves, 0);
}

// The platform activates a message a moment after it has come up; what is typed in between goes to nobody.
TEST_F(BatchInMainTest, AMessageKeepsTheKeysFromTheWindowBehindAtOnce) {
  desktop::MainForm main(windows);
  ShowActive(main);
  windows.OpenForm("BatchForm");
  Settle();
  desktop::MessagePrompt messages;
  WithModal([&] { messages.Tell("Batch", "It stands."); },
            [&](QWidget& message) {
              QApplication::setActiveWindow(&main);
              QTest::keyClick(&main, Qt::Key_F4, Qt::ControlModifier);
              EXPECT_TRUE(windows.IsFormOpen("BatchForm"));
              QApplication::setActiveWindow(&message);
              Click(message, "cmdOK");
            });
  EXPECT_TRUE(windows.IsFormOpen("BatchForm"));
  QTest::keyClick(&main, Qt::Key_F4, Qt::ControlModifier);
  EXPECT_FALSE(windows.IsFormOpen("BatchForm"));
}

// Whoever saves looks at the start page next, also in a room of 100,000 formulas whose names came in no order.
TEST_F(BatchInMainTest, TheStartPageShowsTheNewStockAtOnce) {
  session.File().Execute(
      "INSERT INTO INK_Mix (Color_Name, BC0, BQ0, Color_Set, Inventory, Reorder, LotRefID) WITH RECURSIVE n(i) AS "
      "(SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000) SELECT printf('%08X', i * 40503 % 1048573), 'RED', "
      "100.0, '<RED>', 0.0, CASE WHEN i % 70 = 0 THEN 5.0 ELSE 0.0 END, 0 FROM n");
  desktop::MainForm main(windows);
  ShowActive(main);
  const auto& list = Control<QTableWidget>(main, "lstLowStock");
  EXPECT_EQ(list.rowCount(), 200);
  double best = 1e9;
  for (int round = 0; round < 3; ++round) {
    ASSERT_TRUE(SaveReorderPoint(session, ColorKind::Basic, "RED", std::to_string(200 + round)));
    const CpuTimer timer;
    Settle();
    best = std::min(best, timer.Ms());
    EXPECT_EQ(list.item(0, 3)->text().toStdString(), std::to_string(200 + round) + ".000");
  }
  EXPECT_LT(best, 50 * kSlower);
}

// From the menu in the main window: what was built for the user before is gone, the Batch shows what the next may see.
TEST_F(BatchInMainTest, LoginAsLeavesNothingOnScreenThatTheNextUserMayNotSee) {
  RegisterSessionWindows(windows);
  prompt.Expect("");
  ASSERT_TRUE(CreateUsers(session, "BOSS", "SECRET"));
  prompt.Expect("User Added");
  ASSERT_TRUE(AddUser(session, {"ANNA", "A", false, {}}));
  desktop::MainForm main(windows);
  main.resize(1280, 720);
  ShowActive(main);
  main.EnableMenuItems();
  windows.OpenForm("AdjustInventoryForm");
  desktop::Window* batch = windows.OpenForm("BatchForm");
  Settle();
  TypeOn("TARGET");
  PressOn(Qt::Key_Return);
  TypeOn("10");
  PressOn(Qt::Key_F2);
  ASSERT_TRUE(windows.IsInEdit("BatchForm"));
  const auto loginAs = [&](const char* name, const char* password) {
    auto& menu = *main.findChild<QMenu*>("menuDFUsers_Login_As");
    Q_EMIT menu.aboutToShow();
    for (QAction* action : menu.actions()) {
      if (action->text().remove('&') != name) continue;
      WithModal([&] { action->trigger(); },
                [&](QWidget& dialog) {
                  Fill(dialog, "txtPassword", password);
                  Click(dialog, "cmdOK");
                });
      Settle();
      windows.DeliverChanges();
      return;
    }
    ADD_FAILURE() << "no entry " << name;
  };
  EXPECT_FALSE(Control(*batch, "cmdCostInf").isHidden());
  loginAs("ANNA", "A");
  EXPECT_EQ(session.CurrentUser, "ANNA");
  EXPECT_FALSE(windows.IsFormOpen("AdjustInventoryForm"));
  ASSERT_EQ(windows.Form("BatchForm"), batch) << "its work is kept";
  EXPECT_TRUE(Control(*batch, "cmdCostInf").isHidden());
  Picture(main, "main-form-other-user");
  loginAs("BOSS", "SECRET");
  EXPECT_FALSE(Control(*batch, "cmdCostInf").isHidden());
}

}  // namespace
}  // namespace vellumark::test
