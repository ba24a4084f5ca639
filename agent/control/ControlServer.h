#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "agent/access/ChangeFeed.h"
#include "agent/control/Account.h"
#include "agent/control/Admission.h"
#include "agent/control/Alarm.h"
#include "agent/control/Connection.h"
#include "agent/control/Listener.h"
#include "agent/control/Turns.h"
#include "agent/process/ActivityLoop.h"
#include "agent/verbs/Verbs.h"

namespace Kest::Agent {

/// Serves the control protocol (`doc/control-protocol.md`) on the agent's activity.
class ControlServer final : private Turns::Taker {
 public:
  /// Takes clients from now on. The agent and the loop must outlive this.
  /// @throw ControlSocketError
  ControlServer(ActivityLoop& loop, std::string const& path, RunningAgent const& agent,
                SocketAccess const& access = {});
  ~ControlServer();
  ControlServer(ControlServer const&) = delete;
  ControlServer& operator=(ControlServer const&) = delete;

  std::size_t connections() const noexcept { return connections_.size(); }

 private:
  using Client = std::shared_ptr<Connection>;

  void turn() override;
  bool accept();
  void add(Text::Descriptor client, Peer const& peer);
  void leave(Connection& gone) noexcept;
  void relieve();
  void alarmAt(Seconds at);
  void onAlarm();
  Answer serve(Connection& connection, Json const& request);
  void publish(std::string event);

  Listener listener_;
  Verbs verbs_;
  Admission admission_;
  Account readers_;
  Account trusted_;  // root and the agent's user
  Turns turns_;
  Turns::Member taking_;
  std::map<int, Client> connections_;
  std::size_t watchers_ = 0;  // of the connections
  std::size_t freed_ = 0;     // by clients that have gone
  Mox::Ptr<Alarm> alarm_;
  Mox::Ptr<ConfigFeed> configFeed_;
  Mox::Ptr<StatusFeed> statusFeed_;
};

}  // namespace Kest::Agent
