#pragma once

#include "platform/ContentReader.h"
#include "platform/FileReader.h"

namespace lumenary {

/// Files by pread; the hints are posix_fadvise.
class LinuxContentReader final : public ContentReader {
 public:
  /// `folders` opens what is around a file and must outlive the value.
  explicit LinuxContentReader(const FileReader& folders) : folders_(folders) {}

  SystemResult<Descriptor> openFile(const std::string& path) const override;
  SystemResult<Descriptor> openFile(const Descriptor& folder, const char* name) const override;
  SystemResult<ContentStamp> stamp(const Descriptor& file) const override;
  SystemResult<std::size_t> read(const Descriptor& file, std::uint64_t offset,
                                 std::span<std::byte> into) const override;
  bool isInMemory(const Descriptor& file, std::uint64_t offset) const override;
  void willRead(const Descriptor& file, std::uint64_t offset, std::uint64_t length) const override;
  void release(const Descriptor& file, std::uint64_t offset, std::uint64_t length) const override;

 private:
  const FileReader& folders_;
};

}  // namespace lumenary
