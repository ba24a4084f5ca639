#include "agent/control/ControlServer.h"

#include <malloc.h>
#include <sys/epoll.h>
#include <sys/resource.h>

#include <algorithm>
#include <limits>
#include <new>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>
#include <vector>

#include "agent/access/ControlError.h"
#include "platform/mox/Activity.h"

namespace Kest::Agent {

namespace {

using Wire::ErrorKind;

constexpr int clientsPerTurn = 16;
constexpr std::size_t mostHeldByReaders = std::size_t{16} << 20;
/// No limit: whoever may change the agent can fill its memory with a slice file anyway.
constexpr std::size_t mostHeldByTrusted = std::numeric_limits<std::size_t>::max();
/// Memory is given back to the system after so many bytes of clients that have gone.
constexpr std::size_t worthTrimming = std::size_t{1} << 20;
/// How long to wait before `accept` is tried again after the system refused it.
constexpr Seconds pauseWhenStuck = 1;

constexpr char const* noDescriptors =
    R"({"ok":false,"error":{"kind":"busy",)"
    R"("message":"the agent has no file descriptors left: try again later"}})"
    "\n";

/// Raises the limit of descriptors as far as needed and possible. Returns how many connections
/// there may be, with descriptors left for the rest of the process.
std::size_t raiseDescriptorLimit() {
  constexpr rlim_t forTheRest = 64;
  constexpr rlim_t wanted = Wire::mostConnections + forTheRest;
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return Wire::mostConnections;
  if (limit.rlim_cur < wanted) {
    rlimit const raised{std::min(wanted, limit.rlim_max), limit.rlim_max};
    if (setrlimit(RLIMIT_NOFILE, &raised) == 0) limit = raised;
  }
  rlim_t const few = limit.rlim_cur / 2;
  rlim_t const places = limit.rlim_cur > 2 * forTheRest ? limit.rlim_cur - forTheRest : few;
  return static_cast<std::size_t>(std::min<rlim_t>(places, Wire::mostConnections));
}

}  // namespace

ControlServer::ControlServer(ActivityLoop& loop, std::string const& path, RunningAgent const& agent,
                             SocketAccess const& access) try
    : listener_(path, access),
      verbs_(agent),
      admission_(raiseDescriptorLimit()),
      readers_(mostHeldByReaders, [this] { relieve(); }),
      trusted_(mostHeldByTrusted, [] {}),
      turns_(loop),
      taking_(turns_, *this, listener_.fd(), true),
      alarm_(new Alarm(Mox::activityManager()->clock(), [this] { onAlarm(); })),
      configFeed_(new ConfigFeed(
          agent.config, "config", [this] { return watchers_ > 0; },
          [this](std::string event) { publish(std::move(event)); })),
      statusFeed_(new StatusFeed(
          agent.status, "status", [this] { return watchers_ > 0; },
          [this](std::string event) { publish(std::move(event)); })) {
  taking_.watch(EPOLLIN);
} catch (std::system_error const& refused) {
  throw ControlSocketError("control socket " + path +
                           " cannot be served: " + refused.code().message());
}

ControlServer::~ControlServer() {
  alarm_->notifierIs(nullptr);
  configFeed_->notifierIs(nullptr);
  statusFeed_->notifierIs(nullptr);
}

/// Takes clients. Without memory for one, its connection is closed without a word.
void ControlServer::turn() {
  if (freed_ >= worthTrimming) {
    malloc_trim(0);
    freed_ = 0;
  }
  for (int taken = 0; taken < clientsPerTurn; ++taken) {
    try {
      if (!accept()) return;
    } catch (std::bad_alloc const&) {
    }
  }
  taking_.ready();
}

bool ControlServer::accept() {
  Text::Descriptor client = listener_.accept(noDescriptors);
  if (listener_.isStuck()) {
    taking_.watch(0);
    alarmAt(Mox::now() + pauseWhenStuck);
  }
  if (!client.isOpen()) return false;
  Peer const peer = Peer::of(client.fd());
  std::string const refusal = admission_.refusal(peer);
  if (refusal.empty()) {
    add(std::move(client), peer);
  } else {
    Connection::sendRefusal(client.fd(), ErrorKind::busy, refusal);
  }
  return true;
}

void ControlServer::add(Text::Descriptor client, Peer const& peer) {
  int const fd = client.fd();
  auto const connection = std::make_shared<Connection>(
      turns_, peer.mayChange ? trusted_ : readers_, std::move(client), peer,
      [this](Connection& from, Json const& request) { return serve(from, request); },
      [this](Connection& gone) { leave(gone); });
  admission_.admit(peer);
  try {
    connections_.emplace(fd, connection);
  } catch (std::bad_alloc const&) {
    admission_.leave(peer);
    throw;
  }
  alarmAt(connection->silentAt());
  connection->start();
}

void ControlServer::leave(Connection& gone) noexcept {
  freed_ += gone.share();
  if (freed_ >= worthTrimming) taking_.ready();
  if (gone.isWatching()) --watchers_;
  admission_.leave(gone.peer());
  connections_.erase(gone.fd());
}

/// Sends away the client that holds most, among those that may only read.
void ControlServer::relieve() {
  Client most;
  for (auto const& [fd, connection] : connections_) {
    if (connection->peer().mayChange) continue;
    if (!most || connection->share() > most->share()) most = connection;
  }
  if (most) most->dismiss("clients hold too much of the agent's memory, and this one most of it");
}

/// Makes sure that the alarm comes no later than that.
void ControlServer::alarmAt(Seconds at) {
  alarm_->timeMinIs(std::min(alarm_->timeMin(), at));
}

/// Ends connections that have been silent for too long, and looks for new clients again.
void ControlServer::onAlarm() {
  taking_.watch(EPOLLIN);
  Seconds const now = Mox::now();
  for (auto next = connections_.begin(); next != connections_.end();) {
    Client const connection = (next++)->second;
    Seconds const silentAt = connection->silentAt();
    if (silentAt <= now) {
      connection->dismiss("the connection was silent for too long");
    } else {
      alarmAt(std::min(silentAt, now + Wire::longestSilence));
    }
  }
}

Answer ControlServer::serve(Connection& connection, Json const& request) {
  if (Request(request).string("verb") == "watch") {
    Request(request).checkMembers({});
    if (!connection.isWatching()) ++watchers_;
    connection.watch();
    return Json{{"watching", true}};
  }
  auto later = [weak = connection.weak_from_this()](Json const& result) {
    if (auto const there = weak.lock()) there->reply(result);
  };
  return verbs_.carryOut(request, connection.peer().mayChange, std::move(later));
}

/// Without memory the event is lost, and counted as lost.
void ControlServer::publish(std::string event) {
  try {
    std::string const line = std::move(event += '\n');
    std::vector<Client> watching;
    for (auto const& [fd, connection] : connections_) {
      if (connection->isWatching()) watching.push_back(connection);
    }
    for (auto const& connection : watching) connection->event(line);
  } catch (std::bad_alloc const&) {
    for (auto const& [fd, connection] : connections_) {
      if (connection->isWatching()) connection->loseEvent();
    }
  }
}

}  // namespace Kest::Agent
