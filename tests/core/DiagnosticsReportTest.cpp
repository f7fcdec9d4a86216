#include <gtest/gtest.h>

#include <chrono>

#include "core/DiagnosticsReport.h"

namespace lumenary {
namespace {

const Date generated = std::chrono::sys_days(std::chrono::year(2026) / 11 / 23);

TEST(DiagnosticsReport, TellsCountsAlone) {
  EXPECT_EQ(diagnosticsReport({.generatedAt = generated, .systemVersion = "6.1", .selectedVolume = "/"}),
            "Hearthkeep diagnostics\nGenerated: 2026-11-23T00:00:00Z\nmacOS: 6.1\nApp version: development\n"
            "Full Disk Access: not granted\nSelected volume: /\nStorage scan: none\nStorage entries: 0\n"
            "Inaccessible locations: 0\nListening ports: 0\nVisible processes sampled: 0\nCleanup candidates: 0");
  EXPECT_EQ(diagnosticsReport(
                {.generatedAt = generated,
                 .systemVersion = "6.1",
                 .appVersion = "0.9",
                 .hasFullDiskAccess = true,
                 .selectedVolume = "/media/anna/Stick\n\xff",
                 .hasScan = true,
                 .entryCount = 1,
                 .inaccessibleCount = 2,
                 .portCount = 3,
                 .processCount = 4,
                 .candidateCount = 5,
                 .lastReading = SystemSnapshot{.cpuPercent = 12.34, .memoryPressure = MemoryPressureLevel::elevated}}),
            "Hearthkeep diagnostics\nGenerated: 2026-11-23T00:00:00Z\nmacOS: 6.1\nApp version: 0.9\n"
            "Full Disk Access: available\nSelected volume: Stick\uFFFD\uFFFD\nStorage scan: completed\n"
            "Storage entries: 1\nInaccessible locations: 2\nListening ports: 3\nVisible processes sampled: 4\n"
            "Cleanup candidates: 5\nCPU: 12.3%\nMemory pressure: Elevated");
}

}  // namespace
}  // namespace lumenary
