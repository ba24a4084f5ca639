#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "model/KestSliceDmaConfig.h"
#include "model/KestSliceDmaStatus.h"

/// The order of an observer's virtual operations is part of the binary interface: observers that
/// were compiled against it override by slot.
namespace Hardware::Kest::Slice {
namespace {

/// A pointer to a virtual member function of a class with one base holds 1 plus the byte offset in
/// the table of virtual operations, whose slots are of pointer size.
template <class Member>
std::size_t slotOf(Member member) {
  static_assert(sizeof(member) == 2 * sizeof(std::ptrdiff_t));
  std::ptrdiff_t words[2];
  std::memcpy(words, &member, sizeof(words));
  EXPECT_EQ(words[0] % 2, 1) << "not virtual";
  EXPECT_EQ(words[1], 0) << "in a base that is not the first";
  return static_cast<std::size_t>(words[0]) / sizeof(void*);
}

template <class Notifiee>
std::size_t keyed(void (Notifiee::*handler)(Mox::String8)) {
  return slotOf(handler);
}
template <class Notifiee>
std::size_t plain(void (Notifiee::*handler)()) {
  return slotOf(handler);
}

/// Slots of what every observer inherits, then of the collections' handlers.
template <class N>
std::vector<std::size_t> inheritedSlots() {
  return {slotOf(static_cast<void (N::*)(bool)>(&N::hasNotificationActiveIs)),
          slotOf(&N::moxAuditErrors),
          slotOf(&N::auditErrors),
          slotOf(&N::zeroReferencesIs),
          slotOf(&N::fwkType),
          slotOf(&N::isRegisteredNotifieeIs),
          slotOf(&N::name),
          slotOf(&N::notifierIs),
          slotOf(&N::onNotificationException),
          slotOf(&N::onZeroReferences),
          slotOf(&N::onParent),
          slotOf(&N::onVersion)};
}

template <class N>
std::vector<std::size_t> collectionSlots() {
  return {keyed<N>(&N::onSwitchPort),
          plain<N>(&N::onSwitchPortmoxImmediate),
          plain<N>(&N::onSwitchPort),
          keyed<N>(&N::onNativeVlan),
          plain<N>(&N::onNativeVlanmoxImmediate),
          plain<N>(&N::onNativeVlan),
          keyed<N>(&N::onSwitchportMode),
          plain<N>(&N::onSwitchportModemoxImmediate),
          plain<N>(&N::onSwitchportMode),
          keyed<N>(&N::onDevice),
          plain<N>(&N::onDevicemoxImmediate),
          plain<N>(&N::onDevice),
          keyed<N>(&N::onDeviceState),
          plain<N>(&N::onDeviceStatemoxImmediate),
          plain<N>(&N::onDeviceState)};
}

std::vector<std::size_t> consecutive(std::size_t first, std::size_t count) {
  std::vector<std::size_t> slots;
  for (std::size_t slot = first; slot < first + count; ++slot) slots.push_back(slot);
  return slots;
}

/// The destructor takes the two slots after `fwkType`.
std::vector<std::size_t> const inherited{0, 1, 2, 3, 4, 7, 8, 9, 10, 11, 12, 13};

TEST(HandlerSlots, OfAConfigurationsObserverFollowTheFrameworks) {
  using N = KestSliceDmaConfig::NotifieeConst;
  EXPECT_EQ(inheritedSlots<N>(), inherited);
  EXPECT_EQ(slotOf(&N::onSliceId), 14U);
  EXPECT_EQ(collectionSlots<N>(), consecutive(15, 15));
  EXPECT_EQ(collectionSlots<KestSliceDmaConfig::Notifiee>(), consecutive(15, 15));
}

TEST(HandlerSlots, OfAStatusObserverAreTheSameWithoutTheSliceId) {
  using N = KestSliceDmaStatus::NotifieeConst;
  EXPECT_EQ(inheritedSlots<N>(), inherited);
  EXPECT_EQ(collectionSlots<N>(), consecutive(14, 15));
  EXPECT_EQ(collectionSlots<KestSliceDmaStatus::Notifiee>(), consecutive(14, 15));
}

}  // namespace
}  // namespace Hardware::Kest::Slice
