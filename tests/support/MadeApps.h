#pragma once

#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "platform/AppRegistry.h"

namespace lumenary {

/// Apps that a test says are installed; `hidden` ones stand somewhere without being startable.
class MadeApps final : public AppRegistry {
 public:
  MadeApps(std::initializer_list<RegisteredApp> made, std::set<std::string> hiddenIDs = {})
      : all(made), hidden(std::move(hiddenIDs)) {}

  std::vector<RegisteredApp> apps() const override { return all; }
  bool isInstalled(std::string_view id) const override {
    return hidden.contains(std::string(id)) || std::ranges::any_of(all, [&](const RegisteredApp& app) {
             return equalsIgnoringCase(app.id, loweredASCII(id));
           });
  }
  std::vector<std::string> watchedFolders() const override { return {}; }

  std::vector<RegisteredApp> all;
  std::set<std::string> hidden;
};

}  // namespace lumenary
