#include "support/desktop.h"

#include <QAbstractButton>
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
  vellumark::desktop::Application application(argc, argv);
  application.setEffectEnabled(Qt::UI_AnimateCombo, false);
  vellumark::desktop::Look::SetTheme(vellumark::desktop::Theme::Light);
  application.OnFailure(
      [](const std::string& title, const std::string& text) { ADD_FAILURE() << title << ": " << text; });
  testing::UnitTest::GetInstance()->listeners().Append(new vellumark::test::BeginsAnew);
  return RUN_ALL_TESTS();
}
