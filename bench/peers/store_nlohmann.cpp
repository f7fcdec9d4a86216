// store_nlohmann FILE fast|readable ROUNDS: the same reading and writing by nlohmann's library, by way of its tree.

#include <chrono>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "StoreTimes.h"
#include "base/Text.h"

namespace {

using lumenary::Date;
using lumenary::FileEntry;
using lumenary::StorageScanResult;
using nlohmann::json;
using store::DateForm;

const std::string& textOf(const json& object, const char* key) { return object.at(key).get_ref<const std::string&>(); }

Date dateOf(const json& value, DateForm dates) {
  return dates == DateForm::iso8601
             ? lumenary::parseISO8601(value.get_ref<const std::string&>()).value()
             : Date(std::chrono::round<Date::duration>(std::chrono::duration<double>(value.get<double>())));
}

json jsonOf(Date date, DateForm dates) {
  return dates == DateForm::iso8601 ? json(lumenary::iso8601(date))
                                    : json(std::chrono::duration<double>(date.time_since_epoch()).count());
}

FileEntry entryOf(const json& object, DateForm dates) {
  FileEntry entry{.id = lumenary::UUID::parse(textOf(object, "id")).value(),
                  .url = lumenary::parseFileURL(textOf(object, "url")).value(),
                  .name = lumenary::bytesOfReversibleText(textOf(object, "name")),
                  .kind = lumenary::fileEntryKindOf(textOf(object, "kind")).value(),
                  .byteCount = object.at("byteCount").get<std::int64_t>(),
                  .modifiedAt = {},
                  .category = lumenary::storageCategoryOf(textOf(object, "category")).value()};
  if (const auto modified = object.find("modifiedAt"); modified != object.end()) {
    entry.modifiedAt = dateOf(*modified, dates);
  }
  return entry;
}

StorageScanResult decode(std::string_view text, DateForm dates) {
  const json root = json::parse(text);
  StorageScanResult result{.root = lumenary::parseFileURL(textOf(root, "root")).value(),
                           .scannedAt = dateOf(root.at("scannedAt"), dates),
                           .totalBytes = root.at("totalBytes").get<std::int64_t>(),
                           .scannedItemCount = root.at("scannedItemCount").get<std::int64_t>(),
                           .inaccessiblePaths = {},
                           .entries = {},
                           .categoryByteTotals = {},
                           .folderByteTotals = {}};
  for (const json& path : root.at("inaccessiblePaths")) {
    result.inaccessiblePaths.push_back(lumenary::bytesOfReversibleText(path.get_ref<const std::string&>()));
  }
  const json& entries = root.at("entries");
  result.entries.reserve(entries.size());
  for (const json& entry : entries) {
    result.entries.push_back(entryOf(entry, dates));
  }
  lumenary::CategoryTotals totals;
  const json& categories = root.at("categoryByteTotals");
  for (std::size_t index = 0; index < categories.size(); index += 2) {
    const auto category = lumenary::storageCategoryOf(categories[index].get_ref<const std::string&>());
    totals[category.value()] = categories[index + 1].get<std::int64_t>();
  }
  result.categoryByteTotals = std::move(totals);
  std::vector<lumenary::FolderByteTotals::Folder> folders;
  const json& bytesByPath = root.at("folderByteTotals");
  folders.reserve(bytesByPath.size());
  for (const auto& [path, bytes] : bytesByPath.items()) {
    folders.push_back({.path = lumenary::bytesOfReversibleText(path), .bytes = bytes.get<std::int64_t>()});
  }
  result.folderByteTotals = lumenary::FolderByteTotals(std::move(folders));
  return result;
}

json jsonOf(const FileEntry& entry, DateForm dates) {
  json object = {{"id", entry.id.text()},
                 {"url", lumenary::fileURLString(entry.url)},
                 {"name", lumenary::reversibleText(entry.name)},
                 {"kind", rawValue(entry.kind)},
                 {"byteCount", entry.byteCount},
                 {"category", rawValue(entry.category)}};
  if (entry.modifiedAt) {
    object["modifiedAt"] = jsonOf(*entry.modifiedAt, dates);
  }
  return object;
}

std::string encode(const StorageScanResult& result, DateForm dates) {
  json paths = json::array();
  for (const std::string& path : result.inaccessiblePaths) {
    paths.push_back(lumenary::reversibleText(path));
  }
  json entries = json::array();
  for (const FileEntry& entry : result.entries) {
    entries.push_back(jsonOf(entry, dates));
  }
  json categories = json::array();
  for (const auto& [category, bytes] : result.categoryByteTotals.value()) {
    categories.push_back(rawValue(category));
    categories.push_back(bytes);
  }
  json folders = json::object();
  for (const auto& [path, bytes] : result.folderByteTotals.value()) {
    folders[lumenary::reversibleText(path)] = bytes;
  }
  json root = {{"root", lumenary::fileURLString(result.root)},
               {"scannedAt", jsonOf(result.scannedAt, dates)},
               {"totalBytes", result.totalBytes},
               {"scannedItemCount", result.scannedItemCount}};
  root["inaccessiblePaths"] = std::move(paths);
  root["entries"] = std::move(entries);
  root["categoryByteTotals"] = std::move(categories);
  root["folderByteTotals"] = std::move(folders);
  return root.dump();
}

}  // namespace

int main(int argumentCount, char** arguments) { return store::time(argumentCount, arguments, decode, encode); }
