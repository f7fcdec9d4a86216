#include <cstddef>
#include <cstdint>

#include "base/AppFormatting.h"
#include "base/CheckedSum.h"
#include "base/Text.h"
#include "cleanup/command/Listing.h"

namespace lumenary::CleanupCommand {
namespace {

constexpr std::size_t sizeWidth = 10;
constexpr std::size_t dateWidth = 12;

std::string dateText(const Listing& listing, const CleanupCandidate& candidate) {
  const auto date = listing.lastUsed.find(candidate.url.path);
  return date == listing.lastUsed.end() ? "not sure" : AppFormatting::relativeDate(date->second, listing.now);
}

std::string row(const Listing& listing, const CleanupCandidate& candidate) {
  std::string text = paddedOrCut(AppFormatting::bytes(candidate.byteCount), sizeWidth) + " " +
                     paddedOrCut(dateText(listing, candidate), dateWidth) + " " + displayText(candidate.url.path);
  if (const auto result = listing.results.find(candidate.url.path);
      result != listing.results.end() && !result->second) {
    text += "  (not moved: " + result->second.error() + ")";
  }
  return text + "\n";
}

bool counts(const Listing& listing, const CleanupCandidate& candidate) {
  if (listing.act == Act::listed) {
    return true;
  }
  const auto result = listing.results.find(candidate.url.path);
  return result != listing.results.end() && result->second && result->second->has_value();
}

std::string summary(const Listing& listing) {
  std::size_t count = 0;
  std::int64_t byteCount = 0;
  for (const CleanupCandidate& candidate : listing.candidates) {
    if (counts(listing, candidate)) {
      ++count;
      byteCount = checkedSum(byteCount, candidate.byteCount);
    }
  }
  return (listing.act == Act::listed ? "Found: " : "Moved to Trash: ") + std::to_string(count) +
         (count == 1 ? " folder, " : " folders, ") + AppFormatting::bytes(byteCount) + "\n";
}

}  // namespace

std::string tableText(const Listing& listing) {
  std::string text;
  for (const CleanupCandidate& candidate : listing.candidates) {
    text += row(listing, candidate);
  }
  return text + summary(listing);
}

}  // namespace lumenary::CleanupCommand
