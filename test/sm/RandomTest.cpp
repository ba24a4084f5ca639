#include <array>
#include <cstdlib>
#include <random>
#include <type_traits>

#include "test/sm/PlainSlice.h"
#include "test/sm/SmFixture.h"

namespace Hardware::Kest::Slice {
namespace {

using Config = KestSliceDmaConfig;

constexpr std::array ports{"et1", "et2", "et3/1", "et10"};
constexpr std::array devices{"fap0", "fap1", "fap2", "fap10"};

/// Whether a collection of the configuration is keyed by interface, not by device.
template <class Collection>
constexpr bool isOfPorts = !std::is_same_v<Collection, Config::Devices> &&
                           !std::is_same_v<Collection, Config::DeviceStates>;

template <class Collection>
auto& plainOf(PlainConfig& config) {
  if constexpr (std::is_same_v<Collection, Config::SwitchPorts>) {
    return config.switchPort;
  } else if constexpr (std::is_same_v<Collection, Config::NativeVlans>) {
    return config.nativeVlan;
  } else if constexpr (std::is_same_v<Collection, Config::SwitchportModes>) {
    return config.switchportMode;
  } else if constexpr (std::is_same_v<Collection, Config::Devices>) {
    return config.device;
  } else {
    return config.deviceState;
  }
}

template <class Collection>
constexpr PlainSlice::Handler handlerOf() {
  if constexpr (std::is_same_v<Collection, Config::SwitchPorts>) {
    return &PlainSlice::handleSwitchPort;
  } else if constexpr (isOfPorts<Collection>) {
    return &PlainSlice::handleNativeVlan;
  } else if constexpr (std::is_same_v<Collection, Config::Devices>) {
    return &PlainSlice::handleDevice;
  } else {
    return &PlainSlice::handleDeviceState;
  }
}

Support::Lines keys(auto it) {
  Support::Lines all;
  for (; it; ++it) all.emplace_back(it.key().charPtr());
  return all;
}

/// One thing that happens, to the plain slice and to the real one.
struct Step {
  std::function<void(PlainSlice&)> plain;
  std::function<void()> real;
};

/// Makes random steps through two configurations and two clocks.
class RandomTest : public SmTest, public testing::WithParamInterface<std::uint64_t> {
 protected:
  RandomTest() {
    config = configs[0];
    sm = kestSliceDmaSmFactory(config, status);
    plain.timeMin = Mox::Clock::never;
  }

  std::size_t any(std::size_t count) { return static_cast<std::size_t>(random() % count); }
  bool onceIn(std::size_t count) { return any(count) == 0; }
  template <class Values>
  auto anyOf(Values const& values) {
    return values[any(std::size(values))];
  }

  Config::SwitchPort anyPort(std::string const& ifName) {
    Config::SwitchPort record = port(ifName.c_str());
    record.destIdIs(static_cast<std::uint32_t>(any(2)));
    record.shadowIntfIdIs(onceIn(2) ? 4096 : 5);
    record.devNameIs(onceIn(4) ? "" : "fap1");
    record.hwLagIs(onceIn(2));
    if (onceIn(4)) record.macAddrIs(Pelk::EthAddr());
    return record;
  }
  Config::Device anyDevice(std::string const& devName) {
    Config::Device record = device(devName.c_str());
    record.pciHamIs(anyOf(handles));
    record.numFapsIs(static_cast<std::uint32_t>(any(2)));
    return record;
  }

  template <class Collection>
  typename Collection::Value anyValue(std::string const& key) {
    if constexpr (std::is_same_v<Collection, Config::SwitchPorts>) {
      return anyPort(key);
    } else if constexpr (std::is_same_v<Collection, Config::NativeVlans>) {
      return anyOf(std::array<std::uint16_t, 3>{0, 10, 20});
    } else if constexpr (std::is_same_v<Collection, Config::SwitchportModes>) {
      return anyOf(std::array{access, trunk, tunnel});
    } else if constexpr (std::is_same_v<Collection, Config::Devices>) {
      return anyDevice(key);
    } else {
      return onceIn(8) ? unknown : anyOf(std::array{up, down});
    }
  }

  /// A change of one collection, or one that changes nothing, or an announcement.
  template <class Collection>
  Step changeOf(Collection& collection, std::size_t index) {
    constexpr PlainSlice::Handler handle = handlerOf<Collection>();
    std::string const key = isOfPorts<Collection> ? anyOf(ports) : anyOf(devices);
    Mox::String8 const realKey(key);
    std::size_t const kind = any(24);
    if (kind < 14) {
      auto const value = anyValue<Collection>(key);
      return {[=](PlainSlice& slice) {
                auto& map = plainOf<Collection>(slice.configs[index]);
                if (map.count(key) == 1 && map.at(key) == value) return;
                map[key] = value;
                slice.announce(index, handle, key);
              },
              [=, &collection] { collection.valueIs(realKey, value); }};
    }
    if (kind < 19) {
      return {[=](PlainSlice& slice) {
                if (plainOf<Collection>(slice.configs[index]).erase(key) == 0) return;
                slice.announce(index, handle, key);
              },
              [=, &collection] { collection.del(realKey); }};
    }
    if (kind < 23) {
      return {[=](PlainSlice& slice) { slice.announce(index, handle, key); },
              [=, &collection] { collection.notify(realKey); }};
    }
    return {[=, order = keys(collection.iteratorConst())](PlainSlice& slice) {
              for (std::string const& gone : order) {
                plainOf<Collection>(slice.configs[index]).erase(gone);
                slice.announce(index, handle, gone);
              }
            },
            [&collection] { collection.delAll(); }};
  }

  Step configChange() {
    bool const ofBound = plain.configReactor && !onceIn(8);
    std::size_t const index = ofBound ? plain.configReactor->notifier : any(2);
    std::size_t const chosen = any(6);
    if (chosen == 5) {
      Mox::String8 const sliceId = onceIn(2) ? "Linecard3/0" : "Linecard4/0";
      return {[](PlainSlice&) {}, [=, this] { configs[index]->sliceIdIs(sliceId); }};
    }
    Step step;
    std::size_t at = 0;
    configs[index]->forEachCollection([&](auto& collection) {
      if (at++ == chosen) step = changeOf(collection, index);
    });
    return step;
  }

  /// Something that is done to the machine itself.
  Step control() {
    switch (any(10)) {
      case 0: {
        std::size_t const index = any(2);
        return {[=](PlainSlice& s) { s.configIs(index); },
                [=, this] { sm->configIs(configs[index]); }};
      }
      case 1:
        return {[](PlainSlice& s) { s.configIs(std::nullopt); },
                [this, del = onceIn(2)] { del ? void(sm->configDel()) : sm->configIs(nullptr); }};
      case 2: {
        std::size_t const index = any(2);
        return {[=](PlainSlice& s) { s.stateTimerIs(index); },
                [=, this] { sm->stateTimerIs(clocks[index]); }};
      }
      case 3: {
        std::size_t const index = any(2);
        return {[=](PlainSlice& s) { s.newStateTimer(index); },
                [=, this] {
                  sm->stateTimerDel();
                  sm->stateTimerIs(clocks[index]);
                }};
      }
      case 4: {
        bool const on = !onceIn(3);
        return {[=](PlainSlice& s) { s.activeIs(on); },
                [=, this] { sm->hasNotificationActiveIs(on); }};
      }
      case 5: {
        bool const on = onceIn(3);
        return {[=](PlainSlice& s) { s.zombieIs(on); }, [=, this] { sm->moxDoZombieReactors(on); }};
      }
      case 6: {
        auto const seconds = static_cast<std::int32_t>(any(3));
        return {[=](PlainSlice& s) { s.retrySeconds = seconds; },
                [=] { INTF_ADD_RETRY_TIMEOUT_SECONDS = seconds; }};
      }
      case 7: {
        bool const on = onceIn(3);
        return {[=](PlainSlice& s) { s.simulated = on; },
                [=] { on ? setenv("SIMULATION_VMID", "", 1) : unsetenv("SIMULATION_VMID"); }};
      }
      case 8:
        return {[](PlainSlice& s) {
                  s.stateTimerIs(0);
                  s.timeMin = Mox::Clock::never;
                },
                [this] { sm->handleInitialized(); }};
      default: {
        auto const mode = static_cast<SmMode>(any(3));
        return {[=](PlainSlice& s) { s.modeIs(mode); }, [=, this] { sm->modeIs(mode); }};
      }
    }
  }

  /// A handler that is invoked by its name. There must be a configuration.
  Step handler() {
    std::string const ifName = anyOf(ports);
    std::string const devName = anyOf(devices);
    switch (any(7)) {
      case 0:
        return {[=](PlainSlice& s) { s.handleSwitchPort(ifName); },
                [=, this] { sm->handleSwitchPort(Mox::String8(ifName)); }};
      case 1:
        return {[=](PlainSlice& s) { s.handleNativeVlan(ifName); },
                [=, this] { sm->handleNativeVlan(Mox::String8(ifName)); }};
      case 2:
        return {[=](PlainSlice& s) { s.handleDevice(devName); },
                [=, this] { sm->handleDevice(Mox::String8(devName)); }};
      case 3:
        return {[=](PlainSlice& s) { s.handleDeviceState(devName); },
                [=, this] { sm->handleDeviceState(Mox::String8(devName)); }};
      case 4:
        return {[](PlainSlice& s) { s.handleTimerExpired(); },
                [this] { sm->handleTimerExpired(); }};
      case 5:
        return {[](PlainSlice& s) { s.handleMode(); }, [this] { sm->handleMode(); }};
      default:
        return {[](PlainSlice& s) { s.doVerify(); }, [this] { sm->doVerify(); }};
    }
  }

  Step passing() {
    auto const microseconds = static_cast<std::int64_t>(any(2500000));
    return {[=](PlainSlice& slice) {
              slice.microseconds += microseconds;
              slice.dispatch(0);
              slice.dispatch(1);
            },
            [=, this] {
              time.advance(microseconds);
              clocks[0]->dispatch();
              clocks[1]->dispatch();
            }};
  }

  /// Makes a silent machine react again, or takes away one of the reasons why it does not.
  Step revival() {
    if (plain.zombie) {
      return {[](PlainSlice& s) { s.zombieIs(false); }, [this] { sm->moxDoZombieReactors(false); }};
    }
    if (!plain.active) {
      return {[](PlainSlice& s) { s.activeIs(true); },
              [this] { sm->hasNotificationActiveIs(true); }};
    }
    return {[](PlainSlice& s) { s.configIs(0); }, [this] { sm->configIs(configs[0]); }};
  }

  Step step() {
    bool const reacts = plain.configReactor && plain.configReactor->registered && !plain.zombie;
    if (!reacts && onceIn(4)) return revival();
    std::size_t const kind = any(40);
    if (kind < 2) return control();
    if (kind < 4 && plain.configReactor) return handler();
    if (kind < 8) return passing();
    isConfigChange = true;
    return configChange();
  }

  /// The driver will refuse or put off the next calls of one operation; a device may have changed
  /// its state by itself.
  void prepareDriver() {
    driver.answersDelAll();
    plain.answers.clear();
    if (onceIn(3)) {
      constexpr std::array operations{
          "kestDmaIfadd",       "kestDmaIfdel",      "kestDmaNativeVlan", "kestDmaDeviceRename",
          "kestDmaDeviceParam", "kestDmaDeviceDown", "kestDmaDeviceUp",   "kestDmaIsDeviceUp"};
      constexpr std::array<int, 5> results{0, 11, 19, 22, -1};
      std::string const operation = anyOf(operations);
      bool const ofPort = operation.find("Device") == std::string::npos;
      std::string const name = ofPort ? anyOf(ports) : anyOf(devices);
      RecordingDriver::Answers answers(any(onceIn(8) ? 40 : 4), 11);
      answers.push_back(anyOf(results));
      driver.answersIs(operation, name, answers);
      plain.answers[{operation, name}] = answers;
    }
    for (std::string const devName : devices) {
      bool const isUp = valueOf(plain.status.deviceState, devName) == DeviceState::deviceStateUp_;
      plain.up[devName] = isUp != onceIn(50);
      driver.upIs(devName, plain.up[devName]);
    }
    plain.pollOrder = keys(status->deviceStateIteratorConst());
  }

  /// Takes a step, unless it would end the process. Both sides then have to agree.
  void take(Step const& step) {
    PlainSlice next = plain;
    next.lines.clear();
    try {
      step.plain(next);
    } catch (ProcessEnds const&) {
      ++endsAvoided;
      return;
    }
    step.real();
    ++taken;
    changes += isConfigChange ? 1 : 0;
    ASSERT_EQ(journal.taken(), next.lines);
    ASSERT_EQ(content(*status), next.content());
    ASSERT_EQ(timeMin(), next.timeMin);
    ASSERT_EQ(time.microseconds(), next.microseconds);
    for (std::string const& line : next.lines) ++seen[line.substr(0, line.find('('))];
    plain = std::move(next);
  }

  std::mt19937_64 random{GetParam()};
  std::array<Mox::Ptr<Config>, 2> configs{new Config("first"), new Config("second")};
  std::array<Mox::Ptr<Mox::Clock>, 2> clocks{clock, new Mox::Clock("second")};
  std::array<Mox::Ptr<Fru::PciHam const>, 3> handles{nullptr, new Fru::PciHam("0000:05:00.0"),
                                                     new Fru::PciHam("0000:06:00.0")};
  PlainSlice plain;
  bool isConfigChange = false;
  int changes = 0;
  int taken = 0;
  int endsAvoided = 0;
  std::map<std::string, int> seen;  // driver calls and pauses, by operation
};

TEST_P(RandomTest, MachineFollowsTheRules) {
  while (changes < 10000 && !HasFatalFailure()) {
    SCOPED_TRACE("step " + std::to_string(taken));
    prepareDriver();
    isConfigChange = false;
    take(step());
  }
  for (char const* operation :
       {"kestDmaIfadd", "kestDmaIfdel", "kestDmaNativeVlan", "kestDmaDeviceRename",
        "kestDmaDeviceParam", "kestDmaDeviceDown", "kestDmaDeviceUp", "kestDmaIsDeviceUp"}) {
    EXPECT_GE(seen[operation], 100) << operation;
  }
  EXPECT_EQ(seen["kestDmaDump"], 0);
  EXPECT_GE(endsAvoided, 100);
}

INSTANTIATE_TEST_SUITE_P(Seed, RandomTest, testing::Values(1, 2, 3),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace Hardware::Kest::Slice
