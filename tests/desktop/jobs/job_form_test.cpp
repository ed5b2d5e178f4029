// The Job Window and the small windows that it opens, by the keys of an operator.

#include <QDateEdit>

#include "core/exchange/record_export.h"
#include "core/jobs/job_changes.h"
#include "core/jobs/job_options.h"
#include "core/session/settings.h"
#include "jobs_desk.h"
#include "support/pdf_text.h"

namespace vellumark::test {
namespace {

struct JobFormTest : testing::Test, JobsDesk {
  std::string Number() { return Control<QLineEdit>(*form, "cmbJobNumber").text().toStdString(); }
};

TEST_F(JobFormTest, AJobIsFoundWhileTypingWalkedBegunAndRenamed) {
  for (const char* job : {"A-1", "b-1", "B-2"}) Add(job, "RED", 1);
  Open();
  EXPECT_EQ(FocusName(), "cmbJobNumber");
  TypeOn("B-2");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(Number(), "B-2");
  EXPECT_EQ(Text(*form, "lblState"), "1 item");
  PressOn(Qt::Key_PageUp);
  EXPECT_EQ(Number(), "b-1") << "small letters stay";
  PressOn(Qt::Key_PageDown);
  EXPECT_EQ(Number(), "B-2");

  const auto enter = [&](const char* number) {
    Control(*form, "cmbJobNumber").setFocus(Qt::TabFocusReason);
    TypeOn(number);
    PressOn(Qt::Key_Return);
    Settle();
  };
  prompt.Expect("Add Job Number", Answer::No, "Create a new Job Record with this Job Number?");
  enter("C-9");
  EXPECT_EQ(Number(), "B-2");
  prompt.Expect("Add Job Number", Answer::Yes);
  enter("C-9");
  EXPECT_EQ(Number(), "C-9");
  EXPECT_EQ(Text(*form, "lblState"), "New Job");
  EXPECT_TRUE(Control(*form, "cmdAddItem").isEnabled());
  EXPECT_FALSE(Control(*form, "cmdPrint").isEnabled());
  prompt.Expect("Choose Another Job Number");
  enter("- SPLIT -");

  enter("a-1");
  prompt.Expect("Job Number Exists");
  WithModal([&] { Click(*form, "cmdRename"); },
            [](QWidget& dialog) {
              Fill(dialog, "txtJobNumber", "b-2");
              Click(dialog, "cmdSave");
              Fill(dialog, "txtJobNumber", "Z-1");
              Click(dialog, "cmdSave");
            });
  EXPECT_EQ(Number(), "Z-1");
  EXPECT_FALSE(JobIsThere(session, "A-1"));
  EXPECT_EQ(JobItems(session, "Z-1").size(), 1U);
}

TEST_F(JobFormTest, QtyUsedIsTypedInTheGridAndStockFollows) {
  const JobRecord lotted = Add("J1", "RED", 10, 1);
  const JobRecord loose = Add("J1", "RED", 5);
  Open({{"JobNumber", "j1"}});
  EXPECT_EQ(Text(*form, "lblTotalQtyUsed") + " " + Text(*form, "lblTotalCost") + " " + Text(*form, "lblTotalVOCs"),
            "15.000 37.50 7.500");
  GoTo(0, JobColumn::QtyUsed);
  PressOn(Qt::Key_Return);
  TypeOn("8.5");
  EXPECT_EQ(FocusName(), "txtEdit");
  EXPECT_EQ(Text(*form, "lblHint"), "TAB or ENTER to accept changes  -  ESC to Cancel");
  EXPECT_TRUE(form->InEdit());
  PressOn(Qt::Key_Escape);
  EXPECT_FALSE(form->InEdit());
  EXPECT_TRUE(form->isVisible());
  EXPECT_EQ(Row(lotted.row).QtyUsed, 10);
  TypeUsed(0, "8.5");
  EXPECT_EQ(Row(lotted.row).QtyUsed, 8.5F);
  EXPECT_EQ(InLot(1), 21.5F);
  EXPECT_EQ(Cell(0, JobColumn::QtyUsed), "8.500");
  EXPECT_EQ(Text(*form, "lblTotalQtyUsed"), "13.500");

  prompt.Expect("Exceeds Lotted", Answer::Ok, "Qty Used cannot be set higher than 30.000\nLot Number L1");
  TypeUsed(0, "30.001");
  EXPECT_EQ(FocusName(), "txtEdit") << "to be corrected";
  PressOn(Qt::Key_Escape);
  prompt.Expect("Usage Notice", Answer::Ok,
                "Cannot set the Qty Used to zero.\nTo clear this Job Item, click on this item's Batch/Item Number\nand "
                "click the Delete Item button.");
  TypeUsed(1, "0");
  PressOn(Qt::Key_Escape);
  prompt.Expect("Exceeds UnLotted", Answer::Cancel);
  TypeUsed(1, "200");
  PressOn(Qt::Key_Escape);
  EXPECT_EQ(Row(loose.row).QtyUsed, 5);
  prompt.Expect("Exceeds UnLotted", Answer::Ok);
  TypeUsed(1, "200");
  EXPECT_EQ(Row(loose.row).QtyUsed, 200);
  Picture(*form, "job-form");
  Picture(*form, "job-form-960", {960, 540});
  Picture(*form, "job-form-1920", {1920, 1080});

  // What changes meanwhile comes into the window, under the cursor that stands where it stood.
  Add("J1", "PINK", 2, 0, ColorKind::Mix);
  windows.DeliverChanges();
  EXPECT_EQ(List().Model().rowCount(), 3);
  EXPECT_EQ(List().CurrentRow(), 1);
  prompt.Expect("Ink Inventory", Answer::Yes, "Return Quantity Used back to inventory?");
  Press(List().View(), Qt::Key_D, Qt::ControlModifier);
  EXPECT_EQ(List().Model().rowCount(), 2);
}

TEST_F(JobFormTest, WhatARowBearsIsChangedInItsSmallWindow) {
  Add("J1", "RED", 10, 1);
  Add("J1", "RED", 4);
  AddRow(schema::Designs, {{"DesignID", "BOX"}, {"Description", "Folding box"}});
  StoreSettings(session, {setting::JobUDTxtRequired[0].To(true), setting::Jobs_UDNum_Format[2].To(1)});
  Open({{"JobNumber", "J1"}});
  const auto change = [&](JobColumn column, const std::function<void(QWidget&)>& inside) {
    GoTo(0, column);
    WithModal([&] { PressOn(Qt::Key_F4); }, inside);
  };
  const auto typed = [](const char* field, const char* text, const char* picture = nullptr) {
    return [=](QWidget& dialog) {
      Fill(dialog, field, text);
      if (picture != nullptr) Picture(dialog, picture, dialog.size());
      Click(dialog, "cmdSave");
    };
  };
  prompt.Expect("Change Unit Cost Pricing Model", Answer::Yes,
                "This Price was used 0 days(s) ago to generate the Total Cost.\n\nChange the current Price per (lb.) "
                "associated with this item?");
  change(JobColumn::UnitCost, typed("txtNew", "3.25", "update-job-cost-model"));
  EXPECT_EQ(Cell(0, JobColumn::UnitCost) + " " + Cell(1, JobColumn::UnitCost), "3.25 2.50");
  EXPECT_EQ(Text(*form, "lblTotalCost"), "42.50");
  prompt.Expect("Change VOC Calculation Model", Answer::Yes);
  change(JobColumn::TotalVOCs, [&](QWidget& dialog) {
    Fill(dialog, "txtNew", "1");
    Click(dialog, "chkAll");
    Click(dialog, "cmdSave");
  });
  EXPECT_EQ(Text(*form, "lblTotalVOCs"), "14.000");
  prompt.Expect("Change HAP Calculation Model", Answer::No);
  GoTo(0, JobColumn::HAP);
  PressOn(Qt::Key_F4);
  Settle();
  prompt.Expect("Change Design ID Reference", Answer::Yes);
  prompt.Expect("Design Not Found");
  change(JobColumn::DesignID, [&](QWidget& dialog) {
    Fill(dialog, "cmbDesignID", "NONE");
    Click(dialog, "cmdSave");
    Fill(dialog, "cmbDesignID", "box");
    Click(dialog, "chkAll");
    Picture(dialog, "update-job-design-id", dialog.size());
    Click(dialog, "cmdSave");
  });
  EXPECT_EQ(Cell(1, JobColumn::DesignDesc), "Folding box");
  prompt.Expect("More Data Incomplete");
  change(JobColumn::UD_Text, [&](QWidget& dialog) {
    Click(dialog, "cmdSave");
    typed("txtText", "matt", "update-job-ud-text")(dialog);
  });
  EXPECT_EQ(Cell(0, JobColumn::UD_Text), "matt");
  const int number = static_cast<int>(JobColumn::UD_Numeric) + 2;
  change(static_cast<JobColumn>(number), typed("txtNumber", "12.5"));
  EXPECT_EQ(Cell(0, static_cast<JobColumn>(number)), "12.5");
  change(JobColumn::Date_Returned, [](QWidget& dialog) {
    Control<QDateEdit>(dialog, "dtpReturned").setDate({2026, 3, 2});
    Picture(dialog, "jobs-new-return-date", dialog.size());
    Click(dialog, "cmdSave");
  });
  EXPECT_EQ(JobItems(session, "J1")[0].Date_Returned->DateText(), "2026-03-02");

  WithModal([&] { Click(*form, "cmdCloseJob"); },
            [](QWidget& dialog) {
              Control<QDateEdit>(dialog, "dtpCompleted").setDate({2026, 3, 9});
              Picture(dialog, "job-closing-date", dialog.size());
              Click(dialog, "cmdSave");
            });
  EXPECT_EQ(LoadJob(session, "J1").Date_Completed->DateText(), "2026-03-09");
  EXPECT_FALSE(Control(*form, "cmdCloseJob").isVisible());
  Click(*form, "cmdReopen");
  EXPECT_FALSE(LoadJob(session, "J1").Date_Completed);
  EXPECT_EQ(Text(*form, "lblJobCompleted"), "open");

  // A year and a day later the row is what it is.
  clock.Set(DateTime{2027, 3, 11, 8, 0, 0});
  prompt.Expect("User Defined Data - Unchangable", Answer::Ok,
                "Required user defined data cannot be changed on items that are older than 1 year.");
  GoTo(0, JobColumn::UD_Text);
  PressOn(Qt::Key_F4);
  Settle();
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(JobFormTest, PricesAreForThoseWhoMaySeeThem) {
  Add("J1", "RED", 10);
  session.CurrentUser = "ANNA";
  session.IsAdminUser = false;
  session.Perm_Costs = 0;
  Open({{"JobNumber", "J1"}});
  EXPECT_EQ(Text(*form, "lblTotalCost"), "User Permissions - Price Blocked");
  EXPECT_EQ(Cell(0, JobColumn::UnitCost) + Cell(0, JobColumn::TotalCost), "");
  prompt.Expect("Permission Denied");
  GoTo(0, JobColumn::UnitCost);
  PressOn(Qt::Key_F4);
  Settle();
  WithModal([&] { Click(*form, "cmdAddItem"); },
            [](QWidget& dialog) {
              Control<QTabWidget>(dialog, "tabItem").setCurrentIndex(1);
              EXPECT_FALSE(Control(dialog, "optMixCost").isVisible());
              EXPECT_EQ(Text(dialog, "lblPriceBlocked"), "User Permissions - Price Blocked");
              Press(dialog, Qt::Key_Escape);
            });
}

TEST_F(JobFormTest, TheGridIsFoundAgainAsItWasLeft) {
  Add("J1", "RED", 10, 1);
  Add("J1", "PINK", 3, 0, ColorKind::Mix);
  Add("J1", "RED", 12, 2);
  Open({{"JobNumber", "J1"}});
  WithModal([&] { Click(*form, "cmdOptions"); },
            [](QWidget& dialog) {
              Fill(dialog, "txtTextCaption0", "Finish");
              Click(dialog, "chkTextDefault0");
              Fill(dialog, "txtTextValue0", "matt");
              auto& tabs = Control<QTabWidget>(dialog, "TabOptions");
              Picture(dialog, "job-options-texts", dialog.size());
              tabs.setCurrentIndex(1);
              Control<QComboBox>(dialog, "cmbNumberFormat1").setCurrentIndex(0);
              tabs.setCurrentIndex(2);
              Click(dialog, "optBasicCost");
              Click(dialog, "optBasicVOC");
              Picture(dialog, "job-options-costs", dialog.size());
              tabs.setCurrentIndex(3);
              auto& columns = Control<desktop::CheckListField>(dialog, "lstColumns");
              columns.SetChecked(static_cast<int>(JobColumn::UD_Text), true);
              columns.SetChecked(static_cast<int>(JobColumn::LotNumber), true);
              columns.SetChecked(static_cast<int>(JobColumn::Database), false);
              columns.SetChecked(columns.count() - 1, true);
              Picture(dialog, "job-options-columns", dialog.size());
              Click(dialog, "cmdSave");
            });
  EXPECT_EQ(ReadJobCosting(session), (JobCosting{2, 1, 0}));
  EXPECT_EQ(GetSetting(session, setting::Jobs_UDNum_Format[1]), 0);
  const auto shown = [&](JobColumn column) { return List().IsShown(static_cast<int>(column)); };
  EXPECT_TRUE(shown(JobColumn::UD_Text) && shown(JobColumn::LotNumber) && !shown(JobColumn::Database));
  EXPECT_EQ(List().Columns()[static_cast<std::size_t>(JobColumn::UD_Text)].caption, "Finish");
  prompt.Expect("Export Job Records");
  const auto captions = GatherJobRecords(session, {"J1", "J1"})->rows.front();
  EXPECT_NE(std::ranges::find(captions, "Date Completed"), captions.end());
  List().ClickCaption(static_cast<int>(JobColumn::Color_Name), false);
  List().ClickCaption(static_cast<int>(JobColumn::QtyUsed), true);
  List().ClickCaption(static_cast<int>(JobColumn::QtyUsed), true);
  EXPECT_EQ(List().ShownRows(), (std::vector<int>{1, 2, 0})) << "within RED the larger one first";
  List().SetColumnWidth(static_cast<int>(JobColumn::LotNumber), 222);
  StoreJobCosting(session, {0, 0, 0});
  windows.DeliverChanges();
  EXPECT_EQ(List().ColumnWidth(static_cast<int>(JobColumn::LotNumber)), 222) << "a setting of something else";
  windows.CloseForm("JobForm");
  Settle();
  Open({{"JobNumber", "J1"}});
  EXPECT_EQ(List().ShownRows(), (std::vector<int>{1, 2, 0}));
  EXPECT_EQ(List().ColumnWidth(static_cast<int>(JobColumn::LotNumber)), 222);
  EXPECT_TRUE(shown(JobColumn::UD_Text));
}

TEST_F(JobFormTest, ABookingIsTakenBackFromTheListOfThem) {
  const JobRecord item = Add("J1", "RED", 10, 1);
  const JobRecord other = Add("J0", "RED", 6, 2);
  Add("J2", "RED", 3);
  ASSERT_TRUE(RenameJob(session, "J0", "J1-0"));
  Open({{"JobNumber", "J1"}});
  TypeUsed(0, "4");
  EXPECT_EQ(InLot(1), 26);
  WithModal([&] { Click(*form, "cmdUndo"); },
            [&](QWidget& dialog) {
              EXPECT_EQ(Control<desktop::Grid>(dialog, "fgBookings").Model().rowCount(), 2);
              Picture(dialog, "job-bookings", dialog.size());
              prompt.Expect("Job Booking", Answer::No);
              Click(dialog, "cmdUndo");
              prompt.Expect("Job Booking", Answer::Yes);
              Click(dialog, "cmdUndo");
              Click(dialog, "cmdClose");
            });
  EXPECT_EQ(Row(item.row).QtyUsed, 10);
  EXPECT_EQ(InLot(1), 20);
  // A Job that got another number is still asked for by its items.
  windows.OpenForm("JobForm", {{"JobNumber", "J1-0"}});
  WithModal([&] { Click(*form, "cmdUndo"); },
            [&](QWidget& dialog) {
              EXPECT_EQ(Control<desktop::Grid>(dialog, "fgBookings").Model().rowCount(), 1);
              prompt.Expect("Job Booking", Answer::Yes);
              Click(dialog, "cmdUndo");
              Click(dialog, "cmdClose");
            });
  EXPECT_FALSE(ReadJobRecord(session, other.row));
  EXPECT_EQ(InLot(2), 20);

  desktop::Window* out = windows.OpenForm("JobsOutForm");
  ShowActive(*out);
  EXPECT_EQ(Control<desktop::Grid>(*out, "fgOut").Model().rowCount(), 2);
  Picture(*out, "jobs-out");
  PressOn(Qt::Key_End);
  PressOn(Qt::Key_Down);
  PressOn(Qt::Key_Return);
  Settle();
  EXPECT_EQ(Number(), "J2");
}

// ---- Adding

TEST_F(JobFormTest, LotsAreOfferedOldestFirstAndConsignmentNever) {
  StoreSettings(session, {setting::JobUDTxtRequired[1].To(true)});
  Open({{"JobNumber", "J1"}});
  WithModal([&] { PressOn(Qt::Key_Insert); },
            [&](QWidget& dialog) {
              EXPECT_EQ(FocusName(), "cmbColors");
              TypeOn("RED");
              PressOn(Qt::Key_Return);
              EXPECT_EQ(FocusName(), "txtNeed");
              auto& stock = Control<desktop::Grid>(dialog, "InvColorList");
              EXPECT_EQ(stock.Model().rowCount(), 3) << "what lies on consignment is not ours";
              TypeOn("25");
              PressOn(Qt::Key_F2);
              const auto takes = [&] {
                std::string all;
                for (int row = 0; row < 3; ++row) all += stock.Model().Source()->Text(row, 6) + "|";
                return all;
              };
              EXPECT_EQ(takes(), "|5.000|20.000|");
              Fill(dialog, "txtNeed", "200");
              PressOn(Qt::Key_F2);
              EXPECT_EQ(takes(), "100.000|30.000|20.000|");
              EXPECT_EQ(Text(dialog, "lblTaken"), "150.000 lb. marked, 50.000 are missing");
              Fill(dialog, "txtNeed", "25");
              PressOn(Qt::Key_F2);
              Picture(dialog, "add-job-item", dialog.size());
              stock.SetCurrentRow(1);
              prompt.Expect("Exceeds Lotted");
              Fill(dialog, "AdjustInv", "31");
              Click(dialog, "cmdUpdate");
              Fill(dialog, "AdjustInv", "7.5");
              Click(dialog, "cmdUpdate");
              prompt.Expect("More Data Incomplete", Answer::Ok, "Required User Defined Text Fields Incomplete.");
              Click(dialog, "cmdAddItem");
              EXPECT_EQ(FocusName(), "txtUDText1");
              TypeOn("press 4");
              Picture(dialog, "add-job-item-more-data", dialog.size());
              Click(dialog, "cmdAddItem");
              EXPECT_EQ(Text(dialog, "lblState"), "Added: 27.500 lb. of RED");
              // The next one, by hand.
              TypeOn("PINK");
              PressOn(Qt::Key_Return);
              Control(dialog, "InvColorList").setFocus();
              PressOn(Qt::Key_Space);
              EXPECT_EQ(Text(dialog, "lblTaken"), "20.000 lb. marked");
              prompt.Expect("Cancel Without Saving Changes?", Answer::No);
              Press(dialog, Qt::Key_Escape);
              Click(dialog, "cmdAddItem");
              WithModal([&] { PressOn(Qt::Key_F1); },
                        [](QWidget& help) {
                          Picture(help, "job-add-item-help", help.size());
                          Click(help, "cmdClose");
                        });
              Click(dialog, "cmdClose");
            });
  const std::vector<JobRecord> items = JobItems(session, "J1");
  ASSERT_EQ(items.size(), 3U);
  EXPECT_EQ(items[0].LotNumber + items[1].LotNumber + items[2].LotNumber, "L1L2Unlotted Inv.");
  EXPECT_EQ(items[0].UD_Text[1], "press 4");
  EXPECT_EQ(InLot(1), 22.5F);
  EXPECT_EQ(List().Model().rowCount(), 3);
}

TEST_F(JobFormTest, ADesignGivesItsColors) {
  AddRow(schema::Designs, {{"DesignID", "BOX"}, {"Description", "Folding box"}, {"Impressions", 5000},
                           {"IngSet", "<RED><PINK>"}, {"IngName0", "RED"}, {"IngType0", 1}, {"IngDB0", "INK"},
                           {"IngQty0", 4.0F}, {"IngName1", "PINK"}, {"IngType1", 2}, {"IngDB1", "INK"}});
  Open({{"JobNumber", "J1"}});
  WithModal([&] { Click(*form, "cmdAddItem"); },
            [&](QWidget& dialog) {
              Fill(dialog, "cmbDesignID", "box");
              EXPECT_EQ(Text(dialog, "lblDescription"), "Folding box");
              auto& colors = Control<desktop::Grid>(dialog, "DesignColorList");
              ASSERT_EQ(colors.Model().rowCount(), 2);
              Picture(dialog, "add-job-item-design", dialog.size());
              colors.View().setFocus();
              colors.SetCurrentRow(0);
              PressOn(Qt::Key_Return);
              EXPECT_EQ(FocusName(), "txtNeed");
              PressOn(Qt::Key_F2);
              Click(dialog, "cmdAddItem");
              Click(dialog, "cmdClose");
            });
  const std::vector<JobRecord> items = JobItems(session, "J1");
  ASSERT_EQ(items.size(), 1U);
  EXPECT_EQ(items[0].DesignID + " " + items[0].LotNumber, "BOX L2");
  EXPECT_EQ(items[0].QtyUsed, 4);
  EXPECT_EQ(Scalar("SELECT LastUsed FROM Designs").Text(), "2026-03-10 12:00:00");
}

TEST_F(JobFormTest, PrintsWhatIsOutAsCodes) {
  const std::filesystem::path pdf = folder / "returns.pdf";
  desktop::RegisterReportsWindows(
      windows,
      {.printers = [] { return desktop::SystemPrinters{}; },
       .open = {},
       .chooseFile = [&](const desktop::FileChoice&, QWidget*) { return QString::fromStdString(pdf.string()); }});
  Add("J1", "RED", 10, 1);
  Open({{"JobNumber", "J1"}});
  WithModal([&] { Click(*form, "cmdBC_Report"); }, [](QWidget& dialog) { Click(dialog, "cmdPDF"); });
  const auto lines = LinesOf(ReadPdf(pdf).at(0));
  EXPECT_NE(std::ranges::find(lines, "Job Returns - Barcoded Data"), lines.end());
  EXPECT_NE(std::ranges::find(lines, "<LN>L1"), lines.end());
}

}  // namespace
}  // namespace vellumark::test
