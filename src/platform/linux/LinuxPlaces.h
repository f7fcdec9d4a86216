#pragma once

#include <functional>

#include "platform/Places.h"

namespace lumenary {

/// The value of a variable of the environment; null where it is unset.
using Environment = std::function<const char*(const char* name)>;

/// Home from $HOME or else the password database, the rest by the XDG base directories. All paths are standardised;
/// those that hang on an unknown home are empty.
Places placesOf(const Environment& environment);

}  // namespace lumenary
