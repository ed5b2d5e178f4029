#pragma once

#include <QObject>
#include <optional>

class QKeyEvent;

namespace vellumark::desktop {

/// Whether Caps Lock is on. The platform says so with the keys that it brings; before the first of them the light of
/// the keyboard does, where the system shows it.
class CapsLock : public QObject {
  Q_OBJECT

 public:
  /// The one of the application; made with it.
  static CapsLock& Of();
  explicit CapsLock(QObject& application);

  bool IsOn() const;
  /// A key was pressed somewhere in the program.
  void Hear(const QKeyEvent& key);

 Q_SIGNALS:
  void TurnedOn();

 private:
  void Set(bool on);
  std::optional<bool> on_;
};

}  // namespace vellumark::desktop
