#pragma once

#include <string>

#include "platform/Defaults.h"
#include "platform/DurableFiles.h"

namespace lumenary {

/// The settings in a file of JSON: {"codeFolder": "/home/anna/Code"}, texts written by `reversibleText`. Read at each
/// question, as the other face may have written it.
class LinuxDefaults final : public Defaults {
 public:
  /// `files` must outlive the value.
  LinuxDefaults(DurableFiles& files, std::string path) : files_(files), path_(std::move(path)) {}

  std::expected<std::optional<std::string>, std::string> string(const std::string& key) const override;

 private:
  DurableFiles& files_;
  std::string path_;
};

}  // namespace lumenary
