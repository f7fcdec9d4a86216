#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumenary {

/// What installed apps call themselves.
class AppNames {
 public:
  virtual ~AppNames() = default;
  /// The name that people know the app of this identifier by ("org.gnome.Maps" is "Maps"), the identifier in any case.
  /// None where no such app is installed. May read the disk at the first call; from any thread.
  virtual std::optional<std::string> nameOf(std::string_view identifier) const = 0;
};

}  // namespace lumenary
