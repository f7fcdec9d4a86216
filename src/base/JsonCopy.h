#pragma once

#include "base/JsonReader.h"
#include "base/JsonWriter.h"

namespace lumenary {

/// Writes a value that was read, with everything in it: members in their order, numbers with the same value.
void copyJson(const JsonValue& value, JsonWriter& json);

}  // namespace lumenary
