// A Batch of three containers, from its labels to what comes back of them.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <sstream>

#include "core/inventory/lots.h"
#include "core/jobs/job_record.h"
#include "desktop/kit/message_prompt.h"
#include "furnished_room.h"
#include "running.h"
#include "support/pdf_text.h"
#include "support/scanner.h"

namespace vellumark::test {
namespace {

struct ContainersTest : testing::Test {
  ContainersTest() {
    const std::vector<std::vector<std::string>> verbs{
        {"batch", "save", "--formula", "VIOLET", "--quantity", "12", "--mix", "--lot", "RED=A:6", "--lot", "BLUE=C:6",
         "--lot-number", "V7", "--lot-cont", "B10", "--job", "J7=4", "--job", "J8=3"},
        {"label", "copy", "Default Label", "Drums"},
        {"label", "set", "Drums", "Label BC Type", "Code 128"},
    };
    for (std::vector<std::string> verb : verbs) {
      verb.insert(verb.begin(), {"--now", "2026-03-10 11:30:00", "--yes"});
      const CliAnswer answer = room.Run(verb);
      if (answer.status != 0) throw std::runtime_error(verb[3] + " " + verb[4] + ": " + answer.err);
    }
  }
  void Start() {
    running = std::make_unique<RunningProgram<desktop::MessagePrompt>>(room.folder.Path());
    running->windows.setProperty("InvLotInstructionsShown", true);  // its reminder was seen
    ASSERT_TRUE(running->Start());
    running->prompt.SetHook([this](const Message& message) {
      told.push_back(message.title);
      return message.buttons == Buttons::Ok ? Answer::Ok : Answer::Yes;
    });
  }
  ~ContainersTest() override {
    if (!running) return;
    running->program.Main().close();
    Settle();
  }
  /// The codes of each page, as a scanner of labels' resolution reads them.
  std::vector<std::string> Read(const std::string& pdf, int page) const {
    const std::string image = room.folder / "page";
    RunTool(fmt::format("pdftoppm -gray -aaVector no -r 203 -f {0} -l {0} -singlefile '{1}' '{2}'", page, pdf, image));
    std::istringstream all(RunTool(
        fmt::format("zbarimg -q --raw -Sdisable -Scode128.enable -Sqrcode.enable '{}.pgm' 2>/dev/null", image)));
    std::vector<std::string> lines;
    for (std::string line; std::getline(all, line);) lines.push_back(line);
    return lines;
  }
  float Lot(std::string_view number) {
    float there = 0;
    for (const LotRow& lot : LotsNumbered(running->session, ColorKind::Mix, "VIOLET", {}, number)) there += lot.LotQty;
    return there;
  }

  FurnishedRoom room;
  std::unique_ptr<RunningProgram<desktop::MessagePrompt>> running;
  std::vector<std::string> told;
};

TEST_F(ContainersTest, AreLabelledInOneKeyAndScannedBack) {
  Start();
  auto& windows = running->windows;
  Session& session = running->session;
  const std::int32_t batch = 3;
  ASSERT_FLOAT_EQ(Lot("V7"), 5);
  desktop::Window* view = windows.OpenForm("ViewBatchForm", {{"BatchNo", batch}});
  ShowActive(running->program.Main());
  view->setFocus();
  Control(*view, "cmdClose").setFocus();
  PressOn(Qt::Key_L, Qt::ControlModifier);
  ASSERT_TRUE(WaitFor([&] { return windows.IsFormOpen("LabelForm"); }));
  desktop::Window* labels = windows.Form("LabelForm");
  Control<QComboBox>(*labels, "cmbLabelName").setCurrentText("Drums");
  Q_EMIT Control<QComboBox>(*labels, "cmbLabelName")
      .activated(Control<QComboBox>(*labels, "cmbLabelName").currentIndex());
  Control<QCheckBox>(*labels, "chkQRCode").setChecked(true);
  Control<QCheckBox>(*labels, "chk_BC_Identifier").setChecked(true);
  Settle();
  const std::string pdf = room.folder / "drums.pdf";
  running->chooseFile = [&](const desktop::FileChoice&) { return QString::fromStdString(pdf); };
  Click(*labels, "cmdPDF");
  ASSERT_TRUE(WaitFor([&] { return std::filesystem::exists(pdf); })) << fmt::format("{}", fmt::join(told, ", "));
  ASSERT_EQ(ReadPdf(pdf).size(), 3U);

  // What the codes of the pages say, typed into the Scan tab: the first container comes back from its job, the third
  // one, which no job had, is added to.
  desktop::Window* inventory = windows.OpenForm("AdjustInventoryForm");
  Settle();
  Control<QTabWidget>(*inventory, "Inventory_TabStrip").setCurrentIndex(1);
  Settle();
  ASSERT_EQ(FocusName(), "Scan_Data");
  Scanner scanner;
  const auto scan = [&](int page, const std::string& quantity) {
    const std::vector<std::string> lines = Read(pdf, page);
    EXPECT_GT(lines.size(), 4U) << "page " << page
                                << " of the labels reads: " << fmt::format("{}", fmt::join(lines, " / "));
    for (const std::string& line : lines) {
      scanner.Pause();
      scanner.Type(line + "\r\n");
    }
    scanner.Pause();
    scanner.Type(quantity + "\r");
  };
  scan(1, "4");
  scan(3, "2");
  Press(Control(*inventory, "Scan_Data"), Qt::Key_S, Qt::ControlModifier);
  PressOn(Qt::Key_F9);
  const auto message = [&] { return Control<QPlainTextEdit>(*inventory, "txtMessages").toPlainText().toStdString(); };
  EXPECT_EQ(message(), "Job Number: J7  updated successfully.");
  Click(*inventory, "cmdNext");
  EXPECT_EQ(message(), "VIOLET inventory updated successfully.");
  EXPECT_FLOAT_EQ(Lot("V7"), 11);
  EXPECT_TRUE(JobItems(session, "J7").empty());
  ASSERT_EQ(JobItems(session, "J8").size(), 1U);
  EXPECT_FLOAT_EQ(JobItems(session, "J8").front().QtyUsed, 3);
  Click(*inventory, "cmdDone");
}

// The key is there wherever a colour, a lot or a Batch is on screen, and says what is on screen.
TEST_F(ContainersTest, EachWindowHandsItsSubjectToTheLabels) {
  Start();
  auto& windows = running->windows;
  struct {
    const char* window;
    desktop::Arguments arguments;
    const char* field;
    const char* text;
  } const cases[] = {
      {"BasicColorsForm", {{"FindRecord", "RED"}}, "txtColorName", "RED"},
      {"MixColorsForm", {{"FindRecord", "TINT"}}, "txtColorName", "TINT"},
      {"AdjustInventoryForm", {{"FindRecord", "VIOLET"}, {"Kind", ColorKind::Mix}}, "txtLotNumber", "V1"},
      {"ViewBatchForm", {{"BatchNo", 3}}, "txtLotContID", "B10_1"},
      {"BatchForm", {{"BatchNo", 3}}, "txtJobNumber", "J7"},
  };
  ShowActive(running->program.Main());
  for (const auto& c : cases) {
    SCOPED_TRACE(c.window);
    desktop::Window* window = windows.OpenForm(c.window, c.arguments);
    Settle();
    if (auto* lots = window->findChild<desktop::Grid*>("InvColorList"); lots != nullptr && lots->isVisible())
      lots->SetCurrentRow(1);
    ASSERT_TRUE(Control(*window, "cmdPrintLabel").isEnabled());
    Click(*window, "cmdPrintLabel");
    ASSERT_TRUE(WaitFor([&] { return windows.IsFormOpen("LabelForm"); }));
    EXPECT_EQ(Control<QLineEdit>(*windows.Form("LabelForm"), c.field).text(), c.text);
    windows.CloseForm("LabelForm");
    windows.CloseForm(c.window);
    Settle();
  }
}

}  // namespace
}  // namespace vellumark::test
