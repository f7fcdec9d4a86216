#include "apps/AppInventory.h"

#include "apps/AppIdentifiers.h"
#include "base/CheckedSum.h"

namespace lumenary {
namespace {

template <class Counts>
std::int64_t sumWhere(const std::vector<AppDataItem>& items, Counts counts) {
  std::int64_t sum = 0;
  for (const AppDataItem& item : items) {
    sum = counts(item) ? checkedSum(sum, item.bytes) : sum;
  }
  return sum;
}

}  // namespace

std::int64_t totalBytesOf(const std::vector<AppDataItem>& items) {
  return sumWhere(items, [](const AppDataItem&) { return true; });
}

std::int64_t InstalledApp::totalBytes() const { return checkedSum(appBytes, totalBytesOf(items)); }

std::int64_t InstalledApp::safeBytes() const {
  return sumWhere(items, [](const AppDataItem& item) { return item.verdict == AppDataVerdict::safe; });
}

std::int64_t InstalledApp::clearableBytes() const {
  return sumWhere(items, [this](const AppDataItem& item) {
    return item.verdict == AppDataVerdict::safe && !(isRunning && isInsideAppData(item.kind));
  });
}

std::string LeftoverGroup::displayName() const {
  const std::vector<std::string> pieces = identifierPieces(bundleID);
  if (pieces.size() < 3) {
    return bundleID;
  }
  std::string name;
  for (std::size_t index = 2; index < pieces.size(); ++index) {
    name += (index == 2 ? "" : " ") + pieces[index];
  }
  for (char& byte : name) {
    byte = byte == '-' ? ' ' : byte;
  }
  return name + " (" + pieces[1] + ")";
}

std::int64_t AppInventory::safeBytes() const {
  std::int64_t sum = 0;
  for (const InstalledApp& app : apps) {
    sum = checkedSum(sum, app.safeBytes());
  }
  return sum;
}

std::int64_t AppInventory::leftoverBytes() const {
  std::int64_t sum = 0;
  for (const LeftoverGroup& group : leftovers) {
    sum = checkedSum(sum, totalBytesOf(group.items));
  }
  return sum;
}

void AppInventory::removeItems(const std::set<std::string>& paths) {
  const auto isGone = [&](const AppDataItem& item) { return paths.contains(item.url.path); };
  for (InstalledApp& app : apps) {
    std::erase_if(app.items, isGone);
  }
  for (LeftoverGroup& group : leftovers) {
    std::erase_if(group.items, isGone);
  }
  std::erase_if(leftovers, [](const LeftoverGroup& group) { return group.items.empty(); });
}

}  // namespace lumenary
