#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "platform/mox/Ptr.h"
#include "platform/mox/String8.h"

namespace Mox {

class HashMapCore;

/// Base of what a `HashMap` holds: a counted object under an immutable key.
class MOX_API HashMapEntry : public PtrInterface {
 public:
  String8 const& key() const noexcept { return key_; }
  ~HashMapEntry() override;

 protected:
  explicit HashMapEntry(String8 key) noexcept : key_(std::move(key)) {}

 private:
  friend class HashMapCore;

  String8 key_;
  HashMapEntry* next_ = nullptr;
  HashMapCore const* map_ = nullptr;
};

/// The part of `HashMap` that does not depend on the entry type.
///
/// Invariants.
///  1. Entries are in the total order of (hash of the key, bytes of the key). A bucket is a run of
///     that order, chosen by the hash's high bits, so walking the buckets walks the order.
///  2. `entry.map_` is this map exactly while the entry is in it; then `entry.next_` is its
///     successor in its bucket, or null.
///  3. The map holds one reference to each entry.
class MOX_API HashMapCore {
 public:
  HashMapCore() = default;
  HashMapCore(HashMapCore const&) = delete;
  HashMapCore& operator=(HashMapCore const&) = delete;
  ~HashMapCore() { clear(); }

  std::size_t count() const noexcept { return count_; }
  bool has(HashMapEntry const& entry) const noexcept { return entry.map_ == this; }

  HashMapEntry* find(String8 const& key) const noexcept;
  /// `entry` must be in no map. An entry that has its key already leaves the map. When allocation
  /// fails the map is as it was.
  void insert(Ptr<HashMapEntry> const& entry);
  /// `entry` must be in this map.
  void remove(HashMapEntry& entry) noexcept;
  void clear() noexcept;

  HashMapEntry* first() const noexcept;
  /// The first entry behind `entry` in the map's order, whether or not `entry` is still in it.
  HashMapEntry* after(HashMapEntry const& entry) const noexcept;

 private:
  HashMapEntry** slot(String8 const& key) const noexcept;
  std::size_t bucketOf(String8 const& key) const noexcept { return key.hash() >> shift_; }
  HashMapEntry* firstFrom(std::size_t bucket) const noexcept;
  void grow();

  mutable std::vector<HashMapEntry*> buckets_;  // a power of two of them, or none
  unsigned shift_ = 0;
  std::size_t count_ = 0;
};

/// Map of counted entries (`Entry` derives from `HashMapEntry`) under string keys.
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
      entry_ = static_cast<Entry*>(map_->after(*entry_));
      return *this;
    }
    Entry const* operator->() const noexcept { return entry_.ptr(); }
    Entry const& operator*() const noexcept { return *entry_; }
    String8 const& key() const noexcept { return entry_->key(); }

   private:
    friend class HashMap;
    IteratorConst(HashMapCore const* map, HashMapEntry* entry) noexcept
        : map_(map), entry_(static_cast<Entry*>(entry)) {}

    HashMapCore const* map_ = nullptr;
    Ptr<Entry> entry_;
  };

  std::size_t count() const noexcept { return core_.count(); }
  Entry* find(String8 const& key) const noexcept { return static_cast<Entry*>(core_.find(key)); }
  /// `entry` must be in no map; one that has its key already leaves the map.
  void insert(Ptr<Entry> const& entry) { core_.insert(entry); }
  void remove(Entry& entry) noexcept { core_.remove(entry); }
  void clear() noexcept { core_.clear(); }

  IteratorConst iteratorConst() const noexcept { return {&core_, core_.first()}; }
  /// Starts at `key`; designates nothing when the key is absent.
  IteratorConst iteratorConst(String8 const& key) const noexcept {
    return {&core_, core_.find(key)};
  }
  /// The entry that `it` designates, or null when it designates none or one that has left the map.
  Entry* entry(IteratorConst const& it) const noexcept {
    return it && core_.has(*it.entry_) ? it.entry_.ptr() : nullptr;
  }

 private:
  HashMapCore core_;
};

}  // namespace Mox
