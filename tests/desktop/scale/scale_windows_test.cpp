// The windows of the scale, against a scale on a pseudo-terminal.

#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QProgressBar>
#include <QTabWidget>
#include <filesystem>

#include "core/base/files.h"
#include "desktop/scale/bench_scale.h"
#include "desktop/scale/register.h"
#include "devices/system_line.h"
#include "support/desktop.h"
#include "support/ink_room.h"
#include "support/scale_on_pty.h"

namespace vellumark::test {
namespace {

using Lines = std::vector<std::string>;

struct ScaleWindows : testing::Test, InkRoom {
  ScaleWindows() {
    RegisterScaleWindows(windows, bench, folder.Path());
    bench.SetBootTime(60);
    bench.TakeOver();
  }
  void Set(QWidget& dialog, const char* name, const QString& text) {
    auto& combo = Control<QComboBox>(dialog, name);
    if (combo.isEditable()) {
      combo.setFocus(Qt::TabFocusReason);
      Press(combo, Qt::Key_A, Qt::ControlModifier);
      Type(combo, text.toStdString());
    } else {
      combo.setCurrentIndex(combo.findText(text));
    }
    EXPECT_EQ(combo.currentText(), text);
  }
  bool IsOn(QWidget& dialog, const char* name) { return Control(dialog, name).isEnabled(); }
  QString Weight(QWidget& dialog) { return Control<QLabel>(dialog, "lblweight").text(); }

  desktop::WindowList windows{session};
  desktop::BenchScale bench{windows};
  ScaleOnPty scale{folder.Path()};
};

TEST_F(ScaleWindows, SettingsAreTriedOnTheScaleAndThenSaved) {
  // A machine may have ports of its own.
  if (devices::SystemLine()->Ports().empty())
    prompt.Expect(" No Comm Ports !", Answer::Ok,
                  "Windows cannot find Comm Ports\n\n\nUse Windows Device Manager \nto find or manage Comm Ports");
  WithModal([&] { bench.Setup(); },
            [&](QWidget& dialog) {
              EXPECT_FALSE(IsOn(dialog, "cmdStop"));
              Set(dialog, "cmbCommPort", QString::fromStdString(scale.Port()));
              Set(dialog, "cmbBaudRate", "9600");
              scale.Weigh("2.125");
              Click(dialog, "cmdBegin");
              EXPECT_EQ(session.ScalePowered, 1);
              EXPECT_TRUE(WaitFor([&] { return Weight(dialog) == "2.125"; }));
              EXPECT_FALSE(IsOn(dialog, "cmdBegin"));
              Picture(dialog, "scale-settings", dialog.size());
              Click(dialog, "cmdTare");
              EXPECT_EQ(Weight(dialog), "0.000");
              // Another value ends the test, and the scale hears of it at the speed that it has.
              Set(dialog, "cmbBaudRate", "4800");
              EXPECT_EQ(session.ScalePowered, 0);
              EXPECT_TRUE(IsOn(dialog, "cmdBegin"));
              EXPECT_EQ(Weight(dialog), "");
              EXPECT_EQ(scale.Commands(), (Lines{"300 PON", "300 CFC 9600 7 1 1 0 0", "9600 ZRO",
                                                 "9600 CFC 300 7 1 1 0 0", "300 POF"}));
              // Saved while it is tried: off first.
              Click(dialog, "cmdBegin");
              Control<QTabWidget>(dialog, "TabScale").setCurrentIndex(1);
              Set(dialog, "cmbScaleUnit", "g.");
              Fill(dialog, "txtScaleCapacity", "30000");
              Fill(dialog, "txtWeighTolerance", "1.5");
              Set(dialog, "cmbWeighTolerance", "% more or less");
              Click(dialog, "chkWeighHeaviestFirst");
              Picture(dialog, "scale-settings-weighing", dialog.size());
              Click(dialog, "cmdSave");
            });
  EXPECT_EQ(session.ScalePowered, 0);
  EXPECT_EQ(scale.Commands().back(), "300 POF");
  const ScaleSetup setup = ReadScaleSetup(session);
  EXPECT_EQ(LineText(setup.Line()), scale.Port() + " 4800,O,7,1 comXOnXoff");
  EXPECT_EQ(setup.ScaleUnit, 3);
  EXPECT_EQ(setup.ScaleCapacity, 30000.0F);
  EXPECT_EQ(setup.WeighTolerance, 1.5F);
  EXPECT_TRUE(setup.WeighToleranceInPercent && setup.WeighHeaviestFirst);
  EXPECT_TRUE(ReadFileBytes(folder / "Vellumark_CommPortLogFile.txt").starts_with("Date - 2026-03-10\r\nError 8002, "));
}

TEST_F(ScaleWindows, TheReportOfThePortsIsShownAndWhatCannotBeIsRefused) {
  ScaleSetup setup;
  setup.CommPort = scale.Port();
  ASSERT_TRUE(StoreScaleSetup(session, setup));
  WithModal([&] { bench.Setup(); },
            [&](QWidget& dialog) {
              EXPECT_EQ(Control<QComboBox>(dialog, "cmbCommPort").currentText().toStdString(), scale.Port());
              prompt.Expect("Comm port log report", Answer::Ok);
              prompt.Expect("Comm Port Log File", Answer::Ok,
                            "saved to the desktop\n\n" + (folder / "Vellumark_CommPortLogFile.txt").string());
              Click(dialog, "cmdCommErrors");
              Set(dialog, "cmbCommPort", QString::fromStdString((folder / "none").string()));
              prompt.Expect("Scale");
              Click(dialog, "cmdBegin");
              ShowActive(dialog);
              EXPECT_EQ(FocusName(), "cmbCommPort");
              EXPECT_EQ(session.ScalePowered, 0);
              Press(dialog, Qt::Key_Escape);
            });
  EXPECT_EQ(ReadScaleSetup(session).CommPort, scale.Port()) << "left without saving";
  EXPECT_TRUE(scale.Commands().empty());
  // Where the report cannot be written the settings open all the same.
  std::filesystem::remove(folder / "Vellumark_CommPortLogFile.txt");
  std::filesystem::create_directory(folder / "Vellumark_CommPortLogFile.txt");
  prompt.Expect((folder / "Vellumark_CommPortLogFile.txt").string());
  WithModal([&] { bench.Setup(); }, [&](QWidget& dialog) { Press(dialog, Qt::Key_Escape); });
}

TEST_F(ScaleWindows, TheWaitShowsABarAndCannotBeClosed) {
  ScaleSetup setup;
  setup.CommPort = scale.Port();
  ASSERT_TRUE(StoreScaleSetup(session, setup));
  bench.SetBootTime(400);
  std::vector<double> parts;
  QObject::connect(&bench, &desktop::BenchScale::Booting, [&](const QString& text, double part, int) {
    QWidget* wait = QApplication::activeModalWidget();
    ASSERT_NE(wait, nullptr);
    EXPECT_EQ(wait->objectName(), "WaitForm_ScaleBoot");
    EXPECT_EQ(text, "Powering & Configuring Scale");
    parts.push_back(part);
    if (parts.size() != 3) return;
    EXPECT_EQ(Control<QLabel>(*wait, "lblMessage").text(), "Powering & Configuring Scale");
    EXPECT_EQ(Control<QLabel>(*wait, "lblLeft").text(), "1 s left");
    EXPECT_GT(Control<QProgressBar>(*wait, "pbProgress").value(), 0);
    Picture(*wait, "scale-boot", wait->size());
    Press(*wait, Qt::Key_Escape);
    wait->close();
    EXPECT_TRUE(wait->isVisible()) << part;
  });
  bench.SwitchOn();
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  ASSERT_GT(parts.size(), 4U);
  EXPECT_EQ(parts.front(), 0);
  EXPECT_EQ(parts.back(), 1) << "one bar over both boots";
  EXPECT_TRUE(std::ranges::is_sorted(parts));
  EXPECT_EQ(session.ScalePowered, 1);
  prompt.Expect("Power off scale", Answer::Ok, "Power scale off to use the Setup feature");
  bench.Setup();
  scale.PullOut();
  prompt.Expect("Scale");
  bench.disconnect();
  bench.SwitchOff();
  EXPECT_EQ(session.ScalePowered, 0);
}

}  // namespace
}  // namespace vellumark::test
