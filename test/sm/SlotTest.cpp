#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#include "sm/KestSliceDmaSm.h"

namespace Hardware::Kest::Slice {
namespace {

using Sm = KestSliceDmaSm;
using Config = KestSliceDmaSm::MoxConfig;
using Timer = KestSliceDmaSm::MoxStateTimer;

/// Slot of a virtual operation: a pointer to it holds its offset in the table, plus 1.
template <class Member>
std::size_t slot(Member member) {
  std::size_t offset = 0;
  std::memcpy(&offset, &member, sizeof offset);
  return (offset - 1) / sizeof(void*);
}

/// Slot of the handler that takes a key.
template <class Class>
std::size_t keyed(void (Class::*member)(Mox::String8)) {
  return slot(member);
}

TEST(SlotTest, MachinesOperationsFollowTheObjectBases) {
  EXPECT_EQ(slot(&Sm::hasNotificationActiveIs), 0U);
  EXPECT_EQ(slot(&Sm::moxAuditErrors), 1U);
  EXPECT_EQ(slot(&Sm::auditErrors), 2U);
  EXPECT_EQ(slot(&Sm::zeroReferencesIs), 3U);
  EXPECT_EQ(slot(&Sm::fwkType), 4U);
  // 5 and 6: the destructor.
  EXPECT_EQ(slot(&Sm::moxDoZombieReactors), 7U);
}

TEST(SlotTest, ConfigurationReactorsOwnOperationIsBehindTheHandlers) {
  EXPECT_EQ(slot(&Config::hasNotificationActiveIs), 0U);
  EXPECT_EQ(slot(&Config::notifierIs), 9U);
  EXPECT_EQ(slot(&Config::onSliceId), 14U);
  EXPECT_EQ(keyed<Config>(&Config::onSwitchPort), 15U);
  EXPECT_EQ(slot(&Config::onSwitchPortmoxImmediate), 16U);
  EXPECT_EQ(keyed<Config>(&Config::onNativeVlan), 18U);
  EXPECT_EQ(slot(&Config::onNativeVlanmoxImmediate), 19U);
  EXPECT_EQ(keyed<Config>(&Config::onSwitchportMode), 21U);
  EXPECT_EQ(slot(&Config::onSwitchportModemoxImmediate), 22U);
  EXPECT_EQ(keyed<Config>(&Config::onDevice), 24U);
  EXPECT_EQ(slot(&Config::onDevicemoxImmediate), 25U);
  EXPECT_EQ(keyed<Config>(&Config::onDeviceState), 27U);
  EXPECT_EQ(slot(&Config::onDeviceStatemoxImmediate), 28U);
  EXPECT_EQ(slot(&Config::moxDoZombieReactors), 30U);
}

TEST(SlotTest, TimersOwnOperationIsBehindTheClockObservers) {
  EXPECT_EQ(slot(&Timer::hasNotificationActiveIs), 0U);
  EXPECT_EQ(slot(&Timer::notifierIs), 9U);
  EXPECT_EQ(slot(&Timer::onTime), 14U);
  EXPECT_EQ(slot(&Timer::moxDoZombieReactors), 15U);
}

}  // namespace
}  // namespace Hardware::Kest::Slice
