#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <vector>

#include "core/RoomRules.h"

namespace lumenary {
namespace {

using namespace std::chrono_literals;
using enum RoomLevel;

const Date now = std::chrono::sys_days(std::chrono::year(2026) / 11 / 23);
constexpr std::int64_t mebibyte = 1'048'576;

/// Everything in order: scanned, apps measured.
RoomInputs calmInputs() {
  return {.now = now, .usedFraction = 0.5, .availableBytes = 2'000'000'000, .scannedAt = now, .appSafeBytes = 0};
}

struct Case {
  const char* name;
  std::function<void(RoomInputs&)> alter;
  RoomStatus status;
};

void check(RoomStatus (*rule)(const RoomInputs&), const std::vector<Case>& cases) {
  for (const Case& tried : cases) {
    SCOPED_TRACE(tried.name);
    RoomInputs inputs = calmInputs();
    tried.alter(inputs);
    const RoomStatus status = rule(inputs);
    EXPECT_EQ(status.level, tried.status.level);
    EXPECT_EQ(status.value, tried.status.value);
    EXPECT_EQ(status.headline, tried.status.headline);
    EXPECT_EQ(status.badge, tried.status.badge);
    EXPECT_EQ(status.actionTitle, tried.status.actionTitle);
  }
}

TEST(RoomRules, Storage) {
  const std::string never = "Not scanned yet. Scan once to see what's taking space.";
  check(RoomRules::storage,
        {{"in order", [](auto&) {}, {calm, "2 GB free", "Nothing urgent. Plenty to browse.", {}, {}}},
         {"nothing known", [](auto& in) { in = {}; }, {attention, "—", never, {}, "Scan Mac"}},
         {"never scanned, and full",
          [](auto& in) {
            in.scannedAt.reset();
            in.usedFraction = 0.95;
          },
          {action, "2 GB free", never, {}, "Scan Mac"}},
         {"just not full",
          [](auto& in) { in.usedFraction = 0.9; },
          {calm, "2 GB free", "Nothing urgent. Plenty to browse.", {}, {}}},
         {"just full",
          [](auto& in) { in.usedFraction = 0.9000001; },
          {action, "2 GB free", "Disk is almost full. See what's biggest.", "Full", "Find Big Files"}},
         {"a week old",
          [](auto& in) { in.scannedAt = now - 604'800s; },
          {calm, "2 GB free", "Nothing urgent. Plenty to browse.", {}, {}}},
         {"older than a week",
          [](auto& in) { in.scannedAt = now - 604'801s; },
          {calm, "2 GB free", "Last scanned over a week ago.", {}, "Scan Again"}}});
}

TEST(RoomRules, Clean) {
  const auto sum = [](std::int64_t tidy, std::int64_t build, double used = 0.5) {
    return [=](RoomInputs& in) {
      in.tidyBytes = tidy;
      in.buildBytes = build;
      in.usedFraction = used;
    };
  };
  const auto words = [](RoomLevel level, const std::string& bytes, std::optional<std::string> badge) {
    return RoomStatus{level, bytes, bytes + " of caches, copies, and build files you can clear.", std::move(badge),
                      "See " + bytes};
  };
  check(RoomRules::cleanup,
        {{"nothing", sum(0, 0), {calm, "—", "Nothing to clear right now.", {}, {}}},
         {"little", sum(1000, 0), words(calm, "1 KB", {})},
         {"just below", sum(499 * mebibyte, mebibyte - 1), words(calm, "524.3 MB", {})},
         {"worth a look", sum(250 * mebibyte, 250 * mebibyte), words(attention, "524.3 MB", "524.3 MB")},
         {"at 85 %", sum(500 * mebibyte, 0, 0.85), words(attention, "524.3 MB", "524.3 MB")},
         {"on a full disk", sum(500 * mebibyte, 0, 0.851), words(action, "524.3 MB", "524.3 MB")}});
}

TEST(RoomRules, Apps) {
  const std::string half = "524.3 MB";
  check(
      RoomRules::apps,
      {{"tidy", [](auto&) {}, {calm, "Zero KB", "Apps are tidy.", {}, {}}},
       {"not measured",
        [](auto& in) { in.appSafeBytes.reset(); },
        {calm, "—", "Open to measure apps and the data they keep.", {}, {}}},
       {"an app went",
        [](auto& in) {
          in.removedAppName = "Maps";
          in.leftoverBytes = 2'000'000;
          in.brokenBackgroundItems = 3;
        },
        {action, "2 MB", "Maps was removed but left its data behind.", "2 MB", "See Leftovers"}},
       {"an app went and left nothing",
        [](auto& in) { in.removedAppName = "Maps"; },
        {calm, "Zero KB", "Apps are tidy.", {}, {}}},
       {"one broken item",
        [](auto& in) { in.brokenBackgroundItems = 1; },
        {attention, "1", "1 background item from removed apps still try to run.", "1 broken", "See Background Items"}},
       {"two broken items",
        [](auto& in) { in.brokenBackgroundItems = 2; },
        {attention, "2", "2 background items from removed apps still try to run.", "2 broken", "See Background Items"}},
       {"caches",
        [](auto& in) { in.appSafeBytes = 500 * mebibyte; },
        {attention, half, "App caches and logs that rebuild on their own.", half, "See App Caches"}},
       {"leftovers of one",
        [](auto& in) {
          in.leftoverBytes = 500 * mebibyte;
          in.leftoverCount = 1;
        },
        {attention, half, "1 removed app left data behind.", half, "See Leftovers"}},
       {"leftovers of two, just below",
        [](auto& in) {
          in.leftoverBytes = 500 * mebibyte - 1;
          in.leftoverCount = 2;
        },
        {calm, "Zero KB", "Apps are tidy.", {}, {}}}});
}

TEST(RoomRules, Memory) {
  const auto at = [](std::optional<MemoryPressureLevel> pressure, bool hasTop = true) {
    return [=](RoomInputs& in) {
      in.memoryPressure = pressure;
      in.memoryFraction = pressure ? std::optional(0.666) : std::nullopt;
      if (hasTop) {
        in.topMemoryApp = "Maps";
        in.topMemoryBytes = 3'000'000'000;
      }
    };
  };
  const std::string top = "Maps uses the most (3 GB).";
  check(RoomRules::memory, {{"nothing known", at({}, false), {calm, "—", "Enough memory for what's open.", {}, {}}},
                            {"only the top", at({}), {calm, "—", top, {}, {}}},
                            {"enough", at(MemoryPressureLevel::normal), {calm, "67%", top, {}, {}}},
                            {"tight",
                             at(MemoryPressureLevel::elevated),
                             {attention, "67%", "Memory is getting tight. " + top, "Tight", "See What's Using It"}},
                            {"short",
                             at(MemoryPressureLevel::critical),
                             {action, "67%", "Your Mac is short on memory. " + top, "Low", "Free Up Memory"}}});
}

TEST(RoomRules, PortsAndProjects) {
  const auto with = [](std::int64_t ports, std::int64_t projects) {
    return [=](RoomInputs& in) {
      in.portCount = ports;
      in.projectCount = projects;
    };
  };
  check(RoomRules::developer,
        {{"none", with(0, 4), {calm, "0 ports", "No local servers running.", {}, {}}},
         {"one", with(1, 1), {calm, "1 port", "Local servers listening, across 1 project.", "1", {}}},
         {"some", with(3, 0), {calm, "3 ports", "Local servers listening, across 0 projects.", "3", {}}}});
}

TEST(RoomRules, HomeSpeaksForTheFirstOfTheWorst) {
  check(RoomRules::home, {{"in order", [](auto&) {}, {calm, "All clear", "Every room is in order.", {}, {}}},
                          {"one to look at",
                           [](auto& in) { in.brokenBackgroundItems = 1; },
                           {attention,
                            "1 to look at",
                            "1 background item from removed apps still try to run.",
                            {},
                            "See Background Items"}},
                          {"two alike",
                           [](auto& in) {
                             in.usedFraction = 0.95;
                             in.memoryPressure = MemoryPressureLevel::critical;
                           },
                           {action, "2 to look at", "Disk is almost full. See what's biggest.", {}, "Find Big Files"}},
                          {"a later one that is worse",
                           [](auto& in) {
                             in.scannedAt.reset();
                             in.memoryPressure = MemoryPressureLevel::critical;
                           },
                           {action, "2 to look at", "Your Mac is short on memory. ", {}, "Free Up Memory"}}});
  EXPECT_EQ(RoomRules::status(AppDestination::home, calmInputs()), RoomRules::home(calmInputs()));
  EXPECT_EQ(RoomRules::status(AppDestination::developer, calmInputs()), RoomRules::developer(calmInputs()));
}

}  // namespace
}  // namespace lumenary
