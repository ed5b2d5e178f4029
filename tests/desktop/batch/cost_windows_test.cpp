#include "core/batch/bench.h"
#include "core/batch/cost.h"
#include "desktop/batch/side_room.h"

namespace vellumark::test {
namespace {

struct CostWindowsTest : SideRoom {
  CostWindowsTest() {
    Setting("DecimalPlaces", "4");
    record = NewBatchRecord(session);
    EXPECT_TRUE(EnterBatchColor(session, record, "TARGET"));
    record.work.QuantityText = "100";
    EXPECT_TRUE(RecycleBatch(session, record));
    EXPECT_TRUE(AddBatchAdditions(session, record, {{"DRIER", "2"}}));
    EXPECT_EQ(Fixed(record.work.ShownTotal, 3), "102.000");
  }
  std::optional<desktop::Arguments> RunOnRecord(const char* name, const std::function<void(QWidget&)>& inside) {
    return Run(name, {{"Record", &record}}, inside);
  }

  BatchRecord record;
};

// Basics 45x4.125 + 25x6.0625 + 2x10.5 = 358.1875, recycled 30x5.25 = 157.5; fixed 12.5; 100x.25 = 25;
// markup 51.56875; 604.7563 / 102 = 5.92898.
TEST_F(CostWindowsTest, TheCostsAddUpOnScreenAndFollowTheModelTypedIn) {
  RunOnRecord("CostInfForm", [&](QWidget& costs) {
    EXPECT_EQ(costs.windowTitle(), "Cost of Batch");
    EXPECT_EQ(TextOf(costs, "lblCostOfBasics"), "358.1875");
    EXPECT_EQ(TextOf(costs, "lblCostOfMixes"), "157.5000");
    EXPECT_EQ(TextOf(costs, "lblTotalCost"), "515.6875");
    EXPECT_EQ(Control(costs, "cmdCostModel").toolTip(), "Click to view/modify the Cost Model for this Batch");
    WithModal([&] { Press(costs, Qt::Key_F4); },
              [&](QWidget& model) {
                EXPECT_EQ(model.objectName(), "CostModelForm");
                EXPECT_EQ(Control<QComboBox>(model, "cmbMixCostOption").currentText(),
                          "Use Basic & Additive Purchase Costs");
                EXPECT_EQ(Typed(model, "txtFixedCostBatch"), "0.0000");
                EXPECT_EQ(Typed(model, "txtMarkupPercent"), "0.0");
                EXPECT_EQ(TextOf(model, "lblExample"), " ");
                Fill(model, "txtFixedCostBatch", "12.5");
                EXPECT_EQ(FocusName(), "txtFixedCostUnit");
                TypeOn(".25");
                PressOn(Qt::Key_Return);
                TypeOn("10");
                Picture(model, "batch-cost-model", {});
                Press(model, Qt::Key_S, Qt::ControlModifier);
              });
    for (const char* line :
         {"Cost of Basics / Additives", "Cost of Recycled Ink (Basic / Additive Purchase Costs)",
          "Ingredient Cost - Subtotal", "Fixed Cost of Batch", "Fixed Cost of 0.2500 / lb.", "Markup Ingredients 10.0%",
          "Addtional Costs - Subtotal", "Total Cost of Batch", "Cost per lb."})
      EXPECT_NE(Says(costs).find("\n" + std::string(line) + "\n"), std::string::npos) << line;
    EXPECT_EQ(TextOf(costs, "lblIngredientCost"), "515.6875");
    EXPECT_EQ(TextOf(costs, "lblFixedCostOfBatch"), "12.5000");
    EXPECT_EQ(TextOf(costs, "lblFixedCostPerUnit"), "25.0000") << "by the 100 asked for, not the 102 made";
    EXPECT_EQ(TextOf(costs, "lblMarkup"), "51.5688");
    EXPECT_EQ(TextOf(costs, "lblAdditionalCost"), "89.0688");
    EXPECT_EQ(TextOf(costs, "lblTotalCost"), "604.7563");
    EXPECT_EQ(TextOf(costs, "lblUnitCost"), "5.9290");
    Picture(costs, "batch-cost", {});
    Click(costs, "chkPrintCost");
    Press(costs, Qt::Key_Escape);
  });
  EXPECT_EQ(OnFile("PrintCostOption"), "0");
  EXPECT_EQ(OnFile("MarkupPercent"), "0") << "only this Batch";
  EXPECT_EQ(record.work.figures.TotalCost.Fixed(4), "604.7563");
}

TEST_F(CostWindowsTest, EachModelShowsItsOwnLines) {
  struct Case {
    int type, mixes;
    const char* says;
    const char* total;
  };
  const std::vector<Case> cases{
      {0, 0, "Cost of Recycled Ink (Basic / Additive Purchase Costs)", "515.6875"},
      {0, 1, "Cost of Recycled Ink (Master Formula Purchase Cost)", "613.1875"},
      {0, 2, "Cost of Recycled Ink (No Value - 0)", "358.1875"},
      {1, 1, "Batch Cost calculated with Master Formula Purchase Cost", "726.7500"},
  };
  for (const Case& each : cases) {
    record.work.cost.CostModelType = each.type;
    record.work.cost.MixCostOption = each.mixes;
    CalculateCost(session, record.work);
    RunOnRecord("CostInfForm", [&](QWidget& costs) {
      EXPECT_NE(Says(costs).find(each.says), std::string::npos) << each.says;
      EXPECT_EQ(Control(costs, "lblCostOfBasics").isVisible(), each.type == 0);
      EXPECT_EQ(TextOf(costs, "lblTotalCost"), each.total);
      if (each.type == 1) Picture(costs, "batch-cost-formula", {});
      Click(costs, "cmdClose");
    });
  }
  EXPECT_EQ(OnFile("PrintCostOption"), "1");
}

TEST_F(CostWindowsTest, BadCostsAreRefusedAtTheirFieldAndNothingChanges) {
  struct Case {
    const char* field;
    const char* typed;
    const char* title;
    const char* text;
  };
  const char* cost = "You must enter a valid, positive cost.";
  const char* percent = "You must enter a valid percentage between 0 and 100.";
  const std::vector<Case> cases{
      {"txtFixedCostBatch", "-1", "Invalid Cost", cost},
      {"txtFixedCostBatch", "", "Invalid Cost", cost},
      {"txtFixedCostUnit", "1.2.3", "Invalid Cost", cost},
      {"txtFixedCostUnit", "-0.01", "Invalid Cost", cost},
      {"txtMarkupPercent", "100.1", "Invalid Percentage", percent},
      {"txtMarkupPercent", "-5", "Invalid Percentage", percent},
  };
  const auto left = RunOnRecord("CostModelForm", [&](QWidget& model) {
    Fill(model, "txtMarkupPercent", "5");
    for (const Case& each : cases) {
      SCOPED_TRACE(std::string(each.field) + " " + each.typed);
      const std::string before = Typed(model, each.field);
      Fill(model, each.field, each.typed);
      prompt.Expect(each.title, Answer::Ok, each.text);
      Press(model, Qt::Key_S, Qt::ControlModifier);
      EXPECT_EQ(FocusName(), each.field);
      EXPECT_TRUE(Control<desktop::TextField>(model, each.field).HasFault());
      EXPECT_EQ(record.work.cost.MarkupPercent, 0);
      if (std::string(each.typed) == "100.1") Picture(model, "batch-cost-model-refused", {});
      Fill(model, each.field, before);
    }
    Press(model, Qt::Key_Escape);
  });
  EXPECT_FALSE(left);
}

TEST_F(CostWindowsTest, WithoutIngredientsTheRecycledInkHasNoSayAndTheModelCanBeForAll) {
  EXPECT_TRUE(RunOnRecord("CostModelForm", [&](QWidget& model) {
    EXPECT_NE(Says(model).find("Individual Ingredient Costs add together to create a Batch Cost."), std::string::npos);
    Click(model, "CostModelType1");
    EXPECT_NE(
        Says(model).find("Master Formula Purchase cost is multiplied against Batch weight to create a Batch Cost."),
        std::string::npos);
    EXPECT_EQ(TextOf(model, "lblExample"), "(Example - 10 lb. * 8.7500 = 87.5000)");
    EXPECT_FALSE(Control(model, "cmbMixCostOption").isEnabled());
    Fill(model, "txtMarkupPercent", "5");
    Click(model, "chkFutureBatches");
    Picture(model, "batch-cost-model-formula", {});
    Click(model, "cmdSave");
  }));
  // 726.75 x .05 = 36.3375
  EXPECT_EQ(record.work.figures.TotalCost.Fixed(4), "763.0875");
  EXPECT_EQ(OnFile("CostModelType"), "1");
  EXPECT_EQ(LeadingNumber(OnFile("MarkupPercent")), 5);
  EXPECT_EQ(NewBatchRecord(session).work.cost.MarkupPercent, 5);
}

TEST_F(CostWindowsTest, PricesAreForThoseWhoMaySeeThem) {
  session.CurrentUser = "ANNA";
  session.Perm_Costs = 1;
  RunOnRecord("CostInfForm", [&](QWidget& costs) {
    EXPECT_EQ(TextOf(costs, "lblTotalCost"), "515.6875");
    EXPECT_FALSE(Control(costs, "cmdCostModel").isEnabled());
    Press(costs, Qt::Key_Escape);
  });
  session.Perm_Costs = 0;
  RunOnRecord("CostInfForm", [&](QWidget& costs) {
    EXPECT_NE(Says(costs).find("User Permissions - Price Blocked"), std::string::npos);
    EXPECT_EQ(Says(costs).find("515.6875"), std::string::npos);
    EXPECT_FALSE(Control(costs, "lblTotalCost").isVisible());
    Press(costs, Qt::Key_Escape);
  });
}

// VIOLET 30x.75 = 22.5 or 30x.5 = 15 or nothing, beside basics of 53.5; HAP 33.75 or 30 or nothing beside 62.25.
TEST_F(CostWindowsTest, EmissionsFollowTheModelChosen) {
  EXPECT_TRUE(RunOnRecord("VOC_HAP_CalcForm", [&](QWidget& model) {
    EXPECT_EQ(model.windowTitle(), "VOC _ HAP Calculation Model - This Batch");
    const std::vector<std::pair<const char*, const char*>> options{
        {"OptVOCModel0", "Use Basic / Addivitve VOC Value"}, {"OptVOCModel1", "Use Master Formula VOC Value"},
        {"OptVOCModel2", "Use No VOC Value -> 0"},           {"OptHAPModel0", "Use Basic / Addivitve HAP Value"},
        {"OptHAPModel1", "Use Master Formula HAP Value"},    {"OptHAPModel2", "Use No HAP Value -> 0"}};
    for (const auto& [name, text] : options) EXPECT_EQ(Control<QRadioButton>(model, name).text().toStdString(), text);
    EXPECT_TRUE(Control<QRadioButton>(model, "OptVOCModel0").isChecked());
    EXPECT_EQ(Control<QCheckBox>(model, "chkFutureBatches").text().remove('&'),
              "Apply this Model to all future Batches");
    Click(model, "OptVOCModel1");
    Click(model, "OptHAPModel2");
    Picture(model, "batch-voc-hap", {});
    Press(model, Qt::Key_S, Qt::ControlModifier);
  }));
  EXPECT_EQ(record.work.figures.VOC, 68.5F);
  EXPECT_EQ(record.work.figures.HAP, 62.25F);
  EXPECT_EQ(OnFile("VOCModelType") + OnFile("HAPModelType"), "00");
  EXPECT_TRUE(RunOnRecord("VOC_HAP_CalcForm", [&](QWidget& model) {
    EXPECT_TRUE(Control<QRadioButton>(model, "OptHAPModel2").isChecked());
    Click(model, "OptVOCModel2");
    Click(model, "OptHAPModel1");
    Click(model, "chkFutureBatches");
    Click(model, "cmdSave");
  }));
  EXPECT_EQ(record.work.figures.VOC, 53.5F);
  EXPECT_EQ(record.work.figures.HAP, 92.25F);
  EXPECT_EQ(OnFile("VOCModelType") + OnFile("HAPModelType"), "21");
  session.CurrentUser = "ANNA";
  session.Perm_VOCHAP = 0;
  RunOnRecord("VOC_HAP_CalcForm", [&](QWidget& model) {
    EXPECT_FALSE(Control(model, "cmdSave").isEnabled());
    Press(model, Qt::Key_Escape);
  });
}

}  // namespace
}  // namespace vellumark::test
