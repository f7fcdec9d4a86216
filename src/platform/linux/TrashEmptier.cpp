#include "platform/linux/TrashEmptier.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <functional>
#include <system_error>
#include <thread>

#include "base/UUID.h"
#include "platform/linux/TrashInfoFile.h"

namespace lumenary {
namespace {

constexpr const char* expungedName = "expunged";

/// An info file without an item may belong to a move that is just being made, by whatever program.
constexpr auto remainsAge = std::chrono::hours(1);

bool isOld(const KernelStatus& status) {
  const auto modified = std::chrono::sys_seconds(std::chrono::seconds(status.modifiedSeconds));
  return std::chrono::system_clock::now() - modified > remainsAge;
}

}  // namespace

SystemResult<std::vector<std::string>> TrashEmptier::namesIn(const Descriptor& folder) const {
  // A descriptor of its own, so that the reading begins at the first name.
  const auto opened = openAt(kernel_, folder, ".", O_RDONLY | O_DIRECTORY);
  if (!opened) {
    return std::unexpected(opened.error());
  }
  std::vector<std::string> names;
  FolderScratch scratch;
  for (;;) {
    const auto entries = reader_.nextEntries(*opened, scratch);
    if (!entries) {
      return std::unexpected(entries.error());
    }
    if (entries->empty()) {
      return names;
    }
    for (const FolderEntry& entry : *entries) {
      names.emplace_back(entry.name, entry.length);
    }
  }
}

/// The folder for what is on its way out, where it is this person's and nothing is mounted on it.
SystemResult<Descriptor> TrashEmptier::openExpunged() const {
  auto opened = openAt(kernel_, trash_.folder, expungedName, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
  const auto status = opened ? statusOf(kernel_, *opened) : std::unexpected(opened.error());
  const auto around = statusOf(kernel_, trash_.files);
  if (!status || !around) {
    return std::unexpected(status ? around.error() : status.error());
  }
  const bool isOnSameMount = status->identity.device == around->identity.device && status->mountID == around->mountID;
  return status->owner == userID_ && isOnSameMount ? std::move(opened) : std::unexpected(SystemError{EPERM});
}

/// Made when it is first needed; null where there can't be one.
const Descriptor* TrashEmptier::expunged() {
  const std::lock_guard guard(lock_);
  if (!expunged_) {
    const auto made = makeFolder(kernel_, trash_.folder, expungedName);
    expunged_ = made ? openExpunged() : std::unexpected(made.error());
  }
  return *expunged_ ? &**expunged_ : nullptr;
}

SystemResult<void> TrashEmptier::removeFolder(TreeRemoval& removal, const std::string& name) {
  removal.openForWriting(trash_.files, name);
  const Descriptor* const way = expunged();
  const std::string passing = UUID::random().text();
  const bool isOut = way != nullptr && kernel_.renameat2(trash_.files.number(), name.c_str(), way->number(),
                                                         passing.c_str(), RENAME_NOREPLACE) == 0;
  if (!isOut) {
    // No room for another folder, or not the person's own.
    return removal.remove(trash_.files, name);
  }
  auto removed = removal.remove(*way, passing);
  if (!removed) {
    // What is left goes back to where its info file tells of it. Where it can't, the info file waits for it.
    if (kernel_.renameat2(way->number(), passing.c_str(), trash_.files.number(), name.c_str(), RENAME_NOREPLACE) != 0) {
      const std::lock_guard guard(lock_);
      keptOut_.insert(name);
    }
  }
  return removed;
}

SystemResult<void> TrashEmptier::removeItem(TreeRemoval& removal, const std::string& name) {
  if (stop_.stop_requested()) {
    return std::unexpected(SystemError{ECANCELED});
  }
  const auto status = statusAt(kernel_, trash_.files, name.c_str());
  const bool isFolder = status && status->identity.kind == FileKind::folder;
  auto removed = isFolder ? removeFolder(removal, name) : removal.remove(trash_.files, name);
  if (removed) {
    const std::string info = name + std::string(TrashInfoFile::extension);
    removed = removeFile(kernel_, trash_.info, info.c_str());
    if (!removed && (removed.error().isMissing() || removed.error().code == ENAMETOOLONG)) {
      return {};
    }
  }
  return removed;
}

void TrashEmptier::account(const std::string& name, const SystemResult<void>& removed) {
  if (removed) {
    ++result_.removedCount;
    sizes_[name] = std::nullopt;
    return;
  }
  ++result_.leftCount;
  if (removed.error().code == ECANCELED) {
    result_.isCancelled = true;
  } else if (result_.cause.code == 0) {
    result_.cause = removed.error();
  }
}

void TrashEmptier::removeItems(const std::vector<std::string>& names, unsigned workers,
                               const std::function<void()>& done) {
  std::atomic<std::size_t> next = 0;
  const auto work = [&] {
    TreeRemoval removal(kernel_, reader_, userID_, stop_);
    for (std::size_t index = next++; index < names.size(); index = next++) {
      const auto removed = removeItem(removal, names[index]);
      const std::lock_guard guard(lock_);
      account(names[index], removed);
      done();
    }
  };
  std::vector<std::jthread> threads;
  const std::size_t count = std::min<std::size_t>(workers, names.size());
  while (threads.size() + 1 < count) {
    try {
      threads.emplace_back(work);
    } catch (const std::system_error&) {
      break;  // this one does it all
    }
  }
  work();
}

void TrashEmptier::removeRemains() {
  if (stop_.stop_requested()) {
    return;
  }
  TreeRemoval removal(kernel_, reader_, userID_, stop_);
  const auto way = openExpunged();
  if (const auto left = way ? namesIn(*way) : std::unexpected(way.error())) {
    for (const std::string& name : *left) {
      if (auto removed = removal.remove(*way, name); !removed) {
        account(name, removed);
      }
    }
  }
  const auto infos = namesIn(trash_.info);
  if (!infos) {
    return;
  }
  for (const std::string& info : *infos) {
    if (!info.ends_with(TrashInfoFile::extension)) {
      continue;
    }
    const std::string item = info.substr(0, info.size() - TrashInfoFile::extension.size());
    const auto status = statusAt(kernel_, trash_.info, info.c_str());
    const auto standing = statusAt(kernel_, trash_.files, item.c_str());
    const bool isAlone = !standing && standing.error().isMissing();
    if (status && isAlone && isOld(*status) && !keptOut_.contains(item)) {
      static_cast<void>(removeFile(kernel_, trash_.info, info.c_str()));
    }
  }
}

void TrashEmptier::finish() {
  if (!sizes_.empty()) {
    writeFolderSizes(kernel_, trash_, sizes_);
    static_cast<void>(sync(kernel_, trash_.files));
    static_cast<void>(sync(kernel_, trash_.info));
  }
}

}  // namespace lumenary
