#pragma once

#include <span>
#include <vector>

#include "cleanup/CleanupCandidate.h"
#include "cleanup/TidyPlan.h"

namespace lumenary {

/// The build output of a plan as candidates, largest first, for when no code folder is in use. One that stands among
/// `former` by its path keeps that one's id, so that what a person ticked stays ticked. `plan` may be null.
std::vector<CleanupCandidate> buildCandidates(const TidyPlan* plan, std::span<const CleanupCandidate> former);

}  // namespace lumenary
