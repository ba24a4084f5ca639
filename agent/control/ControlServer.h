#pragma once

#include <map>
#include <memory>
#include <string>

#include "agent/byname/ChangeFeed.h"
#include "agent/byname/Verbs.h"
#include "agent/control/Connection.h"
#include "agent/control/Listener.h"
#include "platform/mox/ActivityLoop.h"

namespace Kest::Agent {

/// Serves the control protocol (`doc/control-protocol.md`) on the agent's activity.
class ControlServer {
 public:
  /// Takes clients from now on. What is served must outlive this, as the loop must.
  /// @throw ControlSocketError
  ControlServer(Mox::ActivityLoop& loop, std::string const& path, Served const& served);
  ~ControlServer();
  ControlServer(ControlServer const&) = delete;
  ControlServer& operator=(ControlServer const&) = delete;

  std::size_t connections() const noexcept { return connections_.size(); }

 private:
  void accept();
  void add(Descriptor client);
  void serve(Connection& connection, Json const& request);
  void publish(Json const& event);

  Mox::ActivityLoop& loop_;
  Listener listener_;
  Verbs verbs_;
  std::map<int, std::shared_ptr<Connection>> connections_;
  Mox::Ptr<ConfigFeed> configFeed_;
  Mox::Ptr<StatusFeed> statusFeed_;
};

}  // namespace Kest::Agent
