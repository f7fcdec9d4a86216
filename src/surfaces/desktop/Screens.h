#pragma once

#include <QQmlApplicationEngine>
#include <QQuickWindow>

#include "platform/PerfProbe.h"
#include "surfaces/desktop/Appearance.h"
#include "surfaces/desktop/CleanRoom.h"
#include "surfaces/desktop/House.h"
#include "surfaces/desktop/ListRooms.h"
#include "surfaces/desktop/StorageRoom.h"

namespace lumenary {

/// The main window with its rooms over the model. On the toolkit's main thread, with an application; it goes before the
/// model.
class Screens : public QObject {
  Q_OBJECT

 public:
  /// The probe must outlive the value.
  Screens(AppModel& model, const PerfProbe& probe, AppDestination room = AppDestination::home);

  /// Null where the screens can't be loaded; the toolkit has said why.
  QQuickWindow* window() const { return window_; }
  /// Shows the window in front of the others, also after it was closed.
  void raise();
  QQmlEngine& engine() { return engine_; }
  /// Goes to the Storage room with this folder in it, measured if it wasn't.
  void lookAt(const std::string& folder);

 private:
  Appearance appearance_;
  House house_;
  StorageRoom storage_;
  CleanRoom clean_;
  AppsRoom apps_;
  MemoryRoom memory_;
  PortsRoom ports_;
  QQmlApplicationEngine engine_;
  QQuickWindow* window_ = nullptr;
};

}  // namespace lumenary
