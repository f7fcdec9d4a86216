// search_times [ROUNDS]: how long the tree and the names of a full-size scan take to build, and each search for a
// keystroke. Prints a line of JSON for each: what was done, how much came of it, and the times in nanoseconds.

#include <array>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "MadeScan.h"
#include "base/JsonWriter.h"
#include "storage/StorageIndex.h"

namespace {

using lumenary::JsonWriter;
using lumenary::StorageIndex;
using lumenary::StorageScanResult;

constexpr std::size_t limit = 200;
constexpr std::size_t builds = 9;
constexpr std::array typed = {"screenshot", "größen", "документы", "工作", "invoice 12"};
constexpr std::array others = {"a", "e", "/", "a/b", "s/b", "e/r", "4711-rep", "nothing is called so"};

template <class Work>
std::int64_t nanoseconds(Work work) {
  const auto started = std::chrono::steady_clock::now();
  work();
  return std::chrono::nanoseconds(std::chrono::steady_clock::now() - started).count();
}

void print(std::string_view kind, std::string_view what, std::size_t found, const std::vector<std::int64_t>& times) {
  JsonWriter json(JsonWriter::Layout::compact);
  json.beginObject();
  json.key("kind").string(kind);
  json.key("what").string(what);
  json.key("found").unsignedInteger(found);
  json.key("times").beginArray();
  for (const std::int64_t time : times) {
    json.integer(time);
  }
  json.endArray().endObject();
  std::puts(json.take().c_str());
}

void timeBuilds(StorageScanResult& result) {
  std::vector<std::int64_t> children;
  std::vector<std::int64_t> items;
  std::size_t folders = 0;
  std::size_t nodes = 0;
  for (std::size_t round = 0; round < builds; ++round) {
    result.index = std::make_shared<StorageIndex>();
    children.push_back(nanoseconds([&] { folders = result.index->children(result).size(); }));
    items.push_back(nanoseconds([&] { nodes = result.index->searchItems(result).items.size(); }));
  }
  print("build", "children", folders, children);
  print("build", "searchItems, once the children are there", nodes, items);
}

/// What is in the field after each keystroke: a beginning that ends between two characters.
std::vector<std::string> keystrokes() {
  std::vector<std::string> queries;
  for (const std::string_view word : typed) {
    for (std::size_t length = 1; length <= word.size(); ++length) {
      const bool isWhole = length == word.size() || (static_cast<unsigned char>(word[length]) & 0xC0U) != 0x80U;
      if (isWhole) {
        queries.emplace_back(word.substr(0, length));
      }
    }
  }
  return queries;
}

void timeQuery(std::string_view kind, const StorageScanResult& result, const std::string& query, std::size_t rounds) {
  std::vector<std::int64_t> times;
  std::size_t found = result.search(query, limit).size();
  for (std::size_t round = 0; round < rounds; ++round) {
    times.push_back(nanoseconds([&] { found = result.search(query, limit).size(); }));
  }
  print(kind, query, found, times);
}

}  // namespace

int main(int argumentCount, char** arguments) {
  std::size_t rounds = 99;
  if (argumentCount > 1) {
    const std::string_view text = arguments[1];
    std::from_chars(text.data(), text.data() + text.size(), rounds);
  }
  StorageScanResult result = MadeScan::make();
  timeBuilds(result);
  for (const std::string& query : keystrokes()) {
    timeQuery("keystroke", result, query, rounds);
  }
  for (const char* const query : others) {
    timeQuery("query", result, query, rounds);
  }
  std::string path(result.entries.front().url.path);
  while (path.size() < 200) {
    path += path;
  }
  timeQuery("of 200 characters", result, path.substr(0, 200), rounds);
  timeQuery("of repeated letters", result, std::string(40, 'e'), rounds);
}
