#pragma once

#include <array>
#include <optional>

#include "test/simulation/Event.h"

namespace Simulation {

/// Thrown by observers in their handlers and by the driver in its operations.
struct Thrown {};

/// What observers and timers do when they are told: for each place a few events in order, each
/// once. So whatever they set off comes to an end.
class Plans {
 public:
  /// Ignored when the place has enough plans.
  void add(Event const& event) {
    Queue& queue = queues_[static_cast<std::size_t>(event.planner)];
    if (queue.count == queue.events.size()) return;
    queue.events[queue.count] = event;
    queue.events[queue.count++].planner = -1;
  }

  /// The place is told of something; returns what it does then, if anything.
  std::optional<Event> told(std::size_t place) {
    Queue& queue = queues_[place];
    if (queue.count == 0) return std::nullopt;
    if (queue.events[0].after > 0) {
      --queue.events[0].after;
      return std::nullopt;
    }
    Event const due = queue.events[0];
    for (std::size_t i = 1; i < queue.count; ++i) queue.events[i - 1] = queue.events[i];
    --queue.count;
    return due;
  }

 private:
  struct Queue {
    std::array<Event, 4> events;
    std::size_t count = 0;
  };
  std::array<Queue, plannerCount> queues_;
};

}  // namespace Simulation
