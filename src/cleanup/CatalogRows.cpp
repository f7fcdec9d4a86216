#include "cleanup/CatalogRows.h"

#include <utility>
#include <vector>

namespace lumenary {

namespace rules {

using enum CleanupCatalog::Verdict;
using Rule = CleanupCatalog::Rule;

Rule browser(const std::string& name, const std::string& maker) {
  return {name + " browser cache", maker, "Copies of websites " + name + " saved so pages load faster.", rebuildable,
          "Sites download again; first visits are a bit slower. Logins stay."};
}

Rule automationBrowser(const std::string& name) {
  return {name + " browsers", name + ", used by AI agents and test tools",
          "Private copies of Chrome and other browsers for automated browsing.", rebuildable,
          "Downloaded again the next time a tool needs one, which can take a few minutes."};
}

Rule appLogs(const std::string& name) {
  return {name + " logs", name, "Diagnostic logs " + name + " writes as it runs.", rebuildable,
          "Nothing you'd notice; " + name + " starts new ones."};
}

Rule electronCache(const std::string& name) {
  return {name + " cache", name, "Temporary files " + name + " keeps to load faster.", rebuildable,
          name + " rebuilds it; nothing you made is lost."};
}

Rule agentHistory(const std::string& name) {
  return {name + " history", name, "Saved conversations and working notes from " + name + " sessions.", review,
          "You can't resume or look back at those sessions."};
}

Rule packageCache(std::string title, std::string madeBy, std::string what) {
  return {std::move(title), std::move(madeBy), std::move(what), rebuildable,
          "Downloaded again the next time a project needs it."};
}

Rule appCache(const std::string& name) {
  return {name.empty() ? "App cache" : name + " cache", name.empty() ? "An app" : name,
          "Temporary files an app keeps to start or load faster.", rebuildable,
          "The app rebuilds it as you use it; the first launch may be a little slower."};
}

}  // namespace rules

std::span<const CatalogRow> homeRules() {
  using namespace rules;
  static const std::vector<CatalogRow> rows = {
      {"library/caches/google/chrome", browser("Chrome", "Google Chrome")},
      {"library/caches/com.google.chrome", browser("Chrome", "Google Chrome")},
      {"library/caches/com.apple.safari", browser("Safari", "Safari")},
      {"library/caches/microsoft edge", browser("Edge", "Microsoft Edge")},
      {"library/caches/bravesoftware", browser("Brave", "Brave")},
      {"library/caches/company.thebrowser.browser", browser("Arc", "Arc")},
      {"library/caches/firefox", browser("Firefox", "Firefox")},
      {"library/developer/xcode/deriveddata",
       {"Xcode build files", "Xcode", "Intermediate files from building apps in Xcode.", rebuildable,
        "Xcode rebuilds them on the next build, which takes a little longer."}},
      {"library/developer/xcode/ios devicesupport",
       {"iPhone debugging support", "Xcode", "Symbols Xcode copied from iPhones and iPads you debugged on.",
        rebuildable, "Xcode copies them again the next time you connect that device."}},
      {"library/developer/xcode/archives",
       {"Xcode app archives", "Xcode", "Builds you archived for the App Store or TestFlight.", review,
        "You lose the exact build and its crash-report symbols.", "Keep the archives of versions people still use."}},
      {"library/developer/coresimulator/caches",
       {"Simulator caches", "Xcode Simulator", "Temporary files for iOS simulators.", rebuildable,
        "Rebuilt the next time a simulator starts."}},
      {"library/developer/coresimulator/devices",
       {"Simulator devices", "Xcode Simulator", "Virtual iPhones and iPads, including apps and data you put on them.",
        review, "Those simulators and their app data are gone.",
        "Run xcrun simctl delete unavailable to remove only old, unusable ones."}},
      {"library/android/sdk/system-images",
       {"Android system images", "Android Studio", "Operating-system images for Android emulators.", review,
        "Download them again in Android Studio's SDK Manager."}},
      {".android/avd",
       {"Android emulators", "Android Studio", "Virtual Android devices and everything installed on them.", review,
        "Those emulators and their data are gone.", "Delete unused ones in Android Studio's Device Manager."}},
      {".gradle/caches",
       packageCache("Gradle cache", "Gradle", "Downloaded build libraries for Android and Java projects.")},
      {".gradle/wrapper", packageCache("Gradle versions", "Gradle", "Copies of Gradle downloaded by projects.")},
      {".npm/_cacache", packageCache("npm cache", "npm", "Downloaded JavaScript packages.")},
      {".npm/_npx",
       {"npx downloads", "npx, often AI tools and their MCP servers",
        "Copies of tools fetched the first time something ran them with npx.", rebuildable,
        "Downloaded again on the next run. A tool running right now may need a restart."}},
      {".pub-cache", packageCache("Flutter packages", "Dart and Flutter", "Downloaded Dart and Flutter packages.")},
      {"library/caches/yarn", packageCache("Yarn cache", "Yarn", "Downloaded JavaScript packages.")},
      {"library/pnpm/store", packageCache("pnpm store", "pnpm", "Shared JavaScript packages.")},
      {".pnpm-store", packageCache("pnpm store", "pnpm", "Shared JavaScript packages.")},
      {".bun/install/cache", packageCache("Bun cache", "Bun", "Downloaded JavaScript packages.")},
      {"library/caches/pip", packageCache("pip cache", "Python pip", "Downloaded Python packages.")},
      {".cache/pip", packageCache("pip cache", "Python pip", "Downloaded Python packages.")},
      {".cache/uv", packageCache("uv cache", "Python uv", "Downloaded Python packages.")},
      {"library/caches/pypoetry", packageCache("Poetry cache", "Python Poetry", "Downloaded Python packages.")},
      {"miniconda3/pkgs", packageCache("Conda packages", "Conda", "Downloaded package archives.")},
      {"anaconda3/pkgs", packageCache("Conda packages", "Conda", "Downloaded package archives.")},
      {"library/caches/homebrew",
       {"Homebrew downloads", "Homebrew", "Installers Homebrew downloaded for things it already installed.",
        rebuildable, "Nothing breaks; Homebrew downloads again if needed.",
        "brew cleanup does the same from Terminal."}},
      {".cargo/registry", packageCache("Rust crates cache", "Cargo", "Downloaded Rust libraries.")},
      {".cargo/git", packageCache("Cargo Git cache", "Cargo", "Git dependencies downloaded for Rust projects.")},
      {"go/pkg/mod", packageCache("Go modules cache", "Go", "Downloaded Go libraries.")},
      {"library/caches/cocoapods", packageCache("CocoaPods cache", "CocoaPods", "Downloaded iOS libraries.")},
      {"library/containers/com.docker.docker",
       {"Docker disk", "Docker Desktop", "One big file holding your Docker images, containers and volumes.", review,
        "All images, containers and volumes are lost, including databases.",
        "Run docker system prune, or use Troubleshoot → Clean / Purge data in Docker."}},
      {".ollama/models",
       {"Ollama AI models", "Ollama", "Local AI models you pulled.", review,
        "Pull a model again with ollama pull; they're often several GB.",
        "Run ollama rm with a model name to remove just the ones you don't use."}},
      {".cache/huggingface",
       {"Hugging Face models", "Hugging Face tools", "AI models and datasets downloaded by Python tools.", review,
        "They download again the next time a script uses them."}},
      {"library/caches/ms-playwright", automationBrowser("Playwright")},
      {".cache/ms-playwright", automationBrowser("Playwright")},
      {".cache/puppeteer", automationBrowser("Puppeteer")},
      {"library/application support/cursor/user/globalstorage/state.vscdb",
       {"Cursor settings and chats", "Cursor",
        "The one database holding Cursor's settings, state and chat history. It grows with use.", keep,
        "Cursor loses its chats and settings, so never remove it from outside Cursor."}},
      {"library/application support/cursor/user/globalstorage/anysphere.cursor-agent-worker",
       {"Cursor agent data", "Cursor", "Working files from Cursor's background agents.", review,
        "Earlier agent runs may no longer open. Close Cursor first."}},
      {"library/application support/cursor/user/workspacestorage",
       {"Cursor project history", "Cursor", "Chats and editor state saved for each project you opened in Cursor.",
        review, "Those projects lose their chat history in Cursor."}},
      {"library/application support/cursor/logs", appLogs("Cursor")},
      {"library/application support/code/logs", appLogs("VS Code")},
      {"library/application support/claude/logs", appLogs("Claude")},
      {"library/application support/antigravity/cache", electronCache("Antigravity")},
      {"library/application support/antigravity/cacheddata", electronCache("Antigravity")},
      {"library/application support/antigravity/code cache", electronCache("Antigravity")},
      {"library/application support/antigravity/logs", appLogs("Antigravity")},
      {"library/application support/windsurf/cache", electronCache("Windsurf")},
      {"library/application support/windsurf/cacheddata", electronCache("Windsurf")},
      {"library/application support/windsurf/logs", appLogs("Windsurf")},
      {".codex/sessions", agentHistory("Codex")},
      {".codex/generated_images",
       {"Codex generated images", "Codex", "Images Codex made for you. They aren't saved anywhere else.", review,
        "Those images are gone unless you copied them elsewhere."}},
      {".gemini/antigravity/conversations", agentHistory("Antigravity")},
      {".gemini/antigravity/brain", agentHistory("Antigravity")},
      {".gemini/antigravity/browser_recordings",
       {"Antigravity browser recordings", "Antigravity", "Recordings of the browser sessions its agent ran.", review,
        "You can't replay those agent sessions."}},
      {".gemini/antigravity-backup",
       {"Antigravity backup", "Antigravity", "A backup copy of Antigravity's data.", review,
        "You can't go back to that copy."}},
      {"library/application support/claude/vm_bundles",
       {"Claude sandbox", "Claude", "The small virtual machine Claude's desktop app uses to run code.", review,
        "Claude downloads it again (several GB) and its code features wait until it has."}},
      {"library/application support/claude/cache", electronCache("Claude")},
      {"library/application support/claude/code cache", electronCache("Claude")},
      {"library/caches/com.anthropic.claudefordesktop", electronCache("Claude")},
      {".claude/projects",
       {"Claude Code history", "Claude Code",
        "Saved conversations and file snapshots from Claude Code sessions, per project.", review,
        "You can't resume or look back at those sessions.", "Delete folders for projects you've finished."}},
      {"library/application support/cursor/cache", electronCache("Cursor")},
      {"library/application support/cursor/cacheddata", electronCache("Cursor")},
      {"library/application support/code/cache", electronCache("VS Code")},
      {"library/application support/code/cacheddata", electronCache("VS Code")},
      {"library/application support/code/cachedextensionvsixs", electronCache("VS Code")},
      {"library/application support/spotify/persistentcache",
       {"Spotify offline cache", "Spotify", "Music Spotify keeps so songs start instantly.", rebuildable,
        "Songs stream again; downloaded playlists may need re-downloading."}},
      {"library/application support/slack/cache", electronCache("Slack")},
      {"library/application support/slack/service worker", electronCache("Slack")},
      {"library/application support/discord/cache", electronCache("Discord")},
      {"library/application support/microsoft/teams", electronCache("Teams")},
      {"library/group containers/group.net.whatsapp.whatsapp.shared/message/media",
       {"WhatsApp photos and videos", "WhatsApp", "Media from your chats saved on this Mac.", review,
        "They're gone from this Mac; they may still be on your phone.",
        "In WhatsApp, use Settings → Storage to clear big chats."}},
      {"library/messages/attachments",
       {"Messages attachments", "Messages", "Photos, videos and files from your conversations.", review,
        "Remove them inside Messages so conversations stay consistent.",
        "Messages → Settings → Keep messages: 1 year, or delete big attachments in a chat's Info."}},
      {"library/application support/mobilesync/backup",
       {"iPhone and iPad backups", "Finder", "Full backups of your devices.", review,
        "You can't restore a device from that backup.",
        "Finder → your device → Manage Backups, and delete old devices' backups."}},
      {"library/containers/com.apple.mail/data/library/mail downloads",
       {"Mail attachment copies", "Mail", "Copies of attachments you opened from emails.", rebuildable,
        "The attachments stay in the emails; Mail copies them again when opened."}},
      {"pictures/photos library.photoslibrary",
       {"Photos library", "Photos", "All your photos and videos.", keep, "Never remove this from outside Photos.",
        "Photos → Settings → iCloud → Optimise Mac Storage keeps small versions here."}},
      {".trash",
       {"Trash", "You", "Things you already deleted. They still use space.", keep,
        "Empty the Trash to get the space back.", "Empty Trash in Finder, or with the Empty Trash button here."}},
  };
  return rows;
}

}  // namespace lumenary
