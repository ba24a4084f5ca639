#include <unistd.h>

#include <cmath>
#include <cstring>
#include <ctime>
#include <utility>

#include "driver/KestDma.h"
#include "sm/KestSliceDmaSm.h"
#include "sm/detail/Points.h"

namespace Hardware::Kest::Slice {

std::int32_t INTF_ADD_RETRY_TIMEOUT_SECONDS = 60;

namespace {

constexpr int tryAgain = 11;  // EAGAIN
constexpr useconds_t pauseMicroseconds = 100000;

/// A record that the configuration does not hold reads as the default; only these fields decide.
bool isAbsent(KestSliceDmaConfig::SwitchPort const& port) {
  return port.ifName().empty() && port.macAddr() == Pelk::EthAddr();
}

/// What a reader of NUL-terminated characters sees of `text`.
Mox::String8 untilNul(Mox::String8 const& text) {
  bool const isAll = std::strlen(text.charPtr()) == text.bytes();
  return isAll ? text : Mox::String8(text.charPtr());
}

int addInterface(KestSliceDmaConfig::SwitchPort const& port) {
  bool const noShadow = port.shadowIntfId() == noVlanOrInterface;
  int const shadowIntfId = noShadow ? -1 : static_cast<int>(port.shadowIntfId());
  return kestDmaIfadd(port.ifName().charPtr(), static_cast<int>(port.destId()), shadowIntfId,
                      static_cast<int>(port.trafficClass()), untilNul(port.devName()),
                      static_cast<int>(port.fapNum()), port.ctrl(), port.hwLag(),
                      port.macAddr().stringValue().charPtr());
}

/// Whole seconds of wall-clock time. No integer holds every jump of that clock; a `double` holds
/// all that can be near a retry period exactly.
double elapsedSince(std::time_t start) {
  return std::trunc(std::difftime(std::time(nullptr), start));
}

void tracePort(detail::Handler const& handler, unsigned lineNumber, Mox::String const& ifName) {
  detail::trace(8, handler, lineNumber, [&](std::ostream& out) {
    out << "KestSliceDmaSm::" << handler.name << " ifName=" << ifName;
  });
}

}  // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): a handler has its key by value
void KestSliceDmaSm::handleSwitchPort(Mox::String ifName) {
  auto const self = kept();
  auto const config = this->config();
  tracePort(detail::handler::handleSwitchPort, detail::line::handleSwitchPort, ifName);
  KestSliceDmaConfig::SwitchPort const port = config->switchPort(ifName);
  if (isAbsent(port)) {
    kestDmaIfdel(ifName.charPtr());  // the driver may never have had it: the result says nothing
    status_->switchPortDel(ifName);
  } else {
    createInterface(ifName, port);
  }
  programNativeVlan(*config, ifName);
}

/// Hands the port to the driver, over an interface that exists already too, and again as long as
/// the driver asks for it. The pause follows every attempt, the successful one too: the kernel
/// needs it.
void KestSliceDmaSm::createInterface(Mox::String const& ifName,
                                     KestSliceDmaConfig::SwitchPort const& port) {
  std::time_t const start = std::time(nullptr);
  int result = 0;
  do {
    if (elapsedSince(start) > INTF_ADD_RETRY_TIMEOUT_SECONDS) {
      detail::assertionFailed(
          "0 && \"Timed out trying to create kernel interface. \" "
          "\"This should only happen on standby.\"",
          detail::handler::handleSwitchPort, detail::line::interfaceTimeout);
    }
    result = addInterface(port);
    usleep(pauseMicroseconds);
  } while (result == tryAgain);

  KestSliceDmaStatus::SwitchPort outcome;
  outcome.ifNameIs(ifName);
  outcome.createdIs(result == 0);
  status_->switchPortIs(std::move(outcome));
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): a handler has its key by value
void KestSliceDmaSm::handleNativeVlan(Mox::String ifName) {
  auto const self = kept();
  auto const config = this->config();
  programNativeVlan(*config, ifName);
}

void KestSliceDmaSm::programNativeVlan(KestSliceDmaConfig const& config,
                                       Mox::String const& ifName) {
  tracePort(detail::handler::handleNativeVlan, detail::line::handleNativeVlan, ifName);
  if (ifName.pos("et") == Mox::String::npos) {
    detail::assertionFailed("ifName.pos( \"et\" ) != Mox::String::npos",
                            detail::handler::handleNativeVlan, detail::line::interfaceName);
  }
  std::uint16_t const vlan = config.nativeVlan(ifName);
  // Without an interface there is nothing to program. Creating it leads here again.
  if (!status_->switchPort(ifName).created()) return;

  if (vlan == 0) {
    // There may be nothing to clear: the result says nothing.
    kestDmaNativeVlan(ifName.charPtr(), false, noVlanOrInterface);
    status_->nativeVlanDel(ifName);
    status_->switchportModeDel(ifName);
    return;
  }
  bool const mode =
      config.switchportMode(ifName) == Bridging::SwitchportMode::switchportModeDot1qTunnel_;
  int const error = kestDmaNativeVlan(ifName.charPtr(), mode, vlan);
  if (error != 0) {
    detail::assertionFailed("error == 0", detail::handler::handleNativeVlan,
                            detail::line::nativeVlanSet);
  }
  status_->nativeVlanIs(ifName, vlan);
  status_->switchportModeIs(ifName, config.switchportMode(ifName));
}

}  // namespace Hardware::Kest::Slice
