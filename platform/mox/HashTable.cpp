#include "platform/mox/HashTable.h"

#include <algorithm>
#include <utility>

namespace Mox {

namespace {

constexpr unsigned hashBits = 32;
constexpr unsigned firstShift = hashBits - 3;  // eight homes

std::size_t homesOf(unsigned shift) {
  return std::size_t{1} << (hashBits - shift);
}

}  // namespace

HashMapEntry::~HashMapEntry() = default;

HashMapEntry* HashTable::first() const noexcept {
  return tree_.empty() ? occupiedFrom(0) : tree_.begin()->ptr();
}

HashMapEntry* HashTable::after(String8 const& key) const noexcept {
  if (slots_.empty()) {
    auto const next = tree_.upper_bound(key);
    return next == tree_.end() ? nullptr : next->ptr();
  }
  std::size_t const slot = lowerBound(key);
  return occupiedFrom(holds(slot, key) ? slot + 1 : slot);
}

void HashTable::insert(Ptr<HashMapEntry> entry) {
  if (!tree_.empty()) {
    insertInTree(entry);
    return;
  }
  if (slots_.empty() || 2 * count_ >= homesOf(shift_)) grow();
  String8 const& key = entry->key();
  std::size_t const slot = lowerBound(key);
  if (holds(slot, key)) {
    std::swap(slots_[slot].entry, entry);
    return;
  }
  std::size_t end = slot;
  while (slots_[end].entry) ++end;
  if (end - home(key.hash()) >= mostMoved) {
    insertInNewTree(entry);
    return;
  }
  if (end + 1 == slots_.size()) slots_.emplace_back();
  auto const at = slots_.begin() + static_cast<std::ptrdiff_t>(slot);
  auto const empty = slots_.begin() + static_cast<std::ptrdiff_t>(end);
  std::move_backward(at, empty, empty + 1);
  *at = {key.hash(), std::move(entry)};
  ++count_;
}

Ptr<HashMapEntry> HashTable::remove(String8 const& key) noexcept {
  if (slots_.empty()) {
    auto const at = tree_.find(key);
    return at == tree_.end() ? nullptr : std::move(tree_.extract(at).value());
  }
  std::size_t const slot = lowerBound(key);
  if (!holds(slot, key)) return nullptr;
  Ptr<HashMapEntry> removed = std::move(slots_[slot].entry);
  std::size_t next = slot + 1;  // those that are not at their homes move up
  for (; slots_[next].entry && home(slots_[next].hash) != next; ++next) {
    slots_[next - 1] = std::move(slots_[next]);
  }
  slots_[next - 1].hash = noHash;
  --count_;
  return removed;
}

void HashTable::clear() noexcept {
  while (count() > 0) {  // an entry that goes may bring in others
    auto const slots = std::exchange(slots_, {});
    auto const tree = std::exchange(tree_, {});
    count_ = 0;
  }
}

/// The first slot that does not stand before `key`. There must be slots.
std::size_t HashTable::lowerBound(String8 const& key) const noexcept {
  std::uint32_t const hash = key.hash();
  std::size_t slot = home(hash);
  while (slots_[slot].hash < hash) ++slot;
  while (slots_[slot].hash == hash && slots_[slot].entry->key() < key) ++slot;
  return slot;
}

bool HashTable::holds(std::size_t slot, String8 const& key) const noexcept {
  return slots_[slot].hash == key.hash() && slots_[slot].entry->key() == key;
}

HashMapEntry* HashTable::occupiedFrom(std::size_t slot) const noexcept {
  while (slot < slots_.size() && !slots_[slot].entry) ++slot;
  return slot < slots_.size() ? slots_[slot].entry.ptr() : nullptr;
}

/// Doubles the homes, or makes the first ones.
void HashTable::grow() {
  unsigned const shift = slots_.empty() ? firstShift : shift_ - 1;
  std::size_t end = 0;  // of the entries
  for (Slot const& slot : slots_) {
    if (slot.entry) end = std::max<std::size_t>(end, slot.hash >> shift) + 1;
  }
  std::vector<Slot> slots(std::max(homesOf(shift), end) + 1);
  std::size_t next = 0;
  for (Slot& slot : slots_) {
    if (!slot.entry) continue;
    next = std::max<std::size_t>(next, slot.hash >> shift);
    slots[next++] = std::move(slot);
  }
  slots_ = std::move(slots);
  shift_ = shift;
}

HashMapEntry* HashTable::findInTree(String8 const& key) const noexcept {
  auto const at = tree_.find(key);
  return at == tree_.end() ? nullptr : at->ptr();
}

/// Leaves the entry that was replaced, if any, in `entry`.
void HashTable::insertInTree(Ptr<HashMapEntry>& entry) {
  auto const same = tree_.find(entry);
  if (same == tree_.end()) {
    tree_.insert(entry);
    return;
  }
  auto node = tree_.extract(same);
  std::swap(node.value(), entry);
  tree_.insert(std::move(node));
}

void HashTable::insertInNewTree(Ptr<HashMapEntry> const& entry) {
  Tree tree;
  for (Slot const& slot : slots_) {
    if (slot.entry) tree.insert(tree.end(), slot.entry);
  }
  tree.insert(entry);
  tree_ = std::move(tree);
  slots_ = {};
  count_ = 0;
}

}  // namespace Mox
