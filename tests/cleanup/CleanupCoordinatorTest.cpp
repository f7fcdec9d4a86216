#include <gtest/gtest.h>

#include <cerrno>
#include <limits>
#include <map>

#include "base/Path.h"
#include "cleanup/CleanupCoordinator.h"
#include "platform/linux/LinuxFileReader.h"
#include "support/FakeFiles.h"
#include "support/FakeTrash.h"
#include "support/HookedReader.h"
#include "support/TemporaryTree.h"

namespace lumenary {
namespace {

constexpr std::uint32_t person = 1000;

/// Reads a temporary tree as if it were the whole disk, so that no folder around it can play a part. Sizes, owners and
/// flags are the test's own, told by name.
class WholeDiskReader final : public FileReader {
 public:
  explicit WholeDiskReader(const TemporaryTree& tree) : tree_(tree) {}

  std::map<std::string, std::int64_t> allocatedBytes;
  std::string foreign;
  std::string unchangeable;

  SystemResult<Descriptor> openFolder(std::string_view path, LinkPolicy links) const override {
    return real_.openFolder(onDisk(path), links);
  }
  SystemResult<Descriptor> openFolder(const Descriptor& parent, const char* name) const override {
    return real_.openFolder(parent, name);
  }
  SystemResult<std::span<const FolderEntry>> nextEntries(const Descriptor& folder,
                                                         FolderScratch& scratch) const override {
    return real_.nextEntries(folder, scratch);
  }
  SystemResult<FileAttributes> attributes(const Descriptor& folder, const char* name) const override {
    auto attributes = real_.attributes(folder, name);
    if (attributes) {
      const auto size = allocatedBytes.find(name);
      attributes->allocatedBytes = size == allocatedBytes.end() ? 0 : size->second;
      attributes->owner = name == foreign ? person + 1 : person;
      attributes->isUnchangeable = name == unchangeable;
    }
    return attributes;
  }
  SystemResult<FileAttributes> attributes(const Descriptor& folder) const override { return real_.attributes(folder); }
  SystemResult<FileAttributes> attributes(std::string_view path, LinkPolicy links) const override {
    return real_.attributes(onDisk(path), links);
  }
  SystemResult<std::string> realPath(std::string_view path) const override { return std::string(path); }

 private:
  std::string onDisk(std::string_view path) const { return standardise(tree_.root() + std::string(path)); }

  LinuxFileReader real_;
  const TemporaryTree& tree_;
};

/// A disk with some projects, and a gate in front of the Trash.
struct Gate {
  TemporaryTree tree{{"code/me/app/package.json"},
                     {"code/me/app/node_modules/a.js"},
                     {"code/me/app/build"},
                     {"code/me/app/dist", LinkTo{"node_modules"}},
                     {"code/me/app/.next", LinkTo{"gone"}},
                     {"code/me/app/src/"},
                     {"code/me/app/source", LinkTo{"src"}},
                     {"code/me/app/target/"},
                     {"code/me/app/.venv/"},
                     {"code/me/java/pom.xml"},
                     {"code/me/java/target/"},
                     {"code/me/python/pyproject.toml"},
                     {"code/me/python/.venv/pyvenv.cfg"},
                     {"code/linked", LinkTo{"me"}},
                     {"code/me/loose/dist/"},
                     {"srv/x/package.json"},
                     {"srv/x/build/"},
                     {"srv/x/y/build/"}};
  WholeDiskReader reader{tree};
  FakeTrash trash;
  FakeFiles files;
  CleanupJournal journal{files, "/support"};
  Places places;

  Gate() {
    places.home = "/code";
    places.userID = person;
  }
  CleanupCoordinator coordinator() { return {reader, trash, places}; }
  std::string refusal(const CleanupCandidate& candidate) {
    const auto validated = coordinator().validate(candidate);
    return validated ? "" : description(validated.error());
  }
  std::vector<CleanupOutcome> move(const std::vector<CleanupCandidate>& candidates) {
    return coordinator().moveToTrash(candidates, UUID{}, journal);
  }
};

const std::string app = "/code/me/app/";

CleanupCandidate candidate(const std::string& path, std::int64_t byteCount = 0) {
  return {.id = UUID::random(),
          .url = {.path = path, .isFolder = true},
          .byteCount = byteCount,
          .reason = {},
          .consequences = {},
          .identity = {}};
}

const std::string missing = "The item no longer exists.";
const std::string symbolicLink = "Symbolic links are excluded from cleanup.";
const std::string protectedPath = "The path is outside a recognized generated-artifact directory.";
const std::string changed = "The item changed since it was reviewed. Refresh before continuing.";

TEST(CleanupCoordinator, LetsOnlyBuildOutputOfAProjectPass) {
  Gate gate;
  const struct {
    const char* name;
    std::string path;
    std::string refusal;
  } cases[] = {
      {"dependencies of a project", app + "node_modules", ""},
      {"nothing there", app + "__pycache__", missing},
      {"nothing there, whatever its name", app + "Documents", missing},
      {"a file, not a folder", app + "build", missing},
      {"inside a file", app + "package.json/build", missing},
      {"a link to a folder", app + "dist", symbolicLink},
      {"a link to nothing", app + ".next", missing},
      {"a link at a place that isn't build output", app + "source", symbolicLink},
      {"reached through a link", "/code/linked/app/node_modules", symbolicLink},
      {"a file reached through a link", "/code/linked/app/build", missing},
      {"nothing, through a link", "/code/linked/app/__pycache__", missing},
      {"a folder of any other name", app + "src", protectedPath},
      {"target without a build file beside it", app + "target", protectedPath},
      {"target with a build file beside it", "/code/me/java/target", ""},
      {"an environment without its file", app + ".venv", protectedPath},
      {"an environment", "/code/me/python/.venv", ""},
      {"no project around it", "/code/me/loose/dist", protectedPath},
      {"four components", "/srv/x/build", protectedPath},
      {"five components", "/srv/x/y/build", ""},
      {"the root", "/", protectedPath},
  };
  for (const auto& [name, path, refusal] : cases) {
    EXPECT_EQ(gate.refusal(candidate(path)), refusal) << name;
  }
  gate.places.home = app + "node_modules/";
  EXPECT_EQ(gate.refusal(candidate(app + "node_modules")), protectedPath) << "the home folder itself";
}

TEST(CleanupCoordinator, RefusesASizeThatMovedByMoreThanItsAllowance) {
  constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
  const struct {
    std::int64_t reviewed;
    std::int64_t measured;
    bool passes;
  } cases[] = {{10'000'000, 11'048'576, true},
               {10'000'000, 11'048'577, false},
               {10'000'000, 8'951'424, true},
               {10'000'000, 8'951'423, false},
               {100'000'000, 105'000'000, true},
               {100'000'000, 105'000'001, false},
               {20'971'540, 22'020'117, true},
               {20'971'540, 22'020'118, false},
               {0, most, false},
               {most, 0, false},
               {std::numeric_limits<std::int64_t>::min(), most, false}};
  Gate gate;
  for (const auto& [reviewed, measured, passes] : cases) {
    gate.reader.allocatedBytes["a.js"] = measured;
    EXPECT_EQ(gate.refusal(candidate(app + "node_modules", reviewed)), passes ? "" : changed)
        << reviewed << " became " << measured;
  }
}

TEST(CleanupCoordinator, RefusesAnotherThingThanTheReviewedOneAndWhatTheTrashCouldNotBeEmptiedOf) {
  Gate gate;
  CleanupCandidate reviewed = candidate(app + "node_modules");
  reviewed.identity = gate.reader.attributes(app + "node_modules", LinkPolicy::refuse)->identity;
  EXPECT_EQ(gate.refusal(reviewed), "");
  reviewed.identity->inode += 1;
  EXPECT_EQ(gate.refusal(reviewed), changed);

  gate.reader.foreign = "a.js";
  EXPECT_EQ(gate.refusal(candidate(app + "node_modules")), "");
  gate.reader.foreign = "node_modules";
  EXPECT_EQ(gate.refusal(candidate(app + "node_modules")),
            "It holds folders of another user, so it stays where it is.");
  gate.reader.foreign = "";
  gate.reader.unchangeable = "a.js";
  EXPECT_EQ(gate.refusal(candidate(app + "node_modules")), "It is marked as unchangeable, so it stays where it is.");
}

TEST(CleanupCoordinator, PassesOnWhyTheItemCouldNotBeLookedAt) {
  Gate gate;
  const HookedReader closed(gate.reader, [](HookedReader::Call call, std::string_view) {
    return call == HookedReader::Call::openFolder ? std::optional(SystemError{EACCES}) : std::nullopt;
  });
  const auto validated = CleanupCoordinator(closed, gate.trash, gate.places).validate(candidate(app + "build"));
  ASSERT_FALSE(validated);
  EXPECT_EQ(std::get<SystemError>(validated.error()), SystemError{EACCES});
}

TEST(CleanupCoordinator, MovesEachCandidateThatPassesAndAnswersForAll) {
  Gate gate;
  EXPECT_TRUE(gate.move({}).empty());
  EXPECT_TRUE(gate.trash.calls.empty() && gate.files.calls.empty()) << "nothing to move touches nothing";
  gate.reader.allocatedBytes["a.js"] = 4096;
  gate.trash.failures["/srv/x/y/build"] = {.refusal = TrashRefusal::noSpace};
  const auto outcomes =
      gate.move({candidate(app + "src"), candidate(app + "node_modules", 8192), candidate("/srv/x/y/build")});
  ASSERT_EQ(outcomes.size(), 3U);
  EXPECT_EQ(outcomes[0].message, protectedPath);
  EXPECT_EQ(outcomes[1].message, "Moved to Trash");
  EXPECT_EQ(outcomes[1].url, (FileURL{.path = app + "node_modules", .isFolder = true}));
  EXPECT_EQ(outcomes[1].trashURL, (FileURL{.path = "/trash/files/node_modules", .isFolder = true}));
  EXPECT_EQ(outcomes[2].message, "The disk is too full to write down the move first, so it stays where it is.");
  EXPECT_EQ((std::vector{outcomes[0].success, outcomes[1].success, outcomes[2].success}),
            (std::vector{false, true, false}));
  EXPECT_EQ(gate.trash.calls,
            (std::vector<std::string>{"move " + app + "node_modules 4096", "move /srv/x/y/build 0", "writeSizes"}));

  const auto lines = decodeJournal(gate.files.contents[*gate.files.growing.begin()]);
  ASSERT_EQ(lines->entries.size(), 3U) << "what the gate refuses is never intended";
  EXPECT_EQ(lines->entries.at(0).itemID, outcomes[1].id);
  EXPECT_EQ(lines->entries.at(0).ruleID, "developer.node_modules");
  EXPECT_EQ(lines->entries.at(0).measuredBytes, 8192);
  EXPECT_EQ(lines->entries.at(1).itemID, outcomes[2].id);
  EXPECT_EQ(lines->entries.at(2).refusal, outcomes[2].message);

  gate.trash.tellsPlaces = false;
  const auto unplaced = gate.move({candidate("/code/me/java/target")});
  EXPECT_TRUE(unplaced.at(0).success);
  EXPECT_FALSE(unplaced.at(0).trashURL);
}

TEST(CleanupCoordinator, KeepsTheJournalOfAnActThatIsNotSettled) {
  for (const bool isSettled : {true, false}) {
    for (const bool moves : {true, false}) {
      Gate gate;
      gate.trash.settlesActs = isSettled;
      if (!moves) {
        gate.trash.failures[app + "node_modules"] = {.isSettled = isSettled};
      }
      gate.move({candidate(app + "node_modules")});
      gate.journal.finish();
      EXPECT_EQ(gate.files.contents.size(), isSettled ? 1U : 2U) << "the lock, and the journal where it is needed";
    }
  }
}

TEST(CleanupCoordinator, RemeasuringKeepsWhatIsStillAFolder) {
  Gate gate;
  gate.reader.allocatedBytes["a.js"] = 4096;
  const std::vector candidates = {candidate(app + "gone"), candidate(app + "node_modules", 1),
                                  candidate(app + "build")};
  const auto fresh = gate.coordinator().remeasure(candidates);
  ASSERT_EQ(fresh.size(), 1U);
  EXPECT_EQ(fresh[0].id, candidates[1].id);
  EXPECT_EQ(fresh[0].byteCount, 4096);
  EXPECT_EQ(fresh[0].identity, gate.reader.attributes(app + "node_modules", LinkPolicy::refuse)->identity);
}

}  // namespace
}  // namespace lumenary
