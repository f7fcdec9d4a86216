#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

#include "cleanup/DeveloperScanner.h"
#include "platform/linux/LinuxFileReader.h"
#include "support/HookedReader.h"
#include "support/TemporaryTree.h"

namespace lumenary {
namespace {

using Call = HookedReader::Call;
using Classification = CleanupCandidate::Classification;
using Strings = std::vector<std::string>;
using std::chrono::days;

const LinuxFileReader reader;
const Date old = std::chrono::sys_days(std::chrono::year(2020) / 3 / 1);

class FixedMounts final : public MountTable {
 public:
  std::vector<Mount> list;
  SystemResult<std::vector<Mount>> mounts() const override { return list; }
};

const FixedMounts noMounts;

Mount networkMount(std::string point) { return {.point = std::move(point), .type = "nfs", .kind = MountKind::network}; }

/// What a scan of a folder of the tree found: "root: artifact artifact", sorted, paths below the tree's root.
Strings found(const TemporaryTree& tree, std::string_view folder, const FileReader& through = reader,
              const FixedMounts& mounts = noMounts, std::stop_token stop = {}) {
  Strings lines;
  const auto relative = [&](const FileURL& url) { return url.path.substr(tree.root().size() + 1); };
  for (const DeveloperProject& project : DeveloperScanner(through, mounts).scan(tree.path(folder), stop)) {
    std::string line = relative(project.root) + ":";
    for (const FileURL& url : project.artifactURLs) {
      line += " " + relative(url) + (url.isFolder ? "/" : "");
    }
    lines.push_back(line);
  }
  std::ranges::sort(lines);
  return lines;
}

std::optional<Date> lastUsed(const TemporaryTree& tree, std::string_view artifact, const FileReader& through = reader,
                             const FixedMounts& mounts = noMounts, std::size_t entryLimit = 20000,
                             std::size_t depthLimit = 8) {
  return DeveloperScanner(through, mounts).lastUsed(tree.path(artifact), entryLimit, depthLimit);
}

TEST(DeveloperScanner, FindsProjectsAndWhatTheirBuildsMade) {
  struct {
    const char* story;
    std::vector<TreeEntry> tree;
    Strings expected;
  } const cases[] = {
      {"a folder target beside a build file is output",
       {{"c/app/Cargo.toml"}, {"c/app/target/x"}},
       {"c/app: c/app/target/"}},
      {"a target beside a package file only is walked",
       {{"c/app/package.json"}, {"c/app/target/dist/"}},
       {"c/app: c/app/target/dist/"}},
      {"a venv without its configuration is walked",
       {{"c/app/pyproject.toml"}, {"c/app/venv/build/"}},
       {"c/app: c/app/venv/build/"}},
      {"a venv with it is an artifact",
       {{"c/app/pyproject.toml"}, {"c/app/.venv/pyvenv.cfg"}, {"c/app/.venv/build/"}},
       {"c/app: c/app/.venv/"}},
      {"only the outer of nested artifacts counts",
       {{"c/app/package.json"}, {"c/app/node_modules/a/package.json"}, {"c/app/node_modules/node_modules/"}},
       {"c/app: c/app/node_modules/"}},
      {"an artifact without a project is dropped with all in it",
       {{"c/dist/app/package.json"}, {"c/dist/app/build/"}, {"package.json"}},
       {}},
      {"the chosen folder may be the project",
       {{"c/package.json"}, {"c/dist/"}, {"c/sub/build/"}},
       {"c: c/dist/ c/sub/build/"}},
      {"a repository is a project and isn't walked", {{"c/app/.git/build/"}, {"c/app/.git/package.json"}}, {"c/app:"}},
      {"a marker counts at depth 5 and not at 6",
       {{"c/1/2/3/4/package.json"}, {"c/a/b/c/d/e/package.json"}},
       {"c/1/2/3/4:"}},
      {"an artifact counts at depth 5 and not at 6",
       {{"c/package.json"}, {"c/1/2/3/4/build/"}, {"c/1/2/3/4/5/build/"}},
       {"c: c/1/2/3/4/build/"}},
      {"a plain file with the name of an artifact counts",
       {{"c/app/package.json"}, {"c/app/build", 10}},
       {"c/app: c/app/build"}},
      {"a link isn't followed", {{"elsewhere/app/package.json"}, {"c/link", LinkTo{"../elsewhere"}}}, {}},
      {"a marker that leads nowhere makes a project that owns nothing",
       {{"c/app/package.json", LinkTo{"nothing"}}, {"c/app/build/"}},
       {"c/app:"}},
      {"names are exact",
       {{"c/app/Package.json"}, {"c/b/package.json"}, {"c/b/Build/"}, {"c/b/node_modules2/"}},
       {"c/b:"}},
      {"an inner project owns what stands in it",
       {{"c/app/package.json"}, {"c/app/lib/go/pom.xml"}, {"c/app/lib/go/target/"}, {"c/app/lib/dist/"}},
       {"c/app/lib/go: c/app/lib/go/target/", "c/app: c/app/lib/dist/"}},
  };
  for (const auto& [story, entries, expected] : cases) {
    TemporaryTree tree({{"c/"}});
    for (const TreeEntry& entry : entries) {
      tree.build({entry});
    }
    EXPECT_EQ(found(tree, "c"), expected) << story;
  }
}

TEST(DeveloperScanner, LeavesOutWhatItCantReadAndMountsThatMayStopAnswering) {
  const TemporaryTree tree({{"c/a/package.json"}, {"c/b/package.json"}, {"c/b/build/"}, {"c/d/package.json"}});
  const HookedReader closed(reader, [](Call call, std::string_view name) -> std::optional<SystemError> {
    return call == Call::openFolder && name == "a" ? std::optional(SystemError{EACCES}) : std::nullopt;
  });
  EXPECT_EQ(found(tree, "c", closed), (Strings{"c/b: c/b/build/", "c/d:"}));

  FixedMounts mounts;
  mounts.list = {networkMount(tree.path("c")), networkMount(tree.path("c/b/build")), networkMount(tree.path("c/d"))};
  EXPECT_EQ(found(tree, "c", reader, mounts), (Strings{"c/a:", "c/b:"}));
  EXPECT_EQ(found(tree, "missing"), Strings{});
  EXPECT_EQ(found(tree, "c/a/package.json"), Strings{});
}

TEST(DeveloperScanner, ReturnsWhatItFoundWhenItIsStopped) {
  const TemporaryTree tree({{"c/a/package.json"}, {"c/a/build/"}, {"c/b/package.json"}, {"c/package.json"}});
  std::stop_source stop;
  const HookedReader stopping(reader, [&](Call call, std::string_view name) -> std::optional<SystemError> {
    if (call == Call::openFolder && name == "b") {
      stop.request_stop();
    }
    return {};
  });
  EXPECT_EQ(found(tree, "c", stopping, noMounts, stop.get_token()), Strings{"c/a: c/a/build/"});
}

TEST(DeveloperScanner, TellsTheRuntimeByTheFirstMatch) {
  const TemporaryTree tree({{"a/pyproject.toml"},
                            {"a/package.json"},
                            {"b/Package.swift"},
                            {"b/pyproject.toml"},
                            {"c/Package.swift"},
                            {"c/Cargo.toml"},
                            {"d/requirements.txt"}});
  std::string told;
  for (const auto& project : DeveloperScanner(reader, noMounts).scan(tree.root())) {
    told += project.name + " " + std::string(rawValue(project.runtime)) + "\n";
  }
  EXPECT_EQ(told, "a Node.js\nb Python\nc Swift\nd Other\n");
}

TEST(DeveloperScanner, MeasuresAndSortsProjectsAndCandidatesLargestFirst) {
  TemporaryTree tree({{"a/package.json"},
                      {"a/build/x", 20'000},
                      {"a/node_modules/x", 200'000},
                      {"b/Cargo.toml"},
                      {"b/target/x", 900'000},
                      {"c/.git/"},
                      {"d/package.json"},
                      {"d/dist/x", HardLinkTo{"a/build/x"}},
                      {"d/build/"}});
  const DeveloperScanner scanner(reader, noMounts);
  const auto projects = scanner.scan(tree.root());
  Strings told;
  for (const auto& project : projects) {
    told.push_back(project.name + " " + std::to_string(project.artifactBytes));
  }
  const auto bytes = [&](std::initializer_list<std::string_view> files) {
    return std::to_string(tree.allocatedBytes(files));
  };
  EXPECT_EQ(told, (Strings{"b " + bytes({"b/target/x"}), "a " + bytes({"a/build/x", "a/node_modules/x"}),
                           "d " + bytes({"a/build/x"}), "c 0"}));
  EXPECT_NE(projects[0].id, scanner.scan(tree.root())[0].id);

  tree.build({{"a/node_modules/more", 2'000'000}});
  const auto candidates = scanner.cleanupCandidates(projects);
  told.clear();
  for (const auto& candidate : candidates) {
    told.push_back(candidate.url.path.substr(tree.root().size() + 1) + " " + std::to_string(candidate.byteCount) + " " +
                   std::string(rawValue(candidate.classification)));
    EXPECT_EQ(candidate.identity, reader.attributes(candidate.url.path, LinkPolicy::refuse)->identity);
  }
  const std::string known = " Known cleanup target";
  EXPECT_EQ(told, (Strings{"a/node_modules " + bytes({"a/node_modules/x", "a/node_modules/more"}) + " Look first",
                           "b/target " + bytes({"b/target/x"}) + known, "a/build " + bytes({"a/build/x"}) + known,
                           "d/dist " + bytes({"a/build/x"}) + known, "d/build 0" + known}));
  EXPECT_EQ(candidates[0].reason, "Large dependency directory in a.");
  EXPECT_EQ(candidates[0].consequences, "Dependencies may need to be downloaded again before the project runs.");
  EXPECT_EQ(candidates[1].reason, "Recognized generated output in b.");
  EXPECT_EQ(candidates[1].consequences, "The project may regenerate this during the next build.");
}

TEST(DeveloperScanner, ReportsEachPhaseToAPersonWhoWaits) {
  const TemporaryTree tree({{"a/package.json"}, {"a/build/x", 1}, {"a/dist/x", 1}, {"b/package.json"}});
  std::string told;
  const auto tell = [&](const DeveloperScanner::Progress& progress) {
    told += "LMD"[static_cast<int>(progress.phase)] + std::to_string(progress.done) + "/" +
            std::to_string(progress.total) + " ";
  };
  const DeveloperScanner scanner(reader, noMounts);
  const auto projects = scanner.scan(tree.root(), {}, tell);
  EXPECT_EQ(told, "L0/0 L1/0 L2/0 M0/2 M1/2 M2/2 ");
  told.clear();
  EXPECT_EQ(scanner.cleanupCandidates(projects, {}, tell).size(), 2U);
  EXPECT_EQ(told, "M0/2 M1/2 M2/2 ");
}

TEST(DeveloperScanner, FindsTheNearestProjectWhileThePathBeginsWithTheBound) {
  const TemporaryTree tree({{"package.json"},
                            {"code/app/pom.xml"},
                            {"code/app/in/build/"},
                            {"code/x/build/"},
                            {"code2/.git/"},
                            {"code2/x/build/"},
                            {"code/dead/package.json", LinkTo{"nothing"}},
                            {"code/dead/build/"}});
  struct {
    const char* artifact;
    const char* bound;
    std::optional<std::string> expected;
  } const cases[] = {{"code/app/in/build", "code", "code/app"}, {"code/app/in/build", "code/app", "code/app"},
                     {"code/app/in/build", "code/app/in", {}},  {"code/x/build", "code", {}},
                     {"code2/x/build", "code", "code2"},        {"code/dead/build", "code", {}}};
  for (const auto& [artifact, bound, expected] : cases) {
    const auto nearest = DeveloperScanner::nearestProjectRoot(reader, tree.path(artifact), tree.path(bound));
    EXPECT_EQ(nearest, expected.transform([&](const std::string& path) { return tree.path(path); }))
        << artifact << " within " << bound;
  }
  EXPECT_EQ(DeveloperScanner::nearestProjectRoot(reader, tree.path("code/x/build"), "/"), tree.root());
}

TEST(DeveloperScanner, DatesAProjectByTheNewestThingThatAPersonOrARepositoryTouched) {
  const Date newer = old + days(9);
  struct {
    const char* story;
    const char* touched;
    std::optional<Date> expected;
  } const cases[] = {
      {"nothing", "", old},
      {"the artifact itself", "app/build", newer},
      {"a file in the artifact", "app/build/x", old},
      {"a file beside it", "app/main.c", newer},
      {"a folder beside it", "app/src", newer},
      {"a link beside it", "app/link", newer},
      {"a folder at the eighth level", "app/1/2/3/4/5/6/7/8", newer},
      {"a file below the eighth level", "app/1/2/3/4/5/6/7/8/file", old},
      {"another artifact", "app/src/node_modules", old},
      {"the view settings of a folder", "app/.DS_Store", old},
      {"the repository's index", "app/.git/index", newer},
      {"the repository's last fetch", "app/.git/FETCH_HEAD", newer},
      {"the repository's objects", "app/.git/objects", old},
      {"a repository further down", "app/src/.git/index", old},
      {"what stands around the parent", "other", old},
  };
  TemporaryTree tree({{"app/build/x"},
                      {"app/main.c"},
                      {"app/src/node_modules/"},
                      {"app/link", LinkTo{"../other/file"}},
                      {"app/1/2/3/4/5/6/7/8/file"},
                      {"app/.DS_Store"},
                      {"app/.git/index"},
                      {"app/.git/HEAD"},
                      {"app/.git/FETCH_HEAD"},
                      {"app/.git/objects"},
                      {"app/src/.git/index"},
                      {"other/file"}});
  for (const auto& [story, touched, expected] : cases) {
    tree.setAllModified("", old);
    if (*touched != '\0') {
      tree.setModified(touched, newer);
    }
    EXPECT_EQ(lastUsed(tree, "app/build"), expected) << story;
  }
}

TEST(DeveloperScanner, NeverCallsAProjectOldThatItCouldNotReadAsAWhole) {
  TemporaryTree tree({{"app/build/x"}, {"app/src/main.c"}, {"app/.git/HEAD"}});
  tree.setAllModified("", old);
  ASSERT_EQ(lastUsed(tree, "app/build"), old);
  struct {
    Call call;
    std::string name;
    int error;
    std::optional<Date> expected;
  } const cases[] = {
      {Call::openFolder, tree.path("app"), EACCES, {}},
      {Call::openFolder, "src", EACCES, {}},
      {Call::openFolder, "src", ENOENT, {}},
      {Call::nextEntries, "", EIO, {}},
      {Call::attributes, "main.c", EACCES, {}},
      {Call::attributes, "main.c", ENOENT, old},
      {Call::attributes, tree.path("app/build"), EIO, {}},
      {Call::attributes, tree.path("app/.git/HEAD"), EACCES, {}},
      {Call::attributes, tree.path("app/.git/HEAD"), ENOENT, old},
  };
  for (const auto& [failing, name, error, expected] : cases) {
    const HookedReader closed(reader, [&](Call call, std::string_view asked) -> std::optional<SystemError> {
      return call == failing && asked == name ? std::optional(SystemError{error}) : std::nullopt;
    });
    EXPECT_EQ(lastUsed(tree, "app/build", closed), expected) << name << " " << error;
  }
  FixedMounts mounts;
  mounts.list = {networkMount(tree.path("app")), networkMount(tree.path("app/build/x"))};
  EXPECT_EQ(lastUsed(tree, "app/build", reader, mounts), old);
  mounts.list.push_back(networkMount(tree.path("app/src")));
  EXPECT_EQ(lastUsed(tree, "app/build", reader, mounts), std::nullopt);
}

TEST(DeveloperScanner, KnowsNoDateOfAProjectBeyondTheEntryLimit) {
  TemporaryTree tree({{"app/build/a/b/c"}, {"app/.DS_Store"}, {"app/.git/HEAD"}, {"app/1"}, {"app/2/3"}, {"app/4"}});
  tree.setAllModified("", old);
  EXPECT_EQ(lastUsed(tree, "app/build", reader, noMounts, 4), old);
  EXPECT_EQ(lastUsed(tree, "app/build", reader, noMounts, 3), std::nullopt);
  EXPECT_EQ(lastUsed(tree, "app/build", reader, noMounts, 3, 1), old) << "what is deeper doesn't count";
}

TEST(DeveloperScanner, CallsUntouchedWhatIsDatedBeforeTheCutOff) {
  const Date now = old + days(400);
  const Date cutOff = *calendarDaysBefore(now, 30);
  struct {
    const char* path;
    Classification classification;
    std::optional<Date> date;
  } const cases[] = {{"/older", Classification::known, cutOff - std::chrono::microseconds(1)},
                     {"/at the cut-off", Classification::known, cutOff},
                     {"/dependencies", Classification::review, cutOff - days(100)},
                     {"/protected", Classification::isProtected, cutOff - days(100)},
                     {"/unknown", Classification::known, {}},
                     {"/today", Classification::known, now}};
  std::vector<CleanupCandidate> candidates;
  DeveloperScanner::LastUsed dates;
  for (const auto& [path, classification, date] : cases) {
    candidates.emplace_back().url.path = path;
    candidates.back().classification = classification;
    if (date) {
      dates[path] = *date;
    }
  }
  Strings kept;
  for (const auto& candidate : DeveloperScanner::untouched(candidates, dates, 30, now)) {
    kept.push_back(candidate.url.path);
  }
  EXPECT_EQ(kept, (Strings{"/older", "/dependencies"}));
  EXPECT_TRUE(DeveloperScanner::untouched(candidates, dates, INT64_MAX, now).empty());
}

}  // namespace
}  // namespace lumenary
