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
  while (slot < size_ && slots_[slot].object != nullptr) ++slot;
  return slot;
}

/// From a hash's home on, lower hashes come first; then higher ones and empty slots, since what
/// follows an empty slot has its home there. So the place can be found by halves, nearer ones
/// first.
std::size_t HashTable::lowerBoundFrom(std::size_t slot, std::uint32_t hash) const noexcept {
  auto const isLower = [hash](Slot const& one) { return one.hash < hash; };
  std::size_t step = 1;
  while (slot + step < size_ && isLower(slots_[slot + step])) {
    slot += step;
    step *= 2;
  }
  std::size_t const end = std::min(slot + step, size_ - 1);
  return static_cast<std::size_t>(std::partition_point(&slots_[slot], &slots_[end], isLower) -
                                  &slots_[0]);
}

bool HashTable::insert(std::size_t slot, std::uint32_t hash, PtrInterface& object) {
  std::size_t end = emptyFrom(slot);
  if (count_ == most_ || end + 1 >= slots()) {
    bool const none = size_ == 0;
    std::size_t const rank = none ? 0 : slot - lowerBound(hash);
    rebuild(none ? firstShift : count_ == most_ ? shift_ - 1 : shift_);
    slot = lowerBound(hash) + rank;
    end = emptyFrom(slot);
  }
  if (end - home(hash) >= mostMoved) return false;
  std::copy_backward(&slots_[slot], &slots_[end], &slots_[end] + 1);
  slots_[slot] = {hash, &object};
  object.referenceNew();
  ++count_;
  return true;
}

void HashTable::replace(std::size_t slot, PtrInterface& object) noexcept {
  object.referenceNew();
  PtrInterface const* const replaced = slots_[slot].object;
  slots_[slot].object = &object;
  replaced->referenceDel();
}

void HashTable::remove(std::size_t slot) noexcept {
  PtrInterface const* const object = slots_[slot].object;
  std::size_t end = slot + 1;  // of those that are not at their homes
  while (slots_[end].object != nullptr && home(slots_[end].hash) != end) ++end;
  std::copy(&slots_[slot] + 1, &slots_[end], &slots_[slot]);
  slots_[end - 1] = Slot();
  --count_;
  object->referenceDel();
}

void HashTable::clear() noexcept {
  while (count_ > 0) {  // an object that goes may bring in others
    auto const slots = std::move(slots_);
    std::size_t const size = std::exchange(size_, 0);
    count_ = most_ = 0;
    for (std::size_t slot = 0; slot < size; ++slot) {
      if (slots[slot].object != nullptr) slots[slot].object->referenceDel();
    }
  }
}

/// Gives the objects, in their order, the homes that `shift` makes.
void HashTable::rebuild(unsigned shift) {
  std::size_t const homes = std::size_t{1} << (hashBits - shift);
  auto const forEach = [&](auto const& visit) {
    std::size_t next = 0;
    for (std::size_t slot = occupiedFrom(0); slot < slots(); slot = occupiedFrom(slot + 1)) {
      next = std::max<std::size_t>(next, slots_[slot].hash >> shift);
      visit(slot, next);
      ++next;
    }
    return next;
  };
  std::size_t const end = forEach([](std::size_t, std::size_t) {});
  std::size_t const size = std::max(homes, end) + spare(count_);
  auto slots = std::make_unique<Slot[]>(size);
  forEach([&](std::size_t from, std::size_t to) { slots[to] = slots_[from]; });
  slots_ = std::move(slots);
  size_ = size;
  shift_ = shift;
  most_ = homes / 8 * 7;
}

}  // namespace Mox
