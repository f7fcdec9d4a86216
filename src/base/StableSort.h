#pragma once

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

namespace lumenary {

/// The items by `key`, smallest first; equal ones keep their order. (std::stable_sort of the C++ library in use can't
/// be compiled without a warning.)
template <class Item, class Key>
std::vector<Item> stableSorted(std::vector<Item> items, Key key) {
  // Each key is made once: it may cost more than a comparison.
  std::vector<std::pair<std::decay_t<std::invoke_result_t<Key&, const Item&>>, std::size_t>> order;
  order.reserve(items.size());
  for (std::size_t index = 0; index < items.size(); ++index) {
    order.emplace_back(key(std::as_const(items[index])), index);
  }
  std::ranges::sort(order);
  std::vector<Item> sorted;
  sorted.reserve(items.size());
  for (const auto& [sortedBy, index] : order) {
    sorted.push_back(std::move(items[index]));
  }
  return sorted;
}

}  // namespace lumenary
