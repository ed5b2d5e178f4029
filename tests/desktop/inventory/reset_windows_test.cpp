// The windows that set figures of many colours, and the reorder point of one.

#include <gtest/gtest.h>

#include <QCheckBox>

#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "desktop/inventory/inventory_desk.h"

namespace vellumark::test {
namespace {

struct ResetWindowsTest : testing::Test, InventoryDesk {
  ResetWindowsTest() {
    Color(ColorKind::Basic, "RED", 3, {{"Reorder", 1.0F}});
    Color(ColorKind::Mix, "PINK", 4, {{"Reorder", 1.0F}});
    Lot(ColorKind::Basic, "RED", 1, 5);
  }

  bool Run(const char* name, const std::function<void(QWidget&)>& inside) {
    std::optional<desktop::Arguments> result;
    QWidget behind;
    ShowActive(behind);
    WithModal([&] { result = windows.RunDialog(name); }, inside);
    return result.has_value();
  }
};

TEST_F(ResetWindowsTest, EachValueIsCheckedAndNothingIsWrittenUntilAllAreRight) {
  const struct {
    const char* window;
    const char* basics;
    const char* mixes;
    const char* title;
    const char* text;
  } cases[] = {{"ResetInvForm", "BasicValue", "MixValue", "Invalid Inventory Amount",
                "Please enter an Inventory amount between 0 and 99999."},
               {"ResetReorderForm", "txtBasicsNewValue", "txtMixesNewValue", "Invalid Reorder Point",
                "Please enter a Reorder Point between 0 and 99999."}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.window);
    const auto figures = [&] {
      return std::pair{Inventory(ColorKind::Basic, "RED").Single(), ReadBasic(session, "RED")->Reorder};
    };
    const auto before = figures();
    EXPECT_TRUE(Run(c.window, [&](QWidget& dialog) {
      EXPECT_FALSE(Control(dialog, "cmdSave").isEnabled());
      Click(dialog, "chkBasics");
      Click(dialog, "chkMixes");
      Fill(dialog, c.basics, "10");
      Fill(dialog, c.mixes, "-1");
      prompt.Expect(c.title, Answer::Ok, c.text);
      Click(dialog, "cmdSave");
      EXPECT_EQ(FocusName(), c.mixes);
      EXPECT_EQ(figures(), before);
      Picture(dialog, std::string("inventory-") + c.window, {});
      Fill(dialog, c.mixes, "20.5");
      PressOn(Qt::Key_S, Qt::ControlModifier);
    }));
  }
  EXPECT_EQ(Inventory(ColorKind::Basic, "RED").Single(), 10.0F);
  EXPECT_EQ(Inventory(ColorKind::Mix, "PINK").Single(), 20.5F);
  EXPECT_EQ(LotQty(ColorKind::Basic, "RED", 1).Single(), 5.0F) << "only a zero clears lots";
  EXPECT_EQ(ReadBasic(session, "RED")->Reorder, 10.0F);
  EXPECT_EQ(ReadMix(session, "PINK")->Reorder, 20.5F);
  Run("ResetInvForm", [&](QWidget& dialog) {
    Click(dialog, "chkBasics");
    PressOn(Qt::Key_S, Qt::ControlModifier);
  });
  EXPECT_TRUE(LotQty(ColorKind::Basic, "RED", 1).IsNull());
  EXPECT_EQ(Inventory(ColorKind::Mix, "PINK").Single(), 20.5F);
}

TEST_F(ResetWindowsTest, TheReorderPointOfOneColor) {
  Color(ColorKind::Mix, "RED", 50);
  form = windows.OpenForm("AdjustReorderForm");
  ShowActive(*form);
  prompt.Expect("Adjust Reorder Point - Color not found");
  Enter("NOTHING");
  EXPECT_EQ(FocusName(), "cmbColorName");
  prompt.Expect("Adjust Reorder Point - Adjust Master Formula Reorder Point?", Answer::No,
                "The INK database contains both a Master Formula RED and a Basic Color RED.\n\nClick Yes to adjust the "
                "Master Formula's Reorder Point, Click No to adjust the Basic Color's Reorder Point.");
  Enter("RED");
  EXPECT_EQ(FocusName(), "txtReorder");
  EXPECT_EQ(Text("lblTotalInv"), "8.000");
  TypeOn("-1");
  prompt.Expect("Adjust Reorder Point - Invalid Reorder Point", Answer::Ok,
                "You must enter a Reorder Point > 0 and < 99999");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(FocusName(), "txtReorder");
  TypeOn("8");
  Picture(*form, "inventory-adjust-reorder", {640, 320});
  prompt.Expect("Adjust Reorder Point", Answer::Ok,
                "This color will not appear on the Reorder Report because\nit's Reorder Point is less than it's "
                "current Inventory.");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(FocusName(), "cmbColorName");
  EXPECT_EQ(ReadBasic(session, "RED")->Reorder, 8.0F);
  EXPECT_EQ(ReadMix(session, "RED")->Reorder, 0.0F);
}

}  // namespace
}  // namespace vellumark::test
