#include "platform/linux/LinuxVolumeReader.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <limits>
#include <system_error>

#include "base/Hex.h"
#include "base/Path.h"

namespace lumenary {
namespace {

namespace fs = std::filesystem;

std::int64_t bytesOf(std::uint64_t blocks, std::uint64_t blockBytes) {
  std::int64_t bytes = 0;
  const bool isTooMuch = __builtin_mul_overflow(blocks, blockBytes, &bytes);
  return isTooMuch ? std::numeric_limits<std::int64_t>::max() : bytes;
}

bool says(const fs::path& file, std::string_view word) {
  std::string line;
  return std::getline(std::ifstream(file), line) && line == word;
}

/// `link` leads to the folder of a disk or of a partition, which stands in that of its disk.
bool isRemovableDevice(const fs::path& link) {
  std::error_code error;
  const fs::path device = fs::canonical(link, error);
  if (error) {
    return false;
  }
  for (const fs::path& disk : {device, device.parent_path()}) {
    // A memory card says that it isn't removable; what is soldered in is an "MMC".
    if (says(disk / "removable", "1") || says(disk / "device/type", "SD")) {
      return true;
    }
  }
  if (device.native().contains("/usb")) {
    return true;
  }
  // An encrypted volume stands upon another device.
  for (fs::directory_iterator below(device / "slaves", error), end; !error && below != end; below.increment(error)) {
    if (isRemovableDevice(below->path())) {
      return true;
    }
  }
  return false;
}

}  // namespace

SystemResult<VolumeCapacity> LinuxVolumeReader::capacity(const std::string& path) const {
  struct statvfs found{};
  while (::statvfs(path.c_str(), &found) != 0) {
    if (errno != EINTR) {
      return std::unexpected(SystemError{errno});
    }
  }
  return VolumeCapacity{.totalBytes = bytesOf(found.f_blocks, found.f_frsize),
                        .availableBytes = bytesOf(found.f_bavail, found.f_frsize)};
}

std::optional<std::string> LinuxVolumeReader::label(const Mount& mount) const {
  std::error_code error;
  const fs::path device = isDevice(mount.source) ? fs::canonical(mount.source, error) : fs::path();
  if (error || device.empty()) {
    return std::nullopt;
  }
  for (fs::directory_iterator link(devices_ + "/disk/by-label", error), end; !error && link != end;
       link.increment(error)) {
    std::error_code isBroken;
    if (fs::canonical(link->path(), isBroken) == device && !isBroken) {
      return labelOfLinkName(link->path().filename().native());
    }
  }
  return std::nullopt;
}

/// Anything else that a mount names as its source may stand on a volume that doesn't answer.
bool LinuxVolumeReader::isDevice(std::string_view source) const {
  return source != devices_ && isSameOrInside(source, devices_);
}

bool LinuxVolumeReader::isRemovable(const Mount& mount) const {
  // The source rather than the mount's own number: some file systems have numbers of their own, which no disk has.
  struct stat found{};
  if (!isDevice(mount.source) || ::stat(mount.source.c_str(), &found) != 0) {
    return false;
  }
  const std::string number = std::to_string(major(found.st_rdev)) + ':' + std::to_string(minor(found.st_rdev));
  return isRemovableDevice(fs::path(blockDevices_) / number);
}

std::string labelOfLinkName(std::string_view name) {
  std::string label;
  while (!name.empty()) {
    const auto byte = name.starts_with("\\x") ? hexByte(name.substr(2, 2)) : std::nullopt;
    label += byte ? static_cast<char>(*byte) : name.front();
    name.remove_prefix(byte ? 4 : 1);
  }
  return label;
}

}  // namespace lumenary
