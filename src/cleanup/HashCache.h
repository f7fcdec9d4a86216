#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "storage/FileEntry.h"

namespace lumenary {

enum class DigestKind : std::uint8_t { partial, full };

/// Digests that were computed before, so that a second look at an unchanged disk reads almost nothing. It lives for one
/// run; one thread.
class HashCache {
 public:
  struct Record {
    std::int64_t size = 0;  ///< the entry's bytes when it was hashed
    double modified = 0;    ///< seconds since 1970, 0 where the entry has no date
    std::optional<std::string> partial{};
    std::optional<std::string> full{};

    bool operator==(const Record&) const = default;
  };
  using Records = std::map<std::string, Record, std::less<>>;  ///< by absolute path

  explicit HashCache(Records records) : records_(std::move(records)) {}

  /// The digest of a file that is as it was then, or what `compute` gives. Size and date are the proof of sameness.
  std::optional<std::string> hash(const FileEntry& entry, DigestKind kind,
                                  const std::function<std::optional<std::string>()>& compute);

  /// What this run confirmed or computed.
  const Records& used() const { return used_; }

 private:
  Record known(const FileEntry& entry) const;

  Records records_;
  Records used_;
};

/// A JSON object of one member a file; absent digests are left out.
std::string encodeHashRecords(const HashCache::Records& records);
/// No value for anything that isn't such an object, or where a digest isn't one.
std::optional<HashCache::Records> decodeHashRecords(std::string_view text);

}  // namespace lumenary
