#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "registry/DeviceStateType.h"
#include "registry/EntityTypes.h"
#include "registry/RecordTypes.h"
#include "test/model/TypedSuites.h"
#include "test/registry/Access.h"

/// Generic access to the two entities.
namespace Hardware::Kest::Slice {
namespace {

using Mox::AttributeId;
using Mox::genericOf;
using Mox::Ptr;
using Mox::wholeAttributeId;
using Test::badIndex;
using Test::constInstance;
using Test::genericRefusal;
using Test::noSuchAttribute;
using Test::notBound;
using Test::opNotSupported;
using Test::unknownArg;
using Test::wrongType;

/// Names of a collection, and what a key of the wrong type is called there.
struct Names {
  char const* name;
  char const* wrongKey;
};
constexpr Names names[] = {{"switchPort", "switchPort"},
                           {"nativeVlan", "nativeVlan"},
                           {"switchportMode", "switchportMode"},
                           {"device", "devName"},
                           {"deviceState", "devName"}};

template <class C>
constexpr bool isRecord = C::index == SwitchPortOf<KestSliceDmaConfig>::index ||
                          C::index == DeviceOf<KestSliceDmaConfig>::index;

template <class Entity>
class EntityAccessTest : public testing::Test {
 protected:
  /// Calls `visit(collection, names)` for each collection.
  template <class Visit>
  static void forEach(Visit visit) {
    forEachCollectionOf<Entity>(
        [&](auto collection) { visit(collection, names[collection.index]); });
  }
  template <class C>
  static Generic value(C, char const* key, unsigned n) {
    return genericOf(C::value(key, n));
  }

  std::string const typeName = Entity::typeName;
  Ptr<Entity> const entity{new Entity("entity")};
  Generic const generic = genericOf(entity);
  Generic const constant = genericOf(Ptr<Entity const>(entity));
  Generic const null = genericOf(Ptr<Entity>());
};

using Entities = testing::Types<KestSliceDmaConfig, KestSliceDmaStatus>;
TYPED_TEST_SUITE(EntityAccessTest, Entities, EntityNames);

TYPED_TEST(EntityAccessTest, RefusesAKeyOfTheWrongTypeByItsCollectionsName) {
  this->forEach([&](auto collection, Names const& of) {
    Generic const value = this->value(collection, "et1", 1);
    for (Code const code : {Code::read, Code::store, Code::remove, Code::notify}) {
      Generic const wrong = number(1);
      EXPECT_EQ(refused(*this->generic, of.name, code, wrong, value.get()), wrongType(of.wrongKey));
      if (code == Code::store && isRecord<decltype(collection)>) continue;
      EXPECT_EQ(refused(*this->generic, of.name, code, nullptr, value.get()),
                wrongType(of.wrongKey));
    }
  });
  EXPECT_EQ(this->entity->changeCount(), 0U);
}

TYPED_TEST(EntityAccessTest, RefusesAValueOfTheWrongTypeByItsCollectionsName) {
  this->forEach([&](auto, Names const& of) {
    Generic const key = string("et1");
    EXPECT_EQ(genericRefusal([&] { store(*this->generic, of.name, nullptr, key); }),
              wrongType(of.name));
    EXPECT_EQ(genericRefusal([&] { store(*this->generic, of.name, genericOf(true), key); }),
              wrongType(of.name));
  });
  EXPECT_EQ(this->entity->changeCount(), 0U);
}

TYPED_TEST(EntityAccessTest, ARecordBringsItsKey) {
  this->forEach([&](auto collection, Names const& of) {
    using C = decltype(collection);
    if constexpr (isRecord<C>) {
      store(*this->generic, of.name, this->value(collection, "et1", 1));
      EXPECT_EQ(C::lookup(*this->entity, "et1"), C::value("et1", 1));
      EXPECT_EQ(genericRefusal([&] {
                  store(*this->generic, of.name, this->value(collection, "et2", 1), string("et1"));
                }),
                badIndex(of.name));
      EXPECT_EQ(C::lookup(*this->entity, "et2"), typename C::Value());
    }
  });
}

TYPED_TEST(EntityAccessTest, RefusesARecordOfTheOtherEntity) {
  Generic const config = genericOf(ConfigSwitchPort(), false);
  Generic const status = genericOf(StatusSwitchPort(), false);
  bool const isConfig = std::is_same_v<TypeParam, KestSliceDmaConfig>;
  EXPECT_EQ(
      genericRefusal([&] { store(*this->generic, "switchPort", isConfig ? status : config); }),
      wrongType("switchPort"));
}

TYPED_TEST(EntityAccessTest, RefusesEveryOtherCode) {
  this->forEach([&](auto, Names const& of) {
    for (unsigned const code : {1U, 99U, 100U, 127U, 131U, 4096U}) {
      EXPECT_EQ(refused(*this->generic, of.name, Code(code), string("et1")),
                opNotSupported(of.name, code));
    }
  });
}

TYPED_TEST(EntityAccessTest, AConstAdapterRefusesBeforeTheAttributeIsLookedAt) {
  for (AttributeId const id :
       {0U, 1U, 5U, 257U, 258U, 259U, 260U, 261U, 262U, 263U, 264U, 99999U}) {
    for (unsigned const code : {128U, 129U, 130U, 131U, 4096U}) {
      EXPECT_EQ(refused(*this->constant, {id, Code(code)}), constInstance());
    }
  }
}

TYPED_TEST(EntityAccessTest, LeavesEveryOtherAttributeToTheFramework) {
  EXPECT_EQ(valueOf<Mox::Name>(read(*this->generic, "name")).string(), "entity");
  this->entity->nativeVlanIs("et1", 10);
  EXPECT_EQ(valueOf<unsigned long long>(read(*this->generic, "changeCount")), 1U);
  EXPECT_EQ(valueOf<unsigned long long>(read(*this->generic, "lookupCount")), 0U);
  EXPECT_EQ(genericRefusal([&] { store(*this->generic, "name", string("other")); }),
            opNotSupported("name", 128));
  for (AttributeId const id : {5U, 257U, switchPortId<TypeParam> + 5, 99999U}) {
    for (Code const code : {Code::read, Code::store}) {
      EXPECT_EQ(refused(*this->generic, {id, code}),
                noSuchAttribute(this->typeName, std::to_string(id)));
    }
  }
}

TYPED_TEST(EntityAccessTest, IsEqualToItselfAlone) {
  EXPECT_TRUE(equal(*this->generic, this->constant.get()));
  EXPECT_FALSE(equal(*this->generic, genericOf(Ptr<TypeParam>(new TypeParam("entity"))).get()));
  EXPECT_FALSE(equal(*this->generic, this->null.get()));
  EXPECT_EQ(genericRefusal([&] { equal(*this->generic, nullptr); }), wrongType("moxOpArg"));
}

TYPED_TEST(EntityAccessTest, ANullReferenceIsAReferenceAndHasNoAttributes) {
  EXPECT_TRUE(equal(*this->null, genericOf(Ptr<TypeParam>()).get()));
  EXPECT_EQ(operate(*this->null, {wholeAttributeId, Code::read})->strRep(), "None");
  this->forEach([&](auto collection, Names const& of) {
    EXPECT_EQ(genericRefusal([&] { read(*this->null, of.name, string("et1")); }),
              notBound(this->typeName));
    EXPECT_EQ(genericRefusal([&] {
                this->null->attributeIteratorConst(switchPortId<TypeParam> + collection.index);
              }),
              notBound(this->typeName));
  });
  EXPECT_EQ(genericRefusal([&] { read(*this->null, "name"); }), notBound(this->typeName));
}

TYPED_TEST(EntityAccessTest, WalksEveryCollectionInItsOwnOrder) {
  this->forEach([&](auto collection, Names const& of) {
    using C = decltype(collection);
    for (unsigned n = 0; n < 20; ++n) {
      Mox::String8 const key(std::to_string(n));
      C::is(*this->entity, key, C::value(key, n % distinct<C>));
    }
    auto const it = this->constant->attributeIteratorConst(this->generic->attributeId(of.name));
    for (auto direct = C::iterator(*this->entity); direct; ++direct, ++*it) {
      ASSERT_TRUE(*it);
      EXPECT_EQ(valueOf<Mox::String8>(it->key()), direct.key());
      EXPECT_EQ(valueOf<typename C::Value>(this->generic->attributeIterator_iterObj(*it)),
                direct.value());
    }
    EXPECT_FALSE(*it);
    EXPECT_EQ(this->generic->attributeIterator_iterObj(*it), nullptr);
  });
}

TYPED_TEST(EntityAccessTest, WalksFromAKeyOn) {
  this->forEach([&](auto collection, Names const& of) {
    using C = decltype(collection);
    AttributeId const id = this->generic->attributeId(of.name);
    for (char const* key : {"a", "b", "c", "d"}) C::is(*this->entity, key, C::value(key, 1));
    for (char const* key : {"a", "b", "c", "d"}) {
      auto const it = this->generic->attributeIteratorKeyConst(id, string(key).get());
      for (auto direct = C::iterator(*this->entity, key); direct; ++direct, ++*it) {
        ASSERT_TRUE(*it);
        EXPECT_EQ(valueOf<Mox::String8>(it->key()), direct.key());
      }
      EXPECT_FALSE(*it);
    }
    EXPECT_FALSE(*this->generic->attributeIteratorKeyConst(id, string("e").get()));
    for (Generic const& wrong : {number(1), Generic()}) {
      EXPECT_EQ(genericRefusal([&] { this->generic->attributeIteratorKeyConst(id, wrong.get()); }),
                wrongType("mox_index"));
    }
  });
}

TYPED_TEST(EntityAccessTest, AWalkFollowsTheCollectionAndKeepsTheEntity) {
  for (char const* key : {"a", "b", "c"}) this->entity->nativeVlanIs(key, 1);
  Ptr<TypeParam> other(new TypeParam("other"));
  other->nativeVlanIs("a", 7);
  auto kept = genericOf(other)->attributeIteratorConst(switchPortId<TypeParam> + 1);
  other = nullptr;
  EXPECT_EQ(valueOf<std::uint16_t>(kept->value()), 7U);

  auto const it = this->generic->attributeIteratorConst(switchPortId<TypeParam> + 1);
  std::set<Mox::String8> met{valueOf<Mox::String8>(it->key())};
  this->entity->nativeVlanDel(*met.begin());
  while (++*it) met.insert(valueOf<Mox::String8>(it->key()));
  EXPECT_EQ(met.size(), 3U);
}

TYPED_TEST(EntityAccessTest, WalksNothingButCollections) {
  Generic const key = string("et1");
  EXPECT_EQ(genericRefusal([&] { this->generic->attributeIteratorConst(1); }),
            opNotSupported("name", 0));
  EXPECT_EQ(genericRefusal([&] { this->generic->attributeIteratorKeyConst(1, key.get()); }),
            opNotSupported("name", 0));
  EXPECT_EQ(genericRefusal([&] { this->generic->attributeIteratorConst(99999); }),
            noSuchAttribute(this->typeName, "99999"));
}

TYPED_TEST(EntityAccessTest, PrintsAsAReferenceThatReadsBack) {
  Mox::dirAt("/slice")->entityIs(this->entity);
  EXPECT_EQ(this->generic->strRep(), "EntityPtr('/slice/entity', '" + this->typeName + "')");
  Generic const read = TypeParam::_fwkType()->genericIf(this->generic->strRep(), false);
  EXPECT_TRUE(equal(*read, this->generic.get()));
  store(*read, "nativeVlan", genericOf(std::uint16_t{10}), string("et1"));
  EXPECT_EQ(this->entity->nativeVlan("et1"), 10U);
  Mox::root()->entityDel("slice");
}

TYPED_TEST(EntityAccessTest, IsMadeOfItsName) {
  Mox::MoxType const& type = *TypeParam::_fwkType();
  Generic const made = type.genericIfNew(listOf(genericOf(Mox::Name("new"))));
  EXPECT_FALSE(made->isConst());
  EXPECT_EQ(made->type(), &type);
  EXPECT_EQ(valueOf<Mox::Name>(read(*made, "name")).string(), "new");
  EXPECT_EQ(read(*made, "parent")->strRep(), "None");
  Ptr<TypeParam> const direct = TypeParam::_Type::newEntity("direct", nullptr);
  EXPECT_EQ(direct->fullName(), "direct");
}

TYPED_TEST(EntityAccessTest, IsNotMadeOfAnythingElse) {
  Mox::MoxType const& type = *TypeParam::_fwkType();
  EXPECT_EQ(genericRefusal([&] { type.genericIfNew(List()); }), wrongType("name"));
  EXPECT_EQ(genericRefusal([&] { type.genericIfNew(listOf(string("new"))); }), wrongType("name"));
  EXPECT_EQ(genericRefusal([&] { type.genericIfNew(*string("new")); }), wrongType("List"));
  EXPECT_EQ(genericRefusal([&] {
              type.genericIfNew(listOf(genericOf(Mox::Name("new")), genericOf(Mox::Name("dir"))));
            }),
            unknownArg(this->typeName));
}

using Numbers = std::map<AttributeId, std::string>;

/// The names of all numbers up to 1000 that have one.
Numbers attributeStrings(Mox::Entity const& entity) {
  Numbers all;
  for (AttributeId id = 0; id < 1000; ++id) {
    Mox::String8 const name = entity.attributeString(id);
    if (!name.empty()) all[id] = std::string(name.view());
  }
  return all;
}

TEST(AttributeNumbers, AreThoseOfTheEntity) {
  Ptr<KestSliceDmaConfig> const config(new KestSliceDmaConfig("config"));
  Ptr<KestSliceDmaStatus> const status(new KestSliceDmaStatus("status"));
  EXPECT_EQ(attributeStrings(*config), (Numbers{{1, "name"},
                                                {2, "fullName"},
                                                {3, "parent"},
                                                {4, "changeCount"},
                                                {6, "lookupCount"},
                                                {258, "sliceId"},
                                                {259, "switchPort"},
                                                {260, "nativeVlan"},
                                                {261, "switchportMode"},
                                                {262, "device"},
                                                {263, "deviceState"}}));
  EXPECT_EQ(attributeStrings(*status), (Numbers{{1, "name"},
                                                {2, "fullName"},
                                                {3, "parent"},
                                                {4, "changeCount"},
                                                {6, "lookupCount"},
                                                {258, "switchPort"},
                                                {259, "nativeVlan"},
                                                {260, "switchportMode"},
                                                {261, "device"},
                                                {262, "deviceState"}}));
  for (Generic const& generic : {genericOf(config), genericOf(status)}) {
    auto const& entity = static_cast<Mox::Entity const&>(
        *static_cast<Mox::GenericIfPtrInterface const&>(*generic).object());
    for (auto const& [id, name] : attributeStrings(entity)) {
      EXPECT_EQ(generic->attributeId(Mox::String8(name)), id) << name;
    }
  }
}

TEST(AttributeNumbers, AreGivenForKnownNamesAlone) {
  Generic const config = genericOf(Ptr<KestSliceDmaConfig>());
  Generic const status = genericOf(Ptr<KestSliceDmaStatus>());
  EXPECT_EQ(config->attributeId("sliceId"), 258U);
  EXPECT_EQ(genericRefusal([&] { status->attributeId("sliceId"); }),
            noSuchAttribute("Hardware::Kest::Slice::KestSliceDmaStatus", "sliceId"));
  for (char const* unknown : {"", "SwitchPort", "ifName", "mode"}) {
    EXPECT_EQ(genericRefusal([&] { config->attributeId(unknown); }),
              noSuchAttribute("Hardware::Kest::Slice::KestSliceDmaConfig", unknown));
  }
}

/// The attribute that the configuration has beside its collections.
class SliceIdAccessTest : public testing::Test {
 protected:
  Ptr<KestSliceDmaConfig> const config{new KestSliceDmaConfig("config")};
  Generic const generic = genericOf(config);
};

TEST_F(SliceIdAccessTest, IsReadAndStored) {
  store(*generic, "sliceId", string("Linecard3/1"));
  EXPECT_EQ(config->sliceId(), "Linecard3/1");
  EXPECT_EQ(valueOf<Mox::String8>(read(*generic, "sliceId")), "Linecard3/1");
  store(*generic, "sliceId", string("Linecard3/1"));
  EXPECT_EQ(config->changeCount(), 1U);
}

TEST_F(SliceIdAccessTest, TakesNoIndex) {
  for (unsigned const code : {0U, 100U, 128U, 129U}) {
    EXPECT_EQ(refused(*generic, "sliceId", Code(code), string("et1")), badIndex("sliceId"));
  }
}

TEST_F(SliceIdAccessTest, RefusesEverythingElse) {
  EXPECT_EQ(genericRefusal([&] { store(*generic, "sliceId", number(3)); }), wrongType("sliceId"));
  EXPECT_EQ(genericRefusal([&] { store(*generic, "sliceId", nullptr); }), wrongType("sliceId"));
  for (unsigned const code : {1U, 100U, 127U, 129U, 130U, 131U}) {
    EXPECT_EQ(refused(*generic, "sliceId", Code(code)), opNotSupported("sliceId", code));
  }
  EXPECT_EQ(genericRefusal([&] { generic->attributeIteratorConst(258); }),
            opNotSupported("sliceId", 0));
  EXPECT_EQ(genericRefusal([&] { read(*genericOf(Ptr<KestSliceDmaConfig>()), "sliceId"); }),
            notBound("Hardware::Kest::Slice::KestSliceDmaConfig"));
}

}  // namespace
}  // namespace Hardware::Kest::Slice
