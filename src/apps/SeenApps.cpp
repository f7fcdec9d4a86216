#include "apps/SeenApps.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <utility>

#include "base/EnumText.h"
#include "base/JsonWriter.h"
#include "base/Path.h"

namespace lumenary {
namespace {

constexpr std::size_t byteLimit = std::size_t{8} << 20;
constexpr std::array<std::string_view, 5> origins = {"bundle", "desktopEntry", "flatpak", "snap", "appImage"};

std::optional<SeenApp> decodeApp(const JsonValue& object) {
  const auto id = object.member("id").and_then(bytesOfText);
  const auto name = object.member("name").and_then(bytesOfText);
  const auto origin =
      textOf(object, "origin").and_then([](std::string_view text) { return enumOf<AppOrigin>(origins, text); });
  const auto program = object.member("program").and_then(bytesOfText);
  auto dataNames = decodeAll(object, "dataNames", bytesOfText);
  const auto firstSeen = textOf(object, "firstSeen").and_then(parseISO8601);
  const auto lastSeen = textOf(object, "lastSeen").and_then(parseISO8601);
  if (!id || !name || !origin || !program || !dataNames || !firstSeen || !lastSeen) {
    return std::nullopt;
  }
  return SeenApp{.id = *id,
                 .name = *name,
                 .origin = *origin,
                 .program = *program,
                 .dataNames = *std::move(dataNames),
                 .firstSeen = *firstSeen,
                 .lastSeen = *lastSeen};
}

std::string encode(const std::vector<SeenApp>& apps) {
  JsonWriter json(JsonWriter::Layout::pretty);
  json.beginArray();
  for (const SeenApp& app : apps) {
    json.beginObject();
    json.key("dataNames").beginArray();
    for (const std::string& name : app.dataNames) {
      json.bytes(name);
    }
    json.endArray();
    json.key("firstSeen").string(iso8601(app.firstSeen));
    json.key("id").bytes(app.id);
    json.key("lastSeen").string(iso8601(app.lastSeen));
    json.key("name").bytes(app.name);
    json.key("origin").string(origins.at(static_cast<std::size_t>(app.origin)));
    json.key("program").bytes(app.program);
    json.endObject();
  }
  json.endArray();
  return json.take() + "\n";
}

/// The ones seen last, by identifier.
std::vector<SeenApp> newest(std::map<std::string, SeenApp> byID) {
  std::vector<SeenApp> apps;
  apps.reserve(byID.size());
  for (auto& [id, app] : byID) {
    apps.push_back(std::move(app));
  }
  if (apps.size() > SeenApps::limit) {
    std::ranges::sort(apps, std::ranges::greater(), &SeenApp::lastSeen);
    apps.resize(SeenApps::limit);
    std::ranges::sort(apps, {}, &SeenApp::id);
  }
  return apps;
}

}  // namespace

struct SeenApps::Stored {
  std::vector<SeenApp> apps;
  std::optional<std::string> damaged{};  ///< the bytes of a file that isn't a list
  bool mayReplace = true;                ///< false where the file couldn't be read now, perhaps another time
};

SeenApps::SeenApps(DurableFiles& files, const std::string& supportFolder)
    : files_(files), support_(supportFolder), path_(appendingPathComponent(supportFolder, "seen-apps.json")) {}

SeenApps::Stored SeenApps::read() {
  auto bytes = files_.read(path_, byteLimit);
  if (!bytes) {
    return {.apps = {}, .mayReplace = bytes.error().isMissing()};
  }
  auto apps = decodeDocument(*bytes, [](const JsonValue& root) { return decodeAll(root, decodeApp); });
  if (apps) {
    return {.apps = *std::move(apps)};
  }
  return {.apps = {}, .damaged = *std::move(bytes), .mayReplace = apps.error() != JsonDocument::Error::unavailable};
}

std::vector<SeenApp> SeenApps::load() { return read().apps; }

void SeenApps::note(std::span<const RegisteredApp> apps, Date now) {
  if (!files_.makeFolders(support_)) {
    return;
  }
  const auto lock = files_.lock(path_ + ".lock");
  if (!lock && !lock.error().isWithoutLocks()) {
    return;
  }
  const Stored stored = read();
  std::map<std::string, SeenApp> byID;
  for (const SeenApp& app : stored.apps) {
    byID.emplace(app.id, app);
  }
  bool isNews = stored.damaged.has_value();
  for (const RegisteredApp& app : apps) {
    if (app.origin == AppOrigin::appImage) {
      continue;
    }
    const auto known = byID.find(app.id);
    SeenApp seen{.id = app.id,
                 .name = app.name,
                 .origin = app.origin,
                 .program = app.program,
                 .dataNames = app.dataNames,
                 .firstSeen = known == byID.end() ? now : known->second.firstSeen,
                 .lastSeen = now};
    isNews |= known == byID.end() || now - known->second.lastSeen >= std::chrono::days(1);
    byID.insert_or_assign(app.id, std::move(seen));
  }
  if (!stored.mayReplace || !isNews) {
    return;
  }
  if (stored.damaged) {
    // The first damage is what stays.
    const std::string copy = appendingPathComponent(support_, "seen-apps.unreadable.json");
    const auto present = files_.read(copy, 0);
    const bool isKept = present || present.error().code == EFBIG;
    if (!isKept && !files_.writeAtomically(copy, *stored.damaged)) {
      return;
    }
  }
  static_cast<void>(files_.writeAtomically(path_, encode(newest(std::move(byID)))));
}

}  // namespace lumenary
