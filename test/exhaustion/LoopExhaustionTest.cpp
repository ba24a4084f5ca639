#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <memory>
#include <system_error>

#include "agent/process/ActivityLoop.h"
#include "test/exhaustion/EveryAllocation.h"

/// A round of the activity loop without memory: what was ready is run in a later one.
namespace Kest::Agent {
namespace {

using Exhaustion::atEveryAllocation;
using Exhaustion::End;
using Mox::Clock;
using Mox::Ptr;

class DueOnce final : public Clock::NotifieeConst {
 public:
  explicit DueOnce(Ptr<Clock> const& clock) {
    notifierIs(clock);
    isRegisteredNotifieeIs(true);
  }
  void onTime() override { ++woken; }
  unsigned woken = 0;
};

/// A loop with one of everything ready. Work is larger than what a function holds without memory of
/// its own.
struct ReadyLoop {
  using Load = std::array<void*, 8>;

  ReadyLoop() {
    if (pipe2(ends.data(), O_CLOEXEC) != 0 || write(ends[1], "x", 1) != 1) {
      throw std::system_error(errno, std::generic_category(), "pipe");
    }
    loop->signalIs(SIGUSR1, [this, load = Load()] { signals += 1 + (load[0] != nullptr); });
    loop->fdIs(ends[0], [this, load = Load()] {
      bytes += 1 + (load[0] != nullptr);
      loop->fdDel(ends[0]);
    });
    loop->later([this, load = Load()] { late += 1 + (load[0] != nullptr); });
    raise(SIGUSR1);
  }
  ~ReadyLoop() {
    for (int const end : ends) close(end);
  }
  ReadyLoop(ReadyLoop const&) = delete;
  ReadyLoop& operator=(ReadyLoop const&) = delete;

  std::array<int, 2> ends{};
  Ptr<Clock> clock{new Clock("clock")};
  Ptr<DueOnce> due{new DueOnce(clock)};
  std::unique_ptr<ActivityLoop> loop{std::make_unique<ActivityLoop>(clock)};
  unsigned signals = 0;
  unsigned bytes = 0;
  unsigned late = 0;
};

TEST(LoopExhaustion, NothingThatWasReadyIsLostOrRunTwice) {
  atEveryAllocation([] { return std::make_unique<ReadyLoop>(); },
                    [](std::unique_ptr<ReadyLoop>& scene) { scene->loop->runOnce(0); },
                    [](std::unique_ptr<ReadyLoop>& scene, End) {
                      for (int rounds = 0; rounds < 2; ++rounds) scene->loop->runOnce(0);
                      EXPECT_EQ(scene->signals, 1U);
                      EXPECT_EQ(scene->bytes, 1U);
                      EXPECT_EQ(scene->late, 1U);
                      EXPECT_EQ(scene->due->woken, 1U);
                    });
}

struct TwoClocks {
  Ptr<Clock> first{new Clock("first")};
  Ptr<Clock> second{new Clock("second")};
  Ptr<DueOnce> due{new DueOnce(first)};
};

TEST(LoopExhaustion, AnObserverMovesToAnotherClockOrIsStillWokenByItsOwn) {
  atEveryAllocation(
      [] { return TwoClocks(); }, [](TwoClocks& scene) { scene.due->notifierIs(scene.second); },
      [](TwoClocks& scene, End end) {
        EXPECT_EQ(scene.due->notifier(), end == End::done ? scene.second : scene.first);
        scene.first->dispatch();
        EXPECT_EQ(scene.due->woken, end == End::done ? 0U : 1U);
        scene.second->dispatch();
        EXPECT_EQ(scene.due->woken, 1U);
      });
}

bool isBlocked(int signal) {
  sigset_t blocked;
  sigemptyset(&blocked);
  pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
  return sigismember(&blocked, signal) == 1;
}

TEST(LoopExhaustion, ASignalIsTakenWhollyOrNotAtAll) {
  atEveryAllocation([] { return std::make_unique<ReadyLoop>(); },
                    [](std::unique_ptr<ReadyLoop>& scene) {
                      scene->loop->signalIs(SIGUSR2, [&late = scene->late] { late += 10; });
                    },
                    [](std::unique_ptr<ReadyLoop>& scene, End end) {
                      EXPECT_EQ(isBlocked(SIGUSR2), end == End::done);
                      if (end == End::done) raise(SIGUSR2);
                      for (int rounds = 0; rounds < 2; ++rounds) scene->loop->runOnce(0);
                      EXPECT_EQ(scene->late, end == End::done ? 11U : 1U);
                    });
}

}  // namespace
}  // namespace Kest::Agent
