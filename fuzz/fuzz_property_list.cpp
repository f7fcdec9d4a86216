#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Require.h"
#include "base/PropertyList.h"
#include "base/Text.h"

namespace {

using lumenary::PropertyListValue;

/// All text of a list is UTF-8, and no value stands deeper than what may be read.
void check(const PropertyListValue& value, int depth) {
  require(depth <= 64);
  if (const auto* const text = value.text()) {
    require(lumenary::isUTF8(*text));
  }
  if (const auto* const array = value.array()) {
    for (const PropertyListValue& one : *array) {
      check(one, depth + 1);
    }
  }
  if (const auto* const dictionary = value.dictionary()) {
    for (const auto& [key, one] : *dictionary) {
      require(lumenary::isUTF8(key));
      check(one, depth + 1);
    }
  }
}

}  // namespace

/// Property lists of any form: read whole or not at all.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto list = lumenary::parsePropertyList(std::string_view(reinterpret_cast<const char*>(data), size));
  if (list) {
    check(*list, 0);
  }
  return 0;
}
