#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/Places.h"

namespace lumenary {

/// The value of a variable of the environment; null where it is unset.
using Environment = std::function<const char*(const char* name)>;

/// By the password database, standardised; empty where it knows of none, no value where it can't be asked. Asking takes
/// a tenth of the time of a start.
std::optional<std::string> accountHomeOf(std::uint32_t userID);

/// Home from $HOME or else the password database, the rest by the XDG base directories. All paths are standardised;
/// those that hang on an unknown home are empty. `accountHome` is left empty: whoever moves something asks for it.
Places placesOf(const Environment& environment);

}  // namespace lumenary
