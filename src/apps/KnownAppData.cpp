#include "apps/KnownAppData.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <system_error>

namespace lumenary {

const KnownAppData* KnownAppData::forApp(std::string_view bundleID, std::span<const KnownAppData> table) {
  const auto found =
      std::ranges::find_if(table, [&](const KnownAppData& app) { return app.bundleIDs.contains(bundleID); });
  return found == table.end() ? nullptr : &*found;
}

const std::map<std::string_view, std::string_view>& KnownAppData::rebuildableFolderNames() {
  static const std::map<std::string_view, std::string_view> names = {
      {"cache", "Temporary cache"},
      {"caches", "Temporary cache"},
      {"code cache", "Compiled code cache"},
      {"gpucache", "Graphics cache"},
      {"cacheddata", "Compiled code cache"},
      {"cachedextensionvsixs", "Extension download cache"},
      {"cachedprofilesdata", "Profile cache"},
      {"dawncache", "Graphics cache"},
      {"dawngraphitecache", "Graphics cache"},
      {"dawnwebgpucache", "Graphics cache"},
      {"graphitedawncache", "Graphics cache"},
      {"shadercache", "Graphics cache"},
      {"grshadercache", "Graphics cache"},
      {"component_crx_cache", "Component download cache"},
      {"crashpad", "Crash reports"},
      {"crash reports", "Crash reports"},
      {"logs", "Logs"},
  };
  return names;
}

std::optional<std::vector<std::int64_t>> KnownAppData::version(std::string_view name) {
  constexpr std::size_t fewest = 2;
  constexpr std::size_t most = 4;
  std::vector<std::int64_t> numbers;
  const char* at = name.data();
  const char* const end = at + name.size();
  while (numbers.size() < most) {
    std::int64_t number = 0;
    const auto [behind, error] = std::from_chars(at, end, number);
    if (error != std::errc() || *at == '-') {
      return std::nullopt;
    }
    numbers.push_back(number);
    if (behind == end) {
      return numbers.size() < fewest ? std::nullopt : std::optional(std::move(numbers));
    }
    if (*behind != '.') {
      return std::nullopt;
    }
    at = behind + 1;
  }
  return std::nullopt;
}

}  // namespace lumenary
