#include "agent/slice/Comparison.h"

#include <type_traits>
#include <utility>

#include "agent/access/Collections.h"
#include "agent/access/ValueText.h"

namespace Kest::Agent {

namespace {

using Hardware::Kest::Slice::detail::IsRecord;

constexpr std::size_t keysAtOnce = 200;  // less than a millisecond

template <class Collection>
std::string label(char sign, Mox::String8 const& key) {
  return std::string(1, sign) + " " + Collection::name + " " + nameText(key);
}

/// The new value, after the old one if there was one; nothing for a record.
template <class Iterator, class Value>
std::string detailText(Iterator const& before, Value const& value) {
  if constexpr (IsRecord<Value>) {
    return {};
  } else {
    return (before ? " " + valueText(before.value()) + " ->" : "") + " " + valueText(value);
  }
}

}  // namespace

bool isReregistered(Config::Device const* before, Config::Device const& now) {
  return before == nullptr || !(*before == now);
}

Comparison::Comparison(Mox::Ptr<Config const> running, Mox::Ptr<Config const> wanted)
    : running_(std::move(running)), wanted_(std::move(wanted)) {
  work_.add([this] {
    compareSliceId();
    return false;
  });
  removals<Config::Devices>();
  removals<Config::DeviceStates>();
  settings<Config::Devices>();
  settings<Config::DeviceStates>();
  removals<Config::NativeVlans>();
  removals<Config::SwitchportModes>();
  settings<Config::SwitchportModes>();
  settings<Config::NativeVlans>();
  removals<Config::SwitchPorts>();
  settings<Config::SwitchPorts>();
}

bool Comparison::goOn() {
  return work_.take(keysAtOnce);
}

void Comparison::compareSliceId() {
  if (running_->sliceId() == wanted_->sliceId()) return;
  Mox::String8 const id = wanted_->sliceId();
  add(std::string("~ sliceId ") + Mox::valueToStrep(id).charPtr(),
      [id](Config& config) { config.sliceIdIs(id); });
}

template <class Collection>
void Comparison::removals() {
  auto const compareKey = [this](Mox::String8 const& key) {
    if (collectionOf<Collection>(*wanted_).has(key)) return;
    add(label<Collection>('-', key),
        [key](Config& config) { collectionOf<Collection>(config).del(key); });
    if (std::is_same_v<Collection, Config::SwitchPorts>) ++changes_.portsGone;
  };
  OrderedKeys keys;
  keys.add<Collection>(running_);
  work_.addVisits(std::move(keys), compareKey);
}

template <class Collection>
void Comparison::settings() {
  OrderedKeys keys;
  keys.add<Collection>(wanted_);
  work_.addVisits(std::move(keys), [this](Mox::String8 const& key) { compare<Collection>(key); });
}

template <class Collection>
void Comparison::compare(Mox::String8 const& key) {
  auto const before = collectionOf<Collection>(*running_).iteratorConst(key);
  auto const value = collectionOf<Collection>(*wanted_).iteratorConst(key).value();
  if (before && before.value() == value) return unchanged<Collection>(key);
  constexpr bool createsPort = std::is_same_v<Collection, Config::SwitchPorts>;
  add(
      label<Collection>(before ? '~' : '+', key) + detailText(before, value),
      [key, value](Config& config) { collectionOf<Collection>(config).valueIs(key, value); },
      createsPort);
}

template <class Collection>
void Comparison::unchanged(Mox::String8 const& key) {
  ++changes_.unchanged;
  if constexpr (std::is_same_v<Collection, Config::DeviceStates>) {
    if (leavesItDown(key)) {
      add(label<Collection>('!', key) + " announced again",
          [key](Config& config) { config.deviceStateNotify(key); });
    }
  }
}

bool Comparison::leavesItDown(Mox::String8 const& devName) const {
  auto const device = wanted_->deviceIteratorConst(devName);
  auto const before = running_->deviceIteratorConst(devName);
  return device && isReregistered(before ? &before.value() : nullptr, device.value());
}

void Comparison::add(std::string text, std::function<void(Config&)> apply, bool createsPort) {
  changes_.steps.push_back({std::move(text), std::move(apply), createsPort});
  if (createsPort) ++changes_.portsSet;
}

Changes changesBetween(Config const& running, Config const& wanted) {
  Comparison comparison{Mox::Ptr<Config const>(&running), Mox::Ptr<Config const>(&wanted)};
  while (comparison.goOn()) {
  }
  return std::move(comparison.changes());
}

}  // namespace Kest::Agent
