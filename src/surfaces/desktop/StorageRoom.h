#pragma once

#include <QUrl>
#include <optional>
#include <string>

#include "surfaces/desktop/Presenter.h"
#include "surfaces/desktop/RowModel.h"

namespace lumenary {

/// The Storage room: the scan, the folder that is open, what a search finds, and what is known of the chosen thing.
class StorageRoom : public Presenter {
  Q_OBJECT

 public:
  explicit StorageRoom(AppModel& model);

  /// Any folder can stand for a drive.
  void lookAt(const std::string& folder);

  Q_INVOKABLE void scan();
  Q_INVOKABLE void cancel();
  Q_INVOKABLE void selectDrive(const QString& key);
  Q_INVOKABLE void selectFolder(const QUrl& folder);
  /// A folder of the scan; nothing happens for anything else.
  Q_INVOKABLE void open(const QString& key);
  Q_INVOKABLE void goUp();
  Q_INVOKABLE void choose(const QString& key);
  Q_INVOKABLE void search(const QString& query);
  /// Shows the chosen thing in the file manager.
  Q_INVOKABLE void reveal();
  /// The question about the chosen thing, and its answer: what moves is what was asked about.
  Q_INVOKABLE QVariantMap askToMove();
  Q_INVOKABLE void moveToTrash();

 private:
  void refresh() override;
  void showScan();
  void showFolder();
  void showTiles();
  void showDrives();
  void showChosen();
  std::optional<StorageNode> nodeAt(const std::string& path) const;
  QVariantMap rowOf(const StorageNode& node, std::int64_t whole) const;
  Task<> find(QString query, std::stop_source stop);
  Task<> adopt(AppModel::Scan scan);
  Task<> explain(StorageNode node, std::stop_source stop);
  Task<> move(StorageNode node);

  std::string folder_;
  std::string chosen_;
  std::optional<StorageNode> asked_;
  QString query_;
  std::stop_source search_;
  std::stop_source explanation_;
  AppModel::Scan shownScan_;
  RowModel* rows_;
  RowModel* tiles_;
  RowModel* crumbs_;
  RowModel* facts_;
};

}  // namespace lumenary
