#pragma once

#include <QAbstractListModel>
#include <QHash>
#include <QVariantMap>
#include <vector>

namespace lumenary {

/// A list for the screens. A row is a map with a "key" that tells it from the others; a new list is brought in row by
/// row, so that what stays keeps its place on the screen and its focus.
class RowModel : public QAbstractListModel {
  Q_OBJECT
  Q_PROPERTY(int count READ count NOTIFY countChanged)

 public:
  using Rows = std::vector<QVariantMap>;

  /// `roles` are the names by which the screens ask for a row's values.
  RowModel(const QStringList& roles, QObject* parent);

  void setRows(Rows rows);
  const Rows& rows() const { return rows_; }
  int count() const { return static_cast<int>(rows_.size()); }

  int rowCount(const QModelIndex& parent = QModelIndex()) const override { return parent.isValid() ? 0 : count(); }
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override { return roles_; }
  /// The whole row; empty for a number that there isn't.
  Q_INVOKABLE QVariantMap at(int row) const;
  /// -1 where there is none.
  Q_INVOKABLE int indexOfKey(const QString& key) const;

 Q_SIGNALS:
  void countChanged();

 private:
  bool sharesKeys(const Rows& rows) const;
  void removeMissing(const Rows& rows);
  void place(int row, const QVariantMap& wanted);

  QHash<int, QByteArray> roles_;
  Rows rows_;
};

}  // namespace lumenary
