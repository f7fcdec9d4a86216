#include "cleanup/InstallerTarget.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

#include "base/Path.h"
#include "base/Text.h"
#include "base/Unicode.h"

namespace lumenary {
namespace {

constexpr std::array<std::string_view, 2> installers = {"dmg", "pkg"};
constexpr std::array<std::string_view, 2> linuxInstallers = {"deb", "rpm"};

constexpr std::string_view separators = " -_.+~()[]";
constexpr std::string_view digits = "0123456789";

/// What stands behind a name and says which build of the app it is.
constexpr std::array<std::string_view, 27> buildWords = {
    "all",       "amd64", "any",  "aarch64", "arm",    "arm64",   "armhf",   "beta",  "build",
    "darwin",    "i386",  "i686", "intel",   "latest", "linux",   "mac",     "macos", "noarch",
    "installer", "osx",   "rc",   "release", "setup",  "silicon", "version", "x64",   "universal"};

bool isDigit(char letter) { return digits.contains(letter); }

/// "2", "v2", "x86", "amd64".
bool isOfVersion(std::string_view word) {
  const bool isNumbered = word.size() > 1 && (word.front() == 'v' || word.front() == 'V') && isDigit(word[1]);
  return isDigit(word.front()) || isNumbered || equalsIgnoringCase(word, "x86") ||
         std::ranges::any_of(buildWords, [&](std::string_view build) { return equalsIgnoringCase(word, build); });
}

/// The words of the name that tell of the app, with what separates them.
std::string_view leadingWords(std::string_view name) {
  std::size_t end = 0;
  for (std::size_t at = 0; at < name.size();) {
    const std::size_t wordEnd = std::min(name.find_first_of(separators, at), name.size());
    const std::string_view word = name.substr(at, wordEnd - at);
    // A name may begin with a number as long as more than that stands in it.
    const bool isName = end == 0 && word.find_first_not_of(digits) != std::string_view::npos;
    if (!word.empty() && !isName && isOfVersion(word)) {
      break;
    }
    end = word.empty() ? end : wordEnd;
    at = wordEnd + 1;
  }
  return name.substr(0, end);
}

std::string_view upToDigit(std::string_view name) {
  const std::string_view cut = name.substr(0, std::min(name.find_first_of(digits), name.size()));
  const std::size_t last = cut.find_last_not_of(separators);
  return last == std::string_view::npos ? name : cut.substr(0, last + 1);
}

std::string_view nameOfInstaller(std::string_view fileName) {
  const std::string_view extension = pathExtension(fileName);
  const auto isOneOf = [&](const auto& known) {
    return std::ranges::any_of(known, [&](std::string_view one) { return equalsIgnoringCase(extension, one); });
  };
  if (!isOneOf(installers) && !isOneOf(linuxInstallers)) {
    return {};
  }
  return leadingWords(fileName.substr(0, fileName.size() - extension.size() - 1));
}

/// Letters and digits alone: "Google Chrome" and "google-chrome" are one.
std::string compared(std::string_view name) {
  std::string folded = caseFolded(name);
  std::erase_if(folded, [](char letter) { return separators.contains(letter); });
  return folded;
}

bool isKnownAs(const RegisteredApp& app, const std::string& name) {
  return compared(app.name) == name || compared(app.id) == name ||
         std::ranges::any_of(app.dataNames, [&](const std::string& each) { return compared(each) == name; });
}

bool isForAnotherSystem(std::string_view path) {
  const std::string_view extension = pathExtension(lastPathComponent(path));
  return equalsIgnoringCase(extension, "dmg") || equalsIgnoringCase(extension, "pkg");
}

}  // namespace

std::string installedName(std::string_view fileName) { return displayText(upToDigit(nameOfInstaller(fileName))); }

std::optional<InstallerTarget> installerTarget(std::string_view path, std::span<const RegisteredApp> apps) {
  const std::string_view whole = nameOfInstaller(lastPathComponent(path));
  const std::string_view cut = upToDigit(whole);
  if (cut.empty()) {
    return std::nullopt;
  }
  // The digit may belong to the name, and packages carry the channel that they come from.
  constexpr std::string_view channel = "-stable";
  for (const std::string_view name :
       {whole, cut, cut.ends_with(channel) ? cut.substr(0, cut.size() - channel.size()) : cut}) {
    const std::string wanted = compared(name);
    const auto app = std::ranges::find_if(apps, [&](const RegisteredApp& each) { return isKnownAs(each, wanted); });
    // An image that is just called like an app of Linux is of another system, or no installer at all.
    const bool isForeign =
        isForAnotherSystem(path) && name == lastPathComponent(path).substr(0, name.size()) &&
        name.size() + pathExtension(lastPathComponent(path)).size() + 1 == lastPathComponent(path).size();
    if (!wanted.empty() && app != apps.end() && (app->origin == AppOrigin::bundle || !isForeign)) {
      return InstallerTarget{.name = displayText(app->name), .isInstalled = true};
    }
  }
  return InstallerTarget{.name = displayText(cut), .isInstalled = false};
}

}  // namespace lumenary
