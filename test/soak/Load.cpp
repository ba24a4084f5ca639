#include "test/soak/Load.h"

#include <poll.h>

#include <cerrno>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace Kest::Soak {

namespace {

/// The readers' requests, in order. The answers do not change while the load is on.
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

/// A request of the client that never reads: long, with a reply of some KiB, so that a few hundred
/// are more than the agent may keep for a client either way.
std::string stalledRequest() {
  constexpr std::size_t bytes = std::size_t{16} << 10;
  std::string request = R"({"verb":"describe","type":"KestSliceDmaConfig"})";
  return request + std::string(bytes - request.size(), ' ') + "\n";
}
constexpr std::size_t stalledRequestCount = 32;  // at a time

/// Changes a port that the slice does not have, so that no driver call follows.
std::string changeRequest(std::size_t vlan) {
  return R"({"verb":"set","path":"config/nativeVlan/et99/1","value":)" + std::to_string(vlan) + "}";
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

std::vector<std::string> linesOf(SocketClient& connection) {
  if (connection.isEnded()) throw std::runtime_error("the agent ended a connection");
  return connection.lines();
}

}  // namespace

Load::Load(std::string const& path, std::size_t clients)
    : changing_(path), watching_(path), stalled_(path) {
  constexpr std::size_t others = 3;
  expect(changeReply(vlanOf(0)), changing_.ask(changeRequest(vlanOf(0))));
  expect(R"({"ok":true,"result":{"watching":true}})", watching_.ask("{\"verb\":\"watch\"}"));
  for (std::size_t i = 0; i < clients - others; ++i) {
    readers_.emplace_back(path, i % std::size(readRequests));
  }
  for (char const* request : readRequests) {
    replies_.push_back(readers_.front().connection.ask(request));
  }
  for (std::size_t i = 0; i < stalledRequestCount; ++i) stalledRequests_ += stalledRequest();
  stallAlone();
}

/// Lets the client that never reads ask for more replies than the agent may keep, while one other
/// client is answered.
void Load::stallAlone() {
  std::size_t const turns = 2 * mostTakenFromStalled / stalledRequest().size();
  for (std::size_t i = 0; i < turns; ++i) {
    stall();
    expect(replies_.front(), readers_.front().connection.ask(readRequests[0]));
  }
}

void Load::start() {
  for (Reader& reader : readers_) ask(reader);
  change();
}

void Load::ask(Reader& reader) const {
  reader.connection.send(std::string(readRequests[reader.asked]) + "\n");
  reader.waits = true;
}

void Load::change() {
  changing_.send(changeRequest(vlanOf(changes_ + 1)) + "\n");
  changeIsDue_ = true;
}

bool Load::readReplies(Reader& reader) {
  std::vector<std::string> const all = linesOf(reader.connection);
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
  std::vector<std::string> const all = linesOf(changing_);
  for (std::string const& reply : all) {
    expect(changeReply(vlanOf(++changes_)), reply);
    changeIsDue_ = false;
    if (!isEnding_) change();
  }
  return !all.empty();
}

bool Load::readEvents() {
  std::vector<std::string> const all = linesOf(watching_);
  for (std::string const& event : all) expect(changeEvent(vlanOf(++events_)), event);
  return !all.empty();
}

void Load::stall() {
  // The last time may have ended in the middle of a request.
  std::string_view const rest =
      std::string_view(stalledRequests_)
          .substr(takenFromStalled_ % (stalledRequests_.size() / stalledRequestCount));
  takenFromStalled_ += stalled_.sendSome(rest);
}

void Load::turn() {
  if (!isEnding_) stall();
  std::vector<pollfd> waiting{{changing_.fd(), POLLIN, 0}, {watching_.fd(), POLLIN, 0}};
  for (Reader const& reader : readers_) waiting.push_back({reader.connection.fd(), POLLIN, 0});
  if (poll(waiting.data(), waiting.size(), turnMilliseconds) < 0) {
    throw std::system_error(errno, std::generic_category(), "poll");
  }
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
  stalled_.sendSome({});  // throws if the agent has sent it away
}

}  // namespace Kest::Soak
