#pragma once

#include <memory>
#include <string>
#include <utility>

#include "platform/mox/Clock.h"
#include "test/model/AnyNotifiee.h"
#include "test/model/Collections.h"
#include "test/simulation/RealValues.h"
#include "test/support/Journal.h"

namespace Simulation {

/// A framework object; `live` counts how many there are.
template <class Object>
class Counted : public Object {
 public:
  explicit Counted(Mox::Name name) noexcept : Object(std::move(name)) { ++live; }
  ~Counted() override { --live; }
  inline static int live = 0;
};

/// Hears what observers and timers are told.
class Listener {
 public:
  /// The observer or timer in that place was told this. May throw.
  virtual void told(unsigned place, std::string what) = 0;

 protected:
  ~Listener() = default;
};

/// The observer in a place, for either entity type.
template <class Entity>
class Observer final : public Hardware::Kest::Slice::AnyNotifiee<Entity> {
 public:
  using Base = typename Entity::Notifiee;
  Observer(Listener& listener, unsigned place) : listener_(listener), place_(place) { ++live; }
  ~Observer() override { --live; }
  inline static int live = 0;

  void onNotificationException(Mox::AttributeId id) override { tell(text("exception ", id)); }
  void onZeroReferences() override { tellOfWhole(toldZeroReferences); }
  void onSliceId() override { tellOfWhole(toldSliceId); }

  // The entities never call these.
  void onSwitchPort() override { tell("whole switchPort"); }
  void onNativeVlan() override { tell("whole nativeVlan"); }
  void onSwitchportMode() override { tell("whole switchportMode"); }
  void onDevice() override { tell("whole device"); }
  void onDeviceState() override { tell("whole deviceState"); }
  void onSwitchPortmoxImmediate() override { tell("immediate switchPort"); }
  void onNativeVlanmoxImmediate() override { tell("immediate nativeVlan"); }
  void onSwitchportModemoxImmediate() override { tell("immediate switchportMode"); }
  void onDevicemoxImmediate() override { tell("immediate device"); }
  void onDeviceStatemoxImmediate() override { tell("immediate deviceState"); }

  void onSwitchPort(Mox::String8 key) override {
    tellOf<Hardware::Kest::Slice::SwitchPortOf<Entity>>(key);
  }
  void onNativeVlan(Mox::String8 key) override {
    tellOf<Hardware::Kest::Slice::NativeVlanOf<Entity>>(key);
  }
  void onSwitchportMode(Mox::String8 key) override {
    tellOf<Hardware::Kest::Slice::SwitchportModeOf<Entity>>(key);
  }
  void onDevice(Mox::String8 key) override { tellOf<Hardware::Kest::Slice::DeviceOf<Entity>>(key); }
  void onDeviceState(Mox::String8 key) override {
    tellOf<Hardware::Kest::Slice::DeviceStateOf<Entity>>(key);
  }

 private:
  void tell(std::string what) { listener_.told(place_, std::move(what)); }

  void tellOfWhole(unsigned what) {
    tell(text(collectionNames[what], this->notifier() ? "" : " of nothing"));
  }

  /// Shows the key's value as it is now.
  template <class C>
  void tellOf(Mox::String8 const& key) {
    std::string what = text(collectionNames[C::index], " '", key.view(), "'");
    if (auto const entity = this->notifier()) {
      auto const it = C::iterator(*entity, key);
      what += text(" of ", entity->name().string().view(), it ? " " : " none");
      if (it) what += text(numberOf(it.value()));
    } else {
      what += " of nothing";
    }
    tell(std::move(what));
  }

  Listener& listener_;
  unsigned place_;
};

class Timer final : public Mox::Clock::NotifieeConst {
 public:
  Timer(Listener& listener, unsigned place) : listener_(listener), place_(place) { ++live; }
  ~Timer() override { --live; }
  inline static int live = 0;

  void onTime() override { listener_.told(place_, "woken"); }
  void onNotificationException(Mox::AttributeId id) override {
    listener_.told(place_, text("told: exception ", id));
  }

 private:
  Listener& listener_;
  unsigned place_;
};

/// A walk through a collection that is left in the middle.
class Walk {
 public:
  virtual ~Walk() = default;
  /// The text of where it is.
  virtual std::string show() const = 0;
  virtual void step() = 0;
  /// Deletes the entry that it is at; returns the text of what the deletion returned.
  virtual std::string del() = 0;
};

template <class C>
class WalkThrough final : public Walk {
 public:
  using Entity = typename C::Entity;
  WalkThrough(Entity& entity, typename C::Iterator at) : entity_(entity), at_(std::move(at)) {}

  std::string show() const override {
    if (!at_) return "at the end";
    auto const there = C::iterator(entity_, at_.key());
    bool const gone = !there || &there.value() != &at_.value();
    if (gone) return text("at '", at_.key().view(), "', gone");
    return text("at '", at_.key().view(), "' ", numberOf(at_.value()));
  }
  void step() override {
    if (at_) ++at_;
  }
  std::string del() override { return valueText(C::del(entity_, at_)); }

 private:
  Entity& entity_;
  typename C::Iterator at_;
};

}  // namespace Simulation
