#include "cleanup/command/ProgressLine.h"

#include <string_view>

namespace lumenary::CleanupCommand {
namespace {

constexpr std::string_view clearedLine = "\r\x1b[K";

}  // namespace

std::string progressText(const DeveloperScanner::Progress& progress) {
  using enum DeveloperScanner::Progress::Phase;
  const std::string done = std::to_string(progress.done);
  const std::string doneOfTotal = done + " of " + std::to_string(progress.total);
  switch (progress.phase) {
    case looking:
      return "Looking for projects… " + done + " found";
    case measuring:
      return "Measuring… " + doneOfTotal;
    case dating:
      return "Reading dates… " + doneOfTotal;
  }
  return {};
}

void ProgressLine::show(const DeveloperScanner::Progress& progress) {
  const std::scoped_lock lock(mutex_);
  progress_ = progress;
}

DeveloperScanner::Progress ProgressLine::latest() {
  const std::scoped_lock lock(mutex_);
  return progress_;
}

void ProgressLine::draw(Clock::time_point now) {
  if (!isVisible_ || now < nextDraw_) {
    return;
  }
  std::string text = progressText(latest());
  if (text != drawn_) {
    terminal_.writeError(std::string(clearedLine) + text);
    drawn_ = std::move(text);
    nextDraw_ = now + interval;
  }
}

void ProgressLine::clear() {
  if (!drawn_.empty()) {
    terminal_.writeError(clearedLine);
    drawn_.clear();
  }
}

}  // namespace lumenary::CleanupCommand
