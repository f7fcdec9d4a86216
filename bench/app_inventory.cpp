// app_inventory FOLDER [ROUNDS]: makes a home with 200 apps in an empty folder and takes their inventory, once without
// and once with the sizes of a scan. Prints a line of JSON for each: times in milliseconds, what was found, how many
// calls to the system's reader it took, and how many folders were listed, and of these more than once.
//
// app_inventory FOLDER only with|without: one inventory of the home that was made there, for whoever counts from
// outside; "with none": what stands around it, alone.

#include <charconv>
#include <chrono>
#include <cstdio>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Folder.h"
#include "apps/LinuxAppLayout.h"
#include "base/JsonWriter.h"
#include "platform/Platform.h"
#include "platform/linux/LinuxAppRegistry.h"
#include "storage/StorageScanner.h"

namespace {

using namespace lumenary;

constexpr int appCount = 200;
constexpr std::size_t kib = 1024;
constexpr std::size_t mib = 1024 * kib;

std::string idOf(int number) { return "org.maker" + std::to_string(number) + ".App"; }

void fill(const Folder& at, int files, std::size_t size) {
  for (int index = 0; index < files; ++index) {
    at.file("file-" + std::to_string(index), size);
  }
}

/// An app with settings, a cache in folders of 16, and for each fifth one a folder large enough to be broken down.
void makeApp(const Folder& config, const Folder& data, const Folder& caches, int number) {
  const Folder cache(caches, number % 2 == 0 ? idOf(number) : "Program" + std::to_string(number));
  for (int part = 0; part < 16; ++part) {
    fill(Folder(cache, std::to_string(part)), 20, 16 * kib);
  }
  const Folder settings(config, idOf(number));
  fill(settings, 10, 2 * kib);
  fill(Folder(settings, "profiles"), 10, 2 * kib);
  if (number % 5 == 0) {
    const Folder large(data, "Program" + std::to_string(number));
    for (const char* const name : {"Cache", "GPUCache", "logs", "small", "notes"}) {
      fill(Folder(large, name), 30, 40 * kib);
    }
    const Folder profile(large, "Default");
    fill(Folder(Folder(profile, "Service Worker"), "CacheStorage"), 20, mib);
    fill(Folder(profile, "Databases"), 30, mib);
    fill(Folder(large, "1.2"), 10, 200 * kib);
    fill(Folder(large, "1.10"), 10, 200 * kib);
  }
}

void makeText(const std::string& path, const std::string& text) {
  std::FILE* const file = std::fopen(path.c_str(), "w");
  if (file == nullptr || std::fputs(text.c_str(), file) < 0 || std::fclose(file) != 0) {
    fail(path);
  }
}

void makeHome(const std::string& root) {
  const Folder home(AT_FDCWD, root, 0);
  const Folder config(home, ".config");
  const Folder caches(home, ".cache");
  const Folder local(home, ".local");
  const Folder data(local, "share");
  const Folder entries(data, "applications");
  for (int number = 0; number < appCount; ++number) {
    makeApp(config, data, caches, number);
    makeText(root + "/.local/share/applications/" + idOf(number) + ".desktop",
             "[Desktop Entry]\nType=Application\nName=Program " + std::to_string(number) + "\nExec=/opt/none/program" +
                 std::to_string(number) + " %U\n");
  }
  for (int number = 0; number < appCount; ++number) {
    fill(Folder(config, "unknown-" + std::to_string(number)), 5, kib);
  }
}

/// Counts what is asked of the disk, and how often each folder is listed.
class CountingReader final : public FileReader {
 public:
  explicit CountingReader(const FileReader& real) : real_(real) {}

  SystemResult<Descriptor> openFolder(std::string_view path, LinkPolicy links) const override {
    return opened(real_.openFolder(path, links));
  }
  SystemResult<Descriptor> openFolder(const Descriptor& parent, const char* name) const override {
    return opened(real_.openFolder(parent, name));
  }
  SystemResult<std::span<const FolderEntry>> nextEntries(const Descriptor& folder,
                                                         FolderScratch& scratch) const override {
    return ++calls, real_.nextEntries(folder, scratch);
  }
  SystemResult<FileAttributes> attributes(const Descriptor& folder, const char* name) const override {
    return ++calls, real_.attributes(folder, name);
  }
  SystemResult<FileAttributes> attributes(const Descriptor& folder) const override {
    return ++calls, real_.attributes(folder);
  }
  SystemResult<FileAttributes> attributes(std::string_view path, LinkPolicy links) const override {
    return ++calls, real_.attributes(path, links);
  }
  SystemResult<std::string> realPath(std::string_view path) const override { return ++calls, real_.realPath(path); }

  mutable std::uint64_t calls = 0;
  mutable std::map<FileIdentity, int> timesOpened;

 private:
  SystemResult<Descriptor> opened(SystemResult<Descriptor> folder) const {
    ++calls;
    if (const auto found = folder ? real_.attributes(*folder) : std::unexpected(SystemError{})) {
      ++timesOpened[found->identity];
    }
    return folder;
  }

  const FileReader& real_;
};

struct Bench {
  explicit Bench(const std::string& home) {
    platform.places.home = home;
    platform.places.configHome = home + "/.config";
    platform.places.cacheHome = home + "/.cache";
    platform.places.dataHome = home + "/.local/share";
    platform.places.stateHome = home + "/.local/state";
    LinuxAppRoots roots;
    roots.applicationFolders = {home + "/.local/share/applications"};
    apps = LinuxAppRegistry(*platform.reader, *platform.files, roots).apps();
    const StorageScanner scanner(*platform.reader, *platform.mountTable, platform.places, platform.now, 6);
    auto result = scanner.scan(home);
    if (!result) {
      fail(home);
    }
    scanned = result->folderByteTotals.value_or(FolderByteTotals());
  }

  AppInventory inventory(const FileReader& reader, bool isKnown) {
    AppInventoryScanner scanner = linuxInventoryScanner(platform.places, apps, catalog);
    scanner.knownSizes = isKnown ? scanned : FolderByteTotals();
    scanner.now = platform.now;
    return scanner.inventory(reader, *platform.files);
  }

  Platform platform = makePlatform();
  CleanupCatalog catalog{*platform.appNames};
  std::vector<RegisteredApp> apps;
  FolderByteTotals scanned;
};

void tell(Bench& bench, bool isKnown, std::size_t rounds) {
  std::vector<double> times;
  AppInventory found;
  for (std::size_t round = 0; round < rounds; ++round) {
    const auto started = std::chrono::steady_clock::now();
    found = bench.inventory(*bench.platform.reader, isKnown);
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - started;
    times.push_back(took.count());
  }
  const CountingReader counting(*bench.platform.reader);
  bench.inventory(counting, isKnown);
  std::int64_t again = 0;
  for (const auto& [identity, times_] : counting.timesOpened) {
    again += times_ > 1 ? 1 : 0;
  }
  std::uint64_t items = 0;
  for (const InstalledApp& app : found.apps) {
    items += app.items.size();
  }
  JsonWriter json(JsonWriter::Layout::compact);
  json.beginObject();
  json.key("what").string(isKnown ? "with" : "without");
  json.key("apps").unsignedInteger(found.apps.size());
  json.key("items").unsignedInteger(items);
  json.key("calls").unsignedInteger(counting.calls);
  json.key("folders").unsignedInteger(counting.timesOpened.size());
  json.key("again").integer(again);
  json.key("times").beginArray();
  for (const double time : times) {
    json.number(time);
  }
  json.endArray().endObject();
  std::puts(json.take().c_str());
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount < 2) {
    std::fputs("Usage: app_inventory FOLDER [ROUNDS]\n", stderr);
    return 2;
  }
  const std::string home = arguments[1];
  if (argumentCount == 4) {
    Bench bench(home);
    if (std::string_view(arguments[3]) != "none") {
      bench.inventory(*bench.platform.reader, std::string_view(arguments[3]) == "with");
    }
    return 0;
  }
  std::size_t rounds = 25;
  if (argumentCount > 2) {
    const std::string_view text = arguments[2];
    std::from_chars(text.data(), text.data() + text.size(), rounds);
  }
  makeHome(home);
  Bench bench(home);
  tell(bench, false, rounds);
  tell(bench, true, rounds);
  return 0;
}
