#include "appearance.hpp"

#include <QtCore/QEvent>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusReply>
#include <QtDBus/QDBusVariant>
#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>

namespace corvane::studio {
namespace {

constexpr auto kPortalService = "org.freedesktop.portal.Desktop";
constexpr auto kPortalPath = "/org/freedesktop/portal/desktop";
constexpr auto kPortalSettings = "org.freedesktop.portal.Settings";
constexpr auto kAppearanceGroup = "org.freedesktop.appearance";
constexpr auto kColorScheme = "color-scheme";

// The portal wraps the value in one or two variants depending on its version.
unsigned schemeOf(QVariant value) {
  while (value.canConvert<QDBusVariant>() && value.userType() == qMetaTypeId<QDBusVariant>()) {
    value = value.value<QDBusVariant>().variant();
  }
  return value.toUInt();
}

}  // namespace

Appearance::Appearance(const QString& forced, QObject* parent) : QObject(parent) {
  if (forced == QStringLiteral("light") || forced == QStringLiteral("dark")) {
    forced_ = true;
    dark_ = forced == QStringLiteral("dark");
    return;
  }
  qApp->installEventFilter(this);
  readPortal();
  update();
}

void Appearance::readPortal() {
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  auto call = QDBusMessage::createMethodCall(QString::fromLatin1(kPortalService), QString::fromLatin1(kPortalPath),
                                             QString::fromLatin1(kPortalSettings), QStringLiteral("Read"));
  call << QString::fromLatin1(kAppearanceGroup) << QString::fromLatin1(kColorScheme);
  // A desktop without the portal answers at once with an error; a hung bus is not waited on long.
  const QDBusReply<QVariant> reply = bus.call(call, QDBus::Block, 500);
  if (reply.isValid()) portalScheme_ = schemeOf(reply.value());
  bus.connect(QString::fromLatin1(kPortalService), QString::fromLatin1(kPortalPath),
              QString::fromLatin1(kPortalSettings), QStringLiteral("SettingChanged"), this,
              SLOT(portalSettingChanged(QString, QString, QDBusVariant)));
}

void Appearance::portalSettingChanged(const QString& group, const QString& key, const QDBusVariant& value) {
  if (group != QString::fromLatin1(kAppearanceGroup) || key != QString::fromLatin1(kColorScheme)) return;
  portalScheme_ = schemeOf(value.variant());
  update();
}

bool Appearance::eventFilter(QObject* watched, QEvent* event) {
  if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange) update();
  return QObject::eventFilter(watched, event);
}

void Appearance::update() {
  if (forced_) return;
  bool dark = false;
  if (portalScheme_ == 1 || portalScheme_ == 2) {
    dark = portalScheme_ == 1;
  } else {
    dark = QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
  }
  if (dark == dark_) return;
  dark_ = dark;
  Q_EMIT changed();
}

}  // namespace corvane::studio
