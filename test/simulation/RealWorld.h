#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "sm/KestSliceDmaSm.h"
#include "test/simulation/Capture.h"
#include "test/simulation/DriverCalls.h"
#include "test/simulation/PlainState.h"
#include "test/simulation/RealParts.h"
#include "test/support/TraceJournal.h"
#include "test/support/VirtualTime.h"

namespace Simulation {

/// The library between observers, clocks and a driver. The journal shows what events do to it.
class RealWorld final : private Listener {
 public:
  /// @param without a kind of event that does not happen here
  explicit RealWorld(std::optional<Op> without);
  ~RealWorld();
  RealWorld(RealWorld const&) = delete;
  RealWorld& operator=(RealWorld const&) = delete;

  /// @param carriedOut the numbers of the events that make sense now; others are left out
  void take(Event const& event, std::vector<std::uint32_t> const& carriedOut);

  Support::Lines takenLines() { return journal_.taken(); }
  /// From now on the journal goes to standard error too, as does what the library writes there.
  void goOnAloud();
  void mend() { driver_.mend(); }

  /// How this differs from the plain world; empty when it does not.
  std::string differenceFrom(PlainState const& plain);

  /// The objects that are left when no world is; empty when there are none.
  static std::string leftOver();

 private:
  using Sm = Hardware::Kest::Slice::KestSliceDmaSm;

  // Events (RealWorld.cpp).
  template <class... Parts>
  void line(Parts const&... parts) {
    journal_.add(text(parts...));
  }
  void told(unsigned place, std::string what) override;
  void takeNow(Event const& event);
  void carryOut(Event const& event);
  void carryOutOnObserver(Event const& event);
  template <class Entity>
  void carryOutOn(Mox::Ptr<Observer<Entity>>& held, Event const& event, unsigned place);
  void newTimer(unsigned timer, unsigned clock, double timeMin);
  void apply(Effect effect);

  // Entities (RealEntities.cpp).
  Mox::Ptr<Mox::PtrInterface> entity(unsigned number) const;
  void carryOutOnEntity(Event const& event);
  template <class C>
  void write(typename C::Entity& entity, Event const& event);
  template <class C>
  void writeByName(typename C::Entity& entity, Event const& event);
  template <class C>
  void startWalk(typename C::Entity& entity, Event const& event);
  template <class Entity>
  std::string differenceOf(Entity const& entity, unsigned number, PlainState const& world);

  // The machine (RealMachine.cpp).
  void carryOutOnMachine(Event const& event);
  void carryOutByName(Event const& event);
  void newMachine(Event const& event);
  std::string differenceOf(PlainMachine const& plain, PlainState const& world) const;

  Support::Journal journal_;
  Support::VirtualTime time_{journal_};
  Capture capture_{journal_};
  Support::TraceJournal traceJournal_{journal_};
  std::ostream traceStream_{&traceJournal_};
  Driver driver_;
  DriverCalls calls_{driver_, journal_, [this](Effect effect) { apply(effect); }};
  Plans plans_;
  std::optional<Op> without_;
  std::vector<std::uint32_t> const* carriedOut_ = nullptr;

  Handles handles_;
  std::array<Mox::Ptr<KestSliceDmaConfig>, configCount> configs_;
  std::array<Mox::Ptr<KestSliceDmaStatus>, entityCount - configCount> statuses_;
  std::array<std::uint64_t, entityCount> changesSeen_{};
  std::array<Mox::Ptr<Mox::Clock>, clockCount> clocks_;
  std::array<Mox::Ptr<Observer<KestSliceDmaConfig>>, configObserverCount> configObservers_;
  std::array<Mox::Ptr<Observer<KestSliceDmaStatus>>, observerCount - configObserverCount>
      statusObservers_;
  std::array<Mox::Ptr<Timer>, timerCount> timers_;
  std::array<std::unique_ptr<Walk>, iteratorCount> walks_;
  Mox::Ptr<Sm> sm_;
};

}  // namespace Simulation
