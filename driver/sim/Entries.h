#pragma once

#include <map>
#include <optional>
#include <set>
#include <utility>

#include "platform/mox/String8.h"

namespace Hardware::Kest::Sim {

/// Values by key, which remember which of them have changed.
template <class Value>
class Entries {
 public:
  using Map = std::map<Mox::String8, Value>;
  /// Values as they are now; none: the entry has gone.
  using Changed = std::map<Mox::String8, std::optional<Value>>;

  Entries() = default;
  explicit Entries(Map all) noexcept : all_(std::move(all)) {}

  Map const& all() const noexcept { return all_; }
  /// Null when there is no such entry; valid until the next change.
  Value const* find(Mox::String8 const& key) const {
    auto const at = all_.find(key);
    return at == all_.end() ? nullptr : &at->second;
  }

  /// Does nothing if the entry has that value already.
  void put(Mox::String8 const& key, Value value) {
    auto const [at, isNew] = all_.try_emplace(key);
    if (!isNew && at->second == value) return;
    at->second = std::move(value);
    changed_.insert(key);
  }
  /// False: there is no such entry.
  bool remove(Mox::String8 const& key) {
    if (all_.erase(key) == 0) return false;
    changed_.insert(key);
    return true;
  }

  /// What has changed since this was last asked.
  Changed takeChanged() {
    Changed taken;
    for (Mox::String8 const& key : std::exchange(changed_, {})) {
      Value const* const value = find(key);
      taken.emplace(key, value == nullptr ? std::nullopt : std::optional<Value>(*value));
    }
    return taken;
  }

  bool operator==(Entries const& other) const { return all_ == other.all_; }

 private:
  Map all_;
  std::set<Mox::String8> changed_;
};

}  // namespace Hardware::Kest::Sim
