#include "agent/process/Output.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <utility>

namespace Kest::Agent {

namespace {

std::string lostText(std::size_t lines) {
  return std::to_string(lines) + (lines == 1 ? " line" : " lines") +
         " lost: could not be written in time\n";
}

bool isForNow(int error) {
  return error == EAGAIN || error == EINTR;
}

}  // namespace

OutputKind outputKindOf(int fd) noexcept {
  struct stat file {};
  if (fstat(fd, &file) != 0) return OutputKind::other;
  if (S_ISREG(file.st_mode)) return OutputKind::file;
  return S_ISSOCK(file.st_mode) ? OutputKind::socket : OutputKind::other;
}

ssize_t writeAtOnce(int fd, OutputKind kind, std::string_view text) noexcept {
  if (kind == OutputKind::file) return ::write(fd, text.data(), text.size());
  if (kind == OutputKind::socket) {
    return send(fd, text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
  }
  pollfd room{fd, POLLOUT, 0};
  if (poll(&room, 1, 0) == 0) {
    errno = EAGAIN;
    return -1;
  }
  // A pipe that has room takes this much.
  return ::write(fd, text.data(), std::min(text.size(), std::size_t{PIPE_BUF}));
}

void Output::loopIs(ActivityLoop* loop) {
  if (isWatched_) loop_->fdWritableDel(fd_);
  isWatched_ = false;
  loop_ = loop;
  watch();
}

void Output::drain(std::chrono::steady_clock::time_point until) {
  using std::chrono::ceil;
  using std::chrono::milliseconds;
  for (write(); !waiting_.empty(); write()) {
    auto const left = ceil<milliseconds>(until - std::chrono::steady_clock::now()).count();
    if (left <= 0) return;
    pollfd room{fd_, POLLOUT, 0};
    poll(&room, 1, static_cast<int>(left));
  }
}

void Output::forget() noexcept {
  waiting_.clear();
  bytes_ = 0;
  lost_ = 0;
}

Output::int_type Output::overflow(int_type character) {
  if (!traits_type::eq_int_type(character, traits_type::eof())) {
    flush_ += traits_type::to_char_type(character);
  }
  return traits_type::not_eof(character);
}

std::streamsize Output::xsputn(char const* text, std::streamsize bytes) {
  flush_.append(text, static_cast<std::size_t>(bytes));
  return bytes;
}

/// Never fails: a failed stream would refuse everything after.
int Output::sync() {
  write();  // there may be room by now
  take(std::exchange(flush_, {}));
  drain(std::chrono::steady_clock::now() +
        (isLate_ ? std::chrono::milliseconds(0) : limits_.patience));
  isLate_ = !waiting_.empty();
  watch();
  return 0;
}

/// Adds a text, after a line about what was lost before it; or loses the text as well.
void Output::take(std::string text) {
  std::string told;
  if (lost_ > 0) told = (isLineBegun_ ? "\n" : "") + lostText(lost_);
  auto const lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  if (bytes_ + told.size() + text.size() > limits_.bytes) {
    lost_ += lines;
    return;
  }
  add({std::move(told), std::exchange(lost_, 0)});
  add({std::move(text), lines});
}

void Output::add(Piece piece) {
  if (piece.text.empty()) return;
  isLineBegun_ = piece.text.back() != '\n';
  bytes_ += piece.text.size();
  waiting_.push_back(std::move(piece));
}

void Output::write() {
  while (!waiting_.empty()) {
    auto& [text, lines] = waiting_.front();
    ssize_t const written = writeAtOnce(fd_, kind_, text);
    if (written < 0 && isForNow(errno)) return;
    if (written < 0) lost_ += lines;
    std::size_t const done = written < 0 ? text.size() : static_cast<std::size_t>(written);
    bytes_ -= done;
    text.erase(0, done);
    if (!text.empty()) continue;
    waiting_.pop_front();
    if (waiting_.empty() && lost_ > 0 && written > 0) take("");
  }
  isLate_ = false;
}

/// Has the loop watch for room as long as text waits.
void Output::watch() {
  bool const isWanted = loop_ != nullptr && !waiting_.empty();
  if (isWanted == isWatched_) return;
  isWatched_ = isWanted;
  if (!isWanted) return loop_->fdWritableDel(fd_);
  loop_->fdWritableIs(fd_, [this] {
    write();
    watch();
  });
}

}  // namespace Kest::Agent
