#include "core/UndoManager.h"

#include <utility>

namespace lumenary {

void UndoManager::registerUndo(std::string actionName, Act act, Cause cause) {
  std::vector<Entry>& stack = state_ == State::undoing ? redo_ : undo_;
  stack.push_back({.name = std::move(actionName), .act = std::move(act)});
  if (stack.size() > limit) {
    stack.erase(stack.begin());
  }
  if (state_ == State::idle && cause == Cause::act) {
    redo_.clear();
  }
}

void UndoManager::run(std::vector<Entry>& stack, State state) {
  if (stack.empty() || state_ != State::idle) {
    return;
  }
  const Entry entry = std::move(stack.back());
  stack.pop_back();
  state_ = state;
  entry.act();
  state_ = State::idle;
}

std::optional<std::string> UndoManager::nameOf(const std::vector<Entry>& stack) {
  return stack.empty() ? std::nullopt : std::optional(stack.back().name);
}

}  // namespace lumenary
