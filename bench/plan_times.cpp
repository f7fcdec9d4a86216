// plan_times [ROUNDS]: how long the plan of a full-size scan takes without a disk, and what one question to the gate
// and to the catalog costs on paths as they stand in a home. Prints a line of JSON for each: times in nanoseconds,
// instructions of the processor where it counts them, and how often the disk was asked.
//
// plan_times only QUESTION ROUNDS: the same work and nothing else, for whoever counts instructions from outside.

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "MadeScan.h"
#include "base/JsonWriter.h"
#include "base/Path.h"
#include "cleanup/LookFirstGroup.h"
#include "cleanup/TidyPlanner.h"

namespace {

using namespace lumenary;

const std::string home = "/home/person";

/// Knows of nothing, and counts what it is asked.
class NoDisk final : public FileReader {
 public:
  mutable std::map<std::string, int, std::less<>> asked;

  SystemResult<Descriptor> openFolder(std::string_view, LinkPolicy) const override { return missing(); }
  SystemResult<Descriptor> openFolder(const Descriptor&, const char*) const override { return missing(); }
  SystemResult<std::span<const FolderEntry>> nextEntries(const Descriptor&, FolderScratch&) const override {
    return missing();
  }
  SystemResult<FileAttributes> attributes(const Descriptor&, const char*) const override { return missing(); }
  SystemResult<FileAttributes> attributes(const Descriptor&) const override { return missing(); }
  SystemResult<FileAttributes> attributes(std::string_view path, LinkPolicy) const override {
    if (const auto known = asked.find(path); known != asked.end()) {
      ++known->second;
    } else {
      asked.emplace(path, 1);
    }
    return missing();
  }
  SystemResult<std::string> realPath(std::string_view path) const override { return std::string(path); }

 private:
  static std::unexpected<SystemError> missing() { return std::unexpected(SystemError{2}); }
};

class NoMounts final : public MountTable {
 public:
  SystemResult<std::vector<Mount>> mounts() const override { return std::vector<Mount>(); }
};

class NoApps final : public AppNames {
 public:
  std::optional<std::string> nameOf(std::string_view) const override { return std::nullopt; }
};

Places placesOfPerson() {
  Places places;
  places.home = home;
  places.dataHome = home + "/.local/share";
  places.configHome = home + "/.config";
  places.cacheHome = home + "/.cache";
  places.stateHome = home + "/.local/state";
  return places;
}

/// The made scan, half of its folders put where caches, projects and apps have theirs, and a quarter of its files in
/// Documents as copies.
struct Question {
  Question() {
    constexpr std::array around = {"/.cache/browser/Default",  "/Library/Caches/com.maker.app",
                                   "/code/app/node_modules",   "/.cargo/registry/src",
                                   "/.codex/sessions",         "/Documents/notes",
                                   "/.local/share/containers", "/.var/app/org.maker.App/cache"};
    std::vector<FolderByteTotals::Folder> folders;
    for (const std::string_view place : around) {
      for (std::string path = home + std::string(place); path != home; path = parentPath(path)) {
        folders.push_back({path, std::int64_t{1} << 33});
      }
    }
    for (const auto& folder : *result.folderByteTotals) {
      const std::size_t index = folders.size();
      const std::string below = folder.path.substr(home.size());
      folders.push_back(
          {index % 2 == 0 ? folder.path : home + around.at(index / 2 % around.size()) + below, folder.bytes});
    }
    result.folderByteTotals = FolderByteTotals(std::move(folders));
    for (std::size_t index = 0; index < result.entries.size(); index += 4) {
      FileEntry& entry = result.entries[index];
      entry.url.path = home + "/Documents/sub " + std::to_string(index % 97) + "/" + entry.name;
      if (index % 8 == 0) {
        duplicates.push_back({.id = "digest", .keep = entry, .extras = {entry}, .sameFolder = false});
      }
    }
  }

  TidyPlan plan() { return TidyPlanner(disk, catalog, gate).plan(result, duplicates, {}, true, result.scannedAt); }
  std::size_t lookFirst() const { return LookFirstGroup::groups(*result.folderByteTotals, home, catalog).size(); }
  std::size_t ask(std::string_view what) {
    std::size_t answers = 0;
    if (what == "gate") {
      for (const FileEntry& entry : result.entries) {
        answers += gate.canMoveToTrash(entry) ? 1 : 0;
      }
    } else if (what == "catalog") {
      for (const auto& folder : *result.folderByteTotals) {
        answers += catalog.match(folder.path, home) != nullptr ? 1 : 0;
      }
    } else {
      answers = what == "plan" ? plan().items.size() : lookFirst();
    }
    return answers;
  }
  std::size_t countOf(std::string_view what) const {
    return what == "gate" ? result.entries.size() : what == "catalog" ? result.folderByteTotals->size() : 1;
  }

  Places places = placesOfPerson();
  NoDisk disk;
  NoMounts mounts;
  NoApps apps;
  StorageScanResult result = MadeScan::make();
  std::vector<DuplicateGroup> duplicates;
  CleanupCatalog catalog{apps};
  StorageTrashGate gate{disk, mounts, places};
};

}  // namespace

int main(int argumentCount, char** arguments) {
  const bool isOnly = argumentCount == 4;
  std::size_t rounds = 25;
  if (argumentCount > 1) {
    const std::string_view text = arguments[argumentCount - 1];
    std::from_chars(text.data(), text.data() + text.size(), rounds);
  }
  Question question;
  for (const std::string_view what : {"plan", "lookFirst", "gate", "catalog"}) {
    if (isOnly && what != arguments[2]) {
      continue;
    }
    std::size_t answers = 0;
    std::vector<double> times;
    for (std::size_t round = 0; round < rounds; ++round) {
      question.disk.asked.clear();
      const auto started = std::chrono::steady_clock::now();
      answers = question.ask(what);
      const std::chrono::duration<double, std::nano> took = std::chrono::steady_clock::now() - started;
      times.push_back(took.count() / static_cast<double>(question.countOf(what)));
    }
    std::int64_t most = 0;
    for (const auto& [path, count] : question.disk.asked) {
      most = std::max<std::int64_t>(most, count);
    }
    JsonWriter json(JsonWriter::Layout::compact);
    json.beginObject();
    json.key("what").string(what);
    json.key("count").unsignedInteger(question.countOf(what));
    json.key("answers").unsignedInteger(answers);
    json.key("pathsAsked").unsignedInteger(question.disk.asked.size());
    json.key("mostOften").integer(most);
    json.key("times").beginArray();
    for (const double time : times) {
      json.number(time);
    }
    json.endArray().endObject();
    std::puts(json.take().c_str());
  }
  return 0;
}
