#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <thread>
#include <vector>

#include "platform/fru/PciHam.h"
#include "platform/mox/GenericValue.h"
#include "platform/mox/Ptr.h"
#include "platform/mox/String8.h"
#include "test/model/RecordNames.h"

namespace Mox {
namespace {

using Hardware::Kest::Slice::ConfigDevice;
using Work = std::function<void()>;

/// Does everything in `works` at once, each in a thread of its own.
void atOnce(std::vector<Work> const& works) {
  std::vector<std::thread> threads;
  for (Work const& work : works) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
}

/// Does `first` in one thread and then `second` in another. The hand-over does not order their
/// memory accesses; only what they share can.
void inTurn(Work const& first, Work const& second) {
  std::atomic<bool> done = false;
  atOnce({[&] {
            first();
            done.store(true, std::memory_order_relaxed);
          },
          [&] {
            while (!done.load(std::memory_order_relaxed)) std::this_thread::yield();
            second();
          }});
}

/// Counts its ends and how often it was told that only observers hold it.
class Tallied : public PtrInterface {
 public:
  struct Tally {
    std::atomic<int> told = 0;
    std::atomic<int> gone = 0;
    std::atomic<int> visits = 0;  // of all that are gone
  };

  explicit Tallied(Tally& tally) : tally_(tally) {}
  ~Tallied() override {
    ++tally_.gone;
    tally_.visits += visits_;
  }
  void zeroReferencesIs(bool) override { ++tally_.told; }

  /// Not atomic: for one thread at a time.
  void visit() { ++visits_; }

 private:
  Tally& tally_;
  int visits_ = 0;
};

/// Visits a new object in one thread, which lets go of it; another thread lets go of it last.
void destroyObjectInTurn(Tallied::Tally& tally) {
  Ptr<Tallied> here(new Tallied(tally));
  Ptr<Tallied> there = here;
  inTurn(
      [&] {
        here->visit();
        here = nullptr;
      },
      [&] { there = nullptr; });
}

/// Reads a new string in one thread, which lets go of it; another thread lets go of it last.
void freeStringInTurn() {
  String8 here("shared");
  String8 there = here;
  inTurn(
      [&] {
        EXPECT_EQ(here, "shared");
        here = String8();
      },
      [&] { there = String8(); });
}

class SharedReferencesTest : public ::testing::Test {
 protected:
  SharedReferencesTest() { PtrInterface::threadSafePtrIs(true); }
  ~SharedReferencesTest() override { PtrInterface::threadSafePtrIs(false); }

  static constexpr int rounds = 20000;

  Tallied::Tally tally;
};

TEST_F(SharedReferencesTest, LoseNoCountOfAnObject) {
  Ptr<Tallied> const object(new Tallied(tally));
  Work const share = [&] {
    for (int i = 0; i < rounds; ++i) {
      Ptr<Tallied> copy = object;
      Ptr<PtrInterface> const other = copy;
      copy = nullptr;
    }
  };
  atOnce({share, share});
  EXPECT_EQ(object->references(), 1U);
  EXPECT_EQ(object->notifierReferences(), 0U);
  EXPECT_EQ(tally.gone, 0);
}

TEST_F(SharedReferencesTest, TellNobodyOfObserversThatComeAndGoWhileAnObjectIsHeld) {
  Ptr<Tallied> const object(new Tallied(tally));
  Work const share = [&] {
    for (int i = 0; i < 5 * rounds; ++i) {
      Ptr<Tallied> copy = object;
      copy = nullptr;
    }
  };
  Work const observe = [&] {
    for (int i = 0; i < 5 * rounds; ++i) object->notifierReferenceNew();
    for (int i = 0; i < 5 * rounds; ++i) object->notifierReferenceDel();
  };
  atOnce({share, observe, share, observe});
  EXPECT_EQ(tally.told, 0);
  EXPECT_EQ(object->references(), 1U);
  EXPECT_EQ(object->notifierReferences(), 0U);
}

TEST_F(SharedReferencesTest, DestroyAnObjectOnceWhicheverThreadLetsGoLast) {
  std::vector<Ptr<Tallied>> here;
  for (int i = 0; i < rounds; ++i) here.emplace_back(new Tallied(tally));
  std::vector<Ptr<Tallied>> there = here;
  atOnce({[&] { here.clear(); }, [&] { there.clear(); }});
  EXPECT_EQ(tally.gone, rounds);
}

TEST_F(SharedReferencesTest, KeepAnObjectThatIsToldWhileItsLastObserverLetsGo) {
  std::vector<Ptr<Tallied>> held;
  std::vector<Tallied const*> observed;
  for (int i = 0; i < rounds; ++i) {
    held.emplace_back(new Tallied(tally));
    observed.push_back(held.back().ptr());
    observed.back()->notifierReferenceNew();
  }
  std::atomic<int> arrivals = 0;
  auto const meetAt = [&arrivals](int object) {
    arrivals.fetch_add(1, std::memory_order_relaxed);
    while (arrivals.load(std::memory_order_relaxed) < 2 * (object + 1)) std::this_thread::yield();
  };
  atOnce({[&] {
            for (int i = 0; i < rounds; ++i) {
              meetAt(i);
              held[static_cast<std::size_t>(i)] = nullptr;
            }
          },
          [&] {
            for (int i = 0; i < rounds; ++i) {
              meetAt(i);
              observed[static_cast<std::size_t>(i)]->notifierReferenceDel();
            }
          }});
  EXPECT_EQ(tally.gone, rounds);
}

TEST_F(SharedReferencesTest, DestroyAnObjectAfterWhatOtherThreadsDidWithIt) {
  destroyObjectInTurn(tally);
  EXPECT_EQ(tally.gone, 1);
  EXPECT_EQ(tally.visits, 1);
}

TEST_F(SharedReferencesTest, FreeAStringAfterWhatOtherThreadsReadOfIt) {
  freeStringInTurn();
}

TEST_F(SharedReferencesTest, MakeRecordsFreeToCopy) {
  Ptr<Fru::PciHam> const ham(new Fru::PciHam("0000:05:00.0"));
  ConfigDevice device;
  device.devNameIs("Arad3/0");
  device.pciHamIs(ham);
  std::vector<ConfigDevice> here;
  std::vector<ConfigDevice> there;
  auto const copyTo = [&device](std::vector<ConfigDevice>& copies) {
    for (int i = 0; i < rounds; ++i) copies.push_back(device);
  };
  atOnce({[&] { copyTo(here); }, [&] { copyTo(there); }});
  EXPECT_EQ(ham->references(), 2U * rounds + 2);
  atOnce({[&] { here.clear(); }, [&] { there.clear(); }, [&] { device = ConfigDevice(); }});
  EXPECT_EQ(ham->references(), 1U);
}

TEST_F(SharedReferencesTest, LetEachThreadMakeAdapters) {
  auto const read = [] {
    String8 const name("Arad3/0");
    for (int i = 0; i < rounds; ++i) {
      auto const generic = genericOf(name);
      ASSERT_EQ(*genericVal<String8>(generic->clone().get()), name);
    }
  };
  atOnce({read, read});
}

#ifdef __SANITIZE_THREAD__
// With the switch off counts are plain, and the cases above would be reported.
class PlainReferencesDeathTest : public ::testing::Test {
 protected:
  PlainReferencesDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
  ~PlainReferencesDeathTest() override { GTEST_FLAG_SET(death_test_style, "fast"); }

  static constexpr int reported = 66;  // the sanitizer's exit code
};

TEST_F(PlainReferencesDeathTest, AnObjectsEndIsARace) {
  EXPECT_EXIT(
      {
        Tallied::Tally tally;
        destroyObjectInTurn(tally);
        std::exit(0);
      },
      ::testing::ExitedWithCode(reported), "ThreadSanitizer: data race");
}

TEST_F(PlainReferencesDeathTest, AStringsEndIsARace) {
  EXPECT_EXIT(
      {
        freeStringInTurn();
        std::exit(0);
      },
      ::testing::ExitedWithCode(reported), "ThreadSanitizer: data race");
}
#endif

}  // namespace
}  // namespace Mox
