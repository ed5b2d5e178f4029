// The models that new Batches start with.

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

#include "core/batch/default_models.h"
#include "core/session/rights.h"
#include "core/session/settings.h"
#include "desktop/settings/register.h"
#include "support/desktop.h"
#include "support/ink_room.h"

namespace vellumark::test {
namespace {

struct CostModelWindowsTest : testing::Test, InkRoom {
  CostModelWindowsTest() {
    RegisterSettingsWindows(windows, [] { return desktop::SystemPrinters{}; });
  }

  /// Runs the window; true when it was closed by its first button.
  bool Run(const std::string& name, const std::function<void(QWidget&)>& inside) {
    bool saved = false;
    WithModal([&] { saved = windows.RunDialog(name).has_value(); }, inside);
    return saved;
  }

  desktop::WindowList windows{session};
};

std::string Text(QWidget& dialog, const char* field) {
  return Control<QLineEdit>(dialog, field).text().toStdString();
}

std::string Label(QWidget& dialog, const char* name) {
  return Control<QLabel>(dialog, name).text().toStdString();
}

bool IsOn(QWidget& dialog, const char* name) {
  return Control(dialog, name).isEnabled();
}

TEST_F(CostModelWindowsTest, ACostModelByKeyboardBecomesThatOfNewBatches) {
  Setting("UMI", "2");
  Setting("DecimalPlaces", "3");
  EXPECT_TRUE(Run("DefaultCostModelForm", [&](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Default Batch Cost Model - INK Database");
    EXPECT_EQ(FocusName(), "CostModelType0");
    EXPECT_EQ(Label(dialog, "lblCostModelType"), "Individual Ingredient Costs add together to create a Batch Cost.");
    EXPECT_TRUE(IsOn(dialog, "cmbMixCostOption"));
    EXPECT_EQ(Text(dialog, "txtFixedCostBatch"), "0.000");
    EXPECT_EQ(Text(dialog, "txtMarkupPercent"), "0.0");
    PressOn(Qt::Key_Return);
    EXPECT_EQ(FocusName(), "cmbMixCostOption");
    PressOn(Qt::Key_Down);
    EXPECT_EQ(Control<QComboBox>(dialog, "cmbMixCostOption").currentText(), "Use Master Formula Purchase Cost");
    PressOn(Qt::Key_Return);
    TypeOn("12.5");
    PressOn(Qt::Key_Return);
    EXPECT_EQ(FocusName(), "txtFixedCostUnit");
    TypeOn("0.1255");
    PressOn(Qt::Key_Return);
    TypeOn("7.25");
    Picture(dialog, "settings-cost-model", {});
    PressOn(Qt::Key_Return);
  }));
  const BatchCostModel model = DefaultModels(session);
  EXPECT_EQ(model.CostModelType, 0);
  EXPECT_EQ(model.MixCostOption, 1);
  EXPECT_EQ(model.FixedCostOfBatch, 12.5F);
  EXPECT_EQ(model.FixedCostPerUnit, 0.126F);
  EXPECT_EQ(model.MarkupPercent, 7.3F);
}

TEST_F(CostModelWindowsTest, WithoutIngredientsOnlyAdditionalCostsAdd) {
  EXPECT_TRUE(Run("DefaultCostModelForm", [&](QWidget& dialog) {
    EXPECT_EQ(Label(dialog, "lblExample"), " ");
    Click(dialog, "CostModelType1");
    EXPECT_FALSE(IsOn(dialog, "cmbMixCostOption"));
    EXPECT_EQ(Label(dialog, "lblCostModelType"),
              "Master Formula Purchase cost is multiplied against Batch weight to create a Batch Cost.");
    EXPECT_EQ(Label(dialog, "lblExample"), "(Example - 10 lb. * 8.75 = 87.50)");
    Picture(dialog, "settings-cost-model-no-ingredients", {});
    Click(dialog, "cmdOK");
  }));
  EXPECT_EQ(StoredText(session, "CostModelType"), "1");
}

TEST_F(CostModelWindowsTest, WhatIsNoCostAndNoPercentageIsRefusedInOrder) {
  const char* const cost = "You must enter a valid, positive cost.";
  const char* const percentage = "You must enter a valid percentage between 0 and 100.";
  struct Case {
    const char* field;
    const char* typed;
    const char* title;
    const char* text;
  };
  const Case cases[] = {
      {"txtFixedCostBatch", "-1", "Invalid Cost", cost},
      {"txtFixedCostBatch", "", "Invalid Cost", cost},
      {"txtFixedCostBatch", "100000", "Invalid Cost", cost},
      {"txtFixedCostUnit", "-0.01", "Invalid Cost", cost},
      {"txtMarkupPercent", "101", "Invalid Percentage", percentage},
      {"txtMarkupPercent", "-1", "Invalid Percentage", percentage},
      {"txtMarkupPercent", ".", "Invalid Percentage", percentage},
  };
  EXPECT_FALSE(Run("DefaultCostModelForm", [&](QWidget& dialog) {
    for (const Case& c : cases) {
      SCOPED_TRACE(std::string(c.field) + " " + c.typed);
      const std::string before = Text(dialog, c.field);
      auto& field = Control<QLineEdit>(dialog, c.field);
      field.setFocus(Qt::TabFocusReason);
      field.selectAll();
      PressOn(Qt::Key_Delete);
      TypeOn(c.typed);
      prompt.Expect(c.title, Answer::Ok, c.text);
      Click(dialog, "cmdOK");
      EXPECT_EQ(FocusName(), c.field);
      Fill(dialog, c.field, before);
    }
    // The first of several.
    Fill(dialog, "txtMarkupPercent", "200");
    Fill(dialog, "txtFixedCostUnit", "-5");
    prompt.Expect("Invalid Cost", Answer::Ok, cost);
    Click(dialog, "cmdOK");
    EXPECT_EQ(FocusName(), "txtFixedCostUnit");
    Press(dialog, Qt::Key_Escape);
  }));
  EXPECT_EQ(StoredText(session, "MarkupPercent"), "0");
}

TEST_F(CostModelWindowsTest, TheEmissionModelsAreKeptEachForItself) {
  int told = 0;
  const auto heard = session.changes.Subscribe([&](const std::vector<Change>& changes) {
    for (const Change& change : changes) told += change.kind == Change::Kind::Settings ? 1 : 0;
  });
  EXPECT_TRUE(Run("VOC_HAP_OptMenu", [&](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "VOC _ HAP Calculation Model - INK Database");
    EXPECT_EQ(Control<QRadioButton>(dialog, "OptVOCModel0").text(), "Use Basic / Addivitve VOC Value");
    EXPECT_EQ(Control<QRadioButton>(dialog, "OptVOCModel1").text(), "Use Master Formula VOC Value");
    EXPECT_EQ(Control<QRadioButton>(dialog, "OptVOCModel2").text(), "Use No VOC Value -> 0");
    EXPECT_EQ(Control<QRadioButton>(dialog, "OptHAPModel0").text(), "Use Basic / Addivitve HAP Value");
    EXPECT_EQ(Control<QRadioButton>(dialog, "OptHAPModel1").text(), "Use Master Formula HAP Value");
    EXPECT_EQ(Control<QRadioButton>(dialog, "OptHAPModel2").text(), "Use No HAP Value -> 0");
    Click(dialog, "OptVOCModel1");
    Click(dialog, "OptHAPModel2");
    Picture(dialog, "settings-emission-models", {});
    Click(dialog, "cmdOK");
  }));
  EXPECT_EQ(StoredText(session, "VOCModelType"), "1");
  EXPECT_EQ(StoredText(session, "HAPModelType"), "2");
  EXPECT_EQ(told, 1) << "an open Batch hears of it";
}

TEST_F(CostModelWindowsTest, WithoutTheRightNothingIsStored) {
  session.CurrentUser = "ANNA";
  session.IsAdminUser = false;
  session.Perm_Costs = 1;
  session.Perm_VOCHAP = 0;
  EXPECT_FALSE(SaveDefaultCostModel(session, {1, 0, "0", "0", "0"}));
  EXPECT_FALSE(SaveDefaultEmissionModels(session, 1, 1));
  session.Perm_Costs = 2;
  session.ArchiveView = true;
  EXPECT_FALSE(SaveDefaultCostModel(session, {1, 0, "0", "0", "0"}));
  EXPECT_EQ(StoredText(session, "CostModelType"), "0");
  EXPECT_EQ(StoredText(session, "VOCModelType"), "0");
}

}  // namespace
}  // namespace vellumark::test
