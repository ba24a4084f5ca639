#pragma once

#include <cstddef>
#include <utility>

#include "platform/mox/HashTable.h"
#include "platform/mox/Ptr.h"
#include "platform/mox/String8.h"

namespace Mox {

/// Map of counted entries under string keys. `Entry` derives from `HashMapEntry`.
///
/// Order. By key hash, then by the key's bytes: independent of insertion order, the same on every
/// machine, meaningless to callers.
///
/// Iterators are resumable: an iterator holds a reference to its entry, and stepping goes to the
/// first entry after it in the map's order, whatever was inserted or removed since, its own entry
/// included. So a walk meets every entry that stays, no entry twice, and ends. The map must outlive
/// its iterators.
///
/// Cost. An ordinary key is found at once. No key costs more than the logarithm of their number,
/// even if somebody who knows the hash has chosen the keys (`HashTable`).
template <class Entry>
class HashMap {
 public:
  class IteratorConst {
   public:
    IteratorConst() = default;

    explicit operator bool() const noexcept { return static_cast<bool>(entry_); }
    IteratorConst& operator++() noexcept {
      entry_ = entryOf(table_->after(entry_->key()));
      return *this;
    }
    Entry const* operator->() const noexcept { return entry_.ptr(); }
    Entry const& operator*() const noexcept { return *entry_; }
    String8 const& key() const noexcept { return entry_->key(); }

   private:
    friend class HashMap;
    IteratorConst(HashTable const& table, Entry* entry) noexcept : table_(&table), entry_(entry) {}

    HashTable const* table_ = nullptr;
    Ptr<Entry> entry_;
  };

  std::size_t count() const noexcept { return table_.count(); }
  /// Null when no entry has the key.
  Entry* find(String8 const& key) const noexcept { return entryOf(table_.find(key)); }

  /// An entry that has the same key leaves the map. Without memory the map is as it was.
  void insert(Ptr<Entry> const& entry) { table_.insert(entry); }
  /// Returns the entry that leaves the map; null when no entry has the key.
  Ptr<Entry> remove(String8 const& key) noexcept { return entryOf(table_.remove(key).ptr()); }
  void clear() noexcept { table_.clear(); }

  IteratorConst iteratorConst() const noexcept { return {table_, entryOf(table_.first())}; }
  /// Starts at `key`; designates nothing when the key is absent.
  IteratorConst iteratorConst(String8 const& key) const noexcept { return {table_, find(key)}; }

 private:
  static Entry* entryOf(HashMapEntry* entry) noexcept { return static_cast<Entry*>(entry); }

  HashTable table_;
};

}  // namespace Mox
