#include "agent/Changes.h"

#include <type_traits>

#include "agent/Collections.h"
#include "agent/Text.h"

namespace Kest::Agent {

namespace {

using Hardware::Kest::Slice::detail::IsRecord;

class ConfigComparison {
 public:
  ConfigComparison(Config const& running, Config const& wanted)
      : running_(running), wanted_(wanted) {}

  Changes take() { return std::move(changes_); }

  void compareSliceId() {
    if (running_.sliceId() == wanted_.sliceId()) return;
    Mox::String8 const id = wanted_.sliceId();
    add(std::string("~ sliceId ") + Mox::valueToStrep(id).charPtr(),
        [id](Config& config) { config.sliceIdIs(id); });
  }

  template <class Collection>
  void removals() {
    for (Mox::String8 const& key : keysOf<Collection>(running_)) {
      if (collectionOf<Collection>(wanted_).iteratorConst(key)) continue;
      add(label<Collection>('-', key),
          [key](Config& config) { collectionOf<Collection>(config).del(key); });
    }
  }

  template <class Collection>
  void settings() {
    for (Mox::String8 const& key : keysOf<Collection>(wanted_)) {
      auto const before = collectionOf<Collection>(running_).iteratorConst(key);
      auto const value = collectionOf<Collection>(wanted_).iteratorConst(key).value();
      if (before && before.value() == value) {
        unchanged<Collection>(key);
      } else {
        add(
            label<Collection>(before ? '~' : '+', key) + detailText(before, value),
            [key, value](Config& config) { collectionOf<Collection>(config).valueIs(key, value); },
            std::is_same_v<Collection, Config::SwitchPorts>);
      }
    }
  }

 private:
  void add(std::string text, std::function<void(Config&)> apply, bool createsPort = false) {
    changes_.steps.push_back({std::move(text), std::move(apply), createsPort});
  }

  template <class Collection>
  static std::string label(char sign, Mox::String8 const& key) {
    return std::string(1, sign) + " " + Collection::name + " " + nameText(key);
  }

  /// The new value, behind the old one if there was one; nothing for a record.
  template <class Iterator, class Value>
  static std::string detailText(Iterator const& before, Value const& value) {
    if constexpr (IsRecord<Value>) {
      return {};
    } else {
      return (before ? " " + valueText(before.value()) + " ->" : "") + " " + valueText(value);
    }
  }

  template <class Collection>
  void unchanged(Mox::String8 const& key) {
    ++changes_.unchanged;
    if constexpr (std::is_same_v<Collection, Config::DeviceStates>) {
      if (leavesItDown(key)) {
        add(label<Collection>('!', key) + " announced again",
            [key](Config& config) { config.deviceStateNotify(key); });
      }
    }
  }

  bool leavesItDown(Mox::String8 const& devName) const {
    auto const device = wanted_.deviceIteratorConst(devName);
    auto const before = running_.deviceIteratorConst(devName);
    return device && isReregistered(before ? &before.value() : nullptr, device.value());
  }

  Config const& running_;
  Config const& wanted_;
  Changes changes_;
};

}  // namespace

bool isReregistered(Config::Device const* before, Config::Device const& now) {
  return before == nullptr || !(*before == now);
}

Changes changesBetween(Config const& running, Config const& wanted) {
  ConfigComparison comparison(running, wanted);
  comparison.compareSliceId();
  comparison.removals<Config::Devices>();
  comparison.removals<Config::DeviceStates>();
  comparison.settings<Config::Devices>();
  comparison.settings<Config::DeviceStates>();
  comparison.removals<Config::NativeVlans>();
  comparison.removals<Config::SwitchportModes>();
  comparison.settings<Config::SwitchportModes>();
  comparison.settings<Config::NativeVlans>();
  comparison.removals<Config::SwitchPorts>();
  comparison.settings<Config::SwitchPorts>();
  return comparison.take();
}

}  // namespace Kest::Agent
