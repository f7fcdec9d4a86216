#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string_view>

namespace lumenary {

enum class StorageCategory : std::uint8_t { applications, developer, personal, caches, system, unclassified };
inline constexpr std::array allStorageCategories = {StorageCategory::applications, StorageCategory::developer,
                                                    StorageCategory::personal,     StorageCategory::caches,
                                                    StorageCategory::system,       StorageCategory::unclassified};

/// Bytes by category; a category of which nothing was seen is absent.
using CategoryTotals = std::map<StorageCategory, std::int64_t>;

/// "Applications", "Developer Data", …: at once the words for people and the text in JSON.
std::string_view rawValue(StorageCategory category);
std::optional<StorageCategory> storageCategoryOf(std::string_view rawValue);

/// What the components of a path say of its category. A walk gathers them from the root down, so that a folder costs
/// one look at its own name.
class CategoryMarks {
 public:
  /// The marks of all components of a path.
  static CategoryMarks of(std::string_view path);

  void add(std::string_view component);
  /// The category of the path whose components were added, `lastComponent` being the last of them: its extension counts
  /// as well.
  StorageCategory category(std::string_view lastComponent) const;

 private:
  static constexpr std::uint8_t noRule = 5;
  std::uint8_t firstRule_ = noRule;  ///< the first rule that a component fulfils
};

}  // namespace lumenary
