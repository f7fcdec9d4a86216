#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lumenary {

/// What can be taken back and done again, the latest first. An act that is undone may register, from within, how to do
/// it again, and the other way round. Owner's thread only.
class UndoManager {
 public:
  using Act = std::function<void()>;

  static constexpr std::size_t limit = 100;

  enum class Cause : std::uint8_t {
    act,   ///< something new: what was undone before can't be done again any more
    redo,  ///< something that was done again
  };

  /// From within `undo` it becomes what `redo` does; otherwise it is what `undo` does.
  void registerUndo(std::string actionName, Act act, Cause cause = Cause::act);

  void undo() { run(undo_, State::undoing); }
  void redo() { run(redo_, State::redoing); }
  /// "Move to Trash"; none where there is nothing.
  std::optional<std::string> undoActionName() const { return nameOf(undo_); }
  std::optional<std::string> redoActionName() const { return nameOf(redo_); }

 private:
  struct Entry {
    std::string name;
    Act act;
  };
  enum class State : std::uint8_t { idle, undoing, redoing };

  static std::optional<std::string> nameOf(const std::vector<Entry>& stack);
  void run(std::vector<Entry>& stack, State state);

  std::vector<Entry> undo_;
  std::vector<Entry> redo_;
  State state_ = State::idle;
};

}  // namespace lumenary
