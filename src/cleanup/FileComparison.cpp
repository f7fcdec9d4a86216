#include "cleanup/FileComparison.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

namespace lumenary {
namespace {

constexpr std::size_t pieceBytes = 1'048'576;

}  // namespace

Comparison compareContents(const ContentReader& contents, const Descriptor& a, const Descriptor& b,
                           const std::stop_token& stop) {
  const auto stampA = contents.stamp(a);
  const auto stampB = contents.stamp(b);
  if (!stampA || !stampB) {
    return Comparison::unreadable;
  }
  if (stampA->identity == stampB->identity) {
    return Comparison::sameFile;
  }
  if (stampA->byteCount != stampB->byteCount) {
    return Comparison::different;
  }
  std::vector<std::byte> pieceA(pieceBytes);
  std::vector<std::byte> pieceB(pieceBytes);
  for (std::uint64_t offset = 0;; offset += pieceBytes) {
    if (stop.stop_requested()) {
      return Comparison::cancelled;
    }
    contents.willRead(a, offset + pieceBytes, pieceBytes);
    contents.willRead(b, offset + pieceBytes, pieceBytes);
    const auto countA = contents.read(a, offset, pieceA);
    const auto countB = contents.read(b, offset, pieceB);
    if (!countA || !countB) {
      return Comparison::unreadable;
    }
    if (!std::ranges::equal(std::span(pieceA).first(*countA), std::span(pieceB).first(*countB))) {
      return Comparison::different;
    }
    if (*countA < pieceBytes) {
      break;
    }
  }
  const bool isUntouched = contents.stamp(a) == stampA && contents.stamp(b) == stampB;
  return isUntouched ? Comparison::same : Comparison::different;
}

}  // namespace lumenary
