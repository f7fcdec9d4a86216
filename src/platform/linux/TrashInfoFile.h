#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"
#include "platform/linux/KernelFiles.h"
#include "platform/linux/TrashFolder.h"
#include "platform/linux/TrashInfo.h"

namespace lumenary {

/// The info file of one name in an opened Trash, whether it is there or not.
class TrashInfoFile {
 public:
  static constexpr std::string_view extension = ".trashinfo";

  /// `kernel` and `trash` must outlive the value.
  TrashInfoFile(LinuxKernel& kernel, const TrashFolder& trash, std::string_view itemName)
      : kernel_(kernel), trash_(trash), name_(std::string(itemName).append(extension)) {}

  /// What it says: why it can't be read, or its text, and what that means where it isn't damaged.
  struct Content {
    SystemResult<std::string> text;
    std::optional<TrashInfo> info{};
    Date modified{};

    bool isMissing() const { return !text && text.error().isMissing(); }
    /// True where it names the origin, and was written for an act that was over at `latest`.
    bool isOf(const std::string& originalPath, const TrashFolder& trash, Date latest) const;
  };
  Content read() const;
  SystemResult<KernelStatus> status() const { return statusAt(kernel_, trash_.info, name_.c_str()); }
  bool isMissing() const;

  /// Makes it, synced, where there is none. EEXIST and ENAMETOOLONG mean that nothing was made. After any other error
  /// what was made is removed where that can be done; what somebody else made stays.
  SystemResult<void> write(const std::string& originalPath, Date date) const;
  /// True where no such file is left.
  bool remove() const;

 private:
  LinuxKernel& kernel_;
  const TrashFolder& trash_;
  std::string name_;
};

}  // namespace lumenary
