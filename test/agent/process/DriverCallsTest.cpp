#include <gtest/gtest.h>

#include <cerrno>

#include "agent/process/DriverLibrary.h"
#include "agent/process/SignOfLife.h"
#include "agent/process/SimulatedDriver.h"
#include "driver/KestDma.h"

/// The program's operations, which pass their calls on. It is not linked with a driver.
namespace Kest::Agent {
namespace {

using namespace Hardware::Kest;

class DriverCalls : public testing::Test {
 protected:
  DriverLibrary library{"sim"};
  SimulatedDriver sim{library};
};

TEST_F(DriverCalls, ReachTheDriverWithEveryArgumentAndBringItsAnswerBack) {
  Mox::Ptr<Fru::PciHam const> const handle(new Fru::PciHam("0000:05:00.0"));
  EXPECT_EQ(kestDmaDeviceRename("fap0", handle), 0);
  EXPECT_EQ(kestDmaDeviceDown("fap0"), 0);
  EXPECT_EQ(kestDmaDeviceParam("fap0", 2, FapType::fapTypeAradDual_, 1, 2, 3, 4, 5, 6, 7), 0);
  EXPECT_EQ(kestDmaDeviceUp("fap0"), 0);
  bool up = false;
  EXPECT_EQ(kestDmaIsDeviceUp("fap0", &up), 0);
  EXPECT_TRUE(up);
  EXPECT_EQ(kestDmaIsDeviceUp("fap1", &up), ENODEV);
  EXPECT_EQ(kestDmaIfadd("et1", 1, 2, 3, "fap0", 1, true, false, "00:1c:73:0a:0b:0c"), 0);
  EXPECT_EQ(kestDmaNativeVlan("et1", true, 10), 0);
  EXPECT_EQ(kestDmaIfdel("et2"), ENODEV);
  std::string const dump = sim.text("dump");
  testing::internal::CaptureStderr();
  kestDmaDump();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), dump);
  EXPECT_EQ(sim.text("log"), R"(#1 kestDmaDeviceRename('fap0', '0000:05:00.0') = 0
#2 kestDmaDeviceDown('fap0') = 0
#3 kestDmaDeviceParam('fap0', numFaps 2, fapType fapTypeAradDual, cpuTmSysPort 1, cpuEthSysPort 2, cpuRawSysPort 3, sflowPort 4, cpuAradSysPort 5, cpuArad 6, cpuAradBridge 7) = 0
#4 kestDmaDeviceUp('fap0') = 0
#5 kestDmaIsDeviceUp('fap0', up) = 0
#6 kestDmaIsDeviceUp('fap1') = 19
#7 kestDmaIfadd('et1', destId 1, shadowIntfId 2, trafficClass 3, devName 'fap0', fapNum 1, ctrl True, hwLag False, macAddr '00:1c:73:0a:0b:0c') = 0
#8 kestDmaNativeVlan('et1', True, 10) = 0
#9 kestDmaIfdel('et2') = 19
#10 kestDmaDump()
)");
}

TEST_F(DriverCalls, AreSignsOfLife) {
  LifeLine const life;
  life.isWatched();
  EXPECT_FALSE(life.taken());
  kestDmaIfdel("et1");
  EXPECT_TRUE(life.taken());
  EXPECT_FALSE(life.taken());
}

}  // namespace
}  // namespace Kest::Agent
