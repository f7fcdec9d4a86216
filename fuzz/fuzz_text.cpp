#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Require.h"
#include "base/FileURL.h"
#include "base/JsonReader.h"
#include "base/JsonWriter.h"
#include "base/Path.h"
#include "base/Text.h"
#include "platform/linux/LinuxMountTable.h"

// A name of any bytes survives JSON and URLs, and no name moves the cursor.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumenary;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const std::string text = reversibleText(bytes);
  require(bytesOfReversibleText(text) == bytes);
  JsonWriter json(JsonWriter::Layout::compact);
  json.string(text);
  const auto document = JsonDocument::parse(json.take());
  require(document && document->root().string() == text);
  require(displayText(bytes).find_first_of("\x1b\r\n\x08") == std::string::npos);
  parseMountInfo(bytes);
  const std::string path = standardise("/" + bytes);
  require(standardise(path) == path);
  if (bytes.find('\0') == std::string::npos) {
    const FileURL url{.path = path, .isFolder = path != "/" && size % 2 == 0};
    const auto again = parseFileURL(fileURLString(url));
    require(again && again->path == path);
  }
  return 0;
}
