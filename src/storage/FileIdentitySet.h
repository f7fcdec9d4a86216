#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "platform/FileIdentity.h"

namespace lumenary {

/// The files that a walk has met, told by device and inode. A table with open addressing, at most half full: in a tree
/// made of hard links, as package managers make them, every file is looked up, and a node for each would be felt.
class FileIdentitySet {
 public:
  /// True where the file wasn't in the set.
  bool insert(const FileIdentity& file) {
    if (slots_.size() < 2 * (count_ + 1)) {
      grow();
    }
    Slot& slot = slotFor({file.device, file.inode});
    if (slot != Slot()) {
      return false;
    }
    slot = {file.device, file.inode};
    ++count_;
    return true;
  }

 private:
  /// Device 0 with inode 0 is no file: it marks a free slot.
  struct Slot {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    bool operator==(const Slot&) const = default;
  };

  Slot& slotFor(const Slot& wanted) {
    // Multiplying by 2^64 divided by the golden ratio spreads neighbouring inodes over the upper bits (Fibonacci
    // hashing).
    const std::uint64_t hash = (wanted.inode ^ std::rotl(wanted.device, 32)) * 0x9E3779B97F4A7C15U;
    std::size_t index = hash >> (64 - std::countr_zero(slots_.size()));
    while (slots_[index] != wanted && slots_[index] != Slot()) {
      index = (index + 1) & (slots_.size() - 1);
    }
    return slots_[index];
  }

  void grow() {
    const std::vector<Slot> former = std::exchange(slots_, std::vector<Slot>(slots_.empty() ? 16 : 2 * slots_.size()));
    for (const Slot& slot : former) {
      if (slot != Slot()) {
        slotFor(slot) = slot;
      }
    }
  }

  std::vector<Slot> slots_;  ///< as many as a power of two
  std::size_t count_ = 0;
};

}  // namespace lumenary
