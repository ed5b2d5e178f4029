#include "support/desktop.h"

#include <fmt/format.h>

#include <QAbstractButton>
#include <QAbstractEventDispatcher>
#include <QDialog>
#include <QElapsedTimer>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <stdexcept>

#include "desktop/kit/application.h"
#include "desktop/kit/wait_progress.h"
#include "support/loop_watch.h"
#include "support/places.h"

namespace vellumark::test {
namespace {

using desktop::Look;
using desktop::Theme;

QWidget& Focused() {
  QWidget* widget = QApplication::focusWidget();
  if (widget == nullptr) throw std::runtime_error("nothing has the focus");
  return *widget;
}

// Texts that do not fit are what goes wrong first in a form.
void CheckNothingIsCutOff(QWidget& window, const std::string& name) {
  for (QWidget* widget : window.findChildren<QWidget*>()) {
    const bool text = qobject_cast<QLabel*>(widget) != nullptr || qobject_cast<QAbstractButton*>(widget) != nullptr;
    if (!text || !widget->isVisible() || qobject_cast<QLineEdit*>(widget->parentWidget()) != nullptr) continue;
    if (auto* label = qobject_cast<QLabel*>(widget); label != nullptr && label->wordWrap()) continue;
    const QSize needs = widget->minimumSizeHint();
    EXPECT_GE(widget->width() + 1, needs.width()) << name << ": cut off: " << widget->objectName().toStdString();
    EXPECT_GE(widget->height() + 2, needs.height()) << name << ": cut off: " << widget->objectName().toStdString();
  }
}

void Grab(QWidget& window, const std::string& path, int percent) {
  const double ratio = percent / 100.0;
  QImage picture((QSizeF(window.size()) * ratio).toSize(), QImage::Format_RGB32);
  picture.setDevicePixelRatio(ratio);
  picture.fill(Look::Now().window);
  window.render(&picture);
  ASSERT_TRUE(picture.save(QString::fromStdString(path))) << path;
}

// QTest knows the keys of ASCII only; a letter beyond comes as from a keyboard that has it.
void TypeText(QWidget& widget, const std::string& text) {
  for (const QChar c : desktop::Q(text)) {
    if (c.unicode() < 0x80) {
      QTest::keyClick(&widget, c.toLatin1());
    } else {
      QTest::sendKeyEvent(QTest::Click, &widget, Qt::Key_unknown, QString(c), Qt::NoModifier);
    }
  }
  Settle();
}

// What the offscreen platform has to say of itself is of no use here.
void Quietly(QtMsgType type, const QMessageLogContext&, const QString& text) {
  if (text.contains("plugin does not support") || text.contains("XDG_RUNTIME_DIR")) return;
  std::cerr << text.toStdString() << '\n';
  if (type == QtFatalMsg) std::abort();
}

LoopWatch* watching = nullptr;

class WatchedApplication : public desktop::Application {
 public:
  using Application::Application;
  bool notify(QObject* receiver, QEvent* event) override {
    if (watching == nullptr) return Application::notify(receiver, event);
    const LoopWatch::Delivery delivery(*receiver, event->type());
    return Application::notify(receiver, event);
  }
};

// A program that ended in one test told the application so, and no dialog would run in the next.
class BeginsAnew : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo&) override { RunAgain(); }
};

}  // namespace

void RunAgain() {
  QMetaObject::invokeMethod(
      qApp, [] { QCoreApplication::exit(); }, Qt::QueuedConnection);
  QCoreApplication::exec();
}

double MachineSlowness() {
  const auto work = [] {
    const CpuTimer timer;
    std::uint64_t sum = 0;
    for (int n = 0; n < 200000; ++n) sum += fmt::format("{} {:.3f}", n, n / 7.0).size();
    EXPECT_GT(sum, 0U);
    return timer.Ms();
  };
  constexpr double kOnADesk = 45;  // ms of that work
  return std::max({1.0, std::min({work(), work(), work()}) / kOnADesk});
}

LoopWatch::LoopWatch() {
  watching = this;
  auto* loop = QAbstractEventDispatcher::instance();
  QObject::connect(loop, &QAbstractEventDispatcher::awake, qApp, [this] { ComesRound(); });
  QObject::connect(loop, &QAbstractEventDispatcher::aboutToBlock, qApp, [this] { ComesRound(); });
}

LoopWatch::~LoopWatch() {
  watching = nullptr;
  QAbstractEventDispatcher::instance()->disconnect(qApp);
}

void LoopWatch::Step(const std::string& step, const std::function<void()>& act) {
  Settle();
  const std::string outer = std::exchange(step_, step);
  {
    const Delivery delivery(*qApp, QEvent::None);
    act();
  }
  Settle();
  step_ = outer;
}

void LoopWatch::ComesRound() {
  const double ms = before_ + (depth_ > 0 ? since_.Ms() : 0);
  if (!step_.empty() && !barSeen_ && ms > longest_[step_].ms) longest_[step_] = {ms, slowest_.event};
  before_ = 0;
  slowest_ = {};
  since_ = CpuTimer();
  barSeen_ = bars_ > 0;
}

LoopWatch::Delivery::Delivery(QObject& receiver, QEvent::Type type) : watch_(watching) {
  if (watch_ == nullptr) return;
  if (watch_->depth_++ == 0) watch_->since_ = CpuTimer();
  what_ = fmt::format("{} {} {}", static_cast<int>(type), receiver.metaObject()->className(),
                      receiver.objectName().toStdString());
  if (type != QEvent::Show && type != QEvent::Hide) return;
  if (qobject_cast<desktop::WaitWindow*>(&receiver) == nullptr) return;
  watch_->bars_ += type == QEvent::Show ? 1 : -1;
  watch_->barSeen_ = true;
}

LoopWatch::Delivery::~Delivery() {
  if (watch_ == nullptr || watching != watch_) return;
  const double ms = timer_.Ms();
  if (ms > watch_->slowest_.ms) watch_->slowest_ = {ms, what_};
  if (--watch_->depth_ == 0) watch_->before_ += watch_->since_.Ms();
}

void Settle() {
  for (int round = 0; round < 3; ++round) {
    QApplication::processEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

bool WaitFor(const std::function<bool()>& done, int timeout) {
  QElapsedTimer clock;
  clock.start();
  while (!done()) {
    if (clock.elapsed() > timeout) return false;
    QTest::qWait(5);
  }
  return true;
}

void Press(QWidget& widget, Qt::Key key, Qt::KeyboardModifiers modifiers) {
  QTest::keyClick(&widget, key, modifiers);
  Settle();
}

void Type(QWidget& widget, const std::string& text) {
  widget.setFocus(Qt::TabFocusReason);
  TypeText(widget, text);
}

void TypeOn(const std::string& text) {
  TypeText(Focused(), text);
}

void PressOn(Qt::Key key, Qt::KeyboardModifiers modifiers) {
  Press(Focused(), key, modifiers);
}

void Fill(QWidget& root, const char* name, const std::string& text) {
  QWidget& field = Control(root, name);
  field.setFocus(Qt::TabFocusReason);
  Press(field, Qt::Key_A, Qt::ControlModifier);
  if (text.empty()) {
    Press(field, Qt::Key_Delete);
  } else {
    Type(field, text);
  }
  Press(field, Qt::Key_Tab);
}

void Click(QWidget& widget) {
  // A check box answers on its mark and word only, which stand at the left.
  const QPoint spot = qobject_cast<QAbstractButton*>(&widget) != nullptr && !widget.inherits("QPushButton")
                          ? QPoint(10, widget.height() / 2)
                          : widget.rect().center();
  QTest::mouseClick(&widget, Qt::LeftButton, Qt::NoModifier, spot);
  Settle();
}

void Click(QWidget& root, const char* name) {
  Click(Control(root, name));
}

std::string FocusName() {
  for (QWidget* widget = QApplication::focusWidget(); widget != nullptr; widget = widget->parentWidget()) {
    const QString name = widget->objectName();
    if (!name.isEmpty() && !name.startsWith("qt_")) return name.toStdString();
  }
  return {};
}

void ShowActive(QWidget& window) {
  window.show();
  window.activateWindow();
  if (!QTest::qWaitForWindowActive(window.window())) throw std::runtime_error("the window did not become active");
  Settle();
}

void WithModal(const std::function<void()>& act, const std::function<void(QWidget& dialog)>& inside) {
  QWidget* before = QApplication::activeModalWidget();
  bool seen = false;
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
    const QPointer<QWidget> modal = QApplication::activeModalWidget();
    if (modal == nullptr || modal == before || !modal->isActiveWindow() || QApplication::focusWidget() == nullptr)
      return;
    seen = true;
    poll.stop();
    // Whatever goes wrong inside, a window that stays would hold the test for ever.
    try {
      inside(*modal);
    } catch (const std::exception& failure) {
      ADD_FAILURE() << "in " << modal->objectName().toStdString() << ": " << failure.what();
    }
    if (modal == nullptr || !modal->isVisible()) return;
    ADD_FAILURE() << modal->objectName().toStdString() << " did not close";
    if (auto* dialog = qobject_cast<QDialog*>(modal.data())) dialog->done(QDialog::Rejected);
  });
  poll.start(5);
  act();
  EXPECT_TRUE(seen) << "no modal window came up";
}

void Picture(QWidget& window, const std::string& name, QSize size) {
  const std::string base = (ScreensFolder() / name).string();
  if (size.isValid()) window.resize(size);
  if (!window.isVisible()) window.show();
  Look::SetTheme(Theme::DarkContrast);
  Settle();
  Grab(window, base + "-contrast.png", 100);
  for (const Theme theme : {Theme::Light, Theme::Dark}) {
    Look::SetTheme(theme);
    Settle();
    const std::string tone = theme == Theme::Light ? "-light" : "-dark";
    Grab(window, base + tone + ".png", 100);
    Grab(window, base + tone + "-200.png", 200);
  }
  Look::SetTheme(Theme::Light);
  Settle();
  CheckNothingIsCutOff(window, name);
}

}  // namespace vellumark::test

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  // No desktop session of the machine has a say in what a test sees.
  qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
  qInstallMessageHandler(vellumark::test::Quietly);
  testing::InitGoogleTest(&argc, argv);
  const QTemporaryDir settings;
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
  QLocale::setDefault(QLocale::c());
  vellumark::test::WatchedApplication application(argc, argv);
  application.setEffectEnabled(Qt::UI_AnimateCombo, false);
  vellumark::desktop::Look::SetTheme(vellumark::desktop::Theme::Light);
  application.OnFailure(
      [](const std::string& title, const std::string& text) { ADD_FAILURE() << title << ": " << text; });
  testing::UnitTest::GetInstance()->listeners().Append(new vellumark::test::BeginsAnew);
  return RUN_ALL_TESTS();
}
