#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "platform/linux/LinuxFileReader.h"
#include "platform/linux/LinuxMountTable.h"
#include "platform/linux/LinuxTrash.h"
#include "support/FaultKernel.h"
#include "support/TemporaryHome.h"

namespace lumenary {

/// Keeps the intents in memory.
class NotingRecorder final : public IntentRecorder {
 public:
  SystemResult<void> intend(const TrashIntent& intent) override {
    intents.push_back(intent);
    return {};
  }
  std::vector<TrashIntent> intents;
};

/// A Trash over a home folder of the test's own.
class LinuxTrashTest : public testing::Test {
 protected:
  using Moved = std::expected<TrashedItem, TrashError>;

  LinuxTrashTest() : places(home.places()), trash(kernel, reader, mountTable, places) {}

  Moved move(const std::string& path) {
    const auto item = openItem(reader, path);
    return item ? trash.move(*item, 4096, recorder)
                : std::unexpected(TrashError{.refusal = TrashRefusal::missing, .cause = item.error()});
  }
  Moved putBack(const std::string& trashPath, const std::string& originalPath) {
    return trash.putBack(trashPath, originalPath, moved, recorder);
  }
  static TrashRefusal refusal(const Moved& moved) { return moved ? TrashRefusal::failed : moved.error().refusal; }

  TemporaryHome home;
  Places places;
  FaultKernel kernel;
  LinuxFileReader reader;
  LinuxMountTable mountTable;
  LinuxTrash trash;
  NotingRecorder recorder;
  const Date moved = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
};

}  // namespace lumenary
