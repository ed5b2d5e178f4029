#include "monkey.h"

#include <unistd.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <csignal>
#include <iostream>

#include "desktop/kit/text.h"
#include "desktop/kit/wait_progress.h"
#include "desktop/kit/window.h"
#include "support/desktop.h"

#if defined(VELLUMARK_SANITIZED)
#include <sanitizer/common_interface_defs.h>
#endif

namespace vellumark::test {
namespace {

constexpr std::size_t kStoryLength = 60;
constexpr unsigned kHangs = 120;  // seconds for one act, at most

Monkey* newest = nullptr;

struct Stroke {
  Qt::Key key;
  Qt::KeyboardModifiers modifiers = Qt::NoModifier;
};

// The keys of a working day; those that stand twice are pressed more often.
std::vector<Stroke> Strokes() {
  std::vector<Stroke> strokes;
  for (int twice = 0; twice < 3; ++twice)
    for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Return, Qt::Key_Enter, Qt::Key_Down, Qt::Key_Up, Qt::Key_Space})
      strokes.push_back({key});
  for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Left, Qt::Key_Right, Qt::Key_Home, Qt::Key_End, Qt::Key_PageUp,
                            Qt::Key_PageDown, Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_Insert, Qt::Key_Menu})
    strokes.push_back({key});
  for (int key = Qt::Key_F1; key <= Qt::Key_F12; ++key) strokes.push_back({static_cast<Qt::Key>(key)});
  for (const Qt::Key key : {Qt::Key_S, Qt::Key_S, Qt::Key_D, Qt::Key_F, Qt::Key_P, Qt::Key_A, Qt::Key_C, Qt::Key_V,
                            Qt::Key_X, Qt::Key_Z, Qt::Key_N, Qt::Key_E, Qt::Key_Return, Qt::Key_Home, Qt::Key_End})
    strokes.push_back({key, Qt::ControlModifier});
  for (int key = Qt::Key_0; key <= Qt::Key_9; ++key)
    strokes.push_back({static_cast<Qt::Key>(key), Qt::ControlModifier});
  for (int key = Qt::Key_A; key <= Qt::Key_Z; ++key) strokes.push_back({static_cast<Qt::Key>(key), Qt::AltModifier});
  strokes.push_back({Qt::Key_Backtab, Qt::ShiftModifier});
  strokes.push_back({Qt::Key_F5, Qt::ShiftModifier});
  strokes.push_back({Qt::Key_Down, Qt::AltModifier});
  strokes.push_back({Qt::Key_F4, Qt::ControlModifier});
  return strokes;
}

std::string NameOf(const QWidget* widget) {
  std::string path;
  for (; widget != nullptr; widget = widget->parentWidget()) {
    if (widget->objectName().isEmpty() || widget->objectName().startsWith("qt_")) continue;
    if (!path.empty()) path.insert(0, "/");
    path.insert(0, widget->objectName().toStdString());
    if (widget->isWindow()) break;
  }
  return path;
}

extern "C" void Dying(int signal) {
  Monkey::Tell();
  std::signal(signal, SIG_DFL);
  ::raise(signal);
}

}  // namespace

Monkey::Monkey(unsigned seed, std::vector<std::string> words, std::filesystem::path folder)
    : seed_(seed), random_(seed), words_(std::move(words)), folder_(std::move(folder)) {
  newest = this;
#if defined(VELLUMARK_SANITIZED)
  __sanitizer_set_death_callback(&Monkey::Tell);
  std::signal(SIGALRM, Dying);
#else
  for (const int signal : {SIGALRM, SIGSEGV, SIGABRT, SIGFPE, SIGBUS}) std::signal(signal, Dying);
#endif
}

Monkey::~Monkey() {
  ::alarm(0);
  newest = nullptr;
}

std::string Monkey::Story() const {
  std::string story =
      "VELLUMARK_MONKEY_SEED=" + std::to_string(seed_) + ", " + std::to_string(acts_) + " acts, the last of them:";
  for (const std::string& act : story_) story += "\n  " + act;
  return story + "\n";
}

void Monkey::Tell() {
  if (newest != nullptr) std::cerr << newest->Story() << std::flush;
}

void Monkey::Note(const std::string& what, const QWidget* where) {
  for (const QWidget* at = where; at != nullptr; at = at->parentWidget())
    if (qobject_cast<const desktop::Window*>(at) != nullptr || at->isWindow())
      places_.insert(at->objectName().toStdString());
  story_.push_back(what + " on " + NameOf(where));
  if (story_.size() > kStoryLength) story_.pop_front();
}

void Monkey::Begin(QWidget& main) {
  main_ = &main;
  loops_ = {};
  Next();
}

void Monkey::Next() {
  // A timer that waits at all: an event posted to itself would go on in the loop of a dialog that is done.
  QTimer::singleShot(1, this, &Monkey::Act);
}

void Monkey::Act() {
  if (main_ == nullptr) return;
  Next();
  if (deaf_ && deaf_()) return;
  // An act goes on inside an event loop of its own, or it lets a wait window breathe; anything else hears no operator.
  const int depth = QThread::currentThread()->loopLevel();
  const bool waits = qobject_cast<desktop::WaitWindow*>(QApplication::activeModalWidget()) != nullptr;
  if ((loops_.empty() ? 0 : loops_.back()) == depth && !waits) return;
  if (loops_.empty() && QApplication::activeModalWidget() == nullptr && rest_) rest_();
  if (main_ == nullptr) return;

  QWidget* window = QApplication::activePopupWidget();
  if (window == nullptr) window = QApplication::activeModalWidget();
  if (window == nullptr) window = QApplication::activeWindow();
  if (window == nullptr || !window->isVisible()) window = main_;
  if (!window->isVisible()) return;
  if (QApplication::activeWindow() == nullptr) window->activateWindow();
  ++acts_;
  ::alarm(kHangs);
  loops_.push_back(depth);
  if (auto* chooser = qobject_cast<QFileDialog*>(window)) {
    AnswerChooser(*chooser);
  } else if (const int what = Under(100); what < 40) {
    PressKey(*window);
  } else if (what < 60) {
    TypeWord(*window);
  } else if (what < 66) {
    ClickMenuBar(*window);
  } else {
    ClickSomewhere(*window);
  }
  loops_.pop_back();
}

void Monkey::PressKey(QWidget& window) {
  static const std::vector<Stroke> strokes = Strokes();
  const Stroke stroke = Any(strokes);
  QWidget* focus = QApplication::focusWidget();
  if (focus == nullptr || !window.isAncestorOf(focus) || QApplication::activePopupWidget() != nullptr) focus = &window;
  Note(QKeySequence(stroke.key | stroke.modifiers).toString().toStdString(), focus);
  QTest::keyClick(focus, stroke.key, stroke.modifiers);
}

void Monkey::TypeWord(QWidget& window) {
  const QPointer<QWidget> focus = QApplication::focusWidget();
  if (focus == nullptr || !window.isAncestorOf(focus)) return PressKey(window);
  // Whatever a password is, it is always the same one: a program that nobody can log in to does little.
  auto* line = qobject_cast<QLineEdit*>(focus.data());
  const std::string word = line != nullptr && line->echoMode() == QLineEdit::Password ? "SECRET" : Any(words_);
  Note("\"" + word + "\"", focus);
  if (Under(2) == 0) QTest::keyClick(focus, Qt::Key_A, Qt::ControlModifier);
  for (const QChar c : desktop::Q(word)) {
    if (focus == nullptr || QApplication::focusWidget() != focus) return;
    QTest::sendKeyEvent(QTest::Click, focus, c.unicode() < 0x80 ? QTest::asciiToKey(c.toLatin1()) : Qt::Key_unknown,
                        QString(c), Qt::NoModifier);
  }
}

void Monkey::ClickSomewhere(QWidget& window) {
  std::vector<QWidget*> targets;
  for (QWidget* widget : window.findChildren<QWidget*>()) {
    if (!widget->isVisible() || !widget->isEnabled() || widget->window() != &window) continue;
    if (widget->visibleRegion().isEmpty()) continue;
    targets.push_back(widget);
    // Buttons are small and many; most other widgets only hold others.
    if (qobject_cast<QAbstractButton*>(widget) != nullptr) targets.insert(targets.end(), 3, widget);
  }
  if (targets.empty()) targets.push_back(&window);
  const QPointer<QWidget> target = Any(targets);
  const QRect seen = target->visibleRegion().boundingRect();
  if (seen.isEmpty()) return;
  const QPoint spot = seen.topLeft() + QPoint(Under(seen.width()), Under(seen.height()));
  const int kind = Under(12);
  Note(kind == 0 ? "double click" : kind == 1 ? "right click" : "click", target);
  const auto button = kind == 1 ? Qt::RightButton : Qt::LeftButton;
  const QPoint global = target->mapToGlobal(spot);
  const auto send = [&](QEvent::Type type, Qt::MouseButtons held) {
    if (target == nullptr) return;
    QMouseEvent event(type, spot, global, button, held, Qt::NoModifier);
    QApplication::sendEvent(target, &event);
  };
  if (button == Qt::LeftButton && (target->focusPolicy() & Qt::ClickFocus) != 0 &&
      QApplication::activePopupWidget() == nullptr)
    target->setFocus(Qt::MouseFocusReason);
  send(QEvent::MouseButtonPress, button);
  if (kind == 1 && target != nullptr) {
    QContextMenuEvent menu(QContextMenuEvent::Mouse, spot, global);
    QApplication::sendEvent(target, &menu);
  }
  send(QEvent::MouseButtonRelease, Qt::NoButton);
  if (kind != 0) return;
  send(QEvent::MouseButtonDblClick, button);
  send(QEvent::MouseButtonRelease, Qt::NoButton);
}

void Monkey::ClickMenuBar(QWidget& window) {
  auto* bar = window.findChild<QMenuBar*>();
  if (bar == nullptr || bar->actions().isEmpty()) return PressKey(window);
  // Down to a command by the menus that stand open for it, which gate themselves as they open.
  QMenu* menu = bar->actions().at(Under(static_cast<int>(bar->actions().size())))->menu();
  QPointer<QAction> chosen;
  while (menu != nullptr) {
    Q_EMIT menu->aboutToShow();
    std::vector<QAction*> usable;
    for (QAction* action : menu->actions())
      if (action->isVisible() && action->isEnabled() && !action->isSeparator()) usable.push_back(action);
    if (usable.empty()) return;
    chosen = Any(usable);
    menu = chosen->menu();
  }
  if (chosen == nullptr) return;
  Note("menu " + chosen->text().toStdString(), &window);
  chosen->trigger();
}

void Monkey::AnswerChooser(QFileDialog& chooser) {
  const QPointer<QFileDialog> open = &chooser;
  auto* name = chooser.findChild<QLineEdit*>("fileNameEdit");
  auto* buttons = chooser.findChild<QDialogButtonBox*>();
  const std::filesystem::path path =
      chooser.fileMode() == QFileDialog::Directory ? folder_ : folder_ / ("File " + std::to_string(Under(5)) + ".vkd");
  Note("choose " + path.filename().string(), &chooser);
  if (name != nullptr && buttons != nullptr && Under(3) != 0) {
    name->setText(desktop::Q(path.string()));
    for (QAbstractButton* button : buttons->buttons())
      if (buttons->buttonRole(button) == QDialogButtonBox::AcceptRole && button->isEnabled()) {
        button->click();
        break;
      }
  }
  if (open != nullptr && open->isVisible()) open->reject();
}

}  // namespace vellumark::test
