#include "core/DiagnosticsReport.h"

#include <cstdio>

#include "base/Path.h"
#include "base/Text.h"

namespace lumenary {
namespace {

/// One digit, by the person's decimal point.
std::string withOneDigit(double value) {
  char text[32];
  const int length = std::snprintf(text, sizeof text, "%.1f", value);
  return {text, static_cast<std::size_t>(length)};
}

}  // namespace

std::string diagnosticsReport(const DiagnosticsFacts& facts) {
  const std::string volume = displayText(lastPathComponent(facts.selectedVolume));
  std::string text = "Hearthkeep diagnostics";
  const auto line = [&](const char* name, const std::string& value) {
    text.append("\n").append(name).append(": ").append(value);
  };
  line("Generated", iso8601(facts.generatedAt));
  line("macOS", facts.systemVersion);
  line("App version", facts.appVersion.empty() ? "development" : facts.appVersion);
  line("Full Disk Access", facts.hasFullDiskAccess ? "available" : "not granted");
  line("Selected volume", volume.empty() ? "/" : volume);
  line("Storage scan", facts.hasScan ? "completed" : "none");
  line("Storage entries", std::to_string(facts.entryCount));
  line("Inaccessible locations", std::to_string(facts.inaccessibleCount));
  line("Listening ports", std::to_string(facts.portCount));
  line("Visible processes sampled", std::to_string(facts.processCount));
  line("Cleanup candidates", std::to_string(facts.candidateCount));
  if (facts.lastReading) {
    line("CPU", withOneDigit(facts.lastReading->cpuPercent) + "%");
    line("Memory pressure",
         std::string(memoryPressureTexts[static_cast<std::size_t>(facts.lastReading->memoryPressure)]));
  }
  return text;
}

}  // namespace lumenary
