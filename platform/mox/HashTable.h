#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/mox/PtrInterface.h"

namespace Mox {

/// Counted objects in the order of 32-bit hashes: an open table, on which `HashMap` is built.
///
/// A slot is a hash and an object side by side: what finds a hash mostly has its object in the same
/// line of memory. It is packed into 12 bytes (8 on 32 bits); 16 would cost each entry 5 more.
///
/// Invariants.
///  1. Objects stand in the order of their hashes. Among equal hashes the order is the user's.
///  2. An object stands at its home, the slot that the high bits of its hash choose, or behind it
///     with no empty slot in between.
///  3. An empty slot has no object and the hash `emptySlot`, which no object has. Once there are
///     slots the last one is empty, so that every walk ends.
///  4. The table holds one reference to each object.
class MOX_API HashTable {
 public:
  static constexpr std::uint32_t emptySlot = 0xFFFFFFFFU;
  static constexpr std::size_t mostMoved = 2048;

  HashTable() = default;
  HashTable(HashTable const&) = delete;
  HashTable& operator=(HashTable const&) = delete;
  ~HashTable() { clear(); }

  std::size_t count() const noexcept { return count_; }
  std::size_t slots() const noexcept { return size_; }
  std::uint32_t hash(std::size_t slot) const noexcept { return slots_[slot].hash; }
  PtrInterface* object(std::size_t slot) const noexcept { return slots_[slot].object; }

  /// Where the objects with that hash start; where one would stand if there are none. There must be
  /// slots.
  std::size_t lowerBound(std::uint32_t hash) const noexcept {
    std::size_t slot = home(hash);
    std::size_t const far = slot + nearby;
    while (slots_[slot].hash < hash) {
      if (++slot == far) return lowerBoundFrom(slot, hash);
    }
    return slot;
  }
  /// The same from a slot between the home of `hash` and there on, for objects that many others
  /// have pushed away.
  std::size_t lowerBoundFrom(std::size_t slot, std::uint32_t hash) const noexcept;
  /// The first slot from `slot` on that has an object; `slots()` when there is none.
  std::size_t occupiedFrom(std::size_t slot) const noexcept {
    while (slot < size_ && slots_[slot].object == nullptr) ++slot;
    return slot;
  }

  /// Before the object in `slot`, which is the lower bound of `hash` or behind objects that have
  /// it; any slot where there are none yet. False, and the table holds what it held, when so many
  /// slots as `mostMoved` lie between the home of `hash` and the next empty one: chance does not
  /// lead there, somebody has chosen these hashes. Without memory the table is as it was, too.
  bool insert(std::size_t slot, std::uint32_t hash, PtrInterface& object);
  /// Puts `object` in the place of the one in `slot`, which has the same hash.
  void replace(std::size_t slot, PtrInterface& object) noexcept;
  /// The slot must have an object.
  void remove(std::size_t slot) noexcept;
  void clear() noexcept;

 private:
  static constexpr std::size_t nearby = 16;  // slots that are looked at one by one

  struct [[gnu::packed]] Slot {
    std::uint32_t hash = emptySlot;
    PtrInterface* object = nullptr;
  };

  std::size_t home(std::uint32_t hash) const noexcept { return hash >> shift_; }
  std::size_t emptyFrom(std::size_t slot) const noexcept;
  void rebuild(unsigned shift);

  std::unique_ptr<Slot[]> slots_;
  std::size_t size_ = 0;
  unsigned shift_ = 0;    // makes a home of a hash
  std::size_t most_ = 0;  // objects before there must be more homes
  std::size_t count_ = 0;
};

}  // namespace Mox
