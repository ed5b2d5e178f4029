#pragma once

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <algorithm>
#include <string>
#include <vector>

#include "desktop/kit/grid.h"
#include "furnished_room.h"
#include "running.h"

namespace vellumark::test {

using desktop::Grid;

/// The whole program on a room with Batches, lots and a second Database, where reports and searches are used.
struct ReportWindowsTest : testing::Test {
  ReportWindowsTest() {
    for (std::vector<std::string> verb : std::vector<std::vector<std::string>>{
             {"batch", "save", "--formula", "TINT", "--quantity", "10", "--mix", "--yes"},
             {"--db", "UV", "color", "add", "UVRED", "PurchaseCost=3"},
             {"--db", "UV", "formula", "add", "TARGET", "UVRED=100"},
             {"--db", "UV", "batch", "save", "--formula", "TARGET", "--quantity", "7", "--mix", "--yes"},
             {"--db", "INK", "db", "use", "INK"}}) {
      verb.insert(verb.begin(), {"--now", "2026-03-09 10:00:00"});
      const CliAnswer answer = room.Run(verb);
      if (answer.status != 0) throw std::runtime_error(answer.err);
    }
    const bool ready = running.Start({desktop::ChooseFile, [&](const auto&) { return room.folder.Path(); }});
    if (!ready) throw std::logic_error("the program did not start");
    running.program.Main().resize(1280, 720);
    ShowActive(running.program.Main());
  }
  ~ReportWindowsTest() override {
    running.program.Main().close();
    Settle();
  }

  desktop::Window& Open(const std::string& name, const desktop::Arguments& arguments = {}) {
    desktop::Window* window = running.windows.OpenForm(name, arguments);
    if (window == nullptr) throw std::logic_error(name + " did not open");
    Settle();
    return *window;
  }
  static Grid& GridOf(QWidget& window) { return Control<Grid>(window, "fg"); }
  // What stands in a column of the rows that are shown.
  static std::vector<std::string> Column(QWidget& window, const QString& caption) {
    Grid& grid = GridOf(window);
    std::vector<std::string> texts;
    for (int i = 0; i < static_cast<int>(grid.Columns().size()); ++i) {
      if (!grid.Columns()[static_cast<std::size_t>(i)].caption.startsWith(caption)) continue;
      for (const int row : grid.ShownRows()) texts.push_back(grid.Model().Source()->Text(row, i));
      return texts;
    }
    throw std::logic_error("no column " + caption.toStdString());
  }
  static int Place(QWidget& window, const QString& caption) {
    const auto& columns = GridOf(window).Columns();
    for (int i = 0; i < static_cast<int>(columns.size()); ++i)
      if (columns[static_cast<std::size_t>(i)].caption.startsWith(caption)) return i;
    throw std::logic_error("no column " + caption.toStdString());
  }
  // Puts the cursor into a cell as a click on its caption row does not: by the keys that come next.
  static void Stand(QWidget& window, const std::string& name, const QString& caption) {
    Grid& grid = GridOf(window);
    const auto names = Column(window, "Color Name");
    const auto found = std::ranges::find(names, name) - names.begin();
    grid.View().setFocus();
    grid.View().setCurrentIndex(grid.Model().index(static_cast<int>(found), Place(window, caption)));
  }
  static void TypeCell(const std::string& text) {
    PressOn(Qt::Key_F2);
    PressOn(Qt::Key_A, Qt::ControlModifier);
    TypeOn(text);
    PressOn(Qt::Key_Return);
    if (qobject_cast<QLineEdit*>(QApplication::focusWidget()) != nullptr) PressOn(Qt::Key_Escape);
    Settle();
  }
  static std::string Count(QWidget& window) { return Control<QLabel>(window, "lblRecordCount").text().toStdString(); }
  ScriptedPrompt& prompt() { return running.prompt; }

  FurnishedRoom room;
  RunningProgram<ScriptedPrompt> running{room.folder.Path()};
};

}  // namespace vellumark::test
