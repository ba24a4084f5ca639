#pragma once

#include <array>
#include <cstdint>

namespace Simulation {

/// Situations that a run has to get into, or it proves too little.
enum class Probe : std::uint8_t {
  portCreated,
  portCreatedAfterRetries,
  portRefused,
  portChangedInPlace,
  portRemoved,
  portRemovedWithVlanLeft,
  portWithoutShadow,
  portOfNoName,
  portOfNoAddress,
  retryPeriodRanOut,
  retryPeriodChangedDuringRetries,
  wallClockSetBackDuringRetries,
  wallClockSetForwardDuringRetries,
  vlanSet,
  vlanSetAsTunnel,
  vlanCleared,
  vlanClearRefused,
  vlanRefused,
  vlanOfUncreatedPort,
  modeChangeReprogramsVlan,
  modeChangedBetweenVlanAndMode,
  nameWithoutEt,
  deviceRegistered,
  deviceRegisteredWhileUp,
  deviceRefused,
  deviceForgotten,
  deviceUp,
  deviceDown,
  deviceUpRefused,
  deviceStateAlreadyThere,
  deviceStateOfUnregistered,
  deviceStateUnknownOfRegistered,
  deviceStateNameless,
  pollClean,
  pollOfNothing,
  pollSkipsUnknown,
  pollMismatchUp,
  pollMismatchDown,
  pollDeviceGone,
  pollGoesOnAfterSignal,
  pollRefused,
  pollStateOutOfRange,
  pollArmed,
  pollNotArmedInSimulation,
  pollByMovedTimer,
  pollAfterModeWasLeft,
  pollEndsByException,
  timerDueAtOnce,
  timerSilentAsZombie,
  timersInOrderOfTime,
  timerReleasedBeforeItsTurn,
  verifyHolds,
  verifyFindsPort,
  verifyFindsDevice,
  verifyFindsState,
  configReboundWhileInactive,
  configReboundDuringDelivery,
  configUnboundDuringDelivery,
  configReboundInsideHandler,
  configUnboundInsideHandler,
  machineUnbound,
  machineSilentWhenInactive,
  machineSilentAboutPort,
  machineSilentAboutDevice,
  reactorStaysUnregistered,
  timerStaysUnregistered,
  machineBoundAsZombie,
  machineGoesDuringDelivery,
  machineWithoutConfig,
  machineMadeAgain,
  handlerInsideHandler,
  handlerThrew,
  handlerRefusedUnbound,
  timerRefusedUnbound,
  writeChangedNothing,
  entryReplaced,
  deleteOfAbsent,
  deleteByIteratorOfGone,
  deletedWhatIsAnnounced,
  delAllMeetsNewEntry,
  iteratorResumedBehindDeleted,
  iteratorResumedBehindReplaced,
  iteratorEnded,
  observerJoinedDuringDelivery,
  observerLeftDuringDelivery,
  observerReleasedDuringDelivery,
  observerToldThoughReleased,
  observerMovedDuringDelivery,
  observerThrew,
  observerThrewOnReport,
  observerOfOtherType,
  deliveryInsideDelivery,
  zeroReferencesTold,
  traced,
  count
};

inline constexpr std::size_t probeCount = static_cast<std::size_t>(Probe::count);

/// How often each was reached.
class Probes {
 public:
  void reach(Probe probe) { ++counts_[static_cast<std::size_t>(probe)]; }
  std::uint64_t count(std::size_t probe) const { return counts_[probe]; }
  std::size_t reached() const;

  /// What the probe stands for, in words.
  static char const* name(std::size_t probe);

 private:
  std::array<std::uint64_t, probeCount> counts_{};
};

}  // namespace Simulation
