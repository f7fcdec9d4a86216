#pragma once

#include <functional>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/FileReader.h"

namespace lumenary {

/// A reader that asks a hook before each of its calls: the hook may change the disk between two of them, or make the
/// call fail. A second one may alter the attributes that were read.
class HookedReader final : public FileReader {
 public:
  enum class Call { openFolder, nextEntries, attributes };
  /// What is about to be read: the path or name asked for, empty where the call takes only a descriptor. An error that
  /// comes back is the answer to the call.
  using Hook = std::function<std::optional<SystemError>(Call, std::string_view)>;
  using Alteration = std::function<void(std::string_view, FileAttributes&)>;

  HookedReader(
      const FileReader& real, Hook hook, Alteration alter = [](std::string_view, FileAttributes&) {})
      : real_(real), hook_(std::move(hook)), alter_(std::move(alter)) {}

  SystemResult<Descriptor> openFolder(std::string_view path, LinkPolicy links) const override {
    return hooked(Call::openFolder, path, [&] { return real_.openFolder(path, links); });
  }
  SystemResult<Descriptor> openFolder(const Descriptor& parent, const char* name) const override {
    return hooked(Call::openFolder, name, [&] { return real_.openFolder(parent, name); });
  }
  SystemResult<std::span<const FolderEntry>> nextEntries(const Descriptor& folder,
                                                         FolderScratch& scratch) const override {
    return hooked(Call::nextEntries, "", [&] { return real_.nextEntries(folder, scratch); });
  }
  SystemResult<FileAttributes> attributes(const Descriptor& folder, const char* name) const override {
    return alteredAfter(name, [&] { return real_.attributes(folder, name); });
  }
  SystemResult<FileAttributes> attributes(const Descriptor& folder) const override {
    return alteredAfter("", [&] { return real_.attributes(folder); });
  }
  SystemResult<FileAttributes> attributes(std::string_view path, LinkPolicy links) const override {
    return alteredAfter(path, [&] { return real_.attributes(path, links); });
  }
  SystemResult<std::string> realPath(std::string_view path) const override { return real_.realPath(path); }

 private:
  auto hooked(Call call, std::string_view name, auto read) const -> decltype(read()) {
    if (const auto error = hook_(call, name)) {
      return std::unexpected(*error);
    }
    return read();
  }
  SystemResult<FileAttributes> alteredAfter(std::string_view name, auto read) const {
    auto found = hooked(Call::attributes, name, read);
    if (found) {
      alter_(name, *found);
    }
    return found;
  }

  const FileReader& real_;
  const Hook hook_;
  const Alteration alter_;
};

}  // namespace lumenary
