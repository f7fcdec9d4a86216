#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Require.h"
#include "storage/CleanupTransaction.h"

// What was read is written and read again without a change: nothing of a log is lost by rewriting it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumenary;
  const auto transactions = decodeCleanupTransactions({reinterpret_cast<const char*>(data), size});
  if (transactions) {
    require(decodeCleanupTransactions(encodeCleanupTransactions(*transactions)) == *transactions);
  }
  return 0;
}
