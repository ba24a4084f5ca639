#pragma once

#include <string>
#include <vector>

#include "test/simulation/PlainState.h"
#include "test/simulation/Probes.h"
#include "test/support/Journal.h"

namespace Simulation {

/// The process ends, by this signal.
struct ProcessEnds {
  int signal;
};

/// Predicts the effect of each event: the lines of the journal, and the state afterwards.
///
/// It knows nothing of how entities, machine and clocks are built. Each rule is written here once,
/// as plainly as possible.
class PlainWorld {
 public:
  explicit PlainWorld(Probes& probes);

  PlainState state;
  Support::Lines lines;
  /// The numbers of the events that were carried out. Events that make no sense at their moment are
  /// left out, in the real world too: nothing says what they should do.
  std::vector<std::uint32_t> carriedOut;

  /// Throws `ProcessEnds` when the event ends the process; the state means nothing then.
  void take(Event const& event);
  /// How the status of the machine disagrees with the driver; empty when it does not.
  std::string disagreement() const;

 private:
  template <class... Parts>
  void line(Parts const&... parts) {
    lines.push_back(text(parts...));
  }
  void reach(Probe probe) { probes_.reach(probe); }
  void reachIf(bool reached, Probe probe) {
    if (reached) probes_.reach(probe);
  }

  // Events (PlainWorld.cpp).
  void takeNow(Event const& event);
  bool makesSense(Event const& event) const;
  bool machineMakesSense(Event const& event) const;
  void carryOut(Event const& event);
  void carryOutOnEntity(Event const& event);
  void carryOutOnMachine(Event const& event);
  void planned(unsigned place);

  // Entities (PlainEntities.cpp).
  PlainCell& cell(unsigned entity, unsigned collection, unsigned key) {
    return state.entities[entity].cells[collection][key];
  }
  void set(unsigned entity, unsigned collection, unsigned key, std::int32_t number);
  void insert(unsigned entity, unsigned collection, unsigned key, std::int32_t number);
  std::string erase(unsigned entity, unsigned collection, unsigned key);
  void eraseAll(unsigned entity, unsigned collection);
  void sliceIdIs(unsigned entity, unsigned value);
  void changed(unsigned entity, unsigned what, unsigned key);
  void deliver(unsigned entity, unsigned what, unsigned key);
  std::string valueText(unsigned collection, unsigned key, PlainCell const& cell) const;
  void iterate(PlainIterator iterator, unsigned number);
  void step(unsigned number);
  void eraseAt(unsigned number);
  void showIterator(unsigned number);
  bool isThere(PlainIterator const& iterator);

  // Observers (PlainObservers.cpp).
  unsigned newObserver(int place);
  void hold(unsigned observer) { ++state.observers[observer].references; }
  void letGo(unsigned observer);
  void registeredIs(unsigned observer, bool on);
  void notifierIs(unsigned observer, int entity);
  void listedIs(unsigned observer, bool on);
  void tell(unsigned observer, unsigned entity, unsigned what, unsigned key);
  void told(unsigned observer, unsigned what, unsigned key);
  void toldException(unsigned observer, unsigned attribute);
  void carryOutOnObserver(Event const& event);

  // Clocks and timers (PlainClocks.cpp).
  double now() const { return static_cast<double>(state.microseconds) / 1e6; }
  void timerRegisteredIs(unsigned timer, bool on);
  void timerNotifierIs(unsigned timer, int clock);
  void newTimer(unsigned timer, unsigned clock);
  void dropTimer(unsigned timer);
  void pass(std::int64_t microseconds);
  void dispatch(unsigned clock);
  void wake(unsigned timer);

  // The machine itself (PlainMachine.cpp).
  void newMachine(int config, unsigned status);
  void dropMachine();
  void configIs(int config);
  void configDel();
  void clockIs(int clock);
  void clockDel();
  void activeIs(bool on);
  void zombieIs(bool on);
  void modeIs(int mode);
  void handleMode();
  bool armsPoll(int mode) const { return mode == 2 && !state.simulated; }
  void handleInitialized();
  void reactorTold(unsigned observer, unsigned what, unsigned key);
  void reactionActiveIs(PlainReaction& self, bool on);
  void reactionZombieIs(PlainReaction& self, bool on);
  void releaseReactor();
  bool isBound() const { return state.machine.reactor != nobody; }
  PlainObserver& reactor() { return state.observers[static_cast<unsigned>(state.machine.reactor)]; }
  int bound() const;
  std::string boundText() const;

  // Its handlers (PlainHandlers.cpp).
  void handle(unsigned handler, unsigned key);
  void handleSwitchPort(unsigned key);
  int createInterface(unsigned key, std::int32_t number);
  void handleNativeVlan(unsigned key);
  void handleDevice(unsigned key);
  void handleDeviceState(unsigned key);
  void handleTimerExpired();
  void pollDevices();
  void pollDevice(unsigned key, std::int32_t expected);
  void doVerify();
  PlainCell const& configured(unsigned collection, unsigned key) const;
  PlainCell const& recorded(unsigned collection, unsigned key) const;
  void record(unsigned collection, unsigned key, std::int32_t number);
  void forget(unsigned collection, unsigned key);
  int called(Answer const& answer);
  void apply(Effect effect);
  template <class... Parts>
  void trace(unsigned level, unsigned number, char const* handler, Parts const&... message) {
    if ((state.traceLevels >> level & 1U) == 0) return;
    reach(Probe::traced);
    line("trace KestSliceDma ", level, " KestSliceDmaSm:", number, " ", handler, " ", message...);
  }
  [[noreturn]] void assertionFails(char const* place, char const* expression);

  Probes& probes_;
};

}  // namespace Simulation
