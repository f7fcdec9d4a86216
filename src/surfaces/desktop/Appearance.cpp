#include "surfaces/desktop/Appearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QEvent>
#include <QFont>
#include <QGuiApplication>
#include <QPalette>
#include <algorithm>

namespace lumenary {
namespace {

// The settings portal: https://flatpak.github.io/xdg-desktop-portal/docs/doc-org.freedesktop.portal.Settings.html
const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settings = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearanceSpace = QStringLiteral("org.freedesktop.appearance");
const QString schemeKey = QStringLiteral("color-scheme");
const QString interfaceSpace = QStringLiteral("org.gnome.desktop.interface");
const QString motionKey = QStringLiteral("enable-animations");
constexpr uint prefersDark = 1;
constexpr uint prefersLight = 2;
constexpr int answerMilliseconds = 2000;
constexpr qreal usualPoints = 11;  // what the desktops come with, 9 to 11

Appearance::Scheme schemeOf(uint told) {
  switch (told) {
    case prefersDark:
      return Appearance::Scheme::dark;
    case prefersLight:
      return Appearance::Scheme::light;
    default:
      return Appearance::Scheme::unknown;
  }
}

/// Portals put what they answer into a further wrapping, or two.
QVariant unwrapped(QVariant value) {
  while (value.userType() == qMetaTypeId<QDBusVariant>()) {
    value = value.value<QDBusVariant>().variant();
  }
  return value;
}

}  // namespace

Appearance::Appearance() {
  qGuiApp->installEventFilter(this);
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (bus.isConnected()) {
    bus.connect(service, path, settings, "SettingChanged", this, SLOT(settingChanged(QString, QString, QDBusVariant)));
    ask(appearanceSpace, schemeKey);
    ask(interfaceSpace, motionKey);
  }
}

bool Appearance::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::ApplicationFontChange) {
    Q_EMIT changed();
  }
  return QObject::eventFilter(watched, event);
}

void Appearance::ask(const QString& space, const QString& key) {
  QDBusMessage question = QDBusMessage::createMethodCall(service, path, settings, "Read");
  question << space << key;
  auto* const answer =
      new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question, answerMilliseconds), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, space, key, answer] {
    const QDBusPendingReply<QVariant> reply = *answer;
    if (reply.isValid()) {
      take(space, key, reply.value());
    }
    answer->deleteLater();
  });
}

void Appearance::settingChanged(const QString& space, const QString& key, const QDBusVariant& value) {
  take(space, key, value.variant());
}

void Appearance::take(const QString& space, const QString& key, const QVariant& value) {
  const QVariant told = unwrapped(value);
  if (space == appearanceSpace && key == schemeKey) {
    scheme_ = schemeOf(told.toUInt());
  } else if (space == interfaceSpace && key == motionKey) {
    hasMotion_ = told.toBool();
  } else {
    return;
  }
  Q_EMIT changed();
}

bool Appearance::isDark() const {
  return scheme_ == Scheme::unknown ? QGuiApplication::palette().color(QPalette::Window).lightness() < 128
                                    : scheme_ == Scheme::dark;
}

qreal Appearance::textScale() const { return std::max(1.0, QGuiApplication::font().pointSizeF() / usualPoints); }

}  // namespace lumenary
