#include "apps/VendorFolders.h"

#include <algorithm>

#include "apps/AppIdentifiers.h"
#include "base/Path.h"

namespace lumenary {
namespace {

constexpr std::size_t mostEntries = 64;
constexpr std::ptrdiff_t shortestPrefix = 6;

std::ptrdiff_t characterCount(std::string_view text) {
  return std::ranges::count_if(text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; });
}

}  // namespace

VendorFolders::VendorFolders(std::span<const FoundBundle> bundles) {
  for (std::size_t app = 0; app < bundles.size(); ++app) {
    for (const std::string& name : bundles[app].vendorNames) {
      if (std::string plain = normalized(name); !plain.empty()) {
        names_.push_back({std::move(plain), app});
      }
    }
  }
}

std::vector<std::pair<std::size_t, std::string>> VendorFolders::matches(const AppFolders& folders,
                                                                        const std::string& folder,
                                                                        std::string_view vendor) const {
  std::vector<std::pair<std::size_t, std::string>> matches;
  const auto entries = folders.fewEntries(folder, mostEntries);
  if (!entries) {
    return matches;
  }
  for (const AppFolders::Entry& entry : *entries) {
    const auto app = entry.name.starts_with('.') ? std::nullopt : appOf(vendor, entry.name);
    if (app) {
      matches.emplace_back(*app, appendingPathComponent(folder, entry.name));
    }
  }
  return matches;
}

std::optional<std::size_t> VendorFolders::appOf(std::string_view vendor, const std::string& entry) const {
  const std::string own = normalized(entry);
  const std::string joined = normalized(std::string(vendor) + entry);
  const auto found = std::ranges::find_if(names_, [&](const Name& name) {
    return own == name.plain || joined == name.plain ||
           (own.starts_with(name.plain) && characterCount(name.plain) >= shortestPrefix);
  });
  return found == names_.end() ? std::nullopt : std::optional(found->app);
}

}  // namespace lumenary
