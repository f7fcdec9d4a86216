#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Require.h"
#include "storage/ScanJson.h"
#include "storage/TidyReceipt.h"

namespace {

using namespace lumenary;

/// What was read is written and read again without a change, and can be browsed and searched.
void readScan(std::string_view text, DateForm form) {
  const auto result = decodeScanResult(text, form);
  if (!result) {
    return;
  }
  const std::string written = encodeScanResult(*result, form);
  const auto again = decodeScanResult(written, form);
  require(again && encodeScanResult(*again, form) == written);
  for (const StorageNode& node : result->children(result->root.path)) {
    require(result->folderBytes(node.path) >= 0);
  }
  require(result->search("A/", 3).size() <= 3);
  require(result->search("e", 3).size() <= 3);
  result->categoryTotals();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  readScan(text, DateForm::iso8601);
  readScan(text, DateForm::secondsSince1970);
  if (const auto points = decodeScanHistory(text)) {
    require(decodeScanHistory(encodeScanHistory(*points)) == *points);
  }
  if (const auto receipts = decodeTidyLog(text)) {
    require(decodeTidyLog(encodeTidyLog(*receipts)) == *receipts);
  }
  return 0;
}
