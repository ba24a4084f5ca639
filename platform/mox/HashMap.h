#pragma once

#include <cstddef>
#include <utility>

#include "platform/mox/HashTable.h"
#include "platform/mox/Ptr.h"
#include "platform/mox/String8.h"

namespace Mox {

/// Base of what a `HashMap` can hold: a counted object under an immutable key.
class MOX_API HashMapEntry : public PtrInterface {
 public:
  String8 const& key() const noexcept { return key_; }
  ~HashMapEntry() override;

 protected:
  explicit HashMapEntry(String8 key) noexcept : key_(std::move(key)) {}

 private:
  String8 key_;
};

/// Map of counted entries under string keys. `Entry` is a framework object with a `key()` that
/// never changes: a `HashMapEntry`, or one that finds its key in what it holds.
///
/// Order. By key hash, then by the key's bytes: independent of insertion order, the same on every
/// machine, meaningless to callers.
///
/// Iterators are resumable: an iterator holds a reference to its entry, and stepping goes to the
/// first entry behind it in the map's order, whatever was inserted or removed since, its own entry
/// included. So a walk meets every entry that stays, no entry twice, and ends. The map must outlive
/// its iterators.
template <class Entry>
class HashMap {
 public:
  class IteratorConst {
   public:
    IteratorConst() = default;

    explicit operator bool() const noexcept { return static_cast<bool>(entry_); }
    IteratorConst& operator++() noexcept {
      slot_ = map_->slotBehind(*this);
      entry_ = map_->entryAt(slot_);
      return *this;
    }
    Entry const* operator->() const noexcept { return entry_.ptr(); }
    Entry const& operator*() const noexcept { return *entry_; }
    String8 const& key() const noexcept { return entry_->key(); }

   private:
    friend class HashMap;
    IteratorConst(HashMap const* map, std::size_t slot, Entry* entry) noexcept
        : map_(map), slot_(slot), entry_(entry) {}

    HashMap const* map_ = nullptr;
    std::size_t slot_ = 0;  // of the entry, unless the map has changed
    Ptr<Entry> entry_;
  };

  std::size_t count() const noexcept { return table_.count(); }

  Entry* find(String8 const& key) const noexcept {
    std::size_t const slot = slotOf(key);
    return slot == none ? nullptr : entryIn(slot);
  }

  /// An entry that has its key already leaves the map. Without memory the map is as it was.
  void insert(Ptr<Entry> const& entry) {
    String8 const& key = entry->key();
    std::size_t const slot = slotFor(key);
    if (isKeyAt(slot, key)) {
      table_.replace(slot, *entry);
    } else {
      table_.insert(slot, key.hash(), *entry);
    }
  }
  /// Removes the entry that `it` designates, if that is still in the map; says whether it was.
  bool remove(IteratorConst const& it) noexcept {
    std::size_t const slot = slotOf(it);
    if (slot == none) return false;
    table_.remove(slot);
    return true;
  }
  void clear() noexcept { table_.clear(); }

  IteratorConst iteratorConst() const noexcept { return at(table_.occupiedFrom(0)); }
  /// Starts at `key`; designates nothing when the key is absent.
  IteratorConst iteratorConst(String8 const& key) const noexcept { return at(slotOf(key)); }
  /// Whether the entry that `it` designates is in the map.
  bool has(IteratorConst const& it) const noexcept { return slotOf(it) != none; }

 private:
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  /// The slot must exist.
  Entry* entryIn(std::size_t slot) const noexcept {
    return static_cast<Entry*>(table_.object(slot));
  }
  Entry* entryAt(std::size_t slot) const noexcept {
    return slot < table_.slots() ? entryIn(slot) : nullptr;
  }
  IteratorConst at(std::size_t slot) const noexcept { return {this, slot, entryAt(slot)}; }

  bool isKeyAt(std::size_t slot, String8 const& key) const noexcept {
    return slot < table_.slots() && table_.hash(slot) == key.hash() && entryIn(slot)->key() == key;
  }
  /// Of the entry with that key, or `none`.
  std::size_t slotOf(String8 const& key) const noexcept {
    if (table_.count() == 0) return none;
    std::uint32_t const hash = key.hash();
    for (std::size_t slot = table_.lowerBound(hash); table_.hash(slot) == hash; ++slot) {
      if (entryIn(slot)->key() == key) return slot;
    }
    return none;
  }
  /// Of the first entry that is not before `key` in the map's order, or where it would be inserted.
  std::size_t slotFor(String8 const& key) const noexcept {
    if (table_.slots() == 0) return 0;
    std::size_t slot = table_.lowerBound(key.hash());
    while (table_.hash(slot) == key.hash() && entryIn(slot)->key() < key) ++slot;
    return slot;
  }
  /// Of the iterator's entry, or `none` when that is not in the map.
  std::size_t slotOf(IteratorConst const& it) const noexcept {
    if (!it) return none;
    if (entryAt(it.slot_) == it.entry_.ptr()) return it.slot_;
    std::size_t const slot = slotOf(it.key());
    return entryAt(slot) == it.entry_.ptr() ? slot : none;
  }
  /// Of the first entry behind the iterator's in the map's order, whether or not that is still in
  /// it.
  std::size_t slotBehind(IteratorConst const& it) const noexcept {
    if (entryAt(it.slot_) == it.entry_.ptr()) return table_.occupiedFrom(it.slot_ + 1);
    std::size_t const slot = slotFor(it.key());
    return table_.occupiedFrom(isKeyAt(slot, it.key()) ? slot + 1 : slot);
  }

  HashTable table_;
};

}  // namespace Mox
