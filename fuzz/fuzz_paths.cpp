#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Require.h"
#include "base/Path.h"
#include "cleanup/BusyTools.h"
#include "cleanup/CleanupTier.h"
#include "cleanup/DuplicateGroup.h"
#include "cleanup/ItemPresentation.h"
#include "cleanup/LinuxCatalog.h"
#include "cleanup/StorageSafety.h"
#include "cleanup/TidyPlanner.h"
#include "cleanup/TrashContents.h"
#include "platform/linux/LinuxFileReader.h"

namespace {

using namespace lumenary;

class NoApps final : public AppNames {
 public:
  std::optional<std::string> nameOf(std::string_view) const override { return std::nullopt; }
};

class NoMounts final : public MountTable {
 public:
  SystemResult<std::vector<Mount>> mounts() const override { return std::vector<Mount>(); }
};

const std::string home = "/home/anna";

Places placesOfAnna() {
  Places places;
  places.home = home;
  places.dataHome = home + "/.local/share";
  places.configHome = home + "/.config";
  places.cacheHome = home + "/.cache";
  places.stateHome = home + "/.local/state";
  return places;
}

}  // namespace

/// Names of any bytes: what judges a path never lets go what must stay, and the two ways of asking agree.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const NoApps apps;
  static const NoMounts mounts;
  static const LinuxFileReader reader;
  static const Places places = placesOfAnna();
  static const CleanupCatalog catalog(apps);
  static const StorageTrashGate gate(reader, mounts, places);

  std::string text(reinterpret_cast<const char*>(data), size);
  std::erase(text, '\0');
  const bool isFolder = text.ends_with('/');
  const std::string path = standardise(text.starts_with('/') ? text : home + "/" + text);
  const StorageNode folder{.path = path, .name = std::string(lastPathComponent(path)), .byteCount = 1, .file = {}};
  FileEntry entry = folder.asEntry();
  if (!isFolder) {
    entry.kind = FileEntry::Kind::file;
  }
  const bool canMove = gate.canMoveToTrash(entry);
  const bool isOnVolume = path.starts_with("/Volumes/");
  require(!canMove || isOnVolume || !mustStayOnLinux(path, home));
  require(!canMove || (path != home && path != "/"));
  require(!canMove || isOnVolume || isSameOrInside(path, home) || gate.isInstalledApp(path));
  const CleanupTier tier = cleanupTier(entry, catalog, gate);
  require(canMove || tier == CleanupTier::managed);
  const auto* rule = catalog.match(path, home);
  require(rule == nullptr || (!rule->title.empty() && !rule->madeBy.empty()));
  const auto safety = StorageSafety::classify(
      folder, home, catalog, [](const std::string&) { return false; },
      [](const FileEntry& asked) { return gate.canMoveToTrash(asked); });
  require(safety.level != StorageSafety::Level::safe ||
          (rule != nullptr && rule->verdict == CleanupCatalog::Verdict::rebuildable &&
           gate.canMoveToTrash(folder.asEntry())));
  require(!friendlyName(entry).empty() && !deletionImpact(entry, gate).empty() &&
          !friendlyLocation(entry, home).empty());
  require(!(keepFirst(entry, entry)));
  TidyPlanner::isPersonalCopy(path, home, [](std::string_view) { return false; });
  interpretEmptyTrash(1, "", text);
  busyTitles(text);
  return 0;
}
