#pragma once

namespace lumenary {

/// Opens simdjson's shared library at the first call. False where this machine has none: then no parser may be made.
/// From any thread.
bool openSimdjsonLibrary();

}  // namespace lumenary
