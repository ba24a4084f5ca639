#include "agent/control/ControlServer.h"

#include <sys/resource.h>
#include <sys/socket.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "agent/byname/ControlError.h"

namespace Kest::Agent {

namespace {

/// Anyone whom the directories on the way let through may connect, and read.
constexpr mode_t socketMode = 0666;
constexpr int clientsPerRound = 64;

/// As many descriptors as there may be connections, and some for the rest of the process, as far as
/// the system lets it.
void raiseDescriptorLimit() {
  constexpr rlim_t wanted = Wire::mostConnections + 64;
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= wanted) return;
  limit.rlim_cur = std::min(wanted, limit.rlim_max);
  setrlimit(RLIMIT_NOFILE, &limit);  // without it, clients are turned away earlier
}

}  // namespace

ControlServer::ControlServer(Mox::ActivityLoop& loop, std::string const& path, Served const& served)
    : loop_(loop),
      listener_(path, socketMode),
      verbs_(served),
      configFeed_(
          new ConfigFeed(served.config, "config", [this](Json const& event) { publish(event); })),
      statusFeed_(
          new StatusFeed(served.status, "status", [this](Json const& event) { publish(event); })) {
  raiseDescriptorLimit();
  loop_.fdIs(listener_.fd(), [this] { accept(); });
}

ControlServer::~ControlServer() {
  loop_.fdDel(listener_.fd());
  configFeed_->notifierIs(nullptr);
  statusFeed_->notifierIs(nullptr);
}

void ControlServer::accept() {
  for (int taken = 0; taken < clientsPerRound; ++taken) {
    Descriptor client = listener_.accept();
    if (!client.isOpen()) return;
    add(std::move(client));
  }
}

void ControlServer::add(Descriptor client) {
  int const fd = client.fd();
  auto const connection = std::make_shared<Connection>(
      loop_, std::move(client),
      [this](Connection& from, Json const& request) { serve(from, request); },
      [this](Connection& gone) { connections_.erase(gone.fd()); });
  if (connections_.size() >= Wire::mostConnections) {
    connection->refuse(Wire::name(Wire::ErrorKind::busy),
                       "there are " + std::to_string(Wire::mostConnections) +
                           " connections already: try again later",
                       "");
    return;
  }
  connections_[fd] = connection;
  connection->start();
}

void ControlServer::serve(Connection& connection, Json const& request) {
  if (Request(request).string("verb") == "watch") {
    Request(request).checkMembers({});
    connection.watch();
    connection.reply({{"watching", true}});
    return;
  }
  auto later = [weak = connection.weak_from_this()](Json result) {
    if (auto const there = weak.lock()) there->reply(std::move(result));
  };
  Answer answer = verbs_.carryOut(request, connection.mayChange(), std::move(later));
  if (auto* const result = std::get_if<Json>(&answer)) connection.reply(std::move(*result));
}

void ControlServer::publish(Json const& event) {
  std::vector<std::shared_ptr<Connection>> watching;
  for (auto const& [fd, connection] : connections_) {
    if (connection->isWatching()) watching.push_back(connection);
  }
  if (watching.empty()) return;
  std::string const line = event.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
  for (auto const& connection : watching) connection->event(line);
}

}  // namespace Kest::Agent
