#pragma once

#include <QUrl>
#include <optional>

#include "core/AppDestination.h"
#include "surfaces/desktop/Presenter.h"
#include "surfaces/desktop/RowModel.h"

namespace lumenary {

/// The window as a whole: the rooms and what each says of itself, the banner, undo.
class House : public Presenter {
  Q_OBJECT

 public:
  House(AppModel& model, AppDestination room);

  Q_INVOKABLE void navigate(int room);
  Q_INVOKABLE void undo();
  /// What the banner offers, once.
  Q_INVOKABLE void undoOffered();
  Q_INVOKABLE void dismissOffer();
  Q_INVOKABLE void redo();
  Q_INVOKABLE void undoAct(const QString& id);
  Q_INVOKABLE void say(const QString& sentence);
  Q_INVOKABLE void dismissNotice();
  Q_INVOKABLE void openTrash();
  /// Where the person said, and nothing else is told to anybody.
  Q_INVOKABLE void exportDiagnostics(const QUrl& file);

  /// The window came on the screen or went: what nobody sees isn't measured.
  void setShown(bool isShown);

 private:
  void refresh() override;
  void showRooms();
  void showDisk();
  void showActs();
  void setSurface(AppDestination room, bool active);

  AppDestination room_;
  bool isShown_ = false;
  std::optional<UUID> undoneOffer_;
  RowModel* rooms_;
  RowModel* cards_;  ///< the same without the overview, the worst first
  RowModel* acts_;
};

bool canUndo(const CleanupTransaction& transaction);
/// What an act was about: "pip and 2 more".
QString actTitle(const CleanupTransaction& transaction);
/// What has become of it, and when it was: "2 items in the Trash, 12 MB · Nov 23, 2026 at 3:19 PM".
QString actState(const CleanupTransaction& transaction);

}  // namespace lumenary
