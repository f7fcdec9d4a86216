#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <utility>

namespace lumenary {

/// A value that anybody reads and observes and only its `Writer` changes. Owner's thread only.
template <class Value, class Writer>
class Published {
 public:
  using Observer = std::function<void()>;
  using ObserverID = std::uint64_t;

  Published() = default;
  explicit Published(Value start) : value_(std::move(start)) {}
  Published(const Published&) = delete;
  Published& operator=(const Published&) = delete;

  const Value& operator*() const { return value_; }
  const Value* operator->() const { return &value_; }

  /// Calls after each change, until told not to. An observer may add and remove observers, itself included.
  ObserverID observe(Observer observer) {
    observers_.emplace(++lastObserver_, std::move(observer));
    return lastObserver_;
  }
  void stopObserving(ObserverID observer) { observers_.erase(observer); }

 private:
  friend Writer;

  void set(Value value) {
    assign(std::move(value));
    tell();
  }
  /// Without a word: `tell` follows.
  void assign(Value value) { value_ = std::move(value); }
  /// Observers aren't told of an equal value.
  void setIfChanged(Value value) {
    if (!(value_ == value)) {
      set(std::move(value));
    }
  }
  /// Changes the value in its place.
  template <class Change>
  void change(Change change) {
    change(value_);
    tell();
  }

  void tell() {
    // Whoever is told may change the list of those who are.
    for (auto next = observers_.begin(); next != observers_.end();) {
      const ObserverID told = next->first;
      const Observer observer = next->second;
      observer();
      next = observers_.upper_bound(told);
    }
  }

  Value value_{};
  std::map<ObserverID, Observer> observers_;
  ObserverID lastObserver_ = 0;
};

}  // namespace lumenary
