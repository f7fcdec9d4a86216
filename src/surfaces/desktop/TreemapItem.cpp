#include "surfaces/desktop/TreemapItem.h"

#include <QKeyEvent>
#include <QPainter>
#include <cmath>

namespace lumenary {
namespace {

constexpr qreal gap = 2;
constexpr qreal leastWidthForText = 56;
constexpr qreal leastHeightForText = 22;
constexpr qreal margin = 7;

QRectF rectOfTile(const Rectangle& tile) {
  return QRectF(tile.x, tile.y, tile.width, tile.height).adjusted(gap / 2, gap / 2, -gap / 2, -gap / 2);
}

}  // namespace

TreemapItem::TreemapItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAcceptedMouseButtons(Qt::LeftButton);
  setActiveFocusOnTab(true);
  const auto repaint = [this] { update(); };
  connect(this, &TreemapItem::coloursChanged, this, repaint);
  connect(this, &TreemapItem::chosenChanged, this, repaint);
  connect(this, &QQuickItem::activeFocusChanged, this, repaint);
}

void TreemapItem::setTiles(RowModel* tiles) {
  if (tiles == tiles_) {
    return;
  }
  if (tiles_ != nullptr) {
    tiles_->disconnect(this);
  }
  tiles_ = tiles;
  if (tiles_ != nullptr) {
    connect(tiles_, &QAbstractItemModel::rowsInserted, this, &TreemapItem::polish);
    connect(tiles_, &QAbstractItemModel::rowsRemoved, this, &TreemapItem::polish);
    connect(tiles_, &QAbstractItemModel::rowsMoved, this, &TreemapItem::polish);
    connect(tiles_, &QAbstractItemModel::modelReset, this, &TreemapItem::polish);
    connect(tiles_, &QAbstractItemModel::dataChanged, this, &TreemapItem::polish);
  }
  layOut();
  Q_EMIT tilesChanged();
}

QVariantMap TreemapItem::colours() const {
  QVariantMap colours;
  for (auto colour = colours_.begin(); colour != colours_.end(); ++colour) {
    colours.insert(colour.key(), colour.value());
  }
  return colours;
}

void TreemapItem::setColours(const QVariantMap& colours) {
  colours_.clear();
  for (auto colour = colours.begin(); colour != colours.end(); ++colour) {
    colours_.insert(colour.key(), QColor(colour.value().toString()));  // told as a colour or as its name
  }
  Q_EMIT coloursChanged();
}

void TreemapItem::layOut() {
  std::vector<double> sizes;
  if (tiles_ != nullptr) {
    for (const QVariantMap& tile : tiles_->rows()) {
      sizes.push_back(tile.value("bytes").toDouble());
    }
  }
  rectangles_ = Treemap::layout(sizes, {0, 0, width(), height()});
  current_ = std::min(current_, static_cast<int>(rectangles_.size()) - 1);
  Q_EMIT currentChanged();  // the tile of that number may be another one
  update();
}

void TreemapItem::geometryChange(const QRectF& now, const QRectF& before) {
  QQuickPaintedItem::geometryChange(now, before);
  if (now.size() != before.size()) {
    layOut();
  }
}

QRectF TreemapItem::rectOf(int tile) const {
  return tile < 0 || tile >= static_cast<int>(rectangles_.size())
             ? QRectF()
             : rectOfTile(rectangles_[static_cast<std::size_t>(tile)]);
}

int TreemapItem::tileAt(qreal x, qreal y) const {
  for (std::size_t tile = 0; tile < rectangles_.size(); ++tile) {
    if (rectOfTile(rectangles_[tile]).contains(x, y)) {
      return static_cast<int>(tile);
    }
  }
  return -1;
}

QString TreemapItem::currentText() const {
  const QVariantMap tile = tiles_ == nullptr ? QVariantMap() : tiles_->at(current_);
  return tile.isEmpty() ? QString() : tile.value("title").toString() + ", " + tile.value("size").toString();
}

void TreemapItem::setCurrent(int tile) {
  if (tile != current_) {
    current_ = tile;
    Q_EMIT currentChanged();
    update();
  }
}

void TreemapItem::paint(QPainter* painter) {
  if (tiles_ == nullptr) {
    return;
  }
  QFont font = painter->font();
  font.setPixelSize(textSize_);
  painter->setFont(font);
  const QFontMetricsF metrics(font);
  for (std::size_t index = 0; index < std::min(rectangles_.size(), tiles_->rows().size()); ++index) {
    const QRectF frame = rectOfTile(rectangles_[index]);
    if (frame.width() <= 0 || frame.height() <= 0) {
      continue;
    }
    const QVariantMap& tile = tiles_->rows()[index];
    const bool isChosen = tile.value("key").toString() == chosen_;
    painter->fillRect(frame, colours_.value(tile.value("kind").toString()));
    if (frame.width() >= leastWidthForText && frame.height() >= leastHeightForText) {
      const QRectF text = frame.adjusted(margin, margin - 2, -margin, -margin + 2);
      painter->setPen(colours_.value("text"));
      painter->drawText(text, Qt::AlignLeft | Qt::AlignTop,
                        metrics.elidedText(tile.value("title").toString(), Qt::ElideMiddle, text.width()));
      if (text.height() >= 2 * metrics.height()) {
        painter->drawText(text.translated(0, metrics.height()), Qt::AlignLeft | Qt::AlignTop,
                          metrics.elidedText(tile.value("size").toString(), Qt::ElideRight, text.width()));
      }
    }
    if (isChosen || (hasActiveFocus() && static_cast<int>(index) == current_)) {
      painter->setPen(QPen(colours_.value(isChosen ? "chosen" : "focus"), 2));
      painter->drawRect(frame.adjusted(1, 1, -1, -1));
    }
  }
}

void TreemapItem::activate(int tile, bool opens) {
  const QVariantMap row = tiles_ == nullptr ? QVariantMap() : tiles_->at(tile);
  if (row.isEmpty()) {
    return;
  }
  setCurrent(tile);
  const QString key = row.value("key").toString();
  Q_EMIT chose(key);
  if (opens && row.value("opens").toBool()) {
    Q_EMIT opened(key);
  }
}

void TreemapItem::mousePressEvent(QMouseEvent* event) {
  forceActiveFocus(Qt::MouseFocusReason);
  activate(tileAt(event->position().x(), event->position().y()), false);
}

void TreemapItem::mouseDoubleClickEvent(QMouseEvent* event) {
  activate(tileAt(event->position().x(), event->position().y()), true);
}

/// The nearest tile in that direction.
void TreemapItem::step(int dx, int dy) {
  if (current_ < 0) {
    activate(0, false);
    return;
  }
  const QPointF from = rectOf(current_).center();
  int nearest = -1;
  qreal least = 0;
  for (int tile = 0; tile < static_cast<int>(rectangles_.size()); ++tile) {
    const QPointF way = rectOf(tile).center() - from;
    const qreal along = (way.x() * dx) + (way.y() * dy);
    const qreal aside = std::abs(way.x() * dy) + std::abs(way.y() * dx);
    const qreal distance = along + (2 * aside);
    if (tile != current_ && along > 0 && (nearest < 0 || distance < least)) {
      nearest = tile;
      least = distance;
    }
  }
  if (nearest >= 0) {
    activate(nearest, false);
  }
}

void TreemapItem::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Left:
      step(-1, 0);
      break;
    case Qt::Key_Right:
      step(1, 0);
      break;
    case Qt::Key_Up:
      step(0, -1);
      break;
    case Qt::Key_Down:
      step(0, 1);
      break;
    case Qt::Key_Space:
      activate(current_, false);
      break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      activate(current_, true);
      break;
    default:
      QQuickPaintedItem::keyPressEvent(event);
  }
}

}  // namespace lumenary
