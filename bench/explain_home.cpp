// explain_home ROOT: takes a folder for a home, scans it, and prints the plan, the groups to look at first, what a
// press of the button would take, and how much of the home some rule explains. Markdown.

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "base/AppFormatting.h"
#include "base/Path.h"
#include "base/StableSort.h"
#include "cleanup/CleanSelection.h"
#include "cleanup/CleanupCatalog.h"
#include "cleanup/DeveloperScanner.h"
#include "cleanup/DuplicateFinder.h"
#include "cleanup/LookFirstGroup.h"
#include "cleanup/TidyPlanner.h"
#include "platform/Platform.h"
#include "platform/UserFolders.h"
#include "storage/BuildArtifacts.h"
#include "storage/StorageKind.h"
#include "storage/StorageScanner.h"

namespace {

using namespace lumenary;
namespace fs = std::filesystem;

Places placesAt(const Places& real, const std::string& home) {
  Places places = real;
  places.home = home;
  places.dataHome = home + "/.local/share";
  places.configHome = home + "/.config";
  places.cacheHome = home + "/.cache";
  places.stateHome = home + "/.local/state";
  places.support = places.dataHome + "/Lumenary";
  return places;
}

/// Which rule speaks of a file, found by going up from it.
class Explainer {
 public:
  Explainer(const FileReader& reader, const CleanupCatalog& catalog, const Places& places)
      : reader_(reader), catalog_(catalog), home_(places.home), personal_(places.personalFolders) {}

  /// Empty where none does.
  std::string explain(const std::string& path) {
    if (const auto* rule = catalog_.match(path, home_)) {
      return rule->title;
    }
    return ofFolder(std::string(parentPath(path)));
  }

 private:
  std::string ofFolder(const std::string& folder) {
    if (folder.size() <= home_.size()) {
      return "";
    }
    const auto [known, isNew] = folders_.try_emplace(folder);
    if (isNew) {
      known->second = find(folder);
    }
    return known->second;
  }
  std::string find(const std::string& folder) {
    const std::string_view name = lastPathComponent(folder);
    if (DeveloperScanner::isArtifact(reader_, folder)) {
      return "Build output";
    }
    if (name == ".git") {
      return "Git history";
    }
    const bool isProject = std::ranges::any_of(
        projectMarkers, [&](std::string_view marker) { return reader_.exists(folder + "/" + std::string(marker)); });
    if (isProject) {
      return "Project source";
    }
    const bool isPersonal = StorageScanner::category(folder.substr(home_.size())) == StorageCategory::personal ||
                            name == "Videos" || std::ranges::find(personal_, folder) != personal_.end();
    return isPersonal ? "Your own files" : ofFolder(std::string(parentPath(folder)));
  }

  const FileReader& reader_;
  const CleanupCatalog& catalog_;
  std::string home_;
  std::vector<std::string> personal_;
  std::map<std::string, std::string> folders_;
};

struct Explained {
  std::map<std::string, std::int64_t> bytesByRule;
  std::map<std::string, std::int64_t> unexplained;  ///< by the two outermost folders
  std::int64_t total = 0;
};

Explained explainAll(Explainer& explainer, const std::string& home) {
  Explained result;
  std::set<std::pair<dev_t, ino_t>> linked;
  for (const auto& entry : fs::recursive_directory_iterator(home, fs::directory_options::skip_permission_denied)) {
    struct stat status{};
    if (::lstat(entry.path().c_str(), &status) != 0 || !S_ISREG(status.st_mode) ||
        (status.st_nlink > 1 && !linked.insert({status.st_dev, status.st_ino}).second)) {
      continue;
    }
    const std::int64_t bytes = std::int64_t{status.st_blocks} * 512;
    result.total += bytes;
    const std::string rule = explainer.explain(entry.path().string());
    if (!rule.empty()) {
      result.bytesByRule[rule] += bytes;
      continue;
    }
    const std::string relative = entry.path().string().substr(home.size() + 1);
    const std::size_t first = relative.find('/');
    const std::size_t second = first == std::string::npos ? first : relative.find('/', first + 1);
    result.unexplained["~/" + relative.substr(0, second)] += bytes;
  }
  return result;
}

void printSizes(const char* head, const std::map<std::string, std::int64_t>& bytes, std::size_t most) {
  using Row = std::pair<std::string, std::int64_t>;
  const auto rows =
      stableSorted(std::vector<Row>(bytes.begin(), bytes.end()), [](const Row& row) { return -row.second; });
  std::printf("| %s | size |\n| --- | ---: |\n", head);
  for (std::size_t index = 0; index < std::min(most, rows.size()); ++index) {
    std::printf("| %s | %s |\n", rows[index].first.c_str(), AppFormatting::bytes(rows[index].second).c_str());
  }
  std::puts(rows.size() > most ? ("\n" + std::to_string(rows.size() - most) + " more, smaller ones.\n").c_str() : "");
}

std::string shown(const std::string& path, const std::string& home) { return "~" + path.substr(home.size()); }

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 2) {
    std::fputs("Usage: explain_home ROOT\n", stderr);
    return 2;
  }
  const std::string home = standardise(arguments[1]);
  const Platform platform = makePlatform();
  const Places places = withUserFolders(placesAt(platform.places, home), *platform.files);
  const auto result =
      StorageScanner(*platform.reader, *platform.mountTable, places, platform.now, platform.processors()).scan(home);
  if (!result) {
    return 1;
  }
  const CleanupCatalog catalog(*platform.appNames, places.downloads);
  const StorageTrashGate gate(*platform.reader, *platform.mountTable, places);
  const PerfProbe probe{.disabled = {"hashcache"}};
  const auto duplicates = DuplicateFinder(*platform.reader, *platform.contents, *platform.files, gate, places, probe)
                              .find(result->entries, {});
  const TidyPlan plan =
      TidyPlanner(*platform.reader, catalog, gate).plan(*result, duplicates, {}, true, platform.now());

  std::printf("%s in %lld items.\n\n#### The plan: %s\n\n", AppFormatting::bytes(result->totalBytes).c_str(),
              static_cast<long long>(result->scannedItemCount), AppFormatting::bytes(plan.bytes).c_str());
  std::puts("| group | size | why it can go |\n| --- | ---: | --- |");
  for (const TidyPlan::Group& group : plan.groups()) {
    std::printf("| %s | %s | %s |\n", group.title.c_str(), AppFormatting::bytes(group.bytes).c_str(),
                group.reason.c_str());
  }
  const auto selection = CleanSelection::suggested(&plan, {}, {}, {}, {}, platform.now());
  std::int64_t suggested = 0;
  for (const auto& item : selection.items()) {
    suggested += item.bytes;
  }
  std::printf("\nOne press takes %s of it; the rest is to be looked at first, or comes with its project.\n\n",
              AppFormatting::bytes(suggested).c_str());
  std::puts(
      "#### To look at first\n\n| group | size | what it is | if it goes | better |\n| --- | ---: | --- | --- | --- |");
  for (const LookFirstGroup& group : LookFirstGroup::groups(*result->folderByteTotals, home, catalog)) {
    std::printf("| %s (%s) | %s | %s | %s | %s |\n", group.title.c_str(), shown(group.urls.front().path, home).c_str(),
                AppFormatting::bytes(group.bytes).c_str(), group.what.c_str(), group.ifRemoved.c_str(),
                group.betterWay.value_or("").c_str());
  }
  Explainer explainer(*platform.reader, catalog, places);
  const Explained explained = explainAll(explainer, home);
  std::int64_t known = 0;
  for (const auto& [rule, bytes] : explained.bytesByRule) {
    known += bytes;
  }
  std::printf("\n#### Explained: %.1f %%\n\n",
              100.0 * static_cast<double>(known) / static_cast<double>(std::max<std::int64_t>(1, explained.total)));
  printSizes("by", explained.bytesByRule, 100);
  printSizes("not explained", explained.unexplained, 12);
  return 0;
}
