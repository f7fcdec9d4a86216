#pragma once

#include <gtest/gtest.h>

#include <QAccessible>
#include <QGuiApplication>
#include <QQuickItem>
#include <QSocketNotifier>
#include <QtTest>
#include <functional>
#include <memory>
#include <string>

#include "core/AppModel.h"
#include "desktop/Warnings.h"
#include "platform/linux/LinuxExecutor.h"
#include "platform/linux/LinuxFileMetadata.h"
#include "platform/linux/LinuxFolderWatcher.h"
#include "platform/linux/LinuxMountWatcher.h"
#include "support/ModelHome.h"
#include "surfaces/desktop/Screens.h"

namespace lumenary {

/// What a person with a screen reader meets: a control by its role and its words.
class Control {
 public:
  Control() = default;
  explicit Control(QAccessibleInterface* face) : face_(face) {}

  explicit operator bool() const { return face_ != nullptr; }
  QAccessible::Role role() const { return face_->role(); }
  QString name() const { return face_->text(QAccessible::Name); }
  QAccessible::State state() const { return face_->state(); }
  QRect place() const { return face_->rect(); }
  bool isHidden() const { return state().invisible || place().isEmpty(); }
  Control parent() const { return Control(face_->parent()); }
  QQuickItem* item() const { return qobject_cast<QQuickItem*>(face_->object()); }
  bool canBePressed() const {
    QAccessibleActionInterface* const actions = face_->actionInterface();
    return actions != nullptr && (actions->actionNames().contains(QAccessibleActionInterface::pressAction()) ||
                                  actions->actionNames().contains(QAccessibleActionInterface::toggleAction()));
  }

  /// All that is shown below this one.
  std::vector<Control> all() const {
    std::vector<Control> found;
    collect(found);
    return found;
  }

 private:
  void collect(std::vector<Control>& found) const {
    for (int child = 0; child < face_->childCount(); ++child) {
      const Control below(face_->child(child));
      if (below && !below.state().invisible) {
        found.push_back(below);
        below.collect(found);
      }
    }
  }

  QAccessibleInterface* face_ = nullptr;
};

/// The real window over a made home: what moves is real, below one folder. Everything goes by events of the mouse and
/// the keyboard.
class DesktopHome : public testing::Test {
 protected:
  static constexpr int patience = 20'000;  // milliseconds; a condition ends the wait

  void SetUp() override {
    screenWarnings().clear();
    home.platform.folderWatcher = std::make_unique<LinuxFolderWatcher>();
    home.platform.supportWatcher = std::make_unique<LinuxFolderWatcher>();
    home.platform.mountWatcher = std::make_unique<LinuxMountWatcher>();
    home.platform.metadata =
        std::make_unique<LinuxFileMetadata>(*home.platform.files, home.at(".local/share/recently-used.xbel"));
    home.platform.places.driveFolders = {home.home.root()};
  }
  void TearDown() override {
    screens.reset();
    model.reset();
    EXPECT_EQ(screenWarnings(), std::vector<std::string>());
  }

  void open() {
    model = std::make_unique<AppModel>(home.platform, *home.store, scheduler, AppModel::Services::all);
    screens = std::make_unique<Screens>(*model, home.platform.probe);
    ASSERT_NE(screens->window(), nullptr);
    model->monitoringCoordinator().start();
    window().requestActivate();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
  }
  /// Opens with the made home as what is looked at.
  void openHome() {
    open();
    screens->lookAt(home.home.root());
    ASSERT_TRUE(waitFor([this] { return model->tidyPlan->has_value(); }));
  }

  QQuickWindow& window() { return *screens->window(); }
  Control root() { return Control(QAccessible::queryAccessibleInterface(&window())); }

  Control find(QAccessible::Role role, const std::function<bool(const QString&)>& fits, const Control& below) {
    for (const Control& control : below.all()) {
      if (control.role() == role && !control.isHidden() && fits(control.name())) {
        return control;
      }
    }
    return Control();
  }
  /// In the open question, where there is one.
  Control find(QAccessible::Role role, const QString& words) {
    const Control sheet = role == QAccessible::Dialog
                              ? Control()
                              : find(QAccessible::Dialog, [](const QString&) { return true; }, root());
    return find(role, [&](const QString& name) { return name.startsWith(words); }, sheet ? sheet : root());
  }
  bool has(QAccessible::Role role, const QString& words) { return static_cast<bool>(find(role, words)); }
  static bool waitFor(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, patience); }
  void waitForSheet(const QString& title) {
    ASSERT_TRUE(waitFor([&] { return has(QAccessible::Dialog, title); })) << shownText();
  }
  /// There, usable, and no longer on its way to its place.
  void waitForControl(QAccessible::Role role, const QString& words) {
    QRect place;
    int looks = 0;  // it is laid out with the next frame, a few looks later
    ASSERT_TRUE(waitFor([&] {
      const Control control = find(role, words);
      const bool isReady =
          control && control.item()->isEnabled() && control.place() == std::exchange(place, control.place());
      looks = isReady ? looks + 1 : 0;
      return looks == 5;
    })) << words.toStdString()
        << "\n"
        << shownText();
  }

  /// As a hand does it: in the middle of the control.
  void click(QAccessible::Role role, const QString& words) {
    waitForControl(role, words);
    const Control control = find(role, words);
    QTest::mouseClick(&window(), Qt::LeftButton, {}, window().mapFromGlobal(control.place().center()));
  }
  void key(Qt::Key key, Qt::KeyboardModifiers with = Qt::NoModifier) { QTest::keyClick(&window(), key, with); }
  void type(const QString& text) {
    for (const QChar letter : text) {
      QTest::keyClick(&window(), letter.toLatin1());
    }
  }
  /// The words of what has the keyboard.
  QString focused() {
    QQuickItem* const item = window().activeFocusItem();
    QAccessibleInterface* const face = item == nullptr ? nullptr : QAccessible::queryAccessibleInterface(item);
    return face == nullptr ? QString() : face->text(QAccessible::Name);
  }
  /// What has the keyboard is usable, has a name, and can be seen as a whole.
  void expectFocusInSight(const std::string& step) {
    QQuickItem* const item = window().activeFocusItem();
    ASSERT_NE(item, nullptr) << step;
    const std::string words = step + ", at " + focused().toStdString();
    EXPECT_TRUE(item->isVisible() && item->isEnabled() && !focused().isEmpty()) << words;
    QRectF sight(QPointF(), QSizeF(window().size()));
    for (const QQuickItem* around = item->parentItem(); around != nullptr; around = around->parentItem()) {
      sight = around->clip() ? sight & around->mapRectToScene(around->boundingRect()) : sight;
    }
    const QRectF place = item->mapRectToScene(item->boundingRect());
    EXPECT_TRUE(sight.adjusted(-1, -1, 1, 1).contains(place))
        << words << ": from " << place.top() << " to " << place.bottom() << ", seen from " << sight.top() << " to "
        << sight.bottom();
  }
  /// Tab until what has the keyboard begins with these words.
  void tabTo(const QString& words) {
    for (int step = 0; step < 200 && !focused().startsWith(words); ++step) {
      key(Qt::Key_Tab);
    }
    ASSERT_TRUE(focused().startsWith(words)) << words.toStdString() << ", but " << focused().toStdString();
  }
  std::string shownText() {
    std::string text;
    for (const Control& control : root().all()) {
      text += control.name().toStdString() + "\n";
    }
    return text;
  }

  std::string at(const std::string& relative) const { return home.at(relative); }
  bool stands(const std::string& relative) const { return standsAt(at(relative)); }
  std::set<std::string> trashed() const { return namesIn(home.home.trash("files")); }

  static constexpr int mebibyte = 1'048'576;
  ModelHome home{ModelHome::Threads::real};
  LinuxExecutor executor;
  ThreadWorkers workers{[](ThreadPriority) {}};
  Scheduler scheduler{executor, workers};
  QSocketNotifier calls{executor.readiness().number(), QSocketNotifier::Read};
  QMetaObject::Connection pump = QObject::connect(&calls, &QSocketNotifier::activated, [this] { executor.runReady(); });
  std::unique_ptr<AppModel> model;
  std::unique_ptr<Screens> screens;
};

}  // namespace lumenary
