// find_duplicates ROOT SUPPORT|-: a scan of a folder, taken for a home, and one search for duplicates in it, with
// digests kept in the folder SUPPORT, or with none kept. Prints one line of JSON. find_duplicates hash BYTES: makes a
// digest of that many bytes that lie in memory, on one core.

#include <charconv>
#include <chrono>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "base/JsonWriter.h"
#include "base/Sha256.h"
#include "cleanup/DuplicateFinder.h"
#include "platform/Platform.h"
#include "storage/StorageScanner.h"

namespace {

using namespace lumenary;
using Milliseconds = std::chrono::duration<double, std::milli>;

class CountingReader final : public ContentReader {
 public:
  explicit CountingReader(const ContentReader& real) : real_(real) {}
  mutable std::int64_t bytes = 0;

  SystemResult<Descriptor> openFile(const std::string& path) const override { return real_.openFile(path); }
  SystemResult<Descriptor> openFile(const Descriptor& folder, const char* name) const override {
    return real_.openFile(folder, name);
  }
  SystemResult<ContentStamp> stamp(const Descriptor& file) const override { return real_.stamp(file); }
  SystemResult<std::size_t> read(const Descriptor& file, std::uint64_t offset,
                                 std::span<std::byte> into) const override {
    auto count = real_.read(file, offset, into);
    bytes += static_cast<std::int64_t>(count.value_or(0));
    return count;
  }
  bool isInMemory(const Descriptor& file, std::uint64_t offset) const override {
    return real_.isInMemory(file, offset);
  }
  void willRead(const Descriptor& file, std::uint64_t offset, std::uint64_t length) const override {
    real_.willRead(file, offset, length);
  }
  void release(const Descriptor& file, std::uint64_t offset, std::uint64_t length) const override {
    real_.release(file, offset, length);
  }

 private:
  const ContentReader& real_;
};

int hashInMemory(std::string_view count) {
  std::int64_t left = 0;
  std::from_chars(count.data(), count.data() + count.size(), left);
  constexpr std::size_t most = std::size_t{256} << 20;
  const std::vector<std::byte> bytes(most, std::byte{7});
  const auto started = std::chrono::steady_clock::now();
  Sha256 digest;
  for (; left > 0; left -= static_cast<std::int64_t>(most)) {
    digest.add(std::span(bytes).first(std::min(most, static_cast<std::size_t>(left))));
  }
  const std::string text = digest.finish();
  const Milliseconds took = std::chrono::steady_clock::now() - started;
  JsonWriter json(JsonWriter::Layout::compact);
  json.beginObject().key("milliseconds").number(took.count()).key("digest").string(text).endObject();
  std::puts(json.take().c_str());
  return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3) {
    std::fputs("Usage: find_duplicates ROOT SUPPORT|-\n       find_duplicates hash BYTES\n", stderr);
    return 2;
  }
  const std::string root = arguments[1];
  if (root == "hash") {
    return hashInMemory(arguments[2]);
  }
  const Platform platform = makePlatform();
  Places places = platform.places;
  places.home = root;
  places.support = arguments[2];
  PerfProbe probe;
  if (places.support == "-") {
    probe.disabled = {"hashcache"};
  }
  const auto result = StorageScanner(*platform.reader, *platform.mountTable, places, platform.now, 2 * 3).scan(root);
  if (!result) {
    return 1;
  }
  const StorageTrashGate gate(*platform.reader, *platform.mountTable, places);
  const CountingReader contents(*platform.contents);
  const auto started = std::chrono::steady_clock::now();
  const auto groups =
      DuplicateFinder(*platform.reader, contents, *platform.files, gate, places, probe).find(result->entries, {});
  const Milliseconds took = std::chrono::steady_clock::now() - started;
  std::int64_t extras = 0;
  for (const DuplicateGroup& group : groups) {
    extras += static_cast<std::int64_t>(group.extras.size());
  }
  JsonWriter json(JsonWriter::Layout::compact);
  json.beginObject();
  json.key("milliseconds").number(took.count());
  json.key("bytesRead").integer(contents.bytes);
  json.key("groups").integer(static_cast<std::int64_t>(groups.size()));
  json.key("extras").integer(extras);
  json.endObject();
  std::puts(json.take().c_str());
  return 0;
}
