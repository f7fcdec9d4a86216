#pragma once

#include <cstdint>
#include <expected>
#include <string>
#include <vector>

#include "apps/BackgroundItem.h"
#include "apps/BackgroundItemRemoval.h"
#include "platform/ToolRunner.h"

namespace lumenary {

/// Switches and removes what launchd starts for this person alone. Stateless; blocks while the tools run. What a tool
/// says of its success is not asked: the next scan shows it.
class BackgroundItemsController {
 public:
  /// The references must outlive the value.
  BackgroundItemsController(const ToolRunner& tools, const BackgroundItemRemoval& removal, std::uint32_t userID)
      : tools_(tools), removal_(removal), domainTarget_("gui/" + std::to_string(userID)) {}

  /// Nothing happens to an item of another domain.
  void setEnabled(const BackgroundItem& item, bool enabled) const;
  /// Stops the item and moves its file to the Trash. An item of another domain is left alone, without an error.
  std::expected<void, CleanupRefusal> remove(const BackgroundItem& item) const;

 private:
  void launchctl(std::vector<std::string> arguments) const;

  const ToolRunner& tools_;
  const BackgroundItemRemoval& removal_;
  std::string domainTarget_;
};

}  // namespace lumenary
