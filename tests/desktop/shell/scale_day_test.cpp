// The main job at the scale, in the whole program: a Batch of the sample ink room is weighed by keyboard alone, saved and sent.

#include <gtest/gtest.h>

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/batch/dispensers.h"
#include "running.h"
#include "support/cli_run.h"
#include "support/places.h"
#include "support/scale_on_pty.h"

namespace vellumark::test {
namespace {

namespace fs = std::filesystem;

struct ScaleDay : testing::Test {
  ScaleDay() {
    room.MakeFile();
    Done({"settings", "set", "InvLotTracking", "0"});
    std::ifstream in(SourceFolder() / "data/ink_room/basics.tsv");
    std::string line;
    for (std::getline(in, line); std::getline(in, line);) {
      std::istringstream cells(line);
      std::string name, code;
      std::getline(cells, name, '\t');
      std::getline(cells, code, '\t');
      Done({"color", "add", name, "Color_Code=" + code});
      Done({"stock", "adjust", name, "500"});
    }
    Done({"--yes", "formula", "import", (SourceFolder() / "data/ink_room/ink_room.mfe").string()});
    Done({"formula", "edit", "DENIM BLUE 45", "Recycle=true"});
    Done({"stock", "adjust", "DENIM BLUE 45", "8", "--kind", "formula"});
    Done({"scale", "settings", "CommPort=" + scale.Port(), "BaudRate=9600"});
    fs::create_directory(room.folder / "hot");
    for (const DispenserFormat& format : DispenserFormats()) {
      const std::string code(format.code);
      fs::create_directory(room.folder / "hot" / code);
      Done({"dispenser", "add", code, "--format", code, "--folder", (room.folder / "hot" / code).string()});
    }
  }
  void Done(const std::vector<std::string>& verb) const {
    const CliAnswer answer = room.Run(verb);
    if (answer.status != 0) throw std::runtime_error(verb[0] + " " + verb[1] + " " + verb[2] + ": " + answer.err);
  }
  std::string Says(const char* label) { return Control<QLabel>(*weigh, label).text().toStdString(); }
  static double Number(const std::string& text) { return ParseNumber(text.substr(0, text.find(' '))).value(); }

  CliRoom room;
  ScaleOnPty scale{room.folder.Path()};
  RunningProgram<ScriptedPrompt> running{room.folder.Path()};
  QPointer<desktop::Window> weigh;
};

TEST_F(ScaleDay, ABatchIsWeighedByKeyboardSavedAndSentInAllFormats) {
  ASSERT_TRUE(running.Start({desktop::ChooseFile, [this](const auto&) { return room.folder.Path(); }}));
  ScriptedPrompt& prompt = running.prompt;
  auto& main = running.program.Main();
  running.program.Scale().SetBootTime(30);
  main.findChild<QAction*>("menuScale_PowerOn")->trigger();
  ASSERT_EQ(running.session.ScalePowered, 1);
  EXPECT_FALSE(main.findChild<QAction*>("menuScale_PowerOn")->isEnabled());
  prompt.Expect("Power off scale");
  main.findChild<QAction*>("menuScale_Setup")->trigger();

  main.resize(1280, 720);
  ShowActive(main);
  PressOn(Qt::Key_3, Qt::ControlModifier);
  ASSERT_TRUE(WaitFor([&] { return running.windows.IsFormOpen("BatchForm"); }));
  desktop::Window* batch = running.windows.Form("BatchForm");
  TypeOn("HARBOUR BLUE NAVY");
  PressOn(Qt::Key_Return);
  TypeOn("100");
  PressOn(Qt::Key_F2);
  ASSERT_TRUE(running.windows.IsInEdit("BatchForm"));
  PressOn(Qt::Key_F6);
  weigh = running.windows.Form("BatchScaleWeighForm");
  ASSERT_NE(weigh, nullptr);
  std::map<std::string, double> poured;
  bool overpoured = false;
  int rows = 0;
  while (weigh != nullptr && running.windows.IsFormOpen("BatchScaleWeighForm") && rows < 20) {
    ++rows;
    ShowActive(*weigh);
    const std::string name = Says("lblIngredient");
    double weight = Number(Says("lblBWeight"));
    const bool tooMuch = !overpoured && Says("lblKind").starts_with("Basic");
    if (tooMuch) weight = RoundTo(weight + 1, 3);
    scale.Weigh(Fixed(weight, 3));
    ASSERT_TRUE(WaitFor([&] { return Says("lblSWeight") == Fixed(weight, 3) && Says("lblState") == " "; }))
        << name << Says("lblSWeight") << Says("lblState");
    poured[name] += weight;
    if (tooMuch) {
      // It stands beside the rows, and all of it on the screen.
      Picture(main, "batch-weighing");
      QWidget& amount = Control(*batch, "lblAmount0");
      const QRect cell(amount.mapToGlobal(QPoint(0, 0)), amount.size());
      const QRect frame(main.mapToGlobal(QPoint(0, 0)), main.size());
      EXPECT_FALSE(weigh->geometry().intersects(cell));
      EXPECT_TRUE(frame.contains(weigh->geometry())) << weigh->height();
      overpoured = true;
      prompt.Expect("Scale weight is over desired amount", Answer::Yes);
      prompt.Expect("Excess Basic Color Weight", Answer::Yes);
      prompt.Expect("Change in Amounts" + std::string(50, ' '), Answer::No);
    }
    ShowActive(*weigh);
    EXPECT_EQ(FocusName(), "cmdSave") << name << " in " << QApplication::activeWindow()->objectName().toStdString();
    PressOn(Qt::Key_Return);
  }
  EXPECT_FALSE(running.windows.IsFormOpen("BatchScaleWeighForm"));
  EXPECT_TRUE(overpoured);
  EXPECT_GT(rows, 4);
  EXPECT_GT(poured["DENIM BLUE 45"], 0);

  ShowActive(main);
  EXPECT_EQ(FocusName(), "cmdSave");
  PressOn(Qt::Key_F12);  // saved, and held
  double total = 0;
  for (const auto& [name, weight] : poured) {
    total += weight;
    Statement row = running.session.File().Prepare(
        "SELECT EndingWeight FROM INK_BatchScaleResults WHERE BatchID = 1 AND ColorName = ?");
    ASSERT_TRUE(row.Bind(1, name).Step()) << name;
    EXPECT_EQ(Fixed(row.Single(0), 3), Fixed(weight, 3)) << name;
  }
  for (const DispenserFormat& format : DispenserFormats()) {
    const std::string code(format.code);
    prompt.Expect("File Sent");
    WithModal([&] { PressOn(Qt::Key_F7); },
              [&](QWidget& dialog) {
                auto& combo = Control<QComboBox>(dialog, "cmbDispSel");
                EXPECT_EQ(FocusName(), "cmbDispSel");
                PressOn(Qt::Key_Home);
                while (combo.currentText().toStdString() != Upper(code) && combo.currentIndex() < combo.count() - 1)
                  PressOn(Qt::Key_Down);
                PressOn(Qt::Key_Tab);
                PressOn(Qt::Key_Tab);
                PressOn(Qt::Key_Space);  // the recycled ink too
                PressOn(Qt::Key_Return);
              });
    ShowActive(main);
    const std::string name = code == "XNI" ? "COR1-1-100326" : "1-03_10_2026";
    EXPECT_TRUE(fs::exists(room.folder / "hot" / code / (name + std::string(format.extension)))) << code;
  }
  const auto recipe =
      nlohmann::json::parse(ReadFileBytes(room.folder / "hot" / "JSON" / "1-03_10_2026.json"));
  EXPECT_EQ(recipe["Recipe"]["UseLeftOvers"], "YES");
  EXPECT_NEAR(ParseNumber(recipe["Recipe"]["Quantity"].get<std::string>()).value(), total, 0.01);
  batch->Leave();
  Settle();

  // The scale is switched off with the program.
  main.close();
  EXPECT_EQ(running.session.ScalePowered, 0);
  const auto commands = scale.Commands();
  ASSERT_GT(commands.size(), 4U);
  EXPECT_EQ(commands.front(), "300 PON");
  EXPECT_EQ(commands[1], "300 CFC 9600 7 1 1 0 0");
  EXPECT_EQ(commands[commands.size() - 2] + ", " + commands.back(), "9600 CFC 300 7 1 1 0 0, 300 POF");
}

// What was left on, such as by a program that was killed, is on for the next, which switches it off at its own end.
TEST_F(ScaleDay, AScaleThatWasLeftOnIsTakenOver) {
  Done({"scale", "on", "--boot-time", "20"});
  ASSERT_TRUE(running.Start({desktop::ChooseFile, [this](const auto&) { return room.folder.Path(); }}));
  running.program.Scale().SetBootTime(30);
  EXPECT_EQ(running.session.ScalePowered, 1);
  running.program.Main().close();
  EXPECT_EQ(scale.Commands().back(), "300 POF");
}

}  // namespace
}  // namespace vellumark::test
