#include "test/support/RecordingDriver.h"

#include <cstdlib>
#include <sstream>

// What the library asks of its driver, visible to it.
#pragma GCC visibility push(default)
#include "driver/KestDma.h"
#pragma GCC visibility pop

namespace Hardware::Kest {

namespace {

RecordingDriver* currentDriver = nullptr;

std::string quoted(Mox::String8 const& text) {
  return "'" + std::string(text.view()) + "'";
}

/// Writes down the call of `operation` for `name`, its first argument, and answers it.
template <class... Arguments>
int recorded(char const* operation, Mox::String8 const& name, Arguments const&... others) {
  std::ostringstream line;
  line << std::boolalpha << operation << '(' << quoted(name);
  ((line << ", " << others), ...);
  line << ')';
  return RecordingDriver::current().call(operation, name.charPtr(), line.str());
}

}  // namespace

RecordingDriver::RecordingDriver(Support::Journal& journal) : journal_(journal) {
  currentDriver = this;
}

RecordingDriver::~RecordingDriver() {
  currentDriver = nullptr;
}

RecordingDriver& RecordingDriver::current() {
  if (currentDriver == nullptr) std::abort();
  return *currentDriver;
}

void RecordingDriver::answersIs(std::string const& operation, std::string const& name,
                                Answers answers) {
  answers_[{operation, name}] = std::move(answers);
}

int RecordingDriver::call(std::string const& operation, std::string const& name, std::string line) {
  journal_.add(std::move(line));
  if (reaction) reaction();
  auto const found = answers_.find({operation, name});
  if (found == answers_.end() || found->second.empty()) return 0;
  int const answer = found->second.front();
  found->second.pop_front();
  return answer;
}

void RecordingDriver::storeUp(std::string const& devName, bool* up) const {
  auto const found = up_.find(devName);
  if (found != up_.end()) *up = found->second;
}

int kestDmaIfadd(char const* ifName, int destId, int shadowIntfId, int trafficClass,
                 Mox::String8 devName, int fapNum, bool ctrl, bool hwLag, char const* macAddr) {
  return recorded("kestDmaIfadd", ifName, destId, shadowIntfId, trafficClass, quoted(devName),
                  fapNum, ctrl, hwLag, quoted(macAddr));
}

int kestDmaIfdel(char const* ifName) {
  return recorded("kestDmaIfdel", ifName);
}

int kestDmaNativeVlan(char const* ifName, bool mode, unsigned short vlanId) {
  return recorded("kestDmaNativeVlan", ifName, mode, vlanId);
}

int kestDmaDeviceRename(Mox::String8 devName, Mox::Ptr<Fru::PciHam const> pciHam) {
  return recorded("kestDmaDeviceRename", devName,
                  pciHam ? quoted(pciHam->name().string()) : std::string("null"));
}

int kestDmaDeviceParam(Mox::String8 devName, unsigned numFaps, FapType fapType,
                       unsigned cpuTmSysPort, unsigned cpuEthSysPort, unsigned cpuRawSysPort,
                       unsigned sflowPort, unsigned cpuAradSysPort, unsigned cpuArad,
                       unsigned cpuAradBridge) {
  return recorded("kestDmaDeviceParam", devName, numFaps, fapType, cpuTmSysPort, cpuEthSysPort,
                  cpuRawSysPort, sflowPort, cpuAradSysPort, cpuArad, cpuAradBridge);
}

int kestDmaDeviceDown(Mox::String8 devName) {
  return recorded("kestDmaDeviceDown", devName);
}

int kestDmaDeviceUp(Mox::String8 devName) {
  return recorded("kestDmaDeviceUp", devName);
}

int kestDmaIsDeviceUp(Mox::String8 devName, bool* up) {
  int const answer = recorded("kestDmaIsDeviceUp", devName);
  RecordingDriver::current().storeUp(devName.charPtr(), up);
  return answer;
}

void kestDmaDump() {
  RecordingDriver::current().call("kestDmaDump", "", "kestDmaDump()");
}

}  // namespace Hardware::Kest
