#include "desktop/kit/application.h"

#include <QAbstractButton>
#include <QSignalBlocker>

#include "core/base/refusal.h"
#include "desktop/kit/caps_lock.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/message_prompt.h"
#include "desktop/kit/scanned_entry.h"

namespace vellumark::desktop {
namespace {

// A message or a dialog has come up, and the platform has not given it the keys yet: what is behind it takes none, else
// Ctrl+F4 closes the window that asks.
bool IsBehindModal(const QObject& receiver) {
  const QWidget* modal = QApplication::activeModalWidget();
  if (modal == nullptr) return false;
  const QObject* at = &receiver;
  while (at != nullptr && !at->isWidgetType()) at = at->parent();
  const auto* widget = static_cast<const QWidget*>(at);
  return widget != nullptr && widget != modal && !modal->isAncestorOf(widget);
}

// A button that its key has pressed clicks a moment later. By then it may be switched off, or what is behind a message.
bool ClicksTooLate(QObject& receiver, const QEvent& event) {
  if (event.type() != QEvent::Timer) return false;
  const auto* button = qobject_cast<QAbstractButton*>(&receiver);
  return button != nullptr && (!button->isEnabled() || IsBehindModal(*button));
}

}  // namespace

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {
  setApplicationName("vellumark");
  // No display name: the platform would put it behind the title of every message.
  setDesktopFileName("vellumark");
  setWindowIcon(Icon("vellumark"));
  Look::Apply(*this);
  new CapsLock(*this);
  new ScannedEntry(*this);
  show_ = [](const std::string& title, const std::string& text) {
    MessagePrompt prompt;
    prompt.Tell(title, text, vellumark::Icon::Critical);
  };
}

bool Application::notify(QObject* receiver, QEvent* event) {
  try {
    if (event->type() == QEvent::Shortcut && IsBehindModal(*receiver)) return true;
    if (!ClicksTooLate(*receiver, *event)) return QApplication::notify(receiver, event);
    // It comes up again, and nobody hears of it.
    auto& button = static_cast<QAbstractButton&>(*receiver);
    const QSignalBlocker nobody(&button);
    const bool checked = button.isChecked();
    QApplication::notify(receiver, event);
    if (button.isCheckable()) button.setChecked(checked);
    return true;
  } catch (const std::exception& failure) {
    Report(failure);
  }
  return true;
}

void Application::Report(const std::exception& failure) {
  if (const auto* world = dynamic_cast<const Failure*>(&failure)) {
    show_("The Vellumark", world->subject + "\n\n" + world->cause);
    return;
  }
  show_("Unexpected Error", std::string("The following unexpected error occurred:\n\n") + failure.what());
}

}  // namespace vellumark::desktop
