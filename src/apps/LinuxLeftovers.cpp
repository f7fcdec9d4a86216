#include "apps/LinuxLeftovers.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <limits>
#include <map>
#include <memory>
#include <string_view>
#include <utility>

#include "apps/AppFolders.h"
#include "base/Path.h"

namespace lumenary {
namespace {

constexpr auto quietTime = std::chrono::days(90);

/// Whether anything in a folder was written since a date. In doubt it was: where something can't be read, or where
/// there is more than can be looked at.
class WrittenSince {
 public:
  WrittenSince(const FileReader& reader, Date since) : reader_(reader), since_(since) {}

  bool operator()(const std::string& path) {
    const auto seen = reader_.attributes(path, LinkPolicy::refuse);
    const auto folder = reader_.openFolder(path, LinkPolicy::follow);
    if (!seen || seen->modified >= since_ || !folder) {
      return true;
    }
    const auto opened = reader_.attributes(*folder);
    return !opened || opened->identity != seen->identity || holdsRecent(*folder, 0);
  }

 private:
  static constexpr int mostLevels = 32;
  static constexpr int mostEntries = 50'000;

  bool holdsRecent(const Descriptor& folder, int level) {
    FolderScratch scratch;
    std::vector<std::string> folders;
    for (;;) {
      const auto entries = reader_.nextEntries(folder, scratch);
      if (!entries) {
        return true;
      }
      if (entries->empty()) {
        break;
      }
      for (const FolderEntry& entry : *entries) {
        const auto found = reader_.attributes(folder, entry.name);
        if (!found || found->modified >= since_ || ++looked_ > mostEntries) {
          return true;
        }
        if (found->identity.kind == FileKind::folder) {
          folders.emplace_back(entry.name, entry.length);
        }
      }
    }
    return std::ranges::any_of(folders, [&](const std::string& name) {
      const auto inner = level < mostLevels ? reader_.openFolder(folder, name.c_str()) : SystemResult<Descriptor>();
      return !inner || !*inner || holdsRecent(*inner, level + 1);
    });
  }

  const FileReader& reader_;
  const Date since_;
  int looked_ = 0;
};

/// By the rules for such identifiers; a folder that a person made there isn't called so.
bool isFlatpakID(std::string_view name) {
  const auto isAllowed = [](char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           byte == '.' || byte == '_' || byte == '-';
  };
  return std::ranges::count(name, '.') >= 2 && std::ranges::all_of(name, isAllowed) && !name.starts_with('.') &&
         !name.ends_with('.') && !name.contains("..");
}

bool isSnapName(std::string_view name) {
  const auto isAllowed = [](char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9') || byte == '-' || byte == '_';
  };
  const auto isLetter = [](char byte) { return byte >= 'a' && byte <= 'z'; };
  return std::ranges::all_of(name, isAllowed) && std::ranges::any_of(name, isLetter) && name != "bin";
}

class Judge {
 public:
  explicit Judge(LinuxLeftovers inputs) : inputs_(std::move(inputs)) {}

  bool isLeftover(const AppDataLocation& location, const std::string& name, const std::string& path) {
    return isCertain(location, name, path) && !inputs_.isOpen(path) && !isLinkedFromBeside(location.folder, path);
  }

 private:
  bool isCertain(const AppDataLocation& location, const std::string& name, const std::string& path) const {
    if (location.onlyFor == AppOrigin::flatpak) {
      return isFlatpakID(name) && isFolder(path) && !inputs_.registry.isInstalled(name);
    }
    if (location.onlyFor == AppOrigin::snap) {
      // A person may keep things of their own there.
      const auto snap = std::ranges::find(inputs_.seen, name, &SeenApp::id);
      return snap != inputs_.seen.end() && snap->origin == AppOrigin::snap && isSnapName(name) &&
             isFolder(appendingPathComponent(path, "common")) && !inputs_.registry.isInstalled(name);
    }
    // Those of a store keep their things in their container alone.
    const auto seen = std::ranges::find(inputs_.seen, name, &SeenApp::id);
    return seen != inputs_.seen.end() && !isOfStore(*seen) && seen->lastSeen < inputs_.now && isGone(*seen) &&
           isFolder(path) && !WrittenSince(inputs_.reader, inputs_.now - quietTime)(path);
  }

  bool isFolder(const std::string& path) const {
    const auto found = inputs_.reader.attributes(path, LinkPolicy::refuse);
    return found && found->identity.kind == FileKind::folder;
  }

  /// Without its entry a program may go on working: then it stands where it stood, or somewhere else under its name.
  bool isGone(const SeenApp& app) const {
    const auto standsIn = [&](const std::string& folder) {
      return !isMissing(appendingPathComponent(folder, lastPathComponent(app.program)));
    };
    return !app.program.empty() && isMissing(app.program) && std::ranges::none_of(inputs_.programFolders, standsIn) &&
           !inputs_.registry.isInstalled(app.id);
  }
  static bool isOfStore(const SeenApp& app) {
    return app.origin == AppOrigin::flatpak || app.origin == AppOrigin::snap;
  }

  bool isMissing(const std::string& path) const {
    const auto found = inputs_.reader.attributes(path, LinkPolicy::follow);
    return !found && found.error().isMissing();
  }

  /// A person, or an app that changed its identifier, may have put a link to the old folder beside it.
  bool isLinkedFromBeside(const std::string& folder, const std::string& path) {
    const auto [known, isNew] = targets_.try_emplace(folder);
    if (isNew) {
      const FolderByteTotals none;
      AppFolders looked(inputs_.reader, none, {});
      for (const AppFolders::Entry& entry : looked.entriesOrNone(folder, LinkPolicy::follow)) {
        if (entry.kind == FileKind::link) {
          known->second.push_back(inputs_.reader.realPath(appendingPathComponent(folder, entry.name)).value_or(""));
        }
      }
    }
    const std::string real = inputs_.reader.realPath(path).value_or(path);
    return std::ranges::any_of(known->second, [&](const std::string& target) {
      return !target.empty() && (isSameOrInside(target, real) || isSameOrInside(real, target));
    });
  }

  const LinuxLeftovers inputs_;
  std::map<std::string, std::vector<std::string>> targets_;  ///< of the links in a folder
};

}  // namespace

LeftoverRule linuxLeftoverRule(LinuxLeftovers inputs) {
  return [judge = std::make_shared<Judge>(std::move(inputs))](const AppDataLocation& location, const std::string& name,
                                                              const std::string& path) -> std::optional<std::string> {
    return judge->isLeftover(location, name, path) ? std::optional(name) : std::nullopt;
  };
}

}  // namespace lumenary
