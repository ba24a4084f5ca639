#include "driver/sim/SimDriver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "test/driver/SimFixture.h"

namespace Hardware::Kest::Sim {
namespace {

struct Step {
  char const* what;
  std::function<int(SimDriver&)> call;
  int result;
};

/// In order, on one driver.
void expectResults(SimDriver& driver, std::vector<Step> const& steps) {
  for (Step const& step : steps) EXPECT_EQ(step.call(driver), step.result) << step.what;
}

TEST(SimDriver, AnswersInterfaceOperationsAsTheSliceStands) {
  SimDriver driver;
  expectResults(
      driver,
      {
          {"no such device", [](auto& d) { return d.ifadd("et1", portOn("fap0", 0)); }, 19},
          {"no device at all", [](auto& d) { return d.ifadd("et9", portOn("", 77)); }, 0},
          {"new chip", [](auto& d) { return d.deviceRename("fap0", pciHam("a")); }, 0},
          {"third FAP, not registered", [](auto& d) { return d.ifadd("et2", portOn("fap0", 2)); },
           0},
          {"fourth FAP, not registered", [](auto& d) { return d.ifadd("et1", portOn("fap0", 3)); },
           22},
          {"two FAPs", [](auto& d) { return d.deviceParam("fap0", faps(2)); }, 0},
          {"second FAP", [](auto& d) { return d.ifadd("et1", portOn("fap0", 1)); }, 0},
          {"third FAP of two", [](auto& d) { return d.ifadd("et1", portOn("fap0", 2)); }, 22},
          {"negative FAP", [](auto& d) { return d.ifadd("et1", portOn("fap0", -1)); }, 22},
          {"short MAC", [](auto& d) { return d.ifadd("et1", portOn("fap0", 0, "00:1c:73")); }, 22},
          {"no MAC", [](auto& d) { return d.ifadd("et1", portOn("fap0", 0, "")); }, 22},
          {"no name", [](auto& d) { return d.ifadd("", portOn("fap0", 0)); }, 22},
          {"VLAN without interface", [](auto& d) { return d.nativeVlan("et3", true, 10); }, 19},
          {"clear without interface", [](auto& d) { return d.nativeVlan("et3", false, 4096); }, 19},
          {"VLAN 0", [](auto& d) { return d.nativeVlan("et1", true, 0); }, 22},
          {"VLAN 1", [](auto& d) { return d.nativeVlan("et1", true, 1); }, 0},
          {"VLAN 4094", [](auto& d) { return d.nativeVlan("et1", true, 4094); }, 0},
          {"VLAN 4095", [](auto& d) { return d.nativeVlan("et1", false, 4095); }, 22},
          {"VLAN 4097", [](auto& d) { return d.nativeVlan("et1", false, 4097); }, 22},
          {"delete", [](auto& d) { return d.ifdel("et2"); }, 0},
          {"delete twice", [](auto& d) { return d.ifdel("et2"); }, 19},
      });
  Interface const et1{portOn("fap0", 1), 4094, true};
  Interface const et9{portOn("", 77), 4096, false};
  EXPECT_THAT(driver.interfaces(),
              testing::ElementsAre(std::pair{Mox::String8("et1"), et1}, std::pair{"et9", et9}));
}

/// What a state file would be refused for does not come about.
TEST(SimDriver, TakesNamesAndPathsOfABoundedLength) {
  SimDriver driver;
  std::string const longest(255, 'a');
  std::string levels;
  while (levels.size() < 64) levels += "/a";
  auto const rename = [&](std::string const& name, std::string const& path) {
    return driver.deviceRename(Mox::String8(name), pciHam(path.c_str()));
  };
  EXPECT_EQ(rename(longest, longest), 0);
  EXPECT_EQ(rename("fap0", levels), 0);
  EXPECT_EQ(driver.ifadd(Mox::String8(longest), portOn("fap0", 0)), 0);
  std::string const before = driver.stateText();
  EXPECT_EQ(rename("fap1", longest + "a"), 22);
  EXPECT_EQ(rename("fap1", levels + "/a"), 22);
  EXPECT_EQ(rename(longest + "a", levels), 22);
  EXPECT_EQ(driver.ifadd(Mox::String8(longest + "a"), portOn("fap0", 0)), 22);
  EXPECT_EQ(driver.stateText(), before);
}

TEST(SimDriver, KeepsTheNativeVlanWhenAnInterfaceIsAddedAgain) {
  SimDriver driver;
  driver.ifadd("et1", portOn("", 0));
  driver.nativeVlan("et1", true, 10);
  InterfaceParam const changed{8, 5, 3, "", 1, false, true, "FF:00:00:00:00:01"};
  EXPECT_EQ(driver.ifadd("et1", changed), 0);
  EXPECT_EQ(*driver.interface("et1"), (Interface{changed, 10, true}));

  driver.nativeVlan("et1", false, 4096);
  EXPECT_EQ(*driver.interface("et1"), (Interface{changed, 4096, false}));

  driver.nativeVlan("et1", true, 10);
  driver.ifdel("et1");
  driver.ifadd("et1", changed);
  EXPECT_EQ(*driver.interface("et1"), (Interface{changed, 4096, false}));
}

TEST(SimDriver, AnswersDeviceOperationsAsTheSliceStands) {
  SimDriver driver;
  bool up = true;
  expectResults(
      driver,
      {
          {"no handle", [](auto& d) { return d.deviceRename("fap0", nullptr); }, 19},
          {"no such device: param", [](auto& d) { return d.deviceParam("fap0", faps(1)); }, 19},
          {"no such device: down", [](auto& d) { return d.deviceDown("fap0"); }, 19},
          {"no such device: up", [](auto& d) { return d.deviceUp("fap0"); }, 19},
          {"no such device: is up", [&](auto& d) { return d.isDeviceUp("fap0", &up); }, 19},
          {"empty name", [](auto& d) { return d.deviceRename("", pciHam("b")); }, 22},
          {"chip without a name", [](auto& d) { return d.deviceDown(""); }, 19},
          {"first chip", [](auto& d) { return d.deviceRename("fap0", pciHam("a")); }, 0},
          {"same again", [](auto& d) { return d.deviceRename("fap0", pciHam("a")); }, 0},
          {"name taken", [](auto& d) { return d.deviceRename("fap0", pciHam("b")); }, 17},
          {"not registered", [](auto& d) { return d.deviceUp("fap0"); }, 22},
          {"no FAPs", [](auto& d) { return d.deviceParam("fap0", faps(0)); }, 22},
          {"four FAPs", [](auto& d) { return d.deviceParam("fap0", faps(4)); }, 22},
          {"one FAP", [](auto& d) { return d.deviceParam("fap0", faps(1)); }, 0},
          {"three FAPs", [](auto& d) { return d.deviceParam("fap0", faps(3)); }, 0},
          {"up", [](auto& d) { return d.deviceUp("fap0"); }, 0},
          {"up again", [](auto& d) { return d.deviceUp("fap0"); }, 0},
          {"registered while up", [](auto& d) { return d.deviceParam("fap0", faps(1)); }, 16},
          {"renamed while up", [](auto& d) { return d.deviceRename("fap1", pciHam("a")); }, 0},
          {"old name", [](auto& d) { return d.deviceDown("fap0"); }, 19},
          {"old name is free", [](auto& d) { return d.deviceRename("fap0", pciHam("b")); }, 0},
          {"down", [](auto& d) { return d.deviceDown("fap0"); }, 0},
      });
  EXPECT_TRUE(up);  // an answer other than 0 does not write it
  Device const a{"fap1", faps(3), true, 0};
  Device const b{"fap0", std::nullopt, false, 0};
  EXPECT_THAT(driver.devices(),
              testing::ElementsAre(std::pair{Mox::String8("a"), a}, std::pair{"b", b}));
  EXPECT_EQ(driver.isDeviceUp("fap0", &up), 0);
  EXPECT_FALSE(up);
  EXPECT_EQ(driver.isDeviceUp("fap1", &up), 0);
  EXPECT_TRUE(up);
}

TEST(SimDriver, KeepsInterfacesOnTheirDeviceWhenItIsRenamed) {
  SimDriver driver;
  addFap0(driver);
  driver.ifadd("et1", portOn("fap0", 0));
  driver.ifadd("et2", portOn("", 0));
  driver.deviceRename("fap5", pciHam("0000:05:00.0"));
  driver.deviceRename("fap6", pciHam("0000:06:00.0"));
  EXPECT_EQ(driver.interface("et1")->param, portOn("fap5", 0));
  EXPECT_EQ(driver.interface("et2")->param, portOn("", 0));
}

TEST(SimDriver, LogsTheLastCallsAndCountsTheOthers) {
  SimDriver driver(2);
  driver.ifdel("et1");
  driver.ifdel("et2");
  driver.deviceUp("it's");
  EXPECT_EQ(driver.log().total(), 3u);
  EXPECT_EQ(driver.log().dropped(), 1u);
  ASSERT_EQ(driver.log().calls().size(), 2u);
  Call const& last = driver.log().calls().back();
  EXPECT_EQ(last.operation, Operation::deviceUp);
  EXPECT_EQ(last.name, "it's");
  EXPECT_EQ(last.arguments, "'it\\'s'");
  EXPECT_EQ(last.result, 19);
  EXPECT_FALSE(last.injected);
  EXPECT_EQ(last.sequence, 3u);
}

TEST(SimDriver, DumpsEverythingForPeople) {
  SimDriver driver(6);
  driver.deviceRename("", nullptr);
  addFap0(driver);
  driver.deviceRename("fap0", pciHam("0000:06:00.0"));
  driver.ifadd("et3/1", portOn("fap0", 1));
  driver.ifadd("et4", portOn("", 0));
  driver.nativeVlan("et3/1", true, 10);
  driver.faultsAre("fail kestDmaDeviceUp * 5 always\nflip 'fap0' after 2 kestDmaIfdel 'et4'");
  driver.deviceUp("fap0");
  driver.deviceFlip("fap0");
  bool up = false;
  driver.isDeviceUp("fap0", &up);
  testing::internal::CaptureStderr();
  driver.dump();
  std::string const printed = testing::internal::GetCapturedStderr();
  EXPECT_EQ(driver.log().calls().back().operation, Operation::dump);
  EXPECT_EQ(
      printed,
      "kest-dma-sim: interfaces 2, devices 2, faults to come 2, calls 9 (3 no longer in the log)\n"
      "interface 'et3/1': destId 7, shadowIntfId -1, trafficClass 2, devName 'fap0', fapNum 1, "
      "ctrl True, hwLag False, macAddr '00:1c:73:0a:0b:0c', nativeVlan 10, mode True\n"
      "interface 'et4': destId 7, shadowIntfId -1, trafficClass 2, devName '', fapNum 0, "
      "ctrl True, hwLag False, macAddr '00:1c:73:0a:0b:0c', nativeVlan none\n"
      "device at '0000:05:00.0': 'fap0', up, flips 1, numFaps 2, fapType fapTypeArad, "
      "cpuTmSysPort 1, cpuEthSysPort 2, cpuRawSysPort 3, sflowPort 4, cpuAradSysPort 5, "
      "cpuArad 6, cpuAradBridge 7\n"
      "device at '0000:06:00.0': '', down, flips 0, not registered\n"
      "fail kestDmaDeviceUp * 5 always\n"
      "flip 'fap0' after 2 kestDmaIfdel 'et4'\n"
      "#4 kestDmaDeviceRename('fap0', '0000:06:00.0') = 17\n"
      "#5 kestDmaIfadd('et3/1', destId 7, shadowIntfId -1, trafficClass 2, devName 'fap0', "
      "fapNum 1, ctrl True, hwLag False, macAddr '00:1c:73:0a:0b:0c') = 0\n"
      "#6 kestDmaIfadd('et4', destId 7, shadowIntfId -1, trafficClass 2, devName '', fapNum 0, "
      "ctrl True, hwLag False, macAddr '00:1c:73:0a:0b:0c') = 0\n"
      "#7 kestDmaNativeVlan('et3/1', True, 10) = 0\n"
      "#8 kestDmaDeviceUp('fap0') = 5 (fault)\n"
      "#9 kestDmaIsDeviceUp('fap0', up) = 0\n");

  driver.reset();
  EXPECT_EQ(driver.dumpText(),
            "kest-dma-sim: interfaces 0, devices 0, faults to come 0, calls 0 (0 no longer in the "
            "log)\n");
}

}  // namespace
}  // namespace Hardware::Kest::Sim
