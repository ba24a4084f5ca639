#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "test/model/Recorder.h"
#include "test/model/TypedSuites.h"
#include "test/support/Allocation.h"

/// In which order an entity lets go of what it holds. Each part holds a string that nobody else
/// shares; the program's allocation functions, which the libraries use too, tell when its
/// characters are freed.
namespace {

struct Watched {
  char const* chars;
  char const* part;
};

/// Parts in the order in which their strings went, and whether there was an observer then.
class Freed {
 public:
  void watch(Mox::String8 const& string, char const* part) {
    watched_.at(count_++) = {string.charPtr(), part};
  }
  void isObservedIs(std::function<bool()> isObserved) { isObserved_ = std::move(isObserved); }

  void blockAt(void const* memory) noexcept {
    auto const start = reinterpret_cast<std::uintptr_t>(memory);
    for (Watched& one : watched_) {
      auto const chars = reinterpret_cast<std::uintptr_t>(one.chars);
      if (chars <= start || chars - start > mostBytesBeforeChars) continue;
      one.chars = nullptr;
      parts_.emplace_back(isObserved_() ? std::string(one.part) + " (observed)" : one.part);
    }
  }

  std::vector<std::string> taken() {
    watched_ = {};
    count_ = 0;
    return std::exchange(parts_, {});
  }

 private:
  static constexpr std::uintptr_t mostBytesBeforeChars = 16;

  std::array<Watched, 8> watched_{};
  std::size_t count_ = 0;
  std::function<bool()> isObserved_;
  std::vector<std::string> parts_;
};

Freed watch;

}  // namespace

void* Test::allocated(std::size_t bytes) noexcept {
  return std::malloc(bytes);
}

void Test::freed(void* memory) noexcept {
  watch.blockAt(memory);
  std::free(memory);
}

namespace Hardware::Kest::Slice {
namespace {

using testing::ElementsAre;

template <class E>
class Destruction : public testing::Test {
 protected:
  Destruction() {
    entity->referenceNew();
    forEachCollectionOf<E>([&](auto c) {
      Mox::String8 const key("the only key");
      c.newEntry(*entity, key, c.value(key, 1));
    });
    forEachCollectionOf<E>([&](auto c) { watch.watch(c.iterator(*entity).key(), c.handler); });
    watch.watch(entity->name().string(), "name");
  }

  /// Ends the entity though an observer is listed, which then has a notifier that is no more and so
  /// must not end itself.
  std::vector<std::string> end() {
    static Events events;
    static Recorder<E>* observer;
    observer = new Recorder<E>("observer", events);
    observer->referenceNew();
    observer->notifierIs(Mox::Ptr<E>(entity));
    observer->isRegisteredNotifieeIs(true);
    watch.isObservedIs([] { return observer->isRegisteredNotifiee(); });
    entity->notifierReferenceDel();
    entity->referenceDel();
    return watch.taken();
  }

  E* const entity = new E("the entity's name");
};

TYPED_TEST_SUITE(Destruction, BothEntities, EntityNames);

TYPED_TEST(Destruction, UnlinksObserversThenFreesTheCollectionsLastFirstThenTheRest) {
  if constexpr (std::is_same_v<TypeParam, KestSliceDmaConfig>) {
    this->entity->sliceIdIs("the slice's identity");
    watch.watch(this->entity->sliceId(), "sliceId");
    EXPECT_THAT(this->end(), ElementsAre("onDeviceState", "onDevice", "onSwitchportMode",
                                         "onNativeVlan", "onSwitchPort", "sliceId", "name"));
  } else {
    EXPECT_THAT(this->end(), ElementsAre("onDeviceState", "onDevice", "onSwitchportMode",
                                         "onNativeVlan", "onSwitchPort", "name"));
  }
}

}  // namespace
}  // namespace Hardware::Kest::Slice
