#include <gtest/gtest.h>

#include <algorithm>

#include "storage/ScanJson.h"

namespace lumenary {
namespace {

using Error = JsonDocument::Error;

const Date noon = *parseISO8601("2026-11-23T12:00:00Z");

StorageScanResult smallResult() {
  StorageScanResult result{.root = {.path = "/home/anna", .isFolder = true},
                           .scannedAt = noon + std::chrono::milliseconds(1500),
                           .totalBytes = 4'096,
                           .scannedItemCount = 3,
                           .inaccessiblePaths = {"/home/anna/closed\xFF"},
                           .entries = {{.id = *UUID::parse("00112233-4455-6677-8899-aabbccddeeff"),
                                        .url = {.path = "/home/anna/a b\xFF", .isFolder = false},
                                        .name = "a b\xFF",
                                        .kind = FileEntry::Kind::file,
                                        .byteCount = 4'096,
                                        .modifiedAt = noon,
                                        .category = StorageCategory::developer}},
                           .categoryByteTotals = {{{StorageCategory::developer, 4'096}}},
                           .folderByteTotals = FolderByteTotals({{"/home/anna/\"q\"", 5}, {"/home/anna", 4'096}})};
  return result;
}

const std::string readable =
    R"({"root":"file:///home/anna/","scannedAt":"2026-11-23T12:00:01Z","totalBytes":4096,"scannedItemCount":3,)"
    "\"inaccessiblePaths\":[\"/home/anna/closed\uEFFF\"],"
    R"("entries":[{"id":"00112233-4455-6677-8899-AABBCCDDEEFF","url":"file:///home/anna/a%20b%FF",)"
    "\"name\":\"a b\uEFFF\","
    R"("kind":"file","byteCount":4096,"modifiedAt":"2026-11-23T12:00:00Z","category":"Developer Data"}],)"
    R"("categoryByteTotals":["Developer Data",4096],"folderByteTotals":{"/home/anna":4096,"/home/anna/\"q\"":5}})";

std::string replaced(std::string text, std::string_view part, std::string_view by) {
  const std::size_t at = text.find(part);
  EXPECT_NE(at, std::string::npos) << part;
  return text.replace(at, part.size(), by);
}

TEST(ScanJson, WritesBothFormsToTheLetter) {
  EXPECT_EQ(encodeScanResult(smallResult(), DateForm::iso8601), readable);
  std::string fast = replaced(readable, "\"2026-11-23T12:00:01Z\"", "1795435201.5");
  fast = replaced(fast, "\"2026-11-23T12:00:00Z\"", "1795435200");
  EXPECT_EQ(encodeScanResult(smallResult(), DateForm::secondsSince1970), fast);
}

TEST(ScanJson, ReadsBackWhatItWrote) {
  for (const DateForm form : {DateForm::iso8601, DateForm::secondsSince1970}) {
    const std::string text = encodeScanResult(smallResult(), form);
    const auto result = decodeScanResult(text, form);
    ASSERT_TRUE(result);
    EXPECT_EQ(encodeScanResult(*result, form), text);
    EXPECT_EQ(result->entries, smallResult().entries);
    EXPECT_EQ(result->inaccessiblePaths, smallResult().inaccessiblePaths);
    EXPECT_EQ(result->folderByteTotals, smallResult().folderByteTotals);
  }
}

TEST(ScanJson, LeavesOutWhatIsAbsentAndReadsItSo) {
  StorageScanResult result = smallResult();
  result.entries.front().modifiedAt.reset();
  result.categoryByteTotals.reset();
  result.folderByteTotals.reset();
  const std::string text = encodeScanResult(result, DateForm::iso8601);
  EXPECT_FALSE(text.contains("modifiedAt") || text.contains("ByteTotals")) << text;
  const auto decoded = decodeScanResult(text, DateForm::iso8601);
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->entries, result.entries);
  EXPECT_EQ(decoded->categoryTotals(), (CategoryTotals{{StorageCategory::developer, 4'096}}));
  EXPECT_NE(decoded->index, decodeScanResult(text, DateForm::iso8601)->index);
}

TEST(ScanJson, RefusesATextThatBreaksARuleAnywhere) {
  const std::pair<const char*, const char*> breaches[] = {
      {"\"root\":", "\"loot\":"},
      {"\"scannedAt\":", "\"at\":"},
      {"\"totalBytes\":4096", "\"totalBytes\":-1"},
      {"\"scannedItemCount\":3", "\"scannedItemCount\":\"3\""},
      {"\"inaccessiblePaths\":[", "\"inaccessiblePaths\":[1,"},
      {"\"entries\":", "\"entrees\":"},
      {"\"id\":\"0", "\"id\":\"x"},
      {"file:///home/anna/a", "https:///home/anna/a"},
      {"a%20b", "..%2F"},
      {"\"kind\":\"file\"", "\"kind\":\"pipe\""},
      {"\"byteCount\":4096", "\"byteCount\":9223372036854775808"},
      {"\"modifiedAt\":\"2026-11-23T12:00:00Z\"", "\"modifiedAt\":\"yesterday\""},
      {"\"category\":\"Developer Data\"", "\"category\":\"Data\""},
      {"[\"Developer Data\",4096]", "[\"Developer Data\"]"},
      {"[\"Developer Data\",4096]", "{\"Developer Data\":4096}"},
      {"[\"Developer Data\",4096]", "[4096,\"Developer Data\"]"},
      {"{\"/home/anna\":4096", "{\"home/anna\":4096"},
      {"{\"/home/anna\":4096", "{\"/home/anna\":4096.5"},
      {"{\"/home/anna\":4096", "{\"/home/../etc\":4096"},
      {"{\"/home/anna\":4096", "{\"/home/anna\\u0000\":4096"},
  };
  for (const auto& [part, by] : breaches) {
    const auto result = decodeScanResult(replaced(readable, part, by), DateForm::iso8601);
    EXPECT_TRUE(!result && result.error() == Error::malformed) << part << " by " << by;
  }
  for (std::size_t length = 0; length < readable.size(); ++length) {
    EXPECT_FALSE(decodeScanResult(std::string_view(readable).substr(0, length), DateForm::iso8601)) << length;
  }
  EXPECT_FALSE(decodeScanResult(readable, DateForm::secondsSince1970));
  const std::string fast = encodeScanResult(smallResult(), DateForm::secondsSince1970);
  EXPECT_FALSE(decodeScanResult(replaced(fast, "1795435200", "1e300"), DateForm::secondsSince1970));
  EXPECT_FALSE(decodeScanResult(fast, DateForm::iso8601));
}

TEST(ScanJson, TakesTheLastOfRepeatedPathsAndSortsThem) {
  const auto result = decodeScanResult(
      replaced(readable, "{\"/home/anna\":4096", "{\"/z\":1,\"/z\":2,\"/home/anna\":4096"), DateForm::iso8601);
  ASSERT_TRUE(result);
  EXPECT_EQ(*result->folderByteTotals, FolderByteTotals({{"/home/anna", 4'096}, {"/home/anna/\"q\"", 5}, {"/z", 2}}));
}

TEST(ScanJson, WritesAndReadsTheHistory) {
  const std::vector<ScanHistoryPoint> points = {
      {noon, 10, {{StorageCategory::caches, 3}, {StorageCategory::system, 7}}},
      {noon + std::chrono::hours(24), 12, {}}};
  const std::string text = encodeScanHistory(points);
  EXPECT_EQ(text, R"([{"date":"2026-11-23T12:00:00Z","usedBytes":10,"categoryTotals":["Caches",3,"System Data",7]},)"
                  R"({"date":"2026-11-24T12:00:00Z","usedBytes":12,"categoryTotals":[]}])");
  EXPECT_EQ(decodeScanHistory(text), points);
  EXPECT_FALSE(decodeScanHistory(replaced(text, "usedBytes", "used")));
}

}  // namespace
}  // namespace lumenary
