#pragma once

#include <absl/container/flat_hash_map.h>

#include <cstdint>
#include <string>

#include "bench/peers/CallbackList.h"
#include "bench/peers/Collections.h"
#include "platform/bridging/SwitchportMode.h"

namespace Kest::Bench {

/// A collection of plain values under names, counted and announced as `MapStore` does.
template <class Value>
class FlatValues {
 public:
  Value lookup(std::string const& key) const {
    ++lookupCount_;
    auto const found = map_.find(key);
    return found == map_.end() ? Value() : found->second;
  }

  void put(std::string const& key, Value const& value) {
    auto const [at, inserted] = map_.try_emplace(key, value);
    if (!inserted) {
      if (at->second == value) return;
      at->second = value;
    }
    changed(key);
  }

  void del(std::string const& key) {
    if (map_.erase(key) > 0) changed(key);
  }

  CallbackList& observers() { return observers_; }
  std::uint64_t changeCount() const { return changeCount_; }

 private:
  void changed(std::string const& key) {
    ++changeCount_;
    observers_.tell(key);
  }

  absl::flat_hash_map<std::string, Value> map_;
  CallbackList observers_;
  std::uint64_t changeCount_ = 0;
  std::uint64_t mutable lookupCount_ = 0;
};

/// What a port's handler does, on flat maps: it observes a configuration, calls the driver as the
/// library's state machine does, with the same pauses, and writes down what it did.
class FlatMachine {
 public:
  struct Outcome {
    std::string ifName;
    bool created = false;
    friend bool operator==(Outcome const&, Outcome const&) = default;
  };

  FlatMachine();
  FlatMachine(FlatMachine const&) = delete;
  FlatMachine& operator=(FlatMachine const&) = delete;

  // The configuration.
  Flat switchPorts;
  FlatValues<std::uint16_t> nativeVlans;
  FlatValues<Bridging::SwitchportMode> switchportModes;

  // The status.
  FlatValues<Outcome> created;
  FlatValues<std::uint16_t> setVlans;
  FlatValues<Bridging::SwitchportMode> setModes;

 private:
  void handleSwitchPort(std::string const& ifName);
  void createInterface(Port const& port);
  void handleNativeVlan(std::string const& ifName);
};

}  // namespace Kest::Bench
