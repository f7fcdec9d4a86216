// scan_once ROOT [WORKERS]: one scan of a folder, as the program makes it. Prints one line of JSON: what was measured
// and how long the scan took, in milliseconds.

#include <charconv>
#include <chrono>
#include <cstdio>
#include <string>
#include <string_view>

#include "base/JsonWriter.h"
#include "platform/Platform.h"
#include "storage/StorageScanner.h"

int main(int argumentCount, char** arguments) {
  using namespace lumenary;
  if (argumentCount < 2) {
    std::fputs("Usage: scan_once ROOT [WORKERS]\n", stderr);
    return 2;
  }
  unsigned workers = 2;
  if (argumentCount > 2) {
    const std::string_view text = arguments[2];
    std::from_chars(text.data(), text.data() + text.size(), workers);
  }
  const Platform platform = makePlatform();
  const StorageScanner scanner(*platform.reader, *platform.mountTable, platform.places, platform.now, 3 * workers);
  const auto started = std::chrono::steady_clock::now();
  const auto result = scanner.scan(arguments[1]);
  const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - started;
  if (!result) {
    std::fprintf(stderr, "%s\n", std::string(message(result.error())).c_str());
    return 1;
  }
  JsonWriter json(JsonWriter::Layout::compact);
  json.beginObject();
  json.key("milliseconds").number(took.count());
  json.key("totalBytes").integer(result->totalBytes);
  json.key("items").integer(result->scannedItemCount);
  json.key("inaccessible").integer(static_cast<std::int64_t>(result->inaccessiblePaths.size()));
  json.key("entries").integer(static_cast<std::int64_t>(result->entries.size()));
  json.key("folders").integer(static_cast<std::int64_t>(result->folderByteTotals->size()));
  json.endObject();
  std::puts(json.take().c_str());
}
