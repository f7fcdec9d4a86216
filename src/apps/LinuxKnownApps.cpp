#include <string>
#include <utility>
#include <vector>

#include "apps/KnownAppData.h"

namespace lumenary {
namespace {

using enum AppDataVerdict;
using Parts = std::vector<AppDataPart>;

/// What the product's table says of the same app.
const KnownAppData& sameAs(std::string_view bundleID) { return *KnownAppData::forApp(bundleID); }

KnownAppData chromiumBased(const std::string& name, std::set<std::string, std::less<>> ids,
                           std::vector<std::string> dataNames) {
  return {.bundleIDs = std::move(ids),
          .parts = {{"OptGuideOnDeviceModel", "Built-in AI model",
                     name + "'s on-device AI model. " + name +
                         " downloads it again unless you turn off on-device AI in its settings.",
                     caution},
                    {"Default/IndexedDB", "Website databases",
                     "Data websites store for offline use, like mail or documents. Removing it can sign you out of "
                     "sites or lose offline drafts.",
                     caution},
                    {"SODALanguagePacks", "Live Caption language packs",
                     "Speech models for Live Caption. Downloaded again if you use it.", safe}},
          .dataNames = std::move(dataNames)};
}

/// The folders of these carry a version, "PyCharm2025.1", inside one of their maker.
KnownAppData ideOfJetBrains(const std::string& id, std::string folder) {
  return {.bundleIDs = {"jetbrains-" + id, id}, .parts = {}, .dataNames = {std::move(folder)}};
}

std::vector<KnownAppData> makeLinuxCatalog() {
  std::vector<KnownAppData> rows = {
      // Browsers.
      {.bundleIDs = {"firefox", "firefox-esr", "org.mozilla.firefox"},
       .parts = {{".mozilla", "Profiles", "Your logins, bookmarks, history and settings in Firefox.", keep}},
       .homeFolders = {{".mozilla", {}}},
       .dataNames = {"mozilla"}},
      {.bundleIDs = {"google-chrome", "com.google.Chrome"},
       .parts = sameAs("com.google.Chrome").parts,
       .dataNames = {"google-chrome"}},
      chromiumBased("Chromium", {"chromium", "chromium-browser", "org.chromium.Chromium"}, {"chromium"}),
      chromiumBased("Brave", {"brave", "brave-browser", "com.brave.Browser"}, {"Brave-Browser"}),
      chromiumBased("Edge", {"microsoft-edge", "com.microsoft.Edge"}, {"microsoft-edge"}),

      // Editors.
      {.bundleIDs = {"code", "com.visualstudio.code"},
       .parts = sameAs("com.microsoft.VSCode").parts,
       .homeFolders = sameAs("com.microsoft.VSCode").homeFolders,
       .dataNames = {"Code"}},
      {.bundleIDs = {"cursor", "Cursor"},
       .parts = sameAs("com.todesktop.230313mzl4w4u92").parts,
       .homeFolders = sameAs("com.todesktop.230313mzl4w4u92").homeFolders,
       .dataNames = {"Cursor"}},

      // Chat.
      {.bundleIDs = {"slack", "com.slack.Slack"},
       .parts = sameAs("com.tinyspeck.slackmacgap").parts,
       .dataNames = {"Slack"}},
      {.bundleIDs = {"discord", "com.discordapp.Discord"},
       .parts = {{"IndexedDB", "Offline data", "Data Discord keeps for a faster start. Discord downloads it again.",
                  caution}},
       .dataNames = {"discord"}},
      {.bundleIDs = {"signal-desktop", "org.signal.Signal"},
       .parts = {{"attachments.noindex", "Message attachments",
                  "Pictures and files of your chats. They are on no server: removing them loses them.", keep},
                 {"sql", "Messages", "Your chats. They are on no server: removing them loses them.", keep},
                 {"drafts.noindex", "Attachments of drafts", "Files in messages you haven't sent yet.", caution}},
       .dataNames = {"Signal"}},
      {.bundleIDs = {"org.telegram.desktop", "telegramdesktop", "telegram-desktop"},
       .parts = {{"tdata/user_data", "Downloaded pictures and videos",
                  "Copies of what you saw in your chats. Telegram downloads them again.", caution},
                 {"data/TelegramDesktop/tdata/user_data", "Downloaded pictures and videos",
                  "Copies of what you saw in your chats. Telegram downloads them again.", caution}},
       .dataNames = {"TelegramDesktop"}},
      {.bundleIDs = {"element-desktop", "im.riot.Riot", "io.element.Element"},
       .parts = {{"EventStore", "Message search index",
                  "What Element knows of your messages, so that search is fast. It is made again, slowly.", caution},
                 {"IndexedDB", "Sessions and encryption keys",
                  "Without them, encrypted messages can't be read on this computer.", keep}},
       .dataNames = {"Element"}},

      // Containers.
      {.bundleIDs = {"docker-desktop"},
       .parts = {},
       .homeFolders = {{".docker",
                        {{"desktop/vms/0/data/Docker.raw", sameAs("com.docker.docker").parts.front().title,
                          sameAs("com.docker.docker").parts.front().explanation, keep}}}}},
      {.bundleIDs = {"podman-desktop", "io.podman_desktop.PodmanDesktop"},
       .parts = {{"storage", "Images, containers and volumes",
                  "Everything Podman stores. Free space with `podman system prune` instead of removing this.", keep},
                 {"podman", "Virtual machines of Podman", "The small computers that Podman runs containers in.", keep}},
       .dataNames = {"containers"}},
  };
  for (auto& [id, folder] : std::vector<std::pair<std::string, std::string>>{{"idea", "IntelliJIdea"},
                                                                             {"idea-ce", "IdeaIC"},
                                                                             {"intellij-idea-ultimate", "IntelliJIdea"},
                                                                             {"intellij-idea-community", "IdeaIC"},
                                                                             {"pycharm-ce", "PyCharmCE"},
                                                                             {"pycharm-community", "PyCharmCE"},
                                                                             {"pycharm", "PyCharm"},
                                                                             {"pycharm-professional", "PyCharm"},
                                                                             {"webstorm", "WebStorm"},
                                                                             {"phpstorm", "PhpStorm"},
                                                                             {"goland", "GoLand"},
                                                                             {"rubymine", "RubyMine"},
                                                                             {"datagrip", "DataGrip"}}) {
    rows.push_back(ideOfJetBrains(id, std::move(folder)));
  }
  return rows;
}

}  // namespace

std::span<const KnownAppData> KnownAppData::linuxCatalog() {
  static const std::vector<KnownAppData> rows = makeLinuxCatalog();
  return rows;
}

}  // namespace lumenary
