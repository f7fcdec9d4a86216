#include "platform/PerfProbe.h"

#include <algorithm>

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

}  // namespace lumenary
