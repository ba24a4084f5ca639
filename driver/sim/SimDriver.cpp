#include "driver/sim/SimDriver.h"

#include <cerrno>
#include <cstdio>
#include <sstream>
#include <string>

#include "driver/sim/FaultFile.h"
#include "driver/sim/File.h"
#include "platform/mox/Strep.h"

namespace Hardware::Kest::Sim {

using Mox::String8;

namespace {

template <class Value>
std::string streamed(Value const& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

// Most calls have no more than a name and perhaps one of these. A stream costs more than the call.
std::string streamed(String8 const& text) {
  return std::string(text.view());
}
std::string streamed(unsigned short number) {
  return std::to_string(number);
}

/// A call's arguments as the log shows them: the name, then the rest as it streams.
template <class... Rest>
std::string argumentsText(String8 const& name, Rest const&... rest) {
  std::string text = streamed(Mox::valueToStrep(name));
  (text.append(", ").append(streamed(rest)), ...);
  return text;
}

}  // namespace

SimDriver::SimDriver(std::size_t logCapacity) : log_(logCapacity) {}

SimDriver::~SimDriver() = default;

/// @param arguments logged as they are when `carry` has been called
/// @param carry carries the call out
template <class Carry>
int SimDriver::call(Operation operation, String8 const& name, std::string const& arguments,
                    Carry carry) {
  FaultTable::Outcome const outcome = faults_.called(operation, name);
  int const result = outcome.answer ? *outcome.answer : carry();
  log_.add({operation, name, arguments, result, outcome.answer.has_value()});
  for (String8 const& devName : outcome.flipped) {
    if (state_.devices.flip(devName) != 0) {
      std::fprintf(stderr, "kest-dma-sim: there is no device '%s' to flip\n", devName.charPtr());
    }
  }
  keepState();
  return result;
}

int SimDriver::ifadd(String8 const& ifName, InterfaceParam const& param) noexcept {
  return call(Operation::ifadd, ifName, argumentsText(ifName, param),
              [&] { return state_.interfaces.add(ifName, param, state_.devices); });
}

int SimDriver::ifdel(String8 const& ifName) noexcept {
  return call(Operation::ifdel, ifName, argumentsText(ifName),
              [&] { return state_.interfaces.del(ifName); });
}

int SimDriver::nativeVlan(String8 const& ifName, bool mode, unsigned short vlanId) noexcept {
  return call(Operation::nativeVlan, ifName, argumentsText(ifName, Mox::valueToStrep(mode), vlanId),
              [&] { return state_.interfaces.nativeVlan(ifName, mode, vlanId); });
}

int SimDriver::deviceRename(String8 const& devName,
                            Mox::Ptr<Fru::PciHam const> const& pciHam) noexcept {
  String8 const pciPath = pciHam ? pciHam->fullName() : String8();
  String8 const pciText = pciHam ? Mox::valueToStrep(pciPath) : String8("None");
  return call(Operation::deviceRename, devName, argumentsText(devName, pciText), [&] {
    if (!pciHam) return ENODEV;
    String8 const before = state_.devices.nameAt(pciPath);
    int const result = state_.devices.rename(devName, pciPath);
    if (result == 0) state_.interfaces.deviceRenamed(before, devName);
    return result;
  });
}

int SimDriver::deviceParam(String8 const& devName, DeviceParam const& param) noexcept {
  return call(Operation::deviceParam, devName, argumentsText(devName, param),
              [&] { return state_.devices.param(devName, param); });
}

int SimDriver::deviceDown(String8 const& devName) noexcept {
  return call(Operation::deviceDown, devName, argumentsText(devName),
              [&] { return state_.devices.down(devName); });
}

int SimDriver::deviceUp(String8 const& devName) noexcept {
  return call(Operation::deviceUp, devName, argumentsText(devName),
              [&] { return state_.devices.up(devName); });
}

int SimDriver::isDeviceUp(String8 const& devName, bool* up) noexcept {
  std::string arguments = argumentsText(devName);
  return call(Operation::isDeviceUp, devName, arguments, [&] {
    int const result = state_.devices.isUp(devName, up);
    if (result == 0) arguments += *up ? ", up" : ", down";
    return result;
  });
}

void SimDriver::dump() noexcept {
  call(Operation::dump, String8(), "", [&] {
    std::fputs(dumpText().c_str(), stderr);
    return 0;
  });
}

Interface const* SimDriver::interface(String8 const& ifName) const {
  auto const at = interfaces().find(ifName);
  return at == interfaces().end() ? nullptr : &at->second;
}

Device const* SimDriver::device(String8 const& devName) const {
  return state_.devices.named(devName);
}

String8 const* SimDriver::pathOf(String8 const& devName) const {
  return state_.devices.pathOf(devName);
}

void SimDriver::dump(std::ostream& out) const {
  out << "kest-dma-sim: interfaces " << interfaces().size() << ", devices " << devices().size()
      << ", faults to come " << faults_.size() << ", calls " << log_.total() << " ("
      << log_.dropped() << " no longer in the log)\n";
  for (auto const& [ifName, interface] : interfaces()) {
    out << "interface " << Mox::valueToStrep(ifName) << ": " << interface << '\n';
  }
  for (auto const& [pciPath, device] : devices()) {
    out << "device at " << Mox::valueToStrep(pciPath) << ": " << device << '\n';
  }
  out << faults_ << log_;
}

std::string SimDriver::dumpText() const {
  std::ostringstream out;
  dump(out);
  return out.str();
}

std::string SimDriver::logText() const {
  return streamed(log_);
}

std::string SimDriver::stateText() const {
  return Sim::stateText(state_);
}

void SimDriver::faultsAre(std::string_view text, std::string const& source) {
  Faults faults = readFaults(text, source, state_.devices);
  faults_ = std::move(faults.table);
  for (String8 const& devName : faults.flips) state_.devices.flip(devName);
  keepState();
}

void SimDriver::faultFileIs(std::string const& path) {
  faultsAre(readFile(path), path);
}

std::string SimDriver::faultsText() const {
  return streamed(faults_);
}

int SimDriver::deviceFlip(String8 const& devName) {
  int const result = state_.devices.flip(devName);
  keepState();
  return result;
}

void SimDriver::stateFileIs(std::string const& path) {
  StateFile file(path);
  if (std::optional<SliceState> loaded = file.load()) {
    state_ = *std::move(loaded);
  } else if (state_ != SliceState()) {
    file.replace(state_);
  }
  stateFile_ = std::move(file);
}

void SimDriver::keepState() {
  Change const change{state_.interfaces.takeChanged(), state_.devices.takeChanged()};
  if (stateFile_) stateFile_->keep(state_, change);
}

void SimDriver::reset() {
  stateFile_.reset();
  state_ = {};
  faults_ = {};
  log_.clear();
}

SimDriver& simDriver() {
  static SimDriver driver;
  return driver;
}

}  // namespace Hardware::Kest::Sim
