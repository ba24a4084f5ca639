#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include "agent/process/ActivityLoop.h"
#include "test/platform/Journaled.h"

namespace Kest::Agent {
namespace {

using Mox::never;
using Test::Events;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Two sockets that are connected, closed with this.
class Sockets {
 public:
  Sockets() { EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends_.data()), 0); }
  ~Sockets() {
    close(near());
    close(far());
  }
  Sockets(Sockets const&) = delete;
  Sockets& operator=(Sockets const&) = delete;

  int near() const { return ends_[0]; }
  int far() const { return ends_[1]; }
  void fill() const {
    std::array<char, 4096> const block{};
    while (send(near(), block.data(), block.size(), MSG_NOSIGNAL) > 0) {
    }
  }
  void drain() const {
    std::array<char, 65536> block{};
    while (recv(far(), block.data(), block.size(), 0) > 0) {
    }
  }
  void sendBack() const { EXPECT_EQ(send(far(), "x", 1, 0), 1); }

 private:
  std::array<int, 2> ends_{};
};

class ActivityLoopWritableTest : public testing::Test {
 protected:
  ActivityLoop::Work note(char const* what) {
    return [this, what] { events.push_back(what); };
  }

  Events events;
  ActivityLoop loop{nullptr};
};

TEST_F(ActivityLoopWritableTest, WorkRunsWhileThereIsRoomToWriteAlone) {
  Sockets const sockets;
  loop.fdWritableIs(sockets.near(), note("writable"));
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("writable"));
  sockets.fill();
  sockets.sendBack();  // readable, which nobody watches for
  loop.runOnce(0);
  EXPECT_THAT(events, ElementsAre("writable"));
  sockets.drain();
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("writable", "writable"));
  loop.fdWritableDel(sockets.near());
  loop.runOnce(0);
  EXPECT_EQ(events.size(), 2U);
}

TEST_F(ActivityLoopWritableTest, ADescriptorIsReadBeforeItIsWrittenAndByNumber) {
  Sockets const first;
  Sockets const second;
  ASSERT_LT(first.near(), second.near());
  loop.fdWritableIs(second.near(), note("write second"));
  loop.fdWritableIs(first.near(), note("write first"));
  loop.fdIs(second.near(), note("read second"));
  loop.fdIs(first.near(), note("read first"));
  first.sendBack();
  second.sendBack();
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("read first", "write first", "read second", "write second"));
}

TEST_F(ActivityLoopWritableTest, EachOfTheTwoIsRemovedAlone) {
  Sockets const sockets;
  sockets.sendBack();
  loop.fdIs(sockets.near(), note("read"));
  loop.fdWritableIs(sockets.near(), note("write"));
  loop.fdDel(sockets.near());
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("write"));
  loop.fdIs(sockets.near(), note("read"));
  loop.fdWritableDel(sockets.near());
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("write", "read"));
}

TEST_F(ActivityLoopWritableTest, ABrokenDescriptorIsReadyForBoth) {
  Sockets const sockets;
  sockets.fill();
  loop.fdIs(sockets.near(), note("read"));
  loop.fdWritableIs(sockets.near(), note("write"));
  shutdown(sockets.far(), SHUT_RDWR);
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("read", "write"));
}

TEST_F(ActivityLoopWritableTest, WorkThatIsRemovedOrAddedInARoundDoesNotRunInIt) {
  Sockets const sockets;
  sockets.sendBack();
  loop.fdIs(sockets.near(), [&] {
    events.push_back("read");
    loop.fdWritableDel(sockets.near());
  });
  loop.fdWritableIs(sockets.near(), note("removed"));
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("read"));
  loop.fdIs(sockets.near(), [&] {
    loop.fdDel(sockets.near());
    loop.fdWritableIs(sockets.near(), note("added"));
  });
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("read"));
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("read", "added"));
}

/// As many as the system lets the process open, each watched for both.
TEST_F(ActivityLoopWritableTest, WatchesEveryDescriptorThatThereMayBe) {
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  rlimit const wanted{std::min<rlim_t>(1100, before.rlim_max), before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &wanted), 0);
  Sockets const sockets;
  sockets.sendBack();
  std::vector<int> all;
  std::size_t reads = 0;
  std::size_t writes = 0;
  for (int fd; (fd = dup(sockets.near())) >= 0;) {
    all.push_back(fd);
    loop.fdIs(fd, [&] { ++reads; });
    loop.fdWritableIs(fd, [&] { ++writes; });
  }
  EXPECT_NO_THROW(loop.runOnce(never));
  EXPECT_GT(all.size(), wanted.rlim_cur / 2);
  EXPECT_EQ(reads, all.size());
  EXPECT_EQ(writes, all.size());
  for (int const fd : all) close(fd);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
}

}  // namespace
}  // namespace Kest::Agent
