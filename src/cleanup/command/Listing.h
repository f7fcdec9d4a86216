#pragma once

#include <expected>
#include <map>
#include <optional>
#include <span>
#include <string>

#include "base/Date.h"
#include "base/FileURL.h"
#include "cleanup/CleanupCandidate.h"
#include "cleanup/DeveloperScanner.h"

/// What the command puts on its output: a table for eyes, or JSON for programs.
namespace lumenary::CleanupCommand {

/// Where a move ended: the place in the Trash, which a system may not tell, or the sentence of why the folder stays.
using MoveResult = std::expected<std::optional<FileURL>, std::string>;
using MoveResults = std::map<std::string, MoveResult>;  ///< by the path of the candidate; absent where none was tried

enum class Act { listed, moved };

/// What is printed; a view of values that must outlive it.
struct Listing {
  std::span<const CleanupCandidate> candidates;
  const DeveloperScanner::LastUsed& lastUsed;
  const MoveResults& results;
  Act act = Act::listed;
  Date now;
};

/// A line a candidate, and a line with their number and size. Of moved ones only those with a known place are counted.
std::string tableText(const Listing& listing);

/// An array with one object a candidate, and a line break. Paths are written reversibly.
std::string jsonText(const Listing& listing);

}  // namespace lumenary::CleanupCommand
