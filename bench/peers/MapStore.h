#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "bench/Workload.h"

namespace Kest::Bench {

/// A keyed collection with the promises of the entity's, made of a map and observers that a library
/// provides: lookups and changes are counted, a change that changes nothing is silent, every other
/// one is announced when it is done.
///
/// `Map` is a map of `Port` under `std::string`, `Observers` has `add`, `clear` and `tell`.
template <class Map, class Observers>
class MapStore {
 public:
  using Key = std::string;
  using Record = Port;

  static Key key(std::string const& text) { return text; }
  static Record record(Port const& port) { return port; }

  /// A copy; a default record for an absent key.
  Record lookup(Key const& key) const {
    ++lookupCount_;
    auto const found = map_.find(key);
    return found == map_.end() ? Record() : found->second;
  }

  void put(Record const& record) {
    auto const [at, inserted] = map_.try_emplace(record.ifName, record);
    if (!inserted) {
      if (at->second == record) return;
      at->second = record;
    }
    changed(record.ifName);
  }

  /// Returns what was removed.
  Record del(Key const& key) {
    auto const found = map_.find(key);
    if (found == map_.end()) return Record();
    Record removed = std::move(found->second);
    map_.erase(found);
    changed(key);
    return removed;
  }

  /// Deletes entry by entry. Observers may change the map meanwhile.
  void delAll() {
    if constexpr (requires {
                    map_.bucket_count();
                    map_.begin(0);
                  }) {
      // Its first entry is found at once, and an entry that is taken out keeps its key.
      while (!map_.empty()) {
        auto const entry = map_.extract(map_.begin());
        changed(entry.key());
      }
    } else {
      std::vector<Key> keys;
      keys.reserve(map_.size());
      for (auto const& entry : map_) keys.push_back(entry.first);
      for (Key const& key : keys) {
        if (map_.erase(key) > 0) changed(key);
      }
    }
  }

  std::uint64_t changeCount() const { return changeCount_; }
  std::uint64_t lookupCount() const { return lookupCount_; }

  /// Replaces the observers by `count` that count what they are told.
  void observersAre(std::size_t count) {
    observers_.clear();
    told_.assign(count, 0);
    for (std::size_t i = 0; i < count; ++i) {
      observers_.add([told = &told_[i]](Key const&) { ++*told; }, [] {});
    }
  }
  std::vector<std::uint64_t> const& told() const { return told_; }

 private:
  void changed(Key const& key) {
    ++changeCount_;
    observers_.tell(key);
  }

  Map map_;
  Observers observers_;
  std::vector<std::uint64_t> told_;
  std::uint64_t changeCount_ = 0;
  std::uint64_t mutable lookupCount_ = 0;
};

}  // namespace Kest::Bench
