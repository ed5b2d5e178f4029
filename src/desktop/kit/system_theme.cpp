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
constexpr auto kScheme = "color-scheme";
constexpr auto kContrast = "contrast";

}  // namespace

SystemTheme::SystemTheme(QObject* parent) : QObject(parent) {
  const QPalette palette = QGuiApplication::palette();
  dark_ = palette.color(QPalette::WindowText).lightness() > palette.color(QPalette::Window).lightness();
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  bus.connect(kService, kPath, kInterface, "SettingChanged", this, SLOT(OnSetting(QString, QString, QDBusVariant)));
  Ask(kScheme);
  Ask(kContrast);
}

Theme SystemTheme::Now() const {
  if (contrast_) return dark_ ? Theme::DarkContrast : Theme::LightContrast;
  return dark_ ? Theme::Dark : Theme::Light;
}

// Without waiting: the answer of a slow desktop comes as a change.
void SystemTheme::Ask(const QString& key) {
  QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kInterface, "Read");
  call << kGroup << key;
  auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, key] {
    const QDBusPendingReply<QDBusVariant> reply = *watcher;
    watcher->deleteLater();
    if (reply.isError()) return;
    QVariant value = reply.value().variant();
    if (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
    OnSetting(kGroup, key, QDBusVariant(value));
  });
}

void SystemTheme::OnSetting(const QString& group, const QString& key, const QDBusVariant& value) {
  if (group != kGroup) return;
  const Theme before = Now();
  const uint says = value.variant().toUInt();
  // Of the scheme 0 is no preference, 1 dark, 2 light; of the contrast 1 is high.
  if (key == kScheme && (says == 1 || says == 2)) dark_ = says == 1;
  if (key == kContrast) contrast_ = says == 1;
  if (Now() != before) Q_EMIT Changed(Now());
}

}  // namespace vellumark::desktop
