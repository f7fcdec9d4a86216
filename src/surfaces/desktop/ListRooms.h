#pragma once

#include <QUrl>

#include "surfaces/desktop/Presenter.h"
#include "surfaces/desktop/RowModel.h"

namespace lumenary {

/// Apps with what they keep, what removed ones left, and what starts by itself.
class AppsRoom : public Presenter {
  Q_OBJECT

 public:
  explicit AppsRoom(AppModel& model);

 private:
  void refresh() override;
  void prepare() override;
  Task<> load();

  RowModel* apps_;
  RowModel* leftovers_;
  RowModel* background_;
};

/// Load and memory, by app.
class MemoryRoom : public Presenter {
  Q_OBJECT

 public:
  explicit MemoryRoom(AppModel& model);
  Q_INVOKABLE void quit(const QString& key);

 private:
  void refresh() override;
  Task<> quitApp(AppMemoryUsage usage);

  RowModel* apps_;
};

/// What listens, and the projects of the code folder.
class PortsRoom : public Presenter {
  Q_OBJECT

 public:
  explicit PortsRoom(AppModel& model);
  Q_INVOKABLE void chooseCodeFolder(const QUrl& folder);

 private:
  void refresh() override;

  RowModel* ports_;
  RowModel* projects_;
};

}  // namespace lumenary
