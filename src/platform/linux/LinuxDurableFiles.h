#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/DurableFiles.h"
#include "platform/linux/LinuxKernel.h"

namespace lumenary {

/// Durable files over the kernel; locks are `flock`. May be used from any thread.
class LinuxDurableFiles final : public DurableFiles {
 public:
  /// `kernel` must outlive the value and what `grow` gives.
  explicit LinuxDurableFiles(LinuxKernel& kernel) : kernel_(kernel) {}

  SystemResult<std::string> read(const std::string& path, std::size_t limit) override;
  SystemResult<void> writeAtomically(const std::string& path, std::string_view bytes) override;
  SystemResult<void> makeFolders(const std::string& path) override;
  SystemResult<std::vector<std::string>> names(const std::string& folder) override;
  SystemResult<void> remove(const std::string& path) override;
  void removeRemains(const std::string& folder) override;
  SystemResult<Descriptor> lock(const std::string& path) override;
  SystemResult<Descriptor> lockNow(const std::string& path) override;
  SystemResult<std::unique_ptr<GrowingFile>> grow(const std::string& path) override;
  bool isGrowing(const std::string& path) override;

 private:
  bool isLocked(const Descriptor& file);
  SystemResult<Descriptor> lock(const std::string& path, std::chrono::milliseconds patience);

  LinuxKernel& kernel_;
};

}  // namespace lumenary
