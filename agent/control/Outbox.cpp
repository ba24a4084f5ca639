#include "agent/control/Outbox.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "agent/wire/Protocol.h"

namespace Kest::Agent {

namespace {

constexpr std::size_t mostAtOnce = std::size_t{64} << 10;

}  // namespace

void Outbox::add(std::string_view text) {
  if (text.empty()) return;
  if (!inReply_) {
    text_ += events_;
    std::string().swap(events_);
  }
  if (sent_ > text_.size() / 2) text_.erase(0, std::exchange(sent_, 0));
  text_ += text;
  inReply_ = text.back() != '\n';
}

void Outbox::addEvent(std::string_view line) {
  if (lost_ > 0 || events_.size() + line.size() > Wire::mostWaitingEvents) {
    ++lost_;
  } else {
    events_ += line;
  }
}

/// Events take the place of the text, which has been sent.
bool Outbox::refill() {
  if (inReply_) return false;
  text_ = std::exchange(events_, std::string());
  if (text_.empty() && lost_ > 0) {
    text_ = R"({"event":"lost","count":)" + std::to_string(lost_) + "}\n";
    lost_ = 0;
  }
  return !text_.empty();
}

bool Outbox::sendTo(int fd) {
  for (std::size_t room = mostAtOnce; room > 0 && (unread() > 0 || refill());) {
    std::size_t const bytes = std::min(unread(), room);
    ssize_t const taken = send(fd, text_.data() + sent_, bytes, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (taken < 0) return errno == EAGAIN || errno == EINTR;
    sent_ += static_cast<std::size_t>(taken);
    room -= static_cast<std::size_t>(taken);
    sentLine_ = text_[sent_ - 1] == '\n';
    if (unread() == 0) {
      std::string().swap(text_);
      sent_ = 0;
    }
  }
  return true;
}

}  // namespace Kest::Agent
