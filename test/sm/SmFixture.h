#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <ostream>
#include <sstream>
#include <string>

#include "sm/KestSliceDmaSm.h"
#include "test/sm/StatusJournal.h"
#include "test/support/RecordingDriver.h"
#include "test/support/TraceJournal.h"
#include "test/support/VirtualTime.h"

namespace Hardware::Kest::Slice {

/// Expects that `statement`, run in a process of its own, aborts and that all that it wrote to
/// standard error is `text`.
#define EXPECT_ABORT(statement, text) \
  EXPECT_EXIT(statement, ::testing::KilledBySignal(SIGABRT), ::testing::Eq(text))

/// The standard assertion's line: the program's name, then `report`.
std::string assertion(std::string const& report);

inline constexpr auto access = Bridging::SwitchportMode::switchportModeAccess_;
inline constexpr auto trunk = Bridging::SwitchportMode::switchportModeTrunk_;
inline constexpr auto tunnel = Bridging::SwitchportMode::switchportModeDot1qTunnel_;
inline constexpr auto unknown = DeviceState::deviceStateUnknown_;
inline constexpr auto up = DeviceState::deviceStateUp_;
inline constexpr auto down = DeviceState::deviceStateDown_;

/// A complete port without a shadow interface. The driver sees it as `ifadd(ifName)`.
KestSliceDmaConfig::SwitchPort port(char const* ifName);
std::string ifadd(std::string const& ifName);
/// A complete device, at the handle "0000:05:00.0".
KestSliceDmaConfig::Device device(char const* devName);

/// A machine between a configuration and a status of its own, on a clock of its own, with a
/// recording driver. Outside a simulation, at `Mox::now()` 0, no trace level on. The journal has
/// driver calls, pauses, changes of the status and, when they are on, traces.
class SmTest : public testing::Test {
 protected:
  SmTest();
  ~SmTest() override;

  void traceOn(std::string const& levels);
  /// Lets time pass and wakes whom the clock has to wake.
  void pass(std::int64_t microseconds);
  double timeMin() const { return sm->stateTimerReactor()->timeMin(); }
  /// A port whose interface is created; nothing of it is left in the journal.
  void createPort(char const* ifName);
  /// A registered device that was brought to `state`; nothing of it is left in the journal.
  void registerDevice(char const* devName, DeviceState state);

  Support::Journal journal;
  Support::VirtualTime time{journal};
  RecordingDriver driver{journal};
  Mox::Ptr<Mox::Clock> clock{new Mox::Clock("clock")};
  Mox::Ptr<KestSliceDmaConfig> config{new KestSliceDmaConfig("config")};
  Mox::Ptr<KestSliceDmaStatus> status{new KestSliceDmaStatus("status")};
  Mox::Ptr<StatusJournal> statusJournal{new StatusJournal(status, journal)};
  Mox::Ptr<KestSliceDmaSm> sm;

 private:
  Support::TraceJournal traceJournal_{journal};
  std::ostream traceStream_{&traceJournal_};
};

}  // namespace Hardware::Kest::Slice
