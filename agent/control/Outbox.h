#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Kest::Agent {

/// What a client has not read yet: replies, and the events of one that watches. Events never come
/// within a reply. Those that there is no room for are lost, and counted in an event of their own.
class Outbox {
 public:
  /// The next part of a reply, which ends with a newline.
  void add(std::string_view text);

  /// @param line with its newline
  void addEvent(std::string_view line);
  void loseEvent() noexcept { ++lost_; }

  /// Sends what the client takes at once, of a bounded part.
  /// @return false if it has gone
  bool sendTo(int fd);

  /// Whether there is something that can be sent.
  bool isWaiting() const noexcept {
    return unread() > 0 || (!inReply_ && (!events_.empty() || lost_ > 0));
  }
  /// Bytes of replies, and of events that no reply holds up.
  std::size_t unread() const noexcept { return text_.size() - sent_; }
  /// Whether what has been sent ends with a line.
  bool isBetweenLines() const noexcept { return sentLine_; }
  /// Bytes of memory.
  std::size_t held() const noexcept { return text_.capacity() + events_.capacity(); }

 private:
  bool refill();

  std::string text_;
  std::size_t sent_ = 0;  // of the text
  std::string events_;    // that wait for the text to be sent
  std::size_t lost_ = 0;
  bool inReply_ = false;  // the text ends in the middle of one
  bool sentLine_ = true;
};

}  // namespace Kest::Agent
