// The mass resets and the menu of the tools, by the keys and clicks of an operator.

#include "tools_room.h"

namespace vellumark::test {
namespace {

struct ResetsTest : ToolsRoom {
  ResetsTest() { HaveInks(); }
  void Run(const char* name, const std::function<void(QWidget&)>& inside) {
    WithModal([&] { windows.RunDialog(name); }, inside);
  }
  /// Types, asks for OK and sees the refusal with the focus on the field.
  void Refused(QWidget& dialog, const char* field, const char* typed, const char* title, const char* text) {
    SCOPED_TRACE(std::string(field) + " " + typed);
    Fill(dialog, field, typed);
    prompt.Expect(title, Answer::Ok, text);
    Click(dialog, "cmdOK");
    EXPECT_EQ(FocusName(), field);
  }
};

TEST_F(ResetsTest, BasicCosts) {
  Run("ResetBasicCostForm", [&](QWidget& dialog) {
    EXPECT_FALSE(Control(dialog, "cmdOK").isEnabled());
    Click(dialog, "chkBasicCost");
    const char* text = "Please enter a Purchase Cost between 0 and 99999.";
    for (const char* typed : {"", "-1", "99999.01"})
      Refused(dialog, "txtNewValue", typed, "Invalid Purchase Cost", text);
    Picture(dialog, "reset-basic-cost", {});
    Fill(dialog, "txtNewValue", "10.126");
    Click(dialog, "cmdOK");
  });
  EXPECT_EQ(Scalar("SELECT COUNT(*) FROM INK_Basic WHERE PurchaseCost = ?1", {10.13F}).Whole(), 6);
  EXPECT_TRUE(session.CostChanged);
}

TEST_F(ResetsTest, FormulaCosts) {
  Run("ResetMixCostForm", [&](QWidget& dialog) {
    const char* text = "Please enter a Currency Value between 0 and 99999.";
    Refused(dialog, "txtNewValue", "100000", "Invalid Dollar Value", text);
    Click(dialog, "optBasicCost");
    Refused(dialog, "txtMarkup", "100.01", "Invalid Markup Percent", "Please enter a Markup Percent between 0 and 100");
    Fill(dialog, "txtMarkup", "10");
    Refused(dialog, "txtFixed", "-2", "Invalid Dollar Value", text);
    Picture(dialog, "reset-mix-cost", {});
    Fill(dialog, "txtFixed", "2");
    session.File().Execute("UPDATE INK_Mix SET BasicCost = 10");
    Click(dialog, "cmdOK");
  });
  EXPECT_EQ(Scalar("SELECT COUNT(*) FROM INK_Mix WHERE PurchaseCost = 13").Whole(), 4);
  Run("ResetMixCostForm", [&](QWidget& dialog) {
    Fill(dialog, "txtNewValue", "4.5");
    Click(dialog, "cmdOK");
  });
  EXPECT_EQ(Scalar("SELECT COUNT(*) FROM INK_Mix WHERE PurchaseCost = 4.5").Whole(), 4);
}

TEST_F(ResetsTest, EmissionsOfEitherKindAllOrNothing) {
  const struct {
    const char* window;
    const char* voc;
    const char* hap;
    const char* table;
  } cases[] = {{"ResetBasic_VOC_HAP_Form", "chkBasicVOC", "chkBasicHAP", "INK_Basic"},
               {"ResetMixColor_VOC_HAP", "chkMixVOC", "chkMixHAP", "INK_Mix"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.window);
    const auto others = [&](const std::string& condition) {
      return Scalar(std::string("SELECT COUNT(*) FROM ") + c.table + " WHERE NOT (" + condition + ")").Whole();
    };
    Run(c.window, [&](QWidget& dialog) {
      Click(dialog, c.voc);
      Refused(dialog, "txtNewVOC", "x", "Invalid VOC Value", "Please enter a VOC value between 0 and 99999.");
      Fill(dialog, "txtNewVOC", "1.2346");
      Click(dialog, c.hap);
      Refused(dialog, "txtNewHAP", "100000", "Invalid HAP Value", "Please enter a HAP value between 0 and 99999.");
      EXPECT_EQ(others("COALESCE(VOC, 0) = 0"), 0);  // neither is written while one is refused
      Picture(dialog, std::string("reset-emissions-") + c.table, {});
      Fill(dialog, "txtNewHAP", "2");
      Click(dialog, "cmdOK");
    });
    EXPECT_EQ(others("ABS(VOC - 1.235) < 0.00001 AND HAP = 2"), 0);
    Run(c.window, [&](QWidget& dialog) {
      Click(dialog, c.hap);
      Fill(dialog, "txtNewHAP", "3");
      Click(dialog, "cmdOK");
    });
    EXPECT_EQ(others("ABS(VOC - 1.235) < 0.00001 AND HAP = 3"), 0);
  }
  EXPECT_TRUE(session.VOCChanged && session.HAPChanged);
}

TEST_F(ResetsTest, TheMenuOpensThemAndKeepsOthersOut) {
  Open("DBToolsMenu");
  EXPECT_TRUE(form->IsFloating());
  EXPECT_EQ(FocusName(), "cmdAdditiveControl");
  Picture(*form, "tools-menu", {});
  PressOn(Qt::Key_Down);
  PressOn(Qt::Key_Return);
  EXPECT_FALSE(windows.IsFormOpen("DBToolsMenu"));
  EXPECT_TRUE(windows.IsFormOpen("DBFormulaModifierForm"));
  Open("DBToolsMenu");
  WithModal([&] { Click(*form, "cmdResetMixVOCHAP"); },
            [&](QWidget& dialog) {
              EXPECT_EQ(dialog.objectName().toStdString(), "ResetMixColor_VOC_HAP");
              Press(dialog, Qt::Key_Escape);
            });
  Open("DBToolsMenu");
  session.CurrentUser = "ANNA";
  session.Perm_DBTools = 0;
  prompt.Expect("Permission Denied");
  Click(*form, "cmdDelColors");
  EXPECT_FALSE(windows.IsFormOpen("DBDelColors"));
}

}  // namespace
}  // namespace vellumark::test
