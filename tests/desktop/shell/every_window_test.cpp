// Each window of the catalogue on a real ink room, and how it goes away.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTabWidget>
#include <iostream>
#include <map>
#include <set>

#include "core/base/files.h"
#include "core/batch/bench.h"
#include "core/batch/open.h"
#include "core/batch/store.h"
#include "core/colors/additive_control.h"
#include "core/colors/basic_work.h"
#include "core/colors/formula_work.h"
#include "core/colors/formulas.h"
#include "core/colors/rename.h"
#include "core/colors/rollup.h"
#include "core/inventory/posting.h"
#include "core/jobs/design_work.h"
#include "core/jobs/job_items.h"
#include "core/session/options.h"
#include "core/session/settings.h"
#include "core/shell/data_files.h"
#include "desktop/kit/scanned_entry.h"
#include "every_window.h"
#include "support/scanner.h"

namespace vellumark::test {
namespace {

using EveryWindowTest = EveryWindow;
using Lines = EveryWindow::Lines;

// A window that has gone is still there for a moment, while the file may be closed already.
TEST_F(EveryWindowTest, OneThatGoesAwaySaysAndDoesNothingMore) {
  int left = 0;
  // Unasked, as at the end of the program, or closed.
  const auto goes = [&](QWidget& window, bool unasked) {
    auto* dialog = qobject_cast<desktop::Dialog*>(&window);
    if (dialog != nullptr) dialog->accept();
    if (dialog == nullptr && !unasked) {
      EXPECT_TRUE(running.windows.CloseChildWindows());
    }
    const std::size_t said = told.size();
    auto file = std::exchange(running.session.DataFileDB, nullptr);
    const bool open = std::exchange(running.session.RecordsetsOpen, false);
    if (dialog == nullptr && unasked) delete &window;
    Settle();
    EXPECT_EQ(Lines(told.begin() + static_cast<std::ptrdiff_t>(said), told.end()), Lines{});
    running.session.DataFileDB = std::move(file);
    running.session.RecordsetsOpen = open;
  };
  for (const std::string& name : running.windows.Names()) {
    SCOPED_TRACE(name);
    Lines fields;
    On(name, [&](QWidget& window) {
      for (QWidget* widget : window.findChildren<QWidget*>())
        if (dynamic_cast<desktop::Field*>(widget) != nullptr && widget->isVisible() && widget->isEnabled())
          fields.push_back(widget->objectName().toStdString());
    });
    for (const std::string& field : fields) {
      SCOPED_TRACE(field);
      const bool unasked = ++left % 2 == 0;
      On(name, [&](QWidget& window) {
        auto* control = window.findChild<QWidget*>(QString::fromStdString(field));
        if (control == nullptr) return;
        control->setFocus(Qt::TabFocusReason);
        if (window.isAncestorOf(QApplication::focusWidget())) TypeOn("7");
        goes(window, unasked);
      });
    }
  }
  std::cout << left << " windows were left with the focus in a field\n";
  EXPECT_GT(left, 150);
}

// Scans into each field of a part of a window that takes a code, counted by tag.
void ScanIntoFields(QWidget& part, Scanner& scanner, std::map<std::string, int>& fields) {
  for (const QPointer<QLineEdit> line : part.findChildren<QLineEdit*>()) {
    if (line == nullptr || !line->isVisible() || !line->isEnabled() || line->isReadOnly()) continue;
    const std::string tag = desktop::ScannedEntry::TagOf(*line).toStdString();
    if (tag.empty()) continue;
    line->setFocus(Qt::TabFocusReason);
    // The line of a drop-down leaves the focus to it.
    QWidget* focus = QApplication::focusWidget();
    if (focus == nullptr || (focus != line && focus != line->focusProxy())) continue;
    SCOPED_TRACE(FocusName());
    const QString before = line->text();
    const std::string value = "QZX" + std::to_string(++fields[tag]);
    scanner.Pause();
    scanner.Type(tag + value);
    EXPECT_TRUE(WaitFor([&] { return line == nullptr || line->text().toStdString() == value; }, 1500))
        << (line == nullptr ? "" : line->text().toStdString());
    for (const QLineEdit* other : part.window()->findChildren<QLineEdit*>()) {
      if (other == line || other->isReadOnly()) continue;
      EXPECT_FALSE(other->text().contains("QZX")) << other->objectName().toStdString();
    }
    if (line != nullptr) line->setText(before);
  }
}

// Every field of a name, a job or a lot takes what is scanned, whole and without its tag, and none beside it gets any
// of it.
TEST_F(EveryWindowTest, AScanLandsWholeInTheFieldThatHasTheFocus) {
  Scanner scanner;
  std::map<std::string, int> fields;
  InventorySettings byContainer = ReadInventorySettings(running.session);
  byContainer.InvRecordMethod = 1;
  ASSERT_TRUE(SaveInventorySettings(running.session, byContainer));
  for (const std::string& name : running.windows.Names()) {
    SCOPED_TRACE(name);
    On(name, [&](QWidget& window) {
      ScanIntoFields(window, scanner, fields);
      // Every page that can be looked at.
      for (const QPointer<QTabWidget> tabs : window.findChildren<QTabWidget*>())
        for (int page = 1; tabs != nullptr && page < tabs->count(); ++page) {
          if (!tabs->isVisible() || !tabs->isTabVisible(page) || !tabs->isTabEnabled(page)) continue;
          tabs->setCurrentIndex(page);
          Settle();
          if (tabs != nullptr) ScanIntoFields(*tabs->currentWidget(), scanner, fields);
        }
    });
  }
  std::string found;
  for (const auto& [tag, count] : fields) found += fmt::format("{} {} ", tag, count);
  std::cout << "fields that take scans: " << found << '\n';
  EXPECT_GT(fields["<CN>"], 25);
  for (const char* tag : {"<CC>", "<JN>", "<LN>", "<LL>", "<LC>"}) EXPECT_GT(fields[tag], 0) << tag;
}

// Every window can be looked at; what would write says that it may not, and the file stays as it is to the last bit.
TEST_F(EveryWindowTest, InAnArchiveNothingIsWritten) {
  namespace fs = std::filesystem;
  const fs::path archive = room.folder / "Ink Archive 2020.vkd";
  fs::copy_file(room.folder / "Ink.vkd", archive);
  const std::string bytes = ReadFileBytes(archive);
  ASSERT_TRUE(OpenOtherDataFile(running.session, archive, running.program.Windows()));
  ASSERT_TRUE(running.session.ArchiveView);
  // The first question of a window is the one whether to do it.
  running.prompt.SetHook([this](const Message& message) {
    told.push_back(message.title);
    const bool first = std::ranges::find(told, "asked") == told.end();
    if (message.buttons == Buttons::Ok || message.buttons == Buttons::OkCancel) return Answer::Ok;
    told.emplace_back("asked");
    return first ? Answer::Yes : Answer::No;
  });
  std::set<std::string> refused;
  for (const std::string& name : running.windows.Names()) {
    SCOPED_TRACE(name);
    On(name, [&](QWidget& window) {
      const QPointer<QWidget> open = &window;
      for (const QPointer<QLineEdit> line : window.findChildren<QLineEdit*>()) {
        if (line == nullptr || dynamic_cast<desktop::NumberField*>(line.data()) == nullptr || !line->isVisible() ||
            !line->isEnabled() || line->isReadOnly())
          continue;
        line->setFocus(Qt::TabFocusReason);
        if (window.isAncestorOf(QApplication::focusWidget())) TypeOn("7");
        break;
      }
      for (const char* button : {"cmdSave", "cmdOK", "cmdDelete", "cmdApply", "cmdAdd", "cmdRename", "cmdArchive"}) {
        auto* command = open == nullptr ? nullptr : open->findChild<QPushButton*>(button);
        if (command != nullptr && command->isVisible() && command->isEnabled()) Click(*command);
      }
      if (std::ranges::find(told, "Archive or Backup Data File") != told.end()) refused.insert(name);
    });
  }
  std::string names;
  for (const std::string& name : refused) names += name + " ";
  std::cout << "refused by " << names << '\n';
  EXPECT_GT(refused.size(), 25U);
  EXPECT_TRUE(ReadFileBytes(archive) == bytes);
}

// ---- What is written elsewhere

/// What a person reads in the window: every text, mark, choice and cell. Letters come when a window is done.
std::map<std::string, std::string> ReadIn(QWidget& window) {
  std::map<std::string, std::string> read;
  const auto note = [&](const QWidget& widget, const QString& text) {
    const std::string name = widget.objectName().toStdString();
    if (!name.empty() && !name.starts_with("qt_")) read[name] += "|" + QString(text).remove('&').toStdString();
  };
  for (QWidget* widget : window.findChildren<QWidget*>()) {
    if (const auto* label = qobject_cast<QLabel*>(widget)) note(*label, label->text());
    if (const auto* line = qobject_cast<QLineEdit*>(widget)) note(*line, line->text());
    if (const auto* text = qobject_cast<QPlainTextEdit*>(widget)) note(*text, text->toPlainText());
    if (const auto* button = qobject_cast<QAbstractButton*>(widget))
      note(*button, button->text() + (button->isChecked() ? " on" : ""));
    if (const auto* combo = qobject_cast<QComboBox*>(widget))
      for (int i = 0; i < combo->count() && i < 50; ++i) note(*combo, combo->itemText(i));
    if (const auto* list = qobject_cast<QAbstractItemView*>(widget); list != nullptr && list->model() != nullptr) {
      const QAbstractItemModel& model = *list->model();
      for (int row = 0; row < model.rowCount() && row < 50; ++row)
        for (int column = 0; column < model.columnCount(); ++column)
          note(*list, model.index(row, column).data().toString());
    }
  }
  return read;
}

struct WrittenElsewhere {
  const char* what;
  std::function<void(Session&, int)> write;  ///< something else with each number
};

void SaveNewBatch(Session& session, const char* quantity) {
  BatchRecord record = NewBatchRecord(session);
  NoBatchDialogs dialogs;
  EXPECT_TRUE(EnterBatchColor(session, record, "TARGET"));
  record.work.QuantityText = quantity;
  EXPECT_TRUE(MixBatch(session, record));
  EXPECT_TRUE(SaveBatch(session, record, dialogs));
}

void Rename(Session& session, ColorKind kind, const std::string& name) {
  const bool away = kind == ColorKind::Mix ? ReadMix(session, name).has_value() : ReadBasic(session, name).has_value();
  const std::string other = name + " 2";
  EXPECT_TRUE(
      (kind == ColorKind::Mix ? RenameColor : RenameBasic)(session, away ? name : other, away ? other : name));
}

const std::vector<WrittenElsewhere>& Writers() {
  static const std::vector<WrittenElsewhere> writers{
      {"stock",
       [](Session& session, int n) {
         const float quantity = 1.0F + static_cast<float>(n % 50);
         PostStock(session, {.name = "RED", .quantity = quantity});
         PostStock(session, {.name = "RED", .quantity = quantity, .place = {.LotNumber = "A"}});
       }},
      {"basic",
       [](Session& session, int n) {
         BasicWork work = LoadBasicWork(session, *ReadBasic(session, "RED"));
         work.Color_Code = "R" + std::to_string(n);
         work.Notes = "note " + std::to_string(n);
         work.typed["PurchaseCost"] = std::to_string(n + 5);
         EXPECT_TRUE(SaveBasic(session, work));
         RunPendingPasses(session);
       }},
      {"formula",
       [](Session& session, int n) {
         FormulaWork work = LoadFormulaWork(session, *ReadMix(session, "TINT"));
         work.Color_Code = "T" + std::to_string(n);
         work.Notes = "tint " + std::to_string(n);
         EXPECT_TRUE(SaveMix(session, work));
       }},
      {"names",
       [](Session& session, int) {
         Rename(session, ColorKind::Basic, "BLUE");
         Rename(session, ColorKind::Mix, "LIME");
       }},
      {"set",
       [](Session& session, int n) {
         AdditiveSetWork work{.SetName = "STD SET", .rows = {}};
         work.rows[0] = {"DRIER", n % 2 == 0 ? "2.2" : "3.4"};
         work.rows[1] = {"WAX", "1"};
         EXPECT_TRUE(EditAdditiveSet(session, "STD SET", work));
         RunPendingPasses(session);
       }},
      {"Batch", [](Session& session, int n) { SaveNewBatch(session, n % 2 == 0 ? "3" : "4"); }},
      {"job",
       [](Session& session, int n) {
         JobItemEntry item = NewJobItem(session);
         item.JobNumber = "J1";
         item.Color_Name = "WHITE";
         item.takes = {{.LotRefID = 0, .LotNumber = "", .quantity = 0.5F + static_cast<float>(n % 50) / 8}};
         EXPECT_TRUE(AddJobItems(session, item));
         DesignWork work = *OpenDesign(session, "BOX");
         EXPECT_TRUE(EnterDesignField(work, "Description", "box " + std::to_string(n)));
         EXPECT_TRUE(SaveDesign(session, work));
       }},
      {"unit", [](Session& session, int n) { StoreSettings(session, {setting::UMI.To(1 + n % 2)}); }},
  };
  return writers;
}

// A window that stays open shows what one shows that is opened now, whatever was written meanwhile.
TEST_F(EveryWindowTest, OneThatStaysOpenShowsWhatWasWrittenElsewhere) {
  int seen = 0;
  for (const std::string& name : running.windows.Names()) {
    SCOPED_TRACE(name);
    for (const WrittenElsewhere& writer : Writers()) {
      SCOPED_TRACE(writer.what);
      std::map<std::string, std::string> before, kept, anew;
      bool isWindow = false;
      try {
        desktop::Window* window = running.windows.OpenForm(name, ShownBy(name));
        Settle();
        if (window == nullptr) break;
        isWindow = true;
        before = ReadIn(*window);
        writer.write(running.session, seen);
        Settle();
        // A report is built again a moment later.
        if (!before["fg_View"].empty()) WaitFor([&] { return ReadIn(*window) != before; }, 400);
        kept = ReadIn(*window);
        running.windows.CloseChildWindows();
        Settle();
        window = running.windows.OpenForm(name, ShownBy(name));
        Settle();
        anew = ReadIn(*window);
      } catch (const std::logic_error& none) {
        if (!std::string_view(none.what()).starts_with("there is no window")) throw;
      }
      running.windows.CloseChildWindows();
      Settle();
      if (!isWindow) break;
      ++seen;
      // A Batch that is not saved yet has a number on screen that the next one saved takes.
      if (name == "BatchForm") anew.erase("txtBatchNo");
      for (const auto& [control, text] : anew)
        EXPECT_EQ(kept[control], text) << control << (kept[control] == before[control] ? ", not read anew" : "");
    }
  }
  std::cout << seen << " windows were read after a write elsewhere\n";
  EXPECT_GT(seen, 200);
}

}  // namespace
}  // namespace vellumark::test
