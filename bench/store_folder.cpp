// store_folder FOLDER ROUNDS: how long the store takes to save and to load a full-size scan in a folder, and to load it
// while another thread saves it again and again.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "MadeScan.h"
#include "StoreTimes.h"
#include "platform/Platform.h"
#include "storage/ScanStore.h"

namespace {

using lumenary::ScanStore;

[[noreturn]] void fail(const std::string& what) {
  std::fprintf(stderr, "%s\n", what.c_str());
  std::exit(1);
}

void save(ScanStore& store, const lumenary::StorageScanResult& scan) {
  if (const auto saved = store.save(scan); !saved) {
    fail(saved.error().description());
  }
}

std::vector<std::int64_t> loads(ScanStore& store, const lumenary::StorageScanResult& scan, std::size_t rounds) {
  std::vector<std::int64_t> times;
  for (std::size_t round = 0; round < rounds; ++round) {
    times.push_back(store::nanoseconds([&] {
      const auto loaded = store.load(scan.root.path);
      if (!loaded || !*loaded || (*loaded)->entries.size() != scan.entries.size()) {
        fail("What was saved can't be loaded.");
      }
    }));
  }
  return times;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3) {
    fail("Usage: store_folder FOLDER ROUNDS");
  }
  const std::size_t rounds = store::numberFrom(arguments[2]);
  const auto scan = MadeScan::make();
  const lumenary::Platform platform = lumenary::makePlatform();
  ScanStore store(*platform.files, arguments[1]);
  lumenary::PerfProbe readableOnly;
  readableOnly.disabled.insert("fastdecode");
  ScanStore readable(*platform.files, arguments[1], readableOnly);

  save(store, scan);
  std::vector<std::int64_t> saving;
  for (std::size_t round = 0; round < rounds; ++round) {
    saving.push_back(store::nanoseconds([&] { save(store, scan); }));
  }
  const auto loading = loads(store, scan, rounds);
  const auto loadingReadable = loads(readable, scan, rounds);

  std::atomic<bool> isOver = false;
  std::jthread saver([&] {
    while (!isOver) {
      save(store, scan);
    }
  });
  const auto loadingMeanwhile = loads(store, scan, rounds);
  isOver = true;
  saver.join();
  store::print({{"save", saving},
                {"load, fast form", loading},
                {"load, readable form", loadingReadable},
                {"load while another thread saves all the time", loadingMeanwhile}});
}
