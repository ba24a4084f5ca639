#include "test/sm/SmFixture.h"

namespace Hardware::Kest::Slice {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class NativeVlanTest : public SmTest {
 protected:
  NativeVlanTest() { createPort("et1"); }
};

TEST_F(NativeVlanTest, ModeChangeProgramsTheVlanAgain) {
  config->nativeVlanIs("et1", 10);
  journal.taken();

  config->switchportModeIs("et1", tunnel);
  EXPECT_THAT(journal.taken(), ElementsAre("kestDmaNativeVlan('et1', true, 10)",
                                           "status switchportMode et1: switchportModeDot1qTunnel"));
  config->switchportModeDel("et1");
  EXPECT_THAT(journal.taken(), ElementsAre("kestDmaNativeVlan('et1', false, 10)",
                                           "status switchportMode et1: switchportModeAccess"));
}

TEST_F(NativeVlanTest, OnlyTheModeOfValueTwoSetsTheFlag) {
  config->nativeVlanIs("et1", 10);
  for (int mode : {1, 2, 3, -2, 258}) {
    journal.taken();
    config->switchportModeIs("et1", static_cast<Bridging::SwitchportMode>(mode));
    EXPECT_EQ(journal.taken().front(), mode == 2 ? "kestDmaNativeVlan('et1', true, 10)"
                                                 : "kestDmaNativeVlan('et1', false, 10)");
    EXPECT_EQ(status->switchportMode("et1"), static_cast<Bridging::SwitchportMode>(mode));
  }
}

TEST_F(NativeVlanTest, VlanRecordedIsTheOneThatWasProgrammed) {
  driver.reaction = [&] { config->newNativeVlan("et1", 20); };  // announces nothing
  config->nativeVlanIs("et1", 10);
  EXPECT_THAT(journal.taken(),
              ElementsAre("kestDmaNativeVlan('et1', false, 10)", "status nativeVlan et1: 10",
                          "status switchportMode et1: switchportModeAccess"));
}

TEST_F(NativeVlanTest, ModeRecordedIsTheOneThatStandsAfterTheDriverAnswered) {
  driver.reaction = [&] { config->newSwitchportMode("et1", tunnel); };  // announces nothing
  config->nativeVlanIs("et1", 10);
  EXPECT_THAT(journal.taken(),
              ElementsAre("kestDmaNativeVlan('et1', false, 10)", "status nativeVlan et1: 10",
                          "status switchportMode et1: switchportModeDot1qTunnel"));
}

TEST_F(NativeVlanTest, NoVlanIsClearedAlikeWhetherZeroOrAbsent) {
  auto const cleared =
      ElementsAre("kestDmaNativeVlan('et1', false, 4096)", "status nativeVlan et1: none",
                  "status switchportMode et1: none");
  config->switchportModeIs("et1", tunnel);
  config->nativeVlanIs("et1", 10);
  journal.taken();

  config->nativeVlanIs("et1", 0);
  EXPECT_THAT(journal.taken(), cleared);
  config->nativeVlanIs("et1", 20);
  journal.taken();
  config->nativeVlanDel("et1");
  EXPECT_THAT(journal.taken(), cleared);
}

TEST_F(NativeVlanTest, ResultOfAClearIsIgnored) {
  config->nativeVlanIs("et1", 10);
  journal.taken();
  driver.answersIs("kestDmaNativeVlan", "et1", {11});
  config->nativeVlanDel("et1");
  EXPECT_THAT(journal.taken(),
              ElementsAre("kestDmaNativeVlan('et1', false, 4096)", "status nativeVlan et1: none",
                          "status switchportMode et1: none"));
}

TEST_F(NativeVlanTest, RefusalOfAVlanEndsTheProcess) {
  driver.answersIs("kestDmaNativeVlan", "et1", {11});
  journal.echoIs(true);
  EXPECT_ABORT(
      config->nativeVlanIs("et1", 10),
      "kestDmaNativeVlan('et1', false, 10)\n" +
          assertion("KestSliceDmaSm:186: "
                    "void Hardware::Kest::Slice::KestSliceDmaSm::handleNativeVlan(Mox::String): "
                    "Assertion `error == 0' failed."));
}

TEST_F(NativeVlanTest, PortWithoutAnInterfaceIsLeftAlone) {
  config->nativeVlanIs("et2", 10);
  config->switchportModeIs("et2", tunnel);
  driver.answersIs("kestDmaIfadd", "et2", {22});
  EXPECT_THAT(journal.taken(), IsEmpty());

  config->switchPortIs(port("et2"));
  journal.taken();
  config->nativeVlanIs("et2", 20);
  config->switchportModeIs("et2", trunk);
  EXPECT_THAT(journal.taken(), IsEmpty());
}

}  // namespace
}  // namespace Hardware::Kest::Slice
