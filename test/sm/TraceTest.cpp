#include <sstream>

#include "platform/mox/Trace.h"
#include "test/sm/SmFixture.h"

namespace Hardware::Kest::Slice {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TraceTest : public SmTest {
 protected:
  ~TraceTest() override { Mox::traceCoverageStreamIs(nullptr); }
};

constexpr char const* handleSwitchPort =
    "trace KestSliceDma 8 KestSliceDmaSm:126 handleSwitchPort "
    "KestSliceDmaSm::handleSwitchPort ifName=et1";
constexpr char const* handleNativeVlan =
    "trace KestSliceDma 8 KestSliceDmaSm:170 handleNativeVlan "
    "KestSliceDmaSm::handleNativeVlan ifName=et1";
constexpr char const* handleTimerExpired =
    "trace KestSliceDma 8 KestSliceDmaSm:84 handleTimerExpired "
    "void Hardware::Kest::Slice::KestSliceDmaSm::handleTimerExpired()";

TEST_F(TraceTest, PortHandlersTraceFirstAtLevel8) {
  traceOn("8");
  config->switchPortIs(port("et1"));
  EXPECT_THAT(journal.taken(), ElementsAre(handleSwitchPort, ifadd("et1"), "usleep(100000)",
                                           "status switchPort et1: created", handleNativeVlan,
                                           "kestDmaNativeVlan('et1', false, 4096)"));
  config->switchPortDel("et1");
  EXPECT_THAT(journal.taken(), ElementsAre(handleSwitchPort, "kestDmaIfdel('et1')",
                                           "status switchPort et1: none", handleNativeVlan));
}

TEST_F(TraceTest, DeviceHandlerTracesAtLevel1AndAgainBeforeARegistration) {
  traceOn("1");
  config->deviceIs(device("fap0"));
  EXPECT_THAT(
      journal.taken(),
      ElementsAre("trace KestSliceDma 1 KestSliceDmaSm:204 handleDevice void "
                  "Hardware::Kest::Slice::KestSliceDmaSm::handleDevice(Mox::String) "
                  "device: 'fap0'",
                  "trace KestSliceDma 1 KestSliceDmaSm:211 handleDevice void "
                  "Hardware::Kest::Slice::KestSliceDmaSm::handleDevice(Mox::String) "
                  "device: 'fap0'",
                  "kestDmaDeviceRename('fap0', '0000:05:00.0')", "kestDmaDeviceDown('fap0')",
                  "kestDmaDeviceParam('fap0', 2, fapTypeArad, 11, 12, 13, 14, 15, 16, 17)",
                  "status device fap0: registered", "status deviceState fap0: deviceStateUnknown"));
  config->deviceDel("fap0");
  EXPECT_THAT(journal.taken(),
              ElementsAre("trace KestSliceDma 1 KestSliceDmaSm:204 handleDevice void "
                          "Hardware::Kest::Slice::KestSliceDmaSm::handleDevice(Mox::String) "
                          "device: 'fap0'",
                          "status device fap0: none"));
}

TEST_F(TraceTest, DeviceStateHandlerTracesBothStatesEvenOfAnUnknownDevice) {
  traceOn("1");
  config->deviceStateIs("fap9", down);
  EXPECT_THAT(journal.taken(),
              ElementsAre("trace KestSliceDma 1 KestSliceDmaSm:236 handleDeviceState void "
                          "Hardware::Kest::Slice::KestSliceDmaSm::handleDeviceState(Mox::String) "
                          "device: 'fap9' state: deviceStateDown/deviceStateUnknown"));

  traceOn("");
  registerDevice("fap0", up);
  traceOn("1");
  config->deviceStateIs("fap0", down);
  EXPECT_THAT(journal.taken(),
              ElementsAre("trace KestSliceDma 1 KestSliceDmaSm:236 handleDeviceState void "
                          "Hardware::Kest::Slice::KestSliceDmaSm::handleDeviceState(Mox::String) "
                          "device: 'fap0' state: deviceStateDown/deviceStateUp",
                          "kestDmaDeviceDown('fap0')", "status deviceState fap0: deviceStateDown"));
}

TEST_F(TraceTest, InitializationAndModeTraceAtLevel2) {
  traceOn("2");
  sm = kestSliceDmaSmFactory(config, status);
  sm->modeIs(SmMode::smModePolling_);
  EXPECT_THAT(journal.taken(),
              ElementsAre("trace KestSliceDma 2 KestSliceDmaSm:71 handleInitialized "
                          "void Hardware::Kest::Slice::KestSliceDmaSm::handleInitialized()",
                          "trace KestSliceDma 2 KestSliceDmaSm:57 handleMode "
                          "void Hardware::Kest::Slice::KestSliceDmaSm::handleMode()"));
}

TEST_F(TraceTest, PollTracesFirstAtLevel8) {
  status->deviceStateIs("fap0", unknown);
  journal.taken();
  traceOn("8");
  sm->handleTimerExpired();
  EXPECT_THAT(journal.taken(), ElementsAre(handleTimerExpired, "kestDmaIsDeviceUp('fap0')"));
}

TEST_F(TraceTest, EachPointIsSilentAtAllOtherLevels) {
  status->deviceStateIs("fap0", unknown);
  createPort("et1");
  traceOn("0-7");
  sm->handleTimerExpired();
  config->nativeVlanNotify("et1");
  EXPECT_THAT(journal.taken(),
              ElementsAre("kestDmaIsDeviceUp('fap0')", "kestDmaNativeVlan('et1', false, 4096)"));
  traceOn("02-9");
  config->deviceNotify("fap9");
  config->deviceStateNotify("fap9");
  EXPECT_THAT(journal.taken(), IsEmpty());
  traceOn("013-9");
  sm->handleMode();
  sm->handleInitialized();
  EXPECT_THAT(journal.taken(), IsEmpty());
  sm->configIs(nullptr);
  config->switchPortDelAll();
  sm->configIs(config);
  traceOn("1-9");
  sm->doVerify();
  EXPECT_THAT(journal.taken(), IsEmpty());
}

// The message looks the wanted state up; for a device that is not registered nothing else does.
TEST_F(TraceTest, MessageIsBuiltOnlyWhenSomebodyWantsIt) {
  auto const lookups = [&] {
    auto const before = config->lookupCount();
    config->deviceStateNotify("fap9");
    return config->lookupCount() - before;
  };
  EXPECT_EQ(lookups(), 0U);
  traceOn("1");
  EXPECT_EQ(lookups(), 1U);
  traceOn("");
  EXPECT_EQ(lookups(), 0U);
  std::ostringstream coverage;
  Mox::traceCoverageStreamIs(&coverage);
  EXPECT_EQ(lookups(), 1U);
  EXPECT_EQ(coverage.str(),
            "KestSliceDma 1 KestSliceDmaSm:236 handleDeviceState void "
            "Hardware::Kest::Slice::KestSliceDmaSm::handleDeviceState(Mox::String) "
            "device: 'fap9' state: deviceStateUnknown/deviceStateUnknown\n");
}

}  // namespace
}  // namespace Hardware::Kest::Slice
