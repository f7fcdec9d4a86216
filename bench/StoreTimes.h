#pragma once

#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/JsonWriter.h"
#include "storage/ScanJson.h"

/// What the drivers of all JSON libraries share: the same text, the same structs, the same checks.
namespace store {

using lumenary::DateForm;
using lumenary::StorageScanResult;

template <class Work>
std::int64_t nanoseconds(Work work) {
  const auto started = std::chrono::steady_clock::now();
  work();
  return std::chrono::nanoseconds(std::chrono::steady_clock::now() - started).count();
}

/// As a line of JSON: for each thing that was timed, the nanoseconds of each round.
inline void print(const std::vector<std::pair<std::string_view, std::vector<std::int64_t>>>& timed) {
  using lumenary::JsonWriter;
  JsonWriter json(JsonWriter::Layout::compact);
  json.beginObject();
  for (const auto& [what, times] : timed) {
    json.key(what).beginArray();
    for (const std::int64_t time : times) {
      json.integer(time);
    }
    json.endArray();
  }
  json.endObject();
  std::puts(json.take().c_str());
}

inline std::size_t numberFrom(std::string_view text) {
  std::size_t value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

/// DRIVER FILE fast|readable ROUNDS. A library that loses anything on the way is not worth timing: what it decodes, and
/// what it decodes of its own text, must be what was written.
template <class Decode, class Encode>
int time(int argumentCount, char** arguments, Decode decode, Encode encode) {
  std::ifstream file(argumentCount == 4 ? arguments[1] : "");
  if (!file) {
    std::fprintf(stderr, "Usage: %s FILE fast|readable ROUNDS\n", arguments[0]);
    return 2;
  }
  const std::string text(std::istreambuf_iterator<char>(file), {});
  const DateForm dates = std::string_view(arguments[2]) == "fast" ? DateForm::secondsSince1970 : DateForm::iso8601;
  StorageScanResult result = decode(text, dates);
  std::string encoded = encode(result, dates);
  if (encodeScanResult(result, dates) != text || encodeScanResult(decode(encoded, dates), dates) != text) {
    std::fputs("What was read isn't what was written.\n", stderr);
    return 1;
  }
  std::vector<std::int64_t> decoding;
  std::vector<std::int64_t> encoding;
  std::vector<std::int64_t> copying;
  for (std::size_t round = numberFrom(arguments[3]); round > 0; --round) {
    decoding.push_back(nanoseconds([&] { result = decode(text, dates); }));
    encoding.push_back(nanoseconds([&] { encoded = encode(result, dates); }));
    StorageScanResult copy;
    copying.push_back(nanoseconds([&] { copy = result; }));
  }
  print({{"decode", decoding}, {"encode", encoding}, {"copy", copying}});
  return 0;
}

}  // namespace store
