// In a room of ten years nothing keeps the program from hearing a key for longer than a moment, unless it shows a bar.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QTabWidget>
#include <iostream>

#include "desktop/kit/grid.h"
#include "desktop/kit/name_box.h"
#include "every_window.h"
#include "support/loop_watch.h"
#include "support/notices.h"

namespace vellumark::test {
namespace {

constexpr double kMoment = 100;  // ms

struct WatchTest : EveryWindow {
  WatchTest() {
    running.program.Main().setUpdatesEnabled(true);
    running.program.Main().resize(1280, 720);
    Database& file = running.session.File();
    const Arranging arranging;
    Transaction transaction(file);
    const auto rows = [&](const char* into, const std::string& values, int count, const char* which = "1") {
      file.Execute(fmt::format("INSERT INTO {} WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < "
                               "{}) SELECT {} FROM n WHERE {}",
                               into, count, values, which));
    };
    // One of twenty may go into the recipes of the room.
    const auto formulas = [&](const char* ingredient, const char* figures, const char* which) {
      rows("INK_Mix (Color_Name, BC0, BQ0, Color_Set, Inventory, Reorder, LotRefID, Recycle, BasicCost, BasicVOC, "
           "BasicHAP)",
           fmt::format("'SPOT COLOUR ' || (i * 40503 % 1048573), '{0}', 100.0, '<{0}>', 0.0, iif(i % 70 = 0, 5.0, 0.0), "
                       "0, 1, {1}",
                       ingredient, figures),
           100000, which);
    };
    formulas("RED", "4.25, 0.5, 0.10000000149011612", "i % 20 = 0");
    formulas("GREEN", "5.0, 0.0, 0.0", "i % 20 BETWEEN 1 AND 9");
    formulas("WHITE", "2.0, 0.0, 0.0", "i % 20 > 9");
    rows("INK_Batch (Color_Name, BatchNo, Date_Entered, Quantity, ActualQuantity, UMF, IngName0, IngQty0, IngType0, "
         "JobNumber)",
         "'SPOT COLOUR ' || (i % 2000 * 40503 % 1048573), 100 + i, datetime('2016-03-10', (i * 3650 / 200000) || ' "
         "days'), 10.0, 10.0, 1, 'RED', 10.0, 1, iif(i % 10 = 0, 'JOB ' || i, '')",
         200000);
    rows("JobRecords (JobNumber, Color_Name, Database, BatchNo, ItemType, QtyUsed, Date_Entered)",
         "'JOB ' || (i * 10), 'SPOT COLOUR ' || (i * 10 % 2000 * 40503 % 1048573), 'INK', 100 + i * 10, 2, 2.0, "
         "'2020-01-01 00:00:00'",
         20000);
    rows("MSysStockHistory (Moment, Username, Source, Kind, Database, Color_Name, LotRefID, LotNumber, Change, Result, "
         "Document)",
         "datetime('2016-03-10', (i * 3650 / 300000) || ' days'), '', 1, 1, 'INK', 'RED', 0, '', "
         "iif(i % 2 = 0, 1.5, -1.5), 10.0, 'Batch ' || i",
         300000);
    file.Execute("UPDATE FileInfo SET BatchNumber = 200101");
    transaction.Commit();
  }

  void TypeInto(QWidget& window, QLineEdit* field, const std::string& keys) {
    const QPointer<QLineEdit> line = field;
    if (line == nullptr || !line->isVisible() || !line->isEnabled() || line->isReadOnly()) return;
    line->setFocus(Qt::TabFocusReason);
    const std::string name = where + " " + line->objectName().toStdString();
    for (const char key : keys) {
      if (line == nullptr || QApplication::focusWidget() == nullptr || !window.isAncestorOf(QApplication::focusWidget()))
        return;
      watch.Step(name + " typed", [&] { QTest::keyClick(line.data(), key); });
    }
    if (line != nullptr) watch.Step(name + " cleared", [&] { line->clear(); });
  }

  void GoAbout(QWidget& window) {
    const QPointer<QWidget> open = &window;
    for (const QPointer<QLineEdit> line : window.findChildren<QLineEdit*>()) {
      if (open == nullptr) return;
      if (line != nullptr &&
          (line->objectName().endsWith("_Filter") || dynamic_cast<desktop::NameBox*>(line.data()) != nullptr))
        TypeInto(window, line, "spo 7");
    }
    for (const QPointer<desktop::Grid> grid : window.findChildren<desktop::Grid*>()) {
      if (open == nullptr || grid == nullptr || !grid->isVisible() || grid->Model().rowCount() == 0) continue;
      grid->View().setFocus(Qt::TabFocusReason);
      const std::string name = where + " " + grid->objectName().toStdString();
      for (const Qt::Key key : {Qt::Key_Down, Qt::Key_PageDown, Qt::Key_End})
        if (grid != nullptr)
          watch.Step(name + " walked", [&] { QTest::keyClick(&grid->View(), key); });
      // Sorted twice; such a list has its first column for ticks.
      for (int time = 0; time < 2 && grid != nullptr; ++time)
        watch.Step(name + " sorted", [&] { grid->ClickCaption(grid->Model().columnCount() > 1 ? 1 : 0, false); });
    }
  }

  void VisitAll(QWidget& window) {
    const QPointer<QWidget> open = &window;
    GoAbout(window);
    if (open == nullptr) return;
    for (const QPointer<QTabWidget> tabs : window.findChildren<QTabWidget*>())
      for (int page = 1; tabs != nullptr && page < tabs->count(); ++page) {
        if (!tabs->isVisible() || !tabs->isTabVisible(page) || !tabs->isTabEnabled(page)) continue;
        watch.Step(where + " page " + tabs->tabText(page).toStdString(), [&] { tabs->setCurrentIndex(page); });
        if (tabs != nullptr) GoAbout(*tabs->currentWidget());
      }
  }

  LoopWatch watch;
  std::string where;
};

TEST_F(WatchTest, NoKeyWaitsLongerThanAMomentWithoutABar) {
  const double slow = MachineSlowness() * kSlower;
  std::map<std::string, LoopWatch::Block> blocks;
  std::vector<std::string> windows = running.windows.Names();
  // What other programs take of the caches does not happen twice in the same place.
  for (int round = 0; round < 2; ++round) {
    for (const std::string& name : windows) {
      SCOPED_TRACE(name);
      if (name == "RepairForm") continue;  // opening it is the work, under its bar
      where = name;
      const desktop::Arguments arguments = ShownBy(name);
      watch.Step(name + " opened", [&] { On(name, arguments, [&](QWidget& window) { VisitAll(window); }); });
    }
    std::map<std::string, LoopWatch::Block> longest = watch.Longest();
    std::erase_if(longest, [&](const auto& step) {
      return step.second.ms < kMoment * slow || (round > 0 && !blocks.contains(step.first));
    });
    blocks = std::move(longest);
    std::erase_if(windows, [&](const std::string& name) {
      return std::ranges::none_of(blocks, [&](const auto& step) { return step.first.starts_with(name + " "); });
    });
  }
  for (const auto& [step, block] : blocks)
    ADD_FAILURE() << fmt::format("{}: {:.0f} ms, in {}", step, block.ms, block.event);
}

}  // namespace
}  // namespace vellumark::test
