#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/linux/LinuxFileReader.h"
#include "storage/AllocatedSize.h"
#include "support/HookedReader.h"
#include "support/TemporaryTree.h"

namespace lumenary {
namespace {

using Call = HookedReader::Call;
using Sizes = std::vector<std::int64_t>;
const LinuxFileReader reader;

TEST(AllocatedSize, AddsUpEverythingButTheFoldersAndFollowsNoLink) {
  const std::string farTarget(200, 'x');
  const TemporaryTree tree({{"a/one", 5'000},
                            {"a/deep/er/two", 70'000},
                            {"a/empty/"},
                            {"a/far", LinkTo{farTarget}},
                            {"a/out", LinkTo{"../b"}},
                            {"b/big", 900'000},
                            {"link", LinkTo{"a"}}});
  const std::int64_t all = tree.allocatedBytes({"a/one", "a/deep/er/two", "a/far", "a/out"});
  const std::pair<const char*, std::int64_t> cases[] = {{"a", all},
                                                        {"link/deep", tree.allocatedBytes({"a/deep/er/two"})},
                                                        {"a/empty", 0},
                                                        {"link", tree.allocatedBytes({"link"})},
                                                        {"missing", 0}};
  ASSERT_GE(all, 75'000);
  for (const auto& [path, expected] : cases) {
    EXPECT_EQ(allocatedSize(reader, tree.path(path)), expected) << path;
  }
  const auto parent = reader.openFolder(tree.root(), LinkPolicy::refuse);
  EXPECT_EQ(measure(reader, *parent, "a", 0).allocatedBytes, all);
  EXPECT_EQ(measure(reader, *parent, "link", 0).allocatedBytes, tree.allocatedBytes({"link"}));
}

TEST(AllocatedSize, CountsAFileWithSeveralNamesOnceInEachWalk) {
  TemporaryTree tree({{"a/file", 9'000}, {"a/in/same", HardLinkTo{"a/file"}}, {"b/same", HardLinkTo{"a/file"}}});
  const std::int64_t once = tree.allocatedBytes({"a/file"});
  const std::string paths[] = {tree.path("a"), tree.path("b"), tree.root()};
  EXPECT_EQ(allocatedSizes(reader, paths), (Sizes{once, once, once}));
}

TEST(AllocatedSize, GivesTheSizesInTheOrderOfThePathsAndReportsEachOnce) {
  TemporaryTree tree;
  std::vector<std::string> paths;
  Sizes expected;
  std::vector<std::size_t> oneToHundred;
  for (std::size_t number = 1; number <= 100; ++number) {
    const std::string name = std::to_string(number);
    tree.build({{name + "/file", static_cast<int>(number % 7) * 20'000}});
    paths.push_back(tree.path(name));
    expected.push_back(tree.allocatedBytes({name + "/file"}));
    oneToHundred.push_back(number);
  }
  std::vector<std::size_t> reports;
  EXPECT_EQ(allocatedSizes(reader, paths, {}, [&](std::size_t done) { reports.push_back(done); }), expected);
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
  EXPECT_EQ(sizes, (Sizes{3'000 * each, 3'000 * each}));
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
  const TemporaryTree same({{"kept", 5'000}, {"more", 700'000}});
  const std::int64_t kept = same.allocatedBytes({"kept"});
  const std::int64_t keptAndMore = same.allocatedBytes({"kept", "more"});
  const std::tuple<Call, std::string_view, const char*, std::int64_t> cases[] = {
      {Call::openFolder, "in", nullptr, kept},
      {Call::openFolder, "in", "a/in", kept},
      {Call::attributes, "in", "a/in", kept},
      {Call::attributes, "gone", nullptr, keptAndMore},
      {Call::attributes, "gone", "a/in/gone", keptAndMore},
      {Call::nextEntries, "", nullptr, 0}};
  for (const auto& [failing, failingName, removed, expected] : cases) {
    TemporaryTree tree({{"a/kept", 5'000}, {"a/in/gone", 60'000}, {"a/in/more", 700'000}});
    const HookedReader hooked(reader, [&](Call call, std::string_view name) -> std::optional<SystemError> {
      const bool isMeant = call == failing && name == failingName;
      if (isMeant && removed != nullptr) {
        tree.remove(removed);
      }
      return isMeant && removed == nullptr ? std::optional(SystemError{EACCES}) : std::nullopt;
    });
    EXPECT_EQ(allocatedSize(hooked, tree.path("a")), expected) << failingName;
  }
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
  const std::tuple<const char*, void (*)(FileAttributes&), std::uint32_t, Measurement> cases[] = {
      {"nothing", foreign, 1000, {all, false, false}},
      {"in", foreign, 1000, {all, true, false}},
      {"a", foreign, 1000, {all, true, false}},
      {"in", foreign, 0, {all, false, false}},
      {"inner", foreign, 1000, {all, false, false}},
      {"inner", marked, 1000, {all, false, true}},
      {"in", marked, 1000, {all, false, true}},
      {"a", marked, 1000, {all, false, true}},
      {"in", onOtherVolume, 1000, {withoutIn, false, false}}};
  const auto parent = reader.openFolder(tree.root(), LinkPolicy::refuse);
  const auto nothingFails = [](Call, std::string_view) { return std::nullopt; };
  const auto noFolderOpens = [](Call call, std::string_view) {
    return call == Call::openFolder ? std::optional(SystemError{EACCES}) : std::nullopt;
  };
  for (const auto& [altered, alter, user, expected] : cases) {
    const HookedReader hooked(reader, nothingFails, [&](std::string_view name, FileAttributes& found) {
      found.owner = 1000;
      if (name == altered) {
        alter(found);
      }
    });
    EXPECT_EQ(measure(hooked, *parent, "a", user), expected) << altered << " for user " << user;
  }
  const HookedReader closed(reader, noFolderOpens, [](std::string_view, FileAttributes& found) { found.owner = 0; });
  EXPECT_EQ(measure(closed, *parent, "a", 1000), (Measurement{0, true, false, true}))
      << "a closed folder is still foreign";
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
  EXPECT_EQ(allocatedSizes(reader, paths, stop.get_token(), [&](std::size_t) { ++reports; }), (Sizes{0, 0}));
  EXPECT_EQ(reports, 0U);
}

}  // namespace
}  // namespace lumenary
