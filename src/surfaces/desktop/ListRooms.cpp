#include "surfaces/desktop/ListRooms.h"

#include <algorithm>

#include "base/Path.h"
#include "surfaces/desktop/Text.h"

namespace lumenary {
namespace {

const QStringList rowRoles = {"key", "title", "detail", "size", "badge", "tone"};

QString toneOf(const BackgroundItem& item) { return item.isBroken() ? "caution" : "neutral"; }

}  // namespace

AppsRoom::AppsRoom(AppModel& model)
    : Presenter(this, model),
      apps_(new RowModel(rowRoles, this)),
      leftovers_(new RowModel(rowRoles, this)),
      background_(new RowModel(rowRoles, this)) {
  showList("apps", apps_);
  showList("leftovers", leftovers_);
  showList("background", background_);
  follow(model.appInventory);
  follow(model.backgroundItems);
  follow(model.isLoadingApps);
}

void AppsRoom::prepare() { run(load()); }

Task<> AppsRoom::load() {
  if (!*model().appInventory) {
    co_await model().refreshApps();
  }
  co_await model().refreshBackgroundItems();
}

void AppsRoom::refresh() {
  show("isLoading", *model().isLoadingApps);
  RowModel::Rows apps;
  RowModel::Rows leftovers;
  if (const auto& inventory = *model().appInventory) {
    for (const InstalledApp& app : inventory->apps) {
      apps.push_back({{"key", keyOf(app.url.path)},
                      {"title", shown(app.name)},
                      {"detail", app.items.empty() ? QString("Keeps nothing in your home")
                                                   : counted(app.items.size(), "thing", "things") + " kept, " +
                                                         sizeText(app.clearableBytes()) + " clearable"},
                      {"size", sizeText(app.totalBytes())},
                      {"badge", app.isRunning ? "Open" : ""},
                      {"tone", "neutral"}});
    }
    for (const LeftoverGroup& group : inventory->leftovers) {
      leftovers.push_back({{"key", keyOf(group.bundleID)},
                           {"title", shown(group.displayName())},
                           {"detail", counted(group.items.size(), "thing", "things") + " left"},
                           {"size", sizeText(totalBytesOf(group.items))},
                           {"badge", ""},
                           {"tone", "caution"}});
    }
  }
  RowModel::Rows background;
  if (const auto& items = *model().backgroundItems) {
    for (const BackgroundItem& item : *items) {
      background.push_back({{"key", keyOf(item.url.path)},
                            {"title", shown(item.owner)},
                            {"detail", shown(item.label) + " · " + shown(item.schedule)},
                            {"size", shown(rawValue(item.domain))},
                            {"badge", shown(stateText(item))},
                            {"tone", toneOf(item)}});
    }
  }
  const auto* const nothing = *model().backgroundItems ? backgroundText::empty : backgroundText::loading;
  show("backgroundText", background.empty() ? QString::fromUtf8(nothing) : QString());
  apps_->setRows(std::move(apps));
  leftovers_->setRows(std::move(leftovers));
  background_->setRows(std::move(background));
}

MemoryRoom::MemoryRoom(AppModel& model) : Presenter(this, model), apps_(new RowModel(rowRoles, this)) {
  showList("apps", apps_);
  follow(model.appMemory);
  follow(model.systemHistory);
}

void MemoryRoom::refresh() {
  const auto& history = *model().systemHistory;
  show("hasReading", !history.empty());
  if (!history.empty()) {
    const SystemSnapshot& last = history.back();
    show("pressure", shown(memoryPressureTexts.at(static_cast<std::size_t>(last.memoryPressure))));
    show("used", sizeText(static_cast<std::int64_t>(last.usedMemoryBytes)) + " of " +
                     sizeText(static_cast<std::int64_t>(last.totalMemoryBytes)) + " in use");
    show("cpu", percent(last.cpuPercent / 100) + " of the processor");
    show("swap", sizeText(static_cast<std::int64_t>(last.swapUsedBytes)) + " swapped out");
    const double whole = static_cast<double>(std::max<std::uint64_t>(1, last.totalMemoryBytes));
    show("fraction", static_cast<double>(last.usedMemoryBytes) / whole);
  }
  RowModel::Rows rows;
  for (const AppMemoryUsage& usage : *model().appMemory) {
    rows.push_back({{"key", keyOf(usage.key)},
                    {"title", shown(usage.name)},
                    {"detail", counted(static_cast<std::size_t>(usage.processCount), "process", "processes") + " · " +
                                   percent(usage.cpuPercent / 100)},
                    {"size", sizeText(static_cast<std::int64_t>(usage.memoryBytes))},
                    {"badge", ""},
                    {"tone", usage.bundlePath ? "good" : "neutral"}});
  }
  apps_->setRows(std::move(rows));
}

void MemoryRoom::quit(const QString& key) {
  const auto found = std::ranges::find(*model().appMemory, pathOf(key), &AppMemoryUsage::key);
  if (found != model().appMemory->end()) {
    run(quitApp(*found));
  }
}

Task<> MemoryRoom::quitApp(AppMemoryUsage usage) {
  const std::string name = usage.name;
  auto failure = co_await model().quitAndConfirm(std::move(usage));
  model().showNotice(failure ? std::move(failure) : std::optional(name + " quit"));
}

PortsRoom::PortsRoom(AppModel& model)
    : Presenter(this, model), ports_(new RowModel(rowRoles, this)), projects_(new RowModel(rowRoles, this)) {
  showList("ports", ports_);
  showList("projects", projects_);
  follow(model.ports);
  follow(model.projects);
  follow(model.hasPortSample);
  follow(model.developerRoot);
}

void PortsRoom::chooseCodeFolder(const QUrl& folder) {
  if (folder.isLocalFile()) {
    model().scanDeveloperProjects({.path = bytesOf(folder), .isFolder = true});
  }
}

void PortsRoom::refresh() {
  RowModel::Rows ports;
  const auto add = [&](const PortEntry& port) {
    const QString key =
        QString("%1 %2 %3 %4").arg(port.port).arg(shown(port.protocolName), shown(port.address)).arg(port.pid);
    ports.push_back({{"key", key},
                     {"title", shown(port.processName)},
                     {"detail", shown(port.command.value_or(port.projectRoot.value_or("")))},
                     {"size", ":" + QString::number(port.port)},
                     {"badge", port.isDevServer() ? "Your server" : shown(port.protocolName)},
                     {"tone", port.isDevServer() ? "good" : "neutral"}});
  };
  for (const bool isOwn : {true, false}) {
    for (const PortEntry& port : *model().ports) {
      if (port.isDevServer() == isOwn) {
        add(port);
      }
    }
  }
  RowModel::Rows projects;
  for (const DeveloperProject& project : *model().projects) {
    projects.push_back({{"key", keyOf(project.root.path)},
                        {"title", shown(project.name)},
                        {"detail", shown(project.root.path)},
                        {"size", sizeText(project.artifactBytes)},
                        {"badge", shown(rawValue(project.runtime))},
                        {"tone", "neutral"}});
  }
  show("hasSample", *model().hasPortSample);
  const auto& root = *model().developerRoot;
  show("codeFolder", root ? shown(root->path) : QString());
  ports_->setRows(std::move(ports));
  projects_->setRows(std::move(projects));
}

}  // namespace lumenary
