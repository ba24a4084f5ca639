#include "platform/mox/IntrospectionReactor.h"
#include "registry/SmType.h"
#include "test/exhaustion/EveryAllocation.h"
#include "test/exhaustion/MachineScene.h"
#include "test/model/TypedSuites.h"
#include "test/registry/Access.h"

/// Generic access without memory: what it is asked for is done and handed over, or neither.
namespace Hardware::Kest::Slice {
namespace {

using Exhaustion::atEveryAllocation;
using Exhaustion::End;

/// What an operation came to: a text, a refusal, or nothing yet. To write it down there is memory.
using Answer = std::string;

template <class Operation>
void answered(Answer& answer, Operation const& operation) {
  try {
    Generic const result = operation();
    Exhaustion::Pause const pause;
    answer = result ? "result " + std::string(result->strRep().view()) : "done";
  } catch (Mox::GenericAccessException const& refused) {
    Exhaustion::Pause const pause;
    answer = std::string("refused ") + refused.what();
  } catch (Mox::RangeException const& refused) {
    Exhaustion::Pause const pause;
    answer = std::string("refused ") + refused.what();
  }
}

/// An operation that changes nothing gives its whole answer or none.
template <class Operation>
void answersWholly(Operation const& operation) {
  Answer whole;
  answered(whole, operation);
  atEveryAllocation(
      [] { return Answer(); }, [&](Answer& answer) { answered(answer, operation); },
      [&](Answer const& answer, End end) { EXPECT_EQ(answer, end == End::done ? whole : ""); });
}

constexpr Code everyCode[] = {Code::read,   Code::construct, Code::equality, Code::store,
                              Code::remove, Code::notify,    Code::invoke};

/// An index and an argument to try.
struct Given {
  Generic index;
  Generic argument;
};

/// Every operation of `adapterOf(scene)` on `attribute`, with everything that `given` has: it is
/// carried out and answered, or `stateOf(scene)` is as before.
template <class MakeScene, class AdapterOf, class StateOf>
void operatesWholly(MakeScene const& make, AdapterOf const& adapterOf, StateOf const& stateOf,
                    Mox::Attribute const& attribute, std::vector<Given> const& given) {
  for (Code const code : everyCode) {
    for (Given const& with : given) {
      SCOPED_TRACE(testing::Message()
                   << attribute.name << ", operation " << static_cast<unsigned>(code)
                   << (with.index ? ", index" : "") << (with.argument ? ", argument " : "")
                   << (with.argument ? with.argument->strRep() : Mox::String8()));
      struct Attempt {
        decltype(make()) scene;
        Generic adapter;
        Answer answer;
      };
      auto const prepare = [&] {
        Attempt attempt{make(), nullptr, {}};
        attempt.adapter = adapterOf(attempt.scene);
        return attempt;
      };
      auto const act = [&](Attempt& attempt) {
        answered(attempt.answer, [&] {
          return operate(*attempt.adapter, {attribute.id, code, with.index.get()},
                         with.argument.get());
        });
      };
      Attempt undisturbed = prepare();
      std::string const before = stateOf(undisturbed.scene);
      act(undisturbed);
      std::string const after = stateOf(undisturbed.scene);
      atEveryAllocation(prepare, act, [&](Attempt& attempt, End end) {
        EXPECT_EQ(attempt.answer, end == End::done ? undisturbed.answer : "");
        EXPECT_EQ(stateOf(attempt.scene), end == End::done ? after : before);
      });
    }
  }
}

template <class Value>
class ValueAccess : public testing::Test {};
using Values =
    testing::Types<ConfigSwitchPort, ConfigDevice, StatusSwitchPort, StatusDevice, DeviceState>;
TYPED_TEST_SUITE(ValueAccess, Values);

TYPED_TEST(ValueAccess, AnswersWhollyOrNotAtAll) {
  Mox::MoxType const& type = *Mox::TypeOf<TypeParam>::type();
  TypeParam const value{};
  Generic const generic = Mox::genericOf(value, false);
  Mox::String8 const text = generic->strRep();
  answersWholly([&] { return type.genericIf(text, false); });
  answersWholly([&] { return type.genericIf(Mox::String8("no value"), false); });
  answersWholly([&] { return type.genericIf(generic.get(), true); });
  answersWholly([&] { return type.genericIf(string("other").get(), true); });
  answersWholly([&] { return generic->clone(); });
  answersWholly([&] { return type.genericIfNew(listOf(string("et1"), number(1))); });
  answersWholly([&] { return type.genericIfNew(listOf(number(1))); });
  for (Mox::Attribute const& attribute : type.typeNode()->attributes()) {
    answersWholly([&] {
      return Mox::genericOf(static_cast<std::uint32_t>(generic->attributeId(attribute.name)));
    });
    std::vector<Given> given(3);
    given[1].argument = generic->clone();
    given[2].index = string("et1");
    operatesWholly([&] { return Mox::genericOf(value, false); },
                   [](Generic const& scene) { return scene->clone(); },
                   [](Generic const& scene) { return std::string(scene->strRep().view()); },
                   attribute, given);
  }
  answersWholly([&] {
    return Mox::genericOf(static_cast<std::uint32_t>(generic->attributeId("no such attribute")));
  });
}

template <class Entity>
class EntityAccess : public testing::Test {};
using Entities = testing::Types<KestSliceDmaConfig, KestSliceDmaStatus>;
TYPED_TEST_SUITE(EntityAccess, Entities, EntityNames);

/// With an observer and one entry in each collection, under the same key.
template <class Entity>
struct FilledEntity {
  FilledEntity() {
    observer->notifierIs(entity);
    observer->isRegisteredNotifieeIs(true);
    forEachCollectionOf<Entity>(
        [&]<class C>(C) { C::newEntry(*entity, key(), C::value(key(), 1)); });
  }

  static Mox::String8 key() { return "Ethernet3/1, a name that takes memory"; }

  Mox::Ptr<Entity> entity{new Entity("slice")};
  Mox::Ptr<typename Entity::Notifiee> observer{new typename Entity::Notifiee};
};

TYPED_TEST(EntityAccess, OperatesWhollyOrNotAtAll) {
  using Scene = FilledEntity<TypeParam>;
  Mox::MoxType const& type = *TypeParam::_fwkType();
  for (Mox::Attribute const& attribute : type.typeNode()->attributes()) {
    std::vector<Given> given;
    for (char const* const at : {"", "Ethernet3/1, a name that takes memory", "Ethernet4/1"}) {
      Generic const index = *at == '\0' ? nullptr : string(at);
      auto const add = [&](Generic argument) {
        given.push_back({index ? index->clone() : nullptr, std::move(argument)});
      };
      add(nullptr);
      add(string("Linecard3, a name that takes memory"));
      forEachCollectionOf<TypeParam>([&]<class C>(C) { add(Mox::genericOf(C::value(at, 2))); });
    }
    operatesWholly([] { return Scene(); },
                   [&](Scene& scene) { return type.genericIf_(scene.entity.ptr(), false); },
                   [](Scene const& scene) {
                     return contentOf(*scene.entity) + std::to_string(scene.entity->changeCount());
                   },
                   attribute, given);
  }
}

TYPED_TEST(EntityAccess, IsWalkedAndMadeWhollyOrNotAtAll) {
  FilledEntity<TypeParam> const scene;
  Mox::MoxType const& type = *TypeParam::_fwkType();
  Generic const adapter = type.genericIf_(scene.entity.ptr(), true);
  Generic const key = string("Ethernet3/1, a name that takes memory");
  answersWholly([&] { return adapter->clone(); });
  answersWholly([&] { return type.genericIfNew(listOf(Mox::genericOf(Mox::Name("new")))); });
  forEachCollectionOf<TypeParam>([&]<class C>(C) {
    Mox::AttributeId const id = switchPortId<TypeParam> + C::index;
    answersWholly([&] { return Mox::genericOf(scene.entity->attributeString(id)); });
    answersWholly([&] { return adapter->attributeIteratorConst(id)->value(); });
    answersWholly([&] { return adapter->attributeIteratorKeyConst(id, key.get())->key(); });
    answersWholly(
        [&] { return adapter->attributeIterator_iterObj(*adapter->attributeIteratorConst(id)); });
  });
}

TEST(TypeLookup, TakesNoMemoryAndFindsWholeTypes) {
  auto const& types = Mox::IntrospectionReactor::global();
  for (char const* name : {"Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort", "No::Such"}) {
    Mox::String8 const wanted(name);
    Mox::MoxType const* const known = types.type(wanted);
    atEveryAllocation([] { return static_cast<Mox::MoxType const*>(nullptr); },
                      [&](Mox::MoxType const*& found) { found = types.type(wanted); },
                      [&](Mox::MoxType const* found, End end) {
                        EXPECT_EQ(end, End::done);
                        EXPECT_EQ(found, known);
                      });
  }
}

/// A handler can have done some of its work when it fails; nothing else can.
TEST(MachineAccess, OperatesWhollyOrUpToSomeRecordOfTheStatus) {
  auto const make = [] {
    MachineScene scene;
    scene.status->nativeVlanDelAll();
    return scene;
  };
  Mox::MoxType const& type = *KestSliceDmaSm::_fwkType();
  MachineScene const named;
  std::vector<Given> given(6);
  auto const listed = [](Generic item) { return listOf(std::move(item)).clone(); };
  given[1].argument = listed(Mox::genericOf(named.key));
  given[2].argument = listed(Mox::genericOf(true));
  given[3].argument = Mox::genericOf(SmMode::smModePolling_);
  given[4].argument = Mox::genericOf(Mox::Ptr<Mox::Clock const>(new Mox::Clock("other")));
  given[5].index = Mox::genericOf(named.key);
  for (Mox::Attribute const& attribute : type.typeNode()->attributes()) {
    for (Code const code : everyCode) {
      for (Given const& with : given) {
        SCOPED_TRACE(testing::Message()
                     << attribute.name << ", operation " << static_cast<unsigned>(code));
        auto const act = [&](MachineScene& scene) {
          Answer answer;
          answered(answer, [&] {
            return operate(*type.genericIf_(scene.sm.ptr(), false),
                           {attribute.id, code, with.index.get()}, with.argument.get());
          });
        };
        auto const states = statesOf(make, act);
        atEveryAllocation(make, act, [&](MachineScene& scene, End end) {
          if (end == End::badAlloc && code == Code::invoke) {
            EXPECT_TRUE(isOneOf(scene.state(), states)) << scene.state();
          } else {
            EXPECT_EQ(scene.state(), end == End::done ? states.back() : states.front());
          }
        });
      }
    }
  }
}

}  // namespace
}  // namespace Hardware::Kest::Slice
