#pragma once

#include <array>
#include <cstddef>
#include <new>
#include <utility>

#include "platform/mox/PtrInterface.h"

namespace Mox {

/// Where the memory of small objects comes from and goes to that come and go all the time: entries
/// of collections, and the adapters of generic access (`GenericIf`), of which whoever reads
/// attributes makes one for each value and drops it before the next.
///
/// A block that goes is kept for the next one of its size, the latest first; a block that comes is
/// the heap's when none is kept. A round through the heap instead makes a generic read take 1.7
/// times as long. Blocks are kept by the whole process.
///
/// Threads. While the thread-safe pointer switch is on the heap alone is used.
class MOX_API SmallMemory {
 public:
  static constexpr std::size_t sizes = 8;
  static constexpr std::size_t mostBytes = 16 * (sizes - 1) + 8;
  /// Of one size, at once: a mebibyte of entries.
  static constexpr std::size_t mostKept = 16384;

  /// `std::bad_alloc` when there is none.
  static void* taken(std::size_t bytes) {
    if (isKept(bytes) && keptOf(bytes).count > 0) {
      Kept& kept = keptOf(bytes);
      Block* const block = std::exchange(kept.first, kept.first->next);
      if (--kept.count > 0) __builtin_prefetch(kept.first);  // says which one comes after it
      return block;
    }
    return ::operator new(roomOf(bytes));
  }

  static void givenBack(void* memory, std::size_t bytes) noexcept {
    if (isKept(bytes) && keptOf(bytes).count < mostKept) {
      Kept& kept = keptOf(bytes);
      kept.first = new (memory) Block{kept.first};
      ++kept.count;
    } else {
      ::operator delete(memory);
    }
  }

  /// Gives all that is kept back to the heap.
  static void clear() noexcept;

  static bool isKept(std::size_t bytes) noexcept {
    return keeps && bytes <= mostBytes && !PtrInterface::threadSafePtr();
  }

 private:
#ifdef KEST_ADDRESS_SANITIZER
  static constexpr bool keeps = false;  // an object that is used too late must show
#else
  static constexpr bool keeps = true;
#endif

  struct Block {
    Block* next;
  };
  struct Kept {
    Block* first = nullptr;
    std::size_t count = 0;
  };

  // Sizes are those of the heap on 64 bits, 8, 24, 40 and so on, so that no block is larger for
  // being one that can be kept.
  static constexpr std::size_t sizeNumber(std::size_t bytes) {
    return (bytes + 7) / 16;
  }
  /// Of every block, whether it can be kept now: it may go when it can.
  static constexpr std::size_t roomOf(std::size_t bytes) {
    return keeps ? 16 * sizeNumber(bytes) + 8 : bytes;
  }
  static Kept& keptOf(std::size_t bytes) noexcept {
    return kept_[sizeNumber(bytes)];
  }

  static std::array<Kept, sizes> kept_;
};

/// Base of classes whose objects live there.
class InSmallMemory {
 public:
  // NOLINTNEXTLINE(misc-new-delete-overloads): the sized one is its match
  static void* operator new(std::size_t bytes) { return SmallMemory::taken(bytes); }
  static void operator delete(void* memory, std::size_t bytes) noexcept {
    SmallMemory::givenBack(memory, bytes);
  }
};

}  // namespace Mox
