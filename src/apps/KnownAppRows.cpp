#include <vector>

#include "apps/KnownAppData.h"

namespace lumenary {
namespace {

using enum AppDataVerdict;

std::vector<KnownAppData> makeCatalog() {
  return {
      {.bundleIDs = {"com.anthropic.claudefordesktop"},
       .parts = {{"vm_bundles", "Code sandbox (virtual machine)",
                  "A small Linux computer Claude uses to run code safely. If removed, Claude downloads it again "
                  "(several GB) the next time you use its code features.",
                  caution},
                 {"claude-code-sessions", "Claude Code sessions",
                  "Conversations from Claude Code inside the desktop app. Removing them loses past sessions.", keep}},
       .homeFolders = {{".claude",
                        {{"projects", "Claude Code chat history",
                          "Every past Claude Code conversation, by project. Needed to resume old chats; safe to remove "
                          "if you never go back to them.",
                          caution},
                         {"file-history", "Claude Code file backups",
                          "Copies of files from before Claude edited them, used to undo changes.", caution},
                         {"shell-snapshots", "Temporary terminal snapshots",
                          "Short-lived copies of your terminal setup. Recreated when needed.", safe},
                         {"debug", "Debug logs", "Diagnostic logs. Nothing you'd notice.", safe},
                         {"telemetry", "Usage reports waiting to send", "Nothing you'd notice.", safe}}}}},
      {.bundleIDs = {"com.todesktop.230313mzl4w4u92"},
       .parts = {{"User/globalStorage/state.vscdb", "Chat and agent history",
                  "Every past chat and agent run across all your projects, in one database. Removing it erases them.",
                  keep},
                 {"User/globalStorage/anysphere.cursor-agent-worker", "Background agent workspace",
                  "Working files for Cursor's background agents. Cursor recreates it; agents that are running lose "
                  "their progress.",
                  caution},
                 {"User/workspaceStorage", "Per-project history",
                  "Chat and code-index data for each folder you opened. Old projects you no longer use can go; Cursor "
                  "rebuilds the rest.",
                  caution},
                 {"User/History", "Local file history",
                  "Earlier versions of files you edited, used by Timeline and undo.", keep}},
       .homeFolders = {{".cursor",
                        {{"projects", "Cursor project data",
                          "Per-project agent data. Cursor recreates it when you open the project again.", caution},
                         {"extensions", "Extensions", "Installed Cursor extensions. Removing them uninstalls them.",
                          keep}}}}},
      {.bundleIDs = {"com.microsoft.VSCode"},
       .parts = {{"User/workspaceStorage", "Per-project history",
                  "Editor state and caches for each folder you opened. Old projects you no longer use can go.",
                  caution},
                 {"User/History", "Local file history",
                  "Earlier versions of files you edited, used by Timeline and undo.", keep}},
       .homeFolders = {{".vscode",
                        {{"extensions", "Extensions", "Installed VS Code extensions. Removing them uninstalls them.",
                          keep}}}}},
      {.bundleIDs = {"com.google.Chrome"},
       .parts = {{"OptGuideOnDeviceModel", "Built-in AI model (Gemini Nano)",
                  "Chrome's on-device AI model. Chrome downloads it again unless you turn off on-device AI in Chrome's "
                  "settings.",
                  caution},
                 {"Default/IndexedDB", "Website databases",
                  "Data websites store for offline use, like Gmail or Docs. Removing it can sign you out of sites or "
                  "lose offline drafts.",
                  caution},
                 {"SODALanguagePacks", "Live Caption language packs",
                  "Speech models for Live Caption. Downloaded again if you use it.", safe}}},
      {.bundleIDs = {"com.tinyspeck.slackmacgap"},
       .parts = {{"IndexedDB", "Offline messages",
                  "Messages and files Slack keeps for offline use. Slack downloads them again.", caution}}},
      {.bundleIDs = {"com.docker.docker"},
       .parts = {{"Data/vms/0/data/Docker.raw", "Docker disk (images, containers, volumes)",
                  "Everything Docker stores. Free space with Docker Desktop's Clean up or `docker system prune` "
                  "instead of removing this.",
                  keep}}},
  };
}

}  // namespace

std::span<const KnownAppData> KnownAppData::catalog() {
  static const std::vector<KnownAppData> rows = makeCatalog();
  return rows;
}

}  // namespace lumenary
