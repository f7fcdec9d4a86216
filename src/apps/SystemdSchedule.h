#pragma once

#include <string>

#include "apps/SystemdUnits.h"

namespace lumenary {

/// When a unit starts by itself, for people, in the words of all background items; of a unit that is turned off, when
/// it would. `service` is what a trigger starts, the unit itself where it is one.
std::string systemdSchedule(const SystemdUnit& unit, const UnitFile& service);

}  // namespace lumenary
