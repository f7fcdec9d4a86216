#include "cleanup/ItemPresentation.h"

#include <algorithm>
#include <array>
#include <optional>

#include "base/Path.h"
#include "base/Text.h"

namespace lumenary {
namespace {

/// Things that are told by a piece of their path, in lower case.
struct Place {
  static constexpr std::string_view claudeMachine = "/claude/vm_bundles/";
  static constexpr std::string_view ollamaBlobs = "/.ollama/models/blobs/";
  static constexpr std::string_view huggingFace = "/.cache/huggingface/";
  static constexpr std::string_view androidImages = "/library/android/sdk/system-images/";
  static constexpr std::string_view postgres = "/opt/homebrew/var/postgresql";
  static constexpr std::string_view whatsApp = "group.net.whatsapp";
  static constexpr std::string_view codex = "/.codex/";
  static constexpr std::string_view androidDevices = "/.android/avd/";
  static constexpr std::string_view libraryCaches = "/library/caches/";
  static constexpr std::string_view appSupport = "/library/application support/";
};

constexpr auto archiveExtensions = std::to_array<std::string_view>({"zip", "rar", "7z", "tar", "gz"});
constexpr auto videoExtensions = std::to_array<std::string_view>({"mov", "mp4", "mkv"});
constexpr auto macInstallerExtensions = std::to_array<std::string_view>({"dmg", "pkg"});

/// A path in lower case that is asked what it holds.
struct Lowered {
  explicit Lowered(const FileEntry& entry) : path(loweredASCII(entry.url.path)), name(loweredASCII(entry.name)) {}

  bool holds(std::string_view text) const { return path.contains(text); }
  bool isDocker() const { return holds("/.docker/") || holds("/com.docker"); }
  bool isDockerLayer() const { return isDocker() || name.starts_with("sha256-"); }
  std::string_view extension() const { return pathExtension(name); }

  std::string path;
  std::string name;
};

template <class Names>
bool isOneOf(std::string_view text, const Names& names) {
  return std::ranges::find(names, text) != names.end();
}

/// Its first 18 characters and an ellipsis.
std::string shortened(std::string_view name) {
  constexpr std::size_t characters = 18;
  std::size_t end = 0;
  for (std::size_t count = 0; count < characters && end < name.size(); ++count) {
    end += std::max<std::size_t>(1, utf8SequenceLength(name.substr(end)));
  }
  return std::string(name.substr(0, end)) + "…";
}

std::string huggingFaceName(const FileEntry& entry, std::string_view lowered) {
  constexpr std::string_view folder = "/models--";
  const std::size_t at = lowered.find(folder);
  if (at == std::string_view::npos) {
    return "Hugging Face model cache";
  }
  // In lower case a path is as long as before.
  const std::string_view rest = std::string_view(entry.url.path).substr(at + folder.size());
  return "Hugging Face model cache — " + std::string(rest.substr(0, rest.find('/')));
}

std::string_view androidDeviceName(std::string_view name) {
  if (name.contains("userdata")) {
    return "Android emulator user data";
  }
  if (name == "rootfs.img") {
    return "Android emulator system image";
  }
  return name == "ram.bin" ? "Android emulator saved memory" : "Android emulator file";
}

std::optional<std::string_view> nameByPlace(const Lowered& lowered) {
  if (lowered.holds(Place::androidImages)) {
    return "Android SDK system image";
  }
  if (lowered.holds(Place::postgres)) {
    return "PostgreSQL database storage";
  }
  if (lowered.holds(Place::whatsApp) && lowered.extension() == "zip") {
    return "WhatsApp media archive";
  }
  if (lowered.holds(Place::codex) && lowered.name.contains("thread_history")) {
    return "Codex conversation history";
  }
  if (lowered.holds(Place::androidDevices)) {
    return androidDeviceName(lowered.name);
  }
  if (lowered.isDockerLayer()) {
    return "Docker data layer";
  }
  if (lowered.name == "weights.bin") {
    return lowered.holds("/google/chrome/") ? "Chrome on-device AI model" : "AI model data";
  }
  if (lowered.name == "state.vscdb") {
    return lowered.holds("/cursor/") ? "Cursor workspace database" : "App state database";
  }
  return std::nullopt;
}

enum class FileType { installer, archive, video, other };

FileType typeOf(const Lowered& lowered) {
  const std::string_view extension = lowered.extension();
  if (isOneOf(extension, macInstallerExtensions)) {
    return FileType::installer;
  }
  if (isOneOf(extension, archiveExtensions)) {
    return FileType::archive;
  }
  return isOneOf(extension, videoExtensions) ? FileType::video : FileType::other;
}

}  // namespace

std::string friendlyName(const FileEntry& entry) {
  const Lowered lowered(entry);
  if (lowered.holds(Place::claudeMachine)) {
    return "Claude virtual machine disk";
  }
  if (lowered.holds(Place::ollamaBlobs)) {
    return "Ollama AI model file";
  }
  if (lowered.holds(Place::huggingFace)) {
    return huggingFaceName(entry, lowered.path);
  }
  if (const auto name = nameByPlace(lowered)) {
    return std::string(*name);
  }
  switch (typeOf(lowered)) {
    case FileType::installer:
      return "Installer — " + entry.name;
    case FileType::archive:
      return "Archive — " + entry.name;
    case FileType::video:
      return "Video — " + entry.name;
    case FileType::other:
      break;
  }
  return entry.name;
}

std::string friendlyLocation(const FileEntry& entry, std::string_view home) {
  const Lowered lowered(entry);
  if (lowered.holds(Place::claudeMachine)) {
    return "Claude · Local virtual machine data · " + entry.name;
  }
  if (lowered.holds(Place::ollamaBlobs)) {
    return "Ollama · Downloaded local AI model · " + shortened(entry.name);
  }
  if (lowered.holds(Place::huggingFace)) {
    return "Hugging Face · Downloaded model cache";
  }
  if (lowered.holds(Place::postgres)) {
    return "PostgreSQL · Local database data";
  }
  if (lowered.holds(Place::whatsApp)) {
    return "WhatsApp · Local media storage · " + entry.name;
  }
  if (lowered.holds(Place::codex)) {
    return "Codex · Local conversation data · " + entry.name;
  }
  if (lowered.holds(Place::androidDevices)) {
    return "Android Studio · Virtual device storage · " + entry.name;
  }
  if (lowered.isDocker()) {
    return "Docker Desktop · Managed application data · " + entry.name;
  }
  if (lowered.holds(Place::libraryCaches)) {
    return "Temporary app data · " + entry.name;
  }
  if (lowered.holds(Place::appSupport)) {
    return "Application support · " + entry.name;
  }
  const std::string_view path = entry.url.path;
  if (path.size() > home.size() + 1 && isSameOrInside(path, home)) {
    return "~/" + std::string(path.substr(home.size() + 1));
  }
  return std::string(parentPath(path));
}

std::string_view friendlySymbol(const FileEntry& entry) {
  const Lowered lowered(entry);
  if (lowered.holds(Place::claudeMachine) || lowered.holds(Place::androidDevices) || lowered.isDockerLayer()) {
    return "computer";
  }
  if (lowered.holds(Place::ollamaBlobs) || lowered.holds(Place::huggingFace) || lowered.name == "weights.bin") {
    return "applications-science";
  }
  if (lowered.holds(Place::postgres) || lowered.name == "state.vscdb") {
    return "drive-harddisk";
  }
  if (entry.kind == FileEntry::Kind::directory) {
    return "folder";
  }
  switch (typeOf(lowered)) {
    case FileType::installer:
    case FileType::archive:
      return "package-x-generic";
    case FileType::video:
      return "video-x-generic";
    case FileType::other:
      break;
  }
  return "text-x-generic";
}

std::string deletionImpact(const FileEntry& entry, const StorageTrashGate& gate) {
  const Lowered lowered(entry);
  const std::string path = standardise(entry.url.path);
  if (entry.kind == FileEntry::Kind::directory && gate.isRegenerableRoot(path)) {
    return "Safe to remove. Apps and tools rebuild this when needed, so the first launch or build afterwards may be "
           "slower. Quit them first.";
  }
  if (lowered.holds(Place::claudeMachine)) {
    return "Claude manages this virtual machine. Removing one internal file could stop Claude features from working.";
  }
  if (lowered.holds(Place::ollamaBlobs)) {
    return "This is part of an Ollama model. Remove the model through Ollama so its files stay consistent.";
  }
  if (lowered.holds(Place::huggingFace)) {
    return "Safe to redownload later. The related AI model may take time and bandwidth to download again.";
  }
  if (lowered.holds(Place::postgres)) {
    return "This contains live database data. Remove databases through PostgreSQL, not as individual files.";
  }
  if (lowered.holds(Place::whatsApp)) {
    return "May remove locally stored WhatsApp media. Confirm the media exists elsewhere before deleting.";
  }
  if (lowered.holds(Place::codex)) {
    return "Removes local Codex history or state.";
  }
  if (lowered.holds(Place::androidImages)) {
    return "Android Studio needs this image for matching emulators. Uninstall it through SDK Manager.";
  }
  if (lowered.holds(Place::androidDevices)) {
    return "May reset or break an Android virtual device. Close Android Studio first.";
  }
  if (lowered.isDockerLayer()) {
    return "Managed by Docker Desktop. Remove images and containers from Docker instead.";
  }
  if (lowered.holds(Place::libraryCaches) || lowered.holds("/.cache/")) {
    return "Usually temporary. Close the related app before removing it.";
  }
  if (gate.isInstalledApp(path)) {
    return "Uninstalls this app. Its settings stay in Library until you remove them too.";
  }
  if (lowered.holds("/library/")) {
    return "App data. Removing it can reset the app or lose its local data. Quit the app first.";
  }
  if (entry.category == StorageCategory::personal) {
    return "This is one of your files. Open or reveal it if you are unsure.";
  }
  return gate.canMoveToTrash(entry) ? "Look at the file before moving it to Trash."
                                    : "This location is protected from direct removal.";
}

}  // namespace lumenary
