#include "desktop/kit/caps_lock.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QKeyEvent>

namespace vellumark::desktop {
namespace {

// The bit of Caps Lock in the modifiers as the platform has them; 0 where it has none.
quint32 NativeBit() {
  const QString platform = QGuiApplication::platformName();
  if (platform == "xcb" || platform.startsWith("wayland")) return 0x2;
  return platform == "windows" ? 0x100 : 0;
}

bool LightIsOn() {
  const QDir lights("/sys/class/leds");
  for (const QString& name : lights.entryList({"*::capslock"})) {
    QFile light(lights.filePath(name + "/brightness"));
    if (light.open(QIODevice::ReadOnly) && light.readAll().trimmed().toInt() > 0) return true;
  }
  return false;
}

CapsLock* one = nullptr;

}  // namespace

CapsLock::CapsLock(QObject& application) : QObject(&application) {
  one = this;
}

CapsLock& CapsLock::Of() {
  return *one;
}

bool CapsLock::IsOn() const {
  return on_ ? *on_ : NativeBit() != 0 && LightIsOn();
}

void CapsLock::Hear(const QKeyEvent& key) {
  if (key.isAutoRepeat()) return;
  if (key.key() == Qt::Key_CapsLock) return Set(!IsOn());
  const quint32 bit = NativeBit();
  // A key that the program made itself has no scan code.
  if (bit != 0 && key.nativeScanCode() != 0) Set((key.nativeModifiers() & bit) != 0);
}

void CapsLock::Set(bool on) {
  const bool was = IsOn();
  on_ = on;
  if (on && !was) Q_EMIT TurnedOn();
}

}  // namespace vellumark::desktop
