#include "storage/DiskSampleStore.h"

#include <cmath>
#include <utility>

#include "base/JsonWriter.h"
#include "storage/JsonFields.h"

namespace lumenary::DiskSampleStore {
namespace {

const std::string key = "diskSamples";

constexpr Date epoch = std::chrono::sys_days(std::chrono::year(2001) / 1 / 1);
/// More than anybody's clock shows, and far from what a date can't hold.
constexpr double farthestSeconds = 1e12;

std::optional<DiskSample> decodeSample(const JsonValue& object) {
  const auto seconds = object.member("date").and_then(&JsonValue::number);
  const auto usedBytes = object.member("usedBytes").and_then(&JsonValue::integer);
  if (!seconds || std::abs(*seconds) > farthestSeconds || !usedBytes) {
    return std::nullopt;
  }
  const std::chrono::duration<double> sinceEpoch(*seconds);
  return DiskSample{.date = epoch + std::chrono::round<Date::duration>(sinceEpoch), .usedBytes = *usedBytes};
}

std::string encodeSamples(const std::vector<DiskSample>& samples) {
  JsonWriter json(JsonWriter::Layout::compact);
  json.beginArray();
  for (const DiskSample& sample : samples) {
    json.beginObject();
    json.key("date").number(std::chrono::duration<double>(sample.date - epoch).count());
    json.key("usedBytes").integer(sample.usedBytes);
    json.endObject();
  }
  json.endArray();
  return json.take();
}

}  // namespace

std::vector<DiskSample> load(const Defaults& defaults) {
  const auto text = defaults.string(key).value_or(std::nullopt);
  if (!text) {
    return {};
  }
  auto samples = decodeDocument(*text, [](const JsonValue& root) { return decodeAll(root, decodeSample); });
  return std::move(samples).value_or(std::vector<DiskSample>());
}

std::vector<DiskSample> append(const DiskSample& sample, std::vector<DiskSample> samples, Defaults& defaults) {
  samples.push_back(sample);
  if (samples.size() > limit) {
    samples.erase(samples.begin(), samples.end() - static_cast<std::ptrdiff_t>(limit));
  }
  static_cast<void>(defaults.setString(key, encodeSamples(samples)));
  return samples;
}

}  // namespace lumenary::DiskSampleStore
