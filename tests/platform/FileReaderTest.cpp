#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include <cerrno>
#include <map>

#include "platform/linux/LinuxFileReader.h"
#include "support/TemporaryTree.h"

namespace lumenary {
namespace {

const LinuxFileReader reader;

std::map<std::string, FileKind> listing(const Descriptor& folder) {
  std::map<std::string, FileKind> found;
  FolderScratch scratch;
  auto entries = reader.nextEntries(folder, scratch);
  for (; entries && !entries->empty(); entries = reader.nextEntries(folder, scratch)) {
    for (const FolderEntry& entry : *entries) {
      EXPECT_TRUE(found.emplace(std::string(entry.name, entry.length), entry.kind).second) << entry.name;
    }
  }
  return found;
}

int errorOf(const auto& result) { return result ? 0 : result.error().code; }

TEST(FileReader, OpensFoldersThroughLinksOnlyWhenAsked) {
  const TemporaryTree tree({{"real/inner/"},
                            {"file", 1},
                            {"link", LinkTo{"real"}},
                            {"real/loop", LinkTo{"loop"}},
                            {"dangling", LinkTo{"nothing"}},
                            {"toFile", LinkTo{"file"}}});
  const std::tuple<const char*, int, int> cases[] = {{"real//inner/", 0, 0},     {"dangling", ELOOP, ENOENT},
                                                     {"link", ELOOP, 0},         {"real/loop", ELOOP, ELOOP},
                                                     {"link/", ELOOP, 0},        {"file/inner", ENOTDIR, ENOTDIR},
                                                     {"link/inner", ELOOP, 0},   {"nothing/inner", ENOENT, ENOENT},
                                                     {"toFile", ELOOP, ENOTDIR}, {"file", ENOTDIR, ENOTDIR}};
  for (const auto& [path, refusing, following] : cases) {
    EXPECT_EQ(errorOf(reader.openFolder(tree.path(path), LinkPolicy::refuse)), refusing) << path;
    EXPECT_EQ(errorOf(reader.openFolder(tree.path(path), LinkPolicy::follow)), following) << path;
  }
  const auto root = reader.openFolder(tree.root(), LinkPolicy::refuse);
  EXPECT_EQ(errorOf(reader.openFolder(*root, "link")), ELOOP);
  const auto inner = reader.openFolder(tree.path("link/inner"), LinkPolicy::follow);
  EXPECT_EQ(listing(*reader.openFolder(*inner, "..")).count("loop"), 1U);
}

TEST(FileReader, RefusesAPathThatIsRelativeEmptyOrHoldsANul) {
  for (const std::string& path : {std::string("usr"), std::string(), std::string("/usr\0/lib", 9)}) {
    EXPECT_EQ(errorOf(reader.openFolder(path, LinkPolicy::follow)), EINVAL) << path;
    EXPECT_EQ(errorOf(reader.openFolder(path, LinkPolicy::refuse)), EINVAL) << path;
    EXPECT_EQ(errorOf(reader.attributes(path, LinkPolicy::follow)), EINVAL) << path;
  }
  EXPECT_EQ(errorOf(reader.realPath(std::string("/usr\0/lib", 9))), EINVAL);
  EXPECT_FALSE(reader.exists("usr"));
}

TEST(FileReader, ReachesWhatStandsBehindAPathLongerThanTheSystemTakes) {
  TemporaryTree tree;
  tree.buildChain(3000, {{"file", 1}});
  std::string deepest = tree.root();
  for (int level = 0; level < 3000; ++level) {
    deepest += "/d";
  }
  for (const LinkPolicy links : {LinkPolicy::refuse, LinkPolicy::follow}) {
    const auto folder = reader.openFolder(deepest, links);
    ASSERT_TRUE(folder);
    EXPECT_EQ(listing(*folder), (std::map<std::string, FileKind>{{"file", FileKind::file}}));
    EXPECT_EQ(reader.attributes(deepest + "/file", links)->identity, reader.attributes(*folder, "file")->identity);
    EXPECT_EQ(errorOf(reader.attributes(deepest + "/nothing", links)), ENOENT);
  }
  EXPECT_EQ(errorOf(reader.openFolder("/" + std::string(5000, 'x'), LinkPolicy::follow)), ENAMETOOLONG);
}

TEST(FileReader, ListsEveryEntryOnceWhateverItsNameAndKind) {
  const std::string longest(255, 'n');
  TemporaryTree tree({{"folder/"}, {"line\nbreak"}, {"\xff\xfe"}, {longest}, {"link", LinkTo{"folder"}}, {"..."}});
  ASSERT_EQ(::mkfifo(tree.path("pipe").c_str(), 0600), 0);
  std::map<std::string, FileKind> expected = {
      {"folder", FileKind::folder}, {"link", FileKind::link}, {"pipe", FileKind::other}};
  for (const std::string& name : {std::string("line\nbreak"), std::string("\xff\xfe"), longest, std::string("...")}) {
    expected.emplace(name, FileKind::file);
  }
  for (int index = 0; index < 5000; ++index) {
    const std::string name = "an entry of a folder that needs more than one buffer " + std::to_string(index);
    tree.build({{name}});
    expected.emplace(name, FileKind::file);
  }
  EXPECT_EQ(listing(*reader.openFolder(tree.root(), LinkPolicy::refuse)), expected);
}

TEST(FileReader, TellsTheAttributesOfTheThingItself) {
  using namespace std::chrono;
  const Date beforeTheEpoch = sys_days(1969y / December / 31) + hours(23) + microseconds(250'000);
  const Date late = sys_days(2200y / March / 1) + microseconds(7);
  TemporaryTree tree({{"file", 70'000, beforeTheEpoch}, {"other", HardLinkTo{"file"}}, {"link", LinkTo{"file"}, late}});
  const auto file = *reader.attributes(tree.path("file"), LinkPolicy::refuse);
  const auto link = *reader.attributes(tree.path("link"), LinkPolicy::refuse);
  EXPECT_EQ(file.identity.kind, FileKind::file);
  EXPECT_EQ(file.linkCount, 2U);
  EXPECT_EQ(file.allocatedBytes, tree.allocatedBytes({"file"}));
  EXPECT_EQ(file.modified, beforeTheEpoch);
  EXPECT_FALSE(file.isUnchangeable);
  EXPECT_EQ(reader.attributes(tree.path("other"), LinkPolicy::refuse)->identity, file.identity);
  EXPECT_EQ(link.identity.kind, FileKind::link);
  EXPECT_EQ(link.modified, late);
  EXPECT_EQ(reader.attributes(tree.path("link/"), LinkPolicy::refuse)->identity, link.identity);
  EXPECT_EQ(reader.attributes(tree.path("link"), LinkPolicy::follow)->identity, file.identity);
  EXPECT_EQ(*reader.realPath(tree.path("link")), tree.path("file"));

  const auto folder = reader.openFolder(tree.root(), LinkPolicy::refuse);
  EXPECT_EQ(reader.attributes(*folder, "link")->identity, link.identity);
  EXPECT_EQ(reader.attributes(*folder)->identity, reader.attributes(tree.root(), LinkPolicy::refuse)->identity);
  tree.remove("file");
  EXPECT_FALSE(reader.exists(tree.path("link")));
  EXPECT_TRUE(reader.attributes(tree.path("link"), LinkPolicy::refuse).has_value());
}

TEST(FileReader, TellsWhatIsMarkedUnchangeable) {
  const TemporaryTree tree({{"file", 1}});
  const Descriptor file(::open(tree.path("file").c_str(), O_RDONLY | O_CLOEXEC));
  for (const int mark : {FS_IMMUTABLE_FL, FS_APPEND_FL}) {
    if (::ioctl(file.number(), FS_IOC_SETFLAGS, &mark) != 0) {
      GTEST_SKIP() << "marks can't be set here";
    }
    EXPECT_TRUE(reader.attributes(tree.path("file"), LinkPolicy::refuse)->isUnchangeable);
    const int none = 0;
    ASSERT_EQ(::ioctl(file.number(), FS_IOC_SETFLAGS, &none), 0);
  }
  EXPECT_FALSE(reader.attributes(tree.path("file"), LinkPolicy::refuse)->isUnchangeable);
}

}  // namespace
}  // namespace lumenary
