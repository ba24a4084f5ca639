#include "platform/mox/IntrospectionReactor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "platform/mox/Dir.h"
#include "test/platform/ToyTypes.h"
#include "test/registry/RegistryText.h"
#include "test/support/Refusal.h"

namespace Toy {
namespace {

using Mox::Attribute;
using Mox::IntrospectionClass;
using Mox::IntrospectionReactor;
using Mox::MoxType;
using Mox::TypeOf;
using Test::refusal;
using testing::ElementsAre;

/// A registry of its own with the namespace of the toys.
class IntrospectionReactorTest : public testing::Test {
 protected:
  IntrospectionReactorTest() { reactor.onNamespace("Toy"); }

  /// Announces the box with what it inherits, and after it the spot with its fields.
  void announceBoxAndSpot() {
    reactor.onType(box);
    reactor.onInheritedAttributes(box, *Mox::Entity::_fwkType());
    reactor.onType(spot);
    reactor.onAttribute(spot, {"name", 2, TypeOf<Mox::String8>::type()});
    reactor.onAttribute(spot, {"size", 3, TypeOf<std::uint32_t>::type()});
  }

  /// `typeDel` tells types by identity.
  MoxType const& box = *Box::_fwkType();
  MoxType const& spot = *Spot::_fwkType();
  MoxType const& colour = *colourType();
  IntrospectionReactor reactor;
};

TEST_F(IntrospectionReactorTest, KnowsATypeByTheLastPartOfItsName) {
  announceBoxAndSpot();
  EXPECT_EQ(box.typeNode()->name(), "Box");
  EXPECT_EQ(spot.typeNode()->name(), "Spot");
}

TEST_F(IntrospectionReactorTest, KeepsTheOrderOfAnnouncement) {
  reactor.onType(colour);
  announceBoxAndSpot();
  EXPECT_THAT(reactor.types(), ElementsAre(&colour, &box, &spot));
}

TEST_F(IntrospectionReactorTest, FindsTypesByFullName) {
  announceBoxAndSpot();
  EXPECT_EQ(reactor.type("Toy::Box::Spot"), &spot);
  for (char const* name : {"", "Toy", "Spot", "toy::Box", "Toy::Box::", "::Toy::Box"}) {
    EXPECT_EQ(reactor.type(name), nullptr) << name;
  }
}

TEST_F(IntrospectionReactorTest, ANamespaceMayBeAnnouncedAgain) {
  reactor.onNamespace("Toy");
  EXPECT_TRUE(reactor.hasNamespace("Toy"));
  EXPECT_FALSE(reactor.hasNamespace("Toy::Deep"));
}

TEST_F(IntrospectionReactorTest, RefusesWhatHasNoScope) {
  EXPECT_EQ(refusal([&] { reactor.onNamespace("Far::Deep"); }),
            "'Far::Deep' has no scope to be in");
  MoxType const lost("Toy::Deep::Lost");
  EXPECT_EQ(refusal([&] { reactor.onType(lost); }), "'Toy::Deep::Lost' has no scope to be in");
  EXPECT_EQ(lost.typeNode(), nullptr);
}

TEST_F(IntrospectionReactorTest, RefusesWhatHasNoName) {
  EXPECT_EQ(refusal([&] { reactor.onNamespace(""); }), "'' has no name after its scope");
  EXPECT_EQ(refusal([&] { reactor.onNamespace("Toy::"); }), "'Toy::' has no name after its scope");
  MoxType const nameless("Toy::");
  EXPECT_EQ(refusal([&] { reactor.onType(nameless); }), "'Toy::' has no name after its scope");
}

TEST_F(IntrospectionReactorTest, RefusesANameThatIsTaken) {
  reactor.onType(box);
  MoxType const again("Toy::Box");
  EXPECT_EQ(refusal([&] { reactor.onType(again); }), "'Toy::Box' is registered already");
  EXPECT_EQ(refusal([&] { reactor.onType(box); }), "'Toy::Box' is registered already");
  MoxType const toy("Toy");
  EXPECT_EQ(refusal([&] { reactor.onType(toy); }), "'Toy' is registered already");
  EXPECT_THAT(reactor.types(), ElementsAre(&box));
}

TEST_F(IntrospectionReactorTest, RefusesATypeThatAnotherRegistryHas) {
  EXPECT_EQ(refusal([&] { reactor.onType(*TypeOf<bool>::type()); }),
            "'bool' is registered already");
}

TEST_F(IntrospectionReactorTest, RefusesAttributesOfATypeThatItDoesNotHave) {
  std::string const unregistered = "'Toy::Box' is not registered";
  EXPECT_EQ(refusal([&] {
              reactor.onConstructorArgument(box, {"name", "Mox::Name"});
            }),
            unregistered);
  EXPECT_EQ(refusal([&] {
              reactor.onAttribute(box, {"size", 258, TypeOf<bool>::type()});
            }),
            unregistered);
  EXPECT_EQ(refusal([&] { reactor.onInheritedAttributes(box, *Mox::Entity::_fwkType()); }),
            unregistered);
  EXPECT_EQ(refusal([&] { reactor.onInheritedAttributes(*TypeOf<bool>::type(), box); }),
            unregistered);
  reactor.onType(box);
  MoxType const impostor("Toy::Box");
  EXPECT_EQ(refusal([&] {
              reactor.onAttribute(impostor, {"size", 258, TypeOf<bool>::type()});
            }),
            unregistered);
}

TEST_F(IntrospectionReactorTest, RefusesANameOrNumberThatTheTypeHasAlready) {
  announceBoxAndSpot();
  EXPECT_EQ(refusal([&] {
              reactor.onAttribute(spot, {"size", 4, TypeOf<bool>::type()});
            }),
            "'Toy::Box::Spot' has an attribute 'size' or 4 already");
  EXPECT_EQ(refusal([&] {
              reactor.onAttribute(spot, {"weight", 3, TypeOf<bool>::type()});
            }),
            "'Toy::Box::Spot' has an attribute 'weight' or 3 already");
  EXPECT_EQ(spot.typeNode()->attributes().size(), 2U);
}

TEST_F(IntrospectionReactorTest, FindsAttributesByNameAndNumber) {
  announceBoxAndSpot();
  Attribute const& size = spot.typeNode()->attributes()[1];
  EXPECT_EQ(spot.typeNode()->attribute("size"), &size);
  EXPECT_EQ(spot.typeNode()->attribute(3), &size);
  EXPECT_EQ(spot.typeNode()->attribute("Size"), nullptr);
  EXPECT_EQ(spot.typeNode()->attribute(4), nullptr);
}

TEST_F(IntrospectionReactorTest, HoldsAllThatWasAnnouncedOfAnEntityWithACollection) {
  announceBoxAndSpot();
  reactor.onConstructorArgument(box, {"name", "Mox::Name"});
  Attribute handler{"shake", 260, Mox::untypedPointer(), IntrospectionClass::handler};
  handler.arguments = {{"hard", "bool"}, {"times", "U32"}};
  reactor.onRecordCollection(
      box, {"spot", 258, &spot, IntrospectionClass::scalar, Mox::attributeNotifying}, "name");
  reactor.onAttribute(box, handler);
  EXPECT_EQ(Mox::registryText(reactor, "Toy"), R"(namespace Toy

type Toy::Box entity
  argument name Mox::Name
  attribute 1 name scalar Mox::Name [visible] inherited from Mox::Entity
  attribute 2 fullName scalar Mox::String [visible] inherited from Mox::Entity
  attribute 3 parent scalar Mox::Dir [visible] inherited from Mox::Entity
  attribute 4 changeCount scalar U64 [visible] inherited from Mox::Entity
  attribute 6 lookupCount scalar U64 [visible] inherited from Mox::Entity
  attribute 258 spot collection Toy::Box::Spot by name Mox::String [notifying]
  attribute 260 shake handler Mox::VoidPtr (hard bool, times U32) [visible]

type Toy::Box::Spot value
  attribute 2 name scalar Mox::String [visible]
  attribute 3 size scalar U32 [visible]
)");
}

TEST_F(IntrospectionReactorTest, AnAttributeInheritedTwiceComesFromItsFirstOwner) {
  announceBoxAndSpot();
  Mox::EntityType const crate("Toy::Crate");
  reactor.onType(crate);
  reactor.onInheritedAttributes(crate, box);
  EXPECT_EQ(crate.typeNode()->attribute("fullName")->inheritedFrom, Mox::Entity::_fwkType());
  EXPECT_EQ(refusal([&] { reactor.onInheritedAttributes(crate, box); }),
            "'Toy::Crate' has an attribute 'name' or 1 already");
  reactor.typeDel(crate);
}

TEST_F(IntrospectionReactorTest, ARecordCollectionReplacesAnInheritedAttributeOfItsName) {
  announceBoxAndSpot();
  reactor.onRecordCollection(box, {"parent", 258, &spot}, "name");
  EXPECT_EQ(Mox::typeText(box), R"(type Toy::Box entity
  attribute 1 name scalar Mox::Name [visible] inherited from Mox::Entity
  attribute 2 fullName scalar Mox::String [visible] inherited from Mox::Entity
  attribute 4 changeCount scalar U64 [visible] inherited from Mox::Entity
  attribute 6 lookupCount scalar U64 [visible] inherited from Mox::Entity
  attribute 258 parent collection Toy::Box::Spot by name Mox::String [visible]
)");
  EXPECT_NE(Mox::Entity::_fwkType()->typeNode()->attribute("parent"), nullptr);
}

TEST_F(IntrospectionReactorTest, ARecordCollectionReplacesNoAttributeOfTheTypesOwn) {
  announceBoxAndSpot();
  reactor.onAttribute(box, {"spot", 258, TypeOf<bool>::type()});
  EXPECT_EQ(refusal([&] {
              reactor.onRecordCollection(box, {"spot", 259, &spot}, "name");
            }),
            "'Toy::Box' has an attribute 'spot' or 259 already");
}

TEST_F(IntrospectionReactorTest, RefusesARecordCollectionWithoutItsKeyField) {
  announceBoxAndSpot();
  EXPECT_EQ(refusal([&] {
              reactor.onRecordCollection(box, {"parent", 258, &spot}, "colour");
            }),
            "'Toy::Box::Spot' has no attribute 'colour' to be a key");
  EXPECT_EQ(refusal([&] {
              reactor.onRecordCollection(box, {"parent", 258, &colour}, "name");
            }),
            "'Toy::Colour' is not registered");
  EXPECT_EQ(box.typeNode()->attribute("parent")->id, 3U) << "nothing was dropped";
}

TEST_F(IntrospectionReactorTest, AnEnumerationHasItsEnumeratorsAndItsValue) {
  reactor.onType(colour);
  reactor.onEnumerators(colour);
  EXPECT_EQ(Mox::typeText(colour), R"(type Toy::Colour enumeration
  attribute 0 red enumerator Toy::Colour [visible]
  attribute 1 green enumerator Toy::Colour [visible]
  attribute 256 value scalar U32 [visible] inherited from Mox::Enumeration
)");
}

TEST_F(IntrospectionReactorTest, WithdrawsATypeWithAllThatIsRegisteredOfIt) {
  reactor.onType(colour);
  announceBoxAndSpot();
  reactor.typeDel(spot);
  EXPECT_EQ(spot.typeNode(), nullptr);
  EXPECT_EQ(reactor.type("Toy::Box::Spot"), nullptr);
  EXPECT_THAT(reactor.types(), ElementsAre(&colour, &box));
  reactor.typeDel(box);
  EXPECT_EQ(Mox::registryText(reactor, "Toy"), "namespace Toy\n\ntype Toy::Colour enumeration\n");
  reactor.onType(box);
  EXPECT_EQ(Mox::typeText(box), "type Toy::Box entity\n") << "as new";
}

TEST_F(IntrospectionReactorTest, ANamespaceStaysForOthersWhenItsLastTypeGoes) {
  reactor.onType(box);
  reactor.typeDel(box);
  EXPECT_TRUE(reactor.hasNamespace("Toy"));
}

TEST_F(IntrospectionReactorTest, WithdrawsNothingForATypeThatItDoesNotHave) {
  reactor.onType(box);
  MoxType const impostor("Toy::Box");
  reactor.typeDel(impostor);
  reactor.typeDel(spot);
  reactor.typeDel(*TypeOf<bool>::type());
  EXPECT_THAT(reactor.types(), ElementsAre(&box));
  EXPECT_NE(box.typeNode(), nullptr);
  EXPECT_NE(TypeOf<bool>::type()->typeNode(), nullptr);
}

TEST_F(IntrospectionReactorTest, LeavesNoTypeWithAPlaceWhenItGoes) {
  std::optional<IntrospectionReactor> gone(std::in_place);
  gone->onNamespace("Toy");
  gone->onType(box);
  EXPECT_NE(box.typeNode(), nullptr);
  gone.reset();
  EXPECT_EQ(box.typeNode(), nullptr);
}

TEST(GlobalRegistry, HasThePlatformsTypes) {
  IntrospectionReactor const& global = IntrospectionReactor::global();
  std::vector<std::string> names;
  for (MoxType const* type : global.types()) names.emplace_back(type->fullName().view());
  EXPECT_THAT(names, ElementsAre("bool", "U16", "U32", "U64", "double", "List", "Mox::String",
                                 "Mox::Name", "Mox::VoidPtr", "Mox::Enumeration", "Mox::Entity",
                                 "Mox::Dir", "Mox::Clock", "Mox::ActivityConfig", "Pelk::EthAddr",
                                 "Fru::PciHam", "Bridging::SwitchportMode",
                                 "Hardware::Kest::FapType", "Hardware::Kest::SmMode"));
  for (MoxType const* type : global.types()) {
    EXPECT_EQ(global.type(type->fullName()), type);
    EXPECT_NE(type->typeNode(), nullptr);
  }
}

TEST(GlobalRegistry, HasThePlatformsEnumerators) {
  EXPECT_EQ(Mox::typeText(*IntrospectionReactor::global().type("Hardware::Kest::SmMode")),
            R"(type Hardware::Kest::SmMode enumeration
  attribute 0 smModeInitial enumerator Hardware::Kest::SmMode [visible]
  attribute 1 smModeStandby enumerator Hardware::Kest::SmMode [visible]
  attribute 2 smModePolling enumerator Hardware::Kest::SmMode [visible]
  attribute 256 value scalar U32 [visible] inherited from Mox::Enumeration
)");
}

}  // namespace
}  // namespace Toy
