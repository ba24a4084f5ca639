#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

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

/// The entries of a `HashMap`, in its order: an open-addressed table, sorted by hash and key.
///
///     home of a hash: its high bits
///     slot      0    1    2    3    4    5    6    7    8
///             | A0 |    | B2 | C2 | D3 |    | E6 | F7 |    |   D3: an entry whose home is slot 3
///
/// Invariants.
///  1. Entries stand in the order of hash, then key.
///  2. An entry stands at its home, or after it with no empty slot in between.
///  3. An empty slot has the hash `noHash`, which no key has. The last slot is always empty, so
///     that every walk ends.
///  4. There are at least twice as many homes as entries.
///
/// Chosen keys. The hash is known, so that somebody can choose keys that all have one home. An
/// insertion that finds no empty slot within `mostMoved` of its home moves all entries to a
/// balanced tree, where they stay until the map is empty again. Chance does not lead there.
class MOX_API HashTable {
 public:
  static constexpr std::size_t mostMoved = 128;

  HashTable() = default;
  HashTable(HashTable const&) = delete;
  HashTable& operator=(HashTable const&) = delete;
  ~HashTable() { clear(); }

  std::size_t count() const noexcept { return slots_.empty() ? tree_.size() : count_; }

  // Null when there is none.
  HashMapEntry* first() const noexcept;
  HashMapEntry* find(String8 const& key) const noexcept {
    if (slots_.empty()) [[unlikely]]
      return findInTree(key);
    Slot const* const slot = slotOf(key);
    return slot == nullptr ? nullptr : slot->entry.ptr();
  }
  /// The first entry after `key`, whether or not that has one.
  HashMapEntry* after(String8 const& key) const noexcept;

  /// An entry of the same key leaves. Without memory the table is as it was.
  void insert(Ptr<HashMapEntry> entry);
  /// Returns what left.
  Ptr<HashMapEntry> remove(String8 const& key) noexcept;
  void clear() noexcept;

 private:
  static constexpr std::uint32_t noHash = 0xFFFFFFFFU;

  struct Slot {
    std::uint32_t hash = noHash;
    Ptr<HashMapEntry> entry = {};
  };

  /// By hash, then by key.
  struct InOrder {
    using is_transparent = void;
    static String8 const& keyOf(String8 const& key) noexcept { return key; }
    static String8 const& keyOf(Ptr<HashMapEntry> const& entry) noexcept { return entry->key(); }
    bool operator()(auto const& a, auto const& b) const noexcept {
      return isBefore(keyOf(a), keyOf(b));
    }
  };
  using Tree = std::set<Ptr<HashMapEntry>, InOrder>;

  static bool isBefore(String8 const& a, String8 const& b) noexcept {
    return a.hash() != b.hash() ? a.hash() < b.hash() : a < b;
  }

  std::size_t home(std::uint32_t hash) const noexcept { return hash >> shift_; }
  std::size_t indexOf(Slot const* slot) const noexcept {
    return static_cast<std::size_t>(slot - slots_.data());
  }

  // There must be slots.

  /// Null when no slot holds `key`.
  Slot const* slotOf(String8 const& key) const noexcept {
    std::uint32_t const hash = key.hash();
    for (Slot const* slot = &slots_[home(hash)]; slot->hash <= hash; ++slot) {
      if (slot->hash == hash && slot->entry->key() == key) return slot;
    }
    return nullptr;
  }
  /// The first slot, empty or not, that stands after `key`.
  Slot const* slotAfter(String8 const& key) const noexcept {
    std::uint32_t const hash = key.hash();
    Slot const* slot = &slots_[home(hash)];
    while (slot->hash < hash) ++slot;
    while (slot->hash == hash && slot->entry->key() <= key) ++slot;
    return slot;
  }
  /// The first entry from `slot` on; null when there is none.
  HashMapEntry* entryFrom(Slot const* slot) const noexcept {
    Slot const* const end = slots_.data() + slots_.size();
    for (; slot != end; ++slot) {
      if (slot->entry) return slot->entry.ptr();
    }
    return nullptr;
  }
  void grow();

  [[gnu::noinline]] HashMapEntry* findInTree(String8 const& key) const noexcept;
  [[gnu::noinline]] HashMapEntry* afterInTree(String8 const& key) const noexcept;
  void insertInTree(Ptr<HashMapEntry>& entry);
  void insertInNewTree(Ptr<HashMapEntry> const& entry);

  std::vector<Slot> slots_;
  std::size_t count_ = 0;  // of entries in slots
  unsigned shift_ = 0;     // makes a home of a hash
  Tree tree_;              // empty while there are slots
};

}  // namespace Mox
