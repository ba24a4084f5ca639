#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#include "sm/KestSliceDmaSm.h"

namespace Hardware::Kest::Slice {
namespace {

using Sm = KestSliceDmaSm;
using ConfigReactor = KestSliceDmaSm::MoxConfig;
using TimerReactor = KestSliceDmaSm::MoxStateTimer;

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

TEST(SlotTest, ConfigurationReactorsOwnOperationFollowsTheHandlers) {
  EXPECT_EQ(slot(&ConfigReactor::hasNotificationActiveIs), 0U);
  EXPECT_EQ(slot(&ConfigReactor::notifierIs), 9U);
  EXPECT_EQ(slot(&ConfigReactor::onSliceId), 14U);
  EXPECT_EQ(keyed<ConfigReactor>(&ConfigReactor::onSwitchPort), 15U);
  EXPECT_EQ(slot(&ConfigReactor::onSwitchPortmoxImmediate), 16U);
  EXPECT_EQ(keyed<ConfigReactor>(&ConfigReactor::onNativeVlan), 18U);
  EXPECT_EQ(slot(&ConfigReactor::onNativeVlanmoxImmediate), 19U);
  EXPECT_EQ(keyed<ConfigReactor>(&ConfigReactor::onSwitchportMode), 21U);
  EXPECT_EQ(slot(&ConfigReactor::onSwitchportModemoxImmediate), 22U);
  EXPECT_EQ(keyed<ConfigReactor>(&ConfigReactor::onDevice), 24U);
  EXPECT_EQ(slot(&ConfigReactor::onDevicemoxImmediate), 25U);
  EXPECT_EQ(keyed<ConfigReactor>(&ConfigReactor::onDeviceState), 27U);
  EXPECT_EQ(slot(&ConfigReactor::onDeviceStatemoxImmediate), 28U);
  EXPECT_EQ(slot(&ConfigReactor::moxDoZombieReactors), 30U);
}

TEST(SlotTest, TimersOwnOperationFollowsTheClockObservers) {
  EXPECT_EQ(slot(&TimerReactor::hasNotificationActiveIs), 0U);
  EXPECT_EQ(slot(&TimerReactor::notifierIs), 9U);
  EXPECT_EQ(slot(&TimerReactor::onTime), 14U);
  EXPECT_EQ(slot(&TimerReactor::moxDoZombieReactors), 15U);
}

}  // namespace
}  // namespace Hardware::Kest::Slice
