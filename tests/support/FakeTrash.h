#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/Trash.h"

namespace lumenary {

/// A Trash over a set of paths. Every call is recorded; an act on a path can be made to fail.
class FakeTrash final : public Trash {
 public:
  std::set<std::string> standing;  ///< the paths at which something stands
  std::vector<std::string> calls;
  std::map<std::string, TrashError> failures;  ///< by original path; the intent is recorded before
  std::map<std::string, ActState> states;      ///< by path in the Trash: what `settle` finds, whatever stands there
  bool settlesActs = true;
  bool tellsPlaces = true;
  Date date{};
  /// May throw, as if the process died right before or right after a move.
  std::function<void()> aroundMove = [] {};

  static std::string placeOf(const std::string& name) { return "/trash/files/" + name; }

  std::map<std::string, TrashError> checkFailures{};  ///< by path

  std::expected<void, TrashError> check(const OpenedItem& item) override {
    const auto failure = checkFailures.find(item.path);
    return failure == checkFailures.end() ? std::expected<void, TrashError>() : std::unexpected(failure->second);
  }

  std::expected<TrashedItem, TrashError> move(const OpenedItem& item, std::int64_t allocatedBytes,
                                              IntentRecorder& recorder) override {
    calls.push_back("move " + item.path + " " + std::to_string(allocatedBytes));
    const std::string place = placeOf(item.name);
    return act({.originalPath = item.path, .trashPath = place, .identity = item.identity, .date = date}, recorder,
               item.path, place);
  }

  std::expected<TrashedItem, TrashError> putBack(const std::string& trashPath, const std::string& originalPath, Date,
                                                 IntentRecorder& recorder) override {
    calls.push_back("putBack " + trashPath + " " + originalPath);
    if (!standing.contains(trashPath)) {
      return std::unexpected(TrashError{.refusal = TrashRefusal::notInTrash});
    }
    if (standing.contains(originalPath)) {
      return std::unexpected(TrashError{.refusal = TrashRefusal::occupied});
    }
    return act({.originalPath = originalPath, .trashPath = trashPath, .identity = {}, .date = date}, recorder,
               trashPath, originalPath);
  }

  ActState settle(const TrashIntent& intent) override {
    calls.push_back("settle " + intent.trashPath);
    if (const auto state = states.find(intent.trashPath); state != states.end()) {
      return state->second;
    }
    return standing.contains(intent.originalPath) ? ActState::atOrigin
           : standing.contains(intent.trashPath)  ? ActState::inTrash
                                                  : ActState::neither;
  }

  void writeSizes() override { calls.emplace_back("writeSizes"); }

 private:
  std::expected<TrashedItem, TrashError> act(const TrashIntent& intent, IntentRecorder& recorder,
                                             const std::string& from, const std::string& to) {
    if (auto recorded = recorder.intend(intent); !recorded) {
      return std::unexpected(TrashError{.refusal = TrashRefusal::recordUnwritable, .cause = recorded.error()});
    }
    if (const auto failure = failures.find(intent.originalPath); failure != failures.end()) {
      return std::unexpected(failure->second);
    }
    aroundMove();
    standing.erase(from);
    standing.insert(to);
    aroundMove();
    return TrashedItem{.trashPath = tellsPlaces ? intent.trashPath : "", .isSettled = settlesActs};
  }
};

}  // namespace lumenary
