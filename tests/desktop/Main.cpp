#include <gtest/gtest.h>

#include <QAccessible>
#include <QGuiApplication>
#include <QQuickWindow>

#include "desktop/Warnings.h"

namespace {

QtMessageHandler before = nullptr;

void note(QtMsgType type, const QMessageLogContext& context, const QString& message) {
  if (message.contains("qrc:")) {
    lumenary::screenWarnings().push_back(message.toStdString());
  }
  before(type, context, message);
}

}  // namespace

std::vector<std::string>& lumenary::screenWarnings() {
  static std::vector<std::string> warnings;
  return warnings;
}

int main(int count, char** arguments) {
  testing::InitGoogleTest(&count, arguments);
  QGuiApplication::setApplicationName("Hearthkeep");
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  const QGuiApplication application(count, arguments);
  QGuiApplication::setQuitOnLastWindowClosed(false);
  QAccessible::setActive(true);
  before = qInstallMessageHandler(note);
  return RUN_ALL_TESTS();
}
