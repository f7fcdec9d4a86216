#pragma once

#include <sys/types.h>

#include <mutex>
#include <optional>
#include <vector>

#include "platform/ToolRunner.h"

namespace lumenary {

/// Children of this process, each in a process group of its own, so that what a tool started ends with it. Nobody is
/// ended by force: a tool that doesn't even end when asked is left alone and waited for at a later run.
class LinuxToolRunner final : public ToolRunner {
 public:
  std::optional<ToolOutput> run(const ToolCommand& command) const override;
  bool start(const ToolCommand& command) const override;

 private:
  void reapEarlierTools() const;

  mutable std::mutex lock_;
  mutable std::vector<pid_t> leftAlone_;
};

}  // namespace lumenary
