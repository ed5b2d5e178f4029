#include "desktop/kit/window.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QSettings>

#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr const char* kClosed = "closed";

}  // namespace

Window::Window(WindowList& windowList, const QString& name, const QString& title, Stands stands)
    : QWidget(stands == Stands::InTheArea ? windowList.TakeRoom() : nullptr),
      FormHost(windowList, *this),
      stands_(stands) {
  setObjectName(name);
  setWindowTitle(title);
}

Window::~Window() {
  qApp->disconnect(this);  // the focus still moves while its parts go
  // One that was closed may outlive the list.
  if (property(kClosed).toBool()) return;
  Closing();
  windows.Forget(*this);
}

bool Window::CanDo(const QString& command) const {
  const auto* button = findChild<QAbstractButton*>(command);
  return button != nullptr && button->isEnabled() && button->isVisibleTo(this);
}

void Window::Do(const QString& command) {
  if (!CanDo(command)) return;
  auto* button = findChild<QAbstractButton*>(command);
  button->setFocus(Qt::ShortcutFocusReason);
  button->click();
}

bool Window::Leave() {
  // One that is being asked already says that it has closed; it has once the list no longer knows it.
  return close() && windows.Form(Name()) != this;
}

void Window::closeEvent(QCloseEvent* event) {
  if (!MayClose()) {
    event->ignore();
    return;
  }
  Closing();
  event->accept();
  setProperty(kClosed, true);
  windows.Forget(*this);
  deleteLater();
}

void Window::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  Ready();
}

void Window::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
    // What is being edited is taken back first; the window goes once nothing in it is.
    if (InEdit() && CanDo("cmdCancel"))
      Do("cmdCancel");
    else
      Leave();
    return;
  }
  QWidget::keyPressEvent(event);
}

Dialog::Dialog(WindowList& windowList, QWidget* owner, const QString& name, const QString& title)
    : QDialog(owner), FormHost(windowList, *this) {
  setObjectName(name);
  setWindowTitle(title);
  setModal(true);
  windows.Join(*this);
}

Dialog::~Dialog() {
  qApp->disconnect(this);  // the focus still moves while its parts go
  Closing();
  windows.Forget(*this);
}

void Dialog::accept() {
  Closing();
  RememberSize();
  QDialog::accept();
}

void Dialog::reject() {
  if (!MayClose()) return;
  Closing();
  RememberSize();
  QDialog::reject();
}

void Dialog::closeEvent(QCloseEvent* event) {
  // QDialog's own close goes through reject, which may decline; either way this event has had its effect there.
  if (!isVisible()) return event->accept();
  reject();
  event->setAccepted(!isVisible());
}

void Dialog::showEvent(QShowEvent* event) {
  if (const QSize size = memory::Recall("size/" + objectName()).toSize(); size.isValid())
    resize(size.boundedTo(screen()->availableSize()));
  QDialog::showEvent(event);
  Ready();
}

void Dialog::RememberSize() {
  memory::Keep("size/" + objectName(), size());
}

namespace memory {
namespace {

QSettings File() {
  return {QSettings::IniFormat, QSettings::UserScope, "Vellumark", "windows"};
}

}  // namespace

void Keep(const QString& key, const QVariant& value) {
  File().setValue(key, value);
}

QVariant Recall(const QString& key) {
  return File().value(key);
}

}  // namespace memory
}  // namespace vellumark::desktop
