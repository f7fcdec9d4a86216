#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>
#include <numeric>

#include "platform/linux/LinuxFileReader.h"
#include "storage/AllocatedSize.h"
#include "support/HookedReader.h"
#include "support/TemporaryTree.h"

namespace lumenary {
namespace {

using Call = HookedReader::Call;
const LinuxFileReader reader;

TEST(AllocatedSize, AddsUpEverythingButTheFoldersAndFollowsNoLink) {
  const std::string farTarget(200, 'x');
  TemporaryTree tree({{"a/one", 5'000},
                      {"a/deep/er/two", 70'000},
                      {"a/empty/"},
                      {"a/nothing", 0},
                      {"a/far", LinkTo{farTarget}},
                      {"a/out", LinkTo{"../outside"}},
                      {"outside/big", 900'000},
                      {"link", LinkTo{"a"}}});
  struct {
    const char* path;
    std::int64_t expected;
  } const cases[] = {
      {"a", tree.allocatedBytes({"a/one", "a/deep/er/two", "a/far", "a/out"})},
      {"a/one", tree.allocatedBytes({"a/one"})},
      {"link", tree.allocatedBytes({"link"})},
      {"link/deep", tree.allocatedBytes({"a/deep/er/two"})},
      {"a/empty", 0},
      {"missing", 0},
  };
  ASSERT_GE(tree.allocatedBytes({"a/one", "a/deep/er/two"}), 75'000);
  for (const auto& [path, expected] : cases) {
    EXPECT_EQ(allocatedSize(reader, tree.path(path)), expected) << path;
  }

  const auto parent = reader.openFolder(tree.root(), LinkPolicy::refuse);
  EXPECT_EQ(measure(reader, *parent, "a", 0).allocatedBytes, cases[0].expected);
  EXPECT_EQ(measure(reader, *parent, "link", 0).allocatedBytes, cases[2].expected);
}

TEST(AllocatedSize, CountsAFileWithSeveralNamesOnceInEachWalk) {
  TemporaryTree tree({{"a/file", 9'000}, {"a/in/same", HardLinkTo{"a/file"}}, {"b/same", HardLinkTo{"a/file"}}});
  const std::int64_t once = tree.allocatedBytes({"a/file"});
  const std::string paths[] = {tree.path("a"), tree.path("b"), tree.root()};
  EXPECT_EQ(allocatedSizes(reader, paths), (std::vector<std::int64_t>{once, once, once}));
}

TEST(AllocatedSize, GivesTheSizesInTheOrderOfThePathsAndReportsEachOnce) {
  TemporaryTree tree;
  std::vector<std::string> paths;
  std::vector<std::int64_t> expected;
  for (int index = 0; index < 100; ++index) {
    const std::string name = "folder" + std::to_string(index) + "/file";
    tree.build({{name, (index % 7) * 20'000}});
    paths.push_back(tree.path("folder" + std::to_string(index)));
    expected.push_back(tree.allocatedBytes({name}));
  }
  std::vector<std::size_t> reports;
  EXPECT_EQ(allocatedSizes(reader, paths, {}, [&](std::size_t done) { reports.push_back(done); }), expected);
  std::vector<std::size_t> oneToHundred(100);
  std::iota(oneToHundred.begin(), oneToHundred.end(), 1);
  EXPECT_EQ(reports, oneToHundred);
}

TEST(AllocatedSize, MeasuresAChainOfAnyDepthWithFewDescriptors) {
  TemporaryTree tree;
  tree.buildChain(3'000, {{"file", 1'000}, {"a/before", 1'000}, {"z/behind/"}});
  const std::int64_t each = tree.allocatedBytes({"d/file", "d/a/before"});
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit few{256, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
  const std::string paths[] = {tree.root(), tree.path("d")};
  const auto sizes = allocatedSizes(reader, paths);
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_EQ(sizes, (std::vector<std::int64_t>{3'000 * each, 3'000 * each}));
}

TEST(AllocatedSize, NeverGoesOnInAnotherFolderWhenADeepTreeIsMovedAwayUnderIt) {
  TemporaryTree tree;
  tree.buildChain(200, {{"file", 1'000}});
  // Whatever the order in which the walk takes them, some of these wait at the top while it is deep down.
  for (const std::string sibling : {"a", "b", "c", "e", "f", "g", "h"}) {
    tree.build({{"d/" + sibling + "/file", 1'000}, {"elsewhere/" + sibling + "/huge", 500'000}});
  }
  std::size_t opened = 0;
  const HookedReader moving(reader, [&](Call call, std::string_view name) -> std::optional<SystemError> {
    if (call == Call::openFolder && name == "d" && ++opened == 150) {
      tree.rename("d/d", "elsewhere/d");
    }
    return {};
  });
  const std::int64_t found = allocatedSize(moving, tree.path("d"));
  EXPECT_GE(found, tree.allocatedBytes({"d/file"}) * 200);
  EXPECT_LT(found, tree.allocatedBytes({"d/file"}) * 207 + 500'000);
}

TEST(AllocatedSize, LeavesOutWhatVanishesOrCantBeRead) {
  const auto run = [](Call failing, std::string_view failingName, const char* removed) {
    TemporaryTree tree({{"a/kept", 5'000}, {"a/in/gone", 60'000}, {"a/in/more", 700'000}});
    bool isRemoved = false;
    const HookedReader hooked(reader, [&](Call call, std::string_view name) -> std::optional<SystemError> {
      if (call != failing || name != failingName) {
        return {};
      }
      if (removed == nullptr) {
        return SystemError{EACCES};
      }
      if (!std::exchange(isRemoved, true)) {
        tree.remove(removed);
      }
      return {};
    });
    return allocatedSize(hooked, tree.path("a"));
  };
  const TemporaryTree same({{"kept", 5'000}, {"more", 700'000}});
  const std::int64_t kept = same.allocatedBytes({"kept"});
  const std::int64_t keptAndMore = same.allocatedBytes({"kept", "more"});
  EXPECT_EQ(run(Call::openFolder, "in", nullptr), kept);
  EXPECT_EQ(run(Call::openFolder, "in", "a/in"), kept);
  EXPECT_EQ(run(Call::attributes, "in", "a/in"), kept);
  EXPECT_EQ(run(Call::attributes, "gone", nullptr), keptAndMore);
  EXPECT_EQ(run(Call::attributes, "gone", "a/in/gone"), keptAndMore);
  EXPECT_EQ(run(Call::nextEntries, "", nullptr), 0);
}

TEST(AllocatedSize, DoesNotFollowALinkThatTakesTheFoldersPlace) {
  TemporaryTree tree({{"a/file", 5'000}, {"outside/big", 900'000}});
  const HookedReader swapping(reader, [&](Call call, std::string_view name) -> std::optional<SystemError> {
    if (call == Call::openFolder && name == tree.path("a")) {
      tree.remove("a");
      tree.build({{"a", LinkTo{"outside"}}});
    }
    return {};
  });
  EXPECT_EQ(allocatedSize(swapping, tree.path("a")), 0);
}

TEST(AllocatedSize, TellsWhoseFoldersItPassedAndWhatIsMarkedUnchangeable) {
  const TemporaryTree tree({{"a/file", 5'000}, {"a/in/inner", 60'000}});
  const std::int64_t all = tree.allocatedBytes({"a/file", "a/in/inner"});
  const std::int64_t withoutIn = tree.allocatedBytes({"a/file"});
  constexpr auto foreign = [](FileAttributes& found) { found.owner = 1001; };
  constexpr auto marked = [](FileAttributes& found) { found.isUnchangeable = true; };
  constexpr auto onOtherVolume = [](FileAttributes& found) { found.owner = 1001, ++found.identity.device; };
  struct {
    const char* altered;
    void (*alter)(FileAttributes&);
    std::uint32_t user;
    Measurement expected;
  } const cases[] = {
      {"nothing", foreign, 1000, {all, false, false}},
      {"in", foreign, 1000, {all, true, false}},
      {"a", foreign, 1000, {all, true, false}},
      {"in", foreign, 0, {all, false, false}},
      {"inner", foreign, 1000, {all, false, false}},
      {"inner", marked, 1000, {all, false, true}},
      {"in", marked, 1000, {all, false, true}},
      {"a", marked, 1000, {all, false, true}},
      {"in", onOtherVolume, 1000, {withoutIn, false, false}},
  };
  const auto parent = reader.openFolder(tree.root(), LinkPolicy::refuse);
  for (const auto& [altered, alter, user, expected] : cases) {
    const HookedReader hooked(
        reader, [](Call, std::string_view) { return std::nullopt; },
        [&](std::string_view name, FileAttributes& found) {
          found.owner = 1000;
          if (name == altered) {
            alter(found);
          }
        });
    EXPECT_EQ(measure(hooked, *parent, "a", user), expected) << altered << " for user " << user;
  }
  const HookedReader closed(
      reader,
      [](Call call, std::string_view) {
        return call == Call::openFolder ? std::optional(SystemError{EACCES}) : std::nullopt;
      },
      [](std::string_view, FileAttributes& found) { found.owner = 0; });
  EXPECT_EQ(measure(closed, *parent, "a", 1000), (Measurement{0, true, false})) << "a closed folder is still foreign";
}

TEST(AllocatedSize, EndsEarlyOnAStopRequest) {
  const TemporaryTree tree({{"a/file", 5'000}, {"a/in/file", 5'000}, {"b/file", 5'000}});
  std::stop_source stop;
  const HookedReader stopping(reader, [&](Call call, std::string_view name) -> std::optional<SystemError> {
    if (call == Call::attributes && name == "file") {
      stop.request_stop();
    }
    return {};
  });
  const std::int64_t one = tree.allocatedBytes({"a/file"});
  EXPECT_EQ(allocatedSize(stopping, tree.path("a"), stop.get_token()), one);
  const std::string paths[] = {tree.path("a"), tree.path("b")};
  std::size_t reports = 0;
  EXPECT_EQ(allocatedSizes(reader, paths, stop.get_token(), [&](std::size_t) { ++reports; }),
            (std::vector<std::int64_t>{0, 0}));
  EXPECT_EQ(reports, 0U);
}

}  // namespace
}  // namespace lumenary
