#include "surfaces/desktop/Screens.h"

#include <QQmlContext>
#include <memory>
#include <utility>

#include "surfaces/desktop/TreemapItem.h"

namespace lumenary {

Screens::Screens(AppModel& model, const PerfProbe& probe, AppDestination room)
    : house_(model, room), storage_(model), clean_(model), apps_(model), memory_(model), ports_(model) {
  qmlRegisterType<TreemapItem>("Hearthkeep", 1, 0, "TreemapItem");
  qmlRegisterUncreatableType<RowModel>("Hearthkeep", 1, 0, "RowModel", "Rows come from a room.");
  engine_.addImportPath("qrc:/");
  const std::pair<const char*, QObject*> rooms[] = {
      {"appearance", &appearance_}, {"house", &house_}, {"storage", &storage_}, {"clean", &clean_}, {"apps", &apps_},
      {"memory", &memory_},         {"ports", &ports_}};
  for (const auto& [name, presenter] : rooms) {
    engine_.rootContext()->setContextProperty(name, presenter);
  }
  engine_.load(QUrl("qrc:/Hearthkeep/Main.qml"));
  if (engine_.rootObjects().isEmpty()) {
    return;
  }
  window_ = qobject_cast<QQuickWindow*>(engine_.rootObjects().first());
  probe.mark("window");
  QObject::connect(
      window_, &QQuickWindow::frameSwapped, window_, [&probe] { probe.mark("firstFrame"); }, Qt::SingleShotConnection);
  const auto tell = [this] { house_.setShown(window_->isVisible() && window_->visibility() != QWindow::Minimized); };
  tell();
  QObject::connect(window_, &QWindow::visibleChanged, &house_, tell);
  QObject::connect(window_, &QWindow::visibilityChanged, &house_, tell);
}

void Screens::raise() {
  if (window_ != nullptr) {
    window_->show();
    window_->raise();
    window_->requestActivate();
  }
}

void Screens::lookAt(const std::string& folder) {
  house_.navigate(static_cast<int>(AppDestination::storage));
  storage_.lookAt(folder);
}

}  // namespace lumenary
