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
  /// A damaged file is kept once beside it as "defaults.unreadable.json" before it is replaced. One that can't be read,
  /// or is larger than a settings file can be, is left alone, and the value isn't kept.
  SystemResult<void> setString(const std::string& key, std::string_view value) override;

 private:
  SystemResult<void> keepDamaged(const std::string& bytes);

  DurableFiles& files_;
  std::string path_;
};

}  // namespace lumenary
