#include "storage/StorageScanner.h"

#include <algorithm>
#include <array>
#include <system_error>
#include <thread>
#include <vector>

#include "base/CheckedSum.h"
#include "base/Path.h"
#include "storage/PlacesNotEntered.h"
#include "storage/ScanState.h"
#include "storage/ScanWorker.h"
#include "storage/WorkExchange.h"

namespace lumenary {
namespace {

constexpr auto excludedWholeMacRoots = std::to_array<std::string_view>(
    {"/System/Volumes", "/Volumes", "/dev", "/Network", "/.vol", "/.MobileBackups", "/home", "/net"});

/// Below the person's home folder.
constexpr auto privacyGatedFolders = std::to_array<std::string_view>(
    {"/Library/Containers", "/Library/Group Containers", "/Library/Mail", "/Library/Messages", "/Library/Safari",
     "/Library/Photos", "/Pictures/Photos Library.photoslibrary"});

/// What of `path` stands below `root`: "a/b"; empty where it doesn't.
std::string_view relativeTo(std::string_view root, std::string_view path) {
  if (path == root || !isSameOrInside(path, root)) {
    return {};
  }
  return path.substr(root == "/" ? 1 : root.size() + 1);
}

PlacesNotEntered placesNotEntered(const FileReader& reader, const MountTable& mountTable, const Places& places,
                                  const std::string& root) {
  PlacesNotEntered notEntered;
  using Reason = PlacesNotEntered::Reason;
  // The mount table knows no links.
  const std::string realRoot = reader.realPath(root).value_or(root);
  if (const auto mounts = mountTable.mounts()) {
    for (const Mount& mount : *mounts) {
      notEntered.add(relativeTo(realRoot, mount.point), Reason::mount);
    }
  }
  if (!places.hasFullDiskAccess) {
    for (const std::string_view folder : privacyGatedFolders) {
      notEntered.add(relativeTo(root, places.home + std::string(folder)), Reason::privacy);
    }
  }
  if (root == "/") {
    for (const std::string_view folder : excludedWholeMacRoots) {
      // Where people live in one of these, it is what the scan is for.
      if (folder != places.homesFolder) {
        notEntered.add(relativeTo(root, folder), Reason::given);
      }
    }
  }
  return notEntered;
}

/// Of each file that was listed, only what still tells it later stays.
void forgetPassingIdentities(StorageScanResult& result, const FileReader& reader, const MountTable& mountTable) {
  const auto mounts = mountTable.mounts();
  const std::string root = reader.realPath(result.root.path).value_or(result.root.path);
  const Mount* const mount = mounts ? mountHolding(*mounts, root) : nullptr;
  if (mount == nullptr || !keepsInodeNumbers(*mount)) {
    for (FileEntry& entry : result.entries) {
      entry.identity.reset();
    }
  }
}

/// Runs the workers and waits for them. Without threads to be had, the calling one does it all.
void work(std::vector<ScanWorker>& workers, WorkExchange& exchange, OpenFolder root) {
  std::vector<std::jthread> threads;
  threads.reserve(workers.size());
  for (std::size_t index = 1; index < workers.size(); ++index) {
    try {
      threads.emplace_back([&worker = workers[index]] { worker.run(std::nullopt); });
    } catch (const std::system_error&) {
      exchange.leave();
    }
  }
  try {
    workers.front().run(std::move(root));
  } catch (...) {
    exchange.cancel();  // the others would wait for this one's work for ever
    throw;
  }
}

}  // namespace

std::string_view message(StorageScannerError error) {
  return error == StorageScannerError::cancelled ? "The scan was cancelled." : "The selected folder is unavailable.";
}

std::expected<StorageScanResult, StorageScannerError> StorageScanner::scan(const std::string& root,
                                                                           const ScanProgressCallback& progress,
                                                                           const std::stop_token& stop) const {
  const FileURL url{.path = standardise(root), .isFolder = true};
  const auto attributes = reader_.attributes(url.path, LinkPolicy::follow);
  if (!root.starts_with('/') || !attributes || attributes->identity.kind != FileKind::folder) {
    return std::unexpected(StorageScannerError::rootUnavailable);
  }
  const PlacesNotEntered notEntered = placesNotEntered(reader_, mountTable_, places_, url.path);
  ScanState state(url.path, progress, now_);

  if (const auto opened = reader_.openFolder(url.path, LinkPolicy::follow)) {
    OpenFolder folder{.descriptor = {},
                      .identity = attributes->identity,
                      .isIdentified = true,
                      .marks = CategoryMarks::of(url.path),
                      .places = notEntered.isEmpty() ? nullptr : &notEntered};
    if (auto descriptor = reader_.openFolder(*opened, ".")) {
      folder.descriptor = *std::move(descriptor);
    }
    const unsigned count = std::clamp(processors_ / 3, 2U, 3U);
    WorkExchange exchange(count);
    const std::stop_callback sendHome(stop, [&] { exchange.cancel(); });
    std::vector<ScanWorker> workers;
    workers.reserve(count);
    for (unsigned index = 0; index < count; ++index) {
      workers.emplace_back(reader_, *opened, state, exchange, stop);
    }
    work(workers, exchange, std::move(folder));
  } else {
    state.recordInaccessible(0);
  }
  if (stop.stop_requested()) {
    return std::unexpected(StorageScannerError::cancelled);
  }
  StorageScanResult result = state.makeResult(url);
  forgetPassingIdentities(result, reader_, mountTable_);
  return result;
}

StorageCategory StorageScanner::category(std::string_view path) {
  return CategoryMarks::of(path).category(lastPathComponent(path));
}

void StorageScanner::addToAncestors(std::int64_t delta, std::string_view path, std::string_view root,
                                    FolderByteTotals& totals) {
  while (isSameOrInside(path, root)) {
    if (std::int64_t* const total = totals.find(path)) {
      *total = std::max<std::int64_t>(0, saturatedSum(*total, delta));
    }
    if (path == root || path == "/") {
      return;
    }
    path = parentPath(path);
  }
}

}  // namespace lumenary
