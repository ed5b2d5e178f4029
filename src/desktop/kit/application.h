#pragma once

#include <QApplication>
#include <functional>
#include <string>

namespace vellumark::desktop {

/// The application: the look, and the edge at which a failure of the world that no window foresaw is caught and shown.
class Application : public QApplication {
  Q_OBJECT

 public:
  Application(int& argc, char** argv);
  /// How a failure is shown: title and text. A message box, until a session's Prompt or a test says otherwise.
  void OnFailure(std::function<void(const std::string& title, const std::string& text)> show) {
    show_ = std::move(show);
  }
  bool notify(QObject* receiver, QEvent* event) override;

 private:
  void Report(const std::exception& failure);
  std::function<void(const std::string&, const std::string&)> show_;
};

}  // namespace vellumark::desktop
