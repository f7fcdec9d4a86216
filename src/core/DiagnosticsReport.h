#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "base/Date.h"
#include "monitoring/SystemSnapshot.h"

namespace lumenary {

/// What a report about the program tells: counts, and of all names only the last part of the selected volume's.
struct DiagnosticsFacts {
  Date generatedAt{};
  std::string systemVersion{};  ///< in the system's own words
  std::string appVersion{};     ///< empty where it isn't known
  bool hasFullDiskAccess = false;
  std::string selectedVolume{};  ///< its path
  bool hasScan = false;
  std::size_t entryCount = 0;
  std::size_t inaccessibleCount = 0;
  std::size_t portCount = 0;
  std::size_t processCount = 0;
  std::size_t candidateCount = 0;
  std::optional<SystemSnapshot> lastReading{};
};

inline constexpr auto diagnosticsFileName = "Hearthkeep Diagnostics.txt";

/// The lines without a break at the end.
std::string diagnosticsReport(const DiagnosticsFacts& facts);

}  // namespace lumenary
