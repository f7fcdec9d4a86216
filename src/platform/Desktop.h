#pragma once

#include <string>

namespace lumenary {

/// What the desktop does for this program. Whatever fails fails silently: the person may not allow it. From any thread;
/// may block for a moment.
class Desktop {
 public:
  virtual ~Desktop() = default;
  /// Shows a short message that goes away by itself. A later one with the same identifier may take its place.
  virtual void notify(const std::string& title, const std::string& body, const std::string& identifier) = 0;
  /// Shows where a file lies in the file manager, marked where that can do it.
  virtual void reveal(const std::string& path) = 0;
  /// Shows the Trash in the file manager.
  virtual void showTrash() = 0;
};

}  // namespace lumenary
