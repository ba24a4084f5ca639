#include "agent/control/Connection.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <nlohmann/json.hpp>
#include <utility>

#include "agent/byname/ControlError.h"
#include "agent/control/RequestText.h"

namespace Kest::Agent {

namespace {

using Wire::ErrorKind;

constexpr std::size_t blockBytes = std::size_t{64} << 10;
/// A client that has more than this to read is not served before it has read.
constexpr std::size_t patience = std::size_t{256} << 10;
constexpr uid_t superuser = 0;

uid_t peerOf(int fd) {
  ucred peer{};
  socklen_t bytes = sizeof peer;
  bool const isKnown = getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &bytes) == 0;
  return isKnown ? peer.uid : static_cast<uid_t>(-1);  // which is nobody's
}

std::string lineOf(Json const& message) {
  return message.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

bool wouldBlock() {
  return errno == EAGAIN || errno == EINTR;
}

}  // namespace

Connection::Connection(Mox::ActivityLoop& loop, Descriptor socket, Serve serve, Gone gone)
    : loop_(loop),
      socket_(std::move(socket)),
      serve_(std::move(serve)),
      gone_(std::move(gone)),
      user_(peerOf(fd())) {}

Connection::~Connection() {
  loop_.fdDel(fd());
  loop_.fdWritableDel(fd());
}

bool Connection::mayChange() const noexcept {
  return user_ == superuser || user_ == geteuid();
}

void Connection::readable() {
  auto const self = shared_from_this();
  std::array<char, blockBytes> block{};
  ssize_t const bytes = recv(fd(), block.data(), block.size(), 0);
  if (bytes < 0 && wouldBlock()) return;
  if (bytes <= 0) {
    inputEnded_ = true;
  } else {
    std::size_t const known = input_.size();
    input_.append(block.data(), static_cast<std::size_t>(bytes));
    if (lineEnd_ == std::string::npos) lineEnd_ = input_.find('\n', known);
  }
  serveNext();
}

bool Connection::hasRequest() const {
  return lineEnd_ != std::string::npos || input_.size() > Wire::longestRequest;
}

bool Connection::canServe() const {
  return !isServing_ && !closing_ && unread() <= patience && (hasRequest() || inputEnded_);
}

/// Serves one request, if there is one whose turn has come; half of one at the end of the input is
/// nobody's.
void Connection::serveNext() {
  auto const self = shared_from_this();
  if (canServe()) {
    if (!hasRequest()) {
      closing_ = true;
    } else if (lineEnd_ > Wire::longestRequest) {
      refuseTooLong();
    } else {
      std::string const line = input_.substr(0, lineEnd_);
      input_.erase(0, lineEnd_ + 1);
      lineEnd_ = input_.find('\n');
      serveLine(line);
    }
  }
  update();
}

void Connection::refuseTooLong() {
  id_ = Json(Json::value_t::discarded);
  refuse(Wire::name(ErrorKind::request),
         "expected a request of at most " + std::to_string(Wire::longestRequest) +
             " bytes, found a longer one",
         "");
  closing_ = true;
}

void Connection::serveLine(std::string_view line) {
  isServing_ = true;
  id_ = Json(Json::value_t::discarded);
  try {
    Json const request = readRequest(line);
    if (auto const id = request.find("id"); id != request.end()) id_ = *id;
    serve_(*this, request);
  } catch (ControlError const& refused) {
    refuse(Wire::name(refused.kind()), refused.what(), refused.suggestion());
  } catch (std::exception const& failed) {
    refuse(Wire::name(ErrorKind::internal), failed.what(), "");
  }
}

void Connection::reply(Json result) {
  answer({{"ok", true}, {"result", std::move(result)}});
}

void Connection::refuse(char const* kind, std::string const& message,
                        std::string const& suggestion) {
  Json error{{"kind", kind}, {"message", message}};
  if (!suggestion.empty()) error["suggestion"] = suggestion;
  answer({{"ok", false}, {"error", std::move(error)}});
}

void Connection::answer(Json reply) {
  auto const self = shared_from_this();
  if (!id_.is_discarded()) reply["id"] = id_;
  isServing_ = false;
  send(lineOf(reply));
  if (unread() > Wire::mostUnreadOutput) return end();
  update();
}

void Connection::event(std::string const& line) {
  if (lost_ > 0 || unread() + line.size() > Wire::mostUnreadOutput) {
    ++lost_;
  } else {
    send(line);
  }
  update();
}

void Connection::sayLost() {
  if (lost_ == 0 || closing_ || unread() > patience) return;
  send(lineOf({{"event", "lost"}, {"count", std::exchange(lost_, 0)}}));
}

void Connection::send(std::string_view bytes) {
  output_.append(bytes);
  writable();
}

void Connection::writable() {
  while (unread() > 0) {
    ssize_t const bytes =
        ::send(fd(), output_.data() + written_, unread(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (bytes < 0) {
      if (!wouldBlock()) {  // the client has gone, and with it all that it was to read
        inputEnded_ = closing_ = true;
        written_ = output_.size();
      }
      break;
    }
    written_ += static_cast<std::size_t>(bytes);
  }
  if (written_ > output_.size() / 2) {
    output_.erase(0, written_);
    written_ = 0;
  }
}

/// Puts the next request off to the next round, so that others get their turn.
void Connection::schedule() {
  if (std::exchange(isScheduled_, true)) return;
  loop_.later([weak = weak_from_this()] {
    auto const connection = weak.lock();
    if (!connection) return;
    connection->isScheduled_ = false;
    connection->serveNext();
  });
}

/// Has the loop watch for what can be done next.
void Connection::update() {
  auto const self = shared_from_this();
  sayLost();
  if (closing_ && unread() == 0) return end();
  if (canServe()) schedule();
  readsIs(!inputEnded_ && !closing_ && !isServing_ && !hasRequest() && unread() <= patience);
  writesIs(unread() > 0);
}

/// Work that is watched for already is left alone: replaced, it would miss its turn in this round.
void Connection::readsIs(bool reads) {
  if (std::exchange(reads_, reads) == reads) return;
  if (reads) {
    loop_.fdIs(fd(), [this] { readable(); });
  } else {
    loop_.fdDel(fd());
  }
}

void Connection::writesIs(bool writes) {
  if (std::exchange(writes_, writes) == writes) return;
  if (writes) {
    loop_.fdWritableIs(fd(), [this] {
      auto const alive = shared_from_this();
      writable();
      serveNext();
    });
  } else {
    loop_.fdWritableDel(fd());
  }
}

void Connection::end() {
  closing_ = true;
  output_.clear();
  written_ = 0;
  readsIs(false);
  writesIs(false);
  if (Gone const gone = std::exchange(gone_, nullptr)) gone(*this);
}

}  // namespace Kest::Agent
