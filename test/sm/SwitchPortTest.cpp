#include <ctime>
#include <limits>

#include "test/sm/SmFixture.h"

namespace Hardware::Kest::Slice {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using SwitchPortTest = SmTest;

constexpr char const* pause = "usleep(100000)";

/// `count` attempts of et1: the call and the pause after it.
Support::Lines attempts(int count) {
  Support::Lines lines;
  for (int i = 0; i < count; ++i) {
    lines.push_back(ifadd("et1"));
    lines.emplace_back(pause);
  }
  return lines;
}

std::string joined(Support::Lines const& lines) {
  std::string text;
  for (std::string const& line : lines) text += line + "\n";
  return text;
}

constexpr char const* timedOut =
    "KestSliceDmaSm:142: "
    "void Hardware::Kest::Slice::KestSliceDmaSm::handleSwitchPort(Mox::String): "
    "Assertion `0 && \"Timed out trying to create kernel interface. \" "
    "\"This should only happen on standby.\"' failed.";

constexpr char const* nameRefused =
    "KestSliceDmaSm:171: "
    "void Hardware::Kest::Slice::KestSliceDmaSm::handleNativeVlan(Mox::String): "
    "Assertion `ifName.pos( \"et\" ) != Mox::String::npos' failed.";

TEST_F(SwitchPortTest, DriverGetsTheRecordAsItStands) {
  KestSliceDmaConfig::SwitchPort record;
  record.ifNameIs("Ethernet3/1");
  record.destIdIs(4096);
  record.trafficClassIs(2147483647);
  record.fapNumIs(2);
  record.hwLagIs(true);
  for (std::uint32_t shadow : {0U, 1U, 4095U, 4096U, 4097U}) {
    record.shadowIntfIdIs(shadow);
    config->switchPortIs(record);
    std::string const passed = shadow == 4096 ? "-1" : std::to_string(shadow);
    EXPECT_EQ(journal.taken().front(), "kestDmaIfadd('Ethernet3/1', 4096, " + passed +
                                           ", 2147483647, '', 2, false, true, "
                                           "'00:00:00:00:00:00')");
  }
}

TEST_F(SwitchPortTest, DriverGetsTheDeviceNameUpToItsFirstNul) {
  auto record = port("et1");
  record.devNameIs(Mox::String8(std::string_view("fap0\0hidden", 11)));
  config->switchPortIs(record);
  EXPECT_EQ(journal.taken().front(), ifadd("et1"));
  record.devNameIs(Mox::String8(std::string_view("\0", 1)));
  config->switchPortIs(record);
  EXPECT_EQ(journal.taken().front(),
            "kestDmaIfadd('et1', 7, -1, 3, '', 1, true, false, '00:1c:73:0a:0b:0c')");
}

TEST_F(SwitchPortTest, ChangedPortIsHandedOverAgainWithoutADeletion) {
  createPort("et1");
  auto changed = port("et1");
  changed.destIdIs(8);
  config->switchPortIs(changed);
  EXPECT_THAT(journal.taken(), ElementsAre("kestDmaIfadd('et1', 8, -1, 3, 'fap0', 1, true, false, "
                                           "'00:1c:73:0a:0b:0c')",
                                           pause, "kestDmaNativeVlan('et1', false, 4096)"));
}

TEST_F(SwitchPortTest, RemovedPortLeavesItsNativeVlanInTheStatus) {
  config->nativeVlanIs("et1", 10);
  config->switchportModeIs("et1", tunnel);
  createPort("et1");

  config->switchPortDel("et1");
  EXPECT_THAT(journal.taken(), ElementsAre("kestDmaIfdel('et1')", "status switchPort et1: none"));
  EXPECT_THAT(content(*status),
              ElementsAre("status nativeVlan et1: 10",
                          "status switchportMode et1: switchportModeDot1qTunnel"));

  config->nativeVlanDel("et1");
  EXPECT_THAT(journal.taken(), IsEmpty());
  config->switchPortIs(port("et1"));
  EXPECT_THAT(journal.taken(),
              ElementsAre(ifadd("et1"), pause, "status switchPort et1: created",
                          "kestDmaNativeVlan('et1', false, 4096)", "status nativeVlan et1: none",
                          "status switchportMode et1: none"));
}

TEST_F(SwitchPortTest, DeletionIsAskedForAPortNeverCreatedAndItsResultIgnored) {
  driver.answersIs("kestDmaIfdel", "et1", {19});
  config->switchPortNotify("et1");
  EXPECT_THAT(journal.taken(), ElementsAre("kestDmaIfdel('et1')"));
}

TEST_F(SwitchPortTest, TryAgainIsTriedAgainAfterAPauseWithTheSameArguments) {
  driver.answersIs("kestDmaIfadd", "et1", {11, 11, 0});
  auto changed = port("et1");
  changed.destIdIs(8);
  driver.reaction = [&] { config->newSwitchPort(changed); };  // announces nothing
  config->switchPortIs(port("et1"));
  EXPECT_THAT(journal.taken(), ElementsAre(ifadd("et1"), pause, ifadd("et1"), pause, ifadd("et1"),
                                           pause, "status switchPort et1: created",
                                           "kestDmaNativeVlan('et1', false, 4096)"));
}

TEST_F(SwitchPortTest, OtherFailureIsRecordedAndNotTriedAgain) {
  config->nativeVlanIs("et1", 10);
  driver.answersIs("kestDmaIfadd", "et1", {11, 22});
  config->switchPortIs(port("et1"));
  EXPECT_THAT(journal.taken(), ElementsAre(ifadd("et1"), pause, ifadd("et1"), pause,
                                           "status switchPort et1: not created"));
}

// 610 attempts, one each 100 ms, begin before 61 seconds have passed.
TEST_F(SwitchPortTest, AttemptsAreMadeUntilMoreThanThePeriodHasPassed) {
  RecordingDriver::Answers answers(609, 11);
  answers.push_back(0);
  driver.answersIs("kestDmaIfadd", "et1", answers);
  config->switchPortIs(port("et1"));

  Support::Lines expected = attempts(610);
  expected.emplace_back("status switchPort et1: created");
  expected.emplace_back("kestDmaNativeVlan('et1', false, 4096)");
  EXPECT_EQ(journal.taken(), expected);
  EXPECT_EQ(time.microseconds(), 61000000);
}

TEST_F(SwitchPortTest, RetryEndsTheProcessWhenThePeriodIsOver) {
  RecordingDriver::Answers answers(610, 11);
  answers.push_back(0);
  driver.answersIs("kestDmaIfadd", "et1", answers);
  EXPECT_ABORT(config->switchPortIs(port("et1")), assertion(timedOut));
}

TEST_F(SwitchPortTest, PeriodOfZeroEndsAtTheNextSecond) {
  INTF_ADD_RETRY_TIMEOUT_SECONDS = 0;
  time.advance(650000);
  driver.answersIs("kestDmaIfadd", "et1", RecordingDriver::Answers(100, 11));
  journal.echoIs(true);
  EXPECT_ABORT(config->switchPortIs(port("et1")), joined(attempts(4)) + assertion(timedOut));
}

TEST_F(SwitchPortTest, PeriodIsTestedBeforeTheFirstAttempt) {
  INTF_ADD_RETRY_TIMEOUT_SECONDS = -1;
  journal.echoIs(true);
  EXPECT_ABORT(config->switchPortIs(port("et1")), assertion(timedOut));
}

TEST_F(SwitchPortTest, PeriodIsReadBeforeEveryAttempt) {
  time.advance(950000);
  driver.answersIs("kestDmaIfadd", "et1", {11, 0});
  driver.reaction = [] { INTF_ADD_RETRY_TIMEOUT_SECONDS = 1; };
  INTF_ADD_RETRY_TIMEOUT_SECONDS = 0;
  config->switchPortIs(port("et1"));
  EXPECT_TRUE(status->switchPort("et1").created());

  driver.answersIs("kestDmaIfadd", "et2", {11, 0});
  driver.reaction = [] { INTF_ADD_RETRY_TIMEOUT_SECONDS = -1; };
  EXPECT_ABORT(config->switchPortIs(port("et2")), assertion(timedOut));
}

TEST_F(SwitchPortTest, WallClockMayJumpFurtherThanAnIntegerReaches) {
  using Limits = std::numeric_limits<std::time_t>;
  for (char const* ifName : {"et1", "et2"}) driver.answersIs("kestDmaIfadd", ifName, {11, 0});
  driver.reaction = [&] { time.wallClockJump(Limits::max() - 1 - time.time()); };
  EXPECT_ABORT(config->switchPortIs(port("et1")), assertion(timedOut));

  driver.reaction = [&] {
    if (time.time() > 0) time.wallClockJump(Limits::min());
  };
  config->switchPortIs(port("et2"));
  EXPECT_TRUE(status->switchPort("et2").created());
}

TEST_F(SwitchPortTest, OnlyAnEmptyNameWithoutAnAddressIsAnAbsentPort) {
  auto record = port("");
  journal.echoIs(true);
  EXPECT_ABORT(
      config->switchPortIs(record),
      ifadd("") + "\nusleep(100000)\nstatus switchPort : created\n" + assertion(nameRefused));
  record.macAddrIs(Pelk::EthAddr());
  EXPECT_ABORT(config->switchPortIs(record), "kestDmaIfdel('')\n" + assertion(nameRefused));
}

TEST_F(SwitchPortTest, NameWithoutEtEndsTheProcess) {
  for (char const* name : {"po1", "ET1", "e/t"}) {
    EXPECT_ABORT(config->switchPortIs(port(name)), assertion(nameRefused));
    EXPECT_ABORT(config->switchPortNotify(name), assertion(nameRefused));
    EXPECT_ABORT(config->nativeVlanIs(name, 10), assertion(nameRefused));
    EXPECT_ABORT(config->switchportModeIs(name, trunk), assertion(nameRefused));
  }
}

}  // namespace
}  // namespace Hardware::Kest::Slice
