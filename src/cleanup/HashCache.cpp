#include "cleanup/HashCache.h"

#include <algorithm>
#include <utility>

#include "base/JsonReader.h"
#include "base/JsonWriter.h"
#include "base/Text.h"
#include "storage/JsonFields.h"

namespace lumenary {
namespace {

double secondsOf(const FileEntry& entry) {
  return entry.modifiedAt ? std::chrono::duration<double>(entry.modifiedAt->time_since_epoch()).count() : 0;
}

std::optional<std::string>& digestOf(HashCache::Record& record, DigestKind kind) {
  return kind == DigestKind::full ? record.full : record.partial;
}

/// 64 hexadecimal digits in lower case.
std::optional<std::string> decodeDigest(const JsonValue& value) {
  const auto text = value.string();
  const auto isDigit = [](char byte) { return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'f'); };
  if (!text || text->size() != 64 || !std::ranges::all_of(*text, isDigit)) {
    return std::nullopt;
  }
  return std::string(*text);
}

std::optional<HashCache::Record> decodeRecord(const JsonValue& object) {
  const auto size = object.member("size").and_then(&JsonValue::integer);
  const auto modified = object.member("modified").and_then(&JsonValue::number);
  HashCache::Record record;
  if (!size || !modified || !decodeOptional(object, "partial", record.partial, decodeDigest) ||
      !decodeOptional(object, "full", record.full, decodeDigest)) {
    return std::nullopt;
  }
  record.size = *size;
  record.modified = *modified;
  return record;
}

std::optional<HashCache::Records> decodeAllRecords(const JsonValue& object) {
  const auto members = object.members();
  if (!members) {
    return std::nullopt;
  }
  HashCache::Records records;
  for (const auto& [key, value] : *members) {
    auto record = decodeRecord(value);
    if (!record) {
      return std::nullopt;
    }
    records.insert_or_assign(bytesOfReversibleText(key), *std::move(record));
  }
  return records;
}

}  // namespace

/// Of this run, or of an earlier one where the file is as it was; otherwise one without digests.
HashCache::Record HashCache::known(const FileEntry& entry) const {
  if (const auto found = used_.find(entry.url.path); found != used_.end()) {
    return found->second;
  }
  const auto found = records_.find(entry.url.path);
  if (found != records_.end() && found->second.size == entry.byteCount && found->second.modified == secondsOf(entry)) {
    return found->second;
  }
  return {.size = entry.byteCount, .modified = secondsOf(entry)};
}

std::optional<std::string> HashCache::hash(const FileEntry& entry, DigestKind kind,
                                           const std::function<std::optional<std::string>()>& compute) {
  Record record = known(entry);
  std::optional<std::string>& digest = digestOf(record, kind);
  if (!digest) {
    digest = compute();
  }
  std::optional<std::string> answer = digest;
  if (answer) {
    used_.insert_or_assign(entry.url.path, std::move(record));
  }
  return answer;
}

std::string encodeHashRecords(const HashCache::Records& records) {
  JsonWriter json(JsonWriter::Layout::compact, records.size() * 256);
  json.beginObject();
  for (const auto& [path, record] : records) {
    json.keyOfBytes(path).beginObject();
    json.key("size").integer(record.size);
    json.key("modified").number(record.modified);
    if (record.partial) {
      json.key("partial").string(*record.partial);
    }
    if (record.full) {
      json.key("full").string(*record.full);
    }
    json.endObject();
  }
  json.endObject();
  return json.take();
}

std::optional<HashCache::Records> decodeHashRecords(std::string_view text) {
  auto records = decodeDocument(text, decodeAllRecords);
  return records ? std::optional(*std::move(records)) : std::nullopt;
}

}  // namespace lumenary
