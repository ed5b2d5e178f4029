#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "desktop/kit/grid.h"
#include "desktop/kit/message_prompt.h"
#include "running.h"

namespace vellumark::test {

/// Goes about in the whole program by keys alone, and counts them.
struct ByKeys : testing::Test {
  using Running = RunningProgram<desktop::MessagePrompt>;

  void BeActive() {
    if (QApplication::activeModalWidget() != nullptr || QApplication::focusWidget() != nullptr) return;
    running->program.Main().activateWindow();
    Settle();
  }
  // A key to whoever has the focus, without keeping the program from the next for longer than a moment.
  void Key(Qt::Key key, Qt::KeyboardModifiers with = Qt::NoModifier) {
    BeActive();
    QWidget* focus = QApplication::focusWidget();
    const CpuTimer timer;
    Press(focus == nullptr ? running->program.Main() : *focus, key, with);
    slowest = std::max(slowest, timer.Ms());
    ++keys;
  }
  void Keys(const std::string& text) {
    TypeOn(text);
    keys += static_cast<int>(text.size());
  }
  // The key opens a dialog; `inside` goes on in it until it has closed.
  void KeyInto(Qt::Key key, Qt::KeyboardModifiers with, const char* dialog, const std::function<void()>& inside) {
    bool entered = false;
    BeActive();
    QWidget* focus = QApplication::focusWidget();
    // A button of the toolbar shows that it was pressed, then acts.
    WithModal(
        [&] {
          Press(focus == nullptr ? running->program.Main() : *focus, key, with);
          WaitFor([&] { return entered; });
        },
        [&](QWidget& shown) {
          entered = true;
          EXPECT_EQ(shown.objectName(), dialog);
          inside();
        });
    ++keys;
    running->program.Main().activateWindow();
    Settle();
  }
  // Ctrl+K, the text, Enter.
  void Find(const std::string& text) {
    KeyInto(Qt::Key_K, Qt::ControlModifier, "QuickFindForm", [&] {
      Keys(text);
      QWidget& find = *QApplication::activeModalWidget();
      EXPECT_TRUE(WaitFor([&] { return Control<desktop::Grid>(find, "fgHits").Model().rowCount() > 0; })) << text;
      Key(Qt::Key_Return);
    });
  }
  bool IsOpen(const char* window) {
    return WaitFor(
        [&] { return running->windows.ActiveForm() != nullptr && running->windows.ActiveForm()->Name() == window; });
  }
  double Figure(const std::string& sql) { return running->session.File().Scalar(sql).Number(); }

  std::unique_ptr<Running> running;
  int keys = 0;
  double slowest = 0;  ///< processor time of a key, in ms
};

}  // namespace vellumark::test
