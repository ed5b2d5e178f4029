#pragma once

#include <QDBusVariant>
#include <QObject>

#include "desktop/kit/look.h"

namespace vellumark::desktop {

/// Whether the system's desktop is light or dark at the moment, and in high contrast: what the platform's palette says, and
/// where the desktop answers on the session bus (org.freedesktop.appearance), what it says there, also when it changes.
class SystemTheme : public QObject {
  Q_OBJECT

 public:
  explicit SystemTheme(QObject* parent);
  Theme Now() const;

 Q_SIGNALS:
  void Changed(Theme theme);

 private Q_SLOTS:
  void OnSetting(const QString& group, const QString& key, const QDBusVariant& value);

 private:
  void Ask(const QString& key);
  bool dark_;
  bool contrast_ = false;
};

}  // namespace vellumark::desktop
