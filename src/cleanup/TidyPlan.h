#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "storage/FileEntry.h"

namespace lumenary {

/// One thing that can go with no further thought.
struct TidyItem {
  enum class Kind : std::uint8_t { cache, duplicate, installer, junk, buildFiles };

  FileEntry entry;
  Kind kind = Kind::cache;
  std::string title;   ///< of its group in the plan
  std::string reason;  ///< one sentence for the person
  /// Of a duplicate: the copy that stays. The item goes only beside it.
  std::optional<FileEntry> survivor{};

  bool operator==(const TidyItem&) const = default;
};

/// "cache", "duplicate", "installer", "junk", "buildFiles".
std::string_view rawValue(TidyItem::Kind kind);

/// A short list of what can go. A byte sum that leaves 64 bits stops the program.
struct TidyPlan {
  TidyPlan() = default;
  explicit TidyPlan(std::vector<TidyItem> planned);

  /// All items of one title.
  struct Group {
    std::string title;
    std::int64_t bytes = 0;
    std::string reason;  ///< of its first item

    bool operator==(const Group&) const = default;
  };
  /// Largest first.
  std::vector<Group> groups() const;

  std::vector<TidyItem> items;
  std::int64_t bytes = 0;
  std::int64_t safeBytes = 0;  ///< of caches, duplicates and junk
  std::int64_t buildBytes = 0;
  std::size_t buildItemCount = 0;

  bool operator==(const TidyPlan&) const = default;
};

/// What a tidy did, a line a group: "Yarn cache · 60 MB: Downloaded again the next time a project needs it."
std::vector<std::string> receiptLines(const TidyPlan& plan);

}  // namespace lumenary
