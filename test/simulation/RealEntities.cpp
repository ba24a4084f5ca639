#include <algorithm>

#include "registry/DeviceStateType.h"
#include "registry/EntityTypes.h"
#include "registry/RecordTypes.h"
#include "test/registry/Access.h"
#include "test/simulation/RealWorld.h"

namespace Simulation {

namespace Slice = Hardware::Kest::Slice;

namespace {

template <class C>
typename C::Value valueFor(unsigned entity, Event const& event, Handles const& handles) {
  typename C::Value value{};
  makeValue(value, keyName(C::index, event.index(2)), numberOf(entity, C::index, event.index(3)),
            handles);
  return value;
}

}  // namespace

/// Null for a number that no entity has.
Mox::Ptr<Mox::PtrInterface> RealWorld::entity(unsigned number) const {
  if (number >= entityCount) return nullptr;
  if (isConfig(number)) return configs_[number];
  return statuses_[number - configCount];
}

void RealWorld::carryOutOnEntity(Event const& event) {
  bool const isWalk = event.op >= Op::iterate && event.op <= Op::delStep;
  std::unique_ptr<Walk>* const walk = isWalk ? &walks_[event.index(0)] : nullptr;
  switch (event.op) {
    case Op::sliceId:
      configs_[event.index(0) % configCount]->sliceIdIs(sliceIds[event.index(1) % 3]);
      return;
    case Op::zeroReferences:
      entity(event.index(0))->zeroReferencesIs(true);
      return;
    case Op::step:
      if (*walk) (*walk)->step();
      return line("iterator ", event[0], " ", *walk ? (*walk)->show() : "at the end");
    case Op::delStep:
      return line("returned ", *walk ? (*walk)->del() : "'' 0");
    default:
      break;
  }
  unsigned const number = event.index(isWalk ? 1 : 0);
  unsigned const collection = event.index(isWalk ? 2 : 1);
  auto const visit = [&]<class Entity>(Entity& target) {
    Slice::forEachCollectionOf<Entity>([&]<class C>(C) {
      if (C::index != collection) return;
      if (isWalk) {
        startWalk<C>(target, event);
      } else {
        write<C>(target, event);
      }
    });
  };
  if (isConfig(number)) {
    visit(*configs_[number]);
  } else {
    visit(*statuses_[number - configCount]);
  }
}

template <class C>
void RealWorld::startWalk(typename C::Entity& target, Event const& event) {
  auto& walk = walks_[event.index(0)];
  auto at = event.op == Op::iterate ? C::iterator(target)
                                    : C::iterator(target, keyName(C::index, event.index(3)));
  walk = std::make_unique<WalkThrough<C>>(target, std::move(at));
  line("iterator ", event[0], " ", walk->show());
}

template <class C>
void RealWorld::write(typename C::Entity& target, Event const& event) {
  if (isByName(event)) return writeByName<C>(target, event);
  Mox::String8 const& key = keyName(C::index, event.index(2));
  switch (event.op) {
    case Op::set:
      return C::is(target, key, valueFor<C>(event.index(0), event, handles_));
    case Op::insert:
      C::newEntry(target, key, valueFor<C>(event.index(0), event, handles_));
      return;
    case Op::del:
      return line("returned ", valueText(C::del(target, key)));
    case Op::delAt:
      return line("returned ", valueText(C::del(target, C::iterator(target, key))));
    case Op::delAll:
      return C::delAll(target);
    case Op::notify:
      return C::notify(target, key);
    default:
      return line("returned ", valueText(C::lookup(target, key)));
  }
}

template <class C>
void RealWorld::writeByName(typename C::Entity& target, Event const& event) {
  using Slice::Code;
  char const* const name = collectionNames[C::index];
  Slice::Generic const adapter = Mox::genericOf(Mox::Ptr<typename C::Entity>(&target));
  Slice::Generic const key = Mox::genericOf(keyName(C::index, event.index(2)));
  auto const returned = [&](Slice::Generic const& value) {
    line("returned ", valueText(Slice::valueOf<typename C::Value>(value)));
  };
  switch (event.op) {
    case Op::set:
      return Slice::store(*adapter, name,
                          Mox::genericOf(valueFor<C>(event.index(0), event, handles_)), key);
    case Op::del:
      return returned(Slice::remove(*adapter, name, key));
    case Op::notify:
      Slice::operate(*adapter, name, Code::notify, key);
      return;
    default:
      return returned(Slice::read(*adapter, name, key));
  }
}

/// Compares the content only when it has changed, and every now and then.
template <class Entity>
std::string RealWorld::differenceOf(Entity const& entity, unsigned number,
                                    PlainState const& world) {
  PlainEntity const& plain = world.entities[number];
  auto const observing = static_cast<std::uint32_t>(
      std::count_if(world.observers.begin(), world.observers.end(), [&](PlainObserver const& one) {
        return one.references > 0 && one.notifier == static_cast<int>(number);
      }));
  std::string found;
  if (entity.changeCount() != plain.changes) {
    found += text(entityNames[number], " has counted ", entity.changeCount(), " changes, not ",
                  plain.changes, "\n");
  }
  if (entity.observers().count() != plain.listed.size()) {
    found += text(entityNames[number], " has ", entity.observers().count(), " observers, not ",
                  plain.listed.size(), "\n");
  }
  unsigned const held = world.machine.exists && world.machine.status == number ? 2 : 1;
  if (entity.notifierReferences() != observing || entity.references() != observing + held) {
    found += text(entityNames[number], " has ", entity.references(), " references, ",
                  entity.notifierReferences(), " of them observers'\n");
  }
  if (entity.moxAuditErrors(0) != 0) found += text(entityNames[number], " is not sound\n");
  if (changesSeen_[number] == plain.changes && plain.changes % 8 != 0) return found;
  changesSeen_[number] = plain.changes;
  if constexpr (std::is_same_v<Entity, KestSliceDmaConfig>) {
    if (!(entity.sliceId() == sliceIds[plain.sliceId])) found += "another slice id\n";
  }
  Slice::forEachCollectionOf<Entity>([&]<class C>(C) {
    auto it = C::iterator(entity);
    for (unsigned const key : walkOf(C::index)) {
      PlainCell const& expected = plain.cells[C::index][key];
      if (expected.entry == 0) continue;
      typename C::Value value{};
      makeValue(value, keyName(C::index, key), expected.number, handles_);
      bool const same = it && it.key() == keyName(C::index, key) && it.value() == value;
      if (!same) {
        found += text(entityNames[number], " ", collectionNames[C::index], " differs at '",
                      keyName(C::index, key).view(), "'\n");
        return;
      }
      ++it;
    }
    if (it) found += text(entityNames[number], " ", collectionNames[C::index], " has more\n");
  });
  return found;
}

template std::string RealWorld::differenceOf(KestSliceDmaConfig const&, unsigned,
                                             PlainState const&);
template std::string RealWorld::differenceOf(KestSliceDmaStatus const&, unsigned,
                                             PlainState const&);

}  // namespace Simulation
