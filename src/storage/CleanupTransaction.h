#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Date.h"
#include "base/FileURL.h"
#include "base/JsonReader.h"
#include "base/UUID.h"

namespace lumenary {

/// One act of cleaning: one press of a button, one tidy, or one run of the command.
struct CleanupTransaction {
  enum class Source : std::uint8_t { storage, tidy, buildCleanup, apps };

  struct Item {
    enum class Outcome : std::uint8_t {
      movedToTrash,  ///< in the Trash, as far as known
      failed,        ///< the move did not happen
      restored,      ///< stands at `originalURL` again
      emptied,       ///< left the Trash; its space is really free
    };

    UUID id;
    FileURL originalURL;
    std::optional<FileURL> trashURL;  ///< absent when the move failed or the item was restored
    std::int64_t measuredBytes = 0;   ///< as measured when it was offered
    std::string ruleID;               ///< which rule sent it, "developer.node_modules"
    std::string ruleVersion = "1";
    Outcome outcome = Outcome::failed;
    std::string message;  ///< the words shown for its state

    /// It went back to where it stood.
    void markRestored();

    bool operator==(const Item&) const = default;
  };

  UUID id;
  Date timestamp;  ///< when the act finished
  Source source = Source::tidy;
  std::vector<Item> items;  ///< in the order of the attempt, failures included

  /// The sum of `measuredBytes` over the items that are in the Trash. A sum past 64 bits stops the program.
  std::int64_t movedBytes() const;

  /// One transaction from several: their items in the given order, a new identity, source `tidy`.
  static CleanupTransaction merging(std::span<const CleanupTransaction> transactions, Date now);

  bool operator==(const CleanupTransaction&) const = default;
};

/// The words by which a source and an outcome stand in JSON.
std::string_view rawValue(CleanupTransaction::Source source);
std::string_view rawValue(CleanupTransaction::Item::Outcome outcome);
std::optional<CleanupTransaction::Source> sourceOf(std::string_view rawValue);

/// The log's text: an array, pretty-printed, keys sorted, dates as ISO 8601 text, URLs as file URL text, absent options
/// left out.
std::string encodeCleanupTransactions(std::span<const CleanupTransaction> transactions);

/// No value where a required key is missing or of another type anywhere: such a file is unreadable as a whole.
/// `unavailable` alone says nothing about the text.
std::expected<std::vector<CleanupTransaction>, JsonDocument::Error> decodeCleanupTransactions(std::string_view text);

}  // namespace lumenary
