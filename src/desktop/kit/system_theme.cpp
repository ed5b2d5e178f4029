#include "desktop/kit/system_theme.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QGuiApplication>
#include <QPalette>

namespace vellumark::desktop {
namespace {

constexpr auto kService = "org.freedesktop.portal.Desktop";
constexpr auto kPath = "/org/freedesktop/portal/desktop";
constexpr auto kInterface = "org.freedesktop.portal.Settings";
constexpr auto kGroup = "org.freedesktop.appearance";
constexpr auto kKey = "color-scheme";

}  // namespace

SystemTheme::SystemTheme(QObject* parent) : QObject(parent) {
  const QPalette palette = QGuiApplication::palette();
  const bool dark = palette.color(QPalette::WindowText).lightness() > palette.color(QPalette::Window).lightness();
  theme_ = dark ? Theme::Dark : Theme::Light;

  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  bus.connect(kService, kPath, kInterface, "SettingChanged", this, SLOT(OnSetting(QString, QString, QDBusVariant)));
  // Without waiting: the answer of a slow desktop comes as a change.
  QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kInterface, "Read");
  call << kGroup << kKey;
  auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
    const QDBusPendingReply<QDBusVariant> reply = *watcher;
    watcher->deleteLater();
    if (reply.isError()) return;
    QVariant value = reply.value().variant();
    if (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
    Take(value.toUInt());
  });
}

void SystemTheme::OnSetting(const QString& group, const QString& key, const QDBusVariant& value) {
  if (group == kGroup && key == kKey) Take(value.variant().toUInt());
}

void SystemTheme::Take(uint scheme) {
  // 0: no preference, 1: dark, 2: light.
  if (scheme != 1 && scheme != 2) return;
  theme_ = scheme == 1 ? Theme::Dark : Theme::Light;
  Q_EMIT Changed(theme_);
}

}  // namespace vellumark::desktop
