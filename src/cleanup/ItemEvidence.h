#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/Date.h"
#include "cleanup/CleanupCatalog.h"
#include "cleanup/InstallerTarget.h"
#include "cleanup/ItemOwner.h"
#include "cleanup/UseDate.h"
#include "platform/AppRegistry.h"
#include "platform/FileMetadata.h"
#include "platform/FileReader.h"
#include "platform/Places.h"

namespace lumenary {

/// What asks are answered from. All of it must outlive the call that it is handed to.
struct EvidenceSources {
  const FileReader& reader;
  const AppRegistry& apps;
  const CleanupCatalog& catalog;
  const FileMetadata& metadata;
  const Places& places;
};

/// What a thing is and whether it is safe to remove, with the facts behind that. Advice: nothing here moves anything.
struct ItemEvidence {
  enum class Call : std::uint8_t { safe, lookFirst, keep };
  enum class Tone : std::uint8_t { good, neutral, caution };

  struct Fact {
    std::string symbol;  ///< the name of an icon
    std::string label;
    std::string value;
    Tone tone = Tone::neutral;

    bool operator==(const Fact&) const = default;
  };

  Call call = Call::lookFirst;
  std::string headline;
  std::vector<Fact> facts;

  bool operator==(const ItemEvidence&) const = default;

  /// Of one thing, or of some that are shown as one: then the first speaks for all. `paths` are absolute; `bytes` is
  /// what they come to, `canTrash` whether the gate lets them go, each where that is known. Reads the disk; what can't
  /// be read leaves its fact out. From any thread.
  static ItemEvidence gather(const EvidenceSources& sources, std::span<const std::string> paths,
                             std::optional<std::int64_t> bytes, std::optional<bool> canTrash, Date now);
};

/// What was found out about a thing; facts, call and headline follow from it alone.
struct EvidenceFindings {
  std::string path;       ///< standardised
  std::string home{};     ///< empty where it can't be told
  std::size_t count = 1;  ///< how many things are shown as this one
  bool isApp = false;
  bool isCache = false;  ///< stands in a folder for caches and holds nothing to be decided about
  const CleanupCatalog::Rule* rule = nullptr;
  std::optional<ItemOwner> owner{};
  std::optional<UseDate> lastUse{};
  std::optional<std::string> downloadedFrom{};
  std::optional<InstallerTarget> installer{};
  std::optional<std::int64_t> bytes{};
  std::optional<bool> canTrash{};
};
ItemEvidence evidenceOf(const EvidenceFindings& findings, Date now);

}  // namespace lumenary
