// empty_window: the least that a window of the toolkit can be. Says when it was drawn first and stays until it is
// killed.

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <cstdio>

int main(int argumentCount, char** arguments) {
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  const QGuiApplication application(argumentCount, arguments);
  QQmlApplicationEngine engine;
  engine.loadData(
      "import QtQuick\nimport QtQuick.Window\n"
      "Window { visible: true; width: 1180; height: 780; Rectangle { anchors.fill: parent } }");
  auto* const window = qobject_cast<QQuickWindow*>(engine.rootObjects().value(0));
  if (window == nullptr) {
    return 1;
  }
  QObject::connect(
      window, &QQuickWindow::frameSwapped, window,
      [] {
        std::puts("firstFrame");
        std::fflush(stdout);
      },
      Qt::SingleShotConnection);
  return QGuiApplication::exec();
}
