#pragma once

#include <optional>
#include <stop_token>
#include <string>

#include "platform/ContentReader.h"

/// Digests of files: SHA-256 in lower-case hexadecimal digits.
namespace lumenary {

/// Of the first 1 MiB and, in a file of more than 2 MiB, the last one. None where the beginning can't be read; an end
/// that can't be read is left out.
std::optional<std::string> partialDigest(const ContentReader& contents, const Descriptor& file);

/// Of the whole file. A second thread reads while this one computes. None after a stop request, and where a part can't
/// be read.
std::optional<std::string> fullDigest(const ContentReader& contents, const Descriptor& file,
                                      const std::stop_token& stop);

}  // namespace lumenary
