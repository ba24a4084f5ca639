#include <gtest/gtest.h>

#include <random>

#include "test/model/AnyNotifiee.h"
#include "test/model/PlainRun.h"
#include "test/model/TypedSuites.h"
#include "test/support/Effort.h"

/// A long random run of both entities, whose observers read, write, throw, join, leave, move and
/// end inside notifications, against a plain model that predicts every notification.
namespace Hardware::Kest::Slice {
namespace {

template <class C>
constexpr bool isRecord = std::is_class_v<typename C::Value>;

/// The number of a value that `C::value` made; `noValue` for a default record.
template <class C>
unsigned numberOf(Mox::String8 const& key, typename C::Value const& value) {
  for (unsigned n = 0; n < distinct<C>; ++n) {
    if (value == C::value(key, n)) return n;
  }
  EXPECT_EQ(value, typename C::Value()) << "under '" << key << "'";
  return noValue;
}

template <class E>
PlainTraits plainTraits() {
  PlainTraits traits{std::is_same_v<E, KestSliceDmaConfig>, switchPortId<E>, {}, {}};
  forEachCollectionOf<E>([&](auto c) {
    traits.distinct[c.index] = distinct<decltype(c)>;
    traits.isRecord[c.index] = isRecord<decltype(c)>;
  });
  return traits;
}

template <class E>
class RealRun : public Reactions<RealRun<E>> {
 public:
  using Reactions<RealRun>::heard;

  RealRun() {
    for (unsigned i = 0; i < observers; ++i) renew(i);
  }

  E const& entity(unsigned i) const { return *entities_[i]; }

  void take(Step const& step) {
    E& entity = *entities_[step.entity];
    switch (step.what) {
      case Do::sliceId:
        if constexpr (std::is_same_v<E, KestSliceDmaConfig>) {
          entity.sliceIdIs(keyPool()[step.value]);
          return;
        }
        break;
      case Do::zeroReferences:
        entity.zeroReferencesIs(true);
        return;
      case Do::join:
        observers_[step.observer]->isRegisteredNotifieeIs(true);
        return;
      case Do::leave:
        observers_[step.observer]->isRegisteredNotifieeIs(false);
        return;
      case Do::point:
        observers_[step.observer]->notifierIs(step.value == 0 ? nullptr : entities_[step.entity]);
        return;
      case Do::renew:
        renew(step.observer);
        return;
      default:
        break;
    }
    forEachCollectionOf<E>([&](auto c) {
      if (c.index == step.collection) write<decltype(c)>(entity, step);
    });
  }

 private:
  class Observer : public AnyNotifiee<E> {
   public:
    using Base = typename E::Notifiee;
    Observer(RealRun& run, unsigned id) : run_(run), id_(id) {}

    void onNotificationException(Mox::AttributeId id) override { run_.toldException(id_, id); }
    void onZeroReferences() override { run_.told(id_, toldZeroReferences, ""); }
    void onSliceId() override { run_.told(id_, toldSliceId, ""); }
    using Base::onSwitchPort;
    void onSwitchPort(Mox::String8 key) override { run_.told(id_, 0, key); }
    using Base::onNativeVlan;
    void onNativeVlan(Mox::String8 key) override { run_.told(id_, 1, key); }
    using Base::onSwitchportMode;
    void onSwitchportMode(Mox::String8 key) override { run_.told(id_, 2, key); }
    using Base::onDevice;
    void onDevice(Mox::String8 key) override { run_.told(id_, 3, key); }
    using Base::onDeviceState;
    void onDeviceState(Mox::String8 key) override { run_.told(id_, 4, key); }

   private:
    RealRun& run_;
    unsigned id_;
  };

  template <class C>
  void write(E& entity, Step const& step) {
    Mox::String8 const& key = step.key;
    auto const value = C::value(key, step.value % distinct<C>);
    auto const hear = [&](char what, Mox::String8 const& valueKey,
                          typename C::Value const& returned) {
      unsigned const number = numberOf<C>(valueKey, returned);
      heard.push_back({what, step.entity, step.collection, key, number});
    };
    switch (step.what) {
      case Do::set:
        C::is(entity, key, value);
        return;
      case Do::insert:
        if (!C::iterator(entity, key)) C::newEntry(entity, key, value);
        return;
      case Do::del:
        hear('d', key, C::del(entity, key));
        return;
      case Do::delAt:
        hear('d', key, C::del(entity, C::iterator(entity, key)));
        return;
      case Do::delFirst: {
        auto const first = C::iterator(entity);
        hear('d', first ? first.key() : key, C::del(entity, first));
        return;
      }
      case Do::delAll:
        C::delAll(entity);
        return;
      case Do::notify:
        C::notify(entity, key);
        return;
      default:
        hear('l', key, C::lookup(entity, key));
        return;
    }
  }

  void renew(unsigned observer) {
    observers_[observer] = new Observer(*this, observer);
    observers_[observer]->notifierIs(entities_[0]);
    observers_[observer]->isRegisteredNotifieeIs(true);
  }

  std::array<Mox::Ptr<E>, entities> entities_{new E("first"), new E("second")};
  std::array<Mox::Ptr<Observer>, observers> observers_;
};

template <class E>
void expectSameContent(E const& real, PlainEntity const& plain) {
  forEachCollectionOf<E>([&](auto c) {
    auto const& content = plain.content[c.index];
    auto at = content.begin();
    for (auto it = c.iterator(real); it; ++it, ++at) {
      ASSERT_NE(at, content.end()) << c.handler << " has '" << it.key() << "'";
      ASSERT_EQ(it.key(), at->first) << c.handler;
      ASSERT_EQ(numberOf<decltype(c)>(it.key(), *it), at->second) << c.handler << it.key();
    }
    ASSERT_EQ(at, content.end()) << c.handler;
  });
  if constexpr (std::is_same_v<E, KestSliceDmaConfig>) {
    ASSERT_EQ(real.sliceId(), keyPool()[plain.sliceId]);
  }
}

template <class E>
void expectSameCounts(E const& real, PlainEntity const& plain) {
  ASSERT_EQ(real.changeCount(), plain.changes);
  ASSERT_EQ(real.lookupCount(), plain.lookups);
  ASSERT_EQ(real.observers().count(), plain.listed.size());
  ASSERT_EQ(real.observers().version(), plain.listVersion);
}

template <class E>
class RandomRun : public testing::Test {};
TYPED_TEST_SUITE(RandomRun, BothEntities, EntityNames);

TYPED_TEST(RandomRun, GoesAsThePlainModelPredicts) {
  constexpr std::uint64_t changes = effort(50000);
  constexpr unsigned stepsBetweenLooks = 50;
  std::mt19937_64 random(2203);
  RealRun<TypeParam> real;
  PlainRun plain(plainTraits<TypeParam>());
  for (unsigned i = 0; real.entity(0).changeCount() < changes; ++i) {
    Dice dice(random());
    Step const step = randomStep(dice);
    real.take(step);
    plain.take(step);
    ASSERT_EQ(real.heard, plain.heard) << "step " << i;
    real.heard.clear();
    plain.heard.clear();
    for (unsigned e = 0; e < entities; ++e) {
      PlainEntity const& model = plain.plainEntities()[e];
      ASSERT_NO_FATAL_FAILURE(expectSameCounts(real.entity(e), model)) << "step " << i;
      if (i % stepsBetweenLooks != 0) continue;
      ASSERT_NO_FATAL_FAILURE(expectSameContent(real.entity(e), model)) << "step " << i;
    }
  }
  ASSERT_EQ(Mox::ExpectationScope::depth(), 0U);
}

}  // namespace
}  // namespace Hardware::Kest::Slice
