#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Require.h"
#include "cleanup/HashCache.h"

/// What is read of a damaged cache is written and read again without a change, and no digest of another form gets in.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumenary;
  const auto records = decodeHashRecords({reinterpret_cast<const char*>(data), size});
  if (!records) {
    return 0;
  }
  require(decodeHashRecords(encodeHashRecords(*records)) == records);
  for (const auto& [path, record] : *records) {
    require(record.full.value_or(std::string(64, 'a')).size() == 64);
    require(record.partial.value_or(std::string(64, 'a')).size() == 64);
  }
  return 0;
}
