#include "surfaces/desktop/StorageRoom.h"

#include <algorithm>
#include <array>

#include "base/Path.h"
#include "core/WardrobeSnapshot.h"
#include "surfaces/StorageMapTiles.h"
#include "surfaces/desktop/Text.h"

namespace lumenary {
namespace {

constexpr std::size_t mostRows = 1000;
constexpr std::size_t mostFound = 200;
constexpr std::array<const char*, 4> levelNames = {"safe", "safe", "caution", "keep"};
constexpr std::array<const char*, 4> levelWords = {"Safe", "Rebuilds itself", "Look first", "Keep"};
constexpr std::array<const char*, 3> toneNames = {"good", "neutral", "caution"};
/// Of the tiles that stand for nothing that could be opened.
struct TileText {
  std::string_view id;
  std::string_view text;
};
constexpr std::array<TileText, 2> tileTexts = {
    {{"__rest", "Files and folders too small to show individually"},
     {"__unmeasured",
      "Used by macOS itself: the system volume, swap, local snapshots and purgeable space. It can't be browsed or "
      "removed here."}}};
const QStringList rowRoles = {"key", "name", "place", "size", "bytes", "fraction", "kind", "isFolder"};

QString kindOf(std::string_view path, bool isFolder) {
  return QString::fromLatin1(rawValue(storageKindOf(path, isFolder)));
}

double share(std::int64_t part, std::int64_t whole) {
  return whole < 1 ? 0 : std::clamp(static_cast<double>(part) / static_cast<double>(whole), 0.0, 1.0);
}

/// "Developer 12 GB · Personal 3 GB", the largest first.
QString textOf(const CategoryTotals& totals) {
  std::vector<std::pair<std::int64_t, StorageCategory>> largest;
  for (const auto& [category, bytes] : totals) {
    largest.emplace_back(bytes, category);
  }
  std::ranges::sort(largest, std::greater());
  QStringList parts;
  for (const auto& [bytes, category] : largest) {
    parts << shown(wordsOf(category).title) + " " + sizeText(bytes);
  }
  return parts.join(" · ");
}

}  // namespace

StorageRoom::StorageRoom(AppModel& model)
    : Presenter(this, model),
      rows_(new RowModel(rowRoles, this)),
      tiles_(new RowModel({"key", "title", "size", "bytes", "kind", "opens"}, this)),
      crumbs_(new RowModel({"key", "name"}, this)),
      facts_(new RowModel({"key", "label", "value", "tone"}, this)) {
  showList("rows", rows_);
  showList("tiles", tiles_);
  showList("crumbs", crumbs_);
  showList("facts", facts_);
  show("query", QString());
  show("chosen", QString());
  show("canTrash", false);
  show("isMoving", false);
  follow(model.storageResult);
  follow(model.scanProgress);
  follow(model.isScanning);
  follow(model.scanError);
  follow(model.drives);
  follow(model.selectedDrive);
  follow(model.volumeSnapshot);
  showScan();
  showDrives();
}

void StorageRoom::scan() { model().scanStorage(*model().selectedDrive); }
void StorageRoom::cancel() { model().cancelStorageScan(); }
void StorageRoom::lookAt(const std::string& folder) { model().selectDrive({.path = folder, .isFolder = true}); }
void StorageRoom::selectDrive(const QString& key) { lookAt(pathOf(key)); }

void StorageRoom::selectFolder(const QUrl& folder) {
  if (folder.isLocalFile()) {
    lookAt(bytesOf(folder));
  }
}
void StorageRoom::reveal() {
  if (!chosen_.empty()) {
    model().reveal(chosen_);
  }
}

std::optional<StorageNode> StorageRoom::nodeAt(const std::string& path) const {
  const AppModel::Scan& scan = *model().storageResult;
  if (!scan || path.empty()) {
    return std::nullopt;
  }
  const auto around = scan->children(parentPath(path));
  const auto found = std::ranges::find(around, path, &StorageNode::path);
  return found == around.end() ? std::nullopt : std::optional(*found);
}

void StorageRoom::open(const QString& key) {
  const std::string path = pathOf(key);
  const AppModel::Scan& scan = *model().storageResult;
  const auto node = nodeAt(path);
  if (scan && (path == scan->root.path || (node && node->isFolder()))) {
    folder_ = path;
    query_.clear();
    show("query", query_);
    showFolder();
    choose({});
  }
}

void StorageRoom::goUp() {
  const AppModel::Scan& scan = *model().storageResult;
  if (scan && query_.isEmpty() && folder_ != scan->root.path) {
    open(keyOf(parentPath(folder_)));
  }
}

void StorageRoom::choose(const QString& key) {
  chosen_ = pathOf(key);
  showChosen();
}

void StorageRoom::search(const QString& query) {
  search_.request_stop();
  search_ = std::stop_source();
  query_ = query.trimmed();
  show("query", query_);
  if (query_.isEmpty()) {
    showFolder();
  } else {
    run(find(query_, search_));
  }
}

Task<> StorageRoom::find(QString query, std::stop_source stop) {
  const auto found = co_await model().searchScan(query.toStdString(), mostFound, stop);
  if (query != query_ || stop.stop_requested()) {
    co_return;
  }
  RowModel::Rows rows;
  const AppModel::Scan& scan = *model().storageResult;
  for (const StorageNode& node : found) {
    rows.push_back(rowOf(node, scan ? scan->totalBytes : 0));
  }
  show("listTitle", counted(rows.size(), "thing", "things") + " found for “" + query + "”");
  rows_->setRows(std::move(rows));
}

QVariantMap StorageRoom::rowOf(const StorageNode& node, std::int64_t whole) const {
  return {{"key", keyOf(node.path)},
          {"name", shown(node.name)},
          {"place", shown(parentPath(node.path))},
          {"size", sizeText(node.byteCount)},
          {"bytes", static_cast<double>(node.byteCount)},
          {"fraction", share(node.byteCount, whole)},
          {"kind", kindOf(node.path, node.isFolder())},
          {"isFolder", node.isFolder()}};
}

void StorageRoom::refresh() {
  showScan();
  showDrives();
  const AppModel::Scan& scan = *model().storageResult;
  if (scan != shownScan_) {
    run(adopt(scan));
  } else {
    showTiles();  // what the drive holds beyond the scan may have changed
  }
}

/// Shows another scan where the former one was looked at, as far as that is there.
Task<> StorageRoom::adopt(AppModel::Scan scan) {
  co_await model().indexScan();
  if (scan != *model().storageResult || scan == shownScan_) {
    co_return;
  }
  const bool isSameRoot = scan && shownScan_ && scan->root == shownScan_->root;
  shownScan_ = scan;
  if (!isSameRoot || (folder_ != scan->root.path && !nodeAt(folder_))) {
    folder_ = scan ? scan->root.path : std::string();
  }
  if (!isSameRoot) {
    query_.clear();
    show("query", query_);
  }
  if (query_.isEmpty()) {
    showFolder();
  } else {
    search(query_);
  }
  choose(nodeAt(chosen_) ? keyOf(chosen_) : QString());
}

void StorageRoom::showScan() {
  const bool isScanning = *model().isScanning;
  const AppModel::Scan& scan = *model().storageResult;
  show("isScanning", isScanning);
  show("hasScan", scan != nullptr);
  const auto& progress = *model().scanProgress;
  show("progressText",
       isScanning && progress
           ? QString("%L1 things, %2 so far").arg(progress->itemCount).arg(sizeText(progress->measuredBytes))
           : QString());
  show("progressKinds", isScanning && progress ? textOf(progress->categoryByteTotals) : QString());
  show("progressPlace", isScanning && progress ? shown(progress->currentPath) : QString());
  const auto& error = *model().scanError;
  show("error", error ? shown(*error) : QString());
  const auto& volume = *model().volumeSnapshot;
  show("capacity", volume ? sizeText(volume->availableBytes) + " free of " + sizeText(volume->totalBytes) : QString());
  show("scanned", scan ? "Scanned " + QString::fromStdString(AppFormatting::dateAndTime(scan->scannedAt)) : QString());
  show("unreadable", scan && !scan->inaccessiblePaths.empty()
                         ? counted(scan->inaccessiblePaths.size(), "folder", "folders") + " could not be read"
                         : QString());
}

void StorageRoom::showDrives() {
  QVariantList choices;
  const std::string& selected = model().selectedDrive->path;
  QString name = selected == AppModel::macVolumeRoot.path ? "This computer" : shown(lastPathComponent(selected));
  for (const DriveInfo& drive : *model().drives) {
    const QString driveName = drive.url == AppModel::macVolumeRoot ? "This computer" : shown(drive.name);
    if (drive.url.path == selected) {
      name = driveName;
    }
    choices << QVariantMap{
        {"key", keyOf(drive.url.path)}, {"name", driveName}, {"isSelected", drive.url.path == selected}};
  }
  show("driveName", name);
  choices << QVariantMap{{"key", ""}, {"name", "Choose a Folder…"}, {"isSelected", false}};
  show("driveChoices", choices);
}

void StorageRoom::showFolder() {
  const AppModel::Scan& scan = *model().storageResult;
  RowModel::Rows rows;
  RowModel::Rows crumbs;
  if (scan) {
    const std::int64_t whole = scan->folderBytes(folder_);
    const auto children = scan->children(folder_);
    for (const StorageNode& node : children.first(std::min(children.size(), mostRows))) {
      rows.push_back(rowOf(node, whole));
    }
    for (std::string path = folder_; isSameOrInside(path, scan->root.path); path = parentPath(path)) {
      crumbs.insert(crumbs.begin(), {{"key", keyOf(path)}, {"name", shown(lastPathComponent(path))}});
      if (path == scan->root.path || path == "/") {
        break;
      }
    }
    show("listTitle", sizeText(whole) + " in " + shown(lastPathComponent(folder_)));
  } else {
    show("listTitle", QString());
  }
  rows_->setRows(std::move(rows));
  crumbs_->setRows(std::move(crumbs));
  showTiles();
}

void StorageRoom::showTiles() {
  const AppModel::Scan& scan = *model().storageResult;
  RowModel::Rows tiles;
  if (scan) {
    // What a folder's drive holds elsewhere isn't missing from its scan.
    const bool isDrive = std::ranges::any_of(
        *model().drives, [&](const DriveInfo& drive) { return drive.url.path == model().selectedDrive->path; });
    for (const auto& tile : StorageMapView::tiles({.result = *scan,
                                                   .path = folder_,
                                                   .selectedDrive = isDrive ? model().selectedDrive->path : "",
                                                   .snapshot = *model().volumeSnapshot})) {
      tiles.push_back({{"key", keyOf(tile.id)},
                       {"title", shown(tile.title)},
                       {"size", sizeText(tile.bytes)},
                       {"bytes", static_cast<double>(tile.bytes)},
                       {"kind", QString::fromLatin1(rawValue(tile.kind))},
                       {"opens", tile.node && tile.node->isFolder()}});
    }
  }
  tiles_->setRows(std::move(tiles));
}

void StorageRoom::showChosen() {
  const auto node = nodeAt(chosen_);
  const auto madeUp = std::ranges::find(tileTexts, chosen_, &TileText::id);
  show("tileText", madeUp == tileTexts.end() ? QString() : shown(madeUp->text));
  show("chosen", node ? keyOf(node->path) : QString());
  show("chosenName", node ? shown(node->name) : QString());
  show("chosenPlace", node ? shown(parentPath(node->path)) : QString());
  show("chosenSize", node ? sizeText(node->byteCount) : QString());
  const AppModel::Scan& scan = *model().storageResult;
  show("chosenShare", node && scan ? percent(share(node->byteCount, scan->totalBytes)) + " of the scan" : QString());
  show("chosenKind", node ? QString::fromLatin1(rawValue(storageKindOf(node->path, node->isFolder()))) : QString());
  show("chosenWhat", node ? shown(explanation(storageKindOf(node->path, node->isFolder()))) : QString());
  show("canTrash", false);
  show("verdict", QString());
  show("verdictText", QString());
  show("removal", QString());
  show("betterWay", QString());

  facts_->setRows({});
  explanation_.request_stop();
  explanation_ = std::stop_source();
  if (node) {
    run(explain(*node, explanation_));
  }
}

Task<> StorageRoom::explain(StorageNode node, std::stop_source stop) {
  const auto known = co_await model().explain(node, stop);
  if (stop.stop_requested()) {
    co_return;
  }
  const auto level = static_cast<std::size_t>(known.safety.level);
  show("verdictWord", QString::fromLatin1(levelWords.at(level)));
  show("verdict", QString::fromLatin1(levelNames.at(level)));
  show("verdictText", shown(known.safety.reason));
  show("removal", shown(known.removal));
  show("betterWay", shown(known.betterWay.value_or("")));
  show("canTrash", known.canTrash);
  RowModel::Rows rows;
  for (const ItemEvidence::Fact& fact : known.evidence.facts) {
    rows.push_back({{"key", shown(fact.label)},
                    {"label", shown(fact.label)},
                    {"value", shown(fact.value)},
                    {"tone", toneNames.at(static_cast<std::size_t>(fact.tone))}});
  }
  facts_->setRows(std::move(rows));
}

QVariantMap StorageRoom::askToMove() {
  asked_ = nodeAt(chosen_);
  return asked_ ? QVariantMap{{"name", shown(asked_->name)},
                              {"size", sizeText(asked_->byteCount)},
                              {"removal", value("removal")}}
                : QVariantMap();
}

void StorageRoom::moveToTrash() {
  if (const auto node = std::exchange(asked_, std::nullopt)) {
    run(move(*node));
  }
}

Task<> StorageRoom::move(StorageNode node) {
  show("isMoving", true);
  std::vector<FileEntry> entries{node.asEntry()};
  const auto outcomes = co_await model().removeStorageEntries(std::move(entries), CleanupTransaction::Source::storage);
  show("isMoving", false);
  if (!outcomes.empty() && !outcomes.front().success) {
    model().showNotice(outcomes.front().message);
  }
}

}  // namespace lumenary
