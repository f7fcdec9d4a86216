#include "cleanup/ItemEvidence.h"

#include <algorithm>
#include <cstddef>

#include "base/Path.h"
#include "base/Text.h"
#include "cleanup/LinuxCatalog.h"

namespace lumenary {
namespace {

/// How many of the things that are shown as one are asked when they were used.
constexpr std::size_t askedItems = 12;

/// A folder that is an app, or on Linux a file that is one.
bool isAppPath(std::string_view lowered) { return lowered.ends_with(".app") || lowered.ends_with(".appimage"); }

bool isInCaches(std::string_view lowered, std::string_view path, std::string_view home) {
  if (!lowered.contains("/library/caches/") && !lowered.contains("/.cache/")) {
    return false;
  }
  const LinuxMatch known = matchLinuxRows(path, home);
  return !known.holdsReview && !known.holdsKept;
}

}  // namespace

ItemEvidence ItemEvidence::gather(const EvidenceSources& sources, std::span<const std::string> paths,
                                  std::optional<std::int64_t> bytes, std::optional<bool> canTrash, Date now) {
  if (paths.empty()) {
    return {.call = Call::lookFirst, .headline = "Nothing to inspect.", .facts = {}};
  }
  std::vector<std::string> asked;
  for (const std::string& path : paths.first(std::min(paths.size(), askedItems))) {
    asked.push_back(standardise(path));
  }
  EvidenceFindings findings{.path = asked.front(), .home = sources.places.home, .count = paths.size()};
  const std::string lowered = loweredASCII(findings.path);
  const auto attributes = sources.reader.attributes(findings.path, LinkPolicy::refuse);
  const bool isFolder = attributes && attributes->identity.kind == FileKind::folder;
  findings.isApp = isAppPath(lowered);
  findings.isCache = isInCaches(lowered, findings.path, findings.home);
  findings.rule = sources.catalog.match(findings.path, findings.home);
  findings.owner = findings.isApp ? std::nullopt : ItemOwner::of(findings.path, sources.places, sources.apps);
  findings.lastUse = isFolder && !findings.isApp ? lastChangeBelow(sources.reader, asked)
                                                 : lastUseOfFiles(sources.reader, sources.metadata, asked);
  if (!isFolder) {
    findings.downloadedFrom = sources.metadata.downloadedFrom(findings.path);
    findings.installer = installedName(lastPathComponent(findings.path)).empty()
                             ? std::nullopt
                             : installerTarget(findings.path, sources.apps.apps());
  }
  findings.bytes = bytes;
  findings.canTrash = canTrash;
  return evidenceOf(findings, now);
}

}  // namespace lumenary
