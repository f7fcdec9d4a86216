#include "cleanup/ItemOwner.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

#include "base/Path.h"
#include "base/Text.h"
#include "base/Unicode.h"
#include "cleanup/OwnerFolder.h"

namespace lumenary {
namespace {

/// Ends of hosts' names that makers use; two letters are a country's.
constexpr std::array<std::string_view, 17> hostEnds = {"app", "biz",  "cloud",    "com",  "company", "design",
                                                       "dev", "edu",  "gov",      "info", "link",    "net",
                                                       "org", "page", "software", "tech", "xyz"};

/// Behind these hosts, whoever asks gets a name: the maker is told by the next word.
constexpr std::array<std::string_view, 6> sharedHosts = {"io.github",  "com.github",    "io.gitlab",
                                                         "com.gitlab", "page.codeberg", "io.sourceforge"};

/// What says nothing without the maker's name.
constexpr std::array<std::string_view, 14> plainWords = {"agent",  "app",     "client",   "daemon", "desktop",
                                                         "helper", "linux",   "launcher", "mac",    "macos",
                                                         "main",   "service", "tool",     "updater"};

std::vector<std::string_view> words(std::string_view identifier) {
  std::vector<std::string_view> found;
  for (;;) {
    const std::size_t end = identifier.find('.');
    found.push_back(identifier.substr(0, end));
    if (end == std::string_view::npos) {
      return found;
    }
    identifier.remove_prefix(end + 1);
  }
}

bool isOneOf(const auto& known, std::string_view text) {
  return std::ranges::any_of(known, [&](std::string_view one) { return equalsIgnoringCase(text, one); });
}

bool isUpper(char letter) { return letter >= 'A' && letter <= 'Z'; }
bool isLower(char letter) { return letter >= 'a' && letter <= 'z'; }
bool isOfWord(char letter) {
  return isUpper(letter) || isLower(letter) || (letter >= '0' && letter <= '9') || letter == '-' || letter == '_';
}

/// "photoTool" is "Photo Tool", "VSCode" is "VS Code", "foo-bar" is "Foo Bar".
std::string spaced(std::string_view word) {
  std::string text;
  for (std::size_t at = 0; at < word.size(); ++at) {
    const char letter = word[at];
    if (letter == '-' || letter == '_') {
      text += ' ';
      continue;
    }
    const bool beginsWord =
        at > 0 && isUpper(letter) &&
        (isLower(word[at - 1]) || (isUpper(word[at - 1]) && at + 1 < word.size() && isLower(word[at + 1])));
    text += beginsWord ? " " : "";
    const bool isFirst = text.empty() || text.back() == ' ';
    text += isFirst && isLower(letter) ? static_cast<char>(letter - 'a' + 'A') : letter;
  }
  return text;
}

/// What two identifiers of one maker begin with, in lower case; empty where the identifier has no maker.
std::string maker(std::string_view identifier) {
  const std::string lowered = loweredASCII(identifier);
  const auto parts = words(lowered);
  if (parts.size() < 2) {
    return {};
  }
  const std::size_t twoParts = parts[0].size() + 1 + parts[1].size();
  if (!isOneOf(sharedHosts, std::string_view(lowered).substr(0, twoParts))) {
    return lowered.substr(0, twoParts);
  }
  return parts.size() < 4 ? std::string() : lowered.substr(0, twoParts + 1 + parts[2].size());
}

const RegisteredApp* appOfID(const std::vector<RegisteredApp>& apps, std::string_view id) {
  const std::string wanted = loweredASCII(id);
  const auto found =
      std::ranges::find_if(apps, [&](const RegisteredApp& app) { return equalsIgnoringCase(app.id, wanted); });
  return found == apps.end() ? nullptr : &*found;
}

const RegisteredApp* appNamed(const std::vector<RegisteredApp>& apps, std::string_view name) {
  const std::string wanted = caseFolded(name);
  const auto found = std::ranges::find_if(apps, [&](const RegisteredApp& app) {
    return caseFolded(app.name) == wanted ||
           std::ranges::any_of(app.dataNames, [&](const std::string& each) { return caseFolded(each) == wanted; });
  });
  return found == apps.end() ? nullptr : &*found;
}

/// A person may have an app in a place that no registry knows: what its own folder is called says nothing of that.
ItemOwner ownerOfName(const OwnerFolder& folder, const std::vector<RegisteredApp>& apps, const AppRegistry& registry) {
  const bool isIdentifier = folder.isSurelyIdentifier || isReverseHostName(folder.name);
  // Elsewhere an app that no registry knows may well be there: an archive that was unpacked, a program without an
  // entry.
  const bool canBeTold = folder.isSurelyIdentifier || folder.isInLibrary || !isIdentifier;
  ItemOwner owner{.name = isIdentifier ? readableName(folder.name) : displayText(folder.name),
                  .isInstalled = canBeTold ? std::optional(false) : std::nullopt,
                  .isIdentifier = isIdentifier};
  if (appNamed(apps, owner.name) != nullptr || appNamed(apps, folder.name) != nullptr) {
    owner.isInstalled = true;
    return owner;
  }
  if (isIdentifier && registry.isInstalled(folder.name)) {
    owner.isInstalled = true;
    return owner;
  }
  const std::string ownMaker = folder.isSurelyIdentifier ? std::string() : maker(folder.name);
  owner.isMakersHelper = !ownMaker.empty() &&
                         std::ranges::any_of(apps, [&](const RegisteredApp& app) { return maker(app.id) == ownMaker; });
  return owner;
}

}  // namespace

std::optional<ItemOwner> ItemOwner::of(std::string_view path, const Places& places, const AppRegistry& registry) {
  const auto folder = ownerFolder(path, places);
  if (!folder) {
    return std::nullopt;
  }
  if (folder->isOfSystem) {
    return ItemOwner{.name = "macOS", .isInstalled = true, .isIdentifier = true};
  }
  const std::vector<RegisteredApp> apps = registry.apps();
  if (const RegisteredApp* app = appOfID(apps, folder->name)) {
    return ItemOwner{.name = displayText(app->name), .isInstalled = true, .isIdentifier = true};
  }
  return ownerOfName(*folder, apps, registry);
}

std::string readableName(std::string_view identifier) {
  auto parts = words(identifier);
  std::erase(parts, std::string_view());
  if (parts.empty()) {
    return displayText(identifier);
  }
  // The end of the host's name and, where more follows, the maker.
  const bool isShared = parts.size() > 3 &&
                        isOneOf(sharedHosts, loweredASCII(identifier.substr(0, parts[0].size() + 1 + parts[1].size())));
  const std::size_t dropped = std::min<std::size_t>(parts.size() - 1, isShared ? 3 : 2);
  std::vector<std::string_view> shown(parts.begin() + static_cast<std::ptrdiff_t>(dropped), parts.end());
  if (dropped > 1 && std::ranges::all_of(shown, [](std::string_view word) { return isOneOf(plainWords, word); })) {
    shown.insert(shown.begin(), parts[dropped - 1]);
  }
  std::string name;
  for (const std::string_view word : shown) {
    name += (name.empty() ? "" : " ") + spaced(word);
  }
  return displayText(name);
}

bool isReverseHostName(std::string_view name) {
  const auto parts = words(name);
  const bool isOfHost = isOneOf(hostEnds, parts.front()) ||
                        (parts.front().size() == 2 && std::ranges::all_of(loweredASCII(parts.front()), isLower));
  return isOfHost && parts.size() >= 3 && std::ranges::all_of(parts, [](std::string_view part) {
           return !part.empty() && std::ranges::all_of(part, isOfWord);
         });
}

}  // namespace lumenary
