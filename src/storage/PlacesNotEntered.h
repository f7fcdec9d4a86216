#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace lumenary {

/// The folders below a root that a walk must not enter, as a tree of their names: a walk that carries its place in the
/// tree along asks nothing at all in a folder above none of them, and never puts a path together.
class PlacesNotEntered {
 public:
  enum class Reason : std::uint8_t {
    none,     ///< only leads to such a place
    mount,    ///< another file system begins here
    privacy,  ///< a person would have to allow it first
    given,    ///< left out of a scan of everything
  };

  /// `path` relative to this folder, "a/b". The first reason given for a path stays. An empty path means nothing.
  void add(std::string_view path, Reason reason);

  /// The place of that name in this folder; null where neither it nor anything below it is one.
  const PlacesNotEntered* find(std::string_view name) const;
  Reason reason() const { return reason_; }
  bool isEmpty() const { return below_.empty(); }

 private:
  Reason reason_ = Reason::none;
  std::map<std::string, PlacesNotEntered, std::less<>> below_;
};

}  // namespace lumenary
