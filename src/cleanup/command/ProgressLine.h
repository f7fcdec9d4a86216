#pragma once

#include <chrono>
#include <mutex>
#include <string>

#include "cleanup/DeveloperScanner.h"
#include "platform/Terminal.h"

namespace lumenary::CleanupCommand {

/// "Measuring… 34 of 120": at most 60 characters.
std::string progressText(const DeveloperScanner::Progress& progress);

/// One line of the error output that tells a waiting person how far the work is. Short work shows nothing.
class ProgressLine {
 public:
  using Clock = std::chrono::steady_clock;

  static constexpr auto firstDelay = std::chrono::milliseconds(200);
  static constexpr auto interval = std::chrono::milliseconds(100);

  ProgressLine(Terminal& terminal, Clock::time_point start)
      : terminal_(terminal), isVisible_(terminal.showsProgress()), nextDraw_(start + firstDelay) {}

  bool isVisible() const { return isVisible_; }

  /// What the next drawing shows. From any thread.
  void show(const DeveloperScanner::Progress& progress);

  /// Draws, unless it is too early or the line says the same already. From the thread that waits, like `clear`.
  void draw(Clock::time_point now);

  /// Leaves the line empty, for what is printed next.
  void clear();

 private:
  DeveloperScanner::Progress latest();

  Terminal& terminal_;
  const bool isVisible_;
  Clock::time_point nextDraw_;
  std::string drawn_;
  std::mutex mutex_;
  DeveloperScanner::Progress progress_;  ///< behind the mutex
};

}  // namespace lumenary::CleanupCommand
