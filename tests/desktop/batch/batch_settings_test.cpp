#include <QTabWidget>

#include "core/batch/batch_options.h"
#include "core/batch/batch_work.h"
#include "desktop/batch/side_room.h"

namespace vellumark::test {
namespace {

using BatchSettingsTest = SideRoom;

void ShowPage(QWidget& dialog, const char* page) {
  auto& tabs = Control<QTabWidget>(dialog, "TabSettings");
  tabs.setCurrentWidget(&Control(dialog, page));
  Settle();
}

TEST_F(BatchSettingsTest, AllSettingsAreStoredAndReadBack) {
  EXPECT_TRUE(Run("BatchSettingsForm", {}, [&](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Batch Settings");
    EXPECT_EQ(FocusName(), "cmbUMF");
    EXPECT_TRUE(Control<QRadioButton>(dialog, "optMix").isChecked());
    EXPECT_TRUE(Control<QRadioButton>(dialog, "optByAmount").isChecked());
    EXPECT_TRUE(Control<QCheckBox>(dialog, "chkReturnToInventory").isChecked());
    const auto caption = [&](const char* name) { return Control<QCheckBox>(dialog, name).text().remove('&').toStdString(); };
    EXPECT_EQ(caption("chkOverpour"), "Allow Basic Color adjustments to correct for overpour");
    EXPECT_EQ(caption("chkBatchDefaultLotNumberValue"), "Use the Batch ID # for the Lot Number value");
    Choose(dialog, "cmbUMF", "g.");
    Click(dialog, "optRecycle");
    Click(dialog, "optByUser");
    Click(dialog, "chkOverpour");
    Click(dialog, "chkShowBatchGraphic");
    Click(dialog, "chkReturnToInventory");
    Click(dialog, "chkBatchDefaultLotNumberValue");
    Click(dialog, "chkBatchComplete");
    Picture(dialog, "batch-settings", {});
    ShowPage(dialog, "TabTexts");
    EXPECT_FALSE(Control(dialog, "txtTextValue0").isEnabled());
    Fill(dialog, "txtTextCaption0", "Press");
    Click(dialog, "chkTextDefault0");
    Fill(dialog, "txtTextValue0", "Press 4");
    Click(dialog, "chkTextRequired0");
    Picture(dialog, "batch-settings-texts", {});
    ShowPage(dialog, "TabNumbers");
    Fill(dialog, "txtNumberCaption5", "Viscosity");
    Choose(dialog, "cmbNumberFormat5", "1");
    Picture(dialog, "batch-settings-numbers", {});
    ShowPage(dialog, "TabQuickInfo");
    EXPECT_EQ(caption("chkShowQuickInfo"), "Show on Screen");
    EXPECT_EQ(caption("chkQuickInfoField2"), "Reorder Point");
    EXPECT_EQ(caption("chkQuickInfoField9"), "HAP from Basics (Master Formulas)");
    Click(dialog, "chkQuickInfoField9");
    Picture(dialog, "batch-settings-quick-info", {});
    Press(dialog, Qt::Key_S, Qt::ControlModifier);
  }));
  BatchOptions wanted;
  wanted.UMF = 3;
  wanted.mixByDefault = false;
  wanted.userOrder = true;
  wanted.ReturnToInventory = false;
  wanted.ShowBatchGraphic = false;
  wanted.Overpour = wanted.BatchComplete = wanted.BatchDefaultLotNumberValue = true;
  wanted.QuickInfoField.fill(true);
  wanted.QuickInfoField[9] = false;
  for (std::size_t i = 0; i < wanted.texts.size(); ++i) {
    wanted.texts[i].caption = "Text Lbl" + std::to_string(i + 1);
    wanted.numbers[i] = {"Num Lbl" + std::to_string(i + 1), 3};
  }
  wanted.texts[0] = {"Press", true, "Press 4", true};
  wanted.numbers[5] = {"Viscosity", 1};
  EXPECT_EQ(ReadBatchOptions(session), wanted);
  EXPECT_EQ(NewBatchWork(session).UMF, 3);
  EXPECT_EQ(BatchUDTextDefault(session, 0), "Press 4");

  EXPECT_FALSE(Run("BatchSettingsForm", {}, [&](QWidget& dialog) {
    EXPECT_EQ(Control<QComboBox>(dialog, "cmbUMF").currentText(), "g.");
    EXPECT_TRUE(Control<QRadioButton>(dialog, "optRecycle").isChecked());
    EXPECT_EQ(Typed(dialog, "txtTextValue0"), "Press 4");
    Click(dialog, "chkOverpour");
    Press(dialog, Qt::Key_Escape);
  }));
  EXPECT_EQ(ReadBatchOptions(session), wanted) << "cancelled";
}

TEST_F(BatchSettingsTest, ABadFieldIsShownWithItsPageAndNothingIsStored) {
  struct Case {
    const char* page;
    const char* field;
    const char* typed;
    const char* text;
  };
  const std::vector<Case> cases{
      {"TabTexts", "txtTextCaption3", "", "Enter a caption for this field."},
      {"TabTexts", "txtTextCaption0", "A|B", "The text cannot hold a double quote, a vertical bar or a line end."},
      {"TabNumbers", "txtNumberCaption1", " ", "Enter a caption for this field."},
  };
  EXPECT_FALSE(Run("BatchSettingsForm", {}, [&](QWidget& dialog) {
    Click(dialog, "chkOverpour");
    for (const Case& each : cases) {
      SCOPED_TRACE(each.field);
      ShowPage(dialog, each.page);
      const std::string before = Typed(dialog, each.field);
      Fill(dialog, each.field, each.typed);
      ShowPage(dialog, "TabGeneral");
      prompt.Expect("Batch Settings", Answer::Ok, each.text);
      Press(dialog, Qt::Key_S, Qt::ControlModifier);
      EXPECT_EQ(FocusName(), each.field);
      EXPECT_TRUE(Control(dialog, each.field).isVisible());
      Fill(dialog, each.field, before);
    }
    Press(dialog, Qt::Key_Escape);
  }));
  EXPECT_EQ(OnFile("Overpour"), "0");
}

}  // namespace
}  // namespace vellumark::test
