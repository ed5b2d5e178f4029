#include "core/batch/bench.h"
#include "core/batch/more_data.h"
#include "desktop/batch/batch_window_dialogs.h"
#include "desktop/batch/side_room.h"

namespace vellumark::test {
namespace {

/// The windows that stand between the Batch and its save: more data, the lot number reminder, what additions do to the
/// formula.
struct SavingWindowsTest : SideRoom {
  SavingWindowsTest() {
    record = NewBatchRecord(session);
    EXPECT_TRUE(EnterBatchColor(session, record, "TARGET"));
    record.work.QuantityText = "100";
    EXPECT_TRUE(MixBatch(session, record));
    EXPECT_TRUE(AddBatchAdditions(session, record, {{"DRIER", "2"}}));
  }

  BatchRecord record;
  desktop::BatchWindowDialogs dialogs{windows};
};

TEST_F(SavingWindowsTest, MoreDataIsTakenByKeyboard) {
  Setting("BatchCustomTextLabelCaption0", "Press & unit");
  Setting("BatchUDTxtRequired0", "1");
  Setting("Batches_UDNum_Format0", "1");
  AddRow(schema::MixLab, {{"Color_Name", "TARGET"}, {"Lab_LS", "D50"}, {"Lab_PT", "Coated"}});
  record.fields.UD_Text[1] = "as stored";
  EXPECT_TRUE(Run("MoreDataForm", {{"Record", &record}}, [&](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "More Data");
    EXPECT_EQ(FocusName(), "txtUDText0");
    EXPECT_EQ(TextOf(dialog, "lblRequired0"), "required");
    EXPECT_EQ(Typed(dialog, "txtUDText1"), "as stored");
    EXPECT_NE(Says(dialog).find("Press && unit"), std::string::npos) << "the caption's & is shown";
    TypeOn("Press 4");
    EXPECT_EQ(TextOf(dialog, "lblRequired0"), "");
    Fill(dialog, "txtUDNumeric0", "12.34");
    Fill(dialog, "txtUDNumeric1", "");
    Fill(dialog, "txt_L", "52.125");
    Fill(dialog, "txt_a", "-3.5");
    Press(Control(dialog, "cmb_LS"), Qt::Key_Down);
    EXPECT_EQ(Control<QComboBox>(dialog, "cmb_LS").currentText(), "D50") << "known from measurements";
    Fill(dialog, "txt_Note", "first pull");
    Picture(dialog, "batch-more-data", {});
    Click(dialog, "cmdOK");
  }));
  const BatchFields& fields = record.fields;
  EXPECT_EQ(fields.UD_Text[0], "Press 4");
  EXPECT_EQ(fields.UD_Numeric[0], 12.3F);
  EXPECT_EQ(fields.UD_Numeric[1], 0);
  EXPECT_EQ(fields.Lab_L, 52.13F);
  EXPECT_EQ(fields.Lab_a, -3.5F);
  EXPECT_EQ(fields.Lab_LS, "D50");
  EXPECT_EQ(fields.Lab_Note, "first pull");
  std::vector<std::string> lines;
  for (const DataLine& line : UserDataLines(session, fields)) lines.push_back(line.caption + ": " + line.value);
  for (const DataLine& line : LabLines(session, fields)) lines.push_back(line.caption + ": " + line.value);
  EXPECT_EQ(lines, (std::vector<std::string>{"Press & unit: Press 4", "Text Lbl2: as stored", "Num Lbl1: 12.3",
                                             "L: 52.13", "a: -3.50", "Light Source: D50", "Lab Note: first pull"}));
}

TEST_F(SavingWindowsTest, ABadNumberOfMoreDataLeavesTheBatchAsItWas) {
  record.fields.UD_Text[0] = "before";
  const BatchFields before = record.fields;
  struct Case {
    const char* field;
    const char* typed;
    const char* title;
    const char* text;
  };
  const std::vector<Case> cases{
      {"txtUDNumeric3", "1.2.3", "Invalid Amount", "1.2.3 is not a valid amount. Please enter a valid amount."},
      {"txt_D", "100000", "                              Lab Values",
       "You must enter an amount between\n-99999 and 99999"},
  };
  EXPECT_FALSE(Run("MoreDataForm", {{"Record", &record}}, [&](QWidget& dialog) {
    Fill(dialog, "txtUDText0", "after");
    for (const Case& each : cases) {
      SCOPED_TRACE(each.field);
      Fill(dialog, each.field, each.typed);
      prompt.Expect(each.title, Answer::Ok, each.text);
      Click(dialog, "cmdOK");
      EXPECT_EQ(FocusName(), each.field);
      EXPECT_EQ(record.fields, before);
      Fill(dialog, each.field, "1");
    }
    prompt.Expect("Cancel Without Saving Changes?", Answer::No, "Cancel without saving changes?");
    Press(dialog, Qt::Key_Escape);
    EXPECT_TRUE(dialog.isVisible());
    prompt.Expect("Cancel Without Saving Changes?", Answer::Yes);
    Press(dialog, Qt::Key_Escape);
  }));
  EXPECT_EQ(record.fields, before);
}

TEST_F(SavingWindowsTest, TheReminderIsAnsweredOrTheOperatorStays) {
  const auto answer = [&](const std::function<void(QWidget&)>& inside) {
    LotReminderAnswer given;
    WithModal([&] { given = dialogs.ShowLotNumReminder(); }, inside);
    return given;
  };
  const LotReminderAnswer goOn = answer([&](QWidget& dialog) {
    for (const char* text : {"Lotted Inventory is turned on!", "1)  Batches should be assigned a Lot Number.",
                             "2)  Click         to select Inventory used in a Batch.", "Return to Batch and update?"})
      EXPECT_NE(Says(dialog).find("\n" + std::string(text) + "\n"), std::string::npos) << text;
    EXPECT_EQ(Control<QCheckBox>(dialog, "chkDontShow").text().remove('&'), "Do not show this reminder again.");
    Click(dialog, "chkDontShow");
    Picture(dialog, "batch-lot-reminder", {});
    PressOn(Qt::Key_N, Qt::AltModifier);
    WaitFor([&] { return !dialog.isVisible(); });
  });
  EXPECT_FALSE(goOn.returnToBatch);
  EXPECT_TRUE(goOn.dontShowAgain);
  const LotReminderAnswer back = answer([](QWidget& dialog) {
    PressOn(Qt::Key_Y, Qt::AltModifier);
    WaitFor([&] { return !dialog.isVisible(); });
  });
  EXPECT_TRUE(back.returnToBatch);
  EXPECT_FALSE(back.dontShowAgain);
  EXPECT_TRUE(answer([](QWidget& dialog) { Press(dialog, Qt::Key_Escape); }).returnToBatch);
}

TEST_F(SavingWindowsTest, ABatchWithAdditionsOffersThreeActions) {
  std::optional<ModifiedBatchChoice> choice;
  const auto offer = [&](const std::function<void(QWidget&)>& inside) {
    WithModal([&] { choice = dialogs.ShowSaveModifiedBatch(session, record); }, inside);
  };
  offer([&](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), " Saving Batch with Additions");
    const std::vector<std::pair<const char*, const char*>> actions{
        {"optSaveBatch", "Save the Batch Recipe,     Master Formula will not be changed."},
        {"optUpdateFormula", "Save the Batch Recipe,     Master Formula will be updated with these Batch Additions."},
        {"optNewFormula", "Save the Batch Recipe,     A New Master Formula will be created from this Batch Recipe"}};
    for (const auto& [name, text] : actions) EXPECT_EQ(Control<QRadioButton>(dialog, name).text().toStdString(), text);
    EXPECT_NE(Says(dialog).find("New Master Formula Name:"), std::string::npos);
    EXPECT_FALSE(Control(dialog, "txtColorName").isEnabled());
    Press(dialog, Qt::Key_S, Qt::ControlModifier);
  });
  ASSERT_TRUE(choice);
  EXPECT_EQ(choice->change, FormulaChange::None);

  offer([&](QWidget& dialog) {
    Click(dialog, "optUpdateFormula");
    Click(dialog, "cmdSave");
  });
  ASSERT_TRUE(choice);
  EXPECT_EQ(choice->change, FormulaChange::Update);

  Basic("TARGET DARK");
  offer([&](QWidget& dialog) {
    Click(dialog, "optNewFormula");
    // A name in use, and one that a Basic Color has.
    Fill(dialog, "txtColorName", "violet");
    EXPECT_EQ(Typed(dialog, "txtColorName"), "VIOLET");
    Picture(dialog, "batch-save-modified", {});
    prompt.Expect("Master Formula Already Exists", Answer::Ok,
                  "This Master Formula already exists. Please choose another name for the new Master Formula Record.");
    Click(dialog, "cmdSave");
    EXPECT_EQ(FocusName(), "txtColorName");
    Fill(dialog, "txtColorName", "TARGET DARK");
    prompt.Expect("Master Formula", Answer::No,
                  "A Basic Color TARGET DARK already exists in the INK database.\nWould you like to also add a Master "
                  "Formula TARGET DARK?");
    Click(dialog, "cmdSave");
    EXPECT_EQ(FocusName(), "txtColorName");
    EXPECT_TRUE(dialog.isVisible());
    TypeOn("TARGET 2");
    Press(dialog, Qt::Key_S, Qt::ControlModifier);
  });
  ASSERT_TRUE(choice);
  EXPECT_EQ(choice->change, FormulaChange::Create);
  EXPECT_EQ(choice->newName, "TARGET 2");

  offer([](QWidget& dialog) { Press(dialog, Qt::Key_Escape); });
  EXPECT_FALSE(choice);
}

}  // namespace
}  // namespace vellumark::test
