#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/AppRegistry.h"
#include "platform/Descriptor.h"
#include "platform/ProcessReader.h"
#include "platform/linux/AppAttribution.h"
#include "platform/linux/ProcessFiles.h"

namespace lumenary {

/// Reads below /proc.
///
/// A sample is to cost little with a thousand processes. Opening a file there costs as much as reading it, so the two
/// that are read again and again stay open (as far as `descriptorLimit` goes): such a descriptor belongs to the
/// process, not to its number, and answers with an error once the process is gone. Making the text of "status" is the
/// dearest part, and it can only have changed where pages were asked for or given back: "stat" tells how many were
/// asked for and how many there are. What is swapped out and given back without being touched is noticed late, at the
/// next change.
class LinuxProcessReader final : public ProcessReader {
 public:
  /// Descriptors beyond the limit are closed again after each reading. `apps` is asked at the first sample.
  explicit LinuxProcessReader(const AppRegistry& apps, std::size_t descriptorLimit = usualDescriptorLimit());

  Sample sample() override;
  void appsChanged() override { mustAskForApps_ = true; }

  std::optional<ProcessRecord> record(std::int32_t pid) const override;
  std::optional<NamedProcess> namedRecord(std::int32_t pid) const override;
  std::optional<std::string> executablePath(std::int32_t pid) const override;
  std::string appPath(std::int32_t pid) const override;
  std::optional<std::string> workingFolder(std::int32_t pid) const override;
  std::vector<std::string> arguments(std::int32_t pid, std::size_t limit) const override;

  /// Half of what this process may have open.
  static std::size_t usualDescriptorLimit();

 private:
  /// What is kept of a process between two samples.
  struct Known {
    Descriptor stat{};
    Descriptor status{};
    std::uint64_t startTicks = 0;
    std::string name{};
    bool isPlaced = false;  ///< where it belongs won't change any more
    std::uint64_t faults = 0;
    std::uint64_t virtualBytes = 0;
    std::uint64_t residentPages = 0;
    std::uint64_t footprintBytes = 0;
    std::string executable{};
    const RegisteredApp* app = nullptr;
    bool isOfAppItself = false;  ///< runs the app's program for this person, not just something that was started in it
    bool isSeen = false;         ///< in the sample that is being taken

    std::size_t openDescriptors() const { return (stat ? 1U : 0U) + (status ? 1U : 0U); }
  };
  using KnownProcesses = std::unordered_map<std::int32_t, Known>;

  void askForApps();
  std::vector<std::int32_t> processIDs();
  /// The text of a file of a process, read through the descriptor that is kept, or one that is opened now and may be
  /// kept.
  std::string_view text(std::int32_t pid, const char* file, Descriptor& kept, bool mayKeep, std::span<char> buffer);
  bool refresh(std::int32_t pid, Known& known, std::uint64_t nowTicks, Sample& sample);
  void place(std::int32_t pid, Known& known);
  const RegisteredApp* appOf(std::int32_t pid, const AppAttribution& apps, std::string& executable) const;
  std::shared_ptr<const AppAttribution> knownApps() const;
  std::optional<std::uint32_t> userOf(std::int32_t pid, const Descriptor& stat) const;

  const AppRegistry& registry_;
  std::size_t descriptorLimit_;
  std::size_t openDescriptors_ = 0;
  Descriptor processes_;  ///< /proc
  std::uint64_t ticksPerSecond_;
  std::uint64_t pageBytes_;
  Date startOfMachine_;  ///< by the clock as it stood when the reader was made
  std::atomic<bool> mustAskForApps_ = true;
  mutable std::mutex appsLock_;
  std::shared_ptr<const AppAttribution> apps_ = std::make_shared<AppAttribution>();
  KnownProcesses known_;
};

}  // namespace lumenary
