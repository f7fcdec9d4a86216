#include "cleanup/TidyPlan.h"

#include <array>
#include <unordered_map>
#include <utility>

#include "base/AppFormatting.h"
#include "base/CheckedSum.h"
#include "base/StableSort.h"

namespace lumenary {
namespace {

constexpr std::array<std::string_view, 5> kindTexts = {"cache", "duplicate", "installer", "junk", "buildFiles"};

}  // namespace

std::string_view rawValue(TidyItem::Kind kind) { return kindTexts.at(static_cast<std::size_t>(kind)); }

TidyPlan::TidyPlan(std::vector<TidyItem> planned) : items(std::move(planned)) {
  using enum TidyItem::Kind;
  for (const TidyItem& item : items) {
    bytes = checkedSum(bytes, item.entry.byteCount);
    if (item.kind == buildFiles) {
      buildBytes = checkedSum(buildBytes, item.entry.byteCount);
      ++buildItemCount;
    } else if (item.kind != installer) {
      safeBytes = checkedSum(safeBytes, item.entry.byteCount);
    }
  }
}

std::vector<TidyPlan::Group> TidyPlan::groups() const {
  std::vector<Group> groups;
  std::unordered_map<std::string_view, std::size_t> positions;
  for (const TidyItem& item : items) {
    const auto [position, isNew] = positions.try_emplace(item.title, groups.size());
    if (isNew) {
      groups.push_back({.title = item.title, .bytes = 0, .reason = item.reason});
    }
    Group& group = groups[position->second];
    group.bytes = checkedSum(group.bytes, item.entry.byteCount);
  }
  return stableSorted(std::move(groups), [](const Group& group) { return -group.bytes; });
}

std::vector<std::string> receiptLines(const TidyPlan& plan) {
  std::vector<std::string> lines;
  for (const TidyPlan::Group& group : plan.groups()) {
    lines.push_back(group.title + " · " + AppFormatting::bytes(group.bytes) + ": " + group.reason);
  }
  return lines;
}

}  // namespace lumenary
