#include "apps/AppDataKind.h"

#include <array>
#include <cstddef>

namespace lumenary {
namespace {

constexpr std::string_view webDataWords =
    "Website data and cookies the app keeps. You may be signed out inside the app.";
constexpr std::string_view appDataWords =
    "Your documents, settings or downloads for this app. Removing it can lose your work.";

struct KindRow {
  std::string_view rawValue;
  std::string_view title;
  AppDataVerdict verdict;
  std::string_view explanation;
};

/// In the order of the enumeration.
constexpr auto rows = std::to_array<KindRow>({
    {"Caches", "Cache", AppDataVerdict::safe,
     "Files the app downloads or builds again on its own. It may start a little slower once."},
    {"Logs", "Logs", AppDataVerdict::safe, "Old diagnostic logs. Nothing you'd notice."},
    {"Saved Application State", "Saved windows", AppDataVerdict::safe,
     "Remembers which windows were open. The app opens with fresh windows next time."},
    {"HTTPStorages", "Web data", AppDataVerdict::caution, webDataWords},
    {"WebKit", "Web data", AppDataVerdict::caution, webDataWords},
    {"Application Support", "App data", AppDataVerdict::keep, appDataWords},
    {"Containers", "Sandbox container", AppDataVerdict::keep, appDataWords},
    {"~", "Tool data", AppDataVerdict::keep, appDataWords},
});

const KindRow& rowOf(AppDataKind kind) { return rows.at(static_cast<std::size_t>(kind)); }

}  // namespace

std::string_view rawValue(AppDataKind kind) { return rowOf(kind).rawValue; }

std::string_view wholeFolderTitle(AppDataKind kind) { return rowOf(kind).title; }

AppDataVerdict verdictOf(AppDataKind kind) { return rowOf(kind).verdict; }

std::string_view explanationOf(AppDataKind kind) { return rowOf(kind).explanation; }

bool isInsideAppData(AppDataKind kind) {
  return kind == AppDataKind::support || kind == AppDataKind::container || kind == AppDataKind::homeFolder;
}

}  // namespace lumenary
