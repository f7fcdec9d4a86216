#include <gtest/gtest.h>

#include "apps/AppIdentifiers.h"
#include "apps/AppInventory.h"
#include "apps/KnownAppData.h"

namespace lumenary {
namespace {

using Names = std::vector<std::string>;

TEST(AppIdentifiers, CandidatesGoFromTheLongestToThreePieces) {
  const std::vector<std::pair<std::string, Names>> cases = {
      {"com.example.app.helper.gpu", {"com.example.app.helper.gpu", "com.example.app.helper", "com.example.app"}},
      {"com.example.app", {"com.example.app"}},
      {"com..example.app.", {"com.example.app"}},
      {"example..app", {"example..app"}},
      {"Slack", {"Slack"}},
      {"", {""}},
  };
  for (const auto& [name, expected] : cases) {
    EXPECT_EQ(candidateIDs(name), expected) << name;
  }
}

TEST(AppIdentifiers, AreToldByTheirLooks) {
  for (const char* name : {"com.example.gone", "ORG.example.some-tool", "io.a.b.c"}) {
    EXPECT_TRUE(looksLikeBundleID(name)) << name;
  }
  for (const char* name : {"example.app", "Adobe", "com.example", "com..gone", "com.example.gone.", "company.a.b",
                           "com.example.My App", ""}) {
    EXPECT_FALSE(looksLikeBundleID(name)) << name;
  }
}

TEST(AppIdentifiers, AreComparedWithoutWhatNamesAreSeparatedBy) {
  EXPECT_EQ(normalized("Example Pro-2.5 (Ünal)"), "examplepro2.5ünal");
  EXPECT_EQ(normalized("…"), "");
}

TEST(LeftoverGroup, IsCalledByTheEndOfItsIdentifier) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"com.example.some-tool", "some tool (example)"},
      {"com.example.tool.helper", "tool helper (example)"},
      {"com..example.tool", "tool (example)"},
      {"example.app", "example.app"},
  };
  for (const auto& [id, name] : cases) {
    EXPECT_EQ((LeftoverGroup{.bundleID = id}).displayName(), name);
  }
}

TEST(KnownAppData, ReadsVersionsStrictly) {
  const std::vector<std::pair<std::string, std::optional<std::vector<std::int64_t>>>> cases = {
      {"1.2", {{1, 2}}},
      {"1.10.0.007", {{1, 10, 0, 7}}},
      {"1", {}},
      {"1.2.3.4.5", {}},
      {"1..2", {}},
      {"v1.2", {}},
      {"1.2.", {}},
      {"", {}},
      {"-1.2", {}},
      {"1.+2", {}},
      {"1.99999999999999999999", {}},
  };
  for (const auto& [name, version] : cases) {
    EXPECT_EQ(KnownAppData::version(name), version) << name;
  }
}

TEST(KnownAppData, IsFoundByTheExactIdentifier) {
  EXPECT_NE(KnownAppData::forApp("com.google.Chrome"), nullptr);
  EXPECT_EQ(KnownAppData::forApp("com.google.chrome"), nullptr);
}

TEST(InstalledApp, OffersNothingThatARunningAppWorksIn) {
  InstalledApp app{.url = {}, .name = "Example", .bundleID = "com.example.app", .appBytes = 1000};
  const auto add = [&](AppDataKind kind, AppDataVerdict verdict, std::int64_t bytes) {
    app.items.push_back({.url = {}, .kind = kind, .title = {}, .bytes = bytes, .verdict = verdict, .explanation = {}});
  };
  add(AppDataKind::caches, AppDataVerdict::safe, 1);
  add(AppDataKind::support, AppDataVerdict::safe, 10);
  add(AppDataKind::support, AppDataVerdict::keep, 100);
  EXPECT_EQ(app.totalBytes(), 1111);
  EXPECT_EQ(app.safeBytes(), 11);
  EXPECT_EQ(app.clearableBytes(), 11);
  app.isRunning = true;
  EXPECT_EQ(app.safeBytes(), 11);
  EXPECT_EQ(app.clearableBytes(), 1);
}

}  // namespace
}  // namespace lumenary
