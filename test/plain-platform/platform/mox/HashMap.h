#pragma once

#include <cstddef>
#include <map>
#include <utility>

#include "platform/mox/Ptr.h"
#include "platform/mox/String8.h"

namespace Mox {

class HashMapEntry : public PtrInterface {
 public:
  String8 const& key() const { return key_; }

 protected:
  explicit HashMapEntry(String8 key) : key_(std::move(key)) {}

 private:
  String8 key_;
};

/// A sorted map: by hash, then by the key's bytes. An iterator holds its entry and goes on by
/// asking for the first one after that entry's key.
template <class Entry>
class HashMap {
 public:
  class IteratorConst {
   public:
    IteratorConst() = default;

    explicit operator bool() const { return static_cast<bool>(entry_); }
    IteratorConst& operator++() {
      entry_ = entryAt(map_->all_, map_->all_.upper_bound(orderOf(entry_->key())));
      return *this;
    }
    Entry const* operator->() const { return entry_.ptr(); }
    Entry const& operator*() const { return *entry_; }
    String8 const& key() const { return entry_->key(); }

   private:
    friend class HashMap;
    IteratorConst(HashMap const* map, Entry* entry) : map_(map), entry_(entry) {}

    HashMap const* map_ = nullptr;
    Ptr<Entry> entry_;
  };

  ~HashMap() { clear(); }

  std::size_t count() const { return all_.size(); }
  Entry* find(String8 const& key) const { return entryAt(all_, all_.find(orderOf(key))); }

  /// An entry that has the same key leaves the map.
  void insert(Ptr<Entry> const& entry) {
    Ptr<Entry> leaving = entry;
    std::swap(all_[orderOf(entry->key())], leaving);
  }
  Ptr<Entry> remove(String8 const& key) {
    auto const leaving = all_.extract(orderOf(key));
    return leaving ? leaving.mapped() : nullptr;
  }
  void clear() {
    while (!all_.empty()) std::exchange(all_, {});  // an entry that goes may bring in others
  }

  IteratorConst iteratorConst() const { return {this, entryAt(all_, all_.begin())}; }
  IteratorConst iteratorConst(String8 const& key) const { return {this, find(key)}; }

 private:
  using Order = std::pair<std::uint32_t, String8>;
  using All = std::map<Order, Ptr<Entry>>;

  static Order orderOf(String8 const& key) { return {key.hash(), key}; }
  static Entry* entryAt(All const& all, typename All::const_iterator at) {
    return at == all.end() ? nullptr : at->second.ptr();
  }

  All all_;
};

}  // namespace Mox
