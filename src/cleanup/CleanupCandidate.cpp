#include "cleanup/CleanupCandidate.h"

#include <utility>

namespace lumenary {

std::string_view rawValue(CleanupCandidate::Classification classification) {
  switch (classification) {
    case CleanupCandidate::Classification::known:
      return "Known cleanup target";
    case CleanupCandidate::Classification::review:
      return "Look first";
    case CleanupCandidate::Classification::isProtected:
      return "Do not touch automatically";
  }
  std::unreachable();
}

}  // namespace lumenary
