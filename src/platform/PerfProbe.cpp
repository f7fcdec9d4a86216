#include "platform/PerfProbe.h"

#include <algorithm>
#include <cstdio>

namespace lumenary {

PerfProbe PerfProbe::of(const char* bench, const char* off) {
  PerfProbe probe{.isOn = bench != nullptr && std::string_view(bench) == "1"};
  for (std::string_view rest = off == nullptr ? "" : off; !rest.empty();) {
    const std::string_view name = rest.substr(0, rest.find(','));
    rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    probe.disabled.emplace(name);
  }
  return probe;
}

void PerfProbe::mark(std::string_view name) const {
  if (isOn) {
    const std::chrono::duration<double, std::milli> since = std::chrono::steady_clock::now() - launchedAt;
    std::printf("%.*s %.1f ms\n", static_cast<int>(name.size()), name.data(), since.count());
    std::fflush(stdout);
  }
}

}  // namespace lumenary
