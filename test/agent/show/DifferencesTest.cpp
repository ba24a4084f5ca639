#include "agent/show/Differences.h"

#include "platform/mox/Dir.h"
#include "test/agent/support/RefusedRequests.h"

namespace Kest::Agent {
namespace {

using Bridging::SwitchportMode;
using Hardware::Kest::Sim::simDriver;
using Hardware::Kest::Slice::DeviceState;
using Strings = std::vector<std::string>;

/// Tampers with one side after the other. What `verify` reports must not change anything: that is
/// checked each time.
class Verify : public RefusedRequests {
 protected:
  Json report() { return Json::parse(ask(R"({"verb":"verify"})")); }

  Strings messages() {
    std::string const before = unasked();
    Json const found = report();
    Strings all;
    for (Json const& difference : found.at("differences")) {
      all.push_back(difference.at("message").get<std::string>());
    }
    EXPECT_EQ(found.at("clean"), all.empty());
    EXPECT_EQ(unasked(), before);
    return all;
  }

  /// The state machine looks away.
  void unobserved(std::function<void()> const& change) {
    sm->hasNotificationActiveIs(false);
    change();
    sm->hasNotificationActiveIs(true);
  }

  /// What a device of the configuration refers to.
  Mox::Ptr<Fru::PciHam const> handle(char const* devName) const {
    return config->device(devName).pciHam();
  }

  Status::SwitchPort portStatus(char const* ifName, bool created) {
    Status::SwitchPort port;
    port.ifNameIs(ifName);
    port.createdIs(created);
    return port;
  }
};

TEST_F(Verify, FindsNothingWhereEverythingWasApplied) {
  EXPECT_EQ(messages(), Strings{});
  EXPECT_EQ(ask(R"({"verb":"verify"})"), R"({"differences":[],"clean":true})");
  for (char const* example : {"small.slice", "small.slice.json"}) {
    Applied const applied = apply(example, readSliceFile(std::string(KEST_EXAMPLES "/") + example));
    EXPECT_EQ(applied.notUp, Strings{}) << example;
    EXPECT_EQ(messages(), Strings{}) << example;
  }
}

/// The name with which the chip was brought up stays recorded, and the poll goes on asking for it.
TEST_F(Verify, FindsADeviceThatAnotherHasTakenTheChipOf) {
  Applied const applied = apply("full.slice", readSliceFile(KEST_EXAMPLES "/full.slice"));
  EXPECT_EQ(applied.notUp, Strings{});
  EXPECT_EQ(messages(),
            Strings{"device fap0 present: configuration false, status true, driver false"});
  status->deviceStateDel("fap0");
  EXPECT_EQ(messages(), Strings{});
}

TEST_F(Verify, TellsEachSideByItself) {
  simDriver().deviceFlip("fap0");
  EXPECT_EQ(
      ask(R"({"verb":"verify"})"),
      R"({"differences":[{"subject":"device fap0","what":"state",)"
      R"("config":"deviceStateUp","status":"deviceStateUp","driver":"deviceStateDown","message":)"
      R"("device fap0 state: configuration deviceStateUp, status deviceStateUp, )"
      R"(driver deviceStateDown"}],"clean":false})");
  simDriver().deviceFlip("fap0");
  status->switchportModeIs("et9", SwitchportMode::switchportModeTrunk_);
  EXPECT_EQ(ask(R"({"verb":"verify"})"),
            R"({"differences":[{"subject":"port et9","what":"switchportMode",)"
            R"("status":"switchportModeTrunk",)"
            R"("message":"port et9 switchportMode: status switchportModeTrunk"}],"clean":false})");
}

TEST_F(Verify, ADeviceThatIsNotRegistered) {
  Status::Device device;
  device.devNameIs("fap0");
  status->deviceIs(device);
  EXPECT_EQ(messages(), Strings{"device fap0 registered: configuration true, status false, "
                                "driver true"});
  unobserved([&] { config->deviceDel("fap0"); });
  EXPECT_EQ(messages(),
            Strings{"device fap0 present: configuration false, status true, driver true"});
  status->deviceDel("fap0");
  EXPECT_EQ(messages(), Strings{});
}

TEST_F(Verify, ADeviceThatIsRegisteredButNotConfigured) {
  unobserved([&] { config->deviceDel("fap0"); });
  EXPECT_EQ(messages(), Strings{"device fap0 registered: configuration false, status true, "
                                "driver true"});
}

TEST_F(Verify, ADeviceThatTheDriverHasNoParametersOf) {
  Mox::Ptr<Fru::PciHam> const bare(new Fru::PciHam("bare"));
  ASSERT_EQ(simDriver().deviceRename("old", handle("fap0")), 0);
  ASSERT_EQ(simDriver().deviceRename("fap0", bare), 0);
  EXPECT_EQ(messages(),
            (Strings{"device fap0 registered: configuration true, status true, driver false",
                     "device fap0 pciHam: configuration /pci/0000:05:00.0, driver bare",
                     "device fap0 state: configuration deviceStateUp, status deviceStateUp, driver "
                     "deviceStateDown",
                     "port et3/1 devName: configuration fap0, driver old",
                     "port et3/2 devName: configuration fap0, driver old"}));
}

TEST_F(Verify, TheStateOfADeviceOnEachSide) {
  unobserved([&] { config->deviceStateIs("fap0", DeviceState::deviceStateDown_); });
  EXPECT_EQ(messages(), Strings{"device fap0 state: configuration deviceStateDown, status "
                                "deviceStateUp, driver deviceStateUp"});
  unobserved([&] { config->deviceStateDel("fap0"); });
  EXPECT_EQ(messages(), Strings{"device fap0 state: configuration deviceStateUnknown, status "
                                "deviceStateUp, driver deviceStateUp"});
  unobserved([&] { config->deviceStateIs("fap0", DeviceState::deviceStateUp_); });
  status->deviceStateIs("fap0", DeviceState::deviceStateDown_);
  EXPECT_EQ(messages(), Strings{"device fap0 state: configuration deviceStateUp, status "
                                "deviceStateDown, driver deviceStateUp"});
  status->deviceStateIs("fap0", DeviceState::deviceStateUnknown_);
  EXPECT_EQ(messages(), Strings{"device fap0 state: configuration deviceStateUp, status "
                                "deviceStateUnknown, driver deviceStateUp"});
  status->deviceStateIs("fap0", DeviceState::deviceStateUp_);
  simDriver().faultsAre("flip 'fap0'");
  EXPECT_EQ(messages(), Strings{"device fap0 state: configuration deviceStateUp, status "
                                "deviceStateUp, driver deviceStateDown"});
  // Nothing was applied: then the driver's state is nobody's.
  unobserved([&] { config->deviceStateDel("fap0"); });
  status->deviceStateDel("fap0");
  EXPECT_EQ(messages(), Strings{});
}

TEST_F(Verify, TheStateOfADeviceThatIsNotConfiguredIsHeldAgainstTheDriverAlone) {
  config->deviceDel("fap0");
  config->deviceStateDel("fap0");
  EXPECT_EQ(messages(), Strings{});
  simDriver().deviceFlip("fap0");
  EXPECT_EQ(messages(), Strings{"device fap0 state: status deviceStateUp, driver deviceStateDown"});
  simDriver().deviceFlip("fap0");
  config->deviceStateIs("fap8", DeviceState::deviceStateUp_);
  EXPECT_EQ(messages(), Strings{});
  status->deviceStateIs("fap7", DeviceState::deviceStateUnknown_);
  EXPECT_EQ(messages(),
            Strings{"device fap7 present: configuration false, status true, driver false"});
}

TEST_F(Verify, ADeviceThatTheDriverDoesNotKnow) {
  ASSERT_EQ(simDriver().deviceRename("other", handle("fap0")), 0);
  EXPECT_EQ(messages(),
            (Strings{"device fap0 present: configuration true, status true, driver false",
                     "port et3/1 devName: configuration fap0, driver other",
                     "port et3/2 devName: configuration fap0, driver other"}));
}

TEST_F(Verify, TheParametersOfADevice) {
  unobserved([&] {
    Config::Device device = config->device("fap0");
    device.sflowPortIs(7);
    device.fapTypeIs(Hardware::Kest::FapType::fapTypeAradDual_);
    config->deviceIs(device);
  });
  EXPECT_EQ(messages(),
            (Strings{"device fap0 fapType: configuration fapTypeAradDual, driver fapTypeArad",
                     "device fap0 sflowPort: configuration 7, driver 0"}));
}

TEST_F(Verify, ADriverThatAnswersAnError) {
  simDriver().faultsAre("fail kestDmaIsDeviceUp * 5 always");
  EXPECT_EQ(messages(), Strings{"device fap0 driver answer: driver 5"});
  simDriver().faultsAre("fail kestDmaIsDeviceUp * 19 always");
  EXPECT_EQ(messages(),
            Strings{"device fap0 present: configuration true, status true, driver false"});
}

TEST_F(Verify, APortThatIsNotCreatedOnOneSide) {
  status->switchPortIs(portStatus("et3/2", false));
  EXPECT_EQ(messages(),
            Strings{"port et3/2 created: configuration true, status false, driver true"});
  status->switchPortDel("et3/2");
  EXPECT_EQ(messages(),
            Strings{"port et3/2 created: configuration true, status false, driver true"});
  status->switchPortIs(portStatus("et3/2", true));
  ASSERT_EQ(simDriver().ifdel("et3/2"), 0);
  EXPECT_EQ(messages(),
            Strings{"port et3/2 created: configuration true, status true, driver false"});
  status->switchPortDel("et3/2");
  EXPECT_EQ(messages(),
            Strings{"port et3/2 created: configuration true, status false, driver false"});
}

TEST_F(Verify, APortThatIsNotConfigured) {
  ASSERT_EQ(simDriver().ifadd("et8", {1, -1, 0, "fap0", 0, false, false, "00:00:00:00:00:01"}), 0);
  EXPECT_EQ(messages(),
            Strings{"port et8 created: configuration false, status false, driver true"});
  ASSERT_EQ(simDriver().ifdel("et8"), 0);
  status->switchPortIs(portStatus("et8", true));
  EXPECT_EQ(messages(),
            Strings{"port et8 created: configuration false, status true, driver false"});
  status->switchPortIs(portStatus("et8", false));
  EXPECT_EQ(messages(), Strings{"port et8 present: configuration false, status true"});
  status->switchPortDel("et8");
  status->nativeVlanIs("et8", 5);
  EXPECT_EQ(messages(), Strings{"port et8 nativeVlan: status 5"});
}

TEST_F(Verify, TheParametersOfAPort) {
  ASSERT_EQ(simDriver().ifadd("et3/2", {9, 3, 0, "", 0, true, false, "00:1c:73:00:00:22"}), 0);
  EXPECT_EQ(messages(), (Strings{"port et3/2 destId: configuration 2, driver 9",
                                 "port et3/2 shadowIntfId: configuration 0, driver 3",
                                 "port et3/2 devName: configuration fap0, driver ",
                                 "port et3/2 ctrl: configuration false, driver true",
                                 "port et3/2 macAddr: configuration 00:1c:73:00:00:02, driver "
                                 "00:1c:73:00:00:22"}));
}

TEST_F(Verify, NumbersThatTheDriverTakesInAnotherWay) {
  Config::SwitchPort port = config->switchPort("et3/2");
  for (std::uint32_t const number : {4096U, 2147483648U, 4294967295U}) {
    port.destIdIs(number);
    port.shadowIntfIdIs(number);
    config->switchPortIs(port);
    EXPECT_EQ(messages(), Strings{}) << number;
  }
  ASSERT_EQ(simDriver().ifadd("et3/2", {-1, 4096, 0, "fap0", 0, false, false, "00:1c:73:00:00:02"}),
            0);
  EXPECT_EQ(messages(), Strings{"port et3/2 shadowIntfId: configuration 4294967295, driver 4096"});
}

TEST_F(Verify, TheNativeVlanOnEachSide) {
  unobserved([&] { config->nativeVlanIs("et3/1", 11); });
  EXPECT_EQ(messages(), Strings{"port et3/1 nativeVlan: configuration 11, status 10, driver 10"});
  unobserved([&] { config->nativeVlanIs("et3/1", 10); });
  status->nativeVlanIs("et3/1", 12);
  EXPECT_EQ(messages(), Strings{"port et3/1 nativeVlan: configuration 10, status 12, driver 10"});
  status->nativeVlanIs("et3/1", 10);
  ASSERT_EQ(simDriver().nativeVlan("et3/1", false, 13), 0);
  EXPECT_EQ(messages(), Strings{"port et3/1 nativeVlan: configuration 10, status 10, driver 13"});
  ASSERT_EQ(simDriver().nativeVlan("et3/1", false, 4096), 0);
  EXPECT_EQ(messages(), Strings{"port et3/1 nativeVlan: configuration 10, status 10, driver 0"});
  ASSERT_EQ(simDriver().nativeVlan("et3/2", false, 13), 0);
  EXPECT_EQ(messages(), (Strings{"port et3/1 nativeVlan: configuration 10, status 10, driver 0",
                                 "port et3/2 nativeVlan: configuration 0, status 0, driver 13"}));
}

TEST_F(Verify, TheModeOnEachSide) {
  unobserved(
      [&] { config->switchportModeIs("et3/1", SwitchportMode::switchportModeDot1qTunnel_); });
  EXPECT_EQ(messages(),
            Strings{"port et3/1 switchportMode: configuration switchportModeDot1qTunnel, status "
                    "switchportModeTrunk, driver false"});
  unobserved([&] { config->switchportModeIs("et3/1", SwitchportMode::switchportModeTrunk_); });
  status->switchportModeIs("et3/1", SwitchportMode::switchportModeAccess_);
  EXPECT_EQ(messages(),
            Strings{"port et3/1 switchportMode: configuration switchportModeTrunk, status "
                    "switchportModeAccess, driver false"});
  status->switchportModeDel("et3/1");
  EXPECT_EQ(messages(), Strings{"port et3/1 switchportMode: configuration switchportModeTrunk, "
                                "driver false"});
  status->switchportModeIs("et3/1", SwitchportMode::switchportModeTrunk_);
  ASSERT_EQ(simDriver().nativeVlan("et3/1", true, 10), 0);
  EXPECT_EQ(messages(), Strings{"port et3/1 switchportMode: configuration switchportModeTrunk, "
                                "status switchportModeTrunk, driver true"});
}

TEST_F(Verify, SaysWhatADriverThatTellsLittleLeavesUncompared) {
  DriverLibrary const bare(KEST_DRIVER_BARE);
  Mox::Ptr<Config> const wanted(new Config("config"));
  Mox::Ptr<Status> const done(new Status("status"));
  RunningAgent const little{wanted, done, nullptr, bare, handles, served.isApplying, served.apply};
  auto const verified = [&] {
    return whole(Verbs(little).carryOut({{"verb", "verify"}}, false, nullptr), {});
  };
  EXPECT_EQ(verified(), R"({"differences":[],"clean":true,)"
                        R"("notCompared":["interfaces","device parameters"]})");
  done->nativeVlanIs("et9", 5);
  EXPECT_EQ(verified(), R"({"differences":[{"subject":"port et9","what":"nativeVlan","status":5,)"
                        R"("message":"port et9 nativeVlan: status 5"}],"clean":false,)"
                        R"("notCompared":["interfaces","device parameters"]})");
}

TEST_F(Verify, SubjectsComeDevicesFirstInNaturalOrder) {
  for (char const* ifName : {"et10", "et9", "et3/10"}) status->nativeVlanIs(ifName, 1);
  status->deviceStateIs("fap10", DeviceState::deviceStateUp_);
  status->deviceStateIs("fap9", DeviceState::deviceStateUp_);
  Strings subjects;
  Json const found = report();
  for (Json const& difference : found.at("differences")) {
    subjects.push_back(difference.at("subject").get<std::string>());
  }
  EXPECT_EQ(subjects,
            (Strings{"device fap9", "device fap10", "port et3/10", "port et9", "port et10"}));
}

TEST_F(Verify, NamesOfAnyBytesAreTheSameOnEverySide) {
  for (std::string const name : {"et%41", "et\"'\n", "et\xff\x01", "et\xc3\xa9"}) {
    Config::SwitchPort port = config->switchPort("et3/1");
    port.ifNameIs(Mox::String8(name));
    config->switchPortIs(port);
    EXPECT_TRUE(status->switchPort(Mox::String8(name)).created()) << name;
  }
  for (std::string const name : {"fap%41", "fap\"'\n", "fap\xff\x01", "fap\xc3\xa9"}) {
    Mox::Ptr<Fru::PciHam> const handle(new Fru::PciHam(Mox::Name(Mox::String8(name))));
    Mox::dirAt("/bytes")->entityIs(handle);
    Config::Device device = config->device("fap0");
    device.devNameIs(Mox::String8(name));
    device.pciHamIs(handle);
    config->deviceIs(device);
    config->deviceStateIs(Mox::String8(name), DeviceState::deviceStateUp_);
    EXPECT_TRUE(status->device(Mox::String8(name)).registered()) << name;
  }
  EXPECT_EQ(messages(), Strings{});
  Mox::root()->entityDel(Mox::Name("bytes"));
}

}  // namespace
}  // namespace Kest::Agent
