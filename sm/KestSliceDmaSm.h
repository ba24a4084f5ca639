#pragma once

#include <cstdint>

#include "model/KestSliceDmaConfig.h"
#include "model/KestSliceDmaStatus.h"
#include "platform/hardware/kest/SmMode.h"
#include "platform/mox/Activity.h"
#include "platform/mox/Clock.h"
#include "sm/detail/Reactor.h"

namespace Hardware::Kest::Slice {

/// How long the creation of one kernel interface is tried again while the driver asks for it, in
/// seconds. Read before every attempt.
extern KEST_SLICE_DMA_API std::int32_t INTF_ADD_RETRY_TIMEOUT_SECONDS;

/// Keeps a slice's DMA driver in step with its configuration and records in the status what it did.
///
/// It acts on what the configuration announces after the machine was bound to it; what the
/// configuration held before is not walked. Handlers run on the agent's activity thread, one at a
/// time, to completion, and block it while the driver works.
///
/// Observers of the status and the driver may do anything to the machine while a handler runs. The
/// handler still runs to its end, on the configuration that was bound when it began, even if that
/// is unbound or replaced meanwhile or the last reference to the machine goes.
///
/// Broken invariants and driver answers that leave the slice inconsistent end the process with a
/// standard assertion; the agent's restart is the recovery.
///
/// Ownership. The machine holds the status and its two reactors; it does not hold the
/// configuration, except as its observer. Made by `kestSliceDmaSmFactory`, held through `Mox::Ptr`.
/// When it goes, its reactors are silenced first; the timer, the status and the configuration
/// reactor are released in that order.
class KEST_SLICE_DMA_API KestSliceDmaSm : public Mox::PtrInterface {
 public:
  class MoxConfig;
  class MoxStateTimer;
  class _Type;  // type object and generic access: registry/SmType.h
  class GenericIf_;

  static constexpr char const* typeName = "Hardware::Kest::Slice::KestSliceDmaSm";

  /// Seconds between two polls of the devices' states.
  static constexpr double pollPeriodSeconds = 2.0;

  /// Makes a machine and turns its notifications on. `config` may be null.
  static Mox::Ptr<KestSliceDmaSm> KestSliceDmaSmIs(Mox::Ptr<KestSliceDmaConfig const> const& config,
                                                   Mox::Ptr<KestSliceDmaStatus> const& status);

  /// The activity manager must have a clock.
  KestSliceDmaSm(Mox::Ptr<KestSliceDmaConfig const> const& config,
                 Mox::Ptr<KestSliceDmaStatus> status);

  // The order of the virtual operations is part of the binary interface.

  /// Forwarded to both reactors.
  void hasNotificationActiveIs(bool active) override;
  Mox::MoxType const* fwkType() const override;
  ~KestSliceDmaSm() override;
  /// Silences both reactors (true) or brings them back.
  virtual void moxDoZombieReactors(bool zombie);

  static Mox::MoxType const* _fwkType();

  /// Null: the agent's default activity.
  Mox::Ptr<Mox::ActivityConfig> moxFwkActivity() const { return nullptr; }

  /// The configuration that is observed, or null.
  Mox::Ptr<KestSliceDmaConfig const> config() const;
  /// Observes another configuration, or none. Entries that it holds already are not replayed.
  void configIs(Mox::Ptr<KestSliceDmaConfig const> const& config);
  /// Stops observing; returns what was observed.
  Mox::Ptr<KestSliceDmaConfig const> configDel();

  Mox::Ptr<KestSliceDmaStatus> const& status() const noexcept { return status_; }

  /// The clock that the timer observes, or null.
  Mox::Ptr<Mox::Clock const> stateTimer() const;
  /// Moves the timer to another clock, or drops it. Moving an existing timer polls at once.
  void stateTimerIs(Mox::Ptr<Mox::Clock const> const& clock);
  Mox::Ptr<Mox::Clock const> stateTimerDel();

  SmMode mode() const noexcept { return mode_; }
  /// Handled at once.
  void modeIs(SmMode mode);

  double pollPeriod() const noexcept { return pollPeriodSeconds; }

  // Handlers. Those of keys, and `doVerify`, need a configuration that is bound.

  /// Brings a port's kernel interface, then its native VLAN, in line with the configuration.
  void handleSwitchPort(Mox::String ifName);
  /// Brings the native VLAN of a created port in line with the configuration.
  void handleNativeVlan(Mox::String ifName);
  /// Registers a device afresh, or forgets one that the configuration no longer holds.
  void handleDevice(Mox::String devName);
  /// Brings a registered device up or down.
  void handleDeviceState(Mox::String devName);
  /// The poll: compares every device's state in the driver with the one last applied; ends the
  /// process when they differ. Otherwise it arms the timer, the one that is bound by then, for the
  /// poll period after the end of the pass, also when an exception ends the pass.
  void handleTimerExpired();
  /// Asserts that the status reflects the configuration completely.
  void doVerify();
  /// Arms the poll if the mode asks for it. Once armed, the poll goes on whatever the mode.
  void handleMode();
  /// Whether that mode asks for the poll: polling does, except in a simulation (the environment has
  /// "SIMULATION_VMID").
  static bool armsPoll(SmMode mode);
  /// Binds the timer to the agent's clock, unarmed.
  void handleInitialized();

  /// The reactor on the configuration; null when none is bound.
  Mox::Ptr<MoxConfig> const& configReactor() const noexcept { return config_; }
  /// The reactor on the clock; null when none is bound.
  Mox::Ptr<MoxStateTimer> const& stateTimerReactor() const noexcept { return stateTimer_; }

 private:
  Mox::Ptr<MoxConfig> newConfig(Mox::Ptr<KestSliceDmaConfig const> const& config);
  Mox::Ptr<MoxStateTimer> newStateTimer(Mox::Ptr<Mox::Clock const> const& clock);
  /// Keeps the machine alive during a call that may release it. Null while it is being constructed:
  /// there is no reference to release then.
  Mox::Ptr<KestSliceDmaSm> kept() noexcept { return references() == 0 ? nullptr : this; }
  void armPoll();
  void createInterface(Mox::String const& ifName, KestSliceDmaConfig::SwitchPort const& port);
  void programNativeVlan(KestSliceDmaConfig const& config, Mox::String const& ifName);

  // In this order: they are released from the last to the first.
  Mox::Ptr<MoxConfig> config_;
  Mox::Ptr<KestSliceDmaStatus> status_;
  Mox::Ptr<MoxStateTimer> stateTimer_;
  SmMode mode_ = SmMode::smModeInitial_;
};

/// Routes what the configuration announces to the handlers. A change of the slice id goes nowhere.
class KEST_SLICE_DMA_API KestSliceDmaSm::MoxConfig
    : public detail::Reactor<KestSliceDmaConfig::NotifieeConst> {
 public:
  /// Registers with the configuration.
  MoxConfig(KestSliceDmaSm* sm, Mox::Ptr<KestSliceDmaConfig const> const& config);
  ~MoxConfig() override;

  using KestSliceDmaConfig::NotifieeConst::onDevice;
  using KestSliceDmaConfig::NotifieeConst::onDeviceState;
  using KestSliceDmaConfig::NotifieeConst::onNativeVlan;
  using KestSliceDmaConfig::NotifieeConst::onSwitchPort;
  using KestSliceDmaConfig::NotifieeConst::onSwitchportMode;

  void onSwitchPort(Mox::String8 ifName) override;
  void onNativeVlan(Mox::String8 ifName) override;
  /// Re-evaluates the native VLAN: there is no handler for the mode alone.
  void onSwitchportMode(Mox::String8 ifName) override;
  void onDevice(Mox::String8 devName) override;
  void onDeviceState(Mox::String8 devName) override;
};

/// Polls when the clock wakes it.
class KEST_SLICE_DMA_API KestSliceDmaSm::MoxStateTimer
    : public detail::Reactor<Mox::Clock::NotifieeConst> {
 public:
  /// Registers with the clock.
  MoxStateTimer(KestSliceDmaSm* sm, Mox::Ptr<Mox::Clock const> const& clock);
  ~MoxStateTimer() override;

  /// Polls at once when it is moved to another clock, and joins that afterwards.
  void notifierIs(Mox::Ptr<Mox::PtrInterface const> const& clock) override;
  void onTime() override;
};

/// The library's entry point: makes the state machine of one slice.
KEST_SLICE_DMA_API Mox::Ptr<KestSliceDmaSm> kestSliceDmaSmFactory(
    Mox::Ptr<KestSliceDmaConfig const> const& config, Mox::Ptr<KestSliceDmaStatus> const& status);

}  // namespace Hardware::Kest::Slice
