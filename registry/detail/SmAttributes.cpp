#include "registry/detail/SmAttributes.h"

#include <utility>

#include "model/detail/SliceCollections.h"
#include "registry/EntityTypes.h"
#include "registry/detail/Arguments.h"
#include "sm/detail/Points.h"

namespace Hardware::Kest::Slice::detail {

namespace {

using Mox::GenericIf;
using Mox::genericOf;
using Sm = KestSliceDmaSm;

constexpr char const* stateTimerName = "stateTimer";
constexpr char const* modeName = "mode";

// What a handler works on; without it the handler would fail on a null reference.

void needConfig(Sm const& sm) {
  if (!sm.config()) GenericIf::throwNotBoundException(configArgument);
}

void needTimer(Sm const& sm) {
  if (!sm.stateTimer()) GenericIf::throwNotBoundException(stateTimerName);
}

void needTimerToPoll(Sm const& sm) {
  if (Sm::armsPoll(sm.mode())) needTimer(sm);
}

void needNothing(Sm const&) {}

template <class T>
Mox::Attribute attribute(char const* name, Mox::AttributeId id, Mox::AttributeFlags flags = 0) {
  return {name, id, Mox::TypeOf<T>::type(), Mox::IntrospectionClass::scalar,
          Mox::attributeVisible | flags};
}

Mox::Attribute handlerAttribute(char const* name, Mox::AttributeId id,
                                std::vector<Mox::Argument> arguments) {
  Mox::Attribute handler{name, id, Mox::untypedPointer(), Mox::IntrospectionClass::handler};
  handler.arguments = std::move(arguments);
  return handler;
}

/// A handler without arguments.
template <void (Sm::*handler)(), void (*need)(Sm const&) = needNothing>
SmAttribute call(Handler const& point, Mox::AttributeId id) {
  return {.attribute = handlerAttribute(point.name, id, {}),
          .invoke = [](Mox::Attribute const& self, Sm& sm, GenericIf const* list) {
            Arguments(list, self);
            need(sm);
            (sm.*handler)();
          }};
}

/// A handler that takes the key of what changed.
template <void (Sm::*handler)(Mox::String)>
SmAttribute callWithKey(Handler const& point, Mox::AttributeId id, char const* argument) {
  return {.attribute = handlerAttribute(point.name, id,
                                        {{argument, Mox::TypeOf<Mox::String>::type()->fullName()}}),
          .invoke = [](Mox::Attribute const& self, Sm& sm, GenericIf const* list) {
            Mox::String const key = Arguments(list, self).value<Mox::String>(0);
            needConfig(sm);
            (sm.*handler)(key);
          }};
}

/// An operation of the framework on every object that reacts.
template <void (Sm::*operation)(bool)>
SmAttribute callWithFlag(char const* name, Mox::AttributeId id, char const* argument) {
  return {
      .attribute = handlerAttribute(name, id, {{argument, Mox::TypeOf<bool>::type()->fullName()}}),
      .invoke = [](Mox::Attribute const& self, Sm& sm, GenericIf const* list) {
        (sm.*operation)(Arguments(list, self).value<bool>(0));
      }};
}

/// The adapter of what is bound. It is made before `unbind` lets go, since afterwards there may be
/// no memory for it.
template <class T, class Unbind>
std::unique_ptr<GenericIf> unbound(Mox::Ptr<T> const& bound, Unbind const& unbind) {
  auto adapter = genericOf(bound);
  unbind();
  return adapter;
}

SmAttribute activity() {
  return {.attribute = attribute<Mox::ActivityConfig>("moxFwkActivity", 0),
          .read = [](Sm const& sm) { return genericOf(sm.moxFwkActivity()); }};
}

SmAttribute config() {
  return {.attribute = attribute<KestSliceDmaConfig>(configArgument, 130),
          .read = [](Sm const& sm) { return genericOf(sm.config()); },
          .remove = [](Sm& sm) { return unbound(sm.config(), [&] { sm.configDel(); }); }};
}

/// Read-only as an attribute, and so what it refers to is read-only here.
SmAttribute status() {
  return {.attribute = attribute<KestSliceDmaStatus>(statusArgument, 131),
          .read = [](Sm const& sm) {
            return genericOf(Mox::Ptr<KestSliceDmaStatus const>(sm.status()));
          }};
}

SmAttribute pollPeriod() {
  return {.attribute = attribute<double>("pollPeriod", 141),
          .read = [](Sm const& sm) { return genericOf(sm.pollPeriod()); }};
}

SmAttribute stateTimer() {
  return {.attribute = attribute<Mox::Clock>(stateTimerName, 143, Mox::attributeWritable),
          .read = [](Sm const& sm) { return genericOf(sm.stateTimer()); },
          .store =
              [](Sm& sm, GenericIf const* value) {
                sm.stateTimerIs(held<Mox::Ptr<Mox::Clock const>>(value, stateTimerName));
              },
          .remove = [](Sm& sm) { return unbound(sm.stateTimer(), [&] { sm.stateTimerDel(); }); }};
}

SmAttribute mode() {
  return {.attribute = attribute<SmMode>(modeName, 145, Mox::attributeWritable),
          .read = [](Sm const& sm) { return genericOf(sm.mode()); },
          .store =
              [](Sm& sm, GenericIf const* value) {
                SmMode const mode = held<SmMode>(value, modeName);
                if (mode != sm.mode() && Sm::armsPoll(mode)) needTimer(sm);
                sm.modeIs(mode);
              }};
}

}  // namespace

std::vector<SmAttribute> const& smAttributes() {
  constexpr char const* ifName = SwitchPortCollection::keyName;
  constexpr char const* devName = DeviceCollection::keyName;
  // 128 and 129, below the machine's own, are operations of the framework; the numbers that are
  // left out belong to the arguments of the handlers before them.
  static std::vector<SmAttribute> const all{
      activity(),
      config(),
      status(),
      callWithKey<&Sm::handleSwitchPort>(handler::handleSwitchPort, 132, ifName),
      callWithKey<&Sm::handleNativeVlan>(handler::handleNativeVlan, 134, "ifname"),
      callWithKey<&Sm::handleDevice>(handler::handleDevice, 137, devName),
      callWithKey<&Sm::handleDeviceState>(handler::handleDeviceState, 139, devName),
      pollPeriod(),
      call<&Sm::handleTimerExpired, needTimer>(handler::handleTimerExpired, 142),
      stateTimer(),
      call<&Sm::handleMode, needTimerToPoll>(handler::handleMode, 144),
      mode(),
      call<&Sm::doVerify, needConfig>(handler::doVerify, 146),
      call<&Sm::handleInitialized>(handler::handleInitialized, 147),
      callWithFlag<&Sm::hasNotificationActiveIs>("hasNotificationActiveIs", 128,
                                                 "hasNotificationActiveIs"),
      callWithFlag<&Sm::moxDoZombieReactors>("moxDoZombieReactors", 129, "on"),
  };
  return all;
}

}  // namespace Hardware::Kest::Slice::detail
