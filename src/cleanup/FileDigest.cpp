#include "cleanup/FileDigest.h"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <system_error>
#include <thread>
#include <vector>

#include "base/Sha256.h"

namespace lumenary {
namespace {

constexpr std::size_t sampleBytes = 1'048'576;
constexpr std::int64_t smallestWithTail = 2'097'153;

constexpr std::size_t pieceBytes = 1'048'576;
constexpr std::size_t pieceCount = 3;  ///< one is hashed, one is read, one is ready

/// A part of a file that isn't in memory yet: it won't stay there on our account.
class PassingPart {
 public:
  PassingPart(const ContentReader& contents, const Descriptor& file, std::uint64_t offset, std::uint64_t length)
      : contents_(contents), file_(file), offset_(offset), length_(length), wasThere_(isThere()) {}
  ~PassingPart() {
    if (!wasThere_) {
      contents_.release(file_, offset_, length_);
    }
  }
  PassingPart(const PassingPart&) = delete;
  PassingPart& operator=(const PassingPart&) = delete;

 private:
  bool isThere() const { return contents_.isInMemory(file_, offset_ + (length_ / 2)); }

  const ContentReader& contents_;
  const Descriptor& file_;
  std::uint64_t offset_;
  std::uint64_t length_;
  bool wasThere_;
};

/// Pieces of a file on their way from the thread that reads to the one that hashes.
class PieceQueue {
 public:
  struct Piece {
    std::vector<std::byte> bytes = std::vector<std::byte>(pieceBytes);
    std::size_t count = 0;
    bool isReadable = true;

    bool isLast() const { return count < bytes.size() || !isReadable; }
  };

  /// A piece to read into; null where nobody wants more.
  Piece* toFill() {
    std::unique_lock guard(lock_);
    changed_.wait(guard, [&] { return filled_ - taken_ < pieceCount || isClosed_; });
    return isClosed_ ? nullptr : &pieces_.at(filled_ % pieceCount);
  }
  void fill() {
    const std::lock_guard guard(lock_);
    ++filled_;
    changed_.notify_all();
  }

  Piece& toTake() {
    std::unique_lock guard(lock_);
    changed_.wait(guard, [&] { return filled_ > taken_; });
    return pieces_.at(taken_ % pieceCount);
  }
  void take() {
    const std::lock_guard guard(lock_);
    ++taken_;
    changed_.notify_all();
  }

  /// Nothing more is wanted once this value goes.
  class Closing {
   public:
    explicit Closing(PieceQueue& queue) : queue_(queue) {}
    ~Closing() { queue_.close(); }
    Closing(const Closing&) = delete;
    Closing& operator=(const Closing&) = delete;

   private:
    PieceQueue& queue_;
  };

 private:
  void close() {
    const std::lock_guard guard(lock_);
    isClosed_ = true;
    changed_.notify_all();
  }

  std::mutex lock_;
  std::condition_variable changed_;
  std::array<Piece, pieceCount> pieces_;
  std::size_t filled_ = 0;
  std::size_t taken_ = 0;
  bool isClosed_ = false;
};

/// Looks at each piece of a file before it is asked for, and afterwards lets go of those that weren't in memory: what
/// others keep there stays.
class PassingPieces {
 public:
  PassingPieces(const ContentReader& contents, const Descriptor& file) : contents_(contents), file_(file) {
    for (std::uint64_t index = 0; index < pieceCount; ++index) {
      ask(index);
    }
  }

  void wasRead(std::uint64_t index) {
    if (!wasThere_.at(index % pieceCount)) {
      contents_.release(file_, index * pieceBytes, pieceBytes);
    }
    ask(index + pieceCount);
  }

 private:
  void ask(std::uint64_t index) {
    const std::uint64_t offset = index * pieceBytes;
    const bool isThere = contents_.isInMemory(file_, offset + (pieceBytes / 2));
    wasThere_.at(index % pieceCount) = isThere;
    if (!isThere) {
      contents_.willRead(file_, offset, pieceBytes);
    }
  }

  const ContentReader& contents_;
  const Descriptor& file_;
  std::array<bool, pieceCount> wasThere_{};
};

/// The reading thread's work: the whole file from its beginning, a piece at a time.
void readAll(const ContentReader& contents, const Descriptor& file, PieceQueue& queue) {
  PassingPieces passing(contents, file);
  for (std::uint64_t index = 0;; ++index) {
    PieceQueue::Piece* const piece = queue.toFill();
    if (piece == nullptr) {
      return;
    }
    const auto count = contents.read(file, index * pieceBytes, piece->bytes);
    piece->isReadable = count.has_value();
    piece->count = count.value_or(0);
    const bool isLast = piece->isLast();
    queue.fill();
    passing.wasRead(index);
    if (isLast) {
      return;
    }
  }
}

std::optional<std::string> hashAll(PieceQueue& queue, const std::stop_token& stop) {
  Sha256 digest;
  while (!stop.stop_requested()) {
    const PieceQueue::Piece& piece = queue.toTake();
    if (!piece.isReadable) {
      return std::nullopt;
    }
    digest.add(std::span(piece.bytes).first(piece.count));
    if (piece.isLast()) {
      return digest.finish();
    }
    queue.take();
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> partialDigest(const ContentReader& contents, const Descriptor& file) {
  const auto stamp = contents.stamp(file);
  if (!stamp) {
    return std::nullopt;
  }
  Sha256 digest;
  std::vector<std::byte> sample(sampleBytes);
  const auto add = [&](std::uint64_t offset) {
    const PassingPart part(contents, file, offset, sampleBytes);
    const auto count = contents.read(file, offset, sample);
    if (count) {
      digest.add(std::span(sample).first(*count));
    }
    return count.has_value();
  };
  if (!add(0)) {
    return std::nullopt;
  }
  if (stamp->byteCount >= smallestWithTail) {
    add(static_cast<std::uint64_t>(stamp->byteCount) - sampleBytes);
  }
  return digest.finish();
}

std::optional<std::string> fullDigest(const ContentReader& contents, const Descriptor& file,
                                      const std::stop_token& stop) {
  PieceQueue queue;
  std::jthread reader;
  try {
    reader = std::jthread([&] { readAll(contents, file, queue); });
  } catch (const std::system_error&) {
    return std::nullopt;  // no thread to be had: as good as unreadable
  }
  const PieceQueue::Closing closing(queue);  // whichever way this ends, before the reader is waited for
  return hashAll(queue, stop);
}

}  // namespace lumenary
