#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <string>

/// System calls that go wrong on demand. The program's own definitions replace the C library's
/// functions, for its libraries too, and hand calls on to them.
namespace Exhaustion {

/// How long a call goes wrong.
enum class Lasting { once, forGood };

/// While it lives, the call number `at`, from 1, goes wrong in the way number `way`, from 0, of
/// those that are plausible for its function. With `forGood`, every later call of that function
/// goes wrong in the same way, and when descriptors have run out, every call that needs one. One at
/// a time.
class FailingCall {
 public:
  FailingCall(std::size_t at, std::size_t way, Lasting lasting) noexcept;
  ~FailingCall();
  FailingCall(FailingCall const&) = delete;
  FailingCall& operator=(FailingCall const&) = delete;

  /// Whether a call has gone wrong.
  bool hasCome() const noexcept;
  /// Whether there was that call, but the function has no such way to go wrong.
  bool isOutOfWays() const noexcept;
  /// The function that went wrong and how, as in "accept4 EMFILE"; empty before.
  std::string what() const;
};

/// While it lives, calls are the test's own: they work and are not counted.
class TestsOwnCalls {
 public:
  TestsOwnCalls() noexcept;
  ~TestsOwnCalls();
  TestsOwnCalls(TestsOwnCalls const&) = delete;
  TestsOwnCalls& operator=(TestsOwnCalls const&) = delete;

 private:
  bool wereOwn_;
};

/// How many descriptors the process has open.
std::size_t openDescriptors();

constexpr std::chrono::hours longestVirtualWait{24};

/// From now on, in this process, a wait for a signal passes at once, unless there is a child to
/// wait for, and the steady clock shows its time as passed; the first waits are interrupted half
/// way. A SIGTERM comes when they have taken `longestVirtualWait` together.
void waitsAreVirtual(unsigned interruptions) noexcept;
/// The sum of such waits.
std::chrono::nanoseconds virtualWait() noexcept;

/// Lets each system call of `act(scene)` go wrong in each way, on a scene that `prepare()` makes,
/// and hands it to `judge(scene, what)`, `what` being empty in the end, when nothing went wrong.
/// Then the process has as many descriptors as before.
template <class Prepare, class Act, class Judge>
void atEveryCall(Prepare const& prepare, Act const& act, Judge const& judge) {
  bool hasCall = true;
  for (std::size_t at = 1; hasCall && !testing::Test::HasFailure(); ++at) {
    for (Lasting const lasting : {Lasting::once, Lasting::forGood}) {
      bool isOutOfWays = false;
      for (std::size_t way = 0; !isOutOfWays && !testing::Test::HasFailure(); ++way) {
        std::size_t const before = openDescriptors();
        std::string what;
        {
          auto scene = prepare();
          {
            FailingCall const failing(at, way, lasting);
            act(scene);
            TestsOwnCalls const own;
            what = failing.what();
            hasCall = failing.hasCome() || failing.isOutOfWays();
            isOutOfWays = !failing.hasCome();
          }
          SCOPED_TRACE(testing::Message() << "call " << at << ", " << what
                                          << (lasting == Lasting::once ? ", once" : ", for good"));
          judge(scene, what);
        }
        EXPECT_EQ(openDescriptors(), before) << "call " << at << ", " << what;
      }
    }
  }
}

}  // namespace Exhaustion
