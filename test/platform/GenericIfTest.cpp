#include "platform/mox/GenericIf.h"

#include <gtest/gtest.h>

#include "platform/mox/Dir.h"
#include "platform/mox/IntrospectionReactor.h"
#include "test/platform/ToyTypes.h"
#include "test/support/GenericRefusal.h"
#include "test/support/Refusal.h"

namespace Toy {
namespace {

using Mox::GenericIf;
using Mox::genericOf;
using Mox::genericRef;
using Mox::genericVal;
using Mox::Ptr;
using Mox::String8;
using Mox::wholeAttributeId;
using Test::badIndex;
using Test::GenericRefusal;
using Test::genericRefusal;
using Test::noSuchAttribute;
using Test::notBound;
using Test::operate;
using Test::opNotSupported;
using Test::refusal;
using Test::RefusalKind;
using Test::refused;
using Test::wrongType;
using Code = Mox::AttributeOpCode;

TEST(GenericIfRefusals, SayWhatIsRefused) {
  EXPECT_EQ(genericRefusal([] { GenericIf::throwConstException("no"); }),
            (GenericRefusal{RefusalKind::constInstance, "no"}));
  EXPECT_EQ(genericRefusal([] { GenericIf::throwBadIndexAttrException("sliceId"); }),
            (GenericRefusal{RefusalKind::badIndex, "'sliceId' does not take that index"}));
  EXPECT_EQ(genericRefusal([] { GenericIf::throwOpNotSupportedException("size", Code::store); }),
            (GenericRefusal{RefusalKind::opNotSupported, "'size' does not support operation 128"}));
  EXPECT_EQ(genericRefusal([] { GenericIf::throwTypeException("size"); }),
            (GenericRefusal{RefusalKind::type, "'size' is missing or of the wrong type"}));
  EXPECT_EQ(genericRefusal([] { GenericIf::throwUnknownArgException("Spot"); }),
            (GenericRefusal{RefusalKind::unknownArg, "'Spot' does not take so many arguments"}));
  EXPECT_EQ(
      genericRefusal([] { GenericIf::throwNoSuchAttributeException(Spot::_fwkType(), "colour"); }),
      (GenericRefusal{RefusalKind::noSuchAttribute, "'Toy::Box::Spot' has no attribute 'colour'"}));
  EXPECT_EQ(genericRefusal([] { GenericIf::throwNotBoundException("config"); }),
            (GenericRefusal{RefusalKind::notBound, "no 'config' is bound"}));
}

TEST(GenericIfRefusals, CarryTheirTextTwice) {
  try {
    GenericIf::throwTypeException("size");
  } catch (Mox::GenericAccessException const& exception) {
    EXPECT_EQ(exception.text(), exception.what());
  }
}

bool equal(GenericIf& a, GenericIf const* b) {
  return *genericVal<bool>(operate(a, {wholeAttributeId, Code::equality}, b).get());
}

TEST(GenericReference, KeepsItsObject) {
  Ptr<Thing> thing(new Thing);
  auto generic = genericOf(thing);
  EXPECT_EQ(thing->references(), 2U);
  EXPECT_FALSE(generic->isConst());
  EXPECT_EQ(generic->type(), Thing::_fwkType());
  EXPECT_EQ(generic->voidPtr(), nullptr);
  generic.reset();
  EXPECT_EQ(thing->references(), 1U);
}

TEST(GenericReference, ToAConstantObjectIsConstant) {
  Ptr<Thing const> const thing(new Thing);
  auto const generic = genericOf(thing);
  EXPECT_TRUE(generic->isConst());
  EXPECT_TRUE(generic->clone()->isConst());
}

TEST(GenericReference, ToAConstantObjectYieldsNoOther) {
  Ptr<Thing const> const thing(new Thing);
  auto const generic = genericOf(thing);
  bool isReference = false;
  EXPECT_EQ(genericRef<Thing const>(generic.get(), isReference), thing);
  EXPECT_TRUE(isReference);
  EXPECT_FALSE(genericRef<Thing>(generic.get(), isReference));
  EXPECT_FALSE(isReference);
}

TEST(GenericReference, IsNotMadeOfAnObjectOfAnotherType) {
  class Untyped : public Mox::PtrInterface {};
  Ptr<Thing> const thing(new Thing);
  Ptr<Untyped> const untyped(new Untyped);
  for (bool const isConst : {false, true}) {
    EXPECT_EQ(genericRefusal([&] { Box::_fwkType()->genericIf_(thing.ptr(), isConst); }),
              wrongType("Toy::Box"));
    EXPECT_EQ(genericRefusal([&] { Thing::_fwkType()->genericIf_(untyped.ptr(), isConst); }),
              wrongType("Toy::Thing"));
  }
  EXPECT_EQ(thing->references(), 1U);
}

TEST(GenericReference, IsEqualByIdentity) {
  Ptr<Thing> const thing(new Thing);
  auto const generic = genericOf(thing);
  EXPECT_TRUE(equal(*generic, genericOf(Ptr<Thing const>(thing)).get()));
  EXPECT_TRUE(equal(*generic, generic->clone().get()));
  EXPECT_FALSE(equal(*generic, genericOf(Ptr<Thing>(new Thing)).get()));
  EXPECT_FALSE(equal(*generic, genericOf(Ptr<Thing>()).get()));
  EXPECT_EQ(genericRefusal([&] { equal(*generic, nullptr); }), wrongType("Toy::Thing"));
  EXPECT_EQ(genericRefusal([&] { equal(*generic, genericOf(true).get()); }),
            wrongType("Toy::Thing"));
  EXPECT_EQ(genericRefusal([&] { equal(*generic, genericOf(Ptr<Box>(new Box("box"))).get()); }),
            wrongType("Toy::Thing"));
}

TEST(GenericReference, MayBeNull) {
  auto const null = genericOf(Ptr<Thing>());
  EXPECT_EQ(null->type(), Thing::_fwkType());
  EXPECT_EQ(null->strRep(), "None");
  EXPECT_EQ(null->clone()->strRep(), "None");
  EXPECT_TRUE(equal(*null, genericOf(Ptr<Thing>()).get()));
  bool isReference = false;
  EXPECT_FALSE(genericRef<Thing>(null.get(), isReference));
  EXPECT_TRUE(isReference);
}

TEST(GenericReference, IsTakenAsNothingButItsType) {
  Ptr<Thing> const thing(new Thing);
  auto const generic = genericOf(thing);
  bool isReference = false;
  EXPECT_EQ(genericRef<Thing>(generic.get(), isReference), thing);
  EXPECT_TRUE(isReference);
  EXPECT_FALSE(genericRef<Box>(generic.get(), isReference));
  EXPECT_FALSE(isReference);
  EXPECT_FALSE(genericRef<Thing>(genericOf(true).get(), isReference));
  EXPECT_FALSE(isReference);
  EXPECT_FALSE(genericRef<Thing>(nullptr, isReference));
  EXPECT_FALSE(isReference);
}

TEST(GenericReference, RefusesWhatNoTypeAnswers) {
  auto const generic = genericOf(Ptr<Thing>(new Thing));
  EXPECT_EQ(generic->strRep(), "ObjectPtr('Toy::Thing')");
  EXPECT_EQ(refused(*generic, {9, Code::read}), noSuchAttribute("Toy::Thing", "9"));
  EXPECT_EQ(refused(*generic, {wholeAttributeId, Code::invoke}), opNotSupported("Toy::Thing", 131));
  EXPECT_EQ(genericRefusal([&] { generic->genericIfListConstructor(GenericIf::List_()); }),
            opNotSupported("Toy::Thing", 1));
}

/// A registered toy entity at /toys/box, that has changed twice and was looked up in once.
class GenericEntityTest : public testing::Test {
 protected:
  GenericEntityTest() {
    reactor.onNamespace("Toy");
    reactor.onType(*Box::_fwkType());
    reactor.onInheritedAttributes(*Box::_fwkType(), *Mox::Entity::_fwkType());
    Mox::dirAt("/toys")->entityIs(box);
    box->changeCountInc();
    box->changeCountInc();
    box->lookupCountInc();
  }
  ~GenericEntityTest() override { Mox::root()->entityDel("toys"); }

  std::unique_ptr<GenericIf> read(char const* name) const {
    return operate(*generic, {generic->attributeId(name), Code::read});
  }

  Mox::IntrospectionReactor reactor;
  Ptr<Box> box{new Box("box")};
  std::unique_ptr<GenericIf> generic = genericOf(box);
};

TEST_F(GenericEntityTest, GivesWhatEveryEntityHas) {
  EXPECT_EQ(genericVal<Mox::Name>(read("name").get())->string(), "box");
  EXPECT_EQ(*genericVal<String8>(read("fullName").get()), "/toys/box");
  EXPECT_EQ(*genericVal<unsigned long long>(read("changeCount").get()), 2U);
  EXPECT_EQ(*genericVal<unsigned long long>(read("lookupCount").get()), 1U);
  auto const parent = read("parent");
  EXPECT_EQ(parent->strRep(), "EntityPtr('/toys', 'Mox::Dir')");
  EXPECT_TRUE(parent->isConst());
}

TEST_F(GenericEntityTest, RefusesEveryOtherOperationOnThem) {
  for (Mox::AttributeId const id : {1U, 2U, 3U, 4U, 6U}) {
    std::string const name(box->attributeString(id).view());
    EXPECT_EQ(refused(*generic, {id, Code::store}), opNotSupported(name, 128));
    EXPECT_EQ(refused(*generic, {id, Code::read, generic.get()}), badIndex(name));
    EXPECT_EQ(genericRefusal([&] { generic->attributeIteratorConst(id); }),
              opNotSupported(name, 0));
    EXPECT_EQ(refused(*genericOf(Ptr<Box>()), {id, Code::read}), notBound("Toy::Box"));
  }
  EXPECT_EQ(refused(*generic, {5, Code::read}), noSuchAttribute("Toy::Box", "5"));
  EXPECT_EQ(box->attributeString(5), "");
}

TEST_F(GenericEntityTest, PrintsAsAReferenceThatReadsBack) {
  EXPECT_EQ(generic->strRep(), "EntityPtr('/toys/box', 'Toy::Box')");
  auto const read = Box::_fwkType()->genericIf(generic->strRep(), false);
  EXPECT_TRUE(equal(*read, generic.get()));
  EXPECT_EQ(Box::_fwkType()->genericIf(String8("None"), false)->strRep(), "None");
}

TEST_F(GenericEntityTest, RefusesTextsThatAreNoReferenceToItsType) {
  EXPECT_EQ(refusal([] { Box::_fwkType()->genericIf(String8("None "), false); }),
            "junk at column 4 deserializing None ");
}

}  // namespace
}  // namespace Toy
