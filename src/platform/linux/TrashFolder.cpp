#include "platform/linux/TrashFolder.h"

#include <algorithm>
#include <cerrno>
#include <set>

#include "base/Path.h"

namespace lumenary {
namespace {

std::string homeTrashPath(const Places& places) { return appendingPathComponent(places.dataHome, "Trash"); }

std::string ownName(const Places& places) { return std::to_string(places.userID); }

std::string sharedPath(const std::string& top, const Places& places) {
  return appendingPathComponent(top, ".Trash/" + ownName(places));
}

std::string privatePath(const std::string& top, const Places& places) {
  return appendingPathComponent(top, ".Trash-" + ownName(places));
}

TrashError errorOf(const SystemError& cause) {
  if (cause.code == EROFS) {
    return {.refusal = TrashRefusal::readOnlyVolume, .cause = cause};
  }
  return {.refusal = cause.isNoSpace() ? TrashRefusal::noSpace : TrashRefusal::noTrash, .cause = cause};
}

/// By the kernel's id where it tells one; by the path on older kernels.
const Mount* mountOf(const std::vector<Mount>& mounts, std::string_view path, std::uint64_t mountID) {
  if (mountID == 0) {
    return mountHolding(mounts, path);
  }
  const auto found = std::ranges::find(mounts, mountID, &Mount::id);
  return found == mounts.end() ? nullptr : &*found;
}

std::expected<TrashFolder, TrashError> withSentence(SystemResult<TrashFolder> trash) {
  if (trash) {
    return *std::move(trash);
  }
  return std::unexpected(errorOf(trash.error()));
}

}  // namespace

std::string TrashFolder::pathOfItem(std::string_view name) const { return path + "/files/" + std::string(name); }

std::string TrashFolder::recordedPath(const std::string& originalPath) const {
  if (top.empty()) {
    return originalPath;
  }
  return originalPath.substr(top == "/" ? 1 : top.size() + 1);
}

/// Opens a folder that must belong to this person.
SystemResult<Descriptor> TrashFolders::openOwned(const Descriptor& parent, const char* name, int linkFlag,
                                                 Missing missing) {
  auto folder = openAt(kernel_, parent, name, O_RDONLY | O_DIRECTORY | linkFlag);
  if (!folder && folder.error().code == ENOENT && missing == Missing::make) {
    if (auto made = makeFolder(kernel_, parent, name); !made) {
      return std::unexpected(made.error());
    }
    folder = openAt(kernel_, parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
  }
  if (!folder) {
    return folder;
  }
  const auto status = statusOf(kernel_, *folder);
  if (!status) {
    return std::unexpected(status.error());
  }
  if (status->owner != places_.userID) {
    return std::unexpected(SystemError{EPERM});
  }
  return folder;
}

SystemResult<TrashFolder> TrashFolders::openParts(Descriptor folder, std::string path, std::string top, int linkFlag,
                                                  Missing missing) {
  auto files = openOwned(folder, "files", linkFlag, missing);
  if (!files) {
    return std::unexpected(files.error());
  }
  auto info = openOwned(folder, "info", linkFlag, missing);
  if (!info) {
    return std::unexpected(info.error());
  }
  return TrashFolder{.path = std::move(path),
                     .top = std::move(top),
                     .folder = std::move(folder),
                     .files = *std::move(files),
                     .info = *std::move(info)};
}

/// The home Trash may be reached through links: people put it on a bigger disk. Each folder must be their own.
SystemResult<TrashFolder> TrashFolders::openHome(Missing missing, int linkFlag) {
  if (missing == Missing::make) {
    if (auto made = makeFolders(kernel_, places_.dataHome); !made) {
      return std::unexpected(made.error());
    }
  }
  auto parent = openPath(kernel_, places_.dataHome, O_RDONLY | O_DIRECTORY);
  if (!parent) {
    return std::unexpected(parent.error());
  }
  auto folder = openOwned(*parent, "Trash", linkFlag, missing);
  if (!folder) {
    return std::unexpected(folder.error());
  }
  return openParts(*std::move(folder), homeTrashPath(places_), {}, linkFlag, missing);
}

/// The administrator's `.Trash` counts only if nobody could have replaced what stands in it.
SystemResult<TrashFolder> TrashFolders::openShared(const Descriptor& top, const std::string& topPath, Missing missing) {
  auto parent = openAt(kernel_, top, ".Trash", O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
  if (!parent) {
    return std::unexpected(parent.error());
  }
  const auto status = statusOf(kernel_, *parent);
  if (!status || (status->mode & S_ISVTX) == 0) {
    return std::unexpected(status ? SystemError{EPERM} : status.error());
  }
  auto folder = openOwned(*parent, ownName(places_).c_str(), O_NOFOLLOW, missing);
  if (!folder) {
    return std::unexpected(folder.error());
  }
  return openParts(*std::move(folder), sharedPath(topPath, places_), topPath, O_NOFOLLOW, missing);
}

SystemResult<TrashFolder> TrashFolders::openPrivate(const Descriptor& top, const std::string& topPath,
                                                    Missing missing) {
  std::string path = privatePath(topPath, places_);
  auto folder = openOwned(top, std::string(lastPathComponent(path)).c_str(), O_NOFOLLOW, missing);
  if (!folder) {
    return std::unexpected(folder.error());
  }
  return openParts(*std::move(folder), std::move(path), topPath, O_NOFOLLOW, missing);
}

/// True where the home Trash is, or would be, on the file system and mount of `status`.
SystemResult<bool> TrashFolders::isHomeFileSystem(const KernelStatus& status) {
  std::string path = homeTrashPath(places_) + "/files";
  for (;;) {
    auto opened = openPath(kernel_, path, O_PATH | O_DIRECTORY);
    if (opened) {
      const auto home = statusOf(kernel_, *opened);
      if (!home) {
        return std::unexpected(home.error());
      }
      return home->identity.device == status.identity.device && home->mountID == status.mountID;
    }
    if (!opened.error().isMissing() || path == "/") {
      return std::unexpected(opened.error());
    }
    path = std::string(parentPath(path));
  }
}

std::expected<TrashFolder, TrashError> TrashFolders::openFor(const OpenedItem& item, const std::vector<Mount>& mounts) {
  const auto status = statusOf(kernel_, item.parent);
  if (!status) {
    return std::unexpected(errorOf(status.error()));
  }
  const auto isHome = isHomeFileSystem(*status);
  if (!isHome) {
    return std::unexpected(errorOf(isHome.error()));
  }
  if (*isHome) {
    return withSentence(openHome(Missing::make));
  }
  const Mount* mount = mountOf(mounts, item.path, status->mountID);
  if (mount == nullptr || !isSameOrInside(item.path, mount->point)) {
    return std::unexpected(TrashError{.refusal = TrashRefusal::noTrash});
  }
  auto top = reader_.openFolder(mount->point, LinkPolicy::refuse);
  if (!top) {
    return std::unexpected(errorOf(top.error()));
  }
  // Another mount may cover this one's top: what is opened there must be the item's own file system.
  const auto topStatus = statusOf(kernel_, *top);
  if (!topStatus || topStatus->identity.device != status->identity.device || topStatus->mountID != status->mountID) {
    return std::unexpected(TrashError{.refusal = TrashRefusal::noTrash});
  }
  if (auto shared = openShared(*top, mount->point, Missing::make)) {
    return *std::move(shared);
  }
  return withSentence(openPrivate(*top, mount->point, Missing::make));
}

SystemResult<TrashFolder> TrashFolders::openHolding(const std::string& trashPath, const std::vector<Mount>& mounts) {
  const std::string_view files = parentPath(trashPath);
  const std::string_view folder = parentPath(files);
  if (lastPathComponent(files) != "files" || standardise(trashPath) != trashPath) {
    return std::unexpected(SystemError{ENOENT});
  }
  if (folder == homeTrashPath(places_)) {
    return openHome(Missing::fail);
  }
  for (const Mount& mount : mounts) {
    const bool isShared = folder == sharedPath(mount.point, places_);
    if (!isShared && folder != privatePath(mount.point, places_)) {
      continue;
    }
    const auto top = reader_.openFolder(mount.point, LinkPolicy::refuse);
    if (!top) {
      return std::unexpected(top.error());
    }
    return isShared ? openShared(*top, mount.point, Missing::fail) : openPrivate(*top, mount.point, Missing::fail);
  }
  return std::unexpected(SystemError{ENODEV});
}

std::vector<std::string> TrashFolders::paths(const std::vector<Mount>& mounts) const {
  std::vector<std::string> paths = {homeTrashPath(places_)};
  for (const Mount& mount : mounts) {
    if (mount.kind == MountKind::local) {
      paths.push_back(sharedPath(mount.point, places_));
      paths.push_back(privatePath(mount.point, places_));
    }
  }
  return paths;
}

std::vector<TrashFolder> TrashFolders::openAll(const std::vector<Mount>& mounts,
                                               const std::function<void(const SystemError&)>& failed) {
  std::vector<TrashFolder> found;
  std::set<FileIdentity> known;
  const auto take = [&](SystemResult<TrashFolder> trash, bool isHome) {
    const auto status = trash ? statusOf(kernel_, trash->files) : std::unexpected(trash.error());
    if (status) {
      if (known.insert(status->identity).second) {
        found.push_back(*std::move(trash));
      }
      return;
    }
    // On a volume, what isn't there, is a link or is another person's holds nothing of this one's.
    const SystemError error = status.error();
    const bool isNobodys = error.isMissing() || error.isLink() || error.code == EPERM;
    if (isHome ? error.code != ENOENT : !isNobodys) {
      failed(error);
    }
  };
  take(openHome(Missing::fail, O_NOFOLLOW), true);
  for (const Mount& mount : mounts) {
    const auto top = mount.kind == MountKind::local ? reader_.openFolder(mount.point, LinkPolicy::refuse)
                                                    : std::unexpected(SystemError{ENOENT});
    if (top) {
      take(openShared(*top, mount.point, Missing::fail), false);
      take(openPrivate(*top, mount.point, Missing::fail), false);
    }
  }
  return found;
}

}  // namespace lumenary
