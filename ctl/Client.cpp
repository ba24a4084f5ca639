#include "ctl/Client.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "agent/wire/Protocol.h"
#include "ctl/Failure.h"
#include "ctl/ReplyText.h"

namespace Kest::Ctl {

namespace {

constexpr std::size_t longestReply = std::size_t{256} << 20;  // bytes: a million ports

[[noreturn]] void throwNoAgent(std::string const& path, std::string const& why) {
  throw Failure(Exit::noAgent, "no-agent",
                "no agent at " + path + ": " + why + " (--socket names another socket)");
}

[[noreturn]] void throwBadReply(std::string const& what) {
  throw Failure(Exit::failed, "reply", "the agent's reply cannot be used: " + what);
}

[[noreturn]] void throwEnded() {
  throw Failure(Exit::noAgent, "no-agent",
                "the agent has ended, or has ended the connection: its log or its standard error "
                "says why; try again when it is running");
}

Json const& memberOf(Json const& object, char const* name) {
  auto const found = object.find(name);
  if (found == object.end()) throwBadReply(std::string("it has no '") + name + "'");
  return *found;
}

std::string stringOf(Json const& value) {
  if (!value.is_string()) throwBadReply("expected a string, found " + value.dump());
  return value.get<std::string>();
}

[[noreturn]] void throwRefusal(Json const& reply) {
  Json const& error = memberOf(reply, "error");
  if (!error.is_object()) throwBadReply("its error is no object");
  std::string const kind = stringOf(memberOf(error, "kind"));
  std::string const message = stringOf(memberOf(error, "message"));
  bool const isSuggesting = error.contains("suggestion");
  throw Failure(Exit::failed, kind, message, isSuggesting ? stringOf(error.at("suggestion")) : "");
}

std::string lineOf(Json const& request) {
  return request.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

int milliseconds(Client::Deadline deadline) {
  if (!deadline) return -1;
  auto const left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - Client::Clock::now());
  constexpr long long most = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp<long long>(left.count(), 0, most));
}

}  // namespace

Client::Deadline Client::after(double seconds) {
  constexpr double longest = 1e9;
  auto const wait = std::chrono::duration<double>(std::min(seconds, longest));
  return Clock::now() + std::chrono::duration_cast<Clock::duration>(wait);
}

Client::Client(std::string const& path, Deadline deadline)
    : fd_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  if (fd_ < 0) throwNoAgent(path, std::strerror(errno));
  try {
    connect(path, deadline);
  } catch (...) {
    close(fd_);
    throw;
  }
}

Client::~Client() {
  close(fd_);
}

void Client::connect(std::string const& path, Deadline deadline) const {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.empty() || path.size() >= sizeof address.sun_path) {
    throwNoAgent(path, "that is no path of a socket");
  }
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  auto const* const target = reinterpret_cast<sockaddr const*>(&address);
  // When the backlog is full, the system lets waiting clients in one by one.
  do {
    waitIs(deadline);
    if (::connect(fd_, target, sizeof address) == 0) return;
  } while (errno == EINTR);
  if (errno != EAGAIN) throwNoAgent(path, std::strerror(errno));
  throw Failure(Exit::timedOut, "timeout", "the agent took no connection in time");
}

/// Bounds the wait for a connection. Nothing else on the socket blocks.
void Client::waitIs(Deadline deadline) const {
  constexpr long thousand = 1000;
  if (!deadline) return;
  long const wait = std::max(milliseconds(deadline), 1);  // 0 would wait for ever
  timeval const time{wait / thousand, wait % thousand * thousand};
  setsockopt(fd_, SOL_SOCKET, SO_SNDTIMEO, &time, sizeof time);
}

void Client::await(short events, Deadline deadline) const {
  pollfd waiting{fd_, events, 0};
  while (true) {
    int const ready = poll(&waiting, 1, milliseconds(deadline));
    if (ready > 0) return;
    if (ready == 0) throw Failure(Exit::timedOut, "timeout", "the agent did not answer in time");
    if (errno != EINTR) throwBadReply(std::strerror(errno));
  }
}

void Client::send(std::string_view bytes, Deadline deadline) {
  while (!bytes.empty()) {
    ssize_t const sent = ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    } else if (errno == EAGAIN) {
      await(POLLOUT, deadline);
    } else if (errno == EPIPE || errno == ECONNRESET) {
      return;  // the agent may have said why
    } else if (errno != EINTR) {
      throwBadReply(std::strerror(errno));
    }
  }
}

std::string Client::line(Deadline deadline) {
  std::size_t searched = begin_;
  while (true) {
    std::size_t const end = input_.find('\n', searched);
    if (end != std::string::npos) {
      std::string line = input_.substr(begin_, end - begin_);
      begin_ = end + 1;
      if (line.size() > longestReply) throwBadReply("it is too long");
      return line;
    }
    input_.erase(0, std::exchange(begin_, 0));
    if (input_.size() > longestReply) throwBadReply("it is too long");
    searched = input_.size();
    await(POLLIN, deadline);
    std::array<char, 65536> block{};
    ssize_t const bytes = recv(fd_, block.data(), block.size(), MSG_DONTWAIT);
    if (bytes > 0) {
      input_.append(block.data(), static_cast<std::size_t>(bytes));
    } else if (bytes == 0 || errno == ECONNRESET) {
      throwEnded();
    } else if (errno != EAGAIN && errno != EINTR) {
      throwBadReply(std::strerror(errno));
    }
  }
}

Json Client::receive(Deadline deadline) {
  try {
    Json message = jsonFromReply(line(deadline));
    if (!message.is_object()) throwBadReply("it is no object");
    return message;
  } catch (BadReplyText const& bad) {
    throwBadReply(bad.what());
  }
}

Json Client::ask(Json const& request, Deadline deadline, std::string_view following) {
  send(lineOf(request), deadline);
  send(following, deadline);
  Json const reply = receive(deadline);
  if (memberOf(reply, "ok") != true) throwRefusal(reply);
  return memberOf(reply, "result");
}

Json Client::event() {
  Json message = receive(std::nullopt);
  if (message.contains("ok")) throwRefusal(message);  // it ends the connection
  return message;
}

}  // namespace Kest::Ctl
