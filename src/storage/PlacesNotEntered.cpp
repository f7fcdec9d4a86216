#include "storage/PlacesNotEntered.h"

#include <algorithm>

namespace lumenary {

void PlacesNotEntered::add(std::string_view path, Reason reason) {
  PlacesNotEntered* place = this;
  while (!path.empty()) {
    const std::string_view name = path.substr(0, path.find('/'));
    path.remove_prefix(std::min(name.size() + 1, path.size()));
    place = &place->below_[std::string(name)];
  }
  if (place != this && place->reason_ == Reason::none) {
    place->reason_ = reason;
  }
}

const PlacesNotEntered* PlacesNotEntered::find(std::string_view name) const {
  const auto found = below_.find(name);
  return found == below_.end() ? nullptr : &found->second;
}

}  // namespace lumenary
