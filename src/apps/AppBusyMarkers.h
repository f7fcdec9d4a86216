#pragma once

#include <span>
#include <vector>

#include "cleanup/BusyTools.h"
#include "platform/AppRegistry.h"

namespace lumenary {

/// What tells that the cache of an installed app is in use, under each title that such a cache may have ("Maps cache"):
/// an app and its program are often called differently.
std::vector<InUseMarker> appBusyMarkers(std::span<const RegisteredApp> apps);

}  // namespace lumenary
