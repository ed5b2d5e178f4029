// Weighing beside the Batch Window, against a scale on a pseudo-terminal.

#include <gtest/gtest.h>

#include <QPushButton>
#include <QSignalSpy>

#include "bench_room.h"
#include "desktop/batch/batch_scale_weigh_form.h"
#include "desktop/batch/pour_view.h"
#include "desktop/inventory/register.h"
#include "desktop/scale/register.h"
#include "support/scale_on_pty.h"

namespace vellumark::test {
namespace {

struct WeighingRoom : BenchRoom {
  WeighingRoom() {
    RegisterScaleWindows(windows, bench, folder.Path());
    RegisterWeighing(windows, bench);
    RegisterInventoryWindows(windows);
    bench.SetBootTime(20);
    setup.CommPort = scale.Port();
    setup.BaudRate = 9600;
    HaveTarget();
  }
  void SwitchOn() {
    ASSERT_TRUE(StoreScaleSetup(session, setup));
    bench.SwitchOn();
    ASSERT_EQ(session.ScalePowered, 1);
  }
  /// The Batch Window with 6 RED and 4 BLUE, and the window that weighs.
  QWidget& Weigh() {
    Open();
    Make("TARGET", "10", Qt::Key_F3);
    PressOn(Qt::Key_F6);
    weigh = windows.Form("BatchScaleWeighForm");
    if (weigh == nullptr) throw std::runtime_error("nothing weighs");
    ShowActive(*weigh);
    return *weigh;
  }
  std::string On(const char* name) { return Control<QLabel>(*weigh, name).text().toStdString(); }
  /// Puts so much on the scale.
  bool Put(const std::string& weight) {
    scale.Weigh(weight);
    return WaitFor([&] { return On("lblSWeight") == weight && On("lblState") == " "; });
  }
  /// What a reading of `weight` shows: bar, percent, word and ground.
  std::string Face(const std::string& weight) {
    EXPECT_TRUE(Put(weight)) << On("lblSWeight") << On("lblState");
    const auto& bar = Control<desktop::PourBar>(*weigh, "ProgressBar_Weight");
    return std::to_string(bar.Value()) + " " + On("lblUpperProgBar") + " " + On("lblWord") + " " +
           Control(*weigh, "Reading").grab().toImage().pixelColor(40, 8).name().toStdString();
  }
  /// Enter on Done.
  void Done() {
    ShowActive(*weigh);
    EXPECT_EQ(FocusName(), "cmdSave");
    PressOn(Qt::Key_Return);
  }
  std::string Weighing() { return On("lblIngredient") + " " + On("lblBWeight"); }
  bool IsWeighing() { return windows.IsFormOpen("BatchScaleWeighForm"); }
  Texts Results() {
    Texts rows;
    Statement row = session.File().Prepare(
        "SELECT ColorName, BeginningWeight, EndingWeight FROM INK_BatchScaleResults ORDER BY RowKey");
    while (row.Step()) rows.push_back(row.Text(0) + " " + Fixed(row.Single(1), 3) + " " + Fixed(row.Single(2), 3));
    return rows;
  }

  desktop::BenchScale bench{windows};
  ScaleOnPty scale{folder.Path()};
  ScaleSetup setup;
  QPointer<desktop::Window> weigh;
};

TEST_F(WeighingRoom, FollowsThePourByColorWordAndSound) {
  SwitchOn();
  Weigh();
  EXPECT_EQ(Weighing(), "RED 6.000 lb.");
  EXPECT_EQ(On("lblLeft"), "2 rows to weigh");
  QSignalSpy sound(qobject_cast<desktop::BatchScaleWeighForm*>(weigh), &desktop::BatchScaleWeighForm::Overpoured);
  EXPECT_EQ(Face("-0.001"), "0 0% Below nothing: tare #c80000");
  EXPECT_EQ(Face("0.000"), "0 0% Pour #ffffff");
  EXPECT_EQ(Face("4.499"), "74 75% Pour #ffffff");
  EXPECT_EQ(Face("4.500"), "75 75% Nearly there #c0ffc0");
  EXPECT_EQ(Face("5.400"), "90 90% Slowly #80ff80");
  EXPECT_EQ(On("lblRest"), "0.600 lb.");
  EXPECT_EQ(Face("5.700"), "95 95% Drop by drop #00ff00");
  Picture(*weigh, "weigh", weigh->size());
  EXPECT_EQ(Face("6.000"), "100 100% On target #00ff00");
  EXPECT_EQ(sound.count(), 0);
  EXPECT_EQ(Face("6.001"), "100 100% Too much #c80000");
  EXPECT_EQ(Face("6.500"), "100 108% Too much #c80000");
  EXPECT_EQ(sound.count(), 1);
  EXPECT_EQ(On("lblRestCaption") + " " + On("lblRest"), "Over 0.500 lb.");
  Picture(*weigh, "weigh-over", weigh->size());
  // A scale that falls silent, and one whose cable is pulled out and put back.
  scale.Answer({});
  EXPECT_TRUE(WaitFor([&] { return On("lblState").starts_with("This weight is "); })) << On("lblState");
  prompt.Expect("Scale");
  Done();
  scale.PullOut();
  EXPECT_TRUE(WaitFor([&] { return On("lblState").find("has gone") != std::string::npos; })) << On("lblState");
  EXPECT_FALSE(Control(*weigh, "cmdTare").isEnabled());
  scale.PlugIn();
  EXPECT_TRUE(Put("1.000")) << On("lblState");
  // Cancel asks while something is on the scale.
  prompt.Expect("Scale Weighing in Progress", Answer::No, "Cancel Weighing Scale Amount?");
  Press(*weigh, Qt::Key_Escape);
  ASSERT_TRUE(IsWeighing());
  prompt.Expect("Scale Weighing in Progress", Answer::Yes);
  Press(*weigh, Qt::Key_Escape);
  EXPECT_FALSE(IsWeighing());
  EXPECT_EQ(Rows(), (Texts{"Basic RED 6.000 lb.", "Basic BLUE 4.000 lb."}));
}

TEST_F(WeighingRoom, LeadsFromRowToRowAndSavesWhatWasWeighed) {
  SwitchOn();
  Weigh();
  ASSERT_TRUE(Put("6.000"));
  Done();
  EXPECT_EQ(Weighing(), "BLUE 4.000 lb.");
  EXPECT_EQ(On("lblLeft"), "The last row");
  EXPECT_EQ(On("lblSWeight"), "0.000") << "what is read of the row before is dropped";
  // Too much: No keeps it on the scale, Yes asks what becomes of the Batch.
  ASSERT_TRUE(Put("4.500"));
  prompt.Expect("Scale weight is over desired amount", Answer::No, "OK to use overweight value?");
  Done();
  EXPECT_EQ(Weighing(), "BLUE 4.000 lb.");
  prompt.Expect("Scale weight is over desired amount", Answer::Yes);
  prompt.Expect("Excess Basic Color Weight", Answer::Yes);
  prompt.Expect("Change in Amounts" + std::string(50, ' '), Answer::No);
  Done();
  EXPECT_EQ(Rows(), (Texts{"Basic RED 6.750 lb.", "Basic BLUE 4.500 lb."}));
  EXPECT_EQ(Weighing(), "RED 0.750 lb.") << "topped up, not poured anew";
  EXPECT_EQ(On("lblKind"), "Basic, 6.000 lb. weighed before");
  ASSERT_TRUE(Put("0.500"));
  prompt.Expect("Scale weight is under desired amount", Answer::Yes, "OK to use underweight value?");
  Done();
  EXPECT_FALSE(IsWeighing());
  ShowActive(*form);
  EXPECT_EQ(FocusName(), "cmdSave");
  EXPECT_TRUE(Results().empty());
  PressOn(Qt::Key_Return);
  EXPECT_EQ(Results(), (Texts{"RED 6.750 6.500", "BLUE 4.000 4.500"}));
  EXPECT_EQ(BasicStock("RED"), 93.5F);
  EXPECT_EQ(BasicStock("BLUE"), 95.5F);
  for (const std::string& command : scale.Commands())
    EXPECT_TRUE(command == "9600 ZRO" || command.starts_with("300 ")) << command;
}

TEST_F(WeighingRoom, ARowThatWasChangedBesideItIsNotPouredInto) {
  SwitchOn();
  Weigh();
  ASSERT_TRUE(Put("6.000"));
  ShowActive(*form);
  Fill(*form, "txtQuantity", "20");
  PressOn(Qt::Key_F3);
  EXPECT_TRUE(WaitFor([&] { return On("lblState").starts_with("The Batch was changed"); }));
  prompt.Expect("Weigh Ingredient");
  ShowActive(*weigh);
  Click(*weigh, "cmdSave");
  EXPECT_TRUE(IsWeighing());
  // Opened anew on a row of the operator's choice; the Batch does not go without it.
  Cell("lblAmount", 1).setFocus();
  ShowActive(*form);
  Cell("lblAmount", 1).setFocus();
  scale.Weigh("0.000");
  ASSERT_TRUE(WaitFor([&] { return On("lblSWeight") == "0.000"; }));
  PressOn(Qt::Key_F6);
  EXPECT_EQ(Weighing(), "BLUE 8.000 lb.");
  ASSERT_TRUE(Put("1.000"));
  prompt.Expect("Scale Weighing in Progress", Answer::No);
  EXPECT_FALSE(windows.CloseForm("BatchForm"));
  prompt.Expect("Scale Weighing in Progress", Answer::Yes);
  prompt.Expect("Batch Window - Save Information?", Answer::No);
  EXPECT_TRUE(windows.CloseForm("BatchForm"));
}

TEST_F(WeighingRoom, AHeavyRowIsWeighedInDraftsInTheUnitOfTheScale) {
  setup.ScaleUnit = 3;
  setup.ScaleCapacity = 1000;
  setup.WeighTolerance = 5;
  setup.WeighHeaviestFirst = true;
  Setting("InvLotTracking", "0");
  SwitchOn();
  Open();
  Make("TARGET", "10", Qt::Key_F3);
  PressOn(Qt::Key_F6);
  weigh = windows.Form("BatchScaleWeighForm");
  ASSERT_NE(weigh, nullptr);
  ShowActive(*weigh);
  EXPECT_EQ(Weighing(), "RED 2.000 lb.") << "a third of it";
  const auto grams = [&](const std::string& weight, const std::string& shown) {
    scale.Weigh(weight);
    return WaitFor([&] { return On("lblSWeight") == shown && On("lblState") == " "; });
  };
  ASSERT_TRUE(grams("910.0", "2.006")) << On("lblSWeight");
  EXPECT_EQ(On("lblWord"), "On target");
  EXPECT_EQ(On("lblKind"), "Basic, draft 1: 0.000 lb. of 6.000 lb. poured");
  EXPECT_EQ(On("lblScaleShows"), "The scale shows 910.000 g.");
  EXPECT_LE(weigh->height(), 500) << "in sight on full HD at 200 percent";
  Picture(*weigh, "weigh-draft", weigh->size());
  Done();
  EXPECT_EQ(Weighing(), "RED 1.997 lb.");
  ASSERT_TRUE(grams("906.0", "1.997"));
  Done();
  ASSERT_TRUE(grams("906.0", "1.997"));
  Done();  // 6.000 in all
  EXPECT_EQ(Weighing(), "BLUE 2.000 lb.");
  EXPECT_EQ(Rows(), (Texts{"Basic RED 6.000 lb.", "Basic BLUE 4.000 lb."}));
  scale.Weigh("0.0");
  EXPECT_TRUE(WaitFor([&] { return On("lblSWeight") == "0.000"; }));
  Press(*weigh, Qt::Key_Escape);
  EXPECT_FALSE(IsWeighing()) << "a reading of nothing asks nothing";
}

// The lots of a row are asked for after either answer.
TEST_F(WeighingRoom, LotsFollowAnotherAmount) {
  Setting("InvLotTracking", "1");
  ReadSettings(session);
  SwitchOn();
  Weigh();
  int selectors = 0;
  for (const Answer reformulate : {Answer::Yes, Answer::No}) {
    const bool yes = reformulate == Answer::Yes;
    ASSERT_TRUE(Put(yes ? "6.600" : "4.500"));
    prompt.Expect("Scale weight is over desired amount", Answer::Yes);
    prompt.Expect("Excess Basic Color Weight", reformulate);
    if (yes) prompt.Expect("Change in Amounts" + std::string(50, ' '), Answer::No);
    InDialog([&] { Done(); },
             [&](QWidget& selector) {
               EXPECT_EQ(selector.objectName(), "BatchLotInvSelector");
               ++selectors;
               prompt.Expect("Cancel Without Saving Changes?", Answer::Yes);
               Press(selector, Qt::Key_Escape);
             });
  }
  EXPECT_EQ(selectors, 2);
}

// Without a scale it opens, and says so.
TEST_F(WeighingRoom, WithoutAScaleNothingIsTaken) {
  Weigh();
  EXPECT_TRUE(WaitFor([&] { return On("lblState").starts_with("The scale is off."); }));
  prompt.Expect("Scale", Answer::Ok, "The scale is not on. Switch it on first.");
  Done();
  EXPECT_FALSE(Control(*weigh, "cmdTare").isEnabled());
  Press(*weigh, Qt::Key_Escape);
  EXPECT_FALSE(IsWeighing());
}

}  // namespace
}  // namespace vellumark::test
