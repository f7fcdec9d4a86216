#include "platform/linux/LinuxVolumeReader.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <limits>
#include <system_error>

#include "base/Hex.h"

namespace lumenary {
namespace {

namespace fs = std::filesystem;

std::int64_t bytesOf(std::uint64_t blocks, std::uint64_t blockBytes) {
  std::int64_t bytes = 0;
  const bool isTooMuch = __builtin_mul_overflow(blocks, blockBytes, &bytes);
  return isTooMuch ? std::numeric_limits<std::int64_t>::max() : bytes;
}

bool saysOne(const fs::path& file) {
  char first = '0';
  return std::ifstream(file).get(first) && first == '1';
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
  const fs::path device = fs::canonical(mount.source, error);
  if (error || !mount.source.starts_with('/')) {
    return std::nullopt;
  }
  for (fs::directory_iterator link(labels_, error), end; !error && link != end; link.increment(error)) {
    std::error_code isBroken;
    if (fs::canonical(link->path(), isBroken) == device && !isBroken) {
      return labelOfLinkName(link->path().filename().native());
    }
  }
  return std::nullopt;
}

bool LinuxVolumeReader::isRemovable(const Mount& mount) const {
  // The source rather than the mount's own number: some file systems have numbers of their own, which no disk has.
  struct stat found{};
  if (!mount.source.starts_with('/') || ::stat(mount.source.c_str(), &found) != 0) {
    return false;
  }
  const std::string number = std::to_string(major(found.st_rdev)) + ':' + std::to_string(minor(found.st_rdev));
  std::error_code error;
  const fs::path device = fs::canonical(fs::path(blockDevices_) / number, error);
  if (error) {
    return false;
  }
  const std::string& place = device.native();
  // A partition stands in the folder of its disk.
  return place.contains("/usb") || place.contains("/mmc_host/") || saysOne(device / "removable") ||
         saysOne(device.parent_path() / "removable");
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
