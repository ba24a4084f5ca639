#include "agent/control/Connection.h"

#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <new>
#include <utility>
#include <variant>

#include "agent/access/JsonText.h"
#include "agent/control/Refusal.h"
#include "agent/control/RequestText.h"

namespace Kest::Agent {

namespace {

using Wire::ErrorKind;

constexpr std::size_t blockBytes = std::size_t{16} << 10;
/// A client that has more than this to read is not served before it has read.
constexpr std::size_t mostUnread = std::size_t{64} << 10;
/// How long, and how many, requests are served in one turn: one that takes longer ends it.
constexpr Seconds together = 0.0005;
constexpr int mostTogether = 64;
constexpr std::uint32_t readable = EPOLLIN;
constexpr std::uint32_t writable = EPOLLOUT;
constexpr char const* resultLead = R"({"ok":true,"result":)";

/// A reply but for its end.
std::string refusalLead(ControlError const& refused) {
  Json error{{"kind", Wire::name(refused.kind())}, {"message", refused.what()}};
  if (!refused.suggestion().empty()) error["suggestion"] = refused.suggestion();
  return R"({"ok":false,"error":)" + jsonText(error);
}

}  // namespace

void Connection::sendRefusal(int fd, ErrorKind kind, std::string const& message) {
  std::string const line = refusalLead({kind, message}) + "}\n";
  send(fd, line.data(), line.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
}

Connection::Connection(Turns& turns, Account& account, Text::Descriptor socket, Peer const& peer,
                       Serve serve, Gone gone)
    : socket_(std::move(socket)),
      serve_(std::move(serve)),
      gone_(std::move(gone)),
      peer_(peer),
      share_(account),
      turns_(turns, *this, fd(), peer_.mayChange),
      heardAt_(Mox::now()) {}

/// Does what may lack memory; the client then loses its connection. Keeps it alive meanwhile.
template <class Work>
void Connection::atItsOwnCost(Work const& work) {
  auto const self = shared_from_this();
  try {
    work();
  } catch (std::bad_alloc const&) {
    end();
  }
}

/// Does a step of the request that is being served, which it may be refused for.
template <class Step>
void Connection::orRefused(Step const& step) {
  try {
    step();
  } catch (std::exception const&) {
    ControlError const refused = currentRefusal();
    upload_.reset();
    long_.reset();
    if (isTelling_) return end();  // nothing can be said within a reply
    refuse(refused);
  }
}

void Connection::start() {
  atItsOwnCost([this] { update(); });
}

void Connection::turn() {
  if (isEnded_) return;
  atItsOwnCost([this] {
    work();
    std::size_t const before = output_.unread();
    if (!output_.sendTo(fd())) return end();
    isStuck_ = output_.isWaiting();
    if (output_.unread() < before) heardAt_ = Mox::now();
    update();
  });
}

/// A piece of a long request, or all requests that are there and short, so that their replies go
/// together.
void Connection::work() {
  if (canTell()) return tellOn();
  if (canSkip()) return takeFollowing();
  if (!canServe() && wantsInput()) read();
  Seconds const end = Mox::now() + together;
  for (int served = 0; served < mostTogether && canServe(); ++served) {
    serveNext();
    if (Mox::now() >= end) return;
  }
}

bool Connection::canTell() const {
  return long_ && output_.unread() <= mostUnread;
}

bool Connection::canSkip() const {
  return following_ > 0 && !input_.isEmpty();
}

bool Connection::isLineTooLong() const {
  std::size_t const bytes = input_.hasLine() ? input_.line().size() : input_.bytes().size();
  return bytes > longestLine();
}

bool Connection::canServe() const {
  return !isEnded_ && !isServing_ && !closing_ && following_ == 0 &&
         output_.unread() <= mostUnread && (input_.hasLine() || isLineTooLong() || inputEnded_);
}

bool Connection::wantsInput() const {
  if (inputEnded_ || closing_) return false;
  if (following_ > 0) return input_.isEmpty();
  return !isServing_ && output_.unread() <= mostUnread && !input_.hasLine() && !isLineTooLong();
}

void Connection::read() {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the system fills in what is read
  std::array<char, blockBytes> block;
  ssize_t const bytes = recv(fd(), block.data(), block.size(), MSG_DONTWAIT);
  if (bytes > 0) {
    heardAt_ = Mox::now();
    input_.add({block.data(), static_cast<std::size_t>(bytes)});
  } else if (bytes == 0 || (errno != EAGAIN && errno != EINTR)) {
    inputEnded_ = true;
    if (following_ > 0) closing_ = true;  // the rest does not come any more
  }
}

/// Serves a request; an incomplete last line is ignored.
void Connection::serveNext() {
  if (isLineTooLong()) return refuseTooLong();
  if (!input_.hasLine()) {
    closing_ = true;
    return;
  }
  isServing_ = true;
  orRefused([this] {
    std::string_view const line = input_.line();
    std::size_t const bytes = line.size();
    Json request;
    try {
      request = readRequest(line);
    } catch (ControlError const&) {
      input_.dropLine();
      throw;
    }
    input_.dropLine();
    serveRequest(bytes, request);
  });
}

void Connection::serveRequest(std::size_t lineBytes, Json const& request) {
  following_ = announcedBytes(request);
  id_ = idText(request);
  bool const isTooLong = !peer_.mayChange && following_ > Wire::longestRequest - lineBytes;
  if (isTooLong) return refuseTooLong();
  take(serve_(*this, request));
}

std::size_t Connection::longestLine() const noexcept {
  return peer_.mayChange ? Wire::longestTrustedRequest : Wire::longestRequest;
}

void Connection::refuseTooLong() {
  refuse({ErrorKind::request, "expected a request of at most " + std::to_string(longestLine()) +
                                  " bytes, found a longer one"});
  following_ = 0;
  closing_ = true;
}

void Connection::take(Answer answer) {
  if (auto const* const result = std::get_if<Json>(&answer)) {
    tell(jsonText(*result));
  } else if (auto const* const text = std::get_if<ResultText>(&answer)) {
    tell(text->json);
  } else if (auto* const longer = std::get_if<std::unique_ptr<LongResult>>(&answer)) {
    long_ = std::move(*longer);
  } else if (auto* const upload = std::get_if<std::unique_ptr<Upload>>(&answer)) {
    upload_ = std::move(*upload);
    if (following_ == 0) endUpload();
  }
}

void Connection::takeFollowing() {
  auto const most = static_cast<std::size_t>(std::min<std::uint64_t>(following_, blockBytes));
  std::string_view const bytes = input_.bytes().substr(0, most);
  std::size_t const count = bytes.size();
  following_ -= count;
  if (upload_) {
    orRefused([&] {
      upload_->take(bytes);
      if (following_ == 0) endUpload();
    });
  }
  input_.drop(count);
}

void Connection::endUpload() {
  auto const upload = std::move(upload_);
  take(upload->end());
}

void Connection::tellOn() {
  orRefused([this] {
    std::string piece;
    auto const progress = long_->goOn(piece);
    if (!piece.empty() && !std::exchange(isTelling_, true)) piece.insert(0, resultLead);
    if (progress == LongResult::Progress::done) piece += tail();
    output_.add(piece);
    if (progress != LongResult::Progress::more) long_.reset();
    if (progress == LongResult::Progress::done) replied();
  });
}

std::string Connection::tail() const {
  return id_.empty() ? "}\n" : ",\"id\":" + id_ + "}\n";
}

void Connection::tell(std::string_view result) {
  output_.add(std::string(resultLead).append(result).append(tail()));
  replied();
}

void Connection::refuse(ControlError const& refused) {
  output_.add(refusalLead(refused) + tail());
  replied();
}

void Connection::replied() {
  isServing_ = false;
  isTelling_ = false;
  std::string().swap(id_);
  heardAt_ = Mox::now();
}

void Connection::reply(Json const& result) {
  if (isEnded_) return;
  atItsOwnCost([&] {
    tell(jsonText(result));
    sendSoon();
  });
}

void Connection::event(std::string_view line) {
  if (isEnded_) return;
  atItsOwnCost([&] {
    output_.addEvent(line);
    sendSoon();
  });
}

void Connection::loseEvent() noexcept {
  output_.loseEvent();
  turns_.ready();
}

void Connection::dismiss(std::string const& why) {
  atItsOwnCost([&] {
    if (output_.isBetweenLines()) sendRefusal(fd(), ErrorKind::busy, why);
    end();
  });
}

Seconds Connection::silentAt() const noexcept {
  bool const isWaiting = isServing_ && !long_ && !upload_;
  return watching_ || isWaiting ? Mox::never : heardAt_ + Wire::longestSilence;
}

std::size_t Connection::held() const {
  return sizeof *this + input_.held() + output_.held() + id_.capacity() +
         (upload_ ? upload_->held() : 0) + (long_ ? long_->held() : 0);
}

/// In a turn of its own, unless the client has to read first.
void Connection::sendSoon() {
  if (!isStuck_) turns_.ready();
  update();
}

/// Counts the memory, and has the loop watch for what can be done next.
void Connection::update() {
  if (isEnded_) return;
  if (closing_ && !output_.isWaiting()) return end();
  share_.is(held());
  if (isEnded_) return;  // it was this one that held most
  if (canTell() || canSkip() || canServe()) turns_.ready();
  turns_.watch((wantsInput() ? readable : 0U) | (isStuck_ ? writable : 0U));
}

/// What the client holds goes with the connection: it may be in use just now.
void Connection::end() {
  isEnded_ = true;
  turns_.watch(0);
  if (Gone const gone = std::exchange(gone_, nullptr)) gone(*this);
}

}  // namespace Kest::Agent
