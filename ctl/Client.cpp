#include "ctl/Client.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>

#include "ctl/Failure.h"

namespace Kest::Ctl {

namespace {

constexpr int deepestReply = 100;  // nested arrays and objects: they are walked recursively

[[noreturn]] void throwNoAgent(std::string const& path, std::string const& why) {
  throw Failure(Exit::noAgent, "no-agent",
                "no agent at " + path + ": " + why + " (--socket names another socket)");
}

[[noreturn]] void throwBadReply(std::string const& what) {
  throw Failure(Exit::failed, "reply", "the agent's reply cannot be used: " + what);
}

/// Whether a text, if it is JSON, has more arrays and objects in each other than that. (The parser
/// can be asked on the way, but then looks at all of an array whenever an item ends.)
bool isNestedDeeper(std::string_view json, int most) {
  int depth = 0;
  bool inString = false;
  for (std::size_t at = 0; at < json.size(); ++at) {
    char const c = json[at];
    if (c == '"') {
      inString = !inString;
    } else if (inString) {
      at += c == '\\' ? 1 : 0;
    } else if (c == '[' || c == '{') {
      if (++depth > most) return true;
    } else if (c == ']' || c == '}') {
      --depth;
    }
  }
  return false;
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
    : fd_(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
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
  // A full backlog shows as EAGAIN, and nothing tells when there is room again.
  constexpr int pauseMilliseconds = 10;
  while (::connect(fd_, target, sizeof address) != 0) {
    if (errno == EINTR) continue;
    if (errno != EAGAIN) throwNoAgent(path, std::strerror(errno));
    if (milliseconds(deadline) == 0) {
      throw Failure(Exit::timedOut, "timeout", "the agent took no connection in time");
    }
    poll(nullptr, 0, pauseMilliseconds);
  }
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
    ssize_t const sent = ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    } else if (errno == EAGAIN) {
      await(POLLOUT, deadline);
    } else if (errno == EPIPE || errno == ECONNRESET) {
      return;  // it may have said why
    } else if (errno != EINTR) {
      throwBadReply(std::strerror(errno));
    }
  }
}

std::string Client::line(Deadline deadline) {
  std::size_t searched = 0;
  while (true) {
    std::size_t const end = input_.find('\n', searched);
    if (end != std::string::npos) {
      std::string line = input_.substr(0, end);
      input_.erase(0, end + 1);
      if (line.size() > longestReply_) throwBadReply("it is too long");
      return line;
    }
    if (input_.size() > longestReply_) throwBadReply("it is too long");
    searched = input_.size();
    await(POLLIN, deadline);
    std::array<char, 65536> block{};
    ssize_t const bytes = recv(fd_, block.data(), block.size(), 0);
    if (bytes > 0) {
      input_.append(block.data(), static_cast<std::size_t>(bytes));
    } else if (bytes == 0 || errno == ECONNRESET) {
      throwBadReply("the agent ended the connection");
    } else if (errno != EAGAIN && errno != EINTR) {
      throwBadReply(std::strerror(errno));
    }
  }
}

Json Client::receive(Deadline deadline) {
  std::string const text = line(deadline);
  if (isNestedDeeper(text, deepestReply)) throwBadReply("it is nested too deep");
  Json message = Json::parse(text, nullptr, false);
  if (message.is_discarded()) throwBadReply("it is no JSON");
  if (!message.is_object()) throwBadReply("it is no object");
  return message;
}

Json Client::ask(Json const& request, Deadline deadline, std::string_view following) {
  send(request.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n", deadline);
  send(following, deadline);
  Json reply = receive(deadline);
  auto const member = [](Json const& object, char const* name) -> Json const& {
    auto const found = object.find(name);
    if (found == object.end()) throwBadReply(std::string("it has no '") + name + "'");
    return *found;
  };
  auto const string = [](Json const& value) {
    if (!value.is_string()) throwBadReply("expected a string, found " + value.dump());
    return value.get<std::string>();
  };
  if (member(reply, "ok") == true) return member(reply, "result");
  Json const& error = member(reply, "error");
  if (!error.is_object()) throwBadReply("its error is no object");
  std::string const kind = string(member(error, "kind"));
  std::string const message = string(member(error, "message"));
  bool const isSuggesting = error.contains("suggestion");
  throw Failure(Exit::failed, kind, message, isSuggesting ? string(error.at("suggestion")) : "");
}

}  // namespace Kest::Ctl
