#pragma once

#include <cstddef>
#include <cstdint>
#include <list>

#include "agent/process/ActivityLoop.h"
#include "platform/mox/Time.h"
#include "text/File.h"

namespace Kest::Agent {

/// Shares the activity among the clients of the control socket.
///
/// In a round of the loop they get `budget` seconds together. They take turns, of a millisecond at
/// most, in the order in which they became ready. Those who come first have one each before every
/// turn of another. What is left over goes on in the next round, after signals and the clock.
///
/// To the loop all their descriptors are one, so a thousand that are ready cost a round no more.
/// Nothing here takes memory once a member has joined.
class Turns {
 public:
  static constexpr Seconds budget = 0.005;

  /// What takes turns.
  class Taker {
   public:
    /// Does a millisecond's work at most. It calls `Member::ready` if there is more to do at once.
    /// It may end its own life.
    virtual void turn() = 0;

   protected:
    ~Taker() = default;
  };

  /// A taker's membership, which ends with this. The descriptor stays the taker's.
  class Member {
   public:
    /// @param comesFirst before every turn of one that does not
    Member(Turns& turns, Taker& taker, int fd, bool comesFirst);
    ~Member();
    Member(Member const&) = delete;
    Member& operator=(Member const&) = delete;

    /// It takes a turn whenever one of these events of `epoll` is there. None: 0.
    /// @throw std::bad_alloc the system does not watch any more descriptors
    void watch(std::uint32_t events);
    /// It takes a turn, in this round if there is time left.
    void ready() noexcept;

   private:
    friend class Turns;
    Turns& turns_;
    Taker& taker_;
    int fd_;
    bool comesFirst_;
    bool isReady_ = false;
    std::uint32_t watched_ = 0;
    std::list<Member*>::iterator place_;
  };

  /// The loop must outlive this, and this its members.
  /// @throw std::system_error
  explicit Turns(ActivityLoop& loop);
  ~Turns();
  Turns(Turns const&) = delete;
  Turns& operator=(Turns const&) = delete;

 private:
  using Queue = std::list<Member*>;
  class Round;

  void round();
  void collect();
  void takeOne();
  Queue& nextQueue();
  bool isIdle() const noexcept { return first_.empty() && others_.empty(); }
  void alarmIs(bool on) noexcept;

  ActivityLoop& loop_;
  Text::Descriptor watcher_;  // of every member's descriptor, and of the alarm
  Text::Descriptor alarm_;    // readable while it is on: turns are left over
  bool isAlarmOn_ = false;
  bool isInRound_ = false;
  Queue resting_;
  Queue first_;
  Queue others_;
  std::size_t firstLeft_ = 0;  // turns before one of the others; 0: not counted yet
  bool isOthersTurn_ = false;
};

}  // namespace Kest::Agent
