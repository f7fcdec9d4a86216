#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "base/Date.h"
#include "cleanup/CleanupCandidate.h"
#include "cleanup/DeveloperScanner.h"

namespace lumenary::CleanupCommand {

/// What the command acts on: all, largest first, or with `days` only those that are known to be untouched for so long,
/// oldest first. Equal ones keep their order.
std::vector<CleanupCandidate> selection(std::span<const CleanupCandidate> candidates,
                                        const DeveloperScanner::LastUsed& lastUsed, std::optional<std::int64_t> days,
                                        Date now);

}  // namespace lumenary::CleanupCommand
