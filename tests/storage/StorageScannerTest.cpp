#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <mutex>
#include <random>
#include <thread>

#include "base/Path.h"
#include "platform/linux/LinuxFileReader.h"
#include "storage/ScanJson.h"
#include "storage/StorageScanner.h"
#include "support/HookedReader.h"
#include "support/ReferenceWalk.h"
#include "support/TemporaryTree.h"

namespace lumenary {
namespace {

using Call = HookedReader::Call;
using Paths = std::vector<std::string>;

const LinuxFileReader realReader;
constexpr int mebibyte = 1'048'576;

class FakeMountTable final : public MountTable {
 public:
  std::vector<Mount> list;
  SystemResult<std::vector<Mount>> mounts() const override { return list; }
};

class StorageScannerTest : public testing::Test {
 protected:
  std::expected<StorageScanResult, StorageScannerError> tryScan(const FileReader& reader, const std::string& root,
                                                                const std::stop_token& stop = {}) {
    return StorageScanner(reader, mounts, places, [this] { return clock(); }, processors).scan(root, progress, stop);
  }
  StorageScanResult scan(const FileReader& reader, const std::string& root) { return *tryScan(reader, root); }
  StorageScanResult scan(const TemporaryTree& tree) { return scan(realReader, tree.root()); }

  FakeMountTable mounts;
  Places places;
  std::function<Date()> clock = [] { return Date(); };
  ScanProgressCallback progress;
  unsigned processors = 9;  ///< three workers
};

HookedReader::Hook never() {
  return [](Call, std::string_view) { return std::nullopt; };
}

void expectLikeReference(const StorageScanResult& result, const std::string& root) {
  const ReferenceWalk expected = referenceWalk(root);
  EXPECT_EQ(result.totalBytes, expected.totalBytes);
  EXPECT_EQ(result.scannedItemCount, expected.itemCount);
  for (const auto& [path, bytes] : *result.folderByteTotals) {
    const auto found = expected.folderBytes.find(path);
    EXPECT_TRUE(found != expected.folderBytes.end() && found->second == bytes) << path << ": " << bytes;
  }
}

/// Everything but what is new in each run.
std::string textOf(StorageScanResult result) {
  for (FileEntry& entry : result.entries) {
    entry.id = {};
  }
  return encodeScanResult(result, DateForm::iso8601);
}

Paths pathsOf(const std::vector<FileEntry>& entries, const TemporaryTree& tree) {
  Paths paths;
  for (const FileEntry& entry : entries) {
    paths.push_back(entry.url.path.substr(tree.root().size() + 1));
  }
  return paths;
}

/// Folders and files of all kinds, one folder so wide that its entries are shared among the workers.
std::unique_ptr<TemporaryTree> variedTree() {
  auto tree = std::make_unique<TemporaryTree>(
      std::initializer_list<TreeEntry>{{"Documents/report.pdf", 2 * mebibyte},
                                       {"Documents/copy.pdf", HardLinkTo{"Documents/report.pdf"}},
                                       {"Archive/copy.pdf", HardLinkTo{"Documents/report.pdf"}},
                                       {"Documents/small", 100},
                                       {"zz/small-too", HardLinkTo{"Documents/small"}},
                                       {"link-to-file", LinkTo{"Documents/report.pdf"}},
                                       {"link-to-folder", LinkTo{"Documents"}},
                                       {"link-in-a-circle/up", LinkTo{".."}},
                                       {"empty/"},
                                       {std::string("odd/") + std::string(255, 'n'), 10},
                                       {"odd/line\nbreak", 10},
                                       {"odd/not-utf8-\xFF\xC3/inside\x80", 10}});
  for (int number = 0; number < 700; ++number) {
    const std::string name = "wide/" + std::to_string(number);
    tree->build({{name, number % 3 * 3'000}});
    if (number % 20 == 0) {
      tree->build({{name + ".d/in/file", 5'000}, {name + ".d/twin", HardLinkTo{name}}});
    }
  }
  EXPECT_EQ(::mkfifo(tree->path("odd/pipe").c_str(), 0600), 0);
  EXPECT_EQ(::truncate(tree->path("odd/line\nbreak").c_str(), off_t{1} << 40), 0);  // sparse
  return tree;
}

TEST_F(StorageScannerTest, FindsWhatASlowWalkFinds) {
  const auto tree = variedTree();
  const StorageScanResult result = scan(*tree);
  expectLikeReference(result, tree->root());
  EXPECT_EQ(result.root, (FileURL{.path = tree->root(), .isFolder = true}));
  EXPECT_TRUE(result.inaccessiblePaths.empty());
}

TEST_F(StorageScannerTest, DoesNotDependOnTheOrderInWhichThreadsCome) {
  const auto tree = variedTree();
  const std::string expected = textOf(scan(*tree));
  for (unsigned seed = 0; seed < 20; ++seed) {
    std::mutex lock;
    std::minstd_rand random(seed + 1);
    const HookedReader reader(realReader, [&](Call, std::string_view) -> std::optional<SystemError> {
      unsigned turns = 0;
      {
        const std::scoped_lock guard(lock);
        turns = random() % 16 == 0 ? random() % 64 : 0;
      }
      for (; turns > 0; --turns) {
        std::this_thread::yield();
      }
      return {};
    });
    processors = seed % 2 == 0 ? 1 : 9;
    EXPECT_EQ(textOf(scan(reader, tree->root())), expected) << seed;
  }
}

TEST_F(StorageScannerTest, ListsFilesOfAMebibyteAndMore) {
  const Date day = *parseISO8601("2025-01-02T03:04:05Z");
  const TemporaryTree tree({{"Music/exact", mebibyte, day},
                            {"Music/less", mebibyte - 4'096},
                            {"Tool.app/larger", 2 * mebibyte},
                            {"b/linked", 3 * mebibyte},
                            {"a/linked", HardLinkTo{"b/linked"}}});
  const StorageScanResult result = scan(tree);
  EXPECT_EQ(pathsOf(result.entries, tree), (Paths{"a/linked", "Tool.app/larger", "Music/exact"}));
  const FileEntry& exact = result.entries.back();
  EXPECT_EQ(exact, (FileEntry{.id = exact.id,
                              .url = {.path = tree.path("Music/exact")},
                              .name = "exact",
                              .kind = FileEntry::Kind::file,
                              .byteCount = mebibyte,
                              .modifiedAt = day,
                              .category = StorageCategory::personal}));
  EXPECT_NE(exact.id, result.entries.front().id);
  EXPECT_EQ(result.entries[1].category, StorageCategory::applications);
  EXPECT_EQ(result.categoryByteTotals->at(StorageCategory::applications), 2 * mebibyte);
  EXPECT_EQ(result.folderBytes(tree.path("b")), 0) << "the smaller path has the file";
  EXPECT_EQ(result.folderBytes(tree.path("a")), 3 * mebibyte);
}

TEST_F(StorageScannerTest, ReportsAtMostFourTimesASecondAndOnceAtTheEnd) {
  const auto tree = variedTree();
  std::vector<ScanProgress> reports;
  std::vector<Date> times;
  Date now;
  clock = [&] { return now += std::chrono::milliseconds(50); };
  progress = [&](const ScanProgress& report) {
    reports.push_back(report);
    times.push_back(now);
  };
  const StorageScanResult result = scan(*tree);
  ASSERT_GT(reports.size(), 5U);
  for (std::size_t index = 1; index + 1 < times.size(); ++index) {
    EXPECT_GT(times[index] - times[index - 1], std::chrono::milliseconds(250));
    EXPECT_GE(reports[index].itemCount, reports[index - 1].itemCount);
    EXPECT_TRUE(isSameOrInside(reports[index].currentPath, tree->root())) << reports[index].currentPath;
  }
  EXPECT_EQ(reports.back().itemCount, result.scannedItemCount);
  EXPECT_EQ(reports.back().measuredBytes, result.totalBytes);
  EXPECT_EQ(reports.back().categoryByteTotals, result.categoryByteTotals);
  EXPECT_EQ(result.scannedAt, now);
}

TEST_F(StorageScannerTest, ReportsWhileOneFolderTakesLong) {
  TemporaryTree tree;
  for (int number = 0; number < 6'000; ++number) {
    tree.build({{"wide/" + std::to_string(number)}});
  }
  int reports = 0;
  Date now;
  clock = [&] { return now += std::chrono::seconds(1); };
  progress = [&](const ScanProgress& report) { reports += report.currentPath == tree.path("wide") ? 1 : 0; };
  scan(tree);
  EXPECT_GE(reports, 3);
}

TEST_F(StorageScannerTest, EndsWhenAskedToStop) {
  const auto tree = variedTree();
  for (const std::string_view moment : {"", "Documents", "twin", "nothing is called so"}) {
    std::stop_source source;
    const HookedReader reader(realReader, [&](Call, std::string_view name) -> std::optional<SystemError> {
      if (name == moment) {
        source.request_stop();
      }
      return {};
    });
    clock = [&] {
      source.request_stop();  // at the latest while the first folder is merged
      return Date();
    };
    progress = [](const ScanProgress&) {};
    const auto result = tryScan(reader, tree->root(), source.get_token());
    ASSERT_FALSE(result) << moment;
    EXPECT_EQ(result.error(), StorageScannerError::cancelled);
    EXPECT_EQ(message(result.error()), "The scan was cancelled.");
  }
}

TEST_F(StorageScannerTest, RefusesARootThatIsNoFolder) {
  const TemporaryTree tree({{"file", 1}});
  for (const std::string& root : {tree.path("missing"), tree.path("file"), std::string("relative"), std::string()}) {
    const auto result = tryScan(realReader, root);
    ASSERT_FALSE(result) << root;
    EXPECT_EQ(message(result.error()), "The selected folder is unavailable.");
  }
}

TEST_F(StorageScannerTest, TellsWhatCouldNotBeRead) {
  const TemporaryTree tree({{"closed/in", 5'000},
                            {"listed/hidden", 5'000},
                            {"listed/seen", 5'000},
                            {"open/vanished", 5'000},
                            {"open/in", 5'000},
                            {"unreadable-\xFF/in", 5'000},
                            {"gone/in", 5'000},
                            {"file", 5'000}});
  thread_local std::string opened;
  const HookedReader reader(realReader, [&](Call call, std::string_view name) -> std::optional<SystemError> {
    if (call == Call::openFolder) {
      opened = name;
    }
    if (call == Call::openFolder && name == "closed") {
      return SystemError{EACCES};
    }
    if (call == Call::openFolder && name == "gone") {
      return SystemError{ENOENT};
    }
    if (call == Call::nextEntries && opened == "unreadable-\xFF") {
      return SystemError{EIO};
    }
    if (call == Call::attributes && (name == "hidden" || name == "vanished")) {
      return SystemError{name == "hidden" ? EACCES : ENOENT};
    }
    return {};
  });
  const StorageScanResult result = scan(reader, tree.root());
  EXPECT_EQ(result.inaccessiblePaths,
            (Paths{tree.path("closed"), tree.path("gone"), tree.path("listed"), tree.path("unreadable-\xFF")}));
  EXPECT_EQ(result.totalBytes, tree.allocatedBytes({"open/in", "file", "listed/seen"}));

  const HookedReader closed(realReader, [](Call call, std::string_view) {
    return call == Call::openFolder ? std::optional(SystemError{EACCES}) : std::nullopt;
  });
  EXPECT_EQ(scan(closed, tree.root()).inaccessiblePaths, Paths{tree.root()});
}

TEST_F(StorageScannerTest, KeepsWhatItReadOfAFolderBeforeAnError) {
  TemporaryTree tree;
  for (int number = 0; number < 4'000; ++number) {
    tree.build({{std::to_string(number)}});
  }
  std::atomic<int> reads = 0;
  const HookedReader reader(realReader, [&](Call call, std::string_view) {
    return call == Call::nextEntries && ++reads > 1 ? std::optional(SystemError{EIO}) : std::nullopt;
  });
  const StorageScanResult result = scan(reader, tree.root());
  EXPECT_TRUE(result.inaccessiblePaths.empty());
  EXPECT_GT(result.scannedItemCount, 1'000);
  EXPECT_LT(result.scannedItemCount, 4'000);
}

TEST_F(StorageScannerTest, EntersNoOtherVolume) {
  const TemporaryTree tree({{"a/mounted/in", 5'000},
                            {"a/bound-file", 5'000},
                            {"late/in", 5'000},
                            {"home/Library/Mail/in", 5'000},
                            {"home/Library/Other/in", 5'000}});
  mounts.list = {{1, "/", "ext4", MountKind::local},
                 {2, tree.root(), "ext4", MountKind::local},
                 {3, tree.path("a/mounted"), "nfs", MountKind::network},
                 {4, tree.path("a/bound-file"), "ext4", MountKind::local},
                 {5, tree.root() + "-beside", "ext4", MountKind::local}};
  places.home = tree.path("home");
  places.hasFullDiskAccess = false;
  thread_local std::string opened;
  const auto note = [&](Call call, std::string_view name) -> std::optional<SystemError> {
    if (call == Call::openFolder) {
      opened = name;
      EXPECT_NE(name, "mounted") << "a volume that doesn't answer would hang here";
      EXPECT_NE(name, "Mail");
    }
    return {};
  };
  const HookedReader reader(realReader, note, [&](std::string_view name, FileAttributes& attributes) {
    if (name.empty() && opened == "late") {
      ++attributes.identity.device;  // mounted since the table was read
    }
  });
  const StorageScanResult result = scan(reader, tree.root());
  EXPECT_EQ(result.totalBytes, tree.allocatedBytes({"home/Library/Other/in"}));
  EXPECT_EQ(result.inaccessiblePaths, (Paths{tree.path("home/Library/Mail"), tree.path("late")}));
  EXPECT_EQ(result.scannedItemCount, 9);
}

/// Shows a tree as if it were the whole disk.
class RootReader final : public FileReader {
 public:
  explicit RootReader(std::string root) : root_(std::move(root)) {}
  SystemResult<Descriptor> openFolder(std::string_view path, LinkPolicy links) const override {
    return realReader.openFolder(root_ + std::string(path), links);
  }
  SystemResult<Descriptor> openFolder(const Descriptor& parent, const char* name) const override {
    return realReader.openFolder(parent, name);
  }
  SystemResult<std::span<const FolderEntry>> nextEntries(const Descriptor& folder,
                                                         FolderScratch& scratch) const override {
    return realReader.nextEntries(folder, scratch);
  }
  SystemResult<FileAttributes> attributes(const Descriptor& folder, const char* name) const override {
    return realReader.attributes(folder, name);
  }
  SystemResult<FileAttributes> attributes(const Descriptor& folder) const override {
    return realReader.attributes(folder);
  }
  SystemResult<FileAttributes> attributes(std::string_view path, LinkPolicy links) const override {
    return realReader.attributes(root_ + std::string(path), links);
  }
  SystemResult<std::string> realPath(std::string_view path) const override { return std::string(path); }

 private:
  std::string root_;
};

TEST_F(StorageScannerTest, LeavesTheGivenFoldersOutOfTheWholeDisk) {
  const TemporaryTree tree({{"System/Volumes/in", 2 * mebibyte},
                            {"System/in", 2 * mebibyte},
                            {"dev/in", 2 * mebibyte},
                            {"home/anna/in", 2 * mebibyte},
                            {"net/in", 2 * mebibyte},
                            {"srv/dev/in", 2 * mebibyte}});
  const auto foldersOf = [](const StorageScanResult& result) {
    Paths paths;
    for (const auto& [path, bytes] : *result.folderByteTotals) {
      paths.push_back(path);
    }
    return paths;
  };
  const RootReader reader(tree.root());
  EXPECT_EQ(foldersOf(scan(reader, "/")), (Paths{"/", "/System", "/srv", "/srv/dev"}));
  places.homesFolder = "/home";
  EXPECT_EQ(foldersOf(scan(reader, "/")), (Paths{"/", "/System", "/home", "/home/anna", "/srv", "/srv/dev"}));
  EXPECT_EQ(foldersOf(scan(reader, "/System/")), (Paths{"/System", "/System/Volumes"}));
}

TEST_F(StorageScannerTest, GoesOnWhereThingsVanishOrChange) {
  TemporaryTree tree({{"a/kept", 5'000}, {"a/vanishing", 5'000}, {"a/turning", 5'000}, {"a/growing", 5'000}});
  std::once_flag vanish;
  const HookedReader reader(realReader, [&](Call call, std::string_view name) -> std::optional<SystemError> {
    if (call == Call::attributes && !name.empty() && name != tree.root()) {
      std::call_once(vanish, [&] {
        tree.remove("a/vanishing");
        tree.remove("a/turning");
        tree.build({{"a/turning/in/"}, {"a/growing", 50'000}});
      });
    }
    return {};
  });
  const StorageScanResult result = scan(reader, tree.root());
  EXPECT_EQ(result.totalBytes, tree.allocatedBytes({"a/kept", "a/growing"}));
  EXPECT_EQ(result.scannedItemCount, 5);
}

class DescriptorLimit {
 public:
  explicit DescriptorLimit(rlim_t limit) {
    ::getrlimit(RLIMIT_NOFILE, &former_);
    const rlimit lower{limit, former_.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &lower);
  }
  ~DescriptorLimit() { ::setrlimit(RLIMIT_NOFILE, &former_); }

 private:
  rlimit former_{};
};

TEST_F(StorageScannerTest, MeasuresAChainLongerThanAnyPathWithFewDescriptors) {
  constexpr int depth = 3'000;
  TemporaryTree tree;
  tree.buildChain(depth, {{"a/file", 5'000}, {"z/file", 5'000}});
  const DescriptorLimit limit(300);
  const StorageScanResult result = scan(tree);
  EXPECT_EQ(result.totalBytes, depth * tree.allocatedBytes({"d/a/file", "d/z/file"}));
  EXPECT_EQ(result.scannedItemCount, depth * 5);
  EXPECT_TRUE(result.inaccessiblePaths.empty());
}

TEST_F(StorageScannerTest, LosesNothingSilentlyOfATreeThatIsMovedMeanwhile) {
  constexpr int depth = 300;
  TemporaryTree tree;
  tree.buildChain(depth, {{"a/file", 5'000}, {"z/file", 5'000}});
  std::atomic<int> chainFolders = 0;
  const HookedReader reader(realReader, [&](Call call, std::string_view name) -> std::optional<SystemError> {
    if (call == Call::openFolder && name == "d" && ++chainFolders == depth - 1) {
      tree.rename("d/d/d", "moved");
    }
    return {};
  });
  const std::int64_t expected = depth * tree.allocatedBytes({"d/a/file", "d/z/file"});
  const StorageScanResult result = scan(reader, tree.root());
  EXPECT_LE(result.totalBytes, expected);
  EXPECT_EQ(result.totalBytes < expected, !result.inaccessiblePaths.empty());
}

using StorageScannerDeathTest = StorageScannerTest;

TEST_F(StorageScannerDeathTest, StopsTheProgramWhereASumOfBytesLeaves64Bits) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const TemporaryTree tree({{"a/one", 1}, {"b/two", 1}});
  const HookedReader reader(realReader, never(), [](std::string_view name, FileAttributes& attributes) {
    attributes.allocatedBytes = name == "one" || name == "two" ? (std::int64_t{1} << 62) : 0;
  });
  EXPECT_DEATH(scan(reader, tree.root()), "A sum of bytes left 64 bits|a sum of bytes left 64 bits");
}

TEST(AddToAncestors, ChangesTheFolderAndWhatIsAboveIt) {
  FolderByteTotals totals({{"/a", 100}, {"/a/b", 60}, {"/a/b/c/d", 20}, {"/a/bc", 30}, {"/", 500}});
  StorageScanner::addToAncestors(-20, "/a/b/c/d", "/a", totals);
  EXPECT_EQ(totals, FolderByteTotals({{"/a", 80}, {"/a/b", 40}, {"/a/b/c/d", 0}, {"/a/bc", 30}, {"/", 500}}));
  StorageScanner::addToAncestors(-30, "/a/bc", "/", totals);
  StorageScanner::addToAncestors(-1, "/elsewhere", "/a", totals);
  EXPECT_EQ(totals, FolderByteTotals({{"/a", 50}, {"/a/b", 40}, {"/a/b/c/d", 0}, {"/a/bc", 0}, {"/", 470}}));
  StorageScanner::addToAncestors(-45, "/a/b", "/a", totals);
  EXPECT_EQ(totals, FolderByteTotals({{"/a", 5}, {"/a/b", 0}, {"/a/b/c/d", 0}, {"/a/bc", 0}, {"/", 470}}))
      << "a folder that grew since it was measured";
}

}  // namespace
}  // namespace lumenary
