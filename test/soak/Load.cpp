#include "test/soak/Load.h"
#include "test/support/UnixSocket.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace Kest::Soak {

namespace {

/// What readers ask for, one after the other: none of it changes while the load is on.
constexpr char const* readRequests[] = {
    R"({"verb":"get","path":"config/nativeVlan/et3/1"})",
    R"({"verb":"get","path":"status/switchPort"})",
    R"({"verb":"get","path":"config/device","form":"text"})",
    R"({"verb":"get","path":"sm/config/sliceId"})",
    R"({"verb":"get","path":"config/natveVlan"})",
    R"({"verb":"types"})",
    R"({"verb":"describe","type":"KestSliceDmaConfig"})",
    R"({"verb":"verify"})",
    R"({"verb":"show"})",
    R"({"verb":"complete","path":"config/switchPort/"})",
    R"({"verb":"driver","action":"state"})",
};

constexpr int turnMilliseconds = 20;
constexpr std::size_t mostQuietTurns = 120 * 1000 / turnMilliseconds;

[[noreturn]] void refuse(char const* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

/// A request of the client that never reads: long, with a reply of some KiB, so that a few hundred
/// are more than the agent may keep for a client either way.
std::string stalledRequest() {
  constexpr std::size_t bytes = std::size_t{16} << 10;
  std::string request = R"({"verb":"describe","type":"KestSliceDmaConfig"})";
  return request + std::string(bytes - request.size(), ' ') + "\n";
}
constexpr std::size_t stalledRequestCount = 32;  // at a time

/// Of a port that the slice does not have: no driver call follows.
std::string changeRequest(std::size_t vlan) {
  return R"({"verb":"set","path":"config/nativeVlan/et99/1","value":)" + std::to_string(vlan) +
         "}\n";
}

constexpr std::size_t vlanOf(std::size_t change) {
  return 10 + change % 2;
}

std::string changeReply(std::size_t vlan) {
  return R"({"ok":true,"result":{"path":"config/nativeVlan/et99/1","type":"U16","changed":true,)"
         R"("value":)" +
         std::to_string(vlan) + "}}";
}

std::string changeEvent(std::size_t vlan) {
  return R"({"event":"change","path":"config/nativeVlan/et99/1","type":"U16","value":)" +
         std::to_string(vlan) + "}";
}

void expect(std::string const& expected, std::string const& found) {
  if (found == expected) return;
  throw std::runtime_error("expected the agent to say\n" + expected + "\nbut it said\n" + found);
}

void sendWhole(Connection const& connection, std::string const& request) {
  if (connection.send(request) == request.size()) return;
  throw std::runtime_error("the agent does not take a request from a client that reads");
}

}  // namespace

Connection::Connection(std::string const& path)
    : fd_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  if (Support::connectTo(fd_, path) != 0) refuse("connect");
}

Connection::~Connection() {
  close(fd_);
}

std::size_t Connection::send(std::string_view bytes) const {
  ssize_t const sent = ::send(fd_, bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
  if (sent < 0 && errno != EAGAIN) refuse("send");
  return sent < 0 ? 0 : static_cast<std::size_t>(sent);
}

std::vector<std::string> Connection::lines() {
  std::array<char, 65536> block;
  ssize_t const bytes = recv(fd_, block.data(), block.size(), MSG_DONTWAIT);
  if (bytes < 0 && errno != EAGAIN) refuse("recv");
  if (bytes == 0) throw std::runtime_error("the agent ended a connection");
  if (bytes > 0) input_.append(block.data(), static_cast<std::size_t>(bytes));
  std::vector<std::string> all;
  std::size_t begin = 0;
  for (std::size_t end; (end = input_.find('\n', begin)) != std::string::npos; begin = end + 1) {
    all.push_back(input_.substr(begin, end - begin));
  }
  input_.erase(0, begin);
  return all;
}

std::string Connection::ask(std::string const& request) {
  sendWhole(*this, request);
  while (true) {
    pollfd waiting{fd_, POLLIN, 0};
    if (poll(&waiting, 1, turnMilliseconds * static_cast<int>(mostQuietTurns)) == 0) {
      throw std::runtime_error("the agent does not answer " + request);
    }
    if (std::vector<std::string> const all = lines(); !all.empty()) return all.front();
  }
}

Load::Load(std::string const& path, std::size_t clients)
    : changing_(path), watching_(path), stalled_(path) {
  constexpr std::size_t others = 3;
  expect(changeReply(vlanOf(0)), changing_.ask(changeRequest(vlanOf(0))));
  expect(R"({"ok":true,"result":{"watching":true}})", watching_.ask("{\"verb\":\"watch\"}\n"));
  for (std::size_t i = 0; i < clients - others; ++i) {
    readers_.emplace_back(path, i % std::size(readRequests));
  }
  for (char const* request : readRequests) {
    replies_.push_back(readers_.front().connection.ask(std::string(request) + "\n"));
  }
  for (std::size_t i = 0; i < stalledRequestCount; ++i) stalledRequests_ += stalledRequest();
  stallAlone();
}

/// The client that never reads has all turns but one for so long that it would get more replies
/// than the agent may keep.
void Load::stallAlone() {
  std::size_t const turns = 2 * mostTakenFromStalled / stalledRequest().size();
  for (std::size_t i = 0; i < turns; ++i) {
    stall();
    expect(replies_.front(), readers_.front().connection.ask(std::string(readRequests[0]) + "\n"));
  }
}

void Load::start() {
  for (Reader& reader : readers_) ask(reader);
  change();
}

void Load::ask(Reader& reader) const {
  sendWhole(reader.connection, std::string(readRequests[reader.asked]) + "\n");
  reader.waits = true;
}

void Load::change() {
  sendWhole(changing_, changeRequest(vlanOf(changes_ + 1)));
  changeIsDue_ = true;
}

bool Load::readReplies(Reader& reader) {
  std::vector<std::string> const all = reader.connection.lines();
  for (std::string const& reply : all) {
    if (!reader.waits) throw std::runtime_error("nobody asked for " + reply);
    expect(replies_[reader.asked], reply);
    ++answered_;
    reader.waits = false;
    reader.asked = (reader.asked + 1) % std::size(readRequests);
    if (!isEnding_) ask(reader);
  }
  return !all.empty();
}

bool Load::readChanges() {
  std::vector<std::string> const all = changing_.lines();
  for (std::string const& reply : all) {
    expect(changeReply(vlanOf(++changes_)), reply);
    changeIsDue_ = false;
    if (!isEnding_) change();
  }
  return !all.empty();
}

bool Load::readEvents() {
  std::vector<std::string> const all = watching_.lines();
  for (std::string const& event : all) expect(changeEvent(vlanOf(++events_)), event);
  return !all.empty();
}

void Load::stall() {
  // Goes on in the middle of a request where the last time ended there.
  std::string_view const rest =
      std::string_view(stalledRequests_)
          .substr(takenFromStalled_ % (stalledRequests_.size() / stalledRequestCount));
  takenFromStalled_ += stalled_.send(rest);
}

void Load::turn() {
  if (!isEnding_) stall();
  std::vector<pollfd> waiting{{changing_.fd(), POLLIN, 0}, {watching_.fd(), POLLIN, 0}};
  for (Reader const& reader : readers_) waiting.push_back({reader.connection.fd(), POLLIN, 0});
  if (poll(waiting.data(), waiting.size(), turnMilliseconds) < 0) refuse("poll");
  bool isQuiet = true;
  if (waiting[0].revents != 0 && readChanges()) isQuiet = false;
  if (waiting[1].revents != 0 && readEvents()) isQuiet = false;
  for (std::size_t i = 0; i < readers_.size(); ++i) {
    if (waiting[i + 2].revents != 0 && readReplies(readers_[i])) isQuiet = false;
  }
  quietTurns_ = isQuiet ? quietTurns_ + 1 : 0;
  if (quietTurns_ > mostQuietTurns) throw std::runtime_error("the agent answers nobody");
}

bool Load::isSettled() const {
  for (Reader const& reader : readers_) {
    if (reader.waits) return false;
  }
  return !changeIsDue_ && events_ == changes_;
}

void Load::finish() {
  isEnding_ = true;
  while (!isSettled()) turn();
  stalled_.send({});  // throws if the agent has sent it away
}

}  // namespace Kest::Soak
