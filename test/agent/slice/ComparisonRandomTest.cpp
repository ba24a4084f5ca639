#include <gtest/gtest.h>
#include <unistd.h>

#include <map>
#include <random>
#include <set>

#include "agent/show/StatusReport.h"
#include "agent/slice/Comparison.h"
#include "driver/sim/SimDriver.h"
#include "sm/KestSliceDmaSm.h"
#include "test/agent/support/SliceTexts.h"
#include "test/model/Recorder.h"

/// The machine's pause after every port passes at once.
extern "C" __attribute__((visibility("default"))) int usleep(useconds_t) {
  return 0;
}

namespace Kest::Agent {
namespace {

using Hardware::Kest::Slice::DeviceState;
using Hardware::Kest::Slice::Events;
using Hardware::Kest::Slice::observe;

/// Makes configurations of few keys and few values, so that every kind of difference is frequent.
class SimilarConfigs {
 public:
  explicit SimilarConfigs(std::uint64_t seed) : random_(seed) {}

  Mox::Ptr<Config> config() {
    Mox::Ptr<Config> config(new Config("random"));
    if (one(2)) config->sliceIdIs(one(2) ? "Linecard1" : "Linecard2");
    for (char const* devName : {"fap0", "fap1", "fap10"}) addDevice(*config, devName);
    for (char const* ifName : {"et1", "et2", "et3", "et10"}) addPort(*config, ifName);
    return config;
  }

 private:
  bool one(unsigned of) { return random_() % of == 0; }

  DeviceState state() {
    return one(2) ? DeviceState::deviceStateUp_ : DeviceState::deviceStateDown_;
  }

  void addDevice(Config& config, char const* devName) {
    bool const hasDevice = one(2);
    if (hasDevice) {
      Config::Device device;
      device.devNameIs(devName);
      Mox::Ptr<Fru::PciHam const>& handle = handles_[devName];
      if (!handle) handle = Mox::Ptr<Fru::PciHam const>(new Fru::PciHam(devName));
      device.pciHamIs(handle);
      device.numFapsIs(one(2) ? 1 : 2);
      config.deviceIs(device);
    }
    if (hasDevice || one(2)) config.deviceStateIs(devName, state());
  }

  void addPort(Config& config, char const* ifName) {
    if (one(2)) {
      Config::SwitchPort port;
      port.ifNameIs(ifName);
      port.destIdIs(one(2) ? 1 : 2);
      config.switchPortIs(port);
    }
    if (one(2)) config.nativeVlanIs(ifName, one(2) ? 10 : 20);
    if (one(2)) {
      config.switchportModeIs(ifName, one(2) ? Bridging::SwitchportMode::switchportModeTrunk_
                                             : Bridging::SwitchportMode::switchportModeAccess_);
    }
  }

  std::mt19937_64 random_;
  std::map<std::string, Mox::Ptr<Fru::PciHam const>> handles_;  // by device, the same throughout
};

/// What a configuration holds: texts of values by "COLLECTION KEY".
using Model = std::map<std::string, std::string>;

Model modelOf(Config const& config) {
  Model model;
  config.forEachCollection([&](auto const& collection) {
    for (auto it = collection.iteratorConst(); it; ++it) {
      std::string name = collection.name;
      name[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(name[0])));
      std::string text;
      if constexpr (std::is_same_v<std::decay_t<decltype(it.value())>, std::uint16_t>) {
        text = std::to_string(it.value());
      } else {
        text = valueToStrep(it.value()).charPtr();
      }
      model["on" + name + " " + it.key().charPtr()] = text;
    }
  });
  return model;
}

/// What is to be announced, in any order, and how many entries are alike.
struct Difference {
  std::multiset<std::string> announced;
  std::size_t unchanged = 0;
};

Difference differenceOf(Model const& before, Model const& after, bool newSliceId) {
  Difference difference;
  if (newSliceId) difference.announced.insert("agent onSliceId");
  auto const valueOf = [](Model const& model, std::string const& key) {
    auto const at = model.find(key);
    return at == model.end() ? std::string() : at->second;
  };
  Model all = before;
  all.insert(after.begin(), after.end());
  for (auto const& [key, value] : all) {
    if (valueOf(before, key) != valueOf(after, key)) {
      difference.announced.insert("agent " + key);
      continue;
    }
    ++difference.unchanged;
    // A device that is registered anew is left down: its state comes again, unchanged.
    std::string const stateHandler = "onDeviceState ";
    if (!key.starts_with(stateHandler)) continue;
    std::string const device = "onDevice " + key.substr(stateHandler.size());
    bool const reregistered =
        after.contains(device) && valueOf(before, device) != valueOf(after, device);
    if (reregistered) difference.announced.insert("agent " + key);
  }
  return difference;
}

void apply(Changes const& changes, Config& running) {
  for (Change const& step : changes.steps) step.apply(running);
}

TEST(ChangesProperty, StepsLeadFromAnyConfigurationToAnyOtherAndAnnounceOnlyWhatDiffers) {
  SimilarConfigs random(20240607);
  for (int round = 0; round < 600; ++round) {
    SCOPED_TRACE(round);
    Mox::Ptr<Config> const running = random.config();
    Mox::Ptr<Config> const wanted = random.config();
    Difference const expected = differenceOf(modelOf(*running), modelOf(*wanted),
                                             !(running->sliceId() == wanted->sliceId()));
    Events events;
    auto const observer = observe(running, "agent", events);

    Changes const changes = changesBetween(*running, *wanted);
    EXPECT_EQ(changes.unchanged, expected.unchanged);
    apply(changes, *running);

    ASSERT_EQ(entriesOf(*running), entriesOf(*wanted));
    ASSERT_EQ(std::multiset<std::string>(events.begin(), events.end()), expected.announced);
    EXPECT_EQ(changes.steps.size(), events.size()) << "a step is one announcement";
    Changes const again = changesBetween(*running, *wanted);
    EXPECT_TRUE(again.steps.empty());
    EXPECT_EQ(again.unchanged, modelOf(*wanted).size());
    observer->notifierIs(nullptr);
  }
}

/// A step out of order would end the process by the machine's rules, or leave something down.
TEST(ChangesProperty, StepsBringAMachineAndItsDriverToAnyConfiguration) {
  constexpr unsigned short noVlan = Hardware::Kest::Sim::Interface::noVlan;
  Hardware::Kest::Sim::SimDriver& driver = Hardware::Kest::Sim::simDriver();
  driver.reset();
  SimilarConfigs random(20240608);
  Mox::Ptr<Config> const running(new Config("running"));
  Mox::Ptr<Status> const status(new Status("status"));
  auto const machine = Hardware::Kest::Slice::kestSliceDmaSmFactory(running, status);
  for (int round = 0; round < 1000; ++round) {
    SCOPED_TRACE(round);
    apply(changesBetween(*running, *random.config()), *running);
    ASSERT_EQ(notUp(*running, *status), std::vector<std::string>());
    auto const ports = keysOf<Config::SwitchPorts>(*running);
    ASSERT_EQ(keysOf<Status::SwitchPorts>(*status), ports);
    ASSERT_EQ(driver.interfaces().size(), ports.size());
    for (Mox::String8 const& port : ports) {
      SCOPED_TRACE(port);
      std::uint16_t const vlan = running->nativeVlan(port);
      ASSERT_EQ(status->nativeVlan(port), vlan);
      ASSERT_EQ(driver.interface(port)->nativeVlan, vlan == 0 ? noVlan : vlan);
      ASSERT_EQ(driver.interface(port)->param.destId,
                static_cast<int>(running->switchPort(port).destId()));
    }
  }
}

}  // namespace
}  // namespace Kest::Agent
