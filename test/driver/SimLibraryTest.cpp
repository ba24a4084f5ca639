#include <dlfcn.h>
#include <gtest/gtest.h>

#include "driver/KestDma.h"
#include "driver/sim/SimDriver.h"
#include "test/driver/SimFixture.h"

namespace Hardware::Kest {
namespace {

TEST(SimLibrary, ExportsTheNineFunctionsAndTheEntriesInTermsOfC) {
  void* const library = dlopen(KEST_DRIVER_SIM, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  for (char const* symbol : {
           "_ZN8Hardware4Kest12kestDmaIfaddEPKciiiN3Mox7String8EibbS2_",
           "_ZN8Hardware4Kest12kestDmaIfdelEPKc",
           "_ZN8Hardware4Kest17kestDmaNativeVlanEPKcbt",
           "_ZN8Hardware4Kest19kestDmaDeviceRenameEN3Mox7String8ENS1_3PtrIKN3Fru6PciHamEEE",
           "_ZN8Hardware4Kest18kestDmaDeviceParamEN3Mox7String8EjNS0_7FapTypeEjjjjjjj",
           "_ZN8Hardware4Kest17kestDmaDeviceDownEN3Mox7String8E",
           "_ZN8Hardware4Kest15kestDmaDeviceUpEN3Mox7String8E",
           "_ZN8Hardware4Kest17kestDmaIsDeviceUpEN3Mox7String8EPb",
           "_ZN8Hardware4Kest11kestDmaDumpEv",
           "kestDmaSimFaultFileIs",
           "kestDmaSimFaultsAre",
           "kestDmaSimStateFileIs",
           "kestDmaSimDeviceFlip",
           "kestDmaSimText",
           "kestDmaSimInterface",
           "kestDmaSimDevice",
           "kestDmaSimNextInterface",
       }) {
    EXPECT_NE(dlsym(library, symbol), nullptr) << symbol;
  }
  EXPECT_EQ(dlclose(library), 0);
}

TEST(SimLibrary, PassesEveryArgumentToTheProcessesSlice) {
  Sim::SimDriver& sim = Sim::simDriver();
  sim.reset();
  EXPECT_EQ(kestDmaDeviceRename("fap0", Sim::pciHam("0000:05:00.0")), 0);
  EXPECT_EQ(kestDmaDeviceDown("fap0"), 0);
  EXPECT_EQ(kestDmaDeviceParam("fap0", 2, FapType::fapTypeAradDual_, 1, 2, 3, 4, 5, 6, 7), 0);
  EXPECT_EQ(kestDmaDeviceUp("fap0"), 0);
  bool up = false;
  EXPECT_EQ(kestDmaIsDeviceUp("fap0", &up), 0);
  EXPECT_TRUE(up);
  EXPECT_EQ(kestDmaIfadd("et1", 1, 2, 3, "fap0", 1, true, false, "00:1c:73:0a:0b:0c"), 0);
  EXPECT_EQ(kestDmaNativeVlan("et1", true, 10), 0);
  EXPECT_EQ(*sim.interface("et1"),
            (Sim::Interface{{1, 2, 3, "fap0", 1, true, false, "00:1c:73:0a:0b:0c"}, 10, true}));
  EXPECT_EQ(
      *sim.device("fap0"),
      (Sim::Device{"fap0", Sim::DeviceParam{2, FapType::fapTypeAradDual_, 1, 2, 3, 4, 5, 6, 7},
                   true, 0}));
  EXPECT_EQ(kestDmaIfdel("et1"), 0);
  EXPECT_EQ(kestDmaIfadd(nullptr, 1, 2, 3, "", 1, true, false, nullptr), 22);
  std::string const dump = sim.dumpText();
  testing::internal::CaptureStderr();
  kestDmaDump();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), dump);
  sim.reset();
}

}  // namespace
}  // namespace Hardware::Kest
