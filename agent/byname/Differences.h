#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "agent/byname/DriverView.h"
#include "agent/slice/SliceFile.h"

namespace Kest::Agent {

/// One point in which configuration, status and driver disagree. A side that has no say there is
/// left out: discarded JSON (`Json::value_t::discarded`).
struct Difference {
  std::string subject;  // as in "device fap0"
  std::string what;     // as in "state"
  Json config;
  Json status;
  Json driver;

  /// As in "device fap0 state: configuration 'deviceStateUp', status 'deviceStateDown'".
  std::string message() const;
};

/// The devices and ports that any side knows, in natural order.
std::vector<Mox::String8> deviceNames(Config const& config, Status const& status);
std::vector<Mox::String8> portNames(Config const& config, Status const& status,
                                    DriverView const& driver);

/// Every difference, devices before ports, each in natural order. It only reads.
std::vector<Difference> differences(Config const& config, Status const& status,
                                    DriverView const& driver);

}  // namespace Kest::Agent
