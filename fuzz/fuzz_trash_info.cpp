#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Require.h"
#include "base/Path.h"
#include "platform/linux/TrashInfo.h"
#include "platform/linux/TrashName.h"
#include "platform/linux/TrashSizes.h"

// An origin that is read never climbs, and is read back from what is written for it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumenary;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto info = parseTrashInfo(text)) {
    for (const std::string_view top : {"", "/media/disk"}) {
      if (const auto origin = originOf(*info, top)) {
        require(isSameOrInside(*origin, top.empty() ? "/" : top));
      }
    }
    const auto again = parseTrashInfo(composeTrashInfo(info->path, Date(std::chrono::seconds(size))));
    require(again && again->path == info->path);
  }
  const std::string sizes = updatedFolderSizes(text, {{"name", FolderSize{}}});
  require(updatedFolderSizes(sizes, {{"name", FolderSize{}}}) == sizes);
  if (!text.empty() && text.size() <= 255 && text.find('\0') == std::string_view::npos) {
    require(trashName(text, size % 9, 245).size() <= 245);
  }
  return 0;
}
