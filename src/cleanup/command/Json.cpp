#include "base/JsonWriter.h"
#include "base/Text.h"
#include "cleanup/command/Listing.h"

namespace lumenary::CleanupCommand {
namespace {

/// The keys stand in the order of the alphabet.
void write(JsonWriter& json, const Listing& listing, const CleanupCandidate& candidate) {
  const auto date = listing.lastUsed.find(candidate.url.path);
  const auto result = listing.results.find(candidate.url.path);
  const bool wasTried = result != listing.results.end();
  const bool isKnown = candidate.classification == CleanupCandidate::Classification::known;
  json.beginObject();
  json.key("bytes").integer(candidate.byteCount);
  json.key("classification").string(isKnown ? "known" : "review");
  if (wasTried && !result->second) {
    json.key("error").bytes(result->second.error());
  }
  json.key("lastUsed");
  if (date == listing.lastUsed.end()) {
    json.null();
  } else {
    json.string(iso8601(date->second));
  }
  if (wasTried) {
    json.key("moved").boolean(result->second.has_value());
  }
  json.key("path").bytes(candidate.url.path);
  json.endObject();
}

}  // namespace

std::string jsonText(const Listing& listing) {
  JsonWriter json(JsonWriter::Layout::pretty);
  json.beginArray();
  for (const CleanupCandidate& candidate : listing.candidates) {
    write(json, listing, candidate);
  }
  json.endArray();
  return json.take() + "\n";
}

}  // namespace lumenary::CleanupCommand
