#pragma once

#include <QObject>
#include <cstdint>

class QDBusVariant;

namespace lumenary {

/// How this person has their desktop: by night or by day, with motion or without, how large the type. The palette of
/// the toolkit tells it, and where there is a session bus the desktop's settings, which know more. On the main thread.
class Appearance : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool isDark READ isDark NOTIFY changed)
  Q_PROPERTY(bool hasMotion READ hasMotion NOTIFY changed)
  Q_PROPERTY(qreal textScale READ textScale NOTIFY changed)

 public:
  enum class Scheme : std::uint8_t { unknown, dark, light };

  Appearance();

  bool isDark() const;
  bool hasMotion() const { return hasMotion_; }
  /// 1 for type of the usual size; larger, never smaller.
  qreal textScale() const;

  bool eventFilter(QObject* watched, QEvent* event) override;

 Q_SIGNALS:
  void changed();

 private:
  void ask(const QString& space, const QString& key);
  void take(const QString& space, const QString& key, const QVariant& value);
  Q_SLOT void settingChanged(const QString& space, const QString& key, const QDBusVariant& value);

  Scheme scheme_ = Scheme::unknown;
  bool hasMotion_ = true;
};

}  // namespace lumenary
