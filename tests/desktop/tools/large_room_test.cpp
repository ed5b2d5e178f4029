// Work over many thousand formulas: the windows stay alive, and a cancel leaves every row as it was.

#include <QProgressBar>
#include <QTimer>

#include "desktop/kit/wait_progress.h"
#include "support/snapshot.h"
#include "tools_room.h"

namespace vellumark::test {
namespace {

/// The room's file in a session whose long work shows itself.
struct LargeRoom : ToolsRoom {
  LargeRoom() {
    HaveInks();
    busy.DataFolder = session.DataFolder;
    busy.support = std::move(session.support);
    busy.DataFileDB = std::move(session.DataFileDB);
    busy.DataFileDB->SetChanges(&busy.changes);
    busy.DataFileOpen = true;
    busy.CurrentDatabase = "INK";
    busy.databaseList = {"INK"};
    ReadSettings(busy);
    RegisterToolsWindows(busyWindows);
  }
  void Formulas(int count) {
    busy.File()
        .Prepare(
            "INSERT INTO INK_Mix (Color_Name, BC0, BQ0, BC1, BQ1, Color_Set) WITH RECURSIVE n(i) AS (SELECT 1 "
            "UNION ALL SELECT i + 1 FROM n WHERE i < ?) SELECT printf('M%06d', i), 'RED', 40.0, 'BLUE', 60.0, "
            "'<RED><BLUE>' FROM n")
        .Bind(1, count)
        .Run();
  }
  void OpenBusy(const char* name) {
    form = busyWindows.OpenForm(name);
    ShowActive(*form);
  }

  desktop::WaitProgress wait;
  Session busy{prompt, wait, clock};
  desktop::WindowList busyWindows{busy, &wait};
};

TEST_F(LargeRoom, CancelInTheMiddleLeavesEveryRow) {
  // Enough to last beyond the moment at which the wait window comes up, on a quick machine too.
  Formulas(60'000);
  OpenBusy("DBFormulaModifierForm");
  Click(*form, "chkSelectAllColors");
  Click(*form, "chkSel0");
  Fill(*form, "cmbBasics0", "RED");
  Fill(*form, "txtPercent0", "10");
  Click(*form, "cmdPreview");
  ShowActive(*form);  // without a main window nobody brings it back behind a wait window
  EXPECT_EQ(Shown("LVMod").size(), 60'004U);
  const std::string before = Snapshot(busy.File());

  // The wait window comes up by itself, shows how far the work is, and hears the click.
  int percent = 0;
  QTimer operatorHand;
  QObject::connect(&operatorHand, &QTimer::timeout, [&] {
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr || modal->objectName() != "WaitingForm") return;
    if (Control<QLabel>(*modal, "lblMessage").text() != QString("Modifing Formulas ...")) return;
    percent = Control<QProgressBar>(*modal, "pbProgress").value();
    if (percent < 10) return;
    operatorHand.stop();
    Click(*modal, "cmdCancel");
  });
  operatorHand.start(5);
  prompt.Expect("Database Formula Modifier", Answer::Ok,
                "You are about to change 60004 Master Formula(s) in the INK Database.\n\nClick OK to continue.");
  prompt.Expect("Database Formula Modifier", Answer::Ok, "The work was cancelled. Nothing was changed.");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_GE(percent, 10);
  EXPECT_LT(percent, 1000);
  EXPECT_TRUE(Snapshot(busy.File()) == before);  // too long to be printed
  EXPECT_EQ(Shown("LVMod").size(), 60'004U);  // for another try
  EXPECT_FALSE(busy.CostChanged);

  ShowActive(*form);
  prompt.Expect("Database Formula Modifier");
  prompt.Expect("Master Formulas Modified");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(busy.File().Scalar("SELECT COUNT(*) FROM INK_Mix WHERE LastModified IS NOT NULL").Whole(), 60'004);
}

TEST_F(LargeRoom, AHundredThousandFormulasWithoutAStutter) {
  Formulas(100'000);
  const CpuTimer opening;
  OpenBusy("DBDelColors");
  EXPECT_LT(opening.Ms(), 1500 * kSlower);
  auto& filter = Control<QLineEdit>(*form, "lstMixes_Filter");
  Type(filter, "m09");
  const CpuTimer typing;
  TypeOn("9");
  EXPECT_LT(typing.Ms(), 250 * kSlower);
  EXPECT_EQ(Shown("lstMixes").size(), 1000U);
  const CpuTimer choosing;
  Click(*form, "chkSelectAllColors");
  EXPECT_LT(choosing.Ms(), 250 * kSlower);
  EXPECT_EQ(Label("lblSelected"), "1000 Colors selected");
  const CpuTimer scrolling;
  filter.clear();
  List("lstMixes").View().setFocus();
  for (int page = 0; page < 10; ++page) PressOn(Qt::Key_PageDown);
  EXPECT_LT(scrolling.Ms(), 800 * kSlower);
}

}  // namespace
}  // namespace vellumark::test
