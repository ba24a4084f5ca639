#include "test/simulation/Probes.h"

#include <algorithm>

namespace Simulation {

namespace {

struct Name {
  Probe probe;
  char const* words;
};

constexpr Name table[] = {
    {Probe::portCreated, "port created"},
    {Probe::portCreatedAfterRetries, "port created after retries"},
    {Probe::portRefused, "port refused by the driver"},
    {Probe::portChangedInPlace, "port changed, handed over its interface"},
    {Probe::portRemoved, "port removed"},
    {Probe::portRemovedWithVlanLeft, "port removed, its recorded VLAN stays"},
    {Probe::portWithoutShadow, "port without a shadow interface: -1"},
    {Probe::portOfNoName, "port with an address but no name"},
    {Probe::portOfNoAddress, "port with a name but no address"},
    {Probe::retryPeriodRanOut, "retry period ran out"},
    {Probe::retryPeriodChangedDuringRetries, "retry period changed during retries"},
    {Probe::wallClockSetBackDuringRetries, "wall clock set back during retries"},
    {Probe::wallClockSetForwardDuringRetries, "wall clock set forward during retries"},
    {Probe::vlanSet, "native VLAN set"},
    {Probe::vlanSetAsTunnel, "native VLAN set with the mode flag"},
    {Probe::vlanCleared, "native VLAN cleared"},
    {Probe::vlanClearRefused, "clearing of a native VLAN refused"},
    {Probe::vlanRefused, "native VLAN refused"},
    {Probe::vlanOfUncreatedPort, "native VLAN of a port that is not created"},
    {Probe::modeChangeReprogramsVlan, "mode change programs the VLAN again"},
    {Probe::modeChangedBetweenVlanAndMode, "mode changed between the two writes of the status"},
    {Probe::nameWithoutEt, "port name without et"},
    {Probe::deviceRegistered, "device registered"},
    {Probe::deviceRegisteredWhileUp, "device registered while up"},
    {Probe::deviceRefused, "device parameters refused"},
    {Probe::deviceForgotten, "device forgotten"},
    {Probe::deviceUp, "device brought up"},
    {Probe::deviceDown, "device brought down"},
    {Probe::deviceUpRefused, "device state change refused"},
    {Probe::deviceStateAlreadyThere, "device is in the wanted state already"},
    {Probe::deviceStateOfUnregistered, "state of a device that is not registered"},
    {Probe::deviceStateUnknownOfRegistered, "registered device without a state"},
    {Probe::deviceStateNameless, "registered device with a nameless state"},
    {Probe::pollClean, "poll finds everything as it was left"},
    {Probe::pollOfNothing, "poll of no devices"},
    {Probe::pollSkipsUnknown, "poll asks for an unknown state without comparing"},
    {Probe::pollMismatchUp, "poll mismatch: up, expected down"},
    {Probe::pollMismatchDown, "poll mismatch: down, expected up"},
    {Probe::pollDeviceGone, "poll finds a device gone: signal 7"},
    {Probe::pollGoesOnAfterSignal, "poll goes on after an ignored signal 7"},
    {Probe::pollRefused, "poll refused by the driver"},
    {Probe::pollStateOutOfRange, "poll meets a state out of range"},
    {Probe::pollArmed, "poll armed by the mode"},
    {Probe::pollNotArmedInSimulation, "poll not armed in a simulation"},
    {Probe::pollByMovedTimer, "poll at once by a moved timer"},
    {Probe::pollAfterModeWasLeft, "poll comes although the mode was left"},
    {Probe::pollEndsByException, "poll ends by an exception and comes again"},
    {Probe::timerDueAtOnce, "new timer is due at once"},
    {Probe::timerSilentAsZombie, "wake-up of a zombie timer waits"},
    {Probe::timersInOrderOfTime, "timers woken by time, not by registration"},
    {Probe::timerReleasedBeforeItsTurn, "timer released or moved before its turn"},
    {Probe::verifyHolds, "verification holds"},
    {Probe::verifyFindsPort, "verification finds a port"},
    {Probe::verifyFindsDevice, "verification finds a device"},
    {Probe::verifyFindsState, "verification finds a device state"},
    {Probe::configReboundWhileInactive, "configuration re-bound while inactive"},
    {Probe::configReboundDuringDelivery, "configuration re-bound during delivery"},
    {Probe::configUnboundDuringDelivery, "configuration unbound during delivery"},
    {Probe::configReboundInsideHandler, "configuration re-bound inside a handler"},
    {Probe::configUnboundInsideHandler, "configuration unbound inside a handler"},
    {Probe::machineUnbound, "machine unbound"},
    {Probe::machineSilentWhenInactive, "inactive machine silent"},
    {Probe::machineSilentAboutPort, "zombie machine silent about a port, in a delivery under way"},
    {Probe::machineSilentAboutDevice, "zombie machine silent about a device, likewise"},
    {Probe::reactorStaysUnregistered, "reactor activated that had not been registered"},
    {Probe::timerStaysUnregistered, "timer activated that had not been registered"},
    {Probe::machineBoundAsZombie, "zombie machine bound"},
    {Probe::machineGoesDuringDelivery, "machine goes during delivery"},
    {Probe::machineWithoutConfig, "machine made without a configuration"},
    {Probe::machineMadeAgain, "machine made again on the status of another"},
    {Probe::handlerInsideHandler, "handler inside a handler"},
    {Probe::handlerThrew, "handler threw in a delivery"},
    {Probe::handlerRefusedUnbound, "handler by name refused without a configuration"},
    {Probe::timerRefusedUnbound, "handler by name refused without a timer"},
    {Probe::writeChangedNothing, "write that changes nothing"},
    {Probe::entryReplaced, "entry replaced by a bare insertion"},
    {Probe::deleteOfAbsent, "deletion of what is absent"},
    {Probe::deleteByIteratorOfGone, "deletion by an iterator whose entry is gone"},
    {Probe::deletedWhatIsAnnounced, "observer deletes what is just announced"},
    {Probe::delAllMeetsNewEntry, "deletion of all meets an entry that came meanwhile"},
    {Probe::iteratorResumedBehindDeleted, "iterator resumed after its entry was deleted"},
    {Probe::iteratorResumedBehindReplaced, "iterator resumed after its entry was replaced"},
    {Probe::iteratorEnded, "iterator at its end"},
    {Probe::observerJoinedDuringDelivery, "observer joined during delivery"},
    {Probe::observerLeftDuringDelivery, "observer left during delivery"},
    {Probe::observerReleasedDuringDelivery, "observer released during delivery, not told"},
    {Probe::observerToldThoughReleased,
     "observer released during delivery, told by a delivery inside"},
    {Probe::observerMovedDuringDelivery, "observer moved during delivery"},
    {Probe::observerThrew, "observer threw"},
    {Probe::observerThrewOnReport, "observer threw on the report of its exception"},
    {Probe::observerOfOtherType, "observer pointed at another type"},
    {Probe::deliveryInsideDelivery, "delivery inside a delivery"},
    {Probe::zeroReferencesTold, "zero references told"},
    {Probe::traced, "trace point with its level on"},
};

constexpr bool isComplete() {
  std::size_t at = 0;
  for (Name const& name : table) {
    if (static_cast<std::size_t>(name.probe) != at++) return false;
  }
  return at == probeCount;
}
static_assert(isComplete(), "one row for each probe, in order");

}  // namespace

std::size_t Probes::reached() const {
  auto const never = std::count(counts_.begin(), counts_.end(), 0U);
  return probeCount - static_cast<std::size_t>(never);
}

char const* Probes::name(std::size_t probe) {
  return table[probe].words;
}

}  // namespace Simulation
