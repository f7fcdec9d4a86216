#pragma once

#include <functional>
#include <map>
#include <memory>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include "platform/Platform.h"
#include "platform/linux/LinuxFileReader.h"
#include "support/FakeFiles.h"
#include "support/FakeTrash.h"

namespace lumenary {

class FakeTerminal final : public Terminal {
 public:
  std::string output;
  std::string errors;
  bool isTerminal = false;
  bool takesOutput = true;
  std::function<void()> onError = [] {};

  bool writeOutput(std::string_view text) override {
    if (takesOutput) {
      output += text;
    }
    return takesOutput;
  }
  void writeError(std::string_view text) override {
    errors += text;
    onError();
  }
  bool showsProgress() const override { return isTerminal; }
};

/// Interrupted by the test; counts how often an interrupted process would have ended.
class FakeInterruption final : public Interruption {
 public:
  std::stop_source source;
  int endings = 0;

  std::stop_token token() const override { return source.get_token(); }
  void endProcessIfInterrupted() override { endings += source.stop_requested() ? 1 : 0; }
};

class FakeDefaults final : public Defaults {
 public:
  std::map<std::string, std::string> values;
  std::string failure;
  int writeFailure = 0;

  std::expected<std::optional<std::string>, std::string> string(const std::string& key) const override {
    if (!failure.empty()) {
      return std::unexpected(failure);
    }
    const auto value = values.find(key);
    return value == values.end() ? std::nullopt : std::optional(value->second);
  }
  SystemResult<void> setString(const std::string& key, std::string_view value) override {
    if (writeFailure != 0) {
      return std::unexpected(SystemError{writeFailure});
    }
    values[key] = value;
    return {};
  }
};

class FakeMountTable final : public MountTable {
 public:
  SystemResult<std::vector<Mount>> mounts() const override { return std::vector<Mount>(); }
};

template <class Fake, class Seam>
Fake& put(std::unique_ptr<Seam>& place) {
  auto fake = std::make_unique<Fake>();
  Fake& reference = *fake;
  place = std::move(fake);
  return reference;
}

/// A platform that only reads the real disk: everything else is recorded and obeys the test.
struct FakePlatform {
  FakePlatform(Places places, Date now) {
    platform.places = std::move(places);
    platform.now = [now] { return now; };
    platform.reader = std::make_unique<LinuxFileReader>();
    put<FakeMountTable>(platform.mountTable);
  }

  Platform platform;
  FakeFiles& files = put<FakeFiles>(platform.files);
  FakeTrash& trash = put<FakeTrash>(platform.trash);
  FakeDefaults& defaults = put<FakeDefaults>(platform.defaults);
  FakeTerminal& terminal = put<FakeTerminal>(platform.terminal);
  FakeInterruption& interruption = put<FakeInterruption>(platform.interruption);
};

}  // namespace lumenary
