// The last result of each root stands in two files that differ in nothing but their dates. The readable one is the
// truth; the fast one spares the start the reading of 20,000 dates, and can be made again from the other at any time.
// So the fast one goes before the readable one changes: whoever is killed in between leaves a true file and no stale
// one.

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <utility>

#include "base/Hex.h"
#include "base/Path.h"
#include "base/Unicode.h"
#include "storage/ScanJson.h"
#include "storage/ScanStore.h"

namespace lumenary {
namespace {

/// A file name of more than 255 bytes can't be had; what is added behind the key needs some of them.
constexpr std::size_t longestKey = 200;

/// Tells long keys apart of which only the beginning fits (FNV-1a, 64 bits).
std::string fingerprint(std::string_view text) {
  std::uint64_t hash = 0xCBF2'9CE4'8422'2325U;
  for (const char byte : text) {
    hash = (hash ^ static_cast<std::uint8_t>(byte)) * 0x100'0000'01B3U;
  }
  std::string digits;
  for (int shift = 56; shift >= 0; shift -= 8) {
    appendHex(digits, static_cast<std::uint8_t>(hash >> shift));
  }
  return digits;
}

std::string fileName(std::string_view root) {
  if (root == "/") {
    return "latest-scan";
  }
  std::string key = alphanumericsOr('-', root);
  // The last one would be the history's name.
  if (key.size() > longestKey || key == "-history") {
    const std::string digits = fingerprint(root);
    key.resize(std::min(key.size(), longestKey));
    key = alphanumericsOr('-', key) + '-' + digits;
  }
  return "scan" + key;
}

/// Tells on standard output how long a load took, whichever way out it takes.
class LoadTime {
 public:
  explicit LoadTime(const PerfProbe& probe) : isTold_(probe.isOn) {}
  LoadTime(const LoadTime&) = delete;
  LoadTime& operator=(const LoadTime&) = delete;
  ~LoadTime() {
    if (isTold_) {
      using std::chrono::milliseconds;
      const auto took = std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - started_);
      std::printf("PERF startup decodeMs %lld\n", static_cast<long long>(took.count()));
      std::fflush(stdout);
    }
  }

 private:
  const bool isTold_;
  const std::chrono::steady_clock::time_point started_ = std::chrono::steady_clock::now();
};

}  // namespace

std::string ScanLoadError::description() const {
  return system ? "The last scan can't be read: " + system->description() + "." : "The last scan is damaged.";
}

ScanStore::ScanFiles ScanStore::scanFiles(std::string_view root) const {
  const std::string path = appendingPathComponent(support_, fileName(root));
  return {.readable = path + ".json", .fast = path + ".v2.json"};
}

std::expected<void, SystemError> ScanStore::save(const StorageScanResult& result) {
  const ScanFiles urls = scanFiles(result.root.path);
  const std::scoped_lock oneAtATime(scanMutex_);
  const auto alone = files_.lock(scansLockURL_);
  if (!alone && alone.error().code == EAGAIN) {
    return std::unexpected(alone.error());
  }
  static_cast<void>(files_.remove(urls.fast));
  const auto written = files_.writeAtomically(urls.readable, encodeScanResult(result, DateForm::iso8601));
  return written ? files_.writeAtomically(urls.fast, encodeScanResult(result, DateForm::secondsSince1970)) : written;
}

std::expected<std::optional<StorageScanResult>, ScanLoadError> ScanStore::load(std::string_view root) {
  const LoadTime time(probe_);
  const ScanFiles urls = scanFiles(standardise(root));
  if (!probe_.isDisabled("fastdecode")) {
    if (const auto bytes = files_.read(urls.fast, scanByteLimit)) {
      if (auto result = decodeScanResult(*bytes, DateForm::secondsSince1970)) {
        return *std::move(result);
      }
    }
  }
  const auto bytes = files_.read(urls.readable, scanByteLimit);
  if (!bytes && bytes.error().isMissing()) {
    return std::nullopt;
  }
  if (!bytes) {
    return std::unexpected(ScanLoadError{.system = bytes.error(), .text = {}});
  }
  auto result = decodeScanResult(*bytes, DateForm::iso8601);
  if (!result) {
    return std::unexpected(ScanLoadError{.system = {}, .text = result.error()});
  }
  saveFastWhereMissing(urls, *bytes, *result);
  return *std::move(result);
}

void ScanStore::saveFastWhereMissing(const ScanFiles& urls, const std::string& bytes, const StorageScanResult& result) {
  // A save that is under way brings its own, of a newer result.
  const std::unique_lock oneAtATime(scanMutex_, std::try_to_lock);
  const auto alone = oneAtATime ? files_.lockNow(scansLockURL_) : std::unexpected(SystemError{EAGAIN});
  if (!alone) {
    return;
  }
  // The one that was decoded may have been replaced meanwhile, by this process or another.
  if (files_.read(urls.readable, scanByteLimit) != bytes) {
    return;
  }
  const auto present = files_.read(urls.fast, 0);
  if (!present && present.error().isMissing()) {
    static_cast<void>(files_.writeAtomically(urls.fast, encodeScanResult(result, DateForm::secondsSince1970)));
  }
}

}  // namespace lumenary
