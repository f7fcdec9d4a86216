#include "cleanup/command/CleanupCommand.h"

#include <algorithm>
#include <cstddef>
#include <expected>
#include <optional>
#include <stop_token>
#include <vector>

#include "base/Text.h"
#include "cleanup/CleanupCandidate.h"
#include "cleanup/DeveloperScanner.h"
#include "cleanup/command/Listing.h"
#include "cleanup/command/Options.h"
#include "cleanup/command/ProgressLine.h"
#include "cleanup/command/RootFolder.h"
#include "cleanup/command/Selection.h"
#include "cleanup/command/TrashRun.h"
#include "cleanup/command/Wait.h"

namespace lumenary::CleanupCommand {
namespace {

struct Found {
  std::vector<CleanupCandidate> candidates;
  DeveloperScanner::LastUsed lastUsed;
};

DeveloperScanner::LastUsed readDates(const DeveloperScanner& scanner, std::span<const CleanupCandidate> candidates,
                                     const std::stop_token& stop, const DeveloperScanner::ProgressCallback& progress) {
  DeveloperScanner::LastUsed dates;
  for (std::size_t index = 0; index < candidates.size() && !stop.stop_requested(); ++index) {
    progress({DeveloperScanner::Progress::Phase::dating, index, candidates.size()});
    const std::string& path = candidates[index].url.path;
    if (const auto date =
            scanner.lastUsed(path, DeveloperScanner::lastUsedEntryLimit, DeveloperScanner::lastUsedDepthLimit)) {
      dates.emplace(path, *date);
    }
  }
  return dates;
}

Found find(const DeveloperScanner& scanner, const std::string& root, const std::stop_token& stop,
           const DeveloperScanner::ProgressCallback& progress) {
  Found found;
  found.candidates = scanner.cleanupCandidates(scanner.scan(root, stop, progress), stop, progress);
  found.lastUsed = readDates(scanner, found.candidates, stop, progress);
  return found;
}

/// Why the run ends before it began.
struct Refusal {
  std::string sentence;
  std::int32_t status = wrongUsage;
};

/// Whether the folder can be listed, and entered: a scan tells nothing of what it can't read.
SystemResult<void> readFirstEntries(const FileReader& reader, const std::string& folder) {
  const auto opened = reader.openFolder(folder, LinkPolicy::follow);
  if (!opened) {
    return std::unexpected(opened.error());
  }
  if (const auto entered = reader.attributes(*opened, "."); !entered) {
    return std::unexpected(entered.error());
  }
  FolderScratch scratch;
  const auto entries = reader.nextEntries(*opened, scratch);
  return entries ? SystemResult<void>() : std::unexpected(entries.error());
}

/// The folder to scan, which can be read.
std::expected<std::string, Refusal> folderToScan(const Options& options, const Platform& platform) {
  auto named = options.root;
  if (!named) {
    auto setting = platform.defaults->string("codeFolder");
    if (!setting) {
      return std::unexpected(Refusal{setting.error() + " Pass --root PATH.\n", failed});
    }
    named = *std::move(setting);
  }
  if (!named) {
    return std::unexpected(Refusal{"No code folder yet. Choose one in the app, or pass --root PATH.\n"});
  }
  auto root = rootFolder(*platform.reader, *named, platform.places.home);
  if (!root) {
    return std::unexpected(Refusal{"Not a folder: " + displayText(root.error()) + "\n"});
  }
  if (const auto read = readFirstEntries(*platform.reader, *root); !read) {
    return std::unexpected(
        Refusal{"The folder can't be read: " + displayText(*root) + ": " + read.error().description() + "\n", failed});
  }
  return *std::move(root);
}

/// Why nothing may be written for this person, if so: `sudo` can keep another person's variables, and what it made in
/// their home folder they could neither change nor empty.
std::optional<std::string> reasonToMoveNothing(const FileReader& reader, const Places& places) {
  const auto home = reader.attributes(places.home, LinkPolicy::follow);
  if (!home) {
    return "Your home folder can't be looked at, so nothing is moved: " + displayText(places.home) + "\n";
  }
  const auto data = reader.attributes(places.dataHome, LinkPolicy::follow);
  const bool isHomeForeign = home->owner != places.userID;
  if (!isHomeForeign && (!data || data->owner == places.userID)) {
    return std::nullopt;
  }
  return "Your data would be written to a folder of another user, so nothing is moved: " +
         displayText(isHomeForeign ? places.home : places.dataHome) + "\n";
}

void tellWhatIsLeft(const TrashRun& run, std::size_t selected, Terminal& terminal) {
  if (run.isRecordPending) {
    terminal.writeError("The record of this run could not be saved yet. It is kept and saved at the next run.\n");
  }
  if (const std::size_t left = selected - run.attempted; left > 0) {
    terminal.writeError("Stopped. " + std::to_string(left) +
                        (left == 1 ? " folder stays where it is.\n" : " folders stay where they are.\n"));
  }
}

}  // namespace

std::int32_t run(std::span<const std::string> arguments, Platform& platform) {
  Terminal& terminal = *platform.terminal;
  const auto options = parse(arguments);
  if (!options) {
    terminal.writeError(displayText(options.error().message) + "\n" + std::string(usage));
    return wrongUsage;
  }
  if (options->trash) {
    if (const auto reason = reasonToMoveNothing(*platform.reader, platform.places)) {
      terminal.writeError(*reason);
      return wrongUsage;
    }
  }
  const auto root = folderToScan(*options, platform);
  if (!root) {
    terminal.writeError(root.error().sentence);
    return root.error().status;
  }

  const std::stop_token stop = platform.interruption->token();
  const DeveloperScanner scanner(*platform.reader, *platform.mountTable);
  ProgressLine progressLine(terminal, ProgressLine::Clock::now());
  const Found found = wait(progressLine, [&] {
    return find(scanner, *root, stop, [&](const auto& progress) { progressLine.show(progress); });
  });
  progressLine.clear();
  if (stop.stop_requested()) {
    platform.interruption->endProcessIfInterrupted();
    return interrupted;
  }

  const Date now = platform.now();
  const std::vector<CleanupCandidate> selected = selection(found.candidates, found.lastUsed, options->days, now);
  TrashRun trashRun{.results = {}, .attempted = selected.size()};
  if (options->trash) {
    trashRun = moveToTrash(selected, platform);
  }
  const Listing listing{.candidates = std::span(selected).first(trashRun.attempted),
                        .lastUsed = found.lastUsed,
                        .results = trashRun.results,
                        .act = options->trash ? Act::moved : Act::listed,
                        .now = now};
  const bool isWritten = terminal.writeOutput(options->json ? jsonText(listing) : tableText(listing));
  if (!isWritten) {
    terminal.writeError("The list could not be written.\n");
  }
  tellWhatIsLeft(trashRun, selected.size(), terminal);
  platform.interruption->endProcessIfInterrupted();

  const bool allMoved =
      std::ranges::all_of(trashRun.results, [](const auto& entry) { return entry.second.has_value(); });
  return isWritten && allMoved ? finished : failed;
}

}  // namespace lumenary::CleanupCommand
