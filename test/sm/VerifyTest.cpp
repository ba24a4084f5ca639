#include "test/sm/SmFixture.h"

namespace Hardware::Kest::Slice {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using VerifyTest = SmTest;

constexpr char const* notCreated =
    "KestSliceDmaSm:38: void Hardware::Kest::Slice::KestSliceDmaSm::doVerify(): "
    "Assertion `status()->switchPort( iterDev->ifName() ).created()' failed.";
constexpr char const* notRegistered =
    "KestSliceDmaSm:49: void Hardware::Kest::Slice::KestSliceDmaSm::doVerify(): "
    "Assertion `status()->device( iterDev->devName() ).registered()' failed.";
constexpr char const* otherState =
    "KestSliceDmaSm:51: void Hardware::Kest::Slice::KestSliceDmaSm::doVerify(): "
    "Assertion `status()->deviceState( iterDev->devName() ) == "
    "config()->deviceState( iterDev->devName() )' failed.";

TEST_F(VerifyTest, EmptyConfigIsComplete) {
  traceOn("*");
  sm->doVerify();
  EXPECT_THAT(journal.taken(),
              ElementsAre("trace KestSliceDma 0 KestSliceDmaSm:34 doVerify "
                          "void Hardware::Kest::Slice::KestSliceDmaSm::doVerify()"));
}

TEST_F(VerifyTest, MissingStateCountsAsUnknownOnEitherSide) {
  config->deviceIs(device("fap0"));
  sm->doVerify();
  status->deviceStateDel("fap0");
  sm->doVerify();
  sm->configIs(nullptr);
  config->deviceStateIs("fap0", unknown);
  sm->configIs(config);
  sm->doVerify();
}

TEST_F(VerifyTest, OnlyWhatTheConfigHasIsVerified) {
  sm->configIs(nullptr);
  config->nativeVlanIs("et1", 10);
  config->switchportModeIs("et1", tunnel);
  config->deviceStateIs("fap9", up);
  sm->configIs(config);
  status->switchPortIs(KestSliceDmaStatus::SwitchPort({"et9", false}));
  status->nativeVlanIs("et9", 20);
  status->deviceIs(KestSliceDmaStatus::Device({"fap8", false}));
  status->deviceStateIs("fap8", down);
  sm->doVerify();
}

TEST_F(VerifyTest, PortThatIsNotCreatedEndsTheProcess) {
  driver.answersIs("kestDmaIfadd", "et1", {22});
  createPort("et1");
  EXPECT_ABORT(sm->doVerify(), assertion(notCreated));
  status->switchPortDel("et1");
  EXPECT_ABORT(sm->doVerify(), assertion(notCreated));
}

TEST_F(VerifyTest, DeviceThatIsNotRegisteredEndsTheProcess) {
  driver.answersIs("kestDmaDeviceParam", "fap0", {22});
  registerDevice("fap0", up);  // nor is its state as wanted
  EXPECT_ABORT(sm->doVerify(), assertion(notRegistered));
  status->deviceDel("fap0");
  EXPECT_ABORT(sm->doVerify(), assertion(notRegistered));
}

TEST_F(VerifyTest, DeviceInAnotherStateEndsTheProcess) {
  registerDevice("fap0", up);
  status->deviceStateIs("fap0", down);
  EXPECT_ABORT(sm->doVerify(), assertion(otherState));
  status->deviceStateDel("fap0");
  EXPECT_ABORT(sm->doVerify(), assertion(otherState));
}

TEST_F(VerifyTest, DeviceIsTracedBeforeItIsVerified) {
  registerDevice("fap0", up);
  traceOn("0");
  sm->doVerify();
  EXPECT_THAT(journal.taken(),
              ElementsAre("trace KestSliceDma 0 KestSliceDmaSm:34 doVerify "
                          "void Hardware::Kest::Slice::KestSliceDmaSm::doVerify()",
                          "trace KestSliceDma 0 KestSliceDmaSm:48 doVerify "
                          "doVerify device: 'fap0' registered 1 "
                          "confState: 'deviceStateUp' statState: 'deviceStateUp'"));

  status->deviceDel("fap0");
  status->deviceStateDel("fap0");
  journal.echoIs(true);
  EXPECT_ABORT(sm->doVerify(),
               "trace KestSliceDma 0 KestSliceDmaSm:34 doVerify "
               "void Hardware::Kest::Slice::KestSliceDmaSm::doVerify()\n"
               "trace KestSliceDma 0 KestSliceDmaSm:48 doVerify "
               "doVerify device: 'fap0' registered 0 "
               "confState: 'deviceStateUp' statState: 'deviceStateUnknown'\n" +
                   assertion(notRegistered));
}

}  // namespace
}  // namespace Hardware::Kest::Slice
