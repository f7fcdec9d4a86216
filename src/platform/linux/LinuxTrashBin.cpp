#include "platform/linux/LinuxTrashBin.h"

#include <cerrno>
#include <cstdint>
#include <utility>

#include "platform/linux/TrashEmptier.h"

namespace lumenary {

SystemResult<std::vector<std::string>> LinuxTrashBin::itemFolders() const {
  const auto mounts = mountTable_.mounts();
  if (!mounts) {
    return std::unexpected(mounts.error());
  }
  std::vector<std::string> paths;
  for (const std::string& path : folders_.paths(*mounts)) {
    paths.push_back(path + "/files");
  }
  return paths;
}

TrashEmptying LinuxTrashBin::empty(const EmptyingProgress& progress, const std::stop_token& stop) {
  TrashEmptying total;
  const auto mounts = mountTable_.mounts();
  if (!mounts) {
    return {.cause = mounts.error(), .isUnreachable = true};
  }
  const auto noteError = [&](const SystemError& error) {
    if (total.cause.code == 0) {
      total.cause = error;
    }
  };
  struct Work {
    TrashFolder trash;
    std::vector<std::string> names;
  };
  std::vector<Work> work;
  std::size_t count = 0;
  auto opened = folders_.openAll(*mounts, noteError);
  for (TrashFolder& trash : opened) {
    auto names = TrashEmptier(kernel_, reader_, trash, places_.userID, stop).items();
    if (!names) {
      noteError(names.error());
      continue;
    }
    count += names->size();
    work.push_back({std::move(trash), *std::move(names)});
  }
  std::size_t doneCount = 0;
  for (const auto& [trash, names] : work) {
    TrashEmptier emptier(kernel_, reader_, trash, places_.userID, stop);
    emptier.removeItems(names, workers_, [&] {
      ++doneCount;
      if (progress) {
        progress(doneCount, count);
      }
    });
    emptier.removeRemains();
    emptier.finish();
    const TrashEmptying& part = emptier.result();
    total.removedCount += part.removedCount;
    total.leftCount += part.leftCount;
    total.isCancelled = total.isCancelled || part.isCancelled;
    if (part.cause.code != 0) {
      noteError(part.cause);
    }
  }
  return total;
}

}  // namespace lumenary
