#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "base/Path.h"
#include "storage/StorageScanResult.h"

namespace lumenary {
namespace {

using Names = std::vector<std::string>;

FileEntry file(const std::string& path, std::int64_t bytes) {
  return {.id = {},
          .url = {.path = path},
          .name = std::string(lastPathComponent(path)),
          .byteCount = bytes,
          .modifiedAt = {}};
}

StorageScanResult resultOf(std::vector<FolderByteTotals::Folder> folders, std::vector<FileEntry> files) {
  StorageScanResult result{.root = {.path = "/Users/a", .isFolder = true},
                           .scannedAt = {},
                           .inaccessiblePaths = {},
                           .entries = std::move(files),
                           .categoryByteTotals = {},
                           .folderByteTotals = FolderByteTotals(std::move(folders))};
  return result;
}

Names pathsOf(std::span<const StorageNode> nodes) {
  Names paths;
  for (const StorageNode& node : nodes) {
    paths.push_back(node.path);
  }
  return paths;
}

TEST(StorageIndex, ListsFoldersAndFilesBySize) {
  const StorageScanResult result = resultOf(
      {{"/Users/a", 100}, {"/Users/a/small", 5}, {"/Users/a/big", 60}, {"/Users/a/big/in", 30}},
      {file("/Users/a/film", 30), file("/Users/a/twin", 5), file("/Users/a/big/in/x", 30), file("/elsewhere", 1)});
  const std::pair<const char*, Names> cases[] = {
      {"/Users/a", {"/Users/a/big", "/Users/a/film", "/Users/a/small", "/Users/a/twin"}},
      {"/Users/a/", {"/Users/a/big", "/Users/a/film", "/Users/a/small", "/Users/a/twin"}},
      {"/Users/a/big/in", {"/Users/a/big/in/x"}},
      {"/Users", {}},
      {"/", {"/elsewhere"}},
      {"", {}},
      {"/unknown", {}}};
  for (const auto& [path, expected] : cases) {
    EXPECT_EQ(pathsOf(result.children(path)), expected) << path;
  }
  EXPECT_TRUE(result.children("/Users/a")[0].isFolder());
  EXPECT_EQ(result.children("/Users/a")[1].file, result.entries[0]);
  EXPECT_EQ(result.folderBytes("/Users/a/big"), 60);
  EXPECT_EQ(result.folderBytes("/"), 1) << "the sum of what is listed where no total is known";
}

TEST(StorageIndex, NeverListsTheRootOfTheWholeDisk) {
  StorageScanResult result = resultOf({{"/", 9}, {"/home", 9}}, {});
  result.root.path = "/";
  EXPECT_EQ(pathsOf(result.children("/")), Names{"/home"});
  EXPECT_EQ(pathsOf(result.search("home", 9)), Names{"/home"});
}

class StorageSearch : public testing::Test {
 protected:
  StorageScanResult result =
      resultOf({{"/Users/a", 900}, {"/Users/a/PDF", 10}, {"/Users/a/my.pdf", 300}},
               {file("/Users/a/pdf", 20), file("/Users/a/PDF/pdf", 20), file("/Users/a/Pdf-large", 500),
                file("/Users/a/a pdf", 400), file("/Users/a/ΟΔΟΣ", 7), file("/Users/a/pdf.d/deep", 600)});
};

TEST_F(StorageSearch, RanksBeforeItSizes) {
  const std::tuple<const char*, std::size_t, Names> cases[] = {
      {"  PDF ",
       9,
       {"/Users/a/PDF/pdf", "/Users/a/pdf", "/Users/a/PDF", "/Users/a/Pdf-large", "/Users/a/a pdf", "/Users/a/my.pdf"}},
      {"pdf", 2, {"/Users/a/PDF/pdf", "/Users/a/pdf"}},
      {"pdf", 4, {"/Users/a/PDF/pdf", "/Users/a/pdf", "/Users/a/PDF", "/Users/a/Pdf-large"}},
      {"οδος", 9, {"/Users/a/ΟΔΟΣ"}},
      {"pdf.D/d", 9, {"/Users/a/pdf.d/deep"}},
      {"A/PDF.", 9, {"/Users/a/pdf.d/deep"}},
      {"a/pdf/", 9, {"/Users/a/PDF/pdf"}},
      {"/users/a/p", 2, {"/Users/a/pdf.d/deep", "/Users/a/Pdf-large"}},
      {"users", 9, {}},
      {"pdf", 0, {}},
      {" \t", 9, {}},
      {"", 9, {}}};
  for (const auto& [query, limit, expected] : cases) {
    EXPECT_EQ(pathsOf(result.search(query, limit)), expected) << query << " " << limit;
  }
}

TEST_F(StorageSearch, EndsWhenAskedToStop) {
  std::stop_source source;
  source.request_stop();
  EXPECT_TRUE(result.search("pdf", 9, source.get_token()).empty());
}

TEST_F(StorageSearch, MayBeAskedFromManyThreadsAtOnce) {
  std::atomic<std::size_t> found = 0;
  {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 8; ++thread) {
      threads.emplace_back([&] { found += result.search("pdf", 9).size() + result.children("/Users/a").size(); });
    }
  }
  EXPECT_EQ(found, 8U * (6 + 6));
}

}  // namespace
}  // namespace lumenary
