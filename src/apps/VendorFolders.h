#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "apps/AppBundles.h"
#include "apps/AppFolders.h"

namespace lumenary {

/// A maker of several apps may have one folder with a folder for each of them.
class VendorFolders {
 public:
  explicit VendorFolders(std::span<const FoundBundle> bundles);

  /// The apps with a folder in the one at `folder`, which is called `vendor`: their index among the bundles, and the
  /// path. None for a folder of more than 64 entries.
  std::vector<std::pair<std::size_t, std::string>> matches(const AppFolders& folders, const std::string& folder,
                                                           std::string_view vendor) const;

 private:
  std::optional<std::size_t> appOf(std::string_view vendor, const std::string& entry) const;

  struct Name {
    std::string plain;  ///< normalized
    std::size_t app = 0;
  };
  std::vector<Name> names_;
};

}  // namespace lumenary
