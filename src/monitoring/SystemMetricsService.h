#pragma once

#include <optional>

#include "base/Date.h"
#include "monitoring/SystemSnapshot.h"
#include "platform/SystemCounters.h"

namespace lumenary {

/// Takes readings of CPU load, memory and swap. One caller at a time: the load is told since the reading before.
class SystemMetricsService {
 public:
  explicit SystemMetricsService(SystemCountersReader& reader) : reader_(reader) {}

  /// The machine at `now`. The first reading's load is 0.
  SystemSnapshot capture(Date now);

 private:
  double cpuUsage(const std::optional<CPUTicks>& ticks);

  SystemCountersReader& reader_;
  std::optional<CPUTicks> previousTicks_;
};

}  // namespace lumenary
