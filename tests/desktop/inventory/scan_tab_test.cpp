// Containers that are scanned back into stock, by the keys of a scanner.

#include <gtest/gtest.h>

#include <QPlainTextEdit>
#include <QRadioButton>
#include <QStackedWidget>
#include <QTabWidget>

#include "core/inventory/posting.h"
#include "core/jobs/job_items.h"
#include "core/jobs/job_numbers.h"
#include "core/jobs/job_stock.h"
#include "desktop/inventory/inventory_desk.h"
#include "desktop/inventory/scan_flash.h"
#include "support/scanner.h"

namespace vellumark::test {
namespace {

using Flash = desktop::ScanFlash::Kind;

struct ScanTabTest : testing::Test, InventoryDesk {
  ScanTabTest() {
    Color(ColorKind::Basic, "RED", 100, {{"Red", 228}, {"Green", 0}, {"Blue", 43}});
    Lot(ColorKind::Basic, "RED", 1, 50, {{"LotNumber", "A1"}, {"LotContID", "C1"}});
    Lot(ColorKind::Basic, "RED", 2, 30, {{"LotNumber", "A2"}, {"LotContID", "C1"}});
    Lot(ColorKind::Basic, "RED", 3, 20, {{"LotNumber", "A2"}, {"LotContID", "C2"}});
    Color(ColorKind::Mix, "PINK", 0);
    Color(ColorKind::Mix, "RED", 0);
  }
  void Issue(const std::string& job, float quantity, std::int32_t lot) {
    JobItemEntry entry = NewJobItem(session);
    entry.JobNumber = job;
    entry.Color_Name = "RED";
    entry.kind = ColorKind::Basic;
    entry.takes = {{lot, lot == 0 ? "" : lot == 1 ? "A1" : "A2", quantity}};
    const auto added = AddJobItems(session, entry);
    ASSERT_TRUE(added) << added.error().text;
  }
  void OpenScan() {
    Open();
    Tabs().setCurrentIndex(1);
    Settle();
  }
  QTabWidget& Tabs() { return Control<QTabWidget>(*form, "Inventory_TabStrip"); }
  QPlainTextEdit& Data() { return Control<QPlainTextEdit>(*form, "Scan_Data"); }
  desktop::ScanFlash& Light() { return Control<desktop::ScanFlash>(*form, "lblScanFlash"); }
  std::vector<std::string> Cells(const char* grid, int column) {
    auto& list = Control<desktop::Grid>(*form, grid);
    std::vector<std::string> cells;
    for (const int row : list.ShownRows()) cells.push_back(list.Model().Source()->Text(row, column));
    return cells;
  }
  std::string Message() { return Control<QPlainTextEdit>(*form, "txtMessages").toPlainText().toStdString(); }
  float InLot(std::int32_t ref) { return LotQty(ColorKind::Basic, "RED", ref).Single(); }
  void Scan(std::string_view text) {
    scanner.Pause();
    scanner.Type(text);
  }

  Scanner scanner;
  using Texts = std::vector<std::string>;
};

TEST_F(ScanTabTest, ShowsEachRecordBeforeItBooksIt) {
  Issue("J1", 10, 1);
  OpenScan();
  EXPECT_EQ(FocusName(), "Scan_Data");
  Scan("<CN>red\r");
  EXPECT_EQ(Light().Shown(), Flash::Waiting);
  EXPECT_EQ(Cells("fgScan", 2),
            (Texts{"RED in Database: INK is a Basic and Formula. Choose a Color Type - Process Again"}));
  Scan("<CT>1\n<LN>A1\r\n");  // LF, CR LF
  EXPECT_EQ(Cells("fgScan", 2), (Texts{"Adds its quantity to lot A1"}));
  Scan("5\t");
  EXPECT_EQ(FocusName(), "Scan_Data") << "Tab ends the line";
  EXPECT_EQ(Cells("fgScan", 2), (Texts{"Adds 5.000 lb. to lot A1"}));
  EXPECT_EQ(Light().Shown(), Flash::Good);
  Scan("<JN>J1\r<CN>RED\r4\r");
  EXPECT_EQ(Cells("fgScan", 2).at(1), "Brings 4.000 lb. back from Job J1, 6.000 stays out");
  Scan("hello\r");
  EXPECT_EQ(Light().Shown(), Flash::Bad);
  Scan("<JN>J1\r<CN>RED\r7\r");
  EXPECT_EQ(Light().Shown(), Flash::Bad) << "more than the record before it leaves";
  Scan("<M1>A NOTE\r<SN>4711\r");
  EXPECT_EQ(Cells("fgScan", 0).size(), 3U);
  EXPECT_EQ(Cells("fgScanJobs", 0), (Texts{"To stock", "J1"}));
  EXPECT_EQ(Cells("fgScanJobs", 2), (Texts{"5.000", "11.000"}));
  auto& list = Control<desktop::Grid>(*form, "fgScan");
  EXPECT_EQ(list.Model().Source()->Swatch(0, 1), QColor(228, 0, 43));
  EXPECT_EQ(InLot(1), 40) << "nothing is booked yet";
  for (const auto key : {Qt::Key_F8, Qt::Key_F10}) PressOn(key);  // keys of the second step
  EXPECT_EQ(Cells("fgScan", 0).size(), 3U);
  Picture(*form, "inventory-scan-1");

  PressOn(Qt::Key_F9);
  PressOn(Qt::Key_F9);  // the key of the first step
  EXPECT_EQ(InLot(1), 49);
  EXPECT_EQ(Message(), "RED inventory updated successfully.");
  Picture(*form, "inventory-scan-2-booked");
  EXPECT_EQ(Cells("fgScanResults", 4).at(2), "Quantity returned to the Job Number: J1 was larger than issued.");
  prompt.Expect("Data Successfully Processed", Answer::Ok, "Can't reprocess a successful transaction.");
  Click(*form, "cmdReProcess");
  EXPECT_EQ(InLot(1), 49);
  Click(*form, "cmdNext");
  EXPECT_EQ(Message(), "Job Number: J1  updated successfully.");
  PressOn(Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(FocusName(), "txtQty") << "what is to be mended";
  Picture(*form, "inventory-scan-2-failed");
  TypeOn("6");
  PressOn(Qt::Key_F8);
  EXPECT_EQ(Message(), "Job Number: J1  updated successfully.");
  EXPECT_FALSE(JobIsThere(session, "J1"));
  EXPECT_EQ(InLot(1), 55);
  // The return that took the item off its Job, back again.
  prompt.Expect("Take Back", Answer::Yes);
  Click(*form, "cmdTakeBack");
  EXPECT_EQ(InLot(1), 49);
  ASSERT_EQ(JobItems(session, "J1").size(), 1U);
  EXPECT_EQ(JobItems(session, "J1").front().QtyUsed, 6);
  prompt.Expect("Confirm Cancel", Answer::No, "Unprocessed data will be cleared.");
  Click(*form, "cmdDone");
  PressOn(Qt::Key_S, Qt::ControlModifier);  // books it again
  EXPECT_EQ(InLot(1), 55);
  Click(*form, "cmdDone");
  EXPECT_EQ(FocusName(), "Scan_Data");
  EXPECT_EQ(Data().toPlainText(), "");
}

TEST_F(ScanTabTest, AFailureIsSettledByPickingALotOrAnItem) {
  Issue("J3", 3, 2);
  Issue("J3", 2, 2);
  OpenScan();
  Scan("<CN>RED\r<CT>1\r<LN>A2\r5\r<JN>J3\r<CN>RED\r<LN>A2\r1\r<CN>RED\r<LN>A1\r1\r");
  Click(*form, "cmd_ScanSave");
  EXPECT_EQ(Message().substr(0, 14), "Multiple Lots:");
  const auto choose = [&](int row) {
    auto& combo = Control<QComboBox>(*form, "LotNum_ScanSel");
    ASSERT_GT(combo.count(), row);
    combo.setFocus();
    for (int i = 0; i < row; ++i) Press(combo, Qt::Key_Down);
  };
  Control<QComboBox>(*form, "cmbDB").setCurrentText("INK");
  Control<QComboBox>(*form, "cmbDB").activated(1);
  choose(3);  // A1, A2 C1, A2 C2
  EXPECT_EQ(Text("txtScanLC"), "C2");
  Click(*form, "cmdReProcess");
  EXPECT_EQ(InLot(3), 25);
  Click(*form, "cmdNext");
  choose(2);
  Click(*form, "cmdReProcess");
  EXPECT_EQ(Message(), "Job Number: J3  updated successfully.");
  const auto items = JobItems(session, "J3");
  EXPECT_EQ(items.at(0).QtyUsed, 3);
  EXPECT_EQ(items.at(1).QtyUsed, 1);
  // A formula and a Basic Color of one name, and completion of names in step 2.
  Click(*form, "cmdNext");
  Click(Control(*form, "optCT_Formula"));
  Fill(*form, "txtScanLN", "F1");
  Click(*form, "cmdReProcess");
  EXPECT_EQ(Message(), "RED inventory updated successfully.");
  EXPECT_EQ(LotQtyTotal(session, ColorKind::Mix, "RED"), 1);
  session.AutoFillText = 1;
  Type(Control(*form, "cmbCN"), "PI");
  EXPECT_EQ(Text("cmbCN"), "PINK");
  Control<QLineEdit>(*form, "cmbJN").clear();
  Type(Control(*form, "cmbJN"), "j");
  EXPECT_EQ(Text("cmbJN"), "j3");
  Click(*form, "cmdDone");
}

TEST_F(ScanTabTest, KeepsApartFromWorkByHandAndFromCapsLock) {
  Open();
  Enter("PINK");
  Fill(*form, "txtReorder", "5");
  prompt.Expect("Update Inventory Transaction", Answer::Ok,
                "A Manual inventory transaction is in process.\nSave or Clear data before using the Scan feature.");
  Tabs().setCurrentIndex(1);
  EXPECT_EQ(Tabs().currentIndex(), 0);
  prompt.Expect("Cancel Without Saving Changes?", Answer::Yes);
  Click(*form, "cmdCancel");
  PressOn(Qt::Key_CapsLock);
  prompt.Expect("Caps Lock", Answer::Ok, "Caps Lock is turned on.\nTurn off Caps Lock before using the Scan Feature.");
  Tabs().setCurrentIndex(1);
  EXPECT_EQ(Tabs().currentIndex(), 0);
  PressOn(Qt::Key_CapsLock);
  Tabs().setCurrentIndex(1);
  Settle();
  EXPECT_EQ(FocusName(), "Scan_Data");
  Scan("<CN>PI");
  PressOn(Qt::Key_CapsLock);
  prompt.Expect(
      "Caps Lock", Answer::Ok,
      "Caps Lock has been turned on.\n\nScan data can be altered when Caps Lock is on.\n\nTurn off Caps Lock!!!");
  scanner.Type("NK\r");
  EXPECT_TRUE(WaitFor([&] { return prompt.last.text.starts_with("Caps Lock has been"); }, 1000));
  EXPECT_EQ(Data().toPlainText(), "<CN>PINK\n") << "the message waits for the end of the code";
  PressOn(Qt::Key_CapsLock);
  prompt.Expect("Update Inventory Transaction", Answer::Ok,
                "A Scanned inventory transaction is in process.\nSave or Clear data before using the Manual feature.");
  Tabs().setCurrentIndex(0);
  prompt.Expect("Update Inventory Settings");
  Tabs().setCurrentIndex(2);
  EXPECT_EQ(Tabs().currentIndex(), 1);
  EXPECT_TRUE(windows.IsInEdit("AdjustInventoryForm"));
  prompt.Expect("Confirm Cancel", Answer::No, "Unprocessed data will be cleared.");
  EXPECT_FALSE(form->Leave());
  prompt.Expect("Confirm Cancel", Answer::Yes, "Unprocessed data will be cleared.");
  Click(*form, "cmd_ScanCancel");
  EXPECT_EQ(Data().toPlainText(), "");
  Click(*form, "cmd_ScanSave");
  EXPECT_EQ(FocusName(), "Scan_Data") << "nothing to process";
  Tabs().setCurrentIndex(0);
  EXPECT_EQ(Tabs().currentIndex(), 0);
}

TEST_F(ScanTabTest, WhatIsScannedWhileADialogIsOpenIsThereWhenItHasGone) {
  OpenScan();
  Scan("<CN>PINK\r");
  WithModal([&] { PressOn(Qt::Key_F1); },
            [&](QWidget& dialog) {
              Picture(dialog, "scanning-help-1", {});
              Scan("<LN>A1\r5\r");
              Scan("7\r");
              EXPECT_TRUE(dialog.isVisible());
              for (int slide = 2; slide <= 5; ++slide) {
                Click(dialog, "cmdNext");
                Picture(dialog, "scanning-help-" + std::to_string(slide), {});
              }
              EXPECT_FALSE(Control(dialog, "cmdNext").isEnabled());
              Click(dialog, "cmdClose");
            });
  EXPECT_EQ(Data().toPlainText(), "<CN>PINK\n<LN>A1\n5\n7\n");
  EXPECT_EQ(LotQtyTotal(session, ColorKind::Mix, "PINK"), 0);
}

TEST_F(ScanTabTest, AScannedBookingIsTakenBackByItsLineOfTheHistory) {
  OpenScan();
  Scan("<CN>RED\r<CT>1\r<LN>A1\r5\r<CN>RED\r<CT>1\r<LN>NEW\r2\r");
  PressOn(Qt::Key_F9);
  Click(*form, "cmdDone");
  EXPECT_EQ(InLot(1), 55);
  PostStock(session, {.source = PostingSource::BatchTakes, .name = "RED", .quantity = 52, .place = {.LotRefID = 1}});
  PressOn(Qt::Key_F7);
  desktop::Window& history = *windows.Form("StockHistoryForm");
  auto& lines = Control<desktop::Grid>(history, "fgHistory");
  QWidget& takeBack = Control(history, "cmdTakeBack");
  lines.SetCurrentRow(0);
  EXPECT_FALSE(takeBack.isEnabled()) << "what a Batch took";
  lines.SetCurrentRow(1);
  prompt.Expect("Take Back", Answer::Yes);
  Click(takeBack);
  EXPECT_EQ(LotsNumbered(session, ColorKind::Basic, "RED", {}, "NEW").size(), 0U);
  lines.SetCurrentRow(3);
  prompt.Expect("Take Back", Answer::Yes);
  prompt.Expect("Scan Booking");
  Click(takeBack);
  EXPECT_EQ(InLot(1), 3) << "what was built on it stays";
}

// 10,000 lines at once, and one more: each line is a moment.
TEST_F(ScanTabTest, TenThousandLinesStayQuick) {
  OpenScan();
  std::string text;
  for (int i = 0; i < 3333; ++i) text += "<CN>PINK\n<LN>L" + std::to_string(i % 50) + "\n1\n";
  const CpuTimer whole;
  Data().insertPlainText(QString::fromStdString(text));
  Settle();
  EXPECT_LT(whole.Ms(), 3000 * kSlower);
  ASSERT_EQ(Cells("fgScan", 0).size(), 3333U);
  const CpuTimer one;
  Scan("<CN>PINK\r<LN>L1\r2\r");
  EXPECT_LT(one.Ms(), 300 * kSlower);
  EXPECT_EQ(Cells("fgScan", 0).size(), 3334U);
}

}  // namespace
}  // namespace vellumark::test
