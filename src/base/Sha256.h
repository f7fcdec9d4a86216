#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <string>

namespace lumenary {

/// SHA-256 (FIPS 180-4) of bytes that come in pieces.
class Sha256 {
 public:
  Sha256();
  Sha256(const Sha256&) = delete;
  Sha256& operator=(const Sha256&) = delete;
  Sha256(Sha256&&) noexcept;
  Sha256& operator=(Sha256&&) noexcept;
  ~Sha256();

  void add(std::span<const std::byte> bytes);
  /// The digest in lower-case hexadecimal digits. The value is spent afterwards.
  std::string finish();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace lumenary
