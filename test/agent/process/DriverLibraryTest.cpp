#include "agent/process/DriverLibrary.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "agent/process/SimulatedDriver.h"
#include "driver/sim/SimDriver.h"

namespace Kest::Agent {
namespace {

std::string driverRefusal(auto const& attempt) {
  try {
    attempt();
    return {};
  } catch (DriverError const& error) {
    return error.what();
  }
}

std::string loadRefusal(std::string const& driver) {
  return driverRefusal([&] { DriverLibrary const library(driver); });
}

constexpr char const* noSuchFile = ": cannot open shared object file: No such file or directory";

TEST(DriverLibrary, LoadsTheSimulatedDriverByItsNameAndByItsPath) {
  EXPECT_EQ(loadRefusal("sim"), "");
  EXPECT_EQ(loadRefusal(KEST_DRIVER_SIM), "");
}

TEST(DriverLibrary, NamesTheOperationThatALibraryLacks) {
  EXPECT_EQ(loadRefusal(KEST_DRIVER_INCOMPLETE),
            "driver " KEST_DRIVER_INCOMPLETE
            " lacks\n  Hardware::Kest::kestDmaIsDeviceUp(Mox::String8, bool*)");
}

TEST(DriverLibrary, NamesAllNineWhenTheLibraryIsNoDriver) {
  EXPECT_EQ(loadRefusal("libm.so.6"), R"(driver libm.so.6 lacks
  Hardware::Kest::kestDmaIfadd(char const*, int, int, int, Mox::String8, int, bool, bool, char const*)
  Hardware::Kest::kestDmaIfdel(char const*)
  Hardware::Kest::kestDmaNativeVlan(char const*, bool, unsigned short)
  Hardware::Kest::kestDmaDeviceRename(Mox::String8, Mox::Ptr<Fru::PciHam const>)
  Hardware::Kest::kestDmaDeviceParam(Mox::String8, unsigned int, Hardware::Kest::FapType, unsigned int, unsigned int, unsigned int, unsigned int, unsigned int, unsigned int, unsigned int)
  Hardware::Kest::kestDmaDeviceDown(Mox::String8)
  Hardware::Kest::kestDmaDeviceUp(Mox::String8)
  Hardware::Kest::kestDmaIsDeviceUp(Mox::String8, bool*)
  Hardware::Kest::kestDmaDump())");
}

TEST(DriverLibrary, SaysWhyALibraryCannotBeLoaded) {
  EXPECT_EQ(
      loadRefusal("/no/such/driver.so"),
      std::string("driver /no/such/driver.so cannot be loaded: /no/such/driver.so") + noSuchFile);
  EXPECT_EQ(loadRefusal(KEST_EXAMPLES "/small.slice"),
            "driver " KEST_EXAMPLES "/small.slice cannot be loaded: " KEST_EXAMPLES
            "/small.slice: invalid ELF header");
}

TEST(DriverLibrary, AsksTheDriverForADevicesState) {
  DriverLibrary const sim("sim");
  Hardware::Kest::Sim::simDriver().reset();
  EXPECT_EQ(sim.deviceState("fap0").error, ENODEV);
  Mox::Ptr<Fru::PciHam const> const handle(new Fru::PciHam("0000:05:00.0"));
  Hardware::Kest::Sim::simDriver().deviceRename("fap0", handle);
  EXPECT_EQ(sim.deviceState("fap0").error, 0);
  EXPECT_FALSE(sim.deviceState("fap0").up);
  Hardware::Kest::Sim::simDriver().deviceFlip("fap0");
  EXPECT_TRUE(sim.deviceState("fap0").up);
}

TEST(SimulatedDriver, TakesFaultsFromAFileOrAText) {
  DriverLibrary const library("sim");
  SimulatedDriver const sim(library);
  Hardware::Kest::Sim::simDriver().reset();
  EXPECT_EQ(driverRefusal([&] { sim.faultFileIs("/no/such/file"); }),
            "/no/such/file: cannot be read: No such file or directory");
  EXPECT_EQ(driverRefusal([&] { sim.faultFileIs(KEST_EXAMPLES "/small.slice"); }),
            KEST_EXAMPLES "/small.slice:3:1: expected fail or flip, found 'pciHam'");
  EXPECT_EQ(driverRefusal([&] { sim.faultsAre("nonsense"); }),
            "faults:1:1: expected fail or flip, found 'nonsense'");
  EXPECT_EQ(sim.text("faults"), "");
  EXPECT_EQ(driverRefusal([&] { sim.faultsAre("fail kestDmaIfdel * 5 always\n"); }), "");
  EXPECT_EQ(sim.text("faults"), "fail kestDmaIfdel * 5 always\n");
}

TEST(SimulatedDriver, IsToldFromAnother) {
  DriverLibrary const library("sim");
  EXPECT_TRUE(SimulatedDriver(library).isThere());
  DriverLibrary const other(KEST_DRIVER_BARE);
  SimulatedDriver const notThere(other);
  EXPECT_FALSE(notThere.isThere());
  EXPECT_EQ(driverRefusal([&] { notThere.text("dump"); }),
            "driver " KEST_DRIVER_BARE " is not the simulated one: it has no kestDmaSimText");
}

}  // namespace
}  // namespace Kest::Agent
