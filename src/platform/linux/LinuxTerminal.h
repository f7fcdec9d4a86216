#pragma once

#include "platform/Terminal.h"

namespace lumenary {

/// The process's standard output and standard error.
class LinuxTerminal final : public Terminal {
 public:
  bool writeOutput(std::string_view text) override;
  void writeError(std::string_view text) override;
  bool showsProgress() const override;
};

}  // namespace lumenary
