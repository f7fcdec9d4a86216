#include "storage/SystemDataScanner.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/CheckedSum.h"
#include "base/Path.h"
#include "base/PropertyList.h"
#include "base/StableSort.h"
#include "base/Text.h"
#include "storage/AllocatedSize.h"

namespace lumenary {
namespace {

constexpr std::int64_t leastBytes = 1'048'576;
constexpr std::size_t mostNames = 5;

struct Role {
  std::string_view name;
  std::string_view title;
  std::string_view explanation;
  AppDataVerdict verdict;
};

constexpr std::array roles{
    Role{"System", "macOS itself", "The operating system. Sealed and read-only; nothing here can be removed.",
         AppDataVerdict::keep},
    Role{"Preboot", "Startup and update files",
         "Files the Mac needs to start up, plus parts of downloaded macOS updates. Shrinks after an update finishes "
         "installing.",
         AppDataVerdict::keep},
    Role{"Recovery", "Recovery", "The tools you use to repair or reinstall macOS.", AppDataVerdict::keep},
    Role{"VM", "Memory overflow (swap)",
         "Used when apps need more memory than the Mac has. Shrinks when you quit big apps or restart.",
         AppDataVerdict::safe},
    Role{"Update", "Pending update", "A macOS update waiting to install.", AppDataVerdict::keep}};

std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    if (end > 0) {
      lines.push_back(text.substr(0, end));
    }
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

const PropertyListValue::Array* arrayAt(const PropertyListValue::Dictionary& dictionary, std::string_view key) {
  const PropertyListValue* const value = valueAt(dictionary, key);
  return value == nullptr ? nullptr : value->array();
}

std::optional<SystemDataScanner::Volume> volumeOf(const PropertyListValue& value) {
  const auto* const dictionary = value.dictionary();
  if (dictionary == nullptr) {
    return std::nullopt;
  }
  const auto* const name = valueAt(*dictionary, "Name");
  const auto* const bytes = valueAt(*dictionary, "CapacityInUse");
  const auto* const roleNames = arrayAt(*dictionary, "Roles");
  if (name == nullptr || name->text() == nullptr || bytes == nullptr || bytes->integer() == nullptr ||
      roleNames == nullptr || roleNames->empty() || roleNames->front().text() == nullptr) {
    return std::nullopt;
  }
  return SystemDataScanner::Volume{
      .name = *name->text(), .role = *roleNames->front().text(), .bytes = *bytes->integer()};
}

bool hasSystemVolume(const PropertyListValue::Dictionary& container) {
  const auto* const volumes = arrayAt(container, "Volumes");
  return volumes != nullptr && std::ranges::any_of(*volumes, [](const PropertyListValue& volume) {
           const auto* const dictionary = volume.dictionary();
           const auto* const names = dictionary == nullptr ? nullptr : arrayAt(*dictionary, "Roles");
           return names != nullptr && std::ranges::any_of(*names, [](const PropertyListValue& name) {
                    return name.text() != nullptr && *name.text() == "System";
                  });
         });
}

const PropertyListValue::Dictionary* containerOf(const PropertyListValue::Array& containers,
                                                 const std::optional<std::string>& wanted) {
  const auto first = [&](auto isOne) -> const PropertyListValue::Dictionary* {
    const auto found = std::ranges::find_if(containers, [&](const PropertyListValue& container) {
      return container.dictionary() != nullptr && isOne(*container.dictionary());
    });
    return found == containers.end() ? nullptr : found->dictionary();
  };
  const auto* const named = !wanted ? nullptr : first([&](const PropertyListValue::Dictionary& container) {
    const auto* const reference = valueAt(container, "ContainerReference");
    return reference != nullptr && reference->text() != nullptr && *reference->text() == *wanted;
  });
  return named != nullptr ? named : first(hasSystemVolume);
}

std::string withRelease(std::string_view explanation, const std::string& release) {
  constexpr std::string_view mark = "{release}";
  const std::size_t at = explanation.find(mark);
  return at == std::string_view::npos
             ? std::string(explanation)
             : std::string(explanation.substr(0, at)) + release + std::string(explanation.substr(at + mark.size()));
}

std::string deletedFilesText(const DeletedOpenFiles& files) {
  std::string text = "Removed files that running programs still hold: ";
  const std::size_t shown = std::min(files.programs.size(), mostNames);
  for (std::size_t index = 0; index < shown; ++index) {
    text += (index == 0 ? "" : ", ") + displayText(files.programs[index]);
  }
  if (files.programs.size() > shown) {
    text += " and " + std::to_string(files.programs.size() - shown) + " more";
  }
  text += ". The space is free once they quit.";
  if (files.unseenProcesses > 0) {
    text += " What " + std::to_string(files.unseenProcesses) + " other processes hold can't be seen.";
  }
  return text;
}

std::vector<SystemDataPart> largestFirst(std::vector<SystemDataPart> parts) {
  std::erase_if(parts, [](const SystemDataPart& part) { return part.bytes && *part.bytes < leastBytes; });
  return stableSorted(std::move(parts), [](const SystemDataPart& part) { return -part.bytes.value_or(-1); });
}

}  // namespace

std::optional<std::string> SystemDataScanner::startupContainer(std::string_view device) {
  constexpr std::string_view beginning = "disk";
  const std::string_view name = lastPathComponent(device);
  if (!name.starts_with(beginning)) {
    return std::nullopt;
  }
  const std::string_view behind = name.substr(beginning.size());
  const std::size_t digits = std::min(behind.find_first_not_of("0123456789"), behind.size());
  return digits == 0 ? std::nullopt : std::optional(std::string(name.substr(0, beginning.size() + digits)));
}

std::vector<SystemDataScanner::Volume> SystemDataScanner::startupVolumes(std::string_view fromAPFSList,
                                                                         const std::optional<std::string>& container) {
  std::vector<Volume> volumes;
  const auto list = parsePropertyList(fromAPFSList);
  const auto* const root = list ? list->dictionary() : nullptr;
  const auto* const containers = root == nullptr ? nullptr : arrayAt(*root, "Containers");
  const auto* const found = containers == nullptr ? nullptr : containerOf(*containers, container);
  const auto* const values = found == nullptr ? nullptr : arrayAt(*found, "Volumes");
  if (values != nullptr) {
    for (const PropertyListValue& value : *values) {
      if (auto volume = volumeOf(value)) {
        volumes.push_back(std::move(*volume));
      }
    }
  }
  return volumes;
}

std::vector<SystemDataPart> SystemDataScanner::volumeParts(std::span<const Volume> volumes) {
  std::vector<SystemDataPart> parts;
  for (const Volume& volume : volumes) {
    const auto* const role = std::ranges::find(roles, volume.role, &Role::name);
    if (role != roles.end() && volume.bytes >= leastBytes) {
      parts.push_back({.title = std::string(role->title),
                       .explanation = std::string(role->explanation),
                       .bytes = volume.bytes,
                       .verdict = role->verdict});
    }
  }
  return parts;
}

std::optional<std::int64_t> SystemDataScanner::sizeOf(const std::string& path, const std::stop_token& stop) const {
  if (const auto known = knownSizes_.find(path); known != knownSizes_.end()) {
    return known->second;
  }
  // To whom everything belongs doesn't matter here.
  const Measurement measurement = measure(sources_.reader, path, 0, stop);
  return measurement.holdsUnreadable || stop.stop_requested() ? std::nullopt
                                                              : std::optional(measurement.allocatedBytes);
}

std::vector<SystemDataPart> SystemDataScanner::locations(std::span<const SystemPlace> places,
                                                         const std::stop_token& stop) const {
  std::vector<Measured> found;
  for (const SystemPlace& place : places) {
    std::string path(place.path);
    if (path.starts_with("~/")) {
      path = home_ + path.substr(1);
    }
    // A link stands for a place that has a row of its own, or belongs to somebody else.
    const auto attributes = sources_.reader.attributes(path, LinkPolicy::refuse);
    if (attributes && attributes->identity.kind != FileKind::link) {
      std::optional<std::int64_t> bytes = sizeOf(path, stop);
      found.push_back({.path = std::move(path), .place = &place, .bytes = bytes});
    }
  }
  const std::string release = sources_.facts.kernelRelease();
  std::vector<SystemDataPart> parts;
  for (const Measured& one : found) {
    std::optional<std::int64_t> bytes = one.bytes;
    for (const Measured& other : found) {
      // What has a row of its own counts there. Of places in places, only the outermost is taken off.
      const bool isInside = other.path != one.path && isSameOrInside(other.path, one.path);
      const bool isDeeper = std::ranges::any_of(found, [&](const Measured& between) {
        return between.path != one.path && between.path != other.path && isSameOrInside(between.path, one.path) &&
               isSameOrInside(other.path, between.path);
      });
      if (bytes && isInside && !isDeeper) {
        bytes = std::max<std::int64_t>(*bytes - other.bytes.value_or(0), 0);
      }
    }
    parts.push_back({.title = std::string(one.place->title),
                     .explanation = withRelease(one.place->explanation, release),
                     .bytes = bytes,
                     .verdict = one.place->verdict,
                     .url = FileURL{.path = one.path, .isFolder = true}});
  }
  return largestFirst(std::move(parts));
}

std::int64_t SystemDataScanner::purgeableBytes() const {
  const auto room = sources_.facts.room("/");
  return room ? std::max<std::int64_t>(room->forImportantUse - room->now, 0) : 0;
}

std::string SystemDataScanner::startupDevice() const {
  const auto mounts = sources_.mountTable.mounts();
  const Mount* const startup = mounts ? mountHolding(*mounts, "/") : nullptr;
  return startup == nullptr ? "" : startup->source;
}

std::vector<SystemDataPart> SystemDataScanner::unseenParts() const {
  std::vector<SystemDataPart> parts;
  for (const SwapFile& file : sources_.facts.swapFiles()) {
    parts.push_back({.title = "Memory overflow (swap)",
                     .explanation = "Used when apps need more memory than the computer has. It keeps its size; your "
                                    "distribution tells how to make it smaller.",
                     .bytes = file.bytes,
                     .verdict = AppDataVerdict::keep,
                     .url = FileURL{.path = file.path}});
  }
  const DeletedOpenFiles deleted = sources_.facts.deletedOpenFiles();
  if (!deleted.programs.empty()) {
    parts.push_back({.title = "Deleted, but still open",
                     .explanation = deletedFilesText(deleted),
                     .bytes = deleted.bytes,
                     .verdict = AppDataVerdict::caution});
  }
  const std::string device = displayText(startupDevice());
  const auto reserved = sources_.facts.reservedBytes("/");
  if (reserved) {
    parts.push_back({.title = "Reserved by the file system",
                     .explanation = "Kept free for the system, so that it still works when the disk is full. On ext4, "
                                    "`sudo tune2fs -m 1 " +
                                    device + "` leaves it a hundredth.",
                     .bytes = reserved,
                     .verdict = AppDataVerdict::keep});
  }
  const auto capacity = sources_.volumes.capacity("/");
  if (capacity && reserved && measuredBytes_) {
    const std::int64_t used = capacity->totalBytes - capacity->availableBytes - *reserved;
    parts.push_back({.title = "In use, but not measured",
                     .explanation = "What the disk says is in use, less what a scan could see: folders of others, "
                                    "bookkeeping of the file system, snapshots, deleted files that are still open, and "
                                    "what lies hidden under a mount point. It isn't free.",
                     .bytes = std::max<std::int64_t>(used - *measuredBytes_, 0),
                     .verdict = AppDataVerdict::keep});
  }
  return largestFirst(std::move(parts));
}

std::int64_t SystemDataScanner::snapshotCount() const {
  constexpr std::string_view snapper = "/usr/bin/snapper";
  const auto apfs = toolText(sources_.tools, {.path = "/usr/bin/tmutil", .arguments = {"listlocalsnapshots", "/"}});
  const auto count = [](std::string_view text, auto isSnapshot) {
    return static_cast<std::int64_t>(std::ranges::count_if(linesOf(text), isSnapshot));
  };
  if (apfs) {
    return count(*apfs, [](std::string_view line) { return line.contains("com.apple.TimeMachine"); });
  }
  const auto listed = toolText(
      sources_.tools,
      {.path = std::string(snapper), .arguments = {"--machine-readable", "csv", "list", "--columns", "number"}});
  // Number 0 is the system as it is.
  return count(listed.value_or(""), [](std::string_view line) {
    return line != "0" && line.find_first_not_of("0123456789") == std::string_view::npos;
  });
}

SystemDataReport SystemDataScanner::scan(std::stop_token stop) const {
  const auto list = toolText(sources_.tools, {.path = "/usr/sbin/diskutil", .arguments = {"apfs", "list", "-plist"}});
  const std::vector<Volume> volumes = startupVolumes(list.value_or(""), startupContainer(startupDevice()));
  SystemDataReport report;
  report.volumes = volumeParts(volumes);
  std::ranges::move(unseenParts(), std::back_inserter(report.volumes));
  std::vector<SystemPlace> places(systemPlaces().begin(), systemPlaces().end());
  places.insert(places.end(), linuxSystemPlaces().begin(), linuxSystemPlaces().end());
  report.locations = locations(places, stop);
  const auto data = std::ranges::find(volumes, "Data", &Volume::role);
  report.dataVolumeBytes = data == volumes.end() ? 0 : data->bytes;
  report.snapshotCount = snapshotCount();
  report.purgeableBytes = purgeableBytes();
  return report;
}

}  // namespace lumenary
