#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtDBus/QDBusVariant>

namespace corvane::studio {

/// Whether the editor draws itself light or dark. It follows the system: the desktop's
/// colour-scheme preference where the desktop publishes one (the settings portal, which
/// GNOME and KDE Plasma answer), else whether the application palette's window colour is
/// dark; and it changes when either does. A forced appearance ("light" or "dark", from the
/// command line) wins over both.
class Appearance final : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool dark READ dark NOTIFY changed)

 public:
  /// `forced` is "light", "dark", or empty to follow the system.
  explicit Appearance(const QString& forced = {}, QObject* parent = nullptr);

  bool dark() const { return dark_; }

 Q_SIGNALS:
  void changed();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private Q_SLOTS:
  void portalSettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

 private:
  void readPortal();
  void update();

  bool forced_ = false;
  bool dark_ = false;
  // The portal's "color-scheme": 0 no preference, 1 dark, 2 light.
  unsigned portalScheme_ = 0;
};

}  // namespace corvane::studio
