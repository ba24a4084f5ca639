#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace Simulation {

/// Defines the enumeration and `probeNames`, its enumerators in order, separated by commas.
#define KEST_PROBES(...)                           \
  enum class Probe : std::uint8_t { __VA_ARGS__ }; \
  inline constexpr std::string_view probeNames = #__VA_ARGS__

/// Situations that a run has to get into, or it proves too little.
KEST_PROBES(
    // Ports.
    portCreated, portCreatedAfterRetries, portRefused, portChangedInPlace, portRemoved,
    portRemovedWithVlanLeft, portWithoutShadow, portWithAddressButNoName, portWithNameButNoAddress,
    retryPeriodRanOut, retryPeriodChangedDuringRetries, wallClockSetBackDuringRetries,
    wallClockSetForwardDuringRetries,
    // Native VLANs.
    vlanSet, vlanSetAsTunnel, vlanCleared, vlanClearRefused, vlanRefused, vlanOfUncreatedPort,
    modeChangeReprogramsVlan, modeChangedBetweenVlanAndMode, nameWithoutEt,
    // Devices.
    deviceRegistered, deviceRegisteredWhileUp, deviceRefused, deviceForgotten, deviceUp, deviceDown,
    deviceUpRefused, deviceStateAlreadyThere, deviceStateOfUnregistered,
    deviceStateUnknownOfRegistered, deviceStateNameless,
    // The poll.
    pollClean, pollOfNothing, pollSkipsUnknown, pollMismatchUp, pollMismatchDown, pollDeviceGone,
    pollGoesOnAfterIgnoredSignal, pollRefused, pollStateOutOfRange, pollArmed,
    pollNotArmedInSimulation, pollAtOnceByMovedTimer, pollAfterModeWasLeft, pollEndsByException,
    // Timers.
    timerDueAtOnce, timerSilentAsZombie, timersInOrderOfTime, timerReleasedOrMovedBeforeItsTurn,
    // Verification.
    verifyHolds, verifyFindsPort, verifyFindsDevice, verifyFindsState,
    // The machine.
    configReboundWhileInactive, configReboundDuringDelivery, configUnboundDuringDelivery,
    configReboundInsideHandler, configUnboundInsideHandler, machineUnbound,
    machineSilentWhenInactive, zombieMachineSilentAboutPort, zombieMachineSilentAboutDevice,
    reactorStaysUnregistered, timerStaysUnregistered, machineBoundAsZombie,
    machineGoesDuringDelivery, machineWithoutConfig, machineMadeAgain, handlerInsideHandler,
    handlerThrew, handlerRefusedWithoutConfig, handlerRefusedWithoutTimer,
    // Entities.
    writeChangedNothing, entryReplaced, deleteOfAbsent, deleteByIteratorOfGone,
    deletedWhatIsAnnounced, delAllMeetsNewEntry, iteratorResumedAfterDeletion,
    iteratorResumedAfterReplacement, iteratorEnded,
    // Observers.
    observerJoinedDuringDelivery, observerLeftDuringDelivery, observerReleasedDuringDelivery,
    observerToldByInnerDeliveryThoughReleased, observerMovedDuringDelivery, observerThrew,
    observerThrewOnReport, observerOfOtherType, deliveryInsideDelivery, zeroReferencesTold,
    // Trace points.
    traced);

inline constexpr std::size_t probeCount = [] {
  std::size_t count = 1;
  for (char const c : probeNames) count += c == ',' ? 1 : 0;
  return count;
}();

/// How often each was reached.
class Probes {
 public:
  void reach(Probe probe) { ++counts_[static_cast<std::size_t>(probe)]; }
  std::uint64_t count(std::size_t probe) const { return counts_[probe]; }
  std::size_t reached() const;

  static std::string_view name(std::size_t probe);

 private:
  std::array<std::uint64_t, probeCount> counts_{};
};

}  // namespace Simulation
