#include "apps/BackgroundItem.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/StableSort.h"
#include "base/Text.h"
#include "base/Unicode.h"

namespace lumenary {
namespace {

constexpr std::string_view homebrewPrefix = "homebrew.mxcl.";

std::string withFirstLetterRaised(std::string_view text) {
  std::string raised(text);
  if (!raised.empty() && raised.front() >= 'a' && raised.front() <= 'z') {
    raised.front() = static_cast<char>(raised.front() - 'a' + 'A');
  }
  return raised;
}

}  // namespace

std::string_view rawValue(BackgroundItem::Domain domain) {
  constexpr std::array<std::string_view, 3> texts = {"Only you", "All users", "System"};
  return texts.at(static_cast<std::size_t>(domain));
}

std::string_view stateText(const BackgroundItem& item) {
  if (item.isBroken()) {
    return "Broken: the program it starts is gone";
  }
  if (item.isDisabled) {
    return "Turned off";
  }
  return item.pid ? "Running" : "Waiting";
}

bool isProgramGone(const FileReader& reader, std::string_view program) {
  if (!program.starts_with('/')) {
    return false;
  }
  const auto found = reader.attributes(program, LinkPolicy::follow);
  return !found && (found.error().isMissing() || found.error().isLink());
}

std::optional<std::string> knownBackgroundOwner(std::string_view label, const InstalledAppNames& installedApps) {
  if (const auto exact = installedApps.find(std::string(label)); exact != installedApps.end()) {
    return exact->second;
  }
  if (label.starts_with(homebrewPrefix)) {
    return "Homebrew · " + std::string(label.substr(homebrewPrefix.size()));
  }
  const std::string lowered = caseFolded(label);
  std::size_t longest = 0;
  std::optional<std::string> owner;
  for (const auto& [identifier, name] : installedApps) {
    const std::string start = caseFolded(identifier) + ".";
    if (start.size() > longest && lowered.starts_with(start)) {
      longest = start.size();
      owner = name;
    }
  }
  return owner;
}

std::string backgroundOwnerOfLabel(std::string_view label) {
  std::string_view second;
  int pieces = 0;
  for (std::string_view rest = label; !rest.empty() && pieces < 2;) {
    const std::size_t end = std::min(rest.find('.'), rest.size());
    if (end > 0) {
      ++pieces;
      second = rest.substr(0, end);
    }
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return pieces == 2 ? withFirstLetterRaised(second) : std::string(label);
}

std::string intervalPhrase(std::int64_t seconds) {
  if (seconds >= 3600) {
    return "runs every " + std::to_string(seconds / 3600) + " h";
  }
  return "runs every " + std::to_string(std::max<std::int64_t>(seconds / 60, 1)) + " min";
}

std::string scheduleText(const std::vector<std::string>& phrases) {
  std::string text;
  for (const std::string& phrase : phrases) {
    text += text.empty() ? withFirstLetterRaised(phrase) : ", " + phrase;
  }
  return text.empty() ? "Starts only when asked" : text;
}

std::vector<BackgroundItem> sortedBackgroundItems(std::vector<BackgroundItem> items) {
  return stableSorted(std::move(items),
                      [](const BackgroundItem& item) { return std::pair(!item.isBroken(), caseFolded(item.owner)); });
}

namespace backgroundText {

std::string noMatch(std::string_view query) { return "No background items match “" + displayText(query) + "”"; }

std::string removalQuestion(const BackgroundItem& item) {
  return displayText(item.label) +
         " stops now and won't start again. Its file goes to the Trash, so you can put it back.";
}

std::string removed(const BackgroundItem& item) {
  return "Removed " + displayText(item.owner) + "'s background item. It's in the Trash if you need it back.";
}

std::string removalFailed(const BackgroundItem& item, std::string_view error) {
  return "Couldn't remove " + displayText(item.label) + ". Check that you have permission, then try again. (" +
         displayText(error) + ")";
}

}  // namespace backgroundText
}  // namespace lumenary
