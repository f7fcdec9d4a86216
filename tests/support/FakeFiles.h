#pragma once

#include <cerrno>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/Path.h"
#include "platform/DurableFiles.h"

namespace lumenary {

/// Durable files in memory. Every call is recorded and can be made to fail by its text: "write /support/log.json". A
/// journal has a random name, so making one and growing it are told by its folder.
class FakeFiles final : public DurableFiles {
 public:
  std::map<std::string, std::string> contents;  ///< by path
  std::set<std::string> folders;
  std::set<std::string> growing;  ///< journals that are alive
  std::vector<std::string> calls;
  std::map<std::string, int> failures;  ///< errno by the call's text
  /// May throw, as if the process died right before the call.
  std::function<void()> beforeCall = [] {};

  SystemResult<std::string> read(const std::string& path, std::size_t limit) override {
    const auto found = contents.find(path);
    const int error = found == contents.end()        ? (folders.contains(path) ? EISDIR : ENOENT)
                      : found->second.size() > limit ? EFBIG
                                                     : 0;
    return call("read", path, error, [&] { return found->second; });
  }

  SystemResult<void> writeAtomically(const std::string& path, std::string_view bytes) override {
    return call("write", path, 0, [&] { contents[path] = bytes; });
  }

  SystemResult<void> makeFolders(const std::string& path) override {
    return call("makeFolders", path, 0, [&] { folders.insert(path); });
  }

  SystemResult<std::vector<std::string>> names(const std::string& folder) override {
    return call("names", folder, folders.contains(folder) ? 0 : ENOENT, [&] {
      std::vector<std::string> names;
      for (const auto& [path, bytes] : contents) {
        if (parentPath(path) == folder) {
          names.emplace_back(lastPathComponent(path));
        }
      }
      return names;
    });
  }

  SystemResult<void> remove(const std::string& path) override {
    return call("remove", path, contents.contains(path) ? 0 : ENOENT, [&] { contents.erase(path); });
  }

  void removeRemains(const std::string& folder) override { calls.push_back("removeRemains " + folder); }

  SystemResult<Descriptor> lock(const std::string& path) override {
    return call("lock", path, 0, [&] {
      contents.try_emplace(path);
      return Descriptor();
    });
  }

  SystemResult<Descriptor> lockNow(const std::string& path) override {
    return call("lockNow", path, 0, [&] { return Descriptor(); });
  }

  SystemResult<std::unique_ptr<GrowingFile>> grow(const std::string& path) override {
    return call("grow", std::string(parentPath(path)), contents.contains(path) ? EEXIST : 0,
                [&]() -> std::unique_ptr<GrowingFile> { return std::make_unique<Growing>(*this, path); });
  }

  bool isGrowing(const std::string& path) override { return growing.contains(path); }

 private:
  class Growing final : public GrowingFile {
   public:
    Growing(FakeFiles& files, std::string path) : files_(files), path_(std::move(path)) {
      files_.contents[path_].clear();
      files_.growing.insert(path_);
    }
    Growing(const Growing&) = delete;
    Growing& operator=(const Growing&) = delete;
    ~Growing() override { files_.growing.erase(path_); }

    SystemResult<void> append(std::string_view bytes) override {
      return files_.call("append", std::string(parentPath(path_)), 0, [&] { files_.contents[path_] += bytes; });
    }

   private:
    FakeFiles& files_;
    std::string path_;
  };

  template <class Act>
  auto call(const std::string& operation, const std::string& path, int error, Act act)
      -> SystemResult<decltype(act())> {
    beforeCall();
    const std::string& text = calls.emplace_back(operation + " " + path);
    if (const auto failure = failures.find(text); failure != failures.end()) {
      error = failure->second;
    }
    if (error != 0) {
      return std::unexpected(SystemError{error});
    }
    if constexpr (std::is_void_v<decltype(act())>) {
      act();
      return {};
    } else {
      return act();
    }
  }
};

}  // namespace lumenary
