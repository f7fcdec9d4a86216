#include "platform/GuardList.h"

#include <algorithm>
#include <array>

#include "base/Path.h"

namespace lumenary {
namespace {

constexpr std::array systemPlaces = {"/",     "/dev",       "/home",    "/media", "/mnt",    "/opt",
                                     "/proc", "/root",      "/run",     "/sys",   "/srv",    "/tmp",
                                     "/usr",  "/usr/local", "/usr/src", "/var",   "/var/tmp"};
constexpr std::array systemTrees = {
    "/bin",         "/boot",     "/etc",         "/lib",       "/lib32",     "/lib64",   "/libx32",    "/proc",
    "/sbin",        "/sys",      "/nix",         "/snap",      "/usr/bin",   "/usr/lib", "/usr/lib32", "/usr/lib64",
    "/usr/libexec", "/usr/sbin", "/usr/include", "/usr/share", "/var/cache", "/var/lib", "/var/log",   "/var/spool"};

/// Keys, passwords and keyrings, by their place in the home folder.
constexpr std::array secrets = {".ssh", ".gnupg", ".pki", ".password-store", ".aws", ".kube"};
constexpr std::array secretsInData = {"keyrings", "kwalletd", "pki"};

bool isInsideAny(std::string_view path, const std::vector<std::string>& trees) {
  return std::ranges::any_of(trees, [&](const std::string& tree) { return isSameOrInside(path, tree); });
}

}  // namespace

GuardList::GuardList(const FileReader& reader, const std::vector<Mount>& mounts, const Places& places) {
  if (places.home.empty() || places.dataHome.empty() || places.support.empty() || mounts.empty()) {
    return;
  }
  isComplete_ = true;
  for (const char* path : systemPlaces) {
    guardPlace(reader, path);
  }
  for (const char* path : systemTrees) {
    guardTree(reader, path);
  }
  guardHome(reader, places.home);
  // Another $HOME doesn't open the account's own.
  if (!places.accountHome.empty() && places.accountHome != places.home) {
    guardHome(reader, places.accountHome);
  }
  for (const std::string& path : {places.dataHome, places.configHome, places.cacheHome, places.stateHome}) {
    guardPlace(reader, path);
  }
  for (const char* name : secretsInData) {
    guardTree(reader, appendingPathComponent(places.dataHome, name));
  }
  guardTree(reader, places.support);
  guardTree(reader, std::string(parentPath(places.defaultsFile)));
  guardTree(reader, appendingPathComponent(places.dataHome, "Trash"));
  for (const Mount& mount : mounts) {
    volumeTrashes_.push_back(appendingPathComponent(mount.point, ".Trash"));
    volumeTrashes_.push_back(appendingPathComponent(mount.point, ".Trash-" + std::to_string(places.userID)));
  }
  mounts_ = mounts;
}

void GuardList::guardHome(const FileReader& reader, const std::string& home) {
  for (const std::string& path :
       {home, appendingPathComponent(home, ".config"), appendingPathComponent(home, ".local")}) {
    guardPlace(reader, path);
  }
  for (const char* name : secrets) {
    guardTree(reader, appendingPathComponent(home, name));
  }
  for (const char* name : secretsInData) {
    guardTree(reader, appendingPathComponent(home, std::string(".local/share/") + name));
  }
}

std::optional<FileIdentity> GuardList::guard(const FileReader& reader, const std::string& path,
                                             std::vector<std::string>& guarded) {
  guarded.push_back(standardise(path));
  const auto attributes = reader.attributes(path, LinkPolicy::follow);
  if (!attributes) {
    // A link to itself leads nowhere.
    isComplete_ = isComplete_ && (attributes.error().isMissing() || attributes.error().isLink());
    return std::nullopt;
  }
  // "/bin" may lead to "/usr/bin", a secret to another disk: what is guarded is where it leads.
  auto real = reader.realPath(path);
  if (!real) {
    isComplete_ = false;
  } else if (*real != guarded.back()) {
    guarded.push_back(*std::move(real));
  }
  identities_.push_back(attributes->identity);
  return attributes->identity;
}

void GuardList::guardPlace(const FileReader& reader, const std::string& path) { guard(reader, path, places_); }

void GuardList::guardTree(const FileReader& reader, const std::string& path) {
  if (const auto identity = guard(reader, path, trees_)) {
    treeIdentities_.push_back(*identity);
  }
}

bool GuardList::isInsideGuarded(std::string_view path) const {
  const Mount* mount = mountHolding(mounts_, path);
  return mount == nullptr || mount->kind == MountKind::kernel || isInsideAny(path, trees_) ||
         isInsideAny(path, volumeTrashes_);
}

bool GuardList::keeps(std::string_view path, const FileIdentity& identity) const {
  const auto standsInside = [&](const std::string& guarded) { return isSameOrInside(guarded, path); };
  return !isComplete_ || isInsideGuarded(path) || std::ranges::any_of(places_, standsInside) ||
         std::ranges::any_of(trees_, standsInside) || std::ranges::find(identities_, identity) != identities_.end();
}

bool GuardList::keepsBelow(const FileReader& reader, const Descriptor& folder) const {
  auto identity = reader.attributes(folder);
  Descriptor around;
  while (identity && std::ranges::find(treeIdentities_, identity->identity) == treeIdentities_.end()) {
    auto next = reader.openFolder(around ? around : folder, "..");
    auto nextIdentity = next ? reader.attributes(*next) : std::unexpected(next.error());
    if (nextIdentity && nextIdentity->identity == identity->identity) {
      return false;  // the root is around itself
    }
    identity = nextIdentity;
    around = next ? *std::move(next) : Descriptor();
  }
  return true;
}

bool GuardList::keepsOut(std::string_view path) const {
  return !isComplete_ || isInsideGuarded(path) || std::ranges::find(places_, path) != places_.end();
}

}  // namespace lumenary
