#pragma once

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>
#include <vector>

namespace lumenary {

/// The items by `key`, smallest first; equal ones keep their order. (std::stable_sort of the C++ library in use can't
/// be compiled without a warning.)
template <class Item, class Key>
std::vector<Item> stableSorted(std::vector<Item> items, Key key) {
  std::vector<std::size_t> order(items.size());
  std::iota(order.begin(), order.end(), 0);
  std::ranges::sort(order, {}, [&](std::size_t index) { return std::pair(key(items[index]), index); });
  std::vector<Item> sorted;
  sorted.reserve(items.size());
  for (const std::size_t index : order) {
    sorted.push_back(std::move(items[index]));
  }
  return sorted;
}

}  // namespace lumenary
