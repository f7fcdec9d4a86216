#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Require.h"
#include "base/Path.h"
#include "platform/UserFolders.h"
#include "platform/linux/DesktopEntry.h"

/// Files that desktops write: an entry's keys hold no line break, and a person's folders lie in their home.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumenary;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  for (const auto& [key, value] : parseDesktopEntry(text)) {
    require(!key.contains('\n') && !value.contains('\n') && !key.contains('='));
    require(desktopEntryText(value).size() <= value.size());
  }
  Places places;
  places.home = "/home/anna";
  for (const std::string& folder : withUserFolders(places, text).personalFolders) {
    require(folder.starts_with("/home/anna/") && isStandard(folder));
  }
  return 0;
}
