#include "apps/AppLayout.h"

namespace lumenary {

AppLayout macLayout(const std::string& home) {
  using enum AppDataKind;
  AppLayout layout;
  for (const AppDataKind kind : {caches, logs, savedState, httpStorage, webKit, support, container}) {
    layout.locations.push_back({.kind = kind,
                                .folder = home + "/Library/" + std::string(rawValue(kind)),
                                .looksIntoVendors = kind == caches || kind == logs || kind == support});
  }
  layout.locations[1].suffix = ".log";
  layout.locations[2].suffix = ".savedState";
  layout.locations[3].suffix = ".binarycookies";
  return layout;
}

}  // namespace lumenary
