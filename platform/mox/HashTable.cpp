#include "platform/mox/HashTable.h"

#include <algorithm>
#include <utility>

namespace Mox {

namespace {

constexpr unsigned hashBits = 32;
constexpr unsigned firstShift = hashBits - 3;  // eight homes

/// Slots behind those that are needed, for objects that are pushed past the last home.
std::size_t spare(std::size_t count) noexcept {
  return 8 + count / 16;
}

}  // namespace

std::size_t HashTable::emptyFrom(std::size_t slot) const noexcept {
  while (slot < objects_.size() && objects_[slot] != nullptr) ++slot;
  return slot;
}

void HashTable::insert(std::size_t slot, std::uint32_t hash, PtrInterface& object) {
  std::size_t end = emptyFrom(slot);
  if (count_ == most_ || end + 1 >= slots()) {
    bool const none = objects_.empty();
    std::size_t const rank = none ? 0 : slot - lowerBound(hash);
    rebuild(none ? firstShift : count_ == most_ ? shift_ - 1 : shift_);
    slot = lowerBound(hash) + rank;
    end = emptyFrom(slot);
  }
  std::copy_backward(&hashes_[slot], &hashes_[end], &hashes_[end] + 1);
  std::copy_backward(&objects_[slot], &objects_[end], &objects_[end] + 1);
  hashes_[slot] = hash;
  objects_[slot] = &object;
  object.referenceNew();
  ++count_;
}

void HashTable::replace(std::size_t slot, PtrInterface& object) noexcept {
  object.referenceNew();
  std::exchange(objects_[slot], &object)->referenceDel();
}

void HashTable::remove(std::size_t slot) noexcept {
  PtrInterface const* const object = objects_[slot];
  std::size_t end = slot + 1;  // of those that are not at their homes
  while (objects_[end] != nullptr && home(hashes_[end]) != end) ++end;
  std::copy(&hashes_[slot] + 1, &hashes_[end], &hashes_[slot]);
  std::copy(&objects_[slot] + 1, &objects_[end], &objects_[slot]);
  hashes_[end - 1] = emptySlot;
  objects_[end - 1] = nullptr;
  --count_;
  object->referenceDel();
}

void HashTable::clear() noexcept {
  while (count_ > 0) {  // an object that goes may bring in others
    hashes_.clear();
    count_ = most_ = 0;
    for (PtrInterface const* const object : std::exchange(objects_, {})) {
      if (object != nullptr) object->referenceDel();
    }
  }
}

/// Gives the objects, in their order, the homes that `shift` makes.
void HashTable::rebuild(unsigned shift) {
  std::size_t const homes = std::size_t{1} << (hashBits - shift);
  auto const forEach = [&](auto const& visit) {
    std::size_t next = 0;
    for (std::size_t slot = occupiedFrom(0); slot < slots(); slot = occupiedFrom(slot + 1)) {
      next = std::max<std::size_t>(next, hashes_[slot] >> shift);
      visit(slot, next);
      ++next;
    }
    return next;
  };
  std::size_t const end = forEach([](std::size_t, std::size_t) {});
  std::size_t const size = std::max(homes, end) + spare(count_);
  std::vector<std::uint32_t> hashes(size, emptySlot);
  std::vector<PtrInterface*> objects(size, nullptr);
  forEach([&](std::size_t from, std::size_t to) {
    hashes[to] = hashes_[from];
    objects[to] = objects_[from];
  });
  hashes_.swap(hashes);
  objects_.swap(objects);
  shift_ = shift;
  most_ = homes / 8 * 7;
}

}  // namespace Mox
