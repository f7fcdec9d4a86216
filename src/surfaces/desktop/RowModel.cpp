#include "surfaces/desktop/RowModel.h"

#include <QSet>
#include <algorithm>

namespace lumenary {
namespace {

const QString keyName = QStringLiteral("key");
/// Beyond it, and where nothing stays, a list is replaced as a whole.
constexpr std::size_t mostMoves = 2000;

QString keyOfRow(const QVariantMap& row) { return row.value(keyName).toString(); }

}  // namespace

RowModel::RowModel(const QStringList& roles, QObject* parent) : QAbstractListModel(parent) {
  int role = Qt::UserRole;
  for (const QString& name : roles) {
    roles_.insert(++role, name.toUtf8());
  }
}

QVariant RowModel::data(const QModelIndex& index, int role) const {
  if (index.row() < 0 || index.row() >= count()) {
    return {};
  }
  return rows_[static_cast<std::size_t>(index.row())].value(QString::fromUtf8(roles_.value(role)));
}

QVariantMap RowModel::at(int row) const {
  return row < 0 || row >= count() ? QVariantMap() : rows_[static_cast<std::size_t>(row)];
}

int RowModel::indexOfKey(const QString& key) const {
  const auto found = std::ranges::find(rows_, key, keyOfRow);
  return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

bool RowModel::sharesKeys(const Rows& rows) const {
  QSet<QString> wanted;
  for (const QVariantMap& row : rows) {
    wanted.insert(keyOfRow(row));
  }
  return std::ranges::any_of(rows_, [&](const QVariantMap& row) { return wanted.contains(keyOfRow(row)); });
}

void RowModel::removeMissing(const Rows& rows) {
  QSet<QString> wanted;
  for (const QVariantMap& row : rows) {
    wanted.insert(keyOfRow(row));
  }
  for (int row = count() - 1; row >= 0; --row) {
    if (!wanted.contains(keyOfRow(rows_[static_cast<std::size_t>(row)]))) {
      beginRemoveRows({}, row, row);
      rows_.erase(rows_.begin() + row);
      endRemoveRows();
    }
  }
}

/// Brings the wanted row to its number: it is there, stands further down, or is new.
void RowModel::place(int row, const QVariantMap& wanted) {
  const auto at = rows_.begin() + row;
  const auto found =
      std::find_if(at, rows_.end(), [key = keyOfRow(wanted)](const QVariantMap& one) { return keyOfRow(one) == key; });
  if (found == rows_.end()) {
    beginInsertRows({}, row, row);
    rows_.insert(at, wanted);
    endInsertRows();
    return;
  }
  if (found != at) {
    beginMoveRows({}, static_cast<int>(found - rows_.begin()), static_cast<int>(found - rows_.begin()), {}, row);
    std::rotate(at, found, found + 1);
    endMoveRows();
  }
  QVariantMap& present = rows_[static_cast<std::size_t>(row)];
  if (present != wanted) {
    present = wanted;
    Q_EMIT dataChanged(index(row), index(row));
  }
}

void RowModel::setRows(Rows rows) {
  const int before = count();
  if (rows.size() > mostMoves || !sharesKeys(rows)) {
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
  } else {
    removeMissing(rows);
    for (std::size_t row = 0; row < rows.size(); ++row) {
      place(static_cast<int>(row), rows[row]);
    }
    if (const int wanted = static_cast<int>(rows.size()); count() > wanted) {  // where two had one key
      beginRemoveRows({}, wanted, count() - 1);
      rows_.resize(rows.size());
      endRemoveRows();
    }
  }
  if (count() != before) {
    Q_EMIT countChanged();
  }
}

}  // namespace lumenary
