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
  return tree_.empty() ? entryFrom(slots_.data()) : tree_.begin()->ptr();
}

HashMapEntry* HashTable::after(String8 const& key) const noexcept {
  return slots_.empty() ? afterInTree(key) : entryFrom(slotAfter(key));
}

void HashTable::insert(Ptr<HashMapEntry> entry) {
  if (!tree_.empty()) {
    insertInTree(entry);
    return;
  }
  if (slots_.empty() || 2 * count_ >= homesOf(shift_)) grow();
  String8 const& key = entry->key();
  std::size_t const slot = indexOf(slotAfter(key));
  if (slot > 0) {
    Slot& before = slots_[slot - 1];
    if (before.hash == key.hash() && before.entry->key() == key) {
      std::swap(before.entry, entry);
      return;
    }
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
  Slot const* const slot = slotOf(key);
  if (slot == nullptr) return nullptr;
  std::size_t at = indexOf(slot);
  Ptr<HashMapEntry> removed = std::move(slots_[at].entry);
  // Entries that are not at their homes move up.
  for (; slots_[at + 1].entry && home(slots_[at + 1].hash) != at + 1; ++at) {
    slots_[at] = std::move(slots_[at + 1]);
  }
  slots_[at].hash = noHash;
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

HashMapEntry* HashTable::afterInTree(String8 const& key) const noexcept {
  auto const next = tree_.upper_bound(key);
  return next == tree_.end() ? nullptr : next->ptr();
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
