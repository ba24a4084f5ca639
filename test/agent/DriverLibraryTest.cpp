#include "agent/DriverLibrary.h"

#include <gtest/gtest.h>

#include "driver/sim/SimDriver.h"

namespace Kest::Agent {
namespace {

std::string refusal(auto const& attempt) {
  try {
    attempt();
    return {};
  } catch (DriverError const& error) {
    return error.what();
  }
}

std::string loadRefusal(std::string const& driver) {
  return refusal([&] { DriverLibrary const library(driver); });
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

TEST(DriverLibrary, HandsAFaultFileToTheSimulatedDriver) {
  DriverLibrary sim("sim");
  Hardware::Kest::Sim::simDriver().reset();
  EXPECT_EQ(refusal([&] { sim.faultFileIs("/no/such/file"); }),
            "/no/such/file: cannot be read: No such file or directory");
  EXPECT_EQ(refusal([&] { sim.faultFileIs(KEST_EXAMPLES "/small.slice"); }),
            KEST_EXAMPLES "/small.slice:3:1: expected fail or flip, found 'pciHam'");
  EXPECT_EQ(Hardware::Kest::Sim::simDriver().faultsText(), "");
}

}  // namespace
}  // namespace Kest::Agent
