#pragma once

#include <QColor>
#include <QHash>
#include <QQuickPaintedItem>
#include <QVariantMap>
#include <vector>

#include "surfaces/Treemap.h"
#include "surfaces/desktop/RowModel.h"

namespace lumenary {

/// The map of a folder, drawn in one piece: thousands of tiles cost one frame. The arrow keys go from tile to tile.
class TreemapItem : public QQuickPaintedItem {
  Q_OBJECT
  Q_PROPERTY(lumenary::RowModel* tiles READ tiles WRITE setTiles NOTIFY tilesChanged)
  /// By the names of the storage kinds, and "text", "chosen", "focus".
  Q_PROPERTY(QVariantMap colours READ colours WRITE setColours NOTIFY coloursChanged)
  Q_PROPERTY(QString chosen MEMBER chosen_ NOTIFY chosenChanged)
  Q_PROPERTY(int current READ current WRITE setCurrent NOTIFY currentChanged)
  Q_PROPERTY(QString currentText READ currentText NOTIFY currentChanged)
  Q_PROPERTY(int textSize MEMBER textSize_ NOTIFY coloursChanged)

 public:
  explicit TreemapItem(QQuickItem* parent = nullptr);

  RowModel* tiles() const { return tiles_; }
  void setTiles(RowModel* tiles);
  QVariantMap colours() const;
  void setColours(const QVariantMap& colours);
  int current() const { return current_; }
  void setCurrent(int tile);
  QString currentText() const;
  void paint(QPainter* painter) override;
  /// Where a tile is drawn; for a picture of what the pointer is over.
  QRectF rectOf(int tile) const;
  int tileAt(qreal x, qreal y) const;

 Q_SIGNALS:
  void tilesChanged();
  void coloursChanged();
  void chosenChanged();
  void currentChanged();
  void chose(const QString& key);
  void opened(const QString& key);

 protected:
  void updatePolish() override { layOut(); }
  void geometryChange(const QRectF& now, const QRectF& before) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void layOut();
  void step(int dx, int dy);
  void activate(int tile, bool opens);

  RowModel* tiles_ = nullptr;
  QHash<QString, QColor> colours_;
  QString chosen_;
  int current_ = -1;
  int textSize_ = 12;
  std::vector<Rectangle> rectangles_;
};

}  // namespace lumenary
