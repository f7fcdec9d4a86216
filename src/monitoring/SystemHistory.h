#pragma once

#include <vector>

#include "monitoring/SystemSnapshot.h"

namespace lumenary::SystemHistory {

/// A long series in at most 238 readings, for a chart: the first, the last, and of each of 59 stretches those with the
/// lowest and the highest load and the lowest and the highest use of memory, so that no spike is lost. Up to 240
/// readings come back as they are.
std::vector<SystemSnapshot> chartSamples(const std::vector<SystemSnapshot>& readings);

/// Appends a reading and drops what is older than an hour, and all but the last 1,800.
void append(std::vector<SystemSnapshot>& history, const SystemSnapshot& reading);

}  // namespace lumenary::SystemHistory
