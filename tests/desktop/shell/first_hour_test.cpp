// The first hour as the README tells it, from an empty folder to the first backup, by keys alone.

#include <gtest/gtest.h>

#include <QLineEdit>
#include <QTextBrowser>
#include <QTimer>

#include "by_keys.h"
#include "core/backup/backup_set.h"
#include "support/sound.h"

namespace vellumark::test {
namespace {

struct FirstHourTest : ByKeys {
  // The program begins with dialogs, one after the other; each gets its keys once.
  void Begin() {
    running = std::make_unique<Running>(folder.Path());
    std::filesystem::create_directories(folder / "stick");
    std::set<std::string> seen;
    QTimer steps;
    QObject::connect(&steps, &QTimer::timeout, [&] {
      QWidget* modal = QApplication::activeModalWidget();
      if (modal == nullptr || QApplication::focusWidget() == nullptr || !seen.insert(Name(*modal)).second) return;
      if (Name(*modal) == "NewSetupForm") Key(Qt::Key_S, Qt::ControlModifier);
      if (Name(*modal) == "NewDataFileForm") {
        Key(Qt::Key_C, Qt::AltModifier);
        // Out of this timer, which does not run again inside what it began.
        QMetaObject::invokeMethod(modal, [this] { Key(Qt::Key_N, Qt::AltModifier); }, Qt::QueuedConnection);
      }
      if (Name(*modal) == "MessageDialog") Key(Qt::Key_Return);
    });
    steps.start(20);
    // The folder on the stick is chosen in the platform's own dialog.
    desktop::DataFilePlatform platform;
    platform.choose = [this](const desktop::FileChoice&, QWidget*) {
      return QString::fromStdString((folder / "stick").string());
    };
    ASSERT_TRUE(running->Start(platform));
    steps.stop();
    for (const char* dialog : {"NewSetupForm", "NewDataFileForm", "MessageDialog"}) EXPECT_TRUE(seen.contains(dialog));
    running->program.Main().showNormal();
    running->program.Main().resize(1280, 720);
    running->program.Main().activateWindow();
    Settle();
  }
  ~FirstHourTest() override {
    if (running == nullptr) return;
    running->program.Main().close();
    Settle();
    running.reset();
    RunAgain();
  }
  static std::string Name(const QWidget& widget) { return widget.objectName().toStdString(); }

  void EnterInk(const char* name, const char* cost) {
    Keys(name);
    KeyInto(Qt::Key_Return, Qt::NoModifier, "MessageDialog", [&] { Key(Qt::Key_Y); });
    for (int step = 0; step < 8 && FocusName() != "txtPurchaseCost"; ++step) Key(Qt::Key_Return);
    Keys(cost);
    Key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(FocusName(), "cmbColorName");
  }

  SoundFolder folder;
};

TEST_F(FirstHourTest, FromAnEmptyFolderToTheFirstBackup) {
  Begin();
  desktop::MainForm& main = running->program.Main();
  Picture(main, "first-steps");
  EXPECT_EQ(FocusName(), "cmdFirstBasics");
  Key(Qt::Key_Return);
  ASSERT_TRUE(IsOpen("BasicColorsForm"));
  EnterInk("DEEP BLUE", "12.75");
  EnterInk("CLEAN YELLOW", "8.9");
  EnterInk("CLEAR WHITE", "4.1");
  EXPECT_EQ(Figure("SELECT COUNT(*) FROM PANTONE_Basic WHERE PurchaseCost > 4"), 3);

  Key(Qt::Key_2, Qt::ControlModifier);
  ASSERT_TRUE(IsOpen("ColorsMenu"));
  Key(Qt::Key_M);
  ASSERT_TRUE(IsOpen("MixColorsForm"));
  Keys("IVY GREEN");
  KeyInto(Qt::Key_Return, Qt::NoModifier, "MessageDialog", [&] { Key(Qt::Key_Y); });
  for (const auto& [ink, parts] : {std::pair{"DEEP BLUE", "4"}, {"CLEAN YELLOW", "10"}, {"CLEAR WHITE", "6"}}) {
    Keys(ink);
    Key(Qt::Key_Return);
    Keys(parts);
    Key(Qt::Key_Return);
  }
  Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Figure("SELECT BQ1 FROM PANTONE_Mix WHERE Color_Name = 'IVY GREEN'"), 50);

  // What was bought stands on the shelf.
  // It explains itself once.
  KeyInto(Qt::Key_5, Qt::ControlModifier, "InvLotInstructions", [&] { Key(Qt::Key_Escape); });
  ASSERT_TRUE(IsOpen("AdjustInventoryForm"));
  for (const auto& [ink, quantity] : {std::pair{"DEEP BLUE", "60"}, {"CLEAN YELLOW", "80"}, {"CLEAR WHITE", "200"}}) {
    Keys(ink);
    Key(Qt::Key_Return);
    Keys(quantity);
    Key(Qt::Key_F5);
    Key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(FocusName(), "cmbColorName");
  }
  EXPECT_EQ(Figure("SELECT SUM(Inventory) FROM PANTONE_Basic"), 340);

  Key(Qt::Key_3, Qt::ControlModifier);
  ASSERT_TRUE(IsOpen("BatchForm"));
  Keys("IVY GREEN");
  keys = 0;
  Key(Qt::Key_Return);
  Keys("25");
  Key(Qt::Key_Return);
  Picture(main, "first-batch");
  // What is made has no lot number, which is asked about.
  KeyInto(Qt::Key_S, Qt::ControlModifier, "BatchFormLotNumReminder", [&] { Key(Qt::Key_N); });
  EXPECT_LT(keys, 10);
  EXPECT_EQ(Figure("SELECT COUNT(*) FROM PANTONE_Batch"), 1);
  EXPECT_EQ(Figure("SELECT SUM(Inventory) FROM PANTONE_Basic"), 315);

  Key(Qt::Key_6, Qt::ControlModifier);
  ASSERT_TRUE(IsOpen("LabelMenu"));
  Key(Qt::Key_Return);
  ASSERT_TRUE(IsOpen("LabelForm"));

  Key(Qt::Key_7, Qt::ControlModifier);
  ASSERT_TRUE(IsOpen("ReportsForm"));
  Key(Qt::Key_W, Qt::ControlModifier);

  // A backup onto the stick: through the menus by their letters.
  Key(Qt::Key_F, Qt::AltModifier);
  running->prompt.SetHook([](const Message&) { return std::optional(Answer::Ok); });
  QTimer chooses;
  bool shown = false;
  QObject::connect(&chooses, &QTimer::timeout, [&] {
    auto* dialog = QApplication::activeModalWidget();
    if (dialog == nullptr || dialog->objectName() != "BackupFileLocationForm") return;
    chooses.stop();
    shown = true;
    dialog->activateWindow();
    Settle();
    Press(*dialog->focusWidget(), Qt::Key_Return);
  });
  chooses.start(5);
  for (const Qt::Key letter : {Qt::Key_B, Qt::Key_F}) {
    QWidget* menu = QApplication::activePopupWidget();
    ASSERT_NE(menu, nullptr);
    Press(*menu, letter);
  }
  EXPECT_TRUE(shown);
  running->prompt.SetHook([](const Message&) { return std::optional<Answer>(); });
  const std::vector<BackupSet> sets = ListSets(folder / "stick");
  ASSERT_EQ(sets.size(), 1U);
  EXPECT_TRUE(sets.front().proof && sets.front().proof->content.Sound());

  main.activateWindow();
  Settle();
  Key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  ASSERT_TRUE(IsOpen("UndoForm"));
  Picture(main, "first-undo");
  KeyInto(Qt::Key_Return, Qt::NoModifier, "MessageDialog", [&] { Key(Qt::Key_Y); });
  EXPECT_EQ(Figure("SELECT COUNT(*) FROM PANTONE_Batch"), 0);
  EXPECT_EQ(Figure("SELECT SUM(Inventory) FROM PANTONE_Basic"), 340);
  std::cout << keys << " keys\n";
}

}  // namespace
}  // namespace vellumark::test
