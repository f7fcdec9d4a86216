#include "apps/BackgroundItemsController.h"

#include <utility>

#include "apps/BackgroundItemsScanner.h"

namespace lumenary {

void BackgroundItemsController::launchctl(std::vector<std::string> arguments) const {
  static_cast<void>(tools_.run({.path = launchctlPath, .arguments = std::move(arguments)}));
}

void BackgroundItemsController::setEnabled(const BackgroundItem& item, bool enabled) const {
  if (item.domain != BackgroundItem::Domain::user) {
    return;
  }
  const std::string service = domainTarget_ + "/" + item.label;
  if (enabled) {
    launchctl({"enable", service});
    launchctl({"bootstrap", domainTarget_, item.url.path});
  } else {
    launchctl({"bootout", domainTarget_, item.url.path});
    launchctl({"disable", service});
  }
}

std::expected<void, CleanupRefusal> BackgroundItemsController::remove(const BackgroundItem& item) const {
  if (item.domain != BackgroundItem::Domain::user) {
    return {};
  }
  return removal_.remove(item.url.path, [&] { launchctl({"bootout", domainTarget_, item.url.path}); });
}

}  // namespace lumenary
