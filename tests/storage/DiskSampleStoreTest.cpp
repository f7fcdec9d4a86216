#include <gtest/gtest.h>

#include "storage/DiskSampleStore.h"
#include "support/FakePlatform.h"

namespace lumenary {
namespace {

using Samples = std::vector<DiskSample>;

const Date start = *parseISO8601("2001-01-02T00:00:00Z");

TEST(DiskSampleStore, KeepsTheNewest240) {
  FakeDefaults defaults;
  Samples samples;
  for (int number = 1; number <= 241; ++number) {
    samples = DiskSampleStore::append({start + std::chrono::milliseconds(number), number}, samples, defaults);
  }
  ASSERT_EQ(samples.size(), 240U);
  EXPECT_EQ(samples.front().usedBytes, 2);
  EXPECT_EQ(samples.back().usedBytes, 241);
  EXPECT_EQ(DiskSampleStore::load(defaults), samples);
}

TEST(DiskSampleStore, WritesSecondsSince2001AndReadsNothingElse) {
  FakeDefaults defaults;
  EXPECT_EQ(DiskSampleStore::load(defaults), Samples{});
  DiskSampleStore::append({start + std::chrono::milliseconds(500), 7}, {}, defaults);
  EXPECT_EQ(defaults.values["diskSamples"], R"([{"date":86400.5,"usedBytes":7}])");
  for (const char* text : {"", "{}", "[{}]", R"([{"date":"now","usedBytes":7}])", R"([{"date":1e300,"usedBytes":7}])",
                           R"([{"date":1,"usedBytes":7},{"date":2}])"}) {
    defaults.values["diskSamples"] = text;
    EXPECT_EQ(DiskSampleStore::load(defaults), Samples{}) << text;
  }
}

}  // namespace
}  // namespace lumenary
