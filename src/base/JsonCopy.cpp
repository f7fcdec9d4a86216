#include "base/JsonCopy.h"

namespace lumenary {

void copyJson(const JsonValue& value, JsonWriter& json) {
  if (const auto members = value.members()) {
    json.beginObject();
    for (const auto& [key, member] : *members) {
      json.key(key);
      copyJson(member, json);
    }
    json.endObject();
  } else if (const auto elements = value.elements()) {
    json.beginArray();
    for (const JsonValue& element : *elements) {
      copyJson(element, json);
    }
    json.endArray();
  } else if (const auto text = value.string()) {
    json.string(*text);
  } else if (const auto whole = value.integer()) {
    json.integer(*whole);
  } else if (const auto large = value.unsignedInteger()) {
    json.unsignedInteger(*large);
  } else if (const auto number = value.number()) {
    json.number(*number);
  } else if (const auto truth = value.boolean()) {
    json.boolean(*truth);
  } else {
    json.null();
  }
}

}  // namespace lumenary
