#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/FileURL.h"
#include "base/UUID.h"
#include "platform/FileIdentity.h"

namespace lumenary {

/// A thing that a person may choose to move to the Trash.
struct CleanupCandidate {
  enum class Classification : std::uint8_t { known, review, isProtected };

  UUID id;  ///< fresh for every candidate
  FileURL url;
  std::int64_t byteCount = 0;  ///< allocated size when it was measured
  std::string reason;
  std::string consequences;
  Classification classification = Classification::review;
  /// Which thing was measured; the move acts on no other. Absent where it could not be read.
  std::optional<FileIdentity> identity;

  bool operator==(const CleanupCandidate&) const = default;
};

/// The text shown, which is the JSON value as well: "Known cleanup target", "Look first", "Do not touch automatically".
std::string_view rawValue(CleanupCandidate::Classification classification);

/// The result of one attempted move.
struct CleanupOutcome {
  UUID id;
  FileURL url;
  std::optional<FileURL> trashURL;  ///< where it went
  bool success = false;
  std::string message;  ///< the text to show
};

}  // namespace lumenary
