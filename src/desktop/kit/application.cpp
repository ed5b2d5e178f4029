#include "desktop/kit/application.h"

#include "core/base/refusal.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/message_prompt.h"

namespace vellumark::desktop {

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {
  setApplicationName("vellumark");
  // No display name: the platform would put it behind the title of every message.
  setDesktopFileName("vellumark");
  setWindowIcon(Icon("vellumark"));
  Look::Apply(*this);
  show_ = [](const std::string& title, const std::string& text) {
    MessagePrompt prompt;
    prompt.Tell(title, text, vellumark::Icon::Critical);
  };
}

bool Application::notify(QObject* receiver, QEvent* event) {
  try {
    return QApplication::notify(receiver, event);
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
