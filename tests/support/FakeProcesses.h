#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/AppControl.h"
#include "platform/AppRegistry.h"
#include "platform/ProcessReader.h"
#include "platform/SocketReader.h"

namespace lumenary {

struct FakeProcess {
  ProcessRecord record{};
  std::string name{};
  std::string appPath{};
  std::string folder{};
  std::vector<std::string> arguments{};
};

/// Processes and sockets in memory. The test changes them at will, also between two calls.
class FakeProcesses final : public ProcessReader, public SocketReader {
 public:
  Sample next{};
  std::map<std::int32_t, FakeProcess> running{};
  std::vector<ListeningSocket> sockets{};
  std::vector<SocketHolder> held{};

  Sample sample() override { return next; }
  void appsChanged() override {}
  std::optional<ProcessRecord> record(std::int32_t pid) const override {
    return told(pid, [](const FakeProcess& process) { return process.record; });
  }
  std::optional<NamedProcess> namedRecord(std::int32_t pid) const override {
    return told(pid, [](const FakeProcess& process) { return NamedProcess{process.record, process.name}; });
  }
  std::optional<std::string> executablePath(std::int32_t) const override { return std::nullopt; }
  std::string appPath(std::int32_t pid) const override {
    return told(pid, [](const FakeProcess& process) { return process.appPath; }).value_or("");
  }
  std::optional<std::string> workingFolder(std::int32_t pid) const override {
    return told(pid, [](const FakeProcess& process) { return process.folder; });
  }
  std::vector<std::string> arguments(std::int32_t pid, std::size_t) const override {
    return told(pid, [](const FakeProcess& process) { return process.arguments; }).value_or(std::vector<std::string>());
  }

  std::vector<ListeningSocket> listening() const override { return sockets; }
  std::vector<SocketHolder> holders(std::span<const ListeningSocket>) const override {
    ++looks;
    return held;
  }
  bool areStillHeld(std::span<const SocketHolder> holders) const override {
    return std::ranges::all_of(holders,
                               [this](const auto& holder) { return std::ranges::find(held, holder) != held.end(); });
  }
  mutable int looks = 0;  ///< at the open files of all processes

 private:
  template <class Field>
  auto told(std::int32_t pid, Field field) const -> std::optional<decltype(field(FakeProcess()))> {
    const auto found = running.find(pid);
    return found == running.end() ? std::nullopt : std::optional(field(found->second));
  }
};

/// Records what was asked of which process.
class FakeControl final : public AppControl {
 public:
  std::vector<std::string> calls{};
  std::set<std::int32_t> deaf{};                                ///< processes that can't be asked
  std::function<void(std::int32_t)> onTerminate = [](auto) {};  ///< after the signal was taken
  std::function<void()> beforeCheck = [] {};                    ///< once the handle is held
  std::optional<std::int32_t> front{};
  bool emptiesCache = true;

  bool terminate(std::int32_t pid, const std::function<bool()>& isMeant) override {
    return ask("terminate", pid, isMeant);
  }
  bool requestQuit(std::int32_t pid, const std::function<bool()>& isMeant) override {
    return ask("quit", pid, isMeant);
  }
  bool lowerPriority(std::int32_t pid) override {
    return ask("lower", pid, [] { return true; });
  }
  void restorePriority(std::int32_t pid) override { calls.push_back("restore " + std::to_string(pid)); }
  std::optional<std::int32_t> frontProcess() override { return front; }
  bool emptyFileCache() override {
    calls.emplace_back("empty");
    return emptiesCache;
  }
  bool open(const std::string& appPath, const std::string& address) override {
    calls.push_back("open " + appPath + " " + address);
    return true;
  }

 private:
  bool ask(const std::string& what, std::int32_t pid, const std::function<bool()>& isMeant) {
    beforeCheck();
    if (deaf.contains(pid) || !isMeant()) {
      return false;
    }
    calls.push_back(what + " " + std::to_string(pid));
    onTerminate(pid);
    return true;
  }
};

class FakeRegistry final : public AppRegistry {
 public:
  std::vector<RegisteredApp> list{};
  std::vector<RegisteredApp> apps() const override { return list; }
  bool isInstalled(std::string_view id) const override {
    return std::ranges::find(list, id, &RegisteredApp::id) != list.end();
  }
  std::vector<std::string> watchedFolders() const override { return {}; }
};

}  // namespace lumenary
