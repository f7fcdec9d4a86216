#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/Descriptor.h"
#include "platform/FileIdentity.h"
#include "platform/SystemError.h"
#include "platform/linux/LinuxKernel.h"

/// What the mover and the durable files do with several calls of the kernel: interrupted calls are repeated, errors are
/// values.
namespace lumenary {

struct KernelStatus {
  FileIdentity identity;
  std::uint64_t mountID = 0;  ///< 0 on kernels that don't tell (before 5.8)
  std::uint32_t owner = 0;
  std::uint32_t mode = 0;
  std::uint32_t linkCount = 0;
  std::int64_t modifiedSeconds = 0;  ///< since 1970
  bool isUnchangeable = false;       ///< immutable or append-only
};

SystemError lastError();

SystemResult<Descriptor> openAt(LinuxKernel& kernel, const Descriptor& folder, const char* name, int flags,
                                mode_t mode = 0);
/// By a path; links in it are followed unless `flags` say otherwise.
SystemResult<Descriptor> openPath(LinuxKernel& kernel, const std::string& path, int flags, mode_t mode = 0);

/// Never follows a link, never triggers an automount.
SystemResult<KernelStatus> statusAt(LinuxKernel& kernel, const Descriptor& folder, const char* name);
SystemResult<KernelStatus> statusOf(LinuxKernel& kernel, const Descriptor& opened);

SystemResult<std::string> readAll(LinuxKernel& kernel, const Descriptor& file, std::size_t limit);
SystemResult<void> writeAll(LinuxKernel& kernel, const Descriptor& file, std::string_view bytes);
SystemResult<void> writeAndSync(LinuxKernel& kernel, const Descriptor& file, std::string_view bytes);
SystemResult<void> sync(LinuxKernel& kernel, const Descriptor& opened);
SystemResult<void> removeFile(LinuxKernel& kernel, const Descriptor& folder, const char* name);

/// Makes the folder where it is missing, for this user only, and syncs the one around it.
SystemResult<void> makeFolder(LinuxKernel& kernel, const Descriptor& parent, const char* name);
/// The same with what is missing above it.
SystemResult<void> makeFolders(LinuxKernel& kernel, const std::string& path);

/// True for a name that `replaceFile` gives a file before it is whole.
bool isTemporaryName(std::string_view name);

/// Replaces `name` in the opened folder as a whole or not at all; the file and the folder are synced.
SystemResult<void> replaceFile(LinuxKernel& kernel, const Descriptor& folder, const std::string& name,
                               std::string_view bytes);

}  // namespace lumenary
