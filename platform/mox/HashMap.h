#pragma once

#include <cstddef>
#include <utility>

#include "platform/mox/HashTable.h"
#include "platform/mox/Ptr.h"
#include "platform/mox/SmallMemory.h"
#include "platform/mox/String8.h"

namespace Mox {

/// Base of what a `HashMap` can hold: a counted object under an immutable key.
class MOX_API HashMapEntry : public PtrInterface, public InSmallMemory {
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

  /// Where a key stands in the map or would be inserted; until the map changes.
  class Place {
   public:
    /// The entry that has the key; null when there is none.
    Entry* entry() const noexcept { return entry_; }

   private:
    friend class HashMap;
    Place(std::size_t slot, Entry* entry) noexcept : slot_(slot), entry_(entry) {}

    std::size_t slot_;
    Entry* entry_;
  };

  std::size_t count() const noexcept { return table_.count(); }

  Place place(String8 const& key) const noexcept {
    if (table_.slots() == 0) return {0, nullptr};
    std::uint32_t const hash = key.hash();
    std::size_t const slot = table_.lowerBound(hash);
    if (table_.hash(slot) != hash) return {slot, nullptr};
    Entry* const entry = entryIn(slot);
    if (entry->key() == key) [[likely]]
      return {slot, entry};
    return placeAmongOthers(slot, key);
  }
  /// That of the entry that `it` designates; one without an entry when that has left the map.
  Place place(IteratorConst const& it) const noexcept {
    if (!it) return {0, nullptr};
    Entry* const entry = it.entry_.ptr();
    if (entryAt(it.slot_) == entry) return {it.slot_, entry};
    Place const now = place(it.key());
    return {now.slot_, now.entry_ == entry ? entry : nullptr};
  }
  Entry* find(String8 const& key) const noexcept { return place(key).entry(); }

  /// `at` is the place of the entry's key; an entry that stands there leaves the map. Without
  /// memory the map is as it was.
  void insert(Place const& at, Ptr<Entry> const& entry) {
    if (at.entry_ != nullptr) {
      table_.replace(at.slot_, *entry);
    } else {
      table_.insert(at.slot_, entry->key().hash(), *entry);
    }
  }
  void insert(Ptr<Entry> const& entry) { insert(place(entry->key()), entry); }
  /// There must be an entry at that place.
  void remove(Place const& at) noexcept { table_.remove(at.slot_); }
  void clear() noexcept { table_.clear(); }

  IteratorConst iteratorConst() const noexcept { return at(table_.occupiedFrom(0)); }
  /// Starts at `key`; designates nothing when the key is absent.
  IteratorConst iteratorConst(String8 const& key) const noexcept {
    Place const start = place(key);
    return {this, start.slot_, start.entry_};
  }

 private:
  /// The slot must exist.
  Entry* entryIn(std::size_t slot) const noexcept {
    return static_cast<Entry*>(table_.object(slot));
  }
  Entry* entryAt(std::size_t slot) const noexcept {
    return slot < table_.slots() ? entryIn(slot) : nullptr;
  }
  IteratorConst at(std::size_t slot) const noexcept { return {this, slot, entryAt(slot)}; }
  /// That of a key whose hash others have too, from `slot` on. Rare, so not where it is called.
  [[gnu::noinline]] Place placeAmongOthers(std::size_t slot, String8 const& key) const noexcept {
    std::uint32_t const hash = key.hash();
    while (table_.hash(slot) == hash && entryIn(slot)->key() < key) ++slot;
    bool const isThere = table_.hash(slot) == hash && entryIn(slot)->key() == key;
    return {slot, isThere ? entryIn(slot) : nullptr};
  }
  /// Of the first entry behind the iterator's in the map's order, whether or not that is still in
  /// it.
  std::size_t slotBehind(IteratorConst const& it) const noexcept {
    if (entryAt(it.slot_) == it.entry_.ptr()) return table_.occupiedFrom(it.slot_ + 1);
    Place const left = place(it.key());
    return table_.occupiedFrom(left.entry_ == nullptr ? left.slot_ : left.slot_ + 1);
  }

  HashTable table_;
};

}  // namespace Mox
