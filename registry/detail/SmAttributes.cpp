#include "registry/detail/SmAttributes.h"

#include <functional>
#include <type_traits>
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

// What a handler works on; without it the handler would fail on a null reference.

void needConfig(Sm const& sm) {
  if (!sm.config()) GenericIf::throwNotBoundException("config");
}

void needTimer(Sm const& sm) {
  if (!sm.stateTimer()) GenericIf::throwNotBoundException("stateTimer");
}

void needTimerToPoll(Sm const& sm) {
  if (Sm::armsPoll(sm.mode())) needTimer(sm);
}

void needNothing(Sm const&) {}

/// A handler without arguments.
template <void (Sm::*handler)(), void (*need)(Sm const&) = needNothing>
SmAttribute call(Handler const& point, Mox::AttributeId id) {
  return {.name = point.name,
          .id = id,
          .type = Mox::untypedPointer(),
          .invoke = [](SmAttribute const& self, Sm& sm, GenericIf const* list) {
            Arguments(list, self.name, {});
            need(sm);
            (sm.*handler)();
          }};
}

/// A handler with one argument. What takes the key of a change works on the configuration.
template <class Argument, void (Sm::*handler)(Argument)>
SmAttribute callWith(char const* name, Mox::AttributeId id, char const* argument) {
  return {.name = name,
          .id = id,
          .type = Mox::untypedPointer(),
          .argument = argument,
          .argumentType = Mox::TypeOf<Argument>::type(),
          .invoke = [](SmAttribute const& self, Sm& sm, GenericIf const* list) {
            Arguments const arguments(list, self.name, {&self.argument, 1});
            auto const& value = arguments.value<Argument>(0);
            if constexpr (std::is_same_v<Argument, Mox::String>) needConfig(sm);
            (sm.*handler)(value);
          }};
}

template <void (Sm::*handler)(Mox::String)>
SmAttribute callWithKey(Handler const& point, Mox::AttributeId id, char const* argument) {
  return callWith<Mox::String, handler>(point.name, id, argument);
}

/// The adapter of what is bound. It is made before `unbind` lets go, since afterwards there may be
/// no memory for it.
template <class T, class Unbind>
std::unique_ptr<GenericIf> unbound(Mox::Ptr<T> const& bound, Unbind const& unbind) {
  auto adapter = genericOf(bound);
  unbind();
  return adapter;
}

/// An attribute that can be read; `get` returns its value.
template <auto get>
SmAttribute readable(char const* name, Mox::AttributeId id, Mox::AttributeFlags flags = 0) {
  using Value = std::decay_t<std::invoke_result_t<decltype(get), Sm const&>>;
  return {.name = name,
          .id = id,
          .type = typeOf<Value>(),
          .flags = Mox::attributeVisible | flags,
          .read = [](Sm const& sm) { return genericOf(std::invoke(get, sm)); }};
}

SmAttribute config() {
  SmAttribute config = readable<&Sm::config>("config", 130);
  config.remove = [](Sm& sm) { return unbound(sm.config(), [&] { sm.configDel(); }); };
  return config;
}

/// Read-only as an attribute, and so what it refers to is read-only here.
Mox::Ptr<KestSliceDmaStatus const> status(Sm const& sm) {
  return sm.status();
}

SmAttribute stateTimer() {
  SmAttribute timer = readable<&Sm::stateTimer>("stateTimer", 143, Mox::attributeWritable);
  timer.store = [](Sm& sm, GenericIf const* value) {
    sm.stateTimerIs(held<Mox::Ptr<Mox::Clock const>>(value, "stateTimer"));
  };
  timer.remove = [](Sm& sm) { return unbound(sm.stateTimer(), [&] { sm.stateTimerDel(); }); };
  return timer;
}

SmAttribute mode() {
  SmAttribute mode = readable<&Sm::mode>("mode", 145, Mox::attributeWritable);
  mode.store = [](Sm& sm, GenericIf const* value) {
    SmMode const wanted = held<SmMode>(value, "mode");
    if (wanted != sm.mode() && Sm::armsPoll(wanted)) needTimer(sm);
    sm.modeIs(wanted);
  };
  return mode;
}

}  // namespace

Mox::Attribute SmAttribute::registered() const {
  using Class = Mox::IntrospectionClass;
  std::vector<Mox::Argument> arguments;
  if (argument != nullptr) arguments.push_back({argument, argumentType->fullName()});
  Class const kind = invoke == nullptr ? Class::scalar : Class::handler;
  return {name, id, type, kind, flags, {}, nullptr, std::move(arguments)};
}

std::vector<SmAttribute> const& smAttributes() {
  constexpr char const* ifName = SwitchPortCollection::keyName;
  constexpr char const* devName = DeviceCollection::keyName;
  // 128 and 129, below the machine's own, are operations of the framework; the numbers that are
  // left out belong to the arguments of the handlers before them.
  static std::vector<SmAttribute> const all{
      readable<&Sm::moxFwkActivity>("moxFwkActivity", 0),
      config(),
      readable<status>("status", 131),
      callWithKey<&Sm::handleSwitchPort>(handler::handleSwitchPort, 132, ifName),
      callWithKey<&Sm::handleNativeVlan>(handler::handleNativeVlan, 134, "ifname"),
      callWithKey<&Sm::handleDevice>(handler::handleDevice, 137, devName),
      callWithKey<&Sm::handleDeviceState>(handler::handleDeviceState, 139, devName),
      readable<&Sm::pollPeriod>("pollPeriod", 141),
      call<&Sm::handleTimerExpired, needTimer>(handler::handleTimerExpired, 142),
      stateTimer(),
      call<&Sm::handleMode, needTimerToPoll>(handler::handleMode, 144),
      mode(),
      call<&Sm::doVerify, needConfig>(handler::doVerify, 146),
      call<&Sm::handleInitialized>(handler::handleInitialized, 147),
      callWith<bool, &Sm::hasNotificationActiveIs>("hasNotificationActiveIs", 128,
                                                   "hasNotificationActiveIs"),
      callWith<bool, &Sm::moxDoZombieReactors>("moxDoZombieReactors", 129, "on"),
  };
  return all;
}

}  // namespace Hardware::Kest::Slice::detail
