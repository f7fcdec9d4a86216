#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/FileURL.h"
#include "platform/FileReader.h"

namespace lumenary {

/// A program that starts on its own, told by the file that makes it start.
struct BackgroundItem {
  enum class Domain : std::uint8_t { user, allUsers, system };

  FileURL url{};  ///< of that file; no two items share it
  std::string label{};
  Domain domain = Domain::user;
  std::optional<std::string> program{};  ///< as it is written there
  bool programExists = true;             ///< false only where `isProgramGone` told so
  std::string owner{};                   ///< for people
  std::optional<FileURL> ownerAppURL{};  ///< the app that contains the program
  std::string schedule{};                ///< for people: "Starts when you log in, kept running"
  bool isDisabled = false;
  std::optional<std::int64_t> pid{};  ///< of the running program

  /// The program that it starts is gone.
  bool isBroken() const { return program.has_value() && !programExists; }
  bool operator==(const BackgroundItem&) const = default;
};

/// "Only you", "All users", "System".
std::string_view rawValue(BackgroundItem::Domain domain);

/// What the item is doing, in a word or a sentence.
std::string_view stateText(const BackgroundItem& item);

/// True where the program is absolute and surely nothing stands there; what may not be looked at isn't called gone.
bool isProgramGone(const FileReader& reader, std::string_view program);

/// The names of installed apps by their identifiers.
using InstalledAppNames = std::map<std::string, std::string>;

/// The app by whose name a label goes: its identifier, or the longest one that the label begins with, dot included.
/// "Homebrew · x" for its services. None for any other label.
std::optional<std::string> knownBackgroundOwner(std::string_view label, const InstalledAppNames& installedApps);
/// What a label itself says: "com.example.agent" is of "Example".
std::string backgroundOwnerOfLabel(std::string_view label);

/// "runs every 5 min", from seconds; whole minutes below an hour, whole hours from there, at least 1.
std::string intervalPhrase(std::int64_t seconds);
/// The phrases as one sentence without a full stop; what to say where there are none.
std::string scheduleText(const std::vector<std::string>& phrases);

namespace schedulePhrase {
constexpr auto atLogin = "Starts when you log in";
constexpr auto keptRunning = "kept running";
constexpr auto onSchedule = "runs on a schedule";
constexpr auto onFileChange = "runs when files change";
constexpr auto onRequest = "starts when another program asks";
}  // namespace schedulePhrase

/// Broken ones first, then by owner without regard to case; equal ones keep their order.
std::vector<BackgroundItem> sortedBackgroundItems(std::vector<BackgroundItem> items);

/// The sentences about background items, safe to be shown whatever a label holds.
namespace backgroundText {
constexpr auto switchLabel = "Run in background";
constexpr auto switchHelp = "Turn off: stops it until you turn it back on";
constexpr auto notSwitchable =
    "Installed for every user, so it needs your password. Turn it off in System Settings › Login Items.";
/// The same on Linux, where no settings of the desktop do that.
constexpr auto notSwitchableOnLinux =
    "Installed for every user, so it needs an administrator. Turn it off with systemctl.";
/// Of a unit of the person's own that can't be switched.
constexpr auto linkNotSwitchable = "Its file is a link to one that is kept elsewhere. Turn it off with systemctl.";
constexpr auto empty = "Nothing starts in the background.";
constexpr auto loading = "Looking for programs that start on their own…";
std::string noMatch(std::string_view query);
std::string removalQuestion(const BackgroundItem& item);
std::string removed(const BackgroundItem& item);
std::string removalFailed(const BackgroundItem& item, std::string_view error);
}  // namespace backgroundText

}  // namespace lumenary
