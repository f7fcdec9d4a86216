#pragma once

#include "platform/Desktop.h"
#include "platform/ToolRunner.h"

namespace lumenary {

/// By the small tools that every desktop brings: notify-send, dbus-send and xdg-open.
class LinuxDesktop final : public Desktop {
 public:
  /// `tools` must outlive the value.
  explicit LinuxDesktop(const ToolRunner& tools) : tools_(tools) {}

  void notify(const std::string& title, const std::string& body, const std::string& identifier) override;
  void reveal(const std::string& path) override;
  void showTrash() override;

 private:
  const ToolRunner& tools_;
};

}  // namespace lumenary
