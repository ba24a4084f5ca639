#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "platform/mox/Clock.h"
#include "test/model/Recorder.h"
#include "test/model/TypedSuites.h"

/// Who is told of a change, in which order, and what becomes of an observer that fails. The change
/// is one of `nativeVlan`; that every collection announces alike is tested with the collections.
namespace Hardware::Kest::Slice {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

template <class E>
class Observers : public testing::Test {
 protected:
  using Entity = E;
  using Observer = Mox::Ptr<Recorder<E>>;

  Observer observe(std::string name) { return Slice::observe(entity, std::move(name), events); }
  Observer unregistered(std::string name) {
    return Observer(new Recorder<E>(std::move(name), events));
  }
  /// A change under a key of its own; who was told of it.
  Events change(char const* key = "et1") {
    entity->nativeVlanIs(key, ++vlan);
    return std::exchange(events, {});
  }

  Events events;
  Mox::Ptr<E> entity{new E("slice")};
  std::uint16_t vlan = 0;
};
TYPED_TEST_SUITE(Observers, BothEntities, EntityNames);

std::string exceptionReport(std::string const& name, Mox::AttributeId id) {
  return name + " onNotificationException " + std::to_string(id);
}
template <class E>
constexpr Mox::AttributeId nativeVlanId = switchPortId<E> + 1;

// The list.

TYPED_TEST(Observers, AreToldInOrderOfRegistration) {
  auto const a = this->observe("a");
  auto const b = this->observe("b");
  EXPECT_THAT(this->change(), ElementsAre("a onNativeVlan et1", "b onNativeVlan et1"));
  a->isRegisteredNotifieeIs(false);
  EXPECT_THAT(this->change(), ElementsAre("b onNativeVlan et1"));
  a->isRegisteredNotifieeIs(true);  // at the end now
  EXPECT_THAT(this->change(), ElementsAre("b onNativeVlan et1", "a onNativeVlan et1"));
}

TYPED_TEST(Observers, AreToldHoweverManyThereAre) {
  std::vector<typename TestFixture::Observer> all;
  Events expected;
  for (int i = 0; i < 20; ++i) {
    all.push_back(this->observe(std::to_string(i)));
    expected.push_back(std::to_string(i) + " onNativeVlan et1");
  }
  EXPECT_EQ(this->change(), expected);
  all[3]->reaction = [&] { all.clear(); };  // who was told, or is held by none but the delivery
  expected.resize(4);
  EXPECT_EQ(this->change(), expected);
  EXPECT_EQ(this->entity->observers().count(), 0U);
}

TYPED_TEST(Observers, AreCountedAndEveryChangeOfTheListIsANewVersion) {
  auto const& list = this->entity->observers();
  std::uint32_t const start = list.version();
  auto a = this->observe("a");
  auto const b = this->observe("b");
  auto const c = this->observe("c");
  EXPECT_EQ(list.count(), 3U);
  EXPECT_EQ(list.version(), start + 3);
  b->isRegisteredNotifieeIs(false);  // in the middle
  c->isRegisteredNotifieeIs(false);  // at the tail
  b->isRegisteredNotifieeIs(true);
  EXPECT_EQ(list.count(), 2U);
  EXPECT_EQ(list.version(), start + 6);
  EXPECT_THAT(this->change(), ElementsAre("a onNativeVlan et1", "b onNativeVlan et1"));
  a->isRegisteredNotifieeIs(true);  // as they are: nothing changes
  a->notifierIs(this->entity);
  c->isRegisteredNotifieeIs(false);
  EXPECT_EQ(list.version(), start + 6);
  EXPECT_EQ(a->references(), 1U);  // the list holds none
  a = nullptr;                     // leaves it
  EXPECT_EQ(list.count(), 1U);
}

// The notifier.

TYPED_TEST(Observers, ThatRegisterWithoutANotifierJoinWhenThereIsOne) {
  auto const a = this->unregistered("a");
  a->isRegisteredNotifieeIs(true);
  EXPECT_TRUE(a->isRegisteredNotifiee());
  EXPECT_EQ(a->name(), "");
  EXPECT_THAT(this->change(), IsEmpty());
  a->notifierIs(this->entity);
  EXPECT_EQ(a->name(), "slice");
  EXPECT_EQ(a->notifier(), this->entity);
  EXPECT_THAT(this->change(), ElementsAre("a onNativeVlan et1"));
}

TYPED_TEST(Observers, HoldTheirNotifierWithANotifierReference) {
  auto const a = this->unregistered("a");
  a->notifierIs(this->entity);
  EXPECT_EQ(this->entity->references(), 2U);
  EXPECT_EQ(this->entity->notifierReferences(), 1U);
  a->notifierIs(nullptr);
  EXPECT_EQ(this->entity->references(), 1U);
  EXPECT_EQ(this->entity->notifierReferences(), 0U);
}

TYPED_TEST(Observers, ThatArePointedElsewhereLeaveTheOldNotifierAndJoinTheNewOne) {
  Mox::Ptr<TypeParam> const other(new TypeParam("other"));
  auto const first = Slice::observe(other, "first", this->events);
  auto const a = this->observe("a");
  auto const b = this->observe("b");
  std::uint32_t const version = this->entity->observers().version();
  a->notifierIs(other);
  EXPECT_TRUE(a->isRegisteredNotifiee());
  EXPECT_EQ(this->entity->observers().count(), 1U);
  EXPECT_EQ(this->entity->observers().version(), version + 1);
  EXPECT_EQ(other->observers().count(), 2U);
  EXPECT_THAT(this->change(), ElementsAre("b onNativeVlan et1"));
  other->nativeVlanIs("et9", 1);
  EXPECT_THAT(this->events, ElementsAre("first onNativeVlan et9", "a onNativeVlan et9"));
}

TYPED_TEST(Observers, TakeANotifierOfAnotherTypeForNone) {
  constexpr bool isConfig = std::is_same_v<TypeParam, KestSliceDmaConfig>;
  using Other = std::conditional_t<isConfig, KestSliceDmaStatus, KestSliceDmaConfig>;
  Mox::Ptr<Mox::PtrInterface> const others[] = {new Mox::Clock("clock"), new Other("other")};
  for (auto const& other : others) {
    auto const a = this->observe("a");
    a->notifierIs(other);
    EXPECT_EQ(a->notifier(), nullptr);
    EXPECT_EQ(other->references(), 1U);
    EXPECT_EQ(this->entity->references(), 1U);
    EXPECT_THAT(this->change(), IsEmpty());
    a->notifierIs(this->entity);  // still registered, so it joins
    EXPECT_THAT(this->change(), ElementsAre("a onNativeVlan et1"));
  }
}

// Changes of the list while a change is told.

TYPED_TEST(Observers, ThatJoinMeanwhileAreNotTold) {
  auto const a = this->observe("a");
  auto const b = this->unregistered("b");
  b->notifierIs(this->entity);
  a->reaction = [&] { b->isRegisteredNotifieeIs(true); };
  EXPECT_THAT(this->change(), ElementsAre("a onNativeVlan et1"));
  EXPECT_THAT(this->change(), ElementsAre("a onNativeVlan et1", "b onNativeVlan et1"));
}

TYPED_TEST(Observers, ThatLeaveMeanwhileAreStillTold) {
  auto const a = this->observe("a");
  auto const b = this->observe("b");
  auto const c = this->observe("c");
  a->reaction = [&] {
    b->isRegisteredNotifieeIs(false);
    c->notifierIs(nullptr);
  };
  EXPECT_THAT(this->change(),
              ElementsAre("a onNativeVlan et1", "b onNativeVlan et1", "c onNativeVlan et1"));
  EXPECT_THAT(this->change(), ElementsAre("a onNativeVlan et1"));
}

TYPED_TEST(Observers, ThatAreReleasedMeanwhileAreNotTold) {
  auto const a = this->observe("a");
  auto b = this->observe("b");
  auto c = this->observe("c");
  auto const d = this->observe("d");
  a->reaction = [&] {
    b = nullptr;
    c = nullptr;
  };
  EXPECT_THAT(this->change(), ElementsAre("a onNativeVlan et1", "d onNativeVlan et1"));
  EXPECT_EQ(this->entity->observers().count(), 2U);
}

TEST(ObserversOfAConfiguration, AreAllToldTheSameKeyWhenAHandlerReusesTheWritersRecord) {
  Events events;
  Mox::Ptr<KestSliceDmaConfig> const config(new KestSliceDmaConfig("config"));
  auto const a = observe(config, "a", events);
  auto const b = observe(config, "b", events);
  KestSliceDmaConfig::SwitchPort port;
  port.ifNameIs("et1");
  a->reaction = [&] { port.ifNameIs("et2"); };
  config->switchPortIs(port);
  EXPECT_THAT(events, ElementsAre("a onSwitchPort et1", "b onSwitchPort et1"));
}

TYPED_TEST(Observers, ThatReleaseThemselvesAreToldToTheEnd) {
  auto a = this->observe("a");
  auto const b = this->observe("b");
  a->reaction = [&] {
    a = nullptr;
    this->events.push_back("released");
  };
  EXPECT_THAT(this->change(), ElementsAre("a onNativeVlan et1", "released", "b onNativeVlan et1"));
  EXPECT_THAT(this->change(), ElementsAre("b onNativeVlan et1"));
}

TYPED_TEST(Observers, ThatWereToldAreLetGoBeforeTheNextIsTold) {
  auto a = this->observe("a");
  auto const b = this->observe("b");
  a->reaction = [&] { a = nullptr; };
  std::size_t listed = 0;
  b->reaction = [&] { listed = this->entity->observers().count(); };
  this->change();
  EXPECT_EQ(listed, 1U);
}

// Failures.

TYPED_TEST(Observers, ThatThrowAreToldSoAndTheOthersAreTold) {
  auto const a = this->observe("a");
  auto const b = this->observe("b");
  auto const c = this->observe("c");
  a->reaction = [] { throw std::runtime_error("a standard exception"); };
  b->reaction = [] { throw std::bad_alloc(); };
  EXPECT_THAT(this->change(),
              ElementsAre("a onNativeVlan et1", exceptionReport("a", nativeVlanId<TypeParam>),
                          "b onNativeVlan et1", exceptionReport("b", nativeVlanId<TypeParam>),
                          "c onNativeVlan et1"));
  EXPECT_EQ(this->entity->nativeVlan("et1"), 1U);
  EXPECT_EQ(this->entity->changeCount(), 1U);
}

TYPED_TEST(Observers, ThatThrowWhenToldOfTheirExceptionHarmNobodyElse) {
  auto const a = this->observe("a");
  auto const b = this->observe("b");
  a->reaction = [] { throw std::runtime_error("first"); };
  a->exceptionReaction = [] { throw std::runtime_error("second"); };
  EXPECT_THAT(this->change(),
              ElementsAre("a onNativeVlan et1", exceptionReport("a", nativeVlanId<TypeParam>),
                          "b onNativeVlan et1"));
}

TYPED_TEST(Observers, AreToldInsideAnExpectationScopeThatEndsWithTheHandler) {
  auto const a = this->observe("a");
  std::vector<unsigned> depths;
  a->reaction = [&] {
    depths.push_back(Mox::ExpectationScope::depth());
    if (depths.size() == 1) this->entity->nativeVlanIs("et2", 1);
    if (depths.size() == 3) throw std::runtime_error("refused");
  };
  a->exceptionReaction = [&] { depths.push_back(Mox::ExpectationScope::depth()); };
  this->change();
  this->change();
  EXPECT_THAT(depths, ElementsAre(1U, 2U, 1U, 0U));
  EXPECT_EQ(Mox::ExpectationScope::depth(), 0U);
}

TYPED_TEST(Observers, ThatIgnoreAHandlerTakeNoHarm) {
  class Silent : public TypeParam::NotifieeConst {};
  Mox::Ptr<Silent> const silent(new Silent);
  silent->notifierIs(this->entity);
  silent->isRegisteredNotifieeIs(true);
  forEachCollectionOf<TypeParam>([&](auto c) { c.is(*this->entity, "x", c.value("x", 1)); });
  this->entity->zeroReferencesIs(true);
  EXPECT_EQ(this->entity->changeCount(), 5U);
}

// The last reference.

TYPED_TEST(Observers, AreToldThatNobodyElseHoldsTheEntity) {
  auto const a = this->observe("a");
  auto const b = this->observe("b");
  a->reaction = [] { throw std::runtime_error("refused"); };
  std::uint64_t counted = 1;
  b->reaction = [&] { counted = b->notifier()->changeCount(); };
  this->entity = nullptr;
  EXPECT_THAT(this->events,
              ElementsAre("a onZeroReferences", exceptionReport("a", 5), "b onZeroReferences"));
  EXPECT_EQ(counted, 0U);
}

TYPED_TEST(Observers, AreToldOnlyOfReferencesThatAreZero) {
  auto const a = this->observe("a");
  this->entity->zeroReferencesIs(false);
  EXPECT_THAT(this->events, IsEmpty());
  this->entity->zeroReferencesIs(true);
  EXPECT_THAT(this->events, ElementsAre("a onZeroReferences"));
}

/// Says when it goes.
template <class E>
class Mortal : public E {
 public:
  Mortal(char const* name, bool& gone) : E(name), gone_(gone) {}
  ~Mortal() override { gone_ = true; }

 private:
  bool& gone_;
};

TYPED_TEST(Observers, ThatLetGoOfAnEntityThatNobodyElseHoldsEndIt) {
  bool gone = false;
  Mox::Ptr<TypeParam> mortal(new Mortal<TypeParam>("mortal", gone));
  auto const a = Slice::observe(mortal, "a", this->events);
  auto const b = Slice::observe(mortal, "b", this->events);
  a->reaction = [&] { a->notifierIs(nullptr); };
  b->reaction = [&] {
    b->notifierIs(nullptr);
    EXPECT_FALSE(gone);
  };
  mortal = nullptr;
  EXPECT_TRUE(gone);
  EXPECT_THAT(this->events, ElementsAre("a onZeroReferences", "b onZeroReferences"));
}

}  // namespace
}  // namespace Hardware::Kest::Slice
