#include "monitoring/MemoryOptimizer.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "base/Path.h"

namespace lumenary {
namespace {

/// The identifier, and the names of its desktop entries.
constexpr std::array chromeIDs =
    std::to_array<std::string_view>({"com.google.Chrome", "google-chrome", "google-chrome-stable"});
constexpr std::string_view chromeMemorySettings = "chrome://settings/performance";

std::string loweredText(std::size_t count) {
  if (count == 0) {
    return "No background apps to lower right now.";
  }
  return std::to_string(count) +
         (count == 1 ? " background app runs at low priority." : " background apps run at low priority.");
}

}  // namespace

MemoryOptimizer::MemoryOptimizer(AppControl& control, const ProcessReader& reader, std::string ownPath,
                                 Background background)
    : control_(control), reader_(reader), ownPath_(std::move(ownPath)), background_(std::move(background)) {}

void MemoryOptimizer::setOn(bool isWanted) {
  isOn = isWanted;
  if (!isWanted) {
    restoreAll();
    message = "Every app is back to full speed.";
    return;
  }
  const std::optional<std::int32_t> front = control_.frontProcess();
  const std::string frontPath = front ? reader_.appPath(*front) : std::string();
  // Where it can't be told, any of them may be the one that the person works in.
  for (const AppMemoryUsage& usage : processes()) {
    if (front && usage.bundlePath && *usage.bundlePath != frontPath) {
      lower(*usage.bundlePath);
    }
  }
  message = loweredText(lowered.size());
}

void MemoryOptimizer::lower(const std::string& bundlePath) {
  if (!isOn || bundlePath.empty() || bundlePath == ownPath_ || lowered.contains(bundlePath)) {
    return;
  }
  const std::vector<AppMemoryUsage> list = processes();
  const auto usage = std::ranges::find(list, std::optional(bundlePath), &AppMemoryUsage::bundlePath);
  if (usage == list.end()) {
    return;
  }
  std::vector<std::int32_t> ids = usage->pids;
  if (const std::optional<std::int32_t> main = usage->mainPID; ids.empty() && main) {
    ids.push_back(*main);
  }
  // The list is some seconds old, and a number may be another's by now.
  std::erase_if(ids, [&](std::int32_t pid) {
    return !isSameOrInside(reader_.appPath(pid), bundlePath) || !control_.lowerPriority(pid);
  });
  if (!ids.empty()) {
    lowered.emplace(bundlePath, std::move(ids));
  }
}

void MemoryOptimizer::restoreAll() {
  for (const auto& [path, ids] : std::exchange(lowered, {})) {
    std::ranges::for_each(ids, [this](std::int32_t pid) { control_.restorePriority(pid); });
  }
}

void MemoryOptimizer::appBecameActive(const std::string& bundlePath) {
  if (const auto found = lowered.find(bundlePath); found != lowered.end()) {
    std::ranges::for_each(found->second, [this](std::int32_t pid) { control_.restorePriority(pid); });
    lowered.erase(found);
  }
}

void MemoryOptimizer::purgeFileCache() {
  if (std::exchange(isPurging, true)) {
    return;
  }
  background_([&control = control_] { return control.emptyFileCache(); },
              [this](bool isEmptied) {
                isPurging = false;
                message =
                    isEmptied ? "File cache emptied. It refills as you open files." : "The file cache wasn't emptied.";
              });
}

std::optional<std::string> MemoryOptimizer::chromeURL(const std::vector<RunningApp>& running) {
  const auto chrome = std::ranges::find_if(
      running, [](const RunningApp& app) { return std::ranges::find(chromeIDs, app.id) != chromeIDs.end(); });
  return chrome == running.end() ? std::nullopt : std::optional(chrome->path);
}

void MemoryOptimizer::openChromeMemorySaver(const std::vector<RunningApp>& running) {
  if (const std::optional<std::string> chrome = chromeURL(running)) {
    control_.open(*chrome, std::string(chromeMemorySettings));
  }
}

}  // namespace lumenary
