#include "cleanup/CleanupSafetyError.h"

namespace lumenary {
namespace {

struct Describe {
  std::string operator()(CleanupSafetyError error) const { return std::string(description(error)); }
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

std::string description(const CleanupRefusal& refusal) { return std::visit(Describe{}, refusal); }

bool isSettled(const CleanupRefusal& refusal) {
  const auto* error = std::get_if<TrashError>(&refusal);
  return error == nullptr || error->isSettled;
}

}  // namespace lumenary
