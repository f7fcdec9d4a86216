#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/AppRegistry.h"

namespace lumenary {

/// Tells which of the installed apps a process belongs to. Looking up costs no more with more apps.
class AppAttribution {
 public:
  explicit AppAttribution(std::vector<RegisteredApp> apps = {});
  // The indexes point into the list.
  AppAttribution(const AppAttribution&) = delete;
  AppAttribution& operator=(const AppAttribution&) = delete;

  /// Null where no app is known. Asked in this order: the app's id that a desktop wrote into the name of the control
  /// group, in any case; the file that runs is an app's program; it lies in a folder that is an app's own, the deepest
  /// one. A program that several apps start, or that runs the programs of others, tells nothing.
  const RegisteredApp* appOf(std::string_view controlGroupID, std::string_view executable) const;

 private:
  std::vector<RegisteredApp> apps_;
  std::map<std::string, const RegisteredApp*, std::less<>> byID_;  ///< by the id in lower case
  std::map<std::string, const RegisteredApp*, std::less<>> byProgram_;
  std::map<std::string, const RegisteredApp*, std::less<>> byFolder_;
};

}  // namespace lumenary
