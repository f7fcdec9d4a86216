#include "surfaces/desktop/CleanRoom.h"

#include <algorithm>
#include <numeric>
#include <ranges>

#include "base/CheckedSum.h"
#include "base/Path.h"
#include "surfaces/desktop/House.h"
#include "surfaces/desktop/Text.h"

namespace lumenary {
namespace {

using Item = CleanupTransaction::Item;

constexpr qsizetype mostItems = 200;
QString trashText(const std::optional<std::int64_t>& bytes) {
  if (!bytes) {
    return "The Trash can't be read.";
  }
  return *bytes == 0 ? QString("The Trash is empty.") : sizeText(*bytes) + " in the Trash.";
}

const QStringList rowRoles = {"key", "title", "reason", "size", "isTicked", "detail"};

QString stateOf(const Item& item) {
  switch (item.outcome) {
    case Item::Outcome::movedToTrash:
      return "In the Trash";
    case Item::Outcome::restored:
      return "Put back";
    case Item::Outcome::emptied:
      return "Emptied";
    case Item::Outcome::failed:
      break;
  }
  return shown(item.message);
}

}  // namespace

CleanRoom::CleanRoom(AppModel& model)
    : Presenter(this, model),
      groups_(new RowModel(rowRoles, this)),
      folders_(new RowModel(rowRoles, this)),
      worthALook_(new RowModel(rowRoles, this)),
      heldBack_(new RowModel(rowRoles, this)),
      lookFirst_(new RowModel(rowRoles, this)),
      history_(new RowModel({"key", "title", "told", "canUndo"}, this)) {
  showList("groups", groups_);
  showList("folders", folders_);
  showList("worthALook", worthALook_);
  showList("heldBack", heldBack_);
  showList("lookFirst", lookFirst_);
  showList("history", history_);
  show("isClearing", false);
  show("isEmptying", false);
  show("result", QString());
  follow(model.tidyPlan);
  follow(model.cleanupCandidates);
  follow(model.busyTidyTitles);
  follow(model.candidateLastUsed);
  follow(model.ports);
  follow(model.cleanupTransactions);
  onChange(model.cleanupTransactions, [this] { this->model().refreshTrashSize(); });
  follow(model.trashBytes);
  follow(model.isTidying);
  follow(model.isScanning);
  follow(model.storageResult);
  // What was ticked after a look was ticked of this plan.
  onChange(model.tidyPlan, [this] { choice_.ticked.clear(); });
}

void CleanRoom::prepare() { run(lookAround()); }

Task<> CleanRoom::lookAround() {
  model().refreshTrashSize();
  co_await model().refreshInsights();
  co_await model().refreshBusyTools();
  co_await model().measureLastUsed();
}

void CleanRoom::tick(const QString& key, bool isTicked) {
  const std::string id = pathOf(key);
  const bool isProposed = worthALook_->indexOfKey(key) < 0;
  CleanSelection::Titles& changed = isProposed ? choice_.unticked : choice_.ticked;
  if (isProposed == isTicked) {
    changed.erase(id);
  } else {
    changed.insert(id);
  }
  refreshSoon();
}

/// Of each row that is ticked.
std::vector<std::int64_t> CleanRoom::tickedBytes() const {
  std::vector<std::int64_t> bytes;
  const CleanSelection all = model().suggestedClear();
  for (const CleanSelection::Item& item : all.chosen(choice_).items()) {
    bytes.push_back(item.bytes);
  }
  if (const auto& plan = *model().tidyPlan) {
    const CleanSelection::Titles skipped = all.chosen({.ticked = choice_.ticked}).skippedTidyTitles;
    for (const TidyPlan::Group& group : plan->groups()) {
      if (all.skippedTidyTitles.contains(group.title) && !skipped.contains(group.title)) {
        bytes.push_back(group.bytes);
      }
    }
  }
  return bytes;
}

void CleanRoom::refresh() {
  showPlan();
  showHistory();
  showBar();
  if (const AppModel::Scan& scan = *model().storageResult; scan != shownScan_) {
    shownScan_ = scan;
    run(showLookFirst());
    prepare();
  }
}

QString CleanRoom::lastUsed(const CleanSelection::Item& folder) const {
  const DeveloperScanner::LastUsed& dates = *model().candidateLastUsed;
  const auto used = folder.paths.empty() ? dates.end() : dates.find(folder.paths.front());
  return used == dates.end()
             ? QString("Last used isn't known")
             : "Last used " +
                   QString::fromStdString(AppFormatting::relativeDate(used->second, model().roomInputs().now));
}

void CleanRoom::showPlan() {
  const CleanSelection all = model().suggestedClear();
  CleanSelection::Titles seen;
  RowModel::Rows groups;
  RowModel::Rows folders;
  for (const CleanSelection::Item& item : all.items()) {
    const bool isFolder = item.id.starts_with("path:");
    seen.insert(item.id);
    const QString detail = isFolder ? lastUsed(item) : counted(item.paths.size(), "item", "items");
    (isFolder ? folders : groups)
        .push_back({{"key", keyOf(item.id)},
                    {"title", shown(item.title)},
                    {"reason", shown(item.reason)},
                    {"size", sizeText(item.bytes)},
                    {"isTicked", !choice_.unticked.contains(item.id)},
                    {"detail", detail}});
  }
  RowModel::Rows look;
  RowModel::Rows held;
  if (const auto& plan = *model().tidyPlan) {
    for (const TidyPlan::Group& group : plan->groups()) {
      if (all.skippedTidyTitles.contains(group.title)) {
        const bool isBusy = std::ranges::find(all.busyTitles, group.title) != all.busyTitles.end();
        (isBusy ? held : look)
            .push_back({{"key", keyOf(group.title)},
                        {"title", shown(group.title)},
                        {"reason", shown(group.reason)},
                        {"size", sizeText(group.bytes)},
                        {"isTicked", choice_.ticked.contains(group.title)},
                        {"detail", isBusy ? "In use right now" : "Look first"}});
      }
    }
  }
  choice_.shown = std::move(seen);
  groups_->setRows(std::move(groups));
  folders_->setRows(std::move(folders));
  worthALook_->setRows(std::move(look));
  heldBack_->setRows(std::move(held));
}

void CleanRoom::showBar() {
  const std::vector<std::int64_t> ticked = tickedBytes();
  const std::int64_t bytes = std::accumulate(ticked.begin(), ticked.end(), std::int64_t{0}, saturatedSum);
  const bool hasPlan = model().tidyPlan->has_value();
  show("hasPlan", hasPlan);
  show("isScanning", *model().isScanning);
  show("canClear", !ticked.empty() && !*model().isTidying);
  show("barText", ticked.empty() ? QString(hasPlan ? "Nothing is ticked." : "Scan once to see what can go.")
                                 : counted(ticked.size(), "group", "groups") + " ticked, " + sizeText(bytes) +
                                       ". It goes to the Trash; you can take it back.");
  show("buttonText", ticked.empty() ? QString("Move to Trash") : "Move " + sizeText(bytes) + " to Trash");
  const auto& trash = *model().trashBytes;
  show("trashText", trashText(trash));
  show("canEmpty", trash && *trash > 0);
  const std::int64_t freed = model().confirmedReclaimedBytes();
  show("freedText", freed > 0 ? sizeText(freed) + " emptied · estimate" : QString());
}

void CleanRoom::showHistory() {
  RowModel::Rows rows;
  const auto& log = *model().cleanupTransactions;
  for (const CleanupTransaction& act : std::views::reverse(log)) {
    rows.push_back({{"key", QString::fromStdString(act.id.text())},
                    {"title", actTitle(act)},
                    {"told", actState(act)},
                    {"canUndo", canUndo(act)}});
  }
  history_->setRows(std::move(rows));
}

Task<> CleanRoom::showLookFirst() {
  const AppModel::Scan scan = *model().storageResult;
  const auto groups = co_await model().lookFirstGroups();
  if (scan != *model().storageResult) {
    co_return;
  }
  RowModel::Rows rows;
  for (const LookFirstGroup& group : groups) {
    rows.push_back({{"key", keyOf(group.title)},
                    {"title", shown(group.title)},
                    {"reason", shown(group.what + " " + group.ifRemoved)},
                    {"size", sizeText(group.bytes)},
                    {"isTicked", false},
                    {"detail", shown(group.betterWay.value_or(""))}});
  }
  lookFirst_->setRows(std::move(rows));
}

void CleanRoom::clear() { run(clearTicked()); }

Task<> CleanRoom::clearTicked() {
  show("isClearing", true);
  show("result", QString());
  const std::size_t failed = co_await model().clearChosen(choice_);
  show("isClearing", false);
  show("result", failed == 0 ? QString() : counted(failed, "item", "items") + " stayed. History says why.");
}

void CleanRoom::putBack(const QString& act) {
  if (const auto id = UUID::parse(act.toStdString())) {
    run(restore(*id));
  }
}

Task<> CleanRoom::restore(UUID act) { model().showNotice(co_await model().undoTrash(act)); }

void CleanRoom::putBackItem(const QString& act, const QString& item) {
  const auto transaction = UUID::parse(act.toStdString());
  const auto id = UUID::parse(item.toStdString());
  if (transaction && id) {
    run(restoreItem(*transaction, *id));
  }
}

Task<> CleanRoom::restoreItem(UUID act, UUID item) {
  model().showNotice(co_await model().restoreCleanupItem(act, item));
}

void CleanRoom::emptyTrash() { run(empty()); }

Task<> CleanRoom::empty() {
  show("isEmptying", true);
  const TrashEmptyResult result = co_await model().emptyTrash();
  show("isEmptying", false);
  if (result.kind == TrashEmptyResult::Kind::failed) {
    model().showNotice(result.message);
  }
}

QVariantList CleanRoom::itemsBehind(const QString& key) const {
  QVariantList items;
  const std::string id = pathOf(key);
  const auto& plan = *model().tidyPlan;
  for (const TidyItem& item : plan ? plan->items : std::vector<TidyItem>()) {
    if (items.size() < mostItems && (id == "tidy:" + item.title || id == item.title)) {
      items << QVariantMap{{"name", shown(lastPathComponent(item.entry.url.path))},
                           {"place", shown(parentPath(item.entry.url.path))},
                           {"size", sizeText(item.entry.byteCount)}};
    }
  }
  for (const CleanupCandidate& candidate : *model().cleanupCandidates) {
    if (id == "path:" + candidate.url.path) {
      items << QVariantMap{{"name", shown(lastPathComponent(candidate.url.path))},
                           {"place", shown(parentPath(candidate.url.path))},
                           {"size", sizeText(candidate.byteCount)}};
    }
  }
  return items;
}

QVariantList CleanRoom::itemsOf(const QString& act) const {
  QVariantList items;
  const auto id = UUID::parse(act.toStdString());
  for (const CleanupTransaction& transaction : *model().cleanupTransactions) {
    if (!id || transaction.id != *id) {
      continue;
    }
    for (const Item& item : transaction.items) {
      items << QVariantMap{{"key", QString::fromStdString(item.id.text())},
                           {"name", shown(lastPathComponent(item.originalURL.path))},
                           {"place", shown(parentPath(item.originalURL.path))},
                           {"size", sizeText(item.measuredBytes)},
                           {"state", stateOf(item)},
                           {"canPutBack", item.outcome == Item::Outcome::movedToTrash}};
    }
  }
  return items;
}

}  // namespace lumenary
