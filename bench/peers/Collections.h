#pragma once

#include <absl/container/flat_hash_map.h>
#include <absl/container/node_hash_map.h>

#include <string>
#include <unordered_map>

#include "bench/peers/CallbackList.h"
#include "bench/peers/MapStore.h"
#include "bench/peers/Signals.h"

/// What users would otherwise build the collection on.
namespace Kest::Bench {

struct Flat : MapStore<absl::flat_hash_map<std::string, Port>, CallbackList> {
  static constexpr char const* name = "flat";
};

struct Node : MapStore<absl::node_hash_map<std::string, Port>, CallbackList> {
  static constexpr char const* name = "node";
};

struct Unordered : MapStore<std::unordered_map<std::string, Port>, CallbackList> {
  static constexpr char const* name = "unordered";
};

struct UnorderedSignals2 : MapStore<std::unordered_map<std::string, Port>, BoostSignal> {
  static constexpr char const* name = "signals2";
};

struct UnorderedSigc : MapStore<std::unordered_map<std::string, Port>, SigcSignal> {
  static constexpr char const* name = "sigc++";
};

}  // namespace Kest::Bench
