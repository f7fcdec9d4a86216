#include "platform/linux/LinuxMountTable.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <optional>
#include <unordered_set>

#include "base/Path.h"
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

struct ListedMount {
  Mount mount;
  std::uint64_t parent = 0;  ///< the id of the mount that it is mounted on
  bool isHidden = false;
};

std::optional<std::uint64_t> parseID(std::string_view text) {
  std::uint64_t id = 0;
  const bool isNumber = std::from_chars(text.data(), text.data() + text.size(), id).ptr == text.data() + text.size();
  return isNumber && !text.empty() ? std::optional(id) : std::nullopt;
}

std::optional<ListedMount> parseLine(std::string_view line) {
  ListedMount listed;
  Mount& mount = listed.mount;
  const auto id = parseID(takeUpTo(line, ' '));
  const auto parent = parseID(takeUpTo(line, ' '));
  if (!id || !parent) {
    return {};
  }
  mount.id = *id;
  listed.parent = *parent;
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
  return listed;
}

/// A mount can't be reached any more where a later one was mounted at its point, or above it on the same mount, nor can
/// what was mounted on it in the second case.
void hideCovered(std::vector<ListedMount>& mounts) {
  std::unordered_set<std::uint64_t> buried;
  for (auto at = mounts.begin(); at != mounts.end(); ++at) {
    const auto isAtSamePoint = [&](const ListedMount& later) { return later.mount.point == at->mount.point; };
    const auto isAbove = [&](const ListedMount& later) {
      return later.parent == at->parent && isSameOrInside(at->mount.point, later.mount.point);
    };
    const bool isBuried = buried.contains(at->parent) || std::any_of(at + 1, mounts.end(), isAbove);
    at->isHidden = isBuried || std::any_of(at + 1, mounts.end(), isAtSamePoint);
    if (isBuried) {
      buried.insert(at->mount.id);
    }
  }
}

}  // namespace

std::vector<Mount> parseMountInfo(std::string_view text) {
  std::vector<ListedMount> listed;
  while (!text.empty()) {
    if (std::optional<ListedMount> mount = parseLine(takeUpTo(text, '\n'))) {
      listed.push_back(*std::move(mount));
    }
  }
  hideCovered(listed);
  std::vector<Mount> visible;
  for (ListedMount& one : listed) {
    if (!one.isHidden) {
      visible.push_back(std::move(one.mount));
    }
  }
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
