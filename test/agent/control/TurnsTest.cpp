#include "agent/control/Turns.h"

#include <gtest/gtest.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <csignal>
#include <deque>
#include <functional>
#include <string>

namespace Kest::Agent {
namespace {

/// Takers that write down their turns, each of which takes as long as it is told to.
class TurnsTest : public testing::Test {
 protected:
  class Writer final : public Turns::Taker {
   public:
    Writer(TurnsTest& test, char name, bool comesFirst)
        : test_(test), name_(name), member_(test.turns, *this, source_.fd(), comesFirst) {
      member_.watch(EPOLLIN);
    }
    void wake() const { eventfd_write(source_.fd(), 1); }
    void watch(std::uint32_t events) { member_.watch(events); }

    bool hasMore = false;

   private:
    void turn() override {
      test_.taken += name_;
      test_.time.advance(test_.turnTime);
      eventfd_t count = 0;
      eventfd_read(source_.fd(), &count);
      if (hasMore) member_.ready();
    }

    TurnsTest& test_;
    char name_;
    Text::Descriptor source_{eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)};
    Turns::Member member_;
  };

  TurnsTest() { Mox::timeSourceIs(&time); }
  ~TurnsTest() override { Mox::timeSourceIs(nullptr); }

  Writer& writer(char name, bool comesFirst = false) {
    return writers.emplace_back(*this, name, comesFirst);
  }
  std::string round() {
    loop.runOnce(0);
    return std::exchange(taken, "");
  }

  Mox::ManualTimeSource time;
  ActivityLoop loop{nullptr};
  Turns turns{loop};
  double turnTime = Turns::budget / 3.9;  // so that four fill a round
  std::string taken;
  std::deque<Writer> writers;
};

TEST_F(TurnsTest, ARoundHasItsBudgetHoweverManyAreReady) {
  for (char name = 'a'; name <= 'z'; ++name) writer(name).wake();
  EXPECT_EQ(round(), "abcd");
  EXPECT_EQ(round(), "efgh");
  turnTime = Turns::budget * 2;
  EXPECT_EQ(round(), "i");
  turnTime = 0;
  EXPECT_EQ(round(), "jklmnopqrstuvwxyz");
  EXPECT_EQ(round(), "");
}

TEST_F(TurnsTest, WhoHasMoreToDoGoesToTheEnd) {
  writer('a').hasMore = true;
  writer('b');
  for (Writer& one : writers) one.wake();
  EXPECT_EQ(round(), "abaa");
  writers[1].wake();
  EXPECT_EQ(round(), "abaa");
}

TEST_F(TurnsTest, TheFirstHaveATurnEachBeforeOneOfTheOthers) {
  for (char const name : {'a', 'b', 'c'}) writer(name).hasMore = true;
  for (char const name : {'X', 'Y'}) writer(name, true).hasMore = true;
  for (Writer& one : writers) one.wake();
  std::string all;
  for (int i = 0; i < 3; ++i) all += round();
  EXPECT_EQ(all, "XYaXYbXYcXYa");
}

TEST_F(TurnsTest, WhatIsLeftOverWaitsForSignals) {
  writer('a').hasMore = true;
  loop.signalIs(SIGUSR1, [&] { taken += '!'; });
  writers[0].wake();
  round();
  raise(SIGUSR1);
  loop.runOnce(Mox::never);  // would wait if the rest did not wake it
  EXPECT_EQ(taken, "!aaaa");
}

TEST_F(TurnsTest, WhoWatchesForNothingOrHasGoneHasNoTurn) {
  writer('a').watch(0);
  writer('b');
  writer('c').hasMore = true;
  for (Writer& one : writers) one.wake();
  EXPECT_EQ(round(), "bccc");
  writers.pop_back();  // while it is ready
  writers[1].wake();
  writers.pop_back();  // while its descriptor is
  EXPECT_EQ(round(), "");
  writers[0].watch(EPOLLIN);
  EXPECT_EQ(round(), "a");
  bool hasRun = false;
  loop.later([&] { hasRun = true; });
  loop.runOnce(Mox::never);
  EXPECT_TRUE(hasRun);
}

}  // namespace
}  // namespace Kest::Agent
