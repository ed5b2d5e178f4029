#pragma once

#include <QApplication>
#include <QKeyEvent>
#include <stdexcept>
#include <string_view>

#include "support/desktop.h"

namespace vellumark::test {

/// A scanner at the keyboard: each key goes to whoever has the focus by then, a few milliseconds after the one before,
/// by the time that the keyboard gives it. CR is Return, LF is Ctrl+J, as keyboards have it, and a tabulator is Tab.
class Scanner {
 public:
  void Type(std::string_view text) {
    for (const char c : text) Key(c);
    Settle();
  }
  /// The next key comes much later.
  void Pause() { time_ += 2000; }
  /// As a person types: with a quarter of a second between keys.
  void TypeSlowly(std::string_view text) {
    for (const char c : text) {
      time_ += 250;
      Key(c);
      QTest::qWait(130);  // what is held is given back meanwhile
    }
    Settle();
  }

 private:
  void Key(char c) {
    time_ += 4;
    if (c == '\r') return Send(Qt::Key_Return, {}, "\r");
    if (c == '\n') return Send(Qt::Key_J, Qt::ControlModifier, "\n");
    if (c == '\t') return Send(Qt::Key_Tab, {}, "\t");
    const bool capital = c >= 'A' && c <= 'Z';
    const bool small = c >= 'a' && c <= 'z';
    Send(small ? c - 'a' + 'A' : c, capital ? Qt::ShiftModifier : Qt::NoModifier, QString(QLatin1Char(c)));
  }
  void Send(int key, Qt::KeyboardModifiers modifiers, const QString& text) {
    QWidget* widget = QApplication::focusWidget();
    if (widget == nullptr) throw std::runtime_error("nothing has the focus");
    QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
    press.setTimestamp(time_);
    QCoreApplication::sendEvent(widget, &press);
  }

  quint64 time_ = 1000;
};

}  // namespace vellumark::test
