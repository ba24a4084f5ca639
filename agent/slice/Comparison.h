#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>

#include "agent/access/Entities.h"
#include "agent/access/PiecewiseWork.h"

namespace Kest::Agent {

/// One step from a configuration towards another.
struct Change {
  std::string text;                    // for people, as in "+ device fap0"
  std::function<void(Config&)> apply;  // one mutator of the entity
  bool createsPort;                    // takes the driver a while
};

struct Changes {
  std::deque<Change> steps;
  std::size_t unchanged = 0;  // entries that both configurations hold alike
  std::size_t portsSet = 0;   // of the steps, those that create a port
  std::size_t portsGone = 0;  // of the steps, those that remove one
};

/// Whether a device is registered anew, and so left down, as its record becomes `now`: then its
/// state is to be announced again.
/// @param before null when there was none
bool isReregistered(Config::Device const* before, Config::Device const& now);

/// Finds the steps that turn `running` into `wanted`, each by one of the entity's mutators, so that
/// only what differs is announced. They come in the order that the state machine's rules need:
///
///  - a device before its state, and before the ports that it carries;
///  - a device's state announced again after a change of the device, which leaves it down;
///  - a device removed before its state: a registered device must always have one;
///  - native VLANs and modes before the ports that appear, which are then programmed once;
///  - native VLANs and modes before the ports that go, so that nothing stays recorded for them.
///
/// Within a collection they come in the order in which people number things.
class Comparison {
 public:
  Comparison(Mox::Ptr<Config const> running, Mox::Ptr<Config const> wanted);
  Comparison(Comparison const&) = delete;
  Comparison& operator=(Comparison const&) = delete;

  /// Goes on for a millisecond at most; false when all steps have been found. A change of either
  /// configuration in between shows in entries that have not been compared yet.
  bool goOn();

  /// About how many bytes of memory the keys take that are still to be compared.
  std::size_t held() const { return work_.held(); }

  /// What has been found. The steps may be taken out as they are found.
  Changes& changes() noexcept { return changes_; }

 private:
  void compareSliceId();
  template <class Collection>
  void removals();
  template <class Collection>
  void settings();
  template <class Collection>
  void compare(Mox::String8 const& key);
  template <class Collection>
  void unchanged(Mox::String8 const& key);
  bool leavesItDown(Mox::String8 const& devName) const;
  void add(std::string text, std::function<void(Config&)> apply, bool createsPort = false);

  Mox::Ptr<Config const> running_;
  Mox::Ptr<Config const> wanted_;
  Changes changes_;
  PiecewiseWork work_;
};

/// All of them at once.
Changes changesBetween(Config const& running, Config const& wanted);

}  // namespace Kest::Agent
