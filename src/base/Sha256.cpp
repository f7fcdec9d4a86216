#include "base/Sha256.h"

#include <nettle/sha2.h>

#include <cstdint>
#include <string_view>

namespace lumenary {

struct Sha256::State {
  sha256_ctx context{};
};

Sha256::Sha256() : state_(std::make_unique<State>()) { sha256_init(&state_->context); }
Sha256::Sha256(Sha256&&) noexcept = default;
Sha256& Sha256::operator=(Sha256&&) noexcept = default;
Sha256::~Sha256() = default;

void Sha256::add(std::span<const std::byte> bytes) {
  sha256_update(&state_->context, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
}

std::string Sha256::finish() {
  constexpr std::string_view digits = "0123456789abcdef";
  std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
  sha256_digest(&state_->context, digest.size(), digest.data());
  std::string text;
  for (const std::uint8_t byte : digest) {
    text += digits[byte >> 4];
    text += digits[byte & 0xF];
  }
  return text;
}

}  // namespace lumenary
