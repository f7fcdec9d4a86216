// desktop_times WHAT [TREE]: measures the window over the home of its environment. WHAT is
//   store    writes a scan of the startup disk as large as scans get, for the others to find
//   rooms    from a key to the drawn room, each room many times; search: from a letter to the drawn list
//   scan     the scan of a tree by the engine alone and with the Storage room open, in turn
//   map      one frame of a map with 2,000 tiles
//   idle     frames that are drawn in ten seconds of each room
// Each prints a line of JSON, times in microseconds.

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QQmlContext>
#include <QSocketNotifier>
#include <QTest>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "MadeScan.h"
#include "base/JsonWriter.h"
#include "core/AppModel.h"
#include "platform/linux/LinuxExecutor.h"
#include "storage/StorageScanner.h"
#include "surfaces/desktop/Screens.h"
#include "surfaces/desktop/TreemapItem.h"

namespace {

using namespace lumenary;
using Clock = std::chrono::steady_clock;
using Times = std::map<std::string, std::vector<std::int64_t>>;

constexpr int rounds = 15;
constexpr int patience = 60'000;
constexpr Qt::Key roomKeys[] = {Qt::Key_1, Qt::Key_2, Qt::Key_3, Qt::Key_4, Qt::Key_5, Qt::Key_6};

std::int64_t since(Clock::time_point began) {
  return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - began).count();
}

void waitFor(const std::function<bool()>& condition) {
  if (!QTest::qWaitFor(condition, patience)) {
    std::fputs("desktop_times: waited in vain\n", stderr);
    std::exit(1);
  }
}

void print(const Times& times) {
  std::string json = "{";
  for (const auto& [name, values] : times) {
    json += (json.size() > 1 ? ", \"" : "\"") + name + "\": [";
    for (std::size_t index = 0; index < values.size(); ++index) {
      json += (index > 0 ? "," : "") + std::to_string(values[index]);
    }
    json += "]";
  }
  std::puts((json + "}").c_str());
}

struct Machine {
  Platform platform = makePlatform();
  LinuxExecutor executor;
  ThreadWorkers workers{setThreadPriority};
  Scheduler scheduler{executor, workers};
  ScanStore store{*platform.files, platform.places.support};
  QSocketNotifier calls{executor.readiness().number(), QSocketNotifier::Read};
  QMetaObject::Connection pump = QObject::connect(&calls, &QSocketNotifier::activated, [this] { executor.runReady(); });
  AppModel model{platform, store, scheduler, AppModel::Services::all};
  Screens screens{model, platform.probe};
  int frames = 0;

  Machine() {
    QObject::connect(screens.window(), &QQuickWindow::frameSwapped, [this] { ++frames; });
    model.monitoringCoordinator().start();
    screens.window()->requestActivate();
    static_cast<void>(QTest::qWaitForWindowActive(screens.window()));
  }
  /// Until a frame after the change.
  template <class Change>
  std::int64_t drawn(Change change) {
    const auto began = Clock::now();
    change();
    const int before = frames;  // a frame on the way doesn't count
    screens.window()->update();
    while (frames == before) {
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return since(began);
  }
};

void storeScan() {
  Platform platform = makePlatform();
  auto scan = MadeScan::make();
  scan.root = AppModel::macVolumeRoot;
  ScanStore store(*platform.files, platform.places.support);
  if (!store.save(scan)) {
    std::exit(1);
  }
}

void rooms() {
  Machine machine;
  waitFor([&] { return machine.model.tidyPlan->has_value(); });
  Times times;
  for (int round = 0; round < rounds; ++round) {
    for (int room = 0; room < 6; ++room) {
      times["room " + std::to_string(room + 1)].push_back(
          machine.drawn([&] { QTest::keyClick(machine.screens.window(), roomKeys[room], Qt::ControlModifier); }));
      QTest::qWait(30);
    }
  }
  QTest::keyClick(machine.screens.window(), Qt::Key_K, Qt::ControlModifier);
  auto* const storage = machine.screens.engine().rootContext()->contextProperty("storage").value<QObject*>();
  for (int round = 0; round < rounds; ++round) {
    for (const char letter : std::string_view("video")) {
      // The new list is there, and a frame with it.
      times["keystroke"].push_back(machine.drawn([&] {
        const QVariant before = storage->property("listTitle");
        QTest::keyClick(machine.screens.window(), letter);
        while (storage->property("listTitle") == before) {
          QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
      }));
    }
    QTest::keyClick(machine.screens.window(), Qt::Key_Escape);
    QTest::qWait(50);
  }
  print(times);
}

void scan(const std::string& tree) {
  Machine machine;
  QTest::keyClick(machine.screens.window(), Qt::Key_2, Qt::ControlModifier);
  Times times;
  for (int round = 0; round < rounds; ++round) {
    {
      Platform& platform = machine.platform;
      const auto began = Clock::now();
      const auto found =
          StorageScanner(*platform.reader, *platform.mountTable, platform.places, platform.now, platform.processors())
              .scan(tree);
      times["engine"].push_back(since(began));
    }
    const auto began = Clock::now();
    machine.model.scanStorage({.path = tree, .isFolder = true});
    waitFor([&] { return !*machine.model.isScanning; });
    times["window"].push_back(since(began));
    waitFor([&] { return machine.model.tidyPlan->has_value(); });
    QTest::qWait(200);
  }
  print(times);
}

void map() {
  RowModel tiles({"key", "title", "size", "bytes", "kind", "opens"}, nullptr);
  RowModel::Rows rows;
  for (int tile = 2000; tile > 0; --tile) {
    rows.push_back({{"key", QString::number(tile)},
                    {"title", QString("folder %1").arg(tile)},
                    {"size", "12.6 MB"},
                    {"bytes", tile * 1000.0},
                    {"kind", "Cache"},
                    {"opens", true}});
  }
  tiles.setRows(std::move(rows));
  TreemapItem item;
  item.setSize({1500, 900});
  item.setColours({{"Cache", "#bfe0c8"}, {"text", "#26221b"}});
  item.setTiles(&tiles);
  QImage picture(1500, 900, QImage::Format_ARGB32_Premultiplied);
  Times times;
  for (int round = 0; round < rounds; ++round) {
    QPainter painter(&picture);
    const auto began = Clock::now();
    item.paint(&painter);
    times["frame"].push_back(since(began));
  }
  print(times);
}

void idle() {
  Machine machine;
  waitFor([&] { return machine.model.tidyPlan->has_value(); });
  Times times;
  for (int room = 0; room < 6; ++room) {
    QTest::keyClick(machine.screens.window(), roomKeys[room], Qt::ControlModifier);
    QTest::qWait(3000);
    machine.frames = 0;
    QTest::qWait(10'000);
    times["room " + std::to_string(room + 1)].push_back(machine.frames);
  }
  print(times);
}

}  // namespace

int main(int argumentCount, char** arguments) {
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  const QGuiApplication application(argumentCount, arguments);
  QGuiApplication::setQuitOnLastWindowClosed(false);
  const std::string_view what = argumentCount > 1 ? arguments[1] : "";
  if (what == "store") {
    storeScan();
  } else if (what == "rooms") {
    rooms();
  } else if (what == "scan" && argumentCount > 2) {
    scan(arguments[2]);
  } else if (what == "map") {
    map();
  } else if (what == "idle") {
    idle();
  } else {
    return 2;
  }
  return 0;
}
