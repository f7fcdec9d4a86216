#include "platform/linux/LinuxMountTable.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <optional>
#include <ranges>
#include <unordered_set>

#include "platform/Descriptor.h"

namespace lumenary {
namespace {

constexpr auto kernelTypes = std::to_array<std::string_view>(
    {"autofs",    "binfmt_misc", "bpf",      "cgroup",     "cgroup2", "configfs", "cpuset",     "debugfs",
     "devpts",    "devtmpfs",    "efivarfs", "functionfs", "fusectl", "gadgetfs", "hugetlbfs",  "ipathfs",
     "mqueue",    "nfsd",        "nsfs",     "proc",       "pstore",  "resctrl",  "rpc_pipefs", "securityfs",
     "selinuxfs", "smackfs",     "sysfs",    "tracefs",    "usbfs",   "usbdevfs", "xenfs"});

constexpr auto networkTypes = std::to_array<std::string_view>(
    {"9p", "acfs", "afs", "beegfs", "ceph", "cifs", "coda", "glusterfs", "lustre", "ncpfs", "nfs", "nfs4", "orangefs",
     "prl_fs", "smb3", "smbfs", "vboxsf", "vmhgfs"});

MountKind kindOfType(std::string_view type) {
  if (std::ranges::find(kernelTypes, type) != kernelTypes.end()) {
    return MountKind::kernel;
  }
  if (std::ranges::find(networkTypes, type) != networkTypes.end()) {
    return MountKind::network;
  }
  // fuseblk is a driver of a disk in this machine (NTFS, exFAT), and answers as long as the disk does.
  if (type == "fuse" || type.starts_with("fuse.") || type == "virtiofs") {
    return MountKind::userspace;
  }
  return MountKind::local;
}

std::string_view takeUpTo(std::string_view& text, char separator) {
  const std::string_view taken = text.substr(0, text.find(separator));
  text.remove_prefix(std::min(taken.size() + 1, text.size()));
  return taken;
}

/// The kernel writes a blank, tab, line break and backslash as a backslash and three octal digits.
std::string unescaped(std::string_view field) {
  std::string bytes;
  bytes.reserve(field.size());
  for (std::size_t at = 0; at < field.size(); ++at) {
    unsigned value = 0;
    const char* digits = field.data() + at + 1;
    const bool isEscape = field[at] == '\\' && field.size() - at > 3 &&
                          std::from_chars(digits, digits + 3, value, 8).ptr == digits + 3 && value > 0 && value <= 0xFF;
    bytes.push_back(isEscape ? static_cast<char>(value) : field[at]);
    if (isEscape) {
      at += 3;
    }
  }
  return bytes;
}

std::optional<Mount> parseLine(std::string_view line) {
  Mount mount;
  const std::string_view id = takeUpTo(line, ' ');
  if (std::from_chars(id.data(), id.data() + id.size(), mount.id).ptr != id.data() + id.size() || id.empty()) {
    return {};
  }
  takeUpTo(line, ' ');  // the mount's parent
  mount.device = takeUpTo(line, ' ');
  takeUpTo(line, ' ');  // the folder of that file system that is mounted
  mount.point = unescaped(takeUpTo(line, ' '));
  takeUpTo(line, ' ');  // the mount's options
  // Optional fields follow, as many as the kernel likes, up to a lone hyphen.
  while (!line.empty() && takeUpTo(line, ' ') != "-") {
  }
  mount.type = unescaped(takeUpTo(line, ' '));
  mount.source = unescaped(takeUpTo(line, ' '));
  if (!mount.point.starts_with('/') || mount.type.empty()) {
    return {};
  }
  mount.kind = kindOfType(mount.type);
  return mount;
}

}  // namespace

std::vector<Mount> parseMountInfo(std::string_view text) {
  std::vector<Mount> mounts;
  while (!text.empty()) {
    if (std::optional<Mount> mount = parseLine(takeUpTo(text, '\n'))) {
      mounts.push_back(*std::move(mount));
    }
  }
  std::unordered_set<std::string_view> pointsTaken;
  std::vector<Mount> visible;
  for (const Mount& mount : std::views::reverse(mounts)) {
    if (pointsTaken.insert(mount.point).second) {
      visible.push_back(mount);
    }
  }
  std::ranges::reverse(visible);
  return visible;
}

SystemResult<std::vector<Mount>> LinuxMountTable::mounts() const {
  const Descriptor file(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC));
  if (!file) {
    return std::unexpected(SystemError{errno});
  }
  std::string text;
  std::array<char, 16 * 1024> buffer{};
  for (;;) {
    const ssize_t length = ::read(file.number(), buffer.data(), buffer.size());
    if (length < 0 && errno == EINTR) {
      continue;
    }
    if (length < 0) {
      return std::unexpected(SystemError{errno});
    }
    if (length == 0) {
      return parseMountInfo(text);
    }
    text.append(buffer.data(), static_cast<std::size_t>(length));
  }
}

}  // namespace lumenary
