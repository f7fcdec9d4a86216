#include <gtest/gtest.h>

#include "core/UndoManager.h"

namespace lumenary {
namespace {

struct Undoable : testing::Test {
  UndoManager manager;
  std::string story;

  void act(const std::string& name) {
    manager.registerUndo(name, [this, name] {
      story += "-" + name;
      manager.registerUndo(name, [this, name] {
        story += "+" + name;
        act(name);
      });
    });
  }
};

TEST_F(Undoable, TheLatestGoesBackFirstAndCanBeDoneAgain) {
  act("a");
  act("b");
  EXPECT_EQ(manager.undoActionName(), "b");
  manager.undo();
  manager.undo();
  manager.undo();
  EXPECT_EQ(manager.undoActionName(), std::nullopt);
  EXPECT_EQ(manager.redoActionName(), "a");
  manager.redo();
  manager.redo();
  manager.undo();
  EXPECT_EQ(story, "-b-a+a+b-b");
}

TEST_F(Undoable, AfterANewActNothingIsDoneAgain) {
  act("a");
  manager.undo();
  act("b");
  EXPECT_EQ(manager.redoActionName(), std::nullopt);
  manager.redo();
  EXPECT_EQ(story, "-a");
}

TEST_F(Undoable, WhatIsDoneAgainLaterKeepsTheRest) {
  act("a");
  act("b");
  manager.undo();
  manager.undo();
  manager.registerUndo("c", [] {}, UndoManager::Cause::redo);
  EXPECT_EQ(manager.redoActionName(), "a");
}

TEST_F(Undoable, OnlyTheNewestAreKept) {
  for (std::size_t number = 0; number <= UndoManager::limit; ++number) {
    act("x");
  }
  for (std::size_t number = 0; number < UndoManager::limit; ++number) {
    manager.undo();
  }
  EXPECT_EQ(manager.undoActionName(), std::nullopt);
}

}  // namespace
}  // namespace lumenary
