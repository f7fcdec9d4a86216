#include "cleanup/CleanupRefusal.h"

#include <algorithm>

namespace lumenary {
namespace {

constexpr std::int64_t smallestAllowance = 1'048'576;
constexpr std::int64_t largestWithSmallestAllowance = 20'971'519;

struct Describe {
  std::string operator()(CleanupSafetyError error) const { return std::string(description(error)); }
  std::string operator()(StorageTrashError error) const { return std::string(description(error)); }
  std::string operator()(MoveRefusal error) const { return std::string(description(error)); }
  std::string operator()(const SystemError& error) const { return error.description(); }
  std::string operator()(const TrashError& error) const { return error.description(); }
};

}  // namespace

std::string_view description(CleanupSafetyError error) {
  switch (error) {
    case CleanupSafetyError::missing:
      return "The item no longer exists.";
    case CleanupSafetyError::symbolicLink:
      return "Symbolic links are excluded from cleanup.";
    case CleanupSafetyError::protectedPath:
      return "The path is outside a recognized generated-artifact directory.";
    case CleanupSafetyError::changedSize:
      return "The item changed since it was reviewed. Refresh before continuing.";
  }
  return {};
}

std::string_view description(MoveRefusal error) {
  switch (error) {
    case MoveRefusal::cancelled:
      return "It was stopped before this item, so it stays.";
    case MoveRefusal::survivorGone:
      return "The copy that was to stay can't be found, so this one stays.";
    case MoveRefusal::isSurvivor:
      return "Its other copy just went because this one stays, so it stays.";
    case MoveRefusal::sameFile:
      return "Both names are one file, so nothing would be freed.";
    case MoveRefusal::copiesDiffer:
      return "The copies aren't the same any more, so both stay.";
  }
  return {};
}

std::string description(const CleanupRefusal& refusal) { return std::visit(Describe{}, refusal); }

bool isSettled(const CleanupRefusal& refusal) {
  const auto* error = std::get_if<TrashError>(&refusal);
  return error == nullptr || error->isSettled;
}

bool differsTooMuch(std::int64_t measured, std::int64_t reviewed) {
  const std::int64_t allowance = reviewed > largestWithSmallestAllowance ? reviewed / 20 : smallestAllowance;
  // Unsigned, as the distance of two signed numbers may need all 64 bits.
  const std::uint64_t distance = static_cast<std::uint64_t>(std::max(measured, reviewed)) -
                                 static_cast<std::uint64_t>(std::min(measured, reviewed));
  return distance > static_cast<std::uint64_t>(allowance);
}

}  // namespace lumenary
