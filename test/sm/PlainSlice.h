#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "model/KestSliceDmaConfig.h"
#include "model/KestSliceDmaStatus.h"
#include "platform/hardware/kest/SmMode.h"
#include "test/support/RecordingDriver.h"

namespace Hardware::Kest::Slice {

/// What a rule throws that ends the process.
struct ProcessEnds {};

/// One of the machine's reactors, in the plainest way: which notifier it has, and its flags.
struct PlainReactor {
  std::size_t notifier = 0;
  bool active = true;
  bool zombie = false;
  bool registered = true;
  bool wasRegistered = false;

  void activeIs(bool on);
  void zombieIs(bool on);
};

struct PlainConfig {
  std::map<std::string, KestSliceDmaConfig::SwitchPort> switchPort;
  std::map<std::string, std::uint16_t> nativeVlan;
  std::map<std::string, Bridging::SwitchportMode> switchportMode;
  std::map<std::string, KestSliceDmaConfig::Device> device;
  std::map<std::string, DeviceState> deviceState;
};

struct PlainStatus {
  std::map<std::string, std::string> switchPort;  // "created" or "not created"
  std::map<std::string, std::uint16_t> nativeVlan;
  std::map<std::string, Bridging::SwitchportMode> switchportMode;
  std::map<std::string, std::string> device;  // "registered" or "not registered"
  std::map<std::string, DeviceState> deviceState;
};

/// The machine and what is around it once more: two configurations and two clocks to choose from,
/// a status, a driver with its answers, the time. It can be copied, so a step can be tried first.
///
/// It knows nothing of how entities and machine are built; each rule stands here once, as plainly
/// as it can be said.
class PlainSlice {
 public:
  using Handler = void (PlainSlice::*)(std::string const& key);

  // What is around the machine.
  PlainConfig configs[2];
  PlainStatus status;
  std::map<std::pair<std::string, std::string>, RecordingDriver::Answers> answers;
  std::map<std::string, bool> up;
  std::vector<std::string> pollOrder;  // of the status's device states
  std::int64_t microseconds = 0;
  std::int32_t retrySeconds = 60;
  bool simulated = false;

  // The machine.
  std::optional<PlainReactor> configReactor = PlainReactor{};
  PlainReactor timer;
  double timeMin = 0;
  SmMode mode = SmMode::smModeInitial_;
  bool active = true;
  bool zombie = false;

  /// What the journal has to show of the last step.
  Support::Lines lines;

  /// The status, as `content()` writes it.
  Support::Lines content() const;

  /// A configuration has changed a key that the machine handles so, or announced it again.
  void announce(std::size_t config, Handler handler, std::string const& key);

  // The machine's operations.
  void configIs(std::optional<std::size_t> config);
  void stateTimerIs(std::size_t clock);
  void newStateTimer(std::size_t clock);
  void activeIs(bool on);
  void zombieIs(bool on);
  void modeIs(SmMode value);
  void handleMode();
  void handleSwitchPort(std::string const& ifName);
  void handleNativeVlan(std::string const& ifName);
  void handleDevice(std::string const& devName);
  void handleDeviceState(std::string const& devName);
  void handleTimerExpired();
  void doVerify() const;

  /// The clock looks for whom it has to wake.
  void dispatch(std::size_t clock);

 private:
  PlainConfig const& config() const { return configs[configReactor->notifier]; }
  double now() const { return static_cast<double>(microseconds) / 1e6; }
  int call(char const* operation, std::string const& name, std::string const& others = "");
  int addInterface(KestSliceDmaConfig::SwitchPort const& port);
};

/// The map's value for the key; the default for an absent one.
template <class Value>
Value valueOf(std::map<std::string, Value> const& map, std::string const& key) {
  auto const found = map.find(key);
  return found == map.end() ? Value() : found->second;
}

}  // namespace Hardware::Kest::Slice
