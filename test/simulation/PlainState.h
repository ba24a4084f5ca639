#pragma once

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "test/simulation/Driver.h"
#include "test/simulation/Plans.h"

/// The whole world once more, as plain values. They can be copied, so an event can be tried first.
namespace Simulation {

inline constexpr int nobody = -1;

struct PlainCell {
  std::int32_t number = 0;
  std::uint32_t entry = 0;  // which entry it is, ever; 0 for none
};

struct PlainEntity {
  std::array<std::array<PlainCell, keyCount>, collectionCount> cells;
  unsigned sliceId = 0;
  std::uint64_t changes = 0;
  std::vector<std::uint8_t> listed;  // observers
};

/// Whether something that is told of a notifier is told now.
struct PlainReaction {
  int notifier = nobody;  // an entity, or a clock
  bool registered = false;
  bool active = true;
  bool zombie = false;
  bool wasRegistered = false;  // when it became inactive
};

/// An observer: one in a place, or a machine's reactor.
struct PlainObserver : PlainReaction {
  unsigned references = 0;  // 0 for none
  int place = nobody;       // of a reactor too
};

struct PlainTimer : PlainReaction {
  bool held = false;
  std::uint32_t generation = 0;
  double timeMin = 0;
};

struct PlainMachine {
  bool exists = false;
  unsigned status = 0;   // an entity
  int reactor = nobody;  // an observer
  int mode = 0;
  bool active = true;
  bool zombie = false;
};

struct PlainIterator {
  int entity = nobody;
  unsigned collection = 0;
  unsigned key = 0;
  std::uint32_t entry = 0;  // 0 at the end
};

/// The innermost delivery under way.
struct PlainAnnouncement {
  unsigned entity = entityCount;
  unsigned what = 0;
  unsigned key = 0;
};

struct PlainState {
  std::array<PlainEntity, entityCount> entities;
  std::array<PlainObserver, 64> observers;
  std::array<int, observerCount> places;
  std::array<PlainTimer, 1 + timerCount> timers;  // the machine's first
  std::array<std::vector<std::uint8_t>, clockCount> listedTimers;
  PlainMachine machine;
  std::array<PlainIterator, iteratorCount> iterators;
  Driver driver;
  Plans plans;

  std::int64_t microseconds = 0;
  std::int64_t wall = 1700000000;
  std::int32_t retrySeconds = 60;
  bool simulated = false;
  bool signalIgnored = false;
  unsigned traceLevels = 0;  // bit n: level n
  unsigned managerClock = 0;
  std::uint32_t entriesMade = 0;

  unsigned handlers = 0;    // of the machine, under way
  int handled = nobody;     // the configuration that the innermost of them began with
  unsigned deliveries = 0;  // under way
  PlainAnnouncement announcement;
  /// Something has happened after which status and driver may differ.
  bool strange = false;
};

/// Puts `value` into `place` until the end of the scope, however the scope is left.
template <class Value>
class Meanwhile {
 public:
  Meanwhile(Value& place, Value value) : place_(place), before_(std::exchange(place, value)) {}
  ~Meanwhile() { place_ = before_; }
  Meanwhile(Meanwhile const&) = delete;
  Meanwhile& operator=(Meanwhile const&) = delete;

 private:
  Value& place_;
  Value before_;
};

}  // namespace Simulation
