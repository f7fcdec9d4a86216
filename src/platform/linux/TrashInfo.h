#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"

/// The info file that stands beside each item of a Trash, as in the freedesktop.org Trash specification 1.0.
namespace lumenary {

struct TrashInfo {
  std::string path;  ///< where the item stood, bytes: absolute, or relative to the top of the Trash's volume
  /// When it was moved. Written as wall-clock time: read in another time zone it is another instant.
  std::optional<Date> deleted{};

  bool operator==(const TrashInfo&) const = default;
};

/// `path` is written percent-encoded, the date in the person's time zone.
std::string composeTrashInfo(std::string_view path, Date date);

/// No value where the first line isn't the group's header, the path is missing or empty, can't be decoded, or
/// has a component "..". Of a key that stands twice the first counts; other lines are passed over. A missing or
/// impossible date is none.
std::optional<TrashInfo> parseTrashInfo(std::string_view text);

/// The absolute origin that an info file of a Trash names. `top` is the top folder of the Trash's volume, empty for the
/// home Trash. No value for an absolute path in a volume's Trash, or a relative one in the home Trash.
std::optional<std::string> originOf(const TrashInfo& info, std::string_view top);

}  // namespace lumenary
