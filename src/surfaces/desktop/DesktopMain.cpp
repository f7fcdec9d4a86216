#include <QGuiApplication>
#include <QQmlContext>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <cstdio>
#include <filesystem>
#include <string_view>

#include "core/AppModel.h"
#include "platform/linux/LinuxExecutor.h"
#include "surfaces/desktop/OneCopy.h"
#include "surfaces/desktop/Screens.h"

// The desktop face: one window over the model, on the toolkit's loop.

namespace lumenary {
namespace {

/// The folder that the program was started with, as a path from the root; empty without one.
QByteArray folderOf(int argumentCount, char** arguments) {
  std::error_code failure;
  if (argumentCount < 2 || !std::filesystem::is_directory(arguments[1], failure)) {
    return {};
  }
  const auto folder = std::filesystem::canonical(arguments[1], failure);
  return failure ? QByteArray() : QByteArray::fromStdString(folder.string());
}

#ifdef LUMENARY_GALLERY
int showGallery() {
  Appearance appearance;
  QQmlApplicationEngine engine;
  engine.addImportPath("qrc:/");
  engine.rootContext()->setContextProperty("appearance", &appearance);
  engine.load(QUrl("qrc:/Hearthkeep/Gallery.qml"));
  return QGuiApplication::exec();
}
#endif

int run(int& argumentCount, char** arguments) {
  QGuiApplication::setApplicationName("Hearthkeep");
  QGuiApplication::setDesktopFileName("hearthkeep");
  // The picture is made of flat surfaces and text: drawn without a graphics processor it costs less to start and to
  // keep.
  if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND")) {
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  }
  QGuiApplication application(argumentCount, arguments);
#ifdef LUMENARY_GALLERY
  if (argumentCount >= 2 && std::string_view(arguments[1]) == "--gallery") {
    return showGallery();
  }
#endif
  // A closed window comes back with the next start; only quitting ends the process.
  QGuiApplication::setQuitOnLastWindowClosed(false);
  const QByteArray folder = folderOf(argumentCount, arguments);
  OneCopy copy(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation));
  if (!copy.isFirst()) {
    if (!copy.raiseFirst(folder)) {
      std::fputs("Hearthkeep is already open, but doesn't answer.\n", stderr);
      return 1;
    }
    return 0;
  }

  Platform platform = makePlatform();
  platform.probe.mark("init");
  ScanStore store(*platform.files, platform.places.support, platform.probe);
  LinuxExecutor executor;
  ThreadWorkers workers(setThreadPriority);
  Scheduler scheduler(executor, workers);
  QSocketNotifier calls(executor.readiness().number(), QSocketNotifier::Read);
  QObject::connect(&calls, &QSocketNotifier::activated, &application, [&executor] { executor.runReady(); });

  AppModel model(platform, store, scheduler, AppModel::Services::all);
  const auto room = platform.defaults->string(settingsKey::lastRoom).value_or(std::nullopt);
  Screens screens(model, platform.probe, destinationOf(room.value_or("")));
  if (screens.window() == nullptr) {
    return 1;
  }
  const auto look = [&screens](const QByteArray& place) {
    if (!place.isEmpty()) {
      screens.lookAt(place.toStdString());
    }
  };
  look(folder);
  copy.onAnother([&](const QByteArray& place) {
    screens.raise();
    look(place);
  });
  QObject::connect(&application, &QGuiApplication::applicationStateChanged, &application,
                   [&model](Qt::ApplicationState state) {
                     if (state == Qt::ApplicationActive) {
                       model.applicationBecameActive();
                     }
                   });
  model.monitoringCoordinator().start();
  model.restoreCodeFolder();
  return QGuiApplication::exec();
}

}  // namespace
}  // namespace lumenary

extern "C" __attribute__((visibility("default"))) int lumenaryDesktopMain(int argumentCount, char** arguments) {
  return lumenary::run(argumentCount, arguments);
}
