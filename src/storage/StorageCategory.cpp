#include "storage/StorageCategory.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "base/EnumText.h"
#include "base/Path.h"
#include "base/Text.h"

namespace lumenary {
namespace {

constexpr std::array<std::string_view, 6> categoryTexts = {"Applications", "Developer Data", "Personal Files",
                                                           "Caches",       "System Data",    "Unclassified"};

/// In the order in which the rules are asked; the last stands for none.
constexpr std::array categoryOfRule = {StorageCategory::applications, StorageCategory::developer,
                                       StorageCategory::caches,       StorageCategory::personal,
                                       StorageCategory::system,       StorageCategory::unclassified};

struct MarkedComponent {
  std::string_view name;
  std::uint8_t rule = 0;
};

constexpr auto markedComponents = std::to_array<MarkedComponent>({{"applications", 0},
                                                                  {"node_modules", 1},
                                                                  {".git", 1},
                                                                  {".build", 1},
                                                                  {"deriveddata", 1},
                                                                  {".venv", 1},
                                                                  {"__pycache__", 1},
                                                                  {".next", 1},
                                                                  {"caches", 2},
                                                                  {"documents", 3},
                                                                  {"desktop", 3},
                                                                  {"downloads", 3},
                                                                  {"movies", 3},
                                                                  {"music", 3},
                                                                  {"pictures", 3},
                                                                  {"system", 4},
                                                                  {"library", 4},
                                                                  {"private", 4},
                                                                  {"usr", 4}});
/// What Linux calls the same.
constexpr auto linuxComponents = std::to_array<MarkedComponent>({{".cache", 2}, {"videos", 3}});

}  // namespace

std::string_view rawValue(StorageCategory category) { return categoryTexts.at(static_cast<std::size_t>(category)); }

std::optional<StorageCategory> storageCategoryOf(std::string_view rawValue) {
  return enumOf<StorageCategory>(categoryTexts, rawValue);
}

CategoryMarks CategoryMarks::of(std::string_view path) {
  CategoryMarks marks;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('/'), path.size());
    marks.add(path.substr(0, end));
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return marks;
}

void CategoryMarks::add(std::string_view component) {
  const auto isMeant = [&](const MarkedComponent& marked) { return equalsIgnoringCase(component, marked.name); };
  for (const std::span<const MarkedComponent> table :
       {std::span<const MarkedComponent>(markedComponents), std::span<const MarkedComponent>(linuxComponents)}) {
    if (const auto marked = std::ranges::find_if(table, isMeant); marked != table.end()) {
      firstRule_ = std::min(firstRule_, marked->rule);
      return;
    }
  }
}

StorageCategory CategoryMarks::category(std::string_view lastComponent) const {
  const bool isApp = equalsIgnoringCase(pathExtension(lastComponent), "app");
  return isApp ? StorageCategory::applications : categoryOfRule.at(firstRule_);
}

}  // namespace lumenary
