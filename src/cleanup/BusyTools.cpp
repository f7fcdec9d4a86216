#include "cleanup/BusyTools.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/Path.h"
#include "base/Text.h"

namespace lumenary {
namespace {

const std::vector<std::string> gradleDaemons = {"GradleDaemon", "GradleWorkerMain", "KotlinCompileDaemon"};

/// Apps that have a cache and logs.
constexpr auto appPairs = std::to_array<std::pair<std::string_view, std::string_view>>({
    {"Claude", "Claude"},
    {"Cursor", "Cursor"},
    {"VS Code", "Visual Studio Code"},
    {"Antigravity", "Antigravity"},
    {"Windsurf", "Windsurf"},
});

std::vector<InUseMarker> makeInUseMarkers() {
  std::vector<InUseMarker> rows = {
      {"Gradle cache", gradleDaemons},
      {"Gradle versions", gradleDaemons},
      {"npx downloads", {"/_npx/"}},
      {"Playwright browsers", {"/ms-playwright/"}},
      {"Puppeteer browsers", {"/.cache/puppeteer/"}},
      {"Chrome browser cache", {"/Google Chrome.app/"}},
      {"Google cache", {"/Google Chrome.app/"}},
      {"Codex-Runtimes cache", {"/Codex.app/"}},
      {"Safari browser cache", {"/Safari.app/"}},
      {"Edge browser cache", {"/Microsoft Edge.app/"}},
      {"Brave browser cache", {"/Brave Browser.app/"}},
      {"Arc browser cache", {"/Arc.app/"}},
      {"Firefox browser cache", {"/Firefox.app/"}},
      {"Slack cache", {"/Slack.app/"}},
      {"Discord cache", {"/Discord.app/"}},
      {"Teams cache", {"/Microsoft Teams.app/"}},
  };
  for (const auto& [name, app] : appPairs) {
    const std::string marker = std::string("/").append(app).append(".app/");
    rows.push_back({std::string(name) + " cache", {marker}});
    rows.push_back({std::string(name) + " logs", {marker}});
  }
  return rows;
}

std::vector<InUseMarker> makeLinuxInUseMarkers() {
  return {
      {"Chrome browser cache", {"/google/chrome/", "/google-chrome", "com.google.Chrome"}},
      {"Chromium browser cache", {"/chromium/", "/chromium-browser/", "/bin/chromium", "org.chromium.Chromium"}},
      {"Brave browser cache", {"/brave.com/brave", "/brave-browser", "com.brave.Browser"}},
      {"Edge browser cache", {"/microsoft/msedge", "/microsoft-edge", "com.microsoft.Edge"}},
      {"Vivaldi browser cache", {"/vivaldi/", "/vivaldi-bin", "com.vivaldi.Vivaldi"}},
      {"Opera browser cache", {"/x86_64-linux-gnu/opera", "/bin/opera", "com.opera.Opera"}},
      {"Firefox browser cache", {"/firefox/", "/firefox-esr", "/bin/firefox", "org.mozilla.firefox"}},
      {"Thunderbird cache", {"/thunderbird/", "/bin/thunderbird", "org.mozilla.Thunderbird"}},
      {"VS Code cache", {"/share/code/", "/code/code", "/codium", "/bin/code", "com.visualstudio.code"}},
      {"Cursor cache", {"/cursor/cursor", "/Cursor/cursor", "/share/cursor/", "cursor.AppImage", "/Cursor-"}},
      {"Windsurf cache", {"/windsurf/windsurf", "/share/windsurf/", "/Windsurf/"}},
      {"Antigravity cache", {"/antigravity/antigravity", "/share/antigravity/", "/Antigravity/"}},
      {"Claude cache", {"/claude-desktop/", "/Claude/"}},
      {"Slack cache", {"/slack/slack", "/lib/slack/", "com.slack.Slack"}},
      {"Discord cache", {"/discord/Discord", "/Discord/Discord", "/share/discord/", "com.discordapp.Discord"}},
      {"Teams cache", {"/teams/teams", "/teams-for-linux", "/share/teams/"}},
      {"Spotify offline cache", {"/spotify/spotify", "/share/spotify/", "com.spotify.Client"}},
      {"Cypress browsers", {"/.cache/Cypress/"}},
      {"Shader cache", {"/steamapps/common/", "/ubuntu12_32/steam"}},
      {"Go build cache", {"/go/bin/go ", "/bin/go build", "/go-build"}},
      {"Bazel cache", {"A-server.jar", "bazel(", "/.cache/bazel/"}},
      {"Compiler cache", {"/sccache", "SCCACHE_"}},
      {"Rust crates cache", {"/bin/cargo ", "/bin/cargo\n"}},
      {"Cargo Git cache", {"/bin/cargo ", "/bin/cargo\n"}},
  };
}

void addBusy(std::string_view processArguments, std::span<const InUseMarker> rows,
             std::set<std::string, std::less<>>& titles) {
  for (const InUseMarker& row : rows) {
    const auto isRunning = [&](const std::string& marker) { return processArguments.contains(marker); };
    if (!titles.contains(row.title) && std::ranges::any_of(row.markers, isRunning)) {
      titles.insert(row.title);
    }
  }
}

/// In lower case, without what an app's name and its program's name are separated by differently.
std::string plainName(std::string_view name) {
  std::string plain = loweredASCII(name);
  std::erase_if(plain, [](char byte) { return byte == ' ' || byte == '-' || byte == '_' || byte == '.'; });
  return plain;
}

/// The names of the files that run, as `plainName`.
std::set<std::string, std::less<>> programNames(std::string_view processArguments) {
  std::set<std::string, std::less<>> names;
  while (!processArguments.empty()) {
    const std::size_t end = std::min(processArguments.find('\n'), processArguments.size());
    const std::string_view line = processArguments.substr(0, end);
    names.insert(plainName(lastPathComponent(line.substr(0, line.find(' ')))));
    processArguments.remove_prefix(std::min(end + 1, processArguments.size()));
  }
  return names;
}

bool isInTables(std::string_view title) {
  const auto isRow = [&](const InUseMarker& row) { return row.title == title; };
  return std::ranges::any_of(inUseMarkers(), isRow) || std::ranges::any_of(linuxInUseMarkers(), isRow);
}

}  // namespace

std::span<const InUseMarker> inUseMarkers() {
  static const std::vector<InUseMarker> rows = makeInUseMarkers();
  return rows;
}

std::span<const InUseMarker> linuxInUseMarkers() {
  static const std::vector<InUseMarker> rows = makeLinuxInUseMarkers();
  return rows;
}

std::set<std::string, std::less<>> busyTitles(std::string_view processArguments) {
  std::set<std::string, std::less<>> titles;
  addBusy(processArguments, inUseMarkers(), titles);
  addBusy(processArguments, linuxInUseMarkers(), titles);
  return titles;
}

std::set<std::string, std::less<>> busyTitles(std::string_view processArguments, std::span<const InUseMarker> rows) {
  std::set<std::string, std::less<>> titles;
  addBusy(processArguments, rows, titles);
  return titles;
}

std::set<std::string, std::less<>> busyTitlesByProgram(std::string_view processArguments,
                                                       std::span<const std::string> titles) {
  constexpr std::string_view ending = " cache";
  const auto running = programNames(processArguments);
  std::set<std::string, std::less<>> busy;
  for (const std::string& title : titles) {
    if (title.ends_with(ending) && !isInTables(title) &&
        running.contains(plainName(std::string_view(title).substr(0, title.size() - ending.size())))) {
      busy.insert(title);
    }
  }
  return busy;
}

}  // namespace lumenary
