#include <algorithm>
#include <numeric>

#include "base/CheckedSum.h"
#include "core/ClosetModel.h"

// How the things in the closet share its room.

namespace lumenary {
namespace {

double share(std::int64_t part, std::int64_t whole) { return static_cast<double>(part) / static_cast<double>(whole); }

std::int64_t weight(const ClosetNode& node) { return std::max<std::int64_t>(1, node.bytes); }

std::int64_t weightOf(std::span<const ClosetNode> nodes) {
  return std::accumulate(nodes.begin(), nodes.end(), std::int64_t{0},
                         [](std::int64_t sum, const ClosetNode& node) { return saturatedSum(sum, weight(node)); });
}

/// The first nodes up to half of the weight, at least one and not all.
std::size_t firstHalf(std::span<const ClosetNode> nodes, std::int64_t whole) {
  std::size_t count = 0;
  std::int64_t sum = 0;
  while (count + 1 < nodes.size()) {
    const std::int64_t next = saturatedSum(sum, weight(nodes[count]));
    if (count > 0 && next > whole / 2) {
      break;
    }
    sum = next;
    ++count;
  }
  return count;
}

}  // namespace

std::vector<ClosetModel::Row> ClosetModel::pack(std::vector<ClosetNode> nodes, std::size_t rows,
                                                std::int64_t freeBytes) {
  std::int64_t sum = freeBytes;
  for (const ClosetNode& node : nodes) {
    sum = saturatedSum(sum, node.bytes);
  }
  const auto rowCount = static_cast<std::int64_t>(rows);
  const std::int64_t capacity = std::max<std::int64_t>(1, saturatedSum(sum, rowCount - 1) / rowCount);
  const std::int64_t most = saturatedSum(capacity, capacity / 20);
  std::vector<Row> packed(rows);
  std::vector<std::int64_t> filled(rows, 0);
  std::size_t at = 0;
  for (ClosetNode& node : nodes) {
    if (at + 1 < rows && !packed[at].items.empty() && saturatedSum(filled[at], node.bytes) > most) {
      ++at;
    }
    filled[at] = saturatedSum(filled[at], node.bytes);
    packed[at].items.push_back({.node = std::move(node)});
  }
  for (std::size_t row = 0; row < rows; ++row) {
    Row& one = packed[row];
    const double fill = share(filled[row], capacity);
    one.id = row;
    one.capacityBytes = capacity;
    one.freeBytes = row + 1 == rows ? freeBytes : 0;
    one.freeFraction = one.freeBytes > 0 && fill < 1 ? 1 - fill : 0;
    for (Placed& item : one.items) {
      item.fraction = share(item.node.bytes, capacity) / std::max(1.0, fill);
    }
  }
  return packed;
}

ClosetModel::Slots ClosetModel::railSlots(std::span<const std::int64_t> sizes, std::int64_t freeBytes,
                                          double minFraction) {
  const auto count = static_cast<double>(sizes.size());
  if (sizes.empty()) {
    return {.widths = {}, .freeShare = freeBytes > 0 ? 1.0 : 0.0};
  }
  const double free = static_cast<double>(std::max<std::int64_t>(0, freeBytes));
  double whole = free;
  for (const std::int64_t size : sizes) {
    whole += static_cast<double>(std::max<std::int64_t>(0, size));
  }
  if (minFraction * count >= 1 || whole <= 0) {
    return {.widths = std::vector<double>(sizes.size(), 1 / count)};
  }
  Slots slots{.widths = std::vector<double>(sizes.size(), minFraction)};
  std::vector<bool> isRaised(sizes.size(), false);
  // Whoever is raised takes from the others, of whom some may then have to be raised as well.
  for (bool hasChanged = true; hasChanged;) {
    hasChanged = false;
    double left = 1;
    double weights = free;
    for (std::size_t index = 0; index < sizes.size(); ++index) {
      left -= isRaised[index] ? minFraction : 0;
      weights += isRaised[index] ? 0 : static_cast<double>(std::max<std::int64_t>(0, sizes[index]));
    }
    const double scale = weights > 0 ? left / weights : 0;
    slots.freeShare = free * scale;
    for (std::size_t index = 0; index < sizes.size(); ++index) {
      if (isRaised[index]) {
        continue;
      }
      const double width = static_cast<double>(std::max<std::int64_t>(0, sizes[index])) * scale;
      slots.widths[index] = std::max(width, minFraction);
      isRaised[index] = width < minFraction;
      hasChanged = hasChanged || isRaised[index];
    }
  }
  return slots;
}

std::vector<std::pair<ClosetNode, Rectangle>> ClosetModel::slice(std::span<const ClosetNode> nodes,
                                                                 const Rectangle& bounds) {
  if (nodes.empty()) {
    return {};
  }
  if (nodes.size() == 1) {
    return {{nodes.front(), bounds}};
  }
  const std::int64_t whole = weightOf(nodes);
  const std::size_t half = firstHalf(nodes, whole);
  const double cut = share(weightOf(nodes.first(half)), whole);
  Rectangle first = bounds;
  Rectangle second = bounds;
  if (bounds.width > bounds.height) {
    first.width *= cut;
    second.x += first.width;
    second.width -= first.width;
  } else {
    first.height *= cut;
    second.y += first.height;
    second.height -= first.height;
  }
  auto sliced = slice(nodes.first(half), first);
  auto rest = slice(nodes.subspan(half), second);
  std::ranges::move(rest, std::back_inserter(sliced));
  return sliced;
}

}  // namespace lumenary
