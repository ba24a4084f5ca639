#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "agent/access/Entities.h"
#include "agent/access/OrderedKeys.h"
#include "agent/show/DriverView.h"

namespace Kest::Agent {

/// One point in which configuration, status and driver disagree. A side that says nothing about it
/// holds discarded JSON (`Json::value_t::discarded`).
struct Difference {
  std::string subject;  // as in "device fap0"
  std::string what;     // as in "state"
  Json config;
  Json status;
  Json driver;

  /// As in "device fap0 state: configuration 'deviceStateUp', status 'deviceStateDown'".
  std::string message() const;
};

/// The devices and ports that any side knows. The driver must live until they have been gathered.
OrderedKeys deviceNames(Mox::Ptr<Config const> const& config, Mox::Ptr<Status const> const& status);
OrderedKeys portNames(Mox::Ptr<Config const> const& config, Mox::Ptr<Status const> const& status,
                      DriverView const& driver);

/// Where the three sides differ about one device, or one port. Changes nothing.
std::vector<Difference> deviceDifferences(Config const& config, Status const& status,
                                          DriverView const& driver, Mox::String8 const& devName);
std::vector<Difference> portDifferences(Config const& config, Status const& status,
                                        DriverView const& driver, Mox::String8 const& ifName);

}  // namespace Kest::Agent
