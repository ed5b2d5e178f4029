#pragma once

#include <gtest/gtest.h>

#include <time.h>

#include <QApplication>
#include <QString>
#include <QTest>
#include <QWidget>
#include <functional>
#include <memory>
#include <string>

#include "core/session/session.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window.h"
#include "desktop/kit/window_list.h"

namespace vellumark::test {

/// The control of that name inside `root`; a missing one, or one of another class, fails the test at once.
template <class W = QWidget>
W& Control(QWidget& root, const char* name) {
  auto* found = root.findChild<W*>(QString::fromLatin1(name));
  if (found == nullptr) throw std::runtime_error(std::string("no control ") + name + " of that class");
  return *found;
}

/// Real key and mouse events, and what they cause, done with.
void Settle();
/// After a program that ended by itself: dialogs run again. Each test begins with it.
void RunAgain();
/// Waits until `done`, while events are handled; false after `timeout` ms.
bool WaitFor(const std::function<bool()>& done, int timeout = 5000);
void Press(QWidget& widget, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
/// Types into `widget`, which gets the focus first.
void Type(QWidget& widget, const std::string& text);
/// Types to whoever has the focus.
void TypeOn(const std::string& text);
void PressOn(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
/// Selects all, types over it and goes on with Tab.
void Fill(QWidget& root, const char* name, const std::string& text);
void Click(QWidget& widget);
void Click(QWidget& root, const char* name);
/// The objectName of the control with the focus.
std::string FocusName();

/// Milliseconds of processor time that this thread used since the object was made: what a limit can hold on a machine
/// that is busy with other things. Under a sanitizer everything takes kSlower times as long.
class CpuTimer {
 public:
  double Ms() const { return Now() - begin_; }

 private:
  static double Now() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
  }
  double begin_ = Now();
};
#if defined(VELLUMARK_SANITIZED)
inline constexpr double kSlower = 12;
#else
inline constexpr double kSlower = 1;
#endif

/// Shows a window as the operator would have it, with the focus.
void ShowActive(QWidget& window);

/// Does `act`, which opens a modal window, and `inside` once that window is there; `inside` must make it close.
void WithModal(const std::function<void()>& act, const std::function<void(QWidget& dialog)>& inside);

/// Pictures of a window at 1280 by 720 (or its own size, for a dialog), light and dark, at 100 and at 200 percent:
/// build/screens/NAME-light.png, NAME-dark.png, NAME-light-200.png, NAME-dark-200.png, and one in high contrast,
/// NAME-contrast.png. Fails when a control is cut off.
void Picture(QWidget& window, const std::string& name, QSize size = {1280, 720});

}  // namespace vellumark::test
