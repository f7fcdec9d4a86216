#include "monitoring/NotchDeckRules.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace lumenary::NotchDeckRules {
namespace {

constexpr std::array supervisorMarkers = std::to_array<std::string_view>(
    {"/.bin/next", "next/dist/bin/next", "/.bin/vite", "vite/bin/vite", "nodemon", "npm run", "npm exec", "npm-cli",
     "pnpm", "yarn", "bun run", "webpack", "react-scripts", "/.bin/astro", "/.bin/nuxt", "ts-node-dev", "/.bin/tsx",
     "--watch"});

bool isSupervisor(const Ancestor& ancestor, std::uint32_t uid) {
  const std::string& arguments = ancestor.arguments;
  return ancestor.pid >= 2 && ancestor.uid == uid && !arguments.starts_with("sh -c") &&
         !arguments.starts_with("/bin/sh -c") &&
         std::ranges::any_of(supervisorMarkers, [&](std::string_view marker) { return arguments.contains(marker); });
}

}  // namespace

std::vector<std::int32_t> supervisors(std::span<const Ancestor> ancestors, std::uint32_t uid) {
  std::vector<std::int32_t> ids;
  for (const Ancestor& ancestor : ancestors) {
    if (isSupervisor(ancestor, uid)) {
      ids.push_back(ancestor.pid);
    }
  }
  return ids;
}

}  // namespace lumenary::NotchDeckRules
