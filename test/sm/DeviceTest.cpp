#include "test/sm/SmFixture.h"

namespace Hardware::Kest::Slice {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using DeviceTest = SmTest;

constexpr char const* rename = "kestDmaDeviceRename('fap0', '0000:05:00.0')";
constexpr char const* takeDown = "kestDmaDeviceDown('fap0')";
constexpr char const* bringUp = "kestDmaDeviceUp('fap0')";
constexpr char const* parameters =
    "kestDmaDeviceParam('fap0', 2, fapTypeArad, 11, 12, 13, 14, 15, 16, 17)";

constexpr char const* noWantedState =
    "KestSliceDmaSm:262: "
    "void Hardware::Kest::Slice::KestSliceDmaSm::handleDeviceState(Mox::String): "
    "Assertion `false' failed.";

TEST_F(DeviceTest, DriverGetsTheRecordAsItStands) {
  KestSliceDmaConfig::Device record;
  record.devNameIs("fap0");
  record.numFapsIs(4294967295);
  record.cpuAradBridgeIs(4294967295);
  config->deviceIs(record);
  EXPECT_THAT(journal.taken(), ElementsAre("kestDmaDeviceRename('fap0', null)", takeDown,
                                           "kestDmaDeviceParam('fap0', 4294967295, fapTypeUnknown, "
                                           "0, 0, 0, 0, 0, 0, 4294967295)",
                                           "status device fap0: registered",
                                           "status deviceState fap0: deviceStateUnknown"));
}

TEST_F(DeviceTest, RefusedParametersAreRecordedAndTheDeviceLeftDown) {
  driver.answersIs("kestDmaDeviceParam", "fap0", {11});
  config->deviceStateIs("fap0", up);
  config->deviceIs(device("fap0"));
  EXPECT_THAT(journal.taken(),
              ElementsAre(rename, takeDown, parameters, "status device fap0: not registered",
                          "status deviceState fap0: deviceStateUnknown"));

  config->deviceStateNotify("fap0");
  config->deviceStateIs("fap0", down);
  config->deviceStateDel("fap0");
  EXPECT_THAT(journal.taken(), IsEmpty());
}

TEST_F(DeviceTest, ResultsOfRenameAndDownAreIgnored) {
  driver.answersIs("kestDmaDeviceRename", "fap0", {22});
  driver.answersIs("kestDmaDeviceDown", "fap0", {19});
  config->deviceIs(device("fap0"));
  EXPECT_THAT(journal.taken(),
              ElementsAre(rename, takeDown, parameters, "status device fap0: registered",
                          "status deviceState fap0: deviceStateUnknown"));
}

TEST_F(DeviceTest, RegistrationTakesADeviceDownThatIsUp) {
  registerDevice("fap0", up);
  config->deviceNotify("fap0");
  EXPECT_THAT(journal.taken(), ElementsAre(rename, takeDown, parameters,
                                           "status deviceState fap0: deviceStateUnknown"));

  config->deviceStateNotify("fap0");
  EXPECT_THAT(journal.taken(), ElementsAre(bringUp, "status deviceState fap0: deviceStateUp"));
}

TEST_F(DeviceTest, RemovedDeviceIsForgottenAndNothingElse) {
  registerDevice("fap0", up);
  config->deviceDel("fap0");
  EXPECT_THAT(journal.taken(), ElementsAre("status device fap0: none"));
  EXPECT_THAT(content(*status), ElementsAre("status deviceState fap0: deviceStateUp"));

  config->deviceStateIs("fap0", down);
  config->deviceStateDel("fap0");
  EXPECT_THAT(journal.taken(), IsEmpty());
}

TEST_F(DeviceTest, UnknownDeviceIsNotBroughtUp) {
  config->deviceStateIs("fap0", up);
  EXPECT_THAT(journal.taken(), IsEmpty());
}

TEST_F(DeviceTest, DeviceWithoutANameIsForgotten) {
  config->deviceIs(device(""));
  EXPECT_THAT(journal.taken(), IsEmpty());
}

TEST_F(DeviceTest, WantedStateIsBroughtAboutOnce) {
  config->deviceIs(device("fap0"));
  journal.taken();

  config->deviceStateIs("fap0", up);
  EXPECT_THAT(journal.taken(), ElementsAre(bringUp, "status deviceState fap0: deviceStateUp"));
  config->deviceStateNotify("fap0");
  EXPECT_THAT(journal.taken(), IsEmpty());
  config->deviceStateIs("fap0", down);
  EXPECT_THAT(journal.taken(), ElementsAre(takeDown, "status deviceState fap0: deviceStateDown"));
  config->deviceStateNotify("fap0");
  EXPECT_THAT(journal.taken(), IsEmpty());
}

TEST_F(DeviceTest, RefusedStateIsTriedAgainOnlyAtTheNextNotification) {
  config->deviceIs(device("fap0"));
  journal.taken();
  driver.answersIs("kestDmaDeviceUp", "fap0", {11});
  config->deviceStateIs("fap0", up);
  EXPECT_THAT(journal.taken(), ElementsAre(bringUp));
  EXPECT_EQ(status->deviceState("fap0"), unknown);
  config->deviceStateNotify("fap0");
  EXPECT_THAT(journal.taken(), ElementsAre(bringUp, "status deviceState fap0: deviceStateUp"));

  driver.answersIs("kestDmaDeviceDown", "fap0", {22});
  config->deviceStateIs("fap0", down);
  EXPECT_THAT(journal.taken(), ElementsAre(takeDown));
  EXPECT_EQ(status->deviceState("fap0"), up);
  config->deviceStateNotify("fap0");
  EXPECT_THAT(journal.taken(), ElementsAre(takeDown, "status deviceState fap0: deviceStateDown"));
}

TEST_F(DeviceTest, RegisteredDeviceWithoutAWantedStateEndsTheProcess) {
  registerDevice("fap0", up);
  journal.echoIs(true);
  EXPECT_ABORT(config->deviceStateDel("fap0"), assertion(noWantedState));
  EXPECT_ABORT(config->deviceStateIs("fap0", unknown), assertion(noWantedState));
  EXPECT_ABORT(config->deviceStateIs("fap0", static_cast<DeviceState>(3)),
               assertion(noWantedState));
}

}  // namespace
}  // namespace Hardware::Kest::Slice
