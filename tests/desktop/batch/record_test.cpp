// The life of a Batch on the screen: made, saved, opened again, corrected, shared between jobs, left, deleted.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <map>
#include <random>

#include "bench_room.h"
#include "core/batch/actions.h"
#include "core/batch/record.h"
#include "core/colors/rename.h"
#include "core/inventory/lot_selection.h"
#include "desktop/inventory/register.h"
#include "desktop/kit/window.h"

namespace vellumark::test {
namespace {

const std::string kPad25(25, ' ');
const std::string kPad40(40, ' ');

struct BatchRecordTest : BenchRoom {
  BatchRecordTest() {
    Setting("InvCutoff", "0");
    Setting("AllowNegInv", "1");
  }

  std::int64_t Batches() { return Scalar("SELECT COUNT(*) FROM INK_Batch").Whole(); }
  Value Stored(const std::string& column, int batchNo = 1) {
    return Scalar("SELECT " + column + " FROM INK_Batch WHERE BatchNo = ?1", {batchNo});
  }
  /// "JOB A 3.000" for each row of the jobs, by number.
  Texts Jobs() {
    Texts jobs;
    Statement rows = session.File().Prepare("SELECT JobNumber, QtyUsed FROM JobRecords ORDER BY JobNumber");
    while (rows.Step()) jobs.push_back(rows.Text(0) + " " + Fixed(rows.Single(1), 3));
    return jobs;
  }
  void ExpectCleared() {
    EXPECT_EQ(Text("cmbColorName"), "");
    EXPECT_EQ(Text("txtQuantity"), "");
    EXPECT_TRUE(Rows().empty());
    EXPECT_EQ(FocusName(), "cmbColorName");
    EXPECT_FALSE(form->InEdit());
    EXPECT_FALSE(IsOn("cmdSave"));
  }
  void Save() { PressOn(Qt::Key_S, Qt::ControlModifier); }
  /// Batch 1: 10 of TARGET, mixed.
  void SaveTarget() {
    OpenTarget();
    Make("TARGET", "10", Qt::Key_F3);
    Save();
  }
  void AddDrier() {
    InDialog([&] { Click(*form, "ImgAdditions"); },
             [&](QWidget&) {
               TypeOn("DRIER");
               PressOn(Qt::Key_Return);
               TypeOn("0.25");
               PressOn(Qt::Key_Return);
               PressOn(Qt::Key_Return);
             });
  }
  void Go(const std::string& number) {
    PressOn(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(FocusName(), "txtBatchNo");
    TypeOn(number);
    PressOn(Qt::Key_Return);
  }
};

TEST_F(BatchRecordTest, MadeSavedCorrectedAndDeletedByKeyboard) {
  OpenTarget();
  Make("TARGET", "10", Qt::Key_F2);
  EXPECT_EQ(Control<CellButton>(*form, "lblInvQty").text(), "10.000");
  Save();
  ExpectCleared();
  EXPECT_EQ(Text("txtBatchNo"), "000002");
  EXPECT_EQ(Stored("Color_Name").Text(), "TARGET");
  EXPECT_EQ(Stored("ActualQuantity").Number(), 10);
  const char* const names[] = {"LEFTOVER", "RED", "BLUE", ""};
  const double amounts[] = {4, 4, 2, 0};
  const int types[] = {2, 1, 1, 1};
  for (int i = 0; i < 4; ++i) {
    const std::string n = std::to_string(i);
    EXPECT_EQ(Stored("IngName" + n).Text(), names[i]);
    EXPECT_EQ(Stored("IngQty" + n).Number(), amounts[i]);
    EXPECT_EQ(Stored("IngType" + n).Whole(), types[i]);
  }
  EXPECT_NEAR(Stored("PercentRec").Number(), 0.4, 1e-6);
  EXPECT_EQ(BasicStock("RED"), 96);
  EXPECT_EQ(BasicStock("BLUE"), 98);
  EXPECT_EQ(MixStock("LEFTOVER"), 0);
  EXPECT_EQ(MixStock("TARGET"), 10);

  // Opened, the stock is as it was before; changed and saved, it tells of the change.
  Go("1");
  EXPECT_EQ(FocusName(), "txtQuantity");
  EXPECT_EQ(Control<QLineEdit>(*form, "txtQuantity").selectedText(), "10.000");
  EXPECT_EQ(Rows(), (Texts{"Mix LEFTOVER 4.000 lb.", "Basic RED 4.000 lb.", "Basic BLUE 2.000 lb."}));
  EXPECT_EQ(BasicStock("RED"), 100);
  TypeOn("20");
  PressOn(Qt::Key_F3);
  EXPECT_EQ(Rows(), (Texts{"Basic RED 12.000 lb.", "Basic BLUE 8.000 lb."}));
  AddDrier();
  Save();
  ExpectCleared();
  EXPECT_EQ(Batches(), 1);
  EXPECT_EQ(Stored("ActualQuantity").Number(), 20.25);
  EXPECT_EQ(Stored("IngType2").Whole(), 3);
  EXPECT_EQ(BasicStock("RED"), 88);
  EXPECT_EQ(MixStock("LEFTOVER"), 4);
  EXPECT_EQ(BasicStock("DRIER"), 9.75F);
  EXPECT_EQ(MixStock("TARGET"), 20.25F);

  Go("1");
  prompt.Expect("Batch Window - Delete Batch?", Answer::Yes);
  prompt.Expect("Batch Window - Update Inventories?", Answer::Yes);
  PressOn(Qt::Key_D, Qt::ControlModifier);
  ExpectCleared();
  EXPECT_EQ(Batches(), 0);
  EXPECT_EQ(BasicStock("RED"), 100);
  EXPECT_EQ(BasicStock("DRIER"), 10);
  EXPECT_EQ(MixStock("LEFTOVER"), 4);
  EXPECT_EQ(MixStock("TARGET"), 0);
}

TEST_F(BatchRecordTest, TabPassesTheCommandBesideTheJobNumberAndEntersTheNumber) {
  OpenTarget();
  Make("TARGET", "10", Qt::Key_F3);
  Control(*form, "JobNumber").setFocus();
  TypeOn("JOB 9");
  PressOn(Qt::Key_Tab);
  PressOn(Qt::Key_Tab);
  EXPECT_EQ(FocusName(), "txtQtyUsed");
  EXPECT_EQ(Text("txtQtyUsed"), "10.000");
  TypeOn("6");
  EXPECT_EQ(Text("txtQtyUsed"), "6");
  PressOn(Qt::Key_Tab);
  EXPECT_EQ(Control<CellButton>(*form, "lblInvQty").text(), "4.000");
}

// A name given in another window is that of the Batch on the screen too: what is taken is taken from the colour.
TEST_F(BatchRecordTest, FollowsColorsThatAreRenamedBesideIt) {
  OpenTarget();
  Make("TARGET", "10", Qt::Key_F2);
  AddDrier();
  // Two names change places on the way.
  for (const auto& [from, to] :
       {std::pair{"RED", "CARMINE"}, std::pair{"BLUE", "RED"}, std::pair{"DRIER", "SICCATIVE"}})
    ASSERT_TRUE(RenameBasic(session, from, to)) << from;
  ASSERT_TRUE(RenameColor(session, "LEFTOVER", "REST"));
  ASSERT_TRUE(RenameColor(session, "TARGET", "PLUM"));
  Settle();
  EXPECT_EQ(Rows(), (Texts{"Mix REST 4.000 lb.", "Basic CARMINE 4.000 lb.", "Basic RED 2.000 lb.",
                           "Addition SICCATIVE 0.250 lb."}));
  EXPECT_EQ(Text("cmbColorName"), "PLUM");
  Save();
  ExpectCleared();
  EXPECT_EQ(BasicStock("CARMINE"), 96);
  EXPECT_EQ(BasicStock("RED"), 98);
  EXPECT_EQ(BasicStock("SICCATIVE"), 9.75F);
  EXPECT_EQ(MixStock("REST"), 0);
  EXPECT_EQ(MixStock("PLUM"), 10.25F);
  EXPECT_EQ(Stored("Color_Name").Text(), "PLUM");
}

// What is typed into the name and not entered is no Batch: it keeps no window open.
TEST_F(BatchRecordTest, ANameThatIsUnknownKeepsNoWindowOpen) {
  OpenTarget();
  form->FocusField("cmbColorName");
  TypeOn("NOBODY");
  EXPECT_TRUE(form->MayClose());
  Make("TARGET", "10", Qt::Key_F3);
  form->FocusField("cmbColorName");
  TypeOn("NOBODY");
  prompt.Expect("Batch Window - Save Information?", Answer::Yes);
  EXPECT_TRUE(form->MayClose());
  EXPECT_EQ(Stored("Color_Name").Text(), "TARGET");
  EXPECT_EQ(BasicStock("RED"), 94);
}

TEST_F(BatchRecordTest, TheRecycleListOfAnOpenedBatchTellsWhatCanBeRecycled) {
  SaveTarget();
  Go("1");
  // What the Batch itself put into stock is not offered.
  EXPECT_EQ(Listed(), (Texts{"TARGET 100.00% 0.000", "LEFTOVER 80.00% 4.000"}));
  Control<QCheckBox>(*form, "chkInvOnly").click();
  EXPECT_EQ(Listed(), (Texts{"LEFTOVER 80.00% 4.000"}));
  PressOn(Qt::Key_F2);
  EXPECT_EQ(Rows(), (Texts{"Mix LEFTOVER 4.000 lb.", "Basic RED 4.000 lb.", "Basic BLUE 2.000 lb."}));
  EXPECT_EQ(RecycleList().View().accessibleDescription(), "No other color in stock can be recycled");
  Control<QCheckBox>(*form, "chkInvOnly").click();
  ClickListed(0);
  EXPECT_EQ(Rows(), (Texts{"Mix LEFTOVER 4.000 lb.", "Mix TARGET 5.000 lb.", "Basic RED 1.000 lb."}));
  EXPECT_TRUE(Listed().empty());
  EXPECT_EQ(RecycleList().View().accessibleDescription(), "Every color that can be recycled is in the Batch");
  Picture(*form, "batch-all-recycled");
}

TEST_F(BatchRecordTest, AJobTakesWhatItUsesTheRestGoesToStock) {
  OpenTarget();
  Make("TARGET", "10", Qt::Key_F3);
  prompt.Expect("Batch Window - Specify a Job Number", Answer::Ok,
                "You must specify a Job Number before editing the Qty Used field.");
  Type(Control(*form, "txtQtyUsed"), "3");
  EXPECT_EQ(Text("txtQtyUsed"), "");
  EXPECT_EQ(FocusName(), "JobNumber");
  TypeOn("JOB A");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(FocusName(), "txtQtyUsed");
  EXPECT_EQ(Text("txtQtyUsed"), "10.000");
  EXPECT_EQ(Control<CellButton>(*form, "lblInvQty").text(), "0.000");
  prompt.Expect("Batch Window - Qty Used Too Large", Answer::Ok, "Qty Used must be less than Batch Quantity");
  TypeOn("10.001");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(FocusName(), "txtQtyUsed");
  prompt.Expect(
      "Invalid Job Quantity", Answer::Ok,
      "Qty Used cannot be set to zero if a Job Number is specified.\nClear the Job Number field to remove the "
      "Job Record.");
  TypeOn("0");
  PressOn(Qt::Key_Return);
  // A save reads what stands in the field first.
  prompt.Expect("Batch Window - Qty Used Too Large");
  TypeOn("11");
  Save();
  EXPECT_EQ(Batches(), 0);
  TypeOn("7.5");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(Control<CellButton>(*form, "lblInvQty").text(), "2.500");
  prompt.Expect("Option Must Be Checked", Answer::Ok, "This option must be checked when a Job Number is specified.");
  Click(*form, "chkReturnToInventory");
  EXPECT_TRUE(Control<QCheckBox>(*form, "chkReturnToInventory").isChecked());
  prompt.Expect("", Answer::Ok,
                "Batch Amount  =  Qty Used  +  Qty Returned To Inv\n                           or, in other words\nQty "
                "Returned To Inv  =  Batch Amount  --  Qty Used");
  Click(*form, "lblInvQty");
  Save();
  ExpectCleared();
  EXPECT_EQ(Jobs(), (Texts{"JOB A 7.500"}));
  EXPECT_EQ(MixStock("TARGET"), 2.5F);
  EXPECT_EQ(Stored("JobNumber").Text(), "JOB A");
}

TEST_F(BatchRecordTest, SplitOverThreeJobs) {
  OpenTarget();
  Make("TARGET", "10", Qt::Key_F3);
  InDialog([&] { PressOn(Qt::Key_F8); },
           [&](QWidget& dialog) {
             EXPECT_EQ(dialog.windowTitle(), " Split Jobs");
             EXPECT_EQ(FocusName(), "JobNumber0");
             const auto pair = [&](const char* job, const char* quantity) {
               TypeOn(job);
               PressOn(Qt::Key_Return);
               TypeOn(quantity);
               PressOn(Qt::Key_Return);
             };
             pair("A", "3");
             EXPECT_EQ(FocusName(), "JobNumber1");
             prompt.Expect("Batch Window - Invalid Quantity", Answer::Ok,
                           "You must enter an amount between 0 and 10.000");
             pair("B", "10.001");
             EXPECT_EQ(FocusName(), "txtQtyUsed1");
             TypeOn("4");
             PressOn(Qt::Key_Return);
             pair("a", "3.001");
             prompt.Expect("Duplicate Job Numbers", Answer::Ok, "You cannot have duplicate Job Numbers.");
             Click(dialog, "cmdSave");
             EXPECT_EQ(FocusName(), "JobNumber2");
             TypeOn("C");
             prompt.Expect("Batch Window - Invalid Quantity", Answer::Ok,
                           "The total quantity used for all jobs cannot exceed the batch quantity made.");
             Click(dialog, "cmdSave");
             EXPECT_EQ(FocusName(), "txtQtyUsed2");
             Picture(dialog, "split-jobs", {});
             TypeOn("3");
             PressOn(Qt::Key_S, Qt::ControlModifier);
           });
  EXPECT_EQ(Text("JobNumber"), "- SPLIT -");
  EXPECT_EQ(Text("txtQtyUsed"), "");
  prompt.Expect("Batch Window - Specify a Job Number", Answer::Ok, "Click the Split button to edit Qty Used.");
  Type(Control(*form, "txtQtyUsed"), "1");
  Save();
  EXPECT_EQ(Jobs(), (Texts{"A 3.000", "B 4.000", "C 3.000"}));
  EXPECT_EQ(MixStock("TARGET"), 0);

  // A smaller Batch loses the split; with one line left it is shown plainly.
  Go("1");
  EXPECT_EQ(Text("JobNumber"), "- SPLIT -");
  TypeOn("9");
  prompt.Expect("Re-enter Job Numbers", Answer::Ok,
                "Because you decreased the quantity of this batch,\nyou will have to re-enter your Job Numbers.");
  PressOn(Qt::Key_F3);
  EXPECT_EQ(Text("JobNumber"), "");
  InDialog([&] { PressOn(Qt::Key_F8); },
           [&](QWidget& dialog) {
             Fill(dialog, "JobNumber4", "D");
             Fill(dialog, "txtQtyUsed4", "2");
             EXPECT_EQ(Control<QLabel>(dialog, "lblInvQty").text(), "7.000");
             Click(dialog, "cmdSave");
           });
  EXPECT_EQ(Text("JobNumber"), "D");
  EXPECT_EQ(Text("txtQtyUsed"), "2.000");
  Save();
  EXPECT_EQ(Jobs(), (Texts{"D 2.000"}));
  EXPECT_EQ(MixStock("TARGET"), 7);
}

TEST_F(BatchRecordTest, EveryWayOutOfAChangedBatchAsks) {
  SaveTarget();
  const float red = BasicStock("RED");
  struct Way {
    const char* name;
    std::function<void()> leave;
    std::string title;
    std::string text;
    Answer stays;  ///< Cancel: this question has no answer that stays
    Answer goes;
  };
  const std::string save = "Batch Window - Save Information?";
  const std::vector<Way> ways{
      {"Next", [&] { PressOn(Qt::Key_PageUp); }, save, "Save this information?", Answer::Cancel, Answer::No},
      {"Previous", [&] { PressOn(Qt::Key_PageDown); }, save, "Save this information?", Answer::Cancel, Answer::No},
      {"Find", [&] { Go("1"); }, save, "Save this information?", Answer::Cancel, Answer::No},
      {"Cancel", [&] { Click(*form, "cmdCancel"); }, kPad40 + "Cancel?", "Cancel without saving changes?", Answer::No,
       Answer::Yes}};
  for (const Way& way : ways) {
    SCOPED_TRACE(way.name);
    Go("1");
    ASSERT_EQ(Rows().size(), 2U);
    EXPECT_EQ(BasicStock("RED"), red + 6) << "an open Batch holds its ingredients back";
    TypeOn("12");
    PressOn(Qt::Key_F3);
    if (way.stays != Answer::Cancel) {
      prompt.Expect(way.title, way.stays, way.text);
      way.leave();
      EXPECT_TRUE(form->InEdit());
    }
    prompt.Expect(way.title, way.goes, way.text);
    way.leave();
    if (form->InEdit()) Click(*form, "cmdCancel");  // Find came back to the same Batch
    ExpectCleared();
    EXPECT_EQ(BasicStock("RED"), red);
    EXPECT_EQ(Stored("Quantity").Number(), 10);
  }
  // Without a change nothing is asked.
  Go("1");
  PressOn(Qt::Key_PageUp);
  ExpectCleared();
  EXPECT_EQ(BasicStock("RED"), red);
  // Not worked out anew: it cannot be saved, so the close asks otherwise.
  Go("1");
  TypeOn("12");
  prompt.Expect(
      "Recalculate Batch", Answer::Ok,
      "You've changed the Quantity of this batch.\nClick the Recycle(F2) or Mix(F3) button to\nrecalculate the "
      "batch before saving the batch.");
  Save();
  EXPECT_EQ(FocusName(), "txtQuantity");
  PressOn(Qt::Key_F3);
  form->FocusField("txtQuantity");
  TypeOn("13");
  prompt.Expect(kPad40 + "Close?", Answer::No, "Close without saving changes?");
  EXPECT_FALSE(form->Leave());
  prompt.Expect(kPad40 + "Close?", Answer::Yes, "Close without saving changes?");
  EXPECT_TRUE(form->Leave());
  Settle();
  EXPECT_EQ(BasicStock("RED"), red);
}

TEST_F(BatchRecordTest, GuardsOfASavedBatch) {
  HaveTarget();
  session.support->settings.AppendSupportValue("BatchComplete", "1");
  Open();
  Make("TARGET", "10", Qt::Key_F3);
  EXPECT_TRUE(IsShown("chkComplete"));
  TypeOn("JOB A");  // nothing goes to stock that could be recycled
  prompt.Expect("Batch Completion State            ", Answer::No, "Mark this Batch as Complete?");
  Save();

  // Of an earlier day: asked once for the record.
  clock.Set({2026, 3, 11, 9, 0, 0});
  Go("1");
  prompt.Expect(
      "Allow Editing?", Answer::No,
      "Editing this Batch Record will alter the results\nof your Production and Consumption Reports.\n\nDo you "
      "wish to continue?");
  PressOn(Qt::Key_F2);
  EXPECT_EQ(Rows().size(), 2U);
  prompt.Expect("Allow Editing?", Answer::Yes);
  PressOn(Qt::Key_F2);
  EXPECT_EQ(Rows().size(), 3U);
  PressOn(Qt::Key_F3);

  // Complete: nothing of it is changed or deleted.
  Click(*form, "chkComplete");
  prompt.Expect("Completed Batch - Changes Not Allowed", Answer::Ok,
                "This Batch is marked as Complete.\n\nUncheck Complete to edit the batch.");
  PressOn(Qt::Key_F2);
  prompt.Expect("Completed Batch - Changes Not Allowed");
  PressOn(Qt::Key_D, Qt::ControlModifier);
  EXPECT_EQ(Batches(), 1);
  Save();
  EXPECT_TRUE(Stored("Complete").Whole() != 0);

  // Of a formula that was changed since.
  Go("1");
  Click(*form, "chkComplete");
  prompt.Expect("Batch Completion State            ", Answer::No);
  Save();
  session.File().Execute("UPDATE INK_Mix SET Date_Entered = '2026-03-12 00:00:00' WHERE Color_Name = 'TARGET'");
  Go("1");
  EXPECT_TRUE(IsShown("ImgModifiedFormula"));
  prompt.Expect("Batches Window - Edit State", Answer::Ok,
                "This Batch is no longer editable.\nA Master Formula associated with this Batch has been deleted or "
                "modified\nsince this Batch was saved.");
  PressOn(Qt::Key_F2);
  Click(*form, "cmdCancel");

  prompt.Expect("Batch Not Found");
  Go("77");
}

// What could not be kept is not taken: the fields of a Batch that is complete, or whose formula was changed since, are
// read-only; those of an earlier day ask first.
TEST_F(BatchRecordTest, FieldsOfABatchThatTakesNoChangeAreReadOnly) {
  HaveTarget();
  session.support->settings.AppendSupportValue("BatchComplete", "1");
  Setting("InvLotTracking", "1");
  Setting("BatchLotNumReminder", "0");
  Open();
  Make("TARGET", "10", Qt::Key_F3);
  prompt.Expect("Batch Completion State            ", Answer::No);
  Save();
  const std::map<std::string, const char*> lines{{"JobNumber", "job"},     {"txtQtyUsed", "3"},  {"LotNumber", "lot"},
                                                 {"LotLocation", "shelf"}, {"LotContID", "box"}, {"txtShortNote", "n"},
                                                 {"txtQuantity", "12"}};
  const auto expectReadOnly = [&](bool readOnly) {
    for (const auto& [name, typed] : lines) {
      auto& field = Control<QLineEdit>(*form, name.c_str());
      EXPECT_EQ(field.isReadOnly(), readOnly) << name;
    }
    for (const char* name : {"txtNotes", "txtIngNotes"})
      EXPECT_EQ(Control<QPlainTextEdit>(*form, name).isReadOnly(), readOnly) << name;
    for (const char* name : {"cmdSplitJobs", "chkReturnToInventory"}) EXPECT_EQ(IsOn(name), !readOnly) << name;
  };
  Go("1");
  expectReadOnly(false);
  Click(*form, "chkComplete");
  expectReadOnly(true);
  for (const auto& [name, typed] : lines) {
    const std::string before = Text(name.c_str());
    Control(*form, name.c_str()).setFocus();
    TypeOn(typed);
    EXPECT_EQ(Text(name.c_str()), before) << name;
  }
  Picture(*form, "batch-read-only");
  Click(*form, "chkComplete");
  expectReadOnly(false);

  // Of an earlier day: the first key asks, and is taken back with No.
  PressOn(Qt::Key_F12);
  clock.Set({2026, 3, 11, 9, 0, 0});
  Go("1");
  prompt.Expect("Allow Editing?", Answer::No);
  Fill(*form, "LotNumber", "L");
  EXPECT_EQ(Text("LotNumber"), "");
  prompt.Expect("Allow Editing?", Answer::Yes);
  Fill(*form, "LotNumber", "L");
  EXPECT_EQ(Text("LotNumber"), "L");
  Fill(*form, "txtShortNote", "asked once");
  prompt.Expect(kPad40 + "Cancel?", Answer::Yes);
  Click(*form, "cmdCancel");

  session.File().Execute("UPDATE INK_Mix SET Date_Entered = '2026-03-12 00:00:00' WHERE Color_Name = 'TARGET'");
  Go("1");
  expectReadOnly(true);
  Click(*form, "cmdCancel");
}

// All of the red lies in a lot: before the save the operator hears that there is none beside it, and is led there.
TEST_F(BatchRecordTest, StockThatIsShortLeadsToTheLots) {
  HaveTarget();
  desktop::RegisterInventoryWindows(windows);
  Setting("AllowNegInv", "0");
  Setting("InvLotTracking", "1");
  Setting("BatchLotNumReminder", "0");
  HaveStock(ColorKind::Basic, 0);
  AddRow(schema::BasicLotInv, {{"LotRefID", 1}, {"LotCName", "RED"}, {"LotNumber", "L1"}, {"LotQty", 171.25F}});
  Open();
  Make("TARGET", "10", Qt::Key_F3);
  const std::string title = "Batch Window - Inventory Too Low";
  const std::string text =
      "The Batch takes more from inventory than is there:\n\n"
      "RED: 6.000 lb. needed, 0.000 in Unlotted Inv., 171.250 in lots not chosen\n\n"
      "Only what is there is taken.\n\nChoose lots before the Batch is saved?";
  prompt.Expect(title, Answer::Yes, text);
  InDialog([&] { Save(); },
           [&](QWidget& selector) {
             EXPECT_EQ(selector.objectName(), "BatchLotInvSelector");
             prompt.Expect("Cancel Without Saving Changes?", Answer::Yes);
             Click(selector, "cmdCancel");
           });
  EXPECT_EQ(Batches(), 0);
  EXPECT_EQ(Rows().size(), 2U);
  prompt.Expect(title, Answer::No, text);
  Save();
  EXPECT_EQ(Batches(), 1);
  Go("1");
  prompt.Expect("Batch Window - Delete Batch?", Answer::Yes);
  prompt.Expect("Batch Window - Update Inventories?", Answer::Yes);
  PressOn(Qt::Key_D, Qt::ControlModifier);
  EXPECT_EQ(BasicStock("RED"), 0);
  EXPECT_EQ(Scalar("SELECT LotQty FROM INK_Basic_LotInv").Number(), 171.25);
}

TEST_F(BatchRecordTest, DeletingReturnsTheIngredientsOrNot) {
  HaveTarget();
  for (const Answer answer : {Answer::Yes, Answer::No}) {
    const float red = BasicStock("RED");
    const int number = static_cast<int>(Scalar("SELECT BatchNumber FROM FileInfo").Whole());
    Open();
    Make("TARGET", "10", Qt::Key_F3);
    Save();
    EXPECT_EQ(MixStock("TARGET"), 10);
    Go(std::to_string(number));
    prompt.Expect("Batch Window - Delete Batch?", Answer::No,
                  "Deleting this Batch will alter Production and Consumption Reports.\n\nDelete this Batch?");
    PressOn(Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(Batches(), 1);
    prompt.Expect("Batch Window - Delete Batch?", Answer::Yes);
    prompt.Expect("Batch Window - Update Inventories?", answer, "Return ingredients to inventory?");
    PressOn(Qt::Key_D, Qt::ControlModifier);
    ExpectCleared();
    EXPECT_EQ(Batches(), 0);
    EXPECT_EQ(MixStock("TARGET"), 0);
    EXPECT_EQ(BasicStock("RED"), answer == Answer::Yes ? red : red - 6);
  }
}

TEST_F(BatchRecordTest, SaveAndHoldStaysAndNextWalks) {
  OpenTarget();
  for (const char* quantity : {"10", "11"}) {
    Make("TARGET", quantity, Qt::Key_F3);
    Save();
  }
  Make("TARGET", "12", Qt::Key_F3);
  PressOn(Qt::Key_F12);
  EXPECT_EQ(Batches(), 3);
  EXPECT_EQ(Text("txtBatchNo"), "000003");
  EXPECT_TRUE(IsOn("cmdDelete"));
  EXPECT_EQ(FocusName(), "txtQuantity");
  PressOn(Qt::Key_PageDown);
  EXPECT_EQ(Text("txtBatchNo"), "000002");
  EXPECT_EQ(Text("txtQuantity"), "11.000");
  PressOn(Qt::Key_PageDown);
  EXPECT_EQ(Text("txtBatchNo"), "000001");
  PressOn(Qt::Key_PageDown);
  ExpectCleared();
  EXPECT_EQ(Text("txtBatchNo"), "000004");
  PressOn(Qt::Key_PageDown);
  EXPECT_EQ(Text("txtBatchNo"), "000003");
  EXPECT_TRUE(Control<QLineEdit>(*form, "cmbColorName").isReadOnly());
}

TEST_F(BatchRecordTest, EnterAloneGoesThroughTheFieldsToTheSave) {
  HaveTarget();
  Setting("BatchActionButton", "0");
  Open();
  TypeOn("TARGET");
  PressOn(Qt::Key_Return);
  TypeOn("10");
  PressOn(Qt::Key_Return);
  TypeOn("JOB 7");
  for (const char* next : {"txtQtyUsed", "chkReturnToInventory"}) {
    PressOn(Qt::Key_Return);
    EXPECT_EQ(FocusName(), next);
  }
  PressOn(Qt::Key_Return);
  ExpectCleared();
  EXPECT_EQ(Jobs(), (Texts{"JOB 7 10.000"}));
}

TEST_F(BatchRecordTest, ABatchOfNothingIsNotSaved) {
  OpenTarget();
  Make("TARGET", "0.0004", Qt::Key_F3);
  EXPECT_EQ(Control<CellButton>(*form, "lblTotal").text(), "0.000");
  prompt.Expect(kPad40 + "Save Batch", Answer::Ok,
                "Can't Save this batch.\nBatch total must be greater than zero.\n\nRevise recipe and Save again.");
  Save();
  prompt.Expect(kPad40 + "Update Batch", Answer::Yes,
                "Batch total must be greater than zero.\nRevise and fix the recipe?");
  PressOn(Qt::Key_PageUp);
  EXPECT_TRUE(form->InEdit());
  prompt.Expect(kPad40 + "Update Batch", Answer::No);
  PressOn(Qt::Key_PageUp);
  ExpectCleared();
  EXPECT_EQ(Batches(), 0);
}

TEST_F(BatchRecordTest, RequiredFieldsAreShownWhereTheyAreFilledIn) {
  HaveTarget();
  session.support->settings.AppendSupportValue("BatchUDTxtRequired2", "1");
  Open();
  Make("TARGET", "10", Qt::Key_F3);
  prompt.Expect("More Data Incomplete", Answer::Ok,
                "Required User Defined Text Fields Incomplete.\nPress More Data and complete.");
  Save();
  EXPECT_EQ(FocusName(), "cmdMoreData");
  EXPECT_EQ(Batches(), 0);
}

TEST_F(BatchRecordTest, TenBatchesOfTheSampleRoom) {
  HaveSampleInkRoom(*this, 4.5F);
  HaveStock(ColorKind::Basic, 500);
  Open();
  Statement names = session.File().Prepare("SELECT Color_Name FROM INK_Mix ORDER BY Color_Name LIMIT 10 OFFSET 7");
  Texts formulas;
  while (names.Step()) formulas.push_back(names.Text(0));
  names.Reset();
  for (const std::string& formula : formulas) {
    SCOPED_TRACE(formula);
    // What the core alone makes of it.
    BatchWork work = NewBatchWork(session);
    work.Color_Name = formula;
    work.QuantityText = "12.5";
    ASSERT_TRUE(RecycleAction(session, work));
    Texts lines;
    for (const BatchRow& row : work.Rows)
      lines.push_back(std::string(LineKindName(row.kind)) + " " + row.name + " " + Fixed(row.amount, 3) + " lb.");
    Make(formula, "12.5", Qt::Key_F2);
    EXPECT_EQ(Rows(), lines);
    Save();
    ExpectCleared();
  }
  EXPECT_EQ(Batches(), 10);
  // Looked through from the last to the first, nothing is another one afterwards.
  const std::string sums =
      "SELECT (SELECT SUM(Inventory) FROM INK_Basic) || ' ' || (SELECT SUM(Inventory) FROM INK_Mix)";
  const std::string before = Scalar(sums).Text();
  for (int i = 10; i >= 1; --i) {
    PressOn(Qt::Key_PageDown);
    EXPECT_EQ(Text("cmbColorName"), formulas[static_cast<std::size_t>(i) - 1]);
  }
  PressOn(Qt::Key_PageDown);
  ExpectCleared();
  EXPECT_EQ(Scalar(sums).Text(), before);
}

/// Stands for the window in which lots are chosen: takes the whole need from Unlotted Inventory.
struct ChoosesUnlotted : desktop::Dialog {
  ChoosesUnlotted(desktop::WindowList& list, QWidget* owner) : Dialog(list, owner, "BatchLotInvSelector", "Lots") {
    new QLineEdit(this);
  }
  void OnOpen(const desktop::Arguments& arguments) override {
    asked.push_back(arguments.Text("IngName") + " " + std::string(LineKindName(arguments.Get<LineKind>("Kind"))) + " " +
                    Fixed(arguments.Get<double>("IngQty"), 3));
    LotSelection chosen;
    chosen.uses.push_back(
        {.LotNumber = "Unlotted Inv.", .LotQty = static_cast<float>(arguments.Get<double>("IngQty"))});
    result.Set("Selection", chosen);
    QTimer::singleShot(0, this, [this] { accept(); });
  }
  static inline Texts asked;
};

TEST_F(BatchRecordTest, LotsAreChosenRowByRow) {
  HaveTarget();
  Setting("InvLotTracking", "1");
  Setting("InvRecordMethod", "1");
  Setting("BatchLotNumReminder", "0");
  ChoosesUnlotted::asked.clear();
  windows.RegisterDialog("BatchLotInvSelector", [](desktop::WindowList& list, QWidget* owner) -> desktop::Dialog* {
    return new ChoosesUnlotted(list, owner);
  });
  Open();
  Make("TARGET", "10", Qt::Key_F2);
  EXPECT_EQ(FocusName(), "lblLot0");
  for (const char* next : {"lblLot1", "lblLot2", "JobNumber"}) {
    PressOn(Qt::Key_Return);
    ShowActive(*form);
    EXPECT_EQ(FocusName(), next);
  }
  EXPECT_EQ(ChoosesUnlotted::asked, (Texts{"LEFTOVER Mix 4.000", "RED Basic 4.000", "BLUE Basic 2.000"}));
  EXPECT_EQ(Cell("lblLot", 0).text(), QString::fromUtf8("Lot ✓"));
  Fill(*form, "LotNumber", "L-77");
  Fill(*form, "LotLocation", "SHELF 3");
  Save();
  EXPECT_EQ(Scalar("SELECT LotLoc FROM INK_Mix_LotInv WHERE LotNumber = 'L-77'").Text(), "SHELF 3");
  EXPECT_EQ(BasicStock("RED"), 96);
  EXPECT_EQ(MixStock("LEFTOVER"), 0);

  // A negative addition brings a need to nothing, and is told to touch what was chosen.
  Make("TARGET", "10", Qt::Key_F3);
  prompt.Expect("Re-enter Inventory Lot Selections", Answer::Ok,
                "This negative Batch Addition can impact prior Inv. Lot Selections.\nThe Basic Color that matches this "
                "negative Batch Addition,\nmay need to have its Lotted Inventory selections updated.");
  InDialog([&] { Click(*form, "ImgAdditions"); },
           [&](QWidget&) {
             TypeOn("BLUE");
             PressOn(Qt::Key_Return);
             TypeOn("-4");
             PressOn(Qt::Key_Return);
             PressOn(Qt::Key_Return);
           });
  ASSERT_EQ(Rows(), (Texts{"Basic RED 6.000 lb.", "Basic BLUE 4.000 lb.", "Addition BLUE -4.000 lb."}));
  EXPECT_FALSE(Cell("lblLot", 2).isVisible());
  prompt.Expect(kPad40 + "Lot Selection Disabled", Answer::Ok,
                "A negative Batch Addition has been applied to this color.\n\nIt has created a Zero Quantity for the "
                "Ingredient.");
  Click(Cell("lblLot", 1));
  prompt.Expect(kPad40 + "Cancel?", Answer::Yes);
  Click(*form, "cmdCancel");

  // Nothing goes to stock, so there is no lot whose place could be kept.
  Make("TARGET", "10", Qt::Key_F3);
  Fill(*form, "JobNumber", "J");
  Fill(*form, "LotLocation", "SHELF 3");
  prompt.Expect(kPad25 + "Lotted Inv. Details", Answer::Yes, "Change Qty to Inv so these items can be saved?");
  Save();
  EXPECT_EQ(Batches(), 1);
}

TEST_F(BatchRecordTest, OtherWindowsSeeThatItIsInEdit) {
  OpenTarget();
  EXPECT_FALSE(windows.IsInEdit("BatchForm"));
  Fill(*form, "cmbColorName", "TARGET");
  EXPECT_FALSE(windows.IsInEdit("BatchForm"));
  Make("TARGET", "10", Qt::Key_F3);
  EXPECT_TRUE(windows.IsInEdit("BatchForm"));
  Save();
  EXPECT_FALSE(windows.IsInEdit("BatchForm"));
  windows.OpenForm("BatchForm", {{"BatchNo", 1}});
  EXPECT_TRUE(windows.IsInEdit("BatchForm"));
  // Somebody who must not see prices logs in.
  EXPECT_FALSE(Label("lblCostOfBatch").empty());
  session.Perm_Costs = 0;
  form->UpdateUserPriviledges();
  EXPECT_FALSE(Control(*form, "lblCostOfBatch").isVisibleTo(form));
}

TEST_F(BatchRecordTest, ABatchWindowThatClosesWithTheProgramTakesItsIngredientsAgain) {
  OpenTarget();
  Make("TARGET", "10", Qt::Key_F2);
  Save();
  const float red = BasicStock("RED");
  Go("1");
  EXPECT_NE(BasicStock("RED"), red);
  EXPECT_TRUE(windows.CloseChildWindows());
  Settle();
  EXPECT_EQ(BasicStock("RED"), red);
  EXPECT_EQ(MixStock("LEFTOVER"), 0);
}

TEST_F(BatchRecordTest, TheWindowsAroundItOpenOnThisBatch) {
  OpenTarget();
  Make("TARGET", "10", Qt::Key_F3);
  struct Way {
    int tab;
    const char* button;
    const char* window;
    const char* leave;
  };
  for (const Way& way :
       {Way{1, "cmdCostInf", "CostInfForm", "cmdClose"}, Way{1, "cmdVOC_HAP", "VOC_HAP_CalcForm", "cmdCancel"},
        Way{2, "cmdMoreData", "MoreDataForm", "cmdCancel"}, Way{0, "cmdSettings", "BatchSettingsForm", "cmdCancel"}}) {
    SCOPED_TRACE(way.button);
    Control<QTabWidget>(*form, "TabBatch").setCurrentIndex(way.tab);
    InDialog([&] { Click(*form, way.button); },
             [&](QWidget& dialog) {
               EXPECT_EQ(dialog.objectName(), way.window);
               Click(dialog, way.leave);
             });
    EXPECT_EQ(Rows().size(), 2U);
  }
  Save();
  Make("TARGET", "11", Qt::Key_F3);
  Save();
  // The recent Batches, newest first.
  InDialog([&] { PressOn(Qt::Key_R, Qt::ControlModifier); }, [&](QWidget&) { PressOn(Qt::Key_Return); });
  EXPECT_EQ(Text("txtBatchNo"), "000002");
}

TEST_F(BatchRecordTest, AFullDiskKeepsTheBatchOnTheScreen) {
  OpenTarget();
  Make("TARGET", "10", Qt::Key_F3);
  Control<QPlainTextEdit>(*form, "txtNotes").setPlainText(QString(400000, 'x'));
  const float red = BasicStock("RED");
  session.File().Execute("PRAGMA max_page_count = " + std::to_string(Scalar("PRAGMA page_count").Whole()));
  prompt.Expect("Batch Window - Save Information?", Answer::Yes);
  prompt.Expect(session.DataFileName);
  EXPECT_FALSE(form->Leave());
  EXPECT_TRUE(form->InEdit());
  EXPECT_EQ(Rows().size(), 2U);
  EXPECT_EQ(Batches(), 0);
  EXPECT_EQ(BasicStock("RED"), red);
  session.File().Execute("PRAGMA max_page_count = 1000000");
  prompt.Expect("Batch Window - Save Information?", Answer::Yes);
  EXPECT_TRUE(form->Leave());
  Settle();
  EXPECT_EQ(Batches(), 1);
  EXPECT_EQ(BasicStock("RED"), red - 6);
}

/// An operator who answers whatever comes to mind.
struct RandomPrompt final : Prompt {
  Answer Show(const Message& message) override {
    log += "\n    " + message.title;
    if (message.buttons == Buttons::Ok) return Answer::Ok;
    if (message.title.ends_with("Update Inventories?")) return Answer::Yes;
    return random() % 2 == 0 ? Answer::Yes : Answer::No;
  }
  std::mt19937 random{20260310};
  std::string log;
};

/// What stock must be, by what the stored Batches took and made.
struct Books {
  std::map<std::string, double> basics;
  std::map<std::string, double> mixes;
};

TEST_F(BatchRecordTest, ARandomOperatorNeverLosesInk) {
  HaveTarget();
  Mix("THIRD", {{"RED", 20}, {"BLUE", 70}, {"DRIER", 10}}, {{"Recycle", true}, {"Inventory", 1000.0F}});
  // A recycled ink that a Batch takes more of than there is counts as used up. Here there is always enough.
  HaveStock(ColorKind::Mix, 1000);
  session.File().Execute("UPDATE INK_Mix SET Recycle = (Color_Name <> 'TARGET')");
  const std::map<std::string, double> basics{{"RED", 100}, {"BLUE", 100}, {"DRIER", 10}};
  const std::map<std::string, double> mixes{{"TARGET", 1000}, {"LEFTOVER", 1000}, {"THIRD", 1000}};
  RandomPrompt who;
  AnswerBy(who);
  Open();
  const auto pick = [&](int most) { return std::uniform_int_distribution<int>(0, most - 1)(who.random); };
  const auto stock = [&] {
    Books books;
    for (const auto& [name, amount] : basics) books.basics[name] = BasicStock(name);
    for (const auto& [name, amount] : mixes) books.mixes[name] = MixStock(name);
    return books;
  };
  const auto expected = [&] {
    Books books{basics, mixes};
    Statement took = At().File().Prepare("SELECT IngName, IngType, LotQty FROM INK_Batch_LotInv");
    while (took.Step()) (took.Whole(1) == 2 ? books.mixes : books.basics)[took.Text(0)] -= took.Single(2);
    Statement made = At().File().Prepare(
        "SELECT Color_Name, ActualQuantity - IFNULL((SELECT SUM(QtyUsed) FROM JobRecords WHERE JobRecords.BatchNo = "
        "INK_Batch.BatchNo), 0) FROM INK_Batch");
    while (made.Step()) books.mixes[made.Text(0)] += made.Single(1);
    return books;
  };
  const auto dialog = [&](const std::function<void()>& act, const std::string& typed) {
    // It may be refused; then nothing opens.
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
      QWidget* modal = QApplication::activeModalWidget();
      if (modal == nullptr || QApplication::focusWidget() == nullptr) return;
      poll.stop();
      TypeOn(typed);
      PressOn(Qt::Key_Return);
      if (QWidget* still = QApplication::activeModalWidget()) Click(*still, "cmdCancel");
    });
    poll.start(2);
    act();
    poll.stop();
    ShowActive(*form);
  };
  const auto lastBatch = [&] {
    return static_cast<int>(Scalar("SELECT IFNULL(MAX(BatchNo), 0) FROM INK_Batch").Whole());
  };
  std::int64_t lastNumber = 0;
  for (int act = 0; act < 400; ++act) {
    const int what = pick(13);
    who.log += "\n" + std::to_string(act) + ": act " + std::to_string(what);
    const std::string quantity = Fixed(0.5 + pick(200) / 10.0, 1);
    if (what <= 1 && !form->InEdit()) {
      Make(pick(3) == 0 ? "THIRD" : "TARGET", quantity, pick(2) == 0 ? Qt::Key_F2 : Qt::Key_F3);
    } else if (what == 2) {
      form->FocusField("txtQuantity");
      TypeOn(quantity);
      PressOn(pick(2) == 0 ? Qt::Key_F2 : Qt::Key_F3);
    } else if (what == 3 && !Rows().empty()) {
      dialog([&] { Click(Cell("lblAmount", pick(static_cast<int>(Rows().size())))); }, Fixed(pick(30) / 10.0, 1));
    } else if (what == 4 && !Listed().empty()) {
      ClickListed(pick(static_cast<int>(Listed().size())));
    } else if (what == 5 && IsOn("JobNumber")) {
      Fill(*form, "JobNumber", pick(3) == 0 ? "" : "JOB " + std::to_string(pick(3)));
    } else if (what == 6 && IsOn("txtQtyUsed") && !Text("JobNumber").empty()) {
      Fill(*form, "txtQtyUsed", quantity);
      Press(Control(*form, "txtQtyUsed"), Qt::Key_A, Qt::ControlModifier);
    } else if (what <= 8) {
      Save();
    } else if (what == 9 && lastBatch() > 0) {
      PressOn(Qt::Key_F, Qt::ControlModifier);
      // An amount that was refused holds the focus.
      if (FocusName() == "txtBatchNo") {
        TypeOn(std::to_string(1 + pick(lastBatch())));
        PressOn(Qt::Key_Return);
      }
    } else if (what == 10) {
      PressOn(pick(2) == 0 ? Qt::Key_PageUp : Qt::Key_PageDown);
    } else if (what == 11) {
      Click(*form, "cmdCancel");
    } else if (what == 12 && IsOn("cmdDelete") && pick(3) == 0) {
      PressOn(Qt::Key_D, Qt::ControlModifier);
    }
    if (!form->InEdit()) {
      const Books have = stock();
      const Books want = expected();
      for (const auto& [name, amount] : want.basics) ASSERT_NEAR(have.basics.at(name), amount, 0.02) << name << who.log;
      for (const auto& [name, amount] : want.mixes) ASSERT_NEAR(have.mixes.at(name), amount, 0.02) << name << who.log;
    }
    const std::int64_t number = Scalar("SELECT BatchNumber FROM FileInfo").Whole();
    ASSERT_GE(number, lastNumber);
    lastNumber = number;
    ASSERT_EQ(Scalar("SELECT COUNT(*) FROM (SELECT 1 FROM INK_Batch GROUP BY BatchNo HAVING COUNT(*) > 1)").Whole(), 0);
  }
  EXPECT_GT(lastNumber, 10);
  delete form;
}

}  // namespace
}  // namespace vellumark::test
