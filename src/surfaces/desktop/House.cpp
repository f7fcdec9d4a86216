#include "surfaces/desktop/House.h"

#include <QDir>
#include <algorithm>
#include <array>
#include <functional>
#include <map>

#include "base/Path.h"
#include "surfaces/desktop/Text.h"

namespace lumenary {
namespace {

using Outcome = CleanupTransaction::Item::Outcome;

constexpr std::array rooms = {AppDestination::home, AppDestination::storage, AppDestination::cleanup,
                              AppDestination::apps, AppDestination::memory,  AppDestination::developer};
constexpr std::array<const char*, 3> levelNames = {"calm", "attention", "action"};
constexpr std::array<const char*, 6> iconNames = {"home", "disk", "broom", "apps", "memory", "ports"};
const QStringList roomRoles = {"key", "number", "title", "icon", "level", "value", "headline", "badge", "action"};
constexpr std::size_t recentActs = 5;

std::size_t countOf(const CleanupTransaction& transaction, Outcome outcome) {
  return static_cast<std::size_t>(std::ranges::count(transaction.items, outcome, &CleanupTransaction::Item::outcome));
}

MonitoringSurface surfaceOf(AppDestination room) {
  switch (room) {
    case AppDestination::memory:
      return MonitoringSurface::memory;
    case AppDestination::developer:
      return MonitoringSurface::developer;
    case AppDestination::home:
    case AppDestination::storage:
    case AppDestination::cleanup:
    case AppDestination::apps:
      break;
  }
  return MonitoringSurface::overview;
}

bool showsLiveNumbers(AppDestination room) {
  return room == AppDestination::home || room == AppDestination::memory || room == AppDestination::developer;
}

}  // namespace

bool canUndo(const CleanupTransaction& transaction) { return countOf(transaction, Outcome::movedToTrash) > 0; }

QString actTitle(const CleanupTransaction& transaction) {
  if (transaction.items.empty()) {
    return "Nothing";
  }
  const QString first = shown(lastPathComponent(transaction.items.front().originalURL.path));
  return transaction.items.size() == 1 ? first : first + QString(" and %1 more").arg(transaction.items.size() - 1);
}

QString actState(const CleanupTransaction& transaction) {
  const std::size_t moved = countOf(transaction, Outcome::movedToTrash);
  const std::size_t restored = countOf(transaction, Outcome::restored);
  const std::size_t emptied = countOf(transaction, Outcome::emptied);
  const std::size_t failed = countOf(transaction, Outcome::failed);
  QStringList parts;
  if (moved > 0) {
    parts << counted(moved, "item", "items") + " in the Trash, " + sizeText(transaction.movedBytes());
  }
  if (restored > 0) {
    parts << counted(restored, "item", "items") + " put back";
  }
  if (emptied > 0) {
    parts << counted(emptied, "item", "items") + " emptied";
  }
  if (failed > 0) {
    parts << counted(failed, "item", "items") + " stayed";
  }
  parts << QString::fromStdString(AppFormatting::dateAndTime(transaction.timestamp));
  return parts.join(" · ");
}

House::House(AppModel& model, AppDestination room)
    : Presenter(this, model),
      room_(room),
      rooms_(new RowModel(roomRoles, this)),
      cards_(new RowModel(roomRoles, this)),
      acts_(new RowModel({"key", "title", "told", "canUndo"}, this)) {
  showList("rooms", rooms_);
  showList("cards", cards_);
  showList("acts", acts_);
  show("homeFolder", QUrl::fromLocalFile(QDir::homePath()));
  show("room", static_cast<int>(room));
  follow(model.storageResult);
  follow(model.volumeSnapshot);
  follow(model.tidyPlan);
  follow(model.cleanupCandidates);
  follow(model.appInventory);
  follow(model.backgroundItems);
  follow(model.removedAppsNotice);
  follow(model.systemHistory);
  follow(model.appMemory);
  follow(model.ports);
  follow(model.projects);
  follow(model.startupForecastDays);
  follow(model.cleanupTransactions);
  follow(model.lastTrash);
  follow(model.actionNotice);
  follow(model.isScanning);
  enter();
}

void House::setShown(bool isShown) {
  if (std::exchange(isShown_, isShown) != isShown) {
    model().monitoringCoordinator().set(MonitoringSurface::mainWindow, isShown);
    setSurface(room_, isShown);
  }
}

void House::setSurface(AppDestination room, bool active) {
  if (showsLiveNumbers(room)) {
    model().monitoringCoordinator().set(surfaceOf(room), active);
  }
  if (room == AppDestination::developer) {
    model().monitoringCoordinator().set(MonitoringSurface::ports, active);
  }
}

void House::navigate(int room) {
  if (room < 0 || room >= static_cast<int>(rooms.size())) {
    return;
  }
  const AppDestination next = rooms.at(static_cast<std::size_t>(room));
  if (next != room_) {
    if (isShown_) {
      setSurface(room_, false);
      setSurface(next, true);
    }
    room_ = next;
    model().rememberRoom(next);
    show("room", room);
  }
}

void House::undo() { model().undoManager().undo(); }
void House::undoOffered() {
  if (const auto& offered = *model().lastTrash; offered && undoneOffer_ != offered->transactionID) {
    undoneOffer_ = offered->transactionID;
    undo();
    refreshSoon();
  }
}
void House::dismissOffer() {
  if (const auto& offered = *model().lastTrash) {
    undoneOffer_ = offered->transactionID;
    refreshSoon();
  }
}
void House::redo() { model().undoManager().redo(); }

void House::undoAct(const QString& id) {
  if (const auto transaction = UUID::parse(id.toStdString())) {
    run([](AppModel& model, UUID act) -> Task<> { model.showNotice(co_await model.undoTrash(act)); }(model(),
                                                                                                     *transaction));
  }
}

void House::say(const QString& sentence) { model().showNotice(sentence.toStdString()); }
void House::dismissNotice() { model().showNotice(std::nullopt); }
void House::openTrash() { model().openTrash(); }
void House::exportDiagnostics(const QUrl& file) {
  if (file.isLocalFile()) {
    model().run(model().exportDiagnostics(bytesOf(file)));
  }
}

void House::refresh() {
  showRooms();
  showDisk();
  showActs();
  const auto& offered = *model().lastTrash;
  show("undoText", offered && undoneOffer_ != offered->transactionID
                       ? sizeText(offered->bytes) + " to the Trash. Undo available."
                       : QString());
  const auto& notice = *model().actionNotice;
  show("notice", notice ? shown(*notice) : QString());
  show("isScanning", *model().isScanning);
  show("hasScan", *model().storageResult != nullptr);
}

void House::showRooms() {
  const RoomInputs inputs = model().roomInputs();
  RowModel::Rows rows;
  std::map<RoomLevel, RowModel::Rows, std::greater<>> byLevel;
  for (const AppDestination room : rooms) {
    const auto number = static_cast<std::size_t>(room);
    const RoomStatus status = RoomRules::status(room, inputs);
    rows.push_back({{"key", QString::number(number)},
                    {"number", static_cast<int>(number)},
                    {"title", shown(titleOf(room))},
                    {"icon", iconNames.at(number)},
                    {"level", levelNames.at(static_cast<std::size_t>(status.level))},
                    {"value", shown(status.value)},
                    {"headline", shown(status.headline)},
                    {"badge", shown(status.badge.value_or(""))},
                    {"action", shown(status.actionTitle.value_or(""))}});
    if (room != AppDestination::home) {
      byLevel[status.level].push_back(rows.back());
    }
  }
  RowModel::Rows cards;
  for (const auto& [level, ofLevel] : byLevel) {
    cards.insert(cards.end(), ofLevel.begin(), ofLevel.end());
  }
  show("headline", rows.front().value("headline"));
  show("value", rows.front().value("value"));
  rooms_->setRows(std::move(rows));
  cards_->setRows(std::move(cards));
}

void House::showDisk() {
  const auto& volume = *model().volumeSnapshot;
  if (!volume) {
    show("diskText", QString("The disk can't be measured."));
    return;
  }
  const std::int64_t used = std::max<std::int64_t>(0, volume->totalBytes - volume->availableBytes);
  const AppModel::Scan& scan = *model().storageResult;
  const std::int64_t measured = scan ? std::min(scan->totalBytes, used) : 0;
  const double whole = static_cast<double>(std::max<std::int64_t>(1, volume->totalBytes));
  show("diskText", sizeText(used) + " used · " + sizeText(volume->availableBytes) + " free of " +
                       sizeText(volume->totalBytes) + (scan ? " · " + sizeText(measured) + " measured" : QString()));
  show("usedFraction", static_cast<double>(used) / whole);
  show("measuredFraction", static_cast<double>(measured) / whole);
  const auto days = model().diskForecastDays();
  show("forecast", days ? QString::fromStdString(DiskForecast::phrase(*days)) : QString());
}

void House::showActs() {
  RowModel::Rows rows;
  const auto& log = *model().cleanupTransactions;
  for (auto act = log.rbegin(); act != log.rend() && rows.size() < recentActs; ++act) {
    rows.push_back({{"key", QString::fromStdString(act->id.text())},
                    {"title", actTitle(*act)},
                    {"told", actState(*act)},
                    {"canUndo", canUndo(*act)}});
  }
  acts_->setRows(std::move(rows));
}

}  // namespace lumenary
