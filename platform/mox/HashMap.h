#pragma once

#include <cstddef>
#include <memory>
#include <utility>

#include "platform/mox/HashTable.h"
#include "platform/mox/HashTree.h"
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
///
/// Cost. The entries stand in a table, where ordinary keys are found at once. Whoever knows the
/// hash can choose keys that would all stand in one place there; when they come to crowd the table,
/// the map goes over to a tree until it is empty again. Then, too, no key costs more than the
/// logarithm of their number.
template <class Entry>
class HashMap {
 public:
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

  class IteratorConst {
   public:
    IteratorConst() = default;

    explicit operator bool() const noexcept { return static_cast<bool>(entry_); }
    IteratorConst& operator++() noexcept {
      Place const next = map_->placeBehind(*this);
      slot_ = next.slot_;
      entry_ = next.entry_;
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

  HashMap() = default;
  ~HashMap() { clear(); }

  std::size_t count() const noexcept { return tree_ ? tree_->count() : table_.count(); }

  Place place(String8 const& key) const noexcept {
    if (table_.slots() == 0) [[unlikely]]
      return placeInTree(key);
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
    if (tree_) [[unlikely]] {
      tree_->insert(entry->key(), *entry);
    } else if (at.entry_ != nullptr) {
      table_.replace(at.slot_, *entry);
    } else if (!table_.insert(at.slot_, entry->key().hash(), *entry)) {
      insertInNewTree(entry);
    }
  }
  void insert(Ptr<Entry> const& entry) { insert(place(entry->key()), entry); }
  /// There must be an entry at that place.
  void remove(Place const& at) noexcept {
    if (tree_) [[unlikely]]
      return removeFromTree(at);
    table_.remove(at.slot_);
  }
  /// Returns the entry that leaves the map; null when no entry has the key.
  Ptr<Entry> remove(String8 const& key) noexcept {
    Place const at = place(key);
    Ptr<Entry> removed(at.entry());
    if (removed) remove(at);
    return removed;
  }
  void clear() noexcept {
    while (count() > 0) {  // an entry that goes may bring in others
      tree_.reset();
      table_.clear();
    }
  }

  IteratorConst iteratorConst() const noexcept {
    Place const first = tree_ ? Place(0, entryOf(tree_->first())) : occupiedFrom(0);
    return {this, first.slot_, first.entry_};
  }
  /// Starts at `key`; designates nothing when the key is absent.
  IteratorConst iteratorConst(String8 const& key) const noexcept {
    Place const start = place(key);
    return {this, start.slot_, start.entry_};
  }

 private:
  static Entry* entryOf(PtrInterface* object) noexcept { return static_cast<Entry*>(object); }
  /// The slot must exist.
  Entry* entryIn(std::size_t slot) const noexcept { return entryOf(table_.object(slot)); }
  Entry* entryAt(std::size_t slot) const noexcept {
    return slot < table_.slots() ? entryIn(slot) : nullptr;
  }
  /// Slow path: several keys share this hash, from `slot` on. They stand in order. Kept out of
  /// line.
  [[gnu::noinline]] Place placeAmongOthers(std::size_t slot, String8 const& key) const noexcept {
    std::uint32_t const hash = key.hash();
    std::size_t end = table_.lowerBoundFrom(slot, hash + 1);
    while (slot < end) {
      std::size_t const middle = slot + (end - slot) / 2;
      if (entryIn(middle)->key() < key) {
        slot = middle + 1;
      } else {
        end = middle;
      }
    }
    bool const isThere = table_.hash(slot) == hash && entryIn(slot)->key() == key;
    return {slot, isThere ? entryIn(slot) : nullptr};
  }
  /// The first entry behind the iterator's in the map's order, whether or not that is still in it.
  Place placeBehind(IteratorConst const& it) const noexcept {
    if (entryAt(it.slot_) == it.entry_.ptr()) return occupiedFrom(it.slot_ + 1);
    if (tree_) return {0, entryOf(tree_->behind(it.key()))};
    Place const left = place(it.key());
    return occupiedFrom(left.entry_ == nullptr ? left.slot_ : left.slot_ + 1);
  }
  Place occupiedFrom(std::size_t slot) const noexcept {
    std::size_t const occupied = table_.occupiedFrom(slot);
    return {occupied, entryAt(occupied)};
  }

  // The tree, which stands in for the table when that is crowded. The table is empty then.

  /// Also of the empty map, which has neither.
  [[gnu::noinline]] Place placeInTree(String8 const& key) const noexcept {
    return {0, tree_ ? entryOf(tree_->find(key)) : nullptr};
  }
  [[gnu::noinline]] void insertInNewTree(Ptr<Entry> const& entry) {
    auto tree = std::make_unique<HashTree>();
    for (Place at = occupiedFrom(0); at.entry_ != nullptr; at = occupiedFrom(at.slot_ + 1)) {
      tree->insert(at.entry_->key(), *at.entry_);
    }
    tree->insert(entry->key(), *entry);
    table_.clear();
    tree_ = std::move(tree);
  }
  [[gnu::noinline]] void removeFromTree(Place const& at) noexcept {
    Ptr<Entry> const gone(at.entry_);  // may look at the map when it goes
    tree_->remove(gone->key());
    if (tree_->count() == 0) tree_.reset();
  }

  HashTable table_;
  std::unique_ptr<HashTree> tree_;
};

}  // namespace Mox
