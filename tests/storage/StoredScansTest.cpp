#include <gtest/gtest.h>

#include <cerrno>

#include "storage/ScanJson.h"
#include "storage/ScanStore.h"
#include "support/FakeFiles.h"

namespace lumenary {
namespace {

using Names = std::vector<std::string>;

StorageScanResult resultOf(const std::string& root, std::int64_t bytes) {
  return {.root = {.path = root, .isFolder = true},
          .scannedAt = Date(std::chrono::seconds(bytes)),
          .totalBytes = bytes,
          .inaccessiblePaths = {},
          .entries = {},
          .categoryByteTotals = {},
          .folderByteTotals = {}};
}

class StoredScans : public testing::Test {
 protected:
  std::optional<std::int64_t> loadedBytes(const std::string& root, const PerfProbe& probe = {}) {
    const auto loaded = ScanStore(files, "/support", probe).load(root);
    return loaded && *loaded ? std::optional((*loaded)->totalBytes) : std::nullopt;
  }
  Names names() {
    Names names = *files.names("/support");
    std::erase(names, "scans.lock");
    return names;
  }

  FakeFiles files;
  ScanStore store{files, "/support"};
  const std::string readable = "/support/latest-scan.json";
  const std::string fast = "/support/latest-scan.v2.json";
};

TEST_F(StoredScans, HaveAFileForEachRoot) {
  const std::pair<std::string, Names> cases[] = {
      {"/", {"latest-scan.json", "latest-scan.v2.json"}},
      {"/Volumes/Disk 2", {"scan-Volumes-Disk-2.json", "scan-Volumes-Disk-2.v2.json"}},
      {"/media/größe", {"scan-media-größe.json", "scan-media-größe.v2.json"}},
      {"/a b", {"scan-a-b.json", "scan-a-b.v2.json"}},
      {"/history", {"scan-history-9E8CAFFE7A4FE656.json", "scan-history-9E8CAFFE7A4FE656.v2.json"}},
      {"/a-b", {"scan-a-b.json", "scan-a-b.v2.json"}}};

  for (const auto& [root, expected] : cases) {
    files.contents.clear();
    ASSERT_TRUE(store.save(resultOf(root, 7))) << root;
    EXPECT_EQ(names(), expected);
    EXPECT_EQ(loadedBytes(root), 7);
  }
  EXPECT_EQ(loadedBytes("/a b/"), 7) << "a trailing slash is no other root";
  EXPECT_EQ(loadedBytes("/"), std::nullopt);
}

TEST_F(StoredScans, HaveFileNamesThatFitHoweverLongTheRoot) {
  const std::string deep = "/" + std::string(300, 'd');
  ASSERT_TRUE(store.save(resultOf(deep + "/a", 1)));
  ASSERT_TRUE(store.save(resultOf(deep + "/b", 2)));
  EXPECT_EQ(loadedBytes(deep + "/a"), 1);
  EXPECT_EQ(loadedBytes(deep + "/b"), 2);
  for (const std::string& name : names()) {
    EXPECT_LT(name.size(), 240U);
  }
}

TEST_F(StoredScans, AreReadFromTheFastFormUnlessThatIsTurnedOff) {
  ASSERT_TRUE(store.save(resultOf("/", 1)));
  files.contents[fast] = encodeScanResult(resultOf("/", 2), DateForm::secondsSince1970);
  EXPECT_EQ(loadedBytes("/"), 2);
  EXPECT_EQ(loadedBytes("/", PerfProbe::of(nullptr, "cursor,fastdecode")), 1);
  files.contents[fast] = "{";
  EXPECT_EQ(loadedBytes("/"), 1);
  EXPECT_EQ(files.contents[fast], "{") << "a file that is there is not replaced";
}

TEST_F(StoredScans, GetAFastFormWithTheirFirstLoad) {
  files.contents[readable] = encodeScanResult(resultOf("/", 3), DateForm::iso8601);
  EXPECT_EQ(loadedBytes("/"), 3);
  ASSERT_TRUE(files.contents.contains(fast));
  files.contents[readable] = "gone bad";
  EXPECT_EQ(loadedBytes("/"), 3);
}

TEST_F(StoredScans, SayWhyTheyCannotBeLoaded) {
  files.contents[readable] = "[]";
  const auto damaged = store.load("/");
  ASSERT_FALSE(damaged);
  EXPECT_EQ(damaged.error().description(), "The last scan is damaged.");
  EXPECT_EQ(files.contents[readable], "[]");
  files.failures["read " + readable] = EACCES;
  const auto closed = store.load("/");
  ASSERT_FALSE(closed);
  EXPECT_EQ(closed.error().description(), "The last scan can't be read: Permission denied.");
}

TEST_F(StoredScans, AreNeverOlderThanTheLastSaveThatSucceeded) {
  // Whatever call fails, a later load finds the old result or the new one, and the new one wherever the save said so.
  ASSERT_TRUE(store.save(resultOf("/", 1)));
  const auto before = files.contents;
  for (const std::string& call : {"remove " + fast, "write " + readable, "write " + fast}) {
    files.contents = before;
    files.failures = {{call, ENOSPC}};
    const bool isSaved = store.save(resultOf("/", 2)).has_value();
    EXPECT_EQ(isSaved, call.starts_with("remove"));
    files.failures.clear();
    EXPECT_EQ(loadedBytes("/"), call == "write " + readable ? 1 : 2) << call;
  }
}

TEST_F(StoredScans, TellTheirLoadTimeOnlyToWhoMeasures) {
  for (const auto& [bench, told] : {std::pair("1", true), std::pair("0", false)}) {
    testing::internal::CaptureStdout();
    loadedBytes("/", PerfProbe::of(bench, nullptr));
    EXPECT_EQ(testing::internal::GetCapturedStdout().starts_with("PERF startup decodeMs "), told);
  }
}

ScanHistoryPoint point(int day) { return {Date(std::chrono::hours(24 * day)), day, {}}; }
TidyReceipt receipt(int day) { return {Date(std::chrono::hours(24 * day)), day, {"Line \xFF"}, day % 2 == 0}; }

TEST_F(StoredScans, HaveAHistoryOfThirtyAndATidyLogOfFifty) {
  for (int day = 1; day <= 30; ++day) {
    store.appendHistory(point(day));
  }
  EXPECT_EQ(store.loadHistory().size(), 30U);
  EXPECT_EQ(store.appendHistory(point(31)), store.loadHistory());
  EXPECT_EQ(store.loadHistory().front(), point(2));
  EXPECT_EQ(store.loadHistory().back(), point(31));
  for (int day = 1; day <= 51; ++day) {
    store.appendTidy(receipt(day));
  }
  EXPECT_EQ(store.loadTidyLog().size(), 50U);
  EXPECT_EQ(store.loadTidyLog().front(), receipt(2));
  EXPECT_EQ(store.loadTidyLog().back(), receipt(51));
}

TEST_F(StoredScans, LoseADamagedHistoryButNoneThatIsOnlyOutOfReach) {
  const std::string url = "/support/scan-history.json";
  files.contents[url] = R"([{"date":"never"}])";
  EXPECT_TRUE(store.loadHistory().empty());
  EXPECT_EQ(store.appendHistory(point(1)), std::vector{point(1)});
  EXPECT_EQ(store.loadHistory(), std::vector{point(1)});
  files.failures["read " + url] = EIO;
  EXPECT_EQ(store.appendHistory(point(2)), std::vector{point(2)});
  files.failures = {{"write " + url, ENOSPC}};
  EXPECT_EQ(store.appendHistory(point(3)), (std::vector{point(1), point(3)}));
  EXPECT_EQ(store.loadHistory(), std::vector{point(1)});
}

}  // namespace
}  // namespace lumenary
