// Every window walked by Tab and by Enter: both come by the same fields, and what is typed is taken or refused alike.

#include <gtest/gtest.h>

#include <QDialog>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTimer>
#include <set>

#include "core/batch/record.h"
#include "core/datafile/color_kind.h"
#include "desktop/batch/batch_form.h"
#include "desktop/kit/message_prompt.h"
#include "exchange_arguments.h"
#include "running.h"
#include "support/cli_run.h"

namespace vellumark::test {
namespace {

using desktop::Field;

struct Walked {
  const char* window;
  desktop::Arguments shows = {};
  bool enterActs = false;          ///< in a field of it, instead of going on
  const char* latePage = nullptr;  ///< built when it is first looked at
};

// Those with fields that open by themselves, but for the Batch Window, where Enter mixes.
std::vector<Walked> Windows() {
  return {{"BasicColorsForm", {{"FindRecord", "RED"}}},
          {"BasicColorsForm"},
          {"BasicColorsForm", {{"FindRecord", "RED"}}, false, "TabLab"},
          {"BasicColorsForm", {{"FindRecord", "RED"}}, true, "TabInventory"},
          {"MixColorsForm", {{"FindRecord", "TARGET"}}, false, "TabLab"},
          {"MixColorsForm", {{"FindRecord", "TARGET"}}, true, "TabInventory"},
          {"MixColorsForm", {{"FindRecord", "TARGET"}}},
          {"MixColorsForm"},
          {"AdjustInventoryForm", {{"FindRecord", "RED"}, {"Kind", ColorKind::Basic}}, true},
          {"AdjustReorderForm", {{"FindRecord", "RED"}, {"Kind", ColorKind::Basic}}},
          {"StockHistoryForm"},
          {"ResetInvForm"},
          {"ResetReorderForm"},
          {"DBAdditiveControl"},
          {"DBFormulaModifierForm"},
          {"DBRenameColors"},
          {"DBDelColors"},
          {"ResetBasicCostForm"},
          {"ResetMixCostForm"},
          {"ResetBasic_VOC_HAP_Form"},
          {"ResetMixColor_VOC_HAP"},
          {"DefaultCostModelForm"},
          {"VOC_HAP_OptMenu"},
          {"AutofillForm"},
          {"RemindersForm"},
          {"UMSettingForm"},
          {"UnitCostAccuracyForm"},
          {"OptionMaxNameLen"},
          {"NewDBForm"},
          {"RenameDBForm"},
          {"NewBasicNameForm", {{"Color_Name", "RED"}}},
          {"NewMixNameForm", {{"Color_Name", "TARGET"}}},
          {"JobForm", {{"JobNumber", "J1"}}},
          {"NewJobNumberForm", {{"JobNumber", "J1"}}},
          {"AddJobItemForm", {{"JobNumber", "J1"}, {"DesignID", ""}}},
          {"JobClosingDate", {{"JobNumber", "J1"}}},
          {"JobDesigns", {{"DesignID", "BOX"}}},
          {"JobDesign_Rename", {{"DesignID", "BOX"}}},
          {"DesignBenchForm", {{"DesignID", "BOX"}}},
          {"InkEstForm"},
          {"LabelForm"},
          {"GH_LabelForm"},
          {"Formula_LabelForm", {{"Color_Name", "TARGET"}}},
          {"LabelDataSelection"},
          {"InkEstMileageForm"},
          {"InkEstAniloxValueForm"},
          {"ExportBatchesForm"},
          {"ExportJobRecords"},
          {"DBExport_Formulas"},
          {"DBImport_Formulas"},
          {"ExportImportFileExamples"},
          {"LabelLayoutForm"},
          {"GH_LabelLayoutForm"},
          {"Formula_LabelLayoutForm"},
          {"NewUserForm"},
          {"NewAdminForm"},
          {"LoginForm"},
          {"ReorderForm"},
          {"ProductionForm"},
          {"InventoryReportsForm"},
          {"ScaleSettings"},
          {"FindBatch"}};
}

Field* FieldWithFocus() {
  for (QWidget* widget = QApplication::focusWidget(); widget != nullptr; widget = widget->parentWidget())
    if (auto* field = dynamic_cast<Field*>(widget)) return field;
  return nullptr;
}

std::string NameOf(Field* field) {
  return field == nullptr ? std::string() : field->Control().objectName().toStdString();
}

// The first field of the window in its order, with the focus.
bool Begin(QWidget& window) {
  for (QWidget* next = window.nextInFocusChain(); next != &window; next = next->nextInFocusChain()) {
    if (!window.isAncestorOf(next) || !next->isVisible() || !next->isEnabled() || next->focusProxy() != nullptr)
      continue;
    if ((next->focusPolicy() & Qt::TabFocus) == 0) continue;
    next->setFocus(Qt::TabFocusReason);
    if (FieldWithFocus() == nullptr) continue;
    Settle();
    return true;
  }
  return false;
}

void GoOn(Qt::Key key) {
  const bool note = qobject_cast<QPlainTextEdit*>(QApplication::focusWidget()) != nullptr;
  PressOn(key, note && key == Qt::Key_Return ? Qt::ControlModifier : Qt::NoModifier);
}

struct WalkTest : testing::Test {
  WalkTest() {
    room.MakeFile();
    for (const std::vector<std::string>& verb : std::vector<std::vector<std::string>>{
             {"color", "add", "RED", "PurchaseCost=4.25"},
             {"color", "add", "BLUE"},
             {"color", "add", "DRIER", "Additive=true"},
             {"formula", "add", "TARGET", "RED=60", "BLUE=40"},
             {"addset", "add", "STD SET", "DRIER=2"},
             {"design", "add", "BOX", "TARGET=2:40", "Impressions=1000", "Length=10", "Width=8"},
             {"settings", "set", "InvLotTracking", "1"},
             {"stock", "adjust", "RED", "500", "--lot", "A"},
             {"stock", "adjust", "BLUE", "500"},
             {"batch", "save", "--formula", "TARGET", "--quantity", "20", "--mix", "--job", "J1=15"}}) {
      const CliAnswer answer = room.Run(verb);
      if (answer.status != 0) throw std::logic_error(verb[0] + " " + verb[1] + ": " + answer.err);
    }
    const bool ready = running.Start({desktop::ChooseFile, [&](const auto&) { return room.folder.Path(); }});
    if (!ready) throw std::logic_error("the program did not start");
    running.prompt.SetHook([this](const Message& message) {
      told.push_back(message.title + ": " + message.text);
      return message.buttons == Buttons::YesNo || message.buttons == Buttons::YesNoCancel ? Answer::No
             : message.buttons == Buttons::OkCancel                                       ? Answer::Cancel
                                                                                          : Answer::Ok;
    });
    running.program.Main().activateWindow();
    Settle();
    // A dialog that a field or a window opens of its own goes as it came.
    QObject::connect(&strays, &QTimer::timeout, [this] {
      auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      if (dialog == nullptr || dialog->objectName() == walkedName) return;
      if (dialog->objectName() != "InvLotInstructions") told.push_back(dialog->objectName().toStdString());
      dialog->done(QDialog::Rejected);
    });
    strays.start(5);
  }

  // Looks at the late page of the window, with its fields.
  static void LookAt(QWidget& window, const char* page) {
    if (page == nullptr) return;
    auto& sheet = Control(window, page);
    for (auto* tabs : window.findChildren<QTabWidget*>())
      if (tabs->indexOf(&sheet) >= 0) tabs->setCurrentWidget(&sheet);
    Settle();
    EXPECT_TRUE(sheet.isVisible());
    EXPECT_FALSE(sheet.findChildren<QWidget*>().isEmpty()) << "the page was never built";
  }

  // Does `inside` in the window as it has just been opened, and lets it go unsaved.
  void In(const Walked& walked, const std::function<void(QWidget&)>& inside) {
    told.clear();
    walkedName = walked.window;
    desktop::Window* window = nullptr;
    try {
      window = running.windows.OpenForm(walked.window, walked.shows);
    } catch (const std::logic_error&) {
      WithModal([&] { static_cast<void>(running.windows.RunDialog(walked.window, walked.shows)); },
                [&](QWidget& dialog) {
                  const QPointer<QWidget> open = &dialog;
                  Settle();
                  inside(dialog);
                  if (auto* left = qobject_cast<QDialog*>(open.data()); left != nullptr) left->done(QDialog::Rejected);
                });
      return;
    }
    ASSERT_NE(window, nullptr);
    const QPointer<desktop::Window> open = window;
    Settle();
    running.program.Main().activateWindow();  // a stray had the keys
    Settle();
    LookAt(*window, walked.latePage);
    inside(*window);
    if (open != nullptr) open->Leave();
    Settle();
  }

  // With those that need what is in the room.
  std::vector<Walked> AllWindows() {
    std::vector<Walked> windows = Windows();
    windows.push_back({"ImportColumnsForm", OwnColumns(room.folder.Path())});
    windows.push_back({"ImportCompareFormulasForm", ComparedTarget(running.session)});
    return windows;
  }

  // The fields that the key comes by, from the first one on, until it comes back, leaves the fields or says something.
  std::vector<std::string> Passed(QWidget& window, Qt::Key key) {
    std::vector<std::string> names;
    std::set<std::string> seen;
    const QPointer<QWidget> open = &window;
    if (!Begin(window)) return names;
    for (int step = 0; step < 200 && open != nullptr && open->isVisible() && told.empty(); ++step) {
      Field* field = FieldWithFocus();
      if (field == nullptr && key == Qt::Key_Return) break;
      if (field != nullptr && (names.empty() || names.back() != NameOf(field))) {
        if (!seen.insert(NameOf(field)).second) break;
        names.push_back(NameOf(field));
      }
      if (QApplication::focusWidget() == nullptr) break;
      GoOn(key);
    }
    return names;
  }

  struct Taken {
    std::vector<std::string> told;
    std::string text;
    bool stays = false;
    bool operator==(const Taken&) const = default;
  };

  // The text typed into the field, and how the key went on.
  std::optional<Taken> Typed(QWidget& window, const std::string& name, const std::string& text, Qt::Key key) {
    auto* line = window.findChild<desktop::TextField*>(QString::fromStdString(name));
    if (line == nullptr || line->isReadOnly() || !line->isEnabled() || !line->isVisible()) return std::nullopt;
    const QPointer<desktop::TextField> field = line;
    field->setFocus(Qt::TabFocusReason);
    Settle();
    told.clear();
    Press(*field, Qt::Key_A, Qt::ControlModifier);
    TypeOn(text);
    if (field == nullptr || QApplication::focusWidget() != field) return std::nullopt;
    GoOn(key);
    if (field == nullptr) return std::nullopt;
    return Taken{told, field->Text(), QApplication::focusWidget() == field};
  }

  CliRoom room;
  RunningProgram<desktop::MessagePrompt> running{room.folder.Path()};
  std::vector<std::string> told;
  QTimer strays;
  QString walkedName;
};

TEST_F(WalkTest, TabAndEnterComeByTheSameFields) {
  for (const Walked& walked : AllWindows()) {
    if (walked.enterActs) continue;
    SCOPED_TRACE(walked.window);
    std::vector<std::string> byTab, byEnter;
    In(walked, [&](QWidget& window) { byTab = Passed(window, Qt::Key_Tab); });
    In(walked, [&](QWidget& window) { byEnter = Passed(window, Qt::Key_Return); });
    EXPECT_FALSE(byTab.empty());
    EXPECT_EQ(byTab, byEnter);
  }
}

TEST_F(WalkTest, WhatIsTypedIsTakenOrRefusedByTabAsByEnter) {
  for (const Walked& walked : AllWindows()) {
    std::vector<std::string> names;
    In(walked, [&](QWidget& window) { names = Passed(window, Qt::Key_Return); });
    if (!names.empty()) names.pop_back();  // behind the last one Enter is the default button
    for (const std::string& name : names) {
      for (const char* text : {"-5", "7"}) {
        SCOPED_TRACE(std::string(walked.window) + " " + name + " " + text);
        std::optional<Taken> byTab, byEnter;
        In(walked, [&](QWidget& window) { byTab = Typed(window, name, text, Qt::Key_Tab); });
        if (!byTab) continue;
        In(walked, [&](QWidget& window) { byEnter = Typed(window, name, text, Qt::Key_Return); });
        ASSERT_TRUE(byEnter);
        EXPECT_EQ(byTab->told, byEnter->told);
        EXPECT_EQ(byTab->text, byEnter->text);
        EXPECT_EQ(byTab->stays, byEnter->stays);
      }
    }
  }
}

// Enter and Tab behind the name go to the quantity, behind a quantity they calculate, and behind one that is calculated
// they go to the button of that. Only Enter asks for a quantity that is missing, and goes to the Batch of a number.
TEST_F(WalkTest, TheBatchWindowGoesOnByTabAsByEnter) {
  running.prompt.SetHook([this](const Message& message) {
    told.push_back(message.title + ": " + message.text);
    return message.buttons == Buttons::YesNo ? Answer::Yes : Answer::Ok;  // what was calculated goes unsaved
  });
  const auto walk = [this](Qt::Key key) {
    std::vector<std::string> passed;
    In({"BatchForm"}, [&](QWidget& window) {
      auto& form = dynamic_cast<desktop::BatchForm&>(window);
      const auto note = [&] {
        passed.push_back(FocusName() + " " + std::to_string(form.Record().work.Rows.size()) + " " +
                         std::to_string(told.size()));
      };
      Control(window, "cmbColorName").setFocus(Qt::TabFocusReason);
      TypeOn("TARGET");
      GoOn(key);
      note();
      TypeOn("20");
      GoOn(key);
      note();
      Control(window, "txtQuantity").setFocus(Qt::TabFocusReason);
      GoOn(key);
      note();
      Control(window, "txtQuantity").setFocus(Qt::TabFocusReason);
      TypeOn("30");
      GoOn(key);
      note();
      EXPECT_EQ(form.Record().work.Total, 30);
      // The job: what is typed is entered, and its quantity comes next.
      Control(window, "JobNumber").setFocus(Qt::TabFocusReason);
      TypeOn("J7");
      GoOn(key);
      note();
      EXPECT_EQ(form.Record().JobNumber(), "J7");
      EXPECT_EQ(FocusName(), key == Qt::Key_Tab ? "cmdSplitJobs" : "txtQtyUsed");
      passed.pop_back();
      Control(window, "txtQtyUsed").setFocus(Qt::TabFocusReason);
      Press(Control(window, "txtQtyUsed"), Qt::Key_A, Qt::ControlModifier);
      TypeOn("12");
      GoOn(key);
      note();
      ASSERT_EQ(form.Record().jobs.size(), 1U);
      EXPECT_EQ(form.Record().jobs[0].QtyUsed, 12);
      Click(window, "cmdCancel");
    });
    return passed;
  };
  EXPECT_EQ(walk(Qt::Key_Tab), walk(Qt::Key_Return));

  const auto differs = [this](Qt::Key key) {
    std::string empty, number;
    In({"BatchForm"}, [&](QWidget& window) {
      auto& form = dynamic_cast<desktop::BatchForm&>(window);
      Control(window, "cmbColorName").setFocus(Qt::TabFocusReason);
      TypeOn("TARGET");
      GoOn(key);
      GoOn(key);
      empty = FocusName();
      Click(window, "cmdCancel");
      Control(window, "txtBatchNo").setFocus(Qt::TabFocusReason);
      Press(Control(window, "txtBatchNo"), Qt::Key_A, Qt::ControlModifier);
      TypeOn("1");
      GoOn(key);
      number = std::to_string(form.Record().BatchNo);
      Click(window, "cmdCancel");
    });
    return std::pair(empty, number);
  };
  EXPECT_EQ(differs(Qt::Key_Return), std::pair(std::string("txtQuantity"), std::string("1")));
  EXPECT_EQ(differs(Qt::Key_Tab).second, "2");
  EXPECT_NE(differs(Qt::Key_Tab).first, "txtQuantity");
}

}  // namespace
}  // namespace vellumark::test
