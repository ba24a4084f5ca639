#include "registry/SmType.h"
#include "test/registry/Access.h"
#include "test/simulation/RealWorld.h"

namespace Simulation {

namespace Slice = Hardware::Kest::Slice;

using Hardware::Kest::SmMode;

namespace {

template <class Entity>
std::string nameText(Mox::Ptr<Entity> const& entity) {
  return entity ? std::string(entity->name().string().view()) : "none";
}

/// The name of the object that a generic value refers to.
std::string nameText(Slice::Generic const& reference) {
  auto const& adapter = static_cast<Mox::GenericIfPtrInterface const&>(*reference);
  return nameText(Mox::ptrCast<Mox::Entity const>(adapter.object()));
}

/// The member of that number, or null.
template <class Object, std::size_t N>
Mox::Ptr<Object> numbered(std::array<Mox::Ptr<Object>, N> const& all, unsigned number) {
  return number < N ? all[number] : nullptr;
}

struct Handler {
  char const* name;
  void (Slice::KestSliceDmaSm::*handle)(Mox::String);
};
constexpr Handler handlers[] = {
    {"handleSwitchPort", &Slice::KestSliceDmaSm::handleSwitchPort},
    {"handleNativeVlan", &Slice::KestSliceDmaSm::handleNativeVlan},
    {"handleDevice", &Slice::KestSliceDmaSm::handleDevice},
    {"handleDeviceState", &Slice::KestSliceDmaSm::handleDeviceState},
};

Mox::String8 const& handledKey(Event const& event) {
  return keyName(event[0] < 2 ? switchPorts : devices, event.index(1));
}

}  // namespace

void RealWorld::newMachine(Event const& event) {
  auto const& status = statuses_[event.index(1)];
  if (event.flag(2)) {
    Slice::forEachCollectionOf<KestSliceDmaStatus>([&]<class C>(C) { C::delAll(*status); });
  }
  sm_ = nullptr;
  Mox::Ptr<KestSliceDmaConfig const> const config = numbered(configs_, event.index(0));
  if (!event.flag(3)) {
    sm_ = Slice::kestSliceDmaSmFactory(config, status);
    return;
  }
  Slice::List const arguments = Slice::listOf(Mox::genericOf(config), Mox::genericOf(status));
  Slice::Generic const made = Sm::_fwkType()->genericIfNew(arguments);
  sm_ = Mox::ptrCast<Sm>(static_cast<Mox::GenericIfPtrInterface const&>(*made).object());
}

void RealWorld::carryOutOnMachine(Event const& event) {
  if (isByName(event) && event.op != Op::machine) {
    try {
      carryOutByName(event);
    } catch (Mox::GenericAccessException const& refusal) {
      line("refused: ", refusal.what());
    }
    return;
  }
  switch (event.op) {
    case Op::machine:
      return newMachine(event);
    case Op::machineDrop:
      sm_ = nullptr;
      return;
    case Op::config:
      return sm_->configIs(numbered(configs_, event.index(0)));
    case Op::configDel:
      return line("returned ", nameText(sm_->configDel()));
    case Op::clock:
      return sm_->stateTimerIs(numbered(clocks_, event.index(0)));
    case Op::clockDel:
      return line("returned ", nameText(sm_->stateTimerDel()));
    case Op::mode:
      return sm_->modeIs(static_cast<SmMode>(event[0]));
    case Op::active:
      return sm_->hasNotificationActiveIs(event.flag(0));
    case Op::zombie:
      return sm_->moxDoZombieReactors(event.flag(0));
    case Op::reactor:
      if (event.flag(1)) return sm_->stateTimerReactor()->isRegisteredNotifieeIs(event.flag(0));
      return sm_->configReactor()->isRegisteredNotifieeIs(event.flag(0));
    case Op::initialized:
      return sm_->handleInitialized();
    case Op::handle:
      return (sm_.ptr()->*handlers[event.index(0)].handle)(handledKey(event));
    case Op::verify:
      return sm_->doVerify();
    case Op::poll:
      return sm_->handleTimerExpired();
    default:
      return sm_->handleMode();
  }
}

void RealWorld::carryOutByName(Event const& event) {
  Slice::Generic const machine = Mox::genericOf(sm_);
  switch (event.op) {
    case Op::config: {
      auto const config = numbered(configs_, event.index(0));
      if (config) return Slice::store(*machine, "config", Mox::genericOf(config));
      return line("returned ", nameText(Slice::remove(*machine, "config")));
    }
    case Op::configDel:
      return line("returned ", nameText(Slice::remove(*machine, "config")));
    case Op::clock:
      return Slice::store(*machine, "stateTimer",
                          Mox::genericOf(numbered(clocks_, event.index(0))));
    case Op::clockDel:
      return line("returned ", nameText(Slice::remove(*machine, "stateTimer")));
    case Op::mode:
      return Slice::store(*machine, "mode", Mox::genericOf(static_cast<SmMode>(event[0])));
    case Op::active:
      return Slice::invoke(*machine, "hasNotificationActiveIs", Mox::genericOf(event.flag(0)));
    case Op::zombie:
      return Slice::invoke(*machine, "moxDoZombieReactors", Mox::genericOf(event.flag(0)));
    case Op::initialized:
      return Slice::invoke(*machine, "handleInitialized");
    case Op::handle:
      return Slice::invoke(*machine, handlers[event.index(0)].name,
                           Mox::genericOf(handledKey(event)));
    case Op::verify:
      return Slice::invoke(*machine, "doVerify");
    case Op::poll:
      return Slice::invoke(*machine, "handleTimerExpired");
    default:
      return Slice::invoke(*machine, "handleMode");
  }
}

std::string RealWorld::differenceOf(PlainMachine const& plain, PlainState const& world) const {
  if (static_cast<bool>(sm_) != plain.exists) return "there is a machine too many or too few\n";
  if (!sm_) return {};
  std::string found;
  auto const expect = [&](char const* what, bool same) {
    if (!same) found += text("the machine has another ", what, "\n");
  };
  int const config = plain.reactor == nobody
                         ? nobody
                         : world.observers[static_cast<unsigned>(plain.reactor)].notifier;
  PlainTimer const& timer = world.timers[0];
  expect("configuration", sm_->config() == numbered(configs_, static_cast<unsigned>(config)));
  expect("clock", sm_->stateTimer() == numbered(clocks_, static_cast<unsigned>(timer.notifier)));
  expect("wake-up time",
         !sm_->stateTimerReactor() || sm_->stateTimerReactor()->timeMin() == timer.timeMin);
  expect("mode", static_cast<int>(sm_->mode()) == plain.mode);
  expect("activity", sm_->hasNotificationActive() == plain.active);
  expect("zombie flag", sm_->moxMarkedForDeletion() == plain.zombie);
  expect("status", sm_->status() == statuses_[plain.status - configCount]);
  expect("number of references", sm_->references() == 1);
  return found;
}

}  // namespace Simulation
